#include "files/comm_settings.h"

#include <gtest/gtest.h>

#include "tests/core/temp_dir.h"

namespace kirvana {
namespace {

std::vector<std::string> Lines() {
    return {"RS232 Communication Settings",
            "Machine : Press 1",
            "Port : 2",
            "Baud : 9600",
            "Parity : n",
            "Data Bits : 8",
            "Stop Bits : 1",
            "Handshake : xon/xoff dtr",
            "Start : auto",
            "Start Character : 17",
            "Leader : 5,0,1,13",
            "Line End : 1,13,1,10",
            "Trailer : 20,0",
            "Receive End : 1,4",
            "Send Drop : 37,59",
            "Receive Drop : 0,19",
            "Line 17 : 70000",
            "Line 18 : -5"};
}

TEST(CommSettings, EveryLine) {
    CommSettings s = CommSettingsFromLines(Lines());
    EXPECT_EQ(s.Line2, "Press 1");
    EXPECT_EQ(s.CommPort, 2);
    EXPECT_EQ(s.PortDevice(), "/dev/ttyS1");
    EXPECT_EQ(s.Settings, "9600,n,8,1");
    EXPECT_EQ(s.Handshake, HandshakeXonXoff);
    EXPECT_TRUE(s.DtrFlag);
    EXPECT_EQ(s.StartTrigger, TriggerStartChar);
    EXPECT_EQ(s.StartChar, '\x11');
    EXPECT_EQ(s.SendLeader, std::string("\0\0\0\0\0\r", 6));
    EXPECT_EQ(s.LineEnd, "\r\n");
    EXPECT_EQ(s.SendTrailer, std::string(20, '\0'));
    EXPECT_EQ(s.ReceiveEnd2, "\x04");
    EXPECT_EQ(s.SendDrop, "%;");
    EXPECT_EQ(s.ReceiveDrop, std::string("\0\x13", 2));
    EXPECT_EQ(s.Line17, 65535);
    EXPECT_EQ(s.Line18, -5);
    EXPECT_TRUE(s.Problems.empty());
}

TEST(CommSettings, ALineWithoutColonIsItsValueWhole) {
    std::vector<std::string> lines = Lines();
    lines[2] = "0";
    lines[9] = "X marks";
    CommSettings s = CommSettingsFromLines(lines);
    EXPECT_EQ(s.CommPort, 0);
    EXPECT_FALSE(s.TransferOn());
    EXPECT_EQ(s.StartChar, 'X');
}

TEST(CommSettings, ADevicePathInPlaceOfThePortNumber) {
    std::vector<std::string> lines = Lines();
    lines[2] = "Port : /dev/ttyUSB0";
    CommSettings s = CommSettingsFromLines(lines);
    EXPECT_EQ(s.PortDevice(), "/dev/ttyUSB0");
    EXPECT_TRUE(s.TransferOn());
}

TEST(CommSettings, HandshakeWords) {
    std::vector<std::string> lines = Lines();
    lines[7] = "RTS/CTS";
    EXPECT_EQ(CommSettingsFromLines(lines).Handshake, HandshakeRtsCts);
    EXPECT_FALSE(CommSettingsFromLines(lines).DtrFlag);
    lines[7] = "xoff and cts";
    EXPECT_EQ(CommSettingsFromLines(lines).Handshake, HandshakeXonXoff + HandshakeRtsCts);
    lines[7] = "none";
    EXPECT_EQ(CommSettingsFromLines(lines).Handshake, 0);
}

TEST(CommSettings, StartTriggerWordsInTheirOrder) {
    EXPECT_EQ(StartTriggerOf("auto"), TriggerStartChar);
    EXPECT_EQ(StartTriggerOf("FORCE"), TriggerImmediate);
    EXPECT_EQ(StartTriggerOf("immediate"), TriggerImmediate);
    EXPECT_EQ(StartTriggerOf("EVENT"), TriggerLineEvent);
    EXPECT_EQ(StartTriggerOf("DSR"), TriggerDsr);
    EXPECT_EQ(StartTriggerOf("CTS"), TriggerCts);
    EXPECT_EQ(StartTriggerOf("ANY"), TriggerAnyChar);
    // AUTO is tested first: it wins over any other word on the line.
    EXPECT_EQ(StartTriggerOf("ANY AUTO"), TriggerStartChar);
    EXPECT_EQ(StartTriggerOf("DSR or CTS"), TriggerDsr);
    EXPECT_EQ(StartTriggerOf("whenever"), TriggerNone);
}

TEST(CommSettings, CodeLists) {
    EXPECT_EQ(ParseCodeList("5,0,1,13"), std::string("\0\0\0\0\0\r", 6));
    EXPECT_EQ(ParseCodeList("2,65,66"), "AAB");
    EXPECT_EQ(ParseCodeList("13"), "\r");
    EXPECT_EQ(ParseCodeList(""), "");
    EXPECT_EQ(ParseCodeList("0,65"), "");
    std::vector<std::string> problems;
    EXPECT_EQ(ParseCodeList("1,300,2,66,x,y,99999,1", &problems), "BB");
    EXPECT_EQ(problems.size(), 3u);
}

TEST(CommSettings, CharacterLists) {
    EXPECT_EQ(ParseCharacterList("37, 59 ,10"), "%;\n");
    std::vector<std::string> problems;
    EXPECT_EQ(ParseCharacterList("65,abc,256", &problems), "A");
    EXPECT_EQ(problems.size(), 2u);
}

TEST(CommSettings, MissingAndNonsenseLinesTakeDefaults) {
    CommSettings empty = CommSettingsFromLines({});
    EXPECT_EQ(empty.CommPort, 0);
    EXPECT_EQ(empty.Settings, ",,,");
    EXPECT_EQ(empty.SendTrailer, "");
    EXPECT_EQ(empty.StartTrigger, TriggerNone);
    CommSettings nonsense = CommSettingsFromLines({"t", "", "COM one", "fast", "?", "many", "x", "", "", "999"});
    EXPECT_EQ(nonsense.CommPort, 0);
    EXPECT_FALSE(nonsense.TransferOn());
    EXPECT_EQ(nonsense.StartChar, '\0');
    EXPECT_EQ(nonsense.Problems.size(), 2u);
    LineSettings line = ParseLineSettings(nonsense);
    EXPECT_EQ(line.BaudRate, 9600);
    EXPECT_EQ(line.Parity, 'N');
    EXPECT_EQ(line.DataBits, 8);
    EXPECT_EQ(line.StopBits, 1);
}

TEST(CommSettings, LineSettingsOfTheString) {
    CommSettings s = CommSettingsFromLines({"t", "", "1", "115200", "e", "7", "2"});
    LineSettings line = ParseLineSettings(s);
    EXPECT_EQ(line.BaudRate, 115200);
    EXPECT_EQ(line.Parity, 'E');
    EXPECT_EQ(line.DataBits, 7);
    EXPECT_EQ(line.StopBits, 2);
}

TEST(CommSettings, ReadFromTheDataDirectory) {
    TempDir dir;
    EXPECT_FALSE(ReadCommSettings(dir.Path()).has_value());
    std::string text;
    for (const std::string& line : Lines()) text += line + "\r\n";
    dir.Write("control.CMS", text);
    auto s = ReadCommSettings(dir.Path());
    ASSERT_TRUE(s.has_value());
    EXPECT_EQ(s->LineEnd, "\r\n");
}

}  // namespace
}  // namespace kirvana

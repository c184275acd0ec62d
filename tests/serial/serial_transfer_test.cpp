// Sends and receives end to end over pseudo-terminals, through Qt SerialPort, at the speeds and
// handshakes of real installations.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "files/comms.h"
#include "serial/qt_serial_port.h"
#include "tests/core/temp_dir.h"
#include "tests/serial/pty_pair.h"

namespace kirvana {
namespace {

namespace fs = std::filesystem;

const std::string Can(1, DirectoryMark), Em(1, ProgramMark);

struct Line {
    const char* Baud;
    const char* Handshake;
};

class SerialTransfer : public ::testing::TestWithParam<Line> {
protected:
    void SetUp() override {
        ASSERT_TRUE(pty.Ready());
        fs::create_directories(dir.Path() + "Programs/Current");
        fs::create_directories(dir.Path() + "Help");
        settings = CommSettingsFromLines({"RS232", "", "Port : " + pty.Path(), GetParam().Baud, "n", "8", "1",
                                          GetParam().Handshake, "FORCE", "", "2,0", "1,13,1,10", "3,4", "", "", "0"});
        places = {dir.Path(), dir.Path() + "Help/", dir.Path() + "Programs/", "Current"};
    }
    // Runs the port until a stream has been filed or refused, or `seconds` pass.
    std::vector<ReceivedProgram> ReceiveFor(CommsModule& comms, std::size_t wanted, double seconds) {
        std::vector<ReceivedProgram> results;
        auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
        while (results.size() < wanted && std::chrono::steady_clock::now() < deadline) {
            port.Pump(20);
            comms.PortEvent();
            for (ReceivedProgram& r : comms.Receiver().TakeResults()) results.push_back(std::move(r));
        }
        return results;
    }
    std::string Program(const std::string& path) const { return ReadFileText(dir.Path() + "Programs/" + path); }

    PtyPair pty;
    TempDir dir;
    CommSettings settings;
    ReceivePlaces places;
    QtSerialPort port;
};

TEST_P(SerialTransfer, SendOneProgram) {
    dir.Write("Programs/Current/P.prg", "N10 G90\r\nN20 X10 Y20\r\nN30 M30\r\n");
    CommsModule comms(settings, places, port, [this] { port.Pump(5); });
    ASSERT_TRUE(comms.OpenReceivePort()) << comms.LastError();
    std::string got;
    std::thread outside([&] { got = pty.ReceiveUntil("\x04\x04\x04", 10); });
    EXPECT_EQ(comms.SendProgram(dir.Path() + "Programs/Current/", "P"), SendResult::Sent);
    outside.join();
    EXPECT_EQ(got, std::string(2, '\0') + "N10 G90\r\nN20 X10 Y20\r\nN30 M30\r\n\x04\x04\x04");
    EXPECT_TRUE(port.IsOpen());
}

TEST_P(SerialTransfer, ReceiveOneProgram) {
    CommsModule comms(settings, places, port, [this] { port.Pump(5); });
    ASSERT_TRUE(comms.OpenReceivePort()) << comms.LastError();
    pty.Send(Can + "Dorvenis\r\n" + Em + "PART1\r\nN10 G90\r\nN20 X10\r\n\x04\x04\x04");
    std::vector<ReceivedProgram> results = ReceiveFor(comms, 1, 10);
    ASSERT_EQ(results.size(), 1u);
    EXPECT_TRUE(results[0].Filed);
    EXPECT_EQ(Program("Dorvenis/PART1.prg"), "N10 G90\nN20 X10\n\x04\x04\n");
    EXPECT_EQ(ReadFileText(dir.Path() + "Help/Receive.hlp"), "PART1 : Dorvenis\n");
}

TEST_P(SerialTransfer, SeveralProgramsInOneStream) {
    CommsModule comms(settings, places, port, [this] { port.Pump(5); });
    ASSERT_TRUE(comms.OpenReceivePort()) << comms.LastError();
    std::string stream;
    for (int n = 1; n <= 5; ++n)
        stream += Can + "D\r\n" + Em + "P" + std::to_string(n) + "\r\nN" + std::to_string(n) + "\r\n\x04\x04\x04";
    pty.Send(stream);
    std::vector<ReceivedProgram> results = ReceiveFor(comms, 5, 10);
    ASSERT_EQ(results.size(), 5u);
    for (int n = 1; n <= 5; ++n)
        EXPECT_EQ(Program("D/P" + std::to_string(n) + ".prg"), "N" + std::to_string(n) + "\n\x04\x04\n");
}

TEST_P(SerialTransfer, AStreamWithoutNameMarks) {
    CommsModule comms(settings, places, port, [this] { port.Pump(5); });
    ASSERT_TRUE(comms.OpenReceivePort()) << comms.LastError();
    pty.Send("N10 G90\r\nN20 X5\r\n\x04\x04\x04");
    ASSERT_EQ(ReceiveFor(comms, 1, 10).size(), 1u);
    EXPECT_EQ(Program("Current/New Program 1.prg"), "N10 G90\r\nN20 X5\r\n\x04\x04");
}

// A megabyte of every byte but the end mark and the name marks (and XON/XOFF under that
// handshake), stored whole and compared byte for byte.
TEST_P(SerialTransfer, AMegabyteProgramByteForByte) {
    settings.SendTrailer = "\x04";
    settings.ReceiveDrop.clear();
    CommsModule comms(settings, places, port, [this] { port.Pump(5); });
    ASSERT_TRUE(comms.OpenReceivePort()) << comms.LastError();
    std::string program;
    program.reserve(1 << 20);
    unsigned state = 7;
    while (program.size() < (1u << 20)) {
        state = state * 1103515245u + 12345u;
        auto c = static_cast<char>((state >> 16) & 0xFF);
        if (c == '\x04' || c == DirectoryMark || c == ProgramMark || c == '\x11' || c == '\x13') continue;
        program += c;
    }
    std::thread outside([&] { pty.Send(program + "\x04", 1000); });
    std::vector<ReceivedProgram> results = ReceiveFor(comms, 1, 60);
    outside.join();
    ASSERT_EQ(results.size(), 1u);
    EXPECT_TRUE(results[0].Filed);
    std::string filed = Program("Current/New Program 1.prg");
    EXPECT_EQ(filed.size(), program.size());
    EXPECT_TRUE(filed == program);
}

// The outside computer stops for two seconds in the middle of a program.
TEST_P(SerialTransfer, ASenderThatPausesMidStream) {
    CommsModule comms(settings, places, port, [this] { port.Pump(5); });
    ASSERT_TRUE(comms.OpenReceivePort()) << comms.LastError();
    std::thread outside([&] {
        pty.Send(Can + "D\r\n" + Em + "PAUSED\r\nN10 G90\r\nN20");
        std::this_thread::sleep_for(std::chrono::seconds(2));
        pty.Send(" X10\r\nN30\r\n\x04\x04\x04");
    });
    std::vector<ReceivedProgram> results = ReceiveFor(comms, 1, 15);
    outside.join();
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(Program("D/PAUSED.prg"), "N10 G90\nN20 X10\nN30\n\x04\x04\n");
}

TEST_P(SerialTransfer, APortThatDisappearsMidSend) {
    std::string big;
    // More than the terminal's buffers hold, so the send is under way when the line goes.
    for (int n = 0; n < 100000; ++n) big += "N" + std::to_string(n) + " X1\r\n";
    dir.Write("Programs/Current/BIG.prg", big);
    CommsModule comms(settings, places, port, [this] { port.Pump(5); });
    ASSERT_TRUE(comms.OpenReceivePort()) << comms.LastError();
    std::thread outside([&] {
        pty.ReceiveFor(20);
        pty.CloseOutside();
    });
    SendResult result = comms.SendProgram(dir.Path() + "Programs/Current/", "BIG");
    outside.join();
    EXPECT_EQ(result, SendResult::PortFault);
    EXPECT_FALSE(comms.LastError().empty());
    EXPECT_EQ(comms.SendState(), SendIdle);
}

INSTANTIATE_TEST_SUITE_P(Lines, SerialTransfer,
                         ::testing::Values(Line{"9600", "XON/XOFF"}, Line{"115200", "XON/XOFF"},
                                           Line{"9600", "RTS/CTS"}, Line{"115200", "RTS/CTS"}),
                         [](const ::testing::TestParamInfo<Line>& line) {
                             return std::string("Baud") + line.param.Baud +
                                    (std::string(line.param.Handshake) == "RTS/CTS" ? "RtsCts" : "XonXoff");
                         });

// XOFF from the outside holds the send; XON lets it go on, with nothing lost.
TEST(SerialHandshake, XoffHoldsTheSendAndXonResumesIt) {
    PtyPair pty;
    ASSERT_TRUE(pty.Ready());
    TempDir dir;
    std::string big;
    for (int n = 0; n < 20000; ++n) big += "N" + std::to_string(n) + " X1\n";
    dir.Write("P.prg", big);
    CommSettings settings = CommSettingsFromLines(
        {"RS232", "", "Port : " + pty.Path(), "9600", "n", "8", "1", "XON/XOFF", "FORCE", "", "", "1,10", "1,4"});
    QtSerialPort port;
    CommsModule comms(settings, {dir.Path(), dir.Path(), dir.Path(), ""}, port, [&port] { port.Pump(5); });
    std::string got, held;
    std::thread outside([&] {
        got = pty.ReceiveFor(100);
        pty.Send("\x13");
        // What was on its way when XOFF went drains; then the line stays quiet.
        for (std::string more = pty.ReceiveFor(500); !more.empty(); more = pty.ReceiveFor(500)) got += more;
        held = pty.ReceiveFor(1000);
        got += held;
        pty.Send("\x11");
        got += pty.ReceiveUntil("\x04", 30);
    });
    EXPECT_EQ(comms.SendProgram(dir.Path(), "P"), SendResult::Sent);
    outside.join();
    EXPECT_EQ(held.size(), 0u);
    EXPECT_EQ(got, big + "\x04");
}

TEST(SerialPortOpen, APortThatDoesNotExist) {
    QtSerialPort port;
    std::string error;
    CommSettings settings;
    EXPECT_FALSE(port.Open("/dev/ttyNOSUCHPORT", settings, error));
    EXPECT_NE(error.find("/dev/ttyNOSUCHPORT"), std::string::npos);
    EXPECT_FALSE(port.IsOpen());
}

}  // namespace
}  // namespace kirvana

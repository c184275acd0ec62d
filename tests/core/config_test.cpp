#include "core/config.h"

#include <filesystem>
#include <unistd.h>

#include <gtest/gtest.h>

#include "core/paths.h"
#include "tests/core/temp_dir.h"

using namespace kirvana;

namespace {

// Runs a reader with the process's current directory in a temp dir, as the panel runs.
class ConfigTest : public ::testing::Test {
protected:
    void SetUp() override {
        old_ = std::filesystem::current_path();
        std::filesystem::current_path(dir_.Path());
        std::filesystem::create_directory("Service");
    }
    void TearDown() override { std::filesystem::current_path(old_); }

    Directories Dirs() const {
        Directories d;
        d.RootDir = dir_.Path();
        d.DataDir = dir_.Path() + "Data/";
        d.MessagesDir = dir_.Path() + "Messages/";
        d.ServiceDir = dir_.Path() + "Service/";
        return d;
    }
    std::string LastFile() const {
        auto lines = ReadLines(dir_.Path() + "Service/LastFile.txt");
        return lines && !lines->empty() ? lines->front() : std::string();
    }

    TempDir dir_;
    std::filesystem::path old_;
};

const char* MachineDat =
    "Machine name: demo press\nMachine type: 12\nOrientation: 1\nStations: 20\nSpare: Y\nThird axis: NO\n"
    "Load X: 0\nLoad Y: 1250.5\nX min: -10\nX max: 2540\nY min: -5\nY max: 1270\nClamp width: 80\n"
    "Spare: 0\nClamp depth: 60\nClamps: 3\nTable X: 0\nTable Y: 1300\n******\n";

}  // namespace

TEST_F(ConfigTest, ControlCfgOfThreeLinesGivesSlotOneAndIsRewrittenWithFive) {
    dir_.Write("Control.cfg", dir_.Path() + "\n" + dir_.Path() + "Programs\nJobs\n");
    std::filesystem::create_directories(dir_.Path() + "Programs/Jobs");
    Installation inst;
    ASSERT_FALSE(ReadControlConfig(inst));
    EXPECT_EQ(inst.ActiveSlot, 1);
    auto lines = ReadLines(dir_.Path() + "Control.cfg");
    ASSERT_TRUE(lines);
    EXPECT_EQ(*lines, (std::vector<std::string>{dir_.Path(), dir_.Path() + "Programs/", "Jobs", "1", "******"}));
    EXPECT_EQ(inst.Dirs.ProgramDirPath, dir_.Path() + "Programs/Jobs/");
    EXPECT_EQ(inst.Dirs.ServiceDir, dir_.Path() + "Service/");
    EXPECT_EQ(inst.Dirs.DialogueFileStem, dir_.Path() + "Dialogue/Dlgprg.");
    EXPECT_EQ(inst.Dirs.ReverseFileStem, dir_.Path() + "Dialogue/Reverse/Rvsprg.");
    for (const char* d : {"PMAC", "Messages", "Messages/Help", "Data", "Settings", "Service", "RevSubs", "Tools",
                          "Dialogue", "Dialogue/Reverse"})
        EXPECT_TRUE(IsDirectory(dir_.Path() + d)) << d;
}

TEST_F(ConfigTest, SlotValueThreeGivesOne) {
    dir_.Write("Control.cfg", " ./ \n./Programs\nJobs\n3\n******\n");
    Installation inst;
    ASSERT_FALSE(ReadControlConfig(inst));
    EXPECT_EQ(inst.ActiveSlot, 1);
    EXPECT_EQ(inst.Dirs.RootDir, "./");
    EXPECT_EQ(inst.Dirs.ProgramRoot, "./Programs/");
}

TEST_F(ConfigTest, SlotTwoIsKept) {
    dir_.Write("Control.cfg", "./\n./Programs\nJobs\n2.9\n******\n");
    Installation inst;
    ASSERT_FALSE(ReadControlConfig(inst));
    EXPECT_EQ(inst.ActiveSlot, 2);
}

TEST_F(ConfigTest, MissingCurrentDirectoryFallsBackToDorvenisThenTheFirst) {
    dir_.Write("Control.cfg", "./\n./Programs\nGone\n1\n******\n");
    std::filesystem::create_directories("Programs/Alpha");
    std::filesystem::create_directories("Programs/Dorvenis");
    Installation inst;
    ASSERT_FALSE(ReadControlConfig(inst));
    EXPECT_EQ(inst.Dirs.ProgramDirName, "Dorvenis");
    std::filesystem::remove("Programs/Dorvenis");
    ASSERT_FALSE(ReadControlConfig(inst));
    EXPECT_EQ(inst.Dirs.ProgramDirName, "Alpha");
}

TEST_F(ConfigTest, CurrentDirectoryIsFoundIgnoringCase) {
    dir_.Write("Control.cfg", "./\n./Programs\njobs\n1\n******\n");
    std::filesystem::create_directories("Programs/JOBS");
    Installation inst;
    ASSERT_FALSE(ReadControlConfig(inst));
    EXPECT_EQ(inst.Dirs.ProgramDirName, "JOBS");
}

TEST_F(ConfigTest, DriveInLineThreeIsCleared) {
    dir_.Write("Control.cfg", "./\n./Programs\nD:\\Jobs\n1\n******\n");
    Installation inst;
    ASSERT_FALSE(ReadControlConfig(inst));
    // An empty name leaves the program root itself as the current directory.
    EXPECT_EQ(inst.Dirs.ProgramDirName, "");
    EXPECT_EQ(inst.Dirs.ProgramDirPath, "./Programs//");
}

TEST_F(ConfigTest, MissingControlCfgIsAFaultNamedInLastFile) {
    Installation inst;
    auto fault = ReadControlConfig(inst);
    ASSERT_TRUE(fault);
    EXPECT_EQ(fault->File, "Control.cfg");
    EXPECT_EQ(LastFile(), "Control.cfg");
}

TEST_F(ConfigTest, ShortControlCfgIsAFault) {
    dir_.Write("Control.cfg", "./\n");
    Installation inst;
    EXPECT_TRUE(ReadControlConfig(inst));
}

TEST_F(ConfigTest, ControlCfgThatCannotBeWrittenStaysWholeAndEndsTheStart) {
    // In a child process whose files may not grow beyond 20 bytes, as on a full disk: the
    // rewrite of Control.cfg fails, the start ends naming the file, and the old file is whole.
    const std::string text = dir_.Path() + "\n" + dir_.Path() + "Programs\nJobs\n2\n******\n";
    dir_.Write("Control.cfg", text);
    std::filesystem::create_directories(dir_.Path() + "Programs/Jobs");
    EXPECT_EXIT(
        {
            LimitFileSize(20);
            Installation inst;
            auto fault = ReadControlConfig(inst);
            bool named = fault && fault->File.ends_with("Control.cfg");
            std::_Exit(named && ReadFileText("Control.cfg") == text ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
    EXPECT_EQ(ReadFileText(dir_.Path() + "Control.cfg"), text);
}

TEST_F(ConfigTest, ControlCfgLineOfTenMegabytesIsRefusedNamingTheFileAndTheLine) {
    dir_.Write("Control.cfg", "./" + std::string(10 * 1024 * 1024, 'x') + "\n./Programs\nJobs\n1\n******\n");
    auto before = ListDirectory(dir_.Path(), true);
    Installation inst;
    auto fault = ReadControlConfig(inst);
    ASSERT_TRUE(fault);
    EXPECT_EQ(fault->File, "Control.cfg");
    EXPECT_NE(fault->Message().find("line 1"), std::string::npos) << fault->Message();
    EXPECT_LT(fault->Message().size(), 200u);
    EXPECT_EQ(ListDirectory(dir_.Path(), true), before);
}

TEST_F(ConfigTest, ControlCfgGarbageLineIsRefusedAndNoFolderIsMade) {
    auto before = ListDirectory(dir_.Path(), true);
    for (const char* garbage : {"./\x01\x02\x7f/", "./ab\x1b[2Jcd"}) {
        dir_.Write("Control.cfg", std::string(garbage) + "\n./Programs\nJobs\n******\n");
        Installation inst;
        auto fault = ReadControlConfig(inst);
        ASSERT_TRUE(fault);
        EXPECT_EQ(fault->Message(), "Control.cfg: line 1 holds a control character");
        EXPECT_EQ(ListDirectory(dir_.Path(), true), before);
    }
    dir_.Write("Control.cfg", "./\n./Programs\nJo\x07" "bs\n******\n");
    Installation inst;
    auto fault = ReadControlConfig(inst);
    ASSERT_TRUE(fault);
    EXPECT_EQ(fault->Message(), "Control.cfg: line 3 holds a control character");
    // Ordinary 8-bit names stay names.
    std::filesystem::create_directories(dir_.Path() + "Programs/J\xf6" "bs");
    dir_.Write("Control.cfg", "./\n./Programs\nJ\xf6" "bs\n******\n");
    ASSERT_FALSE(ReadControlConfig(inst));
    EXPECT_EQ(inst.Dirs.ProgramDirName, "J\xf6" "bs");
}

TEST_F(ConfigTest, SetProgramDirSkipsSystemSubroutinesAndMissingNames) {
    dir_.Write("Control.cfg", "./\n./Programs\nJobs\n1\n******\n");
    std::filesystem::create_directories("Programs/EXSUBS");
    std::filesystem::create_directories("Programs/Jobs");
    std::filesystem::create_directories("Programs/Parts");
    Installation inst;
    ASSERT_FALSE(ReadControlConfig(inst));
    EXPECT_TRUE(SetProgramDir(inst, " parts "));
    EXPECT_EQ(inst.Dirs.ProgramDirName, "Parts");
    EXPECT_TRUE(SetProgramDir(inst, "exsubs"));
    EXPECT_EQ(inst.Dirs.ProgramDirName, "Jobs");
    EXPECT_TRUE(SetProgramDir(inst, "Nowhere"));
    EXPECT_EQ(inst.Dirs.ProgramDirName, "Jobs");
    EXPECT_TRUE(SetProgramDir(inst, ".."));
    EXPECT_EQ(inst.Dirs.ProgramDirName, "Jobs");
    EXPECT_TRUE(SetProgramDir(inst, "/proc/sys"));
    EXPECT_EQ(inst.Dirs.ProgramDirName, "/proc/sys");
    EXPECT_EQ(inst.Dirs.ProgramDirPath, "/proc/");
    auto lines = ReadLines("Control.cfg");
    ASSERT_TRUE(lines);
    EXPECT_EQ((*lines)[2], "/proc/sys");
}

TEST_F(ConfigTest, MachineDatValuesAndDerivations) {
    dir_.Write("Data/Machine.dat", MachineDat);
    MachineData m;
    ASSERT_FALSE(ReadMachineFiles(Dirs(), m));
    EXPECT_EQ(m.MachineName, "DEMO PRESS");
    EXPECT_FALSE(m.AmadaMachine);
    EXPECT_EQ(m.MachineType, 12);
    EXPECT_TRUE(m.HasTurret);
    EXPECT_EQ(m.ProfilerKind, 2);
    EXPECT_EQ(m.MachineOrientation, 1);
    EXPECT_EQ(m.StationCount, 20);
    EXPECT_TRUE(m.Line5Flag);
    EXPECT_FALSE(m.HasThirdAxis);
    EXPECT_FLOAT_EQ(m.LoadPositionY, 1250.5f);
    EXPECT_FLOAT_EQ(m.XLimitMin, -10);
    EXPECT_FLOAT_EQ(m.XLimitMax, 2540);
    EXPECT_FLOAT_EQ(m.YLimitMax, 1270);
    EXPECT_FLOAT_EQ(m.ClampWidth, 80);
    EXPECT_FLOAT_EQ(m.ClampDepth, 60);
    EXPECT_EQ(m.ClampCount, 3);
    EXPECT_FLOAT_EQ(m.PlotTableY, 1300);
    EXPECT_FALSE(m.SwapArcWords);
    EXPECT_FALSE(m.ProfilerArcSwap);
}

TEST_F(ConfigTest, TypeOneHasNoTurretAndProfilerKindOne) {
    std::string text = MachineDat;
    text.replace(text.find("type: 12"), 8, "type: 1");
    dir_.Write("Data/Machine.dat", text);
    MachineData m;
    ASSERT_FALSE(ReadMachineFiles(Dirs(), m));
    EXPECT_FALSE(m.HasTurret);
    EXPECT_EQ(m.ProfilerKind, 1);
}

TEST_F(ConfigTest, AmadaNameAndThirdAxisLineReplacesTheType) {
    std::string text = MachineDat;
    text.replace(text.find("demo press"), 10, "Amada Ara");
    text.replace(text.find("type: 12"), 8, "type: 24");
    dir_.Write("Data/Machine.dat", text);
    MachineData m;
    ASSERT_FALSE(ReadMachineFiles(Dirs(), m));
    EXPECT_TRUE(m.AmadaMachine);
    EXPECT_FALSE(m.HasThirdAxis);  // line 6 says no, whatever the type set
}

TEST_F(ConfigTest, MachineDatWithTooFewLinesOrMissingIsAFault) {
    MachineData m;
    auto fault = ReadMachineFiles(Dirs(), m);
    ASSERT_TRUE(fault);
    EXPECT_EQ(LastFile(), dir_.Path() + "Data/Machine.dat");
    dir_.Write("Data/Machine.dat", "A\n12\n1\n20\n");
    fault = ReadMachineFiles(Dirs(), m);
    ASSERT_TRUE(fault);
    EXPECT_NE(fault->Reason.find("18"), std::string::npos);
}

TEST_F(ConfigTest, MachineDatIntegerOutOfRangeIsAFault) {
    std::string text = MachineDat;
    text.replace(text.find("Stations: 20"), 12, "Stations: 99999");
    dir_.Write("Data/Machine.dat", text);
    MachineData m;
    auto fault = ReadMachineFiles(Dirs(), m);
    ASSERT_TRUE(fault);
    EXPECT_NE(fault->Reason.find("line 4"), std::string::npos);
}

TEST_F(ConfigTest, WestinghouseAndProfiler) {
    dir_.Write("Data/Machine.dat", MachineDat);
    dir_.Write("Data/Westinghouse.cfg", "Swap: yes\nCentre: n\n");
    dir_.Write("Data/Profiler.cfg", "Y\nY\n2.5\n");
    MachineData m;
    ASSERT_FALSE(ReadMachineFiles(Dirs(), m));
    EXPECT_TRUE(m.SwapArcWords);
    EXPECT_FALSE(m.ArcCentreIncremental);
    EXPECT_TRUE(m.ProfilerArcSwap);
    EXPECT_TRUE(m.ProfilerArcCentre);
    EXPECT_FLOAT_EQ(m.ProfilerValue, 2.5f);
    EXPECT_FALSE(m.ProfilerFlag);
}

TEST_F(ConfigTest, ControlCncValues) {
    CardSetup c;
    ASSERT_FALSE(ReadCardSetup(Dirs(), c));
    EXPECT_TRUE(c.CardInUse);  // no file
    EXPECT_FALSE(c.PollLogOn);
    dir_.Write("Control.cnc", "false\n");
    ReadCardSetup(Dirs(), c);
    EXPECT_FALSE(c.CardInUse);  // values are upper-cased
    EXPECT_FALSE(c.PollLogOn);
    dir_.Write("Control.cnc", "NO\ntrue\n");
    ReadCardSetup(Dirs(), c);
    EXPECT_TRUE(c.CardInUse);
    EXPECT_TRUE(c.PollLogOn);
    dir_.Write("Control.cnc", "Card: FALSE\nLog: yes\n");
    ReadCardSetup(Dirs(), c);
    EXPECT_FALSE(c.CardInUse);
    EXPECT_FALSE(c.PollLogOn);
    dir_.Write("Control.cnc", "");
    ReadCardSetup(Dirs(), c);
    EXPECT_TRUE(c.CardInUse);
    dir_.Write("Control.cnc", "******\n");
    ReadCardSetup(Dirs(), c);
    EXPECT_TRUE(c.CardInUse);
}

TEST_F(ConfigTest, PmacCfgDefaultsAndCorrections) {
    CardSetup c;
    ReadCardSetup(Dirs(), c);
    EXPECT_FALSE(c.SaveOnShutdown);
    EXPECT_EQ(c.SaveWaitMs, 0);
    EXPECT_EQ(c.PollIntervalMs, 50);
    EXPECT_EQ(c.PollRestartDelayMs, 50);  // raised to the interval also without a file

    dir_.Write("PMAC.cfg", "Save: Y\nWait: -5\nPoll: 4\n");
    ReadCardSetup(Dirs(), c);
    EXPECT_TRUE(c.SaveOnShutdown);
    EXPECT_EQ(c.SaveWaitMs, 0);
    EXPECT_EQ(c.PollIntervalMs, 50);

    dir_.Write("PMAC.cfg", "N\n2000\n5\n");
    ReadCardSetup(Dirs(), c);
    EXPECT_EQ(c.PollIntervalMs, 5);
    EXPECT_EQ(c.PollRestartDelayMs, 5);

    dir_.Write("PMAC.cfg", "N\n2000.5\n100\n20\n******\n");
    ReadCardSetup(Dirs(), c);
    EXPECT_EQ(c.SaveWaitMs, 2000);  // half to even
    EXPECT_EQ(c.PollIntervalMs, 100);
    EXPECT_EQ(c.PollRestartDelayMs, 100);

    dir_.Write("PMAC.cfg", "N\n0\n60\n250\n");
    ReadCardSetup(Dirs(), c);
    EXPECT_EQ(c.PollRestartDelayMs, 250);
    EXPECT_EQ(c.CardAddressLine, "");

    dir_.Write("PMAC.cfg", "N\n0\n60\n250\nCard address: 192.168.0.20:1025 \n******\n");
    ReadCardSetup(Dirs(), c);
    EXPECT_EQ(c.CardAddressLine, "Card address: 192.168.0.20:1025");
    EXPECT_EQ(c.OperationDeadlineMs, DefaultOperationDeadlineMs);
}

TEST_F(ConfigTest, PmacCfgOperationDeadline) {
    CardSetup c;
    dir_.Write("PMAC.cfg", "N\n0\n60\n250\nCard: 127.0.0.1\nDeadline: 5000\n******\n");
    ASSERT_FALSE(ReadCardSetup(Dirs(), c));
    EXPECT_EQ(c.OperationDeadlineMs, 5000);
    // 0 or less is the default; a value that is no whole number of 32 bits names the line.
    dir_.Write("PMAC.cfg", "N\n0\n60\n250\nCard: 127.0.0.1\nDeadline: 0\n");
    ASSERT_FALSE(ReadCardSetup(Dirs(), c));
    EXPECT_EQ(c.OperationDeadlineMs, DefaultOperationDeadlineMs);
    dir_.Write("PMAC.cfg", "N\n0\n60\n250\nCard: 127.0.0.1\nDeadline: 1e12\n");
    auto fault = ReadCardSetup(Dirs(), c);
    ASSERT_TRUE(fault);
    EXPECT_NE(fault->Message().find("PMAC.cfg"), std::string::npos);
    EXPECT_NE(fault->Message().find("line 6"), std::string::npos);
}

TEST_F(ConfigTest, MessageTablesStopRules) {
    dir_.Write("Messages/IO.msg", "1, Door open \n2,Air pressure low\n64, Last one\n******\n");
    dir_.Write("Messages/Logic.msg", "0, Emergency stop, E1\n31,Lubrication, x, y\n******\n");
    MessageTables t;
    ASSERT_FALSE(ReadMessageTables(Dirs(), t));
    EXPECT_EQ(t.IOMessages[1], "Door open");
    EXPECT_EQ(t.IOMessages[2], "Air pressure low");
    EXPECT_EQ(t.IOMessages[64], "Last one");
    EXPECT_EQ(t.IOMessages[3], "");
    EXPECT_EQ(t.LogicMessages[0], "Emergency stop");
    EXPECT_EQ(t.LogicMessages[31], "Lubrication");
}

TEST_F(ConfigTest, LastIoMessageWithoutMarkerIsLost) {
    dir_.Write("Messages/IO.msg", "1, Door open\n2, Air pressure low\n");
    dir_.Write("Messages/Logic.msg", "0, Emergency stop, E1\n******\n");
    MessageTables t;
    ASSERT_FALSE(ReadMessageTables(Dirs(), t));
    EXPECT_EQ(t.IOMessages[1], "Door open");
    EXPECT_EQ(t.IOMessages[2], "");
}

TEST_F(ConfigTest, MessageReadingStopsAtBadLines) {
    dir_.Write("Messages/IO.msg", "1, A\n65, B\n3, C\n******\n");
    dir_.Write("Messages/Logic.msg", "0, A, x\n1, no second comma\n2, C, x\n******\n");
    MessageTables t;
    ASSERT_FALSE(ReadMessageTables(Dirs(), t));
    EXPECT_EQ(t.IOMessages[1], "A");
    EXPECT_EQ(t.IOMessages[3], "");
    EXPECT_EQ(t.LogicMessages[0], "A");
    EXPECT_EQ(t.LogicMessages[2], "");
    dir_.Write("Messages/IO.msg", "1, A\n\n3, C\n******\n");
    ReadMessageTables(Dirs(), t);
    EXPECT_EQ(t.IOMessages[3], "");
    dir_.Write("Messages/IO.msg", "1.5, A\n2.5, B\nno comma\n******\n");
    ReadMessageTables(Dirs(), t);
    EXPECT_EQ(t.IOMessages[2], "B");  // 1.5 and 2.5 both round to 2
    EXPECT_EQ(t.IOMessages[1], "");
}

TEST_F(ConfigTest, MissingMessageFilesAreFaults) {
    MessageTables t;
    auto fault = ReadMessageTables(Dirs(), t);
    ASSERT_TRUE(fault);
    EXPECT_EQ(fault->File, dir_.Path() + "Messages/IO.msg");
    dir_.Write("Messages/IO.msg", "******\n");
    fault = ReadMessageTables(Dirs(), t);
    ASSERT_TRUE(fault);
    EXPECT_EQ(fault->File, dir_.Path() + "Messages/Logic.msg");
    EXPECT_EQ(LastFile(), dir_.Path() + "Messages/Logic.msg");
}

TEST_F(ConfigTest, ServiceProgram) {
    EXPECT_EQ(ReadServiceProgram(Dirs()), "");
    dir_.Write("Service.cfg", "******\n");
    EXPECT_EQ(ReadServiceProgram(Dirs()), "");
    dir_.Write("Service.cfg", dir_.Path() + "missing-tool\n");
    EXPECT_EQ(ReadServiceProgram(Dirs()), "");
    dir_.Write("Service.cfg", " " + dir_.Path() + "Control.cnc \n");
    dir_.Write("Control.cnc", "TRUE\n");
    EXPECT_EQ(ReadServiceProgram(Dirs()), dir_.Path() + "Control.cnc");
}

TEST_F(ConfigTest, BinaryBytesAreReadByTheRules) {
    dir_.Write("Data/Machine.dat", std::string("\x00\xff\r\n", 4) + std::string(18, '\n'));
    MachineData m;
    EXPECT_FALSE(ReadMachineFiles(Dirs(), m));
    EXPECT_EQ(m.MachineType, 0);
}

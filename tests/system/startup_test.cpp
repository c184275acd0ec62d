#include "system/startup.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "core/paths.h"
#include "system/slots.h"
#include "tests/core/temp_dir.h"
#include "tests/support/demo_installation.h"
#include "tests/support/fake_card.h"

using namespace kirvana;

namespace {

struct FakePlatform : StartupPlatform {
    std::vector<std::string> Events;
    int SplashTicksNeeded = 0;  // passes of the event queue before the splash time is out
    int EventPasses = 0;
    bool AnswerYes = false;
    bool FrontEnd = false;
    std::vector<std::string> Questions;

    void ShowSplash(const std::string& title, const std::string& version) override {
        Events.push_back("Splash " + title + " " + version);
    }
    bool SplashDone() override { return EventPasses > SplashTicksNeeded; }
    void StopSplashTimer() override { Events.push_back("StopSplashTimer"); }
    void ProcessEvents() override { ++EventPasses; }
    void ShowMessageBox(const std::string& text, const std::string& title) override {
        Events.push_back("MessageBox " + text + " / " + title);
    }
    void ShowWarning(const std::string& text) override { Events.push_back("Warning " + text); }
    bool AskOperator(const std::string& text) override {
        Questions.push_back(text);
        return AnswerYes;
    }
    void ShowFrontEnd() override {
        FrontEnd = true;
        Events.push_back("ShowFrontEnd");
    }
    bool FrontEndVisible() override { return FrontEnd; }
    void UnloadFrontEnd() override {
        FrontEnd = false;
        Events.push_back("UnloadFrontEnd");
    }
    void SetFormsLocked(bool lock, const std::string&) override { Events.push_back(lock ? "Lock" : "Unlock"); }
    void SetPollTimer(bool enabled, int ms) override {
        Events.push_back(enabled ? "PollTimer " + std::to_string(ms) : "PollTimerOff");
    }
    void WaitForTick(int ms) override { Events.push_back("Wait " + std::to_string(ms)); }
    void StartProgram(const std::string& path) override { Events.push_back("Start " + path); }
    void PowerOff() override { Events.push_back("PowerOff"); }
    void EndProcess() override { Events.push_back("End"); }

    bool Saw(const std::string& e) const { return std::find(Events.begin(), Events.end(), e) != Events.end(); }
};

// A copy of the demo installation as the current directory of the process.
class StartupTest : public ::testing::Test {
protected:
    void CardOn() { dir_.Write("Control.cnc", "Card in use: TRUE\nPoll log: FALSE\n******\n"); }

    DemoInstallation dir_;
    Process process_;
    FakePlatform platform_;
    FakeCardLink link_;
    StartupSteps steps_;
};

}  // namespace

TEST_F(StartupTest, OfficeSeatStartsInFullAndSendsNothing) {
    // The poll log is on, yet nothing may reach the card or the log.
    dir_.Write("Control.cnc", "Card in use: FALSE\nPoll log: TRUE\n******\n");
    dir_.Write("Data/axes.prm", "I100=1\n");
    dir_.Write("Control.cfg", "./\n./Programs\nDorvenis\n");
    StartOutcome outcome = Main(process_, platform_, &link_, steps_);
    ASSERT_EQ(outcome.Result, StartOutcome::Kind::Started) << outcome.Fault.Message();
    EXPECT_EQ(outcome.ExitCode(), 0);
    EXPECT_TRUE(link_.Sent.empty());
    EXPECT_TRUE(link_.Calls.empty());
    EXPECT_FALSE(FileExists("Service/Polling.txt"));
    for (double scale : process_.AxisScale) EXPECT_EQ(scale, 1.0);
    EXPECT_FLOAT_EQ(process_.Config.Machine.Travel.LoadPositionX, 0);
    EXPECT_FLOAT_EQ(process_.Config.Machine.Travel.LoadPositionY, 1250);
    for (const char* d :
         {"PMAC", "Messages/Help", "Data", "Settings", "Service", "RevSubs", "Tools", "Dialogue/Reverse"})
        EXPECT_TRUE(IsDirectory(d)) << d;
    auto cfg = ReadLines("Control.cfg");
    ASSERT_TRUE(cfg);
    EXPECT_EQ(*cfg, (std::vector<std::string>{"./", "./Programs/", "Dorvenis", "1", "******"}));
    EXPECT_EQ(process_.Config.Dirs.ProgramDirPath, "./Programs/Dorvenis/");
    EXPECT_TRUE(platform_.FrontEnd);
    EXPECT_EQ(platform_.Events.front(), "Splash Kirvana 32 Version 1.3");
    EXPECT_EQ(platform_.Events.back(), "ShowFrontEnd");
    EXPECT_TRUE(process_.Card.ReportCardErrors);
    EXPECT_TRUE(process_.PlasmaBlockAllowed);
    EXPECT_FALSE(process_.Card.PollRunning);
}

TEST_F(StartupTest, CardTrafficAtStartInOrder) {
    CardOn();
    dir_.Write("Data/b.prm", "I2=1\n");
    dir_.Write("Data/A.PRM", "I1=1\n");
    link_.Answers = {{"#1->", "2000X"}, {"#2->", "0"},   {"#3->", ""},
                     {"#4->", "-1.5Y"}, {"Q10", "12.5"}, {"Q11", "1234.25"}};
    ASSERT_EQ(Main(process_, platform_, &link_, steps_).Result, StartOutcome::Kind::Started);
    EXPECT_EQ(link_.Calls, (std::vector<std::string>{"Prepare", "Enable"}));
    // Files, queries, then the (empty) active slot's blocks: slot, load Y, station 1 of the
    // turret with its speed, the profiler and its plasma block, the batch; the slot again, and
    // the front end is up.
    std::vector<std::string> expected = {"FILE ./Data/A.PRM",
                                         "FILE ./Data/b.prm",
                                         "#1->",
                                         "#2->",
                                         "#3->",
                                         "#4->",
                                         "Q10",
                                         "Q11",
                                         "M811=1",
                                         "Q11=1234.25",
                                         "M867=1",
                                         "Q49=1",
                                         "M844=0",
                                         "M845=0",
                                         "M846=0",
                                         "Q19=100",
                                         "Q18=100",
                                         "Q20=0",
                                         "Q21=0",
                                         "Q22=0",
                                         "Q23=0",
                                         "%100",
                                         "M848=250",
                                         "M849=-180",
                                         "M850=0"};
    for (int p = 101; p <= 110; ++p) expected.push_back("P" + std::to_string(p) + "=-999");
    for (int m = 863; m <= 866; ++m) expected.push_back("M" + std::to_string(m) + "=0");
    expected.push_back("M811=1");
    expected.push_back("P1021=P1021|1");
    EXPECT_EQ(link_.Sent, expected);
    // A scale of 0 or an empty answer is 1, never 0.
    EXPECT_EQ(process_.AxisScale[0], 2000);
    EXPECT_EQ(process_.AxisScale[1], 1);
    EXPECT_EQ(process_.AxisScale[2], 1);
    EXPECT_EQ(process_.AxisScale[3], -1.5);
    EXPECT_FLOAT_EQ(process_.Config.Machine.Travel.LoadPositionX, 12.5f);
    EXPECT_FLOAT_EQ(process_.Config.Machine.Travel.LoadPositionY, 1234.25f);
}

TEST_F(StartupTest, EmptyDataDirectoryDownloadsNothingAndGoesOn) {
    CardOn();
    for (const auto& e : std::filesystem::directory_iterator("Data"))
        if (e.path().extension() == ".prm") std::filesystem::remove(e.path());
    ASSERT_EQ(Main(process_, platform_, &link_, steps_).Result, StartOutcome::Kind::Started);
    EXPECT_EQ(link_.Sent.front(), "#1->");
}

TEST_F(StartupTest, SplashWaitsOutItsTimeButNoLonger) {
    platform_.SplashTicksNeeded = 25;
    ASSERT_EQ(Main(process_, platform_, &link_, steps_).Result, StartOutcome::Kind::Started);
    EXPECT_EQ(platform_.EventPasses, 26);
    // A start slower than the splash time: one pass to paint the splash, no further waiting.
    FakePlatform slow;
    slow.SplashTicksNeeded = 0;
    Process again;
    ASSERT_EQ(Main(again, slow, &link_, steps_).Result, StartOutcome::Kind::Started);
    EXPECT_EQ(slow.EventPasses, 1);
}

TEST_F(StartupTest, OneRetryAfterInitialisationFailure) {
    CardOn();
    link_.EnableFailures = 1;
    ASSERT_EQ(Main(process_, platform_, &link_, steps_).Result, StartOutcome::Kind::Started);
    EXPECT_EQ(link_.Calls, (std::vector<std::string>{"Prepare", "Enable", "Reset", "Select", "Enable"}));
    EXPECT_TRUE(platform_.Saw("MessageBox Initialisation Failure ! / Kirvana 32"));
}

TEST_F(StartupTest, SecondFailureEndsSilently) {
    CardOn();
    link_.EnableFailures = 2;
    StartOutcome outcome = Main(process_, platform_, &link_, steps_);
    EXPECT_EQ(outcome.Result, StartOutcome::Kind::CardNotOpened);
    EXPECT_NE(outcome.ExitCode(), 0);
    EXPECT_EQ(std::count_if(platform_.Events.begin(), platform_.Events.end(),
                            [](const std::string& e) { return e.starts_with("MessageBox"); }),
              1);
    EXPECT_TRUE(link_.Sent.empty());
    EXPECT_FALSE(platform_.FrontEnd);
}

TEST_F(StartupTest, NoLinkAtAllCountsAsACardThatDoesNotOpen) {
    CardOn();
    EXPECT_EQ(Main(process_, platform_, nullptr, steps_).Result, StartOutcome::Kind::CardNotOpened);
}

TEST_F(StartupTest, MissingRequiredFilesEndTheStartNamingTheFile) {
    for (const char* file :
         {"Data/Machine.dat", "Data/Machine.stn", "Messages/IO.msg", "Messages/Logic.msg", "Data/Control.cms"}) {
        std::filesystem::copy_file(file, std::string(file) + ".keep");
        std::filesystem::remove(file);
        Process p;
        StartOutcome outcome = Main(p, platform_, &link_, steps_);
        EXPECT_EQ(outcome.Result, StartOutcome::Kind::ConfigurationFault) << file;
        EXPECT_EQ(outcome.ExitCode(), 3);
        EXPECT_EQ(outcome.Fault.File, std::string("./") + file);
        EXPECT_EQ(ReadLines("Service/LastFile.txt").value_or(std::vector<std::string>{"?"}).front(),
                  std::string("./") + file);
        std::filesystem::rename(std::string(file) + ".keep", file);
    }
    std::filesystem::remove("Control.cfg");
    StartOutcome outcome = Main(process_, platform_, &link_, steps_);
    EXPECT_EQ(outcome.Fault.File, "Control.cfg");
    EXPECT_EQ(ReadLines("Service/LastFile.txt")->front(), "Control.cfg");
}

TEST_F(StartupTest, OtherSubsystemsStepsRunInTheirPlaces) {
    std::vector<std::string> order;
    auto record = [&](const char* name) { return [&order, name](Process&) { order.push_back(name); }; };
    steps_.ReadColours = record("colours");
    steps_.ReadPlotConfig = record("plot");
    steps_.ReadDialogueProgram = record("dialogue");
    steps_.ReadSerialSettings = record("serial");
    steps_.PrepareReceiveFiles = record("receive");
    ASSERT_EQ(Main(process_, platform_, &link_, steps_).Result, StartOutcome::Kind::Started);
    EXPECT_EQ(order, (std::vector<std::string>{"colours", "plot", "dialogue", "serial", "receive"}));
}

TEST_F(StartupTest, ShutdownSavesWithoutWaitWhenWaitIsZero) {
    CardOn();
    dir_.Write("PMAC.cfg", "Save: Y\nWait: 0\n******\n");
    ASSERT_EQ(Main(process_, platform_, &link_, steps_).Result, StartOutcome::Kind::Started);
    link_.Sent.clear();
    process_.Card.PollRunning = true;
    Shutdown(process_, platform_, &link_, steps_, false);
    EXPECT_EQ(link_.Sent, (std::vector<std::string>{"P1021=P1021-1", "save"}));
    for (const auto& e : platform_.Events) EXPECT_FALSE(e.starts_with("Wait")) << e;
    EXPECT_FALSE(link_.Enabled());
    EXPECT_TRUE(process_.ShuttingDown);
    EXPECT_FALSE(process_.Card.PollRunning);
    EXPECT_TRUE(platform_.Saw("UnloadFrontEnd"));
    EXPECT_FALSE(platform_.Saw("PowerOff"));
    EXPECT_EQ(platform_.Events.back(), "End");
}

TEST_F(StartupTest, ShutdownWaitsAfterSaveAndPowersOff) {
    CardOn();
    ASSERT_EQ(Main(process_, platform_, &link_, steps_).Result, StartOutcome::Kind::Started);
    Shutdown(process_, platform_, &link_, steps_, true);
    EXPECT_TRUE(platform_.Saw("Wait 2000"));
    ASSERT_GE(platform_.Events.size(), 2u);
    EXPECT_EQ(platform_.Events[platform_.Events.size() - 2], "PowerOff");
}

TEST_F(StartupTest, ShutdownOfTheOfficeSeatSendsNothing) {
    ASSERT_EQ(Main(process_, platform_, &link_, steps_).Result, StartOutcome::Kind::Started);
    Shutdown(process_, platform_, &link_, steps_, false);
    EXPECT_TRUE(link_.Sent.empty());
    EXPECT_FALSE(platform_.Saw("Wait 2000"));
}

TEST_F(StartupTest, ShutdownKeepsTheBatchTheCardCountedInTheSlotsBtc) {
    CardOn();
    ASSERT_EQ(Main(process_, platform_, &link_, steps_).Result, StartOutcome::Kind::Started);
    process_.Config.ActiveSlot = 1;
    process_.Slots[0].Present = true;
    process_.Slots[0].Batch = {5, 100, 40, 10, 30};
    link_.Answers["M863 M864 M865 M866"] = "5\n100\n52\n12\n";
    link_.Sent.clear();
    Shutdown(process_, platform_, &link_, steps_, false);
    ASSERT_FALSE(link_.Sent.empty());
    EXPECT_EQ(link_.Sent.front(), "M863 M864 M865 M866");
    // The fifth value is the parts left: M865 less M866.
    EXPECT_EQ(ReadSlotBatch(process_.Config.Dirs, 1), (SlotBatch{5, 100, 52, 12, 40}));
    EXPECT_EQ(process_.Slots[0].Batch, (SlotBatch{5, 100, 52, 12, 40}));
}

TEST_F(StartupTest, ShutdownOfTheOfficeSeatKeepsTheSlotsBatch) {
    ASSERT_EQ(Main(process_, platform_, &link_, steps_).Result, StartOutcome::Kind::Started);
    process_.Config.ActiveSlot = 2;
    process_.Slots[1].Present = true;
    process_.Slots[1].Batch = {5, 100, 40, 10, 30};
    Shutdown(process_, platform_, &link_, steps_, false);
    EXPECT_TRUE(link_.Sent.empty());
    EXPECT_EQ(ReadSlotBatch(process_.Config.Dirs, 2), (SlotBatch{5, 100, 40, 10, 30}));
}

TEST_F(StartupTest, ShutdownWithoutAnActiveProgramWritesNoBatch) {
    CardOn();
    ASSERT_EQ(Main(process_, platform_, &link_, steps_).Result, StartOutcome::Kind::Started);
    process_.Slots[0].Present = process_.Slots[1].Present = false;
    link_.Sent.clear();
    Shutdown(process_, platform_, &link_, steps_, false);
    EXPECT_FALSE(FileExists(SlotFile(process_.Config.Dirs, 1, "btc")));
    EXPECT_FALSE(FileExists(SlotFile(process_.Config.Dirs, 2, "btc")));
    for (const std::string& sent : link_.Sent) EXPECT_EQ(sent.find("M863"), std::string::npos) << sent;
}

TEST(BatchOfCounters, TheFifthValueIsThePartsLeftWhileABatchIsSet) {
    EXPECT_EQ(BatchOfCounters({1, 10, 8, 3}), (SlotBatch{1, 10, 8, 3, 5}));
    EXPECT_EQ(BatchOfCounters({1, 0, 8, 3}), (SlotBatch{1, 0, 8, 3, 0}));
    EXPECT_EQ(BatchOfCounters({1, 10, 0, 3}), (SlotBatch{1, 10, 0, 3, 0}));
}

TEST_F(StartupTest, ShutdownStepsInOrder) {
    std::vector<std::string> order;
    auto record = [&](const char* name) { return [&order, name](Process&) { order.push_back(name); }; };
    steps_.CloseSerialPort = record("serial");
    steps_.CloseReceiveFile = record("receive");
    steps_.CloseDrawingChannels = record("drawing");
    ASSERT_EQ(Main(process_, platform_, &link_, steps_).Result, StartOutcome::Kind::Started);
    Shutdown(process_, platform_, &link_, steps_, false);
    EXPECT_EQ(order, (std::vector<std::string>{"serial", "receive", "drawing"}));
}

TEST_F(StartupTest, ServiceExitWithAMissingProgramStartsNothing) {
    CardOn();
    ASSERT_EQ(Main(process_, platform_, &link_, steps_).Result, StartOutcome::Kind::Started);
    dir_.Write("Service.cfg", dir_.Path() + "no-such-tool\n");
    link_.Sent.clear();
    ShutdownForService(process_, platform_, &link_, steps_);
    EXPECT_TRUE(link_.Sent.empty());  // neither goodbye nor save
    EXPECT_FALSE(link_.Enabled());
    for (const auto& e : platform_.Events) {
        EXPECT_FALSE(e.starts_with("Start ")) << e;
        EXPECT_NE(e, "PowerOff");
    }
    EXPECT_EQ(platform_.Events.back(), "End");
}

TEST_F(StartupTest, ServiceExitStartsTheNamedProgram) {
    ASSERT_EQ(Main(process_, platform_, &link_, steps_).Result, StartOutcome::Kind::Started);
    dir_.Write("tools/service.sh", "#!/bin/sh\n");
    dir_.Write("Service.cfg", " " + dir_.Path() + "tools/service.sh \n");
    ShutdownForService(process_, platform_, &link_, steps_);
    EXPECT_TRUE(platform_.Saw("Start " + dir_.Path() + "tools/service.sh"));
    EXPECT_FALSE(platform_.Saw("PowerOff"));
}

TEST_F(StartupTest, CardFaultAsksAndEndsForServiceOnYes) {
    CardOn();
    ASSERT_EQ(Main(process_, platform_, &link_, steps_).Result, StartOutcome::Kind::Started);
    process_.Card.LastCommand = "Q10";
    link_.SetFaultHandler(
        [&](std::int32_t n, const std::string& d) { HandleCardFault(process_, platform_, &link_, steps_, n, d); });
    link_.Fault(3, "ERR003: bad command");
    ASSERT_EQ(platform_.Questions.size(), 1u);
    EXPECT_EQ(platform_.Questions[0],
              "An error occurred while talking to PMAC !\n\nError Number :  3\nERR003: bad command\n"
              "Last Communication :  Q10\n\nShutdown Kirvana ?");
    EXPECT_EQ(process_.Card.LastCommand, "");
    EXPECT_FALSE(platform_.Saw("End"));

    platform_.AnswerYes = true;
    link_.Sent.clear();
    link_.Fault(1, "timeout");
    EXPECT_TRUE(platform_.Saw("End"));
    EXPECT_TRUE(link_.Sent.empty());  // the card is not trusted: no goodbye, no save
}

TEST_F(StartupTest, CardFaultNotReportedWhileReportsAreOff) {
    process_.Card.ReportCardErrors = false;
    process_.Card.LastCommand = "PC";
    HandleCardFault(process_, platform_, &link_, steps_, 5, "x");
    EXPECT_TRUE(platform_.Questions.empty());
    EXPECT_EQ(process_.Card.LastCommand, "");
}

TEST_F(StartupTest, TurretTablesAreReadWithTheMachine) {
    ASSERT_EQ(Main(process_, platform_, &link_, steps_).Result, StartOutcome::Kind::Started);
    EXPECT_EQ(process_.Tools.MachineTable.size(), 20u);
    EXPECT_EQ(process_.Tools.SlotTables[0].size(), 20u);
}

TEST_F(StartupTest, SummaryNamesTheMachine) {
    ASSERT_EQ(Main(process_, platform_, &link_, steps_).Result, StartOutcome::Kind::Started);
    std::string summary = MachineSummary(process_);
    EXPECT_NE(summary.find("Machine: KIRVANA TP-1250 PLASMA"), std::string::npos);
    EXPECT_NE(summary.find("Type: 12 (turret, plasma profiler kind 2)"), std::string::npos);
    EXPECT_NE(summary.find("Travel X: -25.00 to 2540.00"), std::string::npos);
    EXPECT_NE(summary.find("Card in use: no (office seat)"), std::string::npos);
    EXPECT_NE(summary.find("Slot 1: empty\nSlot 2: empty\n"), std::string::npos);
    EXPECT_NE(summary.find("Poll interval: 50 ms"), std::string::npos);
}

#include "controller/conversation.h"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "core/paths.h"
#include "tests/core/temp_dir.h"
#include "tests/support/fake_card.h"

using namespace kirvana;

namespace {
struct ConversationTest : ::testing::Test {
    TempDir dir;
    FakeCardLink link;
    CardState state;
    Conversation talk{&link, state, dir.Path()};
    ConversationTest() { state.CardInUse = true; }
    std::vector<std::string> Log() {
        return ReadLines(dir.Path() + "Polling.txt").value_or(std::vector<std::string>{});
    }
};
}  // namespace

TEST_F(ConversationTest, CardNotInUseIsInert) {
    state.CardInUse = false;
    state.PollLogOn = true;
    state.LastCommand = "before";
    link.Answers["Q10"] = "5";
    talk.Download("M811=1");
    EXPECT_EQ(talk.GetRspnsInt("Q10"), 0);
    EXPECT_FALSE(talk.GetRspnsBln("Q10"));
    EXPECT_EQ(talk.GetRspnsLng("Q10"), 0);
    EXPECT_EQ(talk.GetRspnsSngl("Q10", 2), 0);
    EXPECT_EQ(talk.GetRspnsTxt("Q10"), "");
    talk.DownSystem(dir.Path(), "a.prm");
    EXPECT_TRUE(link.Sent.empty());
    EXPECT_EQ(state.LastCommand, "before");
    EXPECT_FALSE(FileExists(dir.Path() + "Polling.txt"));
}

TEST_F(ConversationTest, LongCommandIsCutTo120AndLoggedCut) {
    state.PollLogOn = true;
    std::string text(130, 'A');
    talk.Download("  " + text + "  ");
    ASSERT_EQ(link.Sent.size(), 1u);
    EXPECT_EQ(link.Sent[0], std::string(120, 'A'));
    EXPECT_EQ(state.LastCommand, std::string(120, 'A'));
    auto log = Log();
    ASSERT_EQ(log.size(), 5u);
    EXPECT_EQ(log[0], "*** Download ***");
    EXPECT_EQ(log[1], "Query   :" + std::string(120, 'A'));
    EXPECT_EQ(log[2], "Response:");
    EXPECT_EQ(log[3], "Status  :-1");
    EXPECT_EQ(log[4], "");
}

TEST_F(ConversationTest, QueriesAreNotCut) {
    std::string query(130, 'Q');
    talk.GetRspnsTxt(query);
    EXPECT_EQ(link.Sent[0].size(), 130u);
}

TEST_F(ConversationTest, SingleRoundsHalfToEven) {
    link.Answers["Q17"] = "1.235";
    EXPECT_FLOAT_EQ(talk.GetRspnsSngl("Q17", 2), 1.24f);
    link.Answers["Q17"] = "1.225";
    EXPECT_FLOAT_EQ(talk.GetRspnsSngl("Q17", 2), 1.22f);
    EXPECT_FLOAT_EQ(talk.GetRspnsSngl("Q17", -1), 1.225f);
}

TEST_F(ConversationTest, BooleanTruncatesFirst) {
    link.Answers["M1"] = "0.5";
    EXPECT_FALSE(talk.GetRspnsBln("M1"));
    link.Answers["M1"] = "-1";
    EXPECT_TRUE(talk.GetRspnsBln("M1"));
}

TEST_F(ConversationTest, IntegersAndText) {
    link.Answers["P1"] = " -7.9 \r";
    EXPECT_EQ(talk.GetRspnsInt("P1"), -7);
    link.Answers["P2"] = "70000.5";
    EXPECT_EQ(talk.GetRspnsLng("P2"), 70000);
    EXPECT_EQ(talk.GetRspnsInt("P2"), 0);  // does not fit 16 bits
    link.Answers["#1->"] = " 2000X ";
    EXPECT_EQ(talk.GetRspnsTxt(" #1-> "), "2000X");
    EXPECT_EQ(state.LastCommand, "#1->");
}

TEST_F(ConversationTest, FailedExchangeGivesEmptyAnswerAndLogsStatusZero) {
    state.PollLogOn = true;
    link.ExchangeSucceeds = false;
    link.Answers["Q1"] = "5";
    EXPECT_EQ(talk.GetRspnsInt("Q1"), 0);
    auto log = Log();
    ASSERT_EQ(log.size(), 5u);
    EXPECT_EQ(log[0], "*** GetRspnsInt ***");
    EXPECT_EQ(log[3], "Status  :0");
}

TEST_F(ConversationTest, DownSystemLogsTheName) {
    state.PollLogOn = true;
    talk.DownSystem(" /data/ ", " axes.prm ");
    ASSERT_EQ(link.Sent.size(), 1u);
    EXPECT_EQ(link.Sent[0], "FILE /data/axes.prm");
    auto log = Log();
    EXPECT_EQ(log[0], "*** DownSystem ***");
    EXPECT_EQ(log[1], "Query   :axes.prm");
}

namespace {
struct RecordingPlatform : ControllerPlatform {
    std::vector<std::string> Events;
    void SetFormsLocked(bool lock, const std::string& except) override {
        Events.push_back((lock ? "Lock " : "Unlock ") + except);
    }
    void SetPollTimer(bool enabled, int ms) override {
        Events.push_back(enabled ? "Poll " + std::to_string(ms) : "PollOff");
    }
    void WaitForTick(int ms) override { Events.push_back("Tick " + std::to_string(ms)); }
};
}  // namespace

TEST_F(ConversationTest, WaitMsLocksStopsWaitsAndRestartsOnlyARunningPoll) {
    RecordingPlatform platform;
    Conversation withPlatform(&link, state, dir.Path(), &platform);
    state.PollRestartDelayMs = 250;
    withPlatform.WaitMs(0);
    EXPECT_TRUE(platform.Events.empty());
    withPlatform.WaitMs(100);
    EXPECT_EQ(platform.Events,
              (std::vector<std::string>{"Lock LockAllForms", "PollOff", "Tick 100", "Unlock LockAllForms"}));
    EXPECT_FALSE(state.FormsLocked);
    platform.Events.clear();
    state.PollRunning = true;
    withPlatform.WaitMs(5);
    EXPECT_EQ(platform.Events, (std::vector<std::string>{"Lock LockAllForms", "PollOff", "Tick 5",
                                                         "Unlock LockAllForms", "PollOff", "Poll 250"}));
    EXPECT_TRUE(state.PollRunning);
}

TEST_F(ConversationTest, PollTimerStartAndStop) {
    RecordingPlatform platform;
    Conversation withPlatform(&link, state, dir.Path(), &platform);
    state.PollRestartDelayMs = 80;
    withPlatform.StartPollTimer(true);
    EXPECT_TRUE(state.PollRunning);
    EXPECT_EQ(platform.Events.back(), "Poll 80");
    withPlatform.StopPollTimer(false);
    EXPECT_TRUE(state.PollRunning);
    EXPECT_EQ(platform.Events.back(), "PollOff");
    withPlatform.StopPollTimer(true);
    EXPECT_FALSE(state.PollRunning);
}

TEST_F(ConversationTest, PollingLogRollsOverAboveFiftyMillionBytes) {
    state.PollLogOn = true;
    const std::string log = dir.Path() + "Polling.txt";
    std::ofstream(log).close();
    std::filesystem::resize_file(log, 50000000);
    talk.RollPollingLog();
    EXPECT_TRUE(FileExists(log));
    EXPECT_FALSE(FileExists(dir.Path() + "Polling.bak"));
    std::filesystem::resize_file(log, 50000001);
    talk.RollPollingLog();
    EXPECT_FALSE(FileExists(log));
    EXPECT_EQ(std::filesystem::file_size(dir.Path() + "Polling.bak"), 50000001u);
    // The log starts anew with the next exchange.
    talk.Download("M811=1");
    EXPECT_EQ(Log().size(), 5u);
    EXPECT_EQ(Log().front(), "*** Download ***");
}

TEST_F(ConversationTest, BatchOfQueriesInOneExchange) {
    state.PollLogOn = true;
    link.Answers["P1022 #1P M869"] = "16384\r1250.5\r42\r";
    auto answers = talk.GetRspnsBatch({"P1022", " #1P ", "M869"});
    EXPECT_EQ(link.Sent, (std::vector<std::string>{"P1022 #1P M869"}));
    EXPECT_EQ(answers, (std::vector<std::string>{"16384", "1250.5", "42"}));
    EXPECT_EQ(state.LastCommand, "M869");
    auto log = Log();
    ASSERT_EQ(log.size(), 15u);
    EXPECT_EQ(log[1], "Query   :P1022");
    EXPECT_EQ(log[6], "Query   :#1P");
    EXPECT_EQ(log[7], "Response:1250.5");
}

TEST_F(ConversationTest, BatchWithMissingAnswersReadsEmpty) {
    link.Answers["A B C"] = "1\r";
    EXPECT_EQ(talk.GetRspnsBatch({"A", "B", "C"}), (std::vector<std::string>{"1", "", ""}));
    state.CardInUse = false;
    EXPECT_EQ(talk.GetRspnsBatch({"A"}), (std::vector<std::string>{""}));
}

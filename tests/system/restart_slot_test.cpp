// The restart of a slot on the card: the interlock, the restart point from the slot's files,
// the restart program downloaded, and the wait for the cycle start with what it sends.
#include "system/restart_slot.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "controller/conversation.h"
#include "core/paths.h"
#include "system/slots.h"
#include "system/startup.h"
#include "tests/analysis/reverse_settings.h"
#include "tests/core/temp_dir.h"
#include "tests/support/restart_slot_fixture.h"

namespace kirvana {
namespace {

struct RestartSlotTest : RestartSlotFixture {
    void Select(const std::string& m1) { Reverse(m1); }
};

TEST_F(RestartSlotTest, RefusedWhileRunningOrInError) {
    const std::string words = "Can Not Restart\n\nWhile Machine Is Running or In Error !";
    EXPECT_FALSE(RestartInterlock(p).has_value());
    p.Poll.LastLogicBits = 16;
    EXPECT_FALSE(RestartInterlock(p).has_value());
    p.Poll.LastLogicBits = 4;
    EXPECT_EQ(RestartInterlock(p).value_or(""), words);
    p.Poll.LastLogicBits = 0;
    p.Running = true;
    EXPECT_EQ(RestartInterlock(p).value_or(""), words);
    RestartPoint point;
    EXPECT_EQ(FindSlotRestart(p, 1, 2, 1, point), words);
    EXPECT_EQ(BlockSlotRestart(p, 1, 1, point), words);
    EXPECT_EQ(point.Kind, RestartKind::None);
    EXPECT_TRUE(card.Sent.empty());
}

TEST_F(RestartSlotTest, RestartProgramOfASlotDownloaded) {
    Select("N0001 G90 T1\nN0002 G81 X100 Y100\nN0003 G26 X200 Y100 P1=5 P2=10 P5=0\nN0004 G81 X300 Y300\n");
    RestartPoint point;
    ASSERT_EQ(FindSlotRestart(p, 1, 3, 4, point), "");
    std::vector<std::string> lines = SlotRestartProgram(p, 1, point, false);
    ASSERT_GE(lines.size(), 8u);
    EXPECT_EQ(lines[6], "G80 X230 Y100 C0 T1");
    EXPECT_EQ(lines[7], "P1=2 P5=0 P7=10 P2=-999 P3=-999 P4=-999 P6=-999 P8=-999 P9=1 P10=0 P11=0 G26 X230 Y100");
    ASSERT_TRUE(DownRestartProgram(talk, p.Config.Dirs.RootDir, lines));
    auto written = ReadLines(dir.Path() + "DownPrg.tmp");
    ASSERT_TRUE(written.has_value());
    EXPECT_EQ(*written, lines);
    EXPECT_EQ(card.Sent, std::vector<std::string>{"FILE " + dir.Path() + "DownPrg.tmp"});
}

TEST_F(RestartSlotTest, NothingSentWithTheCardSwitchedOff) {
    p.Card.CardInUse = false;
    ASSERT_TRUE(DownRestartProgram(talk, p.Config.Dirs.RootDir, {"CLOSE"}));
    EXPECT_TRUE(card.Sent.empty());
}

TEST_F(RestartSlotTest, GetGoingSendsTheHitsSlotFiveThenTheRunCommand) {
    RestartPoint point;
    point.Record.TargetState.Hits = 3;
    point.Record.TargetState.BlockNo = 123;
    point.Record.BlockState.BlockNo = 123;
    card.Answers["P1022"] = "8192";
    std::vector<bool> blinks;
    GetGoingHooks hooks;
    hooks.Blink = [&](bool lit) { blinks.push_back(lit); };
    EXPECT_TRUE(GetGoing(talk, p, 1, point, hooks));
    EXPECT_EQ(card.Sent, (std::vector<std::string>{"M869=3", "M811=5", "P1022", "M811=1", "B1.00123R"}));
    EXPECT_EQ(blinks, (std::vector<bool>{true, false}));
    EXPECT_EQ(ReadFileText(dir.Path() + "Restart.txt").substr(0, 17), "PROGRAM   :  PROG");
    EXPECT_NE(ReadFileText(dir.Path() + "Restart.txt").find("BLOCK     :  123\n"), std::string::npos);
}

TEST_F(RestartSlotTest, GetGoingLeftByTheOperatorGivesTheSlotBack) {
    RestartPoint point;
    card.Answers["P1022"] = "0";
    int asked = 0;
    GetGoingHooks hooks;
    hooks.ExitRequested = [&] { return ++asked > 3; };
    EXPECT_FALSE(GetGoing(talk, p, 1, point, hooks));
    EXPECT_EQ(std::count(card.Sent.begin(), card.Sent.end(), "P1022"), 3);
    EXPECT_EQ(card.Sent.back(), "M811=1");
    EXPECT_EQ(std::count_if(card.Sent.begin(), card.Sent.end(), [](const std::string& s) { return s[0] == 'B'; }), 0);
}

}  // namespace
}  // namespace kirvana

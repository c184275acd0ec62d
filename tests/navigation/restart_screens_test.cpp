// The restart screens' logic on a slot built in a temporary folder: the block list and its
// faults, what RestartForm shows, and the activation with its question, download and wait, on a
// fake card that records what it is sent.
#include "navigation/restart_screens.h"
#include "navigation/visual_restart.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "controller/conversation.h"
#include "core/paths.h"
#include "system/slots.h"
#include "system/startup.h"
#include "tests/analysis/reverse_settings.h"
#include "tests/core/temp_dir.h"
#include "tests/support/restart_slot_fixture.h"

namespace kirvana {
namespace {

struct RestartScreensTest : RestartSlotFixture {
    std::vector<std::string> questions, refusals;
    bool answer = false;
    RestartFormHooks hooks;

    RestartScreensTest() {
        p.Config.Machine.HasTurret = true;
        hooks.Ask = [this](const std::string& text) {
            questions.push_back(text);
            return answer;
        };
        hooks.Refuse = [this](const std::string& text) { refusals.push_back(text); };
        // The machine starts at the first look at the status word.
        card.Answers["P1022"] = "8192";
    }
    // The slot's motion text (its source the same), reversed and indexed as the selection does.
    void Select(const std::string& m1) {
        const std::string stem = SlotStem(p.Config.Dirs, 1);
        dir.Write("Actvprg1.A1", m1);
        Reverse(m1);
        auto counts = BuildBlockMap(stem + "A1", stem + "M1", stem + "W1", stem + "RA1", stem + "RM1");
        ASSERT_TRUE(counts.has_value());
        p.Slots[0].Counts[0] = *counts;
        p.Slots[0].Present = true;
    }
    std::int64_t SentCount(const std::string& text) const {
        return std::count(card.Sent.begin(), card.Sent.end(), text);
    }
    bool ProgramSent() const {
        return std::any_of(card.Sent.begin(), card.Sent.end(),
                           [](const std::string& s) { return s.starts_with("FILE "); });
    }
};

const char* const Row = "N0001 G90 T1\nN0002 G81 X100 Y100\nN0003 G26 X200 Y100 P1=5 P2=10 P5=0\nN0004 G81 X300 Y300\n";

TEST_F(RestartScreensTest, BlockListGivesEveryRecordWithItsNumber) {
    Select(Row);
    std::string fault;
    const std::vector<ViewRow> rows = BlockListRows(p, 1, fault);
    EXPECT_EQ(fault, "");
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[2].Record, 3);
    EXPECT_EQ(rows[2].Source, "N0003 G26 X200 Y100 P1=5 P2=10 P5=0");
}

TEST_F(RestartScreensTest, DamagedBlockFilesAreNamedAndNothingIsSent) {
    Select(Row);
    const std::string rm1 = SlotFile(p.Config.Dirs, 1, "RM1");
    dir.Write("Actvprg1.RM1", "short");
    std::string fault;
    EXPECT_TRUE(BlockListRows(p, 1, fault).empty());
    EXPECT_EQ(fault, "Can Not Restart\n\nBlock File Damaged : " + rm1);
    RestartSession session;
    EXPECT_EQ(SelectRestartBlock(p, 1, 2, session), fault);
    EXPECT_EQ(session.Slot, 0);
    std::filesystem::remove(SlotFile(p.Config.Dirs, 1, "RA1"));
    EXPECT_EQ(SelectRestartBlock(p, 1, 2, session),
              "Can Not Restart\n\nBlock File Damaged : " + SlotFile(p.Config.Dirs, 1, "RA1"));
    EXPECT_TRUE(card.Sent.empty());
}

TEST_F(RestartScreensTest, EmptySlotAndOutOfRangePointsAreRefusedWithTheirReason) {
    RestartSession session;
    EXPECT_EQ(SelectRestartBlock(p, 1, 1, session), "Can Not Restart\n\nNo Program In Slot 1 !");
    EXPECT_EQ(SelectRestartHit(p, 1, 2, 1, session), "Can Not Restart\n\nNo Program In Slot 1 !");
    Select(Row);
    EXPECT_EQ(SelectRestartBlock(p, 1, 9, session), "Can Not Restart\n\nBlock 9 Out Of Range (1 To 4)");
    EXPECT_EQ(SelectRestartHit(p, 1, 40, 1, session), "Can Not Restart\n\nDrawing Record 40 Out Of Range (2 To 4)");
    EXPECT_EQ(SelectRestartHit(p, 1, 3, 6, session), "Can Not Restart\n\nHit 6 Is Not In The Pattern (1 To 5)");
    EXPECT_EQ(session.Slot, 0);
    EXPECT_TRUE(card.Sent.empty());
}

TEST_F(RestartScreensTest, DisplayShowsTheTargetAndTheEntryStationsTool) {
    Select(Row);
    p.Tools.SlotTables[0][0].ToolText = "SPECIAL KEYHOLE 10";
    p.Tools.SlotTables[0][0].Autoindex = TrueWord;
    RestartSession session;
    ASSERT_EQ(SelectRestartHit(p, 1, 3, 4, session), "");
    const RestartDisplay d = RestartDisplayOf(p, session);
    EXPECT_EQ(d.Tool, "T" + std::to_string(p.Tools.SlotTables[0][0].TNumber) + "   KEYHOLE 10");
    EXPECT_EQ(d.Measurement, "METRIC");
    EXPECT_EQ(d.X, "X  230.00");
    EXPECT_EQ(d.Y, "Y  100.00");
    EXPECT_EQ(d.C, "C  0.00");
    EXPECT_EQ(d.Hits, "Completed Hits : 4");
    EXPECT_EQ(d.Kerf, "");
    // Without a turret no tool; under the profiler the kerf side.
    p.Config.Machine.HasTurret = false;
    session.Point.Record.TargetState.Profiler = TrueWord;
    session.Point.Record.TargetState.KerfSide = 2;
    session.Point.Record.TargetState.Imperial = TrueWord;
    const RestartDisplay profiled = RestartDisplayOf(p, session);
    EXPECT_EQ(profiled.Tool, "");
    EXPECT_EQ(profiled.Measurement, "IMPERIAL");
    EXPECT_EQ(profiled.Kerf, "G42   Kerf Compensation : Right");
}

TEST_F(RestartScreensTest, RestartSendsProgramFiveThenStartsWithoutAQuestion) {
    Select(Row);
    RestartSession session;
    ASSERT_EQ(SelectRestartHit(p, 1, 3, 4, session), "");
    EXPECT_EQ(RunRestart(talk, p, session, hooks), RestartOutcome::Started);
    // With no G95 before the stop no question about the sheet is asked.
    EXPECT_TRUE(questions.empty());
    EXPECT_TRUE(refusals.empty());
    EXPECT_EQ(card.Sent.front(), "FILE " + dir.Path() + "DownPrg.tmp");
    EXPECT_EQ(SentCount("M811=5"), 1);
    EXPECT_EQ(card.Sent.back().substr(0, 2), "B1");
    const auto program = ReadLines(dir.Path() + "DownPrg.tmp");
    ASSERT_TRUE(program.has_value());
    EXPECT_EQ(program->front(), "CLOSE");
    EXPECT_EQ(program->back(), "CLOSE");
}

TEST_F(RestartScreensTest, ReloadQuestionAfterARepositionAndItsAnswerBehindEachG95) {
    Select("N0001 G90 T1\nN0002 G95 I100 J2\nN0003 G81 X10 Y10\nN0004 G95 I50 J1\nN0005 G81 X20 Y20\n");
    RestartSession session;
    ASSERT_EQ(SelectRestartBlock(p, 1, 5, session), "");
    answer = true;
    EXPECT_EQ(RunRestart(talk, p, session, hooks), RestartOutcome::Started);
    EXPECT_EQ(questions, std::vector<std::string>{"Have You Reloaded The Sheet ?"});
    const auto program = ReadLines(dir.Path() + "DownPrg.tmp");
    ASSERT_TRUE(program.has_value());
    int g95 = 0;
    for (const std::string& line : *program)
        if (line.find("G95") != std::string::npos) {
            ++g95;
            EXPECT_TRUE(line.ends_with("P6=-999 ")) << line;
        }
    EXPECT_EQ(g95, 2);
}

TEST_F(RestartScreensTest, RefusedWhileRunningAndNothingSent) {
    Select(Row);
    RestartSession session;
    ASSERT_EQ(SelectRestartHit(p, 1, 3, 2, session), "");
    p.InFeedhold = true;
    EXPECT_EQ(RunRestart(talk, p, session, hooks), RestartOutcome::Refused);
    EXPECT_EQ(refusals, std::vector<std::string>{"Can Not Restart\n\nWhile Machine Is Running or In Error !"});
    EXPECT_TRUE(card.Sent.empty());
    EXPECT_FALSE(std::filesystem::exists(dir.Path() + "DownPrg.tmp"));
}

TEST_F(RestartScreensTest, BlockNeverReachedIsShownAndNothingSent) {
    Select(Row);
    RestartSession session;
    ASSERT_EQ(SelectRestartBlock(p, 1, 3, session), "");
    EXPECT_EQ(session.NotReached, "");
    // A walk that ended before the block (a fault on the way) leaves the entry state not gathered.
    session.Point.Record.EntryState.Gathered = 0;
    session.NotReached = "The Restart Block Was Not Reached";
    EXPECT_EQ(RestartDisplayOf(p, session).Note, "The Restart Block Was Not Reached");
    EXPECT_EQ(RunRestart(talk, p, session, hooks), RestartOutcome::NotSent);
    EXPECT_TRUE(card.Sent.empty());
    EXPECT_FALSE(ProgramSent());
    EXPECT_FALSE(std::filesystem::exists(dir.Path() + "DownPrg.tmp"));
}

TEST_F(RestartScreensTest, VisualRestartCountsHitsOnViewSplitsAPatternAndPicksItsHit) {
    Select(Row);  // record 2 a Punch at 100,100; record 3 five hits from 200,100 by 10; record 4 at 300,300
    const std::string drw = SlotFile(p.Config.Dirs, 1, "drw");
    PlotView view;
    view.ViewTopLeft = {0, 400};
    view.ViewBottomRight = {400, 0};
    EXPECT_EQ(HitsOnView(drw, view), 7);
    view.ViewTopLeft = {195, 105};
    view.ViewBottomRight = {225, 95};
    EXPECT_EQ(HitsOnView(drw, view), 3);
    view.ViewTopLeft = {500, 600};
    view.ViewBottomRight = {600, 500};
    VisualRestart visual;
    EXPECT_EQ(StartVisualRestart(p, 1, view, visual), "Can Not Visually Restart\n\nIf No Punches Are On View !");
    EXPECT_FALSE(visual.Active);
    view.ViewTopLeft = {0, 400};
    view.ViewBottomRight = {400, 0};
    ASSERT_EQ(StartVisualRestart(p, 1, view, visual), "");
    EXPECT_TRUE(visual.Active);
    // A Punch is no pattern to split; the grid is, into "SplitCyc.drw" of the installation.
    EXPECT_EQ(SplitPickedEntity(p, 1, 2, visual), "Can Not Visually Restart\n\nPick A Pattern To Split !");
    ASSERT_EQ(SplitPickedEntity(p, 1, 3, visual), "");
    EXPECT_EQ(visual.Record, 3);
    EXPECT_EQ(visual.SplitHits, 5);
    EXPECT_EQ(PickDrawingPath(p, 1, visual), dir.Path() + "SplitCyc.drw");
    RestartSession session;
    PickState pick;
    EXPECT_EQ(SelectVisualRestart(p, 1, pick, visual, session),
              "Can Not Visually Restart\n\nPick A Hit With The Path Keys !");
    pick.Record = 4;  // the split file's record 4: hit 3
    ASSERT_EQ(SelectVisualRestart(p, 1, pick, visual, session), "");
    EXPECT_EQ(session.Point.RestartHit, 3);
    EXPECT_EQ(session.Point.Kind, RestartKind::Cycle);
    EXPECT_FLOAT_EQ(session.Point.Record.TargetState.X, 220);
    EXPECT_EQ(session.Point.Record.TargetState.Hits, 3);
    // Unsplit, an entity restarts at its first hit.
    pick.Record = 4;
    ASSERT_EQ(SelectVisualRestart(p, 1, pick, VisualRestart{true, 0, 0}, session), "");
    EXPECT_EQ(session.Point.Kind, RestartKind::Point);
    EXPECT_EQ(session.Point.RestartHit, 1);
    EXPECT_EQ(session.Point.Record.TargetState.Hits, 6);
    EXPECT_TRUE(card.Sent.empty());
}

TEST_F(RestartScreensTest, AtStopRestartsAtTheFirstHitTheMachineHasNotMade) {
    RestartSession session;
    EXPECT_EQ(SelectStopRestart(p, 1, session), "Can Not Restart\n\nNo Program In Slot 1 !");
    Select(Row);  // hits: the Punch (hit file record 2), the row of five (3 to 7), the Punch (8)
    // The poll walked the hit file up to record 5: the Sheet, the Punch and three hits of the row.
    p.Slots[0].RunCount = 5;
    ASSERT_EQ(SelectStopRestart(p, 1, session), "");
    EXPECT_EQ(session.Point.Kind, RestartKind::Cycle);
    EXPECT_EQ(session.Point.RestartHit, 4);
    EXPECT_FLOAT_EQ(session.Point.Record.TargetState.X, 230);
    EXPECT_EQ(session.Point.Record.TargetState.Hits, 4);
    // Before any run was followed, the card's counter tells: 6 hits made, the last Punch next.
    p.Slots[0].RunCount = 0;
    p.Slots[0].HitCount = 6;
    ASSERT_EQ(SelectStopRestart(p, 1, session), "");
    EXPECT_EQ(session.Point.Kind, RestartKind::Point);
    EXPECT_FLOAT_EQ(session.Point.RestartEntity.Points.Position.X, 300);
    EXPECT_EQ(session.Point.Record.TargetState.Hits, 6);
    // No hit made yet: the first one; every hit made: nothing left.
    p.Slots[0].HitCount = 0;
    ASSERT_EQ(SelectStopRestart(p, 1, session), "");
    EXPECT_FLOAT_EQ(session.Point.RestartEntity.Points.Position.X, 100);
    EXPECT_EQ(session.Point.Record.TargetState.Hits, 0);
    p.Slots[0].HitCount = 7;
    session = RestartSession{};
    EXPECT_EQ(SelectStopRestart(p, 1, session), "Can Not Restart\n\nNo Hits Left After Hit 7");
    EXPECT_EQ(session.Slot, 0);
    // Refused while the machine runs.
    p.Slots[0].HitCount = 3;
    p.Running = true;
    EXPECT_EQ(SelectStopRestart(p, 1, session), "Can Not Restart\n\nWhile Machine Is Running or In Error !");
    EXPECT_EQ(session.Slot, 0);
    EXPECT_TRUE(card.Sent.empty());
}

TEST_F(RestartScreensTest, VisualRestartRefusedWithAHitFileOlderThanTheDrawing) {
    Select(Row);
    const std::string drw = SlotFile(p.Config.Dirs, 1, "drw"), dr1 = SlotFile(p.Config.Dirs, 1, "dr1");
    dir.Write("Actvprg1.dr1", "");
    std::filesystem::last_write_time(dr1, std::filesystem::last_write_time(drw) - std::chrono::seconds(10));
    PlotView view;
    view.ViewTopLeft = {0, 400};
    view.ViewBottomRight = {400, 0};
    VisualRestart visual;
    EXPECT_EQ(StartVisualRestart(p, 1, view, visual),
              "Can Not Visually Restart\n\nThe Hit File Is Older Than The Drawing !");
    EXPECT_FALSE(visual.Active);
    p.Running = true;
    std::filesystem::remove(dr1);
    EXPECT_EQ(StartVisualRestart(p, 1, view, visual), "Can Not Restart\n\nWhile Machine Is Running or In Error !");
}

}  // namespace
}  // namespace kirvana

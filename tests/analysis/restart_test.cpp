// The restart: the kinds, the hit positions, the split of a cycle, the restart program's text
// line by line, the run command and the variables sent, and the refusals of bad input.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "analysis/drawing_file.h"
#include "analysis/expand.h"
#include "analysis/restart.h"
#include "analysis/reverse.h"
#include "core/paths.h"
#include "tests/analysis/reverse_settings.h"
#include "tests/core/temp_dir.h"

namespace kirvana {
namespace {

// A slot's motion texts reversed into its drawing in a fresh directory.
class Slot {
public:
    Slot(const std::string& m1, const std::string& m2 = "") {
        dir_.Write("Slot.M1", m1);
        dir_.Write("Slot.M2", m2);
        settings_ = ReverseTestSettings();
        settings_.ServiceDir = dir_.Path();
        std::int16_t toolChanges = 0;
        result_ = ReversePass(Stem(), "PROG", "DIR", toolChanges, settings_);
    }
    std::string Stem() const { return dir_.Path() + "Slot."; }
    const ReverseSettings& Settings() const { return settings_; }
    const TempDir& Dir() const { return dir_; }
    EntityRec Record(std::int32_t n) const {
        DrawingFile drawing;
        EntityRec rec;
        if (drawing.Open(Stem() + "drw", true)) drawing.Get(n, rec);
        return rec;
    }
    std::string Find(std::int32_t record, std::int32_t hit, RestartPoint& point) const {
        return FindRestartPoint(Stem(), "PROG", "DIR", record, hit, settings_, dir_.Path(), point);
    }
    std::vector<std::string> Program(const RestartPoint& point, bool reloaded = false) const {
        RestartProgramInput input;
        input.Point = &point;
        auto rep = ReadLines(dir_.Path() + "Gather.rep");
        input.Repositions = rep ? *rep : std::vector<std::string>{};
        input.Reload = ReloadWord(reloaded);
        input.ToolWord = StationToolWord(settings_.Stations, point.Record.TargetState.Station);
        auto m2 = ReadLines(Stem() + "M2");
        input.M2 = m2 ? *m2 : std::vector<std::string>{};
        return RestartProgramLines(input);
    }

private:
    TempDir dir_;
    ReverseSettings settings_;
    ReverseResult result_;
};

bool Holds(const std::vector<std::string>& lines, const std::string& line) {
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

const char* const LinearProgram =
    "N0001 G90 T1\nN0002 G81 X100 Y100\nN0003 G26 X200 Y100 P1=5 P2=10 P5=0\nN0004 G81 X300 Y300\n";

TEST(Restart, AtHitOneOfAPatternTheWholePatternAgain) {
    Slot slot(LinearProgram);
    EntityRec pattern = slot.Record(3);
    ASSERT_EQ(pattern.Kind, EntityKind::LinearPattern);
    EXPECT_EQ(WriteCycleRest(pattern, 1),
              std::vector<std::string>{"P1=5 P5=0 P7=10 P2=-999 P3=-999 P4=-999 P6=-999 P8=-999 P9=1 P10=0 P11=0 G26 "
                                       "X200 Y100"});
}

TEST(Restart, AtTheLastHitOfALinearPatternACountOfOne) {
    Slot slot(LinearProgram);
    EXPECT_EQ(WriteCycleRest(slot.Record(3), 5),
              std::vector<std::string>{"P1=1 P5=0 P7=10 P2=-999 P3=-999 P4=-999 P6=-999 P8=-999 P9=1 P10=0 P11=0 G26 "
                                       "X240 Y100"});
}

TEST(Restart, GridFinishedRowByRow) {
    Slot slot("N0001 G90 T1\nN0002 G26 X100 Y100 P1=3 P2=10 P3=3 P4=20 P5=0\n");
    EntityRec grid = slot.Record(2);
    ASSERT_EQ(grid.Kind, EntityKind::GridPattern);
    // Hit 5 is the middle of the second row, which runs backwards from X 120.
    std::vector<std::string> rest = WriteCycleRest(grid, 5);
    ASSERT_EQ(rest.size(), 2u);
    EXPECT_EQ(rest[0].substr(0, 15), "P1=2 P5=180 P7=");
    EXPECT_NE(rest[0].find("G26 X110 Y120"), std::string::npos);
    EXPECT_EQ(rest[1].substr(0, 13), "P1=3 P5=0 P7=");
    EXPECT_NE(rest[1].find("G26 X100 Y140"), std::string::npos);
    // From hit 1 every row has its line.
    EXPECT_EQ(WriteCycleRest(grid, 1).size(), 3u);
}

TEST(Restart, ArcPatternFromAHit) {
    Slot slot("N0001 G90 T1\nN0002 G28 X500 Y500 P7=500 P8=500 R50 P1=4 P2=30 P3=0\n");
    EntityRec arc = slot.Record(2);
    ASSERT_EQ(arc.Kind, EntityKind::ArcPattern);
    EXPECT_EQ(WriteCycleRest(arc, 3),
              std::vector<std::string>{"P7=500 P8=500 P3=60 P2=30 P1=2 P10=-999 P4=-999 P5=-999 P6=-999 P9=1 G28 R50"});
}

TEST(Restart, HitPositionsAreTheExpandedHits) {
    Slot slot(
        "N0001 G90 T20 C30\nN0002 G26 X100 Y100 P1=3 P2=10 P3=2 P4=20 P5=30\n"
        "N0003 G28 X500 Y500 P7=500 P8=500 R50 P1=4 P2=30 P3=10\nN0004 G01 X600 Y600 P8=7\n");
    ASSERT_TRUE(ExpandDrawing(slot.Stem()).Done);
    DrawingFile dr1;
    ASSERT_TRUE(dr1.Open(slot.Stem() + "dr1", true));
    std::int32_t expanded = 2;
    for (std::int32_t record = 2; record <= 4; ++record) {
        EntityRec pattern = slot.Record(record);
        const std::int32_t hits = EntityHits(pattern);
        ASSERT_GT(hits, 1);
        for (std::int32_t n = 1; n <= hits; ++n, ++expanded) {
            EntityRec punch;
            ASSERT_TRUE(dr1.Get(expanded, punch));
            GatherState at;
            ASSERT_TRUE(HitPosition(pattern, n, at));
            EXPECT_EQ(at.X, punch.Points.Position.X);
            EXPECT_EQ(at.Y, punch.Points.Position.Y);
            EXPECT_FLOAT_EQ(at.C, punch.Tool.Extra1);
        }
        GatherState none;
        EXPECT_FALSE(HitPosition(pattern, hits + 1, none));
        EXPECT_FALSE(HitPosition(pattern, 0, none));
    }
}

TEST(Restart, SplitCycleWritesTheSheetAndOnePunchPerHit) {
    Slot slot(LinearProgram);
    const std::string split = slot.Dir().Path() + "SplitCyc.drw";
    auto hits = SplitCycle(slot.Stem() + "drw", slot.Record(3), split);
    ASSERT_TRUE(hits.has_value());
    EXPECT_EQ(*hits, 5);
    DrawingFile file;
    ASSERT_TRUE(file.Open(split, true));
    EXPECT_EQ(file.Count(), 6);
    EntityRec rec;
    file.Get(1, rec);
    EXPECT_EQ(rec.Kind, EntityKind::Sheet);
    file.Get(6, rec);
    EXPECT_EQ(rec.Kind, EntityKind::Punch);
    EXPECT_EQ(rec.Points.Position.X, 240);
}

TEST(Restart, KindsByEntity) {
    Slot slot("N0001 G90 T1\nN0002 G81 X10 Y10\nN0003 G68 Q1 S1\n", "N1000 G26 X50 Y50 P1=3 P2=10 P5=0\nRETURN\n");
    EXPECT_EQ(RestartKindOf(slot.Record(2)), RestartKind::Point);
    EXPECT_EQ(RestartKindOf(slot.Record(3)), RestartKind::SubCycle);
    EntityRec profile;
    profile.Kind = EntityKind::ArcProfile;
    EXPECT_EQ(RestartKindOf(profile), RestartKind::Profile);
    profile.SubBlock = 2;
    EXPECT_EQ(RestartKindOf(profile), RestartKind::SubProfile);
}

TEST(Restart, PatternInsideAG98GetsTheRestOfTheCycleAndTheTail) {
    Slot slot("N0001 G90 T1\nN0002 P1=2 P2=100 P3=1 P6=0 G98 X10 Y20 S1\nN0003 G81 X500 Y500\n",
              "N1000 G26 X0 Y0 P1=3 P2=10 P5=0\nN1001 G81 X50 Y0\nRETURN\n");
    // Record 2 is the first copy's row, record 4 the second copy's.
    RestartPoint point;
    ASSERT_EQ(slot.Find(2, 2, point), "");
    EXPECT_EQ(point.Kind, RestartKind::SubCycle);
    EXPECT_EQ(point.Record.TargetState.Hits, 1);
    EXPECT_FLOAT_EQ(point.Record.TargetState.X, 20);
    std::vector<std::string> program = slot.Program(point);
    // The rest of the row, then the call's tail: this copy's remaining block and the second copy.
    EXPECT_TRUE(Holds(program, "P1=2 P5=0 P7=10 P2=-999 P3=-999 P4=-999 P6=-999 P8=-999 P9=1 P10=0 P11=0 G26 X20 Y20"));
    EXPECT_TRUE(Holds(program, "G93 X10 Y20"));
    EXPECT_TRUE(Holds(program, "G93 X110 Y20"));
    EXPECT_TRUE(Holds(program, "G90 G71 P10=2 P11=1"));
    EXPECT_EQ(std::count(program.begin(), program.end(), "N1001 G81 X50 Y0"), 2);
    EXPECT_EQ(std::count(program.begin(), program.end(), "N1000 G26 X0 Y0 P1=3 P2=10 P5=0"), 1);
    // The main program goes on at the block after the call.
    EXPECT_EQ(point.Record.BlockState.BlockNo, 3);
    EXPECT_EQ(RestartRunCommand(1, point.Record.TargetState, point.Record.BlockState), "B1.00003R");
}

TEST(Restart, G68RepetitionsStillOpenStartWhereTheOneBeforeEnds) {
    Slot slot("N0001 G90 T1\nN0002 G80 X100 Y100\nN0003 G68 Q3 S1\nN0004 G81 X500 Y500\n",
              "N1000 G81 X10 Y0\nN1001 G81 X20 Y0\nRETURN\n");
    // The first punch of the first repetition, at X 110.
    std::int32_t record = 0;
    for (std::int32_t n = 2; n <= 9 && record == 0; ++n)
        if (slot.Record(n).Kind == EntityKind::Punch && slot.Record(n).Points.Position.X == 110) record = n;
    ASSERT_GT(record, 0);
    RestartPoint point;
    ASSERT_EQ(slot.Find(record, 1, point), "");
    EXPECT_EQ(point.Kind, RestartKind::SubPoint);
    // Each repetition starts where the one before it ends: the second at 120, the third at 140.
    ASSERT_EQ(point.RepetitionStarts.size(), 2u);
    EXPECT_FLOAT_EQ(point.RepetitionStarts[0].X, 120);
    EXPECT_FLOAT_EQ(point.RepetitionStarts[1].X, 140);
    const std::vector<std::string> program = slot.Program(point);
    const std::vector<std::string> tail = {"G93 X100 Y100",
                                           "M10",
                                           "G90 G71",
                                           "N1001 G81 X20 Y0",
                                           "G93 X120 Y100",
                                           "M10",
                                           "G90 G71 P10=2 P11=2",
                                           "N1000 G81 X10 Y0",
                                           "N1001 G81 X20 Y0",
                                           "G93 X140 Y100",
                                           "M10",
                                           "G90 G71 P10=3 P11=1",
                                           "N1000 G81 X10 Y0",
                                           "N1001 G81 X20 Y0"};
    auto at = std::search(program.begin(), program.end(), tail.begin(), tail.end());
    EXPECT_NE(at, program.end());
    // The last repetition has none still open behind it.
    const std::int32_t last = record + 5;
    ASSERT_EQ(slot.Record(last).Points.Position.X, 160);
    ASSERT_EQ(slot.Find(last, 1, point), "");
    EXPECT_TRUE(point.RepetitionStarts.empty());
}

TEST(Restart, RepetitionEndsOfAG68CallInOneWalk) {
    const std::vector<std::string> m1 = {"N0001 G90 T1", "N0002 G80 X100 Y100", "N0003 G68 Q3 S1",
                                         "N0004 G81 X500 Y500"};
    const std::vector<std::string> m2 = {"N1000 G81 X10 Y0", "N1001 G81 X20 Y0", "RETURN"};
    GatherTarget target;
    target.TargetMain = 3;
    target.TargetSub = 3;  // the RETURN
    target.CallState.CallCode = 68;
    target.CallState.Label = 1;
    target.CallState.CountX = 2;
    // From the second repetition on, asked for more than there are: the second and the third.
    const std::vector<PointF> ends = GatherRepetitionEnds(m1, m2, target, 5, ReverseTestSettings());
    ASSERT_EQ(ends.size(), 2u);
    EXPECT_FLOAT_EQ(ends[0].X, 140);
    EXPECT_FLOAT_EQ(ends[1].X, 160);
    EXPECT_FLOAT_EQ(ends[1].Y, 100);
    EXPECT_TRUE(GatherRepetitionEnds(m1, m2, target, 0, ReverseTestSettings()).empty());
}

TEST(Restart, NoRepositionNoQuestion) {
    Slot slot(LinearProgram);
    RestartPoint point;
    ASSERT_EQ(slot.Find(3, 2, point), "");
    EXPECT_FALSE(AsksReload(point.Record.TargetState));
    Slot moved("N0001 G90 T1\nN0002 G95 I100 J2\nN0003 G26 X200 Y100 P1=5 P2=10 P5=0\n");
    ASSERT_EQ(moved.Find(3, 2, point), "");
    EXPECT_TRUE(AsksReload(point.Record.TargetState));
}

TEST(Restart, PositiveAnswerEndsEveryG95LineInP6Minus999) {
    Slot slot(
        "N0001 G90 T1\nN0002 G95 I100 J2\nN0003 G81 X10 Y10\nN0004 G95 I50 J1\n"
        "N0005 G26 X200 Y100 P1=5 P2=10 P5=0\n");
    RestartPoint point;
    ASSERT_EQ(slot.Find(5, 3, point), "");
    for (bool reloaded : {true, false}) {
        std::vector<std::string> program = slot.Program(point, reloaded);
        int g95 = 0;
        for (const std::string& line : program) {
            if (line.find("G95") == std::string::npos) continue;
            ++g95;
            const std::string end = reloaded ? "P6=-999 " : "P6=1 ";
            EXPECT_EQ(line.substr(line.size() - end.size()), end) << line;
        }
        EXPECT_EQ(g95, 2);
    }
}

TEST(Restart, ProgramLinesInTheirOrder) {
    Slot slot("N0001 G90 T3 M11\nN0002 G56 X5 Y6\nN0003 G26 X200 Y100 P1=5 P2=10 P5=0\nN0004 G81 X1 Y1\n");
    RestartPoint point;
    ASSERT_EQ(slot.Find(2, 4, point), "");
    EXPECT_EQ(point.Record.TargetState.Hits, 3);
    const std::vector<std::string> expected = {
        "CLOSE", "OPEN PROG 5", "CLEAR", "G00 G05 G90 G71", "G93 X0 Y0", "G53",
        // The restart position: hit 4 of the row, mirrored in X round the G56 origin.
        "G80 X-235 Y106 C0 T3",
        "P1=2 P5=180 P7=10 P2=-999 P3=-999 P4=-999 P6=-999 P8=-999 P9=1 P10=0 P11=0 G26 X-235 Y106", "G93 X0 Y0",
        "G56 X-5 Y6", "M11", "G90 G71", "Q190=Q190--5", "Q191=Q191-6", "Q198=Q198--5", "Q199=Q199-6",
        "P1022=P1022|16384", "P1022=P1022-32768", "CLOSE"};
    EXPECT_EQ(slot.Program(point), expected);
}

TEST(Restart, ProfileRestFromThePosition) {
    EntityRec line;
    line.Kind = EntityKind::LineProfile;
    line.Points.End = {300, 40};
    EXPECT_EQ(WriteProfileRest(line, 0, 0, 1), std::vector<std::string>{"G101 X300 Y40"});
    EntityRec arc;
    arc.Kind = EntityKind::ArcProfile;
    arc.Points.End = {100, 0};
    arc.Points.Position = {50, 0};
    arc.Values[11] = -180;
    EXPECT_EQ(WriteProfileRest(arc, 0, 0, 1), std::vector<std::string>{"G102 X100 Y0 I50 J0"});
    arc.Values[11] = 180;
    EXPECT_EQ(WriteProfileRest(arc, 10, 0, 1), std::vector<std::string>{"G103 X100 Y0 I40 J0"});
}

TEST(Restart, RunCommandAndTheVariablesSent) {
    GatherState target, block;
    target.BlockNo = 120;
    target.Hits = 42;
    block.BlockNo = 123;
    EXPECT_EQ(RestartRunCommand(1, target, block), "B1.00123R");
    target.BlockNo = 0;
    EXPECT_EQ(RestartRunCommand(2, target, block), "B2");
    target.BlockNo = 120;
    RestartRecord record;
    record.TargetState = target;
    record.BlockState = block;
    RestartCommands c = GetGoingCommands(2, record);
    EXPECT_EQ(c.BeforeStart, (std::vector<std::string>{"M869=42", "M811=5"}));
    EXPECT_EQ(c.AfterStart, (std::vector<std::string>{"M811=2", "B2.00123R"}));
    EXPECT_EQ(c.OnExit, std::vector<std::string>{"M811=2"});
    EXPECT_EQ(RestartReport("PROG", "DIR", "01/01/26 00:00", block),
              "PROGRAM   :  PROG\nDIRECTORY :  DIR\nTIME      :  01/01/26 00:00\nBLOCK     :  123\n");
}

TEST(Restart, BadInputIsRefusedAndThePointStays) {
    Slot slot(LinearProgram);
    RestartPoint point;
    point.Kind = RestartKind::Block;
    EXPECT_NE(slot.Find(9, 1, point), "");
    EXPECT_NE(slot.Find(1, 1, point), "");
    EXPECT_NE(slot.Find(3, 6, point), "");
    EXPECT_NE(slot.Find(3, 0, point), "");
    EXPECT_EQ(point.Kind, RestartKind::Block);
    RestartPoint none;
    EXPECT_NE(FindRestartPoint(slot.Dir().Path() + "None.", "P", "D", 2, 1, slot.Settings(), slot.Dir().Path(), none),
              "");
}

TEST(Restart, FromABlockOfTheList) {
    Slot slot(LinearProgram);
    RestartPoint point;
    ASSERT_EQ(BlockRestartPoint(slot.Stem(), "PROG", "DIR", 3, slot.Settings(), slot.Dir().Path(), point), "");
    EXPECT_EQ(point.Kind, RestartKind::Block);
    EXPECT_EQ(point.Record.EntryState.BlockNo, 3);
    EXPECT_EQ(point.Record.EntryState.Hits, 1);
    // The following line is gathered into the target, which the block and resume states copy.
    EXPECT_EQ(point.Record.TargetState.BlockNo, 4);
    EXPECT_EQ(point.Record.TargetState.Hits, 6);
    EXPECT_EQ(point.Record.BlockState.BlockNo, 4);
    EXPECT_EQ(point.Record.ResumeState.Hits, 6);
    EXPECT_NE(BlockRestartPoint(slot.Stem(), "PROG", "DIR", 5, slot.Settings(), slot.Dir().Path(), point), "");
}

}  // namespace
}  // namespace kirvana

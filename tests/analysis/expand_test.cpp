// ExpandDrawing: the hits of every pattern kind against positions worked out by hand, what a
// generated Punch carries, the count in record 1, and drawings cut short or counting too far.
#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "analysis/drawing_file.h"
#include "analysis/expand.h"
#include "analysis/tool_outline.h"
#include "tests/core/temp_dir.h"

namespace kirvana {
namespace {

constexpr double Near = 1e-4;

EntityRec Sheet() {
    EntityRec rec;
    rec.Kind = EntityKind::Sheet;
    rec.KindName = FixedText("Sheet", KindNameWidth);
    rec.Remark = FixedText("STEEL 2MM", RemarkWidth);
    rec.Values[1] = 2500;
    rec.Values[2] = 1250;
    return rec;
}

// A drawing in memory: the Sheet, then the records, the count in record 1 as the Reverse pass
// leaves it (RecordNo and Counts[1]).
DrawingFile Drawing(std::vector<EntityRec> records) {
    DrawingFile file = DrawingFile::InMemory();
    std::int16_t counter = 0;
    EntityRec sheet = Sheet();
    AppendEntity(file, counter, sheet);
    for (auto& rec : records) AppendEntity(file, counter, rec);
    sheet.RecordNo = counter;
    sheet.Counts[1] = counter;
    file.Put(1, sheet);
    return file;
}

struct Expanded {
    ExpandResult Result;
    EntityRec First;
    std::vector<EntityRec> Hits;
};

Expanded Expand(DrawingFile& drawing, std::int32_t maxHits = MaxExpandedHits) {
    DrawingFile out = DrawingFile::InMemory();
    Expanded e;
    e.Result = ExpandRecords(drawing, out, maxHits);
    out.Get(1, e.First);
    EXPECT_EQ(out.RecordsInFile(), e.Result.Records);
    for (std::int32_t n = 2; n <= out.RecordsInFile(); ++n) {
        EntityRec rec;
        out.Get(n, rec);
        e.Hits.push_back(rec);
    }
    return e;
}

Expanded Expand(std::vector<EntityRec> records) {
    DrawingFile drawing = Drawing(std::move(records));
    return Expand(drawing);
}

void ExpectHits(const std::vector<EntityRec>& hits, const std::vector<std::pair<double, double>>& expected) {
    ASSERT_EQ(hits.size(), expected.size());
    for (std::size_t i = 0; i < hits.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(hits[i].Kind, EntityKind::Punch);
        EXPECT_NEAR(hits[i].Points.Position.X, expected[i].first, Near);
        EXPECT_NEAR(hits[i].Points.Position.Y, expected[i].second, Near);
    }
}

ToolRecord Tool(char shape, float d1, float extra1 = 0) {
    ToolRecord tool;
    tool.Valid = TrueWord;
    tool.Shape = shape;
    tool.Name = ToolName(shape == 'A' ? "Diameter" : "Square");
    tool.D1 = tool.D2 = d1;
    tool.Station = 10;
    tool.Setting = 2;
    tool.Angle = shape == 'A' ? 0 : 15;
    tool.Extra1 = extra1;
    tool.Extra2 = 1;
    return tool;
}

EntityRec Linear(float x, float y, float pitch, float angle, std::int16_t hits) {
    EntityRec rec;
    rec.Kind = EntityKind::LinearPattern;
    rec.KindName = FixedText("Linear Pattern", KindNameWidth);
    rec.Points.Entry = {x, y};
    rec.Values[2] = pitch;
    rec.Values[10] = angle;
    rec.Counts[1] = hits;
    return rec;
}

EntityRec Grid(std::int16_t perRow, std::int16_t rows, bool turned) {
    EntityRec rec;
    rec.Kind = EntityKind::GridPattern;
    rec.KindName = FixedText("Grid Pattern", KindNameWidth);
    rec.Points.Entry = {0, 0};
    rec.Values[2] = 10;
    rec.Values[4] = 5;
    rec.Counts[1] = perRow;
    rec.Counts[2] = rows;
    rec.Counts[3] = turned ? -1 : 0;
    return rec;
}

EntityRec ArcPattern(std::int16_t hits, std::int16_t turns) {
    EntityRec rec;
    rec.Kind = EntityKind::ArcPattern;
    rec.KindName = FixedText("Arc Pattern", KindNameWidth);
    rec.Points.Position = {100, 100};
    rec.Values[1] = 999;  // the expansion reads the copies in 5 and 13
    rec.Values[10] = 999;
    rec.Values[5] = 50;
    rec.Values[13] = 0;
    rec.Values[12] = 30;
    rec.Counts[1] = hits;
    rec.Counts[2] = turns;
    rec.Tool = Tool('B', 10, 10);
    return rec;
}

TEST(ExpandDrawing, LinearPatternStepsFromEntry) {
    Expanded e = Expand({Linear(10, 20, 25, 0, 4)});
    ExpectHits(e.Hits, {{10, 20}, {35, 20}, {60, 20}, {85, 20}});
    // At 30 degrees the step is (25 cos 30, 25 sin 30) = (21.650635, 12.5).
    e = Expand({Linear(0, 0, 25, 30, 3)});
    ExpectHits(e.Hits, {{0, 0}, {21.650635, 12.5}, {43.30127, 25}});
    // A negative pitch runs backwards.
    e = Expand({Linear(0, 0, -10, 90, 3)});
    ExpectHits(e.Hits, {{0, 0}, {0, -10}, {0, -20}});
}

TEST(ExpandDrawingEdge, LinearPatternOfOneHitYieldsOnePunch) {
    Expanded e = Expand({Linear(7, 8, 25, 45, 1)});
    ExpectHits(e.Hits, {{7, 8}});
}

TEST(ExpandDrawing, PositionsRunInDoublePrecision) {
    // 1000 hits 0.1 apart from 1000.1: summed in double the last lies at 1100.0 within a
    // single's resolution; summed in singles it would be off by hundredths.
    Expanded e = Expand({Linear(1000.1f, 0, 0.1f, 0, 1000)});
    ASSERT_EQ(e.Hits.size(), 1000u);
    const double expected = static_cast<double>(1000.1f) + 999 * static_cast<double>(0.1f);
    EXPECT_NEAR(e.Hits.back().Points.Position.X, expected, 1.5e-4);
}

TEST(ExpandDrawing, GridPatternWalksToAndFro) {
    Expanded e = Expand({Grid(2, 3, false)});
    ExpectHits(e.Hits, {{0, 0}, {10, 0}, {10, 5}, {0, 5}, {0, 10}, {10, 10}});
}

TEST(ExpandDrawing, TurnedGridPattern) {
    // Rows and columns exchanged: 3 hits a row at 90 degrees with pitch -5, rows 10 apart
    // towards 180.
    Expanded e = Expand({Grid(2, 3, true)});
    ExpectHits(e.Hits, {{0, 0}, {0, -5}, {0, -10}, {-10, -10}, {-10, -5}, {-10, 0}});
}

TEST(ExpandDrawing, AngledGridPattern) {
    // Rows at 90 degrees, rows stepping towards 180.
    EntityRec grid = Grid(3, 2, false);
    grid.Values[10] = 90;
    Expanded e = Expand({grid});
    ExpectHits(e.Hits, {{0, 0}, {0, 10}, {0, 20}, {-5, 20}, {-5, 10}, {-5, 0}});
}

TEST(ExpandDrawingEdge, GridPatternOfOneRowHasNoRowStep) {
    Expanded e = Expand({Grid(4, 1, false)});
    ExpectHits(e.Hits, {{0, 0}, {10, 0}, {20, 0}, {30, 0}});
}

TEST(ExpandDrawing, ArcPatternHitsAndTurningTool) {
    Expanded e = Expand({ArcPattern(4, -1)});
    ExpectHits(e.Hits, {{150, 100}, {143.30127, 125}, {125, 143.30127}, {100, 150}});
    // The tool turns with the pattern: the base C angle 10, then 30 degrees a hit.
    std::vector<float> c;
    for (const auto& hit : e.Hits) c.push_back(hit.Tool.Extra1);
    EXPECT_EQ(c, (std::vector<float>{10, 40, 70, 100}));
}

TEST(ExpandDrawing, ArcPatternWithAFixedTool) {
    Expanded e = Expand({ArcPattern(3, 0)});
    for (const auto& hit : e.Hits) EXPECT_EQ(hit.Tool.Extra1, 10);
}

TEST(ExpandDrawing, ArcPatternBaseFromValues15UnderCycleRotate) {
    EntityRec arc = ArcPattern(4, -1);
    arc.CycleRotate = -1;
    arc.Values[15] = 345;
    Expanded e = Expand({arc});
    std::vector<float> c;
    for (const auto& hit : e.Hits) c.push_back(hit.Tool.Extra1);
    EXPECT_EQ(c, (std::vector<float>{345, 15, 45, 75}));  // normalised past 360
}

TEST(ExpandDrawing, GeneratedPunchCarriesThePatternsFieldsAndIsOutlined) {
    EntityRec linear = Linear(10, 20, 25, 0, 2);
    linear.BlockText = FixedText("G26 X10 Y20 I25 J0 K2", BlockTextWidth);
    linear.MainBlock = 12;
    linear.SubBlock = 3;
    linear.CallSpec.CallCode = 68;
    linear.StationNo = 7;
    linear.PathMode = 2;
    linear.Feed = 4000;
    linear.Compensation = 1;
    linear.Settings[3] = 1.5f;
    linear.Tool = Tool('A', 20, 90);
    Expanded e = Expand({linear});
    ASSERT_EQ(e.Hits.size(), 2u);
    const EntityRec& hit = e.Hits[1];
    EXPECT_EQ(hit.Kind, EntityKind::Punch);
    EXPECT_EQ(hit.KindName, FixedText("Punch", KindNameWidth));
    EXPECT_EQ(hit.MainBlock, 12);
    EXPECT_EQ(hit.SubBlock, 3);
    EXPECT_EQ(hit.StationNo, 7);
    EXPECT_EQ(hit.PathMode, 2);
    EXPECT_EQ(hit.Feed, 4000);
    EXPECT_EQ(hit.Settings[3], 1.5f);
    EXPECT_EQ(hit.Settings[0], NoValue);
    EXPECT_EQ(hit.Tool.D1, 20);
    EXPECT_EQ(hit.Tool.Setting, 2);
    EXPECT_EQ(hit.Tool.Extra2, 1);
    EXPECT_EQ(hit.Tool.Extra1, 0);  // a Diameter tool has no C angle once outlined
    // Cleared otherwise: no block text, no call, no values, no compensation, RecordNo 0.
    EXPECT_EQ(hit.BlockText, std::string(BlockTextWidth, ' '));
    EXPECT_EQ(hit.CallSpec.CallCode, 0);
    EXPECT_EQ(hit.Values[2], 0);
    EXPECT_EQ(hit.Counts[1], 0);
    EXPECT_EQ(hit.Compensation, 0);
    EXPECT_EQ(hit.RecordNo, 0);
    // ToolOutline: every point the position, the clear box 10 round it for D1 20.
    for (const PointF* p :
         {&hit.Points.Start, &hit.Points.Middle, &hit.Points.End, &hit.Points.Entry, &hit.Points.Exit}) {
        EXPECT_EQ(p->X, 35);
        EXPECT_EQ(p->Y, 20);
    }
    EXPECT_EQ(hit.ClearBox.Low.X, 25);
    EXPECT_EQ(hit.ClearBox.High.Y, 30);
}

TEST(ExpandDrawing, PunchIsCopiedAsItStandsAndOtherKindsAreDropped) {
    EntityRec punch;
    punch.Kind = EntityKind::Punch;
    punch.KindName = FixedText("Punch", KindNameWidth);
    punch.BlockText = FixedText("G81 X5 Y6", BlockTextWidth);
    punch.Points.Position = {5, 6};
    punch.Tool = Tool('B', 10, 30);
    ToolOutline(punch);
    EntityRec move;
    move.Kind = EntityKind::Move;
    EntityRec dwell;
    dwell.Kind = EntityKind::Dwell;
    EntityRec profile;
    profile.Kind = EntityKind::LineProfile;
    EntityRec stop;
    stop.Kind = EntityKind::Stop;
    EntityRec sheet = Sheet();
    DrawingFile drawing = Drawing({move, punch, dwell, profile, stop, sheet});
    Expanded e = Expand(drawing);
    ASSERT_EQ(e.Hits.size(), 1u);
    EntityRec stored;
    drawing.Get(3, stored);
    RecordBytes a, b;
    EncodeEntity(stored, a);
    EncodeEntity(e.Hits[0], b);
    EXPECT_EQ(a, b);  // its own RecordNo 3 included
    EXPECT_EQ(e.Hits[0].RecordNo, 3);
}

TEST(ExpandDrawingEdge, CountIsOnePlusAllHitsAndOnlyRecordNoIsUpdated) {
    EntityRec punch;
    punch.Kind = EntityKind::Punch;
    EntityRec move;
    move.Kind = EntityKind::Move;
    DrawingFile drawing =
        Drawing({Linear(0, 0, 10, 0, 3), punch, Grid(2, 3, false), move, ArcPattern(4, 0), Linear(0, 0, 5, 0, 1)});
    Expanded e = Expand(drawing);
    EXPECT_TRUE(e.Result.Done);
    EXPECT_FALSE(e.Result.LimitReached);
    EXPECT_EQ(e.Result.Records, 1 + 3 + 1 + 6 + 4 + 1);
    EXPECT_EQ(e.First.RecordNo, 16);
    // The Sheet is carried over as it stood: Counts[1] still counts the drawing's 7 records.
    EXPECT_EQ(e.First.Counts[1], 7);
    EXPECT_EQ(e.First.Kind, EntityKind::Sheet);
    EXPECT_EQ(e.First.Remark, FixedText("STEEL 2MM", RemarkWidth));
    EXPECT_EQ(e.First.Values[1], 2500);
}

TEST(ExpandDrawingEdge, SheetOnlyDrawingExpandsToTheSheet) {
    DrawingFile drawing = Drawing({});
    Expanded e = Expand(drawing);
    EXPECT_TRUE(e.Result.Done);
    EXPECT_EQ(e.Result.Records, 1);
    EXPECT_EQ(e.First.RecordNo, 1);
    EXPECT_TRUE(e.Hits.empty());
}

TEST(ExpandDrawing, PatternsWithoutHitsWriteNothing) {
    EntityRec arc = ArcPattern(0, 0);
    Expanded e = Expand({Linear(0, 0, 1, 0, 0), Linear(0, 0, 1, 0, -3), Grid(0, 5, false), Grid(5, -1, false), arc});
    EXPECT_TRUE(e.Hits.empty());
    EXPECT_EQ(e.First.RecordNo, 1);
}

TEST(ExpandDrawing, CountLargerThanTheFileStopsAtItsEnd) {
    DrawingFile drawing = Drawing({Linear(0, 0, 10, 0, 2)});
    EntityRec sheet;
    drawing.Get(1, sheet);
    sheet.RecordNo = 2000000000;
    drawing.Put(1, sheet);
    Expanded e = Expand(drawing);
    EXPECT_TRUE(e.Result.Done);
    EXPECT_EQ(e.Result.Records, 3);
}

TEST(ExpandDrawing, TruncatedDrawingExpandsItsWholeRecords) {
    DrawingFile full = Drawing({Linear(0, 0, 10, 0, 2), Linear(0, 0, 10, 0, 5)});
    std::string bytes = full.MemoryBytes();
    bytes.resize(bytes.size() - 1);  // the last pattern loses its final byte
    DrawingFile cut = DrawingFile::InMemory(bytes);
    Expanded e = Expand(cut);
    EXPECT_TRUE(e.Result.Done);
    EXPECT_EQ(e.Result.Records, 3);
}

TEST(ExpandDrawing, EmptyDrawingGivesOneRecordCountingItself) {
    DrawingFile empty = DrawingFile::InMemory();
    Expanded e = Expand(empty);
    EXPECT_TRUE(e.Result.Done);
    EXPECT_EQ(e.Result.Records, 1);
    EXPECT_EQ(e.First.RecordNo, 1);
    EXPECT_EQ(e.First.Kind, 0);
}

TEST(ExpandDrawing, StopsAtTheHitLimit) {
    DrawingFile drawing = Drawing({Linear(0, 0, 1, 0, 10), Grid(100, 100, false)});
    Expanded e = Expand(drawing, 5);
    EXPECT_TRUE(e.Result.Done);
    EXPECT_TRUE(e.Result.LimitReached);
    EXPECT_EQ(e.Result.Records, 6);
    EXPECT_EQ(e.First.RecordNo, 6);
}

TEST(ExpandDrawing, FilesBesideTheDrawing) {
    TempDir dir;
    const std::string stem = dir.Path() + "Actvprg1.";
    {
        DrawingFile drawing;
        ASSERT_TRUE(drawing.Create(stem + "drw"));
        std::int16_t counter = 0;
        EntityRec sheet = Sheet();
        AppendEntity(drawing, counter, sheet);
        EntityRec grid = Grid(3, 2, false);
        AppendEntity(drawing, counter, grid);
        sheet.RecordNo = counter;
        sheet.Counts[1] = counter;
        drawing.Put(1, sheet);
        ASSERT_TRUE(drawing.Close());
    }
    // An old expanded file is replaced, not written over.
    dir.Write("Actvprg1.dr1", std::string(20 * RecordLength, 'x'));
    ExpandResult result = ExpandDrawing(stem);
    EXPECT_TRUE(result.Done);
    EXPECT_EQ(result.Records, 7);
    EXPECT_EQ(std::filesystem::file_size(stem + "dr1"), 7 * RecordLength);
    EXPECT_EQ(std::filesystem::file_size(stem + "drw"), 2 * RecordLength);
    DrawingFile expanded;
    ASSERT_TRUE(expanded.Open(stem + "dr1", true));
    EXPECT_EQ(expanded.Count(), 7);
    EntityRec last;
    ASSERT_TRUE(expanded.Get(7, last));
    EXPECT_NEAR(last.Points.Position.X, 0, Near);
    EXPECT_NEAR(last.Points.Position.Y, 5, Near);
}

TEST(ExpandDrawing, MissingDrawingWritesNothing) {
    TempDir dir;
    ExpandResult result = ExpandDrawing(dir.Path() + "none.");
    EXPECT_FALSE(result.Done);
    EXPECT_FALSE(std::filesystem::exists(dir.Path() + "none.dr1"));
}

}  // namespace
}  // namespace kirvana

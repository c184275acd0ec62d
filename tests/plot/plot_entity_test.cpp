// PlotEntity: the colour of each mode, the dispatch on every kind, the hits of the patterns
// where the expansion puts them, solid hits, profiles, repositions, parts, trails, bad records.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "analysis/drawing_file.h"
#include "analysis/expand.h"
#include "analysis/tool_outline.h"
#include "core/geometry.h"
#include "plot/plot_program.h"
#include "plot/plotter.h"
#include "plot/recording_canvas.h"
#include "tests/core/temp_dir.h"

namespace kirvana {
namespace {

ToolRecord Tool(char shape, float d1, float d2, float angle = 0) {
    ToolRecord tool;
    tool.Valid = TrueWord;
    tool.Shape = shape;
    tool.Name = ToolName(ShapeOfLetter(shape)->Name);
    tool.D1 = d1;
    tool.D2 = d2;
    tool.Station = 10;
    tool.Angle = angle;
    return tool;
}

EntityRec Punch(float x, float y, ToolRecord tool) {
    EntityRec rec;
    rec.Kind = EntityKind::Punch;
    rec.KindName = FixedText("Punch", KindNameWidth);
    rec.Tool = tool;
    rec.Points.Position = {x, y};
    ToolOutline(rec);
    return rec;
}

EntityRec ArcProfile(bool validTool) {
    EntityRec rec;
    rec.Kind = EntityKind::ArcProfile;
    rec.Points.Position = {100, 100};
    rec.Values[1] = 50;
    rec.Values[10] = 0;
    rec.Values[11] = -90;
    if (validTool) rec.Tool = PlasmaTool("PLASMA", 1, 5);
    return rec;
}

struct PlotFixture : ::testing::Test {
    RecordingCanvas canvas;
    ColourTable colours = DefaultColours();
    Plotter plotter{canvas, colours, ""};
};

TEST_F(PlotFixture, ErasingAPunchDrawsItsOutlineInTheSheetFillColour) {
    EntityRec rec = Punch(10, 20, Tool('B', 10, 10));
    plotter.PlotEntity(1, rec, ColourMode::Background, false);
    auto drawn = canvas.Lines;
    canvas.Forget();
    plotter.PlotEntity(1, rec, ColourMode::Erase, false);
    ASSERT_EQ(canvas.Lines.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(canvas.Lines[i].Colour, colours[ColourItem::SheetFill]);
        EXPECT_EQ(canvas.Lines[i].From, drawn[i].From);  // the same outline, over the former
        EXPECT_EQ(canvas.Lines[i].To, drawn[i].To);
    }
}

TEST_F(PlotFixture, AnArcProfileWithAnInvalidToolIsNotDrawnInAnyMode) {
    for (int mode = 0; mode <= 3; ++mode) plotter.PlotEntity(1, ArcProfile(false), mode, true);
    EXPECT_EQ(canvas.ArcCount + canvas.LineCount + canvas.OutlineCount, 0);
    plotter.PlotEntity(1, ArcProfile(true), ColourMode::Background, false);
    ASSERT_EQ(canvas.Arcs.size(), 1u);
    EXPECT_DOUBLE_EQ(canvas.Arcs[0].Start, -90);  // clockwise: drawn from its far end
    EXPECT_DOUBLE_EQ(canvas.Arcs[0].End, 0);
    EXPECT_EQ(canvas.Arcs[0].Radius, 50);
}

TEST_F(PlotFixture, ADiameterToolDrawsTheSameCircleAtAnyAngle) {
    for (float angle : {0.0f, 30.0f, 90.0f, 271.5f}) {
        EntityRec rec = Punch(50, 60, Tool('A', 12, 12, angle));
        rec.Tool.Extra1 = angle;
        ToolOutline(rec);
        EXPECT_EQ(rec.Tool.Angle, 0);
        canvas.Forget();
        plotter.PlotEntity(1, rec, ColourMode::Background, false);
        ASSERT_EQ(canvas.Arcs.size(), 1u);
        EXPECT_EQ(canvas.Arcs[0].Centre, (PlotPoint{50, 60}));
        EXPECT_EQ(canvas.Arcs[0].Radius, 6);
        EXPECT_EQ(canvas.Arcs[0].Start, 0);
        EXPECT_EQ(canvas.Arcs[0].End, 360);
    }
}

TEST_F(PlotFixture, ASpecialToolWithoutAFileDrawsASquare) {
    TempDir tools;
    Plotter special(canvas, colours, tools.Path());
    ToolRecord tool;
    ParseToolText("SPECIAL STAR A0", tool, false);
    tool.Station = 10;
    special.PlotEntity(1, Punch(0, 0, tool), ColourMode::Background, false);
    ASSERT_EQ(canvas.Lines.size(), 4u);
    EXPECT_EQ(canvas.Arcs.size(), 0u);
    auto b = canvas.DrawnBounds();
    EXPECT_NEAR(b.X2 - b.X1, 25, 1e-4);
    EXPECT_NEAR(b.Y2 - b.Y1, 25, 1e-4);
}

TEST_F(PlotFixture, ColoursOfEachMode) {
    EntityRec punch = Punch(0, 0, Tool('A', 5, 5));
    EXPECT_EQ(plotter.EntityColour(punch, 0), colours[ColourItem::SheetFill]);
    EXPECT_EQ(plotter.EntityColour(punch, 1), colours[ColourItem::BackgroundPunching]);
    EXPECT_EQ(plotter.EntityColour(punch, 2), colours[ColourItem::PunchModeRealTimePunching]);
    EXPECT_EQ(plotter.EntityColour(punch, 3), colours[ColourItem::HighlightedDrawing]);
    punch.PathMode = 1;
    EXPECT_EQ(plotter.EntityColour(punch, 1), colours[ColourItem::BlockSkip1]);
    punch.PathMode = 2;
    EXPECT_EQ(plotter.EntityColour(punch, 1), colours[ColourItem::BlockSkip2]);

    EntityRec profile = ArcProfile(true);
    EXPECT_EQ(plotter.EntityColour(profile, 1), colours[ColourItem::BackgroundProfilingG40]);
    profile.Compensation = 1;
    EXPECT_EQ(plotter.EntityColour(profile, 1), colours[ColourItem::BackgroundProfilingG41]);
    profile.Compensation = 2;
    EXPECT_EQ(plotter.EntityColour(profile, 1), colours[ColourItem::BackgroundProfilingG42]);
    profile.PathMode = 1;  // the block skip before the kerf side
    EXPECT_EQ(plotter.EntityColour(profile, 1), colours[ColourItem::BlockSkip1]);
    EXPECT_EQ(plotter.EntityColour(profile, 2), colours[ColourItem::ProfileModeRealTimeProfiling]);
    EXPECT_EQ(plotter.EntityColour(ArcProfile(false), 1), colours[ColourItem::SheetFill]);
    EXPECT_EQ(plotter.EntityColour(ArcProfile(false), 2), colours[ColourItem::ProfileModeRealTimeMovement]);
}

TEST_F(PlotFixture, KindsThatAreNotInTheTableAreNotDrawn) {
    for (std::int16_t kind :
         {EntityKind::Sheet, EntityKind::Move, EntityKind::Dwell, EntityKind::Stop, EntityKind::FlipRotate,
          EntityKind::LoadPosition, std::int16_t{151}, std::int16_t{0}, std::int16_t{-3}, std::int16_t{999}}) {
        EntityRec rec = Punch(0, 0, Tool('B', 10, 10));
        rec.Kind = kind;
        rec.Points.Start = {0, 0};
        rec.Points.End = {100, 100};
        plotter.PlotEntity(1, rec, ColourMode::Background, false);
    }
    EXPECT_EQ(canvas.ArcCount + canvas.LineCount + canvas.Polygons.size(), 0u);
}

TEST_F(PlotFixture, LineProfileIsALineFromStartToEnd) {
    EntityRec rec;
    rec.Kind = EntityKind::LineProfile;
    rec.Points.Start = {10, 10};
    rec.Points.End = {200, 30};
    plotter.PlotEntity(1, rec, ColourMode::Background, false);
    EXPECT_EQ(canvas.LineCount, 0);  // no tool: not drawn
    rec.Tool = PlasmaTool("PLASMA", 1, 5);
    rec.Compensation = 2;
    plotter.PlotEntity(1, rec, ColourMode::Background, false);
    ASSERT_EQ(canvas.Lines.size(), 1u);
    EXPECT_EQ(canvas.Lines[0].From, (PlotPoint{10, 10}));
    EXPECT_EQ(canvas.Lines[0].To, (PlotPoint{200, 30}));
    EXPECT_EQ(canvas.Lines[0].Colour, colours[ColourItem::BackgroundProfilingG42]);
}

// Every pattern kind's hits fall where the expansion of the same record puts its Punches.
TEST_F(PlotFixture, PatternHitsStandWhereTheExpansionPutsThem) {
    EntityRec linear;
    linear.Kind = EntityKind::LinearPattern;
    linear.Tool = Tool('A', 6, 6);
    linear.Points.Entry = {10, 10};
    linear.Points.Exit = {10 + 4 * 20 * std::cos(0.5f), 10 + 4 * 20 * std::sin(0.5f)};
    linear.Values[2] = 20;
    linear.Counts[1] = 5;
    ToolOutline(linear);
    EntityRec grid;
    grid.Kind = EntityKind::GridPattern;
    grid.Tool = Tool('A', 6, 6);
    grid.Points.Start = {100, 100};
    grid.Points.Entry = {100, 100};
    grid.Values[1] = 60;
    grid.Values[2] = 20;
    grid.Values[3] = 30;
    grid.Values[4] = 15;
    grid.Values[10] = 0;
    grid.Counts[1] = 4;
    grid.Counts[2] = 3;
    grid.Counts[3] = -1;
    ToolOutline(grid);
    EntityRec arc;
    arc.Kind = EntityKind::ArcPattern;
    arc.Tool = Tool('D', 10, 4);
    arc.Tool.Station = 20;
    arc.Points.Position = {500, 500};
    arc.Values[1] = 80;
    arc.Values[10] = 10;
    arc.Values[11] = 120;
    arc.Values[12] = 30;
    arc.Counts[1] = 5;
    arc.Counts[2] = -1;
    ToolOutline(arc);

    DrawingFile drawing = DrawingFile::InMemory();
    std::int16_t counter = 0;
    EntityRec sheet;
    sheet.Kind = EntityKind::Sheet;
    AppendEntity(drawing, counter, sheet);
    for (EntityRec* rec : {&linear, &grid, &arc}) AppendEntity(drawing, counter, *rec);
    sheet.RecordNo = counter;
    drawing.Put(1, sheet);
    DrawingFile hits = DrawingFile::InMemory();
    ExpandResult expanded = ExpandRecords(drawing, hits, MaxExpandedHits);
    ASSERT_TRUE(expanded.Done);
    ASSERT_EQ(expanded.Records, 1 + 5 + 12 + 5);

    RecordingCanvas expected;
    Plotter hitPlotter(expected, colours, "");
    EntityRec hit;
    for (std::int32_t n = 2; n <= expanded.Records; ++n) {
        hits.Get(n, hit);
        hitPlotter.PlotEntity(1, hit, ColourMode::Background, false);
    }
    for (EntityRec* rec : {&linear, &grid, &arc}) plotter.PlotEntity(1, *rec, ColourMode::Background, false);
    ASSERT_EQ(canvas.Arcs.size(), 17u);  // 5 + 12 circles
    ASSERT_EQ(canvas.Arcs.size(), expected.Arcs.size());
    for (std::size_t i = 0; i < canvas.Arcs.size(); ++i) {
        EXPECT_NEAR(canvas.Arcs[i].Centre.X, expected.Arcs[i].Centre.X, 1e-3) << i;
        EXPECT_NEAR(canvas.Arcs[i].Centre.Y, expected.Arcs[i].Centre.Y, 1e-3) << i;
    }
    ASSERT_EQ(canvas.Lines.size(), 20u);  // 5 rectangles
    ASSERT_EQ(canvas.Lines.size(), expected.Lines.size());
    for (std::size_t i = 0; i < canvas.Lines.size(); ++i) {
        EXPECT_NEAR(canvas.Lines[i].From.X, expected.Lines[i].From.X, 1e-3) << i;
        EXPECT_NEAR(canvas.Lines[i].From.Y, expected.Lines[i].From.Y, 1e-3) << i;
    }
    // The tool turns with the arc pattern: the third hit's rectangle is turned by two steps.
    const auto& l = canvas.Lines[8];
    double direction = RadToDeg(std::atan2(l.To.Y - l.From.Y, l.To.X - l.From.X));
    EXPECT_NEAR(NormaliseAngle(direction - 90), 60, 1e-3);  // C angle 0 + 2 x 30; a rectangle's first side runs up
}

TEST_F(PlotFixture, SolidHitsAreFilledOnTheSlotsPlotsOnly) {
    EntityRec rec = Punch(0, 0, Tool('D', 20, 10));
    plotter.PlotEntity(1, rec, ColourMode::RealTime, true);
    ASSERT_EQ(canvas.Outlines.size(), 1u);
    EXPECT_EQ(canvas.Outlines[0].Pieces.size(), 4u);
    EXPECT_EQ(canvas.Outlines[0].Colour, colours[ColourItem::PunchModeRealTimePunching]);
    plotter.PlotEntity(DialoguePlot, rec, ColourMode::RealTime, true);
    plotter.PlotEntity(2, rec, ColourMode::RealTime, false);
    EXPECT_EQ(canvas.Outlines.size(), 1u);
}

TEST_F(PlotFixture, PlotLineTakesTheStoredPointsInPlaceOfItsEnds) {
    PlotPoint start = UnsetPoint, end = UnsetPoint;
    plotter.PlotLine({1, 1}, {2, 2}, 5, start, end);
    EXPECT_EQ(start, (PlotPoint{1, 1}));
    EXPECT_EQ(end, (PlotPoint{2, 2}));
    start = {1.0001, 0.9999};
    end = {3, 3};
    plotter.PlotLine({1, 1}, {2.9999, 3.0001}, 5, start, end);
    EXPECT_EQ(canvas.Lines[1].From, (PlotPoint{1.0001, 0.9999}));
    EXPECT_EQ(canvas.Lines[1].To, (PlotPoint{3, 3}));
}

TEST_F(PlotFixture, TurnedOutlinesCloseExactly) {
    plotter.PlotEntity(1, Punch(123.4f, 567.8f, Tool('D', 20, 7, 33.3f)), ColourMode::Background, false);
    ASSERT_EQ(canvas.Lines.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(canvas.Lines[i].To, canvas.Lines[(i + 1) % 4].From);
}

TEST_F(PlotFixture, RepositionIsADiamondAndItsShift) {
    EntityRec rec;
    rec.Kind = EntityKind::Reposition;
    rec.Points.Position = {300, 40};
    rec.Values[1] = 500;
    plotter.PlotEntity(1, rec, ColourMode::Background, false);
    ASSERT_EQ(canvas.Polygons.size(), 1u);
    EXPECT_EQ(canvas.Polygons[0].Points.size(), 4u);
    ASSERT_EQ(canvas.Lines.size(), 1u);
    EXPECT_EQ(canvas.Lines[0].To, (PlotPoint{800, 40}));
    EXPECT_EQ(canvas.Lines[0].Style, LineStyle::Dotted);
}

TEST_F(PlotFixture, MultiPartDrawsItsPartForEachCopy) {
    TempDir dir;
    {
        DrawingFile part;
        ASSERT_TRUE(part.Create(dir.Path() + "Bracket.prw"));
        std::int16_t counter = 0;
        EntityRec sheet;
        sheet.Kind = EntityKind::Sheet;
        AppendEntity(part, counter, sheet);
        EntityRec hit = Punch(10, 10, Tool('A', 8, 8));
        AppendEntity(part, counter, hit);
        EntityRec nested;
        nested.Kind = EntityKind::MultiPart;
        nested.Remark = FixedText("Bracket.prw", RemarkWidth);
        nested.Counts[1] = 2;
        nested.Counts[2] = 2;
        AppendEntity(part, counter, nested);  // a part in a part is not drawn
        sheet.RecordNo = counter;
        part.Put(1, sheet);
        ASSERT_TRUE(part.Close());
    }
    plotter.SetPartDir(dir.Path());
    EntityRec multi;
    multi.Kind = EntityKind::MultiPart;
    multi.Remark = FixedText("Bracket", RemarkWidth);
    multi.Counts[1] = 3;
    multi.Counts[2] = 2;
    multi.Values[11] = 100;
    multi.Values[12] = 50;
    plotter.PlotEntity(1, multi, ColourMode::Background, false);
    ASSERT_EQ(canvas.Arcs.size(), 6u);
    EXPECT_EQ(canvas.Arcs[0].Centre, (PlotPoint{10, 10}));
    EXPECT_EQ(canvas.Arcs[2].Centre, (PlotPoint{210, 10}));
    EXPECT_EQ(canvas.Arcs[5].Centre, (PlotPoint{210, 60}));
    multi.Remark = FixedText("../etc/passwd", RemarkWidth);
    plotter.PlotEntity(1, multi, ColourMode::Background, false);
    EXPECT_EQ(canvas.Arcs.size(), 6u);
}

TEST_F(PlotFixture, TrailsDrawOnlyWhenThePositionChanged) {
    plotter.PlotTrail({0, 0}, 7, LineStyle::Dotted, 1);  // the first sets the position
    plotter.PlotTrail({0, 0}, 7, LineStyle::Dotted, 1);
    EXPECT_EQ(canvas.LineCount, 0);
    plotter.PlotTrail({10, 0}, 7, LineStyle::Dotted, 1);
    ASSERT_EQ(canvas.Lines.size(), 1u);
    EXPECT_EQ(canvas.Lines[0].From, (PlotPoint{0, 0}));
    plotter.ResetRunData();
    plotter.PlotTrail({50, 50}, 7, LineStyle::Dotted, 1);
    EXPECT_EQ(canvas.Lines.size(), 1u);
}

TEST_F(PlotFixture, HeadPositionFollowsPlotCfg) {
    PlotConfig config;
    config.PunchIconOn = true;
    config.PunchTrailStyle = 2;
    PlotHeadPosition(plotter, config, {0, 0}, false, false, 10);
    PlotHeadPosition(plotter, config, {100, 0}, false, false, 10);
    EXPECT_TRUE(canvas.OverlayOf(OverlayId::IconShape).Visible);
    EXPECT_EQ(canvas.OverlayOf(OverlayId::IconShape).X1, 100);
    EXPECT_EQ(canvas.OverlayOf(OverlayId::IconShape).Colour, colours[ColourItem::PunchModeMovementIcon]);
    ASSERT_EQ(canvas.Lines.size(), 1u);
    EXPECT_EQ(canvas.Lines[0].Style, LineStyle::Dotted);
    EXPECT_EQ(canvas.Lines[0].Colour, colours[ColourItem::PunchModeRealTimeMovement]);
    // Profile mode: the cut in its width, rounded half to even; moves not drawn without a style.
    config.ProfileTrailWidth = 2.5;
    PlotHeadPosition(plotter, config, {100, 100}, true, true, 10);
    ASSERT_EQ(canvas.Lines.size(), 2u);
    EXPECT_EQ(canvas.Lines[1].Width, 2);
    EXPECT_EQ(canvas.Lines[1].Colour, colours[ColourItem::ProfileModeRealTimeProfiling]);
    EXPECT_FALSE(canvas.OverlayOf(OverlayId::IconShape).Visible);
    PlotHeadPosition(plotter, config, {0, 100}, true, false, 10);
    PlotHeadPosition(plotter, config, {0, 0}, true, true, 10);
    ASSERT_EQ(canvas.Lines.size(), 3u);
    EXPECT_EQ(canvas.Lines[2].From, (PlotPoint{0, 100}));
}

TEST_F(PlotFixture, NonsenseRecordsDrawWhatTheyCanAndEnd) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EntityRec rec = Punch(nan, 1e30f, Tool('B', 10, 10));
    plotter.PlotEntity(1, rec, ColourMode::Background, true);
    rec = Punch(0, 0, Tool('D', 1e30f, 0));
    plotter.PlotEntity(1, rec, ColourMode::Background, true);
    rec = Punch(0, 0, Tool('E', nan, nan));
    rec.Tool.D4 = nan;
    plotter.PlotEntity(1, rec, ColourMode::Background, true);
    rec.Kind = EntityKind::GridPattern;
    rec.Counts[1] = 32767;
    rec.Counts[2] = 32767;  // a billion hits would hang: the walk stops at the expansion's limit
    canvas.Keep = false;
    RecordingCanvas counter;
    counter.Keep = false;
    Plotter limited(counter, colours, "");
    rec.Tool = Tool('A', 1, 1);
    limited.PlotEntity(1, rec, ColourMode::Background, false);
    EXPECT_EQ(limited.HitsDrawn(), MaxExpandedHits);
    rec = ArcProfile(true);
    rec.Values[11] = 1e30f;
    plotter.PlotEntity(1, rec, ColourMode::Background, false);
    SUCCEED();
}

}  // namespace
}  // namespace kirvana

// The path keys inside patterns: a pattern is walked hit by hit, only the current hit is
// highlighted, and the pick gives the record, the hit and the hit's record in the `.dr1`.
#include <gtest/gtest.h>

#include "analysis/expand.h"
#include "analysis/tool_outline.h"
#include "plot/path_stepper.h"
#include "plot/recording_canvas.h"
#include "tests/core/temp_dir.h"

namespace kirvana {
namespace {

EntityRec WithSquare(std::int16_t kind, const char* block) {
    EntityRec rec;
    rec.Kind = kind;
    ParseToolText("SQUARE 10 A0", rec.Tool, false);
    rec.Tool.Station = 10;
    rec.BlockText = FixedText(block, BlockTextWidth);
    return rec;
}

struct PathHitsTest : ::testing::Test {
    TempDir dir;
    std::string stem = dir.Path() + "Actvprg1.";
    RecordingCanvas canvas;
    ColourTable colours = DefaultColours();
    Plotter plotter{canvas, colours, ""};
    DrawingFile drawing;
    PathStepper stepper;

    // Record 2 a Punch, 3 a Linear Pattern of 4 hits, 4 a Line Profile, 5 an Arc Pattern of 3.
    void SetUp() override {
        EntityRec punch = WithSquare(EntityKind::Punch, "X50Y50");
        punch.Points.Position = {50, 50};
        EntityRec linear = WithSquare(EntityKind::LinearPattern, "G26 LINEAR");
        linear.Points.Entry = {100, 100};
        linear.Points.Exit = {400, 100};
        linear.Values[2] = 100;
        linear.Counts[1] = 4;
        EntityRec profile;
        profile.Kind = EntityKind::LineProfile;
        profile.Tool = PlasmaTool("PLASMA", 1, 5);
        profile.BlockText = FixedText("G101 PROFILE", BlockTextWidth);
        profile.Points.Start = {0, 300};
        profile.Points.End = {500, 300};
        EntityRec arc = WithSquare(EntityKind::ArcPattern, "G28 ARC");
        arc.Points.Position = {600, 600};
        arc.Values[1] = 100;
        arc.Values[11] = 180;
        arc.Values[12] = 90;
        arc.Counts[1] = 3;
        DrawingFile file;
        ASSERT_TRUE(file.Create(stem + "drw"));
        std::int16_t counter = 0;
        EntityRec sheet;
        sheet.Kind = EntityKind::Sheet;
        AppendEntity(file, counter, sheet);
        for (EntityRec rec : {punch, linear, profile, arc}) {
            ToolOutline(rec);
            AppendEntity(file, counter, rec);
        }
        sheet.RecordNo = counter;
        file.Put(1, sheet);
        ASSERT_TRUE(file.Close());
        ASSERT_TRUE(drawing.Open(stem + "drw", true));
        StartPath(stepper, drawing);
    }

    std::string Key(int key) { return PathKey(stepper, key, drawing, plotter, 1); }

    // The middle of the last square drawn, and its colour.
    PlotPoint LastSquareCentre() const {
        const std::size_t n = canvas.Lines.size();
        if (n < 4) return {-1, -1};
        double x = 0, y = 0;
        for (std::size_t i = n - 4; i < n; ++i) x += canvas.Lines[i].From.X, y += canvas.Lines[i].From.Y;
        return {x / 4, y / 4};
    }
    std::int32_t LastColour() const { return canvas.Lines.empty() ? -1 : canvas.Lines.back().Colour; }
};

TEST_F(PathHitsTest, NextWalksAPatternHitByHitThenGoesOn) {
    EXPECT_EQ(Key(3), "X50Y50");
    EXPECT_EQ(stepper.Current, 2);
    for (int hit = 0; hit < 4; ++hit) {
        canvas.Forget();
        EXPECT_EQ(Key(3), "G26 LINEAR");
        EXPECT_EQ(stepper.Current, 3);
        EXPECT_EQ(stepper.CurrentHit, hit);
        // Only this hit is highlighted, at its place along the pattern.
        ASSERT_EQ(canvas.Lines.size(), 8u);  // the former place back, the new one highlighted
        EXPECT_EQ(canvas.Lines[0].Colour, colours[ColourItem::BackgroundPunching]);
        EXPECT_EQ(LastColour(), colours[ColourItem::HighlightedDrawing]);
        EXPECT_NEAR(LastSquareCentre().X, 100 + 100 * hit, 1e-4);
        EXPECT_NEAR(LastSquareCentre().Y, 100, 1e-4);
    }
    canvas.Forget();
    EXPECT_EQ(Key(3), "G101 PROFILE");
    EXPECT_EQ(stepper.CurrentHit, 0);
    // The last hit of the pattern back in its colour, then the profile highlighted whole.
    ASSERT_EQ(canvas.Lines.size(), 5u);
    EXPECT_NEAR(canvas.Lines[0].From.X, 405, 1e-4);
    EXPECT_EQ(canvas.Lines[4].Colour, colours[ColourItem::HighlightedDrawing]);
}

TEST_F(PathHitsTest, PreviousComesBackIntoAPatternAtItsLastHit) {
    for (int i = 0; i < 6; ++i) Key(3);
    EXPECT_EQ(stepper.Current, 4);
    EXPECT_EQ(Key(2), "G26 LINEAR");
    EXPECT_EQ(stepper.CurrentHit, 3);
    Key(2);
    EXPECT_EQ(stepper.CurrentHit, 2);
    EXPECT_NEAR(LastSquareCentre().X, 300, 1e-4);
}

TEST_F(PathHitsTest, FirstAndLastGoToTheFirstEntityAndTheLastHit) {
    EXPECT_EQ(Key(4), "G28 ARC");
    EXPECT_EQ(stepper.Current, 5);
    EXPECT_EQ(stepper.CurrentHit, 2);
    // The third hit of the arc: 180 degrees round from the first.
    EXPECT_NEAR(LastSquareCentre().X, 500, 1e-3);
    EXPECT_NEAR(LastSquareCentre().Y, 600, 1e-3);
    EXPECT_EQ(Key(3), "G28 ARC");  // the last stays
    EXPECT_EQ(stepper.CurrentHit, 2);
    EXPECT_EQ(Key(1), "X50Y50");
    EXPECT_EQ(stepper.CurrentHit, 0);
    EXPECT_EQ(Key(2), "Beginning");
    EXPECT_EQ(Key(2), "Beginning");
}

TEST_F(PathHitsTest, SplitAndSelectGiveTheRecordTheHitAndItsExpandedRecord) {
    for (int i = 0; i < 4; ++i) Key(3);  // the punch, then hits 0, 1, 2 of the pattern
    Key(5);
    EXPECT_EQ(stepper.Pick.Record, 3);
    EXPECT_EQ(stepper.Pick.Hit, 2);
    EXPECT_TRUE(stepper.Pick.Split);
    EXPECT_FALSE(stepper.Pick.Selected);
    // The Sheet, the punch, hits 0 and 1 before it: record 5 of the `.dr1`, the same place.
    EXPECT_EQ(stepper.Pick.ExpandedHit, 5);
    ASSERT_TRUE(ExpandDrawing(stem).Done);
    DrawingFile expanded;
    ASSERT_TRUE(expanded.Open(stem + "dr1", true));
    EntityRec hit;
    ASSERT_TRUE(expanded.Get(stepper.Pick.ExpandedHit, hit));
    EXPECT_FLOAT_EQ(hit.Points.Position.X, 300);
    EXPECT_FLOAT_EQ(hit.Points.Position.Y, 100);
    // A profile is no hit; select keeps the split.
    Key(4);
    Key(2);
    Key(2);
    Key(2);  // back over the arc's hits to the profile
    EXPECT_EQ(stepper.Current, 4);
    Key(6);
    EXPECT_EQ(stepper.Pick.Record, 4);
    EXPECT_EQ(stepper.Pick.ExpandedHit, 0);
    EXPECT_TRUE(stepper.Pick.Selected);
    EXPECT_TRUE(stepper.Pick.Split);
    // The last hit of the arc: the last record of the `.dr1`.
    Key(4);
    Key(6);
    EXPECT_EQ(stepper.Pick.ExpandedHit, 1 + 1 + 4 + 3);
    EXPECT_EQ(expanded.LastReadable(), stepper.Pick.ExpandedHit);
}

TEST_F(PathHitsTest, APatternOfNoHitsIsOneStepAndDrawsNothing) {
    EntityRec empty = WithSquare(EntityKind::LinearPattern, "EMPTY");
    empty.Counts[1] = 0;
    EXPECT_EQ(PathSteps(empty), 1);
    EntityRec punch = WithSquare(EntityKind::Punch, "P");
    EXPECT_EQ(PathSteps(punch), 1);
}

}  // namespace
}  // namespace kirvana

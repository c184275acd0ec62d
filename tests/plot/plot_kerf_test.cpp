// The kerf line of a profile: a dotted line the kerf's width to the side the compensation
// names, left (G41) or right (G42) of the way; none without a side or a kerf.
#include <gtest/gtest.h>

#include <cmath>

#include "analysis/tool_outline.h"
#include "plot/plotter.h"
#include "plot/recording_canvas.h"

namespace kirvana {
namespace {

constexpr std::size_t KerfSlot = 7;

EntityRec LineProfile(int side, float kerf) {
    EntityRec rec;
    rec.Kind = EntityKind::LineProfile;
    rec.Tool = PlasmaTool("PLASMA", 1, 5);
    rec.Compensation = static_cast<std::int16_t>(side);
    rec.Settings[KerfSlot] = kerf;
    rec.Points.Start = {0, 0};
    rec.Points.End = {100, 0};
    ToolOutline(rec);
    return rec;
}

EntityRec ArcProfile(int side, float kerf, float sweep) {
    EntityRec rec = LineProfile(side, kerf);
    rec.Kind = EntityKind::ArcProfile;
    rec.Points.Position = {50, 50};
    rec.Values[1] = 30;
    rec.Values[10] = 0;
    rec.Values[11] = sweep;
    ToolOutline(rec);
    return rec;
}

struct KerfTest : ::testing::Test {
    RecordingCanvas canvas;
    ColourTable colours = DefaultColours();
    Plotter plotter{canvas, colours, ""};

    std::vector<RecordingCanvas::LineCall> Dotted() const {
        std::vector<RecordingCanvas::LineCall> dotted;
        for (const auto& line : canvas.Lines)
            if (line.Style == LineStyle::Dotted) dotted.push_back(line);
        return dotted;
    }
};

TEST_F(KerfTest, ALeftKerfLineLiesTheKerfToTheLeftOfTheWay) {
    plotter.PlotEntity(1, LineProfile(1, 1.5f), ColourMode::Background, false);
    const auto dotted = Dotted();
    ASSERT_EQ(dotted.size(), 1u);
    EXPECT_NEAR(dotted[0].From.X, 0, 1e-9);
    EXPECT_NEAR(dotted[0].From.Y, 1.5, 1e-6);  // going +X, left is +Y
    EXPECT_NEAR(dotted[0].To.X, 100, 1e-9);
    EXPECT_NEAR(dotted[0].To.Y, 1.5, 1e-6);
    EXPECT_EQ(dotted[0].Colour, colours[ColourItem::BackgroundProfilingG41]);
}

TEST_F(KerfTest, ARightKerfLineLiesToTheRight) {
    plotter.PlotEntity(1, LineProfile(2, 2), ColourMode::Background, false);
    const auto dotted = Dotted();
    ASSERT_EQ(dotted.size(), 1u);
    EXPECT_NEAR(dotted[0].From.Y, -2, 1e-6);
    EXPECT_NEAR(dotted[0].To.Y, -2, 1e-6);
    EXPECT_EQ(dotted[0].Colour, colours[ColourItem::BackgroundProfilingG42]);
}

TEST_F(KerfTest, NoKerfLineWithoutASideOrAKerf) {
    plotter.PlotEntity(1, LineProfile(0, 1.5f), ColourMode::Background, false);
    plotter.PlotEntity(1, LineProfile(1, NoValue), ColourMode::Background, false);
    plotter.PlotEntity(1, LineProfile(2, 0), ColourMode::Background, false);
    plotter.PlotEntity(1, LineProfile(1, std::nanf("")), ColourMode::Background, false);
    EXPECT_TRUE(Dotted().empty());
    EXPECT_EQ(canvas.Lines.size(), 4u);  // the profiles themselves
}

TEST_F(KerfTest, ErasingAProfileErasesItsKerfLine) {
    plotter.PlotEntity(1, LineProfile(1, 1.5f), ColourMode::Erase, false);
    ASSERT_EQ(Dotted().size(), 1u);
    EXPECT_EQ(Dotted()[0].Colour, colours[ColourItem::SheetFill]);
}

// Every point of the dotted chords at the radius, within the chords' sag.
void ExpectAtRadius(const std::vector<RecordingCanvas::LineCall>& lines, double radius) {
    ASSERT_FALSE(lines.empty());
    for (const auto& line : lines) {
        EXPECT_NEAR(std::hypot(line.From.X - 50, line.From.Y - 50), radius, 1e-4);
        EXPECT_NEAR(std::hypot(line.To.X - 50, line.To.Y - 50), radius, 1e-4);
    }
}

TEST_F(KerfTest, ALeftKerfOfACounterClockwiseArcIsInsideIt) {
    plotter.PlotEntity(1, ArcProfile(1, 2, 90), ColourMode::Background, false);
    ExpectAtRadius(Dotted(), 28);
    // From the first angle round to the last: 0 to 90 degrees.
    EXPECT_NEAR(Dotted().front().From.X, 78, 1e-4);
    EXPECT_NEAR(Dotted().back().To.Y, 78, 1e-4);
}

TEST_F(KerfTest, ALeftKerfOfAClockwiseArcIsOutsideIt) {
    plotter.PlotEntity(1, ArcProfile(1, 2, -90), ColourMode::Background, false);
    ExpectAtRadius(Dotted(), 32);
}

TEST_F(KerfTest, ARightKerfOfACounterClockwiseArcIsOutsideIt) {
    plotter.PlotEntity(1, ArcProfile(2, 2, 180), ColourMode::Background, false);
    ExpectAtRadius(Dotted(), 32);
}

TEST_F(KerfTest, AKerfWiderThanTheArcsRadiusInsideItIsNotDrawn) {
    plotter.PlotEntity(1, ArcProfile(1, 40, 90), ColourMode::Background, false);
    EXPECT_TRUE(Dotted().empty());
    EXPECT_EQ(canvas.Arcs.size(), 1u);
}

TEST_F(KerfTest, AProfileWithoutAValidToolShowsNoKerfLine) {
    EntityRec rec = LineProfile(1, 1.5f);
    rec.Tool.Valid = 0;
    plotter.PlotEntity(1, rec, ColourMode::Background, false);
    EXPECT_TRUE(canvas.Lines.empty());
}

}  // namespace
}  // namespace kirvana

// The whole plot of a drawing: the fit, the sheet and its shapes, the entities in their
// background colours, the redraw after a zoom, the hits of a run, the path keys.
#include <gtest/gtest.h>

#include "analysis/tool_outline.h"
#include "plot/path_stepper.h"
#include "plot/plot_program.h"
#include "plot/recording_canvas.h"
#include "tests/core/temp_dir.h"

namespace kirvana {
namespace {

MachineData Machine(int clamps) {
    MachineData machine;
    machine.MachineOrientation = 1;
    machine.Travel = {0, 1250, -25, 2540, -10, 1270};
    machine.ClampWidth = 80;
    machine.ClampDepth = 60;
    machine.ClampCount = static_cast<std::int16_t>(clamps);
    return machine;
}

EntityRec Hit(float x, float y, const char* block) {
    EntityRec rec;
    rec.Kind = EntityKind::Punch;
    ParseToolText("SQUARE 10 A0", rec.Tool, false);
    rec.Tool.Station = 10;
    rec.Points.Position = {x, y};
    rec.BlockText = FixedText(block, BlockTextWidth);
    ToolOutline(rec);
    return rec;
}

struct ProgramFixture : ::testing::Test {
    TempDir dir;
    RecordingCanvas canvas;
    ColourTable colours = DefaultColours();
    Plotter plotter{canvas, colours, ""};
    PlotView view;
    PlotBoxInput input;

    void SetUp() override {
        input.DrawingPath = dir.Path() + "Actvprg1.drw";
        input.SheetX = 2500;
        input.SheetY = 1250;
        input.Clamps = {300, 0.5f, 1800, 0};
        input.BoxWidth = 800;
        input.BoxHeight = 600;
        DrawingFile file;
        ASSERT_TRUE(file.Create(input.DrawingPath));
        std::int16_t counter = 0;
        EntityRec sheet;
        sheet.Kind = EntityKind::Sheet;
        AppendEntity(file, counter, sheet);
        for (EntityRec rec : {Hit(100, 100, "X100Y100"), Hit(200, 100, "X200"), Hit(300, 100, "X300")})
            AppendEntity(file, counter, rec);
        sheet.RecordNo = counter;
        file.Put(1, sheet);
        ASSERT_TRUE(file.Close());
    }
};

TEST_F(ProgramFixture, DrawsTheSheetItsShapesAndEveryEntity) {
    PlotResult result = PlotProgram(plotter, view, Machine(3), input);
    EXPECT_TRUE(result.DrawingFound);
    EXPECT_EQ(result.Entities, 3);
    EXPECT_EQ(canvas.TopLeft, view.ViewTopLeft);
    EXPECT_DOUBLE_EQ(view.MarkerStep, (view.ViewBottomRight.X - view.ViewTopLeft.X) / 64);
    // The sheet: filled in the background colour, then the sheet fill, outlined.
    ASSERT_GE(canvas.Rects.size(), 3u);
    EXPECT_EQ(canvas.Rects[1].Colour, colours[ColourItem::PlotBackground]);
    EXPECT_EQ(canvas.Rects[2].Colour, colours[ColourItem::SheetFill]);
    EXPECT_EQ(canvas.Rects[2].B, (PlotPoint{2500, 1250}));
    ASSERT_EQ(canvas.Polygons.size(), 1u);
    EXPECT_EQ(canvas.Polygons[0].Colour, colours[ColourItem::SheetBoundry]);
    // Three squares in the background punching colour.
    int punched = 0;
    for (const auto& line : canvas.Lines) punched += line.Colour == colours[ColourItem::BackgroundPunching];
    EXPECT_EQ(punched, 12);
    // Clamps at 1 or above shown, centred on their positions; no datum marker with clamps.
    const Overlay& clamp1 = canvas.OverlayOf(OverlayId::ClampRect1);
    EXPECT_TRUE(clamp1.Visible);
    EXPECT_EQ(clamp1.X1, 260);
    EXPECT_EQ(clamp1.X2, 340);
    EXPECT_EQ(clamp1.Colour, colours[ColourItem::Clamps]);
    EXPECT_FALSE(canvas.OverlayOf(OverlayId::ClampRect2).Visible);  // at 0.5
    EXPECT_TRUE(canvas.OverlayOf(OverlayId::ClampRect3).Visible);
    EXPECT_FALSE(canvas.OverlayOf(OverlayId::ClampRect4).Visible);
    for (const auto& arc : canvas.Arcs) EXPECT_NE(arc.Colour, colours[ColourItem::DatumMarker]);
    // Limits off: no zones, no pads.
    EXPECT_FALSE(canvas.OverlayOf(OverlayId::ZoneRect0).Visible);
    EXPECT_FALSE(canvas.OverlayOf(OverlayId::PadCirc1).Visible);
}

TEST_F(ProgramFixture, LimitsShowTheZonesAndPads) {
    input.LimitsOn = true;
    PlotProgram(plotter, view, Machine(3), input);
    const Overlay& travel = canvas.OverlayOf(OverlayId::ZoneRect0);
    EXPECT_TRUE(travel.Visible);
    EXPECT_EQ(travel.X1, -25);
    EXPECT_EQ(travel.X2, 2540);
    EXPECT_EQ(travel.Colour, colours[ColourItem::PunchingZones]);
    EXPECT_TRUE(canvas.OverlayOf(OverlayId::ZoneRect1).Visible);
    EXPECT_FALSE(canvas.OverlayOf(OverlayId::ZoneRect2).Visible);
    EXPECT_TRUE(canvas.OverlayOf(OverlayId::PadCirc1).Visible);
    EXPECT_EQ(canvas.OverlayOf(OverlayId::PadCirc2).Colour, colours[ColourItem::RepositionPads]);
}

TEST_F(ProgramFixture, WithoutClampsTheDatumMarkerStandsAndNoClampOrPad) {
    input.LimitsOn = true;
    PlotProgram(plotter, view, Machine(0), input);
    int datum = 0;
    for (const auto& arc : canvas.Arcs) datum += arc.Colour == colours[ColourItem::DatumMarker];
    EXPECT_EQ(datum, 1);
    EXPECT_FALSE(canvas.OverlayOf(OverlayId::ClampRect1).Visible);
    EXPECT_FALSE(canvas.OverlayOf(OverlayId::PadCirc1).Visible);
}

TEST_F(ProgramFixture, ASheetOfSizeZeroHidesTheShapes) {
    input.SheetX = 0;
    PlotProgram(plotter, view, Machine(3), input);
    for (const Overlay& overlay : canvas.Overlays) EXPECT_FALSE(overlay.Visible);
}

TEST_F(ProgramFixture, AViewOfAllZerosHidesTheShapes) {
    PlotView zero;
    PlotBackground(canvas, colours, zero, Machine(3), input, true);
    for (const Overlay& overlay : canvas.Overlays) EXPECT_FALSE(overlay.Visible);
}

TEST_F(ProgramFixture, WithoutADrawingTheBoxIsEmpty) {
    input.DrawingPath = dir.Path() + "Actvprg2.drw";
    PlotResult result = PlotProgram(plotter, view, Machine(3), input);
    EXPECT_FALSE(result.DrawingFound);
    // Only the wipe of an old datum marker, in the background colour.
    for (const auto& line : canvas.Lines) EXPECT_EQ(line.Colour, colours[ColourItem::PlotBackground]);
    EXPECT_FALSE(canvas.OverlayOf(OverlayId::SheetRect).Visible);
}

TEST_F(ProgramFixture, RedrawAfterAZoomGoesBackToTheFit) {
    PlotProgram(plotter, view, Machine(3), input);
    PlotView fitted = view;
    ZoomToCorners(view, {100, 100}, {400, 300}, 4.0 / 3, 1);
    PlotProgram(plotter, view, Machine(3), input);  // the zoom stands while ViewChanged
    EXPECT_EQ(view.ViewTopLeft.X, 100);
    view.ViewChanged = false;  // Redraw
    PlotProgram(plotter, view, Machine(3), input);
    EXPECT_EQ(view.ViewTopLeft, fitted.ViewTopLeft);
    EXPECT_EQ(view.ViewBottomRight, fitted.ViewBottomRight);
}

TEST_F(ProgramFixture, DoneHitsTakeTheRealTimeColourAndFillWithTheFlag) {
    DrawingFile hits;
    ASSERT_TRUE(hits.Open(input.DrawingPath, true));
    PlotConfig config;
    config.RealTimePunchFlag = true;
    EXPECT_EQ(PlotDoneHits(plotter, 1, hits, {2, 3, 99}, config), 2);
    ASSERT_EQ(canvas.Lines.size(), 8u);
    EXPECT_EQ(canvas.Lines[0].Colour, colours[ColourItem::PunchModeRealTimePunching]);
    EXPECT_EQ(canvas.Outlines.size(), 2u);
}

TEST_F(ProgramFixture, PathKeysWalkTheEntitiesAndKeepThePick) {
    DrawingFile drawing;
    ASSERT_TRUE(drawing.Open(input.DrawingPath, true));
    PathStepper stepper;
    StartPath(stepper, drawing);
    EXPECT_EQ(PathKey(stepper, 2, drawing, plotter, 1), "Beginning");
    EXPECT_EQ(canvas.LineCount, 0);
    EXPECT_EQ(PathKey(stepper, 3, drawing, plotter, 1), "X100Y100");
    ASSERT_EQ(canvas.Lines.size(), 4u);
    EXPECT_EQ(canvas.Lines[0].Colour, colours[ColourItem::HighlightedDrawing]);
    EXPECT_EQ(PathKey(stepper, 4, drawing, plotter, 1), "X300");
    // The former entity back in its background colour, the new one highlighted.
    ASSERT_EQ(canvas.Lines.size(), 12u);
    EXPECT_EQ(canvas.Lines[4].Colour, colours[ColourItem::BackgroundPunching]);
    EXPECT_EQ(canvas.Lines[8].Colour, colours[ColourItem::HighlightedDrawing]);
    EXPECT_EQ(PathKey(stepper, 3, drawing, plotter, 1), "X300");  // the last stays
    EXPECT_EQ(PathKey(stepper, 2, drawing, plotter, 1), "X200");
    PathKey(stepper, 5, drawing, plotter, 1);
    EXPECT_EQ(stepper.Pick.Record, 3);
    EXPECT_TRUE(stepper.Pick.Split);
    EXPECT_EQ(PathKey(stepper, 1, drawing, plotter, 1), "X100Y100");
    PathKey(stepper, 6, drawing, plotter, 1);
    EXPECT_EQ(stepper.Pick.Record, 2);
    EXPECT_TRUE(stepper.Pick.Selected);
}

TEST_F(ProgramFixture, CrossAndZoomRectangle) {
    ShowCross(canvas, colours, {50, 60}, -8, true);
    const Overlay& line1 = canvas.OverlayOf(OverlayId::CrossLine1);
    EXPECT_EQ(line1.X1, 46);
    EXPECT_EQ(line1.X2, 54);
    EXPECT_EQ(line1.Colour, colours[ColourItem::PlotCursor]);
    ShowCross(canvas, colours, {50, 60}, 0, true);
    EXPECT_EQ(canvas.OverlayOf(OverlayId::CrossLine2).Y1, 55);  // a size of 0 is 10
    ShowZoomRect(canvas, colours, {300, 10}, {100, 200}, true);
    const Overlay& rect = canvas.OverlayOf(OverlayId::ZoomRect);
    EXPECT_EQ(rect.X1, 100);
    EXPECT_EQ(rect.Y1, 10);
    EXPECT_EQ(rect.X2, 300);
    EXPECT_EQ(rect.Y2, 200);
}

}  // namespace
}  // namespace kirvana

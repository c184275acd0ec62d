// The picture of a plot box kept between redraws: a pan moves it and draws what it uncovers, a
// zoom draws only what the view shows, and either way the picture is the one a whole redraw of
// every entity gives, pixel for pixel within the golden pictures' tolerance.
#include <gtest/gtest.h>
#include <QDir>

#include "analysis/tool_outline.h"
#include "screens/plot_picture.h"
#include "tests/core/temp_dir.h"
#include "tests/screens/golden_picture.h"

using namespace kirvana;

namespace {

constexpr QSize BoxSize(900, 560);

EntityRec Pattern(const char* toolText, std::int16_t kind, float x, float y) {
    EntityRec rec;
    rec.Kind = kind;
    ParseToolText(toolText, rec.Tool, false);
    rec.Tool.Station = 20;
    rec.Points.Start = rec.Points.Entry = rec.Points.Position = {x, y};
    return rec;
}

// Grids of several tools over a sheet of 1500 x 1000, a block-skipped grid in another colour
// across them, an arc pattern, profiles and a reposition: outlines of different colours
// overlapping, as a drawing's order leaves them.
std::vector<EntityRec> Entities() {
    const char* tools[] = {"RECTANGLE 20X8A30", "DIAMETER 10", "OBROUND 20X8A90", "HEXAGON 12A0", "CRUCIFORM 16W4R1A0"};
    std::vector<EntityRec> records;
    for (int g = 0; g < 5; ++g) {
        EntityRec grid = Pattern(tools[g], EntityKind::GridPattern, 30.0f + 290.0f * static_cast<float>(g), 40);
        grid.Values[1] = grid.Values[3] = 250;
        grid.Values[2] = 9;
        grid.Values[4] = 7;
        grid.Counts[1] = 28;
        grid.Counts[2] = 36;
        ToolOutline(grid);
        records.push_back(grid);
    }
    EntityRec skipped = Pattern("SQUARE 14 A15", EntityKind::GridPattern, 100, 150);
    skipped.Values[1] = 1200;
    skipped.Values[3] = 100;
    skipped.Values[2] = 20;
    skipped.Values[4] = 25;
    skipped.Counts[1] = 60;
    skipped.Counts[2] = 5;
    skipped.PathMode = 1;
    ToolOutline(skipped);
    records.push_back(skipped);
    EntityRec arc = Pattern("RECTANGLE 16X6A0", EntityKind::ArcPattern, 700, 700);
    arc.Values[1] = 200;
    arc.Values[11] = 360;
    arc.Values[12] = 4;
    arc.Counts[1] = 90;
    arc.Counts[2] = -1;
    ToolOutline(arc);
    records.push_back(arc);
    for (int side = 0; side < 3; ++side) {
        EntityRec line;
        line.Kind = EntityKind::LineProfile;
        line.Tool = PlasmaTool("PLASMA", 1, 5);
        line.Compensation = static_cast<std::int16_t>(side);
        line.Points.Start = {50, 450.0f + 30.0f * static_cast<float>(side)};
        line.Points.End = {1450, 520.0f + 30.0f * static_cast<float>(side)};
        ToolOutline(line);
        records.push_back(line);
    }
    EntityRec reposition;
    reposition.Kind = EntityKind::Reposition;
    reposition.Points.Position = {1200, 900};
    reposition.Values[1] = -300;
    ToolOutline(reposition);
    records.push_back(reposition);
    return records;
}

std::string WriteDrawing(const std::string& path, const std::vector<EntityRec>& records) {
    DrawingFile file;
    if (!file.Create(path)) return {};
    std::int16_t counter = 0;
    EntityRec sheet;
    sheet.Kind = EntityKind::Sheet;
    AppendEntity(file, counter, sheet);
    for (EntityRec rec : records) AppendEntity(file, counter, rec);
    sheet.RecordNo = counter;
    file.Put(1, sheet);
    file.Close();
    return path;
}

MachineData Machine() {
    MachineData machine;
    machine.MachineOrientation = 1;
    machine.Travel = {0, 1500, -25, 1540, -10, 1020};
    machine.ClampWidth = 80;
    machine.ClampDepth = 60;
    machine.ClampCount = 2;
    return machine;
}

struct PictureTest : ::testing::Test {
    TempDir dir;
    ColourTable colours = DefaultColours();
    MachineData machine = Machine();
    PlotBoxInput input;
    PlotPicture picture{colours, ""};

    void SetUp() override {
        input.DrawingPath = WriteDrawing(dir.Path() + "Actvprg1.drw", Entities());
        ASSERT_FALSE(input.DrawingPath.empty());
        input.SheetX = 1500;
        input.SheetY = 1000;
        input.Clamps = {300, 1100, 0, 0};
    }

    // Every entity drawn at the view with nothing left out: the picture as a redraw of old made it.
    QImage WholeRedraw(const PlotView& view) {
        QImage image(BoxSize, QImage::Format_RGB32);
        image.fill(PlotColour(colours[ColourItem::PlotBackground]));
        PlotCanvas canvas;
        canvas.SetDevice(&image, BoxSize);
        canvas.SetView(view.ViewTopLeft, view.ViewBottomRight);
        canvas.FillRect(view.ViewTopLeft, view.ViewBottomRight, colours[ColourItem::PlotBackground]);
        DrawSheet(canvas, colours, true, false, input.SheetX, input.SheetY);
        Plotter plotter(canvas, colours, "");
        for (const EntityRec& rec : Entities()) plotter.PlotEntity(1, rec, ColourMode::Background, false);
        canvas.Finish();
        return image;
    }

    void ExpectAsWholeRedraw(const std::string& what) {
        const int differing = Differing(picture.Image(), WholeRedraw(picture.View()));
        EXPECT_LT(differing, 60) << what;
        if (differing >= 60) {
            QDir().mkpath(KIRVANA_BINARY_DIR "/screenshots");
            picture.Image().save(QString(KIRVANA_BINARY_DIR "/screenshots/plot_moved_%1.png").arg(what.c_str()));
            WholeRedraw(picture.View())
                .save(QString(KIRVANA_BINARY_DIR "/screenshots/plot_whole_%1.png").arg(what.c_str()));
        }
    }
};

TEST_F(PictureTest, TheFittedPictureIsTheWholeRedraw) {
    picture.Draw(machine, input, BoxSize);
    EXPECT_FALSE(picture.LastMoved());
    ExpectAsWholeRedraw("fitted");
}

TEST_F(PictureTest, PansMoveThePictureAndDrawTheUncoveredStripsAsAWholeRedrawWould) {
    picture.Draw(machine, input, BoxSize);
    // Zoomed in on the middle, then panned by cursor steps in every direction, as the keys do.
    PlotView& view = picture.View();
    ASSERT_TRUE(ZoomToCorners(view, {500, 300}, {900, 600}, BoxRatio(BoxSize.width(), BoxSize.height()), 1));
    view.ViewChanged = true;
    picture.Draw(machine, input, BoxSize);
    EXPECT_FALSE(picture.LastMoved());  // a new scale is drawn whole
    ExpectAsWholeRedraw("zoomed");
    const double step = ViewWidthStep(view);
    const PlotPoint moves[] = {{3, 0}, {-5, 0}, {0, 2}, {0, -4}, {2, 3}, {-1, -1}, {7, -6}};
    int index = 0;
    for (PlotPoint move : moves) {
        const PlotPoint centre{(view.ViewTopLeft.X + view.ViewBottomRight.X) / 2 + move.X * step,
                               (view.ViewTopLeft.Y + view.ViewBottomRight.Y) / 2 + move.Y * step};
        PanTo(view, centre);
        picture.Draw(machine, input, BoxSize);
        EXPECT_TRUE(picture.LastMoved()) << "pan " << index;
        ExpectAsWholeRedraw("pan" + std::to_string(index++));
    }
}

TEST_F(PictureTest, APanOfTheFittedViewMovesToo) {
    picture.Draw(machine, input, BoxSize);
    PlotView& view = picture.View();
    view.ViewChanged = true;
    PanTo(view, {(view.ViewTopLeft.X + view.ViewBottomRight.X) / 2 - 6 * ViewWidthStep(view),
                 (view.ViewTopLeft.Y + view.ViewBottomRight.Y) / 2});
    picture.Draw(machine, input, BoxSize);
    EXPECT_TRUE(picture.LastMoved());
    ExpectAsWholeRedraw("fitted_pan");
}

TEST_F(PictureTest, APanFartherThanTheBoxDrawsItWhole) {
    picture.Draw(machine, input, BoxSize);
    PlotView& view = picture.View();
    view.ViewChanged = true;
    PanTo(view, {5000, 5000});
    picture.Draw(machine, input, BoxSize);
    EXPECT_FALSE(picture.LastMoved());
    ExpectAsWholeRedraw("far");
}

TEST_F(PictureTest, APictureDrawnOverByARunIsDrawnWholeAtThePan) {
    picture.Draw(machine, input, BoxSize);
    EntityRec hit = Pattern("SQUARE 10 A0", EntityKind::Punch, 40, 40);
    ToolOutline(hit);
    picture.Drawing().PlotEntity(1, hit, ColourMode::RealTime, true);
    PlotView& view = picture.View();
    view.ViewChanged = true;
    PanTo(view, {(view.ViewTopLeft.X + view.ViewBottomRight.X) / 2 + 2 * ViewWidthStep(view),
                 (view.ViewTopLeft.Y + view.ViewBottomRight.Y) / 2});
    picture.Draw(machine, input, BoxSize);
    // The done hit doesn't stay: the redraw shows the drawing in its background colours.
    EXPECT_FALSE(picture.LastMoved());
    ExpectAsWholeRedraw("after_run");
}

TEST_F(PictureTest, ARedrawOfTheSameViewPaintsNothingAndKeepsThePicture) {
    picture.Draw(machine, input, BoxSize);
    const QImage before = picture.Image().copy();
    const std::int64_t hits = picture.Drawing().HitsDrawn();
    input.LimitsOn = true;
    picture.Draw(machine, input, BoxSize);
    EXPECT_TRUE(picture.LastMoved());
    EXPECT_EQ(picture.Image(), before);
    // The limits are shapes over the picture: shown without painting it.
    EXPECT_TRUE(picture.Canvas().OverlayOf(OverlayId::ZoneRect0).Visible);
    // No entity was drawn.
    EXPECT_EQ(picture.Drawing().HitsDrawn(), hits);
    // The hits of a run are drawn on the picture again after it.
    EntityRec hit = Pattern("SQUARE 10 A0", EntityKind::Punch, 700, 500);
    ToolOutline(hit);
    picture.Drawing().PlotEntity(1, hit, ColourMode::RealTime, true);
    picture.Canvas().Finish();
    EXPECT_EQ(picture.Image().pixel(picture.Canvas().ToPixel({700, 500}).toPoint()),
              PlotColour(colours[ColourItem::PunchModeRealTimePunching]).rgb());
}

TEST_F(PictureTest, ANewDrawingIsDrawnWholeAtTheSameView) {
    picture.Draw(machine, input, BoxSize);
    picture.View().ViewChanged = true;
    std::vector<EntityRec> fewer = Entities();
    fewer.resize(2);
    input.DrawingPath = WriteDrawing(dir.Path() + "Other.drw", fewer);
    picture.Draw(machine, input, BoxSize);
    EXPECT_FALSE(picture.LastMoved());
}

TEST_F(PictureTest, AZoomLeavesOutWhatLiesOutsideTheView) {
    picture.Draw(machine, input, BoxSize);
    const std::int64_t fitted = picture.Drawing().HitsDrawn();
    PlotView& view = picture.View();
    ASSERT_TRUE(ZoomToCorners(view, {40, 40}, {140, 100}, BoxRatio(BoxSize.width(), BoxSize.height()), 1));
    view.ViewChanged = true;
    picture.Draw(machine, input, BoxSize);
    const std::int64_t zoomed = picture.Drawing().HitsDrawn() - fitted;
    EXPECT_GT(zoomed, 0);
    EXPECT_LT(zoomed, fitted / 20);
    ExpectAsWholeRedraw("zoomed_corner");
}

}  // namespace

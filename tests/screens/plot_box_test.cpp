// The plot on FrontEnd: a selected program drawn on its slot's box, zoom and pan by the
// graphics keys, the limits button, the hits of a run drawn as the poll finds them, and the
// screenshots of it.
#include <QDir>

#include "analysis/tool_outline.h"
#include "screens/panel_capture.h"
#include "screens/plot_box.h"
#include "tests/screens/golden_picture.h"
#include "tests/screens/panel_fixture.h"

using namespace kirvana;

namespace {

// The pixels of the box's picture in a colour of the table, on the sheet of GRID03 only (the
// done colour is the plot background's by default).
int PixelsOf(PlotBox& box, std::int32_t colour, bool other = false) {
    const QRgb wanted = PlotColour(colour).rgb();
    const QImage& image = box.Picture();
    QRectF sheet = QRectF(box.Canvas().ToPixel({0, 0}), box.Canvas().ToPixel({1200, 800})).normalized();
    QRect inside = sheet.toAlignedRect().adjusted(3, 3, -3, -3).intersected(image.rect());
    int count = 0;
    for (int y = inside.top(); y <= inside.bottom(); ++y)
        for (int x = inside.left(); x <= inside.right(); ++x) count += (image.pixel(x, y) == wanted) != other;
    return count;
}

double Width(const PlotView& view) { return view.ViewBottomRight.X - view.ViewTopLeft.X; }

void Shot(Panel& panel, const std::string& name) {
    Spin(30);
    QDir().mkpath(KIRVANA_BINARY_DIR "/screenshots");
    QImage image = CapturePanel(panel);
    ASSERT_FALSE(image.isNull());
    EXPECT_TRUE(image.save(QString(KIRVANA_BINARY_DIR "/screenshots/%1.png").arg(name.c_str()), "PNG"));
}

}  // namespace

TEST_F(PanelTest, ASelectedProgramIsDrawnOnItsSlotsBox) {
    ASSERT_EQ(Start(), 0);
    PlotBox* box = F().Plot(1);
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(F().PlotBoxes()->currentWidget(), box);
    Select(1, "GRID03");
    const std::int32_t sheet = P().Colours()[ColourItem::SheetFill];
    EXPECT_GT(PixelsOf(*box, sheet), 100000);
    // The 63 hits' outlines (smoothed, so counted as what differs from the sheet).
    EXPECT_GT(PixelsOf(*box, sheet, true), 63 * 20);
    EXPECT_EQ(box->Picture().size(), box->contentsRect().size());
    // The view fits the sheet of 1200 x 800 with its margin.
    EXPECT_LE(box->View().ViewTopLeft.X, -10);
    EXPECT_GE(box->View().ViewBottomRight.X, 1210);
}

TEST_F(PanelTest, ZoomOutAndRedrawByTheGraphicsKeys) {
    ASSERT_EQ(Start(), 0);
    Select(1, "GRID03");
    PlotBox* box = F().Plot(1);
    const PlotView fitted = box->View();
    Key(key::F7);
    Key('O');
    EXPECT_TRUE(box->View().ViewChanged);
    EXPECT_DOUBLE_EQ(Width(box->View()), 1.5 * Width(fitted));
    EXPECT_EQ(F().TextPanel()->text().toStdString(), "GRAPHICS - ZOOM OUT");
    Key('R');
    EXPECT_FALSE(box->View().ViewChanged);
    EXPECT_DOUBLE_EQ(Width(box->View()), Width(fitted));
}

TEST_F(PanelTest, ZoomInByTheCursorKeys) {
    ASSERT_EQ(Start(), 0);
    Select(1, "GRID03");
    PlotBox* box = F().Plot(1);
    const PlotView fitted = box->View();
    Key(key::F7);
    Key('Z');
    EXPECT_TRUE(box->Canvas().OverlayOf(OverlayId::CrossLine1).Visible);
    Key('S');  // the first corner in the middle
    for (int i = 0; i < 8; ++i) Key(key::Right);
    for (int i = 0; i < 4; ++i) Key(key::Up);
    EXPECT_TRUE(box->Canvas().OverlayOf(OverlayId::ZoomRect).Visible);
    Key('S');
    EXPECT_EQ(P().Nav().ViewMode, 0);
    EXPECT_TRUE(box->View().ViewChanged);
    EXPECT_NEAR(Width(box->View()), 8 * Width(fitted) / 64, 1e-6);  // the height stood, of the same ratio
    EXPECT_FALSE(box->Canvas().OverlayOf(OverlayId::ZoomRect).Visible);
    EXPECT_FALSE(box->Canvas().OverlayOf(OverlayId::CrossLine1).Visible);
    Shot(P(), "plot_zoomed");
}

TEST_F(PanelTest, PanByTheButtonsAndCancel) {
    ASSERT_EQ(Start(), 0);
    Select(1, "GRID03");
    PlotBox* box = F().Plot(1);
    const PlotView fitted = box->View();
    Key(key::F7);
    P().GraphicsButton(4);
    P().CursorButton(1);
    P().CursorButton(1);
    P().CursorButton(6);
    EXPECT_NEAR(box->View().ViewTopLeft.X, fitted.ViewTopLeft.X - 2 * Width(fitted) / 64, 1e-6);
    P().GraphicsButton(4);
    P().CursorButton(2);
    P().CursorCancel();
    EXPECT_FALSE(box->Canvas().OverlayOf(OverlayId::CrossLine1).Visible);
    EXPECT_EQ(P().Nav().ViewMode, 0);
}

TEST_F(PanelTest, LimitsShowThePunchingZones) {
    ASSERT_EQ(Start(), 0);
    Select(1, "GRID03");
    PlotBox* box = F().Plot(1);
    EXPECT_FALSE(box->Canvas().OverlayOf(OverlayId::ZoneRect0).Visible);
    Key(key::F7);
    Key('L');
    EXPECT_TRUE(box->Canvas().OverlayOf(OverlayId::ZoneRect0).Visible);
    EXPECT_TRUE(box->Canvas().OverlayOf(OverlayId::PadCirc1).Visible);
    Key('L');
    EXPECT_FALSE(box->Canvas().OverlayOf(OverlayId::ZoneRect0).Visible);
}

TEST_F(PanelTest, HitsOfARunAreDrawnInTheDoneColourAsThePollFindsThem) {
    ASSERT_EQ(Start(), 0);
    Select(1, "GRID03");
    PlotBox* box = F().Plot(1);
    P().PlotSettings().RealTimePunchFlag = true;
    P().PlotSettings().PunchIconOn = true;
    P().PlotSettings().PunchTrailStyle = 2;
    const std::int32_t done = P().Colours()[ColourItem::PunchModeRealTimePunching];
    EXPECT_EQ(PixelsOf(*box, done), 0);
    // The run begins; the first 25 hits are done.
    PlotUpdate& update = P().State().Display.Plot;
    update.RunDataReset = true;
    for (std::int32_t n = 2; n <= 26; ++n) update.DoneHits.push_back(n);
    update.ToolMoved = true;
    P().State().Poll.Position = {300, 200, 0, 0};
    P().ShowPlotUpdate();
    const int afterFirst = PixelsOf(*box, done);
    EXPECT_GT(afterFirst, 25 * 4);
    EXPECT_TRUE(box->Canvas().OverlayOf(OverlayId::IconShape).Visible);
    // The next tick: more hits, without a new start.
    update = PlotUpdate{};
    for (std::int32_t n = 27; n <= 40; ++n) update.DoneHits.push_back(n);
    update.ToolMoved = true;
    P().State().Poll.Position = {500, 300, 0, 0};
    P().ShowPlotUpdate();
    EXPECT_GT(PixelsOf(*box, done), afterFirst);
    EXPECT_EQ(box->Canvas().OverlayOf(OverlayId::IconShape).X1, 500);
    Shot(P(), "plot_running");
    // A redraw sets everything back to the background colours.
    P().RedrawPlot(1);
    EXPECT_EQ(PixelsOf(*box, done), 0);
}

TEST_F(PanelTest, AResizedBoxIsDrawnAtItsNewSize) {
    ASSERT_EQ(Start(), 0);
    Select(1, "GRID03");
    PlotBox* box = F().Plot(1);
    const QSize before = box->Picture().size();
    F().resize(1280, 960);
    Spin(50);
    EXPECT_NE(box->Picture().size(), before);
    EXPECT_EQ(box->Picture().size(), box->contentsRect().size());
}

TEST_F(PanelTest, ScreenshotOfTheDemoProgramPlotted) {
    ASSERT_EQ(Start(), 0);
    Select(1, "GRID03");
    Shot(P(), "plot_front_end");
}

namespace {

EntityRec ShowcaseHit(const char* toolText, int x, int y, int cAngle) {
    EntityRec rec;
    rec.Kind = EntityKind::Punch;
    ParseToolText(toolText, rec.Tool, false);
    rec.Tool.Station = 20;
    rec.Tool.Extra1 = static_cast<float>(cAngle);
    rec.Points.Position = {static_cast<float>(x), static_cast<float>(y)};
    ToolOutline(rec);
    return rec;
}

}  // namespace

// Every tool shape at four angles, each pattern kind, profiles of each kerf side, a reposition,
// drawn by the panel's canvas into a picture for a person to look at; solid in the last row.
TEST(PlotPicture, EveryShapeEveryPatternAndProfile) {
    const char* tools[] = {"DIAMETER 20",        "SQUARE 20 A0",    "RAD-SQUARE 20R4A0", "RECTANGLE 30X12A0",
                           "RAD-RECT 30X12R3A0", "OBROUND 30X12A0", "SINGLE-D 20X16A0",  "DOUBLE-D 20X14A0",
                           "CANNON-D 30X12A0",   "HEXAGON 20A0",    "KEYWAY 20X25W6A0",  "LOUVRE 36X10A0",
                           "CRUCIFORM 30W8R2A0", "SPECIAL STAR A0"};
    std::vector<EntityRec> records;
    for (int t = 0; t < 14; ++t)
        for (int a = 0; a < 4; ++a) records.push_back(ShowcaseHit(tools[t], 30 + 50 * t, 40 + 50 * a, 30 * a));
    for (int t = 0; t < 14; ++t) records.push_back(ShowcaseHit(tools[t], 30 + 50 * t, 240, 15));
    EntityRec linear = ShowcaseHit("OBROUND 20X8A0", 0, 0, 0);
    linear.Kind = EntityKind::LinearPattern;
    linear.Points.Entry = {30, 300};
    linear.Points.Exit = {330, 360};
    linear.Values[2] = 30;
    linear.Counts[1] = 11;
    ToolOutline(linear);
    EntityRec grid = ShowcaseHit("RECTANGLE 12X6A0", 0, 0, 0);
    grid.Kind = EntityKind::GridPattern;
    grid.Points.Start = grid.Points.Entry = {380, 300};
    grid.Values[1] = 120;
    grid.Values[2] = 20;
    grid.Values[3] = 60;
    grid.Values[4] = 20;
    grid.Values[10] = 10;
    grid.Counts[1] = 7;
    grid.Counts[2] = 4;
    ToolOutline(grid);
    EntityRec arc = ShowcaseHit("RECTANGLE 16X6A0", 0, 0, 0);
    arc.Kind = EntityKind::ArcPattern;
    arc.Points.Position = {620, 360};
    arc.Values[1] = 45;
    arc.Values[10] = 0;
    arc.Values[11] = 300;
    arc.Values[12] = 30;
    arc.Counts[1] = 11;
    arc.Counts[2] = -1;
    ToolOutline(arc);
    records.insert(records.end(), {linear, grid, arc});
    for (int side = 0; side < 3; ++side) {
        EntityRec line;
        line.Kind = EntityKind::LineProfile;
        line.Tool = PlasmaTool("PLASMA", 1, 5);
        line.Compensation = static_cast<std::int16_t>(side);
        line.Points.Start = {30, static_cast<float>(430 + 20 * side)};
        line.Points.End = {300, static_cast<float>(430 + 20 * side)};
        ToolOutline(line);
        EntityRec round = line;
        round.Kind = EntityKind::ArcProfile;
        round.Points.Position = {static_cast<float>(400 + 80 * side), 460};
        round.Values[1] = 30;
        round.Values[10] = 45;
        round.Values[11] = side == 1 ? -270.0f : 270.0f;
        ToolOutline(round);
        records.insert(records.end(), {line, round});
    }
    EntityRec reposition;
    reposition.Kind = EntityKind::Reposition;
    reposition.Points.Position = {650, 460};
    reposition.Values[1] = 60;
    records.push_back(reposition);

    QImage image(1000, 700, QImage::Format_RGB32);
    ColourTable colours = DefaultColours();
    image.fill(PlotColour(colours[ColourItem::PlotBackground]));
    PlotCanvas canvas;
    canvas.SetDevice(&image, image.size());
    PlotView view;
    FitView(view, {1000, 700, 0, 0, 720, 500, 1});
    canvas.SetView(view.ViewTopLeft, view.ViewBottomRight);
    DrawSheet(canvas, colours, true, true, 720, 500);
    TempDir toolsDir;
    Plotter plotter(canvas, colours, toolsDir.Path());
    for (const EntityRec& rec : records) plotter.PlotEntity(1, rec, ColourMode::Background, false);
    for (int t = 0; t < 14; ++t)
        plotter.PlotEntity(1, records[static_cast<std::size_t>(56 + t)], ColourMode::RealTime, true);
    canvas.Finish();
    // The solid hits are filled: the middle of the last row's rectangle is in the done colour.
    EXPECT_EQ(image.pixel(canvas.ToPixel({180, 240}).toPoint()),
              PlotColour(colours[ColourItem::PunchModeRealTimePunching]).rgb());
    EXPECT_EQ(image.pixel(canvas.ToPixel({180, 40}).toPoint()), PlotColour(colours[ColourItem::SheetFill]).rgb());
    ExpectGolden(image, "every_shape");
}

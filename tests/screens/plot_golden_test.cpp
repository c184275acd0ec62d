// Golden pictures of the plot, looked at and kept in tests/data/plot: a program mirrored in X, Y
// and both through the whole selection; a multi-part sheet; profiles with their kerf lines; and
// the pattern variants the picture of every shape leaves out. Each is written to the build's
// screenshots folder and compared with the small tolerance of the golden pictures.
#include <QDir>
#include <fstream>
#include <sstream>

#include "analysis/tool_outline.h"
#include "screens/plot_picture.h"
#include "system/slots.h"
#include "tests/screens/golden_picture.h"
#include "tests/screens/panel_fixture.h"

using namespace kirvana;

namespace {

constexpr QSize GoldenSize(800, 560);

// The records drawn on a picture fitted to a sheet, as a redraw draws them.
QImage Picture(const std::vector<EntityRec>& records, double sheetX, double sheetY, const std::string& partDir = "",
               PlotPoint viewTopLeft = {0, 0}, PlotPoint viewBottomRight = {0, 0}) {
    QImage image(GoldenSize, QImage::Format_RGB32);
    ColourTable colours = DefaultColours();
    image.fill(PlotColour(colours[ColourItem::PlotBackground]));
    PlotCanvas canvas;
    canvas.SetDevice(&image, image.size());
    PlotView view;
    FitView(view, {static_cast<double>(GoldenSize.width()), static_cast<double>(GoldenSize.height()), 0, 0, sheetX,
                   sheetY, 1});
    if (!(viewTopLeft == viewBottomRight))
        SetViewCorners(view, viewTopLeft.X, viewTopLeft.Y, viewBottomRight.X, viewBottomRight.Y, 1);
    canvas.SetView(view.ViewTopLeft, view.ViewBottomRight);
    DrawSheet(canvas, colours, true, true, sheetX, sheetY);
    Plotter plotter(canvas, colours, "");
    plotter.SetPartDir(partDir);
    for (const EntityRec& rec : records) plotter.PlotEntity(1, rec, ColourMode::Background, false);
    canvas.Finish();
    return image;
}

EntityRec WithTool(std::int16_t kind, const char* toolText) {
    EntityRec rec;
    rec.Kind = kind;
    ParseToolText(toolText, rec.Tool, false);
    rec.Tool.Station = 20;
    return rec;
}

EntityRec Profile(int side, float kerf, PlotPoint from, PlotPoint to) {
    EntityRec rec;
    rec.Kind = EntityKind::LineProfile;
    rec.Tool = PlasmaTool("PLASMA", 1, 5);
    rec.Compensation = static_cast<std::int16_t>(side);
    rec.Settings[7] = kerf;
    rec.Points.Start = {static_cast<float>(from.X), static_cast<float>(from.Y)};
    rec.Points.End = {static_cast<float>(to.X), static_cast<float>(to.Y)};
    ToolOutline(rec);
    return rec;
}

EntityRec ArcProfile(int side, float kerf, PlotPoint centre, float radius, float first, float sweep) {
    EntityRec rec = Profile(side, kerf, centre, centre);
    rec.Kind = EntityKind::ArcProfile;
    rec.Points.Position = {static_cast<float>(centre.X), static_cast<float>(centre.Y)};
    rec.Values[1] = radius;
    rec.Values[10] = first;
    rec.Values[11] = sweep;
    ToolOutline(rec);
    return rec;
}

std::string ReadText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace

// A corner of holes punched four times: as written, mirrored in X (M11), in both (M13) and in Y
// (M12), each copy moved by G56; selected as the Select button does and drawn from its `.drw`.
TEST_F(PanelTest, GoldenPictureOfAMirroredProgram) {
    Write("Programs/Dorvenis/MIRROR05.prg", ReadText(KIRVANA_SOURCE_DIR "/tests/data/plot/MIRROR05.prg"));
    ASSERT_EQ(Start(), 0);
    Select(1, "MIRROR05");
    const SlotRecord& slot = P().State().Slots[0];
    ColourTable colours = DefaultColours();
    PlotPicture picture(colours, "");
    PlotBoxInput input;
    input.DrawingPath = SlotFile(P().State().Config.Dirs, 1, "drw");
    input.SheetX = slot.SheetX;
    input.SheetY = slot.SheetY;
    input.Clamps = slot.Clamps;
    const PlotResult result = picture.Draw(P().State().Config.Machine, input, GoldenSize);
    EXPECT_EQ(result.Entities, 16);
    ExpectGolden(picture.Image(), "mirrors");
}

// A part of punches of several tools and a cut outline with its kerf, repeated 3 x 2 on a sheet.
TEST(PlotGolden, MultiPartSheet) {
    TempDir dir;
    std::vector<EntityRec> part;
    EntityRec hole = WithTool(EntityKind::Punch, "DIAMETER 20");
    hole.Points.Position = {60, 60};
    EntityRec slotHit = WithTool(EntityKind::Punch, "OBROUND 40X12A0");
    slotHit.Points.Position = {200, 60};
    slotHit.Tool.Extra1 = 90;
    EntityRec row = WithTool(EntityKind::LinearPattern, "RECTANGLE 20X8A0");
    row.Points.Entry = {60, 180};
    row.Points.Exit = {240, 180};
    row.Values[2] = 30;
    row.Counts[1] = 7;
    for (EntityRec* rec : {&hole, &slotHit, &row}) {
        ToolOutline(*rec);
        part.push_back(*rec);
    }
    const PlotPoint corners[] = {{20, 20}, {300, 20}, {300, 230}, {20, 230}};
    for (int i = 0; i < 4; ++i) part.push_back(Profile(2, 3, corners[i], corners[(i + 1) % 4]));
    DrawingFile file;
    ASSERT_TRUE(file.Create(dir.Path() + "Bracket.prw"));
    std::int16_t counter = 0;
    EntityRec sheet;
    sheet.Kind = EntityKind::Sheet;
    AppendEntity(file, counter, sheet);
    for (EntityRec rec : part) AppendEntity(file, counter, rec);
    sheet.RecordNo = counter;
    file.Put(1, sheet);
    ASSERT_TRUE(file.Close());
    EntityRec multi;
    multi.Kind = EntityKind::MultiPart;
    multi.Remark = FixedText("Bracket.prw", RemarkWidth);
    multi.Counts[1] = 3;
    multi.Counts[2] = 2;
    multi.Values[1] = 320;
    multi.Values[2] = 250;
    multi.Values[11] = 330;
    multi.Values[12] = 260;
    ToolOutline(multi);
    ExpectGolden(Picture({multi}, 1000, 520, dir.Path()), "multi_part");
}

// Profiles of each kerf side, straight and round both ways, seen close enough for the kerf of
// 4 mm to stand apart from the cut: the dotted kerf line on the left of the way for G41, on the
// right for G42, none for G40.
TEST(PlotGolden, KerfLinesOfEachSide) {
    std::vector<EntityRec> records;
    for (int side = 0; side < 3; ++side) {
        const double y = 40 + 60 * side;
        records.push_back(Profile(side, 4, {20, y}, {140, y}));
        records.push_back(Profile(side, 4, {140, y + 40}, {20, y + 30}));
        records.push_back(ArcProfile(side, 4, {200, y + 20}, 20, 0, 270));
        records.push_back(ArcProfile(side, 4, {270, y + 20}, 20, 90, -270));
    }
    ExpectGolden(Picture(records, 320, 220), "kerf_lines");
}

// The patterns the picture of every shape leaves out: a grid turned by 90 degrees, an arc
// pattern whose tool keeps its angle, one whose C angle comes from the cycle's rotation, a
// linear pattern walked backwards, and block-skipped rows (Block Skip 1 and 2, white by default).
TEST(PlotGolden, PatternVariants) {
    std::vector<EntityRec> records;
    EntityRec turned = WithTool(EntityKind::GridPattern, "RECTANGLE 12X5A0");
    turned.Points.Start = turned.Points.Entry = {220, 100};
    turned.Values[1] = 120;
    turned.Values[2] = 20;
    turned.Values[3] = 60;
    turned.Values[4] = 30;
    turned.Counts[1] = 7;
    turned.Counts[2] = 3;
    turned.Counts[3] = -1;
    records.push_back(turned);
    EntityRec fixed = WithTool(EntityKind::ArcPattern, "RECTANGLE 16X6A0");
    fixed.Points.Position = {300, 110};
    fixed.Values[1] = 60;
    fixed.Values[11] = 270;
    fixed.Values[12] = 30;
    fixed.Counts[1] = 10;
    fixed.Counts[2] = 0;
    records.push_back(fixed);
    EntityRec rotated = WithTool(EntityKind::ArcPattern, "OBROUND 18X6A0");
    rotated.Points.Position = {470, 110};
    rotated.Values[1] = 60;
    rotated.Values[11] = 360;
    rotated.Values[12] = 45;
    rotated.Values[15] = 45;
    rotated.CycleRotate = -1;
    rotated.Counts[1] = 8;
    rotated.Counts[2] = -1;
    records.push_back(rotated);
    EntityRec backwards = WithTool(EntityKind::LinearPattern, "SINGLE-D 14X11A0");
    backwards.Points.Entry = {560, 260};
    backwards.Points.Exit = {40, 260};
    backwards.Values[2] = 40;
    backwards.Counts[1] = 14;
    records.push_back(backwards);
    for (int mode = 1; mode <= 2; ++mode) {
        EntityRec skipped = WithTool(EntityKind::LinearPattern, "HEXAGON 14A0");
        skipped.Points.Entry = {40, 300.0f + 30.0f * static_cast<float>(mode)};
        skipped.Points.Exit = {560, 300.0f + 30.0f * static_cast<float>(mode)};
        skipped.Values[2] = 40;
        skipped.Counts[1] = 14;
        skipped.PathMode = static_cast<std::int16_t>(mode);
        records.push_back(skipped);
    }
    for (EntityRec& rec : records) ToolOutline(rec);
    ExpectGolden(Picture(records, 600, 400), "pattern_variants");
}

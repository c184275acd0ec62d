// The entity screens' logic: reading the boxes, the linked fields, the grid's completion and
// every validation text.
#include <gtest/gtest.h>

#include "dialogue/dialogue_entities.h"

namespace kirvana {
namespace {

ScreenTool RoundTool(std::int16_t station = 1, bool autoindex = false) {
    ScreenTool tool;
    ParseToolText("DIAMETER 10", tool.Tool, false);
    tool.StationNo = station;
    tool.Autoindex = autoindex;
    return tool;
}

ScreenTool PlasmaScreenTool() {
    ScreenTool tool;
    tool.Tool = PlasmaTool("PLASMA", 12, 0);
    tool.StationNo = -1;
    return tool;
}

SettingsArray NoSettings() {
    SettingsArray s;
    ClearSettings(s);
    return s;
}

const DialogueLimits Limits{-25, 2540, -10, 1270, 0};

TEST(DialogueBoxes, ValuesAreLeadingNumbersRoundedAndInchesConverted) {
    EXPECT_DOUBLE_EQ(BoxLength("12.345678mm", false), 12.3457);
    EXPECT_DOUBLE_EQ(BoxLength("1", true), 25.4);
    EXPECT_DOUBLE_EQ(BoxLength("abc", false), 0);
    EXPECT_DOUBLE_EQ(BoxAngle("370"), 10);
    EXPECT_DOUBLE_EQ(BoxAngle("-90"), 270);
    EXPECT_DOUBLE_EQ(BoxAngle("12.34567"), 12.346);
    EXPECT_EQ(LengthText(25.4, true), "1.000");
    EXPECT_EQ(LengthText(12.345, false), "12.34");
}

TEST(GridCompletion, LengthAndPitchGiveHitsAndKeepTheLength) {
    GridDirection row{10, 3, 0};
    EXPECT_EQ(GridScore(row), 5);
    ASSERT_TRUE(CompleteGridDirection(row));
    EXPECT_EQ(row.Hits, 4);
    EXPECT_DOUBLE_EQ(row.Extent, 10);
}

TEST(GridCompletion, ANegativePitchTurnsTheLengthNegative) {
    GridDirection row{10, -3, 0};
    ASSERT_TRUE(CompleteGridDirection(row));
    EXPECT_DOUBLE_EQ(row.Extent, -10);
    EXPECT_EQ(row.Hits, 4);
}

TEST(GridCompletion, AllThreeGivenTheLengthIsOverruled) {
    GridDirection row{10, 3, 5};
    EXPECT_EQ(GridScore(row), 9);
    ASSERT_TRUE(CompleteGridDirection(row));
    EXPECT_DOUBLE_EQ(row.Extent, 12);
}

TEST(GridCompletion, ExtentAndHitsGiveThePitchPitchAndHitsTheExtent) {
    GridDirection a{12, 0, 4};
    ASSERT_TRUE(CompleteGridDirection(a));
    EXPECT_DOUBLE_EQ(a.Pitch, 4);
    GridDirection b{0, 2.5, 5};
    ASSERT_TRUE(CompleteGridDirection(b));
    EXPECT_DOUBLE_EQ(b.Extent, 10);
}

TEST(GridCompletion, ARowWithOnlyAPitchIsRefused) {
    GridFields grid;
    grid.Row = {0, 3, 0};
    grid.Column = {20, 10, 0};
    Composed c = ComposeGrid(grid, 0, RoundTool());
    EXPECT_FALSE(c.Ok);
    EXPECT_EQ(c.Message, "Invalid Grid Pattern !");
    // Hits of 1 do not count: a pitch and a single hit are still one value.
    grid.Row = {0, 3, 1};
    EXPECT_EQ(ComposeGrid(grid, 0, RoundTool()).Message, "Invalid Grid Pattern !");
}

TEST(GridCompletion, AGridRecordHoldsBothDirections) {
    GridFields grid;
    grid.X = 100;
    grid.Y = 50;
    grid.Row = {40, 10, 0};
    grid.Column = {0, 20, 3};
    grid.Angle = 0;
    Composed c = ComposeGrid(grid, 0, RoundTool());
    ASSERT_TRUE(c.Ok);
    EXPECT_EQ(c.Record.Kind, 225);
    EXPECT_EQ(c.Record.Counts[1], 5);
    EXPECT_EQ(c.Record.Counts[2], 3);
    EXPECT_EQ(c.Record.Counts[3], 0);
    EXPECT_FLOAT_EQ(c.Record.Values[3], 40);
    EXPECT_FLOAT_EQ(c.Record.Points.Start.X, 100);
    EXPECT_EQ(c.Record.StationNo, 1);
}

TEST(PunchScreen, APunchOutsideTheLimitsIsStored) {
    Composed c = ComposePunch(5000, -300, 0, 0, RoundTool(), {}, Limits);
    ASSERT_TRUE(c.Ok);
    EXPECT_EQ(c.Record.Kind, 210);
    EXPECT_FLOAT_EQ(c.Record.Points.Position.X, 5000);
    EXPECT_FLOAT_EQ(c.Record.Points.Exit.Y, -300);
}

TEST(PunchScreen, AnAutoindexStationKeepsTheIndexAngleAPlainOneDoesNot) {
    Composed plain = ComposePunch(10, 10, 45, 0, RoundTool(1, false), {}, Limits);
    EXPECT_FLOAT_EQ(plain.Record.Tool.Extra1, 0);
    ScreenTool rect;
    ParseToolText("RECTANGLE 30X5", rect.Tool, false);
    rect.StationNo = 5;
    rect.Autoindex = true;
    Composed indexed = ComposePunch(10, 10, 45, 0, rect, {}, Limits);
    EXPECT_FLOAT_EQ(indexed.Record.Tool.Extra1, 45);
    EXPECT_EQ(indexed.Record.StationNo, 5);
}

TEST(PunchScreen, OptionOneIsAMoveFromTheLastPoint) {
    Composed c = ComposePunch(100, 50, 0, 1, RoundTool(), LastPoint{20, 10}, Limits);
    ASSERT_TRUE(c.Ok);
    EXPECT_EQ(c.Record.Kind, 110);
    EXPECT_FLOAT_EQ(c.Record.Points.Start.X, 20);
    EXPECT_FLOAT_EQ(c.Record.Points.Middle.X, 60);
    EXPECT_FLOAT_EQ(c.Record.Points.End.Y, 50);
    EXPECT_FLOAT_EQ(c.Record.Points.Exit.X, 100);
}

TEST(LineScreen, FieldsFollowTheLastChange) {
    LineFields f;
    f.Change(LineFields::StartX, 10);
    f.Change(LineFields::StartY, 20);
    f.Change(LineFields::Length, 100);
    f.Change(LineFields::Angle, 90);
    EXPECT_NEAR(f.X2, 10, 1e-3);
    EXPECT_NEAR(f.Y2, 120, 1e-3);
    // The start moves the finish along while length and angle stand.
    f.Change(LineFields::StartX, 30);
    EXPECT_NEAR(f.X2, 30, 1e-3);
    // A finish typed by hand holds: a start change then changes length and angle.
    f.Change(LineFields::FinishX, 130);
    f.Change(LineFields::FinishY, 20);
    EXPECT_NEAR(f.LengthValue, 100, 1e-3);
    EXPECT_NEAR(f.AngleValue, 0, 1e-3);
    f.Change(LineFields::StartX, 80);
    EXPECT_NEAR(f.X2, 130, 1e-3);
    EXPECT_NEAR(f.LengthValue, 50, 1e-3);
    // Pitch gives hits, hits give pitch.
    f.Change(LineFields::Pitch, 12);
    EXPECT_EQ(f.HitsValue, 6);  // 4 whole pitches and a remainder
    f.Change(LineFields::Hits, 6);
    EXPECT_NEAR(f.PitchValue, 10, 1e-3);
    f.Change(LineFields::Pitch, 10);
    EXPECT_EQ(f.HitsValue, 6);
}

TEST(LineScreen, ValidationTexts) {
    LineFields f;
    f.Change(LineFields::Length, 100);
    f.Change(LineFields::Pitch, 10);
    EXPECT_TRUE(ComposeLine(f, 0, 0, RoundTool(), NoSettings()).Ok);
    LineFields one = f;
    one.HitsValue = 1;
    EXPECT_EQ(ComposeLine(one, 0, 0, RoundTool(), NoSettings()).Message, "Invalid Line !");
    LineFields noPitch = f;
    noPitch.PitchValue = 0;
    EXPECT_EQ(ComposeLine(noPitch, 0, 0, RoundTool(), NoSettings()).Message, "Invalid Line !");
    LineFields point;
    EXPECT_EQ(ComposeLine(point, 0, 0, RoundTool(), NoSettings()).Message, "Invalid Line !");
    EXPECT_EQ(ComposeLine(point, 0, 0, PlasmaScreenTool(), NoSettings()).Message, "Invalid Line !");
    // A profile needs neither pitch nor hits, and takes the plasma settings.
    LineFields profile;
    profile.Change(LineFields::Length, 50);
    SettingsArray settings = NoSettings();
    settings[1] = 3000;
    Composed c = ComposeLine(profile, 0, 2, PlasmaScreenTool(), settings);
    ASSERT_TRUE(c.Ok);
    EXPECT_EQ(c.Record.Kind, 120);
    EXPECT_EQ(c.Record.Compensation, 2);
    EXPECT_EQ(c.Record.StationNo, -1);
    EXPECT_FLOAT_EQ(c.Record.Settings[1], 3000);
}

TEST(ArcScreen, ThreePointsGiveCentreRadiusAndSense) {
    ArcFields f;
    f.Option = 0;
    f.X1 = 110, f.Y1 = 100, f.XM = 100, f.YM = 110, f.X2 = 90, f.Y2 = 100;
    ASSERT_TRUE(f.Settle());
    EXPECT_NEAR(f.CentreX, 100, 1e-3);
    EXPECT_NEAR(f.CentreY, 100, 1e-3);
    EXPECT_NEAR(f.Radius, 10, 1e-3);
    EXPECT_NEAR(f.Sweep, 180, 1e-3);
    f.YM = 90;  // through the bottom: clockwise
    ASSERT_TRUE(f.Settle());
    EXPECT_NEAR(f.Sweep, -180, 1e-3);
    f.XM = 100, f.YM = 100;  // on one line
    EXPECT_FALSE(f.Settle());
}

TEST(ArcScreen, PitchesAndHitsFollowEachOther) {
    ArcFields f;
    f.Radius = 50;
    f.StartAngle = 0;
    f.FinishAngle = 90;
    f.Change(ArcFields::AngularPitchField, 30);
    EXPECT_EQ(f.HitsValue, 4);
    EXPECT_NEAR(f.NibblePitch, 26.1799, 1e-3);
    f.Change(ArcFields::HitsField, 7);
    EXPECT_NEAR(f.AngularPitch, 15, 1e-3);
    f.Change(ArcFields::NibblePitchField, 5);
    EXPECT_NEAR(f.AngularPitch, 5.73, 1e-2);
}

TEST(ArcScreen, ValidationTexts) {
    ArcFields f;
    f.Radius = 0;
    f.StartAngle = 0, f.FinishAngle = 90;
    EXPECT_EQ(ComposeArc(f, 0, false, 0, RoundTool(), NoSettings()).Message, "Invalid Arc !");
    f.Radius = 20;
    // No hits and no pitch: refused for a punch, fine for a profile.
    EXPECT_EQ(ComposeArc(f, 0, false, 0, RoundTool(), NoSettings()).Message, "Invalid Arc !");
    Composed profile = ComposeArc(f, 0, false, 1, PlasmaScreenTool(), NoSettings());
    ASSERT_TRUE(profile.Ok);
    EXPECT_EQ(profile.Record.Kind, 130);
    EXPECT_NEAR(profile.Record.Points.Start.X, 20, 1e-3);
    EXPECT_NEAR(profile.Record.Points.End.Y, 20, 1e-3);
    f.Change(ArcFields::HitsField, 4);
    Composed pattern = ComposeArc(f, 0, true, 0, RoundTool(), NoSettings());
    ASSERT_TRUE(pattern.Ok);
    EXPECT_EQ(pattern.Record.Kind, 230);
    EXPECT_EQ(pattern.Record.Counts[1], 4);
    EXPECT_EQ(pattern.Record.Counts[2], -1);
    EXPECT_FLOAT_EQ(pattern.Record.Values[12], 30);
}

TEST(ArcScreen, APolarArcGivesItsThreePoints) {
    ArcFields f;
    f.CentreX = 100, f.CentreY = 100, f.Radius = 10, f.StartAngle = 0, f.FinishAngle = 180;
    ASSERT_TRUE(f.Settle());
    EXPECT_NEAR(f.X1, 110, 1e-3);
    EXPECT_NEAR(f.YM, 110, 1e-3);
    EXPECT_NEAR(f.X2, 90, 1e-3);
    // Back through the three points: the same arc.
    f.Option = 0;
    ASSERT_TRUE(f.Settle());
    EXPECT_NEAR(f.Sweep, 180, 1e-3);
    EXPECT_NEAR(f.CentreX, 100, 1e-3);
}

TEST(EditScreens, BoxesComeBackFromTheRecord) {
    LineFields line;
    line.Change(LineFields::StartX, 10);
    line.Change(LineFields::Length, 100);
    line.Change(LineFields::Angle, 30);
    line.Change(LineFields::Pitch, 10);
    Composed lineRec = ComposeLine(line, 0, 0, RoundTool(), NoSettings());
    ASSERT_TRUE(lineRec.Ok);
    LineFields back = LineFieldsOf(lineRec.Record);
    EXPECT_NEAR(back.X2, line.X2, 1e-3);
    EXPECT_NEAR(back.LengthValue, 100, 1e-3);
    EXPECT_NEAR(back.AngleValue, 30, 1e-3);
    EXPECT_EQ(back.HitsValue, line.HitsValue);

    GridFields grid;
    grid.X = 5;
    grid.Row = {40, 10, 0};
    grid.Column = {0, 20, 3};
    Composed gridRec = ComposeGrid(grid, 0, RoundTool());
    ASSERT_TRUE(gridRec.Ok);
    GridFields gridBack = GridFieldsOf(gridRec.Record);
    EXPECT_EQ(gridBack.Row.Hits, 5);
    EXPECT_DOUBLE_EQ(gridBack.Column.Extent, 40);

    ArcFields arc;
    arc.CentreX = 50, arc.CentreY = 60, arc.Radius = 20, arc.StartAngle = 270, arc.FinishAngle = 90;
    arc.Change(ArcFields::HitsField, 5);
    Composed arcRec = ComposeArc(arc, 0, false, 0, RoundTool(), NoSettings());
    ASSERT_TRUE(arcRec.Ok);
    ArcFields arcBack = ArcFieldsOf(arcRec.Record);
    EXPECT_NEAR(arcBack.Sweep, -180, 1e-3);
    EXPECT_NEAR(arcBack.FinishAngle, 90, 1e-3);
    EXPECT_NEAR(arcBack.AngularPitch, 45, 1e-3);
    EXPECT_EQ(arcBack.HitsValue, 5);
}

TEST(OtherScreens, DwellStopRepositionAndNest) {
    EXPECT_EQ(ComposeDwell(0, {}).Message, "Invalid Dwell Time !");
    Composed dwell = ComposeDwell(-1.5, LastPoint{3, 4});
    ASSERT_TRUE(dwell.Ok);
    EXPECT_FLOAT_EQ(dwell.Record.Values[1], 1.5);
    EXPECT_FLOAT_EQ(dwell.Record.Points.Position.X, 3);

    Composed stay = ComposeStop(3, 4, true, LastPoint{3, 4}, Limits);
    EXPECT_EQ(stay.Record.Counts[1], -1);
    EXPECT_EQ(stay.Record.Counts[2], 0);
    Composed away = ComposeStop(9000, 4, false, LastPoint{3, 4}, Limits);
    ASSERT_TRUE(away.Ok);  // outside the limits, no complaint
    EXPECT_EQ(away.Record.Counts[1], 0);
    EXPECT_EQ(away.Record.Counts[2], -1);

    double offset = 0;
    EXPECT_EQ(ComposeReposition(500, 100, 0, 0, Limits, offset).Message, "Invalid Reposition !");
    EXPECT_EQ(ComposeReposition(5000, 100, 300, 0, Limits, offset).Message, "Out Of Limits !");
    EXPECT_EQ(ComposeReposition(500, 2000, 300, 0, Limits, offset).Message, "Out Of Limits !");
    // A shift that leaves the position outside the moved limits.
    EXPECT_EQ(ComposeReposition(2400, 100, 300, 0, Limits, offset).Message, "Invalid Reposition !");
    Composed moved = ComposeReposition(1000, 100, 300, 2, Limits, offset);
    ASSERT_TRUE(moved.Ok);
    EXPECT_DOUBLE_EQ(offset, -300);
    EXPECT_FLOAT_EQ(moved.Record.Values[3], -325);
    EXPECT_FLOAT_EQ(moved.Record.Values[4], 2240);

    NestFields nest;
    nest.SheetX = 2000;
    nest.SheetY = 1000;
    nest.PartsX = 2;
    nest.PartsY = 0;
    EXPECT_EQ(ComposeNest(nest, 100, 50).Message, "Invalid Multi-Part !");
    nest.PartsY = 3;
    nest.SheetY = 1001;
    EXPECT_EQ(ComposeNest(nest, 100, 50).Message, "Invalid Multi-Part !");
    nest.SheetY = 1000;
    nest.GapX = 5;
    nest.GapY = 2.5;
    Composed part = ComposeNest(nest, 100, 50);
    ASSERT_TRUE(part.Ok);
    EXPECT_FLOAT_EQ(part.Record.Values[11], 105);
    EXPECT_FLOAT_EQ(part.Record.Values[12], 52.5);
    EXPECT_EQ(std::string(part.Record.Remark.substr(0, 10)), "Dlgprg.prw");
}

TEST(SheetScreen, SizesAndClamps) {
    bool defined = true;
    SheetFields f;
    f.SizeX = 1000;
    f.SizeY = 0;
    EntityRec none = ComposeSheet(f, 1, defined);
    EXPECT_FALSE(defined);
    EXPECT_FLOAT_EQ(none.Values[1], 0);
    f.SizeY = 500;
    f.ClampCount = 3;
    f.Clamps = {100, 0, 700, 0};
    EntityRec some = ComposeSheet(f, 4, defined);
    EXPECT_TRUE(defined);
    EXPECT_FLOAT_EQ(some.Values[7], 0);  // not all clamps set: none taken
    EXPECT_EQ(some.RecordNo, 4);
    f.Clamps = {100, 400, 700, 0};
    EntityRec all = ComposeSheet(f, 4, defined);
    EXPECT_FLOAT_EQ(all.Values[9], 700);
    EXPECT_FLOAT_EQ(all.Values[10], 0);
}

}  // namespace
}  // namespace kirvana

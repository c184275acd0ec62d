// ToolOutline: the margin, the minimum box and every routine, against values worked out by
// hand. Unrounded positions carry the error of the short Pi (sin 180 degrees is 3.6e-9), so
// they are compared to 1e-4; the rounded points exactly.
#include <gtest/gtest.h>

#include <cmath>

#include "analysis/entity.h"
#include "analysis/tool_outline.h"

namespace kirvana {
namespace {

constexpr double Near = 1e-4;

ToolRecord Tool(char shape, float d1, std::int16_t stationType = 10) {
    ToolRecord tool;
    tool.Valid = TrueWord;
    tool.Shape = shape;
    tool.D1 = d1;
    tool.D2 = d1;
    tool.Station = stationType;
    return tool;
}

EntityRec Record(std::int16_t kind) {
    EntityRec rec;
    ClearEntity(rec);
    rec.Kind = kind;
    return rec;
}

void ExpectPoint(const PointF& p, double x, double y, double tolerance = 0) {
    if (tolerance == 0) {
        EXPECT_EQ(p.X, static_cast<float>(x));
        EXPECT_EQ(p.Y, static_cast<float>(y));
    } else {
        EXPECT_NEAR(p.X, x, tolerance);
        EXPECT_NEAR(p.Y, y, tolerance);
    }
}

void ExpectBox(const BoxF& b, double lowX, double lowY, double highX, double highY, double tolerance = Near) {
    EXPECT_NEAR(b.Low.X, lowX, tolerance);
    EXPECT_NEAR(b.Low.Y, lowY, tolerance);
    EXPECT_NEAR(b.High.X, highX, tolerance);
    EXPECT_NEAR(b.High.Y, highY, tolerance);
}

double Width(const BoxF& b) { return static_cast<double>(b.High.X) - b.Low.X; }
double Height(const BoxF& b) { return static_cast<double>(b.High.Y) - b.Low.Y; }

EntityRec PunchWith(const ToolRecord& tool) {
    EntityRec rec = Record(EntityKind::Punch);
    rec.Points.Position = {100, 200};
    rec.Tool = tool;
    return rec;
}

// --- the common margin ---

TEST(HalfWidth, FiveUnlessAValidPunchToolIsWiderThanFive) {
    EXPECT_EQ(HalfWidth(ToolRecord()), 5);
    ToolRecord invalid = Tool('A', 20);
    invalid.Valid = FalseWord;
    EXPECT_EQ(HalfWidth(invalid), 5);
    EXPECT_EQ(HalfWidth(Tool('A', 20, 9)), 5);  // station type below 10: no real punch tool
    EXPECT_EQ(HalfWidth(Tool('A', 20, 10)), 10);
    EXPECT_EQ(HalfWidth(Tool('A', 5)), 5);  // not greater than 5
    EXPECT_EQ(HalfWidth(Tool('A', 5.5f)), 2.75);
    EXPECT_EQ(HalfWidth(Tool('A', 4)), 5);
}

TEST(ToolOutlineEdge, PunchWithNoValidToolHasClearBoxOfSide10) {
    EntityRec rec = PunchWith(ToolRecord());
    ToolOutline(rec);
    EXPECT_EQ(Width(rec.ClearBox), 10);
    EXPECT_EQ(Height(rec.ClearBox), 10);
    ExpectBox(rec.ClearBox, 95, 195, 105, 205, 0);
}

TEST(ToolOutlineEdge, PunchClearBoxFollowsTheHalfWidthJump) {
    // D1 20 gives side 20, D1 8 side 8, D1 4 stays at 10.
    for (auto [d1, side] : {std::pair{20.0f, 20.0}, {8.0f, 8.0}, {4.0f, 10.0}}) {
        SCOPED_TRACE(d1);
        EntityRec rec = PunchWith(Tool('A', d1));
        ToolOutline(rec);
        EXPECT_EQ(Width(rec.ClearBox), side);
        EXPECT_EQ(Height(rec.ClearBox), side);
    }
}

TEST(ToolOutlineEdge, DiameterToolHasAngleZeroInAnyEntity) {
    for (std::int16_t kind : std::initializer_list<std::int16_t>{100, 110, 120, 130, 151, 210, 220, 225, 230, 311, 321, 350, 355, 360, 500, 0}) {
        SCOPED_TRACE(kind);
        EntityRec rec = Record(kind);
        rec.Tool = Tool('A', 10);
        rec.Tool.Angle = 45;
        rec.Tool.Extra1 = 90;
        ToolOutline(rec);
        EXPECT_EQ(rec.Tool.Angle, 0);
        EXPECT_EQ(rec.Tool.Extra1, 0);
    }
}

TEST(ToolOutline, PlasmaToolHasNoDirectionEitherButASquareKeepsIts) {
    EntityRec plasma = Record(EntityKind::LineProfile);
    plasma.Tool = Tool('P', 0);
    plasma.Tool.Angle = 30;
    plasma.Tool.Extra1 = 30;
    ToolOutline(plasma);
    EXPECT_EQ(plasma.Tool.Angle, 0);
    EXPECT_EQ(plasma.Tool.Extra1, 0);
    EntityRec square = PunchWith(Tool('B', 10));
    square.Tool.Angle = 30;
    square.Tool.Extra1 = 30;
    ToolOutline(square);
    EXPECT_EQ(square.Tool.Angle, 30);
    EXPECT_EQ(square.Tool.Extra1, 30);
}

TEST(ToolOutline, CPositionIsNormalised) {
    for (auto [asked, stored] : {std::pair{-90.0f, 270.0f}, {370.0f, 10.0f}, {720.0f, 0.0f}, {359.5f, 359.5f}}) {
        EntityRec rec = PunchWith(Tool('B', 10));
        rec.Tool.Extra1 = asked;
        ToolOutline(rec);
        EXPECT_EQ(rec.Tool.Extra1, stored);
    }
    // Just below 0 would round to 360 as a single: it ends at 0.
    EntityRec rec = PunchWith(Tool('B', 10));
    rec.Tool.Extra1 = -1e-6f;
    ToolOutline(rec);
    EXPECT_GE(rec.Tool.Extra1, 0);
    EXPECT_LT(rec.Tool.Extra1, 360);
}

// --- the minimum box ---

TEST(MinimumBox, NoThinnerThanAFifthOfTheLengthThenNoThinnerThan5) {
    BoxF box{{0, 0}, {100, 2}};
    MinimumBox(box, 100);
    ExpectBox(box, 0, -9, 100, 11, 0);
    BoxF small{{10, 10}, {11, 10}};
    MinimumBox(small, 10);  // a fifth is 2, then 5
    ExpectBox(small, 8, 7.5, 13, 12.5, 0);
    BoxF side{{0, 0}, {1, 100}};
    MinimumSide(side);
    ExpectBox(side, -2, 0, 3, 100, 0);
}

TEST(ToolOutlineEdge, HorizontalLineOf100WithD1Of6IsAtLeast20High) {
    // Linear Pattern (margin 3 from the tool), Move and Line Profile (no margin).
    EntityRec linear = Record(EntityKind::LinearPattern);
    linear.Tool = Tool('A', 6);
    linear.Points.Entry = {0, 0};
    linear.Points.Exit = {100, 0};
    linear.Values[2] = 10;
    ToolOutline(linear);
    EXPECT_EQ(linear.Values[1], 100);
    EXPECT_GE(Height(linear.ClearBox), 20);
    ExpectBox(linear.ClearBox, -3, -10, 103, 10, 0);

    EntityRec move = Record(EntityKind::Move);
    move.Tool = Tool('A', 6);
    move.Points.Start = {0, 0};
    move.Points.End = {100, 0};
    move.Values[1] = 100;
    ToolOutline(move);
    EXPECT_GE(Height(move.ClearBox), 20);
    ExpectBox(move.ClearBox, 0, -10, 100, 10, 0);

    EntityRec profile = Record(EntityKind::LineProfile);
    profile.Points.Start = {0, 0};
    profile.Points.End = {100, 0};
    ToolOutline(profile);
    EXPECT_GE(Height(profile.ClearBox), 20);
    ExpectBox(profile.ClearBox, 0, -10, 100, 10, 0);
}

// --- the routines ---

TEST(OutlineAtPoint, EveryPointIsThePositionAndTheBoxIs5Round) {
    for (std::int16_t kind : {EntityKind::Dwell, EntityKind::Stop, EntityKind::Reposition}) {
        EntityRec rec = Record(kind);
        rec.Tool = Tool('A', 40);  // not looked at
        rec.Points.Position = {10, 20};
        rec.Points.Start = {1, 1};
        ToolOutline(rec);
        for (const PointF* p : {&rec.Points.Start, &rec.Points.Middle, &rec.Points.End, &rec.Points.Entry,
                                &rec.Points.Exit})
            ExpectPoint(*p, 10, 20);
        ExpectBox(rec.Extent, 10, 20, 10, 20, 0);
        ExpectBox(rec.ClearBox, 5, 15, 15, 25, 0);
    }
}

TEST(OutlinePunch, PointsAndExtentAreThePosition) {
    EntityRec rec = PunchWith(Tool('A', 20));
    ToolOutline(rec);
    for (const PointF* p : {&rec.Points.Start, &rec.Points.Middle, &rec.Points.End, &rec.Points.Entry,
                            &rec.Points.Exit})
        ExpectPoint(*p, 100, 200);
    ExpectBox(rec.Extent, 100, 200, 100, 200, 0);
    ExpectBox(rec.ClearBox, 90, 190, 110, 210, 0);
}

EntityRec Grid(std::int16_t perRow, std::int16_t rows, bool turned) {
    EntityRec rec = Record(EntityKind::GridPattern);
    rec.Points.Start = {0, 0};
    rec.Values[1] = 20;  // row length
    rec.Values[2] = 10;  // pitch along a row
    rec.Values[3] = 10;  // column length
    rec.Values[4] = 5;   // pitch between rows
    rec.Counts[1] = perRow;
    rec.Counts[2] = rows;
    rec.Counts[3] = turned ? -1 : 0;
    return rec;
}

TEST(OutlinePunch, GridWalkedToAndFro) {
    // Hits (0,0) (10,0) | (10,5) (0,5) | (0,10) (10,10).
    EntityRec rec = Grid(2, 3, false);
    ToolOutline(rec);
    ExpectPoint(rec.Points.Middle, 10, 0);     // end of the first row
    ExpectPoint(rec.Points.End, 0, 10);        // first hit of the last row
    ExpectPoint(rec.Points.Exit, 10, 10);      // last hit
    ExpectPoint(rec.Points.Position, 5, 5);    // centre of the hits
    ExpectPoint(rec.Points.Entry, 0, 0);
    ExpectBox(rec.Extent, 0, 0, 10, 10);
    ExpectBox(rec.ClearBox, -5, -5, 15, 15);  // widened by 5; length min(20, 10) asks only 2
    // The record keeps what was stored.
    EXPECT_EQ(rec.Counts[1], 2);
    EXPECT_EQ(rec.Values[2], 10);
}

TEST(OutlinePunch, TurnedGridExchangesRowsAndColumns) {
    // 3 hits per row, 2 rows, row pitch -5 at 90 degrees, rows 10 apart at 180:
    // (0,0) (0,-5) (0,-10) | (-10,-10) (-10,-5) (-10,0).
    EntityRec rec = Grid(2, 3, true);
    ToolOutline(rec);
    ExpectPoint(rec.Points.Middle, 0, -10);
    ExpectPoint(rec.Points.End, -10, -10);
    ExpectPoint(rec.Points.Exit, -10, 0);
    ExpectPoint(rec.Points.Position, -5, -5);
    ExpectBox(rec.Extent, -10, -10, 0, 0);
    EXPECT_EQ(rec.Counts[1], 2);
    EXPECT_EQ(rec.Counts[2], 3);
    EXPECT_EQ(rec.Values[4], 5);
}

TEST(ToolOutlineEdge, GridOfOneRowHasNoRowStep) {
    EntityRec rec = Grid(4, 1, false);
    ToolOutline(rec);
    ExpectPoint(rec.Points.Middle, 30, 0);
    ExpectPoint(rec.Points.End, 0, 0);
    ExpectPoint(rec.Points.Exit, 30, 0);
    ExpectBox(rec.Extent, 0, 0, 30, 0);
    // Length min(20, 10) = 10: the height grows to a fifth, 2, which the margin already passes.
    ExpectBox(rec.ClearBox, -5, -5, 35, 5);
}

TEST(OutlinePunch, GridWithoutHitsStaysAtStart) {
    EntityRec rec = Grid(0, 3, false);
    rec.Points.Start = {7, 8};
    ToolOutline(rec);
    ExpectPoint(rec.Points.Middle, 7, 8);
    ExpectPoint(rec.Points.Exit, 7, 8);
    ExpectPoint(rec.Points.Position, 7, 8);
    ExpectBox(rec.Extent, 7, 8, 7, 8, 0);
}

TEST(OutlineStraight, MoveFromStartToEnd) {
    EntityRec rec = Record(EntityKind::Move);
    rec.Points.Start = {1, 2};
    rec.Points.End = {4, 6};
    rec.Values[1] = 5;
    ToolOutline(rec);
    ExpectPoint(rec.Points.Middle, 2.5, 4);
    ExpectPoint(rec.Points.Entry, 1, 2);
    ExpectPoint(rec.Points.Position, 4, 6);
    ExpectPoint(rec.Points.Exit, 4, 6);
    EXPECT_EQ(rec.Values[5], 5);
    ExpectBox(rec.Extent, 1, 2, 4, 6, 0);
    ExpectBox(rec.ClearBox, 0, 1.5, 5, 6.5, 0);  // W 3 and H 4 brought to 5
}

TEST(OutlineStraight, MoveOfZeroLengthHasTheSmallestBox) {
    EntityRec rec = Record(EntityKind::Move);
    rec.Points.Start = rec.Points.End = {7, 7};
    ToolOutline(rec);
    ExpectBox(rec.ClearBox, 4.5, 4.5, 9.5, 9.5, 0);
}

TEST(OutlineStraight, MiddleIsRoundedTo4Decimals) {
    EntityRec rec = Record(EntityKind::Move);
    rec.Points.Start = {0, 0};
    rec.Points.End = {1.23457f, -2.00003f};
    ToolOutline(rec);
    ExpectPoint(rec.Points.Middle, 0.6173, -1.0);
}

TEST(OutlineStraight, LinearPatternFromEntryToExit) {
    EntityRec rec = Record(EntityKind::LinearPattern);
    rec.Points.Entry = {10, 10};
    rec.Points.Exit = {40, 50};
    rec.Values[2] = -5;
    ToolOutline(rec);
    ExpectPoint(rec.Points.Start, 10, 10);
    ExpectPoint(rec.Points.End, 40, 50);
    ExpectPoint(rec.Points.Middle, 25, 30);
    ExpectPoint(rec.Points.Position, 25, 30);
    EXPECT_EQ(rec.Values[1], 50);
    EXPECT_EQ(rec.Values[10], 53.13f);  // atan(40/30) = 53.1301 to 3 decimals
    EXPECT_EQ(rec.Values[5], 50);
    EXPECT_EQ(rec.Values[2], 5);  // takes the sign of the length
    ExpectBox(rec.Extent, 10, 10, 40, 50, 0);
    ExpectBox(rec.ClearBox, 5, 5, 45, 55, 0);
}

TEST(OutlineStraight, LinearPatternOfOneHitNegatesItsPitch) {
    // Length 0 has sign 0, which a positive pitch doesn't share.
    EntityRec rec = Record(EntityKind::LinearPattern);
    rec.Points.Entry = rec.Points.Exit = {3, 4};
    rec.Values[2] = 5;
    rec.Counts[1] = 1;
    ToolOutline(rec);
    EXPECT_EQ(rec.Values[1], 0);
    EXPECT_EQ(rec.Values[10], 0);
    EXPECT_EQ(rec.Values[2], -5);
    ExpectBox(rec.ClearBox, -2, -1, 8, 9, 0);
}

EntityRec Arc(float first, float sweep, float step) {
    EntityRec rec = Record(EntityKind::ArcPattern);
    rec.Points.Position = {100, 100};
    rec.Values[1] = 50;
    rec.Values[10] = first;
    rec.Values[11] = sweep;
    rec.Values[12] = step;
    rec.Counts[1] = 4;
    return rec;
}

TEST(OutlineArcPattern, QuarterArc) {
    EntityRec rec = Arc(0, 90, 30);
    ToolOutline(rec);
    ExpectPoint(rec.Points.Start, 150, 100);
    ExpectPoint(rec.Points.Middle, 135.3553, 135.3553);  // 100 + 50 cos 45
    ExpectPoint(rec.Points.End, 100, 150);
    ExpectPoint(rec.Points.Entry, 150, 100);
    ExpectPoint(rec.Points.Exit, 100, 150);
    EXPECT_FLOAT_EQ(rec.Values[2], 78.53981625f);  // 2 x 50 x 3.14159265 / 4
    EXPECT_EQ(rec.Values[5], 50);
    EXPECT_EQ(rec.Values[6], rec.Values[2]);
    EXPECT_EQ(rec.Values[13], 0);
    EXPECT_EQ(rec.Values[14], 90);
    EXPECT_FLOAT_EQ(rec.Values[3], 26.17993875f);  // 30 / 90 of the arc length
    ExpectBox(rec.Extent, 100, 100, 150, 150);
    ExpectBox(rec.ClearBox, 100, 100, 155, 155);  // radius 55 from 0 to 90 degrees
}

TEST(OutlineArcPattern, StepAnglePointsWidenTheExtent) {
    // From 30 to 150 by 60: 30, 90, 150; the top point at 90 reaches y 150, which the ends
    // (y 125) don't.
    EntityRec rec = Arc(30, 120, 60);
    ToolOutline(rec);
    EXPECT_NEAR(rec.Extent.High.Y, 150, Near);
    EXPECT_NEAR(rec.Extent.Low.Y, 125, Near);
    // The clear box walks whole degrees at radius 55: its top is at 155.
    EXPECT_NEAR(rec.ClearBox.High.Y, 155, Near);
    // Without a step angle only the ends count.
    EntityRec noStep = Arc(30, 120, 0);
    noStep.Values[3] = 1;
    ToolOutline(noStep);
    EXPECT_NEAR(noStep.Extent.High.Y, 125, Near);
    EXPECT_EQ(noStep.Values[3], 1);  // a pitch that is set stays
}

TEST(OutlineArcPattern, StepOfTheWrongSignWalksNothing) {
    EntityRec rec = Arc(30, 120, -60);
    ToolOutline(rec);
    EXPECT_NEAR(rec.Extent.High.Y, 125, Near);
}

TEST(OutlineArcPattern, ClockwiseArcWalksDown) {
    EntityRec rec = Arc(90, -90, -30);
    ToolOutline(rec);
    ExpectPoint(rec.Points.Start, 100, 150);
    ExpectPoint(rec.Points.End, 150, 100);
    EXPECT_FLOAT_EQ(rec.Values[2], 78.53981625f);  // the sweep counts by its size
    EXPECT_FLOAT_EQ(rec.Values[3], 26.17993875f);
    ExpectBox(rec.Extent, 100, 100, 150, 150);
    ExpectBox(rec.ClearBox, 100, 100, 155, 155);
}

TEST(OutlineArcPattern, ValidToolWidensTheClearRadius) {
    EntityRec rec = Arc(0, 90, 30);
    rec.Tool = Tool('A', 20);
    ToolOutline(rec);
    ExpectBox(rec.ClearBox, 100, 100, 160, 160);
}

TEST(ToolOutlineEdge, FullCircleHasEndOnStart) {
    for (float first : {0.0f, 30.3f, 123.4567f, 359.9f}) {
        for (float sweep : {360.0f, -360.0f}) {
            SCOPED_TRACE(testing::Message() << first << " " << sweep);
            EntityRec rec = Arc(first, sweep, sweep / 360);
            ToolOutline(rec);
            EXPECT_EQ(rec.Points.End.X, rec.Points.Start.X);
            EXPECT_EQ(rec.Points.End.Y, rec.Points.Start.Y);
            ExpectBox(rec.Extent, 50, 50, 150, 150, 0.5);
        }
    }
}

TEST(OutlineArcPattern, ZeroSweepLeavesArcLengthAndPitchAndEnds) {
    EntityRec rec = Arc(45, 0, 10);
    rec.Values[2] = 7;  // stays as the writer left it
    ToolOutline(rec);
    EXPECT_EQ(rec.Values[2], 7);
    EXPECT_EQ(rec.Values[6], 7);
    EXPECT_EQ(rec.Values[3], 0);  // no pitch from a zero sweep
    EXPECT_EQ(rec.Points.Start.X, rec.Points.End.X);
    EXPECT_TRUE(std::isfinite(rec.ClearBox.Low.X));
    EXPECT_GE(Width(rec.ClearBox), 5);
}

TEST(OutlineArcPattern, HugeOrBrokenAnglesEnd) {
    // Each of these would walk for ever taken naively; the outline ends with finite boxes where
    // the values are finite.
    EntityRec wide = Arc(0, 1e30f, 1e-30f);
    ToolOutline(wide);
    EXPECT_TRUE(std::isfinite(wide.ClearBox.High.X));
    EntityRec far = Arc(1e20f, 90, 1);
    ToolOutline(far);
    EXPECT_TRUE(std::isfinite(far.Extent.High.X));
    EntityRec broken = Arc(NAN, INFINITY, NAN);
    broken.Tool.Extra1 = NAN;
    ToolOutline(broken);
    EXPECT_TRUE(std::isnan(broken.Points.Start.X));
}

TEST(OutlineArcPattern, ReservedKind151IsAnArcPattern) {
    EntityRec a = Arc(0, 90, 30);
    EntityRec b = Arc(0, 90, 30);
    b.Kind = EntityKind::ReservedArc;
    ToolOutline(a);
    ToolOutline(b);
    ExpectBox(b.Extent, a.Extent.Low.X, a.Extent.Low.Y, a.Extent.High.X, a.Extent.High.Y, 0);
    ExpectBox(b.ClearBox, a.ClearBox.Low.X, a.ClearBox.Low.Y, a.ClearBox.High.X, a.ClearBox.High.Y, 0);
    EXPECT_EQ(b.Values[3], a.Values[3]);
}

TEST(OutlineProfile, LineProfile) {
    EntityRec rec = Record(EntityKind::LineProfile);
    rec.Points.Start = {0, 0};
    rec.Points.End = {30, 40};
    ToolOutline(rec);
    ExpectPoint(rec.Points.Middle, 15, 20);
    ExpectPoint(rec.Points.Position, 15, 20);
    ExpectPoint(rec.Points.Entry, 0, 0);
    ExpectPoint(rec.Points.Exit, 30, 40);
    EXPECT_EQ(rec.Values[1], 50);
    EXPECT_EQ(rec.Values[10], 53.13f);
    EXPECT_EQ(rec.Values[5], 0);  // a profile keeps no copy of its length
    ExpectBox(rec.Extent, 0, 0, 30, 40, 0);
    ExpectBox(rec.ClearBox, 0, 0, 30, 40, 0);
}

TEST(OutlineProfile, ArcProfileWalksWholeDegrees) {
    EntityRec rec = Record(EntityKind::ArcProfile);
    rec.Points.Position = {0, 0};
    rec.Values[1] = 10;
    rec.Values[10] = 0;
    rec.Values[11] = 180;
    rec.Values[12] = 0;
    ToolOutline(rec);
    ExpectPoint(rec.Points.Start, 10, 0);
    ExpectPoint(rec.Points.Middle, 0, 10);
    ExpectPoint(rec.Points.End, -10, 0);
    EXPECT_FLOAT_EQ(rec.Values[2], 31.4159265f);
    EXPECT_EQ(rec.Values[3], 0);  // no pitch for a profile
    EXPECT_EQ(rec.Values[14], 180);
    ExpectBox(rec.Extent, -10, 0, 10, 10);
    ExpectBox(rec.ClearBox, -10, 0, 10, 10);
}

TEST(OutlineProfile, SmallArcProfileGetsTheSmallestBox) {
    EntityRec rec = Record(EntityKind::ArcProfile);
    rec.Values[1] = 1;
    rec.Values[11] = 10;
    ToolOutline(rec);
    EXPECT_NEAR(Width(rec.ClearBox), 5, Near);
    EXPECT_NEAR(Height(rec.ClearBox), 5, Near);
    EXPECT_NEAR(Width(rec.Extent), 1 - std::cos(10 * 3.14159265 / 180), Near);
}

TEST(OutlineMultiPart, SizeFromValues1And2) {
    EntityRec rec = Record(EntityKind::MultiPart);
    rec.Values[1] = 100;
    rec.Values[2] = 50;
    rec.Values[7] = 999;  // the X and Y size the kind table names are not read here
    rec.Values[9] = 999;
    ToolOutline(rec);
    ExpectPoint(rec.Points.Start, 0, 0);
    ExpectPoint(rec.Points.Middle, 50, 25);
    ExpectPoint(rec.Points.End, 100, 50);
    ExpectPoint(rec.Points.Entry, 0, 50);
    ExpectPoint(rec.Points.Exit, 100, 50);
    ExpectPoint(rec.Points.Position, 50, 25);
    ExpectBox(rec.Extent, 0, 0, 100, 50, 0);
    ExpectBox(rec.ClearBox, -20, -20, 120, 70, 0);
}

TEST(ToolOutline, OtherKindsKeepTheirWritersPoints) {
    for (std::int16_t kind : {EntityKind::Sheet, EntityKind::FlipRotate, EntityKind::LoadPosition}) {
        EntityRec rec = Record(kind);
        rec.Points.Position = {3, 4};
        rec.Points.Start = {1, 2};
        rec.Extent = {{9, 9}, {9, 9}};
        ToolOutline(rec);
        ExpectPoint(rec.Points.Position, 3, 4);
        ExpectPoint(rec.Points.Start, 1, 2);
        ExpectBox(rec.Extent, 9, 9, 9, 9, 0);
    }
}

}  // namespace
}  // namespace kirvana

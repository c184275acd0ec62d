#include <cmath>
#include <sstream>

#include <gtest/gtest.h>

#include "core/cycle_maths.h"
#include "translate/blend.h"

using namespace kirvana;

namespace {

struct CycleTest : ::testing::Test {
    BlendSettings settings;
    std::ostringstream report;
    std::unique_ptr<BlendPass> pass;
    CycleTest() {
        settings.Travel.LoadPositionX = 0;
        settings.Travel.LoadPositionY = 0;
        settings.Travel.XLimitMin = -5000;
        settings.Travel.XLimitMax = 5000;
        settings.Travel.YLimitMin = -5000;
        settings.Travel.YLimitMax = 5000;
        pass = std::make_unique<BlendPass>(settings);
        pass->OpenReport(&report);
        Run("N1 G90 X100 Y100");
    }
    void Run(const std::string& line) { pass->BlendBlock(line); }
    float X() const { return pass->State.BlendX; }
    float Y() const { return pass->State.BlendY; }
    bool Reported(const std::string& message) const { return report.str().find(message) != std::string::npos; }
    std::int16_t Critical() const { return pass->State.BlendCritical; }
};

}  // namespace

TEST_F(CycleTest, G64OneHitIsCritical) {
    Run("N2 G64 J50 A0 B1");
    EXPECT_EQ(Critical(), 1);
    EXPECT_TRUE(Reported("Invalid number of Hits (P1)"));
    EXPECT_FLOAT_EQ(X(), 100);  // the stop leaves the position as the update left it
}

TEST_F(CycleTest, G64LeavesAtTheFirstHit) {
    Run("N2 G64 J50 A90 B0");
    EXPECT_EQ(Critical(), 0);
    EXPECT_NEAR(X(), 100, 1e-4);
    EXPECT_FLOAT_EQ(Y(), 150);
    Run("N3 G64 J10 A0");
    EXPECT_EQ(Critical(), 0);
    EXPECT_FLOAT_EQ(X(), 110);
    EXPECT_FLOAT_EQ(pass->State.BlendPrevX, 100);
}

TEST_F(CycleTest, G64UnderMirrorX) {
    Run("N2 M11");
    Run("N3 G64 J10 A0 B8");
    // MirrorAngle(0) is 180, the sweep -360.
    EXPECT_FLOAT_EQ(X(), 90);
}

TEST_F(CycleTest, G65ClosedRectangleComesBack) {
    Run("N2 G65 I50 J-30 P8=5");
    EXPECT_EQ(Critical(), 0);
    EXPECT_NEAR(X(), 100, 1e-4);
    EXPECT_NEAR(Y(), 100, 1e-4);
}

TEST_F(CycleTest, G65WithoutStepIsDivisionByZero) {
    Run("N2 G65 I50 J30");
    EXPECT_EQ(Critical(), 1);
    EXPECT_TRUE(Reported("Division by Zero"));
}

TEST_F(CycleTest, G66LeavesThePositionAtZero) {
    Run("N2 G66 I10 J0 B5");
    EXPECT_FLOAT_EQ(X(), 0);
    EXPECT_FLOAT_EQ(Y(), 0);
    EXPECT_FLOAT_EQ(pass->State.BlendPrevX, 100);
    Run("N3 G91 X5");
    EXPECT_FLOAT_EQ(X(), 5);
}

TEST_F(CycleTest, G26RowReturnsUnlessItStays) {
    Run("N2 G26 P1=4 P2=10 P5=0");
    EXPECT_FLOAT_EQ(X(), 100);
    Run("N3 G26 P1=4 P2=10 P5=0 P9=1");
    EXPECT_FLOAT_EQ(X(), 130);  // the last hit, 30 along P5
    EXPECT_FLOAT_EQ(Y(), 100);
}

TEST_F(CycleTest, G26OneHitInARowIsCritical) {
    Run("N2 G26 P1=1 P2=10");
    EXPECT_EQ(Critical(), 1);
    EXPECT_TRUE(Reported("Invalid number of Hits (P1,P3)"));
}

TEST(GridMaths, LengthThatThePitchDoesNotDivide) {
    GridPattern g;
    g.P7 = 25;
    g.P2 = 10.0;
    int rows;
    ASSERT_EQ(CompleteGrid(g, rows), PatternCheck::Ok);
    EXPECT_EQ(g.P1, 4);
    EXPECT_DOUBLE_EQ(g.P2.Value, 25.0 / 3);
    GridPattern h;
    h.P7 = 30;
    h.P2 = 10.0;
    ASSERT_EQ(CompleteGrid(h, rows), PatternCheck::Ok);
    EXPECT_EQ(h.P1, 4);
    EXPECT_DOUBLE_EQ(h.P2.Value, 10);
    EXPECT_EQ(rows, 1);
}

TEST_F(CycleTest, G26LengthAndPitchWalkTheWholeLength) {
    Run("N2 G26 P7=25 P2=10 P5=0 P9=1");
    EXPECT_FLOAT_EQ(X(), 125);
}

TEST_F(CycleTest, G26ColumnOnlyIsARowAtNinetyDegrees) {
    Run("N2 G26 P3=3 P4=20 P5=0 P9=1");
    EXPECT_NEAR(X(), 100, 1e-4);
    EXPECT_FLOAT_EQ(Y(), 140);
    GridPattern g;
    g.P3 = 3;
    g.P4 = 20.0;
    int rows;
    ASSERT_EQ(CompleteGrid(g, rows), PatternCheck::Ok);
    EXPECT_EQ(g.P1, 3);
    EXPECT_DOUBLE_EQ(g.P2.Value, 20);
    EXPECT_DOUBLE_EQ(g.P5, 90);
}

TEST_F(CycleTest, G26GridWalksToAndFro) {
    // Three rows of 4 hits at pitch 10, rows 20 apart: out along +X, up, back, up, out.
    Run("N2 G26 P1=4 P2=10 P3=3 P4=20 P5=0 P9=1");
    EXPECT_NEAR(X(), 130, 1e-4);
    EXPECT_NEAR(Y(), 140, 1e-4);
}

TEST(ArcMaths, EightHitsAndNoOtherAngleIsAFullCircle) {
    ArcPattern a;
    a.P1 = 8;
    ASSERT_EQ(CompleteArc(a), PatternCheck::Ok);
    EXPECT_DOUBLE_EQ(a.Sweep, 360);
    EXPECT_DOUBLE_EQ(a.P2, 45);
}

TEST(ArcMaths, FirstAndLastAngleWithoutPitchIsAFullTurn) {
    // The sweep of a given P4 follows the sign of P2; with P2 0 it is a full turn, so the
    // pitch of eight hits is 360 / 8 and not 180 / 7.
    ArcPattern a;
    a.P1 = 8;
    a.P3 = 0;
    a.P3Given = true;
    a.P4 = 180;
    a.P4Given = true;
    ASSERT_EQ(CompleteArc(a), PatternCheck::Ok);
    EXPECT_DOUBLE_EQ(a.Sweep, 360);
    EXPECT_DOUBLE_EQ(a.P2, 45);
    // With a positive pitch given the sweep runs from P3 to P4.
    ArcPattern b = ArcPattern{};
    b.P2 = 1;
    b.P3 = 0;
    b.P3Given = true;
    b.P4 = 180;
    b.P4Given = true;
    ASSERT_EQ(CompleteArc(b), PatternCheck::Ok);
    EXPECT_DOUBLE_EQ(b.Sweep, 180);
    EXPECT_EQ(b.P1, 181);
}

TEST(ArcMaths, CloseFirstAndLastAngleIsAFullCircleWithTheSignOfP2) {
    ArcPattern a;
    a.P2 = -10;
    a.P3 = 30;
    a.P3Given = true;
    a.P4 = 30.05;
    a.P4Given = true;
    ASSERT_EQ(CompleteArc(a), PatternCheck::Ok);
    EXPECT_DOUBLE_EQ(a.Sweep, -360);
    EXPECT_EQ(a.P1, 36);
    a = ArcPattern{};
    a.P2 = 10;
    a.P3 = 30;
    a.P3Given = true;
    a.P4 = 29.95;
    a.P4Given = true;
    ASSERT_EQ(CompleteArc(a), PatternCheck::Ok);
    EXPECT_DOUBLE_EQ(a.Sweep, 360);
}

TEST(ArcMaths, ChecksOfHitsAndPitch) {
    ArcPattern a;
    a.P1 = 1;
    EXPECT_EQ(CompleteArc(a), PatternCheck::InvalidHits);
    ArcPattern b;
    b.P4 = 90;
    b.P4Given = true;
    EXPECT_EQ(CompleteArc(b), PatternCheck::NoHitsOrPitch);
}

TEST_F(CycleTest, G28StaysOnTheLastHit) {
    // Centre 50 to the right; P3 from the centre to the start is 180; three hits 90 apart end
    // at 180 + 180: the far side of the circle.
    Run("N2 G28 I50 J0 P1=3 P2=90 P9=1");
    EXPECT_EQ(Critical(), 0);
    EXPECT_NEAR(X(), 200, 1e-4);
    EXPECT_NEAR(Y(), 100, 1e-4);
    // Without P9 the position goes back to where the block started, not to the last hit at 100.
    Run("N3 G28 I-50 J0 P1=3 P2=90");
    EXPECT_NEAR(X(), 200, 1e-4);
}

TEST_F(CycleTest, G28NoHitsNoPitchIsCritical) {
    Run("N2 G28 R20 P4=90");
    EXPECT_TRUE(Reported("No Hits (P1) or Angular Pitch (P2)"));
    EXPECT_EQ(Critical(), 1);
}

TEST_F(CycleTest, G36ShorterThanOneStepIsDivisionByZero) {
    Run("N2 G36 P1=10 P5=0 P8=20");
    EXPECT_TRUE(Reported("Division by Zero"));
    EXPECT_EQ(Critical(), 1);
    EXPECT_TRUE(Reported("Excessive Nibble Increment (P8=6.25 maximum)"));
}

TEST_F(CycleTest, G36ExcessiveStepIsWorkedWithIt) {
    Run("N2 G36 P1=70 P5=90 P8=7");
    EXPECT_EQ(Critical(), 0);
    EXPECT_TRUE(Reported("****** WARNING ERROR ******\nExcessive Nibble Increment (P8=6.25 maximum)"));
    EXPECT_DOUBLE_EQ(pass->State.BlendNibbleStep, 7);
    EXPECT_NEAR(X(), 100, 1e-4);
    EXPECT_FLOAT_EQ(Y(), 170);
}

TEST_F(CycleTest, G36NegativeLengthRunsBackwardsAndNegativeStepWarns) {
    Run("N2 G36 P1=-30 P5=0 P8=-2");
    EXPECT_TRUE(Reported("Negative Nibble Increment (P8)"));
    EXPECT_NEAR(X(), 70, 1e-4);
    EXPECT_DOUBLE_EQ(pass->State.BlendNibbleStep, 2);
}

TEST_F(CycleTest, G36VectorGivesLengthAndAngle) {
    Run("N2 G36 I30 J40 P8=2");
    EXPECT_FLOAT_EQ(X(), 130);
    EXPECT_FLOAT_EQ(Y(), 140);
}

TEST_F(CycleTest, G37TrackedFromTheCurrentPosition) {
    // I, J give a radius of 50 and a first angle of 180; a quarter turn moves the position by
    // PolarToXY(50, 270): 50 down.
    Run("N2 G37 I50 J0 P1=90 P8=2");
    EXPECT_EQ(Critical(), 0);
    EXPECT_NEAR(X(), 100, 1e-3);
    EXPECT_NEAR(Y(), 50, 1e-3);
    // The previous position is a point no move visits: the new position + PolarToXY(50, 180).
    EXPECT_NEAR(pass->State.BlendPrevX, 50, 1e-3);
    EXPECT_NEAR(pass->State.BlendPrevY, 50, 1e-3);
}

TEST_F(CycleTest, G37WithoutRadiusIsCritical) {
    Run("N2 G37 P1=90 P8=2");
    EXPECT_TRUE(Reported("Missing Radius or I/J"));
}

TEST_F(CycleTest, InProfilingNoCycleRuns) {
    Run("N2 M100");
    Run("N3 G26 P1=1 P2=10");
    Run("N4 G66 I10 B5 X200");
    EXPECT_EQ(Critical(), 0);
    EXPECT_FLOAT_EQ(X(), 200);
}

TEST_F(CycleTest, InchLengths) {
    Run("N2 G70 G36 P1=2 P5=0 P8=0.1");
    EXPECT_NEAR(X(), 100 + 50.8, 1e-3);
    EXPECT_DOUBLE_EQ(pass->State.BlendNibbleStep, 2.54);
}

#include "translate/blend.h"

#include <cmath>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "core/paths.h"
#include "tests/core/temp_dir.h"

using namespace kirvana;

namespace {

BlendSettings Machine() {
    BlendSettings s;
    s.MachineQ10 = 0;
    s.MachineQ11 = 1250;
    s.XLimitMin = -25;
    s.XLimitMax = 2540;
    s.YLimitMin = -10;
    s.YLimitMax = 1270;
    s.ProfilerValue = 2;
    s.MachineOrientation = 1;
    s.Now = [] { return std::string("21/11/26 10:30"); };
    return s;
}

struct BlendTest : ::testing::Test {
    BlendSettings settings = Machine();
    BlendPass pass{settings};
    std::ostringstream report;
    BlendTest() { pass.OpenReport(&report); }

    std::string Run(const std::string& line) { return pass.BlendBlock(line); }
    int Count(const std::string& what) const {
        int n = 0;
        std::string text = report.str();
        for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
        return n;
    }
    void Profiling() {
        Run("N1 M100");
        Run("N2 M03");
    }
};

}  // namespace

TEST_F(BlendTest, StartsAtTheLoadPosition) {
    EXPECT_FLOAT_EQ(pass.State.BlendX, 0);
    EXPECT_FLOAT_EQ(pass.State.BlendY, 1250);
    EXPECT_FLOAT_EQ(pass.State.BlendXMax, 2540);
}

TEST_F(BlendTest, SequenceNumberAloneDoesNotMove) {
    Run("N1 G90 X100 Y50");
    EXPECT_FLOAT_EQ(pass.State.BlendPrevX, 0);
    EXPECT_FLOAT_EQ(pass.State.BlendPrevY, 1250);
    Run("N2");
    EXPECT_FLOAT_EQ(pass.State.BlendX, 100);
    EXPECT_FLOAT_EQ(pass.State.BlendY, 50);
    // The previous position is taken from the current one before the block is found empty.
    EXPECT_FLOAT_EQ(pass.State.BlendPrevX, 100);
    EXPECT_FLOAT_EQ(pass.State.BlendPrevY, 50);
    EXPECT_FALSE(pass.State.BlendHit);
}

TEST_F(BlendTest, AbsoluteIncrementalInchAndOrigin) {
    Run("N1 G91 X10 Y-20");
    EXPECT_FLOAT_EQ(pass.State.BlendX, 10);
    EXPECT_FLOAT_EQ(pass.State.BlendY, 1230);
    Run("N2 G90 G70 X1 Y2");
    EXPECT_FLOAT_EQ(pass.State.BlendX, 25.4f);
    EXPECT_FLOAT_EQ(pass.State.BlendY, 50.8f);
    Run("N3 G71 G56 X100 Y10");
    EXPECT_FLOAT_EQ(pass.State.BlendOriginX, 100);
    EXPECT_FLOAT_EQ(pass.State.BlendX, 25.4f);  // G56 doesn't move
    Run("N4 X5 Y5");
    EXPECT_FLOAT_EQ(pass.State.BlendX, 105);
    EXPECT_FLOAT_EQ(pass.State.BlendY, 15);
    Run("N5 G53");
    Run("N6 X5");
    EXPECT_FLOAT_EQ(pass.State.BlendX, 5);
    Run("N7 G92 X1");
    EXPECT_FLOAT_EQ(pass.State.BlendOriginX, 4);
    EXPECT_FLOAT_EQ(pass.State.BlendOriginY, 0);  // no Y word: that axis stays
    Run("N8 H10 V-5");
    EXPECT_FLOAT_EQ(pass.State.BlendX, 15);
    EXPECT_FLOAT_EQ(pass.State.BlendY, 10);
    Run("N9 R10 A90");
    EXPECT_NEAR(pass.State.BlendX, 15, 1e-4);
    EXPECT_FLOAT_EQ(pass.State.BlendY, 20);
}

TEST_F(BlendTest, MirrorsTurnTheMoves) {
    Run("N1 G90 X100 Y100");
    Run("N2 M11");
    Run("N3 X50");
    EXPECT_FLOAT_EQ(pass.State.BlendX, -50);
    // The mirror codes act after the block's own move.
    Run("N4 M13 Y20");
    EXPECT_FLOAT_EQ(pass.State.BlendY, 20);
    Run("N4 Y20");
    EXPECT_FLOAT_EQ(pass.State.BlendY, -20);
    Run("N5 M10");
    EXPECT_FALSE(pass.State.BlendMirrorX);
    EXPECT_FALSE(pass.State.BlendMirrorY);
    Run("N6 M100");  // not M10
    Run("N7 M11");
    Run("N8 M101");
    EXPECT_TRUE(pass.State.BlendMirrorX);
}

TEST_F(BlendTest, VariablesAreStoredAndRead) {
    Run("N1 P12=100 P13=P12/4");
    EXPECT_DOUBLE_EQ(pass.State.BlendParameters.P[12].Value, 100);
    EXPECT_DOUBLE_EQ(pass.State.BlendParameters.P[13].Value, 25);
    Run("N2 G90 XP12 YP13");
    EXPECT_FLOAT_EQ(pass.State.BlendX, 100);
    EXPECT_FLOAT_EQ(pass.State.BlendY, 25);
    Run("N3 P8=2.5 P6=-999");  // below 12: cycle parameters, not stored
    EXPECT_DOUBLE_EQ(pass.State.BlendParameters.P[8].Value, 0);
}

TEST_F(BlendTest, ToolWordSkipsGotoAndTrunc) {
    Run("N1 T12");
    EXPECT_EQ(pass.State.BlendTool, 12);
    Run("N2 IF (P12=1) GOTO 20 T7");
    EXPECT_EQ(pass.State.BlendTool, 7);
    Run("N3 XTRUNC(2.5) T3");
    EXPECT_EQ(pass.State.BlendTool, 3);
}

TEST_F(BlendTest, LimitWarningOncePerAxisPerBlock) {
    Run("N1 G90 X3000 Y100");
    EXPECT_EQ(Count("Out of limits in X"), 1);
    EXPECT_EQ(Count("Out of limits in Y"), 0);
    EXPECT_EQ(Count("****** WARNING ERROR ******"), 1);
    EXPECT_NE(report.str().find("Out of limits in X\nN1G90X3000Y100\n"), std::string::npos);
    // The arc walk of the same block doesn't warn X a second time.
    Profiling();
    Run("N4 G00 X2530 Y600");
    Run("N5 G102 X2550 Y620 I0 J20");
    EXPECT_EQ(Count("Out of limits in X"), 2);
}

TEST_F(BlendTest, ArcWalkWarnsWhereTheEndPointDoesNot) {
    Profiling();
    Run("N3 G00 X2500 Y600");
    // A half circle to the right of the start and back: the far side lies beyond X 2540.
    Run("N4 G103 X2500 Y700 I0 J50");
    EXPECT_EQ(Count("Out of limits in X"), 1);
}

TEST_F(BlendTest, PatternsArcsAreNotCheckedByThePositionUpdate) {
    Run("N1 G90 X-100 Y100 G28 P1=4 P2=10 R10");
    Run("N2 G90 X-100 Y100 G37 P1=90 R10 P8=2");
    EXPECT_EQ(Count("Out of limits in X"), 0);
}

TEST_F(BlendTest, LoadPositionOutOfLimitsAlwaysWarns) {
    settings.MachineQ10 = -50;
    BlendPass p(settings);
    std::ostringstream r;
    p.OpenReport(&r);
    p.BlendBlock("N1 G90 X-100 M50");
    std::string text = r.str();
    std::size_t first = text.find("Out of limits in X");
    ASSERT_NE(first, std::string::npos);
    EXPECT_NE(text.find("Out of limits in X", first + 1), std::string::npos);
    EXPECT_FLOAT_EQ(p.State.BlendX, -50);
    EXPECT_FLOAT_EQ(p.State.BlendY, 1250);
}

TEST_F(BlendTest, TwoLinesInLineGiveB1) {
    Profiling();
    Run("N3 G00 X0 Y0");
    EXPECT_EQ(Run("N4 G101 X100 Y0"), "N4 G101 B0 X100 Y0");
    EXPECT_EQ(Run("N5 G101 X200 Y0 ;edge"), "N5 G101 B1 X200 Y0 ;edge");
    EXPECT_EQ(pass.State.LastMove.Kind, 1);
    EXPECT_FLOAT_EQ(pass.State.LastMove.Length, 100);
    EXPECT_FLOAT_EQ(pass.State.LastMove.Angle, 0);
}

TEST_F(BlendTest, TurnWithinTheProfilerValueIncludingTheLimit) {
    Profiling();
    Run("N3 G00 X0 Y0");
    Run("N4 G101 X100 Y0");
    // Turned by exactly 2 degrees (the profiler value): still B1.
    double x = 100 + 100 * std::cos(2 * Pi / 180), y = 100 * std::sin(2 * Pi / 180);
    char line[80];
    std::snprintf(line, sizeof line, "N5 G101 X%.4f Y%.4f", x, y);
    EXPECT_NE(Run(line).find("G101 B1"), std::string::npos);
    EXPECT_NEAR(pass.State.LastMove.Angle, 2, 1e-3);
    // Turned by 3 degrees more: a corner.
    std::snprintf(line, sizeof line, "N6 G101 X%.4f Y%.4f", x + 100 * std::cos(5 * Pi / 180), y + 100 * std::sin(5 * Pi / 180));
    EXPECT_NE(Run(line).find("G101 B0"), std::string::npos);
}

TEST_F(BlendTest, TorchOffLeavesNoMarkAndBreaksTheChain) {
    Run("N1 M100");
    Run("N2 G00 X0 Y0");
    EXPECT_EQ(Run("N3 G101 X100 Y0"), "N3 G101 X100 Y0");
    EXPECT_EQ(pass.State.LastMove.Kind, 0);
    EXPECT_EQ(Run("N4 G102 X200 Y0 I50 J0"), "N4 G102 X200 Y0 I50 J0");
    Run("N5 M03");
    // The first cut after the torch comes on has no move before it.
    EXPECT_EQ(Run("N6 G101 X300 Y0"), "N6 G101 B0 X300 Y0");
    Run("N7 M05");
    EXPECT_EQ(Run("N8 G101 X400 Y0"), "N8 G101 X400 Y0");
    EXPECT_EQ(pass.State.LastMove.Kind, 0);
}

TEST_F(BlendTest, ArcAfterALineTangentially) {
    Profiling();
    Run("N3 G00 X0 Y0");
    Run("N4 G101 X100 Y0");
    // A quarter arc leaving along +X: centre above the start, counter-clockwise (G103 under
    // orientation 1 turns positive).
    std::string out = Run("N5 G103 X150 Y50 I0 J50");
    EXPECT_EQ(out, "N5 G103 B1 E50 X150 Y50 I0 J50");
    EXPECT_EQ(pass.State.LastMove.Kind, 3);
    EXPECT_FLOAT_EQ(pass.State.LastMove.Sweep, 90);
    EXPECT_FLOAT_EQ(pass.State.LastMove.StartAngle, 270);
    // And a line leaving the arc's end along +Y runs on.
    EXPECT_EQ(Run("N6 G101 X150 Y100"), "N6 G101 B1 X150 Y100");
}

TEST_F(BlendTest, ArcRadiusIsWrittenAsComputedRoundedOnlyThen) {
    Profiling();
    Run("N3 G00 X0 Y0");
    // sqrt(I*I + J*J) is 111.89148: 111.891 to 3 decimals (narrowed to 32 bits first it would
    // read 111.8915 and round to 111.892).
    EXPECT_EQ(Run("N4 G102 X223.783 Y0 I111.89148 J0"), "N4 G102 B0 E111.891 X223.783 Y0 I111.89148 J0");
}

TEST_F(BlendTest, FullCircleSweepFollowsTheOrientation) {
    Profiling();
    Run("N3 G00 X100 Y100");
    Run("N4 G102 X100 Y100 I10 J0");
    EXPECT_FLOAT_EQ(pass.State.LastMove.Sweep, -360);
    settings.MachineOrientation = 2;
    BlendPass other(settings);
    other.BlendBlock("N1 M100");
    other.BlendBlock("N2 M03");
    other.BlendBlock("N3 G00 X100 Y100");
    other.BlendBlock("N4 G102 X100 Y100 I10 J0");
    EXPECT_FLOAT_EQ(other.State.LastMove.Sweep, 360);
}

TEST_F(BlendTest, ArcByCentreWithUnequalRadiiIsCritical) {
    Profiling();
    Run("N3 G00 X0 Y0");
    EXPECT_EQ(Run("N4 G102 X100 Y0 I40 J0"), "N4 G102 X100 Y0 I40 J0");
    EXPECT_EQ(pass.State.BlendCritical, 1);
    EXPECT_NE(report.str().find("****** CRITICAL ERROR ******\nNon-Interpolated Arc (Invalid I,J)\nN4G102X100Y0I40J0\n"),
              std::string::npos);
}

TEST_F(BlendTest, ArcByRadiusAlsoMovesTheModelByR) {
    Profiling();
    Run("N3 G00 X0 Y0");
    // Only G02, G03, G28 and G37 keep R out of the position update: in a G102 block R is also
    // read as a polar increment, so X100 R100 ends the model at 200.
    Run("N4 G102 X100 Y0 R100");
    EXPECT_FLOAT_EQ(pass.State.BlendX, 200);
    EXPECT_FLOAT_EQ(pass.State.LastMove.Sweep, 180);
    EXPECT_FLOAT_EQ(pass.State.LastMove.Radius, 100);
}

TEST_F(BlendTest, ArcByRadiusPicksTheShortOrTheLongArc) {
    Profiling();
    Run("N3 G00 X0 Y0");
    // From (0,0) to 40 + 60 = (100,0) with R 60: the centres lie 33.166 above and below the
    // middle of the chord; the short arc turns through 112.885 degrees, the long one 247.115.
    double half = std::atan(std::sqrt(60.0 * 60 - 50 * 50) / 50) * 180 / Pi;
    Run("N4 G102 X40 Y0 R60");
    EXPECT_NEAR(pass.State.LastMove.Sweep, 180 - 2 * half, 1e-3);
    EXPECT_NEAR(pass.State.LastMove.CentreY, std::sqrt(60.0 * 60 - 50 * 50), 1e-3);
    Run("N5 G00 X0 Y0");
    Run("N6 G102 X160 Y0 R-60");  // a negative R moves the model back by 60
    EXPECT_NEAR(pass.State.LastMove.Sweep, 180 + 2 * half, 1e-3);
    EXPECT_NEAR(pass.State.LastMove.CentreY, -std::sqrt(60.0 * 60 - 50 * 50), 1e-3);
}

TEST_F(BlendTest, RadiusBelowHalfTheChordIsCritical) {
    Profiling();
    Run("N3 G00 X0 Y0");
    EXPECT_EQ(Run("N4 G102 X100 Y0 R40"), "N4 G102 X100 Y0 R40");
    EXPECT_EQ(pass.State.BlendCritical, 1);
    EXPECT_NE(report.str().find("Non-Interpolated Arc (Invalid R)"), std::string::npos);
}

TEST_F(BlendTest, PunchModeNibblingEndsTheChain) {
    Run("N1 G01 X100 Y0 P8=2");
    EXPECT_FALSE(pass.State.BlendHit);
    Run("N2 G81 X10");
    EXPECT_TRUE(pass.State.BlendHit);
    Run("N3 G80 X20");
    EXPECT_FALSE(pass.State.BlendHit);
    Run("N4 G72 X30");
    EXPECT_FALSE(pass.State.BlendHit);
    Run("N5 X40");
    EXPECT_TRUE(pass.State.BlendHit);
}

TEST(BlendProgram, ReportAndReplacementWithoutCriticalErrors) {
    TempDir dir;
    BlendSettings s = Machine();
    s.RootDir = dir.Path();
    s.ServiceDir = dir.Path();
    dir.Write("Actvprg1.M1", "N0001 G90 X100 Y100\r\nN0002 M100\nN0003 M03\nN0004 G101 X200 Y100\nN0005 G101 X300 Y100\n");
    EXPECT_EQ(BlendProgram(" Jobs ", " PLATE01 ", dir.Path() + "Actvprg1.", s), 0);
    auto m1 = ReadLines(dir.Path() + "Actvprg1.M1");
    ASSERT_TRUE(m1);
    EXPECT_EQ(*m1, (std::vector<std::string>{"N0001 G90 X100 Y100", "N0002 M100", "N0003 M03",
                                             "N0004 G101 B0 X200 Y100", "N0005 G101 B1 X300 Y100"}));
    EXPECT_FALSE(FileExists(dir.Path() + "Blend.tmp"));
    EXPECT_EQ(*ReadLines(dir.Path() + "Blend.txt"),
              (std::vector<std::string>{"PROGRAM   :  PLATE01", "DIRECTORY :  Jobs", "TIME      :  21/11/26 10:30", "******"}));
    EXPECT_EQ(ReadLines(dir.Path() + "LastFile.txt")->front(), dir.Path() + "Actvprg1.M1");
}

TEST(BlendProgram, CriticalErrorKeepsM1AndLeavesBlendTmp) {
    TempDir dir;
    BlendSettings s = Machine();
    s.RootDir = dir.Path();
    s.ServiceDir = dir.Path();
    const std::string text = "N1 M100\nN2 M03\nN3 G00 X0 Y0\nN4 G102 X100 Y0 R40\nN5 G101 X3000 Y0\n";
    dir.Write("P.M1", text);
    EXPECT_EQ(BlendProgram("D", "P", dir.Path() + "P.", s), 1);
    std::ifstream in(dir.Path() + "P.M1");
    std::string kept((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_EQ(kept, text);
    EXPECT_TRUE(FileExists(dir.Path() + "Blend.tmp"));
    auto report = ReadLines(dir.Path() + "Blend.txt");
    ASSERT_TRUE(report);
    EXPECT_EQ(std::vector<std::string>(report->begin() + 3, report->end()),
              (std::vector<std::string>{"", "****** CRITICAL ERROR ******", "Non-Interpolated Arc (Invalid R)",
                                        "N4G102X100Y0R40", "", "****** WARNING ERROR ******", "Out of limits in X",
                                        "N5G101X3000Y0", "******"}));
}

TEST(BlendProgram, BlendTmpThatCannotBeCreatedKeepsM1) {
    TempDir dir;
    BlendSettings s = Machine();
    s.RootDir = dir.Path();
    s.ServiceDir = dir.Path();
    const std::string text = "N0001 M100\nN0002 M03\nN0003 G101 X200 Y100\n";
    dir.Write("P.M1", text);
    dir.Write("Blend.tmp/inside", "a directory stands in the way");
    EXPECT_EQ(BlendProgram("D", "P", dir.Path() + "P.", s), -1);
    EXPECT_EQ(ReadFileText(dir.Path() + "P.M1"), text);
}

TEST(BlendProgram, AReportThatCannotBeWrittenRefusesAndLeavesNoBlendTmp) {
    TempDir dir;
    BlendSettings s = Machine();
    s.RootDir = dir.Path();
    s.ServiceDir = dir.Path() + "Service/";
    const std::string text = "N0001 M100\nN0002 M03\nN0003 G101 X200 Y100\n";
    dir.Write("P.M1", text);
    dir.Write("Blend.tmp", "left by an earlier run\n");
    dir.Write("Service/Blend.txt/inside", "a directory stands in the way");
    EXPECT_EQ(BlendProgram("D", "P", dir.Path() + "P.", s), -1);
    EXPECT_EQ(ReadFileText(dir.Path() + "P.M1"), text);
    EXPECT_FALSE(FileExists(dir.Path() + "Blend.tmp"));
}

TEST(BlendProgram, AFullDiskKeepsM1WholeAndLeavesNoBlendTmp) {
    TempDir dir;
    BlendSettings s = Machine();
    s.RootDir = dir.Path();
    s.ServiceDir = dir.Path();
    std::string text;
    for (int n = 1; n <= 200; ++n) text += "N" + std::to_string(n) + " G90 X" + std::to_string(n) + " Y10\n";
    dir.Write("P.M1", text);
    const std::string m1 = dir.Path() + "P.M1", tmp = dir.Path() + "Blend.tmp";
    // In a child process whose files may not grow beyond 1000 bytes.
    EXPECT_EXIT(
        {
            LimitFileSize(1000);
            std::int16_t result = BlendProgram("D", "P", dir.Path() + "P.", s);
            std::_Exit(result == -1 && ReadFileText(m1) == text && !FileExists(tmp) ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
    EXPECT_EQ(ReadFileText(m1), text);
}

TEST(BlendProgram, MissingMotionFile) {
    TempDir dir;
    BlendSettings s = Machine();
    s.RootDir = dir.Path();
    s.ServiceDir = dir.Path();
    EXPECT_EQ(BlendProgram("D", "P", dir.Path() + "none.", s), -1);
    EXPECT_EQ(ReadLines(dir.Path() + "Blend.txt")->back(), "******");
}

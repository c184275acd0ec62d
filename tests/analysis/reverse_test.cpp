// The Reverse pass: its edge cases, subroutine walks, conditions and jumps, the bounds on bad
// input, and the agreement of every pattern's hits with the Blend pass's position model.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "analysis/drawing_file.h"
#include "analysis/expand.h"
#include "analysis/reverse.h"
#include "core/paths.h"
#include "tests/analysis/reverse_settings.h"
#include "tests/core/temp_dir.h"
#include "translate/blend.h"

namespace kirvana {
namespace {

constexpr double Near = 1e-3;

ReverseSettings Settings() { return ReverseTestSettings(); }

struct PassRun {
    ReverseResult Result;
    std::string Report;
    std::vector<EntityRec> Records;  // record 1 first
    std::vector<EntityRec> Hits;     // the expanded Punch records
    std::int16_t ToolChanges = 0;
};

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

PassRun Reverse(const std::string& m1, const std::string& m2 = "", ReverseSettings settings = Settings()) {
    PassRun run;
    DrawingFile drawing = DrawingFile::InMemory();
    run.Result = ReverseTexts(Lines(m1), Lines(m2), drawing, run.Report, run.ToolChanges, settings);
    for (std::int32_t n = 1; n <= drawing.LastReadable(); ++n) {
        EntityRec rec;
        drawing.Get(n, rec);
        run.Records.push_back(rec);
    }
    DrawingFile expanded = DrawingFile::InMemory();
    ExpandRecords(drawing, expanded);
    for (std::int32_t n = 2; n <= expanded.LastReadable(); ++n) {
        EntityRec rec;
        expanded.Get(n, rec);
        run.Hits.push_back(rec);
    }
    return run;
}

int Count(const std::string& text, const std::string& what) {
    int n = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
    return n;
}

std::string Kind(const EntityRec& rec) { return rec.KindName.substr(0, rec.KindName.find_last_not_of(' ') + 1); }

// ---------------------------------------------------------------------------------------
// Edge cases

TEST(ReversePass, HeaderOnlyGivesRecordOneAndAnEmptyBody) {
    PassRun run = Reverse("N0001 ;MATERIAL : MILD STEEL 2MM\nN0002 ;SHEET SIZE : 2500 x 1250\nN0003 ;CLAMPS : 1=300 2=900\n");
    EXPECT_EQ(run.Result.Result, 0);
    ASSERT_EQ(run.Records.size(), 1u);
    EXPECT_EQ(run.Records[0].Kind, EntityKind::Sheet);
    EXPECT_EQ(run.Records[0].RecordNo, 1);
    EXPECT_EQ(run.Records[0].Counts[1], 1);
    EXPECT_FLOAT_EQ(run.Records[0].Values[1], 2500);
    EXPECT_FLOAT_EQ(run.Records[0].Values[2], 1250);
    EXPECT_FLOAT_EQ(run.Records[0].Values[7], 300);
    EXPECT_FLOAT_EQ(run.Records[0].Values[8], 900);
    EXPECT_EQ(run.Records[0].Remark.substr(0, 16), "MILD STEEL 2MM  ");
    EXPECT_EQ(run.Report,
              "Material :  MILD STEEL 2MM\nSheet Size :  2500x1250\nClamps :  300 & 900\n******\n");
}

TEST(ReversePass, NoMotionGivesOneRecord) {
    PassRun run = Reverse("N0001 G90\nN0002 G71\nN0003 M30\n");
    EXPECT_EQ(run.Result.Records, 1);
    EXPECT_EQ(run.Records.size(), 1u);
}

TEST(ReversePass, SecondG70DoesNotScaleTheSheetAgain) {
    PassRun run = Reverse("N0001 ;SHEET SIZE : 100 x 50\nN0002 ;CLAMPS : 1=10 2=20\nN0003 G70 G90\nN0004 G71\nN0005 G70\n");
    EXPECT_FLOAT_EQ(run.Records[0].Values[1], 2540);
    EXPECT_FLOAT_EQ(run.Records[0].Values[2], 1270);
    EXPECT_FLOAT_EQ(run.Records[0].Values[7], 254);
    EXPECT_FLOAT_EQ(run.Records[0].Values[8], 508);
    EXPECT_EQ(run.Records[0].Counts[2], -1);
    // A G71 first leaves the sheet as it is, and a later G70 doesn't scale it.
    PassRun metric = Reverse("N0001 ;SHEET SIZE : 100 x 50\nN0002 G71\nN0003 G70\n");
    EXPECT_FLOAT_EQ(metric.Records[0].Values[1], 100);
    EXPECT_EQ(metric.Records[0].Counts[2], 0);
}

TEST(ReversePass, G68RepeatWalksTheBodyThreeTimes) {
    PassRun run = Reverse("N0001 G90 T1\nN0002 G68 X100 Y100 S1 Q3\nN0003 M30\n",
                      "N1000 G91 G81 X10\nRETURN\n");
    ASSERT_EQ(run.Records.size(), 4u);
    const std::int16_t states[3] = {3, 2, 1};
    for (int k = 0; k < 3; ++k) {
        const EntityRec& punch = run.Records[1 + k];
        EXPECT_EQ(punch.Kind, EntityKind::Punch);
        EXPECT_NEAR(punch.Points.Position.X, 110 + 10 * k, Near);
        EXPECT_NEAR(punch.Points.Position.Y, 100, Near);
        EXPECT_EQ(punch.CallState.CountY, states[k]);
        EXPECT_EQ(punch.CallState.CountX, k + 1);
        EXPECT_EQ(punch.CallSpec.CountY, 3);
        EXPECT_EQ(punch.CallSpec.CountX, 0);
        EXPECT_EQ(punch.CallSpec.CallCode, 68);
        EXPECT_EQ(punch.CallSpec.Label, 1);
        EXPECT_EQ(punch.SubBlock, 1);
        EXPECT_EQ(punch.MainBlock, 2);
    }
}

TEST(ReversePass, G98WalksSixCopiesInASnake) {
    PassRun run = Reverse("N0001 G90 T1\nN0002 P1=3 P2=100 P3=2 P4=50 P6=0 G98 X10 Y20 S1\n",
                      "N1000 G81 X0 Y0\nRETURN\n");
    ASSERT_EQ(run.Records.size(), 7u);
    const double xs[6] = {10, 110, 210, 210, 110, 10};
    const double ys[6] = {20, 20, 20, 70, 70, 70};
    for (int k = 0; k < 6; ++k) {
        EXPECT_NEAR(run.Records[1 + k].Points.Position.X, xs[k], Near) << k;
        EXPECT_NEAR(run.Records[1 + k].Points.Position.Y, ys[k], Near) << k;
        EXPECT_EQ(run.Records[1 + k].CallSpec.CallCode, 98);
    }
    // Columns first with P6=1.
    PassRun columns = Reverse("N0001 G90 T1\nN0002 P1=3 P2=100 P3=2 P4=50 P6=1 G98 X10 Y20 S1\n",
                          "N1000 G81 X0 Y0\nRETURN\n");
    ASSERT_EQ(columns.Records.size(), 7u);
    const double cx[6] = {10, 10, 110, 110, 210, 210};
    const double cy[6] = {20, 70, 70, 20, 20, 70};
    for (int k = 0; k < 6; ++k) {
        EXPECT_NEAR(columns.Records[1 + k].Points.Position.X, cx[k], Near) << k;
        EXPECT_NEAR(columns.Records[1 + k].Points.Position.Y, cy[k], Near) << k;
    }
}

TEST(ReversePass, LimitWarningsAtMostOncePerAxis) {
    PassRun run = Reverse("N0001 G90 T1\nN0002 G81 X3000 Y100\nN0003 G81 X-100 Y2000\nN0004 G26 X2600 Y1300 P1=5 P2=10 "
                      "P3=3 P4=10\nN0005 G81 X4000 Y4000\n");
    EXPECT_EQ(Count(run.Report, "Out of limits in X"), 1);
    EXPECT_EQ(Count(run.Report, "Out of limits in Y"), 1);
    EXPECT_EQ(run.Result.Result, 0);  // warnings don't bar the program
}

TEST(ReversePass, MoveToItselfLeavesNoRecord) {
    PassRun run = Reverse("N0001 G90 G80 X100 Y100\nN0002 G80 X100 Y100\nN0003 G80 X150 Y100\n");
    ASSERT_EQ(run.Records.size(), 3u);
    EXPECT_EQ(Kind(run.Records[1]), "Move");
    EXPECT_EQ(Kind(run.Records[2]), "Move");
    EXPECT_NEAR(run.Records[2].Points.Start.X, 100, Near);
    EXPECT_NEAR(run.Records[2].Points.End.X, 150, Near);
    EXPECT_FLOAT_EQ(run.Records[2].Values[1], 50);
}

TEST(ReversePass, BlockWithTwoWordsActsOnBothInOrder) {
    // G91 then a punch: the incremental mode of this very block applies to its move.
    PassRun run = Reverse("N0001 G90 T1 G81 X100 Y100\nN0002 G91 G81 X10 Y5\n");
    ASSERT_EQ(run.Records.size(), 3u);
    EXPECT_NEAR(run.Records[2].Points.Position.X, 110, Near);
    EXPECT_NEAR(run.Records[2].Points.Position.Y, 105, Near);
    EXPECT_EQ(run.Records[1].StationNo, 1);
    EXPECT_EQ(run.ToolChanges, 1);
    EXPECT_EQ(run.Records[0].StationNo, 1);
}

// ---------------------------------------------------------------------------------------
// Tools, stops, statistics

TEST(ReversePass, PunchWithoutAStationIsCritical) {
    PassRun run = Reverse("N0001 G90 G81 X100 Y100\nN0002 T25\nN0003 T0\n");
    EXPECT_EQ(run.Result.Result, 1);
    EXPECT_EQ(run.Records.size(), 1u);
    EXPECT_NE(run.Report.find("****** CRITICAL ERROR ******\nInvalid Station Number (0)\nN0001 G90 G81 X100 Y100\n"),
              std::string::npos);
    EXPECT_NE(run.Report.find("Station Number (25) Exceeds Maximum (20)\nN0002 T25"), std::string::npos);
    EXPECT_NE(run.Report.find("Station Number (0) <= Zero\nN0003 T0"), std::string::npos);
}

TEST(ReversePass, AutoindexToolCarriesTheCAngle) {
    PassRun run = Reverse("N0001 G90 T20 C30\nN0002 G81 X10 Y10 C15\nN0003 T1 G81 X20 Y10\n");
    ASSERT_EQ(run.Records.size(), 3u);
    EXPECT_FLOAT_EQ(run.Records[1].Tool.Extra1, 45);  // C words add up
    EXPECT_FLOAT_EQ(run.Records[2].Tool.Extra1, 0);
}

TEST(ReversePass, StatisticsCountHitsTravelAndCut) {
    PassRun run = Reverse("N0001 G90 T1\nN0002 G81 X0 Y1000\nN0003 G81 X30 Y1040\nN0004 G80 X130 Y1040\n"
                      "N0005 M100\nN0006 M03\nN0007 G101 X130 Y1140\n");
    EXPECT_EQ(run.Result.Stats.Hits, 2);
    // 250 from the load position to the first hit, 50 to the second, 100 moved.
    EXPECT_FLOAT_EQ(run.Result.Stats.Travel, 400);
    EXPECT_FLOAT_EQ(run.Result.Stats.CutLength, 100);
    ASSERT_EQ(run.Records.size(), 5u);
    EXPECT_EQ(Kind(run.Records[4]), "Line Profile");
    EXPECT_EQ(run.Records[4].StationNo, -1);
    EXPECT_EQ(run.Records[4].Tool.Shape, 'P');
}

TEST(ReversePass, StopsAndDwellAndReposition) {
    PassRun run = Reverse("N0001 G90 T1 G80 X50 Y60\nN0002 M00\nN0003 M01\nN0004 G04 X2.5\nN0005 G95 I500 J8 K2\n"
                      "N0006 G81 X-400 Y60\n");
    ASSERT_EQ(run.Records.size(), 7u);
    EXPECT_EQ(Kind(run.Records[2]), "Program Stop");
    EXPECT_EQ(run.Records[2].Counts[1], 0);
    EXPECT_EQ(Kind(run.Records[3]), "Optional Stop");
    EXPECT_EQ(run.Records[3].Counts[1], -1);
    EXPECT_EQ(Kind(run.Records[4]), "Dwell");
    EXPECT_FLOAT_EQ(run.Records[4].Values[1], 2.5);
    EXPECT_EQ(Kind(run.Records[5]), "Reposition");
    EXPECT_FLOAT_EQ(run.Records[5].Values[3], -525);
    EXPECT_FLOAT_EQ(run.Records[5].Values[4], 2040);
    EXPECT_NE(run.Report.find("Reposition with Excessive Backoff distance (J)"), std::string::npos);
    EXPECT_EQ(run.Report.find("Excessive Return"), std::string::npos);
    // X -400 lies within the shifted limits.
    EXPECT_EQ(run.Report.find("Out of limits"), std::string::npos);
}

TEST(ReversePass, FullCircleProfileIsTwoHalfArcs) {
    PassRun run = Reverse("N0001 G90 G80 X100 Y100\nN0002 M100\nN0003 M03 G102 X100 Y100 I50 J0\n");
    ASSERT_EQ(run.Records.size(), 4u);
    const EntityRec& first = run.Records[2];
    const EntityRec& second = run.Records[3];
    EXPECT_EQ(Kind(first), "Arc Profile");
    EXPECT_FLOAT_EQ(first.Values[11], -180);  // G102 clockwise on orientation 1
    EXPECT_FLOAT_EQ(second.Values[11], -180);
    EXPECT_NEAR(first.Points.End.X, 200, Near);
    EXPECT_NEAR(second.Points.Start.X, 200, Near);
    EXPECT_NEAR(second.Points.End.X, 100, Near);
    EXPECT_NEAR(run.Result.Stats.CutLength, 2 * Pi * 50, 1e-3);
}

TEST(ReversePass, MirrorsTurnPositionsAndAngles) {
    PassRun run = Reverse("N0001 G90 T1 G56 X500 Y500\nN0002 M11\nN0003 G81 X100 Y50\nN0004 M13\nN0005 G81 X100 Y50\n"
                      "N0006 M100 M10\nN0007 M101\nN0008 G81 X100 Y50\n");
    ASSERT_EQ(run.Records.size(), 4u);
    EXPECT_NEAR(run.Records[1].Points.Position.X, 400, Near);
    EXPECT_NEAR(run.Records[1].Points.Position.Y, 550, Near);
    EXPECT_NEAR(run.Records[2].Points.Position.X, 400, Near);
    EXPECT_NEAR(run.Records[2].Points.Position.Y, 450, Near);
    // M10 beside M100 is hidden: both mirrors stay.
    EXPECT_NEAR(run.Records[3].Points.Position.X, 400, Near);
    EXPECT_NEAR(run.Records[3].Points.Position.Y, 450, Near);
}

TEST(ReversePass, InchWordsAreMillimetresInTheRecords) {
    PassRun run = Reverse("N0001 G70 G90 T1\nN0002 G81 X1 Y2\nN0003 P8=0.1 G01 X2 Y2\n");
    ASSERT_EQ(run.Records.size(), 3u);
    EXPECT_NEAR(run.Records[1].Points.Position.X, 25.4, Near);
    EXPECT_NEAR(run.Records[1].Points.Position.Y, 50.8, Near);
    // 25.4 mm at 2.54 mm: 10 steps, 11 hits.
    EXPECT_EQ(run.Records[2].Counts[1], 11);
    EXPECT_FLOAT_EQ(run.Records[2].Values[2], 2.54f);
}

TEST(ReversePass, NibbledLineCounts) {
    // 25 at 10 is not whole: 4 hits at 8.3333.
    PassRun run = Reverse("N0001 G90 T1 G80 X100 Y100\nN0002 P8=10 G01 X125 Y100\nN0003 P8=-5 G01 X135 Y100\n"
                      "N0004 G01 X135 Y100\n");
    ASSERT_EQ(run.Records.size(), 4u);
    EXPECT_EQ(run.Records[2].Counts[1], 4);
    EXPECT_FLOAT_EQ(run.Records[2].Values[2], 8.3333f);
    EXPECT_EQ(run.Records[3].Counts[1], 3);
    EXPECT_NE(run.Report.find("Negative Nibble Increment (P8)\nN0003"), std::string::npos);
    EXPECT_NE(run.Report.find("Nibble Increment (P8) has not been set\nN0004"), std::string::npos);
    // A line of no length has one hit: a division by zero.
    EXPECT_NE(run.Report.find("CRITICAL ERROR ******\nDivision by Zero\nN0004"), std::string::npos);
    EXPECT_EQ(run.Result.Result, 1);
}

TEST(ReversePass, NibbledArcByCentreAndByRadius) {
    PassRun run = Reverse("N0001 G90 T1 G80 X100 Y100\nN0002 P8=5 P10=1 G03 X0 Y100 I-50 J0\n"
                      "N0003 P8=5 G02 X100 Y100 R50\nN0004 P8=5 G02 X300 Y100 R10\n");
    ASSERT_EQ(run.Records.size(), 4u);
    const EntityRec& ccw = run.Records[2];
    EXPECT_EQ(Kind(ccw), "Arc Pattern");
    EXPECT_NEAR(ccw.Points.Position.X, 50, Near);
    EXPECT_FLOAT_EQ(ccw.Values[10], 0);
    EXPECT_FLOAT_EQ(ccw.Values[11], 180);
    // 157.08 mm at 5: 31.4 steps, 33 hits, all drawn with P10=1.
    EXPECT_EQ(ccw.Counts[1], 33);
    const EntityRec& cw = run.Records[3];
    EXPECT_FLOAT_EQ(cw.Values[11], -180);
    EXPECT_EQ(cw.Counts[1], 33);  // without P10 as well: only G37 leaves its last hit to P10
    EXPECT_NE(run.Report.find("Non-Interpolated Arc (Invalid R)\nN0004"), std::string::npos);
}


TEST(ReversePass, NibbledArcWithoutP10KeepsItsLastHit) {
    // A quarter circle of radius 10 at 5: 15.7 mm, 3.14 steps, 5 hits.
    PassRun run = Reverse("N0001 G90 T1 G80 X100 Y100\nN0002 P8=5 G03 X90 Y110 I-10 J0\n");
    ASSERT_EQ(run.Records.size(), 3u);
    EXPECT_EQ(run.Records[2].Counts[1], 5);
    EXPECT_EQ(run.Hits.size(), 5u);
    EXPECT_NEAR(run.Hits.back().Points.Position.X, 90, Near);
    EXPECT_NEAR(run.Hits.back().Points.Position.Y, 110, Near);
}

TEST(ReversePass, ArcPatternToolTurnsUnlessP10IsAboveZero) {
    PassRun run = Reverse("N0001 G90 T1 G80 X500 Y400\n"
                          "N0002 G37 R30 P1=90 P5=45 P8=3 P10=-999\n"
                          "N0003 G37 R30 P1=90 P5=45 P8=3 P10=1\n"
                          "N0004 G37 R30 P1=90 P5=45 P8=3 P10=0\n"
                          "N0005 G64 J60 A15 B6\n"
                          "N0006 G80 X500 Y400\nN0007 P8=5 G02 X520 Y400 I10 J0\n"
                          "N0008 P8=5 P10=1 G03 X500 Y400 I-10 J0\n"
                          "N0009 G28 R50 P1=5 P2=20 P3=10 P10=-999\n");
    ASSERT_EQ(run.Records.size(), 10u);
    // P10 -999 (not set), 1, 0; G64 without P10; G02 without, G03 with 1; G28 with -999.
    std::vector<int> turns;
    for (const EntityRec& rec : run.Records)
        if (Kind(rec) == "Arc Pattern") turns.push_back(rec.Counts[2]);
    EXPECT_EQ(turns, (std::vector<int>{-1, 0, -1, -1, -1, 0, -1}));
}

TEST(ReversePass, RepositionChecksTheLimitsAtItsBlockAndKeepsKUnset) {
    // At X 2000 the sheet moves by 1000: the X limits become -1025 to 1540.
    PassRun run = Reverse("N0001 G90 T1 G80 X2000 Y60\nN0002 G95 I1000 J2 K-999\nN0003 G95 I0 J2\n"
                          "N0004 G95 I0 J2 K3\n");
    ASSERT_EQ(run.Records.size(), 5u);
    EXPECT_NE(run.Report.find("Out of limits in X\nN0002 G95"), std::string::npos);
    EXPECT_FLOAT_EQ(run.Records[2].Values[6], -999);
    EXPECT_FLOAT_EQ(run.Records[3].Values[6], -999);
    EXPECT_FLOAT_EQ(run.Records[4].Values[6], 3);
    EXPECT_EQ(run.Report.find("Excessive Return"), std::string::npos);
}

TEST(ReversePass, BlocksAreReadWithTheirBlanks) {
    // "M10 0" is M10 and a lone 0, not M100: no profiling, the G81 punches.
    PassRun run = Reverse("N0001 G90 T1\nN0002 M10 0\nN0003 G81 X10 Y10\n");
    ASSERT_EQ(run.Records.size(), 2u);
    EXPECT_EQ(Kind(run.Records[1]), "Punch");
    // Conditions and jumps read as before with their blanks.
    PassRun jump = Reverse("N0001 G90 T1\nN0002 P12=0\nN0003 IF ( P12 = 0 ) GOTO 5\nN0004 G81 X1 Y1\n"
                           "N0005 G81 X2 Y2\nN0006 GOTO  N8\nN0007 G81 X3 Y3\nN0008 G81 X4 Y4\n");
    ASSERT_EQ(jump.Records.size(), 3u);
    EXPECT_NEAR(jump.Records[1].Points.Position.X, 2, Near);
    EXPECT_NEAR(jump.Records[2].Points.Position.X, 4, Near);
}

TEST(ReversePass, RecordsBeyond32767AreReportedOnce) {
    PassRun run = Reverse("N0001 G90 T1\nN0002 G68 X0 Y0 S1 Q16400\n", "N1000 G91\nG81 X0.01\nG81 X0.01\nRETURN\n");
    EXPECT_EQ(run.Result.Records, 32767);
    EXPECT_EQ(Count(run.Report, "Drawing exceeds 32767 records"), 1);
    EXPECT_EQ(run.Result.Result, 1);
    EXPECT_EQ(run.Records[0].Counts[1], 32767);
}

TEST(ReversePass, FlipAndLoadPositionWithStation) {
    PassRun run = Reverse("N0001 G90 T1 G80 X50 Y60\nN0002 M55 I1 J0 A90\nN0003 M60 Y600 T5\nN0004 G81 X10 Y10\n"
                          "N0005 M50\n");
    ASSERT_EQ(run.Records.size(), 6u);
    EXPECT_EQ(Kind(run.Records[2]), "Flip / Rotate");
    EXPECT_EQ(run.Records[2].Counts[1], -1);
    EXPECT_EQ(run.Records[2].Counts[2], 0);
    EXPECT_FLOAT_EQ(run.Records[2].Values[10], 90);
    EXPECT_EQ(Kind(run.Records[3]), "Load Position");
    EXPECT_NEAR(run.Records[3].Points.Position.X, 0, Near);
    EXPECT_NEAR(run.Records[3].Points.Position.Y, 600, Near);
    EXPECT_EQ(run.Records[3].Counts[1], 1);
    EXPECT_EQ(run.Records[4].StationNo, 5);
    EXPECT_NEAR(run.Records[5].Points.Position.Y, 1250, Near);
    EXPECT_EQ(run.Records[5].Counts[1], 0);
}


TEST(ReversePass, OddCornersOfThePositionFollowedAsWritten) {
    // G72 leaves the position alone; C words add up even in absolute mode; G66 leaves the
    // machine at 0, 0.
    PassRun run = Reverse("N0001 G90 T20 G80 X100 Y100\nN0002 G72 X300 Y300\nN0003 G81 C10\nN0004 G81 C10\n"
                          "N0005 IF (1 = 1) ABORT\nN0006 G81 X5 Y5\n");
    ASSERT_EQ(run.Records.size(), 5u);
    EXPECT_NEAR(run.Records[2].Points.Position.X, 100, Near);
    EXPECT_FLOAT_EQ(run.Records[2].Tool.Extra1, 10);
    EXPECT_FLOAT_EQ(run.Records[3].Tool.Extra1, 20);
    // ABORT in the main text does nothing.
    EXPECT_NEAR(run.Records[4].Points.Position.X, 5, Near);
}

TEST(ReversePass, JumpInsideASubroutineRestartsItsFile) {
    PassRun run = Reverse("N0001 G90 T1\nN0002 G68 X0 Y0 S1 Q1\n",
                          "N1000 GOTO 1005\nN1001 G81 X1 Y1\nN1005 G81 X2 Y2\nRETURN\n");
    ASSERT_EQ(run.Records.size(), 2u);
    EXPECT_NEAR(run.Records[1].Points.Position.X, 2, Near);
    EXPECT_EQ(run.Records[1].SubBlock, 3);  // the file read again from its start
}

// ---------------------------------------------------------------------------------------
// Conditions, jumps, bad input

TEST(ReversePass, ConditionalJumpAndLoopWithAVariable) {
    PassRun run = Reverse("N0001 G90 T1 P12=0\nN0010 G91 G81 X10 Y0\nN0011 P12=P12+1\n"
                      "N0012 IF (P12 < 3) GOTO 10\nN0013 IF (P12 != 3) GOTO 99\nN0014 G90 G81 X500 Y500\n");
    ASSERT_EQ(run.Records.size(), 5u);
    EXPECT_NEAR(run.Records[3].Points.Position.X, 30, Near);
    EXPECT_NEAR(run.Records[4].Points.Position.X, 500, Near);
    EXPECT_EQ(run.Result.Result, 0);
}

TEST(ReversePass, AbortGivesUpTheCall) {
    PassRun run = Reverse("N0001 G90 T1\nN0002 G68 X0 Y0 S1 Q5\nN0003 G81 X700 Y700\n",
                      "N1000 G81 X1 Y1\nN1001 IF (1 = 1) ABORT\nN1002 G81 X2 Y2\nRETURN\n");
    ASSERT_EQ(run.Records.size(), 3u);
    EXPECT_NEAR(run.Records[1].Points.Position.X, 1, Near);
    EXPECT_NEAR(run.Records[2].Points.Position.X, 700, Near);
}

TEST(ReversePass, JumpToAMissingLabelEndsAndIsReported) {
    PassRun run = Reverse("N0001 G90 T1\nN0002 GOTO 77\nN0003 G81 X10 Y10\n");
    EXPECT_EQ(run.Records.size(), 1u);
    EXPECT_NE(run.Report.find("Block number not found (N77)"), std::string::npos);
    EXPECT_EQ(run.Result.Result, 1);
}

TEST(ReversePass, EndlessLoopIsStoppedAtTheBlockBound) {
    ReverseSettings settings = Settings();
    settings.MaxBlocks = 10'000;
    PassRun run = Reverse("N0010 G90\nN0011 GOTO 10\n", "", settings);
    EXPECT_TRUE(run.Result.Stopped);
    EXPECT_EQ(run.Result.Result, 1);
    EXPECT_NE(run.Report.find("Program does not end: block limit reached"), std::string::npos);
    // A call whose label never comes, repeated many times, ends as well.
    PassRun missing = Reverse("N0001 G68 S7 Q30000\nN0002 G68 S7 Q30000\n", "N1000 G81\nRETURN\n", settings);
    EXPECT_TRUE(missing.Result.Stopped);
}

// Hostile programs end at the bounds on the walk's work, well before the lines read reach
// the block bound: the refusal is the pass's critical error.
std::string GotoLine(int gotos) {
    std::string line = "N0002";
    for (int k = 0; k < gotos; ++k) line += " GOTO 2";
    return line;
}

void ExpectStoppedEarly(const PassRun& run, std::int64_t atMostBlocks) {
    EXPECT_TRUE(run.Result.Stopped);
    EXPECT_GE(run.Result.Result, 1);
    EXPECT_NE(run.Report.find("****** CRITICAL ERROR ******\nProgram does not end: block limit reached\n"),
              std::string::npos);
    EXPECT_LE(run.Result.Blocks, atMostBlocks);
}

TEST(ReversePass, GotoLoopEndsAtTheJumpBound) {
    PassRun run = Reverse("N0001 G90 T1\nN0002 G00 X10 Y10\nN0003 GOTO 2\n");
    // 100,000 jumps, each reading three lines (the first passed over to the label).
    ExpectStoppedEarly(run, 300'010);
}

TEST(ReversePass, LinesOfManyGotosEndAtTheCharacterBound) {
    // A line of 250 GOTOs is 1,755 characters, 1,787 of work: 16,000,000 of them are some
    // 9,000 loops; a line of 1,000 GOTOs ends after some 2,300.
    PassRun line250 = Reverse("N0001 G90 T1\n" + GotoLine(250) + "\n");
    ExpectStoppedEarly(line250, 20'000);
    PassRun line1000 = Reverse("N0001 G90 T1\n" + GotoLine(1000) + "\n");
    ExpectStoppedEarly(line1000, 5'000);
}

TEST(ReversePass, EachWorkBoundStopsTheWalk) {
    ReverseSettings jumps = Settings();
    jumps.MaxJumps = 50;
    ExpectStoppedEarly(Reverse("N0001 G90 T1\nN0002 G00 X10 Y10\nN0003 GOTO 2\n", "", jumps), 200);
    ReverseSettings characters = Settings();
    characters.MaxCharacters = 10'000;
    ExpectStoppedEarly(Reverse("N0001 G90 T1\n" + GotoLine(100) + "\n", "", characters), 30);
    // A grid of a million calls of a label that M2 doesn't hold: each repetition is a jump.
    ExpectStoppedEarly(Reverse("N0001 G90 T1\nN0002 G98 S7 P1=1000 P3=1000\n", "N1000 G81 X1\nRETURN\n"), 300'000);
    // Lines passed over to a label are read, and counted, without being worked on.
    std::string longText = "N0001 G90 T1\nN0002 GOTO 9\n";
    for (int k = 0; k < 1000; ++k) longText += "G00 X1 Y1\n";
    longText += "N0009 G81 X5 Y5\n";
    PassRun passed = Reverse(longText);
    EXPECT_FALSE(passed.Result.Stopped);
    // The first two lines, then after the jump the 1,003 of the text.
    EXPECT_EQ(passed.Result.Blocks, 1005);
    ASSERT_EQ(passed.Records.size(), 2u);
    EXPECT_EQ(passed.Records[1].MainBlock, 1003);
}

TEST(ReversePass, SubroutineDeeperThan64IsStopped) {
    PassRun run = Reverse("N0001 G90 T1\nN0002 G68 S1 Q1\n", "N1000 G69 S1 Q1\nRETURN\n");
    EXPECT_TRUE(run.Result.Stopped);
    EXPECT_NE(run.Report.find("Subroutine depth exceeds 64"), std::string::npos);
    EXPECT_GE(run.Result.Result, 1);
}

TEST(ReversePass, UnknownWordsRejectTheProgram) {
    EXPECT_FALSE(CheckWords({"N0001 G90 XY10"}));
    EXPECT_FALSE(CheckWords({"N0001 G90 #5"}));
    EXPECT_TRUE(CheckWords({"N0001 IF (P12!<ROUND(P13)) GOTO 10 ;any ## text", "RETURN", "X-TRUNC(2.5)*3"}));
    PassRun run = Reverse("N0001 G90 T1\nN0002 G81 X10 Y10 QQ\n");
    EXPECT_TRUE(run.Result.WordsRejected);
    EXPECT_EQ(run.Result.Result, 1);
    EXPECT_TRUE(run.Report.empty());
}

TEST(ReversePass, WordCheckRejectionEndsBeforeTheDrawingExists) {
    TempDir dir;
    ReverseSettings settings = Settings();
    settings.ServiceDir = dir.Path();
    const std::string stem = dir.Path() + "Actvprg1.";
    const std::string older = "an older drawing";
    dir.Write("Actvprg1.drw", older);
    dir.Write("Actvprg1.M1", "N0001 G90 T1\nN0002 G81 X10 Y10 QQ\n");
    std::int16_t toolChanges = 0;
    ReverseResult result = ReversePass(stem, "P", "D", toolChanges, settings);
    EXPECT_TRUE(result.WordsRejected);
    EXPECT_EQ(result.Result, 1);
    EXPECT_FALSE(result.FileFault);
    EXPECT_EQ(ReadFileText(stem + "drw"), older);
    EXPECT_EQ(ListDirectory(dir.Path(), false), (std::vector<std::string>{"Actvprg1.drw", "Actvprg1.M1", "LastFile.txt", "Reverse.txt"}));
}

TEST(ReversePass, AReportThatCannotBeWrittenIsAFileFaultNamingIt) {
    TempDir dir;
    ReverseSettings settings = Settings();
    settings.ServiceDir = dir.Path() + "Service/";
    dir.Write("Service/Reverse.txt/inside", "a directory stands in the way");
    dir.Write("P.M1", "N0001 G90\nN0002 G81 X10 Y10\n");
    std::int16_t toolChanges = 0;
    ReverseResult result = ReversePass(dir.Path() + "P.", "P", "D", toolChanges, settings);
    EXPECT_TRUE(result.FileFault);
    EXPECT_EQ(result.FaultFile, dir.Path() + "Service/Reverse.txt");
    EXPECT_NE(result.Result, 0);
}

TEST(ReversePass, HeaderForms) {
    ProgramHeader h = ReadHeader({"N0000 ;PROGRAM NAME : P1", "N0001 ;SHEET: X=1000 Y=500",
                                  "N0002 ;CLAMP: L100 M400 R800", "N0003 G90", "N0004 ;MATERIAL : LATE"});
    EXPECT_FLOAT_EQ(h.SheetX, 1000);
    EXPECT_FLOAT_EQ(h.SheetY, 500);
    EXPECT_FLOAT_EQ(h.Clamps[0], 100);
    EXPECT_FLOAT_EQ(h.Clamps[1], 400);
    EXPECT_FLOAT_EQ(h.Clamps[2], 800);
    EXPECT_FALSE(h.HasMaterial);  // behind the first block
    ReverseSettings settings = Settings();
    settings.ClampCount = 4;
    PassRun run = Reverse("N0001 ;CLAMPS : A=100 B=400 C=800\n", "", settings);
    EXPECT_NE(run.Report.find("Clamps :  100, 400, 800\n"), std::string::npos);
}


TEST(ReversePass, HugeGridsAreRefusedAndLoopsOfPatternsBounded) {
    PassRun huge = Reverse("N0001 G90 T1\nN0002 G26 X0 Y0 P1=30000 P2=1 P3=30000 P4=1\n");
    EXPECT_NE(huge.Report.find("Pattern exceeds 4000000 hits"), std::string::npos);
    EXPECT_EQ(huge.Result.Result, 1);
    ReverseSettings settings = Settings();
    settings.MaxHitWork = 100'000;
    PassRun loop = Reverse("N0001 G90 T1\nN0010 G26 X0 Y0 P1=100 P2=1 P3=100 P4=1\nN0011 GOTO 10\n", "", settings);
    EXPECT_NE(loop.Report.find("Program does not end: block limit reached"), std::string::npos);
    EXPECT_TRUE(loop.Result.Stopped);
}

// ---------------------------------------------------------------------------------------
// Agreement with the Blend pass: the position after each cycle, and its hits

struct BlendRun {
    std::vector<std::pair<float, float>> After;  // the modelled position after each line
};

BlendRun Blend(const std::string& m1) {
    BlendSettings s;
    s.MachineQ10 = 0;
    s.MachineQ11 = 1250;
    s.XLimitMin = -25;
    s.XLimitMax = 2540;
    s.YLimitMin = -10;
    s.YLimitMax = 1270;
    BlendPass pass(s);
    std::ostringstream report;
    pass.OpenReport(&report);
    BlendRun run;
    for (const auto& line : Lines(m1)) {
        pass.BlendBlock(line);
        run.After.emplace_back(pass.State.BlendX, pass.State.BlendY);
    }
    return run;
}

// Every cycle followed by a punch where the machine then stands: the Reverse pass's punch must
// lie where the Blend pass's model says.
void ExpectSamePosition(const std::string& cycle, const std::string& mirror = "M10") {
    std::string m1 = "N0001 G90 T1 " + mirror + "\nN0002 G80 X500 Y400\nN0003 " + cycle + "\nN0004 G91 G81 X0 Y0\n";
    BlendRun blend = Blend(m1);
    PassRun reverse = Reverse(m1);
    ASSERT_FALSE(reverse.Records.empty()) << cycle;
    const EntityRec& last = reverse.Records.back();
    ASSERT_EQ(last.Kind, EntityKind::Punch) << cycle;
    EXPECT_NEAR(last.Points.Position.X, blend.After[3].first, Near) << cycle << " " << mirror;
    EXPECT_NEAR(last.Points.Position.Y, blend.After[3].second, Near) << cycle << " " << mirror;
}

TEST(ReverseAgreesWithBlend, PositionAfterEveryCycle) {
    for (const char* mirror : {"M10", "M11", "M12", "M13"}) {
        ExpectSamePosition("G26 P1=4 P2=10 P3=3 P4=20 P5=30 P9=1", mirror);
        ExpectSamePosition("G26 P1=4 P2=10 P3=3 P4=20 P5=30", mirror);
        ExpectSamePosition("G26 P7=25 P2=10 P5=0 P9=1", mirror);
        ExpectSamePosition("G26 P3=5 P4=10 P5=0 P9=1", mirror);
        ExpectSamePosition("G28 R50 P1=5 P2=20 P3=10 P9=1", mirror);
        ExpectSamePosition("G28 I50 J0 P1=8 P9=1", mirror);
        ExpectSamePosition("G28 P7=300 P8=300 R40 P1=6 P3=0 P4=180 P2=1 P9=1", mirror);
        ExpectSamePosition("G36 I40 J30 P8=2.5", mirror);
        ExpectSamePosition("G36 P1=-30 P5=45 P8=3", mirror);
        ExpectSamePosition("G37 R30 P1=90 P5=45 P8=3", mirror);
        ExpectSamePosition("G64 J60 A15 B6", mirror);
        ExpectSamePosition("G65 I80 J-40 P8=5", mirror);
        ExpectSamePosition("G66 I10 J5 B4", mirror);
        ExpectSamePosition("G66 X600 Y450 I10 J5 B4", mirror);
    }
}

// The hits of each pattern, after the expansion, where the Blend pass's cycle puts them: the last
// hit where the model leaves the machine with "stay", or the corners the rectangle passes.
TEST(ReverseAgreesWithBlend, PatternHitsLieOnTheBlendPath) {
    struct Case {
        const char* Cycle;
        int Hits;
        bool LastIsEnd;  // the last hit is where the model stands after the block
    } cases[] = {
        {"G26 P1=4 P2=10 P3=3 P4=20 P5=30 P9=1", 12, true},
        {"G26 P7=25 P2=10 P5=0 P9=1", 4, true},
        {"G26 P3=5 P4=10 P5=0 P9=1", 5, true},
        {"G28 R50 P1=5 P2=20 P3=10 P9=1", 5, true},
        {"G28 P7=300 P8=300 R40 P1=7 P3=0 P4=180 P2=30 P9=1", 7, true},
        {"G36 I40 J30 P8=2.5", 21, true},
        {"G37 R30 P1=90 P5=45 P8=3 P10=1", 16, true},
    };
    for (const char* mirror : {"M10", "M11", "M12", "M13"}) {
        for (const Case& c : cases) {
            std::string m1 = std::string("N0001 G90 T1 ") + mirror + "\nN0002 G80 X500 Y400\nN0003 " + c.Cycle + "\n";
            BlendRun blend = Blend(m1);
            PassRun reverse = Reverse(m1);
            ASSERT_EQ(static_cast<int>(reverse.Hits.size()), c.Hits) << c.Cycle << " " << mirror;
            const EntityRec& last = reverse.Hits.back();
            EXPECT_NEAR(last.Points.Position.X, blend.After[2].first, 1e-2) << c.Cycle << " " << mirror;
            EXPECT_NEAR(last.Points.Position.Y, blend.After[2].second, 1e-2) << c.Cycle << " " << mirror;
        }
        // G64: the model leaves the machine at the first hit.
        std::string m1 = std::string("N0001 G90 T1 ") + mirror + "\nN0002 G80 X500 Y400\nN0003 G64 J60 A15 B6\n";
        BlendRun blend = Blend(m1);
        PassRun reverse = Reverse(m1);
        ASSERT_EQ(reverse.Hits.size(), 6u);
        EXPECT_NEAR(reverse.Hits.front().Points.Position.X, blend.After[2].first, 1e-2) << mirror;
        EXPECT_NEAR(reverse.Hits.front().Points.Position.Y, blend.After[2].second, 1e-2) << mirror;
        // G65: the model walks the four corners; each is a hit, and the sides hold no others off
        // the rectangle.
        std::string rect = std::string("N0001 G90 T1 ") + mirror + "\nN0002 G80 X500 Y400\nN0003 G65 I80 J-40 P8=5\n";
        PassRun walk = Reverse(rect);
        BlendSettings bs;
        bs.MachineQ11 = 1250;
        BlendPass pass(bs);
        std::ostringstream report;
        pass.OpenReport(&report);
        for (const auto& line : Lines(rect)) pass.BlendBlock(line);
        // 80 at 5: 17 pitches of 4.7059 per long side; 40 at 5: 9 of 4.4444.
        ASSERT_EQ(walk.Hits.size(), 17u + 9u + 17u + 9u) << mirror;
        const bool mirrorX = mirror[2] == '1' || mirror[2] == '3', mirrorY = mirror[2] == '2' || mirror[2] == '3';
        const double mx = mirrorX ? -1 : 1, my = mirrorY ? -1 : 1;
        const double x0 = 500 * mx, y0 = 400 * my;
        const double corners[4][2] = {{x0, y0}, {x0 + 80 * mx, y0}, {x0 + 80 * mx, y0 - 40 * my}, {x0, y0 - 40 * my}};
        const std::size_t firstOfSide[4] = {0, 17, 26, 43};
        for (int k = 0; k < 4; ++k) {
            EXPECT_NEAR(walk.Hits[firstOfSide[k]].Points.Position.X, corners[k][0], 1e-2) << mirror << k;
            EXPECT_NEAR(walk.Hits[firstOfSide[k]].Points.Position.Y, corners[k][1], 1e-2) << mirror << k;
        }
        EXPECT_NEAR(pass.State.BlendX, x0, 1e-3);
        EXPECT_NEAR(pass.State.BlendY, y0, 1e-3);
    }
}

TEST(ReverseAgreesWithBlend, G66RowAndTheModelAtZero) {
    PassRun run = Reverse("N0001 G90 T1\nN0002 G80 X500 Y400\nN0003 G66 I10 J5 B4\nN0004 G91 G81 X1 Y1\n");
    ASSERT_EQ(run.Hits.size(), 5u);
    for (int k = 0; k < 4; ++k) {
        EXPECT_NEAR(run.Hits[k].Points.Position.X, 510 + 10 * k, Near);
        EXPECT_NEAR(run.Hits[k].Points.Position.Y, 405 + 5 * k, Near);
    }
    EXPECT_NEAR(run.Hits[4].Points.Position.X, 1, Near);
    EXPECT_NEAR(run.Hits[4].Points.Position.Y, 1, Near);
    PassRun at = Reverse("N0001 G90 T1\nN0003 G66 X100 Y100 I10 J0 B4\n");
    ASSERT_EQ(at.Hits.size(), 5u);
    EXPECT_NEAR(at.Hits[0].Points.Position.X, 100, Near);
    EXPECT_NEAR(at.Hits[4].Points.Position.X, 140, Near);
}

TEST(ReversePass, CycleCriticalErrors) {
    PassRun run = Reverse("N0001 G90 T1 G80 X500 Y500\nN0002 G64 J50 B1\nN0003 G26 P1=1 P2=10\nN0004 G28 R20 P1=1\n"
                      "N0005 G28 R20\nN0006 G36 P1=10 P8=20\nN0007 G37 P1=90 P8=2\nN0008 G65 I10 J10\n");
    EXPECT_EQ(run.Result.Result, 7);
    EXPECT_EQ(run.Records.size(), 2u);
    EXPECT_EQ(Count(run.Report, "Invalid number of Hits (P1)\n"), 2);
    EXPECT_EQ(Count(run.Report, "Invalid number of Hits (P1,P3)\n"), 1);
    EXPECT_EQ(Count(run.Report, "No Hits (P1) or Angular Pitch (P2)\n"), 1);
    EXPECT_EQ(Count(run.Report, "Division by Zero\n"), 2);
    EXPECT_EQ(Count(run.Report, "Missing Radius or I/J\n"), 1);
}

}  // namespace
}  // namespace kirvana

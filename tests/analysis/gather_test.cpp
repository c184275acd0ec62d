// The Gather pass: the stop at the target block, the state it leaves, "Gather.txt" and
// "Gather.rep", and its differences from the Reverse pass.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "analysis/gather.h"
#include "tests/analysis/reverse_settings.h"
#include "tests/core/temp_dir.h"

namespace kirvana {
namespace {

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

GatherTarget MainTarget(std::int16_t block, const std::string& text = "") {
    GatherTarget t;
    t.TargetMain = block;
    t.MainBlockText = text;
    return t;
}

GatherTarget SubTarget(std::int16_t main, std::int16_t sub, std::int16_t code, std::int16_t countX,
                       std::int16_t countY) {
    GatherTarget t;
    t.TargetMain = main;
    t.TargetSub = sub;
    t.CallState.CallCode = code;
    t.CallState.CountX = countX;
    t.CallState.CountY = countY;
    return t;
}

GatherResult Gather(const std::string& m1, const std::string& m2, const GatherTarget& target) {
    return GatherTexts(Lines(m1), Lines(m2), target, ReverseTestSettings());
}

TEST(GatherPass, TargetInTheFirstBlockStopsBeforeAnyMotion) {
    GatherResult r = Gather("N0001 G90 T3 G92 X10 Y10 G56 X5 Y5\nN0002 G81 X100 Y100\n", "",
                            MainTarget(1, "N0001 G90 T3 G92 X10 Y10"));
    EXPECT_EQ(r.State.Gathered, -1);
    EXPECT_EQ(r.State.BlockNo, 1);
    EXPECT_EQ(r.State.G92X, 0);
    EXPECT_EQ(r.State.G92Y, 0);
    EXPECT_EQ(r.State.G56X, 0);
    EXPECT_EQ(r.State.G56Y, 0);
    EXPECT_EQ(r.State.Reposition, 0);
    EXPECT_EQ(r.State.Hits, 0);
    EXPECT_EQ(r.State.Station, 0);
    // The load position of the test machine.
    EXPECT_EQ(r.State.X, 0);
    EXPECT_EQ(r.State.Y, 1250);
}

TEST(GatherPass, SecondRepetitionOfAG98StopsOnlyWhenBothCountsMatch) {
    const std::string m1 = "N0001 G90 T1\nN0002 P1=3 P2=100 P3=2 P4=50 P6=0 G98 X10 Y20 S1\n";
    const std::string m2 = "N1000 G81 X0 Y0\nRETURN\n";
    // The first copy: nothing punched yet.
    GatherResult first = Gather(m1, m2, SubTarget(2, 1, 98, 1, 1));
    EXPECT_EQ(first.State.Gathered, -1);
    EXPECT_EQ(first.State.Hits, 0);
    // The second copy along the first row: one hit done, at the first copy's place.
    GatherResult second = Gather(m1, m2, SubTarget(2, 1, 98, 2, 1));
    EXPECT_EQ(second.State.Gathered, -1);
    EXPECT_EQ(second.State.Hits, 1);
    EXPECT_FLOAT_EQ(second.State.X, 10);
    EXPECT_FLOAT_EQ(second.State.Y, 20);
    // CountX 2 of the second row: the row runs back, so it is the fifth copy.
    GatherResult backwards = Gather(m1, m2, SubTarget(2, 1, 98, 2, 2));
    EXPECT_EQ(backwards.State.Hits, 4);
    // CountX alone matching is not enough for a G98.
    GatherResult none = Gather(m1, m2, SubTarget(2, 1, 98, 2, 3));
    EXPECT_EQ(none.State.Gathered, 0);
    EXPECT_EQ(none.State.Hits, 6);
}

TEST(GatherPass, RepeatedCallMatchesCountXAlone) {
    // G68 counts its repetitions in CountX; CountY runs down and is not compared.
    const std::string m1 = "N0001 G90 T1\nN0002 G68 Q3 S1\n";
    const std::string m2 = "N1000 G91 G81 X10\nRETURN\n";
    GatherResult third = Gather(m1, m2, SubTarget(2, 1, 68, 3, 99));
    EXPECT_EQ(third.State.Gathered, -1);
    EXPECT_EQ(third.State.Hits, 2);
    EXPECT_FLOAT_EQ(third.State.X, 20);
    EXPECT_EQ(third.State.Incremental, -1);
}

TEST(GatherPass, TwoRepositionsLeaveTwoLinesAndTheirSum) {
    TempDir dir;
    dir.Write("Slot.M1",
              "N0001 G90 T1\nN0002 G95 I100 J2\nN0003 G81 X10 Y10\nN0004 G95 X10 Y20 I50 J3 K4\nN0005 G81 X20 Y20\n");
    ReverseSettings settings = ReverseTestSettings();
    settings.ServiceDir = dir.Path();
    GatherState state;
    GatherResult r = GatherPass("DIR", "PROG", dir.Path() + "Slot.", MainTarget(5, "N0005 G81 X20 Y20"), state,
                                settings, dir.Path());
    EXPECT_FALSE(r.FileFault);
    EXPECT_EQ(state.Gathered, -1);
    EXPECT_FLOAT_EQ(state.Reposition, 150);
    EXPECT_EQ(state.Hits, 1);
    EXPECT_EQ(ReadFileText(dir.Path() + "Gather.rep"), "G95 X0 Y1250 I100 J2 K0\nG95 X10 Y20 I50 J3 K4\n******\n");
}

TEST(GatherPass, BlockNumberOfASubroutineBlockWhenTheMainBlockHasNone) {
    const std::string m1 = "G90 T1\nG68 Q2 S1\n";
    const std::string m2 = "N1000 G91 G81 X10\nN1005 G81 X5\nRETURN\n";
    GatherTarget t = SubTarget(2, 2, 68, 1, 0);
    t.MainBlockText = "G68 Q2 S1";
    t.SubBlockText = "N1005 G81 X5";
    GatherResult r = Gather(m1, m2, t);
    EXPECT_EQ(r.State.Gathered, -1);
    EXPECT_EQ(r.State.BlockNo, 1005);
    EXPECT_NE(r.Report.find("Block No.    : 1005\n"), std::string::npos);
    // A main block with a number gives that one; a negative number gives 0.
    t.MainBlockText = "N0002 G68 Q2 S1";
    EXPECT_EQ(Gather(m1, m2, t).State.BlockNo, 2);
    t.MainBlockText = "N-4 G68 Q2 S1";
    EXPECT_EQ(Gather(m1, m2, t).State.BlockNo, 0);
}

TEST(GatherPass, ReportAsToldWithItsHeadLines) {
    TempDir dir;
    dir.Write("Slot.M1", "N0001 G90 T2 M12\nN0002 G70 G91\nN0003 G56 X1 Y2\nN0004 G81 X1 Y1\nN0005 G81 X1\n");
    ReverseSettings settings = ReverseTestSettings();
    settings.ServiceDir = dir.Path();
    GatherState state;
    ASSERT_FALSE(
        GatherPass("DIR", "PROG", dir.Path() + "Slot.", MainTarget(5, "N0005 G81 X1"), state, settings, dir.Path())
            .FileFault);
    EXPECT_EQ(ReadFileText(dir.Path() + "Gather.txt"),
              "PROGRAM   :  PROG\n"
              "DIRECTORY :  DIR\n"
              "TIME      :  01/01/26 00:00\n"
              "******\n"
              "\n"
              "Gathered     : True\n"
              "Block No.    : 5\n"
              "Measurement  : Imperial\n"
              "Coordinates  : Incremental\n"
              "G92 Offset X : 0\n"
              "G92 Offset Y : 0\n"
              "G56 Offset X : 25.4\n"
              "G56 Offset Y : -50.8\n"
              "Reposition   : 0\n"
              "Mirror Code  : 2\n"
              "Station No.  : 2\n"
              "Profiler     : Off\n"
              "X Position   : 25.4\n"
              "Y Position   : 1224.6\n"
              "C Position   : 0\n"
              "Hits So Far  : 1\n"
              "\n"
              "******\n");
    EXPECT_EQ(ReadFileText(dir.Path() + "Gather.rep"), "******\n");
}

TEST(GatherPass, TargetNeverReachedIsGatheredFalse) {
    GatherResult r = Gather("N0001 G90 T1\nN0002 G81 X10 Y10\n", "", MainTarget(9, "N0009"));
    EXPECT_EQ(r.State.Gathered, 0);
    EXPECT_EQ(r.State.BlockNo, 0);
    EXPECT_EQ(r.State.Hits, 1);
    EXPECT_NE(r.Report.find("Gathered     : False\n"), std::string::npos);
}

TEST(GatherPass, NoToolCheckAndNoOriginFromG93) {
    // A station beyond the turret neither reports nor stops the walk; G93 has no handler.
    GatherResult r =
        Gather("N0001 G90 T99\nN0002 G93 X100 Y100\nN0003 G81 X10 Y10\nN0004 M55 I1\nN0005 G81\n", "", MainTarget(5));
    EXPECT_EQ(r.State.Gathered, -1);
    EXPECT_EQ(r.State.Station, 99);
    EXPECT_EQ(r.State.Hits, 1);
    EXPECT_FLOAT_EQ(r.State.X, 10);
    EXPECT_FLOAT_EQ(r.State.G92X, 0);
    EXPECT_EQ(r.Report.find("Station Number"), std::string::npos);
    EXPECT_EQ(r.Report.find("Invalid Station"), std::string::npos);
}

TEST(GatherPass, LimitsAndBadGridAreReported) {
    GatherResult r =
        Gather("N0001 G90 T1\nN0002 G81 X5000 Y10\nN0003 G26 P1=1 P2=10 P3=3 P4=10\nN0004 G81\n", "", MainTarget(4));
    EXPECT_NE(r.Report.find("****** WARNING ERROR ******\nOut of limits in X\nN0002 G81 X5000 Y10\n"),
              std::string::npos);
    EXPECT_NE(r.Report.find("Invalid number of Hits (P1,P3)\nN0003"), std::string::npos);
}

TEST(GatherPass, ExcessiveRepositionDistancesInItsOwnWords) {
    GatherResult r = Gather("N0001 G90 T1\nN0002 G95 I10 J6 K7\nN0003 G81\n", "", MainTarget(3));
    EXPECT_NE(r.Report.find("G95 with Excessive Backoff distance (J)\n"), std::string::npos);
    EXPECT_NE(r.Report.find("G95 with Excessive Return distance (K)\n"), std::string::npos);
}

TEST(GatherPass, MissingProgramIsAFileFault) {
    TempDir dir;
    ReverseSettings settings = ReverseTestSettings();
    settings.ServiceDir = dir.Path();
    GatherState state;
    state.Gathered = -1;
    GatherResult r = GatherPass("DIR", "PROG", dir.Path() + "None.", MainTarget(1), state, settings, dir.Path());
    EXPECT_TRUE(r.FileFault);
    EXPECT_EQ(state.Gathered, 0);
}

}  // namespace
}  // namespace kirvana

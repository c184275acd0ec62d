#include "controller/download.h"

#include <gtest/gtest.h>

#include "core/paths.h"
#include "tests/core/temp_dir.h"
#include "tests/support/fake_card.h"

using namespace kirvana;

namespace {
struct DownloadTest : ::testing::Test {
    TempDir dir;
    FakeCardLink link;
    CardState state;
    Conversation talk{&link, state, dir.Path()};
    DownloadTest() { state.CardInUse = true; }

    std::vector<std::string> Filtered(const std::string& motion, bool isM1, int program = 1) {
        dir.Write("motion", motion);
        EXPECT_TRUE(WriteDownloadFile(dir.Path() + "motion", program, isM1, dir.Path() + "DownPrg.tmp"));
        return ReadLines(dir.Path() + "DownPrg.tmp").value_or(std::vector<std::string>{});
    }
};
}  // namespace

TEST_F(DownloadTest, OnlyCommentsGiveFourLines) {
    EXPECT_EQ(Filtered("; header\n  ;another\n\n", true),
              (std::vector<std::string>{"CLOSE", "OPEN PROG 1", "CLEAR", "CLOSE"}));
}

TEST_F(DownloadTest, M50LosesItsY) {
    EXPECT_EQ(Filtered("M50Y10\nN20 M60 Y-5.5 X3\n", false)[3], "M50");
    EXPECT_EQ(Filtered("N20 M60 Y-5.5 X3\n", false)[3], "N20M60X3");
}

TEST_F(DownloadTest, G92WithValuesStaysWithoutBecomesG53) {
    EXPECT_EQ(Filtered("G92X10Y20\n", true)[3], "G92X10Y20");
    EXPECT_EQ(Filtered("N5 G92\n", true)[3], "N5G53");
    EXPECT_EQ(Filtered("G92C90\n", true)[3], "G92C90");
    EXPECT_EQ(Filtered("G92X10Y20 T3\nG92 XY20\nG92X5Y5\n", true),
              (std::vector<std::string>{"CLOSE", "OPEN PROG 1", "CLEAR", "G92X10Y20T3", "G53", "G53", "CLOSE"}));
}

TEST_F(DownloadTest, RewriteG92DropsTheCoordinates) {
    EXPECT_EQ(RewriteG92("N5G92X10.5Y20T3"), "N5G53T3");
    EXPECT_EQ(RewriteG92("G92"), "G53");
    EXPECT_EQ(RewriteG92("X1"), "X1");
}

TEST_F(DownloadTest, BlockNumberAloneIsDroppedInM1AndKeptInM2) {
    EXPECT_EQ(Filtered("N100\nN110 X5 ; move\n", true),
              (std::vector<std::string>{"CLOSE", "OPEN PROG 1", "CLEAR", "N110X5", "CLOSE"}));
    EXPECT_EQ(Filtered("N100\n", false, 3),
              (std::vector<std::string>{"CLOSE", "OPEN PROG 3", "CLEAR", "N100", "CLOSE"}));
}

TEST_F(DownloadTest, ProgramThreeLoadsSlotOneBothPrograms) {
    dir.Write("Actvprg1.M1", "N1 X1\n");
    dir.Write("Actvprg1.M2", "N2 Y2\n");
    state.PollLogOn = true;
    DownProgram(talk, dir.Path(), dir.Path(), 3);
    ASSERT_EQ(link.Sent.size(), 2u);
    EXPECT_EQ(link.Sent[0], "FILE " + dir.Path() + "DownPrg.tmp");
    // The work file holds the last program sent: PROG 3 from the M2 file.
    EXPECT_EQ(ReadLines(dir.Path() + "DownPrg.tmp")->at(1), "OPEN PROG 3");
    EXPECT_EQ(ReadLines(dir.Path() + "Polling.txt")->front(), "*** DownProgram ***");
    link.Sent.clear();
    DownProgram(talk, dir.Path(), dir.Path(), 1);
    EXPECT_EQ(link.Sent.size(), 2u);
}

TEST_F(DownloadTest, SlotTwoAndOtherNumbers) {
    dir.Write("Actvprg2.M1", "N1 X1\n");
    dir.Write("Actvprg2.M2", "N2 Y2\n");
    DownProgram(talk, dir.Path(), dir.Path(), 4);
    EXPECT_EQ(ReadLines(dir.Path() + "DownPrg.tmp")->at(1), "OPEN PROG 4");
    link.Sent.clear();
    DownProgram(talk, dir.Path(), dir.Path(), 5);
    EXPECT_TRUE(link.Sent.empty());
    state.CardInUse = false;
    DownProgram(talk, dir.Path(), dir.Path(), 2);
    EXPECT_TRUE(link.Sent.empty());
}

TEST_F(DownloadTest, StationBlockInOrder) {
    StationBlock block;
    block.ToolNumber = -12;
    block.Offsets = {1.5f, -2.25f, 0};
    block.Words = {80, 100};
    block.Singles = {0.1f, 0.2f, 1, 2.5f};
    SendStationBlock(talk, block, true);
    EXPECT_EQ(link.Sent, (std::vector<std::string>{"Q49=12", "M844=1.5", "M845=-2.25", "M846=0", "Q19=80", "Q18=100",
                                                   "Q20=0.1", "Q21=0.2", "Q22=1", "Q23=2", "%80"}));
    link.Sent.clear();
    SendStationBlock(talk, block, false);
    EXPECT_EQ(link.Sent.size(), 10u);
}

TEST_F(DownloadTest, BatchProfilerAndPlasmaBlocks) {
    SendBatchBlock(talk, {4, 100, 25, 3});
    EXPECT_EQ(link.Sent, (std::vector<std::string>{"M863=4", "M864=100", "M865=25", "M866=3"}));
    link.Sent.clear();
    PlasmaBlock plasma;
    plasma.P101To104 = {1, 2, 3, 4};
    plasma.P105 = 1.5f;
    plasma.P106 = 2500;
    plasma.P107 = 7;
    plasma.P108 = 3.5f;
    plasma.P109 = 0.4f;
    plasma.P110 = 2;
    SendProfilerBlock(talk, {10, -20.5f, 0}, 1, plasma);
    EXPECT_EQ(link.Sent, (std::vector<std::string>{"M848=10", "M849=-20.5", "M850=0"}));
    link.Sent.clear();
    SendProfilerBlock(talk, {10, -20.5f, 0}, 2, plasma);
    EXPECT_EQ(link.Sent,
              (std::vector<std::string>{"M848=10", "M849=-20.5", "M850=0", "P101=1", "P102=2", "P103=3", "P104=4",
                                        "P105=1.5", "P106=2500", "P107=7", "P108=4", "P109=0", "P110=2"}));
}

TEST_F(DownloadTest, BlocksDoNothingWithoutTheCard) {
    state.CardInUse = false;
    SendStationBlock(talk, StationBlock{}, true);
    SendBatchBlock(talk, {1, 2, 3, 4});
    SendPlasmaBlock(talk, PlasmaBlock{});
    EXPECT_TRUE(link.Sent.empty());
}

#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "core/paths.h"
#include "system/startup.h"
#include "tests/core/temp_dir.h"

using namespace kirvana;

namespace {

struct SlotFilesTest : ::testing::Test {
    TempDir dir;
    Process process;
    SlotFilesTest() {
        process.Config.Dirs.RootDir = dir.Path();
        process.Config.Dirs.ServiceDir = dir.Path();
    }
    std::optional<SlotCounts> TryMap(const std::string& a, const std::string& m) {
        dir.Write("x.A", a);
        dir.Write("x.M", m);
        std::string stem = SlotStem(process.Config.Dirs, 1);
        return BuildBlockMap(dir.Path() + "x.A", dir.Path() + "x.M", stem + "W1", stem + "RA1", stem + "RM1");
    }
    SlotCounts Map(const std::string& a, const std::string& m) { return TryMap(a, m).value_or(SlotCounts{-1, -1, -1}); }
};

}  // namespace

TEST_F(SlotFilesTest, BlockNumberAloneHasARecordButNoWord) {
    SlotCounts c = Map("N10\n", "N10\n");
    EXPECT_EQ(c.SourceRecordCount, 1);
    EXPECT_EQ(c.MotionBlockCount, 0);
    EXPECT_EQ(c.MapWordCount, 0);
    EXPECT_EQ(ReadFileText(dir.Path() + "Actvprg1.RA1"), "N10" + std::string(77, ' '));
    EXPECT_EQ(ReadFileText(dir.Path() + "Actvprg1.RM1").size(), 240u);
    EXPECT_EQ(ReadFileText(dir.Path() + "Actvprg1.W1"), "");
}

TEST_F(SlotFilesTest, EveryLetterIsAWordOfTheSameBlock) {
    SlotCounts c = Map("N10 G01 X5\n", "N0010 G01 X5\n");
    EXPECT_EQ(c.MapWordCount, 3);
    EXPECT_EQ(c.MotionBlockCount, 1);
    EXPECT_EQ(ReadFileText(dir.Path() + "Actvprg1.W1"), std::string("\0\0\0\0\1\0\1\0\0\0\1\0\2\0\0\0\1\0", 18));
}

TEST_F(SlotFilesTest, EmptyALinesAreSkippedAndAGoverns) {
    SlotCounts c = Map("N1 X1\n\n  \nN3 Y2 ;c\nN4\n", "N0001 X1\nN0002\nN0003\nN0003 Y2 ;c\n");
    // Records: N1, N3, N4 (its M line is missing and reads empty).
    EXPECT_EQ(c.SourceRecordCount, 3);
    EXPECT_EQ(c.MotionBlockCount, 2);
    EXPECT_EQ(c.MapWordCount, 4);
    std::string rm = ReadFileText(dir.Path() + "Actvprg1.RM1");
    ASSERT_EQ(rm.size(), 720u);
    EXPECT_EQ(rm.substr(240, 11), "N0003 Y2 ;c");
    EXPECT_EQ(rm.substr(480), std::string(240, ' '));
}

TEST_F(SlotFilesTest, MoreWordsThanSixteenBitsCanNumberIsRefused) {
    auto blocks = [](int n) {
        std::string text;
        for (int k = 0; k < n; ++k) text += "X1 Y1 T1\n";  // three words a block
        return text;
    };
    auto counts = TryMap(blocks(10922), blocks(10922));  // 32766 words
    ASSERT_TRUE(counts);
    EXPECT_EQ(counts->MapWordCount, 32766);
    EXPECT_FALSE(TryMap(blocks(10923), blocks(10923)));  // 32769 words
}

TEST_F(SlotFilesTest, SlotBlockAtLeadsFromTheCounterToTheBlock) {
    process.Slots[0].Counts[0] = Map("N1 X1\nN2\nN3 G81 X2 Y3\n", "N0001 X1\nN0002\nN0003 G81 X2 Y3\n");
    // Words: N1 X1 (block 0, record 1) then N3 G81 X2 Y3 (block 1, record 3).
    SlotBlock b = SlotBlockAt(process, 1, 2);
    EXPECT_EQ(b.MotionBlockIndex, 1);
    EXPECT_EQ(b.SourceRecord, 3);
    b = SlotBlockAt(process, 1, 0);
    EXPECT_EQ(b.MotionBlockIndex, 0);
    EXPECT_EQ(b.SourceRecord, 1);
    // A counter beyond the map reads the first word.
    b = SlotBlockAt(process, 1, 99);
    EXPECT_EQ(b.SourceRecord, 1);
    b = SlotBlockAt(process, 1, -5);
    EXPECT_EQ(b.SourceRecord, 1);
    // Program 3 is slot 1's M2 map, which doesn't exist; 5 is no program.
    b = SlotBlockAt(process, 3, 0);
    EXPECT_EQ(b.SourceRecord, 0);
    b = SlotBlockAt(process, 5, 0);
    EXPECT_EQ(b.MotionBlockIndex, 0);
}

TEST_F(SlotFilesTest, ShortMapFileReadsZero) {
    process.Slots[1].Counts[1].MapWordCount = 10;
    dir.Write("Actvprg2.W2", std::string("\0\0\0\0\1\0", 6));
    EXPECT_EQ(SlotBlockAt(process, 4, 0).SourceRecord, 1);
    EXPECT_EQ(SlotBlockAt(process, 4, 5).SourceRecord, 0);
}

TEST_F(SlotFilesTest, StatsAndBatchRoundTripAndMissingReadZero) {
    const Directories& d = process.Config.Dirs;
    EXPECT_EQ(ReadSlotStats(d, 1).Hits, 0);
    EXPECT_EQ(ReadSlotBatch(d, 2)[4], 0);
    ASSERT_TRUE(WriteSlotStats(d, 1, SlotStats{1234, 5678.5f, 12.25f}));
    EXPECT_EQ(ReadFileText(dir.Path() + "Actvprg1.sts"), "1234\n5678.5\n12.25\n******\n");
    SlotStats s = ReadSlotStats(d, 1);
    EXPECT_EQ(s.Hits, 1234);
    EXPECT_FLOAT_EQ(s.Travel, 5678.5f);
    ASSERT_TRUE(WriteSlotBatch(d, 2, SlotBatch{4, 100, 25, 3, 0}));
    EXPECT_EQ(ReadFileText(dir.Path() + "Actvprg2.btc"), "4\n100\n25\n3\n0\n******\n");
    EXPECT_EQ(ReadSlotBatch(d, 2)[2], 25);
}

TEST_F(SlotFilesTest, SlotConfigRoundTrip) {
    SlotRecord r;
    r.ProgramName = "PLATE01";
    r.ProgramDirName = "Dorvenis";
    r.ProgramDirPath = "./Programs/Dorvenis/";
    r.Counts[0] = SlotCounts{30, 10, 12};
    r.Counts[1] = SlotCounts{4, 2, 3};
    r.SourceDialect = 2;
    r.SlotLoadY = 1250.5f;
    ASSERT_TRUE(WriteSlotConfig(process.Config.Dirs, 1, r));
    EXPECT_EQ(ReadFileText(dir.Path() + "Actvprg1.cfg"),
              "PLATE01\nDorvenis\n./Programs/Dorvenis/\n30,10,12\n4,2,3\n2\n1250.5\n******\n");
    SlotRecord back;
    ASSERT_TRUE(ReadSlotConfig(process.Config.Dirs, 1, back));
    EXPECT_EQ(back.ProgramDirPath, r.ProgramDirPath);
    EXPECT_EQ(back.Counts[0].SourceRecordCount, 12);
    EXPECT_EQ(back.Counts[1].MapWordCount, 4);
    EXPECT_EQ(back.SourceDialect, 2);
    EXPECT_FLOAT_EQ(back.SlotLoadY, 1250.5f);
    dir.Write("Actvprg2.cfg", "A\nB\n");
    EXPECT_FALSE(ReadSlotConfig(process.Config.Dirs, 2, back));
}

TEST(SlotMarks, DialectFiveDiffersAtStart) {
    SlotRecord r;
    r.SourceDialect = 5;
    SetCommentMarks(r, false);
    EXPECT_EQ(r.CommentOpen, "(");
    EXPECT_EQ(r.CommentClose, ")");
    SetCommentMarks(r, true);
    EXPECT_EQ(r.CommentOpen, "!");
    EXPECT_EQ(r.CommentClose, "");
    r.SourceDialect = 2;
    SetCommentMarks(r, true);
    EXPECT_EQ(r.CommentOpen, "(");
    r.SourceDialect = 0;
    SetCommentMarks(r, false);
    EXPECT_EQ(r.CommentOpen, "!");
}

TEST(SlotCaption, NamesTheKey) {
    SlotRecord r;
    EXPECT_EQ(ProgramButtonCaption(1, r), "PROGRAM 1   F10");
    r.Present = true;
    r.ProgramName = "PLATE01";
    EXPECT_EQ(ProgramButtonCaption(2, r), "PLATE01   F11");
}

// The readable listing of drawing records.
#include <gtest/gtest.h>

#include "analysis/drawing_listing.h"
#include "analysis/tool_outline.h"

namespace kirvana {
namespace {

EntityRec Punch() {
    EntityRec rec;
    rec.Kind = EntityKind::Punch;
    rec.KindName = FixedText("Punch", KindNameWidth);
    rec.BlockText = FixedText("G81 X10 Y20", BlockTextWidth);
    rec.MainBlock = 3;
    rec.StationNo = 5;
    rec.Points.Position = {10, 20};
    rec.Tool.Valid = TrueWord;
    rec.Tool.Shape = 'A';
    rec.Tool.Name = ToolName("Diameter");
    rec.Tool.D1 = rec.Tool.D2 = 10;
    rec.Tool.Station = 10;
    rec.Settings[2] = 0.5f;
    ToolOutline(rec);
    return rec;
}

TEST(DescribeEntity, PunchLines) {
    EntityRec rec = Punch();
    rec.RecordNo = 2;
    std::vector<std::string> expected = {
        "  kind 210 \"Punch\", record no 2",
        "  block: \"G81 X10 Y20\"",
        "  main block 3, sub block 0, station no 5",
        "  start (10, 20), middle (10, 20), end (10, 20)",
        "  position (10, 20), entry (10, 20), exit (10, 20)",
        "  values: none",
        "  counts: none",
        "  compensation 0, cycle rotate 0, path mode 0, feed 0",
        "  extent (10, 20) to (10, 20), clear box (5, 15) to (15, 25)",
        "  tool: \"Diameter 10\", shape A, station type 10, setting 0, c 0",
        "  settings: 3=0.5",
    };
    EXPECT_EQ(DescribeEntity(rec), expected);
}

TEST(DescribeEntity, CallsValuesCountsAndOddBytes) {
    EntityRec rec;
    rec.Kind = EntityKind::ArcPattern;
    rec.KindName = FixedText("Arc\x01", KindNameWidth);
    rec.Remark = FixedText("a\\b", RemarkWidth);
    rec.CallSpec.CallCode = 68;
    rec.CallSpec.Label = 5;
    rec.CallSpec.CountY = 3;
    rec.CallSpec.Block = FixedText("G68 S5 Q3", CallBlockWidth);
    rec.Values[1] = 50;
    rec.Values[12] = -22.5f;
    rec.Counts[1] = 4;
    rec.Counts[6] = 2;
    std::vector<std::string> lines = DescribeEntity(rec);
    ASSERT_GE(lines.size(), 8u);
    EXPECT_EQ(lines[0], "  kind 230 \"Arc\\x01\", record no 0");
    EXPECT_EQ(lines[1], "  remark: \"a\\x5Cb\"");
    EXPECT_EQ(lines[3], "  call asked: G68 S5 at (0, 0) pitch (0, 0) counts (0, 3) order 0 \"G68 S5 Q3\"");
    EXPECT_EQ(lines[6], "  values: 1=50 12=-22.5");
    EXPECT_EQ(lines[7], "  counts: 1=4 6=2");
    EXPECT_EQ(lines.back(), "  settings: none");
    EXPECT_EQ(lines[lines.size() - 2], "  tool: none");
}

TEST(ListDrawing, WalksRecord1ThenToTheCount) {
    DrawingFile file = DrawingFile::InMemory();
    EntityRec sheet;
    sheet.Kind = EntityKind::Sheet;
    sheet.RecordNo = 2;
    file.Put(1, sheet);
    file.Put(2, Punch());
    file.Put(3, Punch());  // beyond the count: not listed
    std::vector<std::string> lines = ListDrawing(file);
    EXPECT_EQ(lines[0], "count 2, 3 records in the file");
    EXPECT_EQ(lines[1], "record 1");
    EXPECT_EQ(lines[2], "  kind 100 \"\", record no 2");
    int records = 0;
    for (const auto& line : lines) records += line.starts_with("record ");
    EXPECT_EQ(records, 2);
}

TEST(ListDrawing, EmptyAndShortFiles) {
    DrawingFile empty = DrawingFile::InMemory();
    EXPECT_EQ(ListDrawing(empty), std::vector<std::string>{"count 0, 0 records in the file"});
    DrawingFile shortFile = DrawingFile::InMemory(std::string(100, 'x'));
    EXPECT_EQ(ListDrawing(shortFile), std::vector<std::string>{"count 0, 0 records in the file"});
    // A Sheet whose count is 0 is still shown.
    DrawingFile zero = DrawingFile::InMemory();
    zero.Put(1, EntityRec());
    std::vector<std::string> lines = ListDrawing(zero);
    EXPECT_EQ(lines[0], "count 0, 1 records in the file");
    EXPECT_EQ(lines[1], "record 1");
}

}  // namespace
}  // namespace kirvana

// Clearing and copying records, appending, and random access to drawing files, including
// files cut short and counts larger than the file.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "analysis/drawing_file.h"
#include "analysis/entity.h"
#include "tests/core/temp_dir.h"

namespace kirvana {
namespace {

EntityRec Sheet(std::int32_t count) {
    EntityRec rec;
    ClearEntity(rec);
    rec.Kind = EntityKind::Sheet;
    rec.KindName = FixedText("Sheet", KindNameWidth);
    rec.RecordNo = count;
    rec.Counts[1] = static_cast<std::int16_t>(count);
    return rec;
}

EntityRec PunchAt(float x, float y) {
    EntityRec rec;
    rec.Kind = EntityKind::Punch;
    rec.KindName = FixedText("Punch", KindNameWidth);
    rec.Points.Position = {x, y};
    return rec;
}

std::string FileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TEST(ClearEntity, NumbersZeroTextsBlankToolEmptySettingsUnset) {
    EntityRec rec;
    rec.Kind = 210;
    rec.KindName = "Punch";
    rec.Remark = "x";
    rec.BlockText = "G81 X10";
    rec.MainBlock = 4;
    rec.CallSpec.CallCode = 68;
    rec.CallState.Block = "G68 S1";
    rec.Points.Exit = {1, 2};
    rec.Values[24] = 3;
    rec.Counts[12] = 4;
    rec.Extent.High = {5, 6};
    rec.Tool.Valid = TrueWord;
    rec.Tool.Shape = 'A';
    rec.Tool.D1 = 10;
    rec.RecordNo = 9;
    rec.Settings[5] = 1;
    rec.Feed = 100;
    rec.PathMode = 2;
    ClearEntity(rec);
    EXPECT_EQ(rec.Kind, 0);
    EXPECT_EQ(rec.KindName, std::string(18, ' '));
    EXPECT_EQ(rec.Remark, std::string(72, ' '));
    EXPECT_EQ(rec.BlockText, std::string(255, ' '));
    EXPECT_EQ(rec.MainBlock, 0);
    EXPECT_EQ(rec.CallSpec.CallCode, 0);
    EXPECT_EQ(rec.CallState.Block, std::string(250, ' '));
    EXPECT_EQ(rec.Points.Exit.X, 0);
    EXPECT_EQ(rec.Values[24], 0);
    EXPECT_EQ(rec.Counts[12], 0);
    EXPECT_EQ(rec.Extent.High.Y, 0);
    EXPECT_FALSE(rec.Tool.IsValid());
    EXPECT_EQ(rec.Tool.Shape, ' ');
    EXPECT_EQ(rec.Tool.D1, 0);
    EXPECT_EQ(rec.RecordNo, 0);
    for (float s : rec.Settings) EXPECT_EQ(s, NoValue);
    EXPECT_EQ(rec.Feed, 0);
    EXPECT_EQ(rec.PathMode, 0);
}

TEST(CopyEntity, CopiesEveryFieldAndSharesNothing) {
    EntityRec source;
    source.Kind = 230;
    source.BlockText = FixedText("G28 I50 J0 K8 P5", BlockTextWidth);
    source.CallSpec.Label = 7;
    source.Values[12] = 45;
    source.Tool.Name = FixedText("Square", ToolNameWidth);
    source.Settings[23] = 2.5f;
    EntityRec target;
    CopyEntity(source, target);
    RecordBytes a, b;
    EncodeEntity(source, a);
    EncodeEntity(target, b);
    EXPECT_EQ(a, b);
    // Changing the copy leaves the source alone.
    target.BlockText[0] = 'Z';
    target.Values[12] = 1;
    target.Tool.Name[0] = 'Z';
    EXPECT_EQ(source.BlockText[0], 'G');
    EXPECT_EQ(source.Values[12], 45);
    EXPECT_EQ(source.Tool.Name[0], 'S');
}

TEST(SubCall, ClearBlanksTheBlockAndZeroesTheNumbers) {
    SubCall call;
    call.Block = "G98 S3 P1=2";
    call.CallCode = 98;
    call.Label = 3;
    call.X = 1;
    call.Y = 2;
    call.PitchX = 3;
    call.PitchY = 4;
    call.CountX = 2;
    call.CountY = 5;
    call.Order = 1;
    SubCall copy;
    CopySubCall(call, copy);
    EXPECT_EQ(copy.Block, "G98 S3 P1=2");
    EXPECT_EQ(copy.CallCode, 98);
    EXPECT_EQ(copy.PitchY, 4);
    EXPECT_EQ(copy.Order, 1);
    ClearSubCall(call);
    EXPECT_EQ(call.Block, std::string(250, ' '));
    EXPECT_EQ(call.CallCode, 0);
    EXPECT_EQ(call.Label, 0);
    EXPECT_EQ(call.X, 0);
    EXPECT_EQ(call.Y, 0);
    EXPECT_EQ(call.PitchX, 0);
    EXPECT_EQ(call.PitchY, 0);
    EXPECT_EQ(call.CountX, 0);
    EXPECT_EQ(call.CountY, 0);
    EXPECT_EQ(call.Order, 0);
    EXPECT_EQ(copy.Label, 3);  // the copy keeps its own
}

TEST(AppendEntity, CountsStoresTheNumberAndWritesThere) {
    DrawingFile file = DrawingFile::InMemory();
    std::int16_t counter = 0;
    EntityRec sheet = Sheet(0);
    ASSERT_TRUE(AppendEntity(file, counter, sheet));
    EntityRec punch = PunchAt(10, 20);
    ASSERT_TRUE(AppendEntity(file, counter, punch));
    EXPECT_EQ(counter, 2);
    EXPECT_EQ(punch.RecordNo, 2);
    EXPECT_EQ(file.RecordsInFile(), 2);
    EntityRec back;
    ASSERT_TRUE(file.Get(2, back));
    EXPECT_EQ(back.Kind, EntityKind::Punch);
    EXPECT_EQ(back.RecordNo, 2);
    EXPECT_EQ(back.Points.Position.Y, 20);
}

TEST(AppendEntity, RefusesToPassTheLargest16BitCount) {
    DrawingFile file = DrawingFile::InMemory();
    std::int16_t counter = 32767;
    EntityRec punch = PunchAt(1, 1);
    EXPECT_FALSE(AppendEntity(file, counter, punch));
    EXPECT_EQ(counter, 32767);
    EXPECT_EQ(file.RecordsInFile(), 0);
}

TEST(DrawingFile, SheetOnlyFileHasOneRecordAndAReaderWalksNothingElse) {
    // A drawing with no motion: the Sheet alone, its count 1 in RecordNo and Counts[1].
    TempDir dir;
    const std::string path = dir.Path() + "Actvprg1.drw";
    {
        DrawingFile file;
        ASSERT_TRUE(file.Create(path));
        std::int16_t counter = 0;
        EntityRec sheet = Sheet(1);
        ASSERT_TRUE(AppendEntity(file, counter, sheet));
        ASSERT_TRUE(file.Close());
    }
    EXPECT_EQ(std::filesystem::file_size(path), 1268u);
    DrawingFile file;
    ASSERT_TRUE(file.Open(path, true));
    EXPECT_EQ(file.Count(), 1);
    EXPECT_EQ(file.LastReadable(), 1);
    EntityRec rec;
    ASSERT_TRUE(file.Get(1, rec));
    EXPECT_EQ(rec.Kind, EntityKind::Sheet);
    EXPECT_EQ(rec.Counts[1], 1);
    EXPECT_EQ(rec.RecordNo, 1);
}

TEST(DrawingFile, NeverWrittenFileHasCountZero) {
    TempDir dir;
    DrawingFile file;
    ASSERT_TRUE(file.Create(dir.Path() + "empty.drw"));
    EXPECT_EQ(file.Count(), 0);
    EXPECT_EQ(file.LastReadable(), 0);
    EntityRec rec;
    rec.Kind = 7;
    EXPECT_FALSE(file.Get(1, rec));
    EXPECT_EQ(rec.Kind, 0);  // read as zero bytes
}

TEST(DrawingFile, CountLargerThanTheFileStopsAtTheLastWholeRecord) {
    DrawingFile file = DrawingFile::InMemory();
    ASSERT_TRUE(file.Put(1, Sheet(30000)));
    ASSERT_TRUE(file.Put(2, PunchAt(1, 2)));
    ASSERT_TRUE(file.Put(3, PunchAt(3, 4)));
    EXPECT_EQ(file.Count(), 30000);
    EXPECT_EQ(file.RecordsInFile(), 3);
    EXPECT_EQ(file.LastReadable(), 3);
    EntityRec rec;
    EXPECT_FALSE(file.Get(4, rec));
    EXPECT_FALSE(file.Get(30000, rec));
    EXPECT_FALSE(file.Get(0, rec));
    EXPECT_FALSE(file.Get(-5, rec));
}

TEST(DrawingFile, TruncatedFileReadsOnlyWholeRecords) {
    DrawingFile whole = DrawingFile::InMemory();
    ASSERT_TRUE(whole.Put(1, Sheet(3)));
    ASSERT_TRUE(whole.Put(2, PunchAt(1, 2)));
    ASSERT_TRUE(whole.Put(3, PunchAt(3, 4)));
    std::string bytes = whole.MemoryBytes();
    bytes.resize(2 * RecordLength + 100);  // the third record cut short
    DrawingFile cut = DrawingFile::InMemory(bytes);
    EXPECT_EQ(cut.RecordsInFile(), 2);
    EXPECT_EQ(cut.LastReadable(), 2);
    EntityRec rec;
    EXPECT_TRUE(cut.Get(2, rec));
    EXPECT_FALSE(cut.Get(3, rec));
    // A file shorter than one record has no record 1.
    DrawingFile tiny = DrawingFile::InMemory(bytes.substr(0, 1200));
    EXPECT_EQ(tiny.Count(), 0);
    EXPECT_EQ(tiny.LastReadable(), 0);
}

TEST(DrawingFile, NegativeCountWalksNothing) {
    DrawingFile file = DrawingFile::InMemory();
    ASSERT_TRUE(file.Put(1, Sheet(-4)));
    EXPECT_EQ(file.Count(), -4);
    EXPECT_EQ(file.LastReadable(), 0);
}

TEST(DrawingFile, WritingBeyondTheEndFillsTheGapWithZeros) {
    TempDir dir;
    const std::string path = dir.Path() + "gap.drw";
    DrawingFile file;
    ASSERT_TRUE(file.Create(path));
    ASSERT_TRUE(file.Put(3, PunchAt(5, 6)));
    EXPECT_EQ(file.RecordsInFile(), 3);
    EntityRec rec;
    ASSERT_TRUE(file.Get(2, rec));
    EXPECT_EQ(rec.Kind, 0);
    EXPECT_EQ(rec.KindName, std::string(18, '\0'));
    ASSERT_TRUE(file.Get(3, rec));
    EXPECT_EQ(rec.Points.Position.X, 5);
    ASSERT_TRUE(file.Close());
    std::string bytes = FileBytes(path);
    ASSERT_EQ(bytes.size(), 3 * RecordLength);
    EXPECT_EQ(bytes.substr(0, 2 * RecordLength), std::string(2 * RecordLength, '\0'));
}

TEST(DrawingFile, ReadsAndWritesMixInOneOpenFile) {
    TempDir dir;
    const std::string path = dir.Path() + "mix.drw";
    DrawingFile file;
    ASSERT_TRUE(file.Create(path));
    for (int i = 1; i <= 5; ++i) ASSERT_TRUE(file.Put(i, PunchAt(static_cast<float>(i), 0)));
    EntityRec rec;
    ASSERT_TRUE(file.Get(2, rec));
    EXPECT_EQ(rec.Points.Position.X, 2);
    ASSERT_TRUE(file.Put(2, PunchAt(20, 0)));  // a write right after a read
    ASSERT_TRUE(file.Get(3, rec));             // and a read right after a write
    EXPECT_EQ(rec.Points.Position.X, 3);
    ASSERT_TRUE(file.Get(2, rec));
    EXPECT_EQ(rec.Points.Position.X, 20);
    ASSERT_TRUE(file.Close());
    DrawingFile again;
    ASSERT_TRUE(again.Open(path));
    ASSERT_TRUE(again.Get(2, rec));
    EXPECT_EQ(rec.Points.Position.X, 20);
    EXPECT_EQ(again.RecordsInFile(), 5);
}

TEST(DrawingFile, MissingFileOrDirectoryDoesNotOpen) {
    TempDir dir;
    DrawingFile file;
    EXPECT_FALSE(file.Open(dir.Path() + "none.drw"));
    EXPECT_FALSE(file.Open(dir.Path()));
    EXPECT_FALSE(file.IsOpen());
    EntityRec rec;
    EXPECT_FALSE(file.Get(1, rec));
    EXPECT_FALSE(file.Put(1, rec));
    EXPECT_EQ(file.Count(), 0);
}

TEST(DrawingFile, ReadOnlyFileRefusesWrites) {
    TempDir dir;
    dir.Write("ro.drw", std::string(RecordLength, '\0'));
    DrawingFile file;
    ASSERT_TRUE(file.Open(dir.Path() + "ro.drw", true));
    EXPECT_EQ(file.RecordsInFile(), 1);
    EXPECT_FALSE(file.Put(1, PunchAt(1, 1)));
}

}  // namespace
}  // namespace kirvana

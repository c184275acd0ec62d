// The writer of files the system rewrites: the old file stays whole until the new one is.
#include "core/file_writer.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "core/paths.h"
#include "tests/core/temp_dir.h"

using namespace kirvana;

TEST(FileWriter, ReplacesTheOldFileAndLeavesNoTemporary) {
    TempDir dir;
    dir.Write("Control.cfg", "old\n");
    FileWriter out(dir.Path() + "Control.cfg");
    ASSERT_TRUE(out.IsOpen());
    out.Write("new");
    out.WriteBytes("bytes");
    // Until the close the old file is there as it was.
    EXPECT_EQ(ReadFileText(dir.Path() + "Control.cfg"), "old\n");
    ASSERT_TRUE(out.Close());
    EXPECT_EQ(ReadFileText(dir.Path() + "Control.cfg"), "new\nbytes");
    EXPECT_EQ(ListDirectory(dir.Path(), false), std::vector<std::string>{"Control.cfg"});
}

TEST(FileWriter, AWriterNeverClosedLeavesTheOldFile) {
    TempDir dir;
    dir.Write("A.txt", "old\n");
    {
        FileWriter out(dir.Path() + "A.txt");
        out.Write("half");
    }
    EXPECT_EQ(ReadFileText(dir.Path() + "A.txt"), "old\n");
    EXPECT_EQ(ListDirectory(dir.Path(), false), std::vector<std::string>{"A.txt"});
}

TEST(FileWriter, AFileThatCannotTakeItsPlaceFailsAndLeavesNoTemporary) {
    TempDir dir;
    // A directory with something in it stands where the file should go.
    dir.Write("A.txt/inside", "x");
    FileWriter out(dir.Path() + "A.txt");
    out.Write("text");
    EXPECT_FALSE(out.Close());
    EXPECT_FALSE(FileExists(dir.Path() + "A.txt.tmp"));
    EXPECT_TRUE(IsDirectory(dir.Path() + "A.txt"));
    EXPECT_FALSE(WriteLines(dir.Path() + "A.txt", {"line"}));
}

TEST(FileWriter, ATemporaryThatCannotBeCreatedFails) {
    TempDir dir;
    dir.Write("A.txt", "old\n");
    dir.Write("A.txt.tmp/inside", "x");
    FileWriter out(dir.Path() + "A.txt");
    EXPECT_FALSE(out.IsOpen());
    out.Write("text");
    EXPECT_FALSE(out.Close());
    EXPECT_EQ(ReadFileText(dir.Path() + "A.txt"), "old\n");
}

TEST(FileWriter, AFullDiskKeepsTheOldFileWhole) {
    TempDir dir;
    const std::string old(4000, 'o');
    dir.Write("A.txt", old);
    const std::string path = dir.Path() + "A.txt";
    // In a child process whose files may not grow beyond 100 bytes: every write of the new text
    // is checked, the new text never replaces the old one, and no temporary stays.
    EXPECT_EXIT(
        {
            LimitFileSize(100);
            bool closed = WriteFileText(path, std::string(3000, 'n'));
            std::_Exit(!closed && ReadFileText(path) == old && !FileExists(path + ".tmp") ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
    EXPECT_EQ(ReadFileText(path), old);
}

TEST(FileWriter, MoveFileOverPutsOneFileInThePlaceOfAnother) {
    TempDir dir;
    dir.Write("Blend.tmp", "new\n");
    dir.Write("P.M1", "old\n");
    ASSERT_TRUE(MoveFileOver(dir.Path() + "Blend.tmp", dir.Path() + "P.M1"));
    EXPECT_EQ(ReadFileText(dir.Path() + "P.M1"), "new\n");
    EXPECT_FALSE(FileExists(dir.Path() + "Blend.tmp"));
    EXPECT_FALSE(MoveFileOver(dir.Path() + "none", dir.Path() + "P.M1"));
    EXPECT_EQ(ReadFileText(dir.Path() + "P.M1"), "new\n");
    dir.Write("Q.txt", "copy\n");
    ASSERT_TRUE(CopyFileOver(dir.Path() + "Q.txt", dir.Path() + "P.M1"));
    EXPECT_EQ(ReadFileText(dir.Path() + "P.M1"), "copy\n");
    EXPECT_TRUE(FileExists(dir.Path() + "Q.txt"));
}

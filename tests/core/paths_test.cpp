#include "core/paths.h"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "tests/core/temp_dir.h"

using namespace kirvana;

TEST(Paths, DriveNames) {
    EXPECT_TRUE(HasDrive("/media/usb"));
    EXPECT_TRUE(HasDrive("D:/Jobs"));
    EXPECT_FALSE(HasDrive("Jobs"));
    // A name with a drive stands for the root of its drive, whatever follows the drive.
    EXPECT_EQ(DirectoryPath("D:/Jobs", "/root/Programs/"), "D:/");
    EXPECT_EQ(DirectoryPath("D:\\Jobs", "/root/Programs/"), "D:/");
    EXPECT_EQ(DirectoryPath("/proc/sys/kernel", "/root/Programs/"), "/proc/");
    EXPECT_EQ(DirectoryPath(" Jobs ", "/root/Programs/"), "/root/Programs/Jobs/");
}

TEST(Paths, DriveReady) {
    EXPECT_TRUE(DriveReady("/proc/sys"));
    EXPECT_FALSE(DriveReady("Q:/nothing"));
}

TEST(Paths, DirectoryExists) {
    TempDir t;
    std::filesystem::create_directory(t.Path() + "Jobs");
    EXPECT_TRUE(DirectoryExists("Jobs", t.Path()));
    EXPECT_FALSE(DirectoryExists("Other", t.Path()));
}

TEST(Paths, NoteFileRewritesLastFile) {
    TempDir t;
    NoteFile(t.Path(), "Data/Machine.dat");
    NoteFile(t.Path(), "Messages/IO.msg");
    auto lines = ReadLines(t.Path() + "LastFile.txt");
    ASSERT_TRUE(lines);
    EXPECT_EQ(*lines, std::vector<std::string>{"Messages/IO.msg"});
}

TEST(Paths, NoteFileOverALongerNameLeavesOnlyTheNewLine) {
    TempDir t;
    NoteFile(t.Path(), "Programs/Dorvenis/A-very-long-program-name.prg");
    NoteFile(t.Path(), "PMAC.cfg");
    std::ifstream in(t.Path() + "LastFile.txt", std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_EQ(bytes, "PMAC.cfg\n");
}

TEST(Paths, ReadLinesTakesCrlfAndNoFinalLineEnd) {
    TempDir t;
    std::ofstream(t.Path() + "a.txt", std::ios::binary) << "one\r\ntwo\nthree";
    auto lines = ReadLines(t.Path() + "a.txt");
    ASSERT_TRUE(lines);
    EXPECT_EQ(*lines, (std::vector<std::string>{"one", "two", "three"}));
    EXPECT_FALSE(ReadLines(t.Path() + "none.txt"));
}

TEST(Paths, ResolveNoCaseAndListing) {
    TempDir t;
    std::filesystem::create_directory(t.Path() + "Beta");
    std::filesystem::create_directory(t.Path() + "alpha");
    std::ofstream(t.Path() + "File.PRG") << "x";
    EXPECT_EQ(ResolveNoCase(t.Path() + "file.prg"), t.Path() + "File.PRG");
    EXPECT_EQ(ResolveNoCase(t.Path() + "none.prg"), t.Path() + "none.prg");
    EXPECT_EQ(ListDirectory(t.Path(), true), (std::vector<std::string>{"alpha", "Beta"}));
    EXPECT_EQ(ListDirectory(t.Path(), false), (std::vector<std::string>{"File.PRG"}));
}

#include "files/program_store.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/paths.h"
#include "files/receive.h"
#include "tests/core/temp_dir.h"

namespace kirvana {
namespace {

namespace fs = std::filesystem;

// Edge: the directory "EXSUBS" never appears in lists.
TEST(ProgramStore, ExsubsNeverAppearsInLists) {
    TempDir dir;
    for (const char* name : {"Programs/EXSUBS", "Programs/exsubs2", "Programs/beta", "Programs/Alpha"})
        fs::create_directories(dir.Path() + name);
    fs::create_directories(dir.Path() + "Programs/Alpha/EXSUBS");
    dir.Write("Programs/file.prg", "");
    std::string root = dir.Path() + "Programs/";
    EXPECT_EQ(FillDirectories(root, root), (std::vector<std::string>{"Alpha", "beta", "exsubs2"}));
    EXPECT_EQ(FillDirectories(root + "Alpha/", root), (std::vector<std::string>{".."}));
}

TEST(ProgramStore, ProgramsAndFilesWithoutExtension) {
    TempDir dir;
    for (const char* name : {"b.prg", "A.PRG", "c.stg", "noext", "d.prg.part", "e.pls"}) dir.Write(name, "x");
    fs::create_directories(dir.Path() + "sub.prg");
    EXPECT_EQ(FillPrograms(dir.Path()), (std::vector<std::string>{"A", "b"}));
    EXPECT_EQ(FillFiles(dir.Path(), ".stg"), std::vector<std::string>{"c"});
    EXPECT_EQ(FillFiles(dir.Path(), ".pls"), std::vector<std::string>{"e"});
    EXPECT_EQ(FillFiles(dir.Path(), ""), std::vector<std::string>{"noext"});
}

TEST(ProgramStore, DrivesAreTheRootAndRemovableMounts) {
    std::string mounts =
        "/dev/sda1 / ext4 rw 0 0\n"
        "proc /proc proc rw 0 0\n"
        "/dev/sdb1 /media/operator/USBSTICK vfat rw 0 0\n"
        "/dev/fd0 /mnt/floppy vfat rw 0 0\n"
        "tmpfs /run tmpfs rw 0 0\n";
    std::vector<DriveEntry> drives = DriveList(mounts);
    ASSERT_EQ(drives.size(), 3u);
    EXPECT_EQ(drives[0].MountPoint, "/");
    EXPECT_FALSE(drives[0].Removable);
    EXPECT_EQ(drives[1].Caption, "/media/operator/USBSTICK/ [Removable Drive]");
    EXPECT_TRUE(drives[1].Removable);
    EXPECT_EQ(drives[2].Caption, "/mnt/floppy/ [Floppy Disk]");
    EXPECT_FALSE(DriveList().empty());
}

TEST(ProgramStore, DeleteProgramSetLeavesOtherFiles) {
    TempDir dir;
    for (const char* name : {"P.prg", "P.inf", "P.rpt", "P.stg", "P.pls", "P2.prg"}) dir.Write(name, "x");
    EXPECT_TRUE(DeleteProgramSet(dir.Path(), "P"));
    EXPECT_EQ(ListDirectory(dir.Path(), false), (std::vector<std::string>{"P.pls", "P2.prg"}));
    EXPECT_TRUE(DeleteNameSet(dir.Path(), "P"));
    EXPECT_EQ(ListDirectory(dir.Path(), false), std::vector<std::string>{"P2.prg"});
}

TEST(ProgramStore, CopyProgramWithoutSettings) {
    TempDir dir;
    dir.Write("a/P.prg", "text\n");
    dir.Write("b/Q.stg", "stale\n");
    std::string fault;
    EXPECT_TRUE(CopyProgram(dir.Path() + "a/", "P", dir.Path() + "b/", "Q", fault));
    EXPECT_EQ(ReadFileText(dir.Path() + "b/Q.prg"), "text\n");
    EXPECT_EQ(ReadFileText(dir.Path() + "b/Q.stg"), "stale\n");
    EXPECT_FALSE(CopyProgram(dir.Path() + "a/", "Missing", dir.Path() + "b/", "M", fault));
    EXPECT_EQ(fault, dir.Path() + "a/Missing.prg");
}

TEST(ProgramStore, NewProgramNameTakesTheFirstFreeNumber) {
    TempDir dir;
    EXPECT_EQ(NewProgramName(dir.Path()), "New Program 1");
    dir.Write("New Program 1.prg", "");
    dir.Write("New Program 3.prg", "");
    EXPECT_EQ(NewProgramName(dir.Path()), "New Program 2");
}

}  // namespace
}  // namespace kirvana

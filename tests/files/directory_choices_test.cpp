// The directories the program and file screens offer: the store's, then the removable drives of
// the mount list by their captions, each with its whole path.
#include <gtest/gtest.h>

#include "files/program_store.h"
#include "tests/core/temp_dir.h"

using namespace kirvana;

TEST(DirectoryChoices, TheStoresDirectoriesThenTheRemovableDrives) {
    TempDir dir;
    for (const char* name : {"Jobs/A.prg", "archive/B.prg", "EXSUBS/S.prg"}) dir.Write(name, "G90\n");
    const std::string mounts =
        "/dev/sda1 / ext4 rw 0 0\n"
        "/dev/sdb1 /media/operator/USBSTICK vfat rw 0 0\n"
        "proc /proc proc rw 0 0\n"
        "/dev/fd0 /mnt/floppy vfat rw 0 0\n";
    std::vector<DirectoryChoice> choices = DirectoryChoices(dir.Path(), DriveList(mounts));
    ASSERT_EQ(choices.size(), 4u);
    EXPECT_EQ(choices[0].Caption, "archive");
    EXPECT_EQ(choices[0].Path, dir.Path() + "archive/");
    EXPECT_EQ(choices[1].Caption, "Jobs");
    EXPECT_EQ(choices[2].Caption, "/media/operator/USBSTICK/ [Removable Drive]");
    EXPECT_EQ(choices[2].Path, "/media/operator/USBSTICK/");
    EXPECT_EQ(choices[3].Caption, "/mnt/floppy/ [Floppy Disk]");
    EXPECT_EQ(choices[3].Path, "/mnt/floppy/");
    const DirectoryChoice* stick = FindChoice(choices, "/media/operator/USBSTICK/ [Removable Drive]");
    ASSERT_NE(stick, nullptr);
    EXPECT_EQ(stick->Path, "/media/operator/USBSTICK/");
    EXPECT_EQ(FindChoice(choices, "/media/operator/USBSTICK/"), nullptr);
    // Without removable media only the store's directories.
    EXPECT_EQ(DirectoryChoices(dir.Path(), DriveList("/dev/sda1 / ext4 rw 0 0\n")).size(), 2u);
}

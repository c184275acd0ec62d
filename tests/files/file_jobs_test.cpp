#include "files/file_jobs.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "core/paths.h"
#include "files/program_store.h"
#include "tests/core/temp_dir.h"
#include "tests/files/file_operator.h"

namespace kirvana {
namespace {

namespace fs = std::filesystem;

// A program store: Programs/A with PART1 (and its settings and report), PART2; Programs/B empty.
class FileJobs : public ::testing::Test {
protected:
    void SetUp() override {
        dir.Write("Programs/A/PART1.prg", "N10 G90\nN20 X10\n");
        dir.Write("Programs/A/PART1.stg", "settings 1\n");
        dir.Write("Programs/A/PART1.inf", "info\n");
        dir.Write("Programs/A/PART1.rpt", "report\n");
        dir.Write("Programs/A/PART2.prg", "N10 X2\n");
        fs::create_directories(B());
        context.ControllerDir = dir.Path();
    }
    std::string A() const { return dir.Path() + "Programs/A/"; }
    std::string B() const { return dir.Path() + "Programs/B/"; }
    FileJobRequest Request(FileJob job, std::vector<std::string> programs) const {
        FileJobRequest r;
        r.Job = job;
        r.Directory = A();
        r.Programs = std::move(programs);
        return r;
    }
    FileJobRequest ToB(FileJob job, std::vector<std::string> programs) const {
        FileJobRequest r = Request(job, std::move(programs));
        r.Destination = B();
        r.DestinationName = "B";
        return r;
    }

    TempDir dir;
    StoreContext context;
};

TEST(FileJobText, CaptionsAndTitlesOfEveryJob) {
    EXPECT_STREQ(FileJobCaptions(FileJob::DeletePrograms).Button, "DELETE  (&1)");
    EXPECT_EQ(FileJobCaptions(FileJob::RenameProgram).Titles.size(), 3u);
    EXPECT_STREQ(FileJobCaptions(FileJob::RenameProgram).Titles[2], "AS");
    EXPECT_STREQ(FileJobCaptions(FileJob::CopyPrograms).Button, "COPY TO (&5)");
    EXPECT_STREQ(FileJobCaptions(FileJob::CreateDirectory).Titles[1], "DIRECTORY &NAME");
    EXPECT_STREQ(FileJobCaptions(FileJob::RenameDirectory).Titles[1], "&AS");
    EXPECT_TRUE(IsDirectoryJob(FileJob::DeleteDirectory));
    EXPECT_FALSE(IsDirectoryJob(FileJob::CopyPrograms));
    EXPECT_EQ(WarningText({"a", "b"}), "a\nb\n\n\n");
}

TEST_F(FileJobs, DeleteNothingChosen) {
    ScriptedOperator op;
    EXPECT_EQ(RunFileJob(Request(FileJob::DeletePrograms, {}), context, op), 0);
    EXPECT_EQ(op.Notices, std::vector<std::string>{"No Programs Selected !\n\n\n"});
}

TEST_F(FileJobs, DeleteOneTakesItsWholeSet) {
    ScriptedOperator op;
    EXPECT_EQ(RunFileJob(Request(FileJob::DeletePrograms, {"PART1"}), context, op), 1);
    EXPECT_EQ(op.Questions, std::vector<std::string>{"Delete \"PART1\" !\n\n\n"});
    EXPECT_EQ(op.Notices, std::vector<std::string>{"1 Program Deleted !\n\n\n"});
    for (const char* ext : {".prg", ".stg", ".inf", ".rpt"}) EXPECT_FALSE(fs::exists(A() + "PART1" + ext)) << ext;
    EXPECT_TRUE(FileExists(A() + "PART2.prg"));
}

TEST_F(FileJobs, DeleteSeveralAndNo) {
    ScriptedOperator no({false});
    EXPECT_EQ(RunFileJob(Request(FileJob::DeletePrograms, {"PART1", "PART2"}), context, no), 0);
    EXPECT_EQ(no.Questions, std::vector<std::string>{"Delete 2 Programs !\n\n\n"});
    EXPECT_TRUE(no.Notices.empty());
    EXPECT_TRUE(FileExists(A() + "PART1.prg"));
    ScriptedOperator yes;
    EXPECT_EQ(RunFileJob(Request(FileJob::DeletePrograms, {"PART1", "PART2"}), context, yes), 2);
    EXPECT_EQ(yes.Notices, std::vector<std::string>{"2 Programs Deleted !\n\n\n"});
    EXPECT_TRUE(FillPrograms(A()).empty());
}

TEST_F(FileJobs, BeforeEachJobTheTempFilesGo) {
    dir.Write("Temp.prg", "x");
    dir.Write("Temp.stg", "x");
    dir.Write("Tempo.prg", "kept");
    ScriptedOperator op;
    RunFileJob(Request(FileJob::DeletePrograms, {}), context, op);
    EXPECT_FALSE(fs::exists(dir.Path() + "Temp.prg"));
    EXPECT_FALSE(fs::exists(dir.Path() + "Temp.stg"));
    EXPECT_TRUE(fs::exists(dir.Path() + "Tempo.prg"));
}

TEST_F(FileJobs, RenameAsksAndMovesTheProgramAndItsSettings) {
    ScriptedOperator op;
    FileJobRequest r = Request(FileJob::RenameProgram, {"PART1"});
    r.NewName = " PART9 ";
    EXPECT_EQ(RunFileJob(r, context, op), 1);
    EXPECT_EQ(op.Questions, std::vector<std::string>{"Rename \"PART1\"\nAs \"PART9\" ?\n\n\n"});
    EXPECT_EQ(op.Notices, std::vector<std::string>{"1 Program Renamed !\n\n\n"});
    EXPECT_EQ(ReadFileText(A() + "PART9.prg"), "N10 G90\nN20 X10\n");
    EXPECT_EQ(ReadFileText(A() + "PART9.stg"), "settings 1\n");
    EXPECT_FALSE(fs::exists(A() + "PART9.inf"));
    for (const char* ext : {".prg", ".stg", ".inf", ".rpt"}) EXPECT_FALSE(fs::exists(A() + "PART1" + ext)) << ext;
    // Nothing of the work is left behind.
    EXPECT_EQ(ListDirectory(A(), false), (std::vector<std::string>{"PART2.prg", "PART9.prg", "PART9.stg"}));
}

TEST_F(FileJobs, RenameRefusesABadName) {
    for (const char* bad : {"", "../up", "a/b", "x\x01y", "/etc/passwd", "123456789012345678901234567890123"}) {
        ScriptedOperator op;
        FileJobRequest r = Request(FileJob::RenameProgram, {"PART1"});
        r.NewName = bad;
        EXPECT_EQ(RunFileJob(r, context, op), 0) << bad;
        EXPECT_EQ(op.Notices, std::vector<std::string>{"Invalid Program Name !\n\n\n"}) << bad;
        EXPECT_TRUE(op.Questions.empty());
    }
    EXPECT_TRUE(FileExists(A() + "PART1.prg"));
}

TEST_F(FileJobs, RenameOverAnExistingProgramAsksToOverwrite) {
    dir.Write("Programs/A/PART2.inf", "old info of PART2\n");
    ScriptedOperator no({true, false});
    FileJobRequest r = Request(FileJob::RenameProgram, {"PART1"});
    r.NewName = "PART2";
    EXPECT_EQ(RunFileJob(r, context, no), 0);
    EXPECT_EQ(no.Questions.back(), "PART2\nAlready Exists !\nOverwrite It ?\n\n\n");
    EXPECT_EQ(ReadFileText(A() + "PART2.prg"), "N10 X2\n");
    ScriptedOperator yes;
    EXPECT_EQ(RunFileJob(r, context, yes), 1);
    EXPECT_EQ(ReadFileText(A() + "PART2.prg"), "N10 G90\nN20 X10\n");
    EXPECT_FALSE(fs::exists(A() + "PART2.inf"));
    EXPECT_FALSE(fs::exists(A() + "PART1.prg"));
}

// Edge: renaming a program to itself asks "Overwrite It ?" and ends with one program of that name.
TEST_F(FileJobs, RenameToItselfAsksOverwriteAndEndsWithOneProgram) {
    ScriptedOperator op;
    FileJobRequest r = Request(FileJob::RenameProgram, {"PART1"});
    r.NewName = "PART1";
    EXPECT_EQ(RunFileJob(r, context, op), 1);
    ASSERT_EQ(op.Questions.size(), 2u);
    EXPECT_EQ(op.Questions[1], "PART1\nAlready Exists !\nOverwrite It ?\n\n\n");
    EXPECT_EQ(FillPrograms(A()), (std::vector<std::string>{"PART1", "PART2"}));
    EXPECT_EQ(ReadFileText(A() + "PART1.prg"), "N10 G90\nN20 X10\n");
    EXPECT_EQ(ReadFileText(A() + "PART1.stg"), "settings 1\n");
}

TEST_F(FileJobs, CopyAsKeepsTheOldSet) {
    ScriptedOperator op;
    FileJobRequest r = Request(FileJob::CopyProgramAs, {"PART1"});
    r.NewName = "PART3";
    EXPECT_EQ(RunFileJob(r, context, op), 1);
    EXPECT_EQ(op.Questions, std::vector<std::string>{"Copy \"PART1\"\nAs \"PART3\" ?\n\n\n"});
    EXPECT_EQ(op.Notices, std::vector<std::string>{"1 Program Copied !\n\n\n"});
    EXPECT_EQ(ReadFileText(A() + "PART3.prg"), ReadFileText(A() + "PART1.prg"));
    EXPECT_TRUE(fs::exists(A() + "PART1.inf"));
}

TEST_F(FileJobs, MoveRefusals) {
    ScriptedOperator none;
    EXPECT_EQ(RunFileJob(ToB(FileJob::MovePrograms, {}), context, none), 0);
    EXPECT_EQ(none.Notices, std::vector<std::string>{"No Programs Selected !\n\n\n"});
    ScriptedOperator noDestination;
    EXPECT_EQ(RunFileJob(Request(FileJob::MovePrograms, {"PART1"}), context, noDestination), 0);
    EXPECT_EQ(noDestination.Notices, std::vector<std::string>{"No Destination Selected !\n\n\n"});
}

// Edge: copying to the same directory.
TEST_F(FileJobs, CopyToTheSameDirectoryIsRefused) {
    ScriptedOperator op;
    FileJobRequest r = ToB(FileJob::CopyPrograms, {"PART1"});
    r.Destination = dir.Path() + "Programs/../Programs/A/";
    EXPECT_EQ(RunFileJob(r, context, op), 0);
    EXPECT_EQ(op.Notices, std::vector<std::string>{"Original & Destination Directories Are The Same !\n\n\n"});
}

TEST_F(FileJobs, MoveOneProgram) {
    ScriptedOperator op;
    EXPECT_EQ(RunFileJob(ToB(FileJob::MovePrograms, {"PART1"}), context, op), 1);
    EXPECT_EQ(op.Questions, std::vector<std::string>{"Move \"PART1\"\nTo \"B\" !\n\n\n"});
    EXPECT_EQ(op.Notices, std::vector<std::string>{"1 Program Moved !\n\n\n"});
    EXPECT_EQ(ReadFileText(B() + "PART1.prg"), "N10 G90\nN20 X10\n");
    EXPECT_EQ(ReadFileText(B() + "PART1.stg"), "settings 1\n");
    EXPECT_FALSE(fs::exists(B() + "PART1.inf"));
    for (const char* ext : {".prg", ".stg", ".inf", ".rpt"}) EXPECT_FALSE(fs::exists(A() + "PART1" + ext)) << ext;
    EXPECT_EQ(ListDirectory(B(), false), (std::vector<std::string>{"PART1.prg", "PART1.stg"}));
}

TEST_F(FileJobs, MoveSeveralSkippingOneThatExists) {
    dir.Write("Programs/B/PART2.prg", "B's own PART2\n");
    ScriptedOperator op({true, false});
    EXPECT_EQ(RunFileJob(ToB(FileJob::MovePrograms, {"PART1", "PART2"}), context, op), 1);
    EXPECT_EQ(op.Questions, (std::vector<std::string>{"Move 2 Programs\nTo \"B\" !\n\n\n",
                                                      "Already Exists !\nOverwrite It ?\n\n\n"}));
    EXPECT_EQ(op.Notices, std::vector<std::string>{"1 Program Moved !\n\n\n"});
    EXPECT_EQ(ReadFileText(B() + "PART2.prg"), "B's own PART2\n");
    EXPECT_TRUE(FileExists(A() + "PART2.prg"));
}

TEST_F(FileJobs, MoveNothingMoved) {
    dir.Write("Programs/B/PART2.prg", "B's own PART2\n");
    ScriptedOperator op({true, false});
    EXPECT_EQ(RunFileJob(ToB(FileJob::MovePrograms, {"PART2"}), context, op), 0);
    EXPECT_EQ(op.Notices, std::vector<std::string>{"No Programs Moved !\n\n\n"});
}

TEST_F(FileJobs, CopySeveralKeepsTheSources) {
    ScriptedOperator op;
    EXPECT_EQ(RunFileJob(ToB(FileJob::CopyPrograms, {"PART1", "PART2"}), context, op), 2);
    EXPECT_EQ(op.Questions, std::vector<std::string>{"Copy 2 Programs\nTo \"B\" !\n\n\n"});
    EXPECT_EQ(op.Notices, std::vector<std::string>{"2 Programs Copied !\n\n\n"});
    EXPECT_TRUE(FileExists(A() + "PART1.prg"));
    EXPECT_EQ(FillPrograms(B()), (std::vector<std::string>{"PART1", "PART2"}));
}

TEST_F(FileJobs, CopyToADriveThatIsNotReady) {
    ScriptedOperator op;
    FileJobRequest r = ToB(FileJob::CopyPrograms, {"PART1"});
    r.Destination = dir.Path() + "gone/";
    r.DestinationName = r.Destination;
    EXPECT_EQ(RunFileJob(r, context, op), 0);
    EXPECT_EQ(op.Notices, std::vector<std::string>{"Disc Not Ready !\n\n\n"});
}

// A full disk in the middle of a move: the source stays whole, the destination as it was.
TEST_F(FileJobs, AWriteFailureLosesNothing) {
    std::string big(5000, 'X');
    dir.Write("Programs/A/BIG.prg", big);
    dir.Write("Programs/A/BIG.stg", "s");
    dir.Write("Programs/B/BIG.prg", "old BIG\n");
    EXPECT_EXIT(
        {
            LimitFileSize(1000);
            ScriptedOperator op;
            int moved = RunFileJob(ToB(FileJob::MovePrograms, {"BIG"}), context, op);
            bool told = !op.Notices.empty() && op.Notices.back().starts_with("File Fault : ");
            std::_Exit(moved == 0 && told ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
    EXPECT_EQ(ReadFileText(A() + "BIG.prg"), big);
    EXPECT_EQ(ReadFileText(A() + "BIG.stg"), "s");
    EXPECT_EQ(ReadFileText(B() + "BIG.prg"), "old BIG\n");
    EXPECT_EQ(ListDirectory(B(), false), std::vector<std::string>{"BIG.prg"});
}

// A read-only destination (as a user that the directory's mode binds): refused, nothing lost.
TEST_F(FileJobs, AReadOnlyDestinationLosesNothing) {
    fs::permissions(dir.Path(), fs::perms::all);
    fs::permissions(dir.Path() + "Programs", fs::perms::all);
    fs::permissions(A(), fs::perms::all);
    fs::permissions(B(), fs::perms::owner_read | fs::perms::owner_exec | fs::perms::group_read | fs::perms::group_exec |
                             fs::perms::others_read | fs::perms::others_exec);
    for (const auto& entry : fs::directory_iterator(A())) fs::permissions(entry.path(), fs::perms::all);
    EXPECT_EXIT(
        {
            // Root passes every mode: the job runs as the unprivileged user "nobody".
            if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) std::_Exit(2);
            ScriptedOperator op;
            int moved = RunFileJob(ToB(FileJob::MovePrograms, {"PART1"}), context, op);
            bool told = !op.Notices.empty() && op.Notices.back() == "File Fault : " + B() + "PART1.prg\n\n\n";
            std::_Exit(moved == 0 && told ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
    EXPECT_EQ(ReadFileText(A() + "PART1.prg"), "N10 G90\nN20 X10\n");
    EXPECT_TRUE(fs::exists(A() + "PART1.inf"));
    EXPECT_TRUE(ListDirectory(B(), false).empty());
}

TEST_F(FileJobs, CreateDirectory) {
    DirectoryJobRequest r{FileJob::CreateDirectory, dir.Path() + "Programs/", "", "NEW"};
    ScriptedOperator op;
    EXPECT_TRUE(RunDirectoryJob(r, context, op));
    EXPECT_TRUE(IsDirectory(dir.Path() + "Programs/NEW"));
    EXPECT_TRUE(op.Shown.empty());
    ScriptedOperator again;
    EXPECT_FALSE(RunDirectoryJob(r, context, again));
    EXPECT_EQ(again.Notices, std::vector<std::string>{"Directory \"NEW\" Already Exists !\n\n\n"});
    for (const char* bad : {"", "  ", "..", "a/b", "/tmp/x", "a\tb"}) {
        ScriptedOperator op2;
        r.NewName = bad;
        EXPECT_FALSE(RunDirectoryJob(r, context, op2));
        EXPECT_EQ(op2.Notices, std::vector<std::string>{"Invalid Directory Name !\n\n\n"}) << bad;
    }
}

TEST_F(FileJobs, DeleteDirectoryNoneSelected) {
    ScriptedOperator op;
    EXPECT_FALSE(RunDirectoryJob({FileJob::DeleteDirectory, dir.Path() + "Programs/", "", ""}, context, op));
    EXPECT_EQ(op.Notices, std::vector<std::string>{"No Directory Selected !\n\n\n"});
}

// Edge: deleting a directory with files asks twice.
TEST_F(FileJobs, DeletingADirectoryWithFilesAsksTwice) {
    ScriptedOperator op;
    EXPECT_TRUE(RunDirectoryJob({FileJob::DeleteDirectory, dir.Path() + "Programs/", "A", ""}, context, op));
    EXPECT_EQ(op.Questions,
              (std::vector<std::string>{"Delete \"A\" !\n\n\n", "\"A\" Is Not Empty !\nDelete it Anyway ?\n\n\n"}));
    EXPECT_FALSE(fs::exists(A()));
}

TEST_F(FileJobs, AnEmptyDirectoryIsAskedOnce) {
    ScriptedOperator op;
    EXPECT_TRUE(RunDirectoryJob({FileJob::DeleteDirectory, dir.Path() + "Programs/", "B", ""}, context, op));
    EXPECT_EQ(op.Questions, std::vector<std::string>{"Delete \"B\" !\n\n\n"});
    EXPECT_FALSE(fs::exists(B()));
}

TEST_F(FileJobs, NotEmptyAnsweredNoKeepsIt) {
    ScriptedOperator op({true, false});
    EXPECT_FALSE(RunDirectoryJob({FileJob::DeleteDirectory, dir.Path() + "Programs/", "A", ""}, context, op));
    EXPECT_TRUE(FileExists(A() + "PART1.prg"));
}

TEST_F(FileJobs, TheDirectoryOfTheSelectedProgramStays) {
    context.DirectoriesInUse = {A()};
    ScriptedOperator del;
    EXPECT_FALSE(RunDirectoryJob({FileJob::DeleteDirectory, dir.Path() + "Programs/", "A", ""}, context, del));
    EXPECT_EQ(del.Notices,
              std::vector<std::string>{"Can Not Delete Directory !\nIt Contains Currently Selected Program.\n\n\n"});
    ScriptedOperator ren;
    EXPECT_FALSE(RunDirectoryJob({FileJob::RenameDirectory, dir.Path() + "Programs/", "A", "C"}, context, ren));
    EXPECT_EQ(ren.Notices,
              std::vector<std::string>{"Can Not Rename Directory !\nIt Contains Currently Selected Program.\n\n\n"});
    EXPECT_TRUE(FileExists(A() + "PART1.prg"));
}

TEST_F(FileJobs, RenameDirectory) {
    ScriptedOperator taken;
    EXPECT_FALSE(RunDirectoryJob({FileJob::RenameDirectory, dir.Path() + "Programs/", "A", "B"}, context, taken));
    EXPECT_EQ(taken.Notices, std::vector<std::string>{"Directory \"B\" Already Exists !\n\n\n"});
    ScriptedOperator bad;
    EXPECT_FALSE(RunDirectoryJob({FileJob::RenameDirectory, dir.Path() + "Programs/", "A", "../C"}, context, bad));
    EXPECT_EQ(bad.Notices, std::vector<std::string>{"Invalid Directory Name !\n\n\n"});
    ScriptedOperator none;
    EXPECT_FALSE(RunDirectoryJob({FileJob::RenameDirectory, dir.Path() + "Programs/", "", "C"}, context, none));
    EXPECT_EQ(none.Notices, std::vector<std::string>{"No Directory Selected !\n\n\n"});
    ScriptedOperator op;
    EXPECT_TRUE(RunDirectoryJob({FileJob::RenameDirectory, dir.Path() + "Programs/", "A", "C"}, context, op));
    EXPECT_EQ(op.Questions, std::vector<std::string>{"Rename\n\"A\"\nAs\n\"C\" ?\n\n\n"});
    EXPECT_TRUE(FileExists(dir.Path() + "Programs/C/PART1.prg"));
}

}  // namespace
}  // namespace kirvana

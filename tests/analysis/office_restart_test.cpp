// The office seat's restart command on a program of the demo installation, run as an operator
// runs it: the state and the restart program printed, nothing sent, bad input refused.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <cstdio>
#include <filesystem>
#include <string>

#include "tests/core/temp_dir.h"
#include "tests/support/office_run.h"

namespace kirvana {
namespace {

// The demo installation copied, with GRID03 selected into slot 1.
struct OfficeRestart : ::testing::Test {
    TempDir dir;
    std::string root;
    std::string stem;
    OfficeRestart() {
        std::filesystem::copy(std::string(KIRVANA_SOURCE_DIR) + "/data/demo", dir.Path() + "root",
                              std::filesystem::copy_options::recursive);
        root = dir.Path() + "root";
        stem = root + "/Actvprg1.";
    }
};

TEST_F(OfficeRestart, PrintsTheStateAndTheRestartProgram) {
    ASSERT_EQ(RunOffice("select --root " + root + " --dir Dorvenis --program GRID03").Code, 0);
    // Hit 5 of the grid, the third record.
    OfficeRun run = RunOffice("restart " + stem + " --root " + root + " --record 3 --hit 5");
    EXPECT_EQ(run.Code, 0);
    EXPECT_NE(run.Output.find("Restart kind : 3\nRestart hit  : 5\n"), std::string::npos);
    EXPECT_NE(run.Output.find("X Position   : 280\nY Position   : 200\nC Position   : 0\nHits So Far  : 5\n"),
              std::string::npos);
    EXPECT_NE(run.Output.find("PROG 5:\nCLOSE\nOPEN PROG 5\nCLEAR\n"), std::string::npos);
    EXPECT_NE(run.Output.find("\nP1=6 P5=0 P7=20 "), std::string::npos);
    EXPECT_NE(run.Output.find("Run command  : B1.00009R\n"), std::string::npos);
    // From a block of the main text.
    OfficeRun block = RunOffice("restart " + stem + " --root " + root + " --block 10");
    EXPECT_EQ(block.Code, 0);
    EXPECT_NE(block.Output.find("Restart kind : 1\n"), std::string::npos);
}

TEST_F(OfficeRestart, BadInputIsRefused) {
    ASSERT_EQ(RunOffice("select --root " + root + " --dir Dorvenis --program GRID03").Code, 0);
    EXPECT_EQ(RunOffice("restart " + stem + " --root " + root + " --record 9 --hit 1").Code, 1);
    EXPECT_EQ(RunOffice("restart " + stem + " --root " + root + " --record 3 --hit 51").Code, 1);
    EXPECT_EQ(RunOffice("restart " + stem + " --root " + root + " --block 99").Code, 1);
    EXPECT_EQ(RunOffice("restart " + stem + " --root " + root + " --record 3").Code, 2);
    EXPECT_EQ(RunOffice("restart " + stem + " --root " + root + " --block 2 --hit 1").Code, 2);
    EXPECT_EQ(RunOffice("restart " + stem + " --root " + root + " --block x").Code, 2);
    EXPECT_EQ(RunOffice("restart " + stem + " --root " + root + " --block 2 --reloaded maybe").Code, 2);
    EXPECT_EQ(RunOffice("restart " + root + "/None. --root " + root + " --block 1").Code, 1);
    OfficeRun help = RunOffice("restart --help");
    EXPECT_EQ(help.Code, 0);
    EXPECT_NE(help.Output.find("--record R --hit H"), std::string::npos);
}

}  // namespace
}  // namespace kirvana

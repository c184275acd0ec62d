// The office seat's reverse command on the demo installation, run as an operator runs it.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "analysis/drawing_file.h"
#include "tests/core/temp_dir.h"
#include "tests/support/office_run.h"

namespace kirvana {
namespace {

std::string ReadText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// The demo installation copied into a fresh directory.
std::string Installation(const TempDir& dir) {
    std::filesystem::copy(std::string(KIRVANA_SOURCE_DIR) + "/data/demo", dir.Path() + "root",
                          std::filesystem::copy_options::recursive);
    std::filesystem::create_directories(dir.Path() + "root/Service");
    return dir.Path() + "root";
}

TEST(OfficeReverse, DrawsTheProgramAndPrintsCountAndRecords) {
    TempDir dir;
    const std::string root = Installation(dir);
    dir.Write("Slot.M1", "N0001 ;SHEET SIZE : 2500 x 1250\nN0002 G90 T1\nN0003 G80 X100 Y100\nN0004 G81 X200 Y100\n");
    dir.Write("Slot.M2", "");
    OfficeRun reverse = RunOffice("reverse " + dir.Path() + "Slot. --root " + root + " --program PART --dir DEMO");
    EXPECT_EQ(reverse.Code, 0);
    EXPECT_EQ(reverse.Output, "critical errors: 0\nrecords: 3\n");
    DrawingFile drawing;
    ASSERT_TRUE(drawing.Open(dir.Path() + "Slot.drw", true));
    EXPECT_EQ(drawing.Count(), 3);
    const std::string report = ReadText(root + "/Service/Reverse.txt");
    EXPECT_EQ(report.rfind("PROGRAM   :  PART\nDIRECTORY :  DEMO\nTIME      :  ", 0), 0u);
    EXPECT_NE(report.find("Sheet Size :  2500x1250\n"), std::string::npos);
    EXPECT_EQ(report.substr(report.size() - 7), "******\n");
}

TEST(OfficeReverse, CriticalErrorsGiveExitCodeOne) {
    TempDir dir;
    const std::string root = Installation(dir);
    dir.Write("Slot.M1", "N0001 G90 T1\nN0002 G64 X100 Y100 J20 B1\n");
    OfficeRun reverse = RunOffice("reverse " + dir.Path() + "Slot. --root " + root + " --program PART --dir DEMO");
    EXPECT_EQ(reverse.Code, 1);
    EXPECT_EQ(reverse.Output, "critical errors: 1\nrecords: 1\n");
    EXPECT_NE(
        ReadText(root + "/Service/Reverse.txt").find("****** CRITICAL ERROR ******\nInvalid number of Hits (P1)\n"),
        std::string::npos);
}

TEST(OfficeReverse, BadUsageAndMissingFiles) {
    TempDir dir;
    const std::string root = Installation(dir);
    EXPECT_EQ(RunOffice("reverse").Code, 2);
    EXPECT_EQ(RunOffice("reverse " + dir.Path() + "Slot. --root " + root).Code, 2);
    EXPECT_EQ(RunOffice("reverse " + dir.Path() + "None. --root " + root + " --program P --dir D").Code, 1);
}

}  // namespace
}  // namespace kirvana

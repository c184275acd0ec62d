// Golden runs of the Reverse pass: motion texts in tests/data/reverse/NAME/ (M1, M2), or a part
// program (prog.org) translated first by the Convert and Blend passes, the
// drawing expected as its listing (expected.listing) and the report with the time fixed
// (expected.txt). Each expected file was worked out by hand against the pass's rules.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "analysis/drawing_listing.h"
#include "analysis/reverse.h"
#include "tests/analysis/reverse_settings.h"
#include "tests/core/temp_dir.h"
#include "translate/blend.h"
#include "translate/convert.h"

namespace kirvana {
namespace {

std::string ReadText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

class ReverseGolden : public ::testing::TestWithParam<const char*> {};

TEST_P(ReverseGolden, DrawingAndReportAsWorkedOut) {
    const std::string data = std::string(KIRVANA_SOURCE_DIR) + "/tests/data/reverse/" + GetParam() + "/";
    TempDir dir;
    ReverseSettings settings = ReverseTestSettings();
    settings.ServiceDir = dir.Path();
    if (std::filesystem::exists(data + "prog.org")) {
        // A part program: converted, then blended with the same machine's values.
        dir.Write("Slot.org", ReadText(data + "prog.org"));
        ConvertSettings convert;
        convert.ServiceDir = dir.Path();
        std::int16_t dialect = 0;
        ASSERT_EQ(ConvertProgram(dir.Path() + "Slot.", dialect, convert).Status, ConvertStatus::Done);
        BlendSettings blend;
        blend.MachineQ10 = settings.LoadX;
        blend.MachineQ11 = settings.LoadY;
        blend.XLimitMin = settings.XLimitMin;
        blend.XLimitMax = settings.XLimitMax;
        blend.YLimitMin = settings.YLimitMin;
        blend.YLimitMax = settings.YLimitMax;
        blend.ProfilerValue = 2;
        blend.RootDir = dir.Path();
        blend.ServiceDir = dir.Path();
        EXPECT_GE(BlendProgram("GOLDEN", GetParam(), dir.Path() + "Slot.", blend), 0);
        if (std::getenv("KIRVANA_DRAFT_GOLDEN")) {
            std::ofstream(data + "draft.M1", std::ios::binary) << ReadText(dir.Path() + "Slot.M1");
            std::ofstream(data + "draft.M2", std::ios::binary) << ReadText(dir.Path() + "Slot.M2");
        }
    } else {
        dir.Write("Slot.M1", ReadText(data + "M1"));
        dir.Write("Slot.M2", ReadText(data + "M2"));
    }
    std::int16_t toolChanges = 0;
    ReverseResult result = ReversePass(dir.Path() + "Slot.", GetParam(), "GOLDEN", toolChanges, settings);
    EXPECT_FALSE(result.FileFault);
    DrawingFile drawing;
    ASSERT_TRUE(drawing.Open(dir.Path() + "Slot.drw", true));
    std::string listing;
    for (const auto& line : ListDrawing(drawing)) listing += line + "\n";
    const std::string report = ReadText(dir.Path() + "Reverse.txt");
    if (std::getenv("KIRVANA_DRAFT_GOLDEN")) {
        // Drafts for checking by hand; never compared as they stand.
        std::ofstream(data + "draft.listing", std::ios::binary) << listing;
        std::ofstream(data + "draft.txt", std::ios::binary) << report;
    }
    EXPECT_EQ(listing, ReadText(data + "expected.listing"));
    EXPECT_EQ(report, ReadText(data + "expected.txt"));
}

INSTANTIATE_TEST_SUITE_P(Programs, ReverseGolden,
                         ::testing::Values("punch_cycles", "d1_subroutines", "profile_inch_mirror", "d1_plate_inch"));

}  // namespace
}  // namespace kirvana

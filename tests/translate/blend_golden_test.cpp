// Golden runs of the Blend pass: a motion text in, the blended text and the report out. Each
// expected file was worked out by hand from the pass's rules; the "conv_" texts are the
// Convert pass's golden M1 files, so the two passes are checked in a row. ".out" is the new M1 when the
// run has no critical error, else the text left in "Blend.tmp" (M1 then stays as it was).
#include <filesystem>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "core/paths.h"
#include "tests/core/temp_dir.h"
#include "translate/blend.h"

using namespace kirvana;

namespace {

struct Golden {
    const char* Name;
    const char* Program;
    int Critical;
};

class BlendGolden : public ::testing::TestWithParam<Golden> {};

}  // namespace

TEST_P(BlendGolden, MatchesTheHandWorkedFiles) {
    const Golden& g = GetParam();
    const std::string data = std::string(KIRVANA_SOURCE_DIR) + "/tests/data/blend/" + g.Name;
    TempDir dir;
    std::filesystem::copy_file(data + ".M1", dir.Path() + "Actvprg1.M1");
    BlendSettings s;
    s.MachineQ10 = 0;
    s.MachineQ11 = 1250;
    s.XLimitMin = -25;
    s.XLimitMax = 2540;
    s.YLimitMin = -10;
    s.YLimitMax = 1270;
    s.ProfilerValue = 2;
    s.MachineOrientation = 1;
    s.RootDir = dir.Path();
    s.ServiceDir = dir.Path();
    s.Now = [] { return std::string("**"); };
    EXPECT_EQ(BlendProgram("Dorvenis", g.Program, dir.Path() + "Actvprg1.", s), g.Critical);
    std::string written = ReadFileText(dir.Path() + (g.Critical == 0 ? "Actvprg1.M1" : "Blend.tmp"));
    EXPECT_EQ(written, ReadFileText(data + ".out"));
    if (g.Critical != 0) {
        EXPECT_EQ(ReadFileText(dir.Path() + "Actvprg1.M1"), ReadFileText(data + ".M1"));
    }
    EXPECT_EQ(ReadFileText(dir.Path() + "Blend.txt"), ReadFileText(data + ".txt"));
}

INSTANTIATE_TEST_SUITE_P(Corpus, BlendGolden,
                         ::testing::Values(Golden{"profile_chain", "CHAIN", 0}, Golden{"punch_patterns", "PATTERNS", 0},
                                           Golden{"errors", "ERRORS", 5},
                                           // The Convert pass's corpus, blended.
                                           Golden{"conv_d1_punch", "D1_PUNCH", 0}, Golden{"conv_d1_profile", "D1_PROFILE", 2},
                                           Golden{"conv_d2_bracket", "D2_BRACKET", 0},
                                           Golden{"conv_d1_gsb_call", "D1_GSB_CALL", 0},
                                           Golden{"conv_d1_subroutines", "D1_SUBROUTINES", 0},
                                           Golden{"conv_d0_inch_nibble", "D0_INCH_NIBBLE", 0},
                                           Golden{"conv_d1_errors", "D1_ERRORS", 0}),
                         [](const auto& test) { return std::string(test.param.Name); });

// The AMADA corpus: each folder of tests/data/amada holds an AMADA program "prog.org" and the
// expected "expected.dialect", "expected.A1", "expected.A2", "expected.sbs", "expected.M1" and
// "expected.M2" of ConvertProgram on an AMADA machine; then the Blend pass runs over the M1
// ("expected.blended" is M1 after it, "expected.Blend.txt" its report with the time as "**").
// Every expected file was worked out by hand from the rules of the two passes.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/core/temp_dir.h"
#include "translate/blend.h"
#include "translate/convert.h"

namespace kirvana {
namespace {

namespace fs = std::filesystem;

class AmadaGolden : public testing::TestWithParam<fs::path> {};

TEST_P(AmadaGolden, ExpectedFiles) {
    const fs::path folder = GetParam();
    TempDir dir;
    ConvertSettings settings;
    settings.AmadaMachine = true;
    settings.ServiceDir = dir.Path();
    settings.CurrentDir = dir.Path();
    dir.Write("prog.org", ReadFileText(folder / "prog.org"));
    std::int16_t dialect = -1;
    ConvertResult result = ConvertProgram(dir.Path() + "prog.", dialect, settings);
    ASSERT_EQ(result.Status, ConvertStatus::Done);
    EXPECT_FALSE(result.IntegerOverflow);
    EXPECT_EQ(std::to_string(dialect) + "\n", ReadFileText(folder / "expected.dialect"));
    for (const char* extension : {"A1", "A2", "sbs", "M1", "M2"}) {
        EXPECT_EQ(ReadFileText(dir.Path() + "prog." + extension), ReadFileText(folder / (std::string("expected.") + extension)))
            << folder.filename() << " " << extension;
    }
    // The Blend pass over the converted main text.
    BlendSettings blend;
    blend.MachineQ10 = 0;
    blend.MachineQ11 = 1250;
    blend.XLimitMin = -25;
    blend.XLimitMax = 2540;
    blend.YLimitMin = -10;
    blend.YLimitMax = 1270;
    blend.ProfilerValue = 2;
    blend.MachineOrientation = 1;
    blend.RootDir = dir.Path();
    blend.ServiceDir = dir.Path();
    blend.Now = [] { return std::string("**"); };
    std::string name = folder.filename().string();
    std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    EXPECT_EQ(BlendProgram("Dorvenis", name, dir.Path() + "prog.", blend), 0);
    EXPECT_EQ(ReadFileText(dir.Path() + "prog.M1"), ReadFileText(folder / "expected.blended"));
    EXPECT_EQ(ReadFileText(dir.Path() + "Blend.txt"), ReadFileText(folder / "expected.Blend.txt"));
}

INSTANTIATE_TEST_SUITE_P(Corpus, AmadaGolden, testing::ValuesIn(CaseFolders(KIRVANA_AMADA_DATA)),
                         [](const testing::TestParamInfo<fs::path>& test) { return test.param.filename().string(); });

}  // namespace
}  // namespace kirvana

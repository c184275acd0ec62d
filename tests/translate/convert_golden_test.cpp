// The golden corpus: each folder of tests/data/convert holds a program "prog.org", any ".GSB"
// files it calls, an optional "machine" file naming the machine options that are on, and the
// expected "expected.dialect", "expected.A1", "expected.A2", "expected.sbs", "expected.M1" and
// "expected.M2".
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/core/temp_dir.h"
#include "translate/convert.h"

namespace kirvana {
namespace {

namespace fs = std::filesystem;

class ConvertGolden : public testing::TestWithParam<fs::path> {};

TEST_P(ConvertGolden, ExpectedFiles) {
    const fs::path folder = GetParam();
    TempDir dir;
    ConvertSettings settings;
    settings.ServiceDir = dir.Path();
    settings.CurrentDir = dir.Path();
    for (const auto& entry : fs::directory_iterator(folder)) {
        std::string name = entry.path().filename().string();
        if (name.starts_with("expected.")) continue;
        if (name == "machine") {
            std::istringstream options(ReadFileText(entry.path()));
            std::string option;
            while (options >> option) {
                if (option == "SwapArcWords") settings.SwapArcWords = true;
                else if (option == "ArcCentreIncremental") settings.ArcCentreIncremental = true;
                else if (option == "ProfilerArcSwap") settings.ProfilerArcSwap = true;
                else if (option == "ProfilerArcCentre") settings.ProfilerArcCentre = true;
                else FAIL() << "unknown machine option " << option;
            }
            continue;
        }
        dir.Write(name, ReadFileText(entry.path()));
    }
    std::int16_t dialect = -1;
    ConvertResult result = ConvertProgram(dir.Path() + "prog.", dialect, settings);
    ASSERT_EQ(result.Status, ConvertStatus::Done);
    EXPECT_EQ(std::to_string(dialect) + "\n", ReadFileText(folder / "expected.dialect"));
    for (const char* extension : {"A1", "A2", "sbs", "M1", "M2"}) {
        EXPECT_EQ(ReadFileText(dir.Path() + "prog." + extension), ReadFileText(folder / (std::string("expected.") + extension)))
            << folder.filename() << " " << extension;
    }
}

INSTANTIATE_TEST_SUITE_P(Corpus, ConvertGolden, testing::ValuesIn(CaseFolders(KIRVANA_CONVERT_DATA)),
                         [](const testing::TestParamInfo<fs::path>& test) { return test.param.filename().string(); });

}  // namespace
}  // namespace kirvana

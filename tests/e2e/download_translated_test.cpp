// A real part program from the demo installation, translated and blended, downloaded to the
// simulated card over the Ethernet link: the card stores exactly the filtered motion text.
#include <filesystem>

#include <gtest/gtest.h>

#include "controller/cardsim/card_simulator.h"
#include "controller/conversation.h"
#include "controller/download.h"
#include "controller/pmac_ethernet_link.h"
#include "core/config.h"
#include "core/paths.h"
#include "tests/core/temp_dir.h"
#include "translate/blend.h"
#include "translate/convert.h"

using namespace kirvana;

namespace {

// The body of a download work file: its lines without the OPEN PROG frame.
std::vector<std::string> Body(const std::string& workFile) {
    auto lines = ReadLines(workFile).value_or(std::vector<std::string>{});
    if (lines.size() < 4) return {};
    return std::vector<std::string>(lines.begin() + 3, lines.end() - 1);
}

void TranslateAndDownload(const std::string& program) {
    TempDir dir;
    const std::string demo = std::string(KIRVANA_SOURCE_DIR) + "/data/demo/";
    Directories dirs;
    dirs.RootDir = dir.Path();
    dirs.DataDir = demo + "Data/";
    dirs.ServiceDir = dir.Path();
    MachineData machine;
    ASSERT_FALSE(ReadMachineFiles(dirs, machine));
    std::filesystem::copy_file(program, dir.Path() + "Actvprg1.org");
    const std::string stem = dir.Path() + "Actvprg1.";

    std::int16_t dialect = -1;
    ConvertResult converted = ConvertProgram(stem, dialect, ConvertSettingsFrom(machine, dirs));
    ASSERT_EQ(converted.Status, ConvertStatus::Done);
    ASSERT_EQ(BlendProgram("Dorvenis", "TEST", stem, BlendSettingsFrom(machine, dirs)).CriticalCount, 0);

    CardSimulator sim;
    ASSERT_TRUE(sim.Start());
    PmacEthernetLink link(CardAddress{"127.0.0.1", sim.Port()}, 1000);
    std::vector<std::int32_t> faults;
    link.SetFaultHandler([&](std::int32_t n, const std::string&) { faults.push_back(n); });
    link.SetEnabled(true);
    CardState state;
    state.CardInUse = true;
    Conversation talk(&link, state, dir.Path());
    DownProgram(talk, dir.Path(), dir.Path(), 1);
    EXPECT_TRUE(faults.empty());

    // The work file holds the last program sent, PROG 3 from M2.
    EXPECT_EQ(sim.Program(3), Body(dir.Path() + "DownPrg.tmp"));
    ASSERT_TRUE(WriteDownloadFile(stem + "M1", 1, true, dir.Path() + "Check.tmp"));
    std::vector<std::string> main = Body(dir.Path() + "Check.tmp");
    EXPECT_FALSE(main.empty());
    EXPECT_EQ(sim.Program(1), main);
}

}  // namespace

TEST(DownloadTranslated, DemoPunchProgram) {
    TranslateAndDownload(std::string(KIRVANA_SOURCE_DIR) + "/data/demo/Programs/Dorvenis/PLATE01.prg");
}

TEST(DownloadTranslated, ProfileProgramWithBlendMarks) {
    TranslateAndDownload(std::string(KIRVANA_SOURCE_DIR) + "/tests/data/e2e/profile.prg");
}

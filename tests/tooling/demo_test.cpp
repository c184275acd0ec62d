// The demo installation's tooling files read by the rules, and written back unchanged.
#include <gtest/gtest.h>

#include "core/paths.h"
#include "tests/core/temp_dir.h"
#include "tooling/tooling.h"

using namespace kirvana;

namespace {

const std::string Demo = std::string(KIRVANA_SOURCE_DIR) + "/data/demo/";

class DemoTest : public ::testing::Test {
protected:
    void SetUp() override {
        dirs_.RootDir = Demo;
        dirs_.DataDir = Demo + "Data/";
        dirs_.SettingsDir = Demo + "Settings/";
        dirs_.ToolsDir = Demo + "Tools/";
        dirs_.ServiceDir = service_.Path();  // LastFile.txt goes to a scratch directory
        ASSERT_FALSE(ReadMachineFiles(dirs_, machine_));
        ASSERT_FALSE(ReadToolingData(dirs_, machine_, tooling_));
    }
    Directories dirs_;
    MachineData machine_;
    Tooling tooling_;
    TempDir service_;
};

}  // namespace

TEST_F(DemoTest, TurretOfTwentyStationsWithPlainAndAutoindexTypes) {
    ASSERT_EQ(machine_.MachineType, 12);
    ASSERT_EQ(tooling_.MachineTable.size(), 20u);
    int autoindex = 0;
    for (std::size_t i = 0; i < 20; ++i) {
        const Station& s = tooling_.MachineTable[i];
        EXPECT_EQ(s.TNumber, static_cast<int>(i) + 1);
        EXPECT_FALSE(s.TypeText.empty()) << i;
        if (s.Autoindex) ++autoindex;
    }
    EXPECT_EQ(autoindex, 2);
    EXPECT_EQ(tooling_.MachineTable[4].TypeText, "B AUTOINDEX 31.7 MM");
    EXPECT_EQ(PlasmaToolName(tooling_), "PLASMA TORCH");
    EXPECT_FLOAT_EQ(PlasmaStationType(tooling_).OffsetX, 250);
    EXPECT_EQ(tooling_.Punch.RamTimerCaption, "RAM TIMER (MS)");
    EXPECT_EQ(tooling_.Punch.RamTimerChoices.size(), 8u);
    EXPECT_EQ(TorchTypes(tooling_).size(), 3u);
    EXPECT_EQ(tooling_.SlotTables[1].size(), 20u);
}

TEST_F(DemoTest, ProgramTablesReadAndWriteBackUnchanged) {
    const std::string stem = Demo + "Programs/Dorvenis/PLATE01";
    StationTable table = tooling_.MachineTable;
    ProgramTurret header;
    ASSERT_TRUE(ReadProgramTurret(stem + ".trt", table, header));
    EXPECT_EQ(header.SettingWord, -1);
    int tools = 0;
    for (const auto& s : table) tools += s.Valid ? 1 : 0;
    EXPECT_EQ(tools, 18);
    EXPECT_EQ(table[4].Tool.Shape, 'F');
    EXPECT_EQ(table[16].Tool.Shape, 'S');
    EXPECT_EQ(table[9].Settings.FeedPercent, 70);

    TempDir out;
    ASSERT_TRUE(WriteProgramTurret(out.Path() + "PLATE01.trt", table, header));
    EXPECT_EQ(ReadLines(out.Path() + "PLATE01.trt"), ReadLines(stem + ".trt"));
    ASSERT_TRUE(ReadProgramSettings(stem + ".stg", table));
    ASSERT_TRUE(WriteProgramSettings(out.Path() + "PLATE01.stg", table));
    EXPECT_EQ(ReadLines(out.Path() + "PLATE01.stg"), ReadLines(stem + ".stg"));

    PlasmaSetting plasma = ProgramPlasmaSetting(dirs_, stem + ".pls");
    EXPECT_TRUE(PlasmaSettingIsSet(plasma));
    EXPECT_EQ(plasma.CutSpeed, 2500);
}

TEST_F(DemoTest, SettingSetsAllReadWithDescriptions) {
    for (const auto& name : SettingNames(dirs_, ".stg")) {
        PunchSetting s;
        std::string description;
        EXPECT_EQ(LoadPunchSetting(dirs_.SettingsDir + name + ".stg", description, s), SettingsLoad::Loaded) << name;
        EXPECT_FALSE(description.empty()) << name;
        EXPECT_GT(s.FeedPercent, 0) << name;
    }
    EXPECT_EQ(SettingNames(dirs_, ".stg").size(), 4u);
    for (const auto& name : SettingNames(dirs_, ".pls")) {
        PlasmaSetting p;
        std::string description;
        EXPECT_EQ(LoadPlasmaSetting(dirs_.SettingsDir + name + ".pls", description, p), SettingsLoad::Loaded) << name;
        EXPECT_TRUE(PlasmaSettingIsSet(p)) << name;
        EXPECT_NE(p.TorchType, NoWord) << name;
    }
    DefaultPlasma standard = DefaultPlasmaSetting(dirs_);
    EXPECT_EQ(standard.Name, "Default");
    EXPECT_EQ(standard.Setting.RapidSpeed, 20000);
}

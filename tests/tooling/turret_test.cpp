#include "tooling/turret.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "core/paths.h"
#include "tests/core/temp_dir.h"
#include "tooling/tooling.h"
#include "tooling/turret_unload.h"

using namespace kirvana;

namespace {

const char* MachineStn =
    "Station types\n"
    "1, \"A STATION 12.7\", 1, 0, 0, 0, 0\n"
    "2, \"B STATION 31.7\", 2, 0, 0, 0, 0\n"
    "3, \"C STATION 88.9, THICK TURRET\", 19, 0, 0, 0, 0\n"
    "4, \"B AUTOINDEX\", 20, 0.5, -0.25, 0, 1\n"
    "12, \"PLASMA TORCH\", 0, 150.5, -300, 12, 0\n"
    "******\n";

const char* MachineTrt = "1, 1, 1\n2, 2, 1\n3, 3, 2\n4, 4, 3\n5, 5, 4\n******\n";

MachineData Machine(std::int16_t type, std::int16_t stations) {
    MachineData machine;
    machine.MachineType = type;
    machine.HasTurret = type >= 10;
    machine.ProfilerKind = static_cast<std::int16_t>(type % 10);
    machine.StationCount = stations;
    return machine;
}

class TurretTest : public ::testing::Test {
protected:
    void SetUp() override { dir_.Write("Service/.keep", ""); }
    Directories Dirs() const {
        Directories dirs;
        dirs.RootDir = dir_.Path();
        dirs.DataDir = dir_.Path() + "Data/";
        dirs.SettingsDir = dir_.Path() + "Settings/";
        dirs.ServiceDir = dir_.Path() + "Service/";
        return dirs;
    }
    std::string LastFile() const {
        auto lines = ReadLines(dir_.Path() + "Service/LastFile.txt");
        return lines && !lines->empty() ? lines->front() : std::string();
    }
    Tooling ReadDemoTurret() {
        dir_.Write("Data/Machine.stn", MachineStn);
        dir_.Write("Data/Machine.trt", MachineTrt);
        Tooling tooling;
        EXPECT_FALSE(ReadToolingData(Dirs(), Machine(12, 5), tooling));
        return tooling;
    }
    TempDir dir_;
};

}  // namespace

TEST_F(TurretTest, StationFilesFillTheTablesOfMachineSlotsAndDialogue) {
    Tooling tooling = ReadDemoTurret();
    ASSERT_EQ(tooling.MachineTable.size(), 5u);
    const Station& fifth = tooling.MachineTable[4];
    EXPECT_EQ(fifth.TNumber, 5);
    EXPECT_EQ(fifth.TPosition, 5);
    EXPECT_EQ(fifth.LoadNumber, 5);
    EXPECT_EQ(fifth.TypeIndex, 4);
    EXPECT_EQ(fifth.TypeText, "B AUTOINDEX");
    EXPECT_EQ(fifth.TypeNumber, 20);
    EXPECT_EQ(fifth.Autoindex, TrueWord);
    EXPECT_FLOAT_EQ(fifth.OffsetX, 0.5f);
    EXPECT_FLOAT_EQ(fifth.OffsetY, -0.25f);
    EXPECT_EQ(fifth.Tool.Setting, 4);
    EXPECT_EQ(fifth.Tool.Station, 20);
    EXPECT_EQ(fifth.Tool.Extra2, 1);
    EXPECT_EQ(fifth.Valid, FalseWord);
    EXPECT_EQ(tooling.MachineTable[3].TypeText, "C STATION 88.9, THICK TURRET");
    EXPECT_EQ(tooling.MachineTable[3].Autoindex, FalseWord);
    EXPECT_EQ(tooling.Types[4].TypeWord, 1);
    for (int slot : {0, 1, 2}) {
        const StationTable& table = SlotTable(tooling, slot);
        ASSERT_EQ(table.size(), 5u) << slot;
        EXPECT_EQ(table[4].TypeText, "B AUTOINDEX") << slot;
    }
    EXPECT_EQ(LastFile(), dir_.Path() + "Data/Machine.trt");
}

TEST_F(TurretTest, ThePlasmaStationIsTheTypeTheMachineTypeNames) {
    Tooling tooling = ReadDemoTurret();
    EXPECT_EQ(tooling.PlasmaTypeIndex, 12);
    EXPECT_EQ(PlasmaToolName(tooling), "PLASMA TORCH");
    EXPECT_FLOAT_EQ(PlasmaStationType(tooling).OffsetX, 150.5f);
    ToolRecord plasma = MachinePlasmaTool(tooling);
    EXPECT_EQ(plasma.Shape, 'P');
    EXPECT_EQ(plasma.Setting, 12);
    EXPECT_EQ(plasma.Station, 0);
    EXPECT_EQ(plasma.Extra2, 1);
    EXPECT_EQ(DescribeTool(plasma, false), "PLASMA TORCH");
    EXPECT_EQ(TorchTypes(tooling), (std::vector<std::string>{"PLASMA TORCH", "PLASMA TORCH"}));
}

TEST_F(TurretTest, MachineStnIsRequired) {
    Tooling tooling;
    auto fault = ReadToolingData(Dirs(), Machine(12, 5), tooling);
    ASSERT_TRUE(fault);
    EXPECT_EQ(fault->File, dir_.Path() + "Data/Machine.stn");
    EXPECT_EQ(LastFile(), dir_.Path() + "Data/Machine.stn");
}

TEST_F(TurretTest, MachineTrtIsReadOnlyWithATurret) {
    dir_.Write("Data/Machine.stn", MachineStn);
    Tooling tooling;
    EXPECT_FALSE(ReadToolingData(Dirs(), Machine(2, 20), tooling));  // profiler alone: no Machine.trt
    EXPECT_EQ(tooling.MachineTable.size(), 1u);
    EXPECT_EQ(tooling.SlotTables[0].size(), 1u);
    auto fault = ReadToolingData(Dirs(), Machine(12, 20), tooling);
    ASSERT_TRUE(fault);
    EXPECT_EQ(fault->File, dir_.Path() + "Data/Machine.trt");
}

TEST_F(TurretTest, BadStationFilesAreFaultsNamingTheFile) {
    dir_.Write("Data/Machine.stn", "Types\n65, \"TOO FAR\", 1, 0, 0, 0, 0\n******\n");
    Tooling tooling;
    auto fault = ReadToolingData(Dirs(), Machine(12, 5), tooling);
    ASSERT_TRUE(fault);
    EXPECT_EQ(fault->File, dir_.Path() + "Data/Machine.stn");

    dir_.Write("Data/Machine.stn", "Types\n1, \"CUT SHORT\", 1, 0\n");
    EXPECT_TRUE(ReadToolingData(Dirs(), Machine(12, 5), tooling));
    dir_.Write("Data/Machine.stn", "Types\n1, \"BIG\", 99999, 0, 0, 0, 0\n******\n");
    EXPECT_TRUE(ReadToolingData(Dirs(), Machine(12, 5), tooling));

    // Without its end marker the file ends at its last whole type.
    dir_.Write("Data/Machine.stn", "Types\n1, \"A\", 1, 0, 0, 0, 0\n");
    dir_.Write("Data/Machine.trt", "1, 1, 65\n");
    fault = ReadToolingData(Dirs(), Machine(12, 5), tooling);
    ASSERT_TRUE(fault);
    EXPECT_EQ(fault->File, dir_.Path() + "Data/Machine.trt");
    EXPECT_NE(fault->Reason.find("0 to 64"), std::string::npos);
}

TEST_F(TurretTest, MachineTrtEndsAtTheMarkerOrAnEmptyFirstItem) {
    dir_.Write("Data/Machine.stn", MachineStn);
    dir_.Write("Data/Machine.trt", "1, 11, 1\n2, 12, 2\n, 3, 3\n4, 4, 4\n");
    Tooling tooling;
    ASSERT_FALSE(ReadToolingData(Dirs(), Machine(11, 4), tooling));
    ASSERT_EQ(tooling.MachineTable.size(), 4u);
    EXPECT_EQ(tooling.MachineTable[1].LoadNumber, 12);
    EXPECT_EQ(tooling.MachineTable[1].LoadPosition, 12);
    EXPECT_EQ(tooling.MachineTable[2].TNumber, 0);  // not given
    EXPECT_EQ(tooling.MachineTable[3].TypeText, "");
}

TEST_F(TurretTest, StationMapTurnsTNumbersIntoStations) {
    StationTable table(3);
    table[0].TNumber = 1;
    table[1].TNumber = 7;
    table[2].TNumber = 3;
    EXPECT_EQ(StationOfTNumber(table, 7), 2);
    EXPECT_EQ(StationOfTNumber(table, 3), 3);
    EXPECT_EQ(StationOfTNumber(table, 0), 0);    // below 1: the caller's warning
    EXPECT_EQ(StationOfTNumber(table, 40), 40);  // above the count: the caller's warning
}

TEST_F(TurretTest, AToolInATypeNineteenStationShowsAAndInTypeTwentyIdx) {
    Tooling tooling = ReadDemoTurret();
    StationTable& table = tooling.MachineTable;
    SetStationTool(table[3], "SQUARE 10 A30");  // type 19
    SetStationTool(table[4], "SQUARE 10 A30");  // type 20
    EXPECT_EQ(DescribeTool(table[3].Tool, false), "Square 10 a30");
    EXPECT_EQ(DescribeTool(table[4].Tool, false), "Square 10 idx30");
    EXPECT_EQ(TurretLine(table[4]), "Square 10 idx30, 100, 100, 0, 0, 0, 0");
}

TEST_F(TurretTest, ATrtLineWithAnEmptyToolLeavesTheStationEmptyAndKeepsTheSettings) {
    Tooling tooling = ReadDemoTurret();
    StationTable table = tooling.MachineTable;
    SetStationTool(table[1], "DIAMETER 10");
    dir_.Write("Prog.trt",
               "-1\n"
               "DIAMETER 5, 90, 80, 0.1, 0.2, 0.05, 3\n"
               ", 70, 60, 0.5, 0.6, 0.7, 8\n"
               "SQUARE 0.2, 100, 100, 0, 0, 0, 0\n"
               "Special HOOK, BIG a0, 50, 50, 0, 0, 0, 0\n"
               "Square 20 idx45, 100, 90, 0, 0, 0, 1\n"
               "4\n"
               "******\n");
    ProgramTurret header;
    ASSERT_TRUE(ReadProgramTurret(dir_.Path() + "Prog.trt", table, header));
    EXPECT_EQ(header.SettingWord, -1);
    ASSERT_TRUE(header.ActiveStation);
    EXPECT_EQ(*header.ActiveStation, 4);
    EXPECT_EQ(table[0].Valid, TrueWord);
    EXPECT_FLOAT_EQ(table[0].Tool.D1, 5);
    EXPECT_EQ(table[0].Settings.FeedPercent, 90);
    // The empty tool text: no tool, and the line's settings.
    EXPECT_EQ(table[1].Valid, FalseWord);
    EXPECT_EQ(table[1].ToolText, "");
    EXPECT_EQ(table[1].Settings.FeedPercent, 70);
    EXPECT_EQ(table[1].Settings.AccelPercent, 60);
    EXPECT_FLOAT_EQ(table[1].Settings.RamTimer, 8);
    // A tool text that isn't valid leaves the station empty too.
    EXPECT_TRUE(table[2].ToolText.empty());
    EXPECT_EQ(table[2].Valid, FalseWord);
    EXPECT_EQ(table[2].Tool.Valid, FalseWord);
    // A comma inside a Special's name stays in the name.
    EXPECT_EQ(table[3].Tool.Name, ToolName("HOOK, BIG"));
    EXPECT_EQ(table[4].Tool.Angle, 45);
    EXPECT_EQ(table[4].Tool.Station, 20);
}

TEST_F(TurretTest, ProgramTrtRoundTrip) {
    Tooling tooling = ReadDemoTurret();
    StationTable table = tooling.MachineTable;
    SetStationTool(table[0], "DIAMETER 10");
    SetStationTool(table[4], "RECTANGLE 20X5 IDX 90");
    table[0].Settings.PreDelay = 0.25f;
    ProgramTurret header;
    header.SettingWord = -1;
    header.ActiveStation = 5;
    ASSERT_TRUE(WriteProgramTurret(dir_.Path() + "Out.trt", table, header));
    EXPECT_EQ(*ReadLines(dir_.Path() + "Out.trt"),
              (std::vector<std::string>{"-1", "Diameter 10, 100, 100, 0.25, 0, 0, 0", ", 100, 100, 0, 0, 0, 0",
                                        ", 100, 100, 0, 0, 0, 0", ", 100, 100, 0, 0, 0, 0",
                                        "Rectangle 20x5 idx90, 100, 100, 0, 0, 0, 0", "5", "******"}));
    StationTable back = tooling.MachineTable;
    ProgramTurret backHeader;
    ASSERT_TRUE(ReadProgramTurret(dir_.Path() + "Out.trt", back, backHeader));
    EXPECT_EQ(backHeader.SettingWord, -1);
    EXPECT_EQ(backHeader.ActiveStation, std::optional<std::int16_t>(5));
    for (std::size_t i = 0; i < table.size(); ++i) {
        EXPECT_EQ(back[i].Valid, table[i].Valid) << i;
        EXPECT_TRUE(SameTool(back[i].Tool, table[i].Tool)) << i;
        EXPECT_EQ(back[i].Settings.PreDelay, table[i].Settings.PreDelay) << i;
    }
    // Without an active station the stations are followed by the marker.
    header.ActiveStation.reset();
    ASSERT_TRUE(WriteProgramTurret(dir_.Path() + "Out.trt", table, header));
    ASSERT_TRUE(ReadProgramTurret(dir_.Path() + "Out.trt", back, backHeader));
    EXPECT_FALSE(backHeader.ActiveStation);
    EXPECT_FALSE(ReadProgramTurret(dir_.Path() + "None.trt", back, backHeader));
}

TEST_F(TurretTest, ProgramStgCarriesEachToolsSettings) {
    Tooling tooling = ReadDemoTurret();
    StationTable table = tooling.MachineTable;
    SetStationTool(table[0], "DIAMETER 10");
    SetStationTool(table[1], "DIAMETER 10");
    SetStationTool(table[2], "SQUARE 20 A0");
    table[0].Settings.FeedPercent = 50;
    table[1].Settings.FeedPercent = 60;
    table[2].Settings.RamTimer = 4;
    ASSERT_TRUE(WriteProgramSettings(dir_.Path() + "Prog.stg", table));
    EXPECT_EQ((*ReadLines(dir_.Path() + "Prog.stg"))[0], "Diameter 10, 1, 50, 100, 0, 0, 0, 0");
    // Another table with the tools in other places: each takes its tool's settings, and
    // two stations of one tool and type take the first line.
    StationTable other = tooling.MachineTable;
    SetStationTool(other[3], "SQUARE 20 A0");
    SetStationTool(other[4], "DIAMETER 10");
    SetStationTool(other[0], "DIAMETER 10");
    ASSERT_TRUE(ReadProgramSettings(dir_.Path() + "Prog.stg", other));
    EXPECT_EQ(other[0].Settings.FeedPercent, 50);
    EXPECT_EQ(other[4].Settings.FeedPercent, 50);
    EXPECT_FLOAT_EQ(other[3].Settings.RamTimer, 4);
    EXPECT_EQ(other[1].Settings.FeedPercent, 100);  // no tool: untouched
}

TEST_F(TurretTest, DefiningAToolChangesTheStationOnlyWhenItDiffers) {
    Tooling tooling = ReadDemoTurret();
    StationTable& table = tooling.MachineTable;
    SetStationTool(table[4], "SQUARE 10 A0");
    ToolRecord same = table[4].Tool;
    same.Extra1 = 90;  // not compared
    EXPECT_FALSE(DefineStationTool(table, 5, same));
    ToolRecord edited;
    ParseToolText("SQUARE 12 A0", edited, false);
    auto change = DefineStationTool(table, 5, edited);
    ASSERT_TRUE(change);
    EXPECT_EQ(change->Station, 5);
    EXPECT_EQ(change->TNumber, 5);
    EXPECT_FLOAT_EQ(change->OldTool.D1, 10);
    EXPECT_FLOAT_EQ(change->NewTool.D1, 12);
    EXPECT_EQ(table[4].ToolText, "Square 12 idx0");
    EXPECT_EQ(table[4].Tool.Station, 20);
    // An invalid tool clears the station.
    ToolRecord invalid;
    ParseToolText("SQUARE 0.2", invalid, false);
    ASSERT_TRUE(DefineStationTool(table, 5, invalid));
    EXPECT_EQ(table[4].Valid, FalseWord);
    EXPECT_EQ(table[4].ToolText, "");
    EXPECT_FALSE(DefineStationTool(table, 6, edited));
}

TEST_F(TurretTest, CopyStationTableCopiesEveryField) {
    Tooling tooling = ReadDemoTurret();
    SetStationTool(tooling.MachineTable[2], "OBROUND 20X10 A90");
    tooling.MachineTable[2].Settings.InPosition = 0.3f;
    StationTable copy;
    CopyStationTable(tooling.MachineTable, copy);
    ASSERT_EQ(copy.size(), tooling.MachineTable.size());
    EXPECT_EQ(copy[2].ToolText, "OBROUND 20X10 A90");
    EXPECT_TRUE(SameTool(copy[2].Tool, tooling.MachineTable[2].Tool));
    EXPECT_EQ(copy[2].Tool.Setting, 2);
    EXPECT_FLOAT_EQ(copy[2].Settings.InPosition, 0.3f);
    EXPECT_EQ(copy[2].TypeText, "B STATION 31.7");
}

TEST_F(TurretTest, UnloadDoesNothingWithoutADrawingOrChanges) {
    ToolChange change;
    change.TNumber = 5;
    ParseToolText("SQUARE 12 A0", change.NewTool, false);
    int calls = 0;
    DrawingToolRewrite hook = [&](const std::string&, const std::vector<ToolChange>&) { return ++calls > 0; };
    TurretUnloadResult result = UnloadTurret(dir_.Path() + "Actvprg1.drw", dir_.Path() + "Numbers.tmp", {change}, hook);
    EXPECT_FALSE(result.ConvertAgain);
    EXPECT_EQ(calls, 0);
    dir_.Write("Actvprg1.drw", "records");
    result = UnloadTurret(dir_.Path() + "Actvprg1.drw", dir_.Path() + "Numbers.tmp", {}, hook);
    EXPECT_FALSE(result.ConvertAgain);
    EXPECT_EQ(calls, 0);
}

TEST_F(TurretTest, UnloadRewritesDrawingThroughTheHookAndTheToolLines) {
    dir_.Write("Actvprg1.drw", "records");
    dir_.Write("Numbers.tmp",
               "7:N0007 ! T5=Square 10 a0\n8:N0008 ! T05=Square 10 a0\n9:N0009 (T15=Square 10 a0)\n"
               "10:N0010 (T5=Square 10 a0)\n11:N0011 G01 X5\n");
    ToolChange change;
    change.Station = 5;
    change.TNumber = 5;
    ParseToolText("SQUARE 10 A0", change.OldTool, false);
    ParseToolText("SQUARE 12 A0", change.NewTool, false);
    std::vector<ToolChange> seen;
    DrawingToolRewrite hook = [&](const std::string& file, const std::vector<ToolChange>& changes) {
        EXPECT_EQ(file, dir_.Path() + "Actvprg1.drw");
        seen = changes;
        return true;
    };
    TurretUnloadResult result = UnloadTurret(dir_.Path() + "Actvprg1.drw", dir_.Path() + "Numbers.tmp", {change}, hook);
    EXPECT_TRUE(result.DrawingRewritten);
    EXPECT_TRUE(result.NumbersRewritten);
    EXPECT_TRUE(result.ConvertAgain);
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(
        *ReadLines(dir_.Path() + "Numbers.tmp"),
        (std::vector<std::string>{"7:N0007 ! T5=Square 12 a0", "8:N0008 ! T05=Square 12 a0",
                                  "9:N0009 (T15=Square 10 a0)", "10:N0010 (T5=Square 12 a0)", "11:N0011 G01 X5"}));
    EXPECT_FALSE(std::filesystem::exists(dir_.Path() + "Update.tmp"));
    // Without the hook the drawing stays as it is and the rest still runs.
    result = UnloadTurret(dir_.Path() + "Actvprg1.drw", dir_.Path() + "Numbers.tmp", {change}, nullptr);
    EXPECT_FALSE(result.DrawingRewritten);
    EXPECT_TRUE(result.ConvertAgain);
}

TEST(TurretCaptions, SettingsButtonFollowsTheProfiler) {
    EXPECT_EQ(SettingsButtonCaption(0), "TOOL &SETTINGS");
    EXPECT_EQ(SettingsButtonCaption(2), "&TOOL SETTINGS");
}

TEST_F(TurretTest, TurretFilesGoToTheSlotAndToTheProgramWhenItHasASource) {
    Tooling tooling = ReadDemoTurret();
    StationTable table = tooling.MachineTable;
    SetStationTool(table[0], "DIAMETER 8");
    ProgramTurret header;
    header.SettingWord = -1;
    header.ActiveStation = 1;
    const std::string stem = dir_.Path() + "Jobs/PART";
    dir_.Write("Jobs/.keep", "");
    ASSERT_TRUE(WriteTurretFiles(dir_.Path() + "Actvprg1.trt", stem, table, header));
    EXPECT_TRUE(std::filesystem::exists(dir_.Path() + "Actvprg1.trt"));
    EXPECT_FALSE(std::filesystem::exists(stem + ".trt"));  // no PART.prg
    dir_.Write("Jobs/PART.prg", "G90\nM30\n");
    ASSERT_TRUE(WriteTurretFiles(dir_.Path() + "Actvprg1.trt", stem, table, header));
    auto programTrt = ReadLines(stem + ".trt");
    ASSERT_TRUE(programTrt);
    EXPECT_EQ(programTrt->size(), 7u);  // setting word, five stations, marker
    EXPECT_EQ((*programTrt)[1], "Diameter 8, 100, 100, 0, 0, 0, 0");
    EXPECT_EQ(ReadLines(dir_.Path() + "Actvprg1.trt")->size(), 8u);  // with the active station
    EXPECT_EQ(ReadLines(stem + ".stg")->front(), "Diameter 8, 1, 100, 100, 0, 0, 0, 0");
}

TEST_F(TurretTest, TheDialoguesChoiceIsAStationOrThePlasmaTool) {
    Tooling tooling = ReadDemoTurret();
    SetStationTool(tooling.DialogueTable[4], "OBROUND 20X10 A0");
    TurretChoice choice = ChooseStation(tooling.DialogueTable, 5);
    EXPECT_EQ(choice.StationNo, 5);
    EXPECT_EQ(choice.Description, "Obround 20x10 idx0");
    EXPECT_EQ(choice.Tool.Shape, 'F');
    choice = ChoosePlasma(MachinePlasmaTool(tooling));
    EXPECT_EQ(choice.StationNo, -1);
    EXPECT_EQ(choice.Tool.Shape, 'P');
    EXPECT_EQ(choice.Description, "PLASMA TORCH");
}

// The tooling screens' actions on the active slot of a started demo installation: the turret's
// move and punch with their refusals, a tool defined for a station with its files, the punch
// and plasma settings applied with their files and card blocks, files that cannot be written,
// and the unload that rewrites the drawing's tools.
#include "system/tooling_commands.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "analysis/drawing_file.h"
#include "analysis/drawing_tools.h"
#include "core/paths.h"
#include "system/startup.h"
#include "tests/controller/poll_card.h"
#include "tests/support/demo_installation.h"
#include "tests/support/quiet_platform.h"

using namespace kirvana;

namespace {

const std::string RunningOrFeedhold = "\n\nWhile Machine Is Running Or In Feedhold !";

class ToolingCommandTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(Main(p, platform, nullptr, StartupSteps{}).Result, StartOutcome::Kind::Started);
        SelectOutcome outcome = SelectProgram(p, platform, nullptr, "Dorvenis", "PLATE01");
        ASSERT_TRUE(outcome.Selected) << outcome.Warning;
        // The commands from here go to the recording card.
        p.Card.CardInUse = true;
        card.SetEnabled(true);
    }
    Station& Row(int n) { return ToolingTable(p)[static_cast<std::size_t>(n - 1)]; }
    std::vector<std::string> Sent() const { return card.Exchanges; }
    std::string Text(const std::string& file) {
        auto lines = ReadLines(file);
        std::string text;
        if (lines)
            for (const auto& l : *lines) text += l + "\n";
        return text;
    }

    DemoInstallation dir;
    Process p;
    QuietPlatform platform;
    PollCard card;
    TurretEdits edits;
    Conversation talk{&card, p.Card, dir.Path(), &platform};
};

}  // namespace

TEST_F(ToolingCommandTest, StationRowsShowTheNumberAndTheToolText) {
    EXPECT_EQ(StationRowText(ToolingTable(p), 1), "01      ");
    ToolRecord tool;
    ASSERT_TRUE(ParseToolText("SQUARE 10 A45", tool, false));
    DefineTurretTool(p, edits, 1, tool);
    EXPECT_EQ(StationRowText(ToolingTable(p), 1), "01      Square 10 a45");
    EXPECT_EQ(StationRowText(ToolingTable(p), 0), "");
}

TEST_F(ToolingCommandTest, TurretMoveAndPunchSendTheirTexts) {
    EXPECT_FALSE(TurretPositionButton(p, talk, 2, 1));
    EXPECT_FALSE(TurretPositionButton(p, talk, 2, 2));
    EXPECT_FALSE(TurretPunchButton(p, talk, 2));
    EXPECT_EQ(Sent(), (std::vector<std::string>{"M802=12", "M802=2", "M802=2", "P1021=P1021|1024"}));
}

TEST_F(ToolingCommandTest, TurretMoveAndPunchAreRefusedWhileRunningInFeedholdOrInCycleAndSendNothing) {
    for (int state = 0; state < 3; ++state) {
        p.Running = state == 0;
        p.InFeedhold = state == 1;
        p.InCycle = state == 2;
        EXPECT_EQ(TurretPositionButton(p, talk, 2, 1), "Can Not Move Turret" + RunningOrFeedhold);
        EXPECT_EQ(TurretPositionButton(p, talk, 2, 2), "Can Not Move Turret" + RunningOrFeedhold);
        EXPECT_EQ(TurretPunchButton(p, talk, 2), "Can Not Punch" + RunningOrFeedhold);
    }
    EXPECT_TRUE(card.Exchanges.empty());
}

TEST_F(ToolingCommandTest, ADefinedToolIsWrittenToTheSlotAndBesideTheProgram) {
    ToolRecord tool;
    ASSERT_TRUE(ParseToolText("RECTANGLE 20X10A90", tool, false));
    ToolingChange change = DefineTurretTool(p, edits, 3, tool);
    EXPECT_TRUE(change.Changed);
    EXPECT_EQ(change.FileFault, "");
    EXPECT_TRUE(Row(3).Valid);
    EXPECT_EQ(Row(3).ToolText, "Rectangle 20x10 a90");
    ASSERT_EQ(edits.Changes.size(), 1u);
    EXPECT_EQ(edits.Changes[0].Station, 3);
    EXPECT_FALSE(edits.Changes[0].OldTool.IsValid());
    // The slot's table and the program's own table and settings.
    auto slotLines = ReadLines(SlotFile(p.Config.Dirs, 1, "trt"));
    ASSERT_TRUE(slotLines);
    EXPECT_EQ((*slotLines)[3], "Rectangle 20x10 a90, 100, 100, 0, 0, 0, 0");
    auto programLines = ReadLines("Programs/Dorvenis/PLATE01.trt");
    ASSERT_TRUE(programLines);
    EXPECT_EQ((*programLines)[3], "Rectangle 20x10 a90, 100, 100, 0, 0, 0, 0");
    EXPECT_NE(Text("Programs/Dorvenis/PLATE01.stg").find("Rectangle 20x10 a90, 1, 100"), std::string::npos);
    // The same tool again changes nothing; a second change keeps the first old tool.
    EXPECT_FALSE(DefineTurretTool(p, edits, 3, Row(3).Tool).Changed);
    ASSERT_TRUE(ParseToolText("RECTANGLE 30X10A0", tool, false));
    EXPECT_TRUE(DefineTurretTool(p, edits, 3, tool).Changed);
    ASSERT_EQ(edits.Changes.size(), 1u);
    EXPECT_FALSE(edits.Changes[0].OldTool.IsValid());
    EXPECT_EQ(DescribeTool(edits.Changes[0].NewTool, false), "Rectangle 30x10 a0");
    // An invalid tool empties the station.
    ToolRecord invalid;
    EXPECT_TRUE(DefineTurretTool(p, edits, 3, invalid).Changed);
    EXPECT_FALSE(Row(3).Valid);
    EXPECT_EQ(StationRowText(ToolingTable(p), 3), "03      ");
}

TEST_F(ToolingCommandTest, ATableThatCannotBeWrittenIsSaidAndTheOldFileStaysWhole) {
    const std::string slotTrt = SlotFile(p.Config.Dirs, 1, "trt");
    const std::string before = Text(slotTrt);
    ASSERT_FALSE(before.empty());
    // The temporary name taken by a directory: the new table cannot be written.
    std::filesystem::create_directory(slotTrt + ".tmp");
    ToolRecord tool;
    ASSERT_TRUE(ParseToolText("DIAMETER 10", tool, false));
    ToolingChange change = DefineTurretTool(p, edits, 1, tool);
    EXPECT_TRUE(change.Changed);
    EXPECT_EQ(change.FileFault, "File Fault : " + slotTrt);
    EXPECT_EQ(Text(slotTrt), before);
    std::filesystem::remove(slotTrt + ".tmp");
    // The program's settings file, the same.
    const std::string stg = "./Programs/Dorvenis/PLATE01.stg";
    const std::string stgBefore = Text(stg);
    std::filesystem::create_directory(stg + ".tmp");
    change = ApplyTurretSettings(p, talk, 1, PunchSetting{50, 60, 0.1F, 0.2F, 0.3F, 4});
    EXPECT_EQ(change.FileFault, "File Fault : " + stg);
    EXPECT_EQ(Text(stg), stgBefore);
    // The plasma sets.
    const std::string pls = SlotFile(p.Config.Dirs, 1, "pls");
    const std::string plsBefore = Text(pls);
    ASSERT_FALSE(plsBefore.empty());
    std::filesystem::create_directory(pls + ".tmp");
    change = ApplyProgramPlasma(p, talk, "Thin", PlasmaSetting{});
    EXPECT_EQ(change.FileFault, "File Fault : " + pls);
    EXPECT_EQ(Text(pls), plsBefore);
}

TEST_F(ToolingCommandTest, SettingsAppliedToTheWorkingStationGoToTheCard) {
    ToolRecord tool;
    ASSERT_TRUE(ParseToolText("DIAMETER 10", tool, false));
    DefineTurretTool(p, edits, 1, tool);
    ASSERT_EQ(p.Slots[0].ActiveStation, 1);
    PunchSetting setting{50, 60, 0.1F, 0.2F, 0.3F, 4};
    ToolingChange change = ApplyTurretSettings(p, talk, 1, setting);
    EXPECT_TRUE(change.Changed);
    EXPECT_EQ(change.FileFault, "");
    EXPECT_EQ(Row(1).Settings.FeedPercent, 50);
    EXPECT_EQ(Row(2).Settings.FeedPercent, 100);
    EXPECT_EQ(Sent(), (std::vector<std::string>{"Q49=1", "M844=0", "M845=0", "M846=0", "Q19=50", "Q18=60", "Q20=0.1",
                                                "Q21=0.2", "Q22=0.3", "Q23=4", "%50"}));
    auto slotLines = ReadLines(SlotFile(p.Config.Dirs, 1, "trt"));
    ASSERT_TRUE(slotLines);
    EXPECT_EQ((*slotLines)[1], "Diameter 10, 50, 60, 0.1, 0.2, 0.3, 4");
    // Another station: its row and files, nothing to the card.
    card.Exchanges.clear();
    ApplyTurretSettings(p, talk, 4, setting);
    EXPECT_EQ(Row(4).Settings.AccelPercent, 60);
    EXPECT_TRUE(Sent().empty());
    EXPECT_EQ((*ReadLines(SlotFile(p.Config.Dirs, 1, "trt")))[4], ", 50, 60, 0.1, 0.2, 0.3, 4");
    // All stations: the working one among them.
    ApplyTurretSettings(p, talk, 0, PunchSetting{});
    for (const Station& s : ToolingTable(p)) EXPECT_EQ(s.Settings.FeedPercent, 100);
    EXPECT_EQ(Sent().size(), 11u);
    // A station outside the table changes nothing.
    EXPECT_FALSE(ApplyTurretSettings(p, talk, 99, setting).Changed);
}

TEST_F(ToolingCommandTest, PlasmaSettingsAreTheProgramsWrittenBesideItAndSent) {
    PlasmaSetting s{20000, 15000, 500, 750, 1.5F, 2.5F, 150, 1.2F, 0.5F, 2};
    ToolingChange change = ApplyProgramPlasma(p, talk, "Thin sheet", s);
    EXPECT_TRUE(change.Changed);
    EXPECT_EQ(change.FileFault, "");
    EXPECT_EQ(p.Slots[0].PlasmaSettings.CutSpeed, 15000);
    EXPECT_EQ(Sent(), (std::vector<std::string>{"P101=20000", "P102=15000", "P103=500", "P104=750", "P105=1.5",
                                                "P106=2.5", "P107=150", "P108=1", "P109=0", "P110=2"}));
    // A profiler of another kind keeps the set, and the card hears nothing of it.
    card.Exchanges.clear();
    p.Config.Machine.ProfilerKind = 1;
    ApplyProgramPlasma(p, talk, "Thin sheet", s);
    EXPECT_TRUE(Sent().empty());
    for (const std::string& file : {SlotFile(p.Config.Dirs, 1, "pls"), std::string("Programs/Dorvenis/PLATE01.pls")}) {
        std::string description;
        PlasmaSetting read;
        EXPECT_EQ(LoadPlasmaSetting(file, description, read), SettingsLoad::Loaded) << file;
        EXPECT_EQ(description, "Thin sheet");
        EXPECT_EQ(read.FreezeSpeed, 750);
        EXPECT_FLOAT_EQ(read.Kerf, 1.2F);
    }
}

TEST_F(ToolingCommandTest, AnEmptySlotWritesNoFiles) {
    ClearSlot(p, 1);
    ToolRecord tool;
    ASSERT_TRUE(ParseToolText("DIAMETER 10", tool, false));
    EXPECT_TRUE(DefineTurretTool(p, edits, 1, tool).Changed);
    ApplyTurretSettings(p, talk, 1, PunchSetting{});
    ApplyProgramPlasma(p, talk, "x", PlasmaSetting{});
    for (const char* e : {"trt", "pls"}) EXPECT_FALSE(FileExists(SlotFile(p.Config.Dirs, 1, e))) << e;
    EXPECT_EQ(ToolingProgramStem(p), "");
}

TEST_F(ToolingCommandTest, LeavingTheTurretGivesTheDrawingsHitsTheNewTool) {
    const std::string drawing = SlotFile(p.Config.Dirs, 1, "drw");
    auto stationRecords = [&](int station, const char* description) {
        DrawingFile file;
        EXPECT_TRUE(file.Open(drawing, true));
        int count = 0;
        for (std::int32_t n = 2; n <= file.LastReadable(); ++n) {
            EntityRec rec;
            file.Get(n, rec);
            if (rec.StationNo == station && DescribeTool(rec.Tool, false) == description) ++count;
        }
        return count;
    };
    const int hitsOfOne = stationRecords(1, "");
    ASSERT_GT(hitsOfOne, 0);
    ToolRecord tool;
    ASSERT_TRUE(ParseToolText("DIAMETER 10", tool, false));
    DefineTurretTool(p, edits, 1, tool);
    TurretUnloadResult result = LeaveTurret(p, platform, nullptr, edits).Unload;
    EXPECT_TRUE(result.DrawingRewritten);
    EXPECT_TRUE(edits.Changes.empty());
    EXPECT_EQ(stationRecords(1, "Diameter 10"), hitsOfOne);
    EXPECT_EQ(stationRecords(1, ""), 0);
    // Without changes nothing happens.
    TurretLeave unchanged = LeaveTurret(p, platform, nullptr, edits);
    EXPECT_FALSE(unchanged.Unload.DrawingRewritten);
    EXPECT_FALSE(unchanged.Conversion);
}

TEST_F(ToolingCommandTest, ADrawingThatCannotBeRewrittenStaysWhole) {
    const std::string drawing = SlotFile(p.Config.Dirs, 1, "drw");
    const std::string before = Text(drawing);
    std::filesystem::create_directory(drawing + ".tmp");
    ToolRecord tool;
    ASSERT_TRUE(ParseToolText("DIAMETER 10", tool, false));
    DefineTurretTool(p, edits, 1, tool);
    EXPECT_FALSE(RewriteDrawingTools(drawing, edits.Changes));
    EXPECT_EQ(Text(drawing), before);
    // A change no record uses leaves the drawing as it is.
    std::filesystem::remove(drawing + ".tmp");
    ToolChange unused;
    unused.Station = 19;
    ASSERT_TRUE(ParseToolText("DIAMETER 3", unused.OldTool, false));
    EXPECT_FALSE(RewriteDrawingTools(drawing, {unused}));
    EXPECT_EQ(Text(drawing), before);
}

TEST(SettingTexts, BoxesAreReadAsTheFilesAre) {
    PunchSetting punch = PunchSettingFromTexts({"50", "60%", "0.25", "x", "1.5", "3"});
    EXPECT_EQ(punch.FeedPercent, 50);
    EXPECT_EQ(punch.AccelPercent, 60);
    EXPECT_FLOAT_EQ(punch.PreDelay, 0.25F);
    EXPECT_FLOAT_EQ(punch.PostDelay, 0);
    EXPECT_FLOAT_EQ(punch.RamTimer, 3);
    EXPECT_EQ(PunchSettingFromTexts({"70000"}).FeedPercent, 0);
    EXPECT_EQ(PunchSettingFromTexts({}).AccelPercent, 100);
    PlasmaSetting plasma =
        PlasmaSettingFromTexts(PlasmaSettingTexts({20000, 15000, 500, 750, 1.5F, 2.5F, 150, 1.2F, 0.5F, 2}));
    EXPECT_EQ(plasma.CutSpeed, 15000);
    EXPECT_FLOAT_EQ(plasma.Kerf, 1.2F);
    EXPECT_EQ(plasma.TorchType, 2);
    EXPECT_FALSE(PlasmaSettingIsSet(PlasmaSettingFromTexts({})));
}

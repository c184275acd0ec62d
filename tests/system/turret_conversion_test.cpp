// Leaving the turret screen after a tool change converts the active slot's program again with
// the slot's own table: the drawing's records of the station carry the new tool with its
// outline, the slot's and the program's tool files are written anew, the card gets the motion
// programs, and the plot is redrawn. A plain selection takes the machine's table instead.
#include <filesystem>

#include <gtest/gtest.h>

#include "analysis/drawing_file.h"
#include "analysis/tool_outline.h"
#include "core/paths.h"
#include "system/startup.h"
#include "system/tooling_commands.h"
#include "tests/controller/poll_card.h"
#include "tests/support/demo_installation.h"
#include "tests/support/quiet_platform.h"

using namespace kirvana;

namespace {

// The quiet platform that also counts the redraws of each slot's plot.
struct RedrawPlatform : QuietPlatform {
    std::array<int, 2> Redraws{};
    void RedrawSlotPlot(int slot) override { ++Redraws[static_cast<std::size_t>(slot - 1)]; }
};

class TurretConversionTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(Main(p, platform, nullptr, StartupSteps{}).Result, StartOutcome::Kind::Started);
        SelectOutcome outcome = SelectProgram(p, platform, nullptr, "Dorvenis", "PLATE01");
        ASSERT_TRUE(outcome.Selected) << outcome.Warning;
        p.Card.CardInUse = true;
        card.SetEnabled(true);
        platform.Redraws = {};
    }
    // The drawing's records of a station, after record 1.
    std::vector<EntityRec> StationRecords(int station) {
        std::vector<EntityRec> records;
        DrawingFile file;
        EXPECT_TRUE(file.Open(SlotFile(p.Config.Dirs, 1, "drw"), true));
        for (std::int32_t n = 2; n <= file.LastReadable(); ++n) {
            EntityRec rec;
            EXPECT_TRUE(file.Get(n, rec));
            if (rec.StationNo == station) records.push_back(rec);
        }
        return records;
    }
    std::string Text(const std::string& file) {
        std::string text;
        if (auto lines = ReadLines(file))
            for (const auto& line : *lines) text += line + "\n";
        return text;
    }
    int Downloads() const {
        int n = 0;
        for (const std::string& exchange : card.Exchanges) n += exchange.starts_with("FILE ");
        return n;
    }

    DemoInstallation dir;
    Process p;
    RedrawPlatform platform;
    PollCard card;
    TurretEdits edits;
};

}  // namespace

TEST_F(TurretConversionTest, LeavingTheTurretConvertsTheProgramWithTheToolsJustDefined) {
    // Station 1 is empty on the demo machine: PLATE01's T1 hits have no tool yet.
    const std::vector<EntityRec> before = StationRecords(1);
    ASSERT_FALSE(before.empty());
    for (const EntityRec& rec : before) ASSERT_FALSE(rec.Tool.IsValid());
    ToolRecord tool;
    ASSERT_TRUE(ParseToolText("DIAMETER 10", tool, false));
    ASSERT_TRUE(DefineTurretTool(p, edits, 1, tool).Changed);
    // The tool files must come from the conversion itself.
    const std::string programStem = p.Config.Dirs.ProgramRoot + "Dorvenis/PLATE01";
    for (const std::string& file : {SlotFile(p.Config.Dirs, 1, "trt"), programStem + ".stg"})
        ASSERT_TRUE(std::filesystem::remove(file)) << file;

    TurretLeave left = LeaveTurret(p, platform, &card, edits);
    EXPECT_TRUE(left.Unload.DrawingRewritten);
    EXPECT_TRUE(left.Unload.ConvertAgain);
    ASSERT_TRUE(left.Conversion);
    EXPECT_TRUE(left.Conversion->Selected) << left.Conversion->Warning;
    EXPECT_TRUE(platform.Warnings.empty());
    EXPECT_TRUE(p.Slots[0].Present);

    // The slot kept its table, and the drawing made anew carries the tool in every hit of the
    // station, each with the outline of that tool.
    EXPECT_EQ(DescribeTool(ToolingTable(p)[0].Tool, false), "Diameter 10");
    const std::vector<EntityRec> after = StationRecords(1);
    ASSERT_EQ(after.size(), before.size());
    for (const EntityRec& rec : after) {
        EXPECT_EQ(DescribeTool(rec.Tool, false), "Diameter 10");
        EntityRec outlined = rec;
        ToolOutline(outlined);
        EXPECT_FLOAT_EQ(rec.ClearBox.Low.X, outlined.ClearBox.Low.X);
        EXPECT_FLOAT_EQ(rec.ClearBox.High.Y, outlined.ClearBox.High.Y);
        EXPECT_LT(rec.ClearBox.Low.X, rec.ClearBox.High.X);
        EXPECT_LT(rec.ClearBox.Low.Y, rec.ClearBox.High.Y);
    }
    // The tool files written by the conversion.
    EXPECT_NE(Text(SlotFile(p.Config.Dirs, 1, "trt")).find("Diameter 10, "), std::string::npos);
    EXPECT_NE(Text(programStem + ".stg").find("Diameter 10, "), std::string::npos);
    // The card got both motion programs, then the slot's blocks; the plot of slot 1 redrawn.
    EXPECT_EQ(Downloads(), 2);
    EXPECT_EQ(card.Count("M811=1"), 1);
    EXPECT_EQ(card.Count("M869=0"), 1);
    EXPECT_EQ(platform.Redraws, (std::array<int, 2>{1, 0}));
    EXPECT_TRUE(edits.Changes.empty());
}

TEST_F(TurretConversionTest, APlainSelectionTakesTheMachinesTableOverTheToolsDefined) {
    ToolRecord tool;
    ASSERT_TRUE(ParseToolText("DIAMETER 10", tool, false));
    ASSERT_TRUE(DefineTurretTool(p, edits, 1, tool).Changed);
    ASSERT_TRUE(SelectProgram(p, platform, &card, "Dorvenis", "PLATE01").Selected);
    EXPECT_FALSE(ToolingTable(p)[0].Tool.IsValid());
    for (const EntityRec& rec : StationRecords(1)) EXPECT_FALSE(rec.Tool.IsValid());
}

TEST_F(TurretConversionTest, AConversionThatIsRefusedShowsWhyAndTheOldProgramStays) {
    ToolRecord tool;
    ASSERT_TRUE(ParseToolText("DIAMETER 10", tool, false));
    ASSERT_TRUE(DefineTurretTool(p, edits, 1, tool).Changed);
    p.Running = true;
    TurretLeave left = LeaveTurret(p, platform, &card, edits);
    ASSERT_TRUE(left.Conversion);
    EXPECT_FALSE(left.Conversion->Selected);
    EXPECT_EQ(platform.Warnings,
              (std::vector<std::string>{"Can Not Select New Program\n\nWhile Machine Is Running !"}));
    EXPECT_TRUE(p.Slots[0].Present);
    EXPECT_EQ(Downloads(), 0);
    // The drawing took the tool at step 1 all the same.
    for (const EntityRec& rec : StationRecords(1)) EXPECT_EQ(DescribeTool(rec.Tool, false), "Diameter 10");
}

TEST_F(TurretConversionTest, AnEmptySlotIsNotConverted) {
    ClearSlot(p, 1);
    SelectOutcome outcome = ConvertSlotAgain(p, platform, &card);
    EXPECT_FALSE(outcome.Selected);
    EXPECT_TRUE(platform.Warnings.empty());
    EXPECT_TRUE(card.Exchanges.empty());
}

TEST_F(TurretConversionTest, AHandMadeNumbersFileTakesTheNewToolBeforeTheConversion) {
    const std::string numbers = p.Config.Dirs.RootDir + "Numbers.tmp";
    ASSERT_TRUE(WriteLines(numbers, {"3:N0003 ! T5=Square 10 a0", "4:N0004 ! T05=Square 10 a0", "5:N0005 ! T1=Round 5",
                                     "6:N0006 G01 X5"}));
    ToolRecord tool;
    ASSERT_TRUE(ParseToolText("OBROUND 20X10 A90", tool, false));
    ASSERT_TRUE(DefineTurretTool(p, edits, 5, tool).Changed);
    TurretLeave left = LeaveTurret(p, platform, &card, edits);
    EXPECT_TRUE(left.Unload.NumbersRewritten);
    ASSERT_TRUE(left.Conversion);
    EXPECT_TRUE(left.Conversion->Selected) << left.Conversion->Warning;
    const std::string description = DescribeTool(ToolingTable(p)[4].Tool, false);
    EXPECT_EQ(Text(numbers), "3:" + description + "\n4:" + description + "\n5:N0005 ! T1=Round 5\n6:N0006 G01 X5\n");
    EXPECT_FALSE(std::filesystem::exists(p.Config.Dirs.RootDir + "Update.tmp"));
    for (const EntityRec& rec : StationRecords(5)) EXPECT_EQ(DescribeTool(rec.Tool, false), description);
}

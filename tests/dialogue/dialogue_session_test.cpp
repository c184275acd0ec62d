// The dialogue's work files: start, leave and clear, the cursor, insert and edit through the
// `.tmp` copy, delete, and the Multi-Part with its `.prw`.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "analysis/drawing_file.h"
#include "core/paths.h"
#include "tests/dialogue/dialogue_fixture.h"

namespace kirvana {
namespace {

using DialogueSessionTest = DialogueFixture;

std::vector<std::int16_t> Kinds(DialogueSession& session) {
    std::vector<std::int16_t> kinds;
    for (std::int32_t n = 1; n <= session.State.EntityCount; ++n) kinds.push_back(session.Entity(n)->Kind);
    return kinds;
}

TEST_F(DialogueSessionTest, AStartWithoutWorkFilesIsAnEmptyDialogue) {
    EXPECT_TRUE(session.Start().empty());
    EXPECT_EQ(session.State.EntityCount, 1);
    EXPECT_FALSE(session.State.SheetDefined);
    EXPECT_TRUE(FileExists(session.WorkFile("drw")));
    EXPECT_EQ(session.CursorCountText(), "1 / 1");
    EXPECT_EQ(session.CursorDescription(), "Beginning");
}

TEST_F(DialogueSessionTest, PressingTwoWithNoSheetDoesNothing) {
    session.Start();
    EXPECT_FALSE(session.ScreenAllowed(ScreenOfButton(2)));
    EXPECT_TRUE(session.ScreenAllowed(ScreenOfButton(1)));
    EXPECT_EQ(ScreenOfButton(2), DialogueScreen::Punch);
    StartWithSheet();
    EXPECT_TRUE(session.ScreenAllowed(ScreenOfButton(2)));
}

TEST_F(DialogueSessionTest, EntitiesAreInsertedAfterTheCursor) {
    StartWithSheet();
    Add(ComposePunch(10, 10, 0, 0, ToolOf(1), session.Last(), session.Limits()));
    Add(ComposePunch(20, 10, 0, 0, ToolOf(1), session.Last(), session.Limits()));
    EXPECT_EQ(session.State.EntityCount, 3);
    EXPECT_EQ(session.State.EntityCursor, 3);
    EXPECT_FLOAT_EQ(session.State.LastX, 20);
    // Back to the first punch, then a dwell goes in between.
    session.MoveCursor(-1);
    Add(ComposeDwell(2, session.Last()));
    EXPECT_EQ(Kinds(session), (std::vector<std::int16_t>{100, 210, 311, 210}));
    EXPECT_EQ(session.State.EntityCursor, 3);
    EXPECT_EQ(session.CursorCountText(), "3 / 4");
    EXPECT_EQ(session.CursorDescription(), "Program Dwell");
    EXPECT_FALSE(FileExists(session.WorkFile("tmp")));
    // Record 1 counts the records.
    DrawingFile file;
    ASSERT_TRUE(file.Open(session.WorkFile("drw"), true));
    EXPECT_EQ(file.Count(), 4);
}

TEST_F(DialogueSessionTest, TheCursorIsClamped) {
    StartWithSheet();
    for (int i = 0; i < 3; ++i) Add(ComposePunch(10.0 * i, 10, 0, 0, ToolOf(1), session.Last(), session.Limits()));
    session.MoveCursor(10);
    EXPECT_EQ(session.State.EntityCursor, 4);
    session.MoveCursor(-10);
    EXPECT_EQ(session.State.EntityCursor, 1);
    session.CursorEnd();
    EXPECT_EQ(session.State.EntityCursor, 4);
    session.CursorHome();
    EXPECT_EQ(session.State.EntityCursor, 1);
}

TEST_F(DialogueSessionTest, EditReplacesTheRecordAtTheCursor) {
    StartWithSheet();
    Add(ComposePunch(10, 10, 0, 0, ToolOf(1), session.Last(), session.Limits()));
    Add(ComposeDwell(1, session.Last()));
    session.MoveCursor(-1);
    EXPECT_EQ(session.Edit(), DialogueScreen::Punch);
    EXPECT_TRUE(session.State.EditMode);
    Add(ComposePunch(55, 66, 0, 0, ToolOf(2), session.Last(), session.Limits()));
    EXPECT_FALSE(session.State.EditMode);
    EXPECT_EQ(session.State.EntityCount, 3);
    EXPECT_FLOAT_EQ(session.Entity(2)->Points.Position.X, 55);
    EXPECT_EQ(session.Entity(2)->StationNo, 2);
    // Edit on "Beginning" is refused.
    session.CursorHome();
    EXPECT_EQ(session.Edit(), DialogueScreen::None);
    EXPECT_FALSE(session.State.EditMode);
}

TEST_F(DialogueSessionTest, DeleteLeavesTheRecordOutAndMovesTheCursorBack) {
    StartWithSheet();
    Add(ComposePunch(10, 10, 0, 0, ToolOf(1), session.Last(), session.Limits()));
    Add(ComposeDwell(1, session.Last()));
    Add(ComposePunch(30, 10, 0, 0, ToolOf(1), session.Last(), session.Limits()));
    session.MoveCursor(-1);
    ASSERT_TRUE(session.DeleteAtCursor());
    EXPECT_EQ(Kinds(session), (std::vector<std::int16_t>{100, 210, 210}));
    EXPECT_EQ(session.State.EntityCursor, 2);
    EXPECT_FALSE(FileExists(session.WorkFile("tmp")));
    session.CursorHome();
    EXPECT_FALSE(session.DeleteAtCursor());  // the Sheet stays
}

TEST_F(DialogueSessionTest, DeletingTheMultiPartGivesBackThePartWithItsOwnSheet) {
    StartWithSheet(300, 200);
    Add(ComposePunch(10, 10, 0, 0, ToolOf(1), session.Last(), session.Limits()));
    Add(ComposePunch(50, 10, 0, 0, ToolOf(2), session.Last(), session.Limits()));
    NestFields nest{2500, 1000, 3, 2, 10, 10, 20, 20, 0};
    Composed multi = session.ConfirmMultiPart(nest);
    ASSERT_TRUE(multi.Ok) << multi.Message;
    EXPECT_TRUE(session.State.MultiPartMode);
    EXPECT_TRUE(FileExists(session.WorkFile("prw")));
    EXPECT_EQ(Kinds(session), (std::vector<std::int16_t>{100, 500}));
    EXPECT_FLOAT_EQ(session.State.SheetX, 2500);
    EXPECT_FLOAT_EQ(multi.Record.Values[7], 300);
    EXPECT_FLOAT_EQ(multi.Record.Values[11], 310);
    // Punch and the others are refused in this mode.
    EXPECT_FALSE(session.ScreenAllowed(DialogueScreen::Punch));
    EXPECT_FALSE(session.ScreenAllowed(DialogueScreen::Dwell));
    ASSERT_TRUE(session.DeleteAtCursor());
    EXPECT_FALSE(session.State.MultiPartMode);
    EXPECT_FALSE(FileExists(session.WorkFile("prw")));
    EXPECT_EQ(Kinds(session), (std::vector<std::int16_t>{100, 210, 210}));
    EXPECT_FLOAT_EQ(session.State.SheetX, 300);
    EXPECT_FLOAT_EQ(session.State.SheetY, 200);
    EXPECT_FLOAT_EQ(session.State.ClampPos[0], 200);
}

TEST_F(DialogueSessionTest, LeaveAndStartAgainRestoresTheDialogue) {
    StartWithSheet();
    session.State.ProgName = "PART7";
    session.State.ProgDir = "Dorvenis";
    session.State.ProgText = "A BRACKET";
    Add(ComposePunch(10, 10, 0, 0, ToolOf(1), session.Last(), session.Limits()));
    ASSERT_TRUE(session.Leave());
    EXPECT_TRUE(FileExists(session.WorkFile("cfg")));
    EXPECT_TRUE(FileExists(session.WorkFile("trt")));
    EXPECT_EQ(*ReadLines(session.WorkFile("cfg")),
              (std::vector<std::string>{"PART7", "Dorvenis", "A BRACKET", "******"}));

    Tooling other;
    other.MachineTable = tooling.MachineTable;
    for (Station& s : other.MachineTable) s.Valid = FalseWord;  // the machine's table has no tools
    DialogueSession again(dirs, machine, other);
    EXPECT_TRUE(again.Start().empty());
    EXPECT_EQ(again.State.ProgName, "PART7");
    EXPECT_EQ(again.State.MaterialText, "MILD STEEL 2MM");
    EXPECT_TRUE(again.State.SheetDefined);
    EXPECT_EQ(again.State.EntityCount, 2);
    EXPECT_FLOAT_EQ(again.State.LastX, 10);
    EXPECT_TRUE(SameTool(again.Table()[0].Tool, tooling.DialogueTable[0].Tool));
    EXPECT_NE(again.Table()[0].Valid, FalseWord);
}

TEST_F(DialogueSessionTest, ADamagedDrawingStartsAnEmptyDialogueWithANotice) {
    StartWithSheet();
    session.State.ProgName = "X";
    ASSERT_TRUE(session.Leave());
    {
        std::ofstream broken(session.WorkFile("drw"), std::ios::binary | std::ios::trunc);
        broken << "not a drawing";
    }
    auto notice = session.Start();
    ASSERT_EQ(notice.size(), 2u);
    EXPECT_EQ(notice[0], "Dialogue Files Damaged !");
    EXPECT_EQ(session.State.EntityCount, 1);
    EXPECT_FALSE(session.State.SheetDefined);
}

TEST_F(DialogueSessionTest, ADamagedCfgStartsAnEmptyDialogueWithANotice) {
    StartWithSheet();
    ASSERT_TRUE(session.Leave());
    {
        std::ofstream broken(session.WorkFile("cfg"), std::ios::trunc);
        broken << "only one line\n";
    }
    EXPECT_FALSE(session.Start().empty());
    EXPECT_FALSE(session.State.SheetDefined);
}

TEST_F(DialogueSessionTest, ClearEmptiesTheDrawingAndTheNames) {
    StartWithSheet();
    session.State.ProgName = "P";
    Add(ComposePunch(10, 10, 0, 0, ToolOf(1), session.Last(), session.Limits()));
    ASSERT_TRUE(session.Clear());
    EXPECT_EQ(session.State.EntityCount, 1);
    EXPECT_FALSE(session.State.SheetDefined);
    EXPECT_TRUE(session.State.ProgName.empty());
    EXPECT_EQ(session.Entity(1)->Kind, 100);
}

// Records what the dialogue asks of the plot.
class RecordingPlot : public DialoguePlotHook {
public:
    std::vector<std::string> Calls;
    void EraseEntity(const EntityRec& rec) override { Calls.push_back("erase " + std::to_string(rec.Kind)); }
    void DrawEntity(const EntityRec& rec) override { Calls.push_back("draw " + std::to_string(rec.Kind)); }
    void RedrawDrawing() override { Calls.push_back("redraw"); }
    void MoveHighlight(std::int32_t from, std::int32_t to) override {
        Calls.push_back("highlight " + std::to_string(from) + " " + std::to_string(to));
    }
};

TEST_F(DialogueSessionTest, ThePlotIsToldWhatChanges) {
    StartWithSheet();
    RecordingPlot plot;
    session.SetPlot(&plot);
    Add(ComposePunch(10, 10, 0, 0, ToolOf(1), session.Last(), session.Limits()));
    Add(ComposeDwell(1, session.Last()));
    EXPECT_EQ(plot.Calls, (std::vector<std::string>{"draw 210", "erase 210", "draw 311"}));
    plot.Calls.clear();
    session.MoveCursor(-1);
    session.CursorHome();
    session.CursorHome();  // already there: nothing to move
    EXPECT_EQ(plot.Calls, (std::vector<std::string>{"highlight 3 2", "highlight 2 1"}));
    plot.Calls.clear();
    session.MoveCursor(1);
    ASSERT_EQ(session.Edit(), DialogueScreen::Punch);
    Add(ComposePunch(20, 10, 0, 0, ToolOf(1), session.Last(), session.Limits()));
    EXPECT_EQ(plot.Calls, (std::vector<std::string>{"highlight 1 2", "erase 210", "redraw", "draw 210"}));
    plot.Calls.clear();
    ASSERT_TRUE(session.DeleteAtCursor());
    ASSERT_TRUE(session.Clear());
    EXPECT_EQ(plot.Calls, (std::vector<std::string>{"erase 210", "redraw"}));
}

TEST_F(DialogueSessionTest, RepositionRefusedWithZeroShift) {
    StartWithSheet();
    double offset = 0;
    Composed c = ComposeReposition(1000, 100, 0, 0, session.Limits(), offset);
    EXPECT_FALSE(c.Ok);
    EXPECT_EQ(c.Message, "Invalid Reposition !");
}

}  // namespace
}  // namespace kirvana

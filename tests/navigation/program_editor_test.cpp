// EditProgForm's model: line edits, find, undo, and the save that replaces the file whole.
#include <gtest/gtest.h>

#include <filesystem>

#include "navigation/program_editor.h"
#include "tests/core/temp_dir.h"

using namespace kirvana;

namespace {

class ProgramEditorTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir_.Write("P.prg", "G90\r\nG00 X10 Y10\r\nM20 T2\r\nG00 X50 Y10\r\nM30\r\n");
        ASSERT_TRUE(editor_.Load(dir_.Path() + "P.prg"));
    }
    TempDir dir_;
    ProgramEditor editor_;
};

}  // namespace

TEST_F(ProgramEditorTest, LoadsTheLinesOfEitherLineEnd) {
    EXPECT_EQ(editor_.Lines(), (std::vector<std::string>{"G90", "G00 X10 Y10", "M20 T2", "G00 X50 Y10", "M30"}));
    EXPECT_FALSE(editor_.Modified());
    EXPECT_FALSE(editor_.CanUndo());
    ProgramEditor missing;
    EXPECT_FALSE(missing.Load(dir_.Path() + "NONE.prg"));
    EXPECT_TRUE(missing.Lines().empty());
}

TEST_F(ProgramEditorTest, EditsAndUndoThemOneByOne) {
    EXPECT_TRUE(editor_.ReplaceLine(1, "G00 X11 Y10"));
    EXPECT_TRUE(editor_.InsertLine(5, "(END)"));
    EXPECT_TRUE(editor_.DeleteLine(0));
    EXPECT_FALSE(editor_.ReplaceLine(9, "X"));
    EXPECT_FALSE(editor_.InsertLine(9, "X"));
    EXPECT_FALSE(editor_.DeleteLine(9));
    EXPECT_FALSE(editor_.ReplaceLine(0, editor_.Lines()[0]));  // nothing changed: no undo step
    EXPECT_TRUE(editor_.Modified());
    EXPECT_EQ(editor_.Lines(), (std::vector<std::string>{"G00 X11 Y10", "M20 T2", "G00 X50 Y10", "M30", "(END)"}));
    EXPECT_TRUE(editor_.Undo());
    EXPECT_EQ(editor_.Lines().front(), "G90");
    EXPECT_TRUE(editor_.Undo());
    EXPECT_EQ(editor_.Lines().back(), "M30");
    EXPECT_TRUE(editor_.Undo());
    EXPECT_EQ(editor_.Lines()[1], "G00 X10 Y10");
    EXPECT_FALSE(editor_.Undo());
}

TEST_F(ProgramEditorTest, UndoKeepsTheLastHundredEdits) {
    for (int n = 0; n < 150; ++n) ASSERT_TRUE(editor_.ReplaceLine(0, "G8" + std::to_string(n)));
    int undone = 0;
    while (editor_.Undo()) ++undone;
    EXPECT_EQ(undone, 100);
    EXPECT_EQ(editor_.Lines()[0], "G849");
}

TEST_F(ProgramEditorTest, FindGoesOnFromTheLineAndRoundPastTheEnd) {
    EXPECT_EQ(editor_.Find("x50", 0), (FindPosition{3, 4}));
    EXPECT_EQ(editor_.Find("G00", 1), (FindPosition{3, 0}));
    EXPECT_EQ(editor_.Find("G00", 3), (FindPosition{1, 0}));
    EXPECT_EQ(editor_.Find("M30", 4), (FindPosition{4, 0}));  // the line itself comes last
    EXPECT_EQ(editor_.Find("Q99", 0), std::nullopt);
    EXPECT_EQ(editor_.Find("", 0), std::nullopt);
}

TEST_F(ProgramEditorTest, SaveReplacesTheFileWholeWithLfEnds) {
    ASSERT_TRUE(editor_.ReplaceLine(0, "G91"));
    ASSERT_TRUE(editor_.Save());
    EXPECT_FALSE(editor_.Modified());
    EXPECT_EQ(ReadFileText(dir_.Path() + "P.prg"), "G91\nG00 X10 Y10\nM20 T2\nG00 X50 Y10\nM30\n");
    EXPECT_FALSE(std::filesystem::exists(dir_.Path() + "P.prg.tmp"));
}

TEST_F(ProgramEditorTest, SaveThatCannotWriteLeavesTheOldFileWhole) {
    ASSERT_TRUE(editor_.ReplaceLine(0, "G91"));
    std::string before = ReadFileText(dir_.Path() + "P.prg");
    // The temporary's name is taken by a directory: nothing can be written.
    std::filesystem::create_directories(dir_.Path() + "P.prg.tmp");
    bool saved = editor_.Save();
    EXPECT_FALSE(saved);
    EXPECT_TRUE(editor_.Modified());
    EXPECT_EQ(ReadFileText(dir_.Path() + "P.prg"), before);
}

TEST(ProgramEditorTexts, QuestionsAndNumberedLines) {
    EXPECT_EQ(SaveQuestion("PLATE01"), "Save \"PLATE01\" ?");
    EXPECT_EQ(SaveChangesQuestion("PLATE01"), "Save Changes To \"PLATE01\" ?");
    EXPECT_EQ(SaveFaultText("/x/P.prg"), "File Fault : /x/P.prg");
    EXPECT_EQ(ProgramEditor::NumberedLine(0, "G90"), "    1  G90");
    EXPECT_EQ(ProgramEditor::NumberedLine(12344, "M30"), "12345  M30");
}

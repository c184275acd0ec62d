// The program store as the program screens list it, and BatchForm's edit and set states.
#include <gtest/gtest.h>

#include <filesystem>

#include "navigation/batch_edit.h"
#include "navigation/program_store.h"
#include "tests/core/temp_dir.h"

using namespace kirvana;

namespace {

class ProgramStoreTest : public ::testing::Test {
protected:
    void SetUp() override {
        root_.Write("Dorvenis/PLATE01.prg", "G90\n");
        root_.Write("Dorvenis/cover02.PRG", "G90\n");
        root_.Write("Dorvenis/PLATE01.stg", "1\n");
        root_.Write("Dorvenis/notes.txt", "x\n");
        root_.Write("archive/Plate99.prg", "G90\n");
        root_.Write("EXSUBS/PLATESUB.prg", "G90\n");
        root_.Write("Exsubs2/BRACKET.prg", "G90\n");
        std::filesystem::create_directories(root_.Path() + "Dorvenis/folder.prg");
    }
    TempDir root_;
};

}  // namespace

TEST_F(ProgramStoreTest, DirectoriesAreSortedAndExsubsNeverAppears) {
    EXPECT_EQ(FillDirectories(root_.Path()), (std::vector<std::string>{"archive", "Dorvenis", "Exsubs2"}));
    // Any case of the name is the same directory on the system's file system.
    std::filesystem::rename(root_.Path() + "EXSUBS", root_.Path() + "ExSubs");
    EXPECT_EQ(FillDirectories(root_.Path()), (std::vector<std::string>{"archive", "Dorvenis", "Exsubs2"}));
}

TEST_F(ProgramStoreTest, ProgramsAreThePrgFilesWithoutExtension) {
    EXPECT_EQ(FillPrograms(root_.Path() + "Dorvenis/"), (std::vector<std::string>{"cover02", "PLATE01"}));
    EXPECT_TRUE(FillPrograms(root_.Path() + "missing/").empty());
}

TEST_F(ProgramStoreTest, SearchWalksEveryDirectoryIgnoringCaseButNotExsubs) {
    std::vector<ProgramMatch> found = SearchPrograms(root_.Path(), "plate");
    EXPECT_EQ(found, (std::vector<ProgramMatch>{{"archive", "Plate99"}, {"Dorvenis", "PLATE01"}}));
    EXPECT_TRUE(SearchPrograms(root_.Path(), "NOTHING").empty());
    EXPECT_EQ(SearchLabel("PLATE"), "\"PLATE\"");
    EXPECT_STREQ(NoMatchingPrograms, "No Matching Programs Found !");
}

TEST_F(ProgramStoreTest, ChosenProgramIsCheckedWithTheSystemsTexts) {
    const std::string r = root_.Path();
    EXPECT_EQ(CheckChosenProgram(r, "", "PLATE01"), "No Directory Selected !");
    EXPECT_EQ(CheckChosenProgram(r, "Dorvenis", ""), "No Program Selected !");
    EXPECT_EQ(CheckChosenProgram(r, "Gone", "PLATE01"), "Invalid Directory !");
    EXPECT_EQ(CheckChosenProgram(r, "../..", "PLATE01"), "Invalid Directory !");
    EXPECT_EQ(CheckChosenProgram(r, "Dorvenis", "GONE"), "Invalid Program !");
    EXPECT_EQ(CheckChosenProgram(r, "Dorvenis", std::string(33, 'A')), "Invalid Program !");
    EXPECT_EQ(CheckChosenProgram(r, "Dorvenis", "PLATE01"), std::nullopt);
    EXPECT_EQ(CheckChosenProgram(r, "dorvenis", "plate01"), std::nullopt);
}

TEST_F(ProgramStoreTest, ProgramTextForTheView) {
    EXPECT_EQ(ProgramText(root_.Path(), "Dorvenis", "cover02"), "G90\n");
    EXPECT_EQ(ProgramText(root_.Path(), "Dorvenis", "GONE"), std::nullopt);
    EXPECT_EQ(ProgramText(root_.Path(), "..", "PLATE01"), std::nullopt);
}

TEST(BatchEditTest, SetOpensTheBoxesAndEnterSendsTheFourCounters) {
    BatchEdit edit;
    EXPECT_FALSE(edit.Editing());
    EXPECT_STREQ(edit.SetCaption(), "&SET");
    EXPECT_FALSE(edit.SetValue(0, 5));  // no edit open
    edit.Begin({2, 10, 5, 1, 4});
    EXPECT_TRUE(edit.Editing());
    EXPECT_STREQ(edit.SetCaption(), "&ENTER");
    EXPECT_TRUE(edit.SetValue(2, 8));
    EXPECT_TRUE(edit.SetValue(3, 3));
    EXPECT_FALSE(edit.SetValue(4, 1));  // sheets to go is worked out
    EXPECT_FALSE(edit.SetValue(0, -1));
    EXPECT_FALSE(edit.SetValue(0, 2.5));
    EXPECT_FALSE(edit.SetValue(0, 3e9));
    SlotBatch sent = edit.Finish();
    EXPECT_EQ(sent, (SlotBatch{2, 10, 8, 3, 5}));
    EXPECT_FALSE(edit.Editing());
    edit.Begin({0, 0, 8, 3, 0});
    EXPECT_EQ(edit.Finish()[4], 0);  // no parts required: nothing to go
    edit.Begin({1, 1, 1, 1, 0});
    edit.Cancel();
    EXPECT_FALSE(edit.Editing());
    EXPECT_EQ(BatchTexts({1, 22, 333, 4444, -5}), (std::array<std::string, 5>{"1", "22", "333", "4444", "-5"}));
}

// The entity screens as descriptions and their work without controls: boxes by digit, linked
// boxes, the screen's tool, filling from a record under Edit, and confirmation.
#include <gtest/gtest.h>

#include "dialogue/dialogue_keys.h"
#include "dialogue/dialogue_screen.h"
#include "tests/dialogue/dialogue_fixture.h"
#include "tooling/tool_record.h"

namespace kirvana {
namespace {

using DialogueScreenTest = DialogueFixture;

// The box of a control by its name and index.
std::size_t BoxNamed(const DialogueScreenModel& model, const std::string& control, int index) {
    const auto& boxes = model.Description().Boxes;
    for (std::size_t i = 0; i < boxes.size(); ++i)
        if (boxes[i].Control == control && boxes[i].Index == index) return i;
    ADD_FAILURE() << control << index << " is not a box of " << model.Description().FormName;
    return 0;
}

TEST(DialogueScreenDescriptions, EveryScreenHasItsFormNameAndDigitBoxes) {
    const std::vector<std::string> names = {"SheetDialogue", "PunchDialogue",      "LineDialogue",
                                            "GridDialogue",  "ArcDialogue",        "StopDialogue",
                                            "DwellDialogue", "RepositionDialogue", "NestDialogue"};
    ASSERT_EQ(DialogueScreens().size(), names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        const DialogueScreenDescription& d = DescribeScreen(DialogueScreens()[i]);
        EXPECT_EQ(d.FormName, names[i]);
        EXPECT_FALSE(d.Boxes.empty());
        EXPECT_NE(d.Boxes[0].Label.find("&1"), std::string::npos) << d.FormName;
    }
    EXPECT_TRUE(DescribeScreen(DialogueScreen::Punch).HasTool);
    EXPECT_FALSE(DescribeScreen(DialogueScreen::Dwell).HasTool);
    EXPECT_EQ(DescribeScreen(DialogueScreen::Stop).Toggles[0].Captions, (std::vector<std::string>{"&M00", "&M01"}));
}

TEST_F(DialogueScreenTest, DigitsGoToTheBoxesOfTheShownForm) {
    StartWithSheet();
    DialogueScreenModel arc(session, DialogueScreen::Arc);
    arc.Open();
    // The polar form first: 3 is its radius; the X Y form's 3 is the middle's X.
    EXPECT_EQ(arc.BoxOfDigit(3), static_cast<int>(BoxNamed(arc, "PArcBox", 3)));
    EXPECT_EQ(arc.BoxOfDigit(9), -1);
    arc.PressToggle(0);
    EXPECT_EQ(arc.ToggleCaption(0), "&X Y ARC");
    EXPECT_EQ(arc.BoxOfDigit(3), static_cast<int>(BoxNamed(arc, "XYArcBox", 3)));
    EXPECT_EQ(arc.BoxOfDigit(9), static_cast<int>(BoxNamed(arc, "XYArcBox", 9)));
}

TEST_F(DialogueScreenTest, TheSheetShowsTheMachinesClampBoxes) {
    session.Start();
    DialogueScreenModel sheet(session, DialogueScreen::Sheet);
    sheet.Open();
    int shown = 0;
    for (std::size_t i = 0; i < sheet.Description().Boxes.size(); ++i)
        if (sheet.Description().Boxes[i].Control == "ClampDemand" && sheet.BoxShown(i)) ++shown;
    EXPECT_EQ(shown, machine.ClampCount);
    sheet.SetBox(0, "1200");
    sheet.SetBox(1, "600");
    sheet.SetBox(2, "  ALU 3MM ");
    EXPECT_EQ(sheet.Texts()[0], "1200.00");
    EXPECT_EQ(sheet.Confirm(), "");
    EXPECT_TRUE(session.State.SheetDefined);
    EXPECT_FLOAT_EQ(session.State.SheetX, 1200);
    EXPECT_EQ(session.State.MaterialText, "ALU 3MM");
}

TEST_F(DialogueScreenTest, APunchStartsAtTheLastPointAndIsInserted) {
    StartWithSheet();
    Add(ComposePunch(40, 30, 0, 0, ToolOf(1), session.Last(), session.Limits()));
    DialogueScreenModel punch(session, DialogueScreen::Punch);
    punch.Open();
    EXPECT_EQ(punch.Texts()[0], "40.00");
    EXPECT_EQ(punch.Texts()[1], "30.00");
    // The first station with a tool is the screen's tool until the turret gives another.
    EXPECT_EQ(punch.Tool().StationNo, 1);
    EXPECT_EQ(punch.ToolLabelText(), "STATION 1 :  " + DescribeTool(tooling.DialogueTable[0].Tool, false));
    punch.SetTool(ChooseStation(session.Table(), 2));
    punch.SetBox(0, "-5000");
    EXPECT_EQ(punch.Confirm(), "");  // outside the limits, stored all the same
    EXPECT_EQ(session.State.EntityCount, 3);
    auto rec = session.Entity(3);
    ASSERT_TRUE(rec);
    EXPECT_EQ(rec->Kind, EntityKind::Punch);
    EXPECT_FLOAT_EQ(rec->Points.Position.X, -5000);
    EXPECT_EQ(rec->StationNo, 2);
    // The screen keeps its tool for the next opening.
    punch.Open();
    EXPECT_EQ(punch.Tool().StationNo, 2);
}

TEST_F(DialogueScreenTest, InchesAreShownAndReadInInches) {
    StartWithSheet();
    session.State.ImperialDialogue = true;
    DialogueScreenModel punch(session, DialogueScreen::Punch);
    punch.Open();
    punch.SetBox(0, "2");
    EXPECT_EQ(punch.Texts()[0], "2.000");
    punch.SetBox(1, "1");
    EXPECT_EQ(punch.Confirm(), "");
    EXPECT_FLOAT_EQ(session.Entity(2)->Points.Position.X, 50.8f);
}

TEST_F(DialogueScreenTest, LineBoxesFollowTheLastChange) {
    StartWithSheet();
    DialogueScreenModel line(session, DialogueScreen::Line);
    line.Open();
    line.SetBox(BoxNamed(line, "LineBox", 1), "10");
    line.SetBox(BoxNamed(line, "LineBox", 2), "20");
    line.SetBox(BoxNamed(line, "LineBox", 5), "100");
    line.SetBox(BoxNamed(line, "LineBox", 6), "90");
    EXPECT_EQ(line.Texts()[BoxNamed(line, "LineBox", 3)], "10.00");
    EXPECT_EQ(line.Texts()[BoxNamed(line, "LineBox", 4)], "120.00");
    line.SetBox(BoxNamed(line, "LineBox", 7), "25");
    EXPECT_EQ(line.Texts()[BoxNamed(line, "LineBox", 8)], "5");
    line.SetBox(BoxNamed(line, "LineBox", 8), "11");
    EXPECT_EQ(line.Texts()[BoxNamed(line, "LineBox", 7)], "10.00");
    // The finish typed by hand: length and angle follow it.
    line.SetBox(BoxNamed(line, "LineBox", 3), "40");
    line.SetBox(BoxNamed(line, "LineBox", 4), "20");
    EXPECT_EQ(line.Texts()[BoxNamed(line, "LineBox", 5)], "30.00");
    EXPECT_EQ(line.Texts()[BoxNamed(line, "LineBox", 6)], "0.000");
    EXPECT_EQ(line.Confirm(), "");
    EXPECT_EQ(session.Entity(2)->Kind, EntityKind::LinearPattern);
}

TEST_F(DialogueScreenTest, EachValidationMessageLeavesTheDrawingAlone) {
    StartWithSheet();
    struct Case {
        DialogueScreen Screen;
        const char* Message;
    };
    for (const Case& c :
         {Case{DialogueScreen::Line, "Invalid Line !"}, Case{DialogueScreen::Grid, "Invalid Grid Pattern !"},
          Case{DialogueScreen::Arc, "Invalid Arc !"}, Case{DialogueScreen::Dwell, "Invalid Dwell Time !"},
          Case{DialogueScreen::Reposition, "Invalid Reposition !"}}) {
        DialogueScreenModel model(session, c.Screen);
        model.Open();
        EXPECT_EQ(model.Confirm(), c.Message) << model.Description().FormName;
        EXPECT_EQ(session.State.EntityCount, 1);
    }
    DialogueScreenModel reposition(session, DialogueScreen::Reposition);
    reposition.Open();
    reposition.SetBox(0, "99999");
    EXPECT_EQ(reposition.Confirm(), "Out Of Limits !");
    DialogueScreenModel nest(session, DialogueScreen::MultiPart);
    nest.Open();
    nest.SetBox(BoxNamed(nest, "NestBox", 3), "0");
    EXPECT_EQ(nest.Confirm(), "Invalid Multi-Part !");
    EXPECT_FALSE(session.State.MultiPartMode);
}

TEST_F(DialogueScreenTest, GridRowWithLengthAndPitchGetsItsHits) {
    StartWithSheet();
    DialogueScreenModel grid(session, DialogueScreen::Grid);
    grid.Open();
    grid.SetBox(BoxNamed(grid, "GridBox", 3), "10");
    grid.SetBox(BoxNamed(grid, "GridBox", 5), "-3");
    grid.SetBox(BoxNamed(grid, "GridBox", 6), "5");
    grid.SetBox(BoxNamed(grid, "GridBox", 8), "3");
    EXPECT_EQ(grid.Confirm(), "");
    auto rec = session.Entity(2);
    ASSERT_TRUE(rec);
    EXPECT_EQ(rec->Counts[1], 4);
    EXPECT_FLOAT_EQ(rec->Values[1], -10);
    EXPECT_FLOAT_EQ(rec->Values[3], 10);
}

TEST_F(DialogueScreenTest, ARepositionKeepsItsShift) {
    StartWithSheet();
    DialogueScreenModel reposition(session, DialogueScreen::Reposition);
    reposition.Open();
    reposition.SetBox(0, "500");
    reposition.SetBox(1, "100");
    reposition.SetBox(2, "300");
    EXPECT_EQ(reposition.Confirm(), "");
    EXPECT_FLOAT_EQ(session.State.OffsetX, -300);
}

TEST_F(DialogueScreenTest, EditFillsTheBoxesAndReplacesTheRecord) {
    StartWithSheet();
    LineFields f;
    f.Change(LineFields::StartX, 10);
    f.Change(LineFields::Length, 50);
    f.Change(LineFields::Pitch, 10);
    Add(ComposeLine(f, 0, 0, ToolOf(2), session.PlasmaSettingsArray()));
    Add(ComposeDwell(1.5, session.Last()));
    Add(ComposeStop(7, 8, true, session.Last(), session.Limits()));
    session.MoveCursor(-2);
    ASSERT_EQ(session.Edit(), DialogueScreen::Line);
    DialogueScreenModel line(session, DialogueScreen::Line);
    line.Open();
    EXPECT_EQ(line.Texts()[BoxNamed(line, "LineBox", 1)], "10.00");
    EXPECT_EQ(line.Texts()[BoxNamed(line, "LineBox", 3)], "60.00");
    EXPECT_EQ(line.Texts()[BoxNamed(line, "LineBox", 8)], "6");
    EXPECT_EQ(line.Tool().StationNo, 2);
    line.SetBox(BoxNamed(line, "LineBox", 7), "5");
    EXPECT_EQ(line.Confirm(), "");
    EXPECT_EQ(session.State.EntityCount, 4);
    EXPECT_EQ(session.Entity(2)->Counts[1], 11);
    EXPECT_FALSE(session.State.EditMode);
    // Stop and dwell fill their boxes and toggles too.
    session.CursorEnd();
    ASSERT_EQ(session.Edit(), DialogueScreen::Stop);
    DialogueScreenModel stop(session, DialogueScreen::Stop);
    stop.Open();
    EXPECT_EQ(stop.Texts()[0], "7.00");
    EXPECT_EQ(stop.ToggleCaption(0), "&M01");
    stop.Cancel();
    EXPECT_FALSE(session.State.EditMode);
    session.MoveCursor(-1);
    ASSERT_EQ(session.Edit(), DialogueScreen::Dwell);
    DialogueScreenModel dwell(session, DialogueScreen::Dwell);
    dwell.Open();
    EXPECT_EQ(dwell.Texts()[0], "1.50");
}

TEST_F(DialogueScreenTest, ArcFormsShowTheSameArc) {
    StartWithSheet();
    DialogueScreenModel arc(session, DialogueScreen::Arc);
    arc.Open();
    arc.SetBox(BoxNamed(arc, "PArcBox", 1), "100");
    arc.SetBox(BoxNamed(arc, "PArcBox", 2), "100");
    arc.SetBox(BoxNamed(arc, "PArcBox", 3), "50");
    arc.SetBox(BoxNamed(arc, "PArcBox", 5), "90");
    EXPECT_EQ(arc.Texts()[BoxNamed(arc, "XYArcBox", 1)], "150.00");
    EXPECT_EQ(arc.Texts()[BoxNamed(arc, "XYArcBox", 6)], "150.00");
    arc.SetBox(BoxNamed(arc, "PArcBox", 6), "30");
    EXPECT_EQ(arc.Texts()[BoxNamed(arc, "PArcBox", 8)], "4");
    EXPECT_EQ(arc.Confirm(), "");
    auto rec = session.Entity(2);
    ASSERT_TRUE(rec);
    EXPECT_EQ(rec->Kind, EntityKind::ArcPattern);
    EXPECT_FLOAT_EQ(rec->Values[1], 50);
    EXPECT_FLOAT_EQ(rec->Values[11], 90);
}

TEST_F(DialogueScreenTest, ThePlasmaToolMakesProfilesWithCompensation) {
    StartWithSheet();
    DialogueScreenModel line(session, DialogueScreen::Line);
    line.Open();
    EXPECT_FALSE(line.ToggleShown(0));
    line.SetTool(ChoosePlasma(MachinePlasmaTool(tooling)));
    ASSERT_TRUE(line.ToggleShown(0));
    line.PressToggle(0);
    line.PressToggle(0);
    EXPECT_EQ(line.ToggleCaption(0), "COMP &RIGHT");
    line.SetBox(BoxNamed(line, "LineBox", 5), "80");
    EXPECT_EQ(line.Confirm(), "");
    auto rec = session.Entity(2);
    ASSERT_TRUE(rec);
    EXPECT_EQ(rec->Kind, EntityKind::LineProfile);
    EXPECT_EQ(rec->Compensation, 2);
    EXPECT_EQ(rec->StationNo, -1);
}

}  // namespace
}  // namespace kirvana

namespace kirvana {
namespace {

TEST(DialogueScreenKeys, TheFrontEndLettersAndTheButtonCaptions) {
    EXPECT_EQ(DialogueKey('P').Command, DialogueCommand::FocusProgram);
    EXPECT_EQ(DialogueKey('D').Command, DialogueCommand::FocusDirectory);
    EXPECT_EQ(DialogueKey('M').Command, DialogueCommand::ToggleImperial);
    EXPECT_EQ(DialogueKey('T').Command, DialogueCommand::Tooling);
    EXPECT_EQ(DialogueKey('S').Command, DialogueCommand::Tooling);
    EXPECT_EQ(DialogueButtonCaption(2, true), "PUNCH (&2)");
    EXPECT_EQ(DialogueButtonCaption(2, false), "MOVE (&2)");
    EXPECT_EQ(DialogueButtonCaption(0, true), "&TOOLING");
    EXPECT_EQ(DialogueButtonCaption(0, false), "&SETTINGS");
    EXPECT_EQ(DialogueButtonCaption(9, true), "MULTI-PART (&9)");
    EXPECT_EQ(DialogueButtonCaption(10, true), "");
}

}  // namespace
}  // namespace kirvana

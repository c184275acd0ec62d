// Pictures of the dialogue, written to the build folder's screenshots/ for a person to look at:
// FrontEnd in the dialogue with a drawn part, every entity screen, the dialogue's tooling.

#include "dialogue/dialogue_screen.h"
#include "screens/dialogue_entity_form.h"
#include "screens/dialogue_front.h"
#include "screens/turret_dialogue.h"
#include "tests/screens/panel_fixture.h"

using namespace kirvana;

namespace {

// Composes and confirms a record as its screen would.
void Confirm(DialogueSession& session, DialogueScreen screen,
             const std::vector<std::pair<std::size_t, std::string>>& boxes) {
    DialogueScreenModel model(session, screen);
    model.Open();
    for (const auto& [box, text] : boxes) model.SetBox(box, text);
    ASSERT_EQ(model.Confirm(), "") << model.Description().FormName;
}

}  // namespace

TEST_F(PanelTest, ScreenshotsOfTheDialogue) {
    ASSERT_EQ(Start(), 0);
    StationTable& table = P().State().Tools.MachineTable;  // F5 copies it to the dialogue
    SetStationTool(table[0], "DIAMETER 10");
    SetStationTool(table[1], "SQUARE 20");
    SetStationTool(table[4], "RECTANGLE 30X5");
    Key(key::F5);
    DialogueSession& session = P().Dialogue().Session();
    // A part: the sheet, punches, a line, a grid, an arc and a profile.
    Confirm(session, DialogueScreen::Sheet,
            {{0, "1200"}, {1, "600"}, {2, "MILD STEEL 2MM"}, {3, "200"}, {4, "600"}, {5, "1000"}});
    Confirm(session, DialogueScreen::Punch, {{0, "100"}, {1, "100"}});
    Confirm(session, DialogueScreen::Punch, {{0, "1100"}, {1, "100"}});
    Confirm(session, DialogueScreen::Line, {{0, "150"}, {1, "500"}, {4, "900"}, {5, "0"}, {6, "30"}});
    Confirm(session, DialogueScreen::Grid, {{0, "300"}, {1, "200"}, {2, "300"}, {3, "200"}, {4, "50"}, {5, "50"}});
    Confirm(session, DialogueScreen::Arc, {{9, "900"}, {10, "300"}, {11, "120"}, {13, "0"}, {14, "30"}});
    P().RedrawPlot(0);
    session.CursorEnd();
    P().Dialogue().Show();
    F().ShowNavigation();
    SavePanelShot(P(), "dialogue_front_end");
    // Every entity screen over it.
    for (DialogueScreen screen : DialogueScreens()) {
        const std::string name = DescribeScreen(screen).FormName;
        WhenModal([&, name](QWidget* modal) {
            SavePanelShot(P(), "dialogue_" + name);
            ButtonOf(modal, "ExitButton")->click();
        });
        P().Dialogue().OpenScreen(screen);
    }
    // The arc's X Y form, and the line with the plasma tool.
    WhenModal([&](QWidget* modal) {
        static_cast<DialogueEntityForm*>(modal)->Toggle(0)->click();
        SavePanelShot(P(), "dialogue_ArcDialogue_xy");
        ButtonOf(modal, "ExitButton")->click();
    });
    P().Dialogue().OpenScreen(DialogueScreen::Arc);
    WhenModal([&](QWidget* modal) {
        auto* form = static_cast<DialogueEntityForm*>(modal);
        WhenModal([&](QWidget* turret) {
            SavePanelShot(P(), "dialogue_TurretDialogue");
            static_cast<TurretDialogue*>(turret)->ProfileButton()->click();
            SavePanelShot(P(), "dialogue_TurretDialogue_profiler");
            WhenModal([&](QWidget* settings) {
                SavePanelShot(P(), "dialogue_PlasmaSettingsDialogue");
                ButtonOf(settings, "ExitButton")->click();
            });
            static_cast<TurretDialogue*>(turret)->SettingsButton(2)->click();
            static_cast<TurretDialogue*>(turret)->ExitButton()->click();
        });
        form->ToolButton()->click();
        SavePanelShot(P(), "dialogue_LineDialogue_plasma");
        ButtonOf(modal, "ExitButton")->click();
    });
    P().Dialogue().OpenScreen(DialogueScreen::Line);
    WhenModal([&](QWidget* turret) {
        WhenModal([&](QWidget* settings) {
            SavePanelShot(P(), "dialogue_PunchSettingsDialogue");
            ButtonOf(settings, "ExitButton")->click();
        });
        static_cast<TurretDialogue*>(turret)->SettingsButton(1)->click();
        ButtonOf(turret, "ExitButton")->click();
    });
    Key('T');
}

// Pictures of FrontEnd and every form of the panel, written to the build folder's screenshots/
// for a person to look at.

#include "controller/cardsim/card_simulator.h"
#include "screens/splash_form.h"
#include "system/poll_cycle.h"
#include "tests/screens/panel_fixture.h"

using namespace kirvana;

namespace {

// Opens a form as its key or a value box would, and saves the panel while it stands.
void SaveForm(Panel& panel, const std::string& name, const std::string& form) {
    WhenModal([&](QWidget* modal) {
        SavePanelShot(panel, name);
        modal->close();
    });
    panel.OpenForm(form);
}

}  // namespace

TEST_F(PanelTest, ScreenshotsOfTheOfficeSeat) {
    Write("Data/Keypad.cfg",
          "Y, M, LIGHTS ON, M10=1, M10=0\nY, L, VACUUM, M11=1, M11=0\nY, M, LUBRICATE, M12=1, M12=0\n"
          "Y, L, CHIP CONV., M13=1, M13=0\nY, M, HORN, M14=1, M14=0\n******\n");
    ASSERT_EQ(Start(), 0);
    QImage splash = P().Splash()->grab().toImage();
    EXPECT_TRUE(splash.save(QString::fromStdString(ShotPath("splash_form"))));
    Select(2, "COVER02");
    Select(1, "PLATE01");
    SavePanelShot(P(), "front_end_slot1");
    Key(key::F11);
    SavePanelShot(P(), "front_end_slot2");
    Key(key::F7);
    SavePanelShot(P(), "front_end_graphics");
    P().GraphicsButton(2);
    SavePanelShot(P(), "front_end_zoom_cursor");
    P().CursorCancel();
    Key('X');
    Key(key::F5);
    SavePanelShot(P(), "front_end_dialogue_frame");
    Key('X');

    for (int i = 1; i < 65; ++i) P().State().Config.Messages.IOMessages[i] = "Guard door open at the loading side";
    for (int i = 0; i < 32; ++i)
        P().State().Config.Messages.LogicMessages[i] = "Logic message " + std::to_string(i) + ": clamps not closed";
    UpdateMessageList(P().State(), 2, 0x1F);
    SaveForm(P(), "message_form", "MessageForm");
    SaveForm(P(), "shutdown_form", "ShutdownForm");
    SaveForm(P(), "user_form", "UserForm");
    SaveForm(P(), "number_form", "NumberForm");
    SaveForm(P(), "keyboard_form", "KeyboardForm");
    const std::pair<WarningKind, const char*> kinds[] = {{WarningKind::Notice, "warning_notice"},
                                                         {WarningKind::Question, "warning_question"},
                                                         {WarningKind::QuestionWithCancel, "warning_question_cancel"}};
    for (const auto& [kind, name] : kinds) {
        WhenModal([&](QWidget* modal) {
            SavePanelShot(P(), name);
            modal->close();
        });
        P().ShowWarning("Can Not Select New Program\n\nWhile Machine Is Running !\n\n\n", kind, 1);
    }
}

TEST_F(PanelTest, ScreenshotOfARunningMachineWithMessages) {
    CardSimulator sim;
    ASSERT_TRUE(sim.Start(0));
    CardAt(sim.Port());
    ASSERT_EQ(Start(), 0);
    Select(1, "PLATE01");
    sim.RaiseStatusBits(16384 | 8192);
    sim.SetMotor(1, 812.4, 0);
    sim.SetMotor(2, 377.9, 0);
    sim.StepHits(3);
    sim.SetVariable("M830", 2);
    sim.SetVariable("P1020", 5);
    Spin(300);
    EXPECT_TRUE(P().State().Running);
    SavePanelShot(P(), "front_end_running");
    WhenModal([&](QWidget* modal) {
        Spin(200);
        SavePanelShot(P(), "message_form_running");
        modal->close();
    });
    Key(key::F9);
    sim.RaiseStatusBits(4096);
    Spin(200);
    SavePanelShot(P(), "front_end_hold");
}

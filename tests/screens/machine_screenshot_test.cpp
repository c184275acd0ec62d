// Pictures of the machine and status screens over FrontEnd, with values from the card simulator,
// written to the build folder's screenshots/ for a person to look at; and their touch sizes.

#include "navigation/navigation.h"
#include "tests/screens/machine_fixture.h"

using namespace kirvana;

namespace {

const std::vector<std::string> MachineScreens = {"MachineForm",       "LoadForm",        "MoveForm",  "XYJogForm",
                                                 "XYPositionForm",    "TCPositionForm",  "SetupForm", "StatusMenuForm",
                                                 "MachineStatusForm", "PlasmaStatusForm"};

}  // namespace

TEST_F(MachineFormsTest, ScreenshotsOfTheMachineAndStatusScreens) {
    for (auto [name, value] : {std::pair{"Q10", 0.0},
                               {"Q11", 1250.0},
                               {"Q12", 2400.0},
                               {"Q13", 1250.0},
                               {"M821", 25.0},
                               {"M820", 1.0},
                               {"M822", 3.0},
                               {"M876", 1.0},
                               {"Q17", 754.0},
                               {"M835", 310.0},
                               {"M836", 905.5},
                               {"M837", 1480.0},
                               {"M885", 1.0},
                               {"M887", 1.0},
                               {"M872", 2.0},
                               {"M873", 1.0}})
        sim_.SetVariable(name, value);
    for (int n = 0; n < 10; ++n) sim_.SetVariable("P" + std::to_string(101 + n), 10 * (n + 1));
    StartPanel();
    Select(1, "PLATE01");
    sim_.Execute("%85");
    sim_.SetMotor(1, 812.4 * P().State().AxisScale[0], 0.012 * P().State().AxisScale[0]);
    sim_.SetMotor(2, 377.9 * P().State().AxisScale[1], -0.004 * P().State().AxisScale[1]);
    sim_.RaiseStatusBits(256);
    sim_.StepHits(3);
    Spin(200);
    for (const std::string& form : MachineScreens) {
        ASSERT_TRUE(WithForm([&] { P().OpenForm(form); },
                             [&](QWidget*) {
                                 Spin(250);
                                 SavePanelShot(P(), "machine_" + form, 60);
                             }))
            << form;
    }
    // A refusal over the screen that gave it.
    CardStatus(16384 | 8192);
    ASSERT_TRUE(WithForm([&] { Key(key::F3); },
                         [&](QWidget* form) {
                             WhenModal([&](QWidget* warning) {
                                 SavePanelShot(P(), "machine_refusal", 60);
                                 warning->close();
                             });
                             Child(form, "ReferenceButton0")->click();
                         }));
}

TEST_F(MachineFormsTest, EveryMachineScreenFitsThePanelWithTouchSizedButtons) {
    StartPanel();
    for (const std::string& name : MachineScreens) {
        ASSERT_TRUE(WithForm([&] { P().OpenForm(name); },
                             [&](QWidget* form) {
                                 Spin(20);
                                 EXPECT_LE(form->width(), 1024) << name;
                                 EXPECT_LE(form->height(), 768) << name;
                                 for (QPushButton* b : form->findChildren<QPushButton*>()) {
                                     if (!b->isVisibleTo(form)) continue;
                                     EXPECT_GE(b->height(), 48) << name << "." << b->objectName().toStdString();
                                     EXPECT_GE(b->width(), 48) << name << "." << b->objectName().toStdString();
                                 }
                                 // Every caption is whole: its text fits its button.
                                 for (QPushButton* b : form->findChildren<QPushButton*>()) {
                                     if (!b->isVisibleTo(form) || b->text().isEmpty()) continue;
                                     QString text = b->text().remove('&');
                                     EXPECT_LE(b->fontMetrics().horizontalAdvance(text), b->width())
                                         << name << "." << b->objectName().toStdString();
                                 }
                             }))
            << name;
    }
}

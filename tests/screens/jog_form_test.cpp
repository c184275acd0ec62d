// XYJogForm on the card simulator: press and hold by touch and by the arrow keys, the key up in
// every way a press can end, its refusal, its options; and the two position screens' modes.
#include <QMouseEvent>

#include "core/number.h"
#include "navigation/navigation.h"
#include "screens/jog_forms.h"
#include "tests/screens/machine_fixture.h"

using namespace kirvana;

using Texts = std::vector<std::string>;

namespace {

const Texts KeyUp = {"M828=0", "M829=0"};

void Move(QWidget* button, QPoint at) {
    QMouseEvent move(QEvent::MouseMove, QPointF(at), button->mapToGlobal(QPointF(at)), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QApplication::sendEvent(button, &move);
}

void SendKey(QWidget* form, QEvent::Type type, Qt::Key key, bool autoRepeat) {
    QKeyEvent event(type, key, Qt::NoModifier, QString(), autoRepeat);
    QApplication::sendEvent(form, &event);
}

}  // namespace

TEST_F(MachineFormsTest, JogFormOpensFromTheMachineFormsButtonAndKey) {
    StartPanel();
    ASSERT_TRUE(WithForm([&] { Key(key::F3); },
                         [&](QWidget* form) {
                             EXPECT_EQ(FormOpenedBy([&] { Child(form, "MenuButton2")->click(); }), "XYJogForm");
                             EXPECT_EQ(FormOpenedBy([&] { QTest::keyClick(form, Qt::Key_J); }), "XYJogForm");
                         }));
}

TEST_F(MachineFormsTest, JogButtonJogsWhileHeldAndStopsOnRelease) {
    StartPanel();
    ASSERT_TRUE(WithForm([&] { P().OpenForm("XYJogForm"); },
                         [&](QWidget* modal) {
                             auto* form = static_cast<XYJogForm*>(modal);
                             EXPECT_EQ(form->JogButtonAt(0)->text(), "X+");
                             EXPECT_EQ(form->JogButtonAt(2)->text(), "Y+");
                             Commands();
                             QTest::mousePress(form->JogButtonAt(0), Qt::LeftButton);
                             EXPECT_EQ(Commands(), Texts{"M828=1"});
                             EXPECT_TRUE(form->Jogging());
                             Spin(150);  // held over a few ticks: nothing more goes out
                             EXPECT_EQ(Commands(), Texts{});
                             QTest::mouseRelease(form->JogButtonAt(0), Qt::LeftButton);
                             EXPECT_EQ(Commands(), KeyUp);
                             EXPECT_FALSE(form->Jogging());
                             QTest::mouseClick(form->JogButtonAt(3), Qt::LeftButton);
                             EXPECT_EQ(Commands(), (Texts{"M829=-1", "M828=0", "M829=0"}));
                         }));
}

TEST_F(MachineFormsTest, JogStopsWhenTheFingerSlidesOffTheButton) {
    StartPanel();
    ASSERT_TRUE(WithForm([&] { P().OpenForm("XYJogForm"); },
                         [&](QWidget* modal) {
                             auto* form = static_cast<XYJogForm*>(modal);
                             JogButton* button = form->JogButtonAt(1);
                             Commands();
                             QTest::mousePress(button, Qt::LeftButton);
                             Move(button, QPoint(button->width() / 2, button->height() / 3));  // still on it
                             EXPECT_EQ(Commands(), Texts{"M828=-1"});
                             Move(button, QPoint(button->width() + 40, button->height() / 2));  // off it
                             EXPECT_EQ(Commands(), KeyUp);
                             // Back on it and released: the press is over already, nothing more goes out.
                             Move(button, QPoint(button->width() / 2, button->height() / 2));
                             QTest::mouseRelease(button, Qt::LeftButton);
                             EXPECT_EQ(Commands(), Texts{});
                         }));
}

TEST_F(MachineFormsTest, JogStopsWhenTheWindowLosesTheFocus) {
    StartPanel();
    ASSERT_TRUE(WithForm([&] { P().OpenForm("XYJogForm"); },
                         [&](QWidget* modal) {
                             auto* form = static_cast<XYJogForm*>(modal);
                             ASSERT_TRUE(WaitFor([&] { return form->isActiveWindow(); }));
                             Commands();
                             QTest::mousePress(form->JogButtonAt(2), Qt::LeftButton);
                             EXPECT_EQ(Commands(), Texts{"M829=1"});
                             // Another window takes the focus (a message box of another program, a tool window).
                             QWidget other(nullptr, Qt::Tool);
                             other.setAttribute(Qt::WA_ShowWithoutActivating, false);
                             other.resize(200, 100);
                             other.show();
                             other.activateWindow();
                             ASSERT_TRUE(WaitFor([&] { return !form->isActiveWindow(); }, 2000));
                             EXPECT_EQ(Commands(), KeyUp);
                             EXPECT_FALSE(form->Jogging());
                             QTest::mouseRelease(form->JogButtonAt(2), Qt::LeftButton);
                             EXPECT_EQ(Commands(), Texts{});
                         }));
}

TEST_F(MachineFormsTest, ArrowKeysJogUntilTheKeyIsReleasedAndRepeatsSendNothing) {
    StartPanel();
    ASSERT_TRUE(WithForm([&] { P().OpenForm("XYJogForm"); },
                         [&](QWidget* form) {
                             Commands();
                             SendKey(form, QEvent::KeyPress, Qt::Key_Left, false);
                             EXPECT_EQ(Commands(), Texts{"M828=-1"});
                             // The keyboard's repeats while the key stays down.
                             SendKey(form, QEvent::KeyRelease, Qt::Key_Left, true);
                             SendKey(form, QEvent::KeyPress, Qt::Key_Left, true);
                             EXPECT_EQ(Commands(), Texts{});
                             SendKey(form, QEvent::KeyRelease, Qt::Key_Left, false);
                             EXPECT_EQ(Commands(), KeyUp);
                             QTest::keyClick(form, Qt::Key_Up);
                             QTest::keyClick(form, Qt::Key_Right);
                             QTest::keyClick(form, Qt::Key_Down);
                             EXPECT_EQ(Commands(), (Texts{"M829=1", "M828=0", "M829=0", "M828=1", "M828=0", "M829=0",
                                                          "M829=-1", "M828=0", "M829=0"}));
                         }));
}

TEST_F(MachineFormsTest, JogStopsWhenTheFormClosesDuringAPress) {
    StartPanel();
    ASSERT_TRUE(WithForm([&] { P().OpenForm("XYJogForm"); },
                         [&](QWidget* modal) {
                             auto* form = static_cast<XYJogForm*>(modal);
                             Commands();
                             SendKey(form, QEvent::KeyPress, Qt::Key_Right, false);
                             EXPECT_EQ(Commands(), Texts{"M828=1"});
                             form->close();
                             EXPECT_EQ(Commands(), KeyUp);
                         }));
    // A touch press ended by the form's own exit key.
    ASSERT_TRUE(WithForm([&] { P().OpenForm("XYJogForm"); },
                         [&](QWidget* modal) {
                             auto* form = static_cast<XYJogForm*>(modal);
                             Commands();
                             QTest::mousePress(form->JogButtonAt(0), Qt::LeftButton);
                             SendKey(form, QEvent::KeyPress, Qt::Key_X, false);  // E&XIT
                             EXPECT_FALSE(form->isVisible());
                             EXPECT_EQ(Commands(), (Texts{"M828=1", "M828=0", "M829=0"}));
                         }));
}

TEST_F(MachineFormsTest, JogIsRefusedInFeedholdButTheKeyUpStillGoesOut) {
    StartPanel();
    for (std::int64_t state : {16384, 2048}) {
        CardStatus(state);
        ASSERT_TRUE(WithForm([&] { P().OpenForm("XYJogForm"); },
                             [&](QWidget* modal) {
                                 auto* form = static_cast<XYJogForm*>(modal);
                                 Commands();
                                 std::string warning = "no warning";
                                 WhenModal([&](QWidget* box) {
                                     warning = static_cast<WarningForm*>(box)->WarningLabel()->text().toStdString();
                                     static_cast<WarningForm*>(box)->WarningButton(0)->click();
                                 });
                                 QTest::mousePress(form->JogButtonAt(0), Qt::LeftButton);
                                 EXPECT_EQ(warning, "Can Not Jog" + RunningOrFeedhold + "\n\n\n");
                                 QTest::mouseRelease(form->JogButtonAt(0), Qt::LeftButton);
                                 EXPECT_EQ(Commands(), KeyUp) << state;
                             }));
    }
    // In a cycle alone the jog goes.
    CardStatus(8192);
    ASSERT_TRUE(WithForm([&] { P().OpenForm("XYJogForm"); },
                         [&](QWidget* modal) {
                             auto* form = static_cast<XYJogForm*>(modal);
                             Commands();
                             QTest::mouseClick(form->JogButtonAt(0), Qt::LeftButton);
                             EXPECT_EQ(Commands(), (Texts{"M828=1", "M828=0", "M829=0"}));
                         }));
}

TEST_F(MachineFormsTest, JogOptionsComeFromTheCardAndSendTheirValues) {
    sim_.SetVariable("M876", 2.5);
    sim_.SetVariable("M820", 1);
    sim_.SetVariable("M822", 3);
    sim_.SetVariable("M821", 25);
    StartPanel();
    ASSERT_TRUE(WithForm([&] { P().OpenForm("XYJogForm"); },
                         [&](QWidget* modal) {
                             auto* form = static_cast<XYJogForm*>(modal);
                             EXPECT_TRUE(form->SpeedOption(3)->isChecked());     // "25 (&K)"
                             EXPECT_TRUE(form->DistanceOption(3)->isChecked());  // "10 (&D)"
                             EXPECT_EQ(form->FormValueText()->text(), "2.5");
                             Commands();
                             form->SpeedOption(6)->click();
                             QTest::keyClick(form, Qt::Key_H);  // "1 (&H)"
                             form->DistanceOption(0)->click();  // "CONT (&G)"
                             QTest::keyClick(form, Qt::Key_A);  // "0.01 (&A)"
                             EXPECT_EQ(Commands(), (Texts{"M821=100", "M821=1", "M820=0", "M820=1", "M822=6"}));
                             EXPECT_TRUE(form->SpeedOption(0)->isChecked());
                             EXPECT_TRUE(form->DistanceOption(6)->isChecked());
                         }));
    // Values that fit no option: continuous, and distance 4, sent.
    sim_.SetVariable("M820", 1);
    sim_.SetVariable("M822", 9);
    sim_.ClearReceived();
    ASSERT_TRUE(WithForm([&] { P().OpenForm("XYJogForm"); },
                         [&](QWidget* modal) {
                             auto* form = static_cast<XYJogForm*>(modal);
                             EXPECT_EQ(Commands(), (Texts{"M820=0", "M822=4"}));
                             EXPECT_TRUE(form->DistanceOption(0)->isChecked());
                         }));
}

TEST_F(MachineFormsTest, OrientationTwoSwapsTheYButtonsAndTheirTexts) {
    std::string text = ReadFileText(dir_.Path() + "Data/Machine.dat");
    text.replace(text.find("Orientation: 1"), 14, "Orientation: 2");
    Write("Data/Machine.dat", text);
    StartPanel();
    ASSERT_TRUE(WithForm([&] { P().OpenForm("XYJogForm"); },
                         [&](QWidget* modal) {
                             auto* form = static_cast<XYJogForm*>(modal);
                             EXPECT_EQ(form->JogButtonAt(2)->text(), "Y-");
                             EXPECT_EQ(form->JogButtonAt(3)->text(), "Y+");
                             Commands();
                             QTest::keyClick(form, Qt::Key_Up);
                             EXPECT_EQ(Commands(), (Texts{"M829=-1", "M828=0", "M829=0"}));
                         }));
}

TEST_F(MachineFormsTest, JogFormShowsThePositionsOfThePoll) {
    StartPanel();
    sim_.SetMotor(1, 1234.5 * P().State().AxisScale[0], 0);
    sim_.SetMotor(2, 321.25 * P().State().AxisScale[1], 0);
    ASSERT_TRUE(WithForm([&] { P().OpenForm("XYJogForm"); },
                         [&](QWidget* modal) {
                             auto* form = static_cast<XYJogForm*>(modal);
                             ASSERT_TRUE(WaitFor([&] { return form->PositionText(1)->text() == "321.25"; }))
                                 << form->PositionText(1)->text().toStdString();
                             EXPECT_EQ(form->PositionText(0)->text().toStdString(), P().State().Display.JogTexts[0]);
                             EXPECT_EQ(form->PositionText(0)->text(), "1234.50");
                         }));
}

TEST_F(MachineFormsTest, PositionFormsShowTheValuesOfTheirModes) {
    StartPanel();
    const auto& scale = P().State().AxisScale;
    sim_.SetMotor(1, 100 * scale[0], 0.5 * scale[0]);
    sim_.SetVariable("M161", 110.25 * scale[0] * 3072);
    sim_.SetVariable("M263", -7.5 * scale[1] * 3072);
    ASSERT_TRUE(WithForm(
        [&] { Key(key::F3); },
        [&](QWidget* machine) {
            ASSERT_TRUE(WithForm([&] { QTest::keyClick(machine, Qt::Key_P); },
                                 [&](QWidget* form) {
                                     EXPECT_EQ(form->objectName(), "XYPositionForm");
                                     EXPECT_TRUE(Child(form, "PositionButton0")->isChecked());
                                     ASSERT_TRUE(WaitFor([&] { return TextOf(form, "PositionText1") == "100.00"; }))
                                         << TextOf(form, "PositionText1");
                                     Child(form, "PositionButton1")->click();  // "&COMMAND"
                                     EXPECT_TRUE(WaitFor([&] { return TextOf(form, "PositionText1") == "110.25"; }))
                                         << TextOf(form, "PositionText1");
                                     QTest::keyClick(form, Qt::Key_T);  // "&TARGET"
                                     EXPECT_TRUE(WaitFor([&] { return TextOf(form, "PositionText2") == "-7.50"; }))
                                         << TextOf(form, "PositionText2");
                                     QTest::keyClick(form, Qt::Key_F);  // "&FOLLOW"
                                     EXPECT_TRUE(WaitFor([&] { return TextOf(form, "PositionText1") == "0.50"; }))
                                         << TextOf(form, "PositionText1");
                                     EXPECT_EQ(P().State().Display.XYMode, PositionMode::Follow);
                                     EXPECT_EQ(TextOf(form, "PositionText1"), P().State().Display.XYPositionTexts[0]);
                                 }));
            // The rotary screen keeps a mode of its own.
            ASSERT_TRUE(WithForm([&] { Child(machine, "MenuButton4")->click(); },
                                 [&](QWidget* form) {
                                     EXPECT_EQ(form->objectName(), "TCPositionForm");
                                     EXPECT_TRUE(Child(form, "PositionButton0")->isChecked());
                                     sim_.SetVariable("M361", 2.5 * scale[2] * 3072);
                                     QTest::keyClick(form, Qt::Key_C);
                                     EXPECT_TRUE(WaitFor([&] { return TextOf(form, "PositionText1") == "2.50"; }))
                                         << TextOf(form, "PositionText1");
                                     EXPECT_EQ(TextOf(form, "PositionText2"), P().State().Display.TCPositionTexts[1]);
                                 }));
        }));
    EXPECT_EQ(P().State().Display.RotaryMode, PositionMode::Command);
    EXPECT_EQ(P().State().Display.XYMode, PositionMode::Follow);
}

TEST_F(MachineFormsTest, JogByTouchStopsOnLiftAndWhenTheFingerSlidesOff) {
    StartPanel();
    // A touch screen of the test's own: removed from the panel's devices at the end.
    std::unique_ptr<QPointingDevice> touch(QTest::createTouchDevice());
    QPointingDevice* screen = touch.get();
    ASSERT_TRUE(WithForm([&] { P().OpenForm("XYJogForm"); },
                         [&](QWidget* modal) {
                             auto* form = static_cast<XYJogForm*>(modal);
                             JogButton* button = form->JogButtonAt(0);
                             QPoint middle = button->rect().center();
                             Commands();
                             QTest::touchEvent(button, screen).press(0, middle, button);
                             EXPECT_EQ(Commands(), Texts{"M828=1"});
                             QTest::touchEvent(button, screen).release(0, middle, button);
                             EXPECT_EQ(Commands(), KeyUp);
                             // The finger slides off the button before it is lifted.
                             QTest::touchEvent(button, screen).press(0, middle, button);
                             QTest::touchEvent(button, screen).move(0, middle + QPoint(button->width(), 0), button);
                             EXPECT_EQ(Commands(), (Texts{"M828=1", "M828=0", "M829=0"}));
                             QTest::touchEvent(button, screen).release(0, middle + QPoint(button->width(), 0), button);
                             EXPECT_EQ(Commands(), Texts{});
                             EXPECT_FALSE(form->Jogging());
                         }));
}

#include <QLabel>
#include <QStackedWidget>

#include "navigation/navigation.h"
#include "screens/message_form.h"
#include "screens/warning_form.h"
#include "tests/screens/panel_fixture.h"

using namespace kirvana;

TEST_F(PanelTest, FrontEndHoldsEveryControlWithItsCaption) {
    ASSERT_EQ(Start(), 0);
    ASSERT_TRUE(F().isVisible());
    const char* captions[] = {"PROGRAM F1",        "TOOLING F2", "MACHINE F3", "STATUS F4",
                              "CREATE PROGRAM F5", "FILE F6",    "GRAPHICS F7"};
    for (int i = 1; i <= 7; ++i) EXPECT_EQ(F().MainButton(i)->text(), captions[i - 1]);
    EXPECT_EQ(F().MessageButton()->text(), "MESSAGES F9");
    EXPECT_EQ(F().ShutdownButton()->text(), "SHUTDOWN F12");
    EXPECT_EQ(F().LimitsButton()->text(), "SHOW &LIMITS");
    const char* graphics[] = {"&REDRAW", "&ZOOM IN", "ZOOM &OUT", "&PAN"};
    for (int i = 1; i <= 4; ++i) EXPECT_EQ(F().GraphicsButton(i)->text(), graphics[i - 1]);
    EXPECT_EQ(F().ProgramButton(1)->text().toStdString(), ProgramButtonCaption(1, P().State().Slots[0]));
    EXPECT_EQ(F().ProgramButton(2)->text().toStdString(), ProgramButtonCaption(2, P().State().Slots[1]));
    EXPECT_EQ(F().ButtonColumn()->currentWidget(), F().MainPanel());
    EXPECT_NE(F().findChild<QWidget*>("StatusPanel"), nullptr);
    EXPECT_NE(F().findChild<QWidget*>("PositionBox"), nullptr);
    for (int i = 1; i <= 6; ++i) EXPECT_NE(F().PositionText(i), nullptr);
    EXPECT_EQ(F().PlotBoxes()->count(), 3);
    EXPECT_EQ(F().PlotBoxes()->currentIndex(), 1);
    EXPECT_EQ(F().DialoguePanel()->objectName(), "DialoguePanel");
}

TEST_F(PanelTest, MachineWithoutTurretReadsSettings) {
    MachineType(2);
    ASSERT_EQ(Start(), 0);
    EXPECT_EQ(F().MainButton(2)->text(), "SETTINGS F2");
}

TEST_F(PanelTest, F1WhileLockedDoesNothingAndF9StillOpensMessages) {
    ASSERT_EQ(Start(), 0);
    P().Talk().LockAllForms(true);
    ASSERT_TRUE(P().State().Card.FormsLocked);
    Key(key::F1);
    EXPECT_EQ(P().Nav().CurrentForm, "");
    Key(key::F7);
    EXPECT_FALSE(P().Nav().GraphicsOn);
    std::string opened;
    WhenModal([&](QWidget* modal) {
        opened = modal->objectName().toStdString();
        ButtonOf(modal, "ExitButton")->click();
    });
    Key(key::F9);
    EXPECT_EQ(opened, "MessageForm");
    EXPECT_EQ(P().Nav().CurrentForm, "MessageForm");
    P().Talk().LockAllForms(false);
    WhenModal([](QWidget* modal) { modal->close(); });
    Key(key::F1);
    EXPECT_EQ(P().Nav().CurrentForm, "ProgramForm");
}

TEST_F(PanelTest, LockDisablesTheFormsButTheExemptOnes) {
    ASSERT_EQ(Start(), 0);
    PanelForm* user = P().Forms().Get("UserForm");
    PanelForm* messages = P().Forms().Get("MessageForm");
    P().Talk().LockAllForms(true);
    EXPECT_FALSE(user->isEnabled());
    EXPECT_TRUE(messages->isEnabled());
    EXPECT_TRUE(F().isEnabled());
    P().Talk().LockAllForms(false);
    EXPECT_TRUE(user->isEnabled());
}

TEST_F(PanelTest, GraphicsPanelZoomCursorAndExitByTouch) {
    ASSERT_EQ(Start(), 0);
    F().MainButton(7)->click();
    EXPECT_TRUE(P().Nav().GraphicsOn);
    EXPECT_EQ(F().ButtonColumn()->currentWidget(), F().GraphicsButtonPanel());
    F().GraphicsButton(2)->click();
    EXPECT_EQ(P().Nav().ViewMode, 1);
    EXPECT_EQ(F().ButtonColumn()->currentWidget(), F().PathButtonPanel());
    EXPECT_EQ(F().PathButton(1)->text(), "&LEFT");
    EXPECT_FALSE(F().PathButton(5)->isVisibleTo(&F()));
    EXPECT_EQ(F().TextPanel()->text(), "SELECT FIRST CORNER");
    F().PathButton(6)->click();
    EXPECT_EQ(P().Nav().ViewMode, 2);
    EXPECT_EQ(F().TextPanel()->text(), "SELECT OPPOSITE CORNER");
    F().PathExitButton()->click();
    EXPECT_EQ(P().Nav().ViewMode, 0);
    EXPECT_EQ(F().ButtonColumn()->currentWidget(), F().GraphicsButtonPanel());
    F().LimitsButton()->click();
    EXPECT_TRUE(P().Nav().LimitsOn);
    F().GraphicsButton(3)->click();
    EXPECT_EQ(F().TextPanel()->text(), "GRAPHICS - ZOOM OUT");
    F().GraphicsExitButton()->click();
    EXPECT_FALSE(P().Nav().GraphicsOn);
    EXPECT_EQ(F().ButtonColumn()->currentWidget(), F().MainPanel());
}

TEST_F(PanelTest, KeysOnFrontEndGoThroughMainKey) {
    ASSERT_EQ(Start(), 0);
    QTest::keyClick(&F(), Qt::Key_F7);
    EXPECT_TRUE(P().Nav().GraphicsOn);
    QTest::keyClick(&F(), Qt::Key_P);
    EXPECT_EQ(P().Nav().ViewMode, 4);
    QTest::keyClick(&F(), Qt::Key_Left);
    QTest::keyClick(&F(), Qt::Key_S);
    EXPECT_EQ(P().Nav().ViewMode, 0);
    QTest::keyClick(&F(), Qt::Key_X);
    EXPECT_FALSE(P().Nav().GraphicsOn);
    QTest::keyClick(&F(), Qt::Key_F5);
    EXPECT_TRUE(P().Nav().DialogueOn);
    EXPECT_EQ(F().ButtonColumn()->currentWidget(), F().DialoguePanel());
    EXPECT_FALSE(F().ShutdownButton()->isVisibleTo(&F()));
    EXPECT_FALSE(F().HeaderPanel()->isVisibleTo(&F()));
    F().ExitDialogueButton()->click();
    EXPECT_FALSE(P().Nav().DialogueOn);
    EXPECT_TRUE(F().ShutdownButton()->isVisibleTo(&F()));
}

TEST_F(PanelTest, ProgramButtonSwitchesTheSlotAndItsPlotBox) {
    ASSERT_EQ(Start(), 0);
    Select(2, "COVER02");
    Select(1, "PLATE01");
    ASSERT_EQ(P().State().Config.ActiveSlot, 1);
    F().ProgramButton(2)->click();
    EXPECT_EQ(P().State().Config.ActiveSlot, 2);
    EXPECT_EQ(F().PlotBoxes()->currentIndex(), 2);
    EXPECT_TRUE(F().ProgramButton(2)->isChecked());
    EXPECT_FALSE(F().ProgramButton(1)->isChecked());
    EXPECT_TRUE(F().HeaderPanel()->text().contains("COVER02"));
    Key(key::F10);
    EXPECT_EQ(P().State().Config.ActiveSlot, 1);
}

TEST_F(PanelTest, F10WhileRunningShowsTheTwoLineMessageAndKeepsTheSlot) {
    ASSERT_EQ(Start(), 0);
    P().State().InCycle = true;
    std::string shown;
    WhenModal([&](QWidget* modal) {
        shown = static_cast<WarningForm*>(modal)->WarningLabel()->text().toStdString();
        static_cast<WarningForm*>(modal)->WarningButton(0)->click();
    });
    Key(key::F11);
    EXPECT_EQ(shown, "Can Not Change Program\n\nWhile Machine Is Running !\n\n\n");
    EXPECT_EQ(P().State().Config.ActiveSlot, 1);
    EXPECT_EQ(F().PlotBoxes()->currentIndex(), 1);
}

TEST_F(PanelTest, F2WithoutTurretProfilerKindOneDoesNothing) {
    MachineType(1);
    ASSERT_EQ(Start(), 0);
    Key(key::F2);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_EQ(P().Nav().CurrentForm, "");
}

TEST_F(PanelTest, FormsNotYetBuiltSaySoOnTheTextPanel) {
    ASSERT_EQ(Start(), 0);
    EXPECT_FALSE(P().OpenForm("NoSuchForm"));
    EXPECT_EQ(F().TextPanel()->text(), "NoSuchForm IS NOT PART OF THIS BUILD YET");
}

TEST_F(PanelTest, EveryButtonIsATouchTargetAt1024By768) {
    ASSERT_EQ(Start(), 0);
    F().resize(1024, 768);
    Spin(20);
    auto check = [](QWidget* root) {
        for (QPushButton* b : root->findChildren<QPushButton*>()) {
            if (!b->isVisibleTo(root)) continue;
            // The 18 rows of the message list are lines of a list, not buttons.
            if (b->objectName().startsWith("Message") && b->objectName() != "MessageButton") continue;
            EXPECT_GE(b->height(), 48) << root->objectName().toStdString() << "." << b->objectName().toStdString();
            EXPECT_GE(b->width(), 48) << root->objectName().toStdString() << "." << b->objectName().toStdString();
        }
    };
    check(&F());
    for (const char* name : {"MessageForm", "ShutdownForm", "UserForm", "WarningForm", "NumberForm", "KeyboardForm"}) {
        WhenModal([&](QWidget* modal) {
            Spin(20);
            check(modal);
            EXPECT_LE(modal->width(), 1024) << name;
            EXPECT_LE(modal->height(), 768) << name;
            modal->close();
        });
        P().OpenForm(name);
    }
    // The graphics and path panels.
    Key(key::F7);
    Spin(20);
    check(&F());
    P().GraphicsButton(2);
    Spin(20);
    check(&F());
}

TEST_F(PanelTest, ShowCurrentFormBringsBackTheFormLastOpened) {
    ASSERT_EQ(Start(), 0);
    std::string during, after;
    WhenModal([&](QWidget* modal) {
        // A running operation hands the focus back to CurrentForm: the form showing is raised, not opened again.
        P().ShowCurrentForm(P().Nav().CurrentForm);
        during = QApplication::activeModalWidget()->objectName().toStdString();
        modal->close();
    });
    Key(key::F9);
    EXPECT_EQ(P().Nav().CurrentForm, "MessageForm");
    EXPECT_EQ(during, "MessageForm");
    WhenModal([&](QWidget* modal) {
        after = modal->objectName().toStdString();
        modal->close();
    });
    P().ShowCurrentForm("MessageForm");
    EXPECT_EQ(after, "MessageForm");
}

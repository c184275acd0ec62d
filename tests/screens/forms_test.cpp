#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

#include "navigation/navigation.h"
#include "screens/message_form.h"
#include "screens/pad_forms.h"
#include "screens/shutdown_form.h"
#include "screens/splash_form.h"
#include "screens/user_form.h"
#include "screens/warning_form.h"
#include "system/poll_cycle.h"
#include "tests/screens/panel_fixture.h"

using namespace kirvana;

TEST_F(PanelTest, SplashStaysItsFullFourSeconds) {
    QElapsedTimer clock;
    clock.start();
    ASSERT_EQ(Start(4000), 0);
    EXPECT_GE(clock.elapsed(), 4000);
    ASSERT_NE(P().Splash(), nullptr);
    EXPECT_EQ(P().Splash()->Timer().interval(), 4000);
    EXPECT_FALSE(P().Splash()->Timer().isActive());
    EXPECT_FALSE(P().Splash()->isVisible());
    EXPECT_EQ(P().Splash()->TitlePanel()->text(), "Kirvana 32");
    EXPECT_EQ(P().Splash()->VersionPanel()->text(), "Version 1.3");
    EXPECT_TRUE(F().isVisible());
}

TEST_F(PanelTest, PollTimerStartsWithTheRestartDelayAtActivation) {
    ASSERT_EQ(Start(), 0);
    EXPECT_TRUE(P().State().Card.PollRunning);
    EXPECT_TRUE(P().PollTimer().isActive());
    Spin(400);
    // The first tick set the interval back to PMAC.cfg's 50 ms.
    EXPECT_EQ(P().PollTimer().interval(), 50);
    WhenModal([](QWidget* modal) { ButtonOf(modal, "ExitButton")->click(); });
    Key(key::F9);
    // The return from a modal form restarts the poll with the restart delay (250 ms in the demo).
    EXPECT_EQ(P().PollTimer().interval(), 250);
}

TEST_F(PanelTest, WarningsComeOneAtATime) {
    ASSERT_EQ(Start(), 0);
    int second = -1;
    std::string label;
    WhenModal([&](QWidget* modal) {
        second = P().ShowWarning("Second\n\n\n", WarningKind::Notice, 1);
        auto* form = static_cast<WarningForm*>(modal);
        label = form->WarningLabel()->text().toStdString();
        form->WarningButton(1)->click();
    });
    int first = P().ShowWarning("First\n\n\n", WarningKind::Question, 1);
    EXPECT_EQ(second, 0);
    EXPECT_EQ(label, "First\n\n\n");
    EXPECT_EQ(first, 2);
    EXPECT_FALSE(P().WarningResult());
    EXPECT_FALSE(P().Warning().Showing());
}

TEST_F(PanelTest, WarningKindsCaptionsImagesAndDefault) {
    ASSERT_EQ(Start(), 0);
    for (int kind = 1; kind <= 3; ++kind) {
        std::vector<std::string> captions;
        int image = -1;
        std::string focused;
        std::string panelCaption;
        WhenModal([&](QWidget* modal) {
            auto* form = static_cast<WarningForm*>(modal);
            for (int i = 0; i < 3; ++i)
                if (form->WarningButton(i)->isVisibleTo(form))
                    captions.push_back(form->WarningButton(i)->text().toStdString());
            image = form->WarningImage()->property("kind").toInt();
            for (int i = 0; i < 3; ++i)
                if (form->focusWidget() == form->WarningButton(i))
                    focused = form->WarningButton(i)->text().toStdString();
            panelCaption = form->findChild<QLabel*>("WarningPanel")->text().toStdString();
            EXPECT_FALSE(form->WarningImage()->pixmap().isNull());
            form->WarningButton(0)->click();
        });
        int pressed = P().ShowWarning("Kind " + std::to_string(kind) + "\n\n\n", static_cast<WarningKind>(kind), kind);
        EXPECT_EQ(pressed, 1);
        EXPECT_EQ(captions, WarningCaptions(static_cast<WarningKind>(kind)));
        EXPECT_EQ(image, kind - 1);
        EXPECT_EQ(focused, captions.back());
        EXPECT_EQ(panelCaption, "KIRVANA 32");
        EXPECT_EQ(P().WarningResult(), kind != 1);
    }
}

TEST_F(PanelTest, WarningAnswersByKey) {
    ASSERT_EQ(Start(), 0);
    WhenModal([](QWidget* modal) { QTest::keyClick(modal, Qt::Key_Y); });
    EXPECT_TRUE(P().AskOperator("Shutdown Kirvana ?"));
    WhenModal([](QWidget* modal) { QTest::keyClick(modal, Qt::Key_Escape); });
    EXPECT_EQ(P().ShowWarning("x", WarningKind::QuestionWithCancel, 1), 3);
}

namespace {

// The message tables of a test, and the list the poll builds from a message number and logic bits.
void FillMessages(Process& process, std::int32_t messageNo, std::int32_t logicBits) {
    for (int i = 1; i < 65; ++i) process.Config.Messages.IOMessages[i] = "IO message " + std::to_string(i);
    for (int i = 0; i < 32; ++i) process.Config.Messages.LogicMessages[i] = "Logic message " + std::to_string(i);
    UpdateMessageList(process, messageNo, logicBits);
}

}  // namespace

TEST_F(PanelTest, MessageFormShowsEighteenRowsAndHelp) {
    Write("Messages/Help/IO/3.hlp", "Close the guard door and press reset.\n");
    ASSERT_EQ(Start(), 0);
    FillMessages(P().State(), 3, 0xFFFFF);  // 20 logic bits: only 17 of them find a line
    std::vector<std::string> rows;
    std::string help, helpCaption, backCaption, missingHelp;
    WhenModal([&](QWidget* modal) {
        auto* form = static_cast<MessageForm*>(modal);
        for (int i = 1; i <= MessageListLines; ++i) rows.push_back(form->Message(i)->text().toStdString());
        form->Message(1)->click();
        form->HelpButton()->click();
        help = form->HelpBox()->toPlainText().toStdString();
        helpCaption = form->HelpButton()->text().toStdString();
        EXPECT_FALSE(form->MessageBox()->isVisibleTo(form));
        form->HelpButton()->click();
        backCaption = form->HelpButton()->text().toStdString();
        EXPECT_TRUE(form->MessageBox()->isVisibleTo(form));
        form->Message(2)->click();
        form->HelpButton()->click();
        missingHelp = form->HelpBox()->toPlainText().toStdString();
        form->HelpButton()->click();
        form->ExitButton()->click();
    });
    Key(key::F9);
    ASSERT_EQ(rows.size(), 18u);
    EXPECT_EQ(rows[0], " IO message 3");
    EXPECT_EQ(rows[1], " Logic message 0");
    EXPECT_EQ(rows[17], " Logic message 16");
    EXPECT_EQ(help, "Close the guard door and press reset.\n");
    EXPECT_EQ(helpCaption, "&MESSAGES");
    EXPECT_EQ(backCaption, "&HELP");
    EXPECT_EQ(missingHelp, "");
}

TEST_F(PanelTest, AcknowledgeRemovesTheListOfReceivedPrograms) {
    ASSERT_EQ(Start(), 0);
    std::string receive = P().State().Config.Dirs.HelpDir + "Receive.hlp";
    Write("Messages/Help/Receive.hlp", "PART7 : Dorvenis\n");
    P().State().Display.NewProgramsReceived = true;
    P().State().Display.ReceiveHelpFile = receive;
    FillMessages(P().State(), 0, 0);
    std::string before, after;
    WhenModal([&](QWidget* modal) {
        auto* form = static_cast<MessageForm*>(modal);
        before = form->Message(1)->text().toStdString();
        form->ClearButton()->click();
        after = form->Message(1)->text().toStdString();
        form->ExitButton()->click();
    });
    Key(key::F9);
    EXPECT_EQ(before, " New Program(s) Received");
    EXPECT_EQ(after, "");
    EXPECT_FALSE(std::filesystem::exists(receive));
    EXPECT_FALSE(P().State().Display.NewProgramsReceived);
}

TEST_F(PanelTest, NumberPadFiltersAndCancelReturnsTheOldValue) {
    ASSERT_EQ(Start(), 0);
    int beeps = -1;
    std::string boxAfterPoint;
    WhenModal([&](QWidget* modal) {
        auto* form = static_cast<NumberForm*>(modal);
        EXPECT_EQ(form->Box()->selectedText(), "12");
        form->SendKey('.');
        beeps = form->Beeps().Beeps;
        boxAfterPoint = form->Box()->text().toStdString();
        QTest::keyClick(form, Qt::Key_4);
        QTest::keyClick(form, Qt::Key_7);
        form->OkButton()->click();
    });
    double value = 0;
    EXPECT_TRUE(P().EnterNumber(value, "12", -1));
    EXPECT_EQ(beeps, 1);
    EXPECT_EQ(boxAfterPoint, "12");
    EXPECT_DOUBLE_EQ(value, 47);

    WhenModal([](QWidget* modal) {
        auto* form = static_cast<NumberForm*>(modal);
        form->SendKey('9');
        form->ExitButton()->click();
    });
    EXPECT_FALSE(P().EnterNumber(value, "12.5", -5));
    EXPECT_DOUBLE_EQ(value, 12.5);
}

TEST_F(PanelTest, KeyboardKeepsEighteenLettersAndShifts) {
    ASSERT_EQ(Start(), 0);
    int beeps = -1;
    WhenModal([&](QWidget* modal) {
        auto* form = static_cast<KeyboardForm*>(modal);
        for (char c : std::string("ABCDEFGHIJKLMNOPQRS")) form->SendKey(c);
        beeps = form->Beeps().Beeps;
        form->OkButton()->click();
    });
    std::string text = "OLD";
    EXPECT_TRUE(P().EnterText(text, 18));
    EXPECT_EQ(text, "ABCDEFGHIJKLMNOPQR");
    EXPECT_EQ(beeps, 1);

    WhenModal([&](QWidget* modal) {
        auto* form = static_cast<KeyboardForm*>(modal);
        EXPECT_EQ(form->findChild<QLabel*>("KeyboardPanel")->text(), "KEY PAD");
        form->ShiftButton()->click();
        EXPECT_FALSE(form->Upper());
        for (QPushButton* b : form->KeyButtons())
            if (b->text() == "q") b->click();
        form->ShiftButton()->click();
        for (QPushButton* b : form->KeyButtons())
            if (b->text() == "Q" || b->text() == "SPACE") b->click();
        form->OkButton()->click();
    });
    text = "";
    EXPECT_TRUE(P().EnterText(text, 0));
    EXPECT_EQ(text, "qQ");  // the space at the end is trimmed
}

TEST_F(PanelTest, UserFormFromKeypadCfgAndItsMissingFile) {
    ASSERT_EQ(Start(), 0);
    std::string note;
    WhenModal([&](QWidget* modal) {
        note = static_cast<UserForm*>(modal)->NoteLabel()->text().toStdString();
        modal->close();
    });
    Key('K');
    EXPECT_EQ(note, "Keypad.cfg not found: no user keys");

    Write("Data/Keypad.cfg",
          "Y, M, LIGHTS, M10=1, M10=0\nY, L, VACUUM, M11=1, M11=0\nN, M, OFF, M12=1, M12=0\n******\n");
    std::string first, second;
    bool thirdShown = true, secondIsCheck = false;
    WhenModal([&](QWidget* modal) {
        auto* form = static_cast<UserForm*>(modal);
        first = form->UserButton(1)->text().toStdString();
        second = form->UserCheck(2)->text().toStdString();
        secondIsCheck = form->UserCheck(2)->isVisibleTo(form) && !form->UserButton(2)->isVisibleTo(form);
        thirdShown = form->UserButton(3)->isVisibleTo(form) || form->UserCheck(3)->isVisibleTo(form);
        QTest::keyClick(form, Qt::Key_A);  // an office seat: nothing reaches a card, nothing breaks
        form->ExitButton()->click();
    });
    Key('K');
    EXPECT_EQ(first, "(&A) LIGHTS");
    EXPECT_EQ(second, "(&B) VACUUM");
    EXPECT_TRUE(secondIsCheck);
    EXPECT_FALSE(thirdShown);
}

TEST_F(PanelTest, ShutdownCancelDoesNothing) {
    ASSERT_EQ(Start(), 0);
    WhenModal([](QWidget* modal) {
        auto* form = static_cast<ShutdownForm*>(modal);
        EXPECT_EQ(form->focusWidget(), form->ShutdownButton());
        form->CancelButton()->click();
    });
    Key(key::F12);
    EXPECT_EQ(Ends, 0);
    EXPECT_TRUE(F().isVisible());
    EXPECT_FALSE(P().State().ShuttingDown);
}

TEST_F(PanelTest, ShutdownButtonPowersOffBehindThePlatform) {
    ASSERT_EQ(Start(), 0);
    std::string label;
    WhenModal([&](QWidget* modal) {
        auto* form = static_cast<ShutdownForm*>(modal);
        form->ShutdownButton()->click();
        label = form->ShutdownLabel()->text().toStdString();
    });
    Key(key::F12);
    EXPECT_EQ(label, "SHUTTING DOWN !");
    EXPECT_EQ(PowerOffs, 1);
    EXPECT_EQ(Ends, 1);
    EXPECT_TRUE(P().State().ShuttingDown);
    EXPECT_FALSE(F().isVisible());
    EXPECT_FALSE(P().PollTimer().isActive());
}

TEST_F(PanelTest, ServiceExitWithAMissingServiceProgramEndsQuietly) {
    Write("Service.cfg", "/no/such/service/program\n******\n");
    ASSERT_EQ(Start(), 0);
    WhenModal([](QWidget* modal) { static_cast<ShutdownForm*>(modal)->ServiceButton()->click(); });
    Key(key::F12);
    EXPECT_EQ(PowerOffs, 0);
    EXPECT_EQ(Ends, 1);
    EXPECT_FALSE(F().isVisible());
}

TEST_F(PanelTest, DamagedColourCfgSaysSoAndTheMissingOneIsWritten) {
    Write("Colour.cfg", "Plot Background, purple\n");
    ASSERT_EQ(Start(), 0);
    EXPECT_EQ(F().TextPanel()->text(), "Colour.cfg: 48 of 48 colours unreadable, their defaults in use");
    EXPECT_EQ(P().Colours()[ColourItem::PlotBackground], 4194304);
    std::filesystem::remove(dir_.Path() + "Colour.cfg");
    panel_.reset();
    ASSERT_EQ(Start(), 0);
    EXPECT_TRUE(std::filesystem::exists(dir_.Path() + "Colour.cfg"));
    EXPECT_EQ(F().TextPanel()->text(), "");
}

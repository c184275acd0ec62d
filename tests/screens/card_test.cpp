#include <QLabel>

#include "controller/cardsim/card_simulator.h"
#include "core/number.h"
#include "navigation/navigation.h"
#include "screens/shutdown_form.h"
#include "screens/warning_form.h"
#include "system/slot_run_plan.h"
#include "tests/screens/panel_fixture.h"

using namespace kirvana;

namespace {

// A loopback port on which nothing listens.
int DeadPort() {
    CardSimulator sim;
    sim.Start(0);
    int port = sim.Port();
    sim.Stop();
    return port;
}

}  // namespace

TEST_F(PanelTest, CardThatNeverOpensShowsInitialisationFailureOnce) {
    CardAt(DeadPort());
    auto boxes = std::make_shared<std::vector<std::string>>();
    std::function<void(QWidget*)> answer = [boxes, &answer](QWidget* modal) {
        auto* label = modal->findChild<QLabel*>("qt_msgbox_label");
        boxes->push_back(modal->objectName().toStdString() + ": " + (label ? label->text().toStdString() : "?") +
                         " / " + modal->windowTitle().toStdString());
        modal->findChild<QPushButton*>()->click();
        if (boxes->size() == 1) WhenModal(answer, 3000);
    };
    WhenModal(answer);
    EXPECT_EQ(Start(), 4);
    ASSERT_EQ(boxes->size(), 1u);
    EXPECT_EQ((*boxes)[0], "MessageBox: Initialisation Failure ! / Kirvana 32");
    EXPECT_EQ(P().Front(), nullptr);
}

TEST_F(PanelTest, CardThatDiesMidRunAsksAndTheAnswerYesEndsForService) {
    CardSimulator sim;
    ASSERT_TRUE(sim.Start(0));
    CardAt(sim.Port());
    ASSERT_EQ(Start(), 0);
    Spin(300);
    EXPECT_GT(sim.Received().size(), 0u);
    sim.Stop();
    // The first question: No keeps the panel alive and working.
    std::string question;
    WhenModal([&](QWidget* modal) {
        auto* form = static_cast<WarningForm*>(modal);
        question = form->WarningLabel()->text().toStdString();
        form->WarningButton(1)->click();
    });
    QElapsedTimer clock;
    clock.start();
    while (question.empty() && clock.elapsed() < 8000) Spin(20);
    ASSERT_FALSE(question.empty());
    EXPECT_EQ(question.rfind("An error occurred while talking to PMAC !\n\nError Number :  ", 0), 0u) << question;
    EXPECT_NE(question.find("\n\nShutdown Kirvana ?"), std::string::npos);
    EXPECT_EQ(Ends, 0);
    EXPECT_TRUE(F().isVisible());
    // The panel still takes keys between the questions.
    F().MainButton(7)->click();
    EXPECT_TRUE(P().Nav().GraphicsOn);
    // The question comes again at a later tick; Yes ends for service: no power off.
    bool asked = false;
    WhenModal([&](QWidget* modal) {
        asked = true;
        static_cast<WarningForm*>(modal)->WarningButton(0)->click();
    });
    clock.restart();
    while (Ends == 0 && clock.elapsed() < 8000) Spin(20);
    EXPECT_TRUE(asked);
    EXPECT_EQ(Ends, 1);
    EXPECT_EQ(PowerOffs, 0);
    EXPECT_TRUE(P().State().ShuttingDown);
}

TEST_F(PanelTest, EndToEndARunOnTheSimulatorShowsItsFinalPositionAndHits) {
    CardSimulator sim;
    Directories dirs;
    dirs.RootDir = dir_.Path();
    sim.SetRunPlanSource(SlotRunPlanSource(dirs));
    sim.SetRunSpeed(40);
    ASSERT_TRUE(sim.Start(0));
    CardAt(sim.Port());
    ASSERT_EQ(Start(), 0);
    Select(1, "PLATE01");
    ASSERT_FALSE(sim.Program(1).empty());
    // The machine's cycle start button; the panel follows the run tick by tick until it ends.
    ASSERT_TRUE(sim.CycleStart());
    QElapsedTimer clock;
    clock.start();
    bool sawRunning = false;
    while (clock.elapsed() < 20000) {
        Spin(50);
        sawRunning = sawRunning || P().State().Running;
        if (sawRunning && !P().State().Running) break;
    }
    ASSERT_TRUE(sawRunning);
    EXPECT_FALSE(P().State().Running);
    Spin(200);
    // The simulator's own final position and hit count, as the status panel shows them.
    auto answer = [&](const char* query) {
        std::string text = sim.Execute(query);
        return text.substr(0, text.find('\r'));
    };
    std::string x = FormatNumber(ToNumber(answer("#1P")), 1);
    std::string y = FormatNumber(ToNumber(answer("#2P")), 1);
    EXPECT_EQ(F().PositionText(1)->text().toStdString(), x);
    EXPECT_EQ(F().PositionText(2)->text().toStdString(), y);
    EXPECT_EQ(F().HitCountText()->text().toStdString(), answer("M869"));
    EXPECT_EQ(answer("M869"), "5");  // PLATE01's five hits
    EXPECT_NE(x, "0.0");
}

TEST_F(PanelTest, ShutdownWithSaveAndNoWaitSendsSaveAndGoodbye) {
    CardSimulator sim;
    ASSERT_TRUE(sim.Start(0));
    Write("Control.cnc", "Card in use: TRUE\nPoll log: FALSE\n******\n");
    Write("PMAC.cfg",
          "Save on shutdown: YES\nSave wait (ms): 0\nPoll interval (ms): 50\nPoll restart delay (ms): 60\n"
          "Card: 127.0.0.1:" +
              std::to_string(sim.Port()) + "\n******\n");
    ASSERT_EQ(Start(), 0);
    sim.ClearReceived();
    QElapsedTimer clock;
    WhenModal([&](QWidget* modal) {
        clock.start();
        static_cast<ShutdownForm*>(modal)->ShutdownButton()->click();
    });
    Key(key::F12);
    EXPECT_LT(clock.elapsed(), 1000);
    EXPECT_EQ(Ends, 1);
    EXPECT_EQ(PowerOffs, 1);
    std::vector<std::string> received = sim.Received();
    EXPECT_NE(std::find(received.begin(), received.end(), "P1021=P1021-1"), received.end());
    EXPECT_NE(std::find(received.begin(), received.end(), "SAVE"),
              received.end());  // the card takes its commands in capitals
}

TEST_F(PanelTest, UserKeysSendTheirTextsToTheCard) {
    CardSimulator sim;
    ASSERT_TRUE(sim.Start(0));
    CardAt(sim.Port());
    Write("Data/Keypad.cfg", "Y, M, LIGHTS, M10=1, M10=0\nY, L, VACUUM, M11=1, M11=0\n******\n");
    ASSERT_EQ(Start(), 0);
    WhenModal([](QWidget* modal) {
        QTest::mouseClick(ButtonOf(modal, "UserButton1"), Qt::LeftButton);  // press and release
        QTest::keyClick(modal, Qt::Key_B);                                  // the latch in
        ButtonOf(modal, "UserCheck2")->click();                             // and out again
        ButtonOf(modal, "ExitButton")->click();
    });
    Key('K');
    EXPECT_EQ(sim.Variable("M10"), 0);
    EXPECT_EQ(sim.Variable("M11"), 0);
    std::vector<std::string> received = sim.Received();
    std::vector<std::string> keys;
    for (const std::string& r : received)
        if (r.rfind("M10=", 0) == 0 || r.rfind("M11=", 0) == 0) keys.push_back(r);
    EXPECT_EQ(keys, (std::vector<std::string>{"M10=1", "M10=0", "M11=1", "M11=0"}));
}

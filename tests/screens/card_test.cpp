#include <QLabel>

#include "controller/cardsim/card_simulator.h"
#include "screens/warning_form.h"
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
        boxes->push_back(modal->objectName().toStdString() + ": " + (label ? label->text().toStdString() : "?") + " / " +
                         modal->windowTitle().toStdString());
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
    ASSERT_TRUE(sim.Start(0));
    CardAt(sim.Port());
    ASSERT_EQ(Start(), 0);
    Select(1, "PLATE01");
    ASSERT_FALSE(sim.Program(1).empty());
    // The cycle start: the card runs, moves and punches over several ticks, then stops.
    sim.RaiseStatusBits(16384 | 8192);
    for (int step = 1; step <= 5; ++step) {
        sim.SetMotor(1, 100.0 * step + 0.3, 0);
        sim.SetMotor(2, 50.0 * step, 0);
        sim.StepHits(1);
        Spin(120);
        EXPECT_TRUE(P().State().Running);
    }
    sim.SetVariable("P1022", 0);
    Spin(200);
    EXPECT_FALSE(P().State().Running);
    EXPECT_EQ(F().PositionText(1)->text(), "500.3");
    EXPECT_EQ(F().PositionText(2)->text(), "250.0");
    EXPECT_EQ(F().HitCountText()->text(), "5");
    EXPECT_EQ(P().State().Display.HitCount, 5);
}

// StatusMenuForm, MachineStatusForm and PlasmaStatusForm on the card simulator, and a run of a
// demo program that the status screens follow to its end.
#include "core/number.h"
#include "navigation/machine_screens.h"
#include "navigation/navigation.h"
#include "system/slot_run_plan.h"
#include "tests/screens/machine_fixture.h"

using namespace kirvana;

using Texts = std::vector<std::string>;

TEST_F(MachineFormsTest, StatusMenuOpensFromF4AndItsButtonAndOpensItsPages) {
    StartPanel();
    EXPECT_EQ(FormOpenedBy([&] { Key(key::F4); }), "StatusMenuForm");
    ASSERT_TRUE(WithForm([&] { F().MainButton(4)->click(); },
                         [&](QWidget* form) {
                             EXPECT_EQ(FormOpenedBy([&] { Child(form, "MenuButton0")->click(); }), "MachineStatusForm");
                             EXPECT_EQ(FormOpenedBy([&] { QTest::keyClick(form, Qt::Key_M); }), "MachineStatusForm");
                             EXPECT_EQ(FormOpenedBy([&] { QTest::keyClick(form, Qt::Key_P); }), "PlasmaStatusForm");
                             EXPECT_EQ(FormOpenedBy([&] { Child(form, "MenuButton1")->click(); }), "PlasmaStatusForm");
                         }));
}

TEST_F(MachineFormsTest, BlockSkipsTakeTheirStateFromTheCardAndSendTheirTexts) {
    sim_.SetVariable("M873", 1);
    StartPanel();
    ASSERT_TRUE(WithForm([&] { Key(key::F4); },
                         [&](QWidget* form) {
                             EXPECT_EQ(TextOf(form, "SkipButton1"), "BLOCK SKIP &1");
                             EXPECT_TRUE(Child(form, "SkipButton1")->isChecked());
                             EXPECT_FALSE(Child(form, "SkipButton2")->isChecked());
                             Commands();
                             Child(form, "SkipButton1")->click();
                             QTest::keyClick(form, Qt::Key_2);
                             EXPECT_EQ(Commands(), (Texts{"M873=0", "M874=1"}));
                             EXPECT_FALSE(Child(form, "SkipButton1")->isChecked());
                             EXPECT_TRUE(Child(form, "SkipButton2")->isChecked());
                         }));
    ASSERT_TRUE(WithForm([&] { Key(key::F4); },
                         [&](QWidget* form) {
                             EXPECT_FALSE(Child(form, "SkipButton1")->isChecked());
                             EXPECT_TRUE(Child(form, "SkipButton2")->isChecked());
                         }));
}

TEST_F(MachineFormsTest, MachineStatusShowsRunTimeClampsAndTheStationInWork) {
    StartPanel();
    sim_.SetVariable("Q17", 125);
    sim_.SetVariable("M835", 300);
    sim_.SetVariable("M836", 900.45);
    sim_.SetVariable("M837", 1500);
    sim_.RaiseStatusBits(256);
    ASSERT_TRUE(WithForm(
        [&] { P().OpenForm("MachineStatusForm"); },
        [&](QWidget* form) {
            ASSERT_TRUE(WaitFor([&] { return TextOf(form, "RunTimeText") == "2:05"; })) << TextOf(form, "RunTimeText");
            const MachineStatusDisplay& status = P().State().Display.MachineStatus;
            EXPECT_EQ(status.ClampCount, 3);
            for (int n = 0; n < 3; ++n)
                EXPECT_EQ(TextOf(form, qPrintable(QString("ClampText%1").arg(n + 1))), status.ClampTexts[n]);
            EXPECT_FALSE(Child<QLabel>(form, "ClampText4")->isVisible());
            EXPECT_EQ(TextOf(form, "StationText"), status.StationText);
            EXPECT_EQ(TextOf(form, "ToolText"), status.ToolText);
            EXPECT_EQ(TextOf(form, "OffsetText1"), status.OffsetTexts[0]);
            EXPECT_NE(status.StationText, "");
            sim_.SetVariable("Q17", 59);
            EXPECT_TRUE(WaitFor([&] { return TextOf(form, "RunTimeText") == "0:59"; })) << TextOf(form, "RunTimeText");
        }));
}

TEST_F(MachineFormsTest, PlasmaStatusShowsTheTorchTheInputsAndThePlasmaValues) {
    StartPanel();
    sim_.SetVariable("M885", 1);
    sim_.SetVariable("M887", 1);
    sim_.SetVariable("M872", 1);
    for (int n = 0; n < 10; ++n) sim_.SetVariable("P" + std::to_string(101 + n), 10 * (n + 1) + 0.5);
    ASSERT_TRUE(WithForm([&] { P().OpenForm("PlasmaStatusForm"); },
                         [&](QWidget* form) {
                             ASSERT_TRUE(WaitFor([&] { return TextOf(form, "TorchHeightText") == " DOWN"; }))
                                 << TextOf(form, "TorchHeightText");
                             EXPECT_EQ(TextOf(form, "InputText1"), " ON");
                             EXPECT_EQ(TextOf(form, "InputText2"), " OFF");
                             EXPECT_EQ(TextOf(form, "InputText3"), " OFF");
                             EXPECT_EQ(TextOf(form, "OffsetSideText"), " LEFT");
                             EXPECT_EQ(TextOf(form, "CardText1"), "10.5");
                             EXPECT_EQ(TextOf(form, "CardText10"), "100.5");
                             const PlasmaPanel& plasma = P().State().Display.Plasma;
                             for (int n = 0; n < 10; ++n)
                                 EXPECT_EQ(TextOf(form, qPrintable(QString("SettingText%1").arg(n + 1))),
                                           plasma.SettingTexts[n]);
                             sim_.SetVariable("M885", 2);
                             EXPECT_TRUE(WaitFor([&] { return TextOf(form, "TorchHeightText") == " CLEAR"; }));
                         }));
}

TEST_F(MachineFormsTest, EndToEndTheStatusScreensFollowADemoRunToItsEnd) {
    Directories dirs;
    dirs.RootDir = dir_.Path();
    sim_.SetRunPlanSource(SlotRunPlanSource(dirs));
    sim_.SetRunSpeed(20);
    StartPanel();
    Select(1, "PLATE01");
    ASSERT_FALSE(sim_.Program(1).empty());
    std::set<std::string> xs, hits, times;
    bool sawRunning = false;
    std::string finalX, finalY, finalHits;
    // The position screen from the machine menu, and over it the machine status from F4.
    ASSERT_TRUE(WithForm([&] { Key(key::F3); },
                         [&](QWidget* machine) {
                             ASSERT_TRUE(WithForm([&] { QTest::keyClick(machine, Qt::Key_P); },
                                                  [&](QWidget* position) {
                                                      ASSERT_TRUE(WithForm(
                                                          [&] { QTest::keyClick(position, Qt::Key_F4); },
                                                          [&](QWidget* menu) {
                                                              ASSERT_TRUE(WithForm(
                                                                  [&] { QTest::keyClick(menu, Qt::Key_M); },
                                                                  [&](QWidget* status) {
                                                                      ASSERT_TRUE(sim_.CycleStart());
                                                                      QElapsedTimer clock;
                                                                      clock.start();
                                                                      while (clock.elapsed() < 30000) {
                                                                          Spin(40);
                                                                          xs.insert(TextOf(position, "PositionText1"));
                                                                          hits.insert(TextOf(status, "HitCountText"));
                                                                          times.insert(TextOf(status, "RunTimeText"));
                                                                          sawRunning =
                                                                              sawRunning || P().State().Running;
                                                                          if (sawRunning && !P().State().Running) break;
                                                                      }
                                                                      Spin(200);
                                                                      finalX = TextOf(position, "PositionText1");
                                                                      finalY = TextOf(position, "PositionText2");
                                                                      finalHits = TextOf(status, "HitCountText");
                                                                  }));
                                                          }));
                                                  }));
                         }));
    ASSERT_TRUE(sawRunning);
    EXPECT_FALSE(P().State().Running);
    auto answer = [&](const char* query) {
        std::string text = sim_.Execute(query);
        return text.substr(0, text.find('\r'));
    };
    EXPECT_EQ(finalX, FormatNumber(ToNumber(answer("#1P")) / P().State().AxisScale[0], 2));
    EXPECT_EQ(finalY, FormatNumber(ToNumber(answer("#2P")) / P().State().AxisScale[1], 2));
    EXPECT_EQ(finalHits, "5");  // PLATE01's five hits
    // The screens moved with the run, not only to its end.
    EXPECT_GE(xs.size(), 3u);
    EXPECT_GE(hits.size(), 3u);
}

TEST_F(MachineFormsTest, ProgramChangeClosesTheStatusAndSetupScreensFirst) {
    StartPanel();
    for (const char* name : {"MachineStatusForm", "SetupForm"}) {
        bool closed = false;
        ASSERT_TRUE(WithForm([&] { P().OpenForm(name); },
                             [&](QWidget* form) {
                                 Key(key::F11);
                                 closed = !form->isVisible();
                             }));
        EXPECT_TRUE(closed) << name;
        EXPECT_EQ(P().State().Config.ActiveSlot, 2);
        Key(key::F10);
    }
}

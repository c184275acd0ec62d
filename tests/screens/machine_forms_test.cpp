// MachineForm, LoadForm, MoveForm and SetupForm on the card simulator: opened by their keys and
// buttons, the texts they send, their refusals with nothing sent, and the values they show.
#include <QListWidget>

#include "core/number.h"
#include "navigation/machine_screens.h"
#include "navigation/navigation.h"
#include "tests/screens/machine_fixture.h"

using namespace kirvana;

using Texts = std::vector<std::string>;

TEST_F(MachineFormsTest, MachineFormOpensFromF3AndFromItsMainButton) {
    StartPanel();
    EXPECT_EQ(FormOpenedBy([&] { Key(key::F3); }), "MachineForm");
    EXPECT_EQ(FormOpenedBy([&] { F().MainButton(3)->click(); }), "MachineForm");
    EXPECT_FALSE(P().State().Display.Visible.MachineForm);
}

TEST_F(MachineFormsTest, ReferenceButtonsSendTheirRequestBits) {
    StartPanel();
    ASSERT_TRUE(WithForm([&] { Key(key::F3); },
                         [&](QWidget* form) {
                             for (int i = 0; i < 5; ++i) {
                                 QPushButton* button = Child(form, qPrintable(QString("ReferenceButton%1").arg(i)));
                                 EXPECT_EQ(button->text().toStdString(), ReferenceButtonCaptions[i]);
                                 button->click();
                             }
                             // By key: R is "&REFERENCE ALL".
                             QTest::keyClick(form, Qt::Key_R);
                         }));
    EXPECT_EQ(Commands(), (Texts{"P1021=P1021|32", "P1021=P1021|2", "P1021=P1021|4", "P1021=P1021|8", "P1021=P1021|8",
                                 "P1021=P1021|32"}));
}

TEST_F(MachineFormsTest, ReferenceIsRefusedWhileRunningInFeedholdOrInCycleAndSendsNothing) {
    StartPanel();
    for (std::int64_t state : {16384, 2048, 8192}) {
        CardStatus(state);
        ASSERT_TRUE(WithForm([&] { Key(key::F3); },
                             [&](QWidget* form) {
                                 for (int i = 0; i < 5; ++i)
                                     EXPECT_EQ(WarningOf(Child(form, qPrintable(QString("ReferenceButton%1").arg(i)))),
                                               "Can Not Reference" + RunningOrFeedhold + "\n\n\n")
                                         << state;
                             }));
        EXPECT_EQ(Commands(), Texts{}) << state;
    }
}

TEST_F(MachineFormsTest, FeedButtonsStepTheOverrideTheFormShows) {
    StartPanel();
    sim_.Execute("%90");
    ASSERT_TRUE(WithForm([&] { Key(key::F3); },
                         [&](QWidget* form) {
                             ASSERT_TRUE(WaitFor([&] { return TextOf(form, "FeedText") == "90"; }))
                                 << TextOf(form, "FeedText");
                             EXPECT_EQ(TextOf(form, "FeedText"), P().State().Display.MachineFeedText);
                             Commands();
                             Child(form, "FeedButton0")->click();  // - 20
                             Child(form, "FeedButton3")->click();  // + 5
                             EXPECT_EQ(Commands(), (Texts{"%70", "%75"}));
                             EXPECT_TRUE(WaitFor([&] { return TextOf(form, "FeedText") == "75"; }))
                                 << TextOf(form, "FeedText");
                             QTest::keyClick(form, Qt::Key_4);  // "+ 20 (&4)"
                             QTest::keyClick(form, Qt::Key_2);  // "- 5 (&2)"
                             EXPECT_EQ(Commands(), (Texts{"%95", "%90"}));
                         }));
}

TEST_F(MachineFormsTest, MachineMenuOpensEachFormByButtonAndByKey) {
    StartPanel();
    ASSERT_TRUE(
        WithForm([&] { Key(key::F3); },
                 [&](QWidget* form) {
                     for (int i = 0; i < static_cast<int>(MachineMenu.size()); ++i) {
                         QPushButton* button = Child(form, qPrintable(QString("MenuButton%1").arg(i)));
                         EXPECT_EQ(FormOpenedBy([&] { button->click(); }), MachineMenu[i].Form);
                         int letter = MnemonicOf(MachineMenu[i].Caption);
                         EXPECT_EQ(FormOpenedBy([&] { QTest::keyClick(form, static_cast<char>(letter + 'a' - 'A')); }),
                                   MachineMenu[i].Form);
                     }
                 }));
}

TEST_F(MachineFormsTest, LoadFormFillsItsBoxesFromTheCardAndSendsWhatThePadEntered) {
    for (auto [name, value] : {std::pair{"Q10", 10.5}, {"Q11", 1250.0}, {"Q12", 2400.25}, {"Q13", -3.0}})
        sim_.SetVariable(name, value);
    StartPanel();
    ASSERT_TRUE(WithForm([&] { P().OpenForm("LoadForm"); },
                         [&](QWidget* form) {
                             EXPECT_EQ(TextOf(form, "LoadBox0"), "10.5");
                             EXPECT_EQ(TextOf(form, "LoadBox1"), "1250");
                             EXPECT_EQ(TextOf(form, "LoadBox2"), "2400.25");
                             EXPECT_EQ(TextOf(form, "LoadBox3"), "-3");
                             TypeInto(Child(form, "LoadBox0"), "12.125");
                             EXPECT_EQ(TextOf(form, "LoadBox0"), "12.125");
                             Commands();
                             Child(form, "LoadButton1")->click();
                             EXPECT_EQ(Commands(), (Texts{"Q10=12.125", "Q11=1250", "P1021=P1021|64"}));
                             // The box's key opens the pad: "Y :  &4" is the last box.
                             WhenModal([](QWidget* pad) {
                                 static_cast<PadForm*>(pad)->SendKey('7');
                                 static_cast<PadForm*>(pad)->OkButton()->click();
                             });
                             QTest::keyClick(form, Qt::Key_4);
                             EXPECT_EQ(TextOf(form, "LoadBox3"), "7");
                             QTest::keyClick(form, Qt::Key_B);  // "LOAD &B"
                             EXPECT_EQ(Commands(), (Texts{"Q12=2400.25", "Q13=7", "P1021=P1021|128"}));
                         }));
}

TEST_F(MachineFormsTest, LoadWritesItsPositionsAlwaysAndIsRefusedOnlyWithALogicMessageOtherThan16) {
    StartPanel();
    CardStatus(16384);
    ASSERT_TRUE(WithForm([&] { P().OpenForm("LoadForm"); },
                         [&](QWidget* form) {
                             sim_.SetVariable("P1020", 1);
                             EXPECT_EQ(WarningOf(Child(form, "LoadButton1")),
                                       "Can Not Move" + RunningOrFeedhold + "\n\n\n");
                             EXPECT_EQ(Commands(), (Texts{"Q10=0", "Q11=0"}));
                             // A standing message 16, or none: the load goes ahead even while running.
                             sim_.SetVariable("P1020", 16);
                             Child(form, "LoadButton2")->click();
                             EXPECT_EQ(Commands(), (Texts{"Q12=0", "Q13=0", "P1021=P1021|128"}));
                             sim_.SetVariable("P1020", 0);
                             Child(form, "LoadButton1")->click();
                             EXPECT_EQ(Commands(), (Texts{"Q10=0", "Q11=0", "P1021=P1021|64"}));
                         }));
}

TEST_F(MachineFormsTest, MoveFormSendsStationPositionsAndItsBit) {
    StartPanel();
    ASSERT_TRUE(
        WithForm([&] { P().OpenForm("MoveForm"); },
                 [&](QWidget* form) {
                     auto* list = Child<QListWidget>(form, "MoveList");
                     ASSERT_EQ(list->count(), P().State().Config.Machine.StationCount);
                     EXPECT_EQ(list->item(0)->text().toStdString(), MoveStationEntries(P().State())[0]);
                     list->setCurrentRow(2);
                     TypeInto(Child(form, "MoveBox1"), "500.5");
                     TypeInto(Child(form, "MoveBox2"), "-12");
                     TypeInto(Child(form, "MoveBox3"), "90");
                     Commands();
                     Child(form, "MoveButton1")->click();
                     EXPECT_EQ(Commands(), (Texts{"M802=3", "Q14=500.5", "Q15=-12", "Q16=90", "P1021=P1021|256"}));
                     QTest::keyClick(form, Qt::Key_P);  // "&PUNCH"
                     EXPECT_EQ(Commands(), (Texts{"M802=3", "Q14=500.5", "Q15=-12", "Q16=90", "P1021=P1021|512"}));
                 }));
}

TEST_F(MachineFormsTest, MoveAndPunchAreRefusedWhileRunningAndOnTheHoldBit) {
    StartPanel();
    for (std::int64_t state : {16384, 2048, 8192, 4096}) {
        CardStatus(state);
        ASSERT_TRUE(WithForm(
            [&] { P().OpenForm("MoveForm"); },
            [&](QWidget* form) {
                EXPECT_EQ(WarningOf(Child(form, "MoveButton1")), "Can Not Move" + RunningOrFeedhold + "\n\n\n");
                EXPECT_EQ(WarningOf(Child(form, "MoveButton2")), "Can Not Move" + RunningOrFeedhold + "\n\n\n");
            }));
        EXPECT_EQ(Commands(), Texts{}) << state;
    }
}

TEST_F(MachineFormsTest, SetupFormReferencesClampsMovesTheCarriageAndShowsTheClamps) {
    StartPanel();
    ASSERT_TRUE(WithForm([&] { P().OpenForm("SetupForm"); },
                         [&](QWidget* form) {
                             EXPECT_EQ(TextOf(form, "ReferenceButton"), "&REFERENCE CLAMPS");
                             EXPECT_EQ(TextOf(form, "CarriageButton"), "&CARRIAGE");
                             Child(form, "ReferenceButton")->click();
                             QTest::keyClick(form, Qt::Key_C);
                             EXPECT_EQ(Commands(), (Texts{"P1021=P1021|4", "P1021=P1021|4096"}));
                             // New clamp positions from the card.
                             sim_.SetVariable("M835", 120.5);
                             sim_.SetVariable("M836", 640.25);
                             sim_.SetVariable("M837", 1100);
                             sim_.RaiseStatusBits(256);
                             ASSERT_TRUE(WaitFor([&] { return TextOf(form, "ActualText2") == "640.25"; }))
                                 << TextOf(form, "ActualText2");
                             EXPECT_EQ(TextOf(form, "ActualText1"), "120.50");
                             EXPECT_EQ(TextOf(form, "ActualText3"), "1100.00");
                             const ClampPanel& clamps = P().State().Display.Clamps;
                             EXPECT_EQ(clamps.ClampCount, 3);
                             EXPECT_FALSE(Child<QLabel>(form, "ActualText4")->isVisible());
                             for (int n = 0; n < 3; ++n)
                                 EXPECT_EQ(TextOf(form, qPrintable(QString("DemandText%1").arg(n + 1))),
                                           clamps.DemandTexts[n]);
                         }));
}

TEST_F(MachineFormsTest, SetupCommandsAreRefusedWhileRunningAndSendNothing) {
    StartPanel();
    for (std::int64_t state : {16384, 2048, 8192}) {
        CardStatus(state);
        ASSERT_TRUE(WithForm([&] { P().OpenForm("SetupForm"); },
                             [&](QWidget* form) {
                                 EXPECT_EQ(WarningOf(Child(form, "ReferenceButton")),
                                           "Can Not Reference" + RunningOrFeedhold + "\n\n\n");
                                 EXPECT_EQ(WarningOf(Child(form, "CarriageButton")),
                                           "Can Not Move" + RunningOrFeedhold + "\n\n\n");
                             }));
        EXPECT_EQ(Commands(), Texts{}) << state;
    }
}

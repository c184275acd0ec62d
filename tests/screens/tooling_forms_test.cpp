// The tooling screens on the panel: each opens from its key and its button, shows the slot's
// values, sends exactly its texts to the card (the simulator records them), refuses while the
// machine runs with its two-line text and sends nothing; the tool definition keeps a tool that
// fails its checks on the screen, and files that cannot be written are said.
#include <QLabel>
#include <QLineEdit>

#include "controller/cardsim/card_simulator.h"
#include "screens/pad_forms.h"
#include "screens/settings_forms.h"
#include "screens/tool_def_dialogue.h"
#include "screens/turret_form.h"
#include "screens/warning_form.h"
#include "tests/screens/panel_fixture.h"

using namespace kirvana;

namespace {

const std::string RunningOrFeedhold = "\n\nWhile Machine Is Running Or In Feedhold !\n\n\n";

class ToolingFormsTest : public PanelTest {
protected:
    // The panel on the simulated card, PLATE01 in slot 1, the poll stopped so that only the
    // forms' own texts reach the card.
    void StartOnCard() {
        ASSERT_TRUE(sim_.Start(0));
        CardAt(sim_.Port());
        ASSERT_EQ(Start(), 0);
        Select(1, "PLATE01");
        P().PollTimer().stop();
        Spin(50);
        sim_.ClearReceived();
    }
    // What the card was told: the assignments and feed overrides, without the poll's queries.
    std::vector<std::string> Received() {
        std::vector<std::string> told;
        for (const std::string& text : sim_.Received())
            if (text.find('=') != std::string::npos || (text.size() > 1 && text[0] == '%')) told.push_back(text);
        return told;
    }
    // The machine's state as the card gives it to the poll, and as the last tick left it.
    void MachineState(bool running, bool feedhold, bool cycle) {
        sim_.SetVariable("P1022", (running ? 16384 : 0) + (feedhold ? 2048 : 0) + (cycle ? 8192 : 0));
        P().State().Running = running;
        P().State().InFeedhold = feedhold;
        P().State().InCycle = cycle;
    }
    // A tool for a station of the active slot, as the definition screen gives it.
    void Tool(int station, const char* text) {
        ToolRecord tool;
        ASSERT_TRUE(ParseToolText(text, tool, false));
        TurretEdits edits;
        DefineTurretTool(P().State(), edits, station, tool);
    }
    // Runs `act` on the next modal form; then closes it with its exit button when still open.
    void OnModal(std::function<void(QWidget*)> act) {
        WhenModal([act](QWidget* modal) {
            act(modal);
            if (modal->isVisible())
                if (QPushButton* exit = ButtonOf(modal, "ExitButton")) exit->click();
        });
    }
    // Answers the next warning with its first button and gives its text.
    void AnswerWarning(std::shared_ptr<std::string> text) {
        WhenModal([text](QWidget* modal) {
            auto* form = static_cast<WarningForm*>(modal);
            *text = form->WarningLabel()->text().toStdString();
            form->WarningButton(0)->click();
        });
    }
    Station& Row(int n) { return ToolingTable(P().State())[static_cast<std::size_t>(n - 1)]; }

    CardSimulator sim_;
};

}  // namespace

TEST_F(ToolingFormsTest, F2AndTheToolingButtonOpenTheTurretWithTheSlotsStations) {
    ASSERT_EQ(Start(), 0);
    Select(1, "PLATE01");
    Tool(2, "DIAMETER 6.5");
    Row(2).Settings = PunchSetting{80, 70, 0.1F, 0.2F, 0.05F, 3};
    P().State().Slots[0].ActiveStation = 2;
    std::vector<std::string> seen;
    for (int way = 0; way < 2; ++way) {
        OnModal([&](QWidget* modal) {
            auto* form = static_cast<TurretForm*>(modal);
            seen.push_back(form->objectName().toStdString());
            EXPECT_EQ(form->StationList()->count(), 20);
            EXPECT_EQ(form->ListLabel()->text(), "NO.           TOOL DESCRIPTION");
            EXPECT_EQ(form->StationList()->item(0)->text(), "01      ");
            EXPECT_EQ(form->StationList()->item(1)->text(), "02      Diameter 6.5");
            // The working station is chosen first, with its type and settings.
            EXPECT_EQ(form->CurrentStation(), 2);
            EXPECT_EQ(form->StationBox()->text().toStdString(), Row(2).TypeText);
            EXPECT_EQ(form->PunchSettingsLabel(1)->text(), "FEED (%) :");
            EXPECT_EQ(form->PunchSettingsBox(1)->text(), "80");
            EXPECT_EQ(form->PunchSettingsBox(3)->text(), "0.1");
            EXPECT_EQ(form->PunchSettingsBox(5)->text(), "0.05");
            EXPECT_EQ(form->PunchSettingsBox(6)->text(), "3");
            // A plasma machine: both settings buttons.
            EXPECT_EQ(form->SettingsButton(1)->text(), "&TOOL SETTINGS");
            EXPECT_TRUE(form->SettingsButton(2)->isVisible());
            for (QPushButton* b : form->findChildren<QPushButton*>()) {
                if (b->isVisible()) {
                    EXPECT_GE(b->height(), 48) << b->objectName().toStdString();
                }
            }
        });
        if (way == 0)
            Key(key::F2);
        else
            F().MainButton(2)->click();
    }
    EXPECT_EQ(seen, (std::vector<std::string>{"TurretForm", "TurretForm"}));
    EXPECT_EQ(P().Nav().CurrentForm, "TurretForm");
}

TEST_F(ToolingFormsTest, TurretButtonsSendTheirTextsToTheCard) {
    StartOnCard();
    OnModal([&](QWidget* modal) {
        auto* form = static_cast<TurretForm*>(modal);
        form->StationList()->setCurrentRow(1);
        form->PositionButton(1)->click();
        form->PositionButton(2)->click();
        form->PunchButton()->click();
        // The letter keys press the same buttons.
        QTest::keyClick(form, Qt::Key_P);
    });
    Key(key::F2);
    EXPECT_EQ(Received(), (std::vector<std::string>{"M802=12", "M802=2", "M802=2", "P1021=P1021|1024", "M802=2",
                                                    "P1021=P1021|1024"}));
}

TEST_F(ToolingFormsTest, TurretRefusesWhileRunningInFeedholdOrInCycleAndSendsNothing) {
    StartOnCard();
    std::vector<std::string> texts;
    for (int state = 0; state < 3; ++state) {
        MachineState(state == 0, state == 1, state == 2);
        OnModal([&](QWidget* modal) {
            auto* form = static_cast<TurretForm*>(modal);
            for (QPushButton* button : {form->PositionButton(1), form->PositionButton(2), form->PunchButton()}) {
                auto text = std::make_shared<std::string>();
                AnswerWarning(text);
                button->click();
                texts.push_back(*text);
            }
        });
        Key(key::F2);
    }
    ASSERT_EQ(texts.size(), 9u);
    for (int i = 0; i < 9; i += 3) {
        EXPECT_EQ(texts[static_cast<std::size_t>(i)], "Can Not Move Turret" + RunningOrFeedhold);
        EXPECT_EQ(texts[static_cast<std::size_t>(i + 1)], "Can Not Move Turret" + RunningOrFeedhold);
        EXPECT_EQ(texts[static_cast<std::size_t>(i + 2)], "Can Not Punch" + RunningOrFeedhold);
    }
    EXPECT_TRUE(Received().empty());
}

TEST_F(ToolingFormsTest, DefineToolTakesTheBoxesThroughThePadAndWritesTheTables) {
    ASSERT_EQ(Start(), 0);
    Select(1, "PLATE01");
    std::string padName;
    OnModal([&](QWidget* modal) {
        auto* turret = static_cast<TurretForm*>(modal);
        turret->StationList()->setCurrentRow(3);
        OnModal([&](QWidget* inner) {
            auto* dialogue = static_cast<ToolDefDialogue*>(inner);
            EXPECT_EQ(dialogue->ToolTypeList()->count(), 14);
            EXPECT_EQ(dialogue->ToolTypeList()->item(13)->text(), "Special");
            // An empty station opens on the Special row.
            EXPECT_EQ(dialogue->ToolTypeList()->currentRow(), 13);
            dialogue->ToolTypeList()->setCurrentRow(3);
            EXPECT_EQ(dialogue->Frames()->currentIndex(), 3);
            EXPECT_EQ(dialogue->BoxLabel(3, 1)->text(), "TOOL LENGTH :");
            // A box opens the number pad with its value; the pad's text comes back.
            WhenModal([&](QWidget* pad) {
                padName = pad->objectName().toStdString();
                auto* form = static_cast<PadForm*>(pad);
                for (char c : std::string("20")) form->SendKey(c);
                form->OkButton()->click();
            });
            dialogue->Box(3, 1)->click();
            EXPECT_EQ(dialogue->Box(3, 1)->text(), "20");
            dialogue->SetBox(3, 2, "10");
            dialogue->SetBox(3, 3, "450");
            dialogue->OkButton()->click();
            EXPECT_FALSE(dialogue->isVisible());
        });
        turret->ToolButton()->click();
        EXPECT_EQ(turret->StationList()->item(3)->text(), "04      Rectangle 20x10 a90");
    });
    Key(key::F2);
    EXPECT_EQ(padName, "NumberForm");
    EXPECT_EQ(Row(4).ToolText, "Rectangle 20x10 a90");
    auto slotLines = ReadLines(dir_.Path() + "Actvprg1.trt");
    ASSERT_TRUE(slotLines);
    EXPECT_EQ((*slotLines)[4], "Rectangle 20x10 a90, 100, 100, 0, 0, 0, 0");
    auto programLines = ReadLines(dir_.Path() + "Programs/Dorvenis/PLATE01.trt");
    ASSERT_TRUE(programLines);
    EXPECT_EQ((*programLines)[4], "Rectangle 20x10 a90, 100, 100, 0, 0, 0, 0");
}

TEST_F(ToolingFormsTest, AToolThatFailsItsChecksKeepsTheScreenOpenWithItsMessage) {
    ASSERT_EQ(Start(), 0);
    Select(1, "PLATE01");
    Tool(1, "DIAMETER 10");
    std::vector<std::string> messages;
    bool openAfter = false;
    OnModal([&](QWidget* modal) {
        auto* turret = static_cast<TurretForm*>(modal);
        turret->StationList()->setCurrentRow(0);
        OnModal([&](QWidget* inner) {
            auto* dialogue = static_cast<ToolDefDialogue*>(inner);
            EXPECT_EQ(dialogue->ToolTypeList()->currentRow(), 0);
            EXPECT_EQ(dialogue->Box(0, 1)->text(), "10");
            // A rectangle wider than long; a Special without a name; a name of 19 characters.
            dialogue->ToolTypeList()->setCurrentRow(3);
            dialogue->SetBox(3, 1, "10");
            dialogue->SetBox(3, 2, "20");
            auto text = std::make_shared<std::string>();
            AnswerWarning(text);
            dialogue->OkButton()->click();
            messages.push_back(*text);
            dialogue->ToolTypeList()->setCurrentRow(13);
            dialogue->SpecialCombo()->setEditText("");
            AnswerWarning(text);
            dialogue->OkButton()->click();
            messages.push_back(*text);
            dialogue->SpecialCombo()->setEditText("ABCDEFGHIJKLMNOPQRS");
            AnswerWarning(text);
            dialogue->OkButton()->click();
            messages.push_back(*text);
            openAfter = dialogue->isVisible();
            // CANCEL leaves the tool as it was.
            dialogue->ExitButton()->click();
        });
        turret->ToolButton()->click();
    });
    Key(key::F2);
    EXPECT_EQ(messages, (std::vector<std::string>{"Invalid Tool Dimensions !\n\n\n", "Invalid Tool Name !\n\n\n",
                                                  "Invalid Tool Name !\n\n\n"}));
    EXPECT_TRUE(openAfter);
    EXPECT_EQ(Row(1).ToolText, "Diameter 10");
}

TEST_F(ToolingFormsTest, ToolDefinitionShowsEveryShapeInItsUnitAndTheSpecialNamesByKeyboard) {
    Write("Tools/EMBOSS-LOGO.dxf", "x");
    Write("Tools/LOUVRE-UP.dxf", "x");
    ASSERT_EQ(Start(), 0);
    auto* dialogue = static_cast<ToolDefDialogue*>(P().Forms().Get("ToolDefDialogue"));
    ToolRecord keyway;
    ASSERT_TRUE(ParseToolText("KEYWAY 25.4X28W-6.35A30", keyway, false));
    dialogue->Begin(keyway, true);
    std::string keyboardName;
    OnModal([&](QWidget*) {
        EXPECT_EQ(dialogue->ToolTypeList()->currentRow(), 10);
        // Inches: D / 25.4 to 3 decimals; the key end from the sign.
        EXPECT_EQ(dialogue->Box(10, 1)->text(), "1");
        EXPECT_EQ(dialogue->Box(10, 2)->text(), "1.102");
        EXPECT_EQ(dialogue->Box(10, 3)->text(), "0.25");
        EXPECT_EQ(dialogue->Box(10, 4)->text(), "30");
        EXPECT_EQ(dialogue->KeywayButton()->text(), "ROUNDED");
        dialogue->KeywayButton()->click();
        EXPECT_EQ(dialogue->KeywayButton()->text(), "FLAT");
        // The Special names are the tool files; the name comes through the keyboard, 18 at most.
        dialogue->ToolTypeList()->setCurrentRow(13);
        EXPECT_EQ(dialogue->SpecialCombo()->count(), 2);
        WhenModal([&](QWidget* pad) {
            keyboardName = pad->objectName().toStdString();
            auto* form = static_cast<PadForm*>(pad);
            for (char c : std::string("ABCDEFGHIJKLMNOPQRS")) form->SendKey(c);
            form->OkButton()->click();
        });
        dialogue->PadButton()->click();
        EXPECT_EQ(dialogue->SpecialCombo()->currentText(), "ABCDEFGHIJKLMNOPQR");
        dialogue->SetBox(13, 1, "-90");
        dialogue->OkButton()->click();
    });
    P().OpenForm("ToolDefDialogue");
    EXPECT_EQ(keyboardName, "KeyboardForm");
    ASSERT_TRUE(dialogue->Accepted());
    EXPECT_EQ(dialogue->ToolBuffer().Shape, 'S');
    EXPECT_EQ(DescribeTool(dialogue->ToolBuffer(), false), "Special ABCDEFGHIJKLMNOPQR a270");
}

TEST_F(ToolingFormsTest, PunchSettingsOpenFromTheTurretApplyAndSendTheWorkingStationsBlock) {
    StartOnCard();
    Tool(1, "DIAMETER 10");
    std::vector<std::string> labels;
    OnModal([&](QWidget* modal) {
        auto* turret = static_cast<TurretForm*>(modal);
        turret->StationList()->setCurrentRow(0);
        OnModal([&](QWidget* inner) {
            auto* form = static_cast<PunchSettingsForm*>(inner);
            EXPECT_EQ(inner->objectName(), "PunchSettingsForm");
            for (int n = 1; n <= 6; ++n) labels.push_back(form->SettingsLabel(n)->text().toStdString());
            EXPECT_EQ(form->SettingsCombo(1)->currentText(), "100");
            EXPECT_GE(form->SettingsList()->count(), 4);
            // A saved set fills the boxes.
            QList<QListWidgetItem*> thin = form->SettingsList()->findItems("ThinSheet", Qt::MatchFixedString);
            ASSERT_FALSE(thin.isEmpty());
            form->SettingsList()->setCurrentItem(thin.front());
            emit form->SettingsList()->itemClicked(thin.front());
            EXPECT_FALSE(form->DescriptionBox()->text().isEmpty());
            form->SetText(1, "50");
            form->SetText(2, "60");
            form->SetText(3, "0.1");
            form->SetText(4, "0.2");
            form->SetText(5, "0.3");
            form->SetText(6, "4");
            form->ApplyButton(1)->click();
        });
        turret->SettingsButton(1)->click();
        EXPECT_EQ(turret->PunchSettingsBox(1)->text(), "50");
    });
    Key(key::F2);
    EXPECT_EQ(labels, (std::vector<std::string>{"FEED RATE (%) :  1", "ACCELERATION (%) :  2",
                                                "PRE PUNCH DELAY (S) :  3", "POST PUNCH DELAY (S) :  4",
                                                "IN POSITION DISTANCE :  5", "RAM TIMER (MS) :  6"}));
    EXPECT_EQ(Received(), (std::vector<std::string>{"Q49=1", "M844=0", "M845=0", "M846=0", "Q19=50", "Q18=60",
                                                    "Q20=0.1", "Q21=0.2", "Q22=0.3", "Q23=4", "%50"}));
    auto stg = ReadLines(dir_.Path() + "Programs/Dorvenis/PLATE01.stg");
    ASSERT_TRUE(stg);
    EXPECT_EQ((*stg)[0], "Diameter 10, 1, 50, 60, 0.1, 0.2, 0.3, 4");
}

TEST_F(ToolingFormsTest, ASettingsFileThatCannotBeWrittenIsSaidAndStaysWhole) {
    ASSERT_EQ(Start(), 0);
    Select(1, "PLATE01");
    const std::string trt = dir_.Path() + "Actvprg1.trt";
    auto before = ReadLines(trt);
    ASSERT_TRUE(before);
    std::filesystem::create_directory(trt + ".tmp");
    auto text = std::make_shared<std::string>();
    auto* form = static_cast<PunchSettingsForm*>(P().Forms().Get("PunchSettingsForm"));
    form->Begin(1);
    OnModal([&](QWidget*) {
        form->SetText(1, "55");
        AnswerWarning(text);
        form->ApplyButton(2)->click();
    });
    P().OpenForm("PunchSettingsForm");
    EXPECT_EQ(*text, "File Fault : ./Actvprg1.trt\n\n\n");
    EXPECT_EQ(*ReadLines(trt), *before);
}

TEST_F(ToolingFormsTest, SavingUnderAnExistingNameAsksAndNoLeavesTheFile) {
    ASSERT_EQ(Start(), 0);
    const std::string file = dir_.Path() + "Settings/ThinSheet.stg";
    auto before = ReadLines(file);
    ASSERT_TRUE(before);
    auto question = std::make_shared<std::string>();
    OnModal([&](QWidget* modal) {
        auto* form = static_cast<PunchSettingsForm*>(modal);
        form->DescriptionBox()->setText("ThinSheet");
        form->SetText(1, "20");
        WhenModal([question](QWidget* warning) {
            auto* w = static_cast<WarningForm*>(warning);
            *question = w->WarningLabel()->text().toStdString();
            w->WarningButton(1)->click();
        });
        form->SaveButton()->click();
        // A new name is saved and chosen in the list.
        form->DescriptionBox()->setText("Fresh");
        form->SaveButton()->click();
        ASSERT_NE(form->SettingsList()->currentItem(), nullptr);
        EXPECT_EQ(form->SettingsList()->currentItem()->text(), "Fresh");
    });
    P().OpenForm("PunchSettingsForm");
    EXPECT_EQ(*question, "Settings\nThinSheet\nAlready Exist !\nOverwrite Them ?\n\n\n");
    EXPECT_EQ(*ReadLines(file), *before);
    auto fresh = ReadLines(dir_.Path() + "Settings/Fresh.stg");
    ASSERT_TRUE(fresh);
    EXPECT_EQ((*fresh)[1], "20");
}

TEST_F(ToolingFormsTest, PlasmaSettingsFromTheTurretApplyWriteAndSendThePlasmaBlock) {
    StartOnCard();
    OnModal([&](QWidget* modal) {
        auto* turret = static_cast<TurretForm*>(modal);
        OnModal([&](QWidget* inner) {
            auto* form = static_cast<PlasmaSettingsForm*>(inner);
            EXPECT_EQ(inner->objectName(), "PlasmaSettingsForm");
            EXPECT_EQ(form->SettingsLabel(1)->text(), "RAPID SPEED :  1");
            EXPECT_EQ(form->SettingsLabel(10)->text(), "PLASMA TORCH TYPE :");
            const std::vector<std::string> values = {"20000", "15000", "500", "750", "1.5",
                                                     "2.5",   "150",   "1.2", "0.5", "2"};
            for (int n = 1; n <= 10; ++n) form->SetText(n, values[static_cast<std::size_t>(n - 1)]);
            form->DescriptionBox()->setText("Thin cut");
            form->ApplyButton()->click();
        });
        turret->SettingsButton(2)->click();
    });
    Key(key::F2);
    EXPECT_EQ(Received(), (std::vector<std::string>{"P101=20000", "P102=15000", "P103=500", "P104=750", "P105=1.5",
                                                    "P106=2.5", "P107=150", "P108=1", "P109=0", "P110=2"}));
    std::string description;
    PlasmaSetting read;
    EXPECT_EQ(LoadPlasmaSetting(dir_.Path() + "Programs/Dorvenis/PLATE01.pls", description, read),
              SettingsLoad::Loaded);
    EXPECT_EQ(description, "Thin cut");
    EXPECT_EQ(read.CutSpeed, 15000);
}

TEST_F(ToolingFormsTest, F2WithoutTurretOpensPlasmaSettingsOnAPlasmaMachineAndNothingOnAnother) {
    MachineType(2);
    ASSERT_EQ(Start(), 0);
    std::string opened;
    OnModal([&](QWidget* modal) { opened = modal->objectName().toStdString(); });
    Key(key::F2);
    EXPECT_EQ(opened, "PlasmaSettingsForm");
    opened.clear();
    OnModal([&](QWidget* modal) { opened = modal->objectName().toStdString(); });
    F().MainButton(2)->click();
    EXPECT_EQ(opened, "PlasmaSettingsForm");
}

TEST_F(ToolingFormsTest, F2OnAProfilerOfKindOneOpensNothing) {
    MachineType(1);
    ASSERT_EQ(Start(), 0);
    Key(key::F2);
    Spin(50);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_EQ(P().Forms().Loaded("PlasmaSettingsForm"), nullptr);
}

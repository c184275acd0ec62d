// The dialogue on the panel: F5 and its panel, each entity screen opened from its key and its
// button, values through the pad, the entity in the list and on plot box 0, the messages, edit,
// Multi-Part, write and load through the buttons, the tooling screens and the leaving.
#include <QApplication>
#include <QComboBox>

#include "analysis/drawing_file.h"
#include "core/paths.h"
#include "dialogue/dialogue_screen.h"
#include "screens/dialogue_entity_form.h"
#include "screens/dialogue_front.h"
#include "screens/dialogue_panel.h"
#include "screens/dialogue_settings_forms.h"
#include "screens/pad_forms.h"
#include "screens/plot_box.h"
#include "screens/turret_dialogue.h"
#include "screens/warning_form.h"
#include "tests/screens/panel_fixture.h"
#include "tooling/tool_record.h"

using namespace kirvana;

namespace {

class DialogueScreensTest : public PanelTest {
protected:
    // The panel started, tools in the machine's stations 1 and 2, and F5.
    void StartDialogue() {
        ASSERT_EQ(Start(), 0);
        StationTable& table = P().State().Tools.MachineTable;  // F5 copies it to the dialogue
        SetStationTool(table[0], "DIAMETER 10");
        SetStationTool(table[1], "SQUARE 20");
        Key(key::F5);
        ASSERT_TRUE(P().Nav().DialogueOn);
    }
    DialogueControls& C() { return F().Dialogue(); }
    DialogueSession& Session() { return P().Dialogue().Session(); }
    DialogueEntityForm* Form(const char* name) { return static_cast<DialogueEntityForm*>(P().Forms().Get(name)); }

    // Acts on the entity screen that the trigger opens; false when none opened.
    bool OnScreen(const std::function<void(DialogueEntityForm&)>& act, const std::function<void()>& trigger) {
        auto opened = std::make_shared<bool>(false);
        WhenModal(
            [opened, act](QWidget* modal) {
                *opened = true;
                auto* form = dynamic_cast<DialogueEntityForm*>(modal);
                ASSERT_NE(form, nullptr) << modal->objectName().toStdString();
                act(*form);
                if (form->isVisible()) form->ExitButton()->click();
            },
            1500);
        trigger();
        Spin(20);
        return *opened;
    }
    // A box's value typed on the numeric pad the box opens.
    static void ThroughPad(DialogueEntityForm& form, QPushButton* box, const std::string& text) {
        auto padName = std::make_shared<std::string>();
        WhenModal([text, padName](QWidget* pad) {
            *padName = pad->objectName().toStdString();
            auto* padForm = static_cast<PadForm*>(pad);
            for (char c : text) padForm->SendKey(c);
            padForm->OkButton()->click();
        });
        box->click();
        EXPECT_EQ(*padName, "NumberForm") << form.Name();
    }
    // Confirms a screen that should refuse: the warning's text, the screen still open.
    static std::string Refusal(DialogueEntityForm& form) {
        auto text = std::make_shared<std::string>();
        WhenModal([text](QWidget* modal) {
            auto* warning = static_cast<WarningForm*>(modal);
            *text = warning->WarningLabel()->text().toStdString();
            warning->WarningButton(0)->click();
        });
        form.OkButton()->click();
        EXPECT_TRUE(form.isVisible()) << form.Name();
        return *text;
    }
    void DefineSheet() {
        ASSERT_TRUE(OnScreen(
            [](DialogueEntityForm& form) {
                ThroughPad(form, form.BoxNamed("SheetSize", 1), "1000");
                ThroughPad(form, form.BoxNamed("SheetSize", 2), "500");
                form.OkButton()->click();
            },
            [this] { Key('1'); }));
        ASSERT_TRUE(Session().State.SheetDefined);
    }
    void AddPunch(const std::string& x, const std::string& y) {
        ASSERT_TRUE(OnScreen(
            [x, y](DialogueEntityForm& form) {
                form.SetBox(0, x);
                form.SetBox(1, y);
                form.OkButton()->click();
            },
            [this] { Key('2'); }));
    }
    std::string CountText() { return C().EntityCount()->text().toStdString(); }
    std::string Description() { return C().EntityDescription()->text().toStdString(); }
};

TEST_F(DialogueScreensTest, FiveStartsTheDialoguePanel) {
    StartDialogue();
    F().show();
    Spin(20);
    EXPECT_TRUE(F().DialoguePanel()->isVisible());
    EXPECT_FALSE(F().MainPanel()->isVisible());
    EXPECT_TRUE(F().ExitDialogueButton()->isVisible());
    EXPECT_FALSE(F().ShutdownButton()->isVisible());
    EXPECT_TRUE(F().DialogueBar()->isVisible());
    EXPECT_EQ(CountText(), "1 / 1");
    EXPECT_EQ(Description(), "Beginning");
    EXPECT_EQ(F().PlotBoxes()->currentIndex(), 0);
    EXPECT_EQ(C().DialogueButton(2)->text(), "PUNCH (&2)");
    EXPECT_EQ(C().ImperialButton()->text(), "I&MPERIAL");
    // M and the button switch the unit.
    Key('M');
    EXPECT_TRUE(Session().State.ImperialDialogue);
    EXPECT_EQ(C().ImperialButton()->text(), "&METRIC");
    C().ImperialButton()->click();
    EXPECT_FALSE(Session().State.ImperialDialogue);
}

TEST_F(DialogueScreensTest, PressingTwoBeforeTheSheetDoesNothing) {
    StartDialogue();
    EXPECT_FALSE(OnScreen([](DialogueEntityForm&) {}, [this] { Key('2'); }));
    EXPECT_FALSE(OnScreen([](DialogueEntityForm&) {}, [this] { C().DialogueButton(3)->click(); }));
    EXPECT_EQ(CountText(), "1 / 1");
}

TEST_F(DialogueScreensTest, TheSheetByKeyAndAPunchByButtonThroughThePad) {
    StartDialogue();
    DefineSheet();
    EXPECT_FLOAT_EQ(Session().State.SheetX, 1000);
    PlotBox* box = F().Plot(0);
    const std::int64_t hitsBefore = box->Drawing().HitsDrawn();
    ASSERT_TRUE(OnScreen(
        [](DialogueEntityForm& form) {
            EXPECT_EQ(form.Name(), "PunchDialogue");
            EXPECT_EQ(form.ToolLabel()->text().toStdString(), "STATION 1 :  Diameter 10");
            ThroughPad(form, form.BoxNamed("PunchBox", 1), "250");
            ThroughPad(form, form.BoxNamed("PunchBox", 2), "125.5");
            EXPECT_EQ(form.BoxNamed("PunchBox", 2)->text(), "125.50");
            form.OkButton()->click();
            EXPECT_FALSE(form.isVisible());
        },
        [this] { C().DialogueButton(2)->click(); }));
    EXPECT_EQ(CountText(), "2 / 2");
    EXPECT_EQ(Description(), "Punch");
    auto rec = Session().Entity(2);
    ASSERT_TRUE(rec);
    EXPECT_FLOAT_EQ(rec->Points.Position.X, 250);
    EXPECT_FLOAT_EQ(rec->Points.Position.Y, 125.5);
    // Drawn on the dialogue's box.
    EXPECT_GT(box->Drawing().HitsDrawn(), hitsBefore);
    // The cursor keys and buttons walk the list.
    Key(key::Left);
    EXPECT_EQ(Description(), "Beginning");
    C().EntitySelect(1)->click();
    EXPECT_EQ(CountText(), "2 / 2");
}

TEST_F(DialogueScreensTest, EveryScreenOpensFromItsKeyAndItsButton) {
    StartDialogue();
    DefineSheet();
    for (int n = 1; n <= 9; ++n) {
        const std::string name = DescribeScreen(ScreenOfButton(n)).FormName;
        std::string seen;
        EXPECT_TRUE(OnScreen([&seen](DialogueEntityForm& form) { seen = form.Name(); }, [this, n] { Key('0' + n); }))
            << name;
        EXPECT_EQ(seen, name);
        seen.clear();
        EXPECT_TRUE(OnScreen([&seen](DialogueEntityForm& form) { seen = form.Name(); },
                             [this, n] { C().DialogueButton(n)->click(); }))
            << name;
        EXPECT_EQ(seen, name);
    }
    EXPECT_EQ(CountText(), "1 / 1");  // cancelled each time: nothing changed
}

TEST_F(DialogueScreensTest, EachMessageIsShownAndTheScreenStaysOpen) {
    StartDialogue();
    DefineSheet();
    const std::vector<std::pair<char, std::string>> cases = {{'3', "Invalid Line !"},
                                                             {'4', "Invalid Grid Pattern !"},
                                                             {'5', "Invalid Arc !"},
                                                             {'7', "Invalid Dwell Time !"},
                                                             {'8', "Invalid Reposition !"}};
    for (const auto& [digit, message] : cases) {
        std::string shown;
        EXPECT_TRUE(
            OnScreen([&shown](DialogueEntityForm& form) { shown = Refusal(form); }, [this, d = digit] { Key(d); }));
        EXPECT_EQ(shown, message + "\n\n\n");
    }
    std::string shown;
    OnScreen(
        [&shown](DialogueEntityForm& form) {
            form.SetBox(0, "99999");
            shown = Refusal(form);
        },
        [this] { Key('8'); });
    EXPECT_EQ(shown, "Out Of Limits !\n\n\n");
    OnScreen(
        [&shown](DialogueEntityForm& form) {
            form.SetBox(2, "0");
            shown = Refusal(form);
        },
        [this] { Key('9'); });
    EXPECT_EQ(shown, "Invalid Multi-Part !\n\n\n");
    EXPECT_EQ(CountText(), "1 / 1");
}

TEST_F(DialogueScreensTest, TheDigitKeysOpenTheirBoxesAndTheLineFollows) {
    StartDialogue();
    DefineSheet();
    ASSERT_TRUE(OnScreen(
        [](DialogueEntityForm& form) {
            // 5 opens the length's pad, 6 the angle's.
            for (const auto& [digit, text] :
                 std::vector<std::pair<int, std::string>>{{5, "100"}, {6, "90"}, {7, "25"}}) {
                WhenModal([text = text](QWidget* pad) {
                    for (char c : text) static_cast<PadForm*>(pad)->SendKey(c);
                    static_cast<PadForm*>(pad)->OkButton()->click();
                });
                QTest::keyClick(&form, static_cast<Qt::Key>(Qt::Key_0 + digit));
            }
            EXPECT_EQ(form.BoxNamed("LineBox", 4)->text(), "100.00");
            EXPECT_EQ(form.BoxNamed("LineBox", 8)->text(), "5");
            form.OkButton()->click();
        },
        [this] { Key('3'); }));
    EXPECT_EQ(Description(), "Line");
}

TEST_F(DialogueScreensTest, EditFillsTheBoxesOfTheCursorsEntity) {
    StartDialogue();
    DefineSheet();
    AddPunch("30", "40");
    AddPunch("60", "40");
    Key(key::Left);
    ASSERT_EQ(CountText(), "2 / 3");
    ASSERT_TRUE(OnScreen(
        [](DialogueEntityForm& form) {
            EXPECT_EQ(form.Name(), "PunchDialogue");
            EXPECT_EQ(form.BoxNamed("PunchBox", 1)->text(), "30.00");
            form.SetBox(0, "35");
            form.OkButton()->click();
        },
        [this] { C().EditButton()->click(); }));
    EXPECT_EQ(Session().State.EntityCount, 3);
    EXPECT_FLOAT_EQ(Session().Entity(2)->Points.Position.X, 35);
    // Delete by its key: the count falls.
    Key('L');
    EXPECT_EQ(CountText(), "1 / 2");
    // Edit on the Beginning is refused: no screen.
    EXPECT_FALSE(OnScreen([](DialogueEntityForm&) {}, [this] { Key('E'); }));
}

TEST_F(DialogueScreensTest, TheMultiPartRefusesTheOtherScreensUntilDeleted) {
    StartDialogue();
    DefineSheet();
    AddPunch("20", "20");
    ASSERT_TRUE(OnScreen(
        [](DialogueEntityForm& form) {
            form.SetBox(0, "2500");
            form.SetBox(1, "1000");
            form.SetBox(2, "3");
            form.SetBox(3, "2");
            form.OkButton()->click();
        },
        [this] { Key('9'); }));
    EXPECT_TRUE(Session().State.MultiPartMode);
    EXPECT_EQ(Description(), "Multi-Part");
    for (char key : std::string("2345678"))
        EXPECT_FALSE(OnScreen([](DialogueEntityForm&) {}, [this, key] { Key(key); })) << key;
    C().DeleteButton()->click();
    EXPECT_FALSE(Session().State.MultiPartMode);
    EXPECT_EQ(CountText(), "2 / 2");
    EXPECT_FLOAT_EQ(Session().State.SheetX, 1000);
}

TEST_F(DialogueScreensTest, WriteAndLoadThroughTheButtons) {
    StartDialogue();
    DefineSheet();
    AddPunch("100", "100");
    AddPunch("200", "100");
    C().DirectoryCombo()->setEditText("Dialogued");
    C().ProgramCombo()->setEditText("PART7");
    auto question = std::make_shared<std::string>();
    WhenModal([question](QWidget* modal) {
        auto* warning = static_cast<WarningForm*>(modal);
        *question = warning->WarningLabel()->text().toStdString();
        warning->WarningButton(0)->click();
    });
    C().WriteButton()->click();
    EXPECT_EQ(*question, "Directory\nDialogued\nDoes Not Exist !\nCreate It ?\n\n\n");
    const std::string program = dir_.Path() + "Programs/Dialogued/PART7.prg";
    ASSERT_TRUE(FileExists(program));
    EXPECT_TRUE(FileExists(dir_.Path() + "Programs/Dialogued/PART7.stg"));
    // Cleared, then loaded back by R.
    Key('C');
    EXPECT_EQ(CountText(), "1 / 1");
    Key('R');
    // The punches come back, the cursor on the last entity the reverse pass gave.
    ASSERT_GE(Session().State.EntityCount, 3);
    EXPECT_EQ(Session().Entity(2)->Kind, EntityKind::Punch);
    EXPECT_FLOAT_EQ(Session().Entity(3)->Points.Position.X, 200);
    EXPECT_EQ(Session().State.EntityCursor, Session().State.EntityCount);
    EXPECT_EQ(CountText(), Session().CursorCountText());
    // A program that isn't there.
    C().ProgramCombo()->setEditText("NOPE");
    auto text = std::make_shared<std::string>();
    WhenModal([text](QWidget* modal) {
        auto* warning = static_cast<WarningForm*>(modal);
        *text = warning->WarningLabel()->text().toStdString();
        warning->WarningButton(0)->click();
    });
    C().LoadButton()->click();
    EXPECT_EQ(*text, "Program Does Not Exist !\n\n\n");
    // Written again over itself: asked first.
    C().ProgramCombo()->setEditText("PART7");
    WhenModal([text](QWidget* modal) {
        auto* warning = static_cast<WarningForm*>(modal);
        *text = warning->WarningLabel()->text().toStdString();
        warning->WarningButton(1)->click();
    });
    Key('W');
    EXPECT_EQ(*text, "Program\nPART7\nAlready Exists !\nOverwrite It ?\n\n\n");
    // The pad types the program's name.
    WhenModal([](QWidget* modal) {
        auto* pad = static_cast<PadForm*>(modal);
        pad->Box()->clear();
        for (char c : std::string("PART9")) pad->SendKey(c);
        pad->OkButton()->click();
    });
    C().PadButton()->click();
    EXPECT_EQ(C().ProgramCombo()->currentText(), "PART9");
}

TEST_F(DialogueScreensTest, DamagedWorkFilesStartAnEmptyDialogueWithANotice) {
    Write("Dialogue/Dlgprg.cfg", "PART\nDIR\nTEXT\n******\n");
    Write("Dialogue/Dlgprg.drw", "not a drawing");
    ASSERT_EQ(Start(), 0);
    auto text = std::make_shared<std::string>();
    WhenModal([text](QWidget* modal) {
        auto* warning = static_cast<WarningForm*>(modal);
        *text = warning->WarningLabel()->text().toStdString();
        warning->WarningButton(0)->click();
    });
    Key(key::F5);
    EXPECT_EQ(*text, "Dialogue Files Damaged !\nAn Empty Dialogue Is Started !\n\n\n");
    EXPECT_EQ(CountText(), "1 / 1");
    EXPECT_FALSE(Session().State.SheetDefined);
}

TEST_F(DialogueScreensTest, KeysOnAnotherScreenDoNotReachTheDialogue) {
    StartDialogue();
    DefineSheet();
    std::string stillUp;
    WhenModal([&stillUp](QWidget* turret) {
        QTest::keyClick(turret, Qt::Key_2);
        QTest::keyClick(turret, Qt::Key_C);
        stillUp = QApplication::activeModalWidget()->objectName().toStdString();
        ButtonOf(turret, "ExitButton")->click();
    });
    Key('T');
    EXPECT_EQ(stillUp, "TurretDialogue");
    EXPECT_EQ(CountText(), "1 / 1");
    EXPECT_TRUE(Session().State.SheetDefined);  // C on the turret did not clear the dialogue
}

TEST_F(DialogueScreensTest, LeavingWritesTheWorkFilesAndTheMainPanelReturns) {
    StartDialogue();
    DefineSheet();
    AddPunch("10", "10");
    F().show();
    F().ExitDialogueButton()->click();
    Spin(20);
    EXPECT_FALSE(P().Nav().DialogueOn);
    EXPECT_TRUE(F().MainPanel()->isVisible());
    EXPECT_TRUE(F().ShutdownButton()->isVisible());
    EXPECT_TRUE(FileExists(Session().WorkFile("cfg")));
    EXPECT_TRUE(FileExists(Session().WorkFile("trt")));
    // F5 again: the drawing is back.
    Key(key::F5);
    EXPECT_EQ(Session().State.EntityCount, 2);
    EXPECT_TRUE(Session().State.SheetDefined);
}

TEST_F(DialogueScreensTest, TheTurretDialogueGivesTheScreenItsTool) {
    StartDialogue();
    DefineSheet();
    ASSERT_TRUE(OnScreen(
        [](DialogueEntityForm& form) {
            WhenModal([](QWidget* modal) {
                auto* turret = static_cast<TurretDialogue*>(modal);
                EXPECT_EQ(turret->Name(), "TurretDialogue");
                turret->StationList()->setCurrentRow(1);
                turret->ExitButton()->click();
            });
            form.ToolButton()->click();
            EXPECT_EQ(form.ToolLabel()->text().toStdString(),
                      "STATION 2 :  " + DescribeTool(form.Model().Tool().Tool, false));
            EXPECT_EQ(form.Model().Tool().StationNo, 2);
            // PROFILER: the plasma tool, and the line offers its compensation.
            WhenModal([](QWidget* modal) {
                auto* turret = static_cast<TurretDialogue*>(modal);
                turret->ProfileButton()->click();
                EXPECT_TRUE(turret->PlasmaSettingsFrame()->isVisible());
                turret->ExitButton()->click();
            });
            form.ToolButton()->click();
            EXPECT_TRUE(form.ToolLabel()->text().startsWith("PLASMA"));
            EXPECT_TRUE(form.Toggle(0)->isVisible());
            form.SetBox(4, "50");
            form.OkButton()->click();
        },
        [this] { Key('3'); }));
    EXPECT_EQ(Description(), "Line Profile");
    // T opens the dialogue's turret from FrontEnd.
    std::string name;
    WhenModal([&name](QWidget* modal) {
        name = modal->objectName().toStdString();
        ButtonOf(modal, "ExitButton")->click();
    });
    Key('T');
    EXPECT_EQ(name, "TurretDialogue");
}

TEST_F(DialogueScreensTest, TheSettingsDialoguesKeepTheirValuesInTheDialogue) {
    StartDialogue();
    DefineSheet();
    WhenModal([](QWidget* modal) {
        auto* turret = static_cast<TurretDialogue*>(modal);
        turret->StationList()->setCurrentRow(1);
        WhenModal([](QWidget* settings) {
            auto* form = static_cast<PunchSettingsDialogue*>(settings);
            EXPECT_EQ(form->Name(), "PunchSettingsDialogue");
            form->SetText(1, "70");
            form->ApplyButton(1)->click();
            form->ExitButton()->click();
        });
        turret->SettingsButton(1)->click();
        EXPECT_EQ(turret->PunchSettingsBox(1)->text(), "70");
        WhenModal([](QWidget* settings) {
            auto* form = static_cast<PlasmaSettingsDialogue*>(settings);
            EXPECT_EQ(form->Name(), "PlasmaSettingsDialogue");
            form->SetText(2, "3100");
            form->ApplyButton()->click();
            form->ExitButton()->click();
        });
        turret->SettingsButton(2)->click();
        turret->ExitButton()->click();
    });
    Key('S');
    EXPECT_EQ(Session().Table()[1].Settings.FeedPercent, 70);
    EXPECT_EQ(Session().Table()[0].Settings.FeedPercent, 100);
    EXPECT_EQ(Session().Plasma().CutSpeed, 3100);
    // The tool table at once, the plasma set when the dialogue is left.
    auto trt = ReadLines(Session().WorkFile("trt"));
    ASSERT_TRUE(trt);
    F().ExitDialogueButton()->click();
    EXPECT_TRUE(FileExists(Session().WorkFile("pls")));
    // Back in: the table and the set come from the work files.
    Key(key::F5);
    EXPECT_EQ(Session().Table()[1].Settings.FeedPercent, 70);
    EXPECT_EQ(Session().Plasma().CutSpeed, 3100);
}

TEST_F(DialogueScreensTest, AProfilerWithoutTurretHasSettingsAndMovesAndNoGrid) {
    MachineType(2);
    ASSERT_EQ(Start(), 0);
    Key(key::F5);
    EXPECT_EQ(C().DialogueButton(0)->text(), "&SETTINGS");
    EXPECT_EQ(C().DialogueButton(2)->text(), "MOVE (&2)");
    DefineSheet();
    EXPECT_FALSE(OnScreen([](DialogueEntityForm&) {}, [this] { Key('4'); }));
    std::string name;
    WhenModal([&name](QWidget* modal) {
        name = modal->objectName().toStdString();
        ButtonOf(modal, "ExitButton")->click();
    });
    Key('S');
    EXPECT_EQ(name, "PlasmaSettingsDialogue");
    // The punching screens start with the plasma tool.
    ASSERT_TRUE(OnScreen([](DialogueEntityForm& form) { EXPECT_TRUE(form.ToolLabel()->text().startsWith("PLASMA")); },
                         [this] { Key('3'); }));
}

}  // namespace

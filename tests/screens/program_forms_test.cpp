// The program screens on the offscreen platform: each opens from its key and its button, shows
// the store and the slot's values, selects through every pass with its progress, refuses with the
// system's texts, and writes its picture to the screenshots folder.
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <filesystem>
#include <fstream>

#include "core/paths.h"
#include "navigation/navigation.h"
#include "screens/batch_form.h"
#include "screens/edit_prog_form.h"
#include "screens/pad_forms.h"
#include "screens/panel_capture.h"
#include "screens/program_choice_forms.h"
#include "screens/program_form.h"
#include "screens/view_prog_form.h"
#include "screens/warning_form.h"
#include "tests/screens/program_forms_fixture.h"

using namespace kirvana;

TEST_F(ProgramFormsTest, ProgramFormOpensFromF1AndFromItsMainButton) {
    ASSERT_EQ(Start(), 0);
    std::vector<std::string> opened;
    auto record = [&](QWidget* modal) {
        opened.push_back(modal->objectName().toStdString());
        modal->close();
    };
    WhenModal(record);
    Key(key::F1);
    WhenModal(record);
    F().MainButton(1)->click();
    EXPECT_EQ(opened, (std::vector<std::string>{"ProgramForm", "ProgramForm"}));
    EXPECT_EQ(P().Nav().CurrentForm, "ProgramForm");
}

TEST_F(ProgramFormsTest, ProgramFormShowsTheStoreAndTheActiveSlot) {
    ASSERT_EQ(Start(), 0);
    Write("Programs/EXSUBS/SUB1.prg", "G90\n");
    Select(1, "PLATE01");
    OnProgramForm([&](ProgramForm& form) {
        EXPECT_EQ(Items(form.DirectoryCombo()), (std::vector<std::string>{"Dorvenis"}));
        EXPECT_EQ(form.DirectoryCombo()->currentText().toStdString(), "Dorvenis");
        EXPECT_EQ(Items(form.ProgramCombo()), (std::vector<std::string>{"COVER02", "ERRORS04", "GRID03", "PLATE01"}));
        EXPECT_EQ(form.ProgramCombo()->currentText().toStdString(), "PLATE01");
        EXPECT_EQ(form.SlotLabel()->text().toStdString(), "PROGRAM 1 :  Dorvenis / PLATE01");
        EXPECT_FALSE(form.ProgressBar()->isVisible());
        for (QPushButton* b : form.findChildren<QPushButton*>()) {
            EXPECT_GE(b->height(), 48) << b->objectName().toStdString();
            EXPECT_GE(b->width(), 48) << b->objectName().toStdString();
        }
    });
}

TEST_F(ProgramFormsTest, SelectRunsEveryPassWithItsProgressAndClosesTheForm) {
    ASSERT_EQ(Start(), 0);
    bool closed = false;
    OnProgramForm([&](ProgramForm& form) {
        form.ProgramCombo()->setCurrentText("GRID03");
        form.SearchBox()->setText("GRID");
        form.SelectButton()->click();
        closed = !form.isVisible();
        EXPECT_EQ(form.StagesShown(), SelectStageCount);
        EXPECT_TRUE(form.SearchBox()->text().isEmpty());
    });
    EXPECT_TRUE(closed);
    EXPECT_TRUE(P().State().Slots[0].Present);
    EXPECT_EQ(P().State().Slots[0].ProgramName, "GRID03");
    EXPECT_EQ(F().ProgramButton(1)->text().toStdString(), "GRID03   F10");
    EXPECT_TRUE(FileExists(dir_.Path() + "Actvprg1.W1"));
}

TEST_F(ProgramFormsTest, SelectRefusesWithTheSystemsTextsAndKeepsTheSlot) {
    ASSERT_EQ(Start(), 0);
    Select(1, "PLATE01");
    Write("Programs/Dorvenis/" + std::string(32, 'P') + ".prg", "G90 G71\nT1 X100 Y100\nM30\n");
    struct Case {
        std::string Directory, Program, Warning;
    };
    const Case cases[] = {
        {"Dorvenis", std::string(33, 'P'), "Invalid Program Name !"},
        {std::string(33, 'D'), "PLATE01", "Invalid Directory Name !"},
        {"", "PLATE01", "Invalid Directory Name !"},
        {"Dorvenis", "", "Invalid Program Name !"},
        {"Nowhere", "PLATE01", "Directory Does Not Exist !"},
        {"Dorvenis", "NOSUCH", "Program Does Not Exist !"},
    };
    for (const Case& c : cases) {
        std::string warning;
        OnProgramForm([&](ProgramForm& form) {
            form.DirectoryCombo()->setCurrentText(Q(c.Directory));
            form.ProgramCombo()->setCurrentText(Q(c.Program));
            warning = WarningOf([&] { form.SelectButton()->click(); });
            EXPECT_TRUE(form.isVisible());
        });
        EXPECT_EQ(warning, c.Warning) << c.Program;
        EXPECT_EQ(P().State().Slots[0].ProgramName, "PLATE01");
    }
    // 32 characters pass the name rule.
    std::string warning = "none";
    OnProgramForm([&](ProgramForm& form) {
        form.ProgramCombo()->setCurrentText(Q(std::string(32, 'P')));
        warning = WarningOf([&] { form.SelectButton()->click(); });
    });
    EXPECT_EQ(warning, "");
    EXPECT_EQ(P().State().Slots[0].ProgramName, std::string(32, 'P'));
    // While the machine runs: the two-line refusal, nothing changes and nothing is sent.
    P().State().Running = true;
    OnProgramForm([&](ProgramForm& form) {
        form.ProgramCombo()->setCurrentText("GRID03");
        warning = WarningOf([&] { form.SelectButton()->click(); });
    });
    EXPECT_EQ(warning, "Can Not Select New Program\n\nWhile Machine Is Running !");
    EXPECT_EQ(P().State().Slots[0].ProgramName, std::string(32, 'P'));
    P().State().Running = false;
}

TEST_F(ProgramFormsTest, ProgListFormChoosesAProgramForProgramForm) {
    ASSERT_EQ(Start(), 0);
    Write("Programs/Archive/OLD01.prg", "G90\n");
    Write("Programs/EXSUBS/SUB1.prg", "G90\n");
    std::string chosen, refusal, viewed;
    std::vector<std::string> directories;
    OnProgramForm([&](ProgramForm& form) {
        WhenModal([&](QWidget* modal) {
            auto* list = static_cast<ProgListForm*>(modal);
            EXPECT_EQ(list->objectName(), "ProgListForm");
            for (int i = 0; i < list->DirectoryList()->count(); ++i)
                directories.push_back(list->DirectoryList()->item(i)->text().toStdString());
            EXPECT_EQ(list->DirectoryList()->currentItem()->text(), "Dorvenis");
            EXPECT_EQ(list->ProgramList()->count(), 4);
            refusal = WarningOf([&] { list->OkButton()->click(); });
            list->ProgramList()->setCurrentRow(2);
            list->ViewButton()->click();
            EXPECT_TRUE(list->ViewBox()->isVisible());
            viewed = list->ViewBox()->toPlainText().toStdString();
            list->ViewOkButton()->click();
            EXPECT_FALSE(list->ViewFrame()->isVisible());
            list->OkButton()->click();
        });
        form.findChild<QPushButton*>("ListButton")->click();
        chosen = form.ProgramCombo()->currentText().toStdString();
    });
    EXPECT_EQ(directories, (std::vector<std::string>{"Archive", "Dorvenis"}));
    EXPECT_EQ(refusal, "No Program Selected !");
    EXPECT_EQ(viewed.rfind("N0000 ! PROGRAM NAME : GRID03", 0), 0u);
    EXPECT_EQ(chosen, "GRID03");
}

TEST_F(ProgramFormsTest, SearchFormListsMatchesAndSaysWhenThereAreNone) {
    ASSERT_EQ(Start(), 0);
    Write("Programs/Archive/plate77.prg", "G90\n");
    std::string label, chosenDirectory, none;
    std::vector<std::string> rows;
    OnProgramForm([&](ProgramForm& form) {
        form.SearchBox()->setText("NOTHING");
        none = WarningOf([&] { form.findChild<QPushButton*>("SearchButton")->click(); });
        form.SearchBox()->setText("plate");
        WhenModal([&](QWidget* modal) {
            auto* search = static_cast<SearchForm*>(modal);
            label = search->SearchLabel()->text().toStdString();
            for (int i = 0; i < search->SearchList()->count(); ++i)
                rows.push_back(search->SearchList()->item(i)->text().simplified().toStdString());
            search->SearchList()->setCurrentRow(0);
            search->OkButton()->click();
        });
        form.findChild<QPushButton*>("SearchButton")->click();
        chosenDirectory =
            form.DirectoryCombo()->currentText().toStdString() + "/" + form.ProgramCombo()->currentText().toStdString();
    });
    EXPECT_EQ(none, "No Matching Programs Found !");
    EXPECT_EQ(label, "\"plate\"");
    EXPECT_EQ(rows, (std::vector<std::string>{"Archive plate77", "Dorvenis PLATE01"}));
    EXPECT_EQ(chosenDirectory, "Archive/plate77");
}

TEST_F(ProgramFormsTest, ViewProgFormLightsTheBlockThePollGives) {
    ASSERT_EQ(Start(), 0);
    Select(1, "GRID03");
    LitBlock& lit = P().State().Display.Block;
    lit.Program = 1;
    lit.Record = 3;
    std::vector<std::int32_t> litRecords;
    std::string programLabel, litText, motion;
    OnProgramForm([&](ProgramForm& form) {
        WhenModal([&](QWidget* modal) {
            auto* view = static_cast<ViewProgForm*>(modal);
            EXPECT_TRUE(P().State().Display.Visible.ViewProgForm);
            programLabel = view->ProgramLabel()->text().toStdString();
            litRecords.push_back(view->LitRecord());
            lit.Record = 6;
            view->ShowModel();
            litRecords.push_back(view->LitRecord());
            for (int i = 0; i < ViewProgForm::Rows; ++i)
                if (view->Page().Rows.size() > static_cast<std::size_t>(i) && view->Page().Rows[i].Lit)
                    litText = view->Row(i)->text().toStdString();
            motion = view->MotionLabel()->text().toStdString();
            SavePanel("view_prog_form");
            view->close();
        });
        form.findChild<QPushButton*>("ViewButton")->click();
    });
    EXPECT_FALSE(P().State().Display.Visible.ViewProgForm);
    EXPECT_EQ(programLabel, "PROGRAM 1 :  GRID03");
    EXPECT_EQ(litRecords, (std::vector<std::int32_t>{3, 6}));
    auto org = ReadLines(dir_.Path() + "Actvprg1.org");
    ASSERT_TRUE(org);
    EXPECT_EQ(litText, "    6  " + (*org)[5]);
    EXPECT_FALSE(motion.empty());
}

TEST_F(ProgramFormsTest, BatchFormEditsSetsAndClearsTheCounters) {
    ASSERT_EQ(Start(), 0);
    Select(1, "PLATE01");
    std::vector<std::string> captions;
    std::string shownWhileEditing;
    bool editingFlag = false;
    OnProgramForm([&](ProgramForm& form) {
        WhenModal([&](QWidget* modal) {
            auto* batch = static_cast<BatchForm*>(modal);
            captions.push_back(batch->SetButton()->text().toStdString());
            EXPECT_FALSE(batch->BatchBox(0)->isEnabled());
            batch->SetButton()->click();
            captions.push_back(batch->SetButton()->text().toStdString());
            editingFlag = P().State().Display.BatchEditing;
            AnswerPad("12");
            batch->BatchBox(1)->click();
            AnswerPad("3");
            batch->BatchBox(2)->click();
            // The poll leaves the boxes alone while they are open.
            P().State().Display.Batch.Texts = {"9", "9", "9", "9", "9"};
            batch->ShowModel();
            shownWhileEditing = batch->BatchBox(1)->text().toStdString();
            SavePanel("batch_form_editing");
            batch->SetButton()->click();
            captions.push_back(batch->SetButton()->text().toStdString());
            batch->close();
        });
        form.findChild<QPushButton*>("BatchButton")->click();
    });
    EXPECT_EQ(captions, (std::vector<std::string>{"&SET", "&ENTER", "&SET"}));
    EXPECT_TRUE(editingFlag);
    EXPECT_FALSE(P().State().Display.BatchEditing);
    EXPECT_EQ(shownWhileEditing, "12");
    EXPECT_EQ(P().State().Slots[0].Batch, (SlotBatch{0, 12, 3, 0, 3}));
    auto btc = ReadLines(dir_.Path() + "Actvprg1.btc");
    ASSERT_TRUE(btc);
    EXPECT_EQ(*btc, (std::vector<std::string>{"0", "12", "3", "0", "3", "******"}));
    // "&CLEAR" zeroes them.
    WhenModal([&](QWidget* modal) {
        static_cast<BatchForm*>(modal)->ClearButton()->click();
        modal->close();
    });
    P().OpenForm("BatchForm");
    EXPECT_EQ(P().State().Slots[0].Batch, SlotBatch{});
}

TEST_F(ProgramFormsTest, EditProgFormEditsUndoesFindsAndSavesWithConfirmation) {
    ASSERT_EQ(Start(), 0);
    const std::string path = dir_.Path() + "Programs/Dorvenis/GRID03.prg";
    auto before = ReadLines(path);
    ASSERT_TRUE(before);
    std::string question, findLabel, afterChange;
    int rowsShown = 0;
    OnProgramForm([&](ProgramForm& form) {
        form.ProgramCombo()->setCurrentText("GRID03");
        WhenModal([&](QWidget* modal) {
            auto* edit = static_cast<EditProgForm*>(modal);
            rowsShown = edit->LineList()->count();
            edit->LineList()->setCurrentRow(7);
            AnswerPad("T1 X150 Y100");
            edit->Button("ChangeButton")->click();
            afterChange = edit->LineList()->item(7)->text().toStdString();
            edit->Button("DeleteButton")->click();
            edit->Button("UndoButton")->click();
            edit->LineList()->setCurrentRow(0);
            AnswerPad("G28");
            edit->Button("FindButton")->click();
            findLabel = edit->FindLabel()->text().toStdString();
            SavePanel("edit_prog_form");
            question = WarningOf([&] { edit->Button("SaveButton")->click(); }, 1);
            EXPECT_FALSE(edit->Editor().Modified());
            edit->Button("ExitButton")->click();
        });
        form.findChild<QPushButton*>("EditButton")->click();
    });
    EXPECT_EQ(rowsShown, static_cast<int>(before->size()));
    EXPECT_EQ(afterChange, "    8  T1 X150 Y100");
    EXPECT_EQ(findLabel, "\"G28\" AT LINE 11");
    EXPECT_EQ(question, "Save \"GRID03\" ?");
    auto after = ReadLines(path);
    ASSERT_TRUE(after);
    std::vector<std::string> expected = *before;
    expected[7] = "T1 X150 Y100";
    EXPECT_EQ(*after, expected);
    EXPECT_FALSE(FileExists(path + ".tmp"));
}

TEST_F(ProgramFormsTest, EditProgFormAsksBeforeLeavingUnsavedChanges) {
    ASSERT_EQ(Start(), 0);
    const std::string path = dir_.Path() + "Programs/Dorvenis/PLATE01.prg";
    std::string before = ReadFileText(path);
    std::string question;
    bool stayed = false;
    OnProgramForm([&](ProgramForm& form) {
        form.ProgramCombo()->setCurrentText("PLATE01");
        WhenModal([&](QWidget* modal) {
            auto* edit = static_cast<EditProgForm*>(modal);
            edit->LineList()->setCurrentRow(0);
            edit->Button("DeleteButton")->click();
            question = WarningOf([&] { edit->Button("ExitButton")->click(); }, 3);  // cancel
            stayed = edit->isVisible();
            WarningOf([&] { edit->Button("ExitButton")->click(); }, 2);  // no: leave unsaved
        });
        form.findChild<QPushButton*>("EditButton")->click();
    });
    EXPECT_EQ(question, "Save Changes To \"PLATE01\" ?");
    EXPECT_TRUE(stayed);
    EXPECT_EQ(ReadFileText(path), before);
}

TEST_F(ProgramFormsTest, EveryProgramScreenOpensByNameAndKeepsToThePanel) {
    ASSERT_EQ(Start(), 0);
    Select(1, "PLATE01");
    for (const char* name : {"ProgramForm", "ProgListForm", "ViewProgForm", "BatchForm"}) {
        bool seen = false;
        WhenModal([&](QWidget* modal) {
            seen = modal->objectName() == name;
            EXPECT_LE(modal->width(), 1024) << name;
            EXPECT_LE(modal->height(), 768) << name;
            SavePanel(std::string(name) == "ProgramForm"    ? "program_form"
                      : std::string(name) == "ProgListForm" ? "prog_list_form"
                      : std::string(name) == "BatchForm"    ? "batch_form"
                                                            : "view_prog_form_idle");
            modal->close();
        });
        EXPECT_TRUE(P().OpenForm(name)) << name;
        EXPECT_TRUE(seen) << name;
    }
    auto* search = static_cast<SearchForm*>(P().Forms().Get("SearchForm"));
    ASSERT_EQ(search->Begin("0"), 4u);
    WhenModal([&](QWidget* modal) {
        SavePanel("search_form");
        modal->close();
    });
    P().OpenForm("SearchForm");
}

TEST_F(ProgramFormsTest, ProgramFormLettersOpenItsScreensAsItsButtonsDo) {
    ASSERT_EQ(Start(), 0);
    Select(1, "PLATE01");
    std::vector<std::string> opened;
    OnProgramForm([&](ProgramForm& form) {
        for (Qt::Key key : {Qt::Key_V, Qt::Key_B, Qt::Key_L, Qt::Key_E}) {
            WhenModal([&](QWidget* modal) {
                opened.push_back(modal->objectName().toStdString());
                modal->close();
            });
            QTest::keyClick(&form, key);
        }
        form.SearchBox()->setText("GRID");
        WhenModal([&](QWidget* modal) {
            opened.push_back(modal->objectName().toStdString());
            modal->close();
        });
        QTest::keyClick(&form, Qt::Key_R);
        QTest::keyClick(&form, Qt::Key_X);
        EXPECT_FALSE(form.isVisible());
    });
    EXPECT_EQ(opened,
              (std::vector<std::string>{"ViewProgForm", "BatchForm", "ProgListForm", "EditProgForm", "SearchForm"}));
}

TEST_F(ProgramFormsTest, ProgramChangeClosesTheProgramScreensFirst) {
    ASSERT_EQ(Start(), 0);
    Select(1, "PLATE01");
    bool batchClosed = false, programClosed = false;
    OnProgramForm([&](ProgramForm& form) {
        WhenModal([&](QWidget* modal) {
            QTest::keyClick(modal, Qt::Key_F11);
            batchClosed = !modal->isVisible();
        });
        form.findChild<QPushButton*>("BatchButton")->click();
        programClosed = !form.isVisible();
    });
    EXPECT_TRUE(batchClosed);
    EXPECT_TRUE(programClosed);
    EXPECT_EQ(P().State().Config.ActiveSlot, 2);
}

TEST_F(ProgramFormsTest, ADirectoryOfTenThousandProgramsIsListedWhole) {
    ASSERT_EQ(Start(), 0);
    std::filesystem::create_directories(dir_.Path() + "Programs/Big");
    for (int n = 0; n < 10000; ++n)
        std::ofstream(dir_.Path() + "Programs/Big/P" + std::to_string(10000 + n) + ".prg") << "G90\n";
    std::vector<std::string> first;
    int count = 0;
    OnProgramForm([&](ProgramForm& form) {
        form.DirectoryCombo()->setCurrentText("Big");
        form.FillProgramCombo("Big");
        count = form.ProgramCombo()->count();
        for (int i = 0; i < 3; ++i) first.push_back(S(form.ProgramCombo()->itemText(i)));
    });
    EXPECT_EQ(count, 10000);
    EXPECT_EQ(first, (std::vector<std::string>{"P10000", "P10001", "P10002"}));
}

TEST_F(ProgramFormsTest, ShutdownClosesTheEditorWithoutAQuestionAndLeavesTheProgram) {
    ASSERT_EQ(Start(), 0);
    const std::string path = dir_.Path() + "Programs/Dorvenis/PLATE01.prg";
    std::string before = ReadFileText(path);
    bool closed = false;
    std::string question = "none";
    OnProgramForm([&](ProgramForm& form) {
        form.ProgramCombo()->setCurrentText("PLATE01");
        WhenModal([&](QWidget* modal) {
            auto* edit = static_cast<EditProgForm*>(modal);
            edit->LineList()->setCurrentRow(0);
            edit->Button("DeleteButton")->click();
            question = WarningOf([&] { P().ShutdownPressed(); });
            closed = !edit->isVisible();
        });
        form.findChild<QPushButton*>("EditButton")->click();
    });
    EXPECT_EQ(question, "");
    EXPECT_TRUE(closed);
    EXPECT_EQ(Ends, 1);
    EXPECT_EQ(ReadFileText(path), before);
}

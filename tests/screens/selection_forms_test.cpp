// The selection on the panel: the progress bar painted while the passes hold the event queue,
// with a picture of ProgramForm taken in the middle of a selection, and SetupForm showing the
// clamp demands of the program just selected.
#include <QEvent>

#include <QLabel>
#include <QProgressBar>

#include <QListWidget>
#include <QRegularExpression>

#include "analysis/drawing_file.h"
#include "screens/edit_prog_form.h"
#include "screens/file_forms.h"
#include "screens/machine_forms.h"
#include "screens/program_choice_forms.h"
#include "screens/settings_forms.h"
#include "screens/tool_def_dialogue.h"
#include "screens/turret_form.h"
#include "tests/screens/program_forms_fixture.h"

using namespace kirvana;

namespace {

// Counts the paint events of a widget.
class PaintCounter : public QObject {
public:
    int Paints = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint) ++Paints;
        return QObject::eventFilter(watched, event);
    }
};

const char* ClampedProgram =
    "N0000 ! PROGRAM NAME : CLAMPS05\n ! SHEET SIZE : X1500 x Y750\n ! CLAMPS : 1=150 2=600.5 3=1050\n"
    "G90 G71\nT1 X100 Y100\nM30\n";

}  // namespace

TEST_F(ProgramFormsTest, TheProgressIsPaintedAtEachStageWhileThePassesRun) {
    ASSERT_EQ(Start(), 0);
    std::vector<int> paintsAtStage;
    std::vector<std::string> labels;
    QImage midway;
    OnProgramForm([&](ProgramForm& form) {
        // As on the panel, the operator presses on a form that is on the screen.
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&form));
        form.ProgramCombo()->setCurrentText("GRID03");
        PaintCounter counter;
        form.ProgressBar()->installEventFilter(&counter);
        // The value goes up as each stage begins: the stages before it must be on the screen
        // already, painted without a turn of the event queue.
        QObject::connect(form.ProgressBar(), &QProgressBar::valueChanged, &form, [&](int value) {
            if (value < 1) return;
            paintsAtStage.push_back(counter.Paints);
            labels.push_back(S(form.ProgressLabel()->text()));
            if (static_cast<SelectStage>(value - 1) == SelectStage::Reverse) {
                // Painted with its new value before the picture is taken.
                form.ProgressBar()->repaint();
                midway = form.grab().toImage();
            }
        });
        form.SelectButton()->click();
        form.ProgressBar()->removeEventFilter(&counter);
    });
    ASSERT_EQ(paintsAtStage.size(), static_cast<std::size_t>(SelectStageCount));
    for (std::size_t stage = 1; stage < paintsAtStage.size(); ++stage)
        EXPECT_GE(paintsAtStage[stage], static_cast<int>(stage)) << "stage " << stage;
    for (const std::string& label : labels) EXPECT_FALSE(label.empty());
    ASSERT_FALSE(midway.isNull());
    QDir().mkpath(KIRVANA_BINARY_DIR "/screenshots");
    EXPECT_TRUE(midway.save(KIRVANA_BINARY_DIR "/screenshots/program_form_selecting.png"));
    EXPECT_EQ(P().State().Slots[0].ProgramName, "GRID03");
}

TEST_F(ProgramFormsTest, SetupFormShowsTheClampDemandsOfTheProgramJustSelected) {
    ASSERT_EQ(Start(), 0);
    Write("Programs/Dorvenis/CLAMPS05.prg", ClampedProgram);
    Select(1, "PLATE01");
    std::vector<std::string> before, after;
    bool setupShown = false;
    WhenModal([&](QWidget* modal) {
        auto* setup = dynamic_cast<SetupForm*>(modal);
        setupShown = setup != nullptr;
        if (!setup) return;
        for (int n = 1; n <= 3; ++n) before.push_back(S(setup->DemandText(n)->text()));
        // F1 over SetupForm: the program changes while SetupForm stands.
        OnProgramForm([&](ProgramForm& form) {
            form.ProgramCombo()->setCurrentText("CLAMPS05");
            form.SelectButton()->click();
        });
        for (int n = 1; n <= 3; ++n) after.push_back(S(setup->DemandText(n)->text()));
        SavePanel("setup_form_after_selection");
        setup->close();
    });
    P().OpenForm("SetupForm");
    ASSERT_TRUE(setupShown);
    EXPECT_EQ(before, (std::vector<std::string>{"0.00", "0.00", "0.00"}));
    EXPECT_EQ(after, (std::vector<std::string>{"150.00", "600.50", "1050.00"}));
    EXPECT_EQ(P().State().Slots[0].ProgramName, "CLAMPS05");
}

TEST_F(ProgramFormsTest, DirectoryComboOffersTheRemovableDrivesWithTheirPrograms) {
    // A floppy and a stick in the mount list; the floppy's folder holds two programs.
    Write("Floppy/DISK01.prg", "G90\n");
    Write("Floppy/DISK02.prg", "G90\n");
    const std::string floppy = dir_.Path() + "Floppy";
    Mounts = "/dev/sda1 / ext4 rw 0 0\n/dev/fd0 " + floppy + " vfat rw 0 0\n/dev/sdb1 /media/op/STICK vfat rw 0 0\n";
    ASSERT_EQ(Start(), 0);
    const std::string floppyCaption = floppy + "/ [Floppy Disk]";
    std::vector<std::string> directories, programs;
    std::string warning;
    OnProgramForm([&](ProgramForm& form) {
        directories = Items(form.DirectoryCombo());
        // Chosen as by a touch on the combo's list.
        const int index = form.DirectoryCombo()->findText(Q(floppyCaption));
        ASSERT_GE(index, 0);
        form.DirectoryCombo()->setCurrentIndex(index);
        emit form.DirectoryCombo()->activated(index);
        programs = Items(form.ProgramCombo());
        SavePanel("program_form_drives");
        // A drive is not a directory of the store: the selection refuses it by the name rule.
        warning = WarningOf([&] { form.SelectButton()->click(); });
    });
    EXPECT_EQ(directories, (std::vector<std::string>{"Dorvenis", floppyCaption, "/media/op/STICK/ [Removable Drive]"}));
    EXPECT_EQ(programs, (std::vector<std::string>{"DISK01", "DISK02"}));
    EXPECT_EQ(warning, "Invalid Directory Name !");
    EXPECT_FALSE(P().State().Slots[0].Present);
}

namespace {

// The rows of every list and combo list on a form that hold something: each as high as a finger
// needs. The names of those that are lower.
std::vector<std::string> LowRows(QWidget* form) {
    std::vector<std::string> low;
    for (QListWidget* list : form->findChildren<QListWidget*>()) {
        if (!list->isVisible()) continue;
        for (int i = 0; i < list->count(); ++i)
            if (list->visualItemRect(list->item(i)).height() < 48)
                low.push_back(S(list->objectName()) + " row " + std::to_string(i + 1));
    }
    for (QComboBox* combo : form->findChildren<QComboBox*>())
        if (combo->isVisible() && combo->count() > 0 && combo->view()->sizeHintForRow(0) < 48)
            low.push_back(S(combo->objectName()) + " rows");
    for (QLabel* row : form->findChildren<QLabel*>(QRegularExpression("^Row[0-9]+$")))
        if (row->height() < 48) low.push_back(S(row->objectName()));
    return low;
}

}  // namespace

TEST_F(ProgramFormsTest, EveryListRowIsHighEnoughForAFinger) {
    ASSERT_EQ(Start(), 0);
    Select(1, "PLATE01");
    Write("Programs/Dorvenis/Sub/KEEP.prg", "G90\n");
    auto* prog = static_cast<ProgListForm*>(P().Forms().Get("ProgListForm"));
    prog->Begin("Dorvenis");
    auto* search = static_cast<SearchForm*>(P().Forms().Get("SearchForm"));
    ASSERT_GT(search->Begin("0"), 0);
    auto* edit = static_cast<EditProgForm*>(P().Forms().Get("EditProgForm"));
    ASSERT_TRUE(edit->Begin("Dorvenis", "PLATE01"));
    static_cast<FileForm*>(P().Forms().Get("FileForm"))->SetJob(FileJob::CopyPrograms);
    static_cast<PunchSettingsForm*>(P().Forms().Get("PunchSettingsForm"))->Begin(1);
    for (const char* name :
         {"ProgramForm", "ProgListForm", "SearchForm", "EditProgForm", "ViewProgForm", "BatchForm", "TurretForm",
          "PunchSettingsForm", "PlasmaSettingsForm", "ToolDefDialogue", "FileForm", "MoveForm"}) {
        std::vector<std::string> low;
        bool shown = false;
        WhenModal([&](QWidget* modal) {
            shown = true;
            Spin(20);
            low = LowRows(modal);
            modal->close();
        });
        P().OpenForm(name);
        EXPECT_TRUE(shown) << name;
        EXPECT_EQ(low, std::vector<std::string>{}) << name;
    }
}

TEST_F(ProgramFormsTest, LeavingTheTurretScreenConvertsTheProgramWithTheNewTool) {
    ASSERT_EQ(Start(), 0);
    Select(1, "PLATE01");
    const std::string hitFile = dir_.Path() + "Actvprg1.dr1";
    auto hitsOfFive = [&](const std::string& description) {
        DrawingFile hits;
        EXPECT_TRUE(hits.Open(hitFile, true));
        int n = 0;
        for (std::int32_t r = 2; r <= hits.LastReadable(); ++r) {
            EntityRec rec;
            hits.Get(r, rec);
            n += rec.StationNo == 5 && DescribeTool(rec.Tool, false) == description;
        }
        return n;
    };
    // Station 5 of the demo turret holds no tool yet.
    const int hits = hitsOfFive("");
    ASSERT_GT(hits, 0);
    WhenModal([&](QWidget* modal) {
        auto* turret = dynamic_cast<TurretForm*>(modal);
        ASSERT_NE(turret, nullptr);
        turret->StationList()->setCurrentRow(4);
        WhenModal([&](QWidget* inner) {
            auto* dialogue = static_cast<ToolDefDialogue*>(inner);
            dialogue->ToolTypeList()->setCurrentRow(0);
            dialogue->SetBox(0, 1, "12");
            dialogue->OkButton()->click();
        });
        turret->ToolButton()->click();
        turret->ExitButton()->click();
    });
    Key(key::F2);
    // The hit file is made only by the conversion: its hits of station 5 carry the new tool.
    EXPECT_EQ(hitsOfFive("Diameter 12"), hits);
    EXPECT_EQ(hitsOfFive(""), 0);
    EXPECT_TRUE(P().State().Slots[0].Present);
    EXPECT_EQ(DescribeTool(SlotTable(P().State().Tools, 1)[4].Tool, false), "Diameter 12");
}

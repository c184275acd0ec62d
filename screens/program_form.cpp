#include "screens/program_form.h"

#include <QGridLayout>
#include <QHBoxLayout>

#include "core/names.h"
#include "core/paths.h"
#include "files/program_store.h"
#include "navigation/program_choice.h"
#include "screens/batch_form.h"
#include "screens/edit_prog_form.h"
#include "screens/form_registry.h"
#include "screens/front_end.h"
#include "screens/panel.h"
#include "screens/panel_style.h"
#include "screens/program_choice_forms.h"
#include "screens/view_prog_form.h"

namespace kirvana {

namespace {

// What the progress indication says while a stage runs.
const char* StageText(SelectStage stage) {
    switch (stage) {
        case SelectStage::Copy:
            return "COPYING PROGRAM";
        case SelectStage::Convert:
            return "CONVERTING PROGRAM";
        case SelectStage::Blend:
            return "BLENDING PROGRAM";
        case SelectStage::Reverse:
            return "CHECKING PROGRAM";
        case SelectStage::Index:
            return "INDEXING BLOCKS";
        case SelectStage::Download:
            return "DOWNLOADING PROGRAM";
    }
    return "";
}

// Names are typed up to here on the pad: a longer one is refused by the selection's own text.
constexpr int NamePadLength = 64;
// The search text: a part of a name.
constexpr int SearchPadLength = 32;

}  // namespace

ProgramForm::ProgramForm(Panel& panel) : PanelForm(panel, "ProgramForm") {
    const ColourTable& c = panel.Colours();
    QVBoxLayout* layout = FrameForm(*this, c, "PROGRAM SELECTION", 900, 700);
    slotLabel_ = TextLabel(this, c, "SlotLabel", 20);
    layout->addWidget(slotLabel_);

    auto* grid = new QGridLayout();
    grid->setHorizontalSpacing(10);
    auto combo = [&](const char* name) {
        auto* box = new QComboBox(this);
        box->setObjectName(name);
        box->setEditable(true);
        box->setInsertPolicy(QComboBox::NoInsert);
        box->setMinimumHeight(TouchSize);
        box->setMaxVisibleItems(12);
        box->setStyleSheet(QString("QComboBox { %1 } QComboBox QAbstractItemView::item { min-height: 48px; }")
                               .arg(PanelStyle(c[ColourItem::TextBackground], c[ColourItem::Text], 20)));
        return box;
    };
    directories_ = combo("DirectoryCombo");
    programs_ = combo("ProgramCombo");
    search_ = new QLineEdit(this);
    search_->setObjectName("SearchBox");
    search_->setMinimumHeight(TouchSize);
    search_->setStyleSheet(PanelStyle(c[ColourItem::TextBackground], c[ColourItem::Text], 20));
    auto* directoryPad = FormButton(this, c, "...", "DirectoryPadButton", TouchSize);
    auto* programPad = FormButton(this, c, "...", "ProgramPadButton", TouchSize);
    auto* searchPad = FormButton(this, c, "...", "SearchPadButton", TouchSize);
    const char* captions[] = {"&DIRECTORY", "&PROGRAM", "SEARCH TEXT"};
    QWidget* boxes[] = {directories_, programs_, search_};
    QPushButton* pads[] = {directoryPad, programPad, searchPad};
    for (int row = 0; row < 3; ++row) {
        auto* label = new QLabel(QString(captions[row]).remove('&'), this);
        label->setStyleSheet("font-size: 20px; font-weight: bold;");
        grid->addWidget(label, row, 0);
        grid->addWidget(boxes[row], row, 1);
        grid->addWidget(pads[row], row, 2);
    }
    grid->setColumnStretch(1, 1);
    layout->addLayout(grid);

    progressLabel_ = new QLabel(this);
    progressLabel_->setObjectName("ProgressLabel");
    progressLabel_->setStyleSheet("font-size: 18px; font-weight: bold;");
    progress_ = new QProgressBar(this);
    progress_->setObjectName("ProgressBar");
    progress_->setRange(0, SelectStageCount);
    progress_->setMinimumHeight(32);
    progress_->setTextVisible(false);
    layout->addWidget(progressLabel_);
    layout->addWidget(progress_);
    progressLabel_->hide();
    progress_->hide();
    layout->addStretch(1);

    auto* buttons = new QGridLayout();
    buttons->setSpacing(10);
    select_ = FormButton(this, c, "&SELECT", "SelectButton");
    auto* view = FormButton(this, c, "&VIEW", "ViewButton");
    auto* edit = FormButton(this, c, "&EDIT", "EditButton");
    auto* list = FormButton(this, c, "&LIST", "ListButton");
    auto* search = FormButton(this, c, "SEA&RCH", "SearchButton");
    auto* batch = FormButton(this, c, "&BATCH", "BatchButton");
    auto* restart = FormButton(this, c, "RES&TART", "RestartButton");
    auto* exit = FormButton(this, c, "E&XIT", "ExitButton");
    QPushButton* all[] = {select_, view, edit, list, search, batch, restart, exit};
    for (int i = 0; i < 8; ++i) buttons->addWidget(all[i], i / 4, i % 4);
    layout->addLayout(buttons);
    for (auto [code, button] : {std::pair{'S', select_},
                                {'V', view},
                                {'E', edit},
                                {'L', list},
                                {'R', search},
                                {'B', batch},
                                {'T', restart},
                                {'X', exit}})
        keys_.Add(code, button);

    connect(directories_, &QComboBox::activated, this, [this] { FillProgramCombo(Directory()); });
    connect(directoryPad, &QPushButton::clicked, this, [this] {
        PadFor(directories_);
        FillProgramCombo(Directory());
    });
    connect(programPad, &QPushButton::clicked, this, [this] { PadFor(programs_); });
    connect(searchPad, &QPushButton::clicked, this, [this] {
        std::string text = S(search_->text());
        if (panel_.EnterText(text, SearchPadLength)) search_->setText(Q(text));
    });
    connect(select_, &QPushButton::clicked, this, [this] { Select(); });
    connect(view, &QPushButton::clicked, this, [this] { panel_.OpenForm("ViewProgForm"); });
    connect(edit, &QPushButton::clicked, this, [this] { OpenEditor(); });
    connect(list, &QPushButton::clicked, this, [this] { OpenList(); });
    connect(search, &QPushButton::clicked, this, [this] { OpenSearch(); });
    connect(batch, &QPushButton::clicked, this, [this] { panel_.OpenForm("BatchForm"); });
    // The restart from a block of the program's list.
    connect(restart, &QPushButton::clicked, this, [this] { panel_.OpenForm("BlockStartForm"); });
    connect(exit, &QPushButton::clicked, this, [this] { accept(); });
}

void ProgramForm::Activate() {
    const Process& p = panel_.State();
    const SlotRecord& slot = p.Slots[static_cast<std::size_t>(p.Config.ActiveSlot - 1)];
    slotLabel_->setText(Q("PROGRAM " + std::to_string(p.Config.ActiveSlot) + " :  " +
                          (slot.Present ? slot.ProgramDirName + " / " + slot.ProgramName : std::string("NONE"))));
    progress_->hide();
    progressLabel_->hide();
    std::string directory = slot.Present ? slot.ProgramDirName : p.Config.Dirs.ProgramDirName;
    directories_->clear();
    choices_ = DirectoryChoices(p.Config.Dirs.ProgramRoot, panel_.Drives());
    QStringList names;
    for (const DirectoryChoice& choice : choices_) names << Q(choice.Caption);
    directories_->addItems(names);
    directories_->setCurrentText(Q(directory));
    FillProgramCombo(directory);
    if (slot.Present) programs_->setCurrentText(Q(slot.ProgramName));
}

void ProgramForm::FillProgramCombo(const std::string& directory) {
    programs_->clear();
    const Process& p = panel_.State();
    QStringList names;
    // An entry of the list (a drive's caption among them) has its path; a typed name lies in
    // the store.
    if (const DirectoryChoice* choice = FindChoice(choices_, directory)) {
        for (const std::string& name : FillPrograms(choice->Path)) names << Q(name);
    } else if (AcceptableName(directory)) {
        for (const std::string& name : FillPrograms(ResolveNoCase(p.Config.Dirs.ProgramRoot + directory) + "/"))
            names << Q(name);
    }
    programs_->addItems(names);
    programs_->setCurrentIndex(names.isEmpty() ? -1 : 0);
}

void ProgramForm::Choose(const std::string& directory, const std::string& program) {
    directories_->setCurrentText(Q(directory));
    FillProgramCombo(directory);
    programs_->setCurrentText(Q(program));
}

std::string ProgramForm::Directory() const { return S(directories_->currentText()); }
std::string ProgramForm::Program() const { return S(programs_->currentText()); }

void ProgramForm::PadFor(QComboBox* combo) {
    std::string text = S(combo->currentText());
    if (panel_.EnterText(text, NamePadLength)) combo->setCurrentText(Q(text));
}

void ProgramForm::ShowStage(SelectStage stage) {
    ++stagesShown_;
    progressLabel_->setText(StageText(stage));
    progress_->setValue(static_cast<int>(stage) + 1);
    // Painted now: the passes hold the event queue until the selection ends.
    progressLabel_->repaint();
    progress_->repaint();
}

void ProgramForm::Select() {
    // The download spins the event queue: a second press meanwhile is not a second selection.
    if (!select_->isEnabled()) return;
    select_->setEnabled(false);
    stagesShown_ = 0;
    progress_->setValue(0);
    progressLabel_->show();
    progress_->show();
    SelectOutcome outcome = SelectProgram(panel_.State(), panel_, panel_.Link(), Directory(), Program(),
                                          [this](SelectStage stage) { ShowStage(stage); });
    select_->setEnabled(true);
    progress_->hide();
    progressLabel_->hide();
    if (FrontEnd* front = panel_.Front()) front->ShowNavigation();
    if (!outcome.Selected) {
        Activate();
        return;
    }
    // 29. SetupForm shows the new program's clamp demands, the search text is cleared and
    // the form goes.
    if (PanelForm* setup = panel_.Forms().Loaded("SetupForm"); setup && setup->isVisible()) setup->ShowModel();
    search_->clear();
    accept();
}

void ProgramForm::OpenList() {
    auto* form = static_cast<ProgListForm*>(panel_.Forms().Get("ProgListForm"));
    form->Begin(Directory());
    panel_.OpenForm("ProgListForm");
    if (form->Chosen()) Choose(form->ChosenDirectory(), form->ChosenProgram());
}

void ProgramForm::OpenSearch() {
    std::string text = S(search_->text());
    if (text.empty() && !panel_.EnterText(text, SearchPadLength)) return;
    search_->setText(Q(text));
    auto* form = static_cast<SearchForm*>(panel_.Forms().Get("SearchForm"));
    if (form->Begin(text) == 0) {
        panel_.ShowWarning(std::string(NoMatchingPrograms) + "\n\n\n", WarningKind::Notice, 1);
        return;
    }
    panel_.OpenForm("SearchForm");
    if (form->Chosen()) Choose(form->ChosenDirectory(), form->ChosenProgram());
}

void ProgramForm::OpenEditor() {
    const Process& p = panel_.State();
    if (std::optional<std::string> refusal = CheckChosenProgram(p.Config.Dirs.ProgramRoot, Directory(), Program())) {
        panel_.ShowWarning(*refusal + "\n\n\n", WarningKind::Notice, 1);
        return;
    }
    auto* form = static_cast<EditProgForm*>(panel_.Forms().Get("EditProgForm"));
    if (!form->Begin(Directory(), Program())) return;
    panel_.OpenForm("EditProgForm");
}

bool ProgramForm::FormKey(int code, QKeyEvent&) {
    if (code == 'D') {
        directories_->setFocus();
        return true;
    }
    if (code == 'P') {
        programs_->setFocus();
        return true;
    }
    return keys_.Press(code);
}

void RegisterProgramForms(Panel& panel, FormRegistry& forms) {
    forms.Register("ProgramForm", [&panel] { return std::make_unique<ProgramForm>(panel); });
    forms.Register("ProgListForm", [&panel] { return std::make_unique<ProgListForm>(panel); });
    forms.Register("SearchForm", [&panel] { return std::make_unique<SearchForm>(panel); });
    forms.Register("ViewProgForm", [&panel] { return std::make_unique<ViewProgForm>(panel); });
    forms.Register("BatchForm", [&panel] { return std::make_unique<BatchForm>(panel); });
    forms.Register("EditProgForm", [&panel] { return std::make_unique<EditProgForm>(panel); });
}

}  // namespace kirvana

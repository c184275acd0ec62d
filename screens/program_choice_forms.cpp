#include "screens/program_choice_forms.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <algorithm>

#include "core/paths.h"
#include "core/text.h"

#include "screens/panel.h"
#include "screens/panel_style.h"

namespace kirvana {

namespace {

// A row of SearchForm's list: the directory in a column of its own, then the program.
std::string SearchRow(std::string directory, const std::string& program) {
    directory.resize(std::max<std::size_t>(directory.size() + 2, 34), ' ');
    return directory + program;
}

}  // namespace

ProgramChoiceForm::ProgramChoiceForm(Panel& panel, const std::string& name, const std::string& caption)
    : PanelForm(panel, name) {
    const ColourTable& c = panel.Colours();
    layout_ = FrameForm(*this, c, caption, 900, 700);
    lists_ = new QWidget(this);
    layout_->addWidget(lists_, 1);
    viewFrame_ = new QFrame(this);
    viewFrame_->setObjectName("ViewFrame");
    auto* viewLayout = new QVBoxLayout(viewFrame_);
    viewBox_ = new QPlainTextEdit(viewFrame_);
    viewBox_->setObjectName("ViewBox");
    viewBox_->setReadOnly(true);
    viewBox_->setStyleSheet(PanelStyle(c[ColourItem::TextBackground], c[ColourItem::Text], 18) +
                            " font-family: 'DejaVu Sans Mono';");
    viewLayout->addWidget(viewBox_, 1);
    viewOk_ = FormButton(viewFrame_, c, "&OK", "ViewOkButton", 180);
    viewLayout->addWidget(viewOk_, 0, Qt::AlignRight);
    layout_->addWidget(viewFrame_, 1);
    viewFrame_->hide();
    auto* buttons = new QHBoxLayout();
    ok_ = FormButton(this, c, "&OK", "OkButton", 180);
    view_ = FormButton(this, c, "&VIEW", "ViewButton", 180);
    exit_ = FormButton(this, c, "E&XIT", "ExitButton", 180);
    buttons->addWidget(view_);
    buttons->addStretch(1);
    buttons->addWidget(ok_);
    buttons->addWidget(exit_);
    layout_->addLayout(buttons);
    keys_.Add('O', ok_);
    keys_.Add('V', view_);
    keys_.Add('X', exit_);
    connect(ok_, &QPushButton::clicked, this, [this] { Ok(); });
    connect(view_, &QPushButton::clicked, this, [this] { View(); });
    connect(viewOk_, &QPushButton::clicked, this, [this] { ShowView(false); });
    connect(exit_, &QPushButton::clicked, this, [this] { reject(); });
}

void ProgramChoiceForm::showEvent(QShowEvent* event) {
    chosen_ = false;
    ShowView(false);
    PanelForm::showEvent(event);
}

void ProgramChoiceForm::ShowView(bool on) {
    viewFrame_->setVisible(on);
    lists_->setVisible(!on);
    for (QPushButton* b : {ok_, view_, exit_}) b->setVisible(!on);
}

bool ProgramChoiceForm::FormKey(int code, QKeyEvent&) {
    if (viewFrame_->isVisible()) {
        if (code == 'O') viewOk_->click();
        return code == 'O';
    }
    return keys_.Press(code);
}

void ProgramChoiceForm::Ok() {
    const std::string& root = panel_.State().Config.Dirs.ProgramRoot;
    if (std::optional<std::string> refusal = CheckChosenProgram(root, CurrentDirectory(), CurrentProgram())) {
        panel_.ShowWarning(*refusal + "\n\n\n", WarningKind::Notice, 1);
        return;
    }
    chosen_ = true;
    chosenDirectory_ = CurrentDirectory();
    chosenProgram_ = CurrentProgram();
    accept();
}

void ProgramChoiceForm::View() {
    const std::string& root = panel_.State().Config.Dirs.ProgramRoot;
    if (std::optional<std::string> refusal = CheckChosenProgram(root, CurrentDirectory(), CurrentProgram())) {
        panel_.ShowWarning(*refusal + "\n\n\n", WarningKind::Notice, 1);
        return;
    }
    std::optional<std::string> text = ProgramText(root, CurrentDirectory(), CurrentProgram());
    viewBox_->setPlainText(Q(text.value_or("")));
    ShowView(true);
}

ProgListForm::ProgListForm(Panel& panel) : ProgramChoiceForm(panel, "ProgListForm", "PROGRAM LIST") {
    const ColourTable& c = panel.Colours();
    auto* grid = new QGridLayout(lists_);
    grid->setContentsMargins(0, 0, 0, 0);
    directories_ = TouchList(lists_, c, "DirectoryList");
    programs_ = TouchList(lists_, c, "ProgramList");
    auto* directoryCaption = new QLabel("DIRECTORIES", lists_);
    auto* programCaption = new QLabel("PROGRAMS", lists_);
    for (QLabel* caption : {directoryCaption, programCaption})
        caption->setStyleSheet("font-size: 18px; font-weight: bold;");
    grid->addWidget(directoryCaption, 0, 0);
    grid->addWidget(programCaption, 0, 1);
    grid->addWidget(directories_, 1, 0);
    grid->addWidget(programs_, 1, 1);
    grid->setColumnStretch(0, 2);
    grid->setColumnStretch(1, 3);
    connect(directories_, &QListWidget::currentRowChanged, this, [this] { FillProgramList(); });
}

void ProgListForm::Activate() {
    // Opened without a directory: the current program directory.
    if (startDirectory_.empty()) startDirectory_ = panel_.State().Config.Dirs.ProgramDirName;
    directories_->blockSignals(true);
    directories_->clear();
    for (const std::string& name : FillDirectories(panel_.State().Config.Dirs.ProgramRoot)) {
        directories_->addItem(Q(name));
        if (UpperCase(name) == UpperCase(startDirectory_)) directories_->setCurrentRow(directories_->count() - 1);
    }
    directories_->blockSignals(false);
    FillProgramList();
}

void ProgListForm::FillProgramList() {
    programs_->clear();
    std::string directory = CurrentDirectory();
    if (directory.empty()) return;
    QStringList names;
    for (const std::string& name :
         FillPrograms(ResolveNoCase(panel_.State().Config.Dirs.ProgramRoot + directory) + "/"))
        names << Q(name);
    programs_->addItems(names);
}

std::string ProgListForm::CurrentDirectory() const {
    QListWidgetItem* item = directories_->currentItem();
    return item && item->isSelected() ? S(item->text()) : std::string();
}

std::string ProgListForm::CurrentProgram() const {
    QListWidgetItem* item = programs_->currentItem();
    return item && item->isSelected() ? S(item->text()) : std::string();
}

SearchForm::SearchForm(Panel& panel) : ProgramChoiceForm(panel, "SearchForm", "PROGRAM SEARCH") {
    const ColourTable& c = panel.Colours();
    auto* column = new QVBoxLayout(lists_);
    column->setContentsMargins(0, 0, 0, 0);
    label_ = TextLabel(lists_, c, "SearchLabel", 20);
    auto* header = new QLabel(Q(SearchRow("DIRECTORY", "PROGRAM")), lists_);
    header->setStyleSheet("font-size: 18px; font-weight: bold; font-family: 'DejaVu Sans Mono';");
    list_ = TouchList(lists_, c, "SearchList");
    list_->setStyleSheet(list_->styleSheet() + " QListWidget { font-family: 'DejaVu Sans Mono'; }");
    column->addWidget(label_);
    column->addWidget(header);
    column->addWidget(list_, 1);
}

std::size_t SearchForm::Begin(const std::string& text) {
    text_ = text;
    found_ = SearchPrograms(panel_.State().Config.Dirs.ProgramRoot, text);
    return found_.size();
}

void SearchForm::Activate() {
    label_->setText(Q(kirvana::SearchLabel(text_)));
    list_->clear();
    for (const ProgramMatch& match : found_) {
        list_->addItem(Q(SearchRow(match.Directory, match.Program)));
    }
}

std::string SearchForm::CurrentDirectory() const {
    int row = list_->currentRow();
    bool chosen = row >= 0 && list_->currentItem()->isSelected() && row < static_cast<int>(found_.size());
    return chosen ? found_[static_cast<std::size_t>(row)].Directory : std::string();
}

std::string SearchForm::CurrentProgram() const {
    int row = list_->currentRow();
    bool chosen = row >= 0 && list_->currentItem()->isSelected() && row < static_cast<int>(found_.size());
    return chosen ? found_[static_cast<std::size_t>(row)].Program : std::string();
}

}  // namespace kirvana

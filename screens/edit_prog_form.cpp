#include "screens/edit_prog_form.h"

#include <QGridLayout>
#include <QKeyEvent>

#include "core/text.h"
#include "navigation/navigation.h"
#include "navigation/program_choice.h"
#include "screens/panel.h"
#include "screens/panel_style.h"

namespace kirvana {

EditProgForm::EditProgForm(Panel& panel) : PanelForm(panel, "EditProgForm") {
    const ColourTable& c = panel.Colours();
    QVBoxLayout* layout = FrameForm(*this, c, "EDIT PROGRAM", 1000, 740);
    file_ = TextLabel(this, c, "FileLabel", 18);
    layout->addWidget(file_);
    lines_ = TouchList(this, c, "LineList");
    lines_->setStyleSheet(lines_->styleSheet() + " QListWidget { font-family: 'DejaVu Sans Mono'; }");
    layout->addWidget(lines_, 1);
    findLabel_ = new QLabel(this);
    findLabel_->setObjectName("FindLabel");
    findLabel_->setStyleSheet("font-size: 17px; font-weight: bold;");
    layout->addWidget(findLabel_);
    auto* grid = new QGridLayout();
    grid->setSpacing(8);
    struct Entry {
        const char* Caption;
        const char* Name;
        int Key;
        void (EditProgForm::*Act)();
    };
    const Entry entries[] = {
        {"&CHANGE", "ChangeButton", 'C', &EditProgForm::ChangeLine},
        {"&INSERT", "InsertButton", 'I', &EditProgForm::InsertLine},
        {"&DELETE", "DeleteButton", 'D', &EditProgForm::DeleteLine},
        {"&UNDO", "UndoButton", 'U', &EditProgForm::Undo},
        {"&FIND", "FindButton", 'F', nullptr},
        {"FIND &NEXT", "FindNextButton", 'N', nullptr},
        {"&SAVE", "SaveButton", 'S', nullptr},
        {"E&XIT", "ExitButton", 'X', &EditProgForm::Exit},
    };
    int n = 0;
    for (const Entry& e : entries) {
        QPushButton* button = FormButton(this, c, e.Caption, e.Name, 200);
        grid->addWidget(button, n / 4, n % 4);
        ++n;
        keys_.Add(e.Key, button);
        if (e.Act) connect(button, &QPushButton::clicked, this, [this, act = e.Act] { (this->*act)(); });
    }
    connect(Button("FindButton"), &QPushButton::clicked, this, [this] { Find(true); });
    connect(Button("FindNextButton"), &QPushButton::clicked, this, [this] { Find(false); });
    connect(Button("SaveButton"), &QPushButton::clicked, this, [this] { Save(); });
    connect(lines_, &QListWidget::itemActivated, this, [this] { ChangeLine(); });
    layout->addLayout(grid);
}

bool EditProgForm::Begin(const std::string& directory, const std::string& program) {
    std::string path = ProgramPath(panel_.State().Config.Dirs.ProgramRoot, directory, program);
    if (path.empty()) {
        panel_.ShowWarning(SaveFaultText(program) + "\n\n\n", WarningKind::Notice, 1);
        return false;
    }
    return Load(path, program, directory + " / " + program);
}

bool EditProgForm::BeginFile(const std::string& path, const std::string& title) {
    return Load(path, FileNameOf(path), title);
}

bool EditProgForm::Load(const std::string& path, const std::string& name, const std::string& title) {
    program_ = name;
    if (!editor_.Load(path)) {
        panel_.ShowWarning(SaveFaultText(path) + "\n\n\n", WarningKind::Notice, 1);
        return false;
    }
    file_->setText(Q(title));
    findLabel_->clear();
    Refill(0);
    return true;
}

void EditProgForm::Activate() { closing_ = false; }

std::size_t EditProgForm::CurrentLine() const {
    int row = lines_->currentRow();
    return row < 0 ? editor_.Lines().size() : static_cast<std::size_t>(row);
}

void EditProgForm::Refill(std::size_t current) {
    const std::vector<std::string>& lines = editor_.Lines();
    QStringList rows;
    rows.reserve(static_cast<qsizetype>(lines.size()));
    for (std::size_t i = 0; i < lines.size(); ++i) rows << Q(ProgramEditor::NumberedLine(i, lines[i]));
    lines_->clear();
    lines_->addItems(rows);
    if (!lines.empty()) lines_->setCurrentRow(static_cast<int>(std::min(current, lines.size() - 1)));
    Button("UndoButton")->setEnabled(editor_.CanUndo());
    Button("SaveButton")->setEnabled(editor_.Modified());
}

void EditProgForm::ChangeLine() {
    std::size_t line = CurrentLine();
    if (line >= editor_.Lines().size()) return;
    std::string text = editor_.Lines()[line];
    if (!panel_.EnterText(text, EditLineLength)) return;
    if (editor_.ReplaceLine(line, text)) Refill(line);
}

void EditProgForm::InsertLine() {
    std::size_t line = CurrentLine();
    std::string text;
    if (!panel_.EnterText(text, EditLineLength)) return;
    if (editor_.InsertLine(line, text)) Refill(line);
}

void EditProgForm::DeleteLine() {
    std::size_t line = CurrentLine();
    if (editor_.DeleteLine(line)) Refill(line);
}

void EditProgForm::Undo() {
    std::size_t line = CurrentLine();
    if (editor_.Undo()) Refill(line);
}

void EditProgForm::Find(bool askText) {
    if (askText || findText_.empty()) {
        std::string text = findText_;
        if (!panel_.EnterText(text, EditLineLength) || text.empty()) return;
        findText_ = text;
    }
    std::size_t from = CurrentLine();
    if (from >= editor_.Lines().size()) from = editor_.Lines().empty() ? 0 : editor_.Lines().size() - 1;
    std::optional<FindPosition> found = editor_.Find(findText_, from);
    if (!found) {
        findLabel_->setText(Q("\"" + findText_ + "\" NOT FOUND"));
        return;
    }
    findLabel_->setText(Q("\"" + findText_ + "\" AT LINE " + std::to_string(found->Line + 1)));
    lines_->setCurrentRow(static_cast<int>(found->Line));
    lines_->scrollToItem(lines_->currentItem(), QAbstractItemView::PositionAtCenter);
}

bool EditProgForm::Save() {
    if (panel_.ShowWarning(SaveQuestion(program_) + "\n\n\n", WarningKind::Question, 1) != 1) return false;
    if (!editor_.Save()) {
        panel_.ShowWarning(SaveFaultText(editor_.Path()) + "\n\n\n", WarningKind::Notice, 1);
        return false;
    }
    Refill(CurrentLine());
    return true;
}

void EditProgForm::Exit() {
    if (editor_.Modified()) {
        int answer = panel_.ShowWarning(SaveChangesQuestion(program_) + "\n\n\n", WarningKind::QuestionWithCancel, 1);
        if (answer == 3 || answer == 0) return;
        if (answer == 1 && !editor_.Save()) {
            panel_.ShowWarning(SaveFaultText(editor_.Path()) + "\n\n\n", WarningKind::Notice, 1);
            return;
        }
    }
    closing_ = true;
    accept();
}

void EditProgForm::reject() {
    // Escape, the window's close and a program change ask about unsaved changes as E&XIT does;
    // the shutdown closes every form without a question, and the program file stays as it was.
    if (closing_ || !editor_.Modified() || panel_.State().ShuttingDown) {
        QDialog::reject();
        return;
    }
    Exit();
}

bool EditProgForm::FormKey(int code, QKeyEvent& event) {
    if (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter) {
        ChangeLine();
        return true;
    }
    if (code == key::Up || code == key::Down) {
        int row = lines_->currentRow() + (code == key::Up ? -1 : 1);
        if (row >= 0 && row < lines_->count()) lines_->setCurrentRow(row);
        return true;
    }
    return keys_.Press(code);
}

}  // namespace kirvana

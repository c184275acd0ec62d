#include "screens/file_forms.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "core/names.h"
#include "core/paths.h"
#include "files/comm_settings.h"
#include "files/program_store.h"
#include "screens/edit_prog_form.h"
#include "screens/list_form.h"
#include "screens/panel.h"
#include "screens/panel_style.h"
#include "screens/send_form.h"

namespace kirvana {

namespace {

QLabel* MakeTitle(QWidget* parent, const ColourTable& c) {
    auto* label = new QLabel(parent);
    label->setStyleSheet(PanelStyle(c[ColourItem::PanelBackground], c[ColourItem::PanelText], 18, true));
    return label;
}

// A name box; the KEYPAD button beside it opens the keyboard pad on it.
QLineEdit* MakeNameBox(QWidget* parent, const char* name) {
    auto* box = new QLineEdit(parent);
    box->setObjectName(name);
    box->setMaxLength(static_cast<int>(NameLengthLimit));
    box->setMinimumHeight(TouchSize);
    box->setStyleSheet("QLineEdit { font-size: 20px; background: white; color: black; }");
    return box;
}

void PadFor(Panel& panel, QLineEdit* box) {
    std::string text = S(box->text());
    if (panel.EnterText(text, 32)) box->setText(Q(text));
}

StoreContext ContextOf(Panel& panel) {
    StoreContext context;
    const Process& p = panel.State();
    context.ControllerDir = p.Config.Dirs.RootDir;
    for (const SlotRecord& slot : p.Slots)
        if (slot.Present) context.DirectoriesInUse.push_back(slot.ProgramDirPath);
    return context;
}

std::vector<std::string> Chosen(QListWidget* list) {
    std::vector<std::string> names;
    for (int i = 0; i < list->count(); ++i)
        if (list->item(i)->isSelected()) names.push_back(S(list->item(i)->text()));
    return names;
}

}  // namespace

QPushButton* StyledButton(const std::string& caption, QWidget* parent, const ColourTable& c, const char* name,
                          int width) {
    QPushButton* b = MakeButton(caption, parent, width);
    b->setObjectName(name);
    b->setMinimumHeight(64);
    b->setAutoDefault(false);
    b->setStyleSheet(ButtonStyle(c[ColourItem::GeneralButtons], c[ColourItem::GeneralButtonText], 18));
    return b;
}

QListWidget* StoreList(QWidget* parent, const char* name, bool several) {
    auto* list = new QListWidget(parent);
    list->setObjectName(name);
    list->setSelectionMode(several ? QAbstractItemView::MultiSelection : QAbstractItemView::SingleSelection);
    // A long mount point keeps both ends readable.
    list->setTextElideMode(Qt::ElideMiddle);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setStyleSheet(
        "QListWidget { font-size: 18px; background: white; color: black; }"
        "QListWidget::item { min-height: 48px; }"
        "QListWidget::item:selected { background: #000080; color: white; }");
    return list;
}

bool WarningOperator::Ask(const std::string& text) {
    return panel_.ShowWarning(text, WarningKind::Question, 1) == 1 && panel_.WarningResult();
}

void WarningOperator::Tell(const std::string& text) { panel_.ShowWarning(text, WarningKind::Notice, 1); }

FileHandleForm::FileHandleForm(Panel& panel) : PanelForm(panel, "FileHandleForm") {
    const ColourTable& c = panel.Colours();
    setWindowTitle("FILE HANDLING");
    setFixedSize(900, 560);
    setStyleSheet(FormStyle(c[ColourItem::PanelBackground], c[ColourItem::PanelText]));
    auto* layout = new QVBoxLayout(this);
    auto* caption = new QLabel("FILE HANDLING", this);
    caption->setObjectName("FileHandlePanel");
    caption->setAlignment(Qt::AlignCenter);
    caption->setStyleSheet(PanelStyle(c[ColourItem::HeaderBackground], c[ColourItem::HeaderText], 24, true));
    layout->addWidget(caption);
    auto* frames = new QHBoxLayout();
    auto frame = [&](const char* title) {
        auto* column = new QVBoxLayout();
        column->addWidget(MakeTitle(this, c));
        static_cast<QLabel*>(column->itemAt(0)->widget())->setText(title);
        frames->addLayout(column, 1);
        return column;
    };
    QVBoxLayout* programs = frame("PROGRAMS");
    for (int job = 1; job <= 5; ++job) {
        auto code = static_cast<FileJob>(job);
        QPushButton* b = StyledButton(FileJobCaptions(code).Button, this, c, "", 240);
        b->setObjectName(QString("ProgramButton%1").arg(job));
        connect(b, &QPushButton::clicked, this, [this, code] { OpenJob(code); });
        programs->addWidget(b);
    }
    programs->addStretch(1);
    QVBoxLayout* directories = frame("DIRECTORIES");
    for (int job = 6; job <= 8; ++job) {
        auto code = static_cast<FileJob>(job);
        QPushButton* b = StyledButton(FileJobCaptions(code).Button, this, c, "", 240);
        b->setObjectName(QString("DirectoryButton%1").arg(job - 5));
        connect(b, &QPushButton::clicked, this, [this, code] { OpenJob(code); });
        directories->addWidget(b);
    }
    directories->addStretch(1);
    QVBoxLayout* comms = frame("RS232 COMMS");
    QPushButton* send = StyledButton("&SEND", this, c, "CommsButton1", 240);
    connect(send, &QPushButton::clicked, this, [this] { OpenSend(); });
    comms->addWidget(send);
    QPushButton* setup = StyledButton("SET&UP", this, c, "CommsButton2", 240);
    connect(setup, &QPushButton::clicked, this, [this] { OpenSetup(); });
    comms->addWidget(setup);
    comms->addStretch(1);
    layout->addLayout(frames, 1);
    QPushButton* exit = StyledButton("E&XIT", this, c, "ExitButton");
    connect(exit, &QPushButton::clicked, this, [this] { accept(); });
    layout->addWidget(exit, 0, Qt::AlignRight);
}

bool FileHandleForm::FormKey(int code, QKeyEvent&) {
    if (code >= '1' && code <= '8') {
        OpenJob(static_cast<FileJob>(code - '0'));
        return true;
    }
    if (code == 'S') {
        OpenSend();
        return true;
    }
    if (code == 'U') {
        OpenSetup();
        return true;
    }
    if (code == 'X') {
        accept();
        return true;
    }
    return false;
}

void FileHandleForm::OpenJob(FileJob job) {
    if (IsDirectoryJob(job)) {
        auto* form = static_cast<DirectoryForm*>(panel_.Forms().Get("DirectoryForm"));
        form->SetJob(job);
        panel_.OpenForm("DirectoryForm");
    } else {
        auto* form = static_cast<FileForm*>(panel_.Forms().Get("FileForm"));
        form->SetJob(job);
        panel_.OpenForm("FileForm");
    }
}

void FileHandleForm::OpenSend() {
    // Only with a port configured.
    auto* list = static_cast<ListForm*>(panel_.Forms().Get("ListForm"));
    if (list->Comms() && list->Comms()->Settings().TransferOn()) panel_.OpenForm("SendForm");
}

void FileHandleForm::OpenSetup() {
    // The installer's text editor on the line settings; they are read at the next start.
    auto* editor = static_cast<EditProgForm*>(panel_.Forms().Get("EditProgForm"));
    const std::string path = panel_.State().Config.Dirs.DataDir + CommSettingsFile;
    if (editor->BeginFile(path, "RS232 Communication Settings")) panel_.OpenForm("EditProgForm");
}

FileForm::FileForm(Panel& panel) : PanelForm(panel, "FileForm") {
    const ColourTable& c = panel.Colours();
    setFixedSize(960, 640);
    setStyleSheet(FormStyle(c[ColourItem::PanelBackground], c[ColourItem::PanelText]));
    auto* layout = new QVBoxLayout(this);
    auto* grid = new QGridLayout();
    for (int i = 0; i < 3; ++i) titles_[i] = MakeTitle(this, c);
    directoryList_ = StoreList(this, "DirectoryList", false);
    fileList_ = StoreList(this, "FileList", true);
    destinationList_ = StoreList(this, "DestinationList", false);
    fileBox_ = MakeNameBox(this, "FileBox");
    grid->addWidget(titles_[1], 0, 0);
    grid->addWidget(titles_[0], 0, 1);
    grid->addWidget(titles_[2], 0, 2);
    grid->addWidget(directoryList_, 1, 0, 2, 1);
    grid->addWidget(fileList_, 1, 1, 2, 1);
    grid->addWidget(fileBox_, 1, 2, Qt::AlignTop);
    grid->addWidget(destinationList_, 1, 2, 2, 1);
    grid->setRowStretch(2, 1);
    layout->addLayout(grid, 1);
    auto* row = new QHBoxLayout();
    row->addStretch(1);
    keys_ = StyledButton("&KEYPAD", this, c, "PadButton");
    QPushButton* ok = StyledButton("&OK", this, c, "OkButton");
    QPushButton* exit = StyledButton("E&XIT", this, c, "ExitButton");
    row->addWidget(keys_);
    row->addWidget(ok);
    row->addWidget(exit);
    layout->addLayout(row);
    connect(directoryList_, &QListWidget::currentRowChanged, this, [this] { FillPrograms(); });
    connect(keys_, &QPushButton::clicked, this, [this] { PadFor(panel_, fileBox_); });
    connect(ok, &QPushButton::clicked, this, [this] { Ok(); });
    connect(exit, &QPushButton::clicked, this, [this] { accept(); });
}

void FileForm::Activate() {
    FileJobText text = FileJobCaptions(job_);
    bool rename = job_ == FileJob::RenameProgram || job_ == FileJob::CopyProgramAs;
    bool destination = job_ == FileJob::MovePrograms || job_ == FileJob::CopyPrograms;
    setWindowTitle(Q(text.Titles[0]));
    // The first title heads the programs, the second the directory (or the destination), the
    // third the new name.
    titles_[0]->setText(Q(text.Titles[0]));
    titles_[1]->setText(job_ == FileJob::DeletePrograms || job_ == FileJob::RenameProgram ? Q(text.Titles[1])
                                                                                          : "DIRECTORY");
    titles_[2]->setText(text.Titles.size() > 1 && job_ != FileJob::DeletePrograms ? Q(text.Titles.back()) : "");
    fileList_->setSelectionMode(rename ? QAbstractItemView::SingleSelection : QAbstractItemView::MultiSelection);
    fileBox_->setVisible(rename);
    keys_->setVisible(rename);
    fileBox_->clear();
    destinationList_->setVisible(destination);
    directories_ = DirectoryChoices(panel_.State().Config.Dirs.ProgramRoot, panel_.Drives());
    directoryList_->blockSignals(true);
    directoryList_->clear();
    destinationList_->clear();
    int current = 0;
    for (std::size_t i = 0; i < directories_.size(); ++i) {
        directoryList_->addItem(Q(directories_[i].Caption));
        destinationList_->addItem(Q(directories_[i].Caption));
        if (directories_[i].Path == panel_.State().Config.Dirs.ProgramDirPath) current = static_cast<int>(i);
    }
    directoryList_->setCurrentRow(current);
    directoryList_->blockSignals(false);
    FillPrograms();
}

void FileForm::FillPrograms() {
    fileList_->clear();
    int row = directoryList_->currentRow();
    if (row < 0 || row >= static_cast<int>(directories_.size())) return;
    for (const std::string& name : kirvana::FillPrograms(directories_[static_cast<std::size_t>(row)].Path))
        fileList_->addItem(Q(name));
}

void FileForm::Ok() {
    int row = directoryList_->currentRow();
    FileJobRequest request;
    request.Job = job_;
    if (row >= 0 && row < static_cast<int>(directories_.size()))
        request.Directory = directories_[static_cast<std::size_t>(row)].Path;
    request.Programs = Chosen(fileList_);
    request.NewName = S(fileBox_->text());
    int to = destinationList_->currentRow();
    if (destinationList_->isVisible() && to >= 0 && to < static_cast<int>(directories_.size()) &&
        destinationList_->item(to)->isSelected()) {
        request.Destination = directories_[static_cast<std::size_t>(to)].Path;
        request.DestinationName = directories_[static_cast<std::size_t>(to)].Caption;
    }
    WarningOperator op(panel_);
    if (RunFileJob(request, ContextOf(panel_), op) > 0) FillPrograms();
}

DirectoryForm::DirectoryForm(Panel& panel) : PanelForm(panel, "DirectoryForm") {
    const ColourTable& c = panel.Colours();
    setFixedSize(760, 600);
    setStyleSheet(FormStyle(c[ColourItem::PanelBackground], c[ColourItem::PanelText]));
    auto* layout = new QVBoxLayout(this);
    auto* grid = new QGridLayout();
    titles_[0] = MakeTitle(this, c);
    titles_[1] = MakeTitle(this, c);
    directoryList_ = StoreList(this, "DirectoryList", false);
    nameBox_ = MakeNameBox(this, "NameBox");
    grid->addWidget(titles_[0], 0, 0);
    grid->addWidget(titles_[1], 0, 1);
    grid->addWidget(directoryList_, 1, 0, 2, 1);
    grid->addWidget(nameBox_, 1, 1, Qt::AlignTop);
    grid->setRowStretch(2, 1);
    layout->addLayout(grid, 1);
    auto* row = new QHBoxLayout();
    row->addStretch(1);
    keys_ = StyledButton("&KEYPAD", this, c, "PadButton");
    QPushButton* ok = StyledButton("&OK", this, c, "OkButton");
    QPushButton* exit = StyledButton("E&XIT", this, c, "ExitButton");
    row->addWidget(keys_);
    row->addWidget(ok);
    row->addWidget(exit);
    layout->addLayout(row);
    connect(keys_, &QPushButton::clicked, this, [this] { PadFor(panel_, nameBox_); });
    connect(ok, &QPushButton::clicked, this, [this] { Ok(); });
    connect(exit, &QPushButton::clicked, this, [this] { accept(); });
}

void DirectoryForm::Activate() {
    FileJobText text = FileJobCaptions(job_);
    setWindowTitle(Q(text.Titles[0]));
    titles_[0]->setText(Q(text.Titles[0]));
    titles_[1]->setText(text.Titles.size() > 1 ? Q(text.Titles[1]).remove('&') : "");
    bool named = job_ != FileJob::DeleteDirectory;
    nameBox_->setVisible(named);
    keys_->setVisible(named);
    nameBox_->clear();
    directoryList_->clear();
    const std::string& root = panel_.State().Config.Dirs.ProgramRoot;
    for (const std::string& name : FillDirectories(root, root))
        if (name != "..") directoryList_->addItem(Q(name));
    directoryList_->setEnabled(job_ != FileJob::CreateDirectory);
}

void DirectoryForm::Ok() {
    DirectoryJobRequest request;
    request.Job = job_;
    request.Parent = panel_.State().Config.Dirs.ProgramRoot;
    std::vector<std::string> chosen = Chosen(directoryList_);
    if (!chosen.empty()) request.Selected = chosen[0];
    request.NewName = S(nameBox_->text());
    WarningOperator op(panel_);
    if (RunDirectoryJob(request, ContextOf(panel_), op)) Activate();
}

void RegisterFileForms(Panel& panel) {
    FormRegistry& forms = panel.Forms();
    forms.Register("FileHandleForm", [&panel] { return std::make_unique<FileHandleForm>(panel); });
    forms.Register("FileForm", [&panel] { return std::make_unique<FileForm>(panel); });
    forms.Register("DirectoryForm", [&panel] { return std::make_unique<DirectoryForm>(panel); });
    forms.Register("SendForm", [&panel] { return std::make_unique<SendForm>(panel); });
    forms.Register("ListForm", [&panel] { return std::make_unique<ListForm>(panel); });
    StartupSteps& steps = panel.Steps();
    auto list = [&panel] { return static_cast<ListForm*>(panel.Forms().Get("ListForm")); };
    steps.ReadSerialSettings = [list](Process&) { list()->ReadSettings(); };
    steps.PrepareReceiveFiles = [list](Process&) { list()->OpenReceivePort(); };
    steps.CloseSerialPort = [list](Process&) { list()->ClosePort(); };
    steps.CloseReceiveFile = [list](Process&) { list()->CloseReceiveFile(); };
}

}  // namespace kirvana

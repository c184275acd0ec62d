#include "screens/send_form.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "files/program_store.h"
#include "screens/file_forms.h"
#include "screens/list_form.h"
#include "screens/panel.h"
#include "screens/panel_style.h"

namespace kirvana {

namespace {

const char* SendFailure(SendResult result) {
    switch (result) {
        case SendResult::Aborted:
            return "Transfer Aborted !";
        case SendResult::PortFault:
            return "Port Fault : ";
        case SendResult::FileFault:
            return "";
        case SendResult::Sent:
            break;
    }
    return "";
}

}  // namespace

SendForm::SendForm(Panel& panel) : PanelForm(panel, "SendForm") {
    const ColourTable& c = panel.Colours();
    setWindowTitle("RS232 COMMS - SEND PROGRAM");
    setFixedSize(900, 640);
    setStyleSheet(FormStyle(c[ColourItem::PanelBackground], c[ColourItem::PanelText]));
    auto* layout = new QVBoxLayout(this);
    auto* caption = new QLabel("RS232 COMMS - SEND PROGRAM", this);
    caption->setObjectName("SendPanel");
    caption->setAlignment(Qt::AlignCenter);
    caption->setStyleSheet(PanelStyle(c[ColourItem::HeaderBackground], c[ColourItem::HeaderText], 22, true));
    layout->addWidget(caption);
    auto* grid = new QGridLayout();
    auto title = [&](const char* text) {
        auto* label = new QLabel(text, this);
        label->setStyleSheet(PanelStyle(c[ColourItem::PanelBackground], c[ColourItem::PanelText], 18, true));
        return label;
    };
    directoryList_ = StoreList(this, "DirectoryList", false);
    fileList_ = StoreList(this, "FileList", true);
    grid->addWidget(title("DIRECTORY"), 0, 0);
    grid->addWidget(title("SEND PROGRAM(S)"), 0, 1);
    grid->addWidget(directoryList_, 1, 0);
    grid->addWidget(fileList_, 1, 1);
    layout->addLayout(grid, 1);
    // SendFrame: what goes, how far, and the operator's FORCE and ABORT.
    auto* frame = new QGridLayout();
    sendLabel_ = new QLabel(this);
    sendLabel_->setObjectName("SendLabel");
    sendLabel_->setStyleSheet(PanelStyle(c[ColourItem::TextBackground], c[ColourItem::Text], 18, true));
    sendLabel_->setMinimumHeight(40);
    floodBar_ = new QProgressBar(this);
    floodBar_->setObjectName("FloodBar");
    floodBar_->setMinimumHeight(32);
    abort_ = StyledButton("&ABORT", this, c, "AbortButton", 170);
    force_ = StyledButton("&FORCE", this, c, "ForceButton", 170);
    frame->addWidget(sendLabel_, 0, 0, 1, 2);
    frame->addWidget(floodBar_, 1, 0, 1, 2);
    frame->addWidget(force_, 2, 0);
    frame->addWidget(abort_, 2, 1);
    layout->addLayout(frame);
    auto* row = new QHBoxLayout();
    row->addStretch(1);
    ok_ = StyledButton("&OK", this, c, "OkButton", 170);
    exit_ = StyledButton("&CANCEL", this, c, "ExitButton", 170);
    row->addWidget(ok_);
    row->addWidget(exit_);
    layout->addLayout(row);
    connect(directoryList_, &QListWidget::currentRowChanged, this, [this] { FillPrograms(); });
    connect(ok_, &QPushButton::clicked, this, [this] { Ok(); });
    connect(exit_, &QPushButton::clicked, this, [this] {
        if (!sending_) accept();
    });
    auto comms = [this] { return static_cast<ListForm*>(panel_.Forms().Get("ListForm"))->Comms(); };
    connect(force_, &QPushButton::clicked, this, [comms] {
        if (comms()) comms()->Force();
    });
    connect(abort_, &QPushButton::clicked, this, [comms] {
        if (comms()) comms()->Abort();
    });
}

void SendForm::Activate() {
    directories_ = DirectoryChoices(panel_.State().Config.Dirs.ProgramRoot, panel_.Drives());
    directoryList_->blockSignals(true);
    directoryList_->clear();
    int current = 0;
    for (std::size_t i = 0; i < directories_.size(); ++i) {
        directoryList_->addItem(Q(directories_[i].Caption));
        if (directories_[i].Path == panel_.State().Config.Dirs.ProgramDirPath) current = static_cast<int>(i);
    }
    directoryList_->setCurrentRow(current);
    directoryList_->blockSignals(false);
    FillPrograms();
    sendLabel_->setText("");
    floodBar_->setValue(0);
    SetSending(false);
}

bool SendForm::FormKey(int code, QKeyEvent&) {
    QPushButton* button = code == 'F'   ? force_
                          : code == 'A' ? abort_
                          : code == 'O' ? ok_
                          : code == 'C' ? exit_
                                        : nullptr;
    if (!button) return false;
    if (button->isEnabled()) button->click();
    return true;
}

void SendForm::FillPrograms() {
    fileList_->clear();
    int row = directoryList_->currentRow();
    if (row < 0 || row >= static_cast<int>(directories_.size())) return;
    for (const std::string& name : kirvana::FillPrograms(directories_[static_cast<std::size_t>(row)].Path))
        fileList_->addItem(Q(name));
}

void SendForm::SetSending(bool sending) {
    sending_ = sending;
    force_->setEnabled(sending);
    abort_->setEnabled(sending);
    ok_->setEnabled(!sending);
    exit_->setEnabled(!sending);
    directoryList_->setEnabled(!sending);
    fileList_->setEnabled(!sending);
}

void SendForm::Ok() {
    std::vector<std::string> chosen;
    for (int i = 0; i < fileList_->count(); ++i)
        if (fileList_->item(i)->isSelected()) chosen.push_back(S(fileList_->item(i)->text()));
    if (chosen.empty()) {
        panel_.ShowWarning(WarningText({"No Programs Selected !"}), WarningKind::Notice, 1);
        return;
    }
    CommsModule* comms = static_cast<ListForm*>(panel_.Forms().Get("ListForm"))->Comms();
    if (!comms) return;
    std::string directory = directories_[static_cast<std::size_t>(directoryList_->currentRow())].Path;
    SetSending(true);
    for (const std::string& name : chosen) {
        sendLabel_->setText(Q(name));
        SendResult result = comms->SendProgram(directory, name, [this](const SendProgress& progress) {
            sendLabel_->setText(Q(progress.Label));
            floodBar_->setMaximum(progress.Maximum);
            floodBar_->setValue(progress.Value);
        });
        if (result == SendResult::Sent) continue;
        SetSending(false);
        panel_.ShowWarning(WarningText({SendFailure(result) + comms->LastError()}), WarningKind::Notice, 1);
        return;
    }
    SetSending(false);
}

}  // namespace kirvana

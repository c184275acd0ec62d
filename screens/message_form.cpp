#include "screens/message_form.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include "navigation/messages.h"
#include "screens/panel.h"
#include "screens/panel_style.h"
#include "system/poll_cycle.h"

namespace kirvana {

MessageForm::MessageForm(Panel& panel) : PanelForm(panel, "MessageForm") {
    const ColourTable& c = panel.Colours();
    setWindowTitle("MESSAGES");
    setFixedSize(900, 740);
    setStyleSheet(FormStyle(c[ColourItem::PanelBackground], c[ColourItem::PanelText]));
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(6);
    auto* caption = new QLabel("MESSAGES", this);
    caption->setAlignment(Qt::AlignCenter);
    caption->setStyleSheet(PanelStyle(c[ColourItem::HeaderBackground], c[ColourItem::HeaderText], 22, true));
    layout->addWidget(caption);
    box_ = new QWidget(this);
    box_->setObjectName("MessageBox");
    box_->setStyleSheet(PanelStyle(c[ColourItem::TextBackground], c[ColourItem::Text]));
    auto* rows = new QVBoxLayout(box_);
    rows->setContentsMargins(4, 4, 4, 4);
    rows->setSpacing(1);
    for (int i = 0; i < MessageListLines; ++i) {
        rows_[i] = new QPushButton(box_);
        rows_[i]->setObjectName(QString("Message%1").arg(i + 1));
        rows_[i]->setFixedHeight(48);
        rows_[i]->setFocusPolicy(Qt::NoFocus);
        rows->addWidget(rows_[i]);
        connect(rows_[i], &QPushButton::clicked, this, [this, i] { SelectRow(i + 1); });
    }
    // The lines at a finger's height are more than the form holds: they scroll by a bar a finger
    // wide.
    scroll_ = new QScrollArea(this);
    scroll_->setObjectName("MessageScroll");
    scroll_->setWidget(box_);
    scroll_->setWidgetResizable(true);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll_->verticalScrollBar()->setStyleSheet("QScrollBar:vertical { width: 48px; }");
    layout->addWidget(scroll_, 1);
    help_ = new QPlainTextEdit(this);
    help_->setObjectName("HelpBox");
    help_->setReadOnly(true);
    help_->setStyleSheet(PanelStyle(c[ColourItem::TextBackground], c[ColourItem::Text], 18));
    help_->hide();
    layout->addWidget(help_, 1);
    auto* buttons = new QHBoxLayout();
    exit_ = MakeButton("E&XIT", this, 180);
    exit_->setObjectName("ExitButton");
    helpButton_ = MakeButton("&HELP", this, 180);
    helpButton_->setObjectName("HelpButton");
    clear_ = MakeButton("&ACKNOWLEDGE", this, 220);
    clear_->setObjectName("ClearButton");
    for (QPushButton* b : {clear_, helpButton_, exit_}) {
        b->setStyleSheet(ButtonStyle(c[ColourItem::GeneralButtons], c[ColourItem::GeneralButtonText], 18));
        b->setAutoDefault(false);
        buttons->addWidget(b);
    }
    layout->addLayout(buttons);
    connect(exit_, &QPushButton::clicked, this, [this] { accept(); });
    connect(helpButton_, &QPushButton::clicked, this, [this] { HelpPressed(); });
    connect(clear_, &QPushButton::clicked, this, [this] { ClearPressed(); });
}

void MessageForm::Activate() {
    help_->hide();
    scroll_->show();
    helpButton_->setText("&HELP");
    Process& process = panel_.State();
    // Filled from the live list on activation: the last values read, shown again.
    UpdateMessageList(process, std::max(process.Poll.LastMessageNo, 0), std::max(process.Poll.LastLogicBits, 0));
    ShowModel();
}

void MessageForm::ShowModel() {
    const ColourTable& c = panel_.Colours();
    const MessageList& list = panel_.State().Display.Messages;
    QString normal = QString(
                         "QPushButton { text-align: left; border: none; padding-left: 6px; font-size: 18px;"
                         " background: %1; color: %2; }")
                         .arg(ToQColor(c[ColourItem::TextBackground]).name(), ToQColor(c[ColourItem::Text]).name());
    QString inverted = QString(
                           "QPushButton { text-align: left; border: none; padding-left: 6px; font-size: 18px;"
                           " background: %1; color: %2; }")
                           .arg(ToQColor(c[ColourItem::Text]).name(), ToQColor(c[ColourItem::TextBackground]).name());
    for (int i = 0; i < MessageListLines; ++i) {
        rows_[i]->setText(Q(list.Lines[i].Text));
        rows_[i]->setStyleSheet(i + 1 == list.SelectedMessage && i < list.LineCount ? inverted : normal);
    }
}

void MessageForm::SelectRow(int row) {
    Process& process = panel_.State();
    if (row < 1 || row > process.Display.Messages.LineCount) return;
    process.Display.Messages.SelectedMessage = row;
    UpdateMessageList(process, std::max(process.Poll.LastMessageNo, 0), std::max(process.Poll.LastLogicBits, 0));
    ShowModel();
}

void MessageForm::HelpPressed() {
    if (help_->isVisible()) {
        help_->hide();
        scroll_->show();
        helpButton_->setText("&HELP");
        return;
    }
    const MessageList& list = panel_.State().Display.Messages;
    std::string file;
    if (list.SelectedMessage >= 1 && list.SelectedMessage <= list.LineCount)
        file = list.Lines[list.SelectedMessage - 1].HelpFile;
    // A missing help file shows an empty box; the form stays usable.
    help_->setPlainText(Q(ReadHelpFile(file).value_or(std::string())));
    scroll_->hide();
    help_->show();
    helpButton_->setText("&MESSAGES");
}

void MessageForm::ClearPressed() {
    AcknowledgeMessages(panel_.State());
    Process& process = panel_.State();
    UpdateMessageList(process, std::max(process.Poll.LastMessageNo, 0), std::max(process.Poll.LastLogicBits, 0));
    ShowModel();
}

bool MessageForm::FormKey(int code, QKeyEvent&) {
    // Up and down move the selected line.
    const MessageList& list = panel_.State().Display.Messages;
    if (code == key::Up && list.SelectedMessage > 1) {
        SelectRow(list.SelectedMessage - 1);
        return true;
    }
    if (code == key::Down && list.SelectedMessage < list.LineCount) {
        SelectRow(list.SelectedMessage + 1);
        return true;
    }
    return code == key::Up || code == key::Down;
}

}  // namespace kirvana

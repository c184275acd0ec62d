#include "screens/user_form.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QVBoxLayout>

#include "screens/panel.h"
#include "screens/panel_style.h"

namespace kirvana {

UserForm::UserForm(Panel& panel) : PanelForm(panel, "UserForm") {
    const ColourTable& c = panel.Colours();
    setWindowTitle("USER KEYS");
    setFixedSize(900, 560);
    setStyleSheet(FormStyle(c[ColourItem::PanelBackground], c[ColourItem::PanelText]));
    auto* layout = new QVBoxLayout(this);
    auto* caption = new QLabel("USER KEYS", this);
    caption->setAlignment(Qt::AlignCenter);
    caption->setStyleSheet(PanelStyle(c[ColourItem::HeaderBackground], c[ColourItem::HeaderText], 22, true));
    layout->addWidget(caption);
    note_ = new QLabel(this);
    note_->setObjectName("NoteLabel");
    note_->setStyleSheet(PanelStyle(c[ColourItem::TextBackground], c[ColourItem::Text], 18, true));
    layout->addWidget(note_);
    auto* grid = new QGridLayout();
    QString buttonStyle = ButtonStyle(c[ColourItem::GeneralButtons], c[ColourItem::GeneralButtonText], 17);
    for (int i = 0; i < UserKeyCount; ++i) {
        buttons_[i] = MakeButton("", this, 200);
        buttons_[i]->setObjectName(QString("UserButton%1").arg(i + 1));
        buttons_[i]->setStyleSheet(buttonStyle);
        buttons_[i]->setAutoDefault(false);
        checks_[i] = MakeButton("", this, 200);
        checks_[i]->setObjectName(QString("UserCheck%1").arg(i + 1));
        checks_[i]->setCheckable(true);
        checks_[i]->setStyleSheet(buttonStyle);
        checks_[i]->setAutoDefault(false);
        grid->addWidget(buttons_[i], i / 4, i % 4);
        grid->addWidget(checks_[i], i / 4, i % 4);
        connect(buttons_[i], &QPushButton::pressed, this, [this, i] { Send(config_.Keys[i].OnText); });
        connect(buttons_[i], &QPushButton::released, this, [this, i] { Send(config_.Keys[i].OffText); });
        connect(checks_[i], &QPushButton::clicked, this,
                [this, i](bool on) { Send(on ? config_.Keys[i].OnText : config_.Keys[i].OffText); });
    }
    layout->addLayout(grid);
    layout->addStretch(1);
    exit_ = MakeButton("E&XIT", this, 180);
    exit_->setObjectName("ExitButton");
    exit_->setStyleSheet(buttonStyle);
    exit_->setAutoDefault(false);
    layout->addWidget(exit_, 0, Qt::AlignRight);
    connect(exit_, &QPushButton::clicked, this, [this] { accept(); });
}

void UserForm::Activate() {
    config_ = ReadKeypadConfig(panel_.State().Config.Dirs.DataDir);
    note_->setText(Q(config_.Note));
    note_->setVisible(!config_.Note.empty());
    for (int i = 0; i < UserKeyCount; ++i) {
        bool present = i < static_cast<int>(config_.Keys.size()) && config_.Keys[i].Valid;
        bool latching = present && config_.Keys[i].Latching;
        QString caption = present ? Q(UserKeyCaption(i + 1, config_.Keys[i].Caption)) : QString();
        buttons_[i]->setText(caption);
        checks_[i]->setText(caption);
        buttons_[i]->setVisible(present && !latching);
        checks_[i]->setVisible(latching);
    }
}

bool UserForm::FormKey(int code, QKeyEvent&) {
    // A to P press their key.
    int index = code - 'A';
    if (index < 0 || index >= static_cast<int>(config_.Keys.size()) || !config_.Keys[index].Valid) return false;
    if (config_.Keys[index].Latching)
        checks_[index]->click();
    else
        buttons_[index]->click();
    return true;
}

void UserForm::Send(const std::string& text) {
    if (!text.empty()) panel_.Talk().Download(text);
}

}  // namespace kirvana

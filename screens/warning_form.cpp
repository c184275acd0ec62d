#include "screens/warning_form.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QStyle>
#include <QVBoxLayout>

#include "screens/panel.h"
#include "screens/panel_style.h"

namespace kirvana {

WarningForm::WarningForm(Panel& panel) : PanelForm(panel, "WarningForm") {
    const ColourTable& c = panel.Colours();
    setWindowTitle("KIRVANA 32");
    setMinimumSize(640, 340);
    setStyleSheet(PanelStyle(c[ColourItem::PanelBackground], c[ColourItem::PanelText]));
    auto* layout = new QVBoxLayout(this);
    auto* caption = new QLabel("KIRVANA 32", this);
    caption->setObjectName("WarningPanel");
    caption->setAlignment(Qt::AlignCenter);
    caption->setStyleSheet(PanelStyle(c[ColourItem::HeaderBackground], c[ColourItem::HeaderText], 24, true));
    layout->addWidget(caption);
    auto* body = new QHBoxLayout();
    image_ = new QLabel(this);
    image_->setObjectName("WarningImage");
    image_->setFixedSize(72, 72);
    body->addWidget(image_, 0, Qt::AlignTop);
    label_ = new QLabel(this);
    label_->setObjectName("WarningLabel");
    label_->setWordWrap(true);
    label_->setAlignment(Qt::AlignCenter);
    label_->setStyleSheet(PanelStyle(c[ColourItem::PanelBackground], c[ColourItem::PanelText], 20, true));
    body->addWidget(label_, 1);
    layout->addLayout(body, 1);
    auto* row = new QHBoxLayout();
    for (int i = 0; i < 3; ++i) {
        buttons_[i] = MakeButton("", this, 160);
        buttons_[i]->setObjectName(QString("WarningButton%1").arg(i));
        buttons_[i]->setMinimumHeight(64);
        buttons_[i]->setAutoDefault(false);
        row->addWidget(buttons_[i]);
        connect(buttons_[i], &QPushButton::clicked, this, [this, i] { Press(i + 1); });
    }
    layout->addLayout(row);
}

void WarningForm::Activate() {
    const WarningGate& gate = panel_.Warning();
    const ColourTable& c = panel_.Colours();
    pressed_ = 0;
    label_->setText(Q(gate.Text()));
    QStyle::StandardPixmap pixmap = QStyle::SP_MessageBoxInformation;
    std::int32_t colour = c[ColourItem::OkMessageButton], text = c[ColourItem::OkMessageButtonText];
    switch (ImageOfKind(gate.Kind())) {
        case WarningImage::Question:
            pixmap = QStyle::SP_MessageBoxQuestion;
            colour = c[ColourItem::WarningMessageButton];
            text = c[ColourItem::WarningMessageButtonText];
            break;
        case WarningImage::Warning:
            pixmap = QStyle::SP_MessageBoxWarning;
            colour = c[ColourItem::CriticalMessageButton];
            text = c[ColourItem::CriticalMessageButtonText];
            break;
        default: break;
    }
    image_->setPixmap(style()->standardIcon(pixmap).pixmap(64, 64));
    image_->setProperty("kind", static_cast<int>(ImageOfKind(gate.Kind())));
    std::vector<std::string> captions = WarningCaptions(gate.Kind());
    for (int i = 0; i < 3; ++i) {
        bool used = i < static_cast<int>(captions.size());
        buttons_[i]->setVisible(used);
        buttons_[i]->setText(used ? Q(captions[i]) : QString());
        buttons_[i]->setStyleSheet(ButtonStyle(colour, text, 20));
    }
    buttons_[gate.DefaultButton() - 1]->setFocus();
}

bool WarningForm::FormKey(int code, QKeyEvent& event) {
    // Enter presses the button with the focus; Escape the last one (OK, NO or CANCEL).
    if (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter) {
        for (int i = 0; i < 3; ++i)
            if (focusWidget() == buttons_[i]) Press(i + 1);
        return true;
    }
    if (event.key() == Qt::Key_Escape) {
        Press(static_cast<int>(WarningCaptions(panel_.Warning().Kind()).size()));
        return true;
    }
    // Y, N, C and O as the captions mark them; nothing else reaches MainKey from a warning.
    std::vector<std::string> captions = WarningCaptions(panel_.Warning().Kind());
    for (std::size_t i = 0; i < captions.size(); ++i)
        if (captions[i].size() > 1 && code == captions[i][1]) Press(static_cast<int>(i) + 1);
    return true;
}

void WarningForm::Press(int button) {
    if (pressed_ != 0) return;
    pressed_ = button;
    accept();
}

}  // namespace kirvana

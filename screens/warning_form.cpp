#include "screens/warning_form.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

#include "screens/panel.h"
#include "screens/panel_style.h"

namespace kirvana {

namespace {

// The image of a kind, 64 pixels: "i" in a blue disc, "?" in a green disc, "!" in a red triangle.
QPixmap KindImage(WarningImage image) {
    QPixmap pixmap(64, 64);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::black, 2));
    QString mark;
    switch (image) {
        case WarningImage::Information:
            painter.setBrush(QColor(0, 90, 200));
            painter.drawEllipse(QRectF(2, 2, 60, 60));
            mark = "i";
            break;
        case WarningImage::Question:
            painter.setBrush(QColor(0, 150, 60));
            painter.drawEllipse(QRectF(2, 2, 60, 60));
            mark = "?";
            break;
        case WarningImage::Warning: {
            QPainterPath triangle;
            triangle.moveTo(32, 2);
            triangle.lineTo(62, 60);
            triangle.lineTo(2, 60);
            triangle.closeSubpath();
            painter.setBrush(QColor(220, 0, 0));
            painter.drawPath(triangle);
            mark = "!";
            break;
        }
    }
    QFont font = painter.font();
    font.setPixelSize(40);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(QRectF(0, image == WarningImage::Warning ? 10 : 0, 64, 64), Qt::AlignCenter, mark);
    return pixmap;
}

}  // namespace

WarningForm::WarningForm(Panel& panel) : PanelForm(panel, "WarningForm") {
    const ColourTable& c = panel.Colours();
    setWindowTitle("KIRVANA 32");
    setMinimumSize(640, 340);
    setStyleSheet(FormStyle(c[ColourItem::PanelBackground], c[ColourItem::PanelText]));
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
    std::int32_t colour = c[ColourItem::OkMessageButton], text = c[ColourItem::OkMessageButtonText];
    switch (ImageOfKind(gate.Kind())) {
        case WarningImage::Question:
            colour = c[ColourItem::WarningMessageButton];
            text = c[ColourItem::WarningMessageButtonText];
            break;
        case WarningImage::Warning:
            colour = c[ColourItem::CriticalMessageButton];
            text = c[ColourItem::CriticalMessageButtonText];
            break;
        default:
            break;
    }
    image_->setPixmap(KindImage(ImageOfKind(gate.Kind())));
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

#include "screens/command_form.h"

#include <QHBoxLayout>

#include "navigation/machine_screens.h"
#include "navigation/pad_entry.h"
#include "screens/panel.h"
#include "screens/panel_style.h"

namespace kirvana {

CommandForm::CommandForm(Panel& panel, const std::string& name, const std::string& title, int width, int height)
    : PanelForm(panel, name) {
    const ColourTable& c = panel.Colours();
    setWindowTitle(Q(title));
    setFixedSize(width, height);
    setStyleSheet(FormStyle(c[ColourItem::PanelBackground], c[ColourItem::PanelText]));
    buttonStyle_ = ButtonStyle(c[ColourItem::GeneralButtons], c[ColourItem::GeneralButtonText], 17);
    layout_ = new QVBoxLayout(this);
    layout_->setSpacing(8);
    auto* caption = new QLabel(Q(title), this);
    caption->setObjectName("CaptionPanel");
    caption->setAlignment(Qt::AlignCenter);
    caption->setMinimumHeight(44);
    caption->setStyleSheet(PanelStyle(c[ColourItem::HeaderBackground], c[ColourItem::HeaderText], 22, true));
    layout_->addWidget(caption);
}

QPushButton* CommandForm::AddButton(const std::string& caption, const QString& objectName, int minWidth) {
    QPushButton* button = MakeButton(caption, this, minWidth);
    button->setObjectName(objectName);
    button->setStyleSheet(buttonStyle_);
    button->setAutoDefault(false);
    return button;
}

QPushButton* CommandForm::AddValueBox(QGridLayout* grid, int row, const std::string& caption, const QString& objectName,
                                      int mode) {
    const ColourTable& c = panel_.Colours();
    auto* label = new QLabel(Q(caption), this);
    auto* box = new QPushButton("0", this);
    box->setObjectName(objectName);
    box->setMinimumSize(200, TouchSize);
    box->setAutoDefault(false);
    box->setStyleSheet(QString("QPushButton { background: %1; color: %2; font-size: 20px; font-weight: bold;"
                               " border: 2px solid #000000; text-align: right; padding-right: 10px; }")
                           .arg(ToQColor(c[ColourItem::TextBackground]).name(), ToQColor(c[ColourItem::Text]).name()));
    label->setBuddy(box);
    grid->addWidget(label, row, 0);
    grid->addWidget(box, row, 1);
    connect(box, &QPushButton::clicked, this, [this, box, mode] {
        double value = 0;
        if (panel_.EnterNumber(value, S(box->text()), mode)) box->setText(Q(BoxText(value)));
    });
    return box;
}

QLabel* CommandForm::AddValueText(QGridLayout* grid, int row, int column, const std::string& caption,
                                  const QString& objectName) {
    const ColourTable& c = panel_.Colours();
    auto* label = new QLabel(Q(caption), this);
    auto* text = new QLabel(this);
    text->setObjectName(objectName);
    text->setMinimumSize(150, 40);
    text->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    text->setStyleSheet(QString("background: %1; color: %2; font-size: 20px; font-weight: bold;"
                                " font-family: 'DejaVu Sans Mono'; border: 2px solid #000000; padding-right: 8px;")
                            .arg(ToQColor(c[ColourItem::TextBackground]).name(), ToQColor(c[ColourItem::Text]).name()));
    grid->addWidget(label, row, column);
    grid->addWidget(text, row, column + 1);
    return text;
}

QLabel* CommandForm::AddHeading(const std::string& text) {
    auto* heading = new QLabel(Q(text), this);
    heading->setStyleSheet("font-weight: bold; font-size: 18px;");
    layout_->addWidget(heading);
    return heading;
}

void CommandForm::AddColumnHeading(QGridLayout* grid, int column, const std::string& text) {
    auto* heading = new QLabel(Q(text), this);
    heading->setAlignment(Qt::AlignCenter);
    heading->setStyleSheet("font-weight: bold; font-size: 18px;");
    grid->addWidget(heading, 0, column);
}

void CommandForm::AddExit() {
    exit_ = AddButton(ExitCaption, "ExitButton");
    layout_->addStretch(1);
    layout_->addWidget(exit_, 0, Qt::AlignRight);
    connect(exit_, &QPushButton::clicked, this, [this] { accept(); });
}

double CommandForm::BoxValue(const QPushButton* box) const { return PadNumber(S(box->text())); }

bool CommandForm::Refused(const Refusal& refusal) {
    if (!refusal) return false;
    panel_.ShowWarning(*refusal + "\n\n\n", WarningKind::Notice, 1);
    return true;
}

bool CommandForm::FormKey(int code, QKeyEvent&) {
    if (code == 0 || code > 'Z') return false;
    for (QPushButton* button : findChildren<QPushButton*>())
        if (button->isVisible() && button->isEnabled() && MnemonicOf(S(button->text())) == code) {
            button->click();
            return true;
        }
    for (QLabel* label : findChildren<QLabel*>())
        if (auto* box = qobject_cast<QPushButton*>(label->buddy());
            box && box->isVisible() && box->isEnabled() && MnemonicOf(S(label->text())) == code) {
            box->click();
            return true;
        }
    return false;
}

}  // namespace kirvana

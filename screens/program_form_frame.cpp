#include "screens/program_form_frame.h"

#include "screens/panel_style.h"

namespace kirvana {

QVBoxLayout* FrameForm(PanelForm& form, const ColourTable& c, const std::string& caption, int width, int height) {
    form.setWindowTitle(Q(caption));
    form.setFixedSize(width, height);
    form.setStyleSheet(FormStyle(c[ColourItem::PanelBackground], c[ColourItem::PanelText]));
    auto* layout = new QVBoxLayout(&form);
    layout->setSpacing(8);
    auto* title = new QLabel(Q(caption), &form);
    title->setObjectName("CaptionLabel");
    title->setAlignment(Qt::AlignCenter);
    title->setStyleSheet(PanelStyle(c[ColourItem::HeaderBackground], c[ColourItem::HeaderText], 22, true));
    layout->addWidget(title);
    return layout;
}

QPushButton* FormButton(QWidget* parent, const ColourTable& c, const std::string& caption, const char* name,
                        int minWidth) {
    QPushButton* button = MakeButton(caption, parent, minWidth);
    button->setObjectName(name);
    button->setStyleSheet(ButtonStyle(c[ColourItem::GeneralButtons], c[ColourItem::GeneralButtonText], 17));
    button->setAutoDefault(false);
    return button;
}

QLabel* TextLabel(QWidget* parent, const ColourTable& c, const char* name, int fontPx) {
    auto* label = new QLabel(parent);
    label->setObjectName(name);
    label->setMinimumHeight(40);
    label->setStyleSheet(PanelStyle(c[ColourItem::TextBackground], c[ColourItem::Text], fontPx) + " padding: 4px;");
    return label;
}

QListWidget* TouchList(QWidget* parent, const ColourTable& c, const char* name) {
    auto* list = new QListWidget(parent);
    list->setObjectName(name);
    list->setUniformItemSizes(true);
    list->setStyleSheet(
        QString("QListWidget { %1 } QListWidget::item { min-height: 48px; } QScrollBar:vertical { width: 48px; }")
            .arg(PanelStyle(c[ColourItem::TextBackground], c[ColourItem::Text], 18)));
    return list;
}

bool ButtonKeys::Press(int code) const {
    auto it = keys_.find(code);
    if (it == keys_.end()) return false;
    if (it->second->isEnabled() && it->second->isVisible()) it->second->click();
    return true;
}

}  // namespace kirvana

#include "screens/panel_style.h"

#include "navigation/navigation.h"

namespace kirvana {

namespace {

QString Css(std::int32_t c) { return ToQColor(c).name(); }

}  // namespace

QString ButtonStyle(std::int32_t background, std::int32_t text, int fontPx) {
    QColor bg = ToQColor(background);
    return QString(
               "QPushButton { background: %1; color: %2; font-size: %3px; font-weight: bold;"
               " border: 2px solid %4; border-radius: 4px; padding: 4px; }"
               " QPushButton:pressed { background: %5; }"
               " QPushButton:disabled { color: #7a7a7a; }"
               " QPushButton:checked { background: %5; border: 3px solid #000000; }")
        .arg(bg.name(), Css(text))
        .arg(fontPx)
        .arg(bg.darker(160).name(), bg.darker(130).name());
}

QString PanelStyle(std::int32_t background, std::int32_t text, int fontPx, bool bold) {
    return QString("background: %1; color: %2; font-size: %3px; %4")
        .arg(Css(background), Css(text))
        .arg(fontPx)
        .arg(bold ? "font-weight: bold;" : "");
}

QPushButton* MakeButton(const std::string& caption, QWidget* parent, int minWidth) {
    auto* button = new QPushButton(Q(caption), parent);
    button->setMinimumSize(minWidth, TouchSize);
    button->setFocusPolicy(Qt::StrongFocus);
    return button;
}

int KeyCodeOf(const QKeyEvent& event) {
    int k = event.key();
    if (k >= Qt::Key_F1 && k <= Qt::Key_F12) return key::F1 + (k - Qt::Key_F1);
    if (k >= Qt::Key_A && k <= Qt::Key_Z) return 'A' + (k - Qt::Key_A);
    if (k >= Qt::Key_0 && k <= Qt::Key_9) return '0' + (k - Qt::Key_0);
    switch (k) {
        case Qt::Key_Left:
            return key::Left;
        case Qt::Key_Right:
            return key::Right;
        case Qt::Key_Up:
            return key::Up;
        case Qt::Key_Down:
            return key::Down;
        case Qt::Key_Home:
            return key::Home;
        case Qt::Key_PageUp:
            return key::PageUp;
        case Qt::Key_PageDown:
            return key::PageDown;
        case Qt::Key_Delete:
            return key::Delete;
        case Qt::Key_End:
            return key::End;
        case Qt::Key_Minus:
            return (event.modifiers() & Qt::KeypadModifier) ? key::Subtract : key::Minus;
        default:
            return 0;
    }
}

QString FormStyle(std::int32_t background, std::int32_t text) {
    return QString("QDialog { background: %1; border: 3px solid #000000; } QWidget { color: %2; font-size: %3px; }")
        .arg(Css(background), Css(text))
        .arg(PanelFontPx);
}

}  // namespace kirvana

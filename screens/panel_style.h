// How the panel looks: colours of Colour.cfg as Qt colours, the touch sizes, key codes.
#pragma once

#include <QColor>
#include <QFont>
#include <QKeyEvent>
#include <QPushButton>
#include <QString>

#include "navigation/colours.h"

namespace kirvana {

// Every button is at least this high and wide: a fingertip.
inline constexpr int TouchSize = 56;
inline constexpr int PanelFontPx = 17;

inline QColor ToQColor(std::int32_t c) { return QColor(RedOf(c), GreenOf(c), BlueOf(c)); }
inline QString Q(const std::string& text) { return QString::fromLatin1(text.data(), static_cast<int>(text.size())); }
inline std::string S(const QString& text) { return text.toLatin1().toStdString(); }

// The style sheet of a button in a colour pair.
QString ButtonStyle(std::int32_t background, std::int32_t text, int fontPx = PanelFontPx);
// A panel's style: background and text.
QString PanelStyle(std::int32_t background, std::int32_t text, int fontPx = PanelFontPx, bool bold = false);

// A form's style: its background, text and a black edge.
QString FormStyle(std::int32_t background, std::int32_t text);
// A touch button with the system's caption ("&" marks the key).
QPushButton* MakeButton(const std::string& caption, QWidget* parent, int minWidth = TouchSize);

// The key code of a key event as the keyboard gives it (F1 112, letters their capitals,
// arrows 37 to 40); 0 for a key with no code here.
int KeyCodeOf(const QKeyEvent& event);

}  // namespace kirvana

// What the tooling screens share: their caption bar, touch buttons in the panel's colours, a
// value box that opens a pad when pressed, and the letter keys that press a button by the
// letter its caption marks.
#pragma once

#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <array>
#include <string>

#include "tooling/turret.h"

class QHBoxLayout;
class QVBoxLayout;

namespace kirvana {

class Panel;

// The form's caption bar.
QLabel* ToolingCaption(Panel& panel, const std::string& text, QWidget* parent, const char* objectName);
// A touch button in the general buttons' colours.
QPushButton* ToolingButton(Panel& panel, const std::string& caption, QWidget* parent, const QString& objectName,
                           int minWidth = 160);
// A value box: a flat touch field that shows its text and opens a pad when pressed.
QPushButton* ValueBox(Panel& panel, QWidget* parent, const QString& objectName, int minWidth = 150);
// A label in the panel's text colours.
QLabel* ToolingLabel(Panel& panel, const std::string& text, QWidget* parent);

// A titled frame with a border in the panel's text colour.
QGroupBox* ToolingFrame(Panel& panel, const char* caption, const char* name, QWidget* parent);
// The list of the turret's stations, rows a finger high, its scroll bar a finger wide.
QListWidget* StationListBox(Panel& panel, QWidget* parent);
// The list filled with the table's rows, the row `keepRow` (clamped to the table) chosen without
// a signal for each row added.
void FillStationList(QListWidget* list, const StationTable& table, int keepRow);

// What the turret screen and the dialogue's turret share: the form's title, size and colours, its
// caption, the station list under its heading on the left and, on the right, the station type and
// the six tool settings (their captions left to the screen). The screen adds its own frames and
// buttons to `Right`.
struct TurretParts {
    QVBoxLayout* Right = nullptr;
    QLabel* ListLabel = nullptr;
    QListWidget* List = nullptr;
    QLabel* StationBox = nullptr;
    QGroupBox* SettingsFrame = nullptr;
    std::array<QLabel*, 6> SettingLabels{};
    std::array<QLabel*, 6> SettingBoxes{};
};
TurretParts BuildTurretParts(Panel& panel, QWidget* form, const std::string& caption);

// Presses the visible, enabled button below `form` whose caption marks the letter of `code`
// ("&T" for T); false when none does.
bool PressMarkedButton(QWidget* form, int code);

}  // namespace kirvana

#include "screens/tooling_style.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>

#include "screens/panel.h"
#include "screens/panel_style.h"
#include "system/tooling_commands.h"

namespace kirvana {

QLabel* ToolingCaption(Panel& panel, const std::string& text, QWidget* parent, const char* objectName) {
    const ColourTable& c = panel.Colours();
    auto* caption = new QLabel(Q(text), parent);
    caption->setObjectName(objectName);
    caption->setAlignment(Qt::AlignCenter);
    caption->setMinimumHeight(40);
    caption->setStyleSheet(PanelStyle(c[ColourItem::HeaderBackground], c[ColourItem::HeaderText], 22, true));
    return caption;
}

QPushButton* ToolingButton(Panel& panel, const std::string& caption, QWidget* parent, const QString& objectName,
                           int minWidth) {
    const ColourTable& c = panel.Colours();
    QPushButton* button = MakeButton(caption, parent, minWidth);
    button->setObjectName(objectName);
    button->setStyleSheet(ButtonStyle(c[ColourItem::GeneralButtons], c[ColourItem::GeneralButtonText], 17));
    button->setAutoDefault(false);
    return button;
}

QPushButton* ValueBox(Panel& panel, QWidget* parent, const QString& objectName, int minWidth) {
    const ColourTable& c = panel.Colours();
    auto* box = new QPushButton(parent);
    box->setObjectName(objectName);
    box->setMinimumSize(minWidth, TouchSize);
    box->setAutoDefault(false);
    box->setStyleSheet(
        QString("QPushButton { background: %1; color: %2; font-size: 19px; border: 2px inset #808080; "
                "text-align: left; padding-left: 8px; } QPushButton:focus { border: 3px solid #000000; }")
            .arg(ToQColor(c[ColourItem::TextBackground]).name(), ToQColor(c[ColourItem::Text]).name()));
    return box;
}

QLabel* ToolingLabel(Panel& panel, const std::string& text, QWidget* parent) {
    const ColourTable& c = panel.Colours();
    auto* label = new QLabel(Q(text), parent);
    label->setStyleSheet(PanelStyle(c[ColourItem::PanelBackground], c[ColourItem::PanelText], 17, true));
    return label;
}

bool PressMarkedButton(QWidget* form, int code) {
    if (code < '0' || code > 'Z') return false;
    const QString mark = QString("&") + QChar(code);
    for (QPushButton* button : form->findChildren<QPushButton*>())
        if (button->isVisible() && button->isEnabled() && button->text().toUpper().contains(mark)) {
            button->click();
            return true;
        }
    return false;
}

QGroupBox* ToolingFrame(Panel& panel, const char* caption, const char* name, QWidget* parent) {
    auto* frame = new QGroupBox(caption, parent);
    frame->setObjectName(name);
    frame->setStyleSheet(QString("QGroupBox { font-size: 17px; font-weight: bold; border: 2px solid %1; "
                                 "margin-top: 14px; padding-top: 10px; } "
                                 "QGroupBox::title { subcontrol-origin: margin; left: 10px; }")
                             .arg(ToQColor(panel.Colours()[ColourItem::PanelText]).name()));
    return frame;
}

QListWidget* StationListBox(Panel& panel, QWidget* parent) {
    const ColourTable& c = panel.Colours();
    auto* list = new QListWidget(parent);
    list->setObjectName("StationList");
    list->setStyleSheet(QString("QListWidget { background: %1; color: %2; font-size: 19px; font-family: monospace; } "
                                "QListWidget::item { min-height: 48px; } "
                                "QScrollBar:vertical { width: 48px; }")
                            .arg(ToQColor(c[ColourItem::TextBackground]).name(), ToQColor(c[ColourItem::Text]).name()));
    return list;
}

TurretParts BuildTurretParts(Panel& panel, QWidget* form, const std::string& caption) {
    const ColourTable& c = panel.Colours();
    TurretParts parts;
    form->setWindowTitle("TOOLING");
    form->setFixedSize(1000, 720);
    form->setStyleSheet(FormStyle(c[ColourItem::PanelBackground], c[ColourItem::PanelText]));
    auto* layout = new QVBoxLayout(form);
    layout->addWidget(ToolingCaption(panel, caption, form, "TurretPanel"));
    auto* body = new QHBoxLayout();
    layout->addLayout(body, 1);
    // The stations: number and tool description.
    auto* left = new QVBoxLayout();
    parts.ListLabel = ToolingLabel(panel, "NO.           TOOL DESCRIPTION", form);
    parts.ListLabel->setObjectName("ListLabel");
    left->addWidget(parts.ListLabel);
    parts.List = StationListBox(panel, form);
    parts.List->verticalScrollBar()->setObjectName("TurretBar");
    left->addWidget(parts.List, 1);
    body->addLayout(left, 1);
    // The chosen station's type and settings.
    parts.Right = new QVBoxLayout();
    body->addLayout(parts.Right);
    QGroupBox* stationFrame = ToolingFrame(panel, "STATION TYPE", "StationFrame", form);
    auto* stationLayout = new QVBoxLayout(stationFrame);
    parts.StationBox = ToolingLabel(panel, "", stationFrame);
    parts.StationBox->setObjectName("StationBox");
    parts.StationBox->setMinimumHeight(36);
    stationLayout->addWidget(parts.StationBox);
    parts.Right->addWidget(stationFrame);
    parts.SettingsFrame = ToolingFrame(panel, "TOOL SETTINGS", "PunchSettingsFrame", form);
    auto* grid = new QGridLayout(parts.SettingsFrame);
    for (int i = 0; i < 6; ++i) {
        QLabel*& label = parts.SettingLabels[static_cast<std::size_t>(i)];
        QLabel*& box = parts.SettingBoxes[static_cast<std::size_t>(i)];
        label = ToolingLabel(panel, "", parts.SettingsFrame);
        label->setObjectName(QString("PunchSettingsLabel%1").arg(i + 1));
        box = ToolingLabel(panel, "", parts.SettingsFrame);
        box->setObjectName(QString("PunchSettingsBox%1").arg(i + 1));
        box->setMinimumWidth(90);
        grid->addWidget(label, i, 0);
        grid->addWidget(box, i, 1);
    }
    parts.Right->addWidget(parts.SettingsFrame);
    return parts;
}

void FillStationList(QListWidget* list, const StationTable& table, int keepRow) {
    list->blockSignals(true);
    list->clear();
    for (int n = 1; n <= static_cast<int>(table.size()); ++n) list->addItem(Q(StationRowText(table, n)));
    list->blockSignals(false);
    if (!table.empty()) list->setCurrentRow(std::clamp(keepRow, 0, static_cast<int>(table.size()) - 1));
}

}  // namespace kirvana

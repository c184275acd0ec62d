// TurretForm: the stations of the active slot's turret, each with its tool, type and settings;
// a tool defined for the chosen station, its settings, the turret moved to it and a punch there.
// Leaving the form gives the drawing the tools that were changed.
#pragma once

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <array>

#include "screens/panel_form.h"
#include "system/tooling_commands.h"

namespace kirvana {

class TurretForm : public PanelForm {
public:
    explicit TurretForm(Panel& panel);
    void Activate() override;
    // The chosen station, from 1; 0 with an empty table.
    int CurrentStation() const { return list_->currentRow() + 1; }

    QListWidget* StationList() { return list_; }
    QLabel* ListLabel() { return listLabel_; }
    QLabel* StationBox() { return stationBox_; }
    QLabel* PunchSettingsLabel(int n) { return settingLabels_[static_cast<std::size_t>(n - 1)]; }
    QLabel* PunchSettingsBox(int n) { return settingBoxes_[static_cast<std::size_t>(n - 1)]; }
    QPushButton* ToolButton() { return tool_; }
    // 1 the tool settings, 2 the profiler settings.
    QPushButton* SettingsButton(int n) { return settings_[static_cast<std::size_t>(n - 1)]; }
    // 1 the load position, 2 the ram position.
    QPushButton* PositionButton(int n) { return position_[static_cast<std::size_t>(n - 1)]; }
    QPushButton* PunchButton() { return punch_; }
    QPushButton* ExitButton() { return exit_; }
    const TurretEdits& Edits() const { return edits_; }

protected:
    bool FormKey(int code, QKeyEvent& event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void FillList(int keepRow);
    void ShowStation();
    void DefineTool();
    void OpenSettings(int n);
    void Position(int n);
    void Punch();
    void Warn(const std::string& text);

    TurretEdits edits_;
    QListWidget* list_;
    QLabel* listLabel_;
    QLabel* stationBox_;
    std::array<QLabel*, 6> settingLabels_{};
    std::array<QLabel*, 6> settingBoxes_{};
    QPushButton* tool_;
    std::array<QPushButton*, 2> settings_{};
    std::array<QPushButton*, 2> position_{};
    QPushButton* punch_;
    QPushButton* exit_;
};

}  // namespace kirvana

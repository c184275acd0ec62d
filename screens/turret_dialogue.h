// TurretDialogue: the dialogue's turret. The stations of the dialogue's table with their tools
// and settings; a tool defined for a station (written to `Dlgprg.trt`), the station's settings,
// and PROFILER for the plasma tool with the dialogue's plasma settings. EXIT gives the chosen
// row back to the screen that opened it.
#pragma once

#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <array>
#include <vector>

#include "dialogue/dialogue_entities.h"
#include "screens/panel_form.h"
#include "tooling/turret.h"

namespace kirvana {

class DialogueSession;

class TurretDialogue : public PanelForm {
public:
    explicit TurretDialogue(Panel& panel);
    // The calling screen's tool, before the form is shown.
    void Begin(const ScreenTool& current);
    void Activate() override;
    // EXIT was pressed: the choice stands.
    bool Accepted() const { return accepted_; }
    const TurretChoice& Choice() const { return choice_; }

    QListWidget* StationList() { return list_; }
    QLabel* StationBox() { return stationBox_; }
    QLabel* PunchSettingsBox(int n) { return settingBoxes_[static_cast<std::size_t>(n - 1)]; }
    QGroupBox* PlasmaSettingsFrame() { return plasmaFrame_; }
    QLabel* PlasmaSettingsBox(int n) { return plasmaBoxes_[static_cast<std::size_t>(n - 1)]; }
    QPushButton* ToolButton() { return tool_; }
    // 1 the station's settings, 2 the plasma settings.
    QPushButton* SettingsButton(int n) { return settings_[static_cast<std::size_t>(n - 1)]; }
    QPushButton* ProfileButton() { return profile_; }
    QPushButton* ExitButton() { return exit_; }

protected:
    bool FormKey(int code, QKeyEvent& event) override;

private:
    DialogueSession& Session();
    void FillList(int keepRow);
    void ShowStation();
    void DefineTool();
    void OpenSettings(int n);
    void ToggleProfiler();
    void Exit();

    bool plasma_ = false;
    bool accepted_ = false;
    TurretChoice choice_;
    QListWidget* list_;
    QLabel* stationBox_;
    QGroupBox* punchFrame_;
    std::array<QLabel*, 6> settingLabels_{};
    std::array<QLabel*, 6> settingBoxes_{};
    QGroupBox* plasmaFrame_;
    std::vector<QLabel*> plasmaBoxes_;
    QPushButton* tool_;
    std::array<QPushButton*, 2> settings_{};
    QPushButton* profile_;
    QPushButton* exit_;
};

}  // namespace kirvana

// StatusMenuForm with the block skips, and the status pages it opens: MachineStatusForm (run
// time, clamps, the station in work) and PlasmaStatusForm (torch, inputs, plasma values).
#pragma once

#include <array>

#include "screens/command_form.h"

namespace kirvana {

class StatusMenuForm : public CommandForm {
public:
    explicit StatusMenuForm(Panel& panel);
    // Both skip buttons take their state from the card.
    void Activate() override;
    QPushButton* SkipButton(int which) { return skip_[which - 1]; }
    QPushButton* MenuButton(int index) { return menu_[index]; }

private:
    std::array<QPushButton*, 2> skip_{};
    std::array<QPushButton*, 3> menu_{};
};

class MachineStatusForm : public CommandForm {
public:
    explicit MachineStatusForm(Panel& panel);
    void Activate() override;
    void ShowModel() override;
    QLabel* RunTimeText() { return runTime_; }
    QLabel* ClampText(int clamp) { return clamps_[clamp - 1]; }
    QLabel* StationText() { return station_; }
    QLabel* ToolText() { return tool_; }
    QLabel* OffsetText(int index) { return offsets_[index - 1]; }
    QLabel* HitCountText() { return hits_; }

private:
    QLabel* runTime_;
    std::array<QLabel*, 4> clamps_{};
    std::array<QLabel*, 4> clampLabels_{};
    QLabel* station_;
    QLabel* tool_;
    std::array<QLabel*, 3> offsets_{};
    QLabel* hits_;
};

class PlasmaStatusForm : public CommandForm {
public:
    explicit PlasmaStatusForm(Panel& panel);
    void Activate() override { ShowModel(); }
    void ShowModel() override;
    QLabel* TorchHeightText() { return torch_; }
    QLabel* InputText(int index) { return inputs_[index - 1]; }
    QLabel* OffsetSideText() { return side_; }
    // P101 to P110 as the card has them, and the slot's settings beside them.
    QLabel* CardText(int index) { return card_[index - 1]; }
    QLabel* SettingText(int index) { return setting_[index - 1]; }

private:
    QLabel* torch_;
    std::array<QLabel*, 3> inputs_{};
    QLabel* side_;
    std::array<QLabel*, 10> card_{};
    std::array<QLabel*, 10> setting_{};
};

}  // namespace kirvana

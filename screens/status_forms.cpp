#include "screens/status_forms.h"

#include "navigation/machine_screens.h"
#include "screens/panel.h"
#include "screens/panel_style.h"
#include "system/poll_cycle.h"
#include "tooling/settings_choices.h"

namespace kirvana {

namespace {

// A settings label as a row caption: without its key mark.
std::string RowCaption(std::string label) {
    if (std::size_t at = label.find("  &"); at != std::string::npos) label.erase(at);
    return label;
}

}  // namespace

StatusMenuForm::StatusMenuForm(Panel& panel) : CommandForm(panel, "StatusMenuForm", "STATUS", 600, 420) {
    auto* skips = new QHBoxLayout();
    for (int which = 1; which <= 2; ++which) {
        skip_[which - 1] = AddButton(BlockSkipCaptions[which - 1], QString("SkipButton%1").arg(which));
        skip_[which - 1]->setCheckable(true);
        skips->addWidget(skip_[which - 1]);
        connect(skip_[which - 1], &QPushButton::clicked, this, [this, which](bool on) {
            Conversation talk = panel_.Talk();
            SetBlockSkip(talk, which, on);
        });
    }
    layout_->addLayout(skips);
    for (int i = 0; i < static_cast<int>(StatusMenu.size()); ++i) {
        menu_[i] = AddButton(StatusMenu[i].Caption, QString("MenuButton%1").arg(i));
        layout_->addWidget(menu_[i]);
        connect(menu_[i], &QPushButton::clicked, this, [this, i] { panel_.OpenForm(StatusMenu[i].Form); });
    }
    AddExit();
}

void StatusMenuForm::Activate() {
    Conversation talk = panel_.Talk();
    std::array<bool, 2> skips = ReadBlockSkips(talk);
    for (int i = 0; i < 2; ++i) skip_[i]->setChecked(skips[i]);
    // The plasma page only on a machine with a profiler.
    menu_[1]->setVisible(panel_.State().Config.Machine.ProfilerKind > 0);
}

MachineStatusForm::MachineStatusForm(Panel& panel)
    : CommandForm(panel, "MachineStatusForm", "MACHINE STATUS", 700, 620) {
    auto* grid = new QGridLayout();
    runTime_ = AddValueText(grid, 0, 0, "RUN TIME :", "RunTimeText");
    hits_ = AddValueText(grid, 1, 0, "HITS :", "HitCountText");
    for (int n = 0; n < 4; ++n) {
        clamps_[n] =
            AddValueText(grid, 2 + n, 0, "CLAMP " + std::to_string(n + 1) + " :", QString("ClampText%1").arg(n + 1));
        clampLabels_[n] = qobject_cast<QLabel*>(grid->itemAtPosition(2 + n, 0)->widget());
    }
    station_ = AddValueText(grid, 6, 0, "STATION :", "StationText");
    tool_ = AddValueText(grid, 7, 0, "TOOL :", "ToolText");
    tool_->setMinimumWidth(300);
    const std::array<const char*, 3> offsets = {"X OFFSET :", "Y OFFSET :", "Z OFFSET :"};
    for (int i = 0; i < 3; ++i)
        offsets_[i] = AddValueText(grid, 8 + i, 0, offsets[i], QString("OffsetText%1").arg(i + 1));
    layout_->addLayout(grid);
    AddExit();
}

void MachineStatusForm::Activate() {
    UpdateMachineStatus(panel_.State());
    ShowModel();
}

void MachineStatusForm::ShowModel() {
    const DisplayModel& model = panel_.State().Display;
    const MachineStatusDisplay& status = model.MachineStatus;
    runTime_->setText(Q(status.RunTimeText));
    hits_->setText(QString::number(model.HitCount));
    for (int n = 0; n < 4; ++n) {
        clamps_[n]->setText(Q(status.ClampTexts[n]));
        clamps_[n]->setVisible(n < status.ClampCount);
        clampLabels_[n]->setVisible(n < status.ClampCount);
    }
    station_->setText(Q(status.StationText));
    tool_->setText(Q(status.ToolText));
    for (int i = 0; i < 3; ++i) offsets_[i]->setText(Q(status.OffsetTexts[i]));
}

PlasmaStatusForm::PlasmaStatusForm(Panel& panel) : CommandForm(panel, "PlasmaStatusForm", "PLASMA STATUS", 860, 700) {
    auto* top = new QGridLayout();
    torch_ = AddValueText(top, 0, 0, "TORCH HEIGHT :", "TorchHeightText");
    side_ = AddValueText(top, 0, 2, "TOOL OFFSET :", "OffsetSideText");
    const std::array<const char*, 3> inputs = {"INPUT M887 :", "INPUT M888 :", "INPUT M148 :"};
    for (int i = 0; i < 3; ++i)
        inputs_[i] = AddValueText(top, 1 + i / 2, (i % 2) * 2, inputs[i], QString("InputText%1").arg(i + 1));
    layout_->addLayout(top);
    auto* grid = new QGridLayout();
    AddColumnHeading(grid, 1, "CARD");
    AddColumnHeading(grid, 3, "PROGRAM");
    std::vector<std::string> labels = PlasmaSettingLabels();
    for (int n = 0; n < 10; ++n) {
        card_[n] = AddValueText(grid, n + 1, 0, RowCaption(labels[n]), QString("CardText%1").arg(n + 1));
        setting_[n] = AddValueText(grid, n + 1, 2, "", QString("SettingText%1").arg(n + 1));
        card_[n]->setMinimumHeight(32);
        setting_[n]->setMinimumHeight(32);
    }
    grid->setVerticalSpacing(4);
    layout_->addLayout(grid);
    AddExit();
}

void PlasmaStatusForm::ShowModel() {
    const PlasmaPanel& plasma = panel_.State().Display.Plasma;
    torch_->setText(Q(plasma.TorchHeightText));
    side_->setText(Q(plasma.OffsetSideText));
    for (int i = 0; i < 3; ++i) inputs_[i]->setText(Q(plasma.InputTexts[i]));
    for (int n = 0; n < 10; ++n) {
        card_[n]->setText(Q(plasma.CardTexts[n]));
        setting_[n]->setText(Q(plasma.SettingTexts[n]));
    }
}

}  // namespace kirvana

#include "screens/turret_form.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QScrollBar>
#include <QVBoxLayout>

#include "screens/panel.h"
#include "screens/panel_style.h"
#include "screens/settings_forms.h"
#include "screens/tool_def_dialogue.h"
#include "screens/tooling_style.h"
#include "tooling/settings_choices.h"

namespace kirvana {

TurretForm::TurretForm(Panel& panel) : PanelForm(panel, "TurretForm") {
    TurretParts parts = BuildTurretParts(panel, this, "TOOLING");
    list_ = parts.List;
    listLabel_ = parts.ListLabel;
    stationBox_ = parts.StationBox;
    settingLabels_ = parts.SettingLabels;
    settingBoxes_ = parts.SettingBoxes;
    QVBoxLayout* right = parts.Right;
    right->addStretch(1);
    // The buttons.
    auto* buttons = new QGridLayout();
    tool_ = ToolingButton(panel, "&DEFINE TOOL", this, "ToolButton", 200);
    settings_[0] = ToolingButton(panel, "&TOOL SETTINGS", this, "SettingsButton1", 200);
    settings_[1] = ToolingButton(panel, "PRO&FILER SETTINGS", this, "SettingsButton2", 200);
    position_[0] = ToolingButton(panel, "&LOAD POSITION", this, "PositionButton1", 200);
    position_[1] = ToolingButton(panel, "&RAM POSITION", this, "PositionButton2", 200);
    punch_ = ToolingButton(panel, "&PUNCH", this, "PunchButton", 200);
    exit_ = ToolingButton(panel, "E&XIT", this, "ExitButton", 200);
    buttons->addWidget(tool_, 0, 0);
    buttons->addWidget(settings_[0], 0, 1);
    buttons->addWidget(settings_[1], 1, 1);
    buttons->addWidget(position_[0], 1, 0);
    buttons->addWidget(position_[1], 2, 0);
    buttons->addWidget(punch_, 2, 1);
    buttons->addWidget(exit_, 3, 1);
    right->addLayout(buttons);
    connect(list_, &QListWidget::currentRowChanged, this, [this] { ShowStation(); });
    connect(tool_, &QPushButton::clicked, this, [this] { DefineTool(); });
    connect(settings_[0], &QPushButton::clicked, this, [this] { OpenSettings(1); });
    connect(settings_[1], &QPushButton::clicked, this, [this] { OpenSettings(2); });
    connect(position_[0], &QPushButton::clicked, this, [this] { Position(1); });
    connect(position_[1], &QPushButton::clicked, this, [this] { Position(2); });
    connect(punch_, &QPushButton::clicked, this, [this] { Punch(); });
    connect(exit_, &QPushButton::clicked, this, [this] { accept(); });
}

void TurretForm::Activate() {
    const Process& process = panel_.State();
    const std::int16_t profiler = process.Config.Machine.ProfilerKind;
    settings_[0]->setText(Q(SettingsButtonCaption(profiler)));
    // The plasma settings belong to a plasma profiler.
    settings_[1]->setVisible(profiler == 2);
    // The sixth setting's caption follows Punch.dat.
    std::vector<std::string> labels = TurretSettingLabels(process.Tools.Punch);
    for (std::size_t i = 0; i < 6; ++i) settingLabels_[i]->setText(Q(labels[i]));
    // The slot's working station is chosen first.
    FillList(process.Slots[static_cast<std::size_t>(ToolingSlot(process) - 1)].ActiveStation - 1);
    list_->setFocus();
}

void TurretForm::FillList(int keepRow) {
    Process& process = panel_.State();
    const StationTable& table = ToolingTable(process);
    FillStationList(list_, table, keepRow);
    ShowStation();
}

void TurretForm::ShowStation() {
    const StationTable& table = ToolingTable(panel_.State());
    const int station = CurrentStation();
    const bool chosen = station >= 1 && station <= static_cast<int>(table.size());
    const Station* row = chosen ? &table[static_cast<std::size_t>(station - 1)] : nullptr;
    stationBox_->setText(row ? Q(row->TypeText) : QString());
    std::vector<std::string> texts = row ? PunchSettingTexts(row->Settings) : std::vector<std::string>(6);
    for (std::size_t i = 0; i < 6; ++i) settingBoxes_[i]->setText(Q(texts[i]));
    for (QPushButton* b : {tool_, settings_[0], position_[0], position_[1], punch_}) b->setEnabled(chosen);
}

void TurretForm::DefineTool() {
    Process& process = panel_.State();
    const int station = CurrentStation();
    const StationTable& table = ToolingTable(process);
    if (station < 1 || station > static_cast<int>(table.size())) return;
    auto* dialogue = static_cast<ToolDefDialogue*>(panel_.Forms().Get("ToolDefDialogue"));
    // Dimensions in the unit of the slot's program.
    dialogue->Begin(table[static_cast<std::size_t>(station - 1)].Tool,
                    process.Slots[static_cast<std::size_t>(ToolingSlot(process) - 1)].Imperial);
    panel_.OpenForm("ToolDefDialogue");
    if (!dialogue->Accepted()) return;
    ToolingChange change = DefineTurretTool(process, edits_, station, dialogue->ToolBuffer());
    FillList(station - 1);
    if (!change.FileFault.empty()) Warn(change.FileFault);
}

void TurretForm::OpenSettings(int n) {
    if (n == 1) {
        auto* form = static_cast<PunchSettingsForm*>(panel_.Forms().Get("PunchSettingsForm"));
        form->Begin(CurrentStation());
        panel_.OpenForm("PunchSettingsForm");
    } else {
        panel_.OpenForm("PlasmaSettingsForm");
    }
    ShowStation();
}

void TurretForm::Position(int n) {
    Conversation talk = panel_.Talk();
    if (Refusal refusal = TurretPositionButton(panel_.State(), talk, CurrentStation(), n)) Warn(*refusal);
}

void TurretForm::Punch() {
    Conversation talk = panel_.Talk();
    if (Refusal refusal = TurretPunchButton(panel_.State(), talk, CurrentStation())) Warn(*refusal);
}

void TurretForm::Warn(const std::string& text) { panel_.ShowWarning(text + "\n\n\n", WarningKind::Notice, 1); }

bool TurretForm::FormKey(int code, QKeyEvent&) { return PressMarkedButton(this, code); }

void TurretForm::hideEvent(QHideEvent* event) {
    PanelForm::hideEvent(event);
    // The unload: the drawing and the card's programs take the tools changed while the form
    // was open.
    if (!edits_.Changes.empty()) LeaveTurret(panel_.State(), panel_, panel_.Link(), edits_);
}

}  // namespace kirvana

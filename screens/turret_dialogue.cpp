#include "screens/turret_dialogue.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QScrollBar>
#include <QVBoxLayout>

#include "dialogue/dialogue_session.h"
#include "screens/dialogue_front.h"
#include "screens/dialogue_settings_forms.h"
#include "screens/panel.h"
#include "screens/panel_style.h"
#include "screens/tool_def_dialogue.h"
#include "screens/tooling_style.h"
#include "system/tooling_commands.h"
#include "tooling/settings_choices.h"

namespace kirvana {

namespace {

// The plasma settings as this screen labels them.
constexpr std::array<const char*, 10> PlasmaLabels = {
    "RAPID SPEED :", "CUT SPEED :",  "MIN CORNER :", "HEIGHT FREEZE :", "HEIGHT ON :",
    "HEIGHT OFF :",  "ARC / RAD  :", "KERF :",       "PIERCE  :",       "TORCH TYPE  :"};

}  // namespace

TurretDialogue::TurretDialogue(Panel& panel) : PanelForm(panel, "TurretDialogue") {
    TurretParts parts = BuildTurretParts(panel, this, "DIALOGUE TOOLING");
    list_ = parts.List;
    stationBox_ = parts.StationBox;
    punchFrame_ = parts.SettingsFrame;
    settingLabels_ = parts.SettingLabels;
    settingBoxes_ = parts.SettingBoxes;
    const std::vector<std::string> labels = TurretSettingLabels(panel.State().Tools.Punch);
    for (std::size_t i = 0; i < 6; ++i) settingLabels_[i]->setText(Q(labels[i]));
    QVBoxLayout* right = parts.Right;
    plasmaFrame_ = ToolingFrame(panel, "PLASMA SETTINGS", "PlasmaSettingsFrame", this);
    auto* plasmaGrid = new QGridLayout(plasmaFrame_);
    plasmaGrid->setVerticalSpacing(2);
    for (std::size_t i = 0; i < PlasmaLabels.size(); ++i) {
        QLabel* box = ToolingLabel(panel, "", plasmaFrame_);
        box->setObjectName(QString("PlasmaSettingsBox%1").arg(i + 1));
        plasmaGrid->addWidget(ToolingLabel(panel, PlasmaLabels[i], plasmaFrame_), static_cast<int>(i), 0);
        plasmaGrid->addWidget(box, static_cast<int>(i), 1);
        plasmaBoxes_.push_back(box);
    }
    right->addWidget(plasmaFrame_);
    right->addStretch(1);
    auto* buttons = new QGridLayout();
    tool_ = ToolingButton(panel, "&DEFINE TOOL", this, "ToolButton", 200);
    settings_[0] = ToolingButton(panel, "&TOOL SETTINGS", this, "SettingsButton1", 200);
    settings_[1] = ToolingButton(panel, "PLASMA &SETTINGS", this, "SettingsButton2", 200);
    profile_ = ToolingButton(panel, "&PROFILER", this, "ProfileButton", 200);
    profile_->setCheckable(true);
    exit_ = ToolingButton(panel, "E&XIT", this, "ExitButton", 200);
    buttons->addWidget(tool_, 0, 0);
    buttons->addWidget(settings_[0], 0, 1);
    buttons->addWidget(profile_, 1, 0);
    buttons->addWidget(settings_[1], 1, 1);
    buttons->addWidget(exit_, 2, 1);
    right->addLayout(buttons);
    connect(list_, &QListWidget::currentRowChanged, this, [this] { ShowStation(); });
    connect(tool_, &QPushButton::clicked, this, [this] { DefineTool(); });
    connect(settings_[0], &QPushButton::clicked, this, [this] { OpenSettings(1); });
    connect(settings_[1], &QPushButton::clicked, this, [this] { OpenSettings(2); });
    connect(profile_, &QPushButton::clicked, this, [this] { ToggleProfiler(); });
    connect(exit_, &QPushButton::clicked, this, [this] { Exit(); });
}

DialogueSession& TurretDialogue::Session() { return panel_.Dialogue().Session(); }

void TurretDialogue::Begin(const ScreenTool& current) {
    plasma_ = current.IsPlasma();
    choice_ = TurretChoice{};
    CopyTool(current.Tool, choice_.Tool);
    choice_.Description = current.Description;
    choice_.StationNo = current.StationNo;
}

void TurretDialogue::Activate() {
    accepted_ = false;
    const bool profiler = Session().Machine().ProfilerKind > 0;
    profile_->setVisible(profiler);
    settings_[1]->setVisible(profiler);
    FillList(choice_.StationNo > 0 ? choice_.StationNo - 1 : 0);
    list_->setFocus();
}

void TurretDialogue::FillList(int keepRow) {
    const StationTable& table = Session().Table();
    FillStationList(list_, table, keepRow);
    ShowStation();
}

void TurretDialogue::ShowStation() {
    const StationTable& table = Session().Table();
    const int station = list_->currentRow() + 1;
    const bool chosen = !plasma_ && station >= 1 && station <= static_cast<int>(table.size());
    const Station* row = chosen ? &table[static_cast<std::size_t>(station - 1)] : nullptr;
    stationBox_->setText(plasma_ ? Q(PlasmaToolName(Session().Tools())) : row ? Q(row->TypeText) : QString());
    const std::vector<std::string> texts = row ? PunchSettingTexts(row->Settings) : std::vector<std::string>(6);
    for (std::size_t i = 0; i < 6; ++i) settingBoxes_[i]->setText(Q(texts[i]));
    const std::vector<std::string> plasma = PlasmaSettingTexts(Session().Plasma());
    for (std::size_t i = 0; i < plasmaBoxes_.size() && i < plasma.size(); ++i) plasmaBoxes_[i]->setText(Q(plasma[i]));
    punchFrame_->setVisible(!plasma_);
    plasmaFrame_->setVisible(plasma_);
    profile_->setChecked(plasma_);
    list_->setEnabled(!plasma_);
    for (QPushButton* b : {tool_, settings_[0]}) b->setEnabled(chosen);
}

void TurretDialogue::DefineTool() {
    const int station = list_->currentRow() + 1;
    StationTable& table = Session().Table();
    if (station < 1 || station > static_cast<int>(table.size())) return;
    auto* definition = static_cast<ToolDefDialogue*>(panel_.Forms().Get("ToolDefDialogue"));
    definition->Begin(table[static_cast<std::size_t>(station - 1)].Tool, Session().State.ImperialDialogue);
    panel_.OpenForm("ToolDefDialogue");
    if (!definition->Accepted()) return;
    if (DefineStationTool(table, station, definition->ToolBuffer())) {
        // The dialogue's tool table is kept at once.
        if (!WriteProgramTurret(Session().WorkFile("trt"), table, ProgramTurret{}))
            panel_.ShowWarning(FileFaultText(Session().WorkFile("trt")) + "\n\n\n", WarningKind::Notice, 1);
    }
    FillList(station - 1);
}

void TurretDialogue::OpenSettings(int n) {
    if (n == 1) {
        auto* form = static_cast<PunchSettingsDialogue*>(panel_.Forms().Get("PunchSettingsDialogue"));
        form->Begin(list_->currentRow() + 1);
        panel_.OpenForm("PunchSettingsDialogue");
    } else {
        panel_.OpenForm("PlasmaSettingsDialogue");
    }
    ShowStation();
}

void TurretDialogue::ToggleProfiler() {
    plasma_ = !plasma_;
    ShowStation();
}

void TurretDialogue::Exit() {
    if (plasma_)
        choice_ = ChoosePlasma(MachinePlasmaTool(Session().Tools()));
    else
        choice_ = ChooseStation(Session().Table(), list_->currentRow() + 1);
    accepted_ = choice_.StationNo != 0;
    accept();
}

bool TurretDialogue::FormKey(int code, QKeyEvent&) { return PressMarkedButton(this, code); }

}  // namespace kirvana

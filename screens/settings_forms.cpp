#include "screens/settings_forms.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QVBoxLayout>

#include "core/names.h"
#include "core/number.h"
#include "core/text.h"
#include "screens/panel.h"
#include "screens/panel_style.h"
#include "screens/tooling_style.h"
#include "system/tooling_commands.h"
#include "tooling/settings_choices.h"

namespace kirvana {

namespace {

// The pad's modes: digits; digits and "-"; digits and ".".
constexpr int Digits = -1;
constexpr int DigitsAndMinus = -2;
constexpr int DigitsAndPoint = -4;
// The keyboard's limit for a set's name.
constexpr int NameLength = 32;

}  // namespace

SettingsForm::SettingsForm(Panel& panel, std::string name, const char* caption, int rows, int height)
    : PanelForm(panel, std::move(name)) {
    const ColourTable& c = panel.Colours();
    setWindowTitle(caption);
    setFixedSize(960, height);
    setStyleSheet(FormStyle(c[ColourItem::PanelBackground], c[ColourItem::PanelText]));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(ToolingCaption(panel, caption, this, "SettingsPanel"));
    auto* body = new QHBoxLayout();
    auto* left = new QVBoxLayout();
    left->addWidget(ToolingLabel(panel, "SAVED SETTINGS", this));
    list_ = new QListWidget(this);
    list_->setObjectName("SettingsList");
    list_->setFixedWidth(210);
    list_->setStyleSheet(
        QString("QListWidget { background: %1; color: %2; font-size: 19px; } "
                "QListWidget::item { min-height: 48px; } QScrollBar:vertical { width: 48px; }")
            .arg(ToQColor(c[ColourItem::TextBackground]).name(), ToQColor(c[ColourItem::Text]).name()));
    left->addWidget(list_, 1);
    body->addLayout(left);
    auto* grid = new QGridLayout();
    grid->setVerticalSpacing(5);
    grid->addWidget(ToolingLabel(panel, "DESCRIPTION :", this), 0, 0);
    description_ = ValueBox(panel, this, "DescriptionBox", 240);
    description_->setFixedHeight(48);
    grid->addWidget(description_, 0, 1, 1, 2);
    for (int n = 1; n <= rows; ++n) {
        QLabel* label = ToolingLabel(panel, "", this);
        label->setObjectName(QString("SettingsLabel%1").arg(n));
        auto* combo = new QComboBox(this);
        combo->setObjectName(QString("SettingsCombo%1").arg(n));
        combo->setEditable(true);
        // Values come from the list or through the pad, never typed past its filter.
        combo->lineEdit()->setReadOnly(true);
        combo->setFixedSize(170, 48);
        combo->setStyleSheet(
            "QComboBox { font-size: 19px; } QComboBox QAbstractItemView { font-size: 19px; } "
            "QComboBox QAbstractItemView::item { min-height: 48px; }");
        QPushButton* pad = ToolingButton(panel, "...", this, QString("PadButton%1").arg(n), 64);
        pad->setFixedSize(64, 48);
        labels_.push_back(label);
        combos_.push_back(combo);
        pads_.push_back(pad);
        grid->addWidget(label, n, 0);
        grid->addWidget(combo, n, 1);
        grid->addWidget(pad, n, 2);
        connect(pad, &QPushButton::clicked, this, [this, n] { EnterValue(n); });
    }
    grid->setRowStretch(rows + 1, 1);
    body->addLayout(grid, 1);
    layout->addLayout(body, 1);
    buttonRow_ = new QWidget(this);
    auto* buttons = new QHBoxLayout(buttonRow_);
    buttons->setContentsMargins(0, 0, 0, 0);
    buttons->addStretch(1);
    layout->addWidget(buttonRow_);
    save_ = ToolingButton(panel, "&SAVE", this, "SaveButton", 150);
    exit_ = ToolingButton(panel, "E&XIT", this, "ExitButton", 150);
    connect(list_, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) { LoadSet(S(item->text())); });
    // A set is chosen by a touch or by Enter, never by the list merely taking the focus.
    connect(list_, &QListWidget::itemActivated, this, [this](QListWidgetItem* item) { LoadSet(S(item->text())); });
    connect(description_, &QPushButton::clicked, this, [this] { EnterDescription(); });
    connect(save_, &QPushButton::clicked, this, [this] { Save(); });
    connect(exit_, &QPushButton::clicked, this, [this] { accept(); });
}

QPushButton* SettingsForm::AddButton(const std::string& caption, const QString& objectName) {
    QPushButton* button = ToolingButton(panel_, caption, buttonRow_, objectName, 190);
    buttonRow_->layout()->addWidget(button);
    return button;
}

void SettingsForm::FinishButtons() {
    buttonRow_->layout()->addWidget(save_);
    buttonRow_->layout()->addWidget(exit_);
}

void SettingsForm::FillList() {
    list_->blockSignals(true);
    list_->clear();
    for (const std::string& name : SettingNames(panel_.State().Config.Dirs, extension_)) list_->addItem(Q(name));
    list_->blockSignals(false);
}

void SettingsForm::FillFrame(const std::string& extension, const std::vector<std::string>& labels,
                             const std::vector<std::vector<std::string>>& choices) {
    extension_ = extension;
    FillList();
    for (std::size_t i = 0; i < combos_.size(); ++i) {
        // The label without its key mark; the key is the box's number.
        labels_[i]->setText(Q(i < labels.size() ? labels[i] : std::string()).remove('&'));
        combos_[i]->clear();
        if (i < choices.size())
            for (const std::string& choice : choices[i]) combos_[i]->addItem(Q(choice));
    }
}

void SettingsForm::ShowTexts(const std::string& description, const std::vector<std::string>& texts) {
    description_->setText(Q(description));
    for (std::size_t i = 0; i < combos_.size(); ++i) combos_[i]->setEditText(i < texts.size() ? Q(texts[i]) : "");
}

std::vector<std::string> SettingsForm::Texts() const {
    std::vector<std::string> texts;
    for (QComboBox* combo : combos_) texts.push_back(S(combo->currentText()));
    return texts;
}

void SettingsForm::SetText(int n, const std::string& text) {
    if (n >= 1 && n <= static_cast<int>(combos_.size())) combos_[static_cast<std::size_t>(n - 1)]->setEditText(Q(text));
}

std::string SettingsForm::Description() const { return std::string(Trim(S(description_->text()))); }

void SettingsForm::EnterValue(int n) {
    double value = 0;
    if (panel_.EnterNumber(value, S(combos_[static_cast<std::size_t>(n - 1)]->currentText()), PadMode(n)))
        SetText(n, FormatNumber(value, -1));
}

void SettingsForm::EnterDescription() {
    std::string text = S(description_->text());
    if (panel_.EnterText(text, NameLength)) description_->setText(Q(text));
}

void SettingsForm::Save() {
    // The name is the description's.
    const std::string name = Description();
    SaveOutcome outcome = SaveSet(name, [this](const std::vector<std::string>& lines) {
        std::string text;
        for (const std::string& line : lines) text += (text.empty() ? "" : "\n") + line;
        return panel_.ShowWarning(text + "\n\n\n", WarningKind::Question, 2) == 1;
    });
    switch (outcome) {
        case SaveOutcome::Saved: {
            // The list anew from the sets, the saved one chosen; the boxes keep their values.
            FillList();
            QList<QListWidgetItem*> found = list_->findItems(Q(name), Qt::MatchFixedString);
            list_->blockSignals(true);
            if (!found.isEmpty()) list_->setCurrentItem(found.front());
            list_->blockSignals(false);
            break;
        }
        case SaveOutcome::Failed:
            Warn(FileFaultText(panel_.State().Config.Dirs.SettingsDir + name + extension_));
            break;
        case SaveOutcome::InvalidName:
            Warn("Invalid Settings Name !");
            break;
        case SaveOutcome::Declined:
            break;
    }
}

void SettingsForm::Warn(const std::string& text) { panel_.ShowWarning(text + "\n\n\n", WarningKind::Notice, 1); }

bool SettingsForm::FormKey(int code, QKeyEvent&) {
    // 1 to 9 open the pad of their box; the marked letters press their buttons.
    if (code >= '1' && code <= '9' && code - '0' <= static_cast<int>(combos_.size())) {
        EnterValue(code - '0');
        return true;
    }
    return PressMarkedButton(this, code);
}

PunchSettingsForm::PunchSettingsForm(Panel& panel, std::string name)
    : SettingsForm(panel, std::move(name), "TOOL SETTINGS", 6, 600) {
    apply_[0] = AddButton("APPLY TO &TOOL", "ApplyButton1");
    apply_[1] = AddButton("APPLY TO &ALL", "ApplyButton2");
    FinishButtons();
    connect(apply_[0], &QPushButton::clicked, this, [this] { Apply(false); });
    connect(apply_[1], &QPushButton::clicked, this, [this] { Apply(true); });
}

void PunchSettingsForm::Activate() {
    Process& process = panel_.State();
    const PunchData& punchData = process.Tools.Punch;
    std::vector<std::vector<std::string>> choices;
    for (int n = 1; n <= 6; ++n) choices.push_back(PunchSettingChoices(n, punchData));
    FillFrame(".stg", PunchSettingLabels(punchData), choices);
    const StationTable& table = ToolingTable(process);
    PunchSetting setting;
    if (station_ >= 1 && station_ <= static_cast<int>(table.size()))
        setting = table[static_cast<std::size_t>(station_ - 1)].Settings;
    ShowTexts("", PunchSettingTexts(setting));
}

void PunchSettingsForm::LoadSet(const std::string& name) {
    std::string description;
    PunchSetting setting;
    LoadPunchSetting(panel_.State().Config.Dirs.SettingsDir + name + ".stg", description, setting);
    ShowTexts(description, PunchSettingTexts(setting));
}

SaveOutcome PunchSettingsForm::SaveSet(const std::string& name, const AskOperator& ask) {
    return SavePunchSettingAs(panel_.State().Config.Dirs, name, name, PunchSettingFromTexts(Texts()), ask);
}

int PunchSettingsForm::PadMode(int n) const { return n <= 2 ? DigitsAndMinus : DigitsAndPoint; }

void PunchSettingsForm::Apply(bool all) {
    Conversation talk = panel_.Talk();
    ToolingChange change =
        ApplyTurretSettings(panel_.State(), talk, all ? 0 : station_, PunchSettingFromTexts(Texts()));
    if (!change.FileFault.empty()) Warn(change.FileFault);
}

PlasmaSettingsForm::PlasmaSettingsForm(Panel& panel, std::string name)
    : SettingsForm(panel, std::move(name), "PLASMA SETTINGS", 10, 720) {
    apply_ = AddButton("&APPLY", "ApplyButton");
    FinishButtons();
    connect(apply_, &QPushButton::clicked, this, [this] { Apply(); });
}

void PlasmaSettingsForm::Activate() {
    Process& process = panel_.State();
    const std::vector<std::string> torches = TorchTypes(process.Tools);
    std::vector<std::vector<std::string>> choices;
    for (int n = 1; n <= 10; ++n) choices.push_back(PlasmaSettingChoices(n, torches));
    FillFrame(".pls", PlasmaSettingLabels(), choices);
    // The program's set; a program without one shows the default set.
    const PlasmaSetting& program = process.Slots[static_cast<std::size_t>(ToolingSlot(process) - 1)].PlasmaSettings;
    if (PlasmaSettingIsSet(program)) {
        ShowTexts("", PlasmaSettingTexts(program));
    } else {
        DefaultPlasma fallback = DefaultPlasmaSetting(process.Config.Dirs);
        ShowTexts(fallback.Description, PlasmaSettingTexts(fallback.Setting));
    }
}

void PlasmaSettingsForm::LoadSet(const std::string& name) {
    std::string description;
    PlasmaSetting setting;
    LoadPlasmaSetting(panel_.State().Config.Dirs.SettingsDir + name + ".pls", description, setting);
    ShowTexts(description, PlasmaSettingTexts(setting));
}

SaveOutcome PlasmaSettingsForm::SaveSet(const std::string& name, const AskOperator& ask) {
    return SavePlasmaSettingAs(panel_.State().Config.Dirs, name, name, PlasmaSettingFromTexts(Texts()), ask);
}

int PlasmaSettingsForm::PadMode(int n) const {
    // Heights, kerf and pierce dwell are decimals; the speeds, slowdown and torch whole numbers.
    return n == 5 || n == 6 || n == 8 || n == 9 ? DigitsAndPoint : Digits;
}

void PlasmaSettingsForm::Apply() {
    Conversation talk = panel_.Talk();
    ToolingChange change = ApplyProgramPlasma(panel_.State(), talk, Description(), PlasmaSettingFromTexts(Texts()));
    if (!change.FileFault.empty()) Warn(change.FileFault);
}

}  // namespace kirvana

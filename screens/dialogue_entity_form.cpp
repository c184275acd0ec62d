#include "screens/dialogue_entity_form.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "core/number.h"
#include "screens/dialogue_front.h"
#include "screens/dialogue_settings_forms.h"
#include "screens/form_registry.h"
#include "screens/panel.h"
#include "screens/panel_style.h"
#include "screens/tooling_style.h"
#include "screens/turret_dialogue.h"

namespace kirvana {

namespace {

// A label's text without its key mark.
QString Plain(const std::string& caption) { return Q(caption).remove('&'); }

// The cell of each box: two to a row. The two forms of the arc share their cells; the index
// box follows the last.
std::vector<int> Cells(const DialogueScreenDescription& d) {
    std::vector<int> cells;
    int next = 0, end = 0;
    for (std::size_t i = 0; i < d.Boxes.size(); ++i) {
        const DialogueBox& b = d.Boxes[i];
        if (b.Control == "PArcBox" && b.Index == 1) next = 0;
        if (b.Control == "IndexBox") next = end;
        cells.push_back(next++);
        end = std::max(end, next);
    }
    return cells;
}

}  // namespace

DialogueEntityForm::DialogueEntityForm(Panel& panel, DialogueScreen screen)
    : PanelForm(panel, DescribeScreen(screen).FormName),
      model_(std::make_unique<DialogueScreenModel>(panel.Dialogue().Session(), screen)) {
    const ColourTable& c = panel.Colours();
    const DialogueScreenDescription& d = model_->Description();
    setWindowTitle(Q(d.Title));
    setFixedWidth(960);
    setStyleSheet(FormStyle(c[ColourItem::PanelBackground], c[ColourItem::PanelText]));
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(10);
    layout->addWidget(ToolingCaption(panel, d.Title, this, "DialoguePanel"));
    auto* frame = new QWidget(this);
    frame->setObjectName("BoxFrame");
    auto* grid = new QGridLayout(frame);
    grid->setHorizontalSpacing(12);
    grid->setVerticalSpacing(8);
    const std::vector<int> cells = Cells(d);
    for (std::size_t i = 0; i < d.Boxes.size(); ++i) {
        const DialogueBox& b = d.Boxes[i];
        QLabel* label = ToolingLabel(panel, S(Plain(b.Label)), frame);
        label->setObjectName(Q(b.Control + "Label" + (b.Index ? std::to_string(b.Index) : std::string())));
        QPushButton* box = ValueBox(panel, frame, Q(b.Control + (b.Index ? std::to_string(b.Index) : std::string())),
                                    b.Kind == BoxKind::Text ? 260 : 170);
        const int row = cells[i] / 2, column = (cells[i] % 2) * 2;
        grid->addWidget(label, row, column);
        grid->addWidget(box, row, column + 1);
        labels_.push_back(label);
        boxes_.push_back(box);
        connect(box, &QPushButton::clicked, this, [this, i] { EnterBox(i); });
    }
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);
    layout->addWidget(frame);
    // The options, the tool and the buttons.
    auto* options = new QHBoxLayout();
    for (std::size_t t = 0; t < d.Toggles.size(); ++t) {
        QPushButton* toggle = ToolingButton(panel, d.Toggles[t].Captions[0], this, Q(d.Toggles[t].Control), 240);
        toggles_.push_back(toggle);
        options->addWidget(toggle);
        connect(toggle, &QPushButton::clicked, this, [this, t] {
            model_->PressToggle(t);
            ShowModel();
        });
    }
    options->addStretch(1);
    layout->addLayout(options);
    auto* buttons = new QHBoxLayout();
    if (d.HasTool) {
        toolLabel_ = ToolingLabel(panel, "", this);
        toolLabel_->setObjectName("ToolLabel");
        toolLabel_->setStyleSheet(PanelStyle(c[ColourItem::TextBackground], c[ColourItem::Text], 18, true));
        toolLabel_->setMinimumHeight(TouchSize);
        tool_ = ToolingButton(panel, ToolButtonCaption, this, "ToolButton", 180);
        buttons->addWidget(toolLabel_, 1);
        buttons->addWidget(tool_);
        connect(tool_, &QPushButton::clicked, this, [this] { ChooseTool(); });
    } else {
        buttons->addStretch(1);
    }
    ok_ = ToolingButton(panel, "&OK", this, "OkButton", 160);
    exit_ = ToolingButton(panel, "&CANCEL", this, "ExitButton", 160);
    buttons->addWidget(ok_);
    buttons->addWidget(exit_);
    layout->addLayout(buttons);
    connect(ok_, &QPushButton::clicked, this, [this] { Confirm(); });
    connect(exit_, &QPushButton::clicked, this, [this] { reject(); });
}

void DialogueEntityForm::Activate() {
    model_->Open();
    ShowModel();
    adjustSize();
    if (!boxes_.empty()) boxes_.front()->setFocus();
}

void DialogueEntityForm::ShowModel() {
    for (std::size_t i = 0; i < boxes_.size(); ++i) {
        const bool shown = model_->BoxShown(i);
        boxes_[i]->setVisible(shown);
        labels_[i]->setVisible(shown);
        boxes_[i]->setText(Q(model_->Texts()[i]));
    }
    for (std::size_t t = 0; t < toggles_.size(); ++t) {
        toggles_[t]->setVisible(model_->ToggleShown(t));
        toggles_[t]->setText(Q(model_->ToggleCaption(t)));
    }
    if (toolLabel_) toolLabel_->setText(Q(model_->ToolLabelText()));
}

QPushButton* DialogueEntityForm::BoxNamed(const std::string& control, int index) {
    const auto& boxes = model_->Description().Boxes;
    for (std::size_t i = 0; i < boxes.size(); ++i)
        if (boxes[i].Control == control && boxes[i].Index == index) return boxes_[i];
    return nullptr;
}

void DialogueEntityForm::SetBox(std::size_t n, const std::string& text) {
    model_->SetBox(n, text);
    ShowModel();
}

void DialogueEntityForm::EnterBox(std::size_t n) {
    const int mode = model_->PadMode(n);
    if (model_->Description().Boxes[n].Kind == BoxKind::Text) {
        std::string text = model_->Texts()[n];
        if (panel_.EnterText(text, mode)) SetBox(n, text);
    } else {
        double value = 0;
        if (panel_.EnterNumber(value, model_->Texts()[n], mode)) SetBox(n, FormatNumber(Number(value), -1));
    }
    boxes_[n]->setFocus();
}

void DialogueEntityForm::ChooseTool() {
    auto* turret = static_cast<TurretDialogue*>(panel_.Forms().Get("TurretDialogue"));
    turret->Begin(model_->Tool());
    panel_.OpenForm("TurretDialogue");
    if (turret->Accepted()) model_->SetTool(turret->Choice());
    ShowModel();
}

void DialogueEntityForm::Confirm() {
    const std::string message = model_->Confirm();
    if (!message.empty()) {
        // The screen stays open with its message; nothing was written.
        panel_.ShowWarning(message + "\n\n\n", WarningKind::Notice, 1);
        return;
    }
    accept();
}

void DialogueEntityForm::reject() {
    model_->Cancel();
    PanelForm::reject();
}

bool DialogueEntityForm::FormKey(int code, QKeyEvent&) {
    if (code == 0) return false;  // Escape and the keys without a code
    if (code >= key::F1 && code <= key::F12) return false;
    if (code >= '1' && code <= '9') {
        const int box = model_->BoxOfDigit(code - '0');
        if (box >= 0) EnterBox(static_cast<std::size_t>(box));
        return true;
    }
    // A letter a label marks opens its box; else the button it marks.
    if (code >= 'A' && code <= 'Z') {
        const std::string mark = std::string("&") + static_cast<char>(code);
        const auto& boxes = model_->Description().Boxes;
        for (std::size_t i = 0; i < boxes.size(); ++i)
            if (model_->BoxShown(i) && boxes[i].Label.find(mark) != std::string::npos) {
                EnterBox(i);
                return true;
            }
        PressMarkedButton(this, code);
    }
    // The dialogue's own keys are not for FrontEnd while a screen is open.
    return true;
}

void RegisterDialogueForms(Panel& panel, FormRegistry& forms) {
    for (DialogueScreen screen : DialogueScreens())
        forms.Register(DescribeScreen(screen).FormName,
                       [&panel, screen] { return std::make_unique<DialogueEntityForm>(panel, screen); });
    forms.Register("TurretDialogue", [&panel] { return std::make_unique<TurretDialogue>(panel); });
    forms.Register("PunchSettingsDialogue", [&panel] { return std::make_unique<PunchSettingsDialogue>(panel); });
    forms.Register("PlasmaSettingsDialogue", [&panel] { return std::make_unique<PlasmaSettingsDialogue>(panel); });
}

}  // namespace kirvana

#include "screens/batch_form.h"

#include <QGridLayout>
#include <QHBoxLayout>

#include "controller/conversation.h"
#include "screens/panel.h"
#include "screens/panel_style.h"
#include "system/machine_commands.h"

namespace kirvana {

BatchForm::BatchForm(Panel& panel) : PanelForm(panel, "BatchForm") {
    const ColourTable& c = panel.Colours();
    QVBoxLayout* layout = FrameForm(*this, c, "BATCH COUNT", 700, 600);
    slot_ = TextLabel(this, c, "SlotLabel", 20);
    layout->addWidget(slot_);
    auto* grid = new QGridLayout();
    grid->setVerticalSpacing(10);
    for (int i = 0; i < 5; ++i) {
        QString number = i < BatchEditableCount ? QString("  (%1)").arg(i + 1) : QString();
        auto* caption = new QLabel(BatchCaptions[static_cast<std::size_t>(i)] + number, this);
        caption->setStyleSheet("font-size: 20px; font-weight: bold;");
        QPushButton* box = MakeButton("0", this, 220);
        box->setObjectName(QString("BatchBox%1").arg(i + 1));
        box->setAutoDefault(false);
        box->setStyleSheet(
            QString("QPushButton { %1 text-align: right; padding-right: 12px; border: 2px solid #000000; }"
                    " QPushButton:disabled { color: %2; }")
                .arg(PanelStyle(c[ColourItem::TextBackground], c[ColourItem::Text], 22, true))
                .arg(ToQColor(c[ColourItem::Text]).name()));
        boxes_[static_cast<std::size_t>(i)] = box;
        grid->addWidget(caption, i, 0);
        grid->addWidget(box, i, 1);
        if (i < BatchEditableCount) connect(box, &QPushButton::clicked, this, [this, i] { EnterBox(i); });
    }
    layout->addLayout(grid);
    layout->addStretch(1);
    auto* buttons = new QHBoxLayout();
    set_ = FormButton(this, c, BatchSetCaption, "SetButton", 180);
    clear_ = FormButton(this, c, "&CLEAR", "ClearButton", 180);
    auto* exit = FormButton(this, c, "E&XIT", "ExitButton", 180);
    buttons->addWidget(set_);
    buttons->addWidget(clear_);
    buttons->addStretch(1);
    buttons->addWidget(exit);
    layout->addLayout(buttons);
    keys_.Add('S', set_);
    keys_.Add('E', set_);
    keys_.Add('C', clear_);
    keys_.Add('X', exit);
    connect(set_, &QPushButton::clicked, this, [this] { SetPressed(); });
    connect(clear_, &QPushButton::clicked, this, [this] { ClearPressed(); });
    connect(exit, &QPushButton::clicked, this, [this] { accept(); });
}

void BatchForm::Activate() {
    const Process& p = panel_.State();
    const SlotRecord& slot = p.Slots[static_cast<std::size_t>(p.Config.ActiveSlot - 1)];
    slot_->setText(Q("PROGRAM " + std::to_string(p.Config.ActiveSlot) + " :  " +
                     (slot.Present ? slot.ProgramName : std::string("NONE"))));
    SetEditing(false);
    ShowValues(BatchTexts(slot.Batch));
}

void BatchForm::ShowModel() {
    if (!edit_.Editing()) ShowValues(panel_.State().Display.Batch.Texts);
}

void BatchForm::ShowValues(const std::array<std::string, 5>& texts) {
    for (std::size_t i = 0; i < texts.size(); ++i)
        boxes_[i]->setText(Q(texts[i].empty() ? std::string("0") : texts[i]));
}

void BatchForm::SetEditing(bool editing) {
    if (!editing) edit_.Cancel();
    panel_.State().Display.BatchEditing = editing;
    set_->setText(edit_.SetCaption());
    for (int i = 0; i < 5; ++i) boxes_[static_cast<std::size_t>(i)]->setEnabled(editing && i < BatchEditableCount);
}

void BatchForm::SetPressed() {
    Process& p = panel_.State();
    if (!edit_.Editing()) {
        // The boxes open with the counters the slot holds now.
        edit_.Begin(p.Slots[static_cast<std::size_t>(p.Config.ActiveSlot - 1)].Batch);
        SetEditing(true);
        ShowValues(BatchTexts(edit_.Values()));
        return;
    }
    SlotBatch batch = edit_.Finish();
    Conversation talk = panel_.Talk();
    bool written = SetBatch(p, talk, batch);
    SetEditing(false);
    ShowValues(BatchTexts(batch));
    if (!written)
        panel_.ShowWarning("File Fault : " + SlotFile(p.Config.Dirs, p.Config.ActiveSlot, "btc") + "\n\n\n",
                           WarningKind::Notice, 1);
}

void BatchForm::ClearPressed() {
    Process& p = panel_.State();
    Conversation talk = panel_.Talk();
    bool written = ClearBatch(p, talk);
    SetEditing(false);
    ShowValues(BatchTexts(SlotBatch{}));
    if (!written)
        panel_.ShowWarning("File Fault : " + SlotFile(p.Config.Dirs, p.Config.ActiveSlot, "btc") + "\n\n\n",
                           WarningKind::Notice, 1);
}

void BatchForm::EnterBox(int index) {
    double value = 0;
    std::string text = BatchTexts(edit_.Values())[static_cast<std::size_t>(index)];
    if (!panel_.EnterNumber(value, text, -1)) return;
    if (!edit_.SetValue(index, value)) {
        panel_.ShowWarning(std::string(InvalidBatchValue) + "\n\n\n", WarningKind::Notice, 1);
        return;
    }
    ShowValues(BatchTexts(edit_.Values()));
}

bool BatchForm::FormKey(int code, QKeyEvent&) {
    if (edit_.Editing() && code >= '1' && code < '1' + BatchEditableCount) {
        boxes_[static_cast<std::size_t>(code - '1')]->click();
        return true;
    }
    return keys_.Press(code);
}

void BatchForm::hideEvent(QHideEvent* event) {
    // An edit left open is dropped: the poll shows the card's counters again.
    SetEditing(false);
    PanelForm::hideEvent(event);
}

}  // namespace kirvana

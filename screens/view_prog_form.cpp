#include "screens/view_prog_form.h"

#include <QHBoxLayout>

#include "screens/panel.h"
#include "screens/panel_style.h"

namespace kirvana {

ViewProgForm::ViewProgForm(Panel& panel) : PanelForm(panel, "ViewProgForm") {
    const ColourTable& c = panel.Colours();
    QVBoxLayout* layout = FrameForm(*this, c, "PROGRAM VIEW", 900, 720);
    program_ = TextLabel(this, c, "ProgramLabel", 20);
    layout->addWidget(program_);
    auto* box = new QWidget(this);
    box->setObjectName("ViewBox");
    box->setStyleSheet(PanelStyle(c[ColourItem::TextBackground], c[ColourItem::Text]));
    auto* rows = new QVBoxLayout(box);
    rows->setContentsMargins(4, 4, 4, 4);
    rows->setSpacing(1);
    const QString font = " font-family: 'DejaVu Sans Mono'; padding-left: 6px;";
    normalStyle_ = PanelStyle(c[ColourItem::TextBackground], c[ColourItem::Text], 18) + font;
    litStyle_ = PanelStyle(c[ColourItem::Text], c[ColourItem::TextBackground], 18, true) + font;
    for (int i = 0; i < Rows; ++i) {
        rows_[static_cast<std::size_t>(i)] = new QLabel(box);
        rows_[static_cast<std::size_t>(i)]->setObjectName(QString("Row%1").arg(i + 1));
        rows_[static_cast<std::size_t>(i)]->setFixedHeight(48);
        rows_[static_cast<std::size_t>(i)]->setStyleSheet(normalStyle_);
        rows->addWidget(rows_[static_cast<std::size_t>(i)]);
    }
    rows->addStretch(1);
    layout->addWidget(box, 1);
    motion_ = TextLabel(this, c, "MotionLabel", 16);
    motion_->setWordWrap(true);
    motion_->setMinimumHeight(56);
    layout->addWidget(motion_);
    auto* exit = FormButton(this, c, "E&XIT", "ExitButton", 180);
    layout->addWidget(exit, 0, Qt::AlignRight);
    keys_.Add('X', exit);
    connect(exit, &QPushButton::clicked, this, [this] { accept(); });
}

void ViewProgForm::Activate() {
    // The block the poll lit last, or the top of the active slot's program.
    const Process& p = panel_.State();
    const LitBlock& lit = p.Display.Block;
    std::int32_t program = lit.Program >= 1 ? lit.Program : p.Config.ActiveSlot;
    shownProgram_ = shownRecord_ = -2;
    ShowPage(program, lit.Program >= 1 ? lit.Record : -1);
}

void ViewProgForm::ShowModel() {
    const LitBlock& lit = panel_.State().Display.Block;
    if (lit.Program < 1 || (lit.Program == shownProgram_ && lit.Record == shownRecord_)) return;
    ShowPage(lit.Program, lit.Record);
}

void ViewProgForm::ShowPage(std::int32_t program, std::int32_t record) {
    shownProgram_ = program;
    shownRecord_ = record;
    page_ = ViewPageAround(panel_.State(), program, record, Rows);
    std::string title = "PROGRAM " + std::to_string(page_.Slot);
    title += page_.Rows.empty() ? std::string(" :  NONE") : " :  " + page_.ProgramName;
    if (program > 2) title += "   (SUB-PROGRAMS)";
    program_->setText(Q(title));
    std::string motion;
    for (int i = 0; i < Rows; ++i) {
        QLabel* label = rows_[static_cast<std::size_t>(i)];
        if (i >= static_cast<int>(page_.Rows.size())) {
            label->clear();
            label->setStyleSheet(normalStyle_);
            continue;
        }
        const ViewRow& row = page_.Rows[static_cast<std::size_t>(i)];
        char number[16];
        std::snprintf(number, sizeof number, "%5d  ", row.Record);
        label->setText(Q(number + row.Source));
        label->setStyleSheet(row.Lit ? litStyle_ : normalStyle_);
        if (row.Lit) motion = row.Motion;
    }
    motion_->setText(Q(motion));
}

std::int32_t ViewProgForm::LitRecord() const {
    for (const ViewRow& row : page_.Rows)
        if (row.Lit) return row.Record;
    return 0;
}

bool ViewProgForm::FormKey(int code, QKeyEvent&) { return keys_.Press(code); }

}  // namespace kirvana

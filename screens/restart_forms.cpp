#include "screens/restart_forms.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QTimer>
#include <cmath>
#include <cstdio>

#include "screens/form_registry.h"
#include "screens/panel.h"
#include "screens/panel_style.h"
#include "system/slots.h"

namespace kirvana {

namespace {

// The slot the restart screens work on: the active one.
int ActiveSlotOf(Panel& panel) { return panel.State().Config.ActiveSlot == 2 ? 2 : 1; }

void Warn(Panel& panel, const std::string& text) { panel.ShowWarning(text + "\n\n\n", WarningKind::Notice, 1); }

// The cycle start label green while lit, else black, as the restart blinks it.
QString CycleStartStyle(bool lit) {
    return QString("background-color: %1; color: %2; font-size: 24px; font-weight: bold; border: 2px solid white;")
        .arg(lit ? "#00ff00" : "#000000", lit ? "#000000" : "#ffffff");
}

}  // namespace

BlockStartForm::BlockStartForm(Panel& panel, std::shared_ptr<RestartSession> session)
    : PanelForm(panel, "BlockStartForm"), session_(std::move(session)) {
    const ColourTable& c = panel.Colours();
    QVBoxLayout* layout = FrameForm(*this, c, "RESTART FROM BLOCK", 960, 720);
    program_ = TextLabel(this, c, "ProgramLabel", 20);
    layout->addWidget(program_);
    list_ = TouchList(this, c, "BlockList");
    list_->setStyleSheet(list_->styleSheet() + " QListWidget { font-family: 'DejaVu Sans Mono'; font-size: 18px; }");
    layout->addWidget(list_, 1);
    auto* buttons = new QGridLayout();
    buttons->setSpacing(10);
    auto* up = FormButton(this, c, "PAGE &UP", "PageUpButton");
    auto* down = FormButton(this, c, "PAGE &DOWN", "PageDownButton");
    auto* block = FormButton(this, c, "&BLOCK ...", "BlockPadButton");
    auto* visual = FormButton(this, c, "&VISUAL", "VisualButton");
    auto* atStop = FormButton(this, c, "AT S&TOP", "AtStopButton");
    select_ = FormButton(this, c, "&SELECT", "SelectButton");
    auto* exit = FormButton(this, c, "E&XIT", "ExitButton");
    // Two rows, so that every caption stands whole on the form's width.
    int place = 0;
    for (QPushButton* button : {up, down, block, visual, atStop, select_, exit}) {
        buttons->addWidget(button, place / 4, place % 4);
        ++place;
    }
    layout->addLayout(buttons);
    for (auto [code, button] :
         {std::pair{'U', up}, {'D', down}, {'B', block}, {'V', visual}, {'T', atStop}, {'S', select_}, {'X', exit}})
        keys_.Add(code, button);
    connect(up, &QPushButton::clicked, this, [this] { Page(-1); });
    connect(down, &QPushButton::clicked, this, [this] { Page(1); });
    connect(block, &QPushButton::clicked, this, [this] { GoToBlock(); });
    connect(select_, &QPushButton::clicked, this, [this] { Select(); });
    connect(list_, &QListWidget::itemDoubleClicked, this, [this] { Select(); });
    connect(visual, &QPushButton::clicked, this, [this] { Visual(); });
    connect(atStop, &QPushButton::clicked, this, [this] { AtStop(); });
    connect(exit, &QPushButton::clicked, this, [this] { accept(); });
}

void BlockStartForm::Visual() {
    // The pick happens on FrontEnd's plot: this form and ProgramForm give way to it.
    if (Refusal refused = RestartInterlock(panel_.State())) {
        Warn(panel_, *refused);
        return;
    }
    accept();
    if (PanelForm* program = panel_.Forms().Loaded("ProgramForm"); program && program->isVisible()) program->accept();
    Panel* panel = &panel_;
    QTimer::singleShot(0, panel, [panel] { panel->BeginVisualRestart(); });
}

void BlockStartForm::AtStop() {
    std::string fault = SelectStopRestart(panel_.State(), ActiveSlotOf(panel_), *session_);
    if (!fault.empty()) {
        Warn(panel_, fault);
        return;
    }
    accept();
    panel_.OpenForm("RestartForm");
}

void BlockStartForm::Activate() {
    const int slot = ActiveSlotOf(panel_);
    const SlotRecord& record = panel_.State().Slots[static_cast<std::size_t>(slot - 1)];
    program_->setText(Q("PROGRAM " + std::to_string(slot) + " :  " +
                        (record.Present ? record.ProgramDirName + " / " + record.ProgramName : std::string("NONE"))));
    list_->clear();
    std::string fault;
    const std::vector<ViewRow> rows = BlockListRows(panel_.State(), slot, fault);
    QStringList items;
    for (const ViewRow& row : rows) {
        char number[16];
        std::snprintf(number, sizeof number, "%5d  ", row.Record);
        items << Q(number + row.Source);
    }
    list_->addItems(items);
    if (!items.isEmpty()) list_->setCurrentRow(0);
    select_->setEnabled(!items.isEmpty());
    if (!fault.empty()) QTimer::singleShot(0, this, [this, fault] { Warn(panel_, fault); });
}

void BlockStartForm::Page(int direction) {
    if (list_->count() == 0) return;
    const int rowHeight = std::max(1, list_->sizeHintForRow(0));
    const int step = std::max(1, list_->viewport()->height() / rowHeight - 1);
    const int row = std::clamp(list_->currentRow() + direction * step, 0, list_->count() - 1);
    list_->setCurrentRow(row);
    list_->scrollToItem(list_->item(row), QAbstractItemView::PositionAtTop);
}

void BlockStartForm::GoToBlock() {
    if (list_->count() == 0) return;
    double value = list_->currentRow() + 1;
    if (!panel_.EnterNumber(value, std::to_string(list_->currentRow() + 1), -1)) return;
    const double block = std::round(value);
    if (block < 1 || block > list_->count()) {
        Warn(panel_, std::string(RestartRefusalFirst) + "\n\nBlock " + std::to_string(static_cast<long long>(block)) +
                         " Out Of Range (1 To " + std::to_string(list_->count()) + ")");
        return;
    }
    list_->setCurrentRow(static_cast<int>(block) - 1);
    list_->scrollToItem(list_->currentItem(), QAbstractItemView::PositionAtCenter);
}

void BlockStartForm::Select() {
    const int slot = ActiveSlotOf(panel_);
    const std::int32_t block = list_->currentRow() + 1;
    std::string fault = SelectRestartBlock(panel_.State(), slot, block, *session_);
    if (!fault.empty()) {
        Warn(panel_, fault);
        return;
    }
    // The state gathered, shown for confirmation on RestartForm.
    accept();
    panel_.OpenForm("RestartForm");
}

bool BlockStartForm::FormKey(int code, QKeyEvent&) { return keys_.Press(code); }

RestartForm::RestartForm(Panel& panel, std::shared_ptr<RestartSession> session)
    : PanelForm(panel, "RestartForm"), session_(std::move(session)) {
    const ColourTable& c = panel.Colours();
    QVBoxLayout* layout = FrameForm(*this, c, "RESTART", 760, 600);
    auto* restartPanel = new QWidget(this);
    restartPanel->setObjectName("RestartPanel");
    restartPanel->setStyleSheet(PanelStyle(c[ColourItem::TextBackground], c[ColourItem::Text]));
    auto* rows = new QVBoxLayout(restartPanel);
    rows->setSpacing(6);
    auto label = [&](const char* name, int px) {
        QLabel* l = TextLabel(restartPanel, c, name, px);
        rows->addWidget(l);
        return l;
    };
    tool_ = label("ToolLabel", 22);
    measurement_ = label("MeasurementLabel", 22);
    position_ = label("PositnLabel", 26);
    hits_ = label("HitsLabel", 22);
    kerf_ = label("KerfLabel", 20);
    note_ = label("NoteLabel", 20);
    note_->setWordWrap(true);
    layout->addWidget(restartPanel, 1);
    cycleStart_ = new QLabel("CYCLE START", this);
    cycleStart_->setObjectName("CycleStartLabel");
    cycleStart_->setAlignment(Qt::AlignCenter);
    cycleStart_->setMinimumHeight(64);
    cycleStart_->setStyleSheet(CycleStartStyle(false));
    layout->addWidget(cycleStart_);
    exit_ = FormButton(this, c, "E&XIT", "ExitButton", 180);
    layout->addWidget(exit_, 0, Qt::AlignRight);
    keys_.Add('X', exit_);
    connect(exit_, &QPushButton::clicked, this, [this] {
        // During the wait the exit ends it; the wait then closes the form.
        if (running_)
            exitRequested_ = true;
        else
            accept();
    });
}

void RestartForm::Activate() {
    exitRequested_ = false;
    ShowState();
    QTimer::singleShot(0, this, [this] { Run(); });
}

void RestartForm::ShowState() {
    const RestartDisplay d = RestartDisplayOf(panel_.State(), *session_);
    tool_->setText(Q(d.Tool));
    tool_->setVisible(!d.Tool.empty());
    measurement_->setText(Q(d.Measurement));
    position_->setText(Q(d.X + "     " + d.Y + (d.C.empty() ? std::string() : "     " + d.C)));
    hits_->setText(Q(d.Hits));
    kerf_->setText(Q(d.Kerf));
    kerf_->setVisible(!d.Kerf.empty());
    note_->setText(Q(d.Note.empty() ? std::string() : d.Note + " : Nothing Sent"));
    note_->setVisible(!d.Note.empty());
    Blink(false);
}

void RestartForm::Blink(bool lit) {
    lit_ = lit;
    cycleStart_->setStyleSheet(CycleStartStyle(lit));
}

void RestartForm::Run() {
    if (!isVisible() || running_) return;
    if (session_->Slot < 1) {
        accept();
        return;
    }
    running_ = true;
    RestartFormHooks hooks;
    hooks.Refuse = [this](const std::string& text) { Warn(panel_, text); };
    hooks.Ask = [this](const std::string& text) {
        return panel_.ShowWarning(text + "\n\n\n", WarningKind::Question, 1) == 1 && panel_.WarningResult();
    };
    hooks.Going.Blink = [this](bool lit) { Blink(lit); };
    hooks.Going.ExitRequested = [this] { return exitRequested_; };
    hooks.Going.ProcessEvents = [this] { panel_.ProcessEvents(); };
    Conversation talk = panel_.Talk();
    const RestartOutcome outcome = RunRestart(talk, panel_.State(), *session_, hooks);
    running_ = false;
    if (!isVisible()) session_->Slot = 0;
    // A point whose block was not reached stays on view until the operator leaves.
    if (outcome != RestartOutcome::NotSent && isVisible()) accept();
}

void RestartForm::hideEvent(QHideEvent* event) {
    // Leaving ends the wait and the restart under way.
    exitRequested_ = true;
    if (!running_) session_->Slot = 0;
    PanelForm::hideEvent(event);
}

bool RestartForm::FormKey(int code, QKeyEvent&) { return keys_.Press(code); }

void RegisterRestartForms(Panel& panel, FormRegistry& forms) {
    auto session = std::make_shared<RestartSession>();
    forms.Register("BlockStartForm", [&panel, session] { return std::make_unique<BlockStartForm>(panel, session); });
    forms.Register("RestartForm", [&panel, session] { return std::make_unique<RestartForm>(panel, session); });
}

}  // namespace kirvana

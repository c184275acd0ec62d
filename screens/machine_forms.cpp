#include "screens/machine_forms.h"

#include "navigation/machine_screens.h"
#include "screens/form_registry.h"
#include "screens/jog_forms.h"
#include "screens/panel.h"
#include "screens/panel_style.h"
#include "screens/status_forms.h"
#include "system/poll_cycle.h"

namespace kirvana {

void RegisterMachineForms(FormRegistry& forms, Panel& panel) {
    Panel* p = &panel;
    forms.Register("MachineForm", [p] { return std::make_unique<MachineForm>(*p); });
    forms.Register("LoadForm", [p] { return std::make_unique<LoadForm>(*p); });
    forms.Register("MoveForm", [p] { return std::make_unique<MoveForm>(*p); });
    forms.Register("XYJogForm", [p] { return std::make_unique<XYJogForm>(*p); });
    forms.Register("XYPositionForm", [p] { return std::make_unique<PositionForm>(*p, false); });
    forms.Register("TCPositionForm", [p] { return std::make_unique<PositionForm>(*p, true); });
    forms.Register("SetupForm", [p] { return std::make_unique<SetupForm>(*p); });
    forms.Register("StatusMenuForm", [p] { return std::make_unique<StatusMenuForm>(*p); });
    forms.Register("MachineStatusForm", [p] { return std::make_unique<MachineStatusForm>(*p); });
    forms.Register("PlasmaStatusForm", [p] { return std::make_unique<PlasmaStatusForm>(*p); });
}

MachineForm::MachineForm(Panel& panel) : CommandForm(panel, "MachineForm", "MACHINE", 860, 600) {
    AddHeading("REFERENCE");
    auto* references = new QGridLayout();
    for (int i = 0; i < 5; ++i) {
        reference_[i] = AddButton(ReferenceButtonCaptions[i], QString("ReferenceButton%1").arg(i));
        references->addWidget(reference_[i], i / 3, i % 3);
        connect(reference_[i], &QPushButton::clicked, this, [this, i] {
            Conversation talk = panel_.Talk();
            Refused(ReferenceMachine(panel_.State(), talk, i));
        });
    }
    layout_->addLayout(references);

    AddHeading("FEED OVERRIDE");
    auto* feeds = new QGridLayout();
    for (int i = 0; i < 4; ++i) {
        feed_[i] = AddButton(FeedButtons[i].Caption, QString("FeedButton%1").arg(i), 130);
        connect(feed_[i], &QPushButton::clicked, this, [this, i] {
            Conversation talk = panel_.Talk();
            StepFeed(panel_.State(), talk, FeedButtons[i].Step);
        });
    }
    // The steps down on the left of the feed text, the steps up on its right.
    feeds->addWidget(feed_[0], 0, 0);
    feeds->addWidget(feed_[2], 0, 1);
    feedText_ = AddValueText(feeds, 0, 2, "  FEED % :", "FeedText");
    feeds->addWidget(feed_[3], 0, 4);
    feeds->addWidget(feed_[1], 0, 5);
    layout_->addLayout(feeds);

    AddHeading("SHEET AND AXES");
    auto* menu = new QGridLayout();
    for (int i = 0; i < static_cast<int>(MachineMenu.size()); ++i) {
        menu_[i] = AddButton(MachineMenu[i].Caption, QString("MenuButton%1").arg(i));
        menu->addWidget(menu_[i], i / 3, i % 3);
        connect(menu_[i], &QPushButton::clicked, this, [this, i] { panel_.OpenForm(MachineMenu[i].Form); });
    }
    layout_->addLayout(menu);
    AddExit();
}

void MachineForm::Activate() { ShowModel(); }

void MachineForm::ShowModel() { feedText_->setText(Q(panel_.State().Display.MachineFeedText)); }

LoadForm::LoadForm(Panel& panel) : CommandForm(panel, "LoadForm", "LOAD POSITIONS", 640, 520) {
    for (int button = 1; button <= 2; ++button) {
        AddHeading("LOAD POSITION " + std::to_string(button));
        auto* grid = new QGridLayout();
        for (int n = 0; n < 2; ++n) {
            int i = (button - 1) * 2 + n;
            boxes_[i] = AddValueBox(grid, n, LoadBoxCaptions[i], QString("LoadBox%1").arg(i), -6);
        }
        load_[button - 1] =
            AddButton("LOAD &" + std::string(button == 1 ? "A" : "B"), QString("LoadButton%1").arg(button));
        grid->addWidget(load_[button - 1], 0, 2, 2, 1);
        layout_->addLayout(grid);
        connect(load_[button - 1], &QPushButton::clicked, this, [this, button] {
            Conversation talk = panel_.Talk();
            int first = (button - 1) * 2;
            Refused(LoadPosition(panel_.State(), talk, button, BoxValue(boxes_[first]), BoxValue(boxes_[first + 1])));
        });
    }
    AddExit();
}

void LoadForm::Activate() {
    Conversation talk = panel_.Talk();
    std::array<std::string, 4> texts = LoadBoxTexts(talk);
    for (int i = 0; i < 4; ++i) boxes_[i]->setText(Q(texts[i]));
}

MoveForm::MoveForm(Panel& panel) : CommandForm(panel, "MoveForm", "MOVE / PUNCH", 760, 600) {
    auto* row = new QHBoxLayout();
    list_ = new QListWidget(this);
    list_->setObjectName("MoveList");
    list_->setMinimumWidth(280);
    list_->setStyleSheet(
        "QListWidget { font-size: 19px; font-weight: bold; background: #ffffff; color: #000000; }"
        " QListWidget::item { min-height: 48px; }"
        " QListWidget::item:selected { background: #000080; color: #ffffff; }"
        " QScrollBar:vertical { width: 48px; }");
    row->addWidget(list_, 1);
    auto* right = new QVBoxLayout();
    auto* grid = new QGridLayout();
    for (int i = 0; i < 3; ++i)
        boxes_[i] = AddValueBox(grid, i, MoveBoxCaptions[i], QString("MoveBox%1").arg(i + 1), -6);
    right->addLayout(grid);
    for (int i = 0; i < 2; ++i) {
        move_[i] = AddButton(MoveButtonCaptions[i], QString("MoveButton%1").arg(i + 1));
        right->addWidget(move_[i]);
        connect(move_[i], &QPushButton::clicked, this, [this, i] { Move(i == 1); });
    }
    right->addStretch(1);
    row->addLayout(right, 1);
    layout_->addLayout(row, 1);
    AddExit();
}

void MoveForm::Activate() {
    int row = std::max(list_->currentRow(), 0);
    list_->clear();
    for (const std::string& entry : MoveStationEntries(panel_.State())) list_->addItem(Q(entry));
    list_->setCurrentRow(std::min(row, list_->count() - 1));
}

void MoveForm::Move(bool punch) {
    Conversation talk = panel_.Talk();
    // The list's rows are the stations from 1.
    std::int32_t station = std::max(list_->currentRow(), 0) + 1;
    Refused(MoveToPosition(panel_.State(), talk, punch, station, BoxValue(boxes_[0]), BoxValue(boxes_[1]),
                           BoxValue(boxes_[2])));
}

SetupForm::SetupForm(Panel& panel) : CommandForm(panel, "SetupForm", "SETUP", 640, 560) {
    auto* grid = new QGridLayout();
    AddColumnHeading(grid, 0, "CLAMPS");
    AddColumnHeading(grid, 1, "ACTUAL");
    AddColumnHeading(grid, 3, "DEMAND");
    for (int n = 0; n < 4; ++n) {
        actual_[n] =
            AddValueText(grid, n + 1, 0, "CLAMP " + std::to_string(n + 1) + " :", QString("ActualText%1").arg(n + 1));
        demand_[n] = AddValueText(grid, n + 1, 2, "", QString("DemandText%1").arg(n + 1));
        rowLabels_[n] = qobject_cast<QLabel*>(grid->itemAtPosition(n + 1, 0)->widget());
    }
    layout_->addLayout(grid);
    auto* row = new QHBoxLayout();
    reference_ = AddButton(SetupReferenceCaption, "ReferenceButton");
    carriage_ = AddButton(CarriageCaption, "CarriageButton");
    row->addWidget(reference_);
    row->addWidget(carriage_);
    layout_->addLayout(row);
    connect(reference_, &QPushButton::clicked, this, [this] {
        Conversation talk = panel_.Talk();
        Refused(ReferenceClamps(panel_.State(), talk));
    });
    connect(carriage_, &QPushButton::clicked, this, [this] {
        Conversation talk = panel_.Talk();
        Refused(MoveCarriage(panel_.State(), talk));
    });
    AddExit();
}

void SetupForm::Activate() {
    UpdateClampPanel(panel_.State());
    ShowModel();
}

void SetupForm::ShowModel() {
    const ClampPanel& clamps = panel_.State().Display.Clamps;
    for (int n = 0; n < 4; ++n) {
        bool shown = n < clamps.ClampCount;
        actual_[n]->setText(Q(clamps.ActualTexts[n]));
        demand_[n]->setText(Q(clamps.DemandTexts[n]));
        actual_[n]->setVisible(shown);
        demand_[n]->setVisible(shown);
        rowLabels_[n]->setVisible(shown);
    }
}

}  // namespace kirvana

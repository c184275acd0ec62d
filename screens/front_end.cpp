#include "screens/front_end.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>

#include "screens/dialogue_panel.h"
#include "screens/panel.h"
#include "screens/panel_style.h"
#include "screens/plot_box.h"
#include "system/slots.h"

namespace kirvana {

namespace {

constexpr std::array<const char*, 6> PositionCaptions = {"X", "Y", "Z", "TOOL", "FEED %", "P111"};

QWidget* Column(QWidget* parent, QVBoxLayout*& layout) {
    auto* widget = new QWidget(parent);
    layout = new QVBoxLayout(widget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    return widget;
}

}  // namespace

FrontEnd::FrontEnd(Panel& panel) : QWidget(nullptr), panel_(panel) {
    setObjectName("FrontEnd");
    setWindowTitle("Kirvana 32");
    setMinimumSize(1024, 768);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(6, 6, 6, 6);
    outer->setSpacing(6);

    header_ = new QLabel(this);
    header_->setObjectName("HeaderPanel");
    header_->setMinimumHeight(44);
    header_->setContentsMargins(10, 0, 10, 0);
    outer->addWidget(header_);

    text_ = new QLabel(this);
    text_->setObjectName("TextPanel");
    text_->setMinimumHeight(36);
    text_->setContentsMargins(10, 0, 10, 0);
    outer->addWidget(text_);

    auto* middle = new QHBoxLayout();
    middle->setSpacing(6);
    plotBoxes_ = new QStackedWidget(this);
    plotBoxes_->setObjectName("PlotBox");
    for (int i = 0; i < 3; ++i) {
        plots_[static_cast<std::size_t>(i)] =
            new PlotBox(i, panel_.Colours(), panel_.State().Config.Dirs.ToolsDir, plotBoxes_);
        plotBoxes_->addWidget(plots_[static_cast<std::size_t>(i)]);
    }
    middle->addWidget(plotBoxes_, 1);
    middle->addWidget(BuildButtonColumn());
    outer->addLayout(middle, 1);
    outer->addWidget(BuildStatusPanel());
    outer->addWidget(BuildBottomRow());
    dialogue_ = std::make_unique<DialogueControls>(panel_, dialoguePanel_, dialogueBar_);
    ApplyColours();
}

FrontEnd::~FrontEnd() = default;

QWidget* FrontEnd::BuildButtonColumn() {
    column_ = new QStackedWidget(this);
    column_->setFixedWidth(250);

    QVBoxLayout* layout = nullptr;
    mainPanel_ = Column(column_, layout);
    mainPanel_->setObjectName("MainButtonPanel");
    for (int i = 0; i < 7; ++i) {
        mainButtons_[i] = MakeButton("", mainPanel_);
        mainButtons_[i]->setObjectName(QString("MainButton%1").arg(i + 1));
        mainButtons_[i]->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        layout->addWidget(mainButtons_[i]);
        connect(mainButtons_[i], &QPushButton::clicked, this, [this, i] { panel_.MainKeyPressed(key::F1 + i); });
    }
    column_->addWidget(mainPanel_);

    graphicsPanel_ = Column(column_, layout);
    graphicsPanel_->setObjectName("GraphicsButtonPanel");
    limitsButton_ = MakeButton("SHOW &LIMITS", graphicsPanel_);
    limitsButton_->setObjectName("LimitsButton");
    limitsButton_->setCheckable(true);
    limitsButton_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    layout->addWidget(limitsButton_);
    connect(limitsButton_, &QPushButton::clicked, this, [this] {
        panel_.DoKeyAction(MainKey(panel_.Nav(), panel_.State().Config.Machine, panel_.State().Card.FormsLocked, 'L'));
    });
    const std::array<const char*, 4> graphics = {"&REDRAW", "&ZOOM IN", "ZOOM &OUT", "&PAN"};
    for (int i = 0; i < 4; ++i) {
        graphicsButtons_[i] = MakeButton(graphics[i], graphicsPanel_);
        graphicsButtons_[i]->setObjectName(QString("GraphicsButton%1").arg(i + 1));
        graphicsButtons_[i]->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        layout->addWidget(graphicsButtons_[i]);
        connect(graphicsButtons_[i], &QPushButton::clicked, this, [this, i] { panel_.GraphicsButton(i + 1); });
    }
    graphicsExit_ = MakeButton("E&XIT", graphicsPanel_);
    graphicsExit_->setObjectName("GraphicsExitButton");
    graphicsExit_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    layout->addWidget(graphicsExit_);
    connect(graphicsExit_, &QPushButton::clicked, this, [this] {
        panel_.DoKeyAction(MainKey(panel_.Nav(), panel_.State().Config.Machine, panel_.State().Card.FormsLocked, 'X'));
    });
    column_->addWidget(graphicsPanel_);

    pathPanel_ = Column(column_, layout);
    pathPanel_->setObjectName("PathButtonPanel");
    pathHeading_ = new QLabel(pathPanel_);
    pathHeading_->setObjectName("PathHeading");
    pathHeading_->setAlignment(Qt::AlignCenter);
    pathHeading_->setMinimumHeight(48);
    layout->addWidget(pathHeading_);
    for (int i = 0; i < 6; ++i) {
        pathButtons_[i] = MakeButton("", pathPanel_);
        pathButtons_[i]->setObjectName(QString("PathButton%1").arg(i + 1));
        pathButtons_[i]->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        layout->addWidget(pathButtons_[i]);
        connect(pathButtons_[i], &QPushButton::clicked, this, [this, i] { panel_.CursorButton(i + 1); });
    }
    pathExit_ = MakeButton("&CANCEL", pathPanel_);
    pathExit_->setObjectName("PathExitButton");
    pathExit_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    layout->addWidget(pathExit_);
    connect(pathExit_, &QPushButton::clicked, this, [this] { panel_.CursorCancel(); });
    column_->addWidget(pathPanel_);

    dialoguePanel_ = Column(column_, layout);
    dialoguePanel_->setObjectName("DialoguePanel");
    // The dialogue's controls come above its exit (DialogueControls).
    exitDialogue_ = MakeButton("E&XIT", dialoguePanel_);
    exitDialogue_->setObjectName("ExitDialogueButton");
    layout->addWidget(exitDialogue_, 1);
    exitDialogue_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    connect(exitDialogue_, &QPushButton::clicked, this, [this] {
        panel_.DoKeyAction(MainKey(panel_.Nav(), panel_.State().Config.Machine, panel_.State().Card.FormsLocked, 'X'));
    });
    column_->addWidget(dialoguePanel_);
    return column_;
}

QWidget* FrontEnd::BuildStatusPanel() {
    auto* status = new QFrame(this);
    status->setObjectName("StatusPanel");
    auto* layout = new QHBoxLayout(status);
    layout->setContentsMargins(0, 0, 0, 0);
    positionBox_ = new QFrame(status);
    positionBox_->setObjectName("PositionBox");
    auto* grid = new QGridLayout(positionBox_);
    grid->setContentsMargins(8, 4, 8, 4);
    grid->setHorizontalSpacing(12);
    grid->setVerticalSpacing(0);
    for (int i = 0; i < 6; ++i) {
        positionLabels_[i] = new QLabel(PositionCaptions[i], positionBox_);
        positionLabels_[i]->setObjectName(QString("PositionLabel%1").arg(i + 1));
        positionTexts_[i] = new QLabel(positionBox_);
        positionTexts_[i]->setObjectName(QString("PositionText%1").arg(i + 1));
        positionLabels_[i]->setAlignment(Qt::AlignCenter);
        positionTexts_[i]->setAlignment(Qt::AlignCenter);
        positionTexts_[i]->setMinimumWidth(i < 3 ? 130 : 80);
        grid->addWidget(positionLabels_[i], 0, i);
        grid->addWidget(positionTexts_[i], 1, i);
    }
    hitLabel_ = new QLabel("HITS", positionBox_);
    hitCount_ = new QLabel(positionBox_);
    hitCount_->setObjectName("HitCountText");
    hitLabel_->setAlignment(Qt::AlignCenter);
    hitCount_->setAlignment(Qt::AlignCenter);
    hitCount_->setMinimumWidth(90);
    grid->addWidget(hitLabel_, 0, 6);
    grid->addWidget(hitCount_, 1, 6);
    layout->addWidget(positionBox_, 1);
    return status;
}

QWidget* FrontEnd::BuildBottomRow() {
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    for (int slot = 1; slot <= 2; ++slot) {
        programButtons_[slot - 1] = MakeButton("", row, 220);
        programButtons_[slot - 1]->setObjectName(QString("ProgramButton%1").arg(slot));
        programButtons_[slot - 1]->setCheckable(true);
        layout->addWidget(programButtons_[slot - 1], 2);
        connect(programButtons_[slot - 1], &QPushButton::clicked, this,
                [this, slot] { panel_.MainKeyPressed(slot == 1 ? key::F10 : key::F11); });
    }
    // In the dialogue the program buttons give way to its Write and Load bar.
    dialogueBar_ = new QWidget(row);
    dialogueBar_->setObjectName("DialogueBar");
    layout->addWidget(dialogueBar_, 5);
    messageButton_ = MakeButton("MESSAGES F9", row, 200);
    messageButton_->setObjectName("MessageButton");
    layout->addWidget(messageButton_, 1);
    connect(messageButton_, &QPushButton::clicked, this, [this] { panel_.MainKeyPressed(key::F9); });
    shutdownButton_ = MakeButton("SHUTDOWN F12", row, 200);
    shutdownButton_->setObjectName("ShutdownButton");
    layout->addWidget(shutdownButton_, 1);
    connect(shutdownButton_, &QPushButton::clicked, this, [this] { panel_.MainKeyPressed(key::F12); });
    return row;
}

void FrontEnd::ApplyColours() {
    const ColourTable& c = panel_.Colours();
    setStyleSheet(QString("QWidget#FrontEnd { background: %1; }").arg(ToQColor(c[ColourItem::PanelBackground]).name()));
    header_->setStyleSheet(PanelStyle(c[ColourItem::HeaderBackground], c[ColourItem::HeaderText], 20, true));
    pathHeading_->setStyleSheet(PanelStyle(c[ColourItem::HeaderBackground], c[ColourItem::HeaderText], 18, true));
    text_->setStyleSheet(PanelStyle(c[ColourItem::TextBackground], c[ColourItem::Text], 18, true));
    for (int i = 0; i < plotBoxes_->count(); ++i)
        plotBoxes_->widget(i)->setStyleSheet(
            QString("background: %1; border: 2px solid #000000;").arg(ToQColor(c[ColourItem::PlotBackground]).name()));
    QString mainStyle = ButtonStyle(c[ColourItem::MainKeys], c[ColourItem::MainKeyText], 18);
    QString subStyle = ButtonStyle(c[ColourItem::SubKeys], c[ColourItem::SubKeyText], 18);
    for (QPushButton* b : mainButtons_) b->setStyleSheet(mainStyle);
    for (QPushButton* b : programButtons_) b->setStyleSheet(mainStyle);
    shutdownButton_->setStyleSheet(mainStyle);
    limitsButton_->setStyleSheet(subStyle);
    graphicsExit_->setStyleSheet(subStyle);
    pathExit_->setStyleSheet(subStyle);
    exitDialogue_->setStyleSheet(subStyle);
    for (QPushButton* b : graphicsButtons_) b->setStyleSheet(subStyle);
    for (QPushButton* b : pathButtons_) b->setStyleSheet(subStyle);
    dialoguePanel_->setStyleSheet(PanelStyle(c[ColourItem::PanelBackground], c[ColourItem::PanelText]));
}

void FrontEnd::ShowNavigation() {
    const Process& process = panel_.State();
    const Navigation& nav = panel_.Nav();
    std::vector<std::string> captions = MainButtonCaptions(process.Config.Machine);
    for (int i = 0; i < 7; ++i) mainButtons_[i]->setText(Q(captions[i]));
    for (int slot = 1; slot <= 2; ++slot) {
        programButtons_[slot - 1]->setText(Q(ProgramButtonCaption(slot, process.Slots[slot - 1])));
        programButtons_[slot - 1]->setChecked(process.Config.ActiveSlot == slot);
    }
    // The column: dialogue, path or cursor keys, graphics, or the main buttons.
    if (nav.DialogueOn)
        column_->setCurrentWidget(dialoguePanel_);
    else if (nav.GraphicsOn && nav.ViewMode != 0)
        column_->setCurrentWidget(pathPanel_);
    else if (nav.GraphicsOn)
        column_->setCurrentWidget(graphicsPanel_);
    else
        column_->setCurrentWidget(mainPanel_);
    header_->setVisible(!nav.DialogueOn);
    shutdownButton_->setVisible(!nav.DialogueOn);
    dialogueBar_->setVisible(nav.DialogueOn);
    for (QPushButton* b : programButtons_) b->setVisible(!nav.DialogueOn);
    // The dialogue's column holds its screens two to a row.
    column_->setFixedWidth(nav.DialogueOn ? 330 : 250);
    limitsButton_->setChecked(nav.LimitsOn);
    std::vector<std::string> path = PathButtonCaptions(nav.ViewMode);
    for (int i = 0; i < 6; ++i) {
        pathButtons_[i]->setText(Q(path[i]));
        pathButtons_[i]->setVisible(!path[i].empty());
    }
    pathExit_->setText(Q(PathExitCaption(nav.ViewMode)));
    const std::string heading = kirvana::PathHeading(nav.ViewMode);
    pathHeading_->setText(Q(heading));
    pathHeading_->setVisible(!heading.empty());
    if (nav.GraphicsOn && nav.ViewMode != 0) SetText(CursorPrompt(nav.ViewMode));
    plotBoxes_->setCurrentIndex(nav.DialogueOn ? 0 : process.Config.ActiveSlot);
    // The header: the machine and the program of the active slot.
    const SlotRecord& active = process.Slots[process.Config.ActiveSlot == 2 ? 1 : 0];
    std::string program = active.Present ? active.ProgramName + "  (" + active.ProgramDirName + ")" : "NO PROGRAM";
    header_->setText(Q(process.Config.Machine.MachineName + (process.Card.CardInUse ? "" : "  (OFFICE SEAT)") +
                       "      PROGRAM " + std::to_string(process.Config.ActiveSlot) + ":  " + program));
    bool third = process.Config.Machine.HasThirdAxis;
    positionLabels_[2]->setVisible(third);
    positionTexts_[2]->setVisible(third);
}

void FrontEnd::ShowModel() {
    const DisplayModel& model = panel_.State().Display;
    for (int i = 0; i < 6; ++i) positionTexts_[i]->setText(Q(model.FrontEnd.PositionText[i]));
    hitCount_->setText(QString::number(model.HitCount));
    // The two status boxes: the position box and the message button; written only on a change.
    int colours = static_cast<int>(model.FrontEnd.Colours);
    if (colours != shownColours_) {
        shownColours_ = colours;
        const ColourTable& c = panel_.Colours();
        ColourPair pair = StatusBoxColours(c, model.FrontEnd.Colours);
        QString text =
            ToQColor(model.FrontEnd.Colours == StatusColours::Normal ? c[ColourItem::XYPosition] : pair.Text).name();
        positionBox_->setStyleSheet(
            QString("QFrame#PositionBox { background: %1; border: 2px solid #000000; }"
                    " QLabel { color: %2; font-size: 24px; font-weight: bold; font-family: 'DejaVu Sans Mono'; }")
                .arg(ToQColor(pair.Background).name(), text));
        QString header =
            QString("color: %1; font-size: 15px; font-weight: bold; background: transparent;")
                .arg(model.FrontEnd.Colours == StatusColours::Normal ? ToQColor(c[ColourItem::XYHeaders]).name()
                                                                     : text);
        for (QLabel* l : positionLabels_) l->setStyleSheet(header);
        hitLabel_->setStyleSheet(header);
        messageButton_->setStyleSheet(model.FrontEnd.Colours == StatusColours::Normal
                                          ? ButtonStyle(c[ColourItem::MainKeys], c[ColourItem::MainKeyText], 18)
                                          : ButtonStyle(pair.Background, pair.Text, 18));
    }
    if (!model.Notices.empty()) SetText(model.Notices.back());
}

void FrontEnd::SetText(const std::string& text) { text_->setText(Q(text)); }

void FrontEnd::keyPressEvent(QKeyEvent* event) {
    int code = KeyCodeOf(*event);
    if (code != 0)
        panel_.MainKeyPressed(code);
    else
        QWidget::keyPressEvent(event);
}

void FrontEnd::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    panel_.FrontEndActivated();
}

void FrontEnd::closeEvent(QCloseEvent* event) {
    if (panel_.Ended()) {
        QWidget::closeEvent(event);
        return;
    }
    event->ignore();
    panel_.MainKeyPressed(key::F12);
}

void FrontEnd::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) panel_.FrontEndActivated();
}

}  // namespace kirvana

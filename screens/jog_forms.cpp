#include "screens/jog_forms.h"

#include <QKeyEvent>
#include <QMouseEvent>

#include "screens/panel.h"
#include "screens/panel_style.h"

namespace kirvana {

void JogButton::mousePressEvent(QMouseEvent* event) {
    QPushButton::mousePressEvent(event);
    if (event->button() != Qt::LeftButton || holding_) return;
    holding_ = true;
    if (Started) Started();
}

void JogButton::mouseMoveEvent(QMouseEvent* event) {
    if (!holding_) {
        event->ignore();
        return;
    }
    // Off the button the press is over; back on it, it doesn't start again.
    if (!hitButton(event->position().toPoint())) End();
}

void JogButton::mouseReleaseEvent(QMouseEvent* event) {
    QPushButton::mouseReleaseEvent(event);
    End();
}

void JogButton::hideEvent(QHideEvent* event) {
    QPushButton::hideEvent(event);
    End();
}

bool JogButton::event(QEvent* event) {
    // The mouse taken away (a modal screen, a cancelled touch) ends the press too.
    if (event->type() == QEvent::UngrabMouse || event->type() == QEvent::TouchCancel) End();
    return QPushButton::event(event);
}

void JogButton::End() {
    if (!holding_) return;
    holding_ = false;
    setDown(false);
    if (Ended) Ended();
}

XYJogForm::XYJogForm(Panel& panel) : CommandForm(panel, "XYJogForm", "JOG", 900, 660) {
    auto* top = new QHBoxLayout();
    // The four jog buttons in a cross.
    auto* cross = new QGridLayout();
    const std::array<std::pair<int, int>, 4> places = {{{1, 2}, {1, 0}, {0, 1}, {2, 1}}};
    const std::array<JogDirection, 4> directions = {JogDirection::XPlus, JogDirection::XMinus, JogDirection::YPlus,
                                                    JogDirection::YMinus};
    for (int i = 0; i < 4; ++i) {
        jog_[i] = new JogButton("", this);
        jog_[i]->setObjectName(QString("JogButton%1").arg(i));
        jog_[i]->setMinimumSize(110, 90);
        jog_[i]->setStyleSheet(
            ButtonStyle(panel.Colours()[ColourItem::SubKeys], panel.Colours()[ColourItem::SubKeyText], 24));
        jog_[i]->setFocusPolicy(Qt::NoFocus);
        jog_[i]->setAutoDefault(false);
        cross->addWidget(jog_[i], places[i].first, places[i].second);
        JogDirection direction = directions[i];
        jog_[i]->Started = [this, direction] { Press(direction); };
        jog_[i]->Ended = [this] { End(); };
    }
    top->addLayout(cross);
    auto* values = new QGridLayout();
    position_[0] = AddValueText(values, 0, 0, "X :", "PositionText1");
    position_[1] = AddValueText(values, 1, 0, "Y :", "PositionText2");
    formValue_ = AddValueText(values, 2, 0, "M876 :", "FormValueText");
    top->addLayout(values);
    layout_->addLayout(top);

    AddHeading("SPEED %");
    auto* speeds = new QHBoxLayout();
    auto* speedGroup = new QButtonGroup(this);
    for (int n = 0; n < JogSpeedOptions; ++n) {
        speed_[n] = AddButton(JogSpeedCaption(n), QString("SpeedOption%1").arg(n), 100);
        speed_[n]->setCheckable(true);
        speedGroup->addButton(speed_[n]);
        speeds->addWidget(speed_[n]);
        connect(speed_[n], &QPushButton::clicked, this, [this, n] {
            Conversation talk = panel_.Talk();
            SetJogSpeed(talk, n);
        });
    }
    layout_->addLayout(speeds);
    AddHeading("DISTANCE");
    auto* distances = new QHBoxLayout();
    auto* distanceGroup = new QButtonGroup(this);
    for (int n = 0; n < JogDistanceOptions; ++n) {
        distance_[n] = AddButton(JogDistanceCaption(n), QString("DistanceOption%1").arg(n), 100);
        distance_[n]->setCheckable(true);
        distanceGroup->addButton(distance_[n]);
        distances->addWidget(distance_[n]);
        connect(distance_[n], &QPushButton::clicked, this, [this, n] {
            Conversation talk = panel_.Talk();
            SetJogDistance(talk, n);
        });
    }
    layout_->addLayout(distances);
    AddExit();
}

void XYJogForm::Activate() {
    Conversation talk = panel_.Talk();
    JogSettings settings = ActivateJog(panel_.State(), talk);
    for (int i = 0; i < 4; ++i) jog_[i]->setText(Q(settings.ButtonCaptions[i]));
    // Buttons of a group that allows no empty choice: unchecked only outside the group.
    for (auto* options : {&speed_, &distance_}) {
        QButtonGroup* group = (*options)[0]->group();
        group->setExclusive(false);
        for (QPushButton* b : *options) b->setChecked(false);
        group->setExclusive(true);
    }
    if (settings.SpeedOption >= 0) speed_[settings.SpeedOption]->setChecked(true);
    if (settings.DistanceOption >= 0) distance_[settings.DistanceOption]->setChecked(true);
    formValue_->setText(Q(settings.FormValueText));
    ShowModel();
}

void XYJogForm::ShowModel() {
    const DisplayModel& model = panel_.State().Display;
    for (int i = 0; i < 2; ++i) position_[i]->setText(Q(model.JogTexts[i]));
}

void XYJogForm::Press(JogDirection direction) {
    Conversation talk = panel_.Talk();
    Refused(hold_.Press(panel_.State(), talk, direction));
}

void XYJogForm::End() {
    Conversation talk = panel_.Talk();
    hold_.End(talk);
}

bool XYJogForm::FormKey(int code, QKeyEvent& event) {
    if (std::optional<JogDirection> direction = JogDirectionOfKey(code)) {
        // A held key repeats its press; only its first one jogs.
        if (!event.isAutoRepeat()) Press(*direction);
        return true;
    }
    if (std::optional<JogOptionKey> option = JogOptionOfKey(code)) {
        (option->Speed ? speed_ : distance_)[option->Option]->click();
        return true;
    }
    return CommandForm::FormKey(code, event);
}

void XYJogForm::keyReleaseEvent(QKeyEvent* event) {
    if (JogDirectionOfKey(KeyCodeOf(*event)) && !event->isAutoRepeat()) {
        // The key up goes out also when the key down was refused: "M828=0" and "M829=0", always.
        Conversation talk = panel_.Talk();
        if (!hold_.End(talk)) JogKeyUp(talk);
        return;
    }
    CommandForm::keyReleaseEvent(event);
}

void XYJogForm::hideEvent(QHideEvent* event) {
    End();
    CommandForm::hideEvent(event);
}

void XYJogForm::changeEvent(QEvent* event) {
    CommandForm::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && !isActiveWindow()) End();
}

PositionForm::PositionForm(Panel& panel, bool rotary)
    : CommandForm(panel, rotary ? "TCPositionForm" : "XYPositionForm", rotary ? "ZT POSITION" : "XY POSITION", 640,
                  420),
      rotary_(rotary) {
    auto* grid = new QGridLayout();
    texts_[0] = AddValueText(grid, 0, 0, rotary ? "Z :" : "X :", "PositionText1");
    texts_[1] = AddValueText(grid, 1, 0, rotary ? "T :" : "Y :", "PositionText2");
    layout_->addLayout(grid);
    auto* row = new QHBoxLayout();
    auto* group = new QButtonGroup(this);
    for (int mode = 0; mode < 4; ++mode) {
        modes_[mode] = AddButton(PositionButtonCaptions[mode], QString("PositionButton%1").arg(mode), 130);
        modes_[mode]->setCheckable(true);
        group->addButton(modes_[mode]);
        row->addWidget(modes_[mode]);
        connect(modes_[mode], &QPushButton::clicked, this, [this, mode] { Mode() = static_cast<PositionMode>(mode); });
    }
    layout_->addLayout(row);
    AddExit();
}

PositionMode& PositionForm::Mode() {
    DisplayModel& model = panel_.State().Display;
    return rotary_ ? model.RotaryMode : model.XYMode;
}

void PositionForm::Activate() {
    modes_[static_cast<int>(Mode())]->setChecked(true);
    ShowModel();
}

void PositionForm::ShowModel() {
    const DisplayModel& model = panel_.State().Display;
    const std::array<std::string, 2>& texts = rotary_ ? model.TCPositionTexts : model.XYPositionTexts;
    for (int i = 0; i < 2; ++i) texts_[i]->setText(Q(texts[i]));
}

}  // namespace kirvana

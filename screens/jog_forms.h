// XYJogForm, press and hold by touch and by the arrow keys, and the position screens
// XYPositionForm and TCPositionForm with their position modes.
#pragma once

#include <QButtonGroup>
#include <functional>

#include "controller/display_model.h"
#include "navigation/machine_screens.h"
#include "screens/command_form.h"

namespace kirvana {

// A button that jogs while it is held. Its press ends on the release, when the finger slides
// off it, and when it is hidden or loses the mouse: each end calls `Ended` once.
class JogButton : public QPushButton {
public:
    JogButton(const QString& caption, QWidget* parent) : QPushButton(caption, parent) {}
    std::function<void()> Started;
    std::function<void()> Ended;
    bool Holding() const { return holding_; }

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool event(QEvent* event) override;

private:
    void End();
    bool holding_ = false;
};

class XYJogForm : public CommandForm {
public:
    explicit XYJogForm(Panel& panel);
    // The Y captions by orientation and the options from the card.
    void Activate() override;
    void ShowModel() override;
    // 0 X+, 1 X-, 2 and 3 the Y buttons as the orientation captions them.
    JogButton* JogButtonAt(int index) { return jog_[index]; }
    QPushButton* SpeedOption(int option) { return speed_[option]; }
    QPushButton* DistanceOption(int option) { return distance_[option]; }
    QLabel* PositionText(int index) { return position_[index]; }
    QLabel* FormValueText() { return formValue_; }
    bool Jogging() const { return hold_.Held(); }

protected:
    bool FormKey(int code, QKeyEvent& event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void Press(JogDirection direction);
    void End();
    JogHold hold_;
    std::array<JogButton*, 4> jog_{};
    std::array<QPushButton*, JogSpeedOptions> speed_{};
    std::array<QPushButton*, JogDistanceOptions> distance_{};
    std::array<QLabel*, 2> position_{};
    QLabel* formValue_;
};

// XYPositionForm (X and Y, `PositionMode`) or TCPositionForm (the third axis and the turret
// angle, `RotaryPositionMode`): the poll reads the mode's values while the form is shown.
class PositionForm : public CommandForm {
public:
    PositionForm(Panel& panel, bool rotary);
    void Activate() override;
    void ShowModel() override;
    QPushButton* PositionButton(int mode) { return modes_[mode]; }
    QLabel* PositionText(int index) { return texts_[index]; }

private:
    PositionMode& Mode();
    bool rotary_;
    std::array<QPushButton*, 4> modes_{};
    std::array<QLabel*, 2> texts_{};
};

}  // namespace kirvana

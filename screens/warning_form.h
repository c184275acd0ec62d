// WarningForm: every refusal and question of the system, one at a time.
#pragma once

#include <QLabel>
#include <QPushButton>
#include <array>

#include "navigation/warning.h"
#include "screens/panel_form.h"

namespace kirvana {

class WarningForm : public PanelForm {
public:
    explicit WarningForm(Panel& panel);
    // Fills the form from the gate's warning; the default button gets the focus.
    void Activate() override;
    int Pressed() const { return pressed_; }
    QLabel* WarningLabel() { return label_; }
    QLabel* WarningImage() { return image_; }
    QPushButton* WarningButton(int index) { return buttons_[index]; }

protected:
    bool FormKey(int code, QKeyEvent& event) override;

private:
    void Press(int button);
    QLabel* image_;
    QLabel* label_;
    std::array<QPushButton*, 3> buttons_{};
    int pressed_ = 0;
};

}  // namespace kirvana

// UserForm: the user keys of Keypad.cfg, each a momentary button or a latching check that sends
// its text to the card.
#pragma once

#include <QLabel>
#include <QPushButton>
#include <array>

#include "navigation/keypad.h"
#include "screens/panel_form.h"

namespace kirvana {

class UserForm : public PanelForm {
public:
    explicit UserForm(Panel& panel);
    // Keypad.cfg read again at each opening.
    void Activate() override;
    QPushButton* UserButton(int index) { return buttons_[index - 1]; }
    // A latching key: a button that stays in.
    QPushButton* UserCheck(int index) { return checks_[index - 1]; }
    QPushButton* ExitButton() { return exit_; }
    QLabel* NoteLabel() { return note_; }

protected:
    bool FormKey(int code, QKeyEvent& event) override;

private:
    void Send(const std::string& text);
    KeypadConfig config_;
    std::array<QPushButton*, UserKeyCount> buttons_{};
    std::array<QPushButton*, UserKeyCount> checks_{};
    QPushButton* exit_;
    QLabel* note_;
};

}  // namespace kirvana

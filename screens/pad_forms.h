// NumberForm and KeyboardForm: the pads that every value box opens. Both are given the present
// text and a mode, and give back the text: the entered one after OK, the old one after CANCEL.
#pragma once

#include <QLineEdit>
#include <QPushButton>
#include <memory>
#include <vector>

#include "navigation/pad_entry.h"
#include "screens/panel_form.h"

namespace kirvana {

// The beep of a refused key.
class QtBeeper : public Beeper {
public:
    void Beep() override;
    int Beeps = 0;
};

class PadForm : public PanelForm {
public:
    PadForm(Panel& panel, std::string name, bool keyboard);
    // PadText and PadMode before the form is shown.
    void Begin(const std::string& text, int mode);
    const std::string& PadText() const { return padText_; }
    bool Accepted() const { return accepted_; }
    // A key button or a key: the filter decides.
    void SendKey(int character);

    QLineEdit* Box() { return box_; }
    QPushButton* OkButton() { return ok_; }
    QPushButton* ExitButton() { return exit_; }
    QPushButton* CursorButton(int index) { return cursor_[index - 1]; }
    QPushButton* DeleteButton(int index) { return delete_[index - 1]; }
    const std::vector<QPushButton*>& KeyButtons() const { return keys_; }
    QtBeeper& Beeps() { return beeper_; }

protected:
    bool FormKey(int code, QKeyEvent& event) override;
    void ShowEntry();
    // Adds a key button sending its character.
    QPushButton* AddKey(const std::string& caption, int character, QWidget* parent);
    // The cursor, delete, OK and CANCEL buttons in rows of `columns`.
    QWidget* BuildControls(int columns);

    std::unique_ptr<PadEntry> entry_;
    std::vector<QPushButton*> keys_;
    QLineEdit* box_;

private:
    bool keyboard_;
    std::string padText_;
    bool accepted_ = false;
    QPushButton* ok_ = nullptr;
    QPushButton* exit_ = nullptr;
    std::array<QPushButton*, 2> cursor_{};
    std::array<QPushButton*, 2> delete_{};
    QtBeeper beeper_;
};

class NumberForm : public PadForm {
public:
    explicit NumberForm(Panel& panel);
};

class KeyboardForm : public PadForm {
public:
    explicit KeyboardForm(Panel& panel);
    QPushButton* ShiftButton() { return shift_; }
    bool Upper() const { return upper_; }

private:
    void ShowCase();
    QPushButton* shift_;
    bool upper_ = true;
    std::vector<char> letters_;  // the character of each key button, as built
};

}  // namespace kirvana

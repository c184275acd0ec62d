// The frame the program screens share: a fixed-size form in the panel's colours under its
// caption, its touch buttons, text boxes and list boxes, and the letters that press its buttons.
#pragma once

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>
#include <map>
#include <string>

#include "navigation/colours.h"
#include "screens/panel_form.h"

namespace kirvana {

// Styles the form, sizes it and gives the layout under its caption.
QVBoxLayout* FrameForm(PanelForm& form, const ColourTable& c, const std::string& caption, int width, int height);
// A touch button in the general colours, named for the tests.
QPushButton* FormButton(QWidget* parent, const ColourTable& c, const std::string& caption, const char* name,
                        int minWidth = 150);
// A text box in the text colours.
QLabel* TextLabel(QWidget* parent, const ColourTable& c, const char* name, int fontPx = 18);
// A list with rows high enough for a finger, in the text colours.
QListWidget* TouchList(QWidget* parent, const ColourTable& c, const char* name);

// The letters of a form's buttons: a letter key clicks its button when the button is enabled.
class ButtonKeys {
public:
    void Add(int code, QPushButton* button) { keys_[code] = button; }
    // True when the key belongs to a button (it is then used, whether enabled or not).
    bool Press(int code) const;

private:
    std::map<int, QPushButton*> keys_;
};

}  // namespace kirvana

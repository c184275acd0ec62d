// The key filter of the entry boxes.
#pragma once

#include <string_view>

namespace kirvana {

// Sounds the beep of a refused key.
class Beeper {
public:
    virtual ~Beeper() = default;
    virtual void Beep() = 0;
};

// Returns the key code when a box of this kind accepts the key, otherwise beeps and returns 0.
// Backspace (8) and enter (13) pass in every kind; length limits do not hold when a
// selection is about to be replaced.
int FilterKey(int keyCode, int kind, std::string_view presentText, bool selectionReplaced, Beeper& beeper);

}  // namespace kirvana

// Keypad.cfg (in DataDir): the user keys of UserForm. Fields are read one after another as a
// sequential read takes them (separated by commas or line ends, a quoted field may hold commas),
// five to an entry: valid flag, kind, caption, the card's text for on and for off. The file ends
// at a field "******"; entries beyond 16 are ignored.
#pragma once

#include <string>
#include <vector>

namespace kirvana {

inline constexpr int UserKeyCount = 16;

struct UserKey {
    bool Valid = false;
    bool Latching = false;  // a check that stays on (UserCheck); else a momentary button
    std::string Caption;    // at most 12 characters
    std::string OnText;     // sent when pressed or checked
    std::string OffText;    // sent when released or unchecked
};

struct KeypadConfig {
    std::vector<UserKey> Keys;  // in the file's order, at most 16
    std::string Note;           // what the operator is told when the file is missing or damaged
};

KeypadConfig ReadKeypadConfig(const std::string& dataDir);

// "(&" + letter + ") " + caption, the letter A to P by index 1 to 16.
std::string UserKeyCaption(int index, const std::string& caption);

}  // namespace kirvana

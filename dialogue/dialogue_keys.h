// The dialogue's keys on FrontEnd: what each key asks of the dialogue, and the cursor moves
// carried out on the session. FrontEnd's key dispatcher hands over the keys it leaves alone.
#pragma once

#include <cstdint>
#include <string>

#include "dialogue/dialogue_session.h"

namespace kirvana {

enum class DialogueCommand {
    None,
    CursorBack,        // left arrow, EntitySelect 0
    CursorForward,     // right arrow, EntitySelect 1
    CursorBackTen,     // page down
    CursorForwardTen,  // page up
    CursorFirst,       // home
    CursorLast,        // end
    Delete,            // L or delete
    Edit,              // E
    Clear,             // C
    Write,             // W
    Load,              // R
    Leave,             // X
    OpenScreen,        // 1 to 9: `Screen`
    FocusProgram,      // P: `ProgramCombo`
    FocusDirectory,    // D: `DirectoryCombo`
    ToggleImperial,    // M: `ImperialButton`
    Tooling,           // T or S: `DialogueButton` 0
};

struct DialogueKeyResult {
    DialogueCommand Command = DialogueCommand::None;
    DialogueScreen Screen = DialogueScreen::None;
    bool operator==(const DialogueKeyResult&) const = default;
};

// The command of a key code as the keyboard gives it (letters their capitals, the arrows 37
// and 39, page up 33, page down 34, end 35, home 36, delete 46).
DialogueKeyResult DialogueKey(int code);

// Carries out a cursor command on the session (the count shown as "n / m" follows); false for
// any other command.
bool ApplyCursorCommand(DialogueSession& session, DialogueCommand command);

// The caption of `ImperialButton`: what a press switches to.
const char* ImperialButtonCaption(bool imperial);

// The caption of `DialogueButton` n: 0 the tooling ("&SETTINGS" without a turret), 1 to 9 the
// screens ("MOVE (&2)" on a machine without punch).
std::string DialogueButtonCaption(int n, bool hasTurret);

}  // namespace kirvana

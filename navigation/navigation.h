// Where the operator is on the panel, and what a key does there: the central key dispatcher
// `MainKey` of FrontEnd, the graphics panel's cursor modes, the form lock's exemptions and the
// forms a program switch closes. No toolkit here: the screens carry out the action a key gives.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kirvana {

struct MachineData;

// Key codes as the keyboard gives them.
namespace key {
inline constexpr int F1 = 112, F2 = 113, F3 = 114, F4 = 115, F5 = 116, F6 = 117, F7 = 118, F8 = 119, F9 = 120,
                     F10 = 121, F11 = 122, F12 = 123;
inline constexpr int PageUp = 33, PageDown = 34, End = 35, Home = 36, Left = 37, Up = 38, Right = 39, Down = 40;
inline constexpr int Delete = 46;
inline constexpr int Minus = 189, Subtract = 109;
}  // namespace key

// The navigation state of the panel.
struct Navigation {
    std::string CurrentForm;    // the form last opened from FrontEnd
    std::int16_t ViewMode = 0;  // 0 normal; 1, 2 zoom corners; 4 pan; 5 to 8 path keys
    bool GraphicsOn = false;    // the graphics or path buttons stand before the main buttons
    bool DialogueOn = false;    // the dialogue panel is showing
    bool LimitsOn = false;      // the punching zones and pads are shown
};

// What a key asks the screens to do.
enum class KeyAction {
    None,       // not in force here: ignored without sound
    Beep,       // F2 on a machine that has nothing for it
    ShowForm,   // open `Form`
    ShowModal,  // open `Form` modally
    EnterDialogue,
    LeaveDialogue,
    GraphicsChanged,  // the graphics panel came or went
    GraphicsButton,   // `Index` 1 redraw, 2 zoom in, 3 zoom out, 4 pan
    ToggleLimits,
    CursorKey,  // `Index` 1 left, 2 right, 3 up, 4 down, 6 select
    CursorCancel,
    PathKey,  // `Index` 1 first, 2 previous, 3 next, 4 last, 5 split, 6 select
    PathCancel,
    ChangeProgram,  // `Index` the slot
};

struct KeyResult {
    KeyAction Action = KeyAction::None;
    std::string Form;
    int Index = 0;
    bool operator==(const KeyResult&) const = default;
};

// The dispatcher every form hands the keys it doesn't use. `key` is a key code as the keyboard
// gives it: a letter is its capital, F1 is 112 (so a lower-case letter is no key here). Updates the navigation state as
// the key says (CurrentForm, GraphicsOn, ViewMode, DialogueOn) and gives what the screens must do.
KeyResult MainKey(Navigation& nav, const MachineData& machine, bool formsLocked, int key);

// The graphics panel's buttons (1 redraw, 2 zoom in, 3 zoom out, 4 pan): sets the view mode
// they leave and gives TextPanel's caption ("" where the cursor prompt stands).
std::string GraphicsButtonPressed(Navigation& nav, int index);
// The cursor panel's buttons (1 to 4 move, 6 select) and its exit.
void CursorButtonPressed(Navigation& nav, int index);
void CursorCancelled(Navigation& nav);

// The captions of MainButton 1 to 7 on this machine.
std::vector<std::string> MainButtonCaptions(const MachineData& machine);
// The captions of PathButton 1 to 6 in the present view mode ("" for a button not in use), and
// of the panel's exit button.
std::vector<std::string> PathButtonCaptions(std::int16_t viewMode);
std::string PathExitCaption(std::int16_t viewMode);
// The heading over the path keys: "VISUAL RESTART" while they pick a restart hit, else "".
std::string PathHeading(std::int16_t viewMode);
// What TextPanel says in the present view mode.
std::string CursorPrompt(std::int16_t viewMode);

// The forms a lock leaves enabled.
bool ExemptFromLock(const std::string& form);
// The forms ChangeProgram closes first when one of them is showing.
const std::vector<std::string>& FormsClosedByProgramChange();

}  // namespace kirvana

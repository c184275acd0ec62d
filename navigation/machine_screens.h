// The logic behind the machine and status screens that the commands don't hold: the menus of
// MachineForm and StatusMenuForm, the keys of the jog screen, a jog press from its start to its
// end, and the texts the load and move screens start from.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "system/machine_commands.h"

namespace kirvana {

// A menu button: its caption ("&" marks the key) and the form it opens.
struct MenuEntry {
    const char* Caption;
    const char* Form;
};
inline constexpr std::array<MenuEntry, 6> MachineMenu = {{{"&LOAD POSITIONS", "LoadForm"},
                                                          {"MO&VE / PUNCH", "MoveForm"},
                                                          {"&JOG", "XYJogForm"},
                                                          {"XY &POSITION", "XYPositionForm"},
                                                          {"&ZT POSITION", "TCPositionForm"},
                                                          {"&SETUP", "SetupForm"}}};
inline constexpr std::array<MenuEntry, 3> StatusMenu = {{{"&MACHINE STATUS", "MachineStatusForm"},
                                                         {"&PLASMA STATUS", "PlasmaStatusForm"},
                                                         {"&VIEW PROGRAM", "ViewProgForm"}}};
inline constexpr const char* ExitCaption = "E&XIT";

// The key of a caption: the character behind "&", in capitals; 0 when there is none.
int MnemonicOf(const std::string& caption);

// The direction an arrow key jogs (left X minus, right X plus, up Y plus, down Y minus); none for
// any other key.
std::optional<JogDirection> JogDirectionOfKey(int code);

// The letter keys of the jog options: A to F the distances "0.01" up to "100", G continuous,
// H to N the speeds 1 to 100.
struct JogOptionKey {
    bool Speed = false;  // a speed option, else a distance option
    int Option = -1;     // the option's number: 0 to 6
};
std::optional<JogOptionKey> JogOptionOfKey(int code);

// One press of a jog key or JogButton, from key down to its end. However a press ends (release,
// finger off the button, focus lost, form closed), the key up goes out, also after a refused
// key down; a press that is already in progress gives no second key down of the same direction.
class JogHold {
public:
    // Key down: the interlock and the direction's text. The refusal is for the warning screen.
    Refusal Press(Process& process, Conversation& talk, JogDirection direction);
    // Key up: "M828=0" and "M829=0" when a press is in progress; false when none was.
    bool End(Conversation& talk);
    bool Held() const { return held_; }

private:
    bool held_ = false;
    std::optional<JogDirection> direction_;
};

// LoadForm's four boxes on activation: Q10 to Q13 at full precision.
std::array<std::string, 4> LoadBoxTexts(Conversation& talk);
// The text a value box shows for a number entered on the pad: full precision.
std::string BoxText(double value);

// MoveForm's MoveList: one entry per station of the machine, its number and the tool it holds
// in the active slot's table ("01  RND 10.0"); a machine without stations offers station 1.
std::vector<std::string> MoveStationEntries(const Process& process);

// MachineForm's feed buttons: the feed override of the last tick changed by the step and sent;
// kept as the poll's value so that presses between two ticks add up.
void StepFeed(Process& process, Conversation& talk, int step);

}  // namespace kirvana

// The operator's hand commands to the machine: reference, load positions, move and punch,
// turret, carriage, jog, feed, block skip, batch and the change of the active slot. None drives
// an axis: each writes variables and sets a request bit of the card, which does the work.
// Each command first tests its interlock on the state the last poll tick left; a refused
// command sends nothing (load excepted: it writes its positions first) and gives the two-line
// warning text that the warning screen shows.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "system/slots.h"

namespace kirvana {

struct Process;
class Conversation;
class StartupPlatform;
class CardLink;

// The captions of the command buttons and boxes, as the forms show them.
inline constexpr std::array<const char*, 5> ReferenceButtonCaptions = {
    "&REFERENCE ALL", "REFERENCE &AXIS", "REFERENCE &CLAMPS", "REFERENCE &TURRET", "REFERENCE &INDEX"};
inline constexpr const char* SetupReferenceCaption = "&REFERENCE CLAMPS";
inline constexpr const char* CarriageCaption = "&CARRIAGE";
struct FeedButton {
    const char* Caption;
    int Step;
};
inline constexpr std::array<FeedButton, 4> FeedButtons = {
    {{"- 20 (&1)", -20}, {"+ 20 (&4)", 20}, {"- 5 (&2)", -5}, {"+ 5 (&3)", 5}}};
inline constexpr std::array<const char*, 4> LoadBoxCaptions = {"X :  &1", "Y :  &2", "X :  &3", "Y :  &4"};
inline constexpr std::array<const char*, 3> MoveBoxCaptions = {"X  POSITION :  &1", "Y  POSITION :  &2",
                                                               "INDEX  POSITION :  &3"};
inline constexpr std::array<const char*, 2> MoveButtonCaptions = {"&MOVE", "&PUNCH"};
inline constexpr std::array<const char*, 2> BlockSkipCaptions = {"BLOCK SKIP &1", "BLOCK SKIP &2"};
inline constexpr std::array<const char*, 2> BatchButtonCaptions = {"&SET", "&CLEAR"};

// A refusal: the warning's text (first line, two line feeds, second line), or nothing.
using Refusal = std::optional<std::string>;

// The interlocks, each on the machine state of the last tick.
Refusal ReferenceInterlock(const Process& process);
// Load is refused only while a logic message other than 16 stands: `logicBits` is P1020.
Refusal LoadInterlock(const Process& process, std::int32_t logicBits);
Refusal MoveInterlock(const Process& process);  // Move and Punch of MoveForm
Refusal CarriageInterlock(const Process& process);
Refusal JogInterlock(const Process& process);
Refusal TurretMoveInterlock(const Process& process);
Refusal TurretPunchInterlock(const Process& process);
Refusal SlotChangeInterlock(const Process& process);

// MachineForm.ReferenceButton 0 to 4: all, axes, clamps, turret, index.
Refusal ReferenceMachine(Process& process, Conversation& talk, int index);
// SetupForm's "&REFERENCE CLAMPS" and "&CARRIAGE".
Refusal ReferenceClamps(Process& process, Conversation& talk);
Refusal MoveCarriage(Process& process, Conversation& talk);

// MachineForm.FeedButton: the feed override changed by `step` (-20, +20, -5, +5) and sent as "%".
// Gives the new feed override.
std::int32_t ChangeFeed(Conversation& talk, std::int32_t feedOverride, int step);

// LoadForm: the four boxes from Q10 to Q13 on activation; a LoadButton (1 or 2) writes its two
// values, then reads the messages, tests and sends the request bit.
std::array<float, 4> ReadLoadPositions(Conversation& talk);
Refusal LoadPosition(Process& process, Conversation& talk, int button, double x, double y);

// MoveForm: "&MOVE" (punch false) or "&PUNCH" to the position with the station.
Refusal MoveToPosition(Process& process, Conversation& talk, bool punch, std::int32_t station, double x, double y,
                       double index);

// TurretForm: the turret to a position ("M802="), and a punch there.
Refusal MoveTurret(Process& process, Conversation& talk, std::int32_t position);
Refusal PunchTurret(Process& process, Conversation& talk, std::int32_t position);

// XYJogForm.
enum class JogDirection { XPlus, XMinus, YPlus, YMinus };
inline constexpr int JogSpeedOptions = 7;     // "1 (&H)" ... "100 (&N)"
inline constexpr int JogDistanceOptions = 7;  // "CONT (&G)", "100 (&F)" ... "0.01 (&A)"
std::string JogSpeedCaption(int option);      // option 0 to 6
std::string JogDistanceCaption(int option);   // option 0 (continuous) to 6
struct JogSettings {
    std::array<std::string, 4> ButtonCaptions;  // X+, X-, and the two Y buttons by orientation
    int SpeedOption = -1;                       // the option that is set, -1 none
    int DistanceOption = -1;
    std::string FormValueText;  // M876
};
// The activation: captions by MachineOrientation, the options from M876, M820, M822, M821;
// values that fit no option send "M820=0" and "M822=4".
JogSettings ActivateJog(const Process& process, Conversation& talk);
void SetJogSpeed(Conversation& talk, int option);
void SetJogDistance(Conversation& talk, int option);
Refusal JogKeyDown(Process& process, Conversation& talk, JogDirection direction);
// Sent always, also after a refused key down.
void JogKeyUp(Conversation& talk);

// StatusMenuForm: block skip 1 or 2 on or off, and both read on activation.
void SetBlockSkip(Conversation& talk, int which, bool on);
std::array<bool, 2> ReadBlockSkips(Conversation& talk);

// BatchForm: "&SET" sends the counters and writes the active slot's `.btc`; "&CLEAR" zeroes them.
// False when the `.btc` could not be written (the card has the counters all the same).
bool SetBatch(Process& process, Conversation& talk, const SlotBatch& batch);
bool ClearBatch(Process& process, Conversation& talk);
// The shutdown's batch: the active slot's counters read from the card (with the card off there is
// nothing newer than what the slot holds), then its `.btc` written. False when it could not be.
bool SaveBatchAtShutdown(Process& process, Conversation& talk);

// FrontEnd.ProgramButton: the active slot changes, Control.cfg is written and the card gets the
// slot's blocks and hit counter.
Refusal ChangeActiveSlot(Process& process, StartupPlatform& platform, CardLink* link, int slot);

}  // namespace kirvana

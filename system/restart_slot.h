// The restart of a slot's program on the card: the restart point found on the slot's files with
// the machine's interlock, the restart program (program 5) written and downloaded, and the wait
// for the cycle start that hands the card over to the main program.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "analysis/restart.h"
#include "analysis/reverse.h"
#include "system/machine_commands.h"

namespace kirvana {

struct Process;
class Conversation;

// The words of a refused restart, as a two-line warning.
inline constexpr const char* RestartRefusalFirst = "Can Not Restart";
inline constexpr const char* RestartRefusalSecond = "While Machine Is Running or In Error !";

// Refused while the machine runs, holds or stands in a logic message other than 16.
Refusal RestartInterlock(const Process& process);

// The walk's settings for the slot: the machine, the slot's turret and plasma settings.
ReverseSettings SlotReverseSettings(const Process& process, int slot);

// The restart from hit `hit` of drawing record `record` of the slot, or from block `block` of
// its main text. The message of a refusal or a fault; empty when `point` was filled.
std::string FindSlotRestart(const Process& process, int slot, std::int32_t record, std::int32_t hit,
                            RestartPoint& point);
std::string BlockSlotRestart(const Process& process, int slot, std::int32_t block, RestartPoint& point);

// The restart program's lines for the slot, with "Gather.rep" of the controller directory, the
// reload answer and the slot's turret and subroutine file.
std::vector<std::string> SlotRestartProgram(const Process& process, int slot, const RestartPoint& point, bool reloaded);

// Writes the lines to RootDir + "DownPrg.tmp" and downloads the file, logged as "DownProgram".
// False when the file could not be written; nothing is sent then.
bool DownRestartProgram(Conversation& talk, const std::string& rootDir, const std::vector<std::string>& lines);

// What the wait for the cycle start asks of the screen.
struct GetGoingHooks {
    std::function<void(bool lit)> Blink;  // the cycle start label green (lit) or back
    std::function<bool()> ExitRequested;  // the operator left through the exit button
    std::function<void()> ProcessEvents;  // screen events between reads
};

// "Restart.txt" anew, the hits and slot 5 to the card, the blinking wait until the status word
// shows the machine in cycle or running, then the slot and the run command. True when the
// machine started; on an exit the active slot goes back to the card.
bool GetGoing(Conversation& talk, const Process& process, int slot, const RestartPoint& point,
              const GetGoingHooks& hooks);

}  // namespace kirvana

// The logic of the restart screens: the block list of BlockStartForm read by record from the
// slot's files, what RestartForm shows of a restart point, and the steps of RestartForm's
// activation (interlock, reload question, program 5, the wait for the cycle start).
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "navigation/program_view.h"
#include "system/restart_slot.h"

namespace kirvana {

struct Process;
class Conversation;

// The restart under way: the slot and its point, found by the block list, the plot or the stop.
struct RestartSession {
    int Slot = 0;  // 0: no restart point
    RestartPoint Point;
    // Why the point is shown without a download ("The Restart Block Was Not Reached"); else empty.
    std::string NotReached;
};

// The rows of the slot's main program for the block list: every record of `.RA1` and `.RM1`,
// the record number being the block the restart starts at. `fault` gets the operator's message
// when the slot holds no program or its block files do not match its record count.
std::vector<ViewRow> BlockListRows(const Process& process, int slot, std::string& fault);

// BlockStartForm's select: the restart from record `block` of the slot. The message of a
// refusal or fault (the session then unchanged), else empty.
std::string SelectRestartBlock(const Process& process, int slot, std::int32_t block, RestartSession& session);

// The restart after a stop, or at a hit picked on the plot: hit `hit` of drawing record `record`.
std::string SelectRestartHit(const Process& process, int slot, std::int32_t record, std::int32_t hit,
                             RestartSession& session);

// The restart after a stop: the first hit the machine has not made, from the hit file walked by
// the poll (or, before any run was followed, the card's hit counter). The message of a refusal
// or fault, else empty.
std::string SelectStopRestart(const Process& process, int slot, RestartSession& session);

// RestartForm's labels.
struct RestartDisplay {
    std::string Tool;         // "T" and the station's tool text; empty without a turret
    std::string Measurement;  // "IMPERIAL" or "METRIC"
    std::string X, Y;         // the target's position, 2 decimals
    std::string C;            // "C" and the angle for an autoindex station, else empty
    std::string Hits;         // "Completed Hits : " and the hits
    std::string Kerf;         // under the profiler: "G4" and the side, then the kerf text
    std::string Note;         // why nothing is sent (the block not reached), else empty
};
RestartDisplay RestartDisplayOf(const Process& process, const RestartSession& session);

// What RestartForm's activation asks of the screen.
struct RestartFormHooks {
    std::function<void(const std::string&)> Refuse;  // a warning with one OK button
    std::function<bool(const std::string&)> Ask;     // a question; true for yes
    GetGoingHooks Going;
};

// How the activation ended.
enum class RestartOutcome { Refused, NotSent, DownloadFault, Left, Started };

// RestartForm's activation: refused while the machine runs or is in error; the reload question
// when a reposition lies behind the target; program 5 written and downloaded; GetGoing. Nothing
// is sent for a point whose block was not reached or when the program cannot be written.
RestartOutcome RunRestart(Conversation& talk, const Process& process, const RestartSession& session,
                          const RestartFormHooks& hooks);

// The question put before a restart behind a reposition.
inline constexpr const char* ReloadQuestion = "Have You Reloaded The Sheet ?";

}  // namespace kirvana

// The status poll: on each tick of the poll timer the card's status word, its requests, and
// every display the visible forms show. Nothing in the card pushes data: this is the only thing
// that makes the front end follow the machine.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace kirvana {

struct Process;
class ControllerPlatform;
class CardLink;

// The cycle's own values between ticks. `Running`, `InFeedhold` and `InCycle` stand in the
// process record, where every interlock reads them.
struct PollState {
    std::int32_t StatusWord = 0;
    bool WasRunning = false;
    std::int16_t HoldBit = 0;                 // StatusWord and 4096
    bool ProfilerHead = false, ProfilerHeadBefore = false;
    bool ProfilerLatch = false, ProfilerLatchBefore = false;
    std::array<float, 4> Position{};          // X, Y, third axis, turret angle as shown
    std::array<float, 4> PrevPosition{};
    std::array<float, 3> ReferenceOffset{};   // Q27, Q28, and a third value kept at 0
    float TurretOffset = 0;                   // Q29
    std::array<float, 2> WorkOffset{};        // Q25, Q26
    std::array<float, 4> ClampActual{};       // M835 to M838
    float FeedOverride = 0;                   // "%", whole number
    float P111Value = 0;
    float RunTime = 0;                        // Q17 at 2 places
    std::int16_t CurrentStation = 1;
    std::int32_t LastMessageNo = -1, LastLogicBits = -1;
    std::int32_t LastSlotShown = -1, LastRecordShown = -1;   // the block the viewing screen lights
    int LastSelectedMessage = 0;
    bool LastNewProgramsReceived = false;
    std::int16_t SkipFlags = 0;               // 1: M873, 2: M874
    // Per slot: a machine run was seen since the slot last changed.
    std::array<bool, 2> RunMarked{};
    // The slot whose hit file is walked, and the `.dr1` shorter than the counter was reported.
    std::array<bool, 2> HitFileShortReported{};
};

// Clears the values the cycle starts from: the block indication and the message list.
inline void ResetPollState(PollState& poll) {
    poll.LastMessageNo = -1;
    poll.LastLogicBits = -1;
    poll.LastSlotShown = -1;
    poll.LastRecordShown = -1;
}

// One cycle, in its order: status word and edges, the card's requests, hits, positions,
// current block, status colours and messages, batch, run time, plasma, the log size.
void PollCycle(Process& process, ControllerPlatform& platform, CardLink* link);

// The poll timer's event: one cycle, then, while the poll is meant to run, the timer put back on
// `PollIntervalMs` if it ran with another interval (the restart delay applies to one wait only).
void PollTick(Process& process, ControllerPlatform& platform, CardLink* link);

// The message list from the message number and the logic bits (also called by MessageForm
// when its selection moves).
void UpdateMessageList(Process& process, std::int32_t messageNo, std::int32_t logicBits);

// MachineStatusForm's rows (clamps less the station's X offset, the station, its tool and
// values) and SetupForm's clamp panel, from the clamps and the station the cycle last read.
// The cycle calls them when the card reports new clamps, a station or offsets; a form may call
// them when it is shown.
void UpdateMachineStatus(Process& process);
void UpdateClampPanel(Process& process);

// "m:ss" of a run time in seconds; below a minute "0:ss".
std::string RunTimeText(float seconds);

}  // namespace kirvana

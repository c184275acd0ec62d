// The Gather pass: walks the motion texts M1 and M2 with the Reverse pass's walk of the language
// up to a given block and stops there, leaving the machine's state at that block as a record,
// as the report "Gather.txt", and as the list of repositions passed on the way, "Gather.rep",
// which a restart replays.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "analysis/entity.h"
#include "analysis/reverse.h"

namespace kirvana {

// The machine's state at a block.
struct GatherState {
    std::int16_t Gathered = 0;  // -1: the block was reached
    std::int16_t BlockNo = 0;   // N of the block reached; 0 when none or negative
    std::int16_t Imperial = 0;
    std::int16_t Incremental = 0;
    float G92X = 0, G92Y = 0;     // the origin that G92 (and G93) set, without the G56 shifts
    float G56X = 0, G56Y = 0;     // the G56 shifts
    float Reposition = 0;         // the sum of the G95 shifts so far, mm
    std::int16_t MirrorCode = 0;  // 0 none, 1 X, 2 Y, 3 both
    std::int16_t Station = 0;
    std::int16_t Profiler = 0;
    std::int16_t PlasmaOn = 0;
    std::int16_t KerfSide = 0;                // 0 none, 1 left (G41), 2 right (G42)
    std::array<float, 10> ProfileSettings{};  // P101 to P110: element 0 is P101
    float X = 0, Y = 0, C = 0;
    std::int16_t Hits = 0;  // hits done before the block
};

void CopyGatherState(const GatherState& source, GatherState& target);

// The state the walk's modal state stands for (all but `Gathered`, `BlockNo` and `Hits`);
// `loadLimitX` is the machine's low X limit, from which the repositions are summed.
GatherState ModalGatherState(const ReverseState& state, float loadLimitX);

// The block to stop at, in the numbering of `MainBlock` and `SubBlock` of an entity, with the
// repetition of its subroutine (`CallState` of the entity), and the texts that give `BlockNo`.
struct GatherTarget {
    std::string MainBlockText;
    std::string SubBlockText;
    std::int16_t TargetMain = 0;
    std::int16_t TargetSub = 0;
    SubCall CallState;
};

// The sixteen lines of a state in "Gather.txt", from "Gathered     : " to "Hits So Far  : ".
std::string GatherStateText(const GatherState& state);

// The stop test after a line is read at `depth` with the walk's counts and call states. Beside
// the counts, a depth above 0 must run the target's call (its code and label).
bool GatherReached(const GatherTarget& target, int depth, std::int16_t mainCount, std::int16_t depthCount,
                   const SubCall& depthCallState);

struct GatherResult {
    GatherState State;
    std::string Report;                    // the body of "Gather.txt" after its head lines
    std::vector<std::string> Repositions;  // the lines of "Gather.rep", "******" last
    bool FileFault = false;                // M1 missing, or a file could not be written
    std::string FaultFile;
};

// The pass on texts in memory.
GatherResult GatherTexts(const std::vector<std::string>& m1, const std::vector<std::string>& m2,
                         const GatherTarget& target, const ReverseSettings& settings);

// The places where the repetitions of a G68/G69 call read the line `target` names (its RETURN),
// from the target's repetition on: up to `count` of them, in one walk; fewer when the walk ends
// first.
std::vector<PointF> GatherRepetitionEnds(const std::vector<std::string>& m1, const std::vector<std::string>& m2,
                                         const GatherTarget& target, std::size_t count,
                                         const ReverseSettings& settings);

// The entry: reads stem + "M1" and stem + "M2", writes "Gather.txt" in settings.ServiceDir
// (program and directory in its head) and "Gather.rep" in `controllerDir`, and fills `state`.
[[nodiscard]] GatherResult GatherPass(const std::string& directory, const std::string& program, const std::string& stem,
                                      const GatherTarget& target, GatherState& state, const ReverseSettings& settings,
                                      const std::string& controllerDir);

namespace gather_message {
inline constexpr const char* ExcessiveBackoff = " G95 with Excessive Backoff distance (J) ";
inline constexpr const char* ExcessiveReturn = " G95 with Excessive Return distance (K) ";
}  // namespace gather_message

}  // namespace kirvana

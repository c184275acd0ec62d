// The restart of a stopped program: the restart point (an entity and a hit), the machine's state
// there through the Gather pass, the split of a cycle into its hits ("SplitCyc.drw"), and the
// text of the restart program (program 5 of the card) that puts the card into that state,
// finishes the interrupted entity from the hit and hands over to the main program.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "analysis/entity.h"
#include "analysis/expand.h"
#include "analysis/gather.h"
#include "tooling/turret.h"

namespace kirvana {

// The four states of a restart, in this order.
struct RestartRecord {
    GatherState ResumeState;  // the state the program returns to at the end of the restart
    GatherState TargetState;  // the state of the restart point
    GatherState EntryState;   // the state at the target block as first gathered
    GatherState BlockState;   // block number, offsets, mirror, measurement, coordinates written back
};

enum class RestartKind : std::int16_t {
    None = 0,
    Block = 1,      // from a block chosen in the block list
    Point = 2,      // from a Punch or a point entity
    Cycle = 3,      // inside a Linear, Grid or Arc Pattern, at a hit
    Profile = 4,    // inside a Line or Arc Profile
    SubPoint = 12,  // as 2, 3, 4 for an entity inside a subroutine: the rest of the call too
    SubCycle = 13,
    SubProfile = 14,
};

// The kind of restart an entity asks for.
RestartKind RestartKindOf(const EntityRec& entity);

// The restart of one slot.
struct RestartPoint {
    RestartRecord Record;
    RestartKind Kind = RestartKind::None;
    EntityRec RestartEntity;
    std::int16_t RestartHit = 1;  // from 1
    std::int32_t HitsBefore = 0;  // hits done by earlier entities
    // For an entity inside a G68/G69 call: where each repetition still open starts (the place
    // the one before it ends at), in their order.
    std::vector<PointF> RepetitionStarts;
};

// The X, Y and C of hit n (from 1) of a Punch or pattern into `state`; false when the entity has
// no hit n.
bool HitPosition(const EntityRec& entity, std::int32_t n, GatherState& state);

// Writes `splitPath` from nothing: the Sheet record of the drawing with `RecordNo` 1, then the
// entity's hits as Punch records; the count of records into record 1. The number of hits, or
// nothing when a file could not be read or written.
std::optional<std::int32_t> SplitCycle(const std::string& drawingPath, const EntityRec& entity,
                                       const std::string& splitPath);

// The G26 or G28 lines that finish a pattern from hit `hit` on (numbers in mm, absolute).
std::vector<std::string> WriteCycleRest(const EntityRec& entity, std::int16_t hit);

// The cut that finishes a Line or Arc Profile from the position (x, y); `orientation` is the
// machine's sense of G102 (1: clockwise).
std::vector<std::string> WriteProfileRest(const EntityRec& entity, float x, float y, std::int16_t orientation);

// The rest of the subroutine call of an entity that stands inside one: the repetition under
// way from the block after the entity's, and the repetitions still open, each from its place:
// a G98 copy from its step of the grid, a G68/G69 repetition from `repetitionStarts` (a
// repetition beyond them is written without a place). `m2` is the subroutine file's lines.
std::vector<std::string> WriteSubroutineTail(const EntityRec& entity, const GatherState& blockState,
                                             const std::vector<std::string>& m2,
                                             const std::vector<PointF>& repetitionStarts);

// Whether the operator is asked "Have You Reloaded The Sheet ?": when the target state has a
// reposition behind it.
bool AsksReload(const GatherState& targetState);

// The text behind each G95 line of the restart: after a reload "P6=-999 ", else "P6=1 ".
std::string ReloadWord(bool reloaded);

// What the restart program is written from.
struct RestartProgramInput {
    const RestartPoint* Point = nullptr;
    std::vector<std::string> Repositions;  // the lines of "Gather.rep"
    std::string Reload;                    // `ReloadWord`, behind each G95 line
    bool HasProfiler = false;              // the machine has a profiler
    std::string ToolWord;                  // the station's tool word ("T" and its number), or empty
    std::int16_t Orientation = 1;
    std::vector<std::string> M2;  // the subroutine file, for the tail of a call
};

// The lines of program 5, "CLOSE" first and last.
std::vector<std::string> RestartProgramLines(const RestartProgramInput& input);

// The T word of a station: "T" and the station's T number; empty for no station.
std::string StationToolWord(const StationTable& stations, std::int16_t station);

// The run command after the cycle start: "B" and the slot, then, when the target has a block
// number, that of `blockState` / 100000 as a number text and "R": block 123 of slot 1 gives
// "B1.00123R".
std::string RestartRunCommand(int slot, const GatherState& targetState, const GatherState& blockState);

// What the card is sent by the restart, in order, around the wait for the cycle start: before
// it (`M869=` the hits done, `M811=5`), after the start (`M811=` the slot, the run command),
// and on leaving without a start (`M811=` the slot).
struct RestartCommands {
    std::vector<std::string> BeforeStart;
    std::vector<std::string> AfterStart;
    std::vector<std::string> OnExit;
};
RestartCommands GetGoingCommands(int slot, const RestartRecord& record);

// "Restart.txt": the head lines of the reports and "BLOCK     :  " with the block number.
std::string RestartReport(const std::string& program, const std::string& directory, const std::string& time,
                          const GatherState& blockState);

// Finds the restart point at hit `hit` of record `record` of the slot's drawing (stem +
// "drw"): the entity, its kind, the states through the Gather pass. Empty on success, else
// the message for the operator; the point is then unchanged.
std::string FindRestartPoint(const std::string& stem, const std::string& program, const std::string& directory,
                             std::int32_t record, std::int32_t hit, const ReverseSettings& settings,
                             const std::string& controllerDir, RestartPoint& point);

// The restart from block `block` (from 1) of the main text: the Gather pass at it into
// `EntryState`, at the following line into `TargetState`, copied to `BlockState` and
// `ResumeState`; kind 1.
std::string BlockRestartPoint(const std::string& stem, const std::string& program, const std::string& directory,
                              std::int32_t block, const ReverseSettings& settings, const std::string& controllerDir,
                              RestartPoint& point);

}  // namespace kirvana

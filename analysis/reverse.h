// The Reverse pass: reads the motion texts M1 (main) and M2 (subroutines) back into the
// entities of a drawing file, with a modal machine model of its own, checks the program against
// the travel limits and the turret, and reports to "Reverse.txt". Its critical errors bar the
// program from the machine.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "analysis/drawing_file.h"
#include "analysis/entity.h"
#include "analysis/program_header.h"
#include "core/config.h"
#include "core/words.h"
#include "tooling/settings.h"
#include "tooling/turret.h"
#include "translate/pass_messages.h"

namespace kirvana {

// What the pass needs of the installation and the slot, filled by the caller.
struct ReverseSettings {
    MachineTravel Travel;  // the load position, where the program starts, and the limits
    std::int16_t ClampCount = 0;
    std::int16_t MachineType = 0;
    std::int16_t MachineOrientation = 1;  // the sense of G102 (Machine.dat line 3)
    StationTable Stations;                // the slot's turret: station 1 is element 0
    ToolRecord PlasmaTool;                // the tool of profile entities
    SettingsArray ProgramSettings = [] {  // the program's plasma settings; NoValue where unset
        SettingsArray unset;
        unset.fill(NoValue);
        return unset;
    }();
    std::string ServiceDir;  // where "Reverse.txt" is written
    // The report's time line, "dd/mm/yy hh:mm"; the local time when not set.
    std::function<std::string()> Now;
    // Bounds on the work of the walk, so that a program that loops for ever (a GOTO back, a
    // call that never finds its label) or reads huge lines again and again ends soon with a
    // critical error. The most lines read, the ones passed over to a label included:
    std::int64_t MaxBlocks = 20'000'000;
    // The most jumps: GOTOs taken, calls made and repetitions started.
    std::int64_t MaxJumps = 100'000;
    // The most characters scanned in the blocks worked on, each block counting 32 beside its
    // characters for its own work.
    std::int64_t MaxCharacters = 16'000'000;
    // The most hits the pass walks over all (the outlines of grids and the limit checks of
    // every pattern), so that loops of huge patterns end too; reported as the block bound.
    std::int64_t MaxHitWork = 50'000'000;
};

ReverseSettings ReverseSettingsFrom(const MachineData& machine, const Directories& dirs, const StationTable& stations,
                                    const ToolRecord& plasmaTool);

// The `.sts` slot statistics: the hits of all punches and patterns, the travel length (mm)
// between and along them, and the cut length (mm) of the profiles.
struct ProgramStats {
    std::int32_t Hits = 0;
    float Travel = 0;
    float CutLength = 0;
};

// The pass's modal state, set to its start values at each run.
inline constexpr int MaxDepth = 64;
struct ReverseState {
    float PosX = 0, PosY = 0, PosC = 0;
    float PrevX = 0, PrevY = 0, PrevC = 0;
    float OriginX = 0, OriginY = 0;
    float G56X = 0, G56Y = 0;  // the part of the origin that G56 shifts gave since the last G53
    float LastHitX = 0, LastHitY = 0;
    float LimitXLow = 0, LimitXHigh = 0, LimitYLow = 0, LimitYHigh = 0;
    std::int16_t Station = 0;
    bool Imperial = false;
    bool Incremental = false;
    bool MirrorX = false, MirrorY = false;
    bool Profiling = false;
    bool PlasmaOn = false;
    std::int16_t ArcStarted = 0;
    std::int16_t CutterSide = 0;
    std::int16_t PathFlag = 0;
    float FeedValue = 0;
    SettingsArray ProcessSettings{};
    std::int16_t Depth = 0;
    std::array<std::int16_t, MaxDepth + 1> BlockCount{};
    std::array<SubCall, MaxDepth + 1> CallSpecs{};
    std::array<SubCall, MaxDepth + 1> CallStates{};
    std::array<std::int16_t, MaxDepth + 1> CallLabel{};
    std::array<std::size_t, MaxDepth + 1> CallLine{};  // next line of the file each depth reads
    std::int16_t SkipTo = 0;
    bool Skipping = false;
    std::int16_t RecordCounter = 1;
    std::int16_t CriticalCount = 0;
    bool WarnedX = false, WarnedY = false;
    ProgramStats Stats;
    // The first measurement code (G70 or G71) has been seen; -1 when it asked for inches.
    bool MeasurementSeen = false;
    std::int16_t MeasurementMark = 0;
    // The last nibble step that was given; the step of a nibbling block without one.
    double NibbleStep = 2;
    ProgramParameters Parameters;  // P12 to P99 of this pass
};

struct ReverseResult {
    // The pass's result: the critical count, or 1 when the words of M1 were rejected. Non-zero
    // bars the program.
    std::int16_t Result = 0;
    std::int16_t CriticalCount = 0;
    bool WordsRejected = false;
    bool Stopped = false;      // the block bound was reached
    bool FileFault = false;    // M1 missing, or the drawing or the report could not be written
    std::string FaultFile;     // with FileFault: the file
    std::int32_t Records = 0;  // records of the drawing, the Sheet included
    std::int64_t Blocks = 0;   // lines read, from M1 and from every repetition in M2
    ProgramStats Stats;
};

// The pass on texts held in memory: the drawing goes to `drawing` (from record 1), the report
// body (no time lines) to `report`. `toolChanges` counts the valid tool changes.
ReverseResult ReverseTexts(const std::vector<std::string>& m1, const std::vector<std::string>& m2, DrawingFile& drawing,
                           std::string& report, std::int16_t& toolChanges, const ReverseSettings& settings);

// The entry: reads stem + "M1" and stem + "M2", writes stem + "drw" and ServiceDir +
// "Reverse.txt" (program name, directory and time in its head). When the words of M1 are
// rejected the pass ends before the drawing is created: an older drawing stays.
[[nodiscard]] ReverseResult ReversePass(const std::string& stem, const std::string& programName,
                                        const std::string& directory, std::int16_t& toolChanges,
                                        const ReverseSettings& settings);

// The messages of the report beyond those the passes share, with their blanks.
namespace reverse_message {
inline constexpr const char* ExcessiveBackoff = " Reposition with Excessive Backoff distance (J) ";
inline constexpr const char* ExcessiveReturn = " Reposition with Excessive Return distance (K) ";
// The faults of this build's bounds.
inline constexpr const char* TooDeep = " Subroutine depth exceeds 64 ";
inline constexpr const char* BlockLimit = " Program does not end: block limit reached ";
inline constexpr const char* LabelNotFound = " Block number not found (N";
inline constexpr const char* TooManyRecords = " Drawing exceeds 32767 records ";
inline constexpr const char* TooManyHits = " Pattern exceeds 4000000 hits ";
inline constexpr const char* TooManyBlocks = " Block count exceeds 32767 ";
inline constexpr const char* NumberOverflow = " Number does not fit 16 bits ";
}  // namespace reverse_message

}  // namespace kirvana

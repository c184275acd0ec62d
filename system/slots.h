// The two active slots: what a slot holds, its files `Actvprg`n`.*` in RootDir, the selection
// of a program into the active slot through every pass, and the load of both slots at start.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "controller/card_link.h"
#include "controller/download.h"
#include "tooling/settings.h"
#include "tooling/turret.h"

namespace kirvana {

struct Process;
class StartupPlatform;
struct Directories;

// The records of `.W`k, the motion blocks with words, and the records of `.RA`k and `.RM`k.
struct SlotCounts {
    std::int16_t MapWordCount = 0;
    std::int16_t MotionBlockCount = 0;
    std::int16_t SourceRecordCount = 0;
};

// The `.sts` file: hits, travel and cut length of the program.
struct SlotStats {
    std::int32_t Hits = 0;
    float Travel = 0;
    float Cut = 0;
};

// The `.btc` file: parts per sheet, parts required, sheets required, completed sheets, and a
// fifth counter of the poll cycle.
using SlotBatch = std::array<std::int32_t, 5>;

struct SlotRecord {
    bool Present = false;
    std::string ProgramName;
    std::string ProgramDirName;
    std::string ProgramDirPath;
    std::int16_t SourceDialect = 1;
    std::string CommentOpen = "!";
    std::string CommentClose;
    std::string Material;
    float SheetX = 0, SheetY = 0;
    std::array<float, 4> Clamps{};
    float SlotLoadY = 0;
    std::int16_t ActiveStation = 1;
    std::int16_t DrawingRecords = 0;
    bool Imperial = false;
    SlotStats Stats;
    SlotBatch Batch{};
    PlasmaSetting PlasmaSettings;
    std::array<SlotCounts, 2> Counts;  // M1, M2
    std::int32_t HitFileRecords = 0;
    std::string ExpandedFilePath;
    bool ProgramStatsUsed = false;
    std::int32_t LastHitCount = 0, HitCount = 0, HitBase = 0, RunHitFile = 1, RunCount = 0;
};

// RootDir + "Actvprg" + slot + ".": the stem of the slot's files.
std::string SlotStem(const Directories& dirs, int slot);
// RootDir + "Actvprg" + slot + "." + extension.
std::string SlotFile(const Directories& dirs, int slot, const char* extension);
// The station block of a station of a slot's table.
StationBlock StationBlockOf(const Station& station);
// The plasma settings block of a plasma set.
PlasmaBlock PlasmaBlockOf(const PlasmaSetting& setting);
// The caption of the slot's program button on FrontEnd, naming the key F10 or F11.
std::string ProgramButtonCaption(int slot, const SlotRecord& record);
// The comment marks of a dialect, at selection or at the start-up load (dialect 5 differs).
void SetCommentMarks(SlotRecord& record, bool atStart);

// Indexes the card's program counter: A and M are read line by line together; every non-empty
// A line is a record of RA (80 characters) and RM (240, its M line); each letter of the M
// block is a word of W, pointing at the block and the record. Empty when the program has more
// records, blocks or words than the map's 16-bit numbers can hold, or when a file cannot be
// read or written: `fileFault` (when given) then names the file.
[[nodiscard]] std::optional<SlotCounts> BuildBlockMap(const std::string& aFile, const std::string& mFile,
                                                      const std::string& wFile, const std::string& raFile,
                                                      const std::string& rmFile, std::string* fileFault = nullptr);

// The motion block and source record of the card's word in program 1 to 4; 0 and 0 when the
// map doesn't exist or the program number is out of range.
struct SlotBlock {
    std::int16_t MotionBlockIndex = 0;
    std::int16_t SourceRecord = 0;
};
SlotBlock SlotBlockAt(const Process& process, int program, std::int32_t word);

// `.sts` and `.btc`; a missing file reads as zeros.
SlotStats ReadSlotStats(const Directories& dirs, int slot);
[[nodiscard]] bool WriteSlotStats(const Directories& dirs, int slot, const SlotStats& stats);
SlotBatch ReadSlotBatch(const Directories& dirs, int slot);
// The batch record from the card's four counters M863 to M866: the fifth value is M865 less M866
// while M864 and M865 are both set, and 0 otherwise.
SlotBatch BatchOfCounters(const std::array<std::int32_t, 4>& counters);
[[nodiscard]] bool WriteSlotBatch(const Directories& dirs, int slot, const SlotBatch& batch);
// `Actvprg`n`.cfg`.
[[nodiscard]] bool WriteSlotConfig(const Directories& dirs, int slot, const SlotRecord& record);
// False when the file is missing, short, or (`unreadable` set) there but cannot be read.
bool ReadSlotConfig(const Directories& dirs, int slot, SlotRecord& record, bool* unreadable = nullptr);

// Empties the slot and deletes its files.
void ClearSlot(Process& process, int slot);

// The outcome of a selection: the warning shown when it was refused; and, when the card failed
// the download or the slot's blocks, its last fault (already gone through the card fault path).
struct SelectOutcome {
    bool Selected = false;
    std::string Warning;
    std::optional<CardFault> Fault;
};
// The stages of a selection, each told as it begins, for a progress indication on the screen.
enum class SelectStage { Copy, Convert, Blend, Reverse, Index, Download };
inline constexpr int SelectStageCount = 6;
using SelectProgress = std::function<void(SelectStage)>;

// The turret table a selection works with.
enum class SelectTable {
    Machine,  // the machine's table over the slot's, with the program's `.stg` settings
    Slot,     // the slot's own table as it stands: the tools defined on the turret screen
};

// The Select button: the program `name` of `directory` into the active slot, through every
// pass, then downloaded within the card operation's deadline. A refusal is shown through the
// platform's warning screen. Once the slot is up to date, the clamp panel shows its demands.
SelectOutcome SelectProgram(Process& process, StartupPlatform& platform, CardLink* link, const std::string& directory,
                            const std::string& name, const SelectProgress& progress = {},
                            SelectTable table = SelectTable::Machine);

// The active slot's program through every pass again, keeping the slot's turret table: after
// tools were defined on the turret screen the drawing, the hits and the card's programs follow
// them. Not selected (and nothing shown) when the slot is empty.
SelectOutcome ConvertSlotAgain(Process& process, StartupPlatform& platform, CardLink* link);

// Takes up both slots from their files at start and downloads them.
void LoadActiveSlots(Process& process, StartupPlatform& platform, CardLink* link);

// The variable blocks of the active slot to the card: M811, Q11, the station, the hit counter
// when one is given (the change of the active slot), the profiler, the batch.
void SendSlotBlocks(Process& process, StartupPlatform& platform, CardLink* link,
                    std::optional<std::int32_t> hitCount = std::nullopt);

}  // namespace kirvana

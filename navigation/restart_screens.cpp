#include "navigation/restart_screens.h"

#include <filesystem>

#include "analysis/expand.h"
#include "core/number.h"
#include "core/paths.h"
#include "system/slots.h"
#include "system/startup.h"

namespace kirvana {

namespace {

constexpr std::uintmax_t SourceWidth = 80, MotionWidth = 240;

// A fault of the restart search, as the operator reads it.
std::string Refused(const std::string& reason) { return std::string(RestartRefusalFirst) + "\n\n" + reason; }

const SlotRecord& Record(const Process& process, int slot) {
    return process.Slots[static_cast<std::size_t>(slot == 2 ? 1 : 0)];
}

// The block files of the slot's main program hold exactly its records; else the damaged one.
std::string DamagedBlockFile(const Process& process, int slot) {
    const auto count =
        static_cast<std::uintmax_t>(std::max<std::int32_t>(Record(process, slot).Counts[0].SourceRecordCount, 0));
    for (auto [extension, width] : {std::pair{"RA1", SourceWidth}, {"RM1", MotionWidth}}) {
        const std::string path = SlotFile(process.Config.Dirs, slot, extension);
        std::error_code error;
        const std::uintmax_t size = std::filesystem::file_size(path, error);
        if (error || size != count * width) return path;
    }
    return {};
}

// The session takes the point only when the search found one.
std::string Take(const std::string& fault, int slot, const RestartPoint& point, RestartSession& session) {
    if (!fault.empty()) return fault.starts_with(RestartRefusalFirst) ? fault : Refused(fault);
    session.Slot = slot;
    session.Point = point;
    session.NotReached = point.Record.EntryState.Gathered ? std::string() : "The Restart Block Was Not Reached";
    return {};
}

}  // namespace

std::vector<ViewRow> BlockListRows(const Process& process, int slot, std::string& fault) {
    fault.clear();
    const SlotRecord& record = Record(process, slot);
    if (!record.Present) {
        fault = Refused("No Program In Slot " + std::to_string(slot) + " !");
        return {};
    }
    if (std::string damaged = DamagedBlockFile(process, slot); !damaged.empty()) {
        fault = Refused("Block File Damaged : " + damaged);
        return {};
    }
    const std::int32_t count = record.Counts[0].SourceRecordCount;
    return ReadViewRows(SlotFile(process.Config.Dirs, slot, "RA1"), SlotFile(process.Config.Dirs, slot, "RM1"), 1,
                        static_cast<int>(count), count);
}

std::string SelectRestartBlock(const Process& process, int slot, std::int32_t block, RestartSession& session) {
    if (Refusal refused = RestartInterlock(process)) return *refused;
    std::string fault;
    if (BlockListRows(process, slot, fault).empty() && fault.empty()) fault = Refused("The Program Has No Blocks !");
    if (!fault.empty()) return fault;
    RestartPoint point;
    return Take(BlockSlotRestart(process, slot, block, point), slot, point, session);
}

std::string SelectRestartHit(const Process& process, int slot, std::int32_t record, std::int32_t hit,
                             RestartSession& session) {
    if (!Record(process, slot).Present) return Refused("No Program In Slot " + std::to_string(slot) + " !");
    RestartPoint point;
    return Take(FindSlotRestart(process, slot, record, hit, point), slot, point, session);
}

std::string SelectStopRestart(const Process& process, int slot, RestartSession& session) {
    if (Refusal refused = RestartInterlock(process)) return *refused;
    const SlotRecord& slotRecord = Record(process, slot);
    if (!slotRecord.Present) return Refused("No Program In Slot " + std::to_string(slot) + " !");
    // The last record of the hit file the poll walked (the Sheet is record 1); the next one is
    // the first hit still to make.
    const std::int64_t walked = slotRecord.RunCount > 0 ? slotRecord.RunCount : std::int64_t{slotRecord.HitCount} + 1;
    const std::int64_t next = std::max<std::int64_t>(walked + 1, 2);
    DrawingFile drawing;
    if (!drawing.Open(SlotFile(process.Config.Dirs, slot, "drw"), true))
        return Refused("Drawing File Missing : " + SlotFile(process.Config.Dirs, slot, "drw"));
    std::int32_t record = 0, hit = 0;
    if (next > INT32_MAX || !FindExpandedHit(drawing, static_cast<std::int32_t>(next), record, hit))
        return Refused("No Hits Left After Hit " + std::to_string(next - 2));
    return SelectRestartHit(process, slot, record, hit, session);
}

RestartDisplay RestartDisplayOf(const Process& process, const RestartSession& session) {
    RestartDisplay display;
    const RestartRecord& r = session.Point.Record;
    const GatherState& target = r.TargetState;
    // The tool of the entry state's station, on a punching machine.
    const StationTable& stations = SlotTable(process.Tools, session.Slot);
    const Station* station = nullptr;
    const std::int16_t number = r.EntryState.Station;
    if (number >= 1 && number <= static_cast<int>(stations.size()))
        station = &stations[static_cast<std::size_t>(number - 1)];
    if (process.Config.Machine.HasTurret && number >= 1) {
        std::string text = station ? station->ToolText : std::string();
        if (text.starts_with("SPECIAL")) text.erase(0, 7);
        display.Tool = StationToolWord(stations, number) + (text.empty() ? std::string() : "  " + text);
    }
    display.Measurement = target.Imperial ? "IMPERIAL" : "METRIC";
    display.X = "X  " + FormatNumber(target.X, 2);
    display.Y = "Y  " + FormatNumber(target.Y, 2);
    if (station && station->Autoindex != 0) display.C = "C  " + FormatNumber(target.C, 2);
    display.Hits = "Completed Hits : " + std::to_string(target.Hits);
    if (target.Profiler) {
        static const char* const sides[] = {"None", "Left", "Right"};
        const int side = target.KerfSide >= 0 && target.KerfSide <= 2 ? target.KerfSide : 0;
        display.Kerf = "G4" + std::to_string(target.KerfSide) + "   Kerf Compensation : " + sides[side];
    }
    display.Note = session.NotReached;
    return display;
}

RestartOutcome RunRestart(Conversation& talk, const Process& process, const RestartSession& session,
                          const RestartFormHooks& hooks) {
    // 1. Refused while the machine runs or is in error.
    if (Refusal refused = RestartInterlock(process)) {
        if (hooks.Refuse) hooks.Refuse(*refused);
        return RestartOutcome::Refused;
    }
    if (session.Slot < 1 || !session.NotReached.empty()) return RestartOutcome::NotSent;
    // 5. The reload question, only with a reposition behind the target.
    bool reloaded = false;
    if (AsksReload(session.Point.Record.TargetState)) reloaded = hooks.Ask && hooks.Ask(ReloadQuestion);
    // 6. Program 5 to the card, then the wait for the cycle start.
    const std::vector<std::string> lines = SlotRestartProgram(process, session.Slot, session.Point, reloaded);
    if (!DownRestartProgram(talk, process.Config.Dirs.RootDir, lines)) {
        if (hooks.Refuse) hooks.Refuse(Refused("File Fault : " + process.Config.Dirs.RootDir + "DownPrg.tmp"));
        return RestartOutcome::DownloadFault;
    }
    return GetGoing(talk, process, session.Slot, session.Point, hooks.Going) ? RestartOutcome::Started
                                                                             : RestartOutcome::Left;
}

}  // namespace kirvana

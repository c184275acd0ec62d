#include "system/tooling_commands.h"

#include "analysis/drawing_tools.h"
#include "controller/download.h"
#include "core/number.h"
#include "core/paths.h"
#include "system/startup.h"

namespace kirvana {

namespace {

bool InTable(const StationTable& table, int station) {
    return station >= 1 && station <= static_cast<int>(table.size());
}

// The slot's `.trt` and, beside a program with a source, its `.trt` and `.stg`.
ToolingChange WriteSlotTurret(Process& process) {
    ToolingChange result;
    result.Changed = true;
    const int slot = ToolingSlot(process);
    const SlotRecord& record = process.Slots[slot - 1];
    if (!record.Present) return result;
    ProgramTurret header{record.ProgramStatsUsed ? TrueWord : FalseWord, record.ActiveStation};
    std::string failed;
    if (!WriteTurretFiles(SlotFile(process.Config.Dirs, slot, "trt"), ToolingProgramStem(process),
                          ToolingTable(process), header, &failed))
        result.FileFault = FileFaultText(failed);
    return result;
}

}  // namespace

int ToolingSlot(const Process& process) { return process.Config.ActiveSlot == 2 ? 2 : 1; }

StationTable& ToolingTable(Process& process) { return SlotTable(process.Tools, ToolingSlot(process)); }

std::string ToolingProgramStem(const Process& process) {
    const SlotRecord& record = process.Slots[ToolingSlot(process) - 1];
    if (!record.Present || record.ProgramName.empty()) return {};
    return record.ProgramDirPath + record.ProgramName;
}

std::string StationRowText(const StationTable& table, int station) {
    if (!InTable(table, station)) return {};
    const Station& row = table[static_cast<std::size_t>(station - 1)];
    std::string number = IntegerText(row.TNumber);
    if (number.size() < 2) number.insert(0, 2 - number.size(), '0');
    std::string text = row.Valid != FalseWord && row.Tool.IsValid() ? DescribeTool(row.Tool, false) : "";
    return number + "      " + text;
}

std::string FileFaultText(const std::string& file) { return "File Fault : " + file; }

Refusal TurretPositionButton(Process& process, Conversation& talk, int station, int button) {
    if (Refusal refusal = TurretMoveInterlock(process)) return refusal;
    const StationTable& table = ToolingTable(process);
    if (!InTable(table, station) || (button != 1 && button != 2)) return std::nullopt;
    const Station& row = table[static_cast<std::size_t>(station - 1)];
    return MoveTurret(process, talk, button == 1 ? row.LoadPosition : row.TPosition);
}

Refusal TurretPunchButton(Process& process, Conversation& talk, int station) {
    if (Refusal refusal = TurretPunchInterlock(process)) return refusal;
    if (!InTable(ToolingTable(process), station)) return std::nullopt;
    // The row's position in the list, from 1.
    return PunchTurret(process, talk, station);
}

ToolingChange DefineTurretTool(Process& process, TurretEdits& edits, int station, const ToolRecord& edited) {
    std::optional<ToolChange> change = DefineStationTool(ToolingTable(process), station, edited);
    if (!change) return {};
    // A station changed twice keeps its first old tool: the drawing holds that one.
    bool known = false;
    for (ToolChange& earlier : edits.Changes)
        if (earlier.Station == change->Station) {
            CopyTool(change->NewTool, earlier.NewTool);
            known = true;
        }
    if (!known) edits.Changes.push_back(*change);
    return WriteSlotTurret(process);
}

ToolingChange ApplyTurretSettings(Process& process, Conversation& talk, int station, const PunchSetting& setting) {
    StationTable& table = ToolingTable(process);
    if (station == 0)
        ApplyPunchSettingToAll(table, setting);
    else if (!ApplyPunchSetting(table, station, setting))
        return {};
    ToolingChange result = WriteSlotTurret(process);
    // The card works with the slot's station: it gets that station's block when it changed.
    const SlotRecord& record = process.Slots[ToolingSlot(process) - 1];
    const int working = record.ActiveStation;
    if (record.Present && InTable(table, working) && (station == 0 || station == working))
        SendStationBlock(talk, StationBlockOf(table[static_cast<std::size_t>(working - 1)]), true);
    return result;
}

ToolingChange ApplyProgramPlasma(Process& process, Conversation& talk, const std::string& description,
                                 const PlasmaSetting& setting) {
    ToolingChange result;
    result.Changed = true;
    const int slot = ToolingSlot(process);
    SlotRecord& record = process.Slots[slot - 1];
    record.PlasmaSettings = setting;
    if (record.Present) {
        const std::string slotFile = SlotFile(process.Config.Dirs, slot, "pls");
        const std::string stem = ToolingProgramStem(process);
        if (!SavePlasmaSetting(slotFile, description, setting))
            result.FileFault = FileFaultText(slotFile);
        else if (FileExists(ResolveNoCase(stem + ".prg")) && !SavePlasmaSetting(stem + ".pls", description, setting))
            result.FileFault = FileFaultText(stem + ".pls");
    }
    if (process.PlasmaBlockAllowed && process.Config.Machine.ProfilerKind == 2)
        SendPlasmaBlock(talk, PlasmaBlockOf(setting));
    return result;
}

TurretLeave LeaveTurret(Process& process, StartupPlatform& platform, CardLink* link, TurretEdits& edits) {
    const Directories& dirs = process.Config.Dirs;
    const int slot = ToolingSlot(process);
    TurretLeave result;
    result.Unload =
        UnloadTurret(SlotFile(dirs, slot, "drw"), dirs.RootDir + "Numbers.tmp", edits.Changes, RewriteDrawingTools);
    edits.Changes.clear();
    // 3. The program converted again with the tools now in the slot's table.
    if (result.Unload.ConvertAgain) result.Conversion = ConvertSlotAgain(process, platform, link);
    return result;
}

}  // namespace kirvana

// Selection of a program into the active slot, the emptying of a slot, the load of both slots
// at start, and the slot's variable blocks to the card.
#include <algorithm>
#include <filesystem>

#include "analysis/drawing_file.h"
#include "analysis/expand.h"
#include "analysis/reverse.h"
#include "controller/card_variables.h"
#include "controller/download.h"
#include "core/names.h"
#include "core/number.h"
#include "core/paths.h"
#include "core/text.h"
#include "system/poll_cycle.h"
#include "system/restart_slot.h"
#include "system/slots.h"
#include "system/startup.h"
#include "translate/blend.h"
#include "translate/convert.h"

namespace kirvana {

namespace fs = std::filesystem;

namespace {

Conversation Talk(Process& process, StartupPlatform& platform, CardLink* link) {
    return Conversation(link, process.Card, process.Config.Dirs.ServiceDir, &platform);
}

// Sheet, clamps, record count and measurement from record 1 of the slot's drawing.
void ReadSheetRecord(const std::string& stem, SlotRecord& record) {
    DrawingFile drawing;
    EntityRec sheet;
    if (!drawing.Open(stem + "drw", true) || !drawing.Get(1, sheet)) return;
    record.Material = std::string(Trim(sheet.Remark));
    record.SheetX = sheet.Values[1];
    record.SheetY = sheet.Values[2];
    for (int i = 0; i < 4; ++i) record.Clamps[i] = sheet.Values[7 + i];
    record.DrawingRecords = static_cast<std::int16_t>(std::clamp<std::int32_t>(sheet.RecordNo, 0, 32767));
    record.Imperial = sheet.Counts[2] != 0;
}

// The hit file's record count from its record 1.
std::int32_t HitFileRecords(const std::string& stem) {
    DrawingFile hits;
    return hits.Open(stem + "dr1", true) ? hits.Count() : 0;
}

}  // namespace

StationBlock StationBlockOf(const Station& station) {
    StationBlock block;
    block.ToolNumber = station.TNumber;
    block.Offsets = {station.OffsetX, station.OffsetY, station.OffsetZ};
    block.Words = {station.Settings.FeedPercent, station.Settings.AccelPercent};
    block.Singles = {station.Settings.PreDelay, station.Settings.PostDelay, station.Settings.InPosition,
                     station.Settings.RamTimer};
    return block;
}

PlasmaBlock PlasmaBlockOf(const PlasmaSetting& s) {
    PlasmaBlock block;
    block.P101To104 = {s.RapidSpeed, s.CutSpeed, s.MinCornerSpeed, s.FreezeSpeed};
    block.P105 = s.HeightOn;
    block.P106 = s.HeightOff;
    block.P107 = s.Slowdown;
    block.P108 = s.Kerf;
    block.P109 = s.Pierce;
    block.P110 = s.TorchType;
    return block;
}

namespace {

// Copies the program to the slot's `.org` through "Temp.org": every line trimmed, empty lines
// left out. The file that could not be written, or "" when done.
std::string CopyProgram(const Directories& dirs, const std::vector<std::string>& lines, const std::string& org) {
    std::vector<std::string> kept;
    for (const std::string& line : lines) {
        std::string_view text = Trim(line);
        if (!text.empty()) kept.emplace_back(text);
    }
    const std::string temporary = dirs.RootDir + "Temp.org";
    if (!WriteLines(temporary, kept)) return temporary;
    if (MoveFileOver(temporary, org)) return {};
    std::error_code error;
    fs::remove(temporary, error);
    return org;
}

// For a plasma profiler of kind 2: the program's `.pls` (made from the default set when it
// has none) becomes the slot's. The file that could not be written, or "" when done.
std::string CopyPlasmaSettings(const Directories& dirs, const std::string& programStem, const std::string& slotStem) {
    const std::string pls = programStem + ".pls";
    if (!FileExists(pls)) {
        std::string source = dirs.SettingsDir + "Default.pls";
        if (!FileExists(source)) {
            source.clear();
            for (const std::string& name : ListDirectory(dirs.SettingsDir, false)) {
                if (name.size() > 4 && UpperCase(name.substr(name.size() - 4)) == ".PLS") {
                    source = dirs.SettingsDir + name;
                    break;
                }
            }
        }
        if (!source.empty() && !CopyFileOver(source, pls)) return pls;
    }
    if (FileExists(pls) && !CopyFileOver(pls, slotStem + "pls")) return slotStem + "pls";
    return {};
}

void ReadSlotPlasma(const std::string& slotStem, SlotRecord& record) {
    std::string description;
    ClearPlasmaSetting(record.PlasmaSettings);
    LoadPlasmaSetting(slotStem + "pls", description, record.PlasmaSettings);
}

// The Reverse pass on the slot: the drawing, "Reverse.txt" and the statistics.
ReverseResult ReverseSlot(Process& process, int slot, const std::string& stem, SlotRecord& record) {
    ReverseSettings settings = SlotReverseSettings(process, slot);
    std::int16_t toolChanges = 0;
    ReverseResult result = ReversePass(stem, record.ProgramName, record.ProgramDirName, toolChanges, settings);
    record.Stats = SlotStats{result.Stats.Hits, result.Stats.Travel, result.Stats.CutLength};
    return result;
}

}  // namespace

void ClearSlot(Process& process, int slot) {
    const Directories& dirs = process.Config.Dirs;
    SlotRecord& record = process.Slots[slot - 1];
    // 1. The record to its empty values (ProgramStatsUsed, step 4's first half, with them).
    record = SlotRecord{};
    record.SlotLoadY = process.Config.Machine.Travel.LoadPositionY;
    ClearPlasmaSetting(record.PlasmaSettings);
    // 2. Nothing to do here: no file channel stays open between calls (the poll cycle opens
    // the hit file by its name at each tick).
    // 3. The slot's files.
    const std::string prefix = "ACTVPRG" + std::to_string(slot) + ".";
    for (const std::string& name : ListDirectory(dirs.RootDir, false)) {
        if (!UpperCase(name).starts_with(prefix)) continue;
        std::error_code error;
        fs::remove(dirs.RootDir + name, error);
    }
    // 4. The machine's turret in the slot's table.
    if (process.Config.Machine.HasTurret) CopyMachineTable(process.Tools, slot);
    // 5. The plot's data of the slot: no run seen since the change.
    process.Poll.RunMarked[slot - 1] = false;
    process.Poll.HitFileShortReported[slot - 1] = false;
    // 6. Done by ProgramButtonCaption: the front end shows the caption of the emptied record.
}

// Steps 25 to 28 of the selection, and step 2 after both slots of the load.
void SendSlotBlocks(Process& process, StartupPlatform& platform, CardLink* link, std::optional<std::int32_t> hitCount) {
    Conversation talk = Talk(process, platform, link);
    const MachineData& machine = process.Config.Machine;
    int slot = process.Config.ActiveSlot;
    SlotRecord& record = process.Slots[slot - 1];
    // 25. The active slot and its load position.
    talk.Download(card::Assignment(card::ActiveSlot, std::to_string(slot)));
    talk.Download(card::Assignment(card::LoadPosition1[1], FormatNumber(record.SlotLoadY, 2)));
    // 26. The station, with its speed override.
    if (machine.HasTurret) {
        talk.Download(card::Assignment(card::WorkStation, IntegerText(record.ActiveStation)));
        const StationTable& table = SlotTable(process.Tools, slot);
        if (record.ActiveStation >= 1 && static_cast<std::size_t>(record.ActiveStation) <= table.size())
            SendStationBlock(talk, StationBlockOf(table[record.ActiveStation - 1]), true);
    }
    // (The hit counter only at the change of the active slot.)
    if (hitCount) talk.Download(card::Assignment(card::HitCounter, LongText(*hitCount)));
    // 27. The profiler block.
    if (machine.ProfilerKind > 0) {
        const StationType& plasma = PlasmaStationType(process.Tools);
        SendProfilerBlock(talk, {plasma.OffsetX, plasma.OffsetY, plasma.OffsetZ}, machine.ProfilerKind,
                          PlasmaBlockOf(record.PlasmaSettings));
    }
    // 28. The batch block.
    SendBatchBlock(talk, {record.Batch[0], record.Batch[1], record.Batch[2], record.Batch[3]});
}

SelectOutcome SelectProgram(Process& process, StartupPlatform& platform, CardLink* link,
                            const std::string& directoryName, const std::string& programName,
                            const SelectProgress& progress, SelectTable tableKind) {
    const Directories& dirs = process.Config.Dirs;
    const MachineData& machine = process.Config.Machine;
    std::string directory(Trim(directoryName)), name(Trim(programName));
    auto refuse = [&](const std::string& text) {
        platform.ShowWarning(text);
        return SelectOutcome{false, text, std::nullopt};
    };
    // 1 to 4. Acceptable names (within 32 characters, never leading out of the program store),
    // the directory and the program there.
    if (!AcceptableName(directory)) return refuse(InvalidDirectoryName);
    if (!AcceptableName(name)) return refuse(InvalidProgramName);
    std::string directoryPath = ResolveNoCase(dirs.ProgramRoot + directory);
    if (!IsDirectory(directoryPath)) return refuse("Directory Does Not Exist !");
    std::string programPath = ResolveNoCase(directoryPath + "/" + name + ".prg");
    if (!FileExists(programPath)) return refuse("Program Does Not Exist !");
    // 5. Never while the machine runs.
    if (process.Running) return refuse("Can Not Select New Program\n\nWhile Machine Is Running !");
    auto tell = [&](SelectStage stage) {
        if (progress) progress(stage);
    };
    // 6. No hit file channel to close (the poll cycle opens the file at each tick); the slot
    // is emptied.
    int slot = process.Config.ActiveSlot;
    // A conversion with the slot's own table keeps it (and where its settings come from) past
    // the emptying, which gives the slot the machine's table.
    const bool keepTable = tableKind == SelectTable::Slot && machine.HasTurret;
    const StationTable keptTable = keepTable ? SlotTable(process.Tools, slot) : StationTable{};
    const bool keptStatsUsed = process.Slots[slot - 1].ProgramStatsUsed;
    ClearSlot(process, slot);
    SlotRecord& record = process.Slots[slot - 1];
    if (keepTable) {
        CopyStationTable(keptTable, SlotTable(process.Tools, slot));
        record.ProgramStatsUsed = keptStatsUsed;
    }
    const std::string stem = SlotStem(dirs, slot);
    // 7. The program's names.
    record.ProgramName = StripExtension(FileNameOf(programPath));
    record.ProgramDirName = directory;
    record.ProgramDirPath = directoryPath + "/";
    const std::string programStem = record.ProgramDirPath + record.ProgramName;
    auto fail = [&](const std::string& text) {
        ClearSlot(process, slot);
        return refuse(text);
    };
    // A file that cannot be read or written refuses the selection as a failed pass does.
    auto fileFault = [&](const std::string& file) { return fail(record.ProgramName + "\n\nFile Fault : " + file); };
    tell(SelectStage::Copy);
    // 8. The cleaned source in the slot.
    NoteFile(dirs.ServiceDir, programPath);
    auto source = ReadLines(programPath);
    if (!source) return fail(record.ProgramName + "\n\nCan Not Be Read !");
    if (std::string file = CopyProgram(dirs, *source, stem + "org"); !file.empty()) return fileFault(file);
    // 9. The plasma settings for a profiler of kind 2.
    if (machine.ProfilerKind == 2) {
        if (std::string file = CopyPlasmaSettings(dirs, programStem, stem); !file.empty()) return fileFault(file);
    }
    tell(SelectStage::Convert);
    // 10. Translation; the comment marks by dialect.
    ConvertResult converted = ConvertProgram(stem, record.SourceDialect, ConvertSettingsFrom(machine, dirs));
    if (converted.Status == ConvertStatus::FileFault) return fileFault(converted.Fault);
    if (converted.Status != ConvertStatus::Done)
        return fail(record.ProgramName + "\n\n" + ConvertStatusText(converted.Status));
    SetCommentMarks(record, false);
    // 11. The Blend pass. 12. The Reverse pass judges; with errors the slot is left empty.
    tell(SelectStage::Blend);
    BlendResult blended =
        BlendProgram(record.ProgramDirName, record.ProgramName, stem, BlendSettingsFrom(machine, dirs));
    if (blended.FileFault) return fileFault(blended.FaultFile);
    tell(SelectStage::Reverse);
    ReverseResult reversed = ReverseSlot(process, slot, stem, record);
    if (reversed.FileFault) return fileFault(reversed.FaultFile);
    if (reversed.Result > 0) return fail(record.ProgramName + "\n\nCan Not Be Selected Due To Errors in Code !");
    // 13. Sheet and clamps from the drawing.
    ReadSheetRecord(stem, record);
    // 14. The hits, with a turret; the active station at least 1.
    record.ExpandedFilePath = stem + "dr1";
    if (machine.HasTurret) {
        if (!ExpandDrawing(stem).Done) return fileFault(stem + "dr1");
        record.HitFileRecords = HitFileRecords(stem);
    }
    if (record.ActiveStation < 1) record.ActiveStation = 1;
    tell(SelectStage::Index);
    // 15, 16. The maps of the card's program counter (the six counts were zeroed with the
    // record at step 6).
    std::string mapFault;
    auto main = BuildBlockMap(stem + "A1", stem + "M1", stem + "W1", stem + "RA1", stem + "RM1", &mapFault);
    std::optional<SlotCounts> subroutines;
    if (main) subroutines = BuildBlockMap(stem + "A2", stem + "M2", stem + "W2", stem + "RA2", stem + "RM2", &mapFault);
    if (!mapFault.empty()) return fileFault(mapFault);
    if (!main || !subroutines) return fail(record.ProgramName + "\n\nIs Too Large To Be Selected !");
    record.Counts = {*main, *subroutines};
    // 17. The slot's description.
    if (!WriteSlotConfig(dirs, slot, record)) return fileFault(stem + "cfg");
    // 18. The turret table and the program's settings.
    if (machine.HasTurret) {
        StationTable& table = SlotTable(process.Tools, slot);
        // a, b. The machine's table with the program's settings, unless the slot's is kept.
        if (!keepTable) {
            CopyMachineTable(process.Tools, slot);
            if (FileExists(programStem + ".stg")) ReadProgramSettings(programStem + ".stg", table, dirs.ServiceDir);
        }
        // c, d. The slot's and the program's files from the table.
        if (!WriteProgramTurret(stem + "trt", table,
                                ProgramTurret{record.ProgramStatsUsed ? TrueWord : FalseWord, record.ActiveStation}))
            return fileFault(stem + "trt");
        if (!WriteProgramSettings(programStem + ".stg", table)) return fileFault(programStem + ".stg");
    }
    // 19. The plasma settings.
    if (machine.ProfilerKind == 2 && FileExists(stem + "pls")) ReadSlotPlasma(stem, record);
    // 20. Statistics and batch.
    if (!WriteSlotStats(dirs, slot, record.Stats)) return fileFault(stem + "sts");
    if (!WriteSlotBatch(dirs, slot, record.Batch)) return fileFault(stem + "btc");
    // The slot holds its program from here on.
    record.Present = true;
    // 21. The block indication: this slot's program, no block yet. The button's caption is
    // ProgramButtonCaption of the record, shown by the front end.
    process.Poll.LastSlotShown = slot;
    process.Poll.LastRecordShown = -1;
    tell(SelectStage::Download);
    // 22 to 28. The card's part, as one operation with its deadline.
    const int faultsBefore = link ? link->FaultCount() : 0;
    {
        CardOperation operation(link, process.Config.Card.OperationDeadlineMs);
        // 22. The plot's data were reset with the slot at step 6; the card's hit counter and
        // the run counter start anew.
        Conversation talk = Talk(process, platform, link);
        talk.Download(card::Assignment(card::HitCounter, "0"));
        record.RunCount = 0;
        // 23. Nothing to do here: the poll cycle opens the hit file by its name at each tick.
        // 24. The motion programs.
        DownProgram(talk, dirs.RootDir, dirs.ServiceDir, slot);
        // 25 to 28. The slot's blocks.
        SendSlotBlocks(process, platform, link);
    }
    // The plot of the slot, its run data reset.
    platform.RedrawSlotPlot(slot);
    // 29. The setup screen's clamp demands follow the new program; the search text cleared
    // and the program screen closed are left to the screen that runs the selection.
    UpdateClampPanel(process);
    SelectOutcome outcome{true, {}, std::nullopt};
    if (link && link->FaultCount() != faultsBefore) outcome.Fault = link->LastFault();
    return outcome;
}

SelectOutcome ConvertSlotAgain(Process& process, StartupPlatform& platform, CardLink* link) {
    const SlotRecord& record = process.Slots[process.Config.ActiveSlot == 2 ? 1 : 0];
    if (!record.Present) return SelectOutcome{};
    // Copies: the selection empties the record before it reads the names.
    const std::string directory = record.ProgramDirName, name = record.ProgramName;
    return SelectProgram(process, platform, link, directory, name, {}, SelectTable::Slot);
}

// Steps 1 to 13 for slot 1 and then slot 2, then the five steps after both.
void LoadActiveSlots(Process& process, StartupPlatform& platform, CardLink* link) {
    const Directories& dirs = process.Config.Dirs;
    const MachineData& machine = process.Config.Machine;
    Conversation talk = Talk(process, platform, link);
    // Both downloads and the blocks: one card operation with its deadline.
    CardOperation operation(link, process.Config.Card.OperationDeadlineMs);
    for (int slot = 1; slot <= 2; ++slot) {
        SlotRecord& record = process.Slots[slot - 1];
        const std::string stem = SlotStem(dirs, slot);
        // 2. An incomplete file set empties the slot silently. A file that is there but cannot
        // be read is a fault of the disk, not a missing file: the slot stays empty in memory,
        // its files are kept, and the operator is told.
        auto unreadable = [&](const std::string& file) {
            record = SlotRecord{};
            record.SlotLoadY = machine.Travel.LoadPositionY;
            ClearPlasmaSetting(record.PlasmaSettings);
            if (machine.HasTurret) CopyMachineTable(process.Tools, slot);
            platform.ShowWarning(file + " Can Not Be Read !\n\nSlot " + std::to_string(slot) +
                                 " Is Left Empty, Its Files Are Kept");
        };
        bool complete = true;
        std::string faulty;
        for (const char* extension : {"cfg", "drw", "M1", "RA1"}) {
            std::error_code error;
            fs::file_status status = fs::status(stem + extension, error);
            if (status.type() == fs::file_type::not_found)
                complete = false;
            else if (faulty.empty() && (error || status.type() != fs::file_type::regular))
                faulty = stem + extension;
        }
        if (!complete) {
            ClearSlot(process, slot);
            continue;
        }
        if (!faulty.empty()) {
            unreadable(faulty);
            continue;
        }
        // 1. The name of the slot's hit file (here, as the record starts anew).
        // 3. The description; the comment marks by the load's column of the table.
        record = SlotRecord{};
        record.ExpandedFilePath = stem + "dr1";
        bool cfgUnreadable = false;
        if (!ReadSlotConfig(dirs, slot, record, &cfgUnreadable)) {
            if (cfgUnreadable)
                unreadable(stem + "cfg");
            else
                ClearSlot(process, slot);
            continue;
        }
        record.Present = true;
        SetCommentMarks(record, true);
        // 4, 5. The slot's turret table: read from its file (5), or without one every station
        // with speed overrides 100 and 100 and its four values 0 (4).
        if (machine.HasTurret) {
            StationTable& table = SlotTable(process.Tools, slot);
            ProgramTurret header;
            if (FileExists(stem + "trt") && ReadProgramTurret(stem + "trt", table, header, dirs.ServiceDir)) {
                record.ProgramStatsUsed = header.SettingWord != 0;
                if (header.ActiveStation) record.ActiveStation = *header.ActiveStation;
            } else {
                for (Station& station : table) station.Settings = PunchSetting{100, 100, 0, 0, 0, 0};
            }
        }
        // 6. Plasma settings.
        ClearPlasmaSetting(record.PlasmaSettings);
        if (FileExists(stem + "pls")) ReadSlotPlasma(stem, record);
        // 7. Sheet and clamps; 8. statistics and batch.
        ReadSheetRecord(stem, record);
        record.Stats = ReadSlotStats(dirs, slot);
        record.Batch = ReadSlotBatch(dirs, slot);
        // 9. A table of no program of its own is the machine's.
        if (machine.HasTurret && !record.ProgramStatsUsed) CopyMachineTable(process.Tools, slot);
        // 10. Nothing to do here: at start the plot's data of both slots have their start values.
        // 11. The hits.
        record.HitFileRecords = HitFileRecords(stem);
        if (record.ActiveStation < 1) record.ActiveStation = 1;
        // 12. The motion programs to the card.
        DownProgram(talk, dirs.RootDir, dirs.ServiceDir, slot);
        // 13. Done by ProgramButtonCaption: the front end shows the caption of the record.
    }
    // After both: 1. a valid active slot.
    if (process.Config.ActiveSlot != 1 && process.Config.ActiveSlot != 2) process.Config.ActiveSlot = 1;
    // 2. The active slot's blocks.
    SendSlotBlocks(process, platform, link);
    const SlotRecord& active = process.Slots[process.Config.ActiveSlot - 1];
    // 3. Its directory as the current one. Main writes Control.cfg next and reports there a
    // file that cannot be written.
    if (!active.ProgramDirName.empty()) (void)SetProgramDir(process.Config, active.ProgramDirName);
    // 4. Nothing to do here: the poll cycle opens the hit file by its name at each tick.
    // 5. The block indication cleared. The front end checks the active slot's button when it
    // shows the state, and there is no mouse pointer to reset.
    ResetPollState(process.Poll);
}

}  // namespace kirvana

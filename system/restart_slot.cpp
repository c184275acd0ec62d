#include "system/restart_slot.h"

#include "controller/conversation.h"
#include "core/file_writer.h"
#include "core/paths.h"
#include "core/text.h"
#include "system/slots.h"
#include "system/startup.h"
#include "tooling/settings.h"

namespace kirvana {

namespace {

// The card's status word bits that show the machine started.
constexpr std::int32_t InCycleBit = 8192;
constexpr std::int32_t RunningBit = 16384;

std::string ControllerDir(const Process& process) { return process.Config.Dirs.PmacDir; }

const SlotRecord& Record(const Process& process, int slot) {
    return process.Slots[static_cast<std::size_t>(slot == 2 ? 1 : 0)];
}

}  // namespace

Refusal RestartInterlock(const Process& process) {
    const std::int32_t logic = process.Poll.LastLogicBits;
    const bool inError = logic > 0 && logic != 16;
    if (!process.Running && !process.InFeedhold && !process.InCycle && !inError) return std::nullopt;
    return std::string(RestartRefusalFirst) + "\n\n" + RestartRefusalSecond;
}

ReverseSettings SlotReverseSettings(const Process& process, int slot) {
    ReverseSettings settings = ReverseSettingsFrom(process.Config.Machine, process.Config.Dirs,
                                                   SlotTable(process.Tools, slot), MachinePlasmaTool(process.Tools));
    const std::string stem = SlotStem(process.Config.Dirs, slot);
    if (FileExists(stem + "pls")) {
        PlasmaSetting plasma;
        std::string description;
        ClearPlasmaSetting(plasma);
        LoadPlasmaSetting(stem + "pls", description, plasma);
        PlasmaToSettings(plasma, settings.ProgramSettings);
    }
    return settings;
}

std::string FindSlotRestart(const Process& process, int slot, std::int32_t record, std::int32_t hit,
                            RestartPoint& point) {
    if (Refusal refused = RestartInterlock(process)) return *refused;
    const SlotRecord& slotRecord = Record(process, slot);
    return FindRestartPoint(SlotStem(process.Config.Dirs, slot), slotRecord.ProgramName, slotRecord.ProgramDirName,
                            record, hit, SlotReverseSettings(process, slot), ControllerDir(process), point);
}

std::string BlockSlotRestart(const Process& process, int slot, std::int32_t block, RestartPoint& point) {
    if (Refusal refused = RestartInterlock(process)) return *refused;
    const SlotRecord& slotRecord = Record(process, slot);
    return BlockRestartPoint(SlotStem(process.Config.Dirs, slot), slotRecord.ProgramName, slotRecord.ProgramDirName,
                             block, SlotReverseSettings(process, slot), ControllerDir(process), point);
}

std::vector<std::string> SlotRestartProgram(const Process& process, int slot, const RestartPoint& point,
                                            bool reloaded) {
    RestartProgramInput input;
    input.Point = &point;
    if (auto rep = ReadLines(ControllerDir(process) + "Gather.rep")) input.Repositions = *rep;
    input.Reload = ReloadWord(reloaded);
    input.HasProfiler = process.Config.Machine.ProfilerKind != 0;
    input.ToolWord = StationToolWord(SlotTable(process.Tools, slot), point.Record.TargetState.Station);
    input.Orientation = process.Config.Machine.MachineOrientation;
    if (auto m2 = ReadLines(SlotStem(process.Config.Dirs, slot) + "M2")) input.M2 = *m2;
    return RestartProgramLines(input);
}

bool DownRestartProgram(Conversation& talk, const std::string& rootDir, const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    const std::string work = rootDir + "DownPrg.tmp";
    if (!WriteFileText(work, text)) return false;
    if (!talk.State().CardInUse || !talk.Link()) return true;
    talk.BeginLongExchange();
    const bool result = talk.Link()->DownloadFile(work);
    talk.LogExchange("DownProgram", work, "", result);
    talk.EndLongExchange();
    return true;
}

bool GetGoing(Conversation& talk, const Process& process, int slot, const RestartPoint& point,
              const GetGoingHooks& hooks) {
    // 1. "Restart.txt" anew.
    const SlotRecord& slotRecord = Record(process, slot);
    (void)WriteFileText(
        process.Config.Dirs.ServiceDir + "Restart.txt",
        RestartReport(slotRecord.ProgramName, slotRecord.ProgramDirName, ReportTime(), point.Record.BlockState));
    // 2. The hits done, and program 5 as the active one.
    const RestartCommands commands = GetGoingCommands(slot, point.Record);
    for (const std::string& command : commands.BeforeStart) talk.Download(command);
    // 3. The label blinks until the machine starts or the operator leaves.
    bool lit = false;
    bool started = false;
    while (!started) {
        if (hooks.ExitRequested && hooks.ExitRequested()) {
            if (hooks.Blink) hooks.Blink(false);
            for (const std::string& command : commands.OnExit) talk.Download(command);
            return false;
        }
        lit = !lit;
        if (hooks.Blink) hooks.Blink(lit);
        if (hooks.ProcessEvents) hooks.ProcessEvents();
        const std::int32_t status = talk.GetRspnsLng("P1022");
        started = (status & (InCycleBit | RunningBit)) != 0;
    }
    if (hooks.Blink) hooks.Blink(false);
    // 4. The slot, and the run command from the block.
    for (const std::string& command : commands.AfterStart) talk.Download(command);
    return true;
}

}  // namespace kirvana

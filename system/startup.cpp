#include "system/startup.h"

#include <filesystem>
#include <sstream>

#include "controller/card_variables.h"
#include "core/number.h"
#include "core/paths.h"
#include "core/text.h"
#include "system/machine_commands.h"

namespace kirvana {

namespace {

Conversation Talk(Process& process, StartupPlatform& platform, CardLink* link) {
    return Conversation(link, process.Card, process.Config.Dirs.ServiceDir, &platform);
}

void Run(const std::function<void(Process&)>& step, Process& process) {
    if (step) step(process);
}

// The card's open sequence, with one retry after the operator has been told.
bool OpenCard(StartupPlatform& platform, CardLink* link) {
    if (link) {
        link->Prepare();
        link->SetEnabled(true);
        if (link->Enabled()) return true;
    }
    platform.ShowMessageBox("Initialisation Failure !", SystemTitle);
    if (!link) return false;
    link->Reset();
    link->Select();
    link->SetEnabled(true);
    return link->Enabled();
}

}  // namespace

ConfigResult ReadMachineData(Process& process) {
    if (auto fault = ReadMachineFiles(process.Config.Dirs, process.Config.Machine)) return fault;
    return ReadToolingData(process.Config.Dirs, process.Config.Machine, process.Tools);
}

StartOutcome Main(Process& process, StartupPlatform& platform, CardLink* link, const StartupSteps& steps) {
    Installation& config = process.Config;
    // 1. No shutdown and no poll yet.
    process.ShuttingDown = false;
    process.Card.PollRunning = false;
    // 2. A relative Service directory, so that the first reads can be traced.
    std::error_code error;
    std::filesystem::create_directory("Service", error);
    config.Dirs.ServiceDir = "Service/";
    // 3. Colours.
    Run(steps.ReadColours, process);
    // 4. The splash, painted once.
    platform.ShowSplash(SystemTitle, "Version " + FormatNumber(SystemVersion, 1));
    platform.ProcessEvents();
    // 5. Flags and state cleared.
    process.Card.ReportCardErrors = true;
    process.Card.FormsLocked = false;
    process.LastSelectedProgram.clear();
    process.StatusEdges = {};
    process.PlasmaBlockAllowed = true;
    // 6. The configuration, in this order.
    ConfigResult fault = ReadControlConfig(config);
    if (!fault) fault = ReadMachineData(process);
    if (!fault) fault = ReadMessageTables(config.Dirs, config.Messages);
    if (!fault) fault = ReadCardSetup(config.Dirs, config.Card);
    if (fault) return {StartOutcome::Kind::ConfigurationFault, *fault};
    process.Card.CardInUse = config.Card.CardInUse;
    process.Card.PollLogOn = config.Card.PollLogOn;
    process.Card.PollIntervalMs = config.Card.PollIntervalMs;
    process.Card.PollRestartDelayMs = config.Card.PollRestartDelayMs;
    // 7. Open the card; a second failure ends the process without a further word.
    if (process.Card.CardInUse) {
        Run(steps.ConfigureCard, process);
        if (!OpenCard(platform, link)) return {StartOutcome::Kind::CardNotOpened, {}};
    }
    Conversation talk = Talk(process, platform, link);
    // 8. The card's system files, as the directory lists them: one card operation with its deadline.
    {
        CardOperation operation(process.Card.CardInUse ? link : nullptr, config.Card.OperationDeadlineMs);
        for (const std::string& name : ListDirectory(config.Dirs.DataDir, false)) {
            if (name.size() > 4 && UpperCase(name.substr(name.size() - 4)) == ".PRM")
                talk.DownSystem(config.Dirs.DataDir, name);
        }
    }
    // 9. The axis scale factors: the leading number of each answer; 0 (also offline) is 1.
    for (int axis = 0; axis < 4; ++axis) {
        double scale = ToNumber(talk.GetRspnsTxt(card::AxisDefinition[axis]));
        process.AxisScale[axis] = scale == 0 ? 1.0 : scale;
    }
    // 10. The card's own load position.
    if (process.Card.CardInUse) {
        config.Machine.Travel.LoadPositionX = talk.GetRspnsSngl(card::LoadPosition1[0], -1);
        config.Machine.Travel.LoadPositionY = talk.GetRspnsSngl(card::LoadPosition1[1], -1);
    }
    // 11. Plot settings.
    Run(steps.ReadPlotConfig, process);
    // 12. The active slots: the first download of motion programs.
    LoadActiveSlots(process, platform, link);
    // 13. Control.cfg with the active slot now settled.
    if (!WriteControlConfig(config))
        return {StartOutcome::Kind::ConfigurationFault,
                ConfigFault{config.Dirs.RootDir + "Control.cfg", "cannot be written"}};
    // 14. The active slot to the card.
    talk.Download(card::Assignment(card::ActiveSlot, std::to_string(config.ActiveSlot)));
    // 15. Dialogue work program, serial settings, receiving files.
    Run(steps.ReadDialogueProgram, process);
    if (ConfigResult missing = RequireCommSettingsFile(config.Dirs))
        return {StartOutcome::Kind::ConfigurationFault, *missing};
    Run(steps.ReadSerialSettings, process);
    Run(steps.PrepareReceiveFiles, process);
    // 16. The splash stays its full time.
    while (!platform.SplashDone()) platform.ProcessEvents();
    // 17. The front end is up.
    talk.Download(card::RequestText(card::RequestFrontEndUp));
    // 18. FrontEnd.
    platform.StopSplashTimer();
    platform.ShowFrontEnd();
    return {};
}

namespace {

// The steps both ways out share; `forService` leaves the card believing the front end is up.
void EndProcess(Process& process, StartupPlatform& platform, CardLink* link, const StartupSteps& steps, bool forService,
                bool powerOff) {
    Conversation talk = Talk(process, platform, link);
    // 1. Batch counters from the card; 2. the active slot's .btc. A .btc that can't be written
    // keeps its last counters: the shutdown goes on.
    SaveBatchAtShutdown(process, talk);
    std::string serviceProgram = forService ? ReadServiceProgram(process.Config.Dirs) : std::string();
    // 3. Shutting down: the poll stops.
    process.ShuttingDown = true;
    talk.StopPollTimer(true);
    // 4. Serial port; 5. receive work file; 6. program and drawing channels.
    Run(steps.CloseSerialPort, process);
    Run(steps.CloseReceiveFile, process);
    Run(steps.CloseDrawingChannels, process);
    // 7. The card: goodbye and save, unless the exit is for service.
    if (process.Card.CardInUse) {
        if (!forService) {
            talk.Download(card::RequestClearText(card::RequestFrontEndUp));
            if (process.Config.Card.SaveOnShutdown) {
                talk.Download("save");
                talk.WaitMs(process.Config.Card.SaveWaitMs);
            }
        }
        if (link) link->SetEnabled(false);
    }
    // 8. FrontEnd goes.
    if (platform.FrontEndVisible()) platform.UnloadFrontEnd();
    // 9. Power off, or the service program.
    if (forService) {
        if (!serviceProgram.empty()) platform.StartProgram(serviceProgram);
    } else if (powerOff) {
        platform.PowerOff();
    }
    // 10. The end.
    platform.EndProcess();
}

}  // namespace

void Shutdown(Process& process, StartupPlatform& platform, CardLink* link, const StartupSteps& steps, bool powerOff) {
    EndProcess(process, platform, link, steps, false, powerOff);
}

void ShutdownForService(Process& process, StartupPlatform& platform, CardLink* link, const StartupSteps& steps) {
    EndProcess(process, platform, link, steps, true, false);
}

std::string CardFaultText(std::int32_t number, const std::string& description, const std::string& lastCommand) {
    return "An error occurred while talking to PMAC !\n\nError Number :  " + std::to_string(number) + "\n" +
           description + "\nLast Communication :  " + lastCommand + "\n\nShutdown Kirvana ?";
}

void HandleCardFault(Process& process, StartupPlatform& platform, CardLink* link, const StartupSteps& steps,
                     std::int32_t number, const std::string& description) {
    if (process.Card.ReportCardErrors &&
        platform.AskOperator(CardFaultText(number, description, process.Card.LastCommand)))
        ShutdownForService(process, platform, link, steps);
    process.Card.LastCommand.clear();
}

std::string MachineSummary(const Process& process) {
    const Installation& c = process.Config;
    const MachineData& m = c.Machine;
    std::ostringstream out;
    auto mm = [](float v) { return FormatNumber(v, 2); };
    out << "Machine: " << m.MachineName << (m.AmadaMachine ? " (AMADA programs)" : "") << "\n"
        << "Type: " << m.MachineType << " (" << (m.HasTurret ? "turret" : "no turret") << ", "
        << (m.ProfilerKind == 0 ? "no profiler" : "plasma profiler kind " + std::to_string(m.ProfilerKind)) << ")\n"
        << "Turret stations: " << m.StationCount << "\n"
        << "Orientation: " << m.MachineOrientation << (m.HasThirdAxis ? ", third axis" : "") << "\n"
        << "Travel X: " << mm(m.Travel.XLimitMin) << " to " << mm(m.Travel.XLimitMax) << "\n"
        << "Travel Y: " << mm(m.Travel.YLimitMin) << " to " << mm(m.Travel.YLimitMax) << "\n"
        << "Load position: X" << mm(m.Travel.LoadPositionX) << " Y" << mm(m.Travel.LoadPositionY) << "\n"
        << "Clamps: " << m.ClampCount << " (width " << mm(m.ClampWidth) << ", depth " << mm(m.ClampDepth) << ")\n"
        << "Axis scales: " << FormatNumber(process.AxisScale[0], -1) << " " << FormatNumber(process.AxisScale[1], -1)
        << " " << FormatNumber(process.AxisScale[2], -1) << " " << FormatNumber(process.AxisScale[3], -1) << "\n"
        << "Root: " << c.Dirs.RootDir << "\n"
        << "Program directory: " << c.Dirs.ProgramDirPath << "\n"
        << "Active slot: " << c.ActiveSlot << "\n";
    for (int slot = 1; slot <= 2; ++slot) {
        const SlotRecord& r = process.Slots[slot - 1];
        out << "Slot " << slot << ": " << (r.Present ? r.ProgramName + " (" + r.ProgramDirName + ")" : "empty") << "\n";
    }
    out << "Card in use: " << (process.Card.CardInUse ? "yes" : "no (office seat)") << "\n"
        << "Poll log: " << (process.Card.PollLogOn ? "on" : "off") << "\n"
        << "Poll interval: " << c.Card.PollIntervalMs << " ms (restart delay " << c.Card.PollRestartDelayMs << " ms)\n";
    return out.str();
}

}  // namespace kirvana

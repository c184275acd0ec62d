// The start of the process and its two ways out.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "controller/card_link.h"
#include "controller/controller_platform.h"
#include "controller/conversation.h"
#include "controller/display_model.h"
#include "core/config.h"
#include "system/poll_cycle.h"
#include "system/slots.h"
#include "tooling/tooling.h"

namespace kirvana {

// The process-wide records, owned by the one object that runs Main.
struct Process {
    Installation Config;
    Tooling Tools;
    CardState Card;
    bool ShuttingDown = false;
    // PlasmaSettingsForm may send its block to the card.
    bool PlasmaBlockAllowed = false;
    std::string LastSelectedProgram;
    // The three status edges of the poll cycle.
    std::array<bool, 3> StatusEdges{};
    // Scale factors of the four axes, from "#1->" to "#4->"; never 0.
    std::array<double, 4> AxisScale{1, 1, 1, 1};
    // The two active slots; `Config.ActiveSlot` names the one shown and run.
    std::array<SlotRecord, 2> Slots;
    // The machine's state as the poll cycle last read it.
    bool Running = false;
    bool InFeedhold = false;
    bool InCycle = false;
    // The poll cycle's values between ticks, and what it shows.
    PollState Poll;
    DisplayModel Display;
};

// What Main needs of the screens, the event queue and the computer.
class StartupPlatform : public ControllerPlatform {
public:
    // Shows the splash without blocking and starts its timer; SplashDone turns true at its first tick.
    virtual void ShowSplash(const std::string& title, const std::string& version) = 0;
    virtual bool SplashDone() = 0;
    virtual void StopSplashTimer() = 0;
    // One pass of the event queue (it may wait briefly for an event).
    virtual void ProcessEvents() = 0;
    // A message box with an exclamation icon and one OK button; returns when it is closed.
    virtual void ShowMessageBox(const std::string& text, const std::string& title) = 0;
    // A question through the warning screen; true for yes.
    virtual bool AskOperator(const std::string& text) = 0;
    // A warning through the warning screen, with one OK button.
    virtual void ShowWarning(const std::string& text) = 0;
    virtual void ShowFrontEnd() = 0;
    virtual bool FrontEndVisible() = 0;
    // The slot's plot drawn anew after its program changed; a seat without a plot has nothing to do.
    virtual void RedrawSlotPlot(int /*slot*/) {}
    virtual void UnloadFrontEnd() = 0;
    // Starts a program with a normal window; the result is ignored.
    virtual void StartProgram(const std::string& path) = 0;
    // Shuts the computer down. Never let through by the demo or the tests.
    virtual void PowerOff() = 0;
    // Ends the process.
    virtual void EndProcess() = 0;
};

// The steps of the start and the end that other subsystems own: each runs at its place in
// the sequence when it is given.
struct StartupSteps {
    // Sets up the card link from the configuration, just before the card is opened.
    std::function<void(Process&)> ConfigureCard;
    std::function<void(Process&)> ReadColours;
    std::function<void(Process&)> ReadPlotConfig;
    std::function<void(Process&)> ReadDialogueProgram;
    std::function<void(Process&)> ReadSerialSettings;
    std::function<void(Process&)> PrepareReceiveFiles;
    std::function<void(Process&)> CloseSerialPort;
    std::function<void(Process&)> CloseReceiveFile;
    std::function<void(Process&)> CloseDrawingChannels;
};

struct StartOutcome {
    enum class Kind { Started, ConfigurationFault, CardNotOpened } Result = Kind::Started;
    ConfigFault Fault;  // with ConfigurationFault
    int ExitCode() const { return Result == Kind::Started ? 0 : (Result == Kind::ConfigurationFault ? 3 : 4); }
};

inline constexpr const char* SystemTitle = "Kirvana 32";
inline constexpr double SystemVersion = 1.3;

// The start, in the current directory of the process. A null link means no card can be opened.
StartOutcome Main(Process& process, StartupPlatform& platform, CardLink* link, const StartupSteps& steps);

// Reads Machine.dat, Westinghouse.cfg and Profiler.cfg, then Punch.dat, Plasma.dat,
// Machine.stn and Machine.trt.
ConfigResult ReadMachineData(Process& process);

// The ends of the process: for the operator (optionally powering off) and for a technician.
void Shutdown(Process& process, StartupPlatform& platform, CardLink* link, const StartupSteps& steps, bool powerOff);
void ShutdownForService(Process& process, StartupPlatform& platform, CardLink* link, const StartupSteps& steps);

// The text shown for a fault of the card link.
std::string CardFaultText(std::int32_t number, const std::string& description, const std::string& lastCommand);
// The card fault handler: asks the operator when faults are reported, ends for service on yes,
// and clears the last command in every case.
void HandleCardFault(Process& process, StartupPlatform& platform, CardLink* link, const StartupSteps& steps,
                     std::int32_t number, const std::string& description);

// The machine summary that the office seat prints after a start.
std::string MachineSummary(const Process& process);

}  // namespace kirvana

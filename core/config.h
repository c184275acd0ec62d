// The installation's configuration files: Control.cfg, Machine.dat, Westinghouse.cfg,
// Profiler.cfg, Control.cnc, PMAC.cfg, IO.msg, Logic.msg and Service.cfg.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace kirvana {

// Directory names of the installation, each ending in "/".
struct Directories {
    std::string RootDir;
    std::string PmacDir;
    std::string DataDir;
    std::string SettingsDir;
    std::string ServiceDir = "Service/";  // relative until Control.cfg is read
    std::string RevSubsDir;
    std::string ToolsDir;
    std::string MessagesDir;
    std::string HelpDir;
    std::string DialogueFileStem;
    std::string ReverseFileStem;
    std::string ProgramRoot;
    std::string ProgramDirName;
    std::string ProgramDirPath;
};

// Where the machine loads a sheet (the start of every program) and the box it can travel in
// (Machine.dat lines 7 to 10): the passes that model a program's moves take them as one.
struct MachineTravel {
    float LoadPositionX = 0, LoadPositionY = 0;
    float XLimitMin = 0, XLimitMax = 0, YLimitMin = 0, YLimitMax = 0;
};

// Machine.dat with Westinghouse.cfg and Profiler.cfg.
struct MachineData {
    std::string MachineName;
    bool AmadaMachine = false;
    std::int16_t MachineType = 0;
    bool HasTurret = false;
    std::int16_t ProfilerKind = 0;
    std::int16_t MachineOrientation = 0;
    std::int16_t StationCount = 0;
    bool Line5Flag = false;  // stored, read by nothing
    bool HasThirdAxis = false;
    MachineTravel Travel;  // lines 7 to 10
    float ClampWidth = 0;
    float Line14Value = 0;  // stored, not used
    float ClampDepth = 0;
    std::int16_t ClampCount = 0;
    float PlotTableX = 0;
    float PlotTableY = 0;
    bool SwapArcWords = false;
    bool ArcCentreIncremental = false;
    bool ProfilerArcSwap = false;
    bool ProfilerArcCentre = false;
    float ProfilerValue = 0;
    bool ProfilerFlag = false;
};

// IO.msg (entries 1 to 64) and Logic.msg (entries 0 to 31, one per bit of P1020).
struct MessageTables {
    std::array<std::string, 65> IOMessages;
    std::array<std::string, 32> LogicMessages;
};

// The deadline of a long card operation when PMAC.cfg gives none (or one of 0 or less).
inline constexpr std::int32_t DefaultOperationDeadlineMs = 30000;

// Control.cnc and PMAC.cfg.
struct CardSetup {
    bool CardInUse = true;
    bool PollLogOn = false;
    bool SaveOnShutdown = false;
    std::int32_t SaveWaitMs = 0;
    std::int32_t PollIntervalMs = 50;
    std::int32_t PollRestartDelayMs = 0;
    // PMAC.cfg line 5, "label: host[:port]": where the card is reached; empty for the default.
    std::string CardAddressLine;
    // PMAC.cfg line 6: how long one long card operation (a selection's download, a run of the
    // office seat's card command) may take in all before it fails as a card fault.
    std::int32_t OperationDeadlineMs = DefaultOperationDeadlineMs;
};

// What the installation's files say: one record, owned by the process.
struct Installation {
    Directories Dirs;
    std::int16_t ActiveSlot = 1;
    MachineData Machine;
    MessageTables Messages;
    CardSetup Card;
};

// A required file that is missing or unreadable, or a value that does not fit: the start
// ends with this message, and LastFile.txt names the file.
struct ConfigFault {
    std::string File;
    std::string Reason;
    std::string Message() const { return File + ": " + Reason; }
};
using ConfigResult = std::optional<ConfigFault>;

// The directory names under RootDir.
void DeriveDirectories(Directories& dirs);
// Creates the directories of the installation under RootDir that are missing, in the order of
// the start: PMAC, Messages, Messages/Help, Data, Settings, Service, RevSubs, Tools, Dialogue,
// Dialogue/Reverse.
ConfigResult CreateInstallationDirs(const Directories& dirs);
// The serial line's settings file, Control.cms in DataDir, must be there and readable at start
// (its lines are read by the serial transfer); NoteFile first.
ConfigResult RequireCommSettingsFile(const Directories& dirs);
// Reads Control.cfg from the current directory, derives and creates the directories,
// settles the current program directory and writes Control.cfg back.
ConfigResult ReadControlConfig(Installation& installation);
// Writes the five lines of Control.cfg to RootDir.
[[nodiscard]] bool WriteControlConfig(const Installation& installation);
// Makes a directory under the program root (or a whole path) the current program directory;
// false when Control.cfg cannot be written.
[[nodiscard]] bool SetProgramDir(Installation& installation, const std::string& name);
// Clears the machine values and reads Machine.dat, Westinghouse.cfg and Profiler.cfg.
ConfigResult ReadMachineFiles(const Directories& dirs, MachineData& machine);
// Reads IO.msg, then Logic.msg.
ConfigResult ReadMessageTables(const Directories& dirs, MessageTables& messages);
// Reads Control.cnc, then PMAC.cfg.
ConfigResult ReadCardSetup(const Directories& dirs, CardSetup& card);
// Service.cfg: the path of the service program, or "" when none is named or it doesn't exist.
std::string ReadServiceProgram(const Directories& dirs);

// The reading helpers the other tables share: labelled lines are taken behind their ":" and in
// upper case; a yes-or-no value is true when it holds a "Y".
std::string ConfigValue(const std::string& line);
bool YesNoValue(const std::string& line);
inline constexpr const char* EndMarker = "******";

}  // namespace kirvana

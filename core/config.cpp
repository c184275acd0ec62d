#include "core/config.h"

#include <filesystem>
#include <vector>

#include "core/number.h"
#include "core/paths.h"
#include "core/text.h"

namespace kirvana {

namespace fs = std::filesystem;

std::string ConfigValue(const std::string& line) { return UpperCase(AfterColon(line)); }

bool YesNoValue(const std::string& line) { return ConfigValue(line).find('Y') != std::string::npos; }

namespace {

// A directory name: trimmed, with "/" behind it. An empty name is the current directory.
std::string WithSlash(std::string_view line) {
    std::string name(Trim(line));
    if (name.empty()) return "./";
    if (name.back() != '/') name += '/';
    return name;
}

// Reads a file that must exist; NoteFile first, as for every configuration file.
ConfigResult ReadRequired(const Directories& dirs, const std::string& path, const std::string& shown,
                          std::vector<std::string>& lines) {
    NoteFile(dirs.ServiceDir, path);
    auto read = ReadLines(path);
    if (!read) return ConfigFault{shown, "required file is missing or cannot be read"};
    lines = std::move(*read);
    return std::nullopt;
}

// Reads a file that may be missing; false when it is.
bool ReadOptional(const Directories& dirs, const std::string& path, std::vector<std::string>& lines) {
    if (!FileExists(path)) return false;
    NoteFile(dirs.ServiceDir, path);
    auto read = ReadLines(path);
    if (!read) return false;
    lines = std::move(*read);
    return true;
}

// Lines 1 to 3 of Control.cfg name directories that the start creates: a line with a control
// character, or longer than any directory name, is refused before anything is made of it.
// Line 3 is a directory name under the program root as the operator chooses it.
constexpr std::size_t MostDirectoryLine = 255;

ConfigResult DirectoryLineFault(std::string_view line, std::size_t lineIndex) {
    const std::string where = "line " + std::to_string(lineIndex + 1);
    if (line.size() > MostDirectoryLine)
        return ConfigFault{"Control.cfg",
                           where + " is longer than " + std::to_string(MostDirectoryLine) + " characters"};
    for (char c : Trim(line)) {
        auto byte = static_cast<unsigned char>(c);
        if (byte < 32 || byte == 127) return ConfigFault{"Control.cfg", where + " holds a control character"};
    }
    return std::nullopt;
}

ConfigFault OutOfRange(const std::string& file, std::size_t lineIndex) {
    return ConfigFault{file, "line " + std::to_string(lineIndex + 1) + " holds a value out of range"};
}

ConfigResult CreateDirectory(const std::string& dir) {
    std::error_code error;
    if (!IsDirectory(dir) && !fs::create_directories(dir, error) && !IsDirectory(dir))
        return ConfigFault{dir, "directory cannot be created"};
    return std::nullopt;
}

}  // namespace

void DeriveDirectories(Directories& d) {
    d.PmacDir = d.RootDir + "PMAC/";
    d.DataDir = d.RootDir + "Data/";
    d.SettingsDir = d.RootDir + "Settings/";
    d.ServiceDir = d.RootDir + "Service/";
    d.RevSubsDir = d.RootDir + "RevSubs/";
    d.ToolsDir = d.RootDir + "Tools/";
    d.MessagesDir = d.RootDir + "Messages/";
    d.HelpDir = d.RootDir + "Messages/Help/";
    d.DialogueFileStem = d.RootDir + "Dialogue/Dlgprg.";
    d.ReverseFileStem = d.RootDir + "Dialogue/Reverse/Rvsprg.";
}

ConfigResult CreateInstallationDirs(const Directories& d) {
    for (const char* dir : {"PMAC", "Messages", "Messages/Help", "Data", "Settings", "Service", "RevSubs", "Tools",
                            "Dialogue", "Dialogue/Reverse"})
        if (auto fault = CreateDirectory(d.RootDir + dir)) return fault;
    return std::nullopt;
}

ConfigResult ReadControlConfig(Installation& installation) {
    Directories& d = installation.Dirs;
    // 1. Lines 1 to 3, line 4 if the file goes on.
    std::vector<std::string> lines;
    if (auto fault = ReadRequired(d, "Control.cfg", "Control.cfg", lines)) return fault;
    if (lines.size() < 3) return ConfigFault{"Control.cfg", "has fewer than 3 lines"};
    for (std::size_t i = 0; i < 3; ++i)
        if (auto fault = DirectoryLineFault(lines[i], i)) return fault;
    // 2. Directory names.
    d.RootDir = WithSlash(lines[0]);
    d.ProgramRoot = WithSlash(lines[1]);
    d.ProgramDirName = std::string(Trim(lines[2]));
    if (HasDrive(d.ProgramDirName)) d.ProgramDirName.clear();
    // 3. The active slot: anything but 1 or 2 is 1.
    installation.ActiveSlot = 1;
    if (lines.size() > 3) {
        auto slot = TruncateToInt16(ToNumber(Trim(lines[3])));
        if (slot && (*slot == 1 || *slot == 2)) installation.ActiveSlot = *slot;
    }
    // 4. The derived directories; 5. create what is missing, in this order.
    DeriveDirectories(d);
    if (auto fault = CreateInstallationDirs(d)) return fault;
    std::string programRoot = d.ProgramRoot.substr(0, d.ProgramRoot.size() - 1);
    if (auto fault = CreateDirectory(programRoot)) return fault;
    // 6. A current directory that doesn't exist is replaced: "Dorvenis", else the first one.
    std::string current = ResolveNoCase(d.ProgramRoot + d.ProgramDirName);
    if (IsDirectory(current)) {
        d.ProgramDirName = current.substr(d.ProgramRoot.size());
    } else if (IsDirectory(d.ProgramRoot + "Dorvenis")) {
        d.ProgramDirName = "Dorvenis";
    } else {
        auto found = ListDirectory(programRoot, true);
        d.ProgramDirName = found.empty() ? std::string() : found.front();
    }
    // 7. The whole path of the current directory.
    d.ProgramDirPath = DirectoryPath(d.ProgramDirName, d.ProgramRoot);
    // 8. Control.cfg is written anew.
    if (!WriteControlConfig(installation)) return ConfigFault{d.RootDir + "Control.cfg", "cannot be written"};
    return std::nullopt;
}

bool WriteControlConfig(const Installation& installation) {
    const Directories& d = installation.Dirs;
    return WriteLines(d.RootDir + "Control.cfg",
                      {d.RootDir, d.ProgramRoot, d.ProgramDirName, std::to_string(installation.ActiveSlot), EndMarker});
}

bool SetProgramDir(Installation& installation, const std::string& name) {
    Directories& d = installation.Dirs;
    // 1. A name whose drive isn't ready, or that doesn't exist under the root, is empty.
    std::string dir(Trim(name));
    if (HasDrive(dir)) {
        if (!DriveReady(dir)) dir.clear();
    } else if (!dir.empty()) {
        std::string found = ResolveNoCase(d.ProgramRoot + dir);
        dir = IsDirectory(found) ? found.substr(d.ProgramRoot.size()) : std::string();
    }
    // 2. System subroutines never make the current directory: take the first other one.
    auto excluded = [](const std::string& n) {
        std::string up = UpperCase(n);
        return up.empty() || up == "." || up == ".." || up == "EXSUBS";
    };
    if (excluded(dir)) {
        dir.clear();
        for (const std::string& entry : ListDirectory(d.ProgramRoot, true)) {
            if (!excluded(entry)) {
                dir = entry;
                break;
            }
        }
    }
    // 3. Settle it and write Control.cfg.
    d.ProgramDirName = dir;
    d.ProgramDirPath = DirectoryPath(dir, d.ProgramRoot);
    return WriteControlConfig(installation);
}

ConfigResult ReadMachineFiles(const Directories& dirs, MachineData& machine) {
    machine = MachineData{};
    const std::string path = dirs.DataDir + "Machine.dat";
    std::vector<std::string> lines;
    if (auto fault = ReadRequired(dirs, path, path, lines)) return fault;
    if (lines.size() < 18) return ConfigFault{path, "has fewer than 18 lines"};

    auto number = [&](std::size_t i) { return ToSingle(ToNumber(ConfigValue(lines[i]))); };
    std::optional<ConfigFault> fault;
    auto integer = [&](std::size_t i) -> std::int16_t {
        auto value = TruncateToInt16(ToNumber(ConfigValue(lines[i])));
        if (!value && !fault) fault = OutOfRange(path, i);
        return value.value_or(0);
    };

    machine.MachineName = ConfigValue(lines[0]);
    machine.AmadaMachine = machine.MachineName.find("AMADA") != std::string::npos;
    machine.MachineType = integer(1);
    machine.HasTurret = machine.MachineType >= 10;
    machine.ProfilerKind = static_cast<std::int16_t>(machine.MachineType % 10);
    machine.HasThirdAxis = machine.MachineType >= 20 && machine.MachineType <= 29;
    machine.MachineOrientation = integer(2);
    machine.StationCount = integer(3);
    machine.Line5Flag = YesNoValue(lines[4]);
    machine.HasThirdAxis = YesNoValue(lines[5]);
    machine.Travel.LoadPositionX = number(6);
    machine.Travel.LoadPositionY = number(7);
    machine.Travel.XLimitMin = number(8);
    machine.Travel.XLimitMax = number(9);
    machine.Travel.YLimitMin = number(10);
    machine.Travel.YLimitMax = number(11);
    machine.ClampWidth = number(12);
    machine.Line14Value = number(13);
    machine.ClampDepth = number(14);
    machine.ClampCount = integer(15);
    machine.PlotTableX = number(16);
    machine.PlotTableY = number(17);
    if (fault) return fault;

    if (ReadOptional(dirs, dirs.DataDir + "Westinghouse.cfg", lines)) {
        if (lines.size() > 0) machine.SwapArcWords = YesNoValue(lines[0]);
        if (lines.size() > 1) machine.ArcCentreIncremental = YesNoValue(lines[1]);
    }
    if (ReadOptional(dirs, dirs.DataDir + "Profiler.cfg", lines)) {
        if (lines.size() > 0) machine.ProfilerArcSwap = YesNoValue(lines[0]);
        if (lines.size() > 1) machine.ProfilerArcCentre = YesNoValue(lines[1]);
        if (lines.size() > 2) {
            machine.ProfilerValue = ToSingle(ToNumber(ConfigValue(lines[2])));
            if (lines.size() > 3) machine.ProfilerFlag = YesNoValue(lines[3]);
        }
    }
    return std::nullopt;
}

namespace {

// One "number, text" table. The reading stops at an empty line, the end marker, a line
// without its commas, a number out of range, and at the end of the file, whose test comes
// before the line is stored: a last line with no marker behind it is lost.
ConfigResult ReadMessageFile(const Directories& dirs, const std::string& path, int first, int last, bool secondComma,
                             std::string* entries) {
    std::vector<std::string> lines;
    if (auto fault = ReadRequired(dirs, path, path, lines)) return fault;
    for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
        const std::string& line = lines[i];
        if (Trim(line).empty() || Trim(line) == EndMarker) break;
        std::size_t comma = line.find(',');
        if (comma == std::string::npos) break;
        std::size_t end = std::string::npos;
        if (secondComma) {
            end = line.find(',', comma + 1);
            if (end == std::string::npos) break;
        }
        auto number = RoundToInt16(ToNumber(std::string_view(line).substr(0, comma)));
        if (!number || *number < first || *number > last) break;
        entries[*number] = std::string(
            Trim(std::string_view(line).substr(comma + 1, end == std::string::npos ? end : end - comma - 1)));
    }
    return std::nullopt;
}

}  // namespace

ConfigResult ReadMessageTables(const Directories& dirs, MessageTables& messages) {
    messages = MessageTables{};
    if (auto fault = ReadMessageFile(dirs, dirs.MessagesDir + "IO.msg", 1, 64, false, messages.IOMessages.data()))
        return fault;
    return ReadMessageFile(dirs, dirs.MessagesDir + "Logic.msg", 0, 31, true, messages.LogicMessages.data());
}

ConfigResult ReadCardSetup(const Directories& dirs, CardSetup& card) {
    card = CardSetup{};
    std::vector<std::string> lines;
    // Control.cnc: the card is in use unless line 1 says exactly "FALSE".
    if (ReadOptional(dirs, dirs.RootDir + "Control.cnc", lines)) {
        if (lines.size() > 0) card.CardInUse = ConfigValue(lines[0]) != "FALSE";
        if (lines.size() > 1) card.PollLogOn = ConfigValue(lines[1]) == "TRUE";
    }
    // PMAC.cfg: each line optional; the marker ends the file.
    const std::string pmac = dirs.RootDir + "PMAC.cfg";
    if (ReadOptional(dirs, pmac, lines)) {
        std::size_t count = 0;
        while (count < lines.size() && count < 6 && Trim(lines[count]) != EndMarker) ++count;
        auto whole = [&](std::size_t i, std::int32_t& value) {
            auto rounded = RoundToInt32(ToNumber(ConfigValue(lines[i])));
            if (rounded) value = *rounded;
            return rounded.has_value();
        };
        if (count > 0) card.SaveOnShutdown = YesNoValue(lines[0]);
        if (count > 1) {
            if (!whole(1, card.SaveWaitMs)) return OutOfRange(pmac, 1);
            if (card.SaveWaitMs < 0) card.SaveWaitMs = 0;
        }
        if (count > 2) {
            if (!whole(2, card.PollIntervalMs)) return OutOfRange(pmac, 2);
            if (card.PollIntervalMs < 5) card.PollIntervalMs = 50;
        }
        if (count > 3 && !whole(3, card.PollRestartDelayMs)) return OutOfRange(pmac, 3);
        if (count > 4) card.CardAddressLine = std::string(Trim(lines[4]));
        if (count > 5) {
            if (!whole(5, card.OperationDeadlineMs)) return OutOfRange(pmac, 5);
            if (card.OperationDeadlineMs <= 0) card.OperationDeadlineMs = DefaultOperationDeadlineMs;
        }
    }
    if (card.PollRestartDelayMs < card.PollIntervalMs) card.PollRestartDelayMs = card.PollIntervalMs;
    return std::nullopt;
}

std::string ReadServiceProgram(const Directories& dirs) {
    std::vector<std::string> lines;
    if (!ReadOptional(dirs, dirs.RootDir + "Service.cfg", lines) || lines.empty()) return {};
    std::string path(Trim(lines[0]));
    if (path == EndMarker || !FileExists(path)) return {};
    return path;
}

ConfigResult RequireCommSettingsFile(const Directories& dirs) {
    std::vector<std::string> lines;
    const std::string path = dirs.DataDir + "Control.cms";
    return ReadRequired(dirs, path, path, lines);
}

}  // namespace kirvana

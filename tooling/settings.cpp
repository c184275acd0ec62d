#include "tooling/settings.h"

#include "core/names.h"
#include "core/paths.h"
#include "core/text.h"
#include "tooling/single.h"

namespace kirvana {

namespace {

bool IsEndMarker(const std::string& line) { return Trim(line) == EndMarker; }

std::int16_t WordOf(const std::string& line) { return ToWordOrZero(ToNumber(Trim(line))); }
float SingleOf(const std::string& line) { return ToSingle(ToNumber(Trim(line))); }
std::string SingleText(float value) { return FormatNumber(Number(value), -1); }

// Reads a settings file's lines; `serviceDir` not empty notes the file first.
std::optional<std::vector<std::string>> ReadSettingsFile(const std::string& file, std::string_view serviceDir) {
    const std::string path = ResolveNoCase(file);
    if (!FileExists(path)) return std::nullopt;
    if (!serviceDir.empty()) NoteFile(serviceDir, path);
    return ReadLines(path);
}

// The fields of a set, one per line behind the description; reading stops at the end marker
// or the end of the file, leaving the fields not read as they were.
template <typename Setter>
void ReadFields(const std::vector<std::string>& lines, std::size_t count, Setter set) {
    for (std::size_t i = 0; i < count && i + 1 < lines.size(); ++i) {
        if (IsEndMarker(lines[i + 1])) break;
        set(i, lines[i + 1]);
    }
}

void SetPunchField(PunchSetting& setting, std::size_t i, const std::string& line) {
    switch (i) {
        case 0:
            setting.FeedPercent = WordOf(line);
            break;
        case 1:
            setting.AccelPercent = WordOf(line);
            break;
        case 2:
            setting.PreDelay = SingleOf(line);
            break;
        case 3:
            setting.PostDelay = SingleOf(line);
            break;
        case 4:
            setting.InPosition = SingleOf(line);
            break;
        default:
            setting.RamTimer = SingleOf(line);
            break;
    }
}

void SetPlasmaField(PlasmaSetting& setting, std::size_t i, const std::string& line) {
    switch (i) {
        case 0:
            setting.RapidSpeed = WordOf(line);
            break;
        case 1:
            setting.CutSpeed = WordOf(line);
            break;
        case 2:
            setting.MinCornerSpeed = WordOf(line);
            break;
        case 3:
            setting.FreezeSpeed = WordOf(line);
            break;
        case 4:
            setting.HeightOn = SingleOf(line);
            break;
        case 5:
            setting.HeightOff = SingleOf(line);
            break;
        case 6:
            setting.Slowdown = WordOf(line);
            break;
        case 7:
            setting.Kerf = SingleOf(line);
            break;
        case 8:
            setting.Pierce = SingleOf(line);
            break;
        default:
            setting.TorchType = WordOf(line);
            break;
    }
}

SaveOutcome SaveAs(const Directories& dirs, const std::string& name, const std::string& extension,
                   const AskOperator& ask, const std::function<bool(const std::string&)>& write) {
    const std::string trimmed(Trim(name));
    if (!AcceptableName(trimmed)) return SaveOutcome::InvalidName;
    const std::string path = ResolveNoCase(dirs.SettingsDir + trimmed + extension);
    if (FileExists(path)) {
        if (!ask || !ask({"Settings", trimmed, "Already Exist !", "Overwrite Them ?"})) return SaveOutcome::Declined;
    }
    return write(path) ? SaveOutcome::Saved : SaveOutcome::Failed;
}

}  // namespace

void ClearSettings(SettingsArray& settings) { settings.fill(NoValue); }

void CopySettings(const SettingsArray& source, SettingsArray& target) { target = source; }

void MergeSettings(const SettingsArray& source, SettingsArray& target) {
    for (std::size_t i = 0; i < SettingsSlots; ++i)
        if (source[i] != NoValue) target[i] = source[i];
}

void PlasmaToSettings(const PlasmaSetting& setting, SettingsArray& settings) {
    settings[0] = setting.RapidSpeed;
    settings[1] = setting.CutSpeed;
    settings[2] = setting.MinCornerSpeed;
    settings[3] = setting.FreezeSpeed;
    settings[4] = setting.HeightOn;
    settings[5] = setting.HeightOff;
    settings[6] = setting.Slowdown;
    settings[7] = setting.Kerf;
    settings[8] = setting.Pierce;
    settings[9] = setting.TorchType;
}

void DefaultPunchSetting(PunchSetting& setting) { setting = PunchSetting(); }

std::vector<std::string> PunchSettingTexts(const PunchSetting& s) {
    return {IntegerText(s.FeedPercent), IntegerText(s.AccelPercent), SingleText(s.PreDelay),
            SingleText(s.PostDelay),    SingleText(s.InPosition),    SingleText(s.RamTimer)};
}

std::vector<std::string> PlasmaSettingTexts(const PlasmaSetting& s) {
    return {IntegerText(s.RapidSpeed),  IntegerText(s.CutSpeed), IntegerText(s.MinCornerSpeed),
            IntegerText(s.FreezeSpeed), SingleText(s.HeightOn),  SingleText(s.HeightOff),
            IntegerText(s.Slowdown),    SingleText(s.Kerf),      SingleText(s.Pierce),
            IntegerText(s.TorchType)};
}

SettingsLoad LoadPunchSetting(const std::string& file, std::string& description, PunchSetting& setting) {
    DefaultPunchSetting(setting);
    description.clear();
    auto lines = ReadSettingsFile(file, {});
    if (!lines) return SettingsLoad::Missing;
    if (lines->empty() || IsEndMarker(lines->front())) return SettingsLoad::NoDescription;
    description = std::string(Trim(lines->front()));
    ReadFields(*lines, 6, [&](std::size_t i, const std::string& line) { SetPunchField(setting, i, line); });
    return SettingsLoad::Loaded;
}

bool SavePunchSetting(const std::string& file, const std::string& description, const PunchSetting& setting) {
    std::vector<std::string> lines{description};
    for (auto& text : PunchSettingTexts(setting)) lines.push_back(text);
    lines.push_back(EndMarker);
    return WriteLines(file, lines);
}

void ClearPlasmaSetting(PlasmaSetting& setting) { setting = PlasmaSetting(); }

SettingsLoad LoadPlasmaSetting(const std::string& file, std::string& description, PlasmaSetting& setting) {
    ClearPlasmaSetting(setting);
    description.clear();
    auto lines = ReadSettingsFile(file, {});
    if (!lines) return SettingsLoad::Missing;
    if (lines->empty() || IsEndMarker(lines->front())) return SettingsLoad::NoDescription;
    description = std::string(Trim(lines->front()));
    ReadFields(*lines, 10, [&](std::size_t i, const std::string& line) { SetPlasmaField(setting, i, line); });
    return SettingsLoad::Loaded;
}

bool SavePlasmaSetting(const std::string& file, const std::string& description, const PlasmaSetting& setting) {
    std::vector<std::string> lines{description};
    for (auto& text : PlasmaSettingTexts(setting)) lines.push_back(text);
    lines.push_back(EndMarker);
    return WriteLines(file, lines);
}

PunchSetting PunchSettingFromTexts(const std::vector<std::string>& texts) {
    PunchSetting setting;
    for (std::size_t i = 0; i < texts.size() && i < 6; ++i) SetPunchField(setting, i, texts[i]);
    return setting;
}

PlasmaSetting PlasmaSettingFromTexts(const std::vector<std::string>& texts) {
    PlasmaSetting setting;
    for (std::size_t i = 0; i < texts.size() && i < 10; ++i) SetPlasmaField(setting, i, texts[i]);
    return setting;
}

bool PlasmaSettingIsSet(const PlasmaSetting& s) {
    return s.RapidSpeed != NoWord || s.CutSpeed != NoWord || s.MinCornerSpeed != NoWord || s.FreezeSpeed != NoWord ||
           s.HeightOn != NoValue || s.HeightOff != NoValue || s.Slowdown != NoWord || s.Kerf != NoValue ||
           s.Pierce != NoValue || s.TorchType != NoWord;
}

std::vector<std::string> SettingNames(const Directories& dirs, const std::string& extension) {
    std::vector<std::string> names;
    const std::string wanted = UpperCase(extension);
    for (const auto& file : ListDirectory(dirs.SettingsDir, false)) {
        if (file.size() > wanted.size() && UpperCase(file.substr(file.size() - wanted.size())) == wanted)
            names.push_back(file.substr(0, file.size() - wanted.size()));
    }
    return names;
}

DefaultPlasma DefaultPlasmaSetting(const Directories& dirs) {
    DefaultPlasma result;
    const std::string defaultPath = ResolveNoCase(dirs.SettingsDir + "Default.pls");
    if (FileExists(defaultPath)) {
        LoadPlasmaSetting(defaultPath, result.Description, result.Setting);
        result.Name = "Default";
        return result;
    }
    auto names = SettingNames(dirs, ".pls");
    if (!names.empty()) {
        // The first set found stands in as the default, by its name.
        LoadPlasmaSetting(ResolveNoCase(dirs.SettingsDir + names.front() + ".pls"), result.Description, result.Setting);
        result.Name = names.front();
        return result;
    }
    ClearPlasmaSetting(result.Setting);
    return result;
}

PlasmaSetting ProgramPlasmaSetting(const Directories& dirs, const std::string& plsFile) {
    PlasmaSetting setting;
    std::string description;
    if (LoadPlasmaSetting(plsFile, description, setting) == SettingsLoad::Loaded && PlasmaSettingIsSet(setting))
        return setting;
    return DefaultPlasmaSetting(dirs).Setting;
}

SaveOutcome SavePunchSettingAs(const Directories& dirs, const std::string& name, const std::string& description,
                               const PunchSetting& setting, const AskOperator& ask) {
    return SaveAs(dirs, name, ".stg", ask,
                  [&](const std::string& path) { return SavePunchSetting(path, description, setting); });
}

SaveOutcome SavePlasmaSettingAs(const Directories& dirs, const std::string& name, const std::string& description,
                                const PlasmaSetting& setting, const AskOperator& ask) {
    return SaveAs(dirs, name, ".pls", ask,
                  [&](const std::string& path) { return SavePlasmaSetting(path, description, setting); });
}

std::vector<std::string> TorchTypeList(const PlasmaData& data, const std::string& plasmaToolName) {
    if (!data.TorchTypes.empty()) return data.TorchTypes;
    const std::string name(Trim(plasmaToolName));
    return {name, name};
}

ConfigResult ReadPunchFile(const Directories& dirs, PunchData& data) {
    data = PunchData();
    const std::string path = ResolveNoCase(dirs.DataDir + "Punch.dat");
    if (!FileExists(path)) return std::nullopt;
    NoteFile(dirs.ServiceDir, path);
    auto lines = ReadLines(path);
    if (!lines) return std::nullopt;
    PunchData read;
    read.FromFile = true;
    read.RamTimerChoices.clear();
    if (lines->size() > 0) read.RamTimerCaption = ConfigValue((*lines)[0]);
    if (lines->size() > 1) read.RamTimerChoice = YesNoValue((*lines)[1]);
    for (std::size_t i = 2; i < lines->size(); ++i) {
        std::string_view line = Trim((*lines)[i]);
        if (line.empty() || line == EndMarker) break;
        read.RamTimerChoices.push_back(ToSingle(ToNumber(line)));
    }
    // A file with no numbers counts as no file.
    if (read.RamTimerChoices.empty()) {
        data.FromFile = true;
        return std::nullopt;
    }
    data = read;
    return std::nullopt;
}

ConfigResult ReadPlasmaFile(const Directories& dirs, PlasmaData& data) {
    data = PlasmaData();
    const std::string path = ResolveNoCase(dirs.DataDir + "Plasma.dat");
    if (!FileExists(path)) return std::nullopt;
    NoteFile(dirs.ServiceDir, path);
    auto lines = ReadLines(path);
    if (!lines) return std::nullopt;
    for (const auto& raw : *lines) {
        std::string_view line = Trim(raw);
        if (line.empty() || line == EndMarker) break;
        data.TorchTypes.emplace_back(line);
    }
    return std::nullopt;
}

}  // namespace kirvana

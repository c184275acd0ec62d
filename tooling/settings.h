// Punch and plasma process settings: the records, the named sets in SettingsDir (`.stg`,
// `.pls`), `Default.pls`, the 24-slot settings array of a drawing entity, and the screen
// tailoring files `Punch.dat` and `Plasma.dat`.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/config.h"
#include "core/number.h"

namespace kirvana {

struct PunchSetting {
    std::int16_t FeedPercent = 100;
    std::int16_t AccelPercent = 100;
    float PreDelay = 0;    // seconds
    float PostDelay = 0;   // seconds
    float InPosition = 0;  // mm
    float RamTimer = 0;    // ms
};

// Every field NoValue (-999) when unset.
inline constexpr std::int16_t NoWord = -999;
struct PlasmaSetting {
    std::int16_t RapidSpeed = NoWord;
    std::int16_t CutSpeed = NoWord;
    std::int16_t MinCornerSpeed = NoWord;
    std::int16_t FreezeSpeed = NoWord;
    float HeightOn = NoValue;
    float HeightOff = NoValue;
    std::int16_t Slowdown = NoWord;
    float Kerf = NoValue;
    float Pierce = NoValue;
    std::int16_t TorchType = NoWord;
};

// The settings of a drawing entity: slot n (1 to 24) is element n - 1.
inline constexpr std::size_t SettingsSlots = 24;
using SettingsArray = std::array<float, SettingsSlots>;

void ClearSettings(SettingsArray& settings);
void CopySettings(const SettingsArray& source, SettingsArray& target);
// Copies only the slots of the source that are set.
void MergeSettings(const SettingsArray& source, SettingsArray& target);
// Slots 1 to 10 take the plasma fields in their order; the others are left alone.
void PlasmaToSettings(const PlasmaSetting& setting, SettingsArray& settings);

// How a settings file was read.
enum class SettingsLoad {
    Loaded,         // description and values read
    Missing,        // no such file: defaults (punch) or all unset (plasma)
    NoDescription,  // the file has no description line: defaults
};

void DefaultPunchSetting(PunchSetting& setting);
// Line 1 the description, then the six values, then "******". Values that can't be read
// (or don't fit a 16-bit field) read as 0; values the file doesn't hold keep their defaults.
SettingsLoad LoadPunchSetting(const std::string& file, std::string& description, PunchSetting& setting);
[[nodiscard]] bool SavePunchSetting(const std::string& file, const std::string& description,
                                    const PunchSetting& setting);

void ClearPlasmaSetting(PlasmaSetting& setting);
// Line 1 the description, then the ten fields in their order, then "******".
SettingsLoad LoadPlasmaSetting(const std::string& file, std::string& description, PlasmaSetting& setting);
[[nodiscard]] bool SavePlasmaSetting(const std::string& file, const std::string& description,
                                     const PlasmaSetting& setting);
// False when every field is NoValue: such a set counts as no set.
bool PlasmaSettingIsSet(const PlasmaSetting& setting);

// The plasma set used when a program has none.
struct DefaultPlasma {
    PlasmaSetting Setting;
    std::string Description;
    std::string Name;  // "Default", the name of the first set found, or "" when none
};
// `Default.pls` in SettingsDir; else the first `*.pls` listed, which becomes the default by
// name; else all unset.
DefaultPlasma DefaultPlasmaSetting(const Directories& dirs);
// A program's set: its `.pls` when that holds a set, else the default set.
PlasmaSetting ProgramPlasmaSetting(const Directories& dirs, const std::string& plsFile);

// The names (without extension) of the sets in SettingsDir with this extension (".stg",
// ".pls", case ignored), in listing order.
std::vector<std::string> SettingNames(const Directories& dirs, const std::string& extension);

// Saving a set under a name from the description box. When the file exists the question
// is put as its lines ("Settings", the name, "Already Exist !", "Overwrite Them ?"); a "no"
// leaves the file as it was.
enum class SaveOutcome { Saved, Declined, Failed, InvalidName };
using AskOperator = std::function<bool(const std::vector<std::string>& lines)>;
SaveOutcome SavePunchSettingAs(const Directories& dirs, const std::string& name, const std::string& description,
                               const PunchSetting& setting, const AskOperator& ask);
SaveOutcome SavePlasmaSettingAs(const Directories& dirs, const std::string& name, const std::string& description,
                                const PlasmaSetting& setting, const AskOperator& ask);

// Punch.dat: the caption of the sixth punch setting, whether the ram timer is a choice, and
// the list of ram timer values.
struct PunchData {
    std::string RamTimerCaption = "RAM TIMER (MS)";
    bool RamTimerChoice = true;
    std::vector<float> RamTimerChoices = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    bool FromFile = false;
};
// Plasma.dat: the torch type texts. Empty when the file gives none: the list is then the
// plasma tool's name twice (`TorchTypeList`).
struct PlasmaData {
    std::vector<std::string> TorchTypes;
};
std::vector<std::string> TorchTypeList(const PlasmaData& data, const std::string& plasmaToolName);

// Readers of the optional files in DataDir. `NoteFile` is called before each opening.
ConfigResult ReadPunchFile(const Directories& dirs, PunchData& data);
ConfigResult ReadPlasmaFile(const Directories& dirs, PlasmaData& data);

// The texts of a setting for the screens and files: integers as they stand, singles by
// their shortest text.
std::vector<std::string> PunchSettingTexts(const PunchSetting& setting);
std::vector<std::string> PlasmaSettingTexts(const PlasmaSetting& setting);
// The other way, from the texts of the screens' boxes as the files are read: each the leading
// number of its text, a whole number that doesn't fit 16 bits as 0; boxes not given keep the
// defaults (punch) or stay unset (plasma).
PunchSetting PunchSettingFromTexts(const std::vector<std::string>& texts);
PlasmaSetting PlasmaSettingFromTexts(const std::vector<std::string>& texts);

}  // namespace kirvana

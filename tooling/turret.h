// The turret: the kinds of station (`Machine.stn`), the stations of this turret
// (`Machine.trt`), and the table a program carries (`.trt`, with its settings in `.stg`).
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/config.h"
#include "tooling/settings.h"
#include "tooling/tool_record.h"

namespace kirvana {

// One kind of station, a row of `Machine.stn`.
struct StationType {
    std::string TypeText;
    std::int16_t TypeNumber = 0;  // 1-9 plain, 10-19 with options, 20 and above autoindex
    float OffsetX = 0;            // mm from the punch centre
    float OffsetY = 0;
    float OffsetZ = 0;
    std::int16_t TypeWord = 0;
};
inline constexpr int StationTypeCount = 65;  // indexes 0 to 64
using StationTypes = std::array<StationType, StationTypeCount>;

// One station of a table.
struct Station {
    std::int16_t Valid = FalseWord;  // a tool stands here
    std::int16_t TNumber = 0;        // the T word of programs
    std::int16_t TPosition = 0;      // the T number in the card's units
    std::int16_t LoadNumber = 0;
    std::int16_t LoadPosition = 0;
    std::int16_t TypeIndex = 0;
    std::string TypeText;
    std::int16_t TypeNumber = 0;
    std::int16_t Autoindex = FalseWord;
    float OffsetX = 0;
    float OffsetY = 0;
    float OffsetZ = 0;
    std::string ToolText;  // empty when none
    ToolRecord Tool;       // Setting = TypeIndex, Station = TypeNumber, Extra2 = 1
    PunchSetting Settings;
};

// A table: element 0 is station 1.
using StationTable = std::vector<Station>;

// The station number in the card's units (what "M802=" takes).
std::int16_t CardPosition(std::int16_t number);

// A station with the values of its type; the tool and settings are left alone.
void ApplyStationType(Station& station, const StationTypes& types, std::int16_t typeIndex);
// Puts a tool text into a station: parsed, with the station's type in the tool. An empty
// or invalid text leaves the station empty.
void SetStationTool(Station& station, const std::string& toolText);
// Puts a tool record into a station and rebuilds its text; an invalid tool empties it.
void SetStationToolRecord(Station& station, const ToolRecord& tool);

// Machine.stn, read by comma fields: a header item, then for each type its index, text,
// type number, three offsets and type word, up to "******". Required.
ConfigResult ReadStationTypes(const Directories& dirs, StationTypes& types);
// Machine.trt: one station per line, "TNumber, LoadNumber, TypeIndex", up to "******" or an
// empty first item; `rows` stations. A type index outside 0 to 64 is a fault.
ConfigResult ReadTurretFile(const Directories& dirs, const StationTypes& types, std::size_t rows, StationTable& table);

// Copies every station and every field.
void CopyStationTable(const StationTable& source, StationTable& target);

// The station (1 to the table's size) whose T number is `tNumber`; a number no station has
// is returned as it stands, so that the callers' range checks catch it.
int StationOfTNumber(const StationTable& table, int tNumber);

// What a program's `.trt` holds beside its stations.
struct ProgramTurret {
    std::int16_t SettingWord = 0;               // the program's settings come from this table
    std::optional<std::int16_t> ActiveStation;  // the line after the stations, when there is one
};

// Reads a program's `.trt` into the table: each line gives a station's tool text and its six
// settings; an empty tool text leaves the station empty and still takes the settings.
// Stations the file doesn't reach are left alone. False when the file is missing.
bool ReadProgramTurret(const std::string& file, StationTable& table, ProgramTurret& header,
                       std::string_view serviceDir = {});
// Writes the table as a `.trt`: the setting word, a line per station, the active station
// when given, "******".
[[nodiscard]] bool WriteProgramTurret(const std::string& file, const StationTable& table, const ProgramTurret& header);
// One line of a `.trt`: the tool text (or "") and the six settings, ", " between them.
std::string TurretLine(const Station& station);

// A program's `.stg`: a line per station, "tool text, type index, feed, accel, pre delay,
// post delay, in position, ram timer", then "******".
[[nodiscard]] bool WriteProgramSettings(const std::string& file, const StationTable& table);
// For each station with a tool, takes the settings of the first line holding the same tool
// in the same type of station, or else the same tool in any station. False when missing.
bool ReadProgramSettings(const std::string& file, StationTable& table, std::string_view serviceDir = {});

// The settings forms' apply buttons: one station (1 to the size) or all.
bool ApplyPunchSetting(StationTable& table, int station, const PunchSetting& setting);
void ApplyPunchSettingToAll(StationTable& table, const PunchSetting& setting);

// `ToolButton` back from the definition screen: when the edited tool differs from the
// station's (shape, name, D1 to D4, angle), the station takes it and the change is returned.
struct ToolChange {
    int Station = 0;  // 1 to the table's size
    std::int16_t TNumber = 0;
    ToolRecord OldTool;
    ToolRecord NewTool;
};
std::optional<ToolChange> DefineStationTool(StationTable& table, int station, const ToolRecord& edited);

// After a change on the turret screen: the slot's table file (`slotTrt`), and, when
// `programStem` + ".prg" exists, the program's own ".trt" (without the active station) and
// ".stg" beside it. False when a file could not be written; `failedFile` (when given) then
// names the first such file.
bool WriteTurretFiles(const std::string& slotTrt, const std::string& programStem, const StationTable& table,
                      const ProgramTurret& header, std::string* failedFile = nullptr);

// What the dialogue's turret screen hands back: the tool, its description and the station,
// -1 for the plasma tool.
struct TurretChoice {
    ToolRecord Tool;
    std::string Description;
    std::int16_t StationNo = 0;
};
TurretChoice ChooseStation(const StationTable& table, int station);
TurretChoice ChoosePlasma(const ToolRecord& plasmaTool);

// Captions the turret screens take from the machine.
std::string SettingsButtonCaption(std::int16_t profilerKind);

}  // namespace kirvana

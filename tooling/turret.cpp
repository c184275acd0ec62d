#include "tooling/turret.h"

#include <cmath>

#include "core/number.h"
#include "core/paths.h"
#include "core/station_kind.h"
#include "core/text.h"
#include "tooling/single.h"

namespace kirvana {

namespace {

bool IsEndMarker(std::string_view text) { return Trim(text) == EndMarker; }

// The items of a line separated by commas; an item in double quotes is taken as it stands
// (commas included), any other item trimmed.
std::vector<std::string> CommaItems(std::string_view line) {
    std::vector<std::string> items;
    std::size_t i = 0;
    while (true) {
        while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) ++i;
        std::string item;
        if (i < line.size() && line[i] == '"') {
            std::size_t close = line.find('"', i + 1);
            std::size_t stop = close == std::string_view::npos ? line.size() : close;
            item = std::string(line.substr(i + 1, stop - i - 1));
            i = close == std::string_view::npos ? line.size() : close + 1;
            std::size_t comma = line.find(',', i);
            i = comma == std::string_view::npos ? line.size() : comma;
        } else {
            std::size_t comma = line.find(',', i);
            std::size_t stop = comma == std::string_view::npos ? line.size() : comma;
            item = std::string(Trim(line.substr(i, stop - i)));
            i = stop;
        }
        items.push_back(std::move(item));
        if (i >= line.size()) break;
        ++i;  // behind the comma
    }
    return items;
}

// A line cut at its commas into a head and the last `tailCount` fields: the head keeps any
// commas of its own (a Special tool's name may hold one). With fewer fields, the first is
// the head and the others the tail.
struct SplitLine {
    std::string Head;
    std::vector<std::string> Tail;
};
SplitLine SplitFromRight(std::string_view line, std::size_t tailCount) {
    std::vector<std::string> fields;
    std::size_t start = 0;
    while (true) {
        std::size_t comma = line.find(',', start);
        fields.emplace_back(
            line.substr(start, comma == std::string_view::npos ? std::string_view::npos : comma - start));
        if (comma == std::string_view::npos) break;
        start = comma + 1;
    }
    SplitLine split;
    std::size_t headCount = fields.size() > tailCount ? fields.size() - tailCount : 1;
    for (std::size_t i = 0; i < headCount; ++i) split.Head += (i ? "," : "") + fields[i];
    split.Head = std::string(Trim(split.Head));
    for (std::size_t i = headCount; i < fields.size(); ++i) split.Tail.emplace_back(Trim(fields[i]));
    return split;
}

// The six settings of a line's tail; fields the line doesn't hold keep their value.
void ReadSettingFields(const std::vector<std::string>& fields, std::size_t first, PunchSetting& s) {
    auto field = [&](std::size_t i) -> const std::string* {
        return first + i < fields.size() ? &fields[first + i] : nullptr;
    };
    if (auto f = field(0)) s.FeedPercent = ToWordOrZero(ToNumber(*f));
    if (auto f = field(1)) s.AccelPercent = ToWordOrZero(ToNumber(*f));
    if (auto f = field(2)) s.PreDelay = ToSingle(ToNumber(*f));
    if (auto f = field(3)) s.PostDelay = ToSingle(ToNumber(*f));
    if (auto f = field(4)) s.InPosition = ToSingle(ToNumber(*f));
    if (auto f = field(5)) s.RamTimer = ToSingle(ToNumber(*f));
}

std::string JoinSettings(const PunchSetting& setting) {
    std::string text;
    for (const auto& value : PunchSettingTexts(setting)) text += ", " + value;
    return text;
}

std::string StationToolText(const Station& station) {
    return station.Valid != FalseWord && station.Tool.IsValid() ? DescribeTool(station.Tool, false) : std::string();
}

ConfigFault StationFault(const std::string& path, const std::string& reason) { return ConfigFault{path, reason}; }

}  // namespace

std::int16_t CardPosition(std::int16_t number) { return static_cast<std::int16_t>(WrapStation(number)); }

void ApplyStationType(Station& station, const StationTypes& types, std::int16_t typeIndex) {
    const StationType& type =
        (typeIndex >= 0 && typeIndex < StationTypeCount) ? types[static_cast<std::size_t>(typeIndex)] : StationType();
    station.TypeIndex = typeIndex;
    station.TypeText = type.TypeText;
    station.TypeNumber = type.TypeNumber;
    station.Autoindex = IsIndexStation(type.TypeNumber) ? TrueWord : FalseWord;
    station.OffsetX = type.OffsetX;
    station.OffsetY = type.OffsetY;
    station.OffsetZ = type.OffsetZ;
    station.Tool.Setting = station.TypeIndex;
    station.Tool.Station = station.TypeNumber;
    station.Tool.Extra2 = 1;
}

void SetStationToolRecord(Station& station, const ToolRecord& tool) {
    CopyTool(tool, station.Tool);
    if (!tool.IsValid()) ClearTool(station.Tool);
    station.Tool.Setting = station.TypeIndex;
    station.Tool.Station = station.TypeNumber;
    station.Tool.Extra2 = 1;
    station.Valid = station.Tool.IsValid() ? TrueWord : FalseWord;
    station.ToolText = station.Valid ? DescribeTool(station.Tool, false) : std::string();
}

void SetStationTool(Station& station, const std::string& toolText) {
    std::string text(Trim(toolText));
    ClearTool(station.Tool);
    if (!text.empty()) ParseToolText(text, station.Tool, false);
    station.Tool.Setting = station.TypeIndex;
    station.Tool.Station = station.TypeNumber;
    station.Tool.Extra2 = 1;
    station.Valid = station.Tool.IsValid() ? TrueWord : FalseWord;
    station.ToolText = station.Valid ? text : std::string();
}

ConfigResult ReadStationTypes(const Directories& dirs, StationTypes& types) {
    types = StationTypes();
    const std::string path = ResolveNoCase(dirs.DataDir + "Machine.stn");
    NoteFile(dirs.ServiceDir, path);
    auto lines = ReadLines(path);
    if (!lines) return StationFault(path, "required file is missing or cannot be read");

    // The file as one stream of items; an empty line holds none.
    std::vector<std::string> items;
    for (const auto& line : *lines) {
        if (Trim(line).empty()) continue;
        for (auto& item : CommaItems(line)) items.push_back(std::move(item));
    }
    std::size_t next = 1;  // behind the header item
    while (next < items.size()) {
        if (IsEndMarker(items[next])) return std::nullopt;
        if (next + 7 > items.size()) return StationFault(path, "ends inside a station type");
        double index = std::trunc(ToNumber(items[next]));
        if (!(index >= 0 && index < StationTypeCount))
            return StationFault(path, "station type index " + items[next] + " is outside 0 to 64");
        auto typeNumber = TruncateToInt16(ToNumber(items[next + 2]));
        auto typeWord = TruncateToInt16(ToNumber(items[next + 6]));
        if (!typeNumber || !typeWord)
            return StationFault(path, "station type " + items[next] + " holds a value out of range");
        StationType& type = types[static_cast<std::size_t>(index)];
        type.TypeText = items[next + 1];
        type.TypeNumber = *typeNumber;
        type.OffsetX = ToSingle(ToNumber(items[next + 3]));
        type.OffsetY = ToSingle(ToNumber(items[next + 4]));
        type.OffsetZ = ToSingle(ToNumber(items[next + 5]));
        type.TypeWord = *typeWord;
        next += 7;
    }
    return std::nullopt;  // the end of the file stands for the end marker
}

ConfigResult ReadTurretFile(const Directories& dirs, const StationTypes& types, std::size_t rows, StationTable& table) {
    table.assign(rows, Station());
    const std::string path = ResolveNoCase(dirs.DataDir + "Machine.trt");
    NoteFile(dirs.ServiceDir, path);
    auto lines = ReadLines(path);
    if (!lines) return StationFault(path, "required file is missing or cannot be read");
    std::size_t row = 0;
    for (std::size_t n = 0; n < lines->size() && row < rows; ++n) {
        auto items = CommaItems((*lines)[n]);
        if (items.empty() || items[0].empty() || items[0] == EndMarker) break;
        auto value = [&](std::size_t i) { return i < items.size() ? ToNumber(items[i]) : 0.0; };
        auto tNumber = TruncateToInt16(value(0));
        auto loadNumber = TruncateToInt16(value(1));
        double typeIndex = std::trunc(value(2));
        if (!tNumber || !loadNumber)
            return StationFault(path, "line " + std::to_string(n + 1) + " holds a value out of range");
        if (!(typeIndex >= 0 && typeIndex < StationTypeCount))
            return StationFault(path, "line " + std::to_string(n + 1) + " names a station type outside 0 to 64");
        Station& station = table[row++];
        station.TNumber = *tNumber;
        station.TPosition = CardPosition(*tNumber);
        station.LoadNumber = *loadNumber;
        station.LoadPosition = CardPosition(*loadNumber);
        ApplyStationType(station, types, static_cast<std::int16_t>(typeIndex));
    }
    return std::nullopt;
}

void CopyStationTable(const StationTable& source, StationTable& target) {
    target.assign(source.size(), Station());
    for (std::size_t i = 0; i < source.size(); ++i) {
        const Station& s = source[i];
        Station& t = target[i];
        t.Valid = s.Valid;
        t.TNumber = s.TNumber;
        t.TPosition = s.TPosition;
        t.LoadNumber = s.LoadNumber;
        t.LoadPosition = s.LoadPosition;
        t.TypeIndex = s.TypeIndex;
        t.TypeText = s.TypeText;
        t.TypeNumber = s.TypeNumber;
        t.Autoindex = s.Autoindex;
        t.OffsetX = s.OffsetX;
        t.OffsetY = s.OffsetY;
        t.OffsetZ = s.OffsetZ;
        t.ToolText = s.ToolText;
        CopyTool(s.Tool, t.Tool);
        t.Settings = s.Settings;
    }
}

int StationOfTNumber(const StationTable& table, int tNumber) {
    for (std::size_t i = 0; i < table.size(); ++i)
        if (table[i].TNumber == tNumber) return static_cast<int>(i) + 1;
    return tNumber;
}

std::string TurretLine(const Station& station) { return StationToolText(station) + JoinSettings(station.Settings); }

bool ReadProgramTurret(const std::string& file, StationTable& table, ProgramTurret& header,
                       std::string_view serviceDir) {
    const std::string path = ResolveNoCase(file);
    if (!FileExists(path)) return false;
    if (!serviceDir.empty()) NoteFile(serviceDir, path);
    auto lines = ReadLines(path);
    if (!lines) return false;
    header = ProgramTurret();
    if (lines->empty()) return true;
    header.SettingWord = ToWordOrZero(ToNumber(Trim((*lines)[0])));
    std::size_t n = 1;
    for (std::size_t row = 0; row < table.size() && n < lines->size(); ++row, ++n) {
        const std::string& line = (*lines)[n];
        if (IsEndMarker(line)) return true;
        SplitLine split = SplitFromRight(line, 6);
        Station& station = table[row];
        SetStationTool(station, split.Head);
        ReadSettingFields(split.Tail, 0, station.Settings);
    }
    if (n < lines->size() && !IsEndMarker((*lines)[n]) && !Trim((*lines)[n]).empty())
        header.ActiveStation = ToWordOrZero(ToNumber(Trim((*lines)[n])));
    return true;
}

bool WriteProgramTurret(const std::string& file, const StationTable& table, const ProgramTurret& header) {
    std::vector<std::string> lines{IntegerText(header.SettingWord)};
    for (const auto& station : table) lines.push_back(TurretLine(station));
    if (header.ActiveStation) lines.push_back(IntegerText(*header.ActiveStation));
    lines.push_back(EndMarker);
    return WriteLines(file, lines);
}

bool WriteProgramSettings(const std::string& file, const StationTable& table) {
    std::vector<std::string> lines;
    for (const auto& station : table)
        lines.push_back(StationToolText(station) + ", " + IntegerText(station.TypeIndex) +
                        JoinSettings(station.Settings));
    lines.push_back(EndMarker);
    return WriteLines(file, lines);
}

bool ReadProgramSettings(const std::string& file, StationTable& table, std::string_view serviceDir) {
    const std::string path = ResolveNoCase(file);
    if (!FileExists(path)) return false;
    if (!serviceDir.empty()) NoteFile(serviceDir, path);
    auto lines = ReadLines(path);
    if (!lines) return false;
    struct Entry {
        ToolRecord Tool;
        std::int16_t TypeIndex = 0;
        std::vector<std::string> Fields;
    };
    std::vector<Entry> entries;
    for (const auto& line : *lines) {
        if (IsEndMarker(line)) break;
        SplitLine split = SplitFromRight(line, 7);
        Entry entry;
        if (split.Head.empty() || !ParseToolText(split.Head, entry.Tool, false)) continue;
        entry.TypeIndex = split.Tail.empty() ? std::int16_t{-1} : ToWordOrZero(ToNumber(split.Tail[0]));
        entry.Fields = std::move(split.Tail);
        entries.push_back(std::move(entry));
    }
    for (auto& station : table) {
        if (!station.Valid) continue;
        const Entry* match = nullptr;
        for (const auto& e : entries)
            if (SameTool(e.Tool, station.Tool) && e.TypeIndex == station.TypeIndex) {
                match = &e;
                break;
            }
        if (!match)
            for (const auto& e : entries)
                if (SameTool(e.Tool, station.Tool)) {
                    match = &e;
                    break;
                }
        if (match) ReadSettingFields(match->Fields, 1, station.Settings);
    }
    return true;
}

bool ApplyPunchSetting(StationTable& table, int station, const PunchSetting& setting) {
    if (station < 1 || station > static_cast<int>(table.size())) return false;
    table[static_cast<std::size_t>(station - 1)].Settings = setting;
    return true;
}

void ApplyPunchSettingToAll(StationTable& table, const PunchSetting& setting) {
    for (auto& station : table) station.Settings = setting;
}

std::optional<ToolChange> DefineStationTool(StationTable& table, int station, const ToolRecord& edited) {
    if (station < 1 || station > static_cast<int>(table.size())) return std::nullopt;
    Station& row = table[static_cast<std::size_t>(station - 1)];
    if (SameTool(row.Tool, edited)) return std::nullopt;
    ToolChange change;
    change.Station = station;
    change.TNumber = row.TNumber;
    CopyTool(row.Tool, change.OldTool);
    SetStationToolRecord(row, edited);
    CopyTool(row.Tool, change.NewTool);
    return change;
}

bool WriteTurretFiles(const std::string& slotTrt, const std::string& programStem, const StationTable& table,
                      const ProgramTurret& header, std::string* failedFile) {
    bool written = true;
    auto note = [&](bool ok, const std::string& file) {
        if (!ok && written && failedFile) *failedFile = file;
        written = written && ok;
    };
    note(WriteProgramTurret(slotTrt, table, header), slotTrt);
    if (!programStem.empty() && FileExists(ResolveNoCase(programStem + ".prg"))) {
        ProgramTurret programHeader = header;
        programHeader.ActiveStation.reset();
        note(WriteProgramTurret(programStem + ".trt", table, programHeader), programStem + ".trt");
        note(WriteProgramSettings(programStem + ".stg", table), programStem + ".stg");
    }
    return written;
}

TurretChoice ChooseStation(const StationTable& table, int station) {
    TurretChoice choice;
    if (station < 1 || station > static_cast<int>(table.size())) return choice;
    const Station& row = table[static_cast<std::size_t>(station - 1)];
    CopyTool(row.Tool, choice.Tool);
    choice.Description = StationToolText(row);
    choice.StationNo = static_cast<std::int16_t>(station);
    return choice;
}

TurretChoice ChoosePlasma(const ToolRecord& plasmaTool) {
    TurretChoice choice;
    CopyTool(plasmaTool, choice.Tool);
    choice.Description = DescribeTool(plasmaTool, false);
    choice.StationNo = -1;
    return choice;
}

std::string SettingsButtonCaption(std::int16_t profilerKind) {
    return profilerKind < 1 ? "TOOL &SETTINGS" : "&TOOL SETTINGS";
}

}  // namespace kirvana

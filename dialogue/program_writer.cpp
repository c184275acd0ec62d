#include "dialogue/program_writer.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <filesystem>
#include <system_error>

#include "analysis/drawing_file.h"
#include "core/file_writer.h"
#include "core/geometry.h"
#include "core/names.h"
#include "core/number.h"
#include "core/paths.h"
#include "core/text.h"

namespace fs = std::filesystem;

namespace kirvana {

namespace {

std::string TodayText() {
    std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char text[16];
    std::strftime(text, sizeof text, "%d-%m-%Y", &local);
    return text;
}

bool HasPunchTool(std::int16_t kind) {
    return kind == EntityKind::Punch || kind == EntityKind::LinearPattern || kind == EntityKind::GridPattern ||
           kind == EntityKind::ArcPattern;
}

// The kinds whose tool the generator takes and whose station is called.
bool CallsTool(std::int16_t kind) {
    return kind == EntityKind::Move || kind == EntityKind::LineProfile || kind == EntityKind::ArcProfile ||
           HasPunchTool(kind);
}

std::vector<EntityRec> ReadRecords(DrawingFile& file, bool& ok) {
    std::vector<EntityRec> records;
    ok = file.IsOpen() && file.Count() >= 1;
    if (!ok) return records;
    const std::int32_t last = file.LastReadable();
    for (std::int32_t n = 1; n <= last; ++n) {
        EntityRec rec;
        file.Get(n, rec);
        records.push_back(std::move(rec));
    }
    ok = !records.empty() && records.front().Kind == EntityKind::Sheet;
    return records;
}

std::vector<EntityRec> ReadAll(const std::string& path, bool& ok) {
    DrawingFile file;
    ok = file.Open(path, true);
    return ok ? ReadRecords(file, ok) : std::vector<EntityRec>{};
}

PointF Shifted(PointF p, double dx, double dy) { return PointF{ToSingle(p.X + dx), ToSingle(p.Y + dy)}; }

void ShiftRecord(EntityRec& rec, double dx, double dy) {
    EntityPoints& p = rec.Points;
    for (PointF* point : {&p.Start, &p.Middle, &p.End, &p.Position, &p.Entry, &p.Exit})
        *point = Shifted(*point, dx, dy);
    rec.Extent = {Shifted(rec.Extent.Low, dx, dy), Shifted(rec.Extent.High, dx, dy)};
    rec.ClearBox = {Shifted(rec.ClearBox.Low, dx, dy), Shifted(rec.ClearBox.High, dx, dy)};
}

// The generator's state for one run, and the emission of each kind of record.
class Generator {
public:
    explicit Generator(const GeneratorInput& input) : in_(input) { ClearSettings(LastSettings); }

    std::vector<std::string> Lines;

    void Header(const EntityRec& sheet, const std::vector<EntityRec>& used);
    void Entity(const EntityRec& rec, bool tailAllowed = true);
    void MultiPart(const EntityRec& part, const std::vector<EntityRec>& partRecords);
    void End();

private:
    // One block: "N" and the number, then the words. A program beyond the limit is cut off
    // and marked too long.
    void Block(const std::string& words) {
        if (Lines.size() >= MaxProgramBlocks) {
            TooLong = true;
            return;
        }
        if (!firstBlock_) LineNo += LineStep;
        firstBlock_ = false;
        Lines.push_back("N" + ZeroPad(LineNo, 4) + words);
    }
    std::string Length(double millimetres) const {
        if (in_.Imperial) return FormatNumber(Number(RoundHalfEven(Number(millimetres / Inch), 3)), -1);
        return FormatNumber(Number(RoundHalfEven(Number(ToSingle(millimetres)), 2)), -1);
    }
    static std::string Angle(double degrees) {
        return FormatNumber(Number(RoundHalfEven(Number(ToSingle(degrees)), 2)), -1);
    }
    std::string XY(PointF p) const { return " X" + Length(p.X) + " Y" + Length(p.Y); }
    const Station* StationOf(std::int16_t number) const {
        if (number < 1 || number > static_cast<std::int16_t>(in_.Table.size())) return nullptr;
        return &in_.Table[static_cast<std::size_t>(number - 1)];
    }
    bool Autoindex(const EntityRec& rec) const {
        const Station* station = StationOf(rec.StationNo);
        return station != nullptr && station->Autoindex != FalseWord;
    }
    std::string CWord(const EntityRec& rec) const { return Autoindex(rec) ? " C" + Angle(rec.Tool.Extra1) : ""; }

    void M101Rule();
    void M100Rule();
    void M06Rule();
    void M04Rule();
    void SettingsBlocks(const EntityRec& rec);
    void LineProfile(const EntityRec& rec);
    void ArcProfile(const EntityRec& rec);
    void ArcPattern(EntityRec rec);
    void MovedTo(PointF p) {
        LastX = p.X;
        LastY = p.Y;
    }

    const GeneratorInput& in_;
    bool firstBlock_ = true;
    std::string tail_;

public:
    bool TooLong = false;
    std::int32_t LineNo = 10;
    static constexpr std::int16_t LineStep = 2;
    bool ProfileOn = false;
    bool TorchOn = false;
    float LastX = 0, LastY = 0;
    std::int16_t CurrentComp = -1;
    ToolRecord CurrentTool;
    std::string CurrentDescription;
    std::int16_t CurrentStation = 0, LastStation = 0;
    SettingsArray LastSettings{};
};

void Generator::Header(const EntityRec& sheet, const std::vector<EntityRec>& used) {
    Block(" ! PROGRAM NAME : " + std::string(Trim(in_.ProgName)));
    Block(" ! DIRECTORY : " + std::string(Trim(in_.ProgDir)));
    Block(" ! DESCRIPTION : " + in_.ProgText);
    Block(" ! DATE : " + (in_.Today.empty() ? TodayText() : in_.Today));
    Block(" ! MATERIAL : " + std::string(Trim(sheet.Remark)));
    Block(" ! SHEET SIZE : " + Length(sheet.Values[1]) + " x " + Length(sheet.Values[2]));
    int clamps = 0;
    for (std::size_t i = 7; i <= 10; ++i)
        if (sheet.Values[i] > 0) ++clamps;
    if (clamps >= 2) {
        std::string words = " ! CLAMPS :";
        for (int i = 0; i < clamps; ++i)
            words += " " + std::to_string(i + 1) + "=" + Length(sheet.Values[static_cast<std::size_t>(7 + i)]);
        Block(words);
    }
    for (const Station& station : in_.Table) {
        if (station.Valid == FalseWord || !station.Tool.IsValid()) continue;
        const bool usedHere = std::any_of(used.begin(), used.end(), [&](const EntityRec& rec) {
            return (rec.Kind == EntityKind::Move || HasPunchTool(rec.Kind)) && SameTool(rec.Tool, station.Tool);
        });
        if (usedHere) Block(" ! T" + std::to_string(station.TNumber) + "=" + DescribeTool(station.Tool, false));
    }
    Block(std::string(" G00 G05 G90") + (in_.Imperial ? " G70" : " G71"));
}

void Generator::M101Rule() {
    if (!ProfileOn) return;
    Block(" M101");
    ProfileOn = false;
    CurrentComp = -1;
    ClearTool(CurrentTool);
    CurrentDescription.clear();
    CurrentStation = 0;
}

void Generator::M100Rule() {
    if (ProfileOn) return;
    Block(" M100");
    ProfileOn = true;
}

void Generator::M06Rule() {
    if (!TorchOn) return;
    Block(" M06");
    TorchOn = false;
}

void Generator::M04Rule() {
    M100Rule();
    if (TorchOn) return;
    Block(" M04");
    TorchOn = true;
}

void Generator::SettingsBlocks(const EntityRec& rec) {
    std::string words;
    int inBlock = 0;
    for (std::size_t slot = 0; slot < SettingsSlots; ++slot) {
        const float value = rec.Settings[slot];
        if (value == NoValue || value == LastSettings[slot]) continue;
        words += " P" + std::to_string(slot + 101) + "=" + FormatNumber(Number(value), -1);
        if (++inBlock == 5) {
            Block(words);
            words.clear();
            inBlock = 0;
        }
    }
    if (inBlock > 0) Block(words);
    MergeSettings(rec.Settings, LastSettings);
}

void Generator::LineProfile(const EntityRec& rec) {
    // 1. Profiling on; 2. the settings that changed.
    M100Rule();
    SettingsBlocks(rec);
    const PointF start = rec.Points.Start;
    auto away = [&] { return std::hypot(double(start.X) - LastX, double(start.Y) - LastY) > 0.1; };
    // 3. The torch off before a jump; 4. the jump to the start.
    if (TorchOn && away()) M06Rule();
    if (away()) {
        Block(" G00" + XY(start));
        MovedTo(start);
    }
    // 5. The compensation when it changes.
    if (rec.Compensation != CurrentComp) {
        Block(rec.Compensation == 1 ? " G41" : rec.Compensation == 2 ? " G42" : " G40");
        CurrentComp = rec.Compensation;
    }
    // 6. The torch on; 7. the cut.
    M04Rule();
    Block(" G101" + XY(rec.Points.End) + tail_);
    MovedTo(rec.Points.End);
}

void Generator::ArcProfile(const EntityRec& rec) {
    const PointF start = rec.Points.Start;
    auto away = [&] { return std::hypot(double(start.X) - LastX, double(start.Y) - LastY) > 0.1; };
    // A change of compensation with the torch on needs a lead line to the start.
    if (TorchOn && away() && rec.Compensation != CurrentComp && rec.Compensation != 0) {
        EntityRec lead = rec;
        lead.Kind = EntityKind::LineProfile;
        lead.Points.Start = PointF{LastX, LastY};
        lead.Points.End = start;
        const std::string tail = tail_;
        tail_.clear();
        LineProfile(lead);
        tail_ = tail;
    }
    M100Rule();
    SettingsBlocks(rec);
    if (TorchOn && away()) M06Rule();
    if (away()) {
        Block(" G00" + XY(start));
        MovedTo(start);
    }
    if (rec.Compensation != CurrentComp) {
        Block(rec.Compensation == 1 ? " G41" : rec.Compensation == 2 ? " G42" : " G40");
        CurrentComp = rec.Compensation;
    }
    M04Rule();
    // Clockwise (a negative sweep) is G102 on the plain orientation; the profiler's swap turns
    // the words round as its reader does.
    bool g102 = (rec.Values[11] < 0) == (in_.MachineOrientation == 1);
    if (in_.ProfilerArcSwap) g102 = !g102;
    double i = double(rec.Points.Position.X) - start.X, j = double(rec.Points.Position.Y) - start.Y;
    if (in_.ProfilerArcCentre) {
        i = -i;
        j = -j;
    }
    Block(std::string(g102 ? " G102" : " G103") + XY(rec.Points.End) + " I" + Length(i) + " J" + Length(j) + tail_);
    MovedTo(rec.Points.End);
}

void Generator::ArcPattern(EntityRec rec) {
    M101Rule();
    // A full circle whose hits reach round to the start has one hit less.
    if (std::fabs(rec.Values[11]) == 360 && std::fabs(rec.Values[12]) * rec.Counts[1] >= 360) --rec.Counts[1];
    std::string indexWords;
    if (Autoindex(rec)) indexWords = CWord(rec) + (rec.Counts[2] != 0 ? " P10=-999" : " P10=1");
    if (rec.Values[3] < NibbleFormPitch) {
        Block(" G37" + XY(rec.Points.Position) + indexWords + " R" + Length(rec.Values[1]) +
              " P1=" + Angle(rec.Values[11]) + " P5=" + Angle(rec.Values[10]) + " P8=" + Length(rec.Values[3]) + tail_);
    } else {
        Block(" G28 R" + Length(rec.Values[1]) + indexWords + " P1=" + std::to_string(rec.Counts[1]) +
              " P2=" + Angle(rec.Values[12]) + " P3=" + Angle(rec.Values[10]) + " P7=" + Length(rec.Points.Position.X) +
              " P8=" + Length(rec.Points.Position.Y) + " P9=1" + tail_);
    }
    MovedTo(rec.Points.Exit);
}

void Generator::Entity(const EntityRec& rec, bool tailAllowed) {
    // 1. The tool of the record and the T tail when its station is called anew.
    tail_.clear();
    const bool takesTool = rec.Tool.IsValid() && CallsTool(rec.Kind);
    if (takesTool) {
        CopyTool(rec.Tool, CurrentTool);
        CurrentDescription = DescribeTool(rec.Tool, in_.Imperial);
        CurrentStation = rec.StationNo;
        const Station* station = StationOf(rec.StationNo);
        if (tailAllowed && station != nullptr && rec.StationNo != LastStation)
            tail_ = " T" + ZeroPad(station->TNumber, 2);
    }
    // 2. The blocks of the kind.
    const EntityPoints& p = rec.Points;
    switch (rec.Kind) {
        case EntityKind::Move:
            if (ProfileOn) {
                M06Rule();
                Block(" G00" + XY(p.End));
            } else {
                M101Rule();
                Block(" G77" + XY(p.End) + CWord(rec) + tail_);
            }
            MovedTo(p.End);
            break;
        case EntityKind::LineProfile:
            LineProfile(rec);
            break;
        case EntityKind::ArcProfile:
            ArcProfile(rec);
            break;
        case EntityKind::Punch:
            M101Rule();
            Block(XY(p.Position) + CWord(rec) + tail_);
            MovedTo(p.Position);
            break;
        case EntityKind::LinearPattern:
            M101Rule();
            Block(" G26" + XY(p.Start) + CWord(rec) + " P1=" + std::to_string(rec.Counts[1]) +
                  " P2=" + Length(rec.Values[2]) + " P5=" + Angle(rec.Values[10]) + " P9=1 P10=0 P11=0" + tail_);
            MovedTo(p.Exit);
            break;
        case EntityKind::GridPattern:
            M101Rule();
            Block(" G26" + XY(p.Start) + CWord(rec) + " P1=" + std::to_string(rec.Counts[1]) +
                  " P2=" + Length(rec.Values[2]) + " P3=" + std::to_string(rec.Counts[2]) +
                  " P4=" + Length(rec.Values[4]) + " P5=" + Angle(rec.Values[10]) + " P9=1 P10=0 P11=0" + tail_);
            MovedTo(p.Exit);
            break;
        case EntityKind::ArcPattern:
            ArcPattern(rec);
            break;
        case EntityKind::Dwell:
            M06Rule();
            Block(" G04 X" + FormatNumber(Number(RoundHalfEven(Number(rec.Values[1]), 2)), -1));
            break;
        case EntityKind::Stop: {
            M06Rule();
            std::string words;
            if (rec.Counts[2] != 0) words = " G77" + XY(p.Position);
            Block(words + (rec.Counts[1] != 0 ? " M01" : " M00"));
            if (rec.Counts[2] != 0) MovedTo(p.Position);
            break;
        }
        case EntityKind::Reposition:
            M06Rule();
            Block(" G95" + XY(p.Position) + " I" + Length(rec.Values[1]) + " J" + Length(rec.Values[2]) + " K" +
                  Length(rec.Values[6]));
            MovedTo(p.Position);
            break;
        case EntityKind::FlipRotate:
            if (rec.Values[10] == 0 && rec.Counts[1] == 0 && rec.Counts[2] == 0) break;
            M06Rule();
            Block(std::string(" M55") + (rec.Counts[1] != 0 ? " I1" : "") + (rec.Counts[2] != 0 ? " I1" : "") +
                  (rec.Values[10] != 0 ? " A" + Angle(rec.Values[10]) : ""));
            break;
        default:
            break;
    }
    // 3. The station last called.
    if (takesTool) LastStation = rec.StationNo;
}

void Generator::MultiPart(const EntityRec& part, const std::vector<EntityRec>& partRecords) {
    const std::int32_t columns = std::max<std::int32_t>(part.Counts[1], 1);
    const std::int32_t rows = std::max<std::int32_t>(part.Counts[2], 1);
    const double stepX = part.Values[11], stepY = part.Values[12];
    if (static_cast<std::int64_t>(columns) * rows * static_cast<std::int64_t>(partRecords.size()) >
        static_cast<std::int64_t>(MaxProgramBlocks)) {
        TooLong = true;
        return;
    }
    std::size_t first = 1;  // record 1 of the part is its Sheet
    while (first < partRecords.size()) {
        // The group: up to the record before the tool changes.
        std::size_t end = first + 1;
        const std::int16_t station = partRecords[first].StationNo;
        while (end < partRecords.size() && !(partRecords[end].Tool.IsValid() && CallsTool(partRecords[end].Kind) &&
                                             partRecords[end].StationNo != station))
            ++end;
        LastStation = 0;
        double offsetX = part.Values[3], offsetY = part.Values[4];
        for (std::int32_t row = 0; row < rows; ++row) {
            for (std::int32_t column = 0; column < columns; ++column) {
                const bool firstCell = row == 0 && column == 0;
                for (std::size_t n = first; n < end; ++n) {
                    EntityRec copy = partRecords[n];
                    ShiftRecord(copy, offsetX, offsetY);
                    Entity(copy, firstCell);
                }
                if (column + 1 < columns) {
                    double dx = 0, dy = 0;
                    PolarToXY(row % 2 == 0 ? stepX : -stepX, 0, dx, dy);
                    offsetX += dx;
                    offsetY += dy;
                }
            }
            double dx = 0, dy = 0;
            PolarToXY(stepY, 90, dx, dy);
            offsetX += dx;
            offsetY += dy;
        }
        first = end;
    }
}

void Generator::End() {
    M101Rule();
    Block(" G53");
    Block(" M50 M99");
    Block(" M30");
}

}  // namespace

GeneratorInput GeneratorInputOf(const DialogueSession& session) {
    GeneratorInput input;
    input.ProgName = session.State.ProgName;
    input.ProgDir = session.State.ProgDir;
    input.ProgText = session.State.ProgText;
    input.Imperial = session.State.ImperialDialogue;
    input.Table = session.Tools().DialogueTable;
    input.MachineOrientation = session.Machine().MachineOrientation;
    input.ProfilerArcSwap = session.Machine().ProfilerArcSwap;
    input.ProfilerArcCentre = session.Machine().ProfilerArcCentre;
    return input;
}

std::string PartDrawingOf(const std::string& drawing) {
    bool ok = false;
    for (const EntityRec& rec : ReadAll(drawing, ok)) {
        if (rec.Kind != EntityKind::MultiPart) continue;
        const std::string name(Trim(rec.Remark));
        if (!AcceptableName(name)) return {};
        const std::size_t slash = drawing.rfind('/');
        return ResolveNoCase((slash == std::string::npos ? std::string() : drawing.substr(0, slash + 1)) + name);
    }
    return {};
}

namespace {

std::optional<std::vector<std::string>> Generated(const std::vector<EntityRec>& records,
                                                  const std::vector<EntityRec>& partRecords,
                                                  const GeneratorInput& input) {
    std::vector<EntityRec> used(records.begin() + 1, records.end());
    if (!partRecords.empty()) used.insert(used.end(), partRecords.begin() + 1, partRecords.end());
    Generator generator(input);
    generator.Header(records.front(), used);
    for (std::size_t n = 1; n < records.size() && !generator.TooLong; ++n) {
        if (records[n].Kind == EntityKind::MultiPart)
            generator.MultiPart(records[n], partRecords);
        else
            generator.Entity(records[n]);
    }
    generator.End();
    if (generator.TooLong) return std::nullopt;
    return std::move(generator.Lines);
}

bool HasMultiPart(const std::vector<EntityRec>& records) {
    return std::any_of(records.begin() + 1, records.end(),
                       [](const EntityRec& rec) { return rec.Kind == EntityKind::MultiPart; });
}

}  // namespace

std::optional<std::vector<std::string>> GenerateProgramLines(DrawingFile& drawing, DrawingFile* part,
                                                             const GeneratorInput& input) {
    bool ok = false;
    std::vector<EntityRec> records = ReadRecords(drawing, ok);
    if (!ok) return std::nullopt;
    std::vector<EntityRec> partRecords;
    if (HasMultiPart(records)) {
        if (part == nullptr) return std::nullopt;
        partRecords = ReadRecords(*part, ok);
        if (!ok) return std::nullopt;
    }
    return Generated(records, partRecords, input);
}

std::optional<std::vector<std::string>> GenerateProgramLines(const std::string& drawing, const GeneratorInput& input) {
    bool ok = false;
    std::vector<EntityRec> records = ReadAll(drawing, ok);
    if (!ok) return std::nullopt;
    std::vector<EntityRec> partRecords;
    if (HasMultiPart(records)) {
        partRecords = ReadAll(input.PartDrawing.empty() ? PartDrawingOf(drawing) : input.PartDrawing, ok);
        if (!ok) return std::nullopt;
    }
    return Generated(records, partRecords, input);
}

bool GenerateProgram(const std::string& drawing, const std::string& target, const GeneratorInput& input) {
    auto lines = GenerateProgramLines(drawing, input);
    return lines && WriteLines(target, *lines);
}

bool CheckDrawingTools(const std::string& drawing, const StationTable& table) {
    DrawingFile file;
    if (!file.Open(drawing)) return false;
    const std::int32_t last = file.LastReadable();
    if (last < 1) return false;
    for (std::int32_t n = 2; n <= last; ++n) {
        EntityRec rec;
        if (!file.Get(n, rec)) return false;
        if (!HasPunchTool(rec.Kind)) continue;
        auto holds = [&](std::int16_t number) {
            if (number < 1 || number > static_cast<std::int16_t>(table.size())) return false;
            const Station& station = table[static_cast<std::size_t>(number - 1)];
            return station.Valid != FalseWord && SameTool(station.Tool, rec.Tool);
        };
        std::int16_t found = holds(rec.StationNo) ? rec.StationNo : std::int16_t{0};
        for (std::int16_t s = 1; found == 0 && s <= static_cast<std::int16_t>(table.size()); ++s)
            if (holds(s)) found = s;
        if (found == 0) return false;
        if (found != rec.StationNo) {
            rec.StationNo = found;
            if (!file.Put(n, rec)) return false;
        }
    }
    return file.Close();
}

WriteResult WriteProgram(DialogueSession& session, const std::string& directoryName, const std::string& programName,
                         const AskOperator& ask, const std::string& today, const std::string& drawingFile) {
    WriteResult result;
    const Directories& dirs = session.Dirs();
    const std::string directory(Trim(directoryName)), name(Trim(programName));
    // 1. The names.
    if (directory.empty() || !AcceptableName(directory)) {
        result.Message = {InvalidDirectoryName};
        return result;
    }
    if (name.empty() || !AcceptableName(name)) {
        result.Message = {InvalidProgramName};
        return result;
    }
    // 2. The directory, created when the operator says so.
    const std::string path = DirectoryPath(directory, dirs.ProgramRoot);
    if (!IsDirectory(path)) {
        if (!ask({"Directory", directory, "Does Not Exist !", "Create It ?"})) return result;
        std::error_code error;
        fs::create_directories(path, error);
        if (error) {
            result.Message = {"File Fault : " + path};
            return result;
        }
    }
    // 3. An existing program is overwritten only when the operator says so.
    const std::string target = ResolveNoCase(path + name + ".prg");
    if (FileExists(target) && !ask({"Program", name, "Already Exists !", "Overwrite It ?"})) return result;
    // 4. The tooling: the part's drawing in a Multi-Part.
    const std::string drawing = drawingFile.empty() ? session.WorkFile("drw") : drawingFile;
    const std::string part = PartDrawingOf(drawing);
    const std::string checked = part.empty() ? drawing : part;
    if (!CheckDrawingTools(checked, session.Table())) {
        result.Message = {write_message::InvalidTooling, write_message::CheckTools};
        return result;
    }
    // 5. The program into `Dlgprg.prg`.
    session.State.ProgName = name;
    session.State.ProgDir = directory;
    GeneratorInput input = GeneratorInputOf(session);
    input.Today = today;
    const std::string generated = session.WorkFile("prg");
    if (!GenerateProgram(drawing, generated, input) || !FileExists(generated)) {
        result.Message = {write_message::InvalidDrawing, write_message::CreationAborted};
        return result;
    }
    // 6. In its place: the new program first, then the other files of the name go.
    if (!CopyFileOver(generated, target)) {
        result.Message = {"File Fault : " + target};
        return result;
    }
    const std::string prefix = UpperCase(name + ".");
    for (const std::string& entry : ListDirectory(path, false)) {
        const std::string full = path + entry;
        if (full != target && UpperCase(entry).starts_with(prefix) &&
            entry.find('.', prefix.size()) == std::string::npos) {
            std::error_code error;
            fs::remove(full, error);
        }
    }
    // 7. The settings of the stations beside it.
    if (!WriteProgramSettings(StripExtension(target) + ".stg", session.Table())) {
        result.Message = {"File Fault : " + StripExtension(target) + ".stg"};
        return result;
    }
    result.Written = true;
    result.ProgramFile = target;
    return result;
}

}  // namespace kirvana

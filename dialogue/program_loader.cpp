#include "dialogue/program_loader.h"

#include <filesystem>
#include <system_error>

#include "analysis/drawing_file.h"
#include "analysis/reverse.h"
#include "core/file_writer.h"
#include "core/names.h"
#include "core/number.h"
#include "core/paths.h"
#include "core/text.h"
#include "core/words.h"
#include "translate/convert.h"

namespace fs = std::filesystem;

namespace kirvana {

namespace {

LoadResult Refused(std::string message) {
    LoadResult result;
    result.Message = {std::move(message)};
    return result;
}

// The text behind the label of a header comment, or nullopt when the line isn't that label.
std::optional<std::string> Labelled(const std::string& line, std::string_view label) {
    const std::size_t at = FindNoCase(line, label);
    if (at == std::string::npos) return std::nullopt;
    const std::size_t colon = line.find(':', at + label.size());
    if (colon == std::string::npos) return std::nullopt;
    return std::string(Trim(std::string_view(line).substr(colon + 1)));
}

// The nibble pitch of an arc nibbled by G37 is the block's step: the drawing keeps the pitch
// along the arc, which the dialogue would write back as a different step.
bool TakeNibblePitches(const std::string& drawing, bool inches) {
    DrawingFile file;
    if (!file.Open(drawing)) return false;
    const std::int32_t last = file.LastReadable();
    for (std::int32_t n = 2; n <= last; ++n) {
        EntityRec rec;
        if (!file.Get(n, rec)) return false;
        if (rec.Kind != EntityKind::ArcPattern || FindNoCase(rec.BlockText, "G37") == std::string::npos) continue;
        ValueReader reader;
        const double step = reader.WordNumber(rec.BlockText, "P8=");
        if (reader.WordMissing || step <= 0) continue;
        rec.Values[3] = ToSingle(RoundHalfEven(Number(inches ? step * Inch : step), 4));
        if (!file.Put(n, rec)) return false;
    }
    return file.Close();
}

}  // namespace

HeaderNames ReadHeaderNames(const std::vector<std::string>& lines) {
    HeaderNames names;
    for (const std::string& line : lines) {
        // The header ends at the first block with a word in front of its comment.
        const std::size_t comment = line.find_first_of("!;(");
        if (CountBlockWords(std::string_view(line).substr(0, comment)) != 0) break;
        if (auto v = Labelled(line, "PROGRAM NAME"))
            names.Program = *v;
        else if (auto d = Labelled(line, "DIRECTORY"))
            names.Directory = *d;
        else if (auto t = Labelled(line, "DESCRIPTION"))
            names.Description = *t;
    }
    return names;
}

LoadResult LoadProgram(DialogueSession& session, const std::string& directoryName, const std::string& programName) {
    const Directories& dirs = session.Dirs();
    const MachineData& machine = session.Machine();
    const std::string directory(Trim(directoryName)), name(Trim(programName));
    // 1. The names, the directory and the program.
    if (directory.empty() || !AcceptableName(directory)) return Refused(InvalidDirectoryName);
    if (name.empty() || !AcceptableName(name)) return Refused(InvalidProgramName);
    const std::string path = DirectoryPath(directory, dirs.ProgramRoot);
    if (!IsDirectory(path)) return Refused(load_message::DirectoryMissing);
    const std::string source = ResolveNoCase(path + name + ".prg");
    auto lines = ReadLines(source);
    if (!FileExists(source) || !lines) return Refused(load_message::ProgramMissing);

    // 2. The passes under the dialogue's reverse stem, the program copied through "Temp.org".
    const std::string stem = dirs.ReverseFileStem;
    std::vector<std::string> kept;
    for (const std::string& line : *lines)
        if (!Trim(line).empty()) kept.emplace_back(Trim(line));
    const std::string temporary = dirs.RootDir + "Temp.org";
    if (!WriteLines(temporary, kept) || !MoveFileOver(temporary, stem + "org"))
        return Refused("File Fault : " + stem + "org");
    std::int16_t dialect = 0;
    ConvertResult converted = ConvertProgram(stem, dialect, ConvertSettingsFrom(machine, dirs));
    if (converted.Status != ConvertStatus::Done) return Refused(load_message::ErrorsInCode);
    // The machine's stations with the program's own table when it has one.
    const std::string programStem = StripExtension(source);
    StationTable stations = session.Tools().MachineTable;
    ProgramTurret turret;
    if (FileExists(programStem + ".trt")) ReadProgramTurret(programStem + ".trt", stations, turret, dirs.ServiceDir);
    const PlasmaSetting plasma = ProgramPlasmaSetting(dirs, programStem + ".pls");
    ReverseSettings settings = ReverseSettingsFrom(machine, dirs, stations, MachinePlasmaTool(session.Tools()));
    PlasmaToSettings(plasma, settings.ProgramSettings);
    std::int16_t toolChanges = 0;
    ReverseResult reversed = ReversePass(stem, name, directory, toolChanges, settings);
    if (reversed.FileFault) return Refused("File Fault : " + reversed.FaultFile);
    if (reversed.Result != 0) return Refused(load_message::ErrorsInCode);

    // 3. The drawing becomes the dialogue's; names from the header; the tools of the header
    // with the settings of the program's `.stg`; its plasma set or the default one.
    DrawingFile reversedDrawing;
    EntityRec sheet;
    if (!reversedDrawing.Open(stem + "drw", true) || !reversedDrawing.Get(1, sheet))
        return Refused("File Fault : " + stem + "drw");
    reversedDrawing.Close();
    const bool inches = sheet.Counts[2] != 0;
    if (!TakeNibblePitches(stem + "drw", inches)) return Refused("File Fault : " + stem + "drw");
    std::error_code error;
    fs::remove(session.WorkFile("prw"), error);
    if (!MoveFileOver(stem + "drw", session.WorkFile("drw"))) return Refused("File Fault : " + session.WorkFile("drw"));
    const HeaderNames names = ReadHeaderNames(kept);
    session.State = DialogueState{};
    session.State.ProgName = names.Program.empty() ? name : names.Program;
    session.State.ProgDir = names.Directory.empty() ? directory : names.Directory;
    session.State.ProgText = names.Description;
    session.State.ImperialDialogue = inches;
    StationTable& table = session.Table();
    table = stations;
    for (const auto& [station, text] : ReadHeader(ReadLines(stem + "M1").value_or(kept)).Tools)
        if (station >= 1 && station <= static_cast<int>(table.size()))
            SetStationTool(table[static_cast<std::size_t>(station - 1)], text);
    if (FileExists(programStem + ".stg")) ReadProgramSettings(programStem + ".stg", table, dirs.ServiceDir);
    session.Plasma() = plasma;

    // 4. The work files, and the cursor on the last entity.
    if (!session.ReadSheet()) return Refused("File Fault : " + session.WorkFile("drw"));
    bool written = WriteLines(session.WorkFile("cfg"),
                              {session.State.ProgName, session.State.ProgDir, session.State.ProgText, EndMarker});
    written = WriteProgramTurret(session.WorkFile("trt"), table, ProgramTurret{}) && written;
    if (!written) return Refused("File Fault : " + session.WorkFile("trt"));
    session.State.EntityCursor = session.State.EntityCount;
    if (session.Plot() != nullptr) session.Plot()->RedrawDrawing();
    LoadResult result;
    result.Loaded = true;
    result.Records = session.State.EntityCount;
    return result;
}

}  // namespace kirvana

// The dialogue's program: `GenerateProgram` turns the dialogue's drawing into the text of a
// part program, block by block, and `WriteProgram` (the Write button) checks the names and the
// tooling, generates `Dlgprg.prg` and puts it in its directory with its `.stg`.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "analysis/drawing_file.h"
#include "analysis/entity.h"
#include "dialogue/dialogue_session.h"
#include "tooling/settings.h"
#include "tooling/turret.h"

namespace kirvana {

// What a generation needs beside the drawing.
struct GeneratorInput {
    std::string ProgName, ProgDir, ProgText;
    bool Imperial = false;                // G70 and lengths in inches
    StationTable Table;                   // turret numbers, autoindex stations, header tools
    std::int16_t MachineOrientation = 1;  // 1: G102 is the clockwise arc
    bool ProfilerArcSwap = false;         // G102 and G103 trade places
    bool ProfilerArcCentre = false;       // I and J are written with the sign turned
    std::string Today;                    // "dd-mm-yyyy"; today when empty
    // The `.prw` a Multi-Part repeats; when empty, the file its `Remark` names beside the drawing.
    std::string PartDrawing;
};
GeneratorInput GeneratorInputOf(const DialogueSession& session);

// The blocks of the program from the drawing's records (record 1 the Sheet). The part's
// records are read from `input.PartDrawing` for a Multi-Part. Empty when the drawing can't be
// read.
std::optional<std::vector<std::string>> GenerateProgramLines(const std::string& drawing, const GeneratorInput& input);
// The same from open files; `part` is the Multi-Part's drawing (nullptr when there is none).
std::optional<std::vector<std::string>> GenerateProgramLines(DrawingFile& drawing, DrawingFile* part,
                                                             const GeneratorInput& input);
// The most blocks a generated program may have: a drawing that would give more (a Multi-Part of
// thousands of cells) is refused as an invalid drawing instead of filling the disk.
inline constexpr std::size_t MaxProgramBlocks = 200000;
// Generates into `target` (through a temporary file). False when nothing was generated.
[[nodiscard]] bool GenerateProgram(const std::string& drawing, const std::string& target, const GeneratorInput& input);

// The tooling check of the Write button: every Punch, Line, Grid and Arc entity's tool must
// stand in a station of the table; each record's station is refreshed from the table (the
// record's own station when it still holds the tool, else the first that does). False when a
// tool is missing or the drawing can't be rewritten.
bool CheckDrawingTools(const std::string& drawing, const StationTable& table);

// The messages and questions of the Write and Load buttons, in their order.
namespace write_message {
inline constexpr const char* InvalidTooling = "Invalid Tooling !";
inline constexpr const char* CheckTools = "Check All Tools Are In Stations !";
inline constexpr const char* InvalidDrawing = "Invalid Drawing !";
inline constexpr const char* CreationAborted = "Program Creation Aborted !";
}  // namespace write_message

struct WriteResult {
    bool Written = false;
    std::vector<std::string> Message;  // the refusal, for the warning screen
    std::string ProgramFile;           // the `.prg` written
};
// The Write button: `directory` and `program` from the combos. `ask` puts a question and gives
// the operator's answer.
// `drawing` is the dialogue's `Dlgprg.drw` unless another is given.
WriteResult WriteProgram(DialogueSession& session, const std::string& directory, const std::string& program,
                         const AskOperator& ask, const std::string& today = {}, const std::string& drawing = {});

// The `.prw` a drawing's Multi-Part repeats: the file its `Remark` names in the drawing's
// folder; "" when the drawing has no Multi-Part or the name is not acceptable.
std::string PartDrawingOf(const std::string& drawing);

}  // namespace kirvana

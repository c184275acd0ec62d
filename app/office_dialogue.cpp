// The dialogue's commands: a program written from a dialogue drawing as the Write button does,
// and a program loaded into the installation's dialogue work files as the Load button does.
#include <cstdio>
#include <string>

#include "analysis/drawing_file.h"
#include "app/office.h"
#include "core/paths.h"
#include "core/text.h"
#include "dialogue/program_loader.h"
#include "dialogue/program_writer.h"
#include "tooling/tooling.h"

namespace kirvana::office {

namespace {

// The program root of the installation: line 2 of its Control.cfg, a relative one taken from
// the installation's folder; "Programs" there when the file gives none.
std::string ProgramRootAt(const Directories& dirs) {
    auto lines = ReadLines(dirs.RootDir + "Control.cfg");
    std::string root = lines && lines->size() > 1 ? std::string(Trim((*lines)[1])) : std::string("Programs");
    if (root.empty()) root = "Programs";
    if (!HasDrive(root)) root = dirs.RootDir + (root.starts_with("./") ? root.substr(2) : root);
    return root.ends_with('/') ? root : root + "/";
}

// The installation with its tools, for a dialogue on it. False (reason on stderr) when it
// can't be read.
bool DialogueAt(const std::string& root, Directories& dirs, MachineData& machine, Tooling& tooling) {
    if (!MachineAt(root, dirs, machine)) return false;
    dirs.ProgramRoot = ProgramRootAt(dirs);
    if (auto fault = ReadToolingData(dirs, machine, tooling)) {
        std::fprintf(stderr, "%s\n", fault->Message().c_str());
        return false;
    }
    return true;
}

void PrintLines(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) std::fprintf(stderr, "%s\n", line.c_str());
}

}  // namespace

int Generate(const Args& args) {
    const char* usage = "generate DRW --root ROOT --dir DIR --program NAME [--yes] [--date DD-MM-YYYY]";
    bool haveRoot = false, haveProgram = false, haveDirectory = false, haveDate = false;
    const std::string root = Option(args, "--root", &haveRoot);
    const std::string program = Option(args, "--program", &haveProgram);
    const std::string directory = Option(args, "--dir", &haveDirectory);
    const std::string date = Option(args, "--date", &haveDate);
    const bool yes = Flag(args, "--yes");
    const std::size_t expected = 7 + (yes ? 1u : 0u) + (haveDate ? 2u : 0u);
    if (args.size() != expected || !haveRoot || !haveProgram || !haveDirectory || args[0].starts_with("--"))
        return Usage(usage);
    if (!NamesAcceptable(directory, program)) return 1;
    Directories dirs;
    MachineData machine;
    Tooling tooling;
    if (!DialogueAt(root, dirs, machine, tooling)) return 1;
    // The dialogue's names, tools and plasma set as the dialogue keeps them (nothing is
    // written); the unit is the drawing's own.
    DialogueSession session(dirs, machine, tooling);
    session.ReadWorkFiles();
    const std::string drawing = args[0];
    DrawingFile file;
    EntityRec sheet;
    if (!file.Open(drawing, true) || !file.Get(1, sheet) || sheet.Kind != EntityKind::Sheet) {
        std::fprintf(stderr, "cannot read the drawing %s\n", drawing.c_str());
        return 1;
    }
    file.Close();
    session.State.ImperialDialogue = sheet.Counts[2] != 0;
    // Without --yes every question is answered no, and printed.
    auto ask = [yes](const std::vector<std::string>& lines) {
        PrintLines(lines);
        std::fprintf(stderr, "%s\n", yes ? "yes" : "no (--yes answers yes)");
        return yes;
    };
    WriteResult result = WriteProgram(session, directory, program, ask, date, drawing);
    if (!result.Written) {
        PrintLines(result.Message);
        return 1;
    }
    auto lines = ReadLines(result.ProgramFile);
    std::printf("program: %s\nblocks: %zu\n", result.ProgramFile.c_str(), lines ? lines->size() : 0u);
    return 0;
}

int LoadDialogue(const Args& args) {
    const char* usage = "load-dialogue --root ROOT --dir DIR --program NAME";
    bool haveRoot = false, haveProgram = false, haveDirectory = false;
    const std::string root = Option(args, "--root", &haveRoot);
    const std::string program = Option(args, "--program", &haveProgram);
    const std::string directory = Option(args, "--dir", &haveDirectory);
    if (args.size() != 6 || !haveRoot || !haveProgram || !haveDirectory) return Usage(usage);
    if (!NamesAcceptable(directory, program)) return 1;
    Directories dirs;
    MachineData machine;
    Tooling tooling;
    if (!DialogueAt(root, dirs, machine, tooling)) return 1;
    DialogueSession session(dirs, machine, tooling);
    LoadResult result = LoadProgram(session, directory, program);
    if (!result.Loaded) {
        PrintLines(result.Message);
        return 1;
    }
    std::printf("drawing: %sdrw\nrecords: %d\n", dirs.DialogueFileStem.c_str(), result.Records);
    return 0;
}

}  // namespace kirvana::office

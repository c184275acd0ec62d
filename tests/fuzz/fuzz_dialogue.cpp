// Any bytes as the dialogue's drawing (and as the part a Multi-Part repeats): the generator
// must end without a fault and give a program or nothing; a program it gives is written and
// loaded back through the Convert and Reverse passes, and generated again.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "analysis/drawing_file.h"
#include "core/config.h"
#include "core/file_writer.h"
#include "dialogue/program_loader.h"
#include "dialogue/program_writer.h"
#include "tooling/tooling.h"

using namespace kirvana;

namespace {

// A copy of the demo installation, made once, with tools in three stations.
struct FuzzInstallation {
    Directories Dirs;
    MachineData Machine;
    Tooling Tools;
    FuzzInstallation() {
        std::string pattern = (std::filesystem::temp_directory_path() / "kirvana-fuzz-XXXXXX").string();
        if (!mkdtemp(pattern.data())) std::abort();
        std::filesystem::copy(std::string(KIRVANA_SOURCE_DIR) + "/data/demo", pattern,
                              std::filesystem::copy_options::recursive);
        Dirs.RootDir = pattern + "/";
        DeriveDirectories(Dirs);
        Dirs.ProgramRoot = Dirs.RootDir + "Programs/";
        if (CreateInstallationDirs(Dirs) || ReadMachineFiles(Dirs, Machine) || ReadToolingData(Dirs, Machine, Tools))
            std::abort();
        SetStationTool(Tools.MachineTable[0], "DIAMETER 10");
        SetStationTool(Tools.MachineTable[1], "SQUARE 20");
        SetStationTool(Tools.MachineTable[4], "RECTANGLE 30X5");
        CopyMachineTable(Tools, 0);
    }
    ~FuzzInstallation() {
        std::error_code error;
        std::filesystem::remove_all(Dirs.RootDir, error);
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static FuzzInstallation installation;
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    DrawingFile drawing = DrawingFile::InMemory(bytes);
    DrawingFile part = DrawingFile::InMemory(bytes);
    DialogueSession session(installation.Dirs, installation.Machine, installation.Tools);
    GeneratorInput input = GeneratorInputOf(session);
    input.Today = "01-01-2026";
    auto lines = GenerateProgramLines(drawing, &part, input);
    if (!lines) return 0;
    if (lines->size() < 10 || lines->size() > MaxProgramBlocks) __builtin_trap();
    // The program through the Load button, and generated again from what came back.
    if (!WriteLines(installation.Dirs.ProgramRoot + "Dorvenis/FUZZ.prg", *lines)) __builtin_trap();
    LoadResult loaded = LoadProgram(session, "Dorvenis", "FUZZ");
    if (loaded.Loaded && !GenerateProgramLines(session.WorkFile("drw"), GeneratorInputOf(session))) {
        // A loaded drawing of the passes is always one the generator reads.
        __builtin_trap();
    }
    return 0;
}

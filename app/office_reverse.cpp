// The reverse command: the Reverse pass on STEM + "M1" and "M2" with the machine values and the
// turret of an installation; STEM + "trt" and STEM + "pls" are the slot's table and plasma set
// when they exist.
#include <cstdio>
#include <string>

#include "analysis/reverse.h"
#include "app/office.h"
#include "core/paths.h"
#include "tooling/tooling.h"

namespace kirvana::office {

bool ReverseSettingsAt(const std::string& root, const std::string& stem, Directories& dirs, MachineData& machine,
                       ReverseSettings& settings) {
    if (!MachineAt(root, dirs, machine)) return false;
    // The machine's turret, or the slot's own table beside the motion files.
    Tooling tooling;
    if (auto fault = ReadToolingData(dirs, machine, tooling)) {
        std::fprintf(stderr, "%s\n", fault->Message().c_str());
        return false;
    }
    StationTable stations = tooling.MachineTable;
    ProgramTurret turret;
    if (FileExists(stem + "trt")) ReadProgramTurret(stem + "trt", stations, turret, dirs.ServiceDir);
    settings = ReverseSettingsFrom(machine, dirs, stations, MachinePlasmaTool(tooling));
    if (FileExists(stem + "pls")) PlasmaToSettings(ProgramPlasmaSetting(dirs, stem + "pls"), settings.ProgramSettings);
    return true;
}

int Reverse(const Args& args) {
    const char* usage = "reverse STEM --root ROOT --program NAME --dir DIR";
    bool haveRoot = false, haveProgram = false, haveDirectory = false;
    std::string root = Option(args, "--root", &haveRoot);
    std::string program = Option(args, "--program", &haveProgram);
    std::string directory = Option(args, "--dir", &haveDirectory);
    if (args.size() != 7 || !haveRoot || !haveProgram || !haveDirectory || args[0].starts_with("--"))
        return Usage(usage);
    if (!NamesAcceptable(directory, program)) return 2;
    const std::string& stem = args[0];
    Directories dirs;
    MachineData machine;
    ReverseSettings settings;
    if (!ReverseSettingsAt(root, stem, dirs, machine, settings)) return 1;
    std::int16_t toolChanges = 0;
    ReverseResult result = ReversePass(stem, program, directory, toolChanges, settings);
    if (result.FileFault) {
        std::fprintf(stderr, "file fault: %s\n", result.FaultFile.c_str());
        return 1;
    }
    std::printf("critical errors: %d\nrecords: %d\n", result.Result, result.Records);
    if (result.Result != 0)
        std::fprintf(stderr, "refused: the errors are listed in %sReverse.txt\n", dirs.ServiceDir.c_str());
    return result.Result == 0 ? 0 : 1;
}

}  // namespace kirvana::office

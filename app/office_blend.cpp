// The blend command: the Blend pass on STEM + "M1" with the machine values of an installation.
#include <cstdio>
#include <string>

#include "app/office.h"
#include "translate/blend.h"

namespace kirvana::office {

int Blend(const Args& args) {
    const char* usage = "blend STEM --root ROOT --program NAME --dir DIR";
    bool haveRoot = false, haveProgram = false, haveDirectory = false;
    std::string root = Option(args, "--root", &haveRoot);
    std::string program = Option(args, "--program", &haveProgram);
    std::string directory = Option(args, "--dir", &haveDirectory);
    if (args.size() != 7 || !haveRoot || !haveProgram || !haveDirectory || args[0].starts_with("--")) return Usage(usage);
    if (!NamesAcceptable(directory, program)) return 2;
    Directories dirs;
    MachineData machine;
    if (!MachineAt(root, dirs, machine)) return 1;
    std::string fault;
    std::int16_t critical = BlendProgram(directory, program, args[0], BlendSettingsFrom(machine, dirs), &fault);
    if (critical < 0) {
        std::fprintf(stderr, "file fault: %s\n", fault.c_str());
        return 1;
    }
    std::printf("critical errors: %d\n", critical);
    if (critical != 0) std::fprintf(stderr, "refused: the errors are listed in %sBlend.txt\n", dirs.ServiceDir.c_str());
    return critical == 0 ? 0 : 1;
}

}  // namespace kirvana::office

// The convert command: the Convert pass on STEM + "org" with the machine values of an installation.
#include <cstdio>
#include <string>

#include "app/office.h"
#include "core/config.h"
#include "translate/convert.h"

namespace kirvana::office {

int Convert(const Args& args) {
    const char* usage = "convert STEM --root ROOT";
    bool haveRoot = false;
    std::string root = Option(args, "--root", &haveRoot);
    if (args.size() != 3 || !haveRoot || args[0] == "--root" || root.empty()) return Usage(usage);
    Directories dirs;
    MachineData machine;
    if (!MachineAt(root, dirs, machine)) return 1;

    std::int16_t dialect = 0;
    ConvertResult result = ConvertProgram(args[0], dialect, ConvertSettingsFrom(machine, dirs));
    std::printf("dialect: %d\n", dialect);
    if (result.IntegerOverflow) std::fprintf(stderr, "%s\n", result.Fault.c_str());
    if (result.Status != ConvertStatus::Done) {
        std::fprintf(stderr, "%s%s%s\n", ConvertStatusText(result.Status), result.Fault.empty() ? "" : ": ",
                     result.IntegerOverflow ? "" : result.Fault.c_str());
        return 1;
    }
    return 0;
}

}  // namespace kirvana::office

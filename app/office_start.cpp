// The start command: the start-up headless, the machine summary, and the end.
#include <cstdio>
#include <filesystem>

#include "app/headless_platform.h"
#include "app/office.h"

namespace kirvana {

namespace office {

int Start(const Args& args) {
    bool found = false;
    std::string root = Option(args, "--root", &found);
    if (!found || args.size() != 2) return Usage("start --root DIR");
    HeadlessPlatform platform(0, true);
    Process process;
    int code = StartInstallation(root, platform, process);
    if (code == 0) Shutdown(process, platform, nullptr, StartupSteps{}, false);
    return code;
}

}  // namespace office
}  // namespace kirvana

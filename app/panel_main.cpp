// The panel. Until its screens exist it runs the start-up on the installation in the current
// directory, shows the splash for its time, prints what it read, and ends through the
// operator's shutdown (without powering off).
#include <cstdio>

#include "app/headless_platform.h"

int main() {
    kirvana::HeadlessPlatform platform(4000, false);
    kirvana::Process process;
    int code = kirvana::StartInstallation(".", platform, process);
    if (code == 0) {
        std::printf("Start-up complete; the screens come later. Shutting down.\n");
        kirvana::Shutdown(process, platform, nullptr, kirvana::StartupSteps{}, false);
    }
    return code;
}

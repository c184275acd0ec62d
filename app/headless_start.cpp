// The start that the panel and the office seat share.
#include <cstdio>
#include <filesystem>

#include "app/headless_platform.h"

namespace kirvana {

int StartInstallation(const std::string& root, HeadlessPlatform& platform, Process& process) {
    std::error_code error;
    std::filesystem::current_path(root, error);
    if (error) {
        std::fprintf(stderr, "cannot use %s as the installation: %s\n", root.c_str(), error.message().c_str());
        return 3;
    }
    StartupSteps steps;
    StartOutcome outcome = Main(process, platform, nullptr, steps);
    switch (outcome.Result) {
        case StartOutcome::Kind::ConfigurationFault:
            std::fprintf(stderr, "Kirvana 32 cannot start: %s\n", outcome.Fault.Message().c_str());
            break;
        case StartOutcome::Kind::CardNotOpened:
            break;  // the message box has said it
        case StartOutcome::Kind::Started:
            std::printf("%s", MachineSummary(process).c_str());
            break;
    }
    return outcome.ExitCode();
}

}  // namespace kirvana

// The start that the panel and the office seat share.
#include <cstdio>
#include <filesystem>

#include "app/headless_platform.h"

namespace kirvana {

HeadlessSeat::HeadlessSeat(int splashMs, bool showSplash, bool printSummary, int cardTimeoutMs)
    : platform_(splashMs, !showSplash), link_(CardAddress{}, cardTimeoutMs), printSummary_(printSummary) {
    steps_.ConfigureCard = [this, cardTimeoutMs](Process& process) {
        link_.SetAddress(ParseCardAddress(process.Config.Card.CardAddressLine), cardTimeoutMs);
    };
    link_.SetFaultHandler([this](std::int32_t number, const std::string& description) {
        HandleCardFault(State, platform_, &link_, steps_, number, description);
    });
}

int HeadlessSeat::Start(const std::string& root) {
    std::error_code error;
    std::filesystem::current_path(root, error);
    if (error) {
        std::fprintf(stderr, "cannot use %s as the installation: %s\n", root.c_str(), error.message().c_str());
        return 3;
    }
    platform_.SetStarting(true);
    StartOutcome outcome = Main(State, platform_, &link_, steps_);
    platform_.SetStarting(false);
    switch (outcome.Result) {
        case StartOutcome::Kind::ConfigurationFault:
            std::fprintf(stderr, "Kirvana 32 cannot start: %s\n", outcome.Fault.Message().c_str());
            break;
        case StartOutcome::Kind::CardNotOpened:
            break;  // the message box has said it
        case StartOutcome::Kind::Started:
            if (printSummary_) std::printf("%s", MachineSummary(State).c_str());
            break;
    }
    return outcome.ExitCode();
}

SelectOutcome HeadlessSeat::Select(const std::string& directory, const std::string& program) {
    return SelectProgram(State, platform_, &link_, directory, program);
}

void HeadlessSeat::Tick() { PollTick(State, platform_, &link_); }

void HeadlessSeat::End() { Shutdown(State, platform_, &link_, steps_, false); }

Conversation HeadlessSeat::Talk() { return Conversation(&link_, State.Card, State.Config.Dirs.ServiceDir, &platform_); }

}  // namespace kirvana

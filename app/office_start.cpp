// The start and card commands: the start-up headless, then the summary or the card's answers.
#include <cstdio>

#include "app/headless_platform.h"
#include "app/office.h"
#include "core/number.h"

namespace kirvana::office {

int Start(const Args& args) {
    bool found = false;
    std::string root = Option(args, "--root", &found);
    if (!found || args.size() != 2) return Usage("start --root DIR");
    HeadlessSeat seat(0, false, true);
    int code = seat.Start(root);
    if (code == 0) seat.End();
    return code;
}

int Card(const Args& args) {
    const char* usage = "card --root DIR [--timeout MS] \"TEXT\"...";
    bool found = false;
    std::string root = Option(args, "--root", &found);
    bool timed = false;
    std::string timeout = Option(args, "--timeout", &timed);
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--root" || args[i] == "--timeout") ++i;
        else texts.push_back(args[i]);
    }
    int timeoutMs = timed ? static_cast<int>(ToNumber(timeout)) : 1000;
    if (!found || texts.empty() || timeoutMs <= 0) return Usage(usage);
    HeadlessSeat seat(0, false, false, timeoutMs);
    int code = seat.Start(root);
    if (code != 0) return code;
    if (!seat.State.Card.CardInUse) std::printf("(card not in use: office seat, every answer is empty)\n");
    Conversation talk = seat.Talk();
    CardLink& link = seat.Link();
    bool failed = false;
    {
        // The whole run is one card operation with its deadline.
        CardOperation operation(&link, seat.State.Config.Card.OperationDeadlineMs);
        for (const std::string& text : texts) {
            const int faultsBefore = link.FaultCount();
            std::string answer = talk.GetRspnsTxt(text);
            if (link.FaultCount() != faultsBefore) {
                PrintCardFault(text + " ->", link.LastFault());
                failed = true;
            } else if (link.OperationExpired()) {
                std::printf("%s -> not sent: the deadline of the run has passed\n", text.c_str());
                failed = true;
            } else {
                std::printf("%s -> %s\n", text.c_str(), answer.c_str());
            }
        }
    }
    seat.End();
    return failed ? CardFaultExit : 0;
}

}  // namespace kirvana::office

// Commands and typed queries to the card, each guarded by CardInUse, remembered as the last
// communication and logged to Polling.txt when the poll log is on.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <vector>

#include "controller/card_link.h"
#include "controller/controller_platform.h"

namespace kirvana {

// The card's process-wide flags and the poll timer's settings.
struct CardState {
    bool CardInUse = false;
    bool PollLogOn = false;
    bool ReportCardErrors = true;
    std::string LastCommand;
    // The poll timer is meant to run: a routine that stopped it restarts it only then.
    bool PollRunning = false;
    // The value of the last lock request.
    bool FormsLocked = false;
    int PollIntervalMs = 50;
    int PollRestartDelayMs = 50;
    // The interval the poll timer runs with now; 0 while it is stopped.
    int PollTimerIntervalMs = 0;
};

// The typed reading of one answer, the same for a single query and for a line of a batch.
bool AnswerBln(std::string_view answer);
std::int16_t AnswerInt(std::string_view answer);
std::int32_t AnswerLng(std::string_view answer);
float AnswerSngl(std::string_view answer, int places);

// Polling.txt is moved to Polling.bak when it reaches this size.
inline constexpr long long PollingLogLimit = 50000001;

class Conversation {
public:
    // The link may be null when the card is not in use; the platform when nothing is locked
    // or timed (the office commands).
    Conversation(CardLink* link, CardState& state, std::string serviceDir, ControllerPlatform* platform = nullptr)
        : link_(link), state_(state), serviceDir_(std::move(serviceDir)), platform_(platform) {}

    // Sends a command (cut to 120 characters) and drops the answer.
    void Download(std::string_view text);
    bool GetRspnsBln(std::string_view query);
    std::int16_t GetRspnsInt(std::string_view query);
    std::int32_t GetRspnsLng(std::string_view query);
    // With places >= 0 the answer is rounded half to even to that many places.
    float GetRspnsSngl(std::string_view query, int places);
    std::string GetRspnsTxt(std::string_view query);

    // Several queries in one exchange: the card answers them line by line. Each query is
    // still remembered and logged on its own, under its name in `names` (the typed query it
    // stands for) or else "GetRspnsBatch"; a missing answer line reads as "".
    std::vector<std::string> GetRspnsBatch(const std::vector<std::string>& queries,
                                           const std::vector<const char*>& names = {});

    // Downloads a card system file as it lies.
    void DownSystem(std::string_view dir, std::string_view name);

    // The form lock, the poll timer, and a wait with the event queue running.
    void LockAllForms(bool lock, const std::string& exceptForm = "LockAllForms");
    void WaitMs(int ms);
    void StartPollTimer(bool setRunning);
    void StopPollTimer(bool clearRunning);
    // The frame of every long exchange: forms locked and the poll timer stopped, then both
    // restored, the timer only if it is meant to run.
    void BeginLongExchange();
    void EndLongExchange();

    // At the end of a poll cycle: a log of PollingLogLimit bytes or more becomes Polling.bak.
    void RollPollingLog();

    // Appends one exchange to Polling.txt when the poll log is on.
    void LogExchange(std::string_view name, std::string_view query, std::string_view response, bool status);

    CardLink* Link() const { return link_; }
    CardState& State() const { return state_; }

private:
    // The common steps of every send and query; false when the card is not in use.
    bool Exchange(const char* name, std::string_view text, std::string& response);
    std::string Answer(const char* name, std::string_view query);

    CardLink* link_;
    CardState& state_;
    std::string serviceDir_;
    ControllerPlatform* platform_;
};

}  // namespace kirvana

// Commands and typed queries to the card, each guarded by CardInUse, remembered as the last
// communication and logged to Polling.txt when the poll log is on.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "controller/card_link.h"

namespace kirvana {

// The card's process-wide flags.
struct CardState {
    bool CardInUse = false;
    bool PollLogOn = false;
    bool ReportCardErrors = true;
    std::string LastCommand;
};

class Conversation {
public:
    // The link may be null when the card is not in use.
    Conversation(CardLink* link, CardState& state, std::string serviceDir)
        : link_(link), state_(state), serviceDir_(std::move(serviceDir)) {}

    // Sends a command (cut to 120 characters) and drops the answer.
    void Download(std::string_view text);
    bool GetRspnsBln(std::string_view query);
    std::int16_t GetRspnsInt(std::string_view query);
    std::int32_t GetRspnsLng(std::string_view query);
    // With places >= 0 the answer is rounded half to even to that many places.
    float GetRspnsSngl(std::string_view query, int places);
    std::string GetRspnsTxt(std::string_view query);

    // Downloads a card system file as it lies.
    void DownSystem(std::string_view dir, std::string_view name);

    // Appends one exchange to Polling.txt when the poll log is on.
    void LogExchange(std::string_view name, std::string_view query, std::string_view response, bool status);

    CardLink* Link() const { return link_; }
    CardState& State() const { return state_; }

private:
    // The common steps of every send and query; false when the card is not in use.
    bool Exchange(const char* name, std::string_view text, std::string& response);
    double LeadingNumber(const char* name, std::string_view query);

    CardLink* link_;
    CardState& state_;
    std::string serviceDir_;
};

}  // namespace kirvana

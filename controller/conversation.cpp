#include "controller/conversation.h"

#include <cmath>
#include <fstream>

#include "core/number.h"
#include "core/text.h"

namespace kirvana {

bool Conversation::Exchange(const char* name, std::string_view text, std::string& response) {
    // 1. Trim; 2. nothing at all while the card is not in use.
    text = Trim(text);
    response.clear();
    if (!state_.CardInUse || !link_) return false;
    // 3. Remember it for the fault report.
    state_.LastCommand = std::string(text);
    // 4. The exchange itself; a failure shows through the link's fault event.
    bool success = link_->Exchange(text, response);
    if (!success) response.clear();
    // 5. Log it.
    LogExchange(name, text, response, success);
    return true;
}

void Conversation::Download(std::string_view text) {
    text = Trim(text);
    if (text.size() > 120) text = Trim(text.substr(0, 120));
    std::string response;
    Exchange("Download", text, response);
}

double Conversation::LeadingNumber(const char* name, std::string_view query) {
    std::string response;
    if (!Exchange(name, query, response)) return 0;
    return ToNumber(Trim(response));
}

bool Conversation::GetRspnsBln(std::string_view query) {
    return std::trunc(LeadingNumber("GetRspnsBln", query)) != 0;
}

std::int16_t Conversation::GetRspnsInt(std::string_view query) {
    // An answer that doesn't fit 16 bits reads as 0, like a missing one.
    return TruncateToInt16(LeadingNumber("GetRspnsInt", query)).value_or(0);
}

std::int32_t Conversation::GetRspnsLng(std::string_view query) {
    double t = std::trunc(LeadingNumber("GetRspnsLng", query));
    return (t >= -2147483648.0 && t <= 2147483647.0) ? static_cast<std::int32_t>(t) : 0;
}

float Conversation::GetRspnsSngl(std::string_view query, int places) {
    float value = static_cast<float>(LeadingNumber("GetRspnsSngl", query));
    if (places >= 0) value = static_cast<float>(RoundHalfEven(value, places));
    return value;
}

std::string Conversation::GetRspnsTxt(std::string_view query) {
    std::string response;
    Exchange("GetRspnsTxt", query, response);
    return std::string(Trim(response));
}

void Conversation::DownSystem(std::string_view dir, std::string_view name) {
    if (!state_.CardInUse || !link_) return;
    std::string path = std::string(Trim(dir)) + std::string(Trim(name));
    bool result = link_->DownloadFile(path);
    LogExchange("DownSystem", Trim(name), "", result);
}

void Conversation::LogExchange(std::string_view name, std::string_view query, std::string_view response, bool status) {
    if (!state_.PollLogOn) return;
    std::ofstream log(serviceDir_ + "Polling.txt", std::ios::binary | std::ios::app);
    log << "*** " << name << " ***\n"
        << "Query   :" << Trim(query) << '\n'
        << "Response:" << Trim(response) << '\n'
        << "Status  :" << (status ? "-1" : "0") << '\n'
        << '\n';
}

}  // namespace kirvana

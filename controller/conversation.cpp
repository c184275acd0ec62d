#include "controller/conversation.h"

#include <cmath>
#include <filesystem>
#include <fstream>

#include "core/file_writer.h"
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

std::string Conversation::Answer(const char* name, std::string_view query) {
    std::string response;
    Exchange(name, query, response);
    return response;
}

bool AnswerBln(std::string_view answer) { return std::trunc(ToNumber(Trim(answer))) != 0; }

std::int16_t AnswerInt(std::string_view answer) {
    // An answer that doesn't fit 16 bits reads as 0, like a missing one.
    return TruncateToInt16(ToNumber(Trim(answer))).value_or(0);
}

std::int32_t AnswerLng(std::string_view answer) {
    double t = std::trunc(ToNumber(Trim(answer)));
    return (t >= -2147483648.0 && t <= 2147483647.0) ? static_cast<std::int32_t>(t) : 0;
}

float AnswerSngl(std::string_view answer, int places) {
    float value = ToSingle(ToNumber(Trim(answer)));
    if (places >= 0) value = ToSingle(RoundHalfEven(value, places));
    return value;
}

bool Conversation::GetRspnsBln(std::string_view query) { return AnswerBln(Answer("GetRspnsBln", query)); }

std::int16_t Conversation::GetRspnsInt(std::string_view query) { return AnswerInt(Answer("GetRspnsInt", query)); }

std::int32_t Conversation::GetRspnsLng(std::string_view query) { return AnswerLng(Answer("GetRspnsLng", query)); }

float Conversation::GetRspnsSngl(std::string_view query, int places) {
    return AnswerSngl(Answer("GetRspnsSngl", query), places);
}

std::string Conversation::GetRspnsTxt(std::string_view query) {
    std::string response;
    Exchange("GetRspnsTxt", query, response);
    return std::string(Trim(response));
}

std::vector<std::string> Conversation::GetRspnsBatch(const std::vector<std::string>& queries,
                                                   const std::vector<const char*>& names) {
    std::vector<std::string> answers(queries.size());
    if (!state_.CardInUse || !link_ || queries.empty()) return answers;
    std::string line;
    for (const std::string& q : queries) {
        if (!line.empty()) line += ' ';
        line += Trim(q);
    }
    std::string response;
    bool success = link_->Exchange(line, response);
    if (!success) response.clear();
    // One answer line per query, in order.
    std::size_t start = 0;
    for (std::size_t i = 0; i < queries.size(); ++i) {
        std::size_t end = response.find_first_of("\r\n", start);
        if (start < response.size()) answers[i] = std::string(Trim(std::string_view(response).substr(start, end - start)));
        start = end == std::string::npos ? response.size() : end + 1;
        if (end != std::string::npos && response[end] == '\r' && start < response.size() && response[start] == '\n') ++start;
        state_.LastCommand = std::string(Trim(queries[i]));
        LogExchange(i < names.size() ? names[i] : "GetRspnsBatch", queries[i], answers[i], success);
    }
    return answers;
}

void Conversation::DownSystem(std::string_view dir, std::string_view name) {
    if (!state_.CardInUse || !link_) return;
    BeginLongExchange();
    std::string path = std::string(Trim(dir)) + std::string(Trim(name));
    bool result = link_->DownloadFile(path);
    LogExchange("DownSystem", Trim(name), "", result);
    EndLongExchange();
}

void Conversation::LockAllForms(bool lock, const std::string& exceptForm) {
    state_.FormsLocked = lock;
    if (platform_) platform_->SetFormsLocked(lock, exceptForm);
}

void Conversation::WaitMs(int ms) {
    if (ms <= 0) return;
    // 1. Lock and stop the poll, keeping PollRunning.
    LockAllForms(true);
    StopPollTimer(false);
    // 2. Wait for the tick with the event queue running.
    if (platform_) platform_->WaitForTick(ms);
    // 3. Unlock, and restart the poll if it is meant to run.
    LockAllForms(false);
    if (state_.PollRunning) StartPollTimer(false);
}

void Conversation::StartPollTimer(bool setRunning) {
    if (setRunning) state_.PollRunning = true;
    state_.PollTimerIntervalMs = state_.PollRestartDelayMs;
    if (platform_) {
        platform_->SetPollTimer(false, 0);
        platform_->SetPollTimer(true, state_.PollRestartDelayMs);
    }
}

void Conversation::StopPollTimer(bool clearRunning) {
    if (platform_) platform_->SetPollTimer(false, 0);
    state_.PollTimerIntervalMs = 0;
    if (clearRunning) state_.PollRunning = false;
}

void Conversation::BeginLongExchange() {
    LockAllForms(true);
    StopPollTimer(false);
}

void Conversation::EndLongExchange() {
    LockAllForms(false);
    if (state_.PollRunning) StartPollTimer(false);
}

void Conversation::RollPollingLog() {
    if (!state_.PollLogOn) return;
    namespace fs = std::filesystem;
    std::error_code error;
    const std::string log = serviceDir_ + "Polling.txt";
    auto size = fs::file_size(log, error);
    if (error || static_cast<long long>(size) < PollingLogLimit) return;
    // The log takes the place of an older Polling.bak in one step; it is never lost on the way.
    (void)MoveFileOver(log, serviceDir_ + "Polling.bak");
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

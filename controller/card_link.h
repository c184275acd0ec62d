// The one door to the motion card: open and close, exchange a text for a response,
// download a file, and report faults.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kirvana {

// The fault of a long operation whose deadline has passed.
inline constexpr std::int32_t LinkFaultDeadline = 1006;

// A fault of the link as it was raised: the card's error number and a description.
struct CardFault {
    std::int32_t Number = 0;
    std::string Description;
};

class CardLink {
public:
    // A fault of the link: the card's error number and a description.
    using FaultHandler = std::function<void(std::int32_t number, const std::string& description)>;
    using Clock = std::chrono::steady_clock;

    virtual ~CardLink() = default;

    // The open sequence of the start: prepare, then enable; reset and select before a retry.
    virtual void Prepare() = 0;
    virtual void Reset() = 0;
    virtual void Select() = 0;
    // True opens the link, false closes it; reading back tells whether it is open.
    virtual void SetEnabled(bool enabled) = 0;
    virtual bool Enabled() const = 0;

    // Sends a command or query and gives the card's answer; false when the exchange failed.
    virtual bool Exchange(std::string_view text, std::string& response) = 0;
    // Sends a whole file to the card's loader.
    virtual bool DownloadFile(const std::string& path) = 0;

    void SetFaultHandler(FaultHandler handler) { fault_ = std::move(handler); }

    // How many faults the link has raised, and the last of them: a caller compares the count
    // before and after its work to learn whether the card failed it.
    int FaultCount() const { return faultCount_; }
    const CardFault& LastFault() const { return lastFault_; }

    // A long operation (a selection's download, a run of commands) ends by its deadline: until
    // EndOperation no wait of the link lasts beyond it. When it passes, the link raises one
    // fault, LinkFaultDeadline, and fails every further exchange at once. An operation begun
    // inside another keeps the outer one's deadline.
    void BeginOperation(int deadlineMs);
    void EndOperation();
    bool OperationExpired() const { return expired_; }

protected:
    void RaiseFault(std::int32_t number, const std::string& description);
    // The operation's deadline, when one is under way.
    std::optional<Clock::time_point> OperationDeadline() const { return deadline_; }
    // Marks the operation as expired and raises its fault (once).
    void ExpireOperation();

private:
    FaultHandler fault_;
    int faultCount_ = 0;
    CardFault lastFault_;
    std::optional<Clock::time_point> deadline_;
    int deadlineMs_ = 0;
    int operationDepth_ = 0;
    bool expired_ = false;
};

// The frame of one long operation on the link (none when the link is null).
class CardOperation {
public:
    CardOperation(CardLink* link, int deadlineMs) : link_(link) {
        if (link_) link_->BeginOperation(deadlineMs);
    }
    ~CardOperation() {
        if (link_) link_->EndOperation();
    }
    CardOperation(const CardOperation&) = delete;
    CardOperation& operator=(const CardOperation&) = delete;

private:
    CardLink* link_;
};

}  // namespace kirvana

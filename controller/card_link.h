// The one door to the motion card: open and close, exchange a text for a response,
// download a file, and report faults.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace kirvana {

class CardLink {
public:
    // A fault of the link: the card's error number and a description.
    using FaultHandler = std::function<void(std::int32_t number, const std::string& description)>;

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

protected:
    void RaiseFault(std::int32_t number, const std::string& description) {
        if (fault_) fault_(number, description);
    }

private:
    FaultHandler fault_;
};

}  // namespace kirvana

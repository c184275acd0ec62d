// The card over Ethernet: the Turbo PMAC protocol on TCP. Every connect, send and receive has
// a time-out, and ends by the deadline of the operation under way at the latest; a time-out, a
// lost connection or an error answer raises the fault handler, and the exchange gives an empty
// answer. After a failure the next exchange connects anew.
#pragma once

#include <string>

#include "controller/card_link.h"

namespace kirvana {

// Fault numbers of the link itself; the card's own errors keep their ERR number.
inline constexpr std::int32_t LinkFaultConnect = 1001;
inline constexpr std::int32_t LinkFaultTimeout = 1002;
inline constexpr std::int32_t LinkFaultClosed = 1003;
inline constexpr std::int32_t LinkFaultTooLong = 1004;
inline constexpr std::int32_t LinkFaultFile = 1005;
// LinkFaultDeadline (1006, card_link.h): a long operation passed its deadline.

struct CardAddress {
    std::string Host = "127.0.0.1";
    int Port = 1025;
};
// A "label: host[:port]" line (a line without a label holds just the host); an empty line or
// the end marker gives the default address.
CardAddress ParseCardAddress(const std::string& text);

class PmacEthernetLink : public CardLink {
public:
    explicit PmacEthernetLink(CardAddress address, int timeoutMs = 1000);
    ~PmacEthernetLink() override;
    PmacEthernetLink(const PmacEthernetLink&) = delete;
    PmacEthernetLink& operator=(const PmacEthernetLink&) = delete;

    // Where the card is reached and how long a connect, send or receive may take.
    void SetAddress(CardAddress address, int timeoutMs);

    void Prepare() override {}
    void Reset() override;
    void Select() override {}
    void SetEnabled(bool enabled) override;
    bool Enabled() const override;
    bool Exchange(std::string_view text, std::string& response) override;
    bool DownloadFile(const std::string& path) override;

private:
    bool Connect();
    void Disconnect();
    bool EnsureConnected();
    bool SendAll(const std::string& bytes);
    // Receives until `complete` says the bytes so far are a whole answer; false on time-out or close.
    template <typename Complete>
    bool Receive(std::string& received, Complete complete);
    bool Flush();
    // When the next wait must end: the time-out from now, or the operation's deadline if sooner.
    Clock::time_point WaitDeadline() const;
    // True once the operation under way has passed its deadline (its fault raised once).
    bool OperationOver();
    // A wait that ended: the operation's deadline, or else the time-out of one exchange.
    void TimedOut(const std::string& description);
    void Fail(std::int32_t number, const std::string& description);

    CardAddress address_;
    int timeoutMs_;
    int socket_ = -1;
    bool enabled_ = false;
};

}  // namespace kirvana

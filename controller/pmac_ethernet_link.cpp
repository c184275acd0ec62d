#include "controller/pmac_ethernet_link.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>

#include "controller/pmac_protocol.h"
#include "core/paths.h"
#include "core/text.h"

namespace kirvana {

CardAddress ParseCardAddress(const std::string& text) {
    CardAddress address;
    std::string value = AfterColon(text);
    if (value.empty() || value == "******") return address;
    std::size_t colon = value.rfind(':');
    std::string host = colon == std::string::npos ? value : value.substr(0, colon);
    if (!Trim(host).empty()) address.Host = std::string(Trim(host));
    if (colon != std::string::npos) {
        int port = std::atoi(value.c_str() + colon + 1);
        if (port > 0 && port < 65536) address.Port = port;
    }
    return address;
}

namespace {

using Clock = std::chrono::steady_clock;

// Whole milliseconds up to the deadline, rounded up, so that a wait never ends before it.
int RemainingMs(Clock::time_point deadline) {
    auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

}  // namespace

PmacEthernetLink::PmacEthernetLink(CardAddress address, int timeoutMs)
    : address_(std::move(address)), timeoutMs_(timeoutMs) {}

PmacEthernetLink::~PmacEthernetLink() { Disconnect(); }

void PmacEthernetLink::SetAddress(CardAddress address, int timeoutMs) {
    Disconnect();
    address_ = std::move(address);
    timeoutMs_ = timeoutMs;
}

void PmacEthernetLink::Reset() { Disconnect(); }

void PmacEthernetLink::SetEnabled(bool enabled) {
    enabled_ = enabled;
    if (enabled) Connect();
    else Disconnect();
}

bool PmacEthernetLink::Enabled() const { return enabled_ && socket_ >= 0; }

Clock::time_point PmacEthernetLink::WaitDeadline() const {
    Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(timeoutMs_);
    if (auto operation = OperationDeadline(); operation && *operation < deadline) deadline = *operation;
    return deadline;
}

bool PmacEthernetLink::OperationOver() {
    if (OperationExpired()) return true;
    auto deadline = OperationDeadline();
    if (!deadline || Clock::now() < *deadline) return false;
    // An answer may still be on its way: the stream can't be trusted any more.
    Disconnect();
    ExpireOperation();
    return true;
}

void PmacEthernetLink::TimedOut(const std::string& description) {
    if (!OperationOver()) Fail(LinkFaultTimeout, description);
}

void PmacEthernetLink::Fail(std::int32_t number, const std::string& description) {
    // After a failure the stream can't be trusted: the next exchange connects anew.
    Disconnect();
    RaiseFault(number, description);
}

bool PmacEthernetLink::Connect() {
    Disconnect();
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    std::string port = std::to_string(address_.Port);
    if (getaddrinfo(address_.Host.c_str(), port.c_str(), &hints, &found) != 0 || !found) {
        RaiseFault(LinkFaultConnect, "Card address " + address_.Host + " cannot be resolved");
        return false;
    }
    auto deadline = WaitDeadline();
    for (addrinfo* a = found; a && socket_ < 0; a = a->ai_next) {
        int s = socket(a->ai_family, a->ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC, a->ai_protocol);
        if (s < 0) continue;
        int r = connect(s, a->ai_addr, a->ai_addrlen);
        if (r < 0 && errno == EINPROGRESS) {
            pollfd p{s, POLLOUT, 0};
            if (poll(&p, 1, RemainingMs(deadline)) == 1) {
                int error = 0;
                socklen_t len = sizeof error;
                getsockopt(s, SOL_SOCKET, SO_ERROR, &error, &len);
                r = error == 0 ? 0 : -1;
            }
        }
        if (r == 0) {
            int one = 1;
            setsockopt(s, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
            socket_ = s;
        } else {
            close(s);
        }
    }
    freeaddrinfo(found);
    if (socket_ < 0) {
        if (OperationOver()) return false;
        RaiseFault(LinkFaultConnect, "No card answers at " + address_.Host + ":" + port);
        return false;
    }
    return Flush();
}

void PmacEthernetLink::Disconnect() {
    if (socket_ >= 0) close(socket_);
    socket_ = -1;
}

bool PmacEthernetLink::EnsureConnected() {
    if (socket_ >= 0) return true;
    return enabled_ && Connect();
}

bool PmacEthernetLink::SendAll(const std::string& bytes) {
    auto deadline = WaitDeadline();
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        ssize_t n = send(socket_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (n > 0) {
            sent += static_cast<std::size_t>(n);
            continue;
        }
        if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
            pollfd p{socket_, POLLOUT, 0};
            if (poll(&p, 1, RemainingMs(deadline)) == 1) continue;
            TimedOut("Time-out sending to the card");
            return false;
        }
        if (n < 0 && errno == EINTR) continue;
        Fail(LinkFaultClosed, "The card closed the connection");
        return false;
    }
    return true;
}

template <typename Complete>
bool PmacEthernetLink::Receive(std::string& received, Complete complete) {
    auto deadline = WaitDeadline();
    char buffer[2048];
    while (!complete(received)) {
        pollfd p{socket_, POLLIN, 0};
        int ready = poll(&p, 1, RemainingMs(deadline));
        if (ready == 0) {
            TimedOut("Time-out waiting for the card's answer");
            return false;
        }
        if (ready < 0 && errno == EINTR) continue;
        ssize_t n = ready > 0 ? recv(socket_, buffer, sizeof buffer, 0) : -1;
        if (n < 0 && (errno == EAGAIN || errno == EINTR)) continue;
        if (n <= 0) {
            Fail(LinkFaultClosed, "The card closed the connection");
            return false;
        }
        received.append(buffer, static_cast<std::size_t>(n));
    }
    return true;
}

bool PmacEthernetLink::Flush() {
    pmac::Header h;
    h.Request = pmac::VrPmacFlush;
    if (!SendAll(pmac::EncodePacket(h, {}))) return false;
    std::string received;
    return Receive(received, [](const std::string& r) { return !r.empty(); });
}

bool PmacEthernetLink::Exchange(std::string_view text, std::string& response) {
    response.clear();
    if (OperationOver()) return false;
    if (text.size() > pmac::MaxPacketData) {
        RaiseFault(LinkFaultTooLong, "Command longer than one packet");
        return false;
    }
    if (!EnsureConnected()) return false;
    pmac::Header h;
    h.Request = pmac::VrPmacGetResponse;
    h.Length = static_cast<std::uint16_t>(text.size());
    if (!SendAll(pmac::EncodePacket(h, text))) return false;
    std::string received;
    pmac::Answer answer;
    bool whole = Receive(received, [&](const std::string& r) {
        answer = pmac::ParseAnswer(r);
        return answer.Status != pmac::Answer::State::Incomplete;
    });
    if (!whole) return false;
    switch (answer.Status) {
        case pmac::Answer::State::Done:
            response = std::move(answer.Text);
            return true;
        case pmac::Answer::State::Error:
            RaiseFault(answer.ErrorNumber, answer.Text);
            return false;
        default:
            Fail(LinkFaultTooLong, "The card's answer is too long");
            return false;
    }
}

bool PmacEthernetLink::DownloadFile(const std::string& path) {
    auto lines = ReadLines(path);
    if (!lines) {
        RaiseFault(LinkFaultFile, "Cannot read " + path);
        return false;
    }
    if (OperationOver() || !EnsureConnected() || !Flush()) return false;
    int lineBase = 0;
    for (const std::string& buffer : pmac::SplitDownload(*lines)) {
        pmac::Header h;
        h.Request = pmac::VrPmacWriteBuffer;
        h.Length = static_cast<std::uint16_t>(buffer.size());
        if (!SendAll(pmac::EncodePacket(h, buffer))) return false;
        std::string received;
        if (!Receive(received, [](const std::string& r) { return r.size() >= 4; })) return false;
        auto status = pmac::DecodeWriteStatus(reinterpret_cast<const std::uint8_t*>(received.data()));
        if (status.Error) {
            RaiseFault(status.ErrorNumber, "ERR" + std::string(status.ErrorNumber < 10 ? "00" : status.ErrorNumber < 100 ? "0" : "") +
                                               std::to_string(status.ErrorNumber) + " in line " +
                                               std::to_string(lineBase + status.Line) + " of " + FileNameOf(path));
            return false;
        }
        lineBase += static_cast<int>(std::count(buffer.begin(), buffer.end(), '\n'));
    }
    return true;
}

}  // namespace kirvana

// A pseudo-terminal pair: the port under test opens the terminal's path; the test plays the
// outside computer on the other end.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <string_view>
#include <thread>

namespace kirvana {

class PtyPair {
public:
    PtyPair() {
        int terminal = -1;
        if (openpty(&outside_, &terminal, nullptr, nullptr, nullptr) != 0) return;
        path_ = ttyname(terminal);
        // Held open so that the line stays up while the port closes and opens again.
        keep_ = terminal;
    }
    ~PtyPair() {
        CloseOutside();
        if (keep_ >= 0) close(keep_);
    }
    PtyPair(const PtyPair&) = delete;
    PtyPair& operator=(const PtyPair&) = delete;
    const std::string& Path() const { return path_; }
    bool Ready() const { return outside_ >= 0 && !path_.empty(); }
    // The outside computer pulls its cable.
    void CloseOutside() {
        if (outside_ >= 0) close(outside_);
        outside_ = -1;
    }
    // Writes all the bytes, in pieces of `piece` bytes.
    void Send(std::string_view bytes, std::size_t piece = 4096) const {
        while (!bytes.empty()) {
            ssize_t n = write(outside_, bytes.data(), std::min(piece, bytes.size()));
            if (n < 0) {
                if (errno == EINTR || errno == EAGAIN) continue;
                return;
            }
            bytes.remove_prefix(static_cast<std::size_t>(n));
        }
    }
    // Reads until `end` has arrived at the end of what was read, or `seconds` pass.
    std::string ReceiveUntil(std::string_view end, double seconds) const {
        std::string got;
        auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
        while (std::chrono::steady_clock::now() < deadline) {
            got += ReceiveFor(50);
            if (!end.empty() && got.ends_with(end)) break;
        }
        return got;
    }
    // What arrives within `ms` milliseconds.
    std::string ReceiveFor(int ms) const {
        std::string got;
        auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
        while (true) {
            auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
            if (left.count() <= 0) break;
            pollfd p{outside_, POLLIN, 0};
            if (poll(&p, 1, static_cast<int>(left.count())) <= 0 || !(p.revents & POLLIN)) continue;
            char buffer[65536];
            ssize_t n = read(outside_, buffer, sizeof buffer);
            if (n > 0) got.append(buffer, static_cast<std::size_t>(n));
        }
        return got;
    }

private:
    int outside_ = -1;
    int keep_ = -1;
    std::string path_;
};

}  // namespace kirvana

// A card for the poll and command tests: it answers each query of a line (a batch or a single
// query) from its table, runs "NAME=NAME-n" and "NAME=value" on the table, and remembers every
// exchange and every command.
#pragma once

#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "controller/card_link.h"
#include "controller/controller_platform.h"
#include "core/number.h"

namespace kirvana {

class PollCard : public CardLink {
public:
    std::map<std::string, std::string> Values;
    std::vector<std::string> Exchanges;  // every line sent, in order
    std::vector<std::string> Commands;   // every assignment, in order
    bool Succeeds = true;
    std::set<std::string> Errors;  // queries the card refuses with an error

    void Prepare() override {}
    void Reset() override {}
    void Select() override {}
    void SetEnabled(bool enabled) override { enabled_ = enabled; }
    bool Enabled() const override { return enabled_; }
    bool DownloadFile(const std::string& path) override {
        Exchanges.push_back("FILE " + path);
        return true;
    }
    bool Exchange(std::string_view text, std::string& response) override {
        Exchanges.emplace_back(text);
        response.clear();
        if (!Succeeds) return false;
        std::istringstream tokens{std::string(text)};
        std::string token;
        while (tokens >> token) {
            std::size_t equals = token.find('=');
            if (Errors.count(token)) {
                RaiseFault(3, "ERR003");
                response.clear();
                return false;
            }
            if (equals == std::string::npos) {
                auto it = Values.find(token);
                response += (it == Values.end() ? "0" : it->second) + "\r";
                continue;
            }
            Commands.push_back(token);
            std::string name = token.substr(0, equals), value = token.substr(equals + 1);
            if (value.starts_with(name + "-")) {
                long long now = static_cast<long long>(ToNumber(Values[name]));
                Values[name] = std::to_string(now - static_cast<long long>(ToNumber(value.substr(name.size() + 1))));
            } else if (value.find_first_of("|") == std::string::npos) {
                Values[name] = value;
            }
        }
        return true;
    }
    int Count(const std::string& command) const {
        int n = 0;
        for (const auto& c : Commands) n += c == command;
        return n;
    }

private:
    bool enabled_ = true;
};

// The timer and lock calls of the poll, remembered.
struct TimerPlatform : ControllerPlatform {
    std::vector<std::pair<bool, int>> TimerCalls;
    void SetFormsLocked(bool, const std::string&) override {}
    void SetPollTimer(bool enabled, int intervalMs) override { TimerCalls.emplace_back(enabled, intervalMs); }
    void WaitForTick(int) override {}
};

}  // namespace kirvana

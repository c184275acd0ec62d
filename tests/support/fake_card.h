// A card link for tests: answers from a table and remembers everything it was sent.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "controller/card_link.h"

namespace kirvana {

class FakeCardLink : public CardLink {
public:
    std::map<std::string, std::string> Answers;
    std::vector<std::string> Sent;   // every exchange and download, in order
    std::vector<std::string> Calls;  // open sequence calls
    int EnableFailures = 0;          // how many SetEnabled(true) calls fail
    bool ExchangeSucceeds = true;

    void Prepare() override { Calls.push_back("Prepare"); }
    void Reset() override { Calls.push_back("Reset"); }
    void Select() override { Calls.push_back("Select"); }
    void SetEnabled(bool enabled) override {
        Calls.push_back(enabled ? "Enable" : "Disable");
        if (enabled && EnableFailures > 0) {
            --EnableFailures;
            enabled_ = false;
            return;
        }
        enabled_ = enabled;
    }
    bool Enabled() const override { return enabled_; }
    bool Exchange(std::string_view text, std::string& response) override {
        Sent.emplace_back(text);
        auto it = Answers.find(std::string(text));
        response = it == Answers.end() ? std::string() : it->second;
        return ExchangeSucceeds;
    }
    bool DownloadFile(const std::string& path) override {
        Sent.push_back("FILE " + path);
        return true;
    }
    void Fault(std::int32_t number, const std::string& description) { RaiseFault(number, description); }

private:
    bool enabled_ = false;
};

}  // namespace kirvana

// An operator for the file jobs: answers the questions in the order given (yes when the answers
// run out) and keeps every text shown.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "files/file_jobs.h"

namespace kirvana {

class ScriptedOperator : public FileJobOperator {
public:
    explicit ScriptedOperator(std::deque<bool> answers = {}) : answers_(std::move(answers)) {}
    bool Ask(const std::string& text) override {
        Questions.push_back(text);
        Shown.push_back(text);
        if (answers_.empty()) return true;
        bool answer = answers_.front();
        answers_.pop_front();
        return answer;
    }
    void Tell(const std::string& text) override {
        Notices.push_back(text);
        Shown.push_back(text);
    }
    std::vector<std::string> Questions, Notices, Shown;

private:
    std::deque<bool> answers_;
};

}  // namespace kirvana

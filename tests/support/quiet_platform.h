// The platform of a start without screens for tests and benchmarks: nothing is shown, the
// splash is done at once, every question is answered no, and warnings and questions are kept.
#pragma once

#include <string>
#include <vector>

#include "system/startup.h"

namespace kirvana {

struct QuietPlatform : StartupPlatform {
    std::vector<std::string> Warnings;
    std::vector<std::string> Questions;

    void ShowSplash(const std::string&, const std::string&) override {}
    bool SplashDone() override { return true; }
    void StopSplashTimer() override {}
    void ProcessEvents() override {}
    void ShowMessageBox(const std::string&, const std::string&) override {}
    bool AskOperator(const std::string& text) override {
        Questions.push_back(text);
        return false;
    }
    void ShowWarning(const std::string& text) override { Warnings.push_back(text); }
    void ShowFrontEnd() override {}
    bool FrontEndVisible() override { return false; }
    void UnloadFrontEnd() override {}
    void SetFormsLocked(bool, const std::string&) override {}
    void SetPollTimer(bool, int) override {}
    void WaitForTick(int) override {}
    void StartProgram(const std::string&) override {}
    void PowerOff() override {}
    void EndProcess() override {}
};

}  // namespace kirvana

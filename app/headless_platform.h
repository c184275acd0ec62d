// The platform of a start without screens: the office seat's command line. Messages go to
// stderr, questions are answered no, power off is never let through, and the splash is a line
// of text shown for its time.
#pragma once

#include <chrono>
#include <cstdio>
#include <thread>

#include "controller/pmac_ethernet_link.h"
#include "system/startup.h"

namespace kirvana {

class HeadlessPlatform : public StartupPlatform {
public:
    // splashMs: how long the splash stays (the panel's 4000 ms; 0 for the office commands).
    explicit HeadlessPlatform(int splashMs, bool quiet) : splashMs_(splashMs), quiet_(quiet) {}

    void ShowSplash(const std::string& title, const std::string& version) override {
        splashStart_ = std::chrono::steady_clock::now();
        if (!quiet_) std::printf("%s  %s\n", title.c_str(), version.c_str());
    }
    bool SplashDone() override {
        return std::chrono::steady_clock::now() - splashStart_ >= std::chrono::milliseconds(splashMs_);
    }
    void StopSplashTimer() override {}
    // There are no events here: the pump only keeps the splash loop from spinning hot.
    void ProcessEvents() override {
        if (!SplashDone()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    void ShowMessageBox(const std::string& text, const std::string& title) override {
        std::fprintf(stderr, "%s: %s\n", title.c_str(), text.c_str());
    }
    bool AskOperator(const std::string& text) override {
        std::fprintf(stderr, "%s\n(answered no: no operator at this seat)\n", text.c_str());
        return false;
    }
    void ShowWarning(const std::string& text) override {
        if (!quiet_ || starting_) std::fprintf(stderr, "%s\n", text.c_str());
    }
    // Warnings of the start reach stderr even at a quiet seat: no command prints them otherwise.
    void SetStarting(bool starting) { starting_ = starting; }
    void ShowFrontEnd() override { frontEnd_ = true; }
    bool FrontEndVisible() override { return frontEnd_; }
    void UnloadFrontEnd() override { frontEnd_ = false; }
    void SetFormsLocked(bool, const std::string&) override {}
    void SetPollTimer(bool, int) override {}
    void WaitForTick(int ms) override { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }
    void StartProgram(const std::string& path) override {
        if (!quiet_) std::printf("service program: %s (not started by the office seat)\n", path.c_str());
    }
    void PowerOff() override {
        if (!quiet_) std::printf("power off requested: refused by the office seat\n");
    }
    void EndProcess() override {}

private:
    int splashMs_;
    bool quiet_;
    bool starting_ = false;
    bool frontEnd_ = false;
    std::chrono::steady_clock::time_point splashStart_;
};

// A seat without screens: the process records, the platform, and the card over Ethernet at
// the address PMAC.cfg gives (used only when Control.cnc has the card in use).
class HeadlessSeat {
public:
    HeadlessSeat(int splashMs, bool showSplash, bool printSummary, int cardTimeoutMs = 1000);
    // Runs the start in `root` (its current directory); prints the machine summary when asked,
    // or the reason it could not start. Gives the exit code.
    int Start(const std::string& root);
    // The Select button on the active slot.
    SelectOutcome Select(const std::string& directory, const std::string& program);
    // One tick of the poll timer.
    void Tick();
    // The operator's shutdown, without powering off.
    void End();
    Conversation Talk();
    CardLink& Link() { return link_; }

    Process State;

private:
    HeadlessPlatform platform_;
    PmacEthernetLink link_;
    StartupSteps steps_;
    bool printSummary_;
};

}  // namespace kirvana

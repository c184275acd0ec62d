// A simulated motion card: it keeps I, P, Q and M variables, the motor values, the feed
// override and the program counter; evaluates the commands the front end sends; stores
// downloaded motion programs; and answers the Turbo PMAC Ethernet protocol on loopback.
// Tests and demonstrations script it through its functions or its text commands.
#pragma once

#include <array>
#include <atomic>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "controller/cardsim/program_run.h"
#include "controller/cardsim/run_plan.h"
#include "controller/pmac_protocol.h"

namespace kirvana {

class CardSimulator {
public:
    CardSimulator();
    ~CardSimulator();
    CardSimulator(const CardSimulator&) = delete;
    CardSimulator& operator=(const CardSimulator&) = delete;

    // Listens on 127.0.0.1 (port 0: an ephemeral port) and serves in a thread of its own.
    bool Start(int port = 0);
    void Stop();
    int Port() const { return port_; }

    // The answer bytes of one GETRESPONSE: answer lines ended by CR and then ACK, or
    // BELL "ERRnnn" CR for a command the card does not know.
    std::string Execute(const std::string& line);
    // One WRITEBUFFER of lines ended by LF: programs between OPEN PROG and CLOSE are stored,
    // other lines run as commands.
    pmac::WriteStatus WriteBuffer(const std::string& data);

    // Scripting.
    void SetVariable(const std::string& name, double value);
    double Variable(const std::string& name);
    void RaiseStatusBits(std::int64_t bits);  // P1022 |= bits
    void SetStation(int station);             // M802 and the new-station bit
    void StepHits(int hits);                  // M869 += hits
    void HoldNextAnswer(int ms);              // delays the next answer
    void HoldEveryAnswer(int ms);             // a slow card: every answer late (0: none)
    void DropNextDownload();                  // closes the connection at the next download buffer
    void Reject(const std::string& text);     // ERR003 to every line holding it ("": none)
    void SetMotor(int motor, double position, double followingError);
    void SetAxisDefinition(int motor, const std::string& definition);
    void SetProgramCounter(int program, int word);
    std::vector<std::string> Program(int number);     // a stored motion program
    std::vector<std::string> Received();              // every command, in order
    std::vector<std::pair<double, double>> HitLog();  // the place of every hit made, in order
    void ClearReceived();
    // Running programs: where the steps of a program come from, and the speed in blocks per
    // second at a feed override of 100 (100: real time).
    void SetRunPlanSource(RunPlanSource source);
    void SetRunSpeed(double blocksPerSecond);
    void SetOptionalStop(bool on);
    // The machine's buttons: cycle start (resumes a hold or a stop, else runs the program of the
    // active slot in M811: 1, 2 or 5), feed hold, and an abort. False when the program can't run.
    bool CycleStart();
    void FeedHold();
    void Abort();
    // Walks a running program on by a number of steps, whatever its speed.
    void WalkRun(double steps);
    ProgramRun::State RunState();

    // The text command channel: "set NAME VALUE", "get NAME", "raise BITS", "station N",
    // "hit [N]", "hold MS", "slow MS", "drop", "reject [TEXT]", "motor N POSITION [FOLLOWING]",
    // "axis N DEFINITION", "pc PROGRAM WORD", "program N", "start", "feedhold", "abort",
    // "speed N", "walk STEPS", "optional on|off", "run", "log", "help". Gives the reply text.
    std::string Command(const std::string& line);

private:
    std::string ExecuteLocked(const std::string& line);
    bool RunToken(const std::string& token, std::string& answer);
    bool RunCommand(const std::string& token);
    bool BeginLocked(int program, int label = 0, bool countOn = false);
    void AdvanceLocked();
    void ShowRunLocked(const ProgramRun::Events& events);
    double Scale(int motor) const;
    double Evaluate(const std::string& expression, bool& ok);
    double& Slot(const std::string& name);
    void Serve();
    void ServeClient(int client);

    std::mutex mutex_;
    std::map<std::string, double> variables_;
    std::array<double, 4> position_{};
    std::array<double, 4> followingError_{};
    std::array<std::string, 4> axisDefinition_{"1X", "1Y", "1Z", "1C"};
    double feedOverride_ = 100;
    int pcProgram_ = 1;
    int pcWord_ = 0;
    std::map<int, std::vector<std::string>> programs_;
    int activeSlot_ = 1;  // the last slot "M811=" named
    int openProgram_ = 0;
    std::vector<std::string> received_;
    int holdMs_ = 0;
    int slowMs_ = 0;
    bool dropNext_ = false;
    std::string reject_;
    ProgramRun run_;
    RunPlanSource planSource_;
    int pointedProgram_ = 1;  // the program "B" points at
    int pointedLabel_ = 0;    // and the line label behind its point
    // The slot's program the restart program hands over to at its end, and its label; 0: none.
    int handOverProgram_ = 0, handOverLabel_ = 0;
    std::vector<std::pair<double, double>> hitLog_;
    ProgramRun::State shownState_ = ProgramRun::State::Idle;

    int listener_ = -1;
    int port_ = 0;
    std::atomic<bool> stopping_{false};
    std::thread server_;
};

}  // namespace kirvana

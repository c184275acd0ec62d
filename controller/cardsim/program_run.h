// The run of one motion program on the simulated card: the steps of its plan walked at a speed
// in blocks per second (times the feed override), the axes moving toward each step's point, hits
// counted at the end of a step, and stops, feed hold and the end of the program.
#pragma once

#include <chrono>
#include <utility>
#include <vector>

#include "controller/cardsim/run_plan.h"

namespace kirvana {

class ProgramRun {
public:
    using Clock = std::chrono::steady_clock;
    enum class State { Idle, Running, Feedhold, Stopped };

    // What an advance did that the card's variables must show.
    struct Events {
        int Hits = 0;
        std::vector<std::pair<double, double>> HitPlaces;  // where the hits were made, in order
        std::vector<int> Stations;                         // station changes, in order
        bool Ended = false;
    };

    // Blocks per second at a feed override of 100; 100 keeps real time, 0 leaves the walk to Walk.
    void SetSpeed(double blocksPerSecond) { speed_ = blocksPerSecond >= 0 ? blocksPerSecond : speed_; }
    double Speed() const { return speed_; }
    // Whether M01 stops.
    void SetOptionalStop(bool on) { optionalStop_ = on; }
    bool OptionalStop() const { return optionalStop_; }

    // Starts program `program` with its plan from the point (x, y).
    Events Begin(int program, RunPlan plan, double x, double y, Clock::time_point now);
    // Feed hold, and cycle start after a hold or a stop.
    void Hold();
    void Resume(Clock::time_point now);
    void Abort();
    // Walks the plan on to `now`.
    Events Advance(Clock::time_point now, double feedPercent);
    // Walks the plan on by a number of steps (a fraction stops inside a step), while running.
    Events Walk(double steps);

    State Now() const { return state_; }
    int Program() const;  // the program the counter shows
    int Word() const;
    double X() const { return x_; }
    double Y() const { return y_; }
    std::size_t StepsDone() const { return step_; }

private:
    void Enter(Events& events);
    void Place();

    RunPlan plan_;
    int program_ = 1;
    State state_ = State::Idle;
    std::size_t step_ = 0;
    double progress_ = 0;  // of the present step, 0 to 1
    double fromX_ = 0, fromY_ = 0, x_ = 0, y_ = 0;
    double speed_ = 100;
    bool optionalStop_ = false;
    Clock::time_point last_{};
};

}  // namespace kirvana

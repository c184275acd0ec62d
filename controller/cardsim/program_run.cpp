#include "controller/cardsim/program_run.h"

namespace kirvana {

ProgramRun::Events ProgramRun::Begin(int program, RunPlan plan, double x, double y, Clock::time_point now) {
    plan_ = std::move(plan);
    program_ = program;
    step_ = 0;
    progress_ = 0;
    fromX_ = x_ = x;
    fromY_ = y_ = y;
    last_ = now;
    state_ = State::Running;
    Events events;
    if (plan_.empty()) {
        state_ = State::Idle;
        events.Ended = true;
        return events;
    }
    Enter(events);
    return events;
}

void ProgramRun::Hold() {
    if (state_ == State::Running) state_ = State::Feedhold;
}

void ProgramRun::Resume(Clock::time_point now) {
    if (state_ != State::Feedhold && state_ != State::Stopped) return;
    state_ = State::Running;
    last_ = now;
}

void ProgramRun::Abort() { state_ = State::Idle; }

int ProgramRun::Program() const {
    if (plan_.empty()) return program_;
    return plan_[step_ < plan_.size() ? step_ : plan_.size() - 1].Program;
}

int ProgramRun::Word() const {
    if (plan_.empty()) return 0;
    return plan_[step_ < plan_.size() ? step_ : plan_.size() - 1].Word;
}

void ProgramRun::Enter(Events& events) {
    fromX_ = x_;
    fromY_ = y_;
    if (plan_[step_].Station > 0) events.Stations.push_back(plan_[step_].Station);
}

void ProgramRun::Place() {
    const RunStep& s = plan_[step_];
    x_ = fromX_ + (s.X - fromX_) * progress_;
    y_ = fromY_ + (s.Y - fromY_) * progress_;
}

ProgramRun::Events ProgramRun::Advance(Clock::time_point now, double feedPercent) {
    Events events;
    if (state_ != State::Running) return events;
    double seconds = std::chrono::duration<double>(now - last_).count();
    last_ = now;
    return Walk(seconds * speed_ * (feedPercent > 0 ? feedPercent / 100 : 0));
}

ProgramRun::Events ProgramRun::Walk(double budget) {
    Events events;
    if (state_ != State::Running) return events;
    while (budget > 0 && state_ == State::Running) {
        double need = 1 - progress_;
        if (budget < need) {
            progress_ += budget;
            Place();
            break;
        }
        // The step's end: the point reached, its hits made, and a stop where it asks for one.
        budget -= need;
        progress_ = 1;
        Place();
        const RunStep& done = plan_[step_];
        events.Hits += done.Hits;
        if (done.Hits > 0) events.HitPlaces.emplace_back(done.X, done.Y);
        bool stops =
            done.Stop == RunStep::StopKind::Program || (done.Stop == RunStep::StopKind::Optional && optionalStop_);
        progress_ = 0;
        if (++step_ == plan_.size()) {
            state_ = State::Idle;
            events.Ended = true;
            break;
        }
        Enter(events);
        if (stops) state_ = State::Stopped;
    }
    return events;
}

}  // namespace kirvana

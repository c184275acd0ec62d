#include "controller/cardsim/program_run.h"

#include <gtest/gtest.h>

#include "controller/cardsim/card_simulator.h"

using namespace kirvana;
using namespace std::chrono_literals;

namespace {

RunPlan Line(int steps) {
    RunPlan plan;
    for (int n = 1; n <= steps; ++n) plan.push_back(RunStep{1, n * 2, n * 10.0, 0, 1, 0, RunStep::StopKind::None});
    return plan;
}

// The answer text of a simulator line without its ACK.
std::string Answer(CardSimulator& sim, const std::string& line) {
    std::string a = sim.Execute(line);
    if (!a.empty() && a.back() == pmac::Ack) a.pop_back();
    return a;
}

}  // namespace

TEST(ProgramRunTest, WalksAHundredBlocksASecondAtFullFeed) {
    ProgramRun run;
    auto t0 = ProgramRun::Clock::now();
    run.Begin(1, Line(200), 0, 0, t0);
    auto events = run.Advance(t0 + 500ms, 100);
    EXPECT_EQ(events.Hits, 50);
    EXPECT_EQ(run.StepsDone(), 50u);
    EXPECT_DOUBLE_EQ(run.X(), 500);
    // Half the feed, half the blocks.
    events = run.Advance(t0 + 1000ms, 50);
    EXPECT_EQ(events.Hits, 25);
    EXPECT_EQ(run.Word(), 152);
}

TEST(ProgramRunTest, AxesMoveTowardTheStepsPoint) {
    ProgramRun run;
    run.SetSpeed(0);
    run.Begin(1, Line(2), 0, 0, ProgramRun::Clock::now());
    run.Walk(0.25);
    EXPECT_DOUBLE_EQ(run.X(), 2.5);
    run.Walk(1);
    EXPECT_DOUBLE_EQ(run.X(), 12.5);
    auto events = run.Walk(5);
    EXPECT_TRUE(events.Ended);
    EXPECT_EQ(events.Hits, 1);
    EXPECT_EQ(run.Now(), ProgramRun::State::Idle);
    EXPECT_DOUBLE_EQ(run.X(), 20);
}

TEST(ProgramRunTest, StopsHoldsAndStationChanges) {
    RunPlan plan = Line(4);
    plan[1].Stop = RunStep::StopKind::Program;
    plan[2].Stop = RunStep::StopKind::Optional;
    plan[3].Station = 7;
    ProgramRun run;
    run.SetSpeed(0);
    auto now = ProgramRun::Clock::now();
    run.Begin(1, plan, 0, 0, now);
    run.Walk(10);
    EXPECT_EQ(run.Now(), ProgramRun::State::Stopped);
    EXPECT_EQ(run.StepsDone(), 2u);
    run.Resume(now);
    // M01 passes without the optional stop; the station of step 4 comes as it is entered.
    auto events = run.Walk(1);
    EXPECT_EQ(run.Now(), ProgramRun::State::Running);
    EXPECT_EQ(events.Stations, std::vector<int>{7});
    run.Hold();
    EXPECT_EQ(run.Walk(5).Hits, 0);
    EXPECT_EQ(run.Now(), ProgramRun::State::Feedhold);
    run.Resume(now);
    EXPECT_TRUE(run.Walk(5).Ended);
    // With the optional stop on, M01 stops.
    run.SetOptionalStop(true);
    run.Begin(1, plan, 0, 0, now);
    run.Walk(10);
    run.Resume(now);
    run.Walk(10);
    EXPECT_EQ(run.Now(), ProgramRun::State::Stopped);
    EXPECT_EQ(run.StepsDone(), 3u);
}

TEST(CardSimulatorRunTest, AProgramItCannotRunAnswersTheCardsError) {
    CardSimulator sim;
    EXPECT_EQ(Answer(sim, "B1R"), std::string(1, pmac::Bell) + "ERR003\r");
    sim.SetRunPlanSource([](int) { return std::optional<RunPlan>(Line(3)); });
    // Not downloaded yet.
    EXPECT_NE(Answer(sim, "&1B2R").find("ERR003"), std::string::npos);
    EXPECT_EQ(Answer(sim, "B99999R").find("ERR003") != std::string::npos, true);
    EXPECT_EQ(Answer(sim, "P1022"), "0\r");
}

TEST(CardSimulatorRunTest, RunCommandsAndTheStatusWord) {
    CardSimulator sim;
    sim.SetRunSpeed(0);
    sim.SetRunPlanSource([](int program) { return program == 1 ? std::optional<RunPlan>(Line(3)) : std::nullopt; });
    ASSERT_FALSE(sim.WriteBuffer("CLOSE\nOPEN PROG 1\nCLEAR\nG01X10\nCLOSE\n").Error);
    sim.SetVariable("M869", 12);
    EXPECT_EQ(Answer(sim, "B1R"), "");
    EXPECT_EQ(sim.Variable("P1022"), 16384 + 8192);
    EXPECT_EQ(sim.Variable("M869"), 0);
    EXPECT_EQ(Answer(sim, "PC"), "P1:2\r");
    sim.WalkRun(1.5);
    EXPECT_EQ(sim.Variable("M869"), 1);
    EXPECT_EQ(Answer(sim, "#1P"), "15\r");
    EXPECT_EQ(Answer(sim, "PC"), "P1:4\r");
    EXPECT_EQ(Answer(sim, "H"), "");
    EXPECT_EQ(sim.Variable("P1022"), 16384 + 8192 + 2048);
    EXPECT_NE(Answer(sim, "B1R").find("ERR003"), std::string::npos);  // not while a program is under way
    EXPECT_EQ(Answer(sim, "R"), "");
    EXPECT_EQ(sim.RunState(), ProgramRun::State::Running);
    // The axis scale of the axis definition.
    sim.SetAxisDefinition(1, "1000X");
    sim.WalkRun(10);
    EXPECT_EQ(sim.Variable("P1022"), 0);
    EXPECT_EQ(sim.Variable("M869"), 3);
    EXPECT_EQ(Answer(sim, "#1P"), "30000\r");
    // The control channel's cycle start runs the active slot's program again.
    sim.SetVariable("M811", 1);
    EXPECT_EQ(sim.Command("start"), "cycle start");
    EXPECT_EQ(sim.RunState(), ProgramRun::State::Running);
    EXPECT_EQ(sim.Command("abort"), "aborted");
    sim.SetVariable("M811", 2);
    EXPECT_EQ(sim.Command("start"), "ERR003: no program to run");
}

// The simulated card's run of the restart program: the places and hits its lines command, the
// label of a run command, and the hand-over to the slot's program at the end of program 5.
#include "controller/cardsim/restart_run.h"

#include <gtest/gtest.h>

#include "controller/cardsim/card_simulator.h"

namespace kirvana {
namespace {

std::vector<std::pair<double, double>> Hits(const RunPlan& plan) {
    std::vector<std::pair<double, double>> hits;
    for (const RunStep& step : plan)
        if (step.Hits > 0) hits.emplace_back(step.X, step.Y);
    return hits;
}

TEST(RestartRun, RowsArcsMovesAndCutsOfTheRestartProgram) {
    const std::optional<RunPlan> run =
        RestartProgramPlan({"CLOSE",
                            "OPEN PROG 5",
                            "CLEAR",
                            "G00 G05 G90 G71",
                            "G93 X0 Y0",
                            "G53",
                            "G95 X0 Y1250 I100 J2 K0 P6=-999 ",
                            "G80 X230 Y100 C0 T1",
                            "P1=2 P5=0 P7=10 P2=-999 P3=-999 P4=-999 P6=-999 P8=-999 P9=1 P10=0 P11=0 G26 X230 Y100",
                            "P1=3 P5=180 P7=20 P2=-999 P3=-999 P4=-999 P6=-999 P8=-999 P9=1 P10=0 P11=0 G26 X240 Y120",
                            "P7=500 P8=500 P3=90 P2=90 P1=2 P10=-999 P4=-999 P5=-999 P6=-999 P9=1 G28 R50",
                            "G101 X10 Y20",
                            "G93 X0 Y0",
                            "G56 X0 Y0",
                            "M10",
                            "G90 G71",
                            "Q190=Q190-0",
                            "P1022=P1022|16384",
                            "P1022=P1022-32768",
                            "CLOSE"});
    ASSERT_TRUE(run.has_value());
    const RunPlan& plan = *run;
    ASSERT_EQ(plan.size(), 9u);
    EXPECT_EQ(plan.front().Hits, 0);
    EXPECT_DOUBLE_EQ(plan.front().X, 230);
    const auto hits = Hits(plan);
    ASSERT_EQ(hits.size(), 7u);
    EXPECT_DOUBLE_EQ(hits[1].first, 240);
    EXPECT_NEAR(hits[3].first, 220, 1e-6);
    EXPECT_NEAR(hits[4].first, 200, 1e-6);
    EXPECT_NEAR(hits[5].first, 500, 1e-4);
    EXPECT_NEAR(hits[5].second, 550, 1e-4);
    EXPECT_NEAR(hits[6].first, 450, 1e-4);
    EXPECT_EQ(plan.back().Hits, 0);
    EXPECT_DOUBLE_EQ(plan.back().Y, 20);
    for (const RunStep& step : plan) EXPECT_EQ(step.Program, 5);
}

TEST(RestartRun, CopiedSubroutineLinesArePlacedFromTheTailsOrigin) {
    // Two repetitions of a body as the tail writes them, the second under mirror X, in inches
    // and incremental at its end.
    const std::optional<RunPlan> run = RestartProgramPlan({"G80 X100 Y100 C0 T3",
                                                           "G93 X100 Y100",
                                                           "M10",
                                                           "G90 G71",
                                                           "G81 X20 Y10",
                                                           "G93 X300 Y100",
                                                           "M11",
                                                           "G90 G71 P10=2 P11=1",
                                                           "N1000 ;(ID,PSUB,HOLES)",
                                                           "G81 X10 Y10",
                                                           "G81 C90 T7",
                                                           "G70",
                                                           "G81 X1 Y1",
                                                           "G91",
                                                           "G81 X1",
                                                           "G04 X2",
                                                           "M75",
                                                           "G93 X0 Y0",
                                                           "G56 X5 Y0",
                                                           "M10",
                                                           "G90 G71"});
    ASSERT_TRUE(run.has_value());
    const auto hits = Hits(*run);
    ASSERT_EQ(hits.size(), 6u);
    EXPECT_DOUBLE_EQ(hits[0].first, 120);  // from the first origin
    EXPECT_DOUBLE_EQ(hits[0].second, 110);
    EXPECT_DOUBLE_EQ(hits[1].first, 290);  // mirrored in X about the second origin
    EXPECT_DOUBLE_EQ(hits[1].second, 110);
    EXPECT_DOUBLE_EQ(hits[2].first, 290);          // a hit without a place word stays
    EXPECT_NEAR(hits[3].first, 300 - 25.4, 1e-9);  // inches
    EXPECT_NEAR(hits[3].second, 125.4, 1e-9);
    EXPECT_NEAR(hits[4].first, 300 - 50.8, 1e-9);  // incremental, under the mirror
    EXPECT_NEAR(hits[5].first, 300 - 50.8, 1e-9);  // M75 where it stands
    // The offset lines after the tail make no step.
    EXPECT_EQ(run->size(), 7u);
}

TEST(RestartRun, LinesTheSimulatorCannotFollowMakeNoPlan) {
    EXPECT_FALSE(RestartProgramPlan({"G80 X0 Y0", "P10=1 G69 Q1 S1 ;(PSUB,HOLES)"}).has_value());
    EXPECT_FALSE(RestartProgramPlan({"G80 X0 Y0", "G01 X10 Y0"}).has_value());
    EXPECT_FALSE(RestartProgramPlan({"IF P5=1 GOTO 20"}).has_value());
    // A grid the language refuses (one hit in a row), and an arc as the program writes it.
    EXPECT_FALSE(RestartProgramPlan({"P1=1 P2=10 P3=-999 P4=-999 P5=0 G26 X400 Y100"}).has_value());
    EXPECT_FALSE(RestartProgramPlan({"G28 R20 P4=90"}).has_value());
    EXPECT_TRUE(RestartProgramPlan({"G101 X10 Y20", "M11", "G101 X10 Y20"}).has_value());
}

TEST(RestartRun, RunCommandLabelsAndThePlanFromALabel) {
    EXPECT_EQ(RunLabel(1.0001), 10);
    EXPECT_EQ(RunLabel(1.00123), 123);
    EXPECT_EQ(RunLabel(2), 0);
    RunPlan plan(4);
    for (int i = 0; i < 4; ++i) plan[static_cast<std::size_t>(i)].Label = 10 * (i + 1);
    EXPECT_EQ(PlanFromLabel(plan, 0).size(), 4u);
    EXPECT_EQ(PlanFromLabel(plan, 30).size(), 2u);
    EXPECT_EQ(PlanFromLabel(plan, 25).front().Label, 30);  // a line without a step goes on at the next
    EXPECT_TRUE(PlanFromLabel(plan, 50).empty());
}

TEST(RestartRun, CardRunsProgramFiveThenHandsOverAtTheLabel) {
    CardSimulator card;
    RunPlan slot;
    for (int n = 1; n <= 4; ++n) {
        RunStep step;
        step.Label = n * 10;
        step.X = n * 100;
        step.Hits = 1;
        slot.push_back(step);
    }
    card.SetRunPlanSource([slot](int program) -> std::optional<RunPlan> {
        if (program == 1) return slot;
        return std::nullopt;
    });
    card.SetRunSpeed(0);
    ASSERT_FALSE(card.WriteBuffer("OPEN PROG 1\nCLEAR\nN10 G81 X100\nCLOSE\n").Error);
    ASSERT_FALSE(card.WriteBuffer("OPEN PROG 5\nCLEAR\nG80 X300 Y0\nP1=1 P5=0 P7=10 P9=1 G26 X300 Y0\nCLOSE\n").Error);
    card.Execute("M869=2");
    card.Execute("M811=5");
    ASSERT_TRUE(card.CycleStart());
    EXPECT_EQ(card.RunState(), ProgramRun::State::Running);
    // The run command under program 5 waits for its end; the hits count on.
    EXPECT_EQ(card.Execute("M811=1 B1.0004R").back(), '\x06');
    for (int i = 0; i < 20 && card.RunState() != ProgramRun::State::Idle; ++i) card.WalkRun(1);
    EXPECT_EQ(card.RunState(), ProgramRun::State::Idle);
    const auto log = card.HitLog();
    ASSERT_EQ(log.size(), 2u);
    EXPECT_DOUBLE_EQ(log[0].first, 300);  // program 5's hit
    EXPECT_DOUBLE_EQ(log[1].first, 400);  // then the slot's program from N40
    EXPECT_EQ(card.Variable("M869"), 4);
}

TEST(RestartRun, ACallRunsTheSubroutineFromTheCallsPlaceEachRepetitionFromTheLastEnd) {
    // The body of subroutine 2: an absolute hit counted from the call's place, then one 10 on.
    const std::vector<std::string> subroutines = {
        "N1000 ;(ID,PSUB,ONE)", "G81 X1 Y1", "RETURN", "N2000 ;(ID,PSUB,TWO)", "G81 X5 Y0", "G91 G81 X10 Y0", "G90",
        "RETURN ;(END,PSUB)"};
    const std::optional<RunPlan> run =
        RestartProgramPlan({"G90", "G80 X100 Y50", "P10=1 G69 Q2 S2 ;(PSUB,TWO)", "G81 X300 Y0"}, subroutines);
    ASSERT_TRUE(run.has_value());
    ASSERT_EQ(run->size(), 6u);
    // The move, then the first repetition from (100, 50), the second from where it ended.
    EXPECT_DOUBLE_EQ((*run)[1].X, 105);
    EXPECT_DOUBLE_EQ((*run)[1].Y, 50);
    EXPECT_DOUBLE_EQ((*run)[2].X, 115);
    EXPECT_DOUBLE_EQ((*run)[3].X, 120);
    EXPECT_DOUBLE_EQ((*run)[4].X, 130);
    // Back in the calling program, an absolute word counts from the origin again.
    EXPECT_DOUBLE_EQ((*run)[5].X, 300);
    EXPECT_DOUBLE_EQ((*run)[5].Y, 0);
    // A call whose body isn't there, and a program that calls itself without end, make no plan.
    EXPECT_FALSE(RestartProgramPlan({"G69 S3 Q1"}, subroutines).has_value());
    EXPECT_FALSE(RestartProgramPlan({"G69 S1 Q1"}, {"N1000", "G69 S1 Q1", "RETURN"}).has_value());
}

TEST(RestartRun, CardRunsProgramFiveCallingTheActiveSlotsSubroutines) {
    CardSimulator card;
    card.SetRunSpeed(0);
    ASSERT_FALSE(card.WriteBuffer("OPEN PROG 3\nCLEAR\nN1000\nG81 X1 Y2\nRETURN\nCLOSE\n").Error);
    ASSERT_FALSE(card.WriteBuffer("OPEN PROG 4\nCLEAR\nN1000\nG81 X7 Y8\nRETURN\nCLOSE\n").Error);
    ASSERT_FALSE(card.WriteBuffer("OPEN PROG 5\nCLEAR\nG90 G80 X10 Y10\nG69 S1 Q1\nCLOSE\n").Error);
    card.Execute("M811=2");
    card.Execute("M811=5");
    ASSERT_TRUE(card.CycleStart());
    for (int i = 0; i < 20 && card.RunState() != ProgramRun::State::Idle; ++i) card.WalkRun(1);
    const auto log = card.HitLog();
    ASSERT_EQ(log.size(), 1u);
    EXPECT_DOUBLE_EQ(log[0].first, 17);  // slot 2's subroutine, from the call's place
    EXPECT_DOUBLE_EQ(log[0].second, 18);
}

TEST(RestartRun, AGridAsTheProgramWritesItIsWalkedToAndFro) {
    // Five hits a row along the vector I200 J0, three rows 50 apart, from X400 Y100 under the
    // origin G93 X10 Y20; the second row runs backwards.
    const std::optional<RunPlan> run = RestartProgramPlan(
        {"G93 X10 Y20", "G90",
         "P1=5 P3=3 P4=50 P2=-999 P5=-999 P7=-999 P8=-999 P9=-999 P10=0 P11=0 G26 X400 Y100 I200 J0"});
    ASSERT_TRUE(run.has_value());
    ASSERT_EQ(run->size(), 15u);
    auto at = [&](std::size_t n, double x, double y) {
        EXPECT_NEAR((*run)[n].X, x, 1e-6) << n;
        EXPECT_NEAR((*run)[n].Y, y, 1e-6) << n;
        EXPECT_EQ((*run)[n].Hits, 1) << n;
    };
    at(0, 410, 120);
    at(4, 610, 120);
    at(5, 610, 170);
    at(9, 410, 170);
    at(14, 610, 220);
}

TEST(RestartRun, ARowAsTheProgramWritesItUnderAMirrorAndInInches) {
    // Under M11 the row's X words and its direction are mirrored; in inches every length is
    // times 25.4. P9=1 leaves the machine at the last hit, where the next G81 punches.
    const std::optional<RunPlan> run =
        RestartProgramPlan({"G70 G90", "M11", "P1=3 P2=1 P5=0 P3=-999 P4=-999 P9=1 G26 X2 Y1", "G91 G81 X0 Y1"});
    ASSERT_TRUE(run.has_value());
    ASSERT_EQ(run->size(), 4u);
    EXPECT_NEAR((*run)[0].X, -50.8, 1e-6);
    EXPECT_NEAR((*run)[0].Y, 25.4, 1e-6);
    EXPECT_NEAR((*run)[2].X, -101.6, 1e-6);
    EXPECT_NEAR((*run)[3].X, -101.6, 1e-6);
    EXPECT_NEAR((*run)[3].Y, 50.8, 1e-6);
}

}  // namespace
}  // namespace kirvana

// What the simulated card needs to run a motion program: the program's steps in their order,
// each with the program counter it shows, the point the machine reaches and what happens there.
// The steps come from the drawing the selection made, not from reading the motion text again.
#pragma once

#include <functional>
#include <optional>
#include <vector>

namespace kirvana {

struct RunStep {
    enum class StopKind { None, Program, Optional };  // M00, M01
    int Program = 1;      // the card program executing the step (1-4): main program or subroutines
    int Word = 0;         // the program counter's word while the step runs
    double X = 0, Y = 0;  // where the machine stands when the step ends, mm
    int Hits = 0;         // hits made at the end of the step
    int Station = 0;      // a new station at the start of the step; 0: none
    StopKind Stop = StopKind::None;
    int Label = 0;  // the N number of the main program's line the step belongs to; 0: none
};

using RunPlan = std::vector<RunStep>;

// The plan of card program n, or nothing when the card can't run it.
using RunPlanSource = std::function<std::optional<RunPlan>(int program)>;

}  // namespace kirvana

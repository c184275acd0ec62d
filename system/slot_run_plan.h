// The run of a slot's program as the card makes it, taken from what the selection left: the
// drawing (its entities in order, each with the block it came from), the hits of its patterns as
// the expansion makes them, and the block maps that give the card's word of each block.
#pragma once

#include <optional>

#include "controller/cardsim/run_plan.h"
#include "core/config.h"

namespace kirvana {

// The steps of slot 1 or 2 from its `.drw`, `.A1`/`.A2` and `.W1`/`.W2`: one step per hit, per
// move or profile and per stop; a station change rides on the first step of the new station.
// Nothing when the slot's drawing can't be read.
std::optional<RunPlan> BuildRunPlan(const Directories& dirs, int slot);

// The plan source of a card whose installation lies in `dirs`: programs 1 and 2 are the slots'
// programs; any other program can't be run from a drawing.
RunPlanSource SlotRunPlanSource(Directories dirs);

}  // namespace kirvana

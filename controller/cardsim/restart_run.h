// The simulated card's run of the restart program (program 5), which our own restart writes: the
// subset of its text that moves the machine and punches, as steps of a plan. What it reads:
// "G80 X Y" (a move to the restart position), a row of hits "P1= P5= P7= ... G26 X Y" (P1 hits
// from X, Y, P7 apart in the direction P5 degrees), an arc of hits "P7= P8= P3= P2= P1= ... G28 R"
// (P1 hits on the circle of centre P7, P8 and radius R from the angle P3 by steps of P2), and
// the cuts "G101 X Y", "G102"/"G103 X Y" (a move to the end point). Every other line (the
// repositions, offsets, mirror, modes, counters and status words) changes no place and no hit.
#pragma once

#include <string>
#include <vector>

#include "controller/cardsim/run_plan.h"

namespace kirvana {

// The plan of the restart program's lines.
RunPlan RestartProgramPlan(const std::vector<std::string>& lines);

// The steps of a slot's plan from the first one whose main program line label is `label` or
// beyond (the blocks are labelled in rising order; a line without a step goes on at the next
// one); the whole plan for label 0.
RunPlan PlanFromLabel(const RunPlan& plan, int label);

// The label of a run command's program number: B1.0001R points at program 1, label 10.
int RunLabel(double programNumber);

}  // namespace kirvana

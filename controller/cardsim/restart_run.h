// The simulated card's run of the restart program (program 5), which our own restart writes, as
// steps of a plan. The lines are read in order with the card's modal state that places a point:
// the origin (G93 X Y gives it, G53 clears it, G56 X Y shifts it, G92 X Y sets it so that the
// position reads X, Y), the mirrors M10-M13, G90/G91 and G70/G71 (inches times 25.4). A line's
// X and Y place the machine as the slot's programs are placed: from the origin under G90, minus
// the word under the mirror of its axis; added to the position under G91. What makes a step:
// - "G81" or "M75": a hit at the point reached (under M100 a G81 only moves);
// - "G80", "G77": a move to the point; "G101", "G102", "G103": a cut to the point (X, Y the end);
// - a row of hits as the restart writes it, "P1= P5= P7= ... G26 X Y": P1 hits from X, Y (in
//   machine millimetres), P7 apart in the direction P5 degrees;
// - a row or grid of hits as the program writes it (G26 with the language's words, as in a copied
//   subroutine body): completed and walked with the language's own grid maths;
// - an arc of hits as the restart writes it, "P7= P8= P3= P2= P1= ... G28 R": P1 hits on the
//   circle of centre P7, P8 and radius R from the angle P3 by steps of P2.
// - a call "G68"/"G69 S Q" of the slot's subroutine program: the body from the block N S x 1000
//   to its RETURN, Q times, an absolute X or Y inside it counted from the call's place, each
//   repetition from where the one before it ended (as the passes read a call).
// So the copied lines of a subroutine body run from the origin that the tail's "G93" of each
// repetition gives. The repositions, C and T words, counters, P and Q assignments and status
// words change no place and no hit, nor do a dwell "G04 X" and the "G72" and "G52" lines. A line
// the simulator can't run as the card would (a grid of calls "G98", a jump or condition,
// nibbling, an arc of hits in the program's form, a grid the language refuses, a call whose body
// isn't there) makes the program one the simulated card does not run.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "controller/cardsim/run_plan.h"

namespace kirvana {

// The plan of the restart program's lines, with the card's subroutine program of the slot for
// the calls they make; nothing when a line holds a code the simulator doesn't run.
std::optional<RunPlan> RestartProgramPlan(const std::vector<std::string>& lines,
                                          const std::vector<std::string>& subroutines = {});

// The steps of a slot's plan from the first one whose main program line label is `label` or
// beyond (the blocks are labelled in rising order; a line without a step goes on at the next
// one); the whole plan for label 0.
RunPlan PlanFromLabel(const RunPlan& plan, int label);

// The label of a run command's program number: B1.0001R points at program 1, label 10.
int RunLabel(double programNumber);

}  // namespace kirvana

// The maths of the grid and arc patterns: how their parameters complete each other, how many
// hits and what pitch follow. The Blend pass checks and follows a pattern with it, and the
// drawing of the hits and the simulated card's run of a grid must come out the same.
#pragma once

#include <cstdint>

#include "core/number.h"

namespace kirvana {

// G26: hits in a row (P1), pitch (P2), rows (P3), row pitch (P4), angle (P5), row length (P7),
// width (P8), with the mirrors of the moment.
struct GridPattern {
    std::int16_t P1 = 0, P3 = 0;
    Number P2 = 0.0, P4 = 0.0;
    double P5 = 0, P7 = 0, P8 = 0;
    bool MirrorX = false, MirrorY = false;
};
enum class PatternCheck { Ok, InvalidHits, NoHitsOrPitch, DivisionByZero };

// Completes the grid: the row and column directions from two of count, pitch and length, the
// mirrors, a single column turned into a row. `rows` is the count of rows to walk.
PatternCheck CompleteGrid(GridPattern& grid, int& rows);

// G28: the arc's hits (P1), angular pitch (P2), first angle (P3), last angle (P4, NoValue when
// not given), included angle (P5), and the sweep that follows.
struct ArcPattern {
    std::int16_t P1 = 0;
    double P2 = 0, P3 = 0, P4 = 0, P5 = 0;
    bool P3Given = false, P4Given = false;
    double I = 0, J = 0;  // centre offset from the current position
    bool MirrorX = false, MirrorY = false;
    double Sweep = 0;
};
// Completes the arc: first angle, sweep, hits and pitch, then the mirrors.
PatternCheck CompleteArc(ArcPattern& arc);

// The angle as the mirrors turn it.
double MirrorAngle(double angle, bool mirrorX, bool mirrorY);

}  // namespace kirvana

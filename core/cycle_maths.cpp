// The completion of the grid (G26) and arc (G28) patterns, numbered as the steps of each.
#include "core/cycle_maths.h"

#include <cmath>
#include <optional>

#include "core/geometry.h"

namespace kirvana {

namespace {

double Fix(double x) { return std::trunc(x); }
bool Whole(double q) { return q == std::trunc(q); }
double Sign(double v) { return v > 0 ? 1 : (v < 0 ? -1 : 0); }

// Step 3 (or 4) of G26: one direction of a grid is complete with two of count, pitch and
// length; the missing one follows. Empty when a count doesn't fit 16 bits.
std::optional<bool> CompleteDirection(std::int16_t& count, Number& pitch, double& length) {
    if ((count != 0) + (pitch.Value != 0) + (length != 0) < 2) return false;
    // 1. The length from count and pitch.
    if (length == 0) length = (count - 1) * pitch.Value;
    // 2. The count from length and pitch.
    if (count == 0) {
        // A length that the pitch doesn't divide gets one hit more and a shorter pitch.
        double q = length / pitch.Value;
        auto hits = RoundToInt16(std::fabs(Fix(q)) + (Whole(q) ? 1 : 2));
        if (!hits) return std::nullopt;
        count = *hits;
        if (!Whole(q)) pitch.Value = length / (count - 1);
    }
    // 3. The pitch from length and count.
    if (pitch.Value == 0) pitch.Value = length / (count - 1);
    return true;
}

}  // namespace

double MirrorAngle(double angle, bool mirrorX, bool mirrorY) {
    angle = NormaliseAngle(angle);
    if (mirrorX) angle = 180 - angle;
    if (mirrorY) angle = 0 - angle;
    return NormaliseAngle(angle);
}

// Steps 3 to 6 of G26, and the row count of step 7; step 1's check is made here too, for
// the callers that don't make it first.
PatternCheck CompleteGrid(GridPattern& g, int& rows) {
    // 7. One row unless both directions are complete.
    rows = 1;
    // 1. One hit in a row or one row is no grid.
    if (g.P1 == 1 || g.P3 == 1) return PatternCheck::InvalidHits;
    // 3. The row direction; 4. the column direction.
    auto row = CompleteDirection(g.P1, g.P2, g.P7);
    auto column = CompleteDirection(g.P3, g.P4, g.P8);
    if (!row || !column) return PatternCheck::InvalidHits;
    if (*row && *column) {
        // 5. Both: the mirrors turn the pitches.
        if (g.MirrorX) g.P2.Value = 0 - g.P2.Value;
        if (g.MirrorY) g.P4.Value = 0 - g.P4.Value;
        rows = g.P3;
    } else if (*row || *column) {
        // 6. One only: a single column is a single row turned by 90 degrees.
        if ((*row && (g.MirrorX || g.MirrorY)) || (*column && g.MirrorY))
            g.P5 = MirrorAngle(g.P5, g.MirrorX, g.MirrorY);
        if (*column) {
            g.P5 = NormaliseAngle(g.P5 + 90);
            SwapValues(g.P2, g.P4);
            SwapWords(g.P1, g.P3);
        }
    }
    return PatternCheck::Ok;
}

// Steps 4 to 8 of G28; step 1's check is made here too, for the callers that don't make it
// first. Steps 2 and 3, the centre and the radius, are the caller's.
PatternCheck CompleteArc(ArcPattern& a) {
    // 1. One hit is no arc.
    if (a.P1 == 1) return PatternCheck::InvalidHits;
    // 4. The first angle: towards the current position from the centre.
    if (!a.P3Given) {
        if (a.I == 0 && a.J == 0) {
            a.P3 = 0;
        } else {
            double radius;
            XYToPolar(0 - a.I, 0 - a.J, radius, a.P3);
        }
    }
    // 5. The first angle within a turn.
    a.P3 = NormaliseAngle(a.P3);
    // 6. The sweep.
    if (a.P5 != 0) {
        a.Sweep = a.P5;
    } else if (a.P4Given) {
        a.P4 = NormaliseAngle(a.P4);
        if (a.P2 < 0)
            a.Sweep = std::fabs(a.P4 - a.P3) < 0.1 ? -360 : (a.P3 > a.P4 ? a.P4 - a.P3 : a.P4 - (a.P3 + 360));
        else if (a.P2 > 0)
            a.Sweep = std::fabs(a.P4 - a.P3) < 0.1 ? 360 : (a.P3 < a.P4 ? a.P4 - a.P3 : (a.P4 + 360) - a.P3);
        else
            a.Sweep = 360;
    } else if (a.P2 != 0) {
        a.Sweep = a.P1 < 1 ? Sign(a.P2) * 360 : (a.P1 - 1) * a.P2;
    } else {
        a.Sweep = 360;
    }
    // 7. Hits and pitch: a full circle has no hit at its end.
    bool fullCircle = std::fabs(a.Sweep) == 360;
    if (a.P1 == 0 && a.P2 == 0) return PatternCheck::NoHitsOrPitch;
    if (a.P1 == 0) {
        auto hits = RoundToInt16(std::fabs(Fix(a.Sweep / a.P2)) + (fullCircle ? 0 : 1));
        if (!hits) return PatternCheck::InvalidHits;
        a.P1 = *hits;
    } else if (a.P2 == 0 && a.P1 == 1) {
        return PatternCheck::DivisionByZero;
    } else if (a.P2 == 0) {
        a.P2 = fullCircle ? a.Sweep / a.P1 : a.Sweep / (a.P1 - 1);
    }
    // 8. The mirrors.
    if (a.MirrorX || a.MirrorY) a.P3 = MirrorAngle(a.P3, a.MirrorX, a.MirrorY);
    if (a.MirrorX) {
        a.P2 = 0 - a.P2;
        a.Sweep = 0 - a.Sweep;
    }
    if (a.MirrorY) {
        a.P2 = 0 - a.P2;
        a.Sweep = 0 - a.Sweep;
    }
    return PatternCheck::Ok;
}

}  // namespace kirvana

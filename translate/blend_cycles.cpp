// The canned cycles of the Blend pass, in punch mode: whether the block is possible, and where
// the machine stands afterwards. The card itself expands the hits. Each cycle's steps are
// numbered as its own list; its word table is read first.
#include <cmath>
#include <optional>

#include "core/cycle_maths.h"
#include "core/cycle_words.h"
#include "core/geometry.h"
#include "core/number.h"
#include "translate/blend.h"

namespace kirvana {

namespace {

constexpr double Missing = -999;

double Fix(double x) { return std::trunc(x); }

// A count from a real: rounded half to even into 16 bits; empty when it doesn't fit.
std::optional<std::int16_t> Count(double value) { return RoundToInt16(value); }

}  // namespace

CycleWordReader BlendPass::CycleWords(const std::string& block) {
    return {[this, &block](const char* key) { return BlendValue(block, key); },
            [this, &block](const char* key) {
                double v = BlendValue(block, key);
                return v == Missing ? Missing : Length(v, true, false);
            },
            [this, &block](const char* key) { return BlendInteger(block, key); }};
}

double BlendPass::Length(double value, bool given, bool always) const {
    if (!given && !always) return value;
    return State.BlendInch ? value * Inch : value;
}

void BlendPass::ClearAndStep() {
    ClearLastMove();
    State.BlendPrevX = State.BlendX;
    State.BlendPrevY = State.BlendY;
}

void BlendPass::MoveBy(double dx, double dy) {
    State.BlendX = ToSingle(State.BlendX + dx);
    State.BlendY = ToSingle(State.BlendY + dy);
}

// G64: a full circle of hits around the start point; the tool leaves at the first hit.
void BlendPass::CycleG64(const std::string& block) {
    // The G64 word table.
    double radius = BlendValue(block, "J");
    std::int16_t hits = BlendInteger(block, "B");
    bool hitsGiven = !Reader.WordMissing;
    double first = BlendValue(block, "A");
    // 1. One hit is no circle.
    if (hitsGiven && hits == 1) {
        BlendError(block, pass_message::InvalidHitsP1, true);
        return;
    }
    // 2 to 4. A whole turn, turned by the mirrors (the pitch plays no part: not worked out).
    double sweep = 360;
    if (State.BlendMirrorX || State.BlendMirrorY) first = MirrorAngle(first);
    if (State.BlendMirrorX) sweep = 0 - sweep;
    if (State.BlendMirrorY) sweep = 0 - sweep;
    // 5, 6. To the first hit on the circle.
    ClearAndStep();
    double dx, dy;
    PolarToXY(radius, first + sweep, dx, dy);
    MoveBy(dx, dy);
}

// G65: a nibbled rectangle, side by side from the current position.
void BlendPass::CycleG65(const std::string& block) {
    // The G65 word table.
    double i = BlendValue(block, "I");
    i = Length(i, true, true);
    double j = BlendValue(block, "J");
    j = Length(j, true, true);
    double step = BlendValue(block, "P8=");
    step = step == Missing ? 0 : Length(step, true, false);
    // 1, 2. Sides and directions.
    const std::array<RectangleSide, 4> sides = RectangleSides(i, j);
    // A side needs a step to be nibbled with: without one the card would divide by zero. The
    // check stands ahead of step 3 so that a refused block leaves the position alone.
    for (const RectangleSide& side : sides) {
        if (std::min(step, side.Length) == 0) {
            BlendError(block, pass_message::DivisionByZero, true);
            return;
        }
    }
    // 3. The start of the rectangle.
    State.BlendPrevX = State.BlendX;
    State.BlendPrevY = State.BlendY;
    // 4. Each side.
    for (const RectangleSide& side : sides) {
        // 1. The mirrors turn the direction.
        double direction = side.Direction;
        if (State.BlendMirrorX || State.BlendMirrorY) direction = MirrorAngle(direction);
        // 2, 3. Nothing to do here: the side's step and hit count go no further (a step of 0
        // has been refused above).
        // 4. Along the side.
        double dx, dy;
        PolarToXY(side.Length, direction, dx, dy);
        MoveBy(dx, dy);
        // 5. Each side ends the tangency chain.
        ClearLastMove();
    }
}

// G66: a straight row of hits; the model leaves it at the point 0, 0.
void BlendPass::CycleG66(const std::string&) {
    // 1, 2. Nothing to do here: the first hit, the count and the row's length never reach the
    // position, so the word table isn't read.
    // 3. The common ending.
    ClearAndStep();
    // 4. The position after a G66.
    State.BlendX = 0;
    State.BlendY = 0;
}

namespace {

const char* PatternMessage(PatternCheck check, const char* invalidHits) {
    switch (check) {
        case PatternCheck::InvalidHits:
            return invalidHits;
        case PatternCheck::NoHitsOrPitch:
            return pass_message::NoHitsOrPitch;
        case PatternCheck::DivisionByZero:
            return pass_message::DivisionByZero;
        case PatternCheck::Ok:
            break;
    }
    return nullptr;
}

}  // namespace

// G26: a grid of hits, walked row by row, to and fro.
void BlendPass::CycleG26(const std::string& block) {
    // The G26 word table.
    GridWords words = ReadGridWords(CycleWords(block));
    double i = words.I, j = words.J;
    bool iGiven = i != Missing, jGiven = j != Missing;
    GridPattern& grid = words.Grid;
    grid.MirrorX = State.BlendMirrorX;
    grid.MirrorY = State.BlendMirrorY;
    bool stay = words.Stay;
    // 1. One hit in a row or one row is no grid.
    if (grid.P1 == 1 || grid.P3 == 1) {
        BlendError(block, pass_message::InvalidHitsP1P3, true);
        return;
    }
    // 2. A vector gives the row's length and angle.
    if (iGiven || jGiven) {
        XYToPolar(iGiven ? i : 0, jGiven ? j : 0, grid.P7, grid.P5);
    }
    // 3 to 6. Done by CompleteGrid: count, pitch and length of each direction; the mirrors.
    int rows;
    if (auto message = PatternMessage(CompleteGrid(grid, rows), pass_message::InvalidHitsP1P3)) {
        BlendError(block, message, true);
        return;
    }
    // 7. The start of the pattern; CompleteGrid has left one row unless both directions are
    // complete.
    ClearLastMove();
    State.BlendPrevX = State.BlendX;
    State.BlendPrevY = State.BlendY;
    // 8. The rows, to and fro.
    double a = grid.P5;
    double b = grid.P5 + 90;
    if (b > 360) b -= 360;
    for (int r = 1; r <= rows; ++r) {
        // 1. Along the row.
        double dx, dy;
        PolarToXY((grid.P1 - 1) * grid.P2.Value, a, dx, dy);
        MoveBy(dx, dy);
        // 2. Across to the next row.
        if (r < rows) {
            PolarToXY(grid.P4.Value, b, dx, dy);
            MoveBy(dx, dy);
        }
        // 3. The next row runs the other way.
        a += 180;
        if (a > 360) a -= 360;
    }
    // 9. Back to the start unless told to stay.
    if (!stay) {
        State.BlendX = State.BlendPrevX;
        State.BlendY = State.BlendPrevY;
    }
}

// G28: an arc of hits around a centre.
void BlendPass::CycleG28(const std::string& block) {
    // The G28 word table ("P10=" has no effect here and isn't read).
    ArcWords words = ReadArcWords(CycleWords(block));
    double r = words.R;
    ArcPattern& arc = words.Arc;
    double p7 = words.P7, p8 = words.P8;
    bool stay = words.Stay;
    arc.MirrorX = State.BlendMirrorX;
    arc.MirrorY = State.BlendMirrorY;
    // 1. One hit is no arc.
    if (arc.P1 == 1) {
        BlendError(block, pass_message::InvalidHitsP1, true);
        return;
    }
    // 2. The centre: from the origin by P7, P8, or from the position by I, J.
    double centreX = p7 != Missing ? (arc.MirrorX ? State.BlendOriginX - p7 : State.BlendOriginX + p7)
                                   : (arc.MirrorX ? State.BlendX - arc.I : State.BlendX + arc.I);
    double centreY = p8 != Missing ? (arc.MirrorY ? State.BlendOriginY - p8 : State.BlendOriginY + p8)
                                   : (arc.MirrorY ? State.BlendY - arc.J : State.BlendY + arc.J);
    // 3. The radius.
    if (r == Missing || r == 0) r = std::sqrt(arc.I * arc.I + arc.J * arc.J);
    // 4 to 8. Done by CompleteArc: first angle, sweep, hits and pitch, mirrors.
    if (auto message = PatternMessage(CompleteArc(arc), pass_message::InvalidHitsP1)) {
        BlendError(block, message, true);
        return;
    }
    // 9, 10. To the end of the arc.
    ClearAndStep();
    double dx, dy;
    PolarToXY(r, arc.P3 + arc.Sweep, dx, dy);
    State.BlendX = ToSingle(centreX + dx);
    State.BlendY = ToSingle(centreY + dy);
    // 11. Back to the start unless told to stay.
    if (!stay) {
        State.BlendX = State.BlendPrevX;
        State.BlendY = State.BlendPrevY;
    }
}

// The nibble increment of G36 and G37: the step of the block, or the last valid one.
double BlendPass::NibbleIncrement(const std::string& block) {
    double step = BlendValue(block, "P8=");
    step = step == Missing ? 0 : Length(step, true, false);
    if (step == 0) {
        // 1. None given: the last valid step, or the default with a warning.
        if (State.BlendNibbleStep == 0) {
            BlendError(block, pass_message::NibbleNotSet, false);
            return State.BlendNibbleDefault;
        }
        return State.BlendNibbleStep;
    }
    // 2. Negative steps are turned round; steps above 6.25 mm are kept with a warning.
    if (step < 0) {
        BlendError(block, pass_message::NegativeNibble, false);
        step = std::fabs(step);
    }
    if (step > 6.25) BlendError(block, pass_message::ExcessiveNibble, false);
    State.BlendNibbleStep = step;
    return step;
}

// Step 4 of G36 and step 6 of G37: at least two hits along the length.
bool BlendPass::NibbleHits(const std::string& block, double length, double step) {
    // |Fix(length / step)| + 1 hits; a single hit (or no step) leaves no pitch to divide by.
    auto hits = step == 0 ? std::optional<std::int16_t>(1) : Count(std::fabs(Fix(length / step)) + 1);
    if (!hits) {
        BlendError(block, pass_message::InvalidHitsP1, true);
        return false;
    }
    if (*hits == 1) {
        BlendError(block, pass_message::DivisionByZero, true);
        return false;
    }
    return true;
}

// G36: a nibbled straight line.
void BlendPass::CycleG36(const std::string& block) {
    // The G36 word table.
    NibbleLineWords words = ReadNibbleLineWords(CycleWords(block));
    double i = words.I, j = words.J;
    bool iGiven = i != Missing, jGiven = j != Missing;
    double p1 = words.P1, p5 = words.P5;
    // 1. A negative length runs the other way.
    if (p1 < 0) {
        p1 = std::fabs(p1);
        p5 = NormaliseAngle(p5 + 180);
    }
    // 2. The step.
    double step = NibbleIncrement(block);
    // 3. A vector gives length and angle.
    if (iGiven || jGiven) XYToPolar(iGiven ? i : 0, jGiven ? j : 0, p1, p5);
    // 4. At least two hits.
    if (!NibbleHits(block, p1, step)) return;
    // 5. Nothing to do here: the step between the hits goes no further.
    // 6-8. To the end of the line.
    if (State.BlendMirrorX || State.BlendMirrorY) p5 = MirrorAngle(p5);
    ClearAndStep();
    double dx, dy;
    PolarToXY(p1, p5, dx, dy);
    State.BlendX = ToSingle(State.BlendPrevX + dx);
    State.BlendY = ToSingle(State.BlendPrevY + dy);
}

// G37: a nibbled arc, tracked from the current position.
void BlendPass::CycleG37(const std::string& block) {
    // The G37 word table ("P10=" has no effect here and isn't read).
    NibbleArcWords words = ReadNibbleArcWords(CycleWords(block));
    double r = words.R, i = words.I, j = words.J;
    double p1 = words.P1, p5 = words.P5;
    // 1. The step.
    double step = NibbleIncrement(block);
    // 2, 3. The first angle, towards the current position; I, J give the radius if R doesn't.
    if (p5 == Missing) {
        if (i == 0 && j == 0) {
            p5 = 0;
        } else {
            double radius;
            XYToPolar(0 - i, 0 - j, radius, p5);
            if (r == 0) r = radius;
        }
    }
    p5 = NormaliseAngle(p5);
    // 4. A radius is needed.
    if (r == 0) {
        BlendError(block, pass_message::MissingRadius, true);
        return;
    }
    // 5, 6. The arc's length, and at least two hits along it.
    if (!NibbleHits(block, (p1 / 360) * (r * Pi * 2), step)) return;
    // 7. Nothing to do here: the angular step goes no further.
    // 8. The mirrors.
    if (State.BlendMirrorX || State.BlendMirrorY) p5 = MirrorAngle(p5);
    if (State.BlendMirrorX) p1 = 0 - p1;
    if (State.BlendMirrorY) p1 = 0 - p1;
    // 9-11. The end of the arc, and a previous position that no move visits.
    ClearLastMove();
    double dx, dy;
    PolarToXY(r, p5 + p1, dx, dy);
    MoveBy(dx, dy);
    PolarToXY(r, p5, dx, dy);
    State.BlendPrevX = ToSingle(State.BlendX + dx);
    State.BlendPrevY = ToSingle(State.BlendY + dy);
}

}  // namespace kirvana

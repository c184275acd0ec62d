// The canned cycles of the Blend pass, in punch mode: whether the block is possible, and where
// the machine stands afterwards. The card itself expands the hits.
#include <cmath>
#include <optional>

#include "core/geometry.h"
#include "core/number.h"
#include "translate/blend.h"
#include "translate/cycle_maths.h"

namespace kirvana {

namespace {

constexpr double Missing = -999;

double Fix(double x) { return std::trunc(x); }

// A count from a real: rounded half to even into 16 bits; empty when it doesn't fit.
std::optional<std::int16_t> Count(double value) { return RoundToInt16(value); }

}  // namespace

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
    double radius = BlendValue(block, "J");
    std::int16_t hits = BlendInteger(block, "B");
    bool hitsGiven = !Reader.WordMissing;
    double first = BlendValue(block, "A");
    // 1. One hit is no circle.
    if (hitsGiven && hits == 1) {
        BlendError(block, pass_message::InvalidHitsP1, true);
        return;
    }
    // 2-4. A whole turn, turned by the mirrors.
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
    double i = BlendValue(block, "I");
    i = Length(i, true, true);
    double j = BlendValue(block, "J");
    j = Length(j, true, true);
    double step = BlendValue(block, "P8=");
    step = step == Missing ? 0 : Length(step, true, false);
    // 1, 2. Sides and directions.
    const double lengths[4] = {std::fabs(i), std::fabs(j), std::fabs(i), std::fabs(j)};
    const double directions[4] = {i >= 0 ? 0.0 : 180.0, j >= 0 ? 90.0 : 270.0, i >= 0 ? 180.0 : 0.0,
                                  j >= 0 ? 270.0 : 90.0};
    // A side needs a step to be nibbled with: without one the card would divide by zero.
    for (double length : lengths) {
        if (std::min(step, length) == 0) {
            BlendError(block, pass_message::DivisionByZero, true);
            return;
        }
    }
    // 3. The start of the rectangle.
    State.BlendPrevX = State.BlendX;
    State.BlendPrevY = State.BlendY;
    // 4. Each side.
    for (int side = 0; side < 4; ++side) {
        double direction = directions[side];
        if (State.BlendMirrorX || State.BlendMirrorY) direction = MirrorAngle(direction);
        double dx, dy;
        PolarToXY(lengths[side], direction, dx, dy);
        MoveBy(dx, dy);
        ClearLastMove();
    }
}

// G66: a straight row of hits; the model leaves it at the point 0, 0.
void BlendPass::CycleG66(const std::string&) {
    ClearAndStep();
    State.BlendX = 0;
    State.BlendY = 0;
}

namespace {

const char* PatternMessage(PatternCheck check, const char* invalidHits) {
    switch (check) {
        case PatternCheck::InvalidHits: return invalidHits;
        case PatternCheck::NoHitsOrPitch: return pass_message::NoHitsOrPitch;
        case PatternCheck::DivisionByZero: return pass_message::DivisionByZero;
        case PatternCheck::Ok: break;
    }
    return nullptr;
}

}  // namespace

// G26: a grid of hits, walked row by row, to and fro.
void BlendPass::CycleG26(const std::string& block) {
    auto value = [&](const char* key, bool length) {
        double v = BlendValue(block, key);
        if (v == Missing) return 0.0;
        return length ? Length(v, true, false) : v;
    };
    auto integer = [&](const char* key) {
        std::int16_t v = BlendInteger(block, key);
        return v == Missing ? std::int16_t{0} : v;
    };
    double i = BlendValue(block, "I");
    bool iGiven = i != Missing;
    double j = BlendValue(block, "J");
    bool jGiven = j != Missing;
    GridPattern grid;
    grid.P1 = integer("P1=");
    grid.P2 = value("P2=", true);
    grid.P3 = integer("P3=");
    grid.P4 = value("P4=", true);
    grid.P5 = value("P5=", false);
    grid.P7 = value("P7=", true);
    grid.P8 = value("P8=", true);
    grid.MirrorX = State.BlendMirrorX;
    grid.MirrorY = State.BlendMirrorY;
    bool stay = integer("P9=") != 0;
    // 1. One hit in a row or one row is no grid.
    if (grid.P1 == 1 || grid.P3 == 1) {
        BlendError(block, pass_message::InvalidHitsP1P3, true);
        return;
    }
    // 2. A vector gives the row's length and angle.
    if (iGiven || jGiven) {
        i = iGiven ? Length(i, true, false) : 0;
        j = jGiven ? Length(j, true, false) : 0;
        XYToPolar(i, j, grid.P7, grid.P5);
    }
    // 3-6. Count, pitch and length of each direction; the mirrors.
    int rows;
    if (auto message = PatternMessage(CompleteGrid(grid, rows), pass_message::InvalidHitsP1P3)) {
        BlendError(block, message, true);
        return;
    }
    // 7. The start of the pattern.
    ClearLastMove();
    State.BlendPrevX = State.BlendX;
    State.BlendPrevY = State.BlendY;
    // 8. The rows, to and fro.
    double a = grid.P5;
    double b = grid.P5 + 90;
    if (b > 360) b -= 360;
    for (int r = 1; r <= rows; ++r) {
        double dx, dy;
        PolarToXY((grid.P1 - 1) * grid.P2.Value, a, dx, dy);
        MoveBy(dx, dy);
        if (r < rows) {
            PolarToXY(grid.P4.Value, b, dx, dy);
            MoveBy(dx, dy);
        }
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
    auto value = [&](const char* key, double missing, bool length) {
        double v = BlendValue(block, key);
        if (v == Missing) return missing;
        return length ? Length(v, true, false) : v;
    };
    double r = value("R", Missing, true);
    ArcPattern arc;
    arc.I = value("I", 0, true);
    arc.J = value("J", 0, true);
    std::int16_t p1 = BlendInteger(block, "P1=");
    arc.P1 = p1 == Missing ? 0 : p1;
    arc.P2 = value("P2=", 0, false);
    arc.P3 = value("P3=", Missing, false);
    arc.P3Given = arc.P3 != Missing;
    arc.P4 = value("P4=", Missing, false);
    arc.P4Given = arc.P4 != Missing;
    arc.P5 = value("P5=", 0, false);
    double p7 = value("P7=", Missing, true);
    double p8 = value("P8=", Missing, true);
    std::int16_t p9 = BlendInteger(block, "P9=");
    bool stay = p9 != Missing && p9 != 0;
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
    // 4-8. First angle, sweep, hits and pitch, mirrors.
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
    double i = BlendValue(block, "I");
    bool iGiven = i != Missing;
    double j = BlendValue(block, "J");
    bool jGiven = j != Missing;
    double p1 = BlendValue(block, "P1=");
    p1 = p1 == Missing ? 0 : Length(p1, true, false);
    double p5 = BlendValue(block, "P5=");
    if (p5 == Missing) p5 = 0;
    // 1. A negative length runs the other way.
    if (p1 < 0) {
        p1 = std::fabs(p1);
        p5 = NormaliseAngle(p5 + 180);
    }
    // 2. The step.
    double step = NibbleIncrement(block);
    // 3. A vector gives length and angle.
    if (iGiven || jGiven) {
        i = iGiven ? Length(i, true, false) : 0;
        j = jGiven ? Length(j, true, false) : 0;
        XYToPolar(i, j, p1, p5);
    }
    // 4, 5. At least two hits.
    if (!NibbleHits(block, p1, step)) return;
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
    auto length = [&](const char* key) {
        double v = BlendValue(block, key);
        return v == Missing ? 0 : Length(v, true, false);
    };
    double r = length("R");
    double i = length("I");
    double j = length("J");
    double p1 = BlendValue(block, "P1=");
    if (p1 == Missing) p1 = 0;
    double p5 = BlendValue(block, "P5=");
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
    // 5, 6. At least two hits along the arc.
    if (!NibbleHits(block, (p1 / 360) * (r * Pi * 2), step)) return;
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

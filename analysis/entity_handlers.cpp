// The handlers of the walk that work out the entity of a block: punches, patterns, profiles,
// moves and machine actions, each leaving the entity in `rec_` for the pass and moving the
// position as the machine moves.
#include <algorithm>
#include <cmath>
#include <optional>

#include "analysis/expand.h"
#include "analysis/language_walk.h"
#include "analysis/pattern_walk.h"
#include "analysis/tool_outline.h"
#include "core/cycle_maths.h"
#include "core/geometry.h"
#include "core/number.h"
#include "translate/cycle_maths_more.h"

namespace kirvana {

namespace {

// Hits walked one by one for the limit check of one pattern; beyond it the corners stand for
// the rest (the hits of a row or a grid lie in the box of its corners).
constexpr long MaxCheckedHits = 1'000'000;

double Round(double value, int places) { return RoundHalfEven(Number(value), places); }

bool Whole(double q) { return q == std::trunc(q); }

// Hits of a nibbled length: one more than the steps it holds, and one more again when the
// step doesn't divide it. Empty when the count doesn't fit 16 bits.
std::optional<std::int16_t> NibbleHits(double length, double step) {
    double q = length / step;
    if (!std::isfinite(q)) return std::nullopt;
    double hits = Whole(q) ? std::fabs(q) + 1 : std::fabs(std::trunc(q)) + 2;
    return RoundToInt16(hits);
}

}  // namespace

void LanguageWalk::BeginEntity(std::int16_t kind, const char* name) {
    ClearEntity(rec_);
    rec_.Kind = kind;
    rec_.KindName = FixedText(name, KindNameWidth);
    rec_.BlockText = FixedText(line_, BlockTextWidth);
    rec_.MainBlock = S.BlockCount[0];
    if (S.Depth > 0) {
        rec_.SubBlock = S.BlockCount[S.Depth];
        CopySubCall(S.CallSpecs[S.Depth], rec_.CallSpec);
        CopySubCall(S.CallStates[S.Depth], rec_.CallState);
    }
    CopySettings(S.ProcessSettings, rec_.Settings);
    rec_.Feed = S.FeedValue;
    rec_.PathMode = S.PathFlag;
}

bool LanguageWalk::TakeTool() {
    if (S.Station < 1 || S.Station > static_cast<int>(stations_.size())) {
        Error(" Invalid Station Number (" + std::to_string(S.Station) + ")", true);
        return false;
    }
    const Station& station = stations_[S.Station - 1];
    CopyTool(station.Tool, rec_.Tool);
    rec_.StationNo = S.Station;
    rec_.Tool.Extra1 = station.Autoindex != FalseWord ? S.PosC : 0.0f;
    return true;
}

void LanguageWalk::TakePlasmaTool() {
    if (!S.PlasmaOn) return;
    CopyTool(settings_.PlasmaTool, rec_.Tool);
    rec_.StationNo = -1;
}

void LanguageWalk::Append() {
    ToolOutline(rec_);
    Keep();
}

// The frame's ending for punches and patterns: written, counted, the hits checked.
void LanguageWalk::BeginArcPattern(double centreX, double centreY, double radius, double first, double sweep,
                                   double step) {
    BeginEntity(EntityKind::ArcPattern, "Arc Pattern");
    TakeTool();
    rec_.Points.Position = {ToSingle(centreX), ToSingle(centreY)};
    rec_.Values[1] = ToSingle(radius);
    rec_.Values[10] = ToSingle(first);
    rec_.Values[11] = ToSingle(sweep);
    rec_.Values[12] = ToSingle(step);
    // The tool turns with the pattern unless P10 is above 0.
    double p10 = Value("P10=");
    rec_.Counts[2] = p10 == Missing || p10 <= 0 ? True16 : 0;
}

void LanguageWalk::BeginLinearPattern(double entryX, double entryY, double exitX, double exitY, double pitch,
                                      double direction, std::int16_t hits) {
    BeginEntity(EntityKind::LinearPattern, "Linear Pattern");
    TakeTool();
    rec_.Points.Entry = {ToSingle(entryX), ToSingle(entryY)};
    rec_.Points.Exit = {ToSingle(exitX), ToSingle(exitY)};
    rec_.Values[2] = ToSingle(pitch);
    rec_.Values[10] = ToSingle(direction);
    rec_.Counts[1] = hits;
}

void LanguageWalk::MirrorArcPattern(double& first, double& sweep, double& step) const {
    if (S.MirrorX || S.MirrorY) first = MirrorAngle(first, S.MirrorX, S.MirrorY);
    if (S.MirrorX) {
        step = -step;
        sweep = -sweep;
    }
    if (S.MirrorY) {
        step = -step;
        sweep = -sweep;
    }
}

bool LanguageWalk::NibbleHitsUsable(std::optional<std::int16_t> hits) {
    if (!hits) {
        Overflow();
        return false;
    }
    if (*hits == 1) {
        Error(pass_message::DivisionByZero, true);
        return false;
    }
    return true;
}

void LanguageWalk::MoveOnCircle(double centreX, double centreY, double radius, double angle) {
    S.PrevX = S.PosX;
    S.PrevY = S.PosY;
    double dx, dy;
    PolarToXY(radius, angle, dx, dy);
    S.PosX = ToSingle(centreX + dx);
    S.PosY = ToSingle(centreY + dy);
    CheckLimit(S.PosX, S.PosY);
}

void LanguageWalk::FinishPattern() {
    Append();
    ProgramStats& stats = S.Stats;
    std::int64_t hits =
        rec_.Kind == EntityKind::Punch ? 1
        : rec_.Kind == EntityKind::GridPattern
            ? static_cast<std::int64_t>(std::max<int>(rec_.Counts[1], 0)) * std::max<int>(rec_.Counts[2], 0)
            : std::max<int>(rec_.Counts[1], 0);
    stats.Hits = static_cast<std::int32_t>(std::min<std::int64_t>(stats.Hits + hits, INT32_MAX));
    HitsPassed(hits);
    double dx = rec_.Points.Entry.X - static_cast<double>(S.LastHitX);
    double dy = rec_.Points.Entry.Y - static_cast<double>(S.LastHitY);
    stats.Travel = ToSingle(stats.Travel + std::sqrt(dx * dx + dy * dy) + rec_.Values[2]);
    S.LastHitX = rec_.Points.Exit.X;
    S.LastHitY = rec_.Points.Exit.Y;
    CheckHits();
}

// The limit check at each hit's place, in the order the machine punches them.
void LanguageWalk::CheckHits() {
    long visited = 0;
    auto visit = [&](double x, double y) {
        CheckLimit(x, y);
        return !(S.WarnedX && S.WarnedY) && ++visited < MaxCheckedHits && !stopped_;
    };
    switch (rec_.Kind) {
        case EntityKind::Punch:
            visit(rec_.Points.Position.X, rec_.Points.Position.Y);
            break;
        case EntityKind::LinearPattern: {
            double stepX = 0, stepY = 0;
            PolarToXY(rec_.Values[2], rec_.Values[10], stepX, stepY);
            double x = rec_.Points.Entry.X, y = rec_.Points.Entry.Y;
            for (int k = 1; k <= rec_.Counts[1]; ++k, x += stepX, y += stepY)
                if (!visit(x, y)) break;
            if (visited >= MaxCheckedHits) visit(rec_.Points.Exit.X, rec_.Points.Exit.Y);
            break;
        }
        case EntityKind::GridPattern: {
            WalkGrid(GridParameters(rec_), rec_.Points.Start.X, rec_.Points.Start.Y,
                     [&](int, int, double x, double y) { return visit(x, y); });
            if (visited >= MaxCheckedHits)
                for (const PointF& p : {rec_.Points.Middle, rec_.Points.End, rec_.Points.Exit}) visit(p.X, p.Y);
            break;
        }
        case EntityKind::ArcPattern:
            for (int k = 0; k < rec_.Counts[1]; ++k) {
                double dx = 0, dy = 0;
                PolarToXY(rec_.Values[5], rec_.Values[13] + k * static_cast<double>(rec_.Values[12]), dx, dy);
                if (!visit(rec_.Points.Position.X + dx, rec_.Points.Position.Y + dy)) break;
            }
            break;
        default:
            break;
    }
    ChargeHits(visited);
}

double LanguageWalk::NibbleIncrement() {
    double step = Length("P8=");
    if (step == Missing || step == 0) {
        Error(pass_message::NibbleNotSet, false);
        return S.NibbleStep;
    }
    if (step < 0) {
        Error(pass_message::NegativeNibble, false);
        step = std::fabs(step);
    }
    S.NibbleStep = step;
    return step;
}

// G01: a straight line nibbled from the previous position to this one.
void LanguageWalk::NibbleLine() {
    double length, angle;
    XYToPolar(static_cast<double>(S.PosX) - S.PrevX, static_cast<double>(S.PosY) - S.PrevY, length, angle);
    length = Round(length, 4);
    angle = Round(angle, 3);
    double step = NibbleIncrement();
    auto hits = NibbleHits(length, step);
    if (!NibbleHitsUsable(hits)) return;
    if (!TakeTool()) return;
    BeginLinearPattern(S.PrevX, S.PrevY, S.PosX, S.PosY, Round(std::fabs(length / (*hits - 1)), 4), angle, *hits);
    rec_.Values[1] = ToSingle(length);
    FinishPattern();
    S.PrevX = S.PosX;
    S.PrevY = S.PosY;
    CheckLimit(S.PosX, S.PosY);
}

// G02, G03: an arc nibbled from the previous position to this one; G02 turns negative.
void LanguageWalk::NibbleArc(bool g02) {
    auto read = [&](const char* key) {
        double v = Length(key);
        return v == Missing ? 0.0 : v;
    };
    double r = read("R"), i = read("I"), j = read("J");
    if (S.MirrorX) i = 0 - i;
    if (S.MirrorY) j = 0 - j;
    int sense = (g02 != (S.MirrorX != S.MirrorY)) ? -1 : 1;
    ArcGeometry arc;
    ArcCheck check = ArcThrough(S.PrevX, S.PrevY, S.PosX, S.PosY, r, i, j, sense, sense, arc);
    if (check == ArcCheck::InvalidIJ) {
        Error(pass_message::InvalidIJ, true);
        return;
    }
    if (check == ArcCheck::InvalidR) {
        Error(pass_message::InvalidR, true);
        return;
    }
    double step = NibbleIncrement();
    double arcLength = std::fabs(arc.Sweep) / 360 * (2 * arc.Radius * Pi);
    auto hits = NibbleHits(arcLength, step);
    if (!NibbleHitsUsable(hits)) return;
    if (!TakeTool()) return;
    BeginArcPattern(arc.CentreX, arc.CentreY, arc.Radius, arc.StartAngle, arc.Sweep, arc.Sweep / (*hits - 1));
    // Every hit, the last one too (only G37 leaves its last hit to P10).
    rec_.Counts[1] = *hits;
    rec_.Counts[6] = 2;
    FinishPattern();
    S.PrevX = S.PosX;
    S.PrevY = S.PosY;
    CheckLimit(S.PosX, S.PosY);
}

// G64: a full circle of hits around the position; the machine leaves it at the first hit.
void LanguageWalk::CycleG64() {
    // 1. Centre and radius.
    const double centreX = S.PosX, centreY = S.PosY;
    double radius = Length("J");
    // 2. The hits: one is no circle.
    std::int16_t hits = Integer("B");
    bool hitsGiven = !reader_.WordMissing;
    if (hitsGiven && hits == 1) {
        Error(pass_message::InvalidHitsP1, true);
        return;
    }
    if (!hitsGiven) hits = 0;
    // 3. First angle, sweep and step.
    double first = Value("A");
    double sweep = 360;
    double step = hits == 0 ? 0 : (std::fabs(sweep) == 360 ? sweep / hits : sweep / (hits - 1));
    // 4. The mirrors.
    MirrorArcPattern(first, sweep, step);
    // 5, 6. The entity.
    if (!TakeTool()) return;
    BeginArcPattern(centreX, centreY, radius, first, sweep, step);
    rec_.Counts[1] = std::max<std::int16_t>(hits, 0);
    rec_.Counts[6] = 2;
    // 7-9. Written, counted, each hit checked.
    FinishPattern();
    // 10. To the first hit on the circle.
    MoveOnCircle(centreX, centreY, radius, first + sweep);
}

// G28: an arc of hits around a centre given from the position or from the origin.
void LanguageWalk::CycleG28() {
    ArcWords words = ReadArcWords(CycleWords());
    double r = words.R;
    ArcPattern& arc = words.Arc;
    double p7 = words.P7, p8 = words.P8;
    bool stay = words.Stay;
    arc.MirrorX = S.MirrorX;
    arc.MirrorY = S.MirrorY;
    if (arc.P1 == 1) {
        Error(pass_message::InvalidHitsP1, true);
        return;
    }
    // The centre, from the origin by P7, P8, or from the position by I, J.
    double centreX = p7 != Missing ? (arc.MirrorX ? S.OriginX - p7 : S.OriginX + p7)
                                   : (arc.MirrorX ? S.PosX - arc.I : S.PosX + arc.I);
    double centreY = p8 != Missing ? (arc.MirrorY ? S.OriginY - p8 : S.OriginY + p8)
                                   : (arc.MirrorY ? S.PosY - arc.J : S.PosY + arc.J);
    if (r == Missing || r == 0) r = std::sqrt(arc.I * arc.I + arc.J * arc.J);
    switch (CompleteArc(arc)) {
        case PatternCheck::InvalidHits:
            Error(pass_message::InvalidHitsP1, true);
            return;
        case PatternCheck::NoHitsOrPitch:
            Error(pass_message::NoHitsOrPitch, true);
            return;
        case PatternCheck::DivisionByZero:
            Error(pass_message::DivisionByZero, true);
            return;
        case PatternCheck::Ok:
            break;
    }
    if (!TakeTool()) return;
    BeginArcPattern(centreX, centreY, r, arc.P3, arc.Sweep, arc.P2);
    rec_.Counts[1] = arc.P1;
    rec_.Counts[6] = 2;
    FinishPattern();
    // To the end of the arc, or back to its start.
    S.PrevX = S.PosX;
    S.PrevY = S.PosY;
    if (stay) {
        double dx, dy;
        PolarToXY(r, arc.P3 + arc.Sweep, dx, dy);
        S.PosX = ToSingle(centreX + dx);
        S.PosY = ToSingle(centreY + dy);
    }
    CheckLimit(S.PosX, S.PosY);
}

// G26: a grid of hits walked to and fro, or with one row a row of hits.
void LanguageWalk::CycleG26() {
    GridWords words = ReadGridWords(CycleWords());
    double i = words.I, j = words.J;
    bool iGiven = i != Missing, jGiven = j != Missing;
    GridPattern& grid = words.Grid;
    grid.MirrorX = S.MirrorX;
    grid.MirrorY = S.MirrorY;
    bool stay = words.Stay;
    auto value = [&](const char* key) {
        double v = Length(key);
        return v == Missing ? 0.0 : v;
    };
    double offsetX = value("P10="), offsetY = value("P11=");
    if (grid.P1 == 1 || grid.P3 == 1) {
        Error(pass_message::InvalidHitsP1P3, true);
        return;
    }
    // A vector gives the row's length and angle.
    if (iGiven || jGiven) XYToPolar(iGiven ? i : 0, jGiven ? j : 0, grid.P7, grid.P5);
    int rows = 1;
    if (CompleteGrid(grid, rows) != PatternCheck::Ok) {
        Error(pass_message::InvalidHitsP1P3, true);
        return;
    }
    // A grid's outline walks all its hits: one of more than an expansion takes is refused.
    const std::int64_t gridHits = static_cast<std::int64_t>(std::max<int>(grid.P1, 0)) * rows;
    if (rows > 1 && gridHits > MaxExpandedHits) {
        Error(reverse_message::TooManyHits, true);
        return;
    }
    if (rows > 1 && !ChargeHits(gridHits)) return;
    if (!TakeTool()) return;
    // The first hit: the position, moved by the offsets P10, P11 when given.
    double firstX = S.MirrorX ? S.PosX - offsetX : S.PosX + offsetX;
    double firstY = S.MirrorY ? S.PosY - offsetY : S.PosY + offsetY;
    double rowLength = (grid.P1 - 1) * grid.P2.Value;
    double endX = firstX, endY = firstY;
    if (rows > 1) {
        BeginEntity(EntityKind::GridPattern, "Grid Pattern");
        TakeTool();
        rec_.Points.Start = {ToSingle(firstX), ToSingle(firstY)};
        rec_.Values[1] = ToSingle(grid.P7);
        rec_.Values[2] = ToSingle(grid.P2.Value);
        rec_.Values[3] = ToSingle(grid.P8);
        rec_.Values[4] = ToSingle(grid.P4.Value);
        rec_.Values[10] = ToSingle(grid.P5);
        rec_.Counts[1] = grid.P1;
        rec_.Counts[2] = static_cast<std::int16_t>(rows);
        // The end of the walk, as the machine goes.
        double a = grid.P5, b = grid.P5 + 90;
        if (b > 360) b -= 360;
        for (int r = 1; r <= rows; ++r) {
            double dx, dy;
            PolarToXY(rowLength, a, dx, dy);
            endX += dx;
            endY += dy;
            if (r < rows) {
                PolarToXY(grid.P4.Value, b, dx, dy);
                endX += dx;
                endY += dy;
            }
            a += 180;
            if (a > 360) a -= 360;
        }
    } else {
        double dx, dy;
        PolarToXY(rowLength, grid.P5, dx, dy);
        endX += dx;
        endY += dy;
        BeginLinearPattern(firstX, firstY, endX, endY, grid.P2.Value, grid.P5, grid.P1);
    }
    FinishPattern();
    // At the end of the walk, or back at the start.
    S.PrevX = S.PosX;
    S.PrevY = S.PosY;
    if (stay) {
        S.PosX = ToSingle(endX);
        S.PosY = ToSingle(endY);
    }
    CheckLimit(S.PosX, S.PosY);
}

// G36: a straight line nibbled as a pattern from the position.
void LanguageWalk::CycleG36() {
    NibbleLineWords words = ReadNibbleLineWords(CycleWords());
    double i = words.I, j = words.J;
    bool iGiven = i != Missing, jGiven = j != Missing;
    double p1 = words.P1, p5 = words.P5;
    if (p1 < 0) {
        p1 = std::fabs(p1);
        p5 = NormaliseAngle(p5 + 180);
    }
    double step = NibbleIncrement();
    if (iGiven || jGiven) XYToPolar(iGiven ? i : 0, jGiven ? j : 0, p1, p5);
    auto hits = RoundToInt16(std::fabs(std::trunc(p1 / step)) + 1);
    if (step == 0 || !std::isfinite(p1 / step)) hits = std::int16_t{1};
    if (!NibbleHitsUsable(hits)) return;
    if (S.MirrorX || S.MirrorY) p5 = MirrorAngle(p5, S.MirrorX, S.MirrorY);
    if (!TakeTool()) return;
    double dx, dy;
    PolarToXY(p1, p5, dx, dy);
    BeginLinearPattern(S.PosX, S.PosY, S.PosX + dx, S.PosY + dy, p1 / (*hits - 1), p5, *hits);
    FinishPattern();
    S.PrevX = S.PosX;
    S.PrevY = S.PosY;
    S.PosX = ToSingle(S.PrevX + dx);
    S.PosY = ToSingle(S.PrevY + dy);
    CheckLimit(S.PosX, S.PosY);
}

// G37: an arc nibbled as a pattern around the centre the position plus I, J.
void LanguageWalk::CycleG37() {
    NibbleArcWords words = ReadNibbleArcWords(CycleWords());
    double r = words.R, i = words.I, j = words.J;
    double p1 = words.P1, p5 = words.P5;
    double p10 = Value("P10=");
    double step = NibbleIncrement();
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
    if (r == 0) {
        Error(pass_message::MissingRadius, true);
        return;
    }
    double arcLength = (p1 / 360) * (r * Pi * 2);
    auto hits = RoundToInt16(std::fabs(std::trunc(arcLength / step)) + 1);
    if (step == 0 || !std::isfinite(arcLength / step)) hits = std::int16_t{1};
    if (!NibbleHitsUsable(hits)) return;
    double stepAngle = p1 / (*hits - 1);
    MirrorArcPattern(p5, p1, stepAngle);
    if (!TakeTool()) return;
    double centreX = S.MirrorX ? S.PosX - i : S.PosX + i;
    double centreY = S.MirrorY ? S.PosY - j : S.PosY + j;
    BeginArcPattern(centreX, centreY, r, p5, p1, stepAngle);
    // The last hit is drawn only when P10 is above 0.
    rec_.Counts[1] = p10 != Missing && p10 > 0 ? *hits : static_cast<std::int16_t>(*hits - 1);
    rec_.Counts[6] = 2;
    FinishPattern();
    MoveOnCircle(centreX, centreY, r, p5 + p1);
}

// G65: a nibbled rectangle, side by side from the position, one row of hits per side.
void LanguageWalk::CycleG65() {
    double i = Value("I"), j = Value("J");
    if (S.Imperial) {
        i *= Inch;
        j *= Inch;
    }
    double step = Length("P8=");
    if (step == Missing) step = 0;
    const std::array<RectangleSide, 4> rectangle = RectangleSides(i, j);
    // A side needs a length and a step to be nibbled with.
    for (const RectangleSide& side : rectangle) {
        if (std::min(step, side.Length) <= 0) {
            Error(pass_message::DivisionByZero, true);
            return;
        }
    }
    struct Side {
        double Length, Direction, Pitch;
        std::int16_t Hits;
    } sides[4];
    for (int k = 0; k < 4; ++k) {
        Side& side = sides[k];
        side.Length = rectangle[static_cast<std::size_t>(k)].Length;
        side.Direction = rectangle[static_cast<std::size_t>(k)].Direction;
        if (S.MirrorX || S.MirrorY) side.Direction = MirrorAngle(side.Direction, S.MirrorX, S.MirrorY);
        double sideStep = std::min(step, side.Length);
        auto hits = RoundToInt16(std::floor(side.Length / sideStep) + 1);
        if (!hits) {
            Overflow();
            return;
        }
        side.Hits = *hits;
        side.Pitch = side.Length / side.Hits;
    }
    if (!TakeTool()) return;
    S.PrevX = S.PosX;
    S.PrevY = S.PosY;
    for (const Side& side : sides) {
        // From this corner up to one pitch before the next, which starts the next side.
        double dx, dy;
        PolarToXY(side.Length - side.Pitch, side.Direction, dx, dy);
        BeginLinearPattern(S.PosX, S.PosY, S.PosX + dx, S.PosY + dy, side.Pitch, side.Direction, side.Hits);
        FinishPattern();
        PolarToXY(side.Length, side.Direction, dx, dy);
        S.PosX = ToSingle(S.PosX + dx);
        S.PosY = ToSingle(S.PosY + dy);
    }
    CheckLimit(S.PosX, S.PosY);
}

// G66: a straight row of hits at the pitch I, J; the machine is left at the point 0, 0.
void LanguageWalk::CycleG66() {
    double i = Length("I"), j = Length("J");
    if (i == Missing) i = 0;
    if (j == Missing) j = 0;
    std::int16_t count = Integer("B");
    double firstX = S.PosX, firstY = S.PosY;
    bool atPosition = block_.find('X') != std::string::npos || block_.find('Y') != std::string::npos;
    if (!atPosition) {
        firstX = S.MirrorX ? S.PosX - i : S.PosX + i;
        firstY = S.MirrorY ? S.PosY - j : S.PosY + j;
    } else if (count < INT16_MAX) {
        ++count;
    }
    double pitch, direction;
    XYToPolar(i, j, pitch, direction);
    if (S.MirrorX || S.MirrorY) direction = MirrorAngle(direction, S.MirrorX, S.MirrorY);
    if (!TakeTool()) return;
    double dx, dy;
    PolarToXY((count - 1) * pitch, direction, dx, dy);
    BeginLinearPattern(firstX, firstY, firstX + dx, firstY + dy, pitch, direction, std::max<std::int16_t>(count, 0));
    FinishPattern();
    S.PrevX = S.PosX;
    S.PrevY = S.PosY;
    S.PosX = 0;
    S.PosY = 0;
    CheckLimit(S.PosX, S.PosY);
}

// G95: the sheet repositioned by I; the X limits move with it.
void LanguageWalk::Reposition() {
    auto read = [&](const char* key) {
        double v = Length(key);
        return v == Missing ? 0.0 : v;
    };
    double i = read("I"), j = read("J");
    // K not set stays "not set" in the record.
    double k = Length("K");
    const bool kGiven = k != Missing;
    if (std::fabs(j) > 5) Error(reverse_message::ExcessiveBackoff, false);
    if (kGiven && std::fabs(k) > 5) Error(reverse_message::ExcessiveReturn, false);
    if (S.MirrorX) i = 0 - i;
    if (S.MirrorY) {
        j = 0 - j;
        if (kGiven) k = 0 - k;
    }
    S.LimitXLow = ToSingle(S.LimitXLow - i);
    S.LimitXHigh = ToSingle(S.LimitXHigh - i);
    BeginEntity(EntityKind::Reposition, "Reposition");
    rec_.Points.Position = {S.PosX, S.PosY};
    rec_.Values[1] = ToSingle(i);
    rec_.Values[2] = ToSingle(j);
    rec_.Values[3] = S.LimitXLow;
    rec_.Values[4] = S.LimitXHigh;
    rec_.Values[6] = ToSingle(k);
    Append();
    S.LastHitX = rec_.Points.Exit.X;
    S.LastHitY = rec_.Points.Exit.Y;
    // The position against the shifted limits, at this block.
    CheckLimit(S.PosX, S.PosY);
}

// G04: a dwell at the position, the time in X.
void LanguageWalk::Dwell() {
    double time = Value("X");
    BeginEntity(EntityKind::Dwell, "Dwell");
    rec_.Points.Position = {S.PosX, S.PosY};
    rec_.Values[1] = time == Missing ? 0.0f : ToSingle(time);
    Append();
    S.LastHitX = rec_.Points.Exit.X;
    S.LastHitY = rec_.Points.Exit.Y;
}

// G77, G80 (and G81 under profiling): a move without a hit; none when the position stays.
void LanguageWalk::Move() {
    if (S.PrevX == S.PosX && S.PrevY == S.PosY) return;
    double length, angle;
    XYToPolar(static_cast<double>(S.PosX) - S.PrevX, static_cast<double>(S.PosY) - S.PrevY, length, angle);
    BeginEntity(EntityKind::Move, "Move");
    rec_.Points.Start = {S.PrevX, S.PrevY};
    rec_.Points.End = {S.PosX, S.PosY};
    rec_.Points.Position = rec_.Points.End;
    rec_.Values[1] = ToSingle(Round(length, 4));
    rec_.Values[10] = ToSingle(Round(angle, 3));
    Append();
    S.Stats.Travel = ToSingle(S.Stats.Travel + rec_.Values[1]);
    S.LastHitX = rec_.Points.Exit.X;
    S.LastHitY = rec_.Points.Exit.Y;
}

// G81, M75: one hit at the position.
void LanguageWalk::Punch() {
    if (!TakeTool()) return;
    BeginEntity(EntityKind::Punch, "Punch");
    TakeTool();
    rec_.Points.Position = {S.PosX, S.PosY};
    FinishPattern();
}

// G101: a straight cut from the previous position.
void LanguageWalk::ProfileLine() {
    S.ArcStarted = 1;
    BeginEntity(EntityKind::LineProfile, "Line Profile");
    TakePlasmaTool();
    rec_.Points.Start = {S.PrevX, S.PrevY};
    rec_.Points.End = {S.PosX, S.PosY};
    rec_.Compensation = S.CutterSide;
    Append();
    S.Stats.CutLength = ToSingle(S.Stats.CutLength + rec_.Values[1]);
    S.LastHitX = rec_.Points.Exit.X;
    S.LastHitY = rec_.Points.Exit.Y;
}

// G102, G103: a cut arc; a full circle is written as two half arcs.
void LanguageWalk::ProfileArc(bool g103) {
    auto read = [&](const char* key) {
        double v = Length(key);
        return v == Missing ? 0.0 : v;
    };
    double r = read("R"), i = read("I"), j = read("J");
    if (S.MirrorX) i = 0 - i;
    if (S.MirrorY) j = 0 - j;
    const bool mirrorsEqual = S.MirrorX == S.MirrorY;
    const bool clockwiseFirst = (settings_.MachineOrientation == 1) != g103;
    const int centreSense = (clockwiseFirst == mirrorsEqual) ? -1 : 1;
    const int radiusSense = (mirrorsEqual != g103) ? 1 : -1;
    ArcGeometry arc;
    ArcCheck check = ArcThrough(S.PrevX, S.PrevY, S.PosX, S.PosY, r, i, j, centreSense, radiusSense, arc);
    if (check == ArcCheck::InvalidIJ) {
        Error(pass_message::InvalidIJ, true);
        return;
    }
    if (check == ArcCheck::InvalidR) {
        Error(pass_message::InvalidR, true);
        return;
    }
    S.ArcStarted = 1;
    const bool full = std::fabs(arc.Sweep) == 360;
    const int parts = full ? 2 : 1;
    const double sweep = arc.Sweep / parts;
    for (int part = 0; part < parts; ++part) {
        const double start = arc.StartAngle + part * sweep;
        BeginEntity(EntityKind::ArcProfile, "Arc Profile");
        TakePlasmaTool();
        double sx, sy, ex, ey;
        PolarToXY(arc.Radius, start, sx, sy);
        PolarToXY(arc.Radius, start + sweep, ex, ey);
        rec_.Points.Start =
            part == 0 ? PointF{S.PrevX, S.PrevY} : PointF{ToSingle(arc.CentreX + sx), ToSingle(arc.CentreY + sy)};
        rec_.Points.End =
            part == parts - 1 ? PointF{S.PosX, S.PosY} : PointF{ToSingle(arc.CentreX + ex), ToSingle(arc.CentreY + ey)};
        rec_.Points.Position = {ToSingle(arc.CentreX), ToSingle(arc.CentreY)};
        rec_.Values[1] = ToSingle(arc.Radius);
        rec_.Values[10] = ToSingle(NormaliseAngle(start));
        rec_.Values[11] = ToSingle(sweep);
        rec_.Counts[6] = 2;
        rec_.Compensation = S.CutterSide;
        Append();
        S.Stats.CutLength = ToSingle(S.Stats.CutLength + rec_.Values[2]);
        S.LastHitX = rec_.Points.Exit.X;
        S.LastHitY = rec_.Points.Exit.Y;
    }
}

// M50, M60: to the load position, Y as the block says.
void LanguageWalk::LoadPosition() {
    double y = Length("Y");
    const bool m60 = Has("M60");
    if (m60) {
        // A valid station in the block becomes the station.
        std::size_t at = block_.find('T');
        if (at != std::string::npos) {
            std::int16_t number = reader_.WordInteger(std::string_view(block_).substr(at), 'T');
            int station = StationOfTNumber(stations_, number);
            if (!reader_.WordMissing && station >= 1 && station <= static_cast<int>(stations_.size()))
                S.Station = static_cast<std::int16_t>(station);
        }
    }
    S.PrevX = S.PosX;
    S.PrevY = S.PosY;
    S.PosX = settings_.Travel.LoadPositionX;
    S.PosY = y == Missing ? settings_.Travel.LoadPositionY : ToSingle(y);
    BeginEntity(EntityKind::LoadPosition, "Load Position");
    rec_.Points.Position = {S.PosX, S.PosY};
    rec_.Values[1] = S.PosX;
    rec_.Values[2] = S.PosY;
    rec_.Counts[1] = m60 ? 1 : 0;
    Append();
    S.LastHitX = S.PosX;
    S.LastHitY = S.PosY;
    CheckLimit(S.PosX, S.PosY);
}

// M55: the sheet flipped in X or Y, or turned by A.
void LanguageWalk::FlipRotate() {
    double i = Value("I"), j = Value("J"), a = Value("A");
    BeginEntity(EntityKind::FlipRotate, "Flip / Rotate");
    rec_.Points.Position = {S.PosX, S.PosY};
    rec_.Values[10] = a == Missing ? 0.0f : ToSingle(a);
    rec_.Counts[1] = i != 0 && i != Missing ? True16 : 0;
    rec_.Counts[2] = j != 0 && j != Missing ? True16 : 0;
    Append();
    S.LastHitX = S.PosX;
    S.LastHitY = S.PosY;
}

// M00, M01: a stop at the position.
void LanguageWalk::Stop(bool optional) {
    if (!TakeTool()) return;
    BeginEntity(EntityKind::Stop, optional ? "Optional Stop" : "Program Stop");
    TakeTool();
    rec_.Points.Position = {S.PosX, S.PosY};
    rec_.Counts[1] = optional ? True16 : 0;
    Append();
    S.LastHitX = rec_.Points.Exit.X;
    S.LastHitY = rec_.Points.Exit.Y;
}

}  // namespace kirvana

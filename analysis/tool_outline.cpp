#include "analysis/tool_outline.h"

#include <algorithm>
#include <cmath>

#include "analysis/pattern_walk.h"
#include "core/geometry.h"
#include "core/number.h"

namespace kirvana {

namespace {

// Record fields are singles: every value stored passes through float.
PointF Stored(double x, double y) { return {ToSingle(x), ToSingle(y)}; }

double Rounded(double value, int places) { return RoundHalfEven(Number(value), places); }

PointF RoundedPoint(double x, double y) { return Stored(Rounded(x, 4), Rounded(y, 4)); }

PointF Midpoint(const PointF& a, const PointF& b) {
    return RoundedPoint((static_cast<double>(a.X) + b.X) / 2, (static_cast<double>(a.Y) + b.Y) / 2);
}

PointF AtPolar(const PointF& centre, double radius, double angle) {
    double dx = 0, dy = 0;
    PolarToXY(radius, angle, dx, dy);
    return Stored(centre.X + dx, centre.Y + dy);
}

BoxF BoxOf(const PointF& a, const PointF& b) {
    return {{std::min(a.X, b.X), std::min(a.Y, b.Y)}, {std::max(a.X, b.X), std::max(a.Y, b.Y)}};
}

void AddToBox(BoxF& box, const PointF& p) {
    if (p.X < box.Low.X) box.Low.X = p.X;
    if (p.Y < box.Low.Y) box.Low.Y = p.Y;
    if (p.X > box.High.X) box.High.X = p.X;
    if (p.Y > box.High.Y) box.High.Y = p.Y;
}

BoxF Widened(const BoxF& box, double by) {
    return {Stored(box.Low.X - by, box.Low.Y - by), Stored(box.High.X + by, box.High.Y + by)};
}

BoxF AroundPoint(const PointF& p, double by) { return Widened({p, p}, by); }

// One axis of the minimum box: the side moves out evenly until it is `least` wide.
void AtLeast(float& low, float& high, double least) {
    double width = static_cast<double>(high) - low;
    if (width < least) {
        double grow = (least - width) / 2;
        low = ToSingle(low - grow);
        high = ToSingle(high + grow);
    }
}

// Sign as -1, 0 or 1.
int SignOf(double value) { return value > 0 ? 1 : (value < 0 ? -1 : 0); }

// The whole degrees from the rounded first angle to the rounded last angle, walking by +1 or
// -1 as the sweep is positive or negative, each point at the radius added to the box. A
// point at degree d is the point at d + 360, so more than 360 degrees add nothing new: the
// walk stops there, however wide the sweep.
void AddWholeDegrees(BoxF& box, const PointF& centre, double radius, float first, double sweep) {
    const double from = RoundHalfEven(Number(first), 0);
    const double to = Rounded(first + sweep, 0);
    if (!std::isfinite(from) || !std::isfinite(to)) return;
    const int step = sweep < 0 ? -1 : 1;
    const double span = (to - from) * step;
    if (span < 0) return;
    const long count = span >= 360 ? 360 : static_cast<long>(span) + 1;
    for (long n = 0; n < count; ++n) AddToBox(box, AtPolar(centre, radius, from + static_cast<double>(n) * step));
}

// Steps 1 and 2 of an arc: the three points on it and the redundant values.
void ArcPointsAndValues(EntityRec& rec) {
    EntityPoints& p = rec.Points;
    const double r = rec.Values[1];
    const double a = rec.Values[10];
    const double s = rec.Values[11];
    // 1. Start, Middle and End on the arc, rounded to 4 decimals.
    auto onArc = [&](double angle) {
        double dx = 0, dy = 0;
        PolarToXY(r, angle, dx, dy);
        return RoundedPoint(p.Position.X + dx, p.Position.Y + dy);
    };
    p.Start = onArc(a);
    p.Middle = onArc(NormaliseAngle(a + s / 2));
    p.End = onArc(NormaliseAngle(a + s));
    p.Entry = p.Start;
    p.Exit = p.End;
    // 2. Arc length, left as it stands for a zero sweep; the copies the expansion reads.
    if (s != 0) rec.Values[2] = ToSingle(2 * r * Pi / (360 / std::fabs(s)));
    rec.Values[5] = rec.Values[1];
    rec.Values[6] = rec.Values[2];
    rec.Values[13] = rec.Values[10];
    rec.Values[14] = rec.Values[11];
}

}  // namespace

double HalfWidth(const ToolRecord& tool) {
    if (!tool.IsValid() || tool.Station < 10) return 5;
    if (tool.D1 > 5) return static_cast<double>(tool.D1) / 2;
    return 5;
}

void MinimumBox(BoxF& box, double length) {
    // 1. No thinner than a fifth of the length.
    AtLeast(box.Low.X, box.High.X, length / 5);
    AtLeast(box.Low.Y, box.High.Y, length / 5);
    // 2. No thinner than 5.
    MinimumSide(box);
}

void MinimumSide(BoxF& box) {
    AtLeast(box.Low.X, box.High.X, 5);
    AtLeast(box.Low.Y, box.High.Y, 5);
}

void OutlineAtPoint(EntityRec& rec) {
    EntityPoints& p = rec.Points;
    p.Start = p.Middle = p.End = p.Entry = p.Exit = p.Position;
    rec.Extent = {p.Position, p.Position};
    // The tool is not looked at: always 5 round the point.
    rec.ClearBox = AroundPoint(p.Position, 5);
}

void OutlinePunch(EntityRec& rec) {
    EntityPoints& p = rec.Points;
    const double h = HalfWidth(rec.Tool);
    if (rec.Kind != EntityKind::GridPattern) {
        // A single hit: the points are the position, the box the tool's margin round it.
        p.Start = p.Middle = p.End = p.Entry = p.Exit = p.Position;
        rec.Extent = {p.Position, p.Position};
        rec.ClearBox = AroundPoint(p.Position, h);
        return;
    }
    // 1. The entity's length: the shorter of row and column.
    const double length = std::min(rec.Values[1], rec.Values[3]);
    // 2. Working copies, turned when the grid is.
    const GridWalk grid = GridParameters(rec);
    // 3. Walk the hits from Start, collecting their box and the points kept on the way.
    double lowX = p.Start.X, lowY = p.Start.Y, highX = p.Start.X, highY = p.Start.Y;
    double middleX = p.Start.X, middleY = p.Start.Y;
    double endX = p.Start.X, endY = p.Start.Y;
    double exitX = p.Start.X, exitY = p.Start.Y;
    WalkGrid(grid, p.Start.X, p.Start.Y, [&](int row, int hit, double x, double y) {
        lowX = std::min(lowX, x);
        lowY = std::min(lowY, y);
        highX = std::max(highX, x);
        highY = std::max(highY, y);
        if (row == 1 && hit == grid.PerRow) {
            middleX = x;
            middleY = y;
        }
        if (row == grid.Rows && hit == 1) {
            endX = x;
            endY = y;
        }
        exitX = x;
        exitY = y;
        return true;
    });
    // 4. The points kept, rounded to 4 decimals; Position the centre of the hits.
    p.Middle = RoundedPoint(middleX, middleY);
    p.End = RoundedPoint(endX, endY);
    p.Exit = RoundedPoint(exitX, exitY);
    p.Position = RoundedPoint((lowX + highX) / 2, (lowY + highY) / 2);
    p.Entry = p.Start;
    // 5. Extent the box of the hits; ClearBox it widened by h, then the minimum box.
    rec.Extent = {Stored(lowX, lowY), Stored(highX, highY)};
    rec.ClearBox = Widened(rec.Extent, h);
    MinimumBox(rec.ClearBox, length);
}

void OutlineStraight(EntityRec& rec) {
    EntityPoints& p = rec.Points;
    if (rec.Kind != EntityKind::LinearPattern) {
        // Move: 1. the midpoint; 2. Entry from Start, Position and Exit to End.
        p.Middle = Midpoint(p.Start, p.End);
        p.Entry = p.Start;
        p.Position = p.End;
        p.Exit = p.End;
        // 3. The copy of the length.
        rec.Values[5] = rec.Values[1];
        // 4. The box of the ends with no margin, then the minimum box.
        rec.Extent = BoxOf(p.Start, p.End);
        rec.ClearBox = rec.Extent;
        MinimumBox(rec.ClearBox, rec.Values[1]);
        return;
    }
    // Linear Pattern: 1. Start and End from Entry and Exit.
    p.Start = p.Entry;
    p.End = p.Exit;
    // 2. The midpoint, which is also the Position.
    p.Middle = Midpoint(p.Start, p.End);
    p.Position = p.Middle;
    // 3. Length and angle from Entry to Exit.
    double length = 0, angle = 0;
    XYToPolar(static_cast<double>(p.Exit.X) - p.Entry.X, static_cast<double>(p.Exit.Y) - p.Entry.Y, length, angle);
    rec.Values[1] = ToSingle(Rounded(length, 4));
    rec.Values[10] = ToSingle(Rounded(angle, 3));
    // 4. The copy of the length.
    rec.Values[5] = rec.Values[1];
    // 5. The pitch takes the sign of the length.
    if (SignOf(rec.Values[2]) != SignOf(rec.Values[1])) rec.Values[2] = -rec.Values[2];
    // 6. The box of the ends widened by the margin, then the minimum box.
    rec.Extent = BoxOf(p.Entry, p.Exit);
    rec.ClearBox = Widened(rec.Extent, HalfWidth(rec.Tool));
    MinimumBox(rec.ClearBox, rec.Values[1]);
}

void OutlineArcPattern(EntityRec& rec) {
    // 1, 2. The points on the arc and the redundant values.
    ArcPointsAndValues(rec);
    EntityPoints& p = rec.Points;
    const double r = rec.Values[1];
    const double a = rec.Values[10];
    const double s = rec.Values[11];
    // 3. A missing pitch along the arc comes from the step angle (never from a zero sweep).
    if (rec.Values[3] == 0 && s != 0) rec.Values[3] = ToSingle(rec.Values[12] / s * rec.Values[6]);
    // 4. Extent: the ends, then every angle from a to a + s by the step angle.
    rec.Extent = BoxOf(p.Start, p.End);
    const double step = rec.Values[12];
    const double last = a + s;
    if (step > 0 || step < 0) {
        double angle = a;
        for (long n = 0; n < MaxArcSteps && (step > 0 ? angle <= last : angle >= last); ++n, angle += step)
            AddToBox(rec.Extent, AtPolar(p.Position, r, angle));
    }
    // 5. ClearBox: the arc at r + h through the ends and every whole degree, then no
    // thinner than 5.
    const double outer = r + HalfWidth(rec.Tool);
    rec.ClearBox = BoxOf(AtPolar(p.Position, outer, a), AtPolar(p.Position, outer, last));
    AddWholeDegrees(rec.ClearBox, p.Position, outer, rec.Values[10], s);
    MinimumSide(rec.ClearBox);
}

void OutlineProfile(EntityRec& rec) {
    EntityPoints& p = rec.Points;
    if (rec.Kind == EntityKind::ArcProfile) {
        // As an arc pattern's steps 1 and 2; Extent over the whole degrees of the sweep, the
        // clear box the same, no thinner than 5.
        ArcPointsAndValues(rec);
        rec.Extent = BoxOf(p.Start, p.End);
        AddWholeDegrees(rec.Extent, p.Position, rec.Values[1], rec.Values[10], rec.Values[11]);
        rec.ClearBox = rec.Extent;
        MinimumSide(rec.ClearBox);
        return;
    }
    // Line Profile: 1. the midpoint; 2. Entry, Exit and Position.
    p.Middle = Midpoint(p.Start, p.End);
    p.Entry = p.Start;
    p.Exit = p.End;
    p.Position = p.Middle;
    // 3. Length and angle from Start to End.
    double length = 0, angle = 0;
    XYToPolar(static_cast<double>(p.End.X) - p.Start.X, static_cast<double>(p.End.Y) - p.Start.Y, length, angle);
    rec.Values[1] = ToSingle(Rounded(length, 4));
    rec.Values[10] = ToSingle(Rounded(angle, 3));
    // 4. The box of the ends with no margin, then the minimum box.
    rec.Extent = BoxOf(p.Start, p.End);
    rec.ClearBox = rec.Extent;
    MinimumBox(rec.ClearBox, rec.Values[1]);
}

void OutlineMultiPart(EntityRec& rec) {
    EntityPoints& p = rec.Points;
    const float w = rec.Values[1];
    const float h = rec.Values[2];
    p.Start = {0, 0};
    p.Middle = {w, 0};
    p.End = {w, h};
    p.Entry = {0, h};
    p.Exit = p.End;
    p.Position = Stored(static_cast<double>(w) / 2, static_cast<double>(h) / 2);
    p.Middle = p.Position;
    rec.Extent = {{0, 0}, {w, h}};
    rec.ClearBox = {{-20, -20}, Stored(static_cast<double>(w) + 20, static_cast<double>(h) + 20)};
}

void ToolOutline(EntityRec& rec) {
    // 1. The C position into 0 up to 360. A value just below 0 can come out as 360 once
    // stored as a single; it is brought round once more.
    rec.Tool.Extra1 = ToSingle(NormaliseAngle(rec.Tool.Extra1));
    rec.Tool.Extra1 = ToSingle(NormaliseAngle(rec.Tool.Extra1));
    // 2. Plasma and Diameter tools have no direction.
    if (rec.Tool.Shape == 'P' || rec.Tool.Shape == 'A') {
        rec.Tool.Angle = 0;
        rec.Tool.Extra1 = 0;
    }
    // 3. The routine of the kind; other kinds keep what their writer set.
    switch (rec.Kind) {
        case EntityKind::Move:
        case EntityKind::LinearPattern:
            OutlineStraight(rec);
            break;
        case EntityKind::LineProfile:
        case EntityKind::ArcProfile:
            OutlineProfile(rec);
            break;
        case EntityKind::ReservedArc:
        case EntityKind::ArcPattern:
            OutlineArcPattern(rec);
            break;
        case EntityKind::Punch:
        case EntityKind::GridPattern:
            OutlinePunch(rec);
            break;
        case EntityKind::Dwell:
        case EntityKind::Stop:
        case EntityKind::Reposition:
            OutlineAtPoint(rec);
            break;
        case EntityKind::MultiPart:
            OutlineMultiPart(rec);
            break;
        default:
            break;
    }
}

}  // namespace kirvana

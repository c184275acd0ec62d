#include "plot/plotter.h"

#include <algorithm>
#include <cmath>

#include "analysis/drawing_file.h"
#include "analysis/expand.h"
#include "core/geometry.h"
#include "core/names.h"
#include "core/text.h"

namespace kirvana {

namespace {

bool IsProfile(std::int16_t kind) { return kind == EntityKind::LineProfile || kind == EntityKind::ArcProfile; }

bool Finite(PlotPoint p) { return std::isfinite(p.X) && std::isfinite(p.Y); }

// The slot of `Settings` that holds the plasma kerf width of a profile.
constexpr std::size_t KerfSlot = 7;

// The width of the kerf line a profile shows beside it; 0 for none (no side, no kerf set).
double KerfWidth(const EntityRec& rec) {
    const double kerf = rec.Settings[KerfSlot];
    if (rec.Compensation != 1 && rec.Compensation != 2) return 0;
    if (!std::isfinite(kerf) || kerf <= 0 || kerf == NoValue || kerf > 1e6) return 0;
    return kerf;
}

// The records of a part drawn by a Multi-Part entity, at most this many copies of records.
constexpr std::int64_t MaxPartRecordsDrawn = MaxExpandedHits;

// The farthest any element of the list comes from the hit, at any angle.
double ListReach(const ShapeList& list) {
    double reach = 0;
    for (const ShapeEntry& e : list.Entries) {
        if (e.Op == '*') break;
        if (e.Op == 'L')
            reach = std::max(
                {reach, static_cast<double>(std::hypot(e.X1, e.Y1)), static_cast<double>(std::hypot(e.X2, e.Y2))});
        else
            reach = std::max(reach, static_cast<double>(std::hypot(e.X1, e.Y1)) + std::abs(e.Radius));
    }
    return std::isfinite(reach) ? reach : 0;
}

// What tells one outline from another: a hash of the list's entries. Lists of the same entries
// draw the same outline, whichever tool they were built for.
std::int64_t ListKey(const ShapeList& list) {
    std::uint64_t hash = 14695981039346656037ull;
    auto mix = [&hash](const void* data, std::size_t size) {
        const auto* bytes = static_cast<const unsigned char*>(data);
        for (std::size_t i = 0; i < size; ++i) hash = (hash ^ bytes[i]) * 1099511628211ull;
    };
    for (const ShapeEntry& e : list.Entries) {
        mix(&e.Op, 1);
        if (e.Op == '*') break;
        for (float value : {e.X1, e.Y1, e.X2, e.Y2, e.Radius, e.StartAngle, e.EndAngle}) mix(&value, sizeof value);
    }
    const bool seeds = !list.FillSeeds.empty();
    mix(&seeds, 1);
    return static_cast<std::int64_t>(hash);
}

}  // namespace

PlotRect RectBetween(PlotPoint a, PlotPoint b) {
    return {std::min(a.X, b.X), std::min(a.Y, b.Y), std::max(a.X, b.X), std::max(a.Y, b.Y)};
}

double HitAngle(const ToolRecord& tool, double extra1) {
    if (tool.Shape == 'A' || tool.Shape == 'P') return 0;
    return NormaliseAngle(static_cast<double>(tool.Angle) + extra1);
}

Plotter::Plotter(Canvas& canvas, const ColourTable& colours, std::string toolsDir)
    : canvas_(canvas), colours_(colours), toolsDir_(std::move(toolsDir)) {}

std::int32_t Plotter::EntityColour(const EntityRec& rec, int colourMode) const {
    const bool profile = IsProfile(rec.Kind);
    const bool validTool = rec.Tool.IsValid();
    switch (colourMode) {
        case ColourMode::Erase:
            return colours_[ColourItem::SheetFill];
        case ColourMode::RealTime:
            if (!profile) return colours_[ColourItem::PunchModeRealTimePunching];
            return validTool ? colours_[ColourItem::ProfileModeRealTimeProfiling]
                             : colours_[ColourItem::ProfileModeRealTimeMovement];
        case ColourMode::Highlight:
            return colours_[ColourItem::HighlightedDrawing];
        default:
            break;
    }
    if (profile && !validTool) return colours_[ColourItem::SheetFill];
    if (rec.PathMode == 1) return colours_[ColourItem::BlockSkip1];
    if (rec.PathMode == 2) return colours_[ColourItem::BlockSkip2];
    if (!profile) return colours_[ColourItem::BackgroundPunching];
    if (rec.Compensation == 1) return colours_[ColourItem::BackgroundProfilingG41];
    if (rec.Compensation == 2) return colours_[ColourItem::BackgroundProfilingG42];
    return colours_[ColourItem::BackgroundProfilingG40];
}

void Plotter::PlotEntity(int plot, const EntityRec& rec, int colourMode, bool emphasis) {
    Dispatch(plot, rec, EntityColour(rec, colourMode), emphasis, false);
}

void Plotter::Dispatch(int plot, const EntityRec& rec, std::int32_t colour, bool emphasis, bool inPart) {
    switch (rec.Kind) {
        case EntityKind::LineProfile:
            if (rec.Tool.IsValid()) PlotLineProfile(rec, colour);
            break;
        case EntityKind::ArcProfile:
            if (rec.Tool.IsValid()) PlotArcProfile(rec, colour);
            break;
        case EntityKind::Punch:
            PlotPunch(plot, rec, colour, emphasis);
            break;
        case EntityKind::LinearPattern:
            PlotLinearPattern(plot, rec, colour, emphasis);
            break;
        case EntityKind::GridPattern:
            PlotGridPattern(plot, rec, colour, emphasis);
            break;
        case EntityKind::ArcPattern:
            PlotArcPattern(plot, rec, colour, emphasis);
            break;
        case EntityKind::Reposition:
            PlotReposition(rec, colour);
            break;
        case EntityKind::MultiPart:
            // A part inside a part would repeat itself without end.
            if (!inPart) PlotMultiPart(plot, rec, colour, emphasis);
            break;
        default:
            // The Sheet, moves, dwells and stops aren't drawn.
            break;
    }
}

void Plotter::PlotPunch(int plot, const EntityRec& rec, std::int32_t colour, bool emphasis) {
    PlotHit(plot, rec.Tool, {rec.Points.Position.X, rec.Points.Position.Y}, rec.Tool.Extra1, colour, emphasis);
}

// The hits of a pattern as the expansion makes them, each drawn with the pattern's tool.
static void PlotPatternHits(Plotter& plotter, int plot, const EntityRec& rec, std::int32_t colour, bool emphasis) {
    std::int64_t hits = 0;
    ForEachHit(rec, [&](double x, double y, const double* cAngle) {
        if (++hits > MaxExpandedHits) return false;
        plotter.PlotHit(plot, rec.Tool, {x, y}, cAngle ? *cAngle : static_cast<double>(rec.Tool.Extra1), colour,
                        emphasis);
        return true;
    });
}

void Plotter::PlotLinearPattern(int plot, const EntityRec& rec, std::int32_t colour, bool emphasis) {
    PlotPatternHits(*this, plot, rec, colour, emphasis);
}
void Plotter::PlotGridPattern(int plot, const EntityRec& rec, std::int32_t colour, bool emphasis) {
    PlotPatternHits(*this, plot, rec, colour, emphasis);
}
void Plotter::PlotArcPattern(int plot, const EntityRec& rec, std::int32_t colour, bool emphasis) {
    PlotPatternHits(*this, plot, rec, colour, emphasis);
}

void Plotter::PlotHit(int plot, const ToolRecord& tool, PlotPoint position, double extra1, std::int32_t colour,
                      bool emphasis) {
    if (!Finite(position)) return;
    // 1. The tool's fitted angle plus the C angle of the hit.
    const double angle = HitAngle(tool, extra1);
    // 2. The display list, built anew only when the tool differs from the one it was built from.
    if (!shapes_.Built || !SameShapeTool(tool, shapes_.Tool)) {
        BuildShapeList(tool, toolsDir_, shapes_);
        reach_ = ListReach(shapes_);
        ++listsBuilt_;
        listKey_ = ListKey(shapes_);
    }
    // A list that reaches nowhere finite is drawn wherever it stands.
    if (reach_ > 0 && !InArea(position.X - reach_, position.Y - reach_, position.X + reach_, position.Y + reach_))
        return;
    ++hitsDrawn_;
    const double radians = DegToRad(angle);
    const double c = std::cos(radians), s = std::sin(radians);
    auto place = [&](double x, double y) { return PlotPoint{position.X + x * c - y * s, position.Y + x * s + y * c}; };
    const bool fill = emphasis && plot > 0 && !shapes_.FillSeeds.empty();
    if (canvas_.BeginHit({listKey_, angle, fill, reach_}, position, colour)) return;
    if (fill) pieces_.clear();
    // 3. The list turned by the angle and moved to the hit; each line starts where the former
    // element ended and the last closes on the first.
    PlotPoint former = UnsetPoint;
    PlotPoint first = UnsetPoint;
    int last = 0;
    while (last < MaxShapeEntries && shapes_.Entries[static_cast<std::size_t>(last)].Op != '*') ++last;
    for (int i = 0; i < last; ++i) {
        const ShapeEntry& e = shapes_.Entries[static_cast<std::size_t>(i)];
        if (e.Op == 'L') {
            PlotPoint from = place(e.X1, e.Y1), to = place(e.X2, e.Y2);
            if (i == 0) first = from;
            PlotPoint storedStart = former;
            PlotPoint storedEnd = i == last - 1 ? first : UnsetPoint;
            PlotLine(from, to, colour, storedStart, storedEnd);
            if (fill) pieces_.push_back({false, storedStart.X, storedStart.Y, storedEnd.X, storedEnd.Y, 0, 0, 0});
            former = storedEnd;
        } else {
            PlotPoint centre = place(e.X1, e.Y1);
            double start = e.StartAngle + angle, end = e.EndAngle + angle;
            canvas_.Arc(centre, e.Radius, start, end, colour);
            if (fill) pieces_.push_back({true, centre.X, centre.Y, 0, 0, e.Radius, start, end});
            former = UnsetPoint;
        }
    }
    // 4. A solid hit: its outline filled (never on the dialogue's plot).
    if (fill && !pieces_.empty()) canvas_.FillOutline(pieces_, colour);
    canvas_.EndHit();
}

void Plotter::PlotLine(PlotPoint from, PlotPoint to, std::int32_t colour, PlotPoint& storedStart,
                       PlotPoint& storedEnd) {
    if (!(storedStart == UnsetPoint) && !(storedStart == from)) from = storedStart;
    storedStart = from;
    if (!(storedEnd == UnsetPoint) && !(storedEnd == to)) to = storedEnd;
    storedEnd = to;
    canvas_.Line(from, to, colour, LineStyle::Solid, 1);
}

void Plotter::PlotLineProfile(const EntityRec& rec, std::int32_t colour) {
    PlotPoint from{rec.Points.Start.X, rec.Points.Start.Y}, to{rec.Points.End.X, rec.Points.End.Y};
    if (!Finite(from) || !Finite(to)) return;
    const PlotRect box = RectBetween(from, to);
    const double kerf = KerfWidth(rec);
    if (!InArea(box.X1 - kerf, box.Y1 - kerf, box.X2 + kerf, box.Y2 + kerf)) return;
    canvas_.Line(from, to, colour, LineStyle::Solid, 1);
    PlotKerfLine(rec, colour);
}

void Plotter::PlotArcProfile(const EntityRec& rec, std::int32_t colour) {
    PlotPoint centre{rec.Points.Position.X, rec.Points.Position.Y};
    const double radius = rec.Values[1], first = rec.Values[10], sweep = rec.Values[11];
    if (!Finite(centre) || !std::isfinite(radius) || !std::isfinite(first) || !std::isfinite(sweep)) return;
    if (radius <= 0 || sweep == 0) return;
    const double reach = radius + KerfWidth(rec);
    if (!InArea(centre.X - reach, centre.Y - reach, centre.X + reach, centre.Y + reach)) return;
    const double turn = std::min(std::abs(sweep), 360.0);
    // Clockwise arcs are drawn from their far end.
    const double start = sweep > 0 ? first : first - turn;
    canvas_.Arc(centre, radius, start, start + turn, colour);
    PlotKerfLine(rec, colour);
}

void Plotter::PlotKerfLine(const EntityRec& rec, std::int32_t colour) {
    const double kerf = KerfWidth(rec);
    if (kerf == 0) return;
    // Left of the way is +1, right -1.
    const double side = rec.Compensation == 1 ? 1 : -1;
    if (rec.Kind == EntityKind::LineProfile) {
        const double dx = static_cast<double>(rec.Points.End.X) - rec.Points.Start.X;
        const double dy = static_cast<double>(rec.Points.End.Y) - rec.Points.Start.Y;
        const double length = std::hypot(dx, dy);
        if (!(length > 0) || !std::isfinite(length)) return;
        // The left normal of the way from Start to End.
        const double nx = -dy / length * kerf * side, ny = dx / length * kerf * side;
        canvas_.Line({rec.Points.Start.X + nx, rec.Points.Start.Y + ny}, {rec.Points.End.X + nx, rec.Points.End.Y + ny},
                     colour, LineStyle::Dotted, 1);
        return;
    }
    // An arc: its left is towards the centre when it turns counter-clockwise.
    const double radius = rec.Values[1], first = rec.Values[10], sweep = rec.Values[11];
    const double offsetRadius = radius - (sweep > 0 ? side : -side) * kerf;
    if (!(offsetRadius > 0)) return;
    const double turn = std::min(std::abs(sweep), 360.0);
    const double start = sweep > 0 ? first : first - turn;
    // Chords of at most 3 degrees, each stroke dotted.
    const int pieces = std::max(1, static_cast<int>(std::ceil(turn / 3)));
    auto at = [&](int k) {
        const double a = DegToRad(start + turn * k / pieces);
        return PlotPoint{rec.Points.Position.X + offsetRadius * std::cos(a),
                         rec.Points.Position.Y + offsetRadius * std::sin(a)};
    };
    PlotPoint last = at(0);
    for (int k = 1; k <= pieces; ++k) {
        const PlotPoint next = at(k);
        canvas_.Line(last, next, colour, LineStyle::Dotted, 1);
        last = next;
    }
}

void Plotter::PlotReposition(const EntityRec& rec, std::int32_t colour) {
    // A diamond at the position, and the sheet's shift (I) as a dotted line from it.
    PlotPoint at{rec.Points.Position.X, rec.Points.Position.Y};
    if (!Finite(at)) return;
    constexpr double Size = 5;
    const double shift = rec.Values[1];
    const bool shiftShown = std::isfinite(shift) && shift != 0 && shift != NoValue;
    if (!InArea(at.X - Size + std::min(shiftShown ? shift : 0.0, 0.0), at.Y - Size,
                at.X + Size + std::max(shiftShown ? shift : 0.0, 0.0), at.Y + Size))
        return;
    canvas_.Polygon({{at.X + Size, at.Y}, {at.X, at.Y + Size}, {at.X - Size, at.Y}, {at.X, at.Y - Size}}, colour,
                    false);
    if (shiftShown) canvas_.Line(at, {at.X + shift, at.Y}, colour, LineStyle::Dotted, 1);
}

void Plotter::PlotMultiPart(int plot, const EntityRec& rec, std::int32_t colour, bool emphasis) {
    std::string name(Trim(rec.Remark));
    if (name.empty() || !AcceptableName(name)) return;
    if (name.find('.') == std::string::npos) name += ".prw";
    DrawingFile part;
    if (!part.Open(partDir_ + name, true)) return;
    std::vector<EntityRec> records;
    const std::int32_t last = part.LastReadable();
    EntityRec item;
    for (std::int32_t n = 2; n <= last && n <= MaxPartRecordsDrawn; ++n)
        if (part.Get(n, item)) records.push_back(item);
    part.Close();
    if (records.empty()) return;
    const double pitchX = rec.Values[11], pitchY = rec.Values[12];
    if (!std::isfinite(pitchX) || !std::isfinite(pitchY)) return;
    std::int64_t drawn = 0;
    EntityRec copy;
    for (int iy = 0; iy < rec.Counts[2]; ++iy) {
        for (int ix = 0; ix < rec.Counts[1]; ++ix) {
            const float dx = static_cast<float>(ix * pitchX), dy = static_cast<float>(iy * pitchY);
            for (const EntityRec& r : records) {
                if (++drawn > MaxPartRecordsDrawn) return;
                CopyEntity(r, copy);
                for (PointF* p : {&copy.Points.Start, &copy.Points.Middle, &copy.Points.End, &copy.Points.Position,
                                  &copy.Points.Entry, &copy.Points.Exit}) {
                    p->X += dx;
                    p->Y += dy;
                }
                Dispatch(plot, copy, colour, emphasis, true);
            }
        }
    }
}

void Plotter::PlotTrail(PlotPoint to, std::int32_t colour, LineStyle style, int width) {
    if (!Finite(to)) return;
    if (trailSet_ && !(to == trailLast_)) canvas_.Line(trailLast_, to, colour, style, width);
    trailSet_ = true;
    trailLast_ = to;
}

void Plotter::MoveTrailTo(PlotPoint to) {
    if (!Finite(to)) return;
    trailSet_ = true;
    trailLast_ = to;
}

void Plotter::PlotIcon(PlotPoint at, double size, std::int32_t colour, bool visible) {
    const double half = std::abs(size) / 2;
    Overlay shape{visible, OverlayForm::Circle, at.X, at.Y, half, 0, colour, false};
    Overlay line1{visible, OverlayForm::Line, at.X - half, at.Y, at.X + half, at.Y, colour, false};
    Overlay line2{visible, OverlayForm::Line, at.X, at.Y - half, at.X, at.Y + half, colour, false};
    canvas_.SetOverlay(OverlayId::IconShape, shape);
    canvas_.SetOverlay(OverlayId::IconLine1, line1);
    canvas_.SetOverlay(OverlayId::IconLine2, line2);
}

void Plotter::ResetRunData() {
    trailSet_ = false;
    trailLast_ = UnsetPoint;
}

}  // namespace kirvana

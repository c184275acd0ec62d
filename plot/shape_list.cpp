#include "plot/shape_list.h"

#include <algorithm>
#include <cmath>

#include "analysis/tool_outline.h"
#include "core/geometry.h"
#include "core/number.h"

namespace kirvana {

namespace {

// Appends entries to a list; entries beyond the list's room are dropped, the end mark kept.
class ListBuilder {
public:
    explicit ListBuilder(ShapeList& list) : list_(list) {}
    void Line(double x1, double y1, double x2, double y2) {
        if (count_ >= MaxShapeEntries - 1) return;
        ShapeEntry& e = list_.Entries[static_cast<std::size_t>(count_++)];
        e = {};
        e.Op = 'L';
        e.X1 = static_cast<float>(x1);
        e.Y1 = static_cast<float>(y1);
        e.X2 = static_cast<float>(x2);
        e.Y2 = static_cast<float>(y2);
    }
    // Counter-clockwise from start to end; the end is brought above the start.
    void Arc(double cx, double cy, double radius, double start, double end) {
        if (count_ >= MaxShapeEntries - 1) return;
        while (end <= start) end += 360;
        ShapeEntry& e = list_.Entries[static_cast<std::size_t>(count_++)];
        e = {};
        e.Op = 'A';
        e.X1 = static_cast<float>(cx);
        e.Y1 = static_cast<float>(cy);
        e.Radius = static_cast<float>(radius);
        e.StartAngle = static_cast<float>(start);
        e.EndAngle = static_cast<float>(end);
    }
    void Circle(double radius) {
        if (count_ >= MaxShapeEntries - 1) return;
        Arc(0, 0, radius, 0, 360);
        list_.Entries[static_cast<std::size_t>(count_ - 1)].StartAngle = 0;
        list_.Entries[static_cast<std::size_t>(count_ - 1)].EndAngle = 360;
    }
    void Seed(double x, double y) { list_.FillSeeds.push_back({x, y}); }
    void Finish() { list_.Entries[static_cast<std::size_t>(count_)] = ShapeEntry{}; }

private:
    ShapeList& list_;
    int count_ = 0;
};

struct Corner {
    double X, Y;
    double Radius;  // 0: a sharp corner
};

double AngleOf(double x, double y) { return RadToDeg(std::atan2(y, x)); }

// The closed polygon through the corners, counter-clockwise, each corner rounded by its radius
// (inside corners too). A radius too large for its sides is left sharp.
void RoundedPolygon(ListBuilder& out, const std::vector<Corner>& corners) {
    const std::size_t n = corners.size();
    struct Turn {
        double InX, InY, OutX, OutY;  // where the outline reaches and leaves the corner
        bool Rounded = false;
        double Cx = 0, Cy = 0, R = 0, From = 0, To = 0;
    };
    std::vector<Turn> turns(n);
    for (std::size_t i = 0; i < n; ++i) {
        const Corner& v = corners[i];
        const Corner& p = corners[(i + n - 1) % n];
        const Corner& q = corners[(i + 1) % n];
        Turn& t = turns[i];
        t.InX = t.OutX = v.X;
        t.InY = t.OutY = v.Y;
        double ax = p.X - v.X, ay = p.Y - v.Y, bx = q.X - v.X, by = q.Y - v.Y;
        double la = std::hypot(ax, ay), lb = std::hypot(bx, by);
        if (v.Radius <= 0 || la <= 0 || lb <= 0) continue;
        ax /= la, ay /= la, bx /= lb, by /= lb;
        double cosine = std::clamp(ax * bx + ay * by, -1.0, 1.0);
        double half = std::acos(cosine) / 2;
        if (half <= 1e-9 || half >= Pi / 2 - 1e-9) continue;
        double tangent = v.Radius / std::tan(half);
        if (tangent > la / 2 + 1e-9 || tangent > lb / 2 + 1e-9) continue;
        double mx = ax + bx, my = ay + by, lm = std::hypot(mx, my);
        double toCentre = v.Radius / std::sin(half);
        t.Rounded = true;
        t.InX = v.X + ax * tangent;
        t.InY = v.Y + ay * tangent;
        t.OutX = v.X + bx * tangent;
        t.OutY = v.Y + by * tangent;
        t.Cx = v.X + mx / lm * toCentre;
        t.Cy = v.Y + my / lm * toCentre;
        t.R = v.Radius;
        double a1 = AngleOf(t.InX - t.Cx, t.InY - t.Cy), a2 = AngleOf(t.OutX - t.Cx, t.OutY - t.Cy);
        // An outside corner of a counter-clockwise outline turns left: the arc runs from the
        // way in to the way out; an inside corner the other way round.
        bool outside = (ax * by - ay * bx) < 0;
        t.From = outside ? a1 : a2;
        t.To = outside ? a2 : a1;
    }
    for (std::size_t i = 0; i < n; ++i) {
        const Turn& t = turns[i];
        const Turn& next = turns[(i + 1) % n];
        if (t.Rounded) out.Arc(t.Cx, t.Cy, t.R, t.From, t.To);
        out.Line(t.OutX, t.OutY, next.InX, next.InY);
    }
}

std::vector<Corner> Rectangle(double length, double width, double radius) {
    double x = length / 2, y = width / 2;
    return {{x, -y, radius}, {x, y, radius}, {-x, y, radius}, {-x, -y, radius}};
}

// A circle of radius r cut by the lines x = -left and x = right (0: not cut there).
void CutCircle(ListBuilder& out, double r, double left, double right) {
    bool cutRight = right > 0 && right<r, cutLeft = left> 0 && left < r;
    if (!cutRight && !cutLeft) {
        out.Circle(r);
        return;
    }
    double aRight = cutRight ? RadToDeg(std::acos(right / r)) : 0;
    double aLeft = cutLeft ? RadToDeg(std::acos(left / r)) : 0;
    double hRight = std::sqrt(r * r - right * right), hLeft = std::sqrt(r * r - left * left);
    if (cutRight) out.Line(right, -hRight, right, hRight);
    out.Arc(0, 0, r, aRight, 180 - aLeft);
    if (cutLeft) out.Line(-left, hLeft, -left, -hLeft);
    out.Arc(0, 0, r, 180 + aLeft, 360 - aRight);
}

// The square of side `side` by its corner in polar form, a corner at each quarter turn.
void Square(ListBuilder& out, double side) {
    double radius = 0, angle = 0;
    XYToPolar(side / 2, side / 2, radius, angle);
    double x0 = 0, y0 = 0;
    PolarToXY(radius, angle, x0, y0);
    double x = x0, y = y0;
    for (int quarter = 1; quarter <= 4; ++quarter) {
        double nx = 0, ny = 0;
        PolarToXY(radius, angle + 90 * quarter, nx, ny);
        if (quarter == 4) nx = x0, ny = y0;
        out.Line(x, y, nx, ny);
        x = nx, y = ny;
    }
}

// A keyway: the circle with a key of width k reaching to `reach` from the centre, on +X.
void Keyway(ListBuilder& out, double r, double reach, double key, bool roundEnd) {
    double half = key / 2;
    if (!(half > 0) || half >= r || reach <= std::sqrt(r * r - half * half)) {
        out.Circle(r);
        return;
    }
    double a = RadToDeg(std::asin(half / r));
    double root = std::sqrt(r * r - half * half);
    out.Arc(0, 0, r, a, 360 - a);
    if (roundEnd && reach - half > root) {
        out.Line(root, -half, reach - half, -half);
        out.Arc(reach - half, 0, half, 270, 450);
        out.Line(reach - half, half, root, half);
    } else {
        out.Line(root, -half, reach, -half);
        out.Line(reach, -half, reach, half);
        out.Line(reach, half, root, half);
    }
}

}  // namespace

bool SameShapeTool(const ToolRecord& a, const ToolRecord& b) {
    return a.Shape == b.Shape && a.Name == b.Name && a.D1 == b.D1 && a.D2 == b.D2 && a.D3 == b.D3 && a.D4 == b.D4;
}

void BuildShapeList(const ToolRecord& tool, const std::string& toolsDir, ShapeList& list) {
    list.FillSeeds.clear();
    list.Tool = tool;
    list.Built = true;
    list.FromFallback = false;
    ListBuilder out(list);
    const double d1 = tool.D1, d2 = tool.D2, d3 = tool.D3, d4 = tool.D4;
    switch (tool.IsValid() ? tool.Shape : ' ') {
        case 'A':
            out.Circle(d1 / 2);
            // Seeds at 8/20 of D1 from the centre, every 45 degrees.
            for (int k = 0; k < 8; ++k) {
                double x = 0, y = 0;
                PolarToXY(d1 * 8 / 20, 45.0 * k, x, y);
                out.Seed(x, y);
            }
            out.Finish();
            return;
        case 'B':
            Square(out, d1);
            break;
        case 'C':
            RoundedPolygon(out, Rectangle(d1, d1, d4));
            break;
        case 'D':
            RoundedPolygon(out, Rectangle(d1, d2, 0));
            break;
        case 'E':
            RoundedPolygon(out, Rectangle(d1, d2, d4));
            break;
        case 'F':
            // Obround: the ends are half circles of the smaller side.
            RoundedPolygon(out, Rectangle(d1, d2, std::min(d1, d2) / 2 * 0.999999));
            break;
        case 'G':
            // Single-D: the diameter, the flat at the height across from the round side.
            CutCircle(out, d1 / 2, 0, d2 - d1 / 2);
            break;
        case 'H':
            // Double-D: two flats, the height apart.
            CutCircle(out, d1 / 2, d2 / 2, d2 / 2);
            break;
        case 'I': {
            // Cannon-D: a flat end on -X, a half circle of the width on +X.
            double x = d1 / 2, y = d2 / 2;
            std::vector<Corner> corners{{x, -y, y * 0.999999}, {x, y, y * 0.999999}, {-x, y, 0}, {-x, -y, 0}};
            RoundedPolygon(out, corners);
            break;
        }
        case 'J': {
            // Hexagon: D1 across the flats, the flats on top and bottom.
            double r = d1 / 2 / std::cos(Pi / 6);
            std::vector<Corner> corners;
            for (int k = 0; k < 6; ++k) corners.push_back({r * std::cos(Pi / 3 * k), r * std::sin(Pi / 3 * k), 0});
            RoundedPolygon(out, corners);
            break;
        }
        case 'K':
            // Keyway: the height runs from the far side of the circle to the key's end.
            Keyway(out, d1 / 2, d2 - d1 / 2, std::abs(d3), d3 < 0);
            break;
        case 'L': {
            // Louvre: the forming side (+Y) rounded by half the width at both corners.
            double x = d1 / 2, y = d2 / 2;
            double r = std::min(x, y) * 0.999999;
            RoundedPolygon(out, {{x, -y, 0}, {x, y, r}, {-x, y, r}, {-x, -y, 0}});
            break;
        }
        case 'M': {
            // Cruciform: two bars of the web width across the length, the inside corners
            // rounded by the tool radius.
            double a = d1 / 2, w = d3 / 2, r = d4;
            std::vector<Corner> corners{{a, -w, 0}, {a, w, 0},   {w, w, r},   {w, a, 0},   {-w, a, 0}, {-w, w, r},
                                        {-a, w, 0}, {-a, -w, 0}, {-w, -w, r}, {-w, -a, 0}, {w, -a, 0}, {w, -w, r}};
            RoundedPolygon(out, corners);
            break;
        }
        case 'S': {
            std::string path = SpecialToolFile(toolsDir, tool.Name);
            if (!path.empty() && ReadSpecialTool(path, list)) {
                list.Tool = tool;
                list.Built = true;
                return;
            }
            list.FromFallback = true;
            Square(out, d1);
            break;
        }
        default:
            // No valid tool, the plasma head or an unknown letter: the square the tool's box
            // takes (10 mm without a real tool).
            Square(out, 2 * HalfWidth(tool));
            break;
    }
    out.Seed(0, 0);
    out.Finish();
}

}  // namespace kirvana

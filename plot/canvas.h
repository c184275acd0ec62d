// The surface the plot draws on: table millimetres in, pixels out. The plot's logic draws only
// through this interface, so one drawing code serves the panel, a picture file and the tests.
#pragma once

#include <cstdint>
#include <vector>

namespace kirvana {

struct PlotPoint {
    double X = 0;
    double Y = 0;
    bool operator==(const PlotPoint&) const = default;
};

enum class LineStyle { Solid, Dotted };

// One piece of a closed outline: a line from (X1, Y1) to (X2, Y2), or an arc round the centre
// (X1, Y1) counter-clockwise from StartAngle to EndAngle (degrees, EndAngle above StartAngle).
struct OutlinePiece {
    bool IsArc = false;
    double X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;
    double Radius = 0, StartAngle = 0, EndAngle = 0;
};

// The shapes laid over a plot box, each placed, coloured and shown on its own.
enum class OverlayId {
    SheetRect,
    ZoneRect0,
    ZoneRect1,
    ZoneRect2,
    ZoneRect3,
    ZoneRect4,
    ClampRect1,
    ClampRect2,
    ClampRect3,
    ClampRect4,
    PadCirc1,
    PadCirc2,
    ZoomRect,
    CrossLine1,
    CrossLine2,
    IconShape,
    IconLine1,
    IconLine2,
};
inline constexpr int OverlayCount = 18;

// What makes one hit's outline the same as another's: the display list (a key made from its
// entries), the angle it is turned by and whether it is filled. `Reach` is how far the
// outline comes from the hit, in millimetres; 0 when it is not known.
struct HitShape {
    std::int64_t List = 0;
    double Angle = 0;
    bool Filled = false;
    double Reach = 0;
};

enum class OverlayForm { Rectangle, Circle, Line };

// Rectangle: corners (X1, Y1), (X2, Y2). Circle: centre (X1, Y1), radius X2. Line: its ends.
struct Overlay {
    bool Visible = false;
    OverlayForm Form = OverlayForm::Rectangle;
    double X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;
    std::int32_t Colour = 0;
    bool Filled = false;
    bool operator==(const Overlay&) const = default;
};

class Canvas {
public:
    virtual ~Canvas() = default;
    // The table coordinates of the box's top left and bottom right corners.
    virtual void SetView(PlotPoint topLeft, PlotPoint bottomRight) = 0;
    // Colours are 24-bit with blue in the high byte; widths are in pixels.
    virtual void Line(PlotPoint from, PlotPoint to, std::int32_t colour, LineStyle style, int width) = 0;
    // Counter-clockwise from startAngle to endAngle in degrees; 0 to 360 is a full circle.
    virtual void Arc(PlotPoint centre, double radius, double startAngle, double endAngle, std::int32_t colour) = 0;
    virtual void FillRect(PlotPoint corner1, PlotPoint corner2, std::int32_t colour) = 0;
    virtual void Polygon(const std::vector<PlotPoint>& points, std::int32_t colour, bool filled) = 0;
    // Fills the closed outline made by the pieces in their order.
    virtual void FillOutline(const std::vector<OutlinePiece>& pieces, std::int32_t colour) = 0;
    virtual void SetOverlay(OverlayId id, const Overlay& overlay) = 0;
    // Before the calls that draw one hit in one colour. A canvas that keeps hit outlines as
    // pixels may place a kept one there and answer true: the calls are then left out. Otherwise
    // the calls follow and EndHit closes them.
    virtual bool BeginHit(const HitShape&, PlotPoint, std::int32_t) { return false; }
    virtual void EndHit() {}
};

}  // namespace kirvana

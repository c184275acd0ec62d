// `PlotEntity` and the routines it dispatches to: one drawing record drawn into a plot box in
// the colour of its mode, each hit with the real outline of its tool at the tool's angle.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "analysis/entity.h"
#include "plot/canvas.h"
#include "plot/colour_config.h"
#include "plot/shape_list.h"

namespace kirvana {

// The colour mode of PlotEntity.
namespace ColourMode {
inline constexpr int Erase = 0;
inline constexpr int Background = 1;
inline constexpr int RealTime = 2;
inline constexpr int Highlight = 3;
}  // namespace ColourMode

// The dialogue's plot box; 1 and 2 are the active slots.
inline constexpr int DialoguePlot = 0;

// The stored point of PlotLine that is not set.
inline constexpr PlotPoint UnsetPoint{-999, -999};

// A rectangle of the table between its low and high corners.
struct PlotRect {
    double X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;
    // Has a point in common with the box between (x1, y1) and (x2, y2).
    bool Meets(double x1, double y1, double x2, double y2) const {
        return x1 <= X2 && x2 >= X1 && y1 <= Y2 && y2 >= Y1;
    }
    bool Empty() const { return !(X2 > X1) || !(Y2 > Y1); }
};
// The rectangle between two corners in any order.
PlotRect RectBetween(PlotPoint a, PlotPoint b);

class Plotter {
public:
    Plotter(Canvas& canvas, const ColourTable& colours, std::string toolsDir);

    // Where the `.prw` files of Multi-Part entities stand.
    void SetPartDir(std::string dir) { partDir_ = std::move(dir); }
    Canvas& Surface() { return canvas_; }
    const ColourTable& Colours() const { return colours_; }

    // The colour of the record in a colour mode.
    std::int32_t EntityColour(const EntityRec& rec, int colourMode) const;
    // Draws the record in the colour of the mode; the caller's record isn't changed.
    void PlotEntity(int plot, const EntityRec& rec, int colourMode, bool emphasis);

    void PlotPunch(int plot, const EntityRec& rec, std::int32_t colour, bool emphasis);
    void PlotLinearPattern(int plot, const EntityRec& rec, std::int32_t colour, bool emphasis);
    void PlotGridPattern(int plot, const EntityRec& rec, std::int32_t colour, bool emphasis);
    void PlotArcPattern(int plot, const EntityRec& rec, std::int32_t colour, bool emphasis);
    void PlotLineProfile(const EntityRec& rec, std::int32_t colour);
    void PlotArcProfile(const EntityRec& rec, std::int32_t colour);
    void PlotReposition(const EntityRec& rec, std::int32_t colour);
    void PlotMultiPart(int plot, const EntityRec& rec, std::int32_t colour, bool emphasis);

    // One hit of the tool at the position with the C angle `extra1`.
    void PlotHit(int plot, const ToolRecord& tool, PlotPoint position, double extra1, std::int32_t colour,
                 bool emphasis);

    // A line from the last position of the trail to this one, only when it moved; the first
    // call after a reset only sets the position.
    void PlotTrail(PlotPoint to, std::int32_t colour, LineStyle style, int width);
    // The trail's last position moved without a line (a move the trail doesn't show).
    void MoveTrailTo(PlotPoint to);
    // The movement icon at the machine's head: a circle of `size` and its cross.
    void PlotIcon(PlotPoint at, double size, std::int32_t colour, bool visible);
    // The last line end and the last trail position start anew: done at every redraw.
    void ResetRunData();

    // The line through the stored points: a set point that differs from an end takes its place.
    void PlotLine(PlotPoint from, PlotPoint to, std::int32_t colour, PlotPoint& storedStart, PlotPoint& storedEnd);

    // Only what reaches into the area is drawn from now on: a hit, profile or reposition wholly
    // outside it cannot change a pixel there, so it is left out before its outline is built.
    void SetDrawArea(PlotRect area) {
        area_ = area;
        areaSet_ = true;
    }
    // Everything is drawn again, wherever it lies.
    void ClearDrawArea() { areaSet_ = false; }

    const ShapeList& Shapes() const { return shapes_; }
    // Hits drawn since the plotter was made; a measure for tests and benchmarks.
    std::int64_t HitsDrawn() const { return hitsDrawn_; }
    // Times a display list was built.
    std::int64_t ListsBuilt() const { return listsBuilt_; }

private:
    // False when the area is set and the box misses it.
    bool InArea(double x1, double y1, double x2, double y2) const { return !areaSet_ || area_.Meets(x1, y1, x2, y2); }
    void Dispatch(int plot, const EntityRec& rec, std::int32_t colour, bool emphasis, bool inPart);
    // A profile cut with the kerf to one side (G41 left, G42 right of its way): a dotted line as
    // far from it as the kerf's width, on that side, so that the two lines bound the cut.
    void PlotKerfLine(const EntityRec& rec, std::int32_t colour);

    Canvas& canvas_;
    const ColourTable& colours_;
    std::string toolsDir_;
    std::string partDir_;
    ShapeList shapes_;
    std::vector<OutlinePiece> pieces_;
    bool trailSet_ = false;
    PlotPoint trailLast_;
    double reach_ = 0;          // the farthest the display list comes from the hit
    std::int64_t listKey_ = 0;  // what tells the display list's outline from others
    PlotRect area_;
    bool areaSet_ = false;
    std::int64_t hitsDrawn_ = 0;
    std::int64_t listsBuilt_ = 0;
};

// The angle a hit is drawn at: the tool's angle plus its C angle, normalised; 0 for a Diameter
// and the plasma head, which have no direction.
double HitAngle(const ToolRecord& tool, double extra1);

}  // namespace kirvana

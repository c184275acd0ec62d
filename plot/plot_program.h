// The whole plot of a box: the sheet, the shapes laid over it (clamps, punching zones,
// reposition pads) and every entity of the drawing; and what a running machine adds to it.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "analysis/drawing_file.h"
#include "core/config.h"
#include "plot/plot_config.h"
#include "plot/plotter.h"
#include "plot/view.h"

namespace kirvana {

// What the plot of one box needs besides the machine.
struct PlotBoxInput {
    int Plot = 1;             // 0 the dialogue's drawing, 1 and 2 the active slots
    std::string DrawingPath;  // the `.drw`; a missing file shows the empty box
    double SheetX = 0;
    double SheetY = 0;
    std::array<float, 4> Clamps{};
    double BoxWidth = 0;  // the box's inner size in pixels
    double BoxHeight = 0;
    bool LimitsOn = false;  // "SHOW &LIMITS": punching zones and pads shown
    // Set: only this part of the view is drawn anew (its caller has clipped the canvas to it),
    // and what lies wholly outside it is left out; empty, the drawing isn't read at all.
    bool PartOnly = false;
    PlotRect Part;
};

// The pixels an outline may spread beyond its lines when smoothed, and a little more.
inline constexpr double SmoothingSpread = 3;

struct PlotResult {
    bool DrawingFound = false;
    std::int32_t Entities = 0;  // records handed to PlotEntity
};

// The view a redraw shows: fitted to the sheet, unless the operator changed it.
void PlaceView(PlotView& view, const MachineData& machine, const PlotBoxInput& input);

// `PlotProgram`: the view fitted unless the operator changed it, the box cleared, the sheet and
// its shapes placed, then records 2 to the count drawn in their background colours.
PlotResult PlotProgram(Plotter& plotter, PlotView& view, const MachineData& machine, const PlotBoxInput& input);

// `DrawSheet`: the old datum marker wiped; the sheet filled and outlined when visible; the
// datum marker when asked.
void DrawSheet(Canvas& canvas, const ColourTable& colours, bool visible, bool datum, double sizeX, double sizeY);

// `PlotBackground`: places the shapes over the box, each shown only when its data exist.
void PlotBackground(Canvas& canvas, const ColourTable& colours, const PlotView& view, const MachineData& machine,
                    const PlotBoxInput& input, bool show);

// `ShowCross`: the two cross lines round the point in the Plot Cursor colour; a size of 0 is 10.
void ShowCross(Canvas& canvas, const ColourTable& colours, PlotPoint at, double crossSize, bool visible);
// `ShowZoomRect`: the zoom rectangle between two corners in any order.
void ShowZoomRect(Canvas& canvas, const ColourTable& colours, PlotPoint a, PlotPoint b, bool visible);

// The hits the poll cycle found done, records of the open `.dr1`, drawn in the real-time colour
// and filled when `RealTimePunchFlag` says so. Returns the hits drawn.
int PlotDoneHits(Plotter& plotter, int plot, DrawingFile& hits, const std::vector<std::int32_t>& records,
                 const PlotConfig& config);

// The machine's head moved: the icon follows and the trail is drawn as Plot.cfg says. In
// profile mode `cutting` tells a cut from a move.
void PlotHeadPosition(Plotter& plotter, const PlotConfig& config, PlotPoint position, bool profileMode, bool cutting,
                      double iconSize);

}  // namespace kirvana

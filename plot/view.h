// The view of a plot box: which rectangle of the table it shows, its fit to the sheet, the zoom
// and pan of the operator, and the cursor with which the zoom and pan are chosen.
#pragma once

#include <cstdint>

#include "plot/canvas.h"

namespace kirvana {

// Per plot box.
struct PlotView {
    PlotPoint ViewTopLeft;      // table coordinates of the box's top left corner
    PlotPoint ViewBottomRight;  // and of its bottom right corner
    bool ViewChanged = false;   // zoomed or panned: a redraw keeps the view
    double MarkerStep = 0;      // a 64th of the view's width, worked out at every redraw
};

// What the fit needs: the box's inner size in pixels, the machine and the sheet.
struct FitInput {
    double BoxWidth = 0;
    double BoxHeight = 0;
    double XLimitMin = 0;
    double YLimitMin = 0;
    double SheetX = 0;
    double SheetY = 0;
    int MachineOrientation = 0;
};

// The box's width over its height, as absolute values; 1 for a box without size.
double BoxRatio(double boxWidth, double boxHeight);
// The view of the sheet and the travel below it, with 10 mm round, stretched to the box.
void FitView(PlotView& view, const FitInput& fit);
// The view between the low and high corners of a rectangle, the top by the orientation: with
// orientation 1 the larger Y is at the top.
void SetViewCorners(PlotView& view, double x1, double y1, double x2, double y2, int orientation);
// 1.5 times the width and height, the centre standing.
void ZoomOut(PlotView& view);
// A 64th of the view's width.
double ViewWidthStep(const PlotView& view);

// The cursor of the zoom and pan: the point, or the first corner, and the second corner.
struct PlotCursor {
    PlotPoint Points[2];
    int Active = 0;  // the point the keys move
    double CursorStep = 0;
    double CrossSize = 0;
};

// The cursor in the middle of the view, its step and cross a 64th of the view's width.
void EnterCursorMode(PlotCursor& cursor, const PlotView& view);

// What a cursor key did.
struct CursorKeyResult {
    bool CursorMoved = false;
    bool ShowZoomRect = false;  // the zoom rectangle stands between the two corners
    bool ViewSet = false;       // the view changed: redraw
    bool Finished = false;      // back to the graphics panel
};

// The path button's index in cursor mode (1 left, 2 right, 3 up, 4 down, 6 select) in view
// mode 1 (first corner), 2 (second corner) or 4 (pan). The view mode itself is the navigation's.
CursorKeyResult PlotCursorKey(PlotCursor& cursor, PlotView& view, std::int16_t viewMode, int key, double boxWidth,
                              double boxHeight, int orientation);

// The zoom to two corners: false, and the view as it was, when the corners make no rectangle.
bool ZoomToCorners(PlotView& view, PlotPoint a, PlotPoint b, double boxRatio, int orientation);
// The view moved so that its centre is the point, its size kept.
void PanTo(PlotView& view, PlotPoint centre);

}  // namespace kirvana

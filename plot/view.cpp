#include "plot/view.h"

#include <algorithm>
#include <cmath>

namespace kirvana {

double BoxRatio(double boxWidth, double boxHeight) {
    double w = std::abs(boxWidth), h = std::abs(boxHeight);
    if (!(w > 0) || !(h > 0) || !std::isfinite(w / h)) return 1;
    return w / h;
}

double ViewWidthStep(const PlotView& view) { return std::abs(view.ViewBottomRight.X - view.ViewTopLeft.X) / 64; }

void SetViewCorners(PlotView& view, double x1, double y1, double x2, double y2, int orientation) {
    view.ViewTopLeft.X = x1;
    view.ViewBottomRight.X = x2;
    if (orientation == 1) {
        view.ViewTopLeft.Y = y2;
        view.ViewBottomRight.Y = y1;
    } else {
        view.ViewTopLeft.Y = y1;
        view.ViewBottomRight.Y = y2;
    }
}

// Stretches the rectangle to the box's ratio from its low end: the height stands when the box
// is at least as wide as the rectangle, else the width.
static void StretchToBox(double x1, double& x2, double y1, double& y2, double boxRatio) {
    double width = x2 - x1, height = y2 - y1;
    if (boxRatio >= width / height)
        x2 = x1 + height * boxRatio;
    else
        y2 = y1 + width / boxRatio;
}

void FitView(PlotView& view, const FitInput& fit) {
    const double boxRatio = BoxRatio(fit.BoxWidth, fit.BoxHeight);
    double x1 = fit.XLimitMin - 10, x2 = std::abs(fit.XLimitMin) + fit.SheetX + 10;
    double y1 = fit.YLimitMin - 10, y2 = std::abs(fit.YLimitMin) + fit.SheetY + 10;
    if (x2 - x1 > 0 && y2 - y1 > 0) StretchToBox(x1, x2, y1, y2, boxRatio);
    SetViewCorners(view, x1, y1, x2, y2, fit.MachineOrientation);
}

void ZoomOut(PlotView& view) {
    double cx = (view.ViewTopLeft.X + view.ViewBottomRight.X) / 2;
    double cy = (view.ViewTopLeft.Y + view.ViewBottomRight.Y) / 2;
    double hx = (view.ViewBottomRight.X - view.ViewTopLeft.X) / 2 * 1.5;
    double hy = (view.ViewBottomRight.Y - view.ViewTopLeft.Y) / 2 * 1.5;
    view.ViewTopLeft = {cx - hx, cy - hy};
    view.ViewBottomRight = {cx + hx, cy + hy};
    view.ViewChanged = true;
}

void EnterCursorMode(PlotCursor& cursor, const PlotView& view) {
    PlotPoint middle{(view.ViewTopLeft.X + view.ViewBottomRight.X) / 2,
                     (view.ViewTopLeft.Y + view.ViewBottomRight.Y) / 2};
    cursor.Points[0] = middle;
    cursor.Points[1] = middle;
    cursor.Active = 0;
    cursor.CursorStep = ViewWidthStep(view);
    cursor.CrossSize = cursor.CursorStep;
}

bool ZoomToCorners(PlotView& view, PlotPoint a, PlotPoint b, double boxRatio, int orientation) {
    double x1 = std::min(a.X, b.X), x2 = std::max(a.X, b.X);
    double y1 = std::min(a.Y, b.Y), y2 = std::max(a.Y, b.Y);
    double width = x2 - x1, height = y2 - y1;
    // A side of 0 takes the other's value.
    if (width == 0) {
        width = height;
        x2 = x1 + width;
    }
    if (height == 0) {
        height = width;
        y2 = y1 + height;
    }
    if (!(width > 0) || !(height > 0)) return false;
    StretchToBox(x1, x2, y1, y2, boxRatio);
    SetViewCorners(view, x1, y1, x2, y2, orientation);
    view.ViewChanged = true;
    return true;
}

void PanTo(PlotView& view, PlotPoint centre) {
    double hx = (view.ViewBottomRight.X - view.ViewTopLeft.X) / 2;
    double hy = (view.ViewBottomRight.Y - view.ViewTopLeft.Y) / 2;
    view.ViewTopLeft = {centre.X - hx, centre.Y - hy};
    view.ViewBottomRight = {centre.X + hx, centre.Y + hy};
    view.ViewChanged = true;
}

// 1. Moves the active point a step, clipped to the view.
static bool MovePoint(PlotCursor& cursor, const PlotView& view, int key, int orientation) {
    PlotPoint& p = cursor.Points[cursor.Active];
    PlotPoint before = p;
    const double up = orientation == 1 ? cursor.CursorStep : -cursor.CursorStep;
    switch (key) {
        case 1:
            p.X -= cursor.CursorStep;
            break;
        case 2:
            p.X += cursor.CursorStep;
            break;
        case 3:
            p.Y += up;
            break;
        case 4:
            p.Y -= up;
            break;
        default:
            return false;
    }
    p.X = std::clamp(p.X, std::min(view.ViewTopLeft.X, view.ViewBottomRight.X),
                     std::max(view.ViewTopLeft.X, view.ViewBottomRight.X));
    p.Y = std::clamp(p.Y, std::min(view.ViewTopLeft.Y, view.ViewBottomRight.Y),
                     std::max(view.ViewTopLeft.Y, view.ViewBottomRight.Y));
    return !(p == before);
}

CursorKeyResult PlotCursorKey(PlotCursor& cursor, PlotView& view, std::int16_t viewMode, int key, double boxWidth,
                              double boxHeight, int orientation) {
    CursorKeyResult result;
    if (key >= 1 && key <= 4) {
        result.CursorMoved = MovePoint(cursor, view, key, orientation);
        result.ShowZoomRect = viewMode == 2;
        return result;
    }
    if (key != 6) return result;
    if (viewMode == 1) {
        // 2. The first corner stands; the second starts on it.
        cursor.Points[1] = cursor.Points[0];
        cursor.Active = 1;
        result.ShowZoomRect = true;
    } else if (viewMode == 2) {
        // 3. The zoom to the two corners.
        result.ViewSet =
            ZoomToCorners(view, cursor.Points[0], cursor.Points[1], BoxRatio(boxWidth, boxHeight), orientation);
        result.Finished = true;
    } else if (viewMode == 4) {
        // 4. The cursor is the new centre.
        PanTo(view, cursor.Points[0]);
        result.ViewSet = true;
        result.Finished = true;
    }
    return result;
}

}  // namespace kirvana

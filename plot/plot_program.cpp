#include "plot/plot_program.h"

#include <algorithm>
#include <cmath>

#include "core/number.h"
#include "core/paths.h"

namespace kirvana {

namespace {

// The clearance kept round a clamp by the punching zones, the common margin of a tool.
constexpr double ZoneMargin = 5;

Overlay Rect(double x1, double y1, double x2, double y2, std::int32_t colour, bool filled) {
    return {true, OverlayForm::Rectangle, x1, y1, x2, y2, colour, filled};
}

std::string DirectoryOf(const std::string& path) {
    std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

}  // namespace

void DrawSheet(Canvas& canvas, const ColourTable& colours, bool visible, bool datum, double sizeX, double sizeY) {
    auto marker = [&](std::int32_t colour) {
        canvas.Arc({0, 0}, 5, 0, 360, colour);
        canvas.Line({-5, 0}, {5, 0}, colour, LineStyle::Solid, 1);
        canvas.Line({0, -5}, {0, 5}, colour, LineStyle::Solid, 1);
    };
    // 1. The datum marker of an earlier drawing wiped out.
    marker(colours[ColourItem::PlotBackground]);
    // 2. The sheet.
    if (visible) {
        canvas.FillRect({0, 0}, {sizeX, sizeY}, colours[ColourItem::PlotBackground]);
        canvas.FillRect({0, 0}, {sizeX, sizeY}, colours[ColourItem::SheetFill]);
        canvas.Polygon({{0, 0}, {sizeX, 0}, {sizeX, sizeY}, {0, sizeY}}, colours[ColourItem::SheetBoundry], false);
    }
    // 3. The datum marker.
    if (datum) marker(colours[ColourItem::DatumMarker]);
}

void PlotBackground(Canvas& canvas, const ColourTable& colours, const PlotView& view, const MachineData& machine,
                    const PlotBoxInput& input, bool show) {
    for (int id = static_cast<int>(OverlayId::SheetRect); id <= static_cast<int>(OverlayId::PadCirc2); ++id)
        canvas.SetOverlay(static_cast<OverlayId>(id), Overlay{});
    if (!show) return;
    // A view of all zeros hides everything.
    if (view.ViewTopLeft.X == 0 && view.ViewTopLeft.Y == 0 && view.ViewBottomRight.X == 0 &&
        view.ViewBottomRight.Y == 0)
        return;
    // The shapes need a sheet.
    if (!(input.SheetX > 0) || !(input.SheetY > 0)) return;
    canvas.SetOverlay(OverlayId::SheetRect,
                      Rect(0, 0, input.SheetX, input.SheetY, colours[ColourItem::SheetBoundry], false));
    if (machine.ClampCount <= 0) return;
    // Clamps: centred on their X positions along the sheet's edge at Y 0, their depth into it.
    const double width = machine.ClampWidth, depth = machine.ClampDepth;
    for (int i = 0; i < 4; ++i) {
        const double at = input.Clamps[static_cast<std::size_t>(i)];
        if (!(at >= 1) || !std::isfinite(at)) continue;
        canvas.SetOverlay(static_cast<OverlayId>(static_cast<int>(OverlayId::ClampRect1) + i),
                          Rect(at - width / 2, 0, at + width / 2, depth, colours[ColourItem::Clamps], true));
        // The punching zone round the clamp: where the punch must not come, the clamp and a margin.
        if (input.LimitsOn && i < 4)
            canvas.SetOverlay(static_cast<OverlayId>(static_cast<int>(OverlayId::ZoneRect1) + i),
                              Rect(at - width / 2 - ZoneMargin, -ZoneMargin, at + width / 2 + ZoneMargin,
                                   depth + ZoneMargin, colours[ColourItem::PunchingZones], false));
    }
    if (!input.LimitsOn) return;
    // The travel of the punch over the table.
    const MachineTravel& t = machine.Travel;
    canvas.SetOverlay(OverlayId::ZoneRect0, Rect(t.XLimitMin, t.YLimitMin, t.XLimitMax, t.YLimitMax,
                                                 colours[ColourItem::PunchingZones], false));
    // The reposition pads: either side of the middle of the X travel, a clamp's width apart,
    // beyond the clamps' depth.
    const double middle = (t.XLimitMin + t.XLimitMax) / 2;
    const double radius = std::max(width / 4, 5.0);
    const double padY = depth + radius + ZoneMargin;
    const std::int32_t pad = colours[ColourItem::RepositionPads];
    canvas.SetOverlay(OverlayId::PadCirc1, {true, OverlayForm::Circle, middle - width, padY, radius, 0, pad, true});
    canvas.SetOverlay(OverlayId::PadCirc2, {true, OverlayForm::Circle, middle + width, padY, radius, 0, pad, true});
}

void PlaceView(PlotView& view, const MachineData& machine, const PlotBoxInput& input) {
    if (!view.ViewChanged)
        FitView(view, {input.BoxWidth, input.BoxHeight, machine.Travel.XLimitMin, machine.Travel.YLimitMin,
                       input.SheetX, input.SheetY, machine.MachineOrientation});
}

PlotResult PlotProgram(Plotter& plotter, PlotView& view, const MachineData& machine, const PlotBoxInput& input) {
    PlotResult result;
    Canvas& canvas = plotter.Surface();
    const ColourTable& colours = plotter.Colours();
    plotter.ResetRunData();
    // 2. The box blanked: sheet and shapes hidden.
    DrawSheet(canvas, colours, false, false, input.SheetX, input.SheetY);
    PlotBackground(canvas, colours, view, machine, input, false);
    // 3. The fit, unless the operator zoomed or panned.
    PlaceView(view, machine, input);
    // 4. The box's coordinates are table millimetres from here on; what was drawn goes.
    canvas.SetView(view.ViewTopLeft, view.ViewBottomRight);
    canvas.FillRect(view.ViewTopLeft, view.ViewBottomRight, colours[ColourItem::PlotBackground]);
    // 5. The marker step.
    view.MarkerStep = ViewWidthStep(view);
    // What lies wholly outside the view, or outside the part drawn anew, changes no pixel of it
    // and is left out. The view's own area is set back at the end, for the hits of a run.
    const double spreadX =
        SmoothingSpread * std::abs(view.ViewBottomRight.X - view.ViewTopLeft.X) / std::max(input.BoxWidth, 1.0);
    const double spreadY =
        SmoothingSpread * std::abs(view.ViewBottomRight.Y - view.ViewTopLeft.Y) / std::max(input.BoxHeight, 1.0);
    PlotRect whole = RectBetween(view.ViewTopLeft, view.ViewBottomRight);
    whole = {whole.X1 - spreadX, whole.Y1 - spreadY, whole.X2 + spreadX, whole.Y2 + spreadY};
    const bool finiteView = std::isfinite(whole.X1 + whole.Y1 + whole.X2 + whole.Y2);
    if (finiteView)
        plotter.SetDrawArea(whole);
    else
        plotter.ClearDrawArea();
    // 6. The drawing, when there is one.
    if (input.DrawingPath.empty() || !FileExists(input.DrawingPath)) return result;
    DrawingFile drawing;
    if (!drawing.Open(input.DrawingPath, true)) return result;
    result.DrawingFound = true;
    DrawSheet(canvas, colours, true, machine.ClampCount == 0, input.SheetX, input.SheetY);
    PlotBackground(canvas, colours, view, machine, input, true);
    plotter.SetPartDir(DirectoryOf(input.DrawingPath));
    if (input.PartOnly) {
        if (input.Part.Empty()) return result;
        plotter.SetDrawArea(input.Part);
    }
    const std::int32_t last = drawing.LastReadable();
    EntityRec rec;
    for (std::int32_t n = 2; n <= last; ++n) {
        if (!drawing.Get(n, rec)) break;
        plotter.PlotEntity(input.Plot, rec, ColourMode::Background, false);
        ++result.Entities;
    }
    drawing.Close();
    if (finiteView)
        plotter.SetDrawArea(whole);
    else
        plotter.ClearDrawArea();
    return result;
}

void ShowCross(Canvas& canvas, const ColourTable& colours, PlotPoint at, double crossSize, bool visible) {
    double size = std::abs(crossSize);
    if (size == 0 || !std::isfinite(size)) size = 10;
    const double half = size / 2;
    const std::int32_t colour = colours[ColourItem::PlotCursor];
    canvas.SetOverlay(OverlayId::CrossLine1,
                      {visible, OverlayForm::Line, at.X - half, at.Y, at.X + half, at.Y, colour, false});
    canvas.SetOverlay(OverlayId::CrossLine2,
                      {visible, OverlayForm::Line, at.X, at.Y - half, at.X, at.Y + half, colour, false});
}

void ShowZoomRect(Canvas& canvas, const ColourTable& colours, PlotPoint a, PlotPoint b, bool visible) {
    Overlay rect = Rect(std::min(a.X, b.X), std::min(a.Y, b.Y), std::max(a.X, b.X), std::max(a.Y, b.Y),
                        colours[ColourItem::PlotCursor], false);
    rect.Visible = visible;
    canvas.SetOverlay(OverlayId::ZoomRect, rect);
}

int PlotDoneHits(Plotter& plotter, int plot, DrawingFile& hits, const std::vector<std::int32_t>& records,
                 const PlotConfig& config) {
    int drawn = 0;
    EntityRec rec;
    for (std::int32_t number : records) {
        if (!hits.Get(number, rec)) continue;
        plotter.PlotEntity(plot, rec, ColourMode::RealTime, config.RealTimePunchFlag);
        ++drawn;
    }
    return drawn;
}

void PlotHeadPosition(Plotter& plotter, const PlotConfig& config, PlotPoint position, bool profileMode, bool cutting,
                      double iconSize) {
    const ColourTable& colours = plotter.Colours();
    auto styleOf = [](int style) { return style == 2 ? LineStyle::Dotted : LineStyle::Solid; };
    if (!profileMode) {
        plotter.PlotIcon(position, iconSize, colours[ColourItem::PunchModeMovementIcon], config.PunchIconOn);
        if (config.PunchTrailStyle >= 0)
            plotter.PlotTrail(position, colours[ColourItem::PunchModeRealTimeMovement], styleOf(config.PunchTrailStyle),
                              1);
        else
            plotter.MoveTrailTo(position);
        return;
    }
    plotter.PlotIcon(position, iconSize, colours[ColourItem::ProfileModeMovementIcon], config.ProfileIconOn);
    if (cutting) {
        const double width = RoundHalfEven(config.ProfileTrailWidth, 0);
        plotter.PlotTrail(position, colours[ColourItem::ProfileModeRealTimeProfiling], LineStyle::Solid,
                          static_cast<int>(width));
    } else if (config.ProfileTrailStyle >= 0) {
        plotter.PlotTrail(position, colours[ColourItem::ProfileModeRealTimeMovement], styleOf(config.ProfileTrailStyle),
                          1);
    } else {
        plotter.MoveTrailTo(position);
    }
}

}  // namespace kirvana

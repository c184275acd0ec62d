// A canvas that keeps what is drawn on it instead of showing it: the tests read its calls back,
// and with `Keep` false it only counts them, as a benchmark's canvas of no cost of its own.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "plot/canvas.h"

namespace kirvana {

class RecordingCanvas : public Canvas {
public:
    struct LineCall {
        PlotPoint From, To;
        std::int32_t Colour = 0;
        LineStyle Style = LineStyle::Solid;
        int Width = 1;
    };
    struct ArcCall {
        PlotPoint Centre;
        double Radius = 0, Start = 0, End = 0;
        std::int32_t Colour = 0;
    };
    struct RectCall {
        PlotPoint A, B;
        std::int32_t Colour = 0;
    };
    struct PolygonCall {
        std::vector<PlotPoint> Points;
        std::int32_t Colour = 0;
        bool Filled = false;
    };
    struct OutlineCall {
        std::vector<OutlinePiece> Pieces;
        std::int32_t Colour = 0;
    };

    bool Keep = true;
    PlotPoint TopLeft, BottomRight;
    std::vector<LineCall> Lines;
    std::vector<ArcCall> Arcs;
    std::vector<RectCall> Rects;
    std::vector<PolygonCall> Polygons;
    std::vector<OutlineCall> Outlines;
    std::array<Overlay, OverlayCount> Overlays{};
    long LineCount = 0, ArcCount = 0, OutlineCount = 0;

    void Forget() {
        Lines.clear();
        Arcs.clear();
        Rects.clear();
        Polygons.clear();
        Outlines.clear();
        LineCount = ArcCount = OutlineCount = 0;
    }

    void SetView(PlotPoint topLeft, PlotPoint bottomRight) override {
        TopLeft = topLeft;
        BottomRight = bottomRight;
    }
    void Line(PlotPoint from, PlotPoint to, std::int32_t colour, LineStyle style, int width) override {
        ++LineCount;
        if (Keep) Lines.push_back({from, to, colour, style, width});
    }
    void Arc(PlotPoint centre, double radius, double start, double end, std::int32_t colour) override {
        ++ArcCount;
        if (Keep) Arcs.push_back({centre, radius, start, end, colour});
    }
    void FillRect(PlotPoint a, PlotPoint b, std::int32_t colour) override {
        if (Keep) Rects.push_back({a, b, colour});
    }
    void Polygon(const std::vector<PlotPoint>& points, std::int32_t colour, bool filled) override {
        if (Keep) Polygons.push_back({points, colour, filled});
    }
    void FillOutline(const std::vector<OutlinePiece>& pieces, std::int32_t colour) override {
        ++OutlineCount;
        if (Keep) Outlines.push_back({pieces, colour});
    }
    void SetOverlay(OverlayId id, const Overlay& overlay) override { Overlays[static_cast<int>(id)] = overlay; }
    const Overlay& OverlayOf(OverlayId id) const { return Overlays[static_cast<int>(id)]; }

    // The box round every line and arc kept.
    struct Bounds {
        double X1 = 1e300, Y1 = 1e300, X2 = -1e300, Y2 = -1e300;
        void Add(double x, double y) {
            X1 = std::min(X1, x), Y1 = std::min(Y1, y), X2 = std::max(X2, x), Y2 = std::max(Y2, y);
        }
    };
    Bounds DrawnBounds() const {
        Bounds b;
        for (const LineCall& l : Lines) b.Add(l.From.X, l.From.Y), b.Add(l.To.X, l.To.Y);
        for (const ArcCall& a : Arcs) {
            auto at = [&](double degrees) {
                double r = degrees * 3.14159265358979323846 / 180;
                b.Add(a.Centre.X + a.Radius * std::cos(r), a.Centre.Y + a.Radius * std::sin(r));
            };
            at(a.Start);
            at(a.End);
            // The quarter points the arc passes.
            for (double q = std::ceil(a.Start / 90) * 90; q <= a.End; q += 90) at(q);
        }
        return b;
    }
};

}  // namespace kirvana

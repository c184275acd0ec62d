// The plot's Canvas painted with Qt: onto the image a PlotBox shows, a picture file or an SVG.
// Table millimetres are mapped to the device's pixels by the view; the shapes laid over the box
// are kept apart and painted on top by PaintOverlays.
#pragma once

#include <QLineF>
#include <QPaintDevice>
#include <QPainter>
#include <QSize>
#include <array>
#include <vector>

#include "plot/canvas.h"
#include "screens/hit_stamps.h"

namespace kirvana {

// How table millimetres become pixels: pixel = millimetres x scale - origin. The origin is the
// view's corner on the whole pixels of its scale, so that two views of one scale see the table on
// the same pixel grid, a whole number of pixels apart: a panned picture can be moved and be the
// same as one drawn anew. (The picture stands under a pixel off the exact corner.)
struct PixelMapping {
    double ScaleX = 1, ScaleY = 1;
    double OriginX = 0, OriginY = 0;
};
PixelMapping MappingOf(PlotPoint topLeft, PlotPoint bottomRight, QSize size);

class PlotCanvas : public Canvas {
public:
    PlotCanvas() = default;
    ~PlotCanvas() override;
    PlotCanvas(const PlotCanvas&) = delete;
    PlotCanvas& operator=(const PlotCanvas&) = delete;

    // The device drawn on from the next call on, of this size in pixels; nullptr for none.
    void SetDevice(QPaintDevice* device, QSize size);
    // Only the pixels inside the rectangle are painted until the next SetDevice; an empty
    // rectangle paints everywhere.
    void SetClip(QRect pixels);
    // Smoothed (antialiased) lines: finer, and some times slower.
    void SetSmooth(bool smooth) {
        Finish();
        smooth_ = smooth;
    }
    // Ends the painting on the device, so that it can be shown or saved.
    void Finish();
    // The shapes over the box, painted with the painter of whoever shows the box.
    void PaintOverlays(QPainter& painter) const;
    // The table point at a pixel of the device, and back.
    QPointF ToPixel(PlotPoint p) const;
    PlotPoint ToTable(QPointF pixel) const;
    const PixelMapping& Mapping() const { return map_; }
    // Drawing calls made since the canvas was made: tells whether a picture was drawn over.
    std::int64_t DrawCalls() const { return drawCalls_; }
    // Hits placed from a kept stamp, and stamps painted: a measure for tests and benchmarks.
    std::int64_t StampsPlaced() const { return stampsPlaced_; }
    std::int64_t StampsMade() const { return stampsMade_; }

    void SetView(PlotPoint topLeft, PlotPoint bottomRight) override;
    void Line(PlotPoint from, PlotPoint to, std::int32_t colour, LineStyle style, int width) override;
    void Arc(PlotPoint centre, double radius, double startAngle, double endAngle, std::int32_t colour) override;
    void FillRect(PlotPoint corner1, PlotPoint corner2, std::int32_t colour) override;
    void Polygon(const std::vector<PlotPoint>& points, std::int32_t colour, bool filled) override;
    void FillOutline(const std::vector<OutlinePiece>& pieces, std::int32_t colour) override;
    void SetOverlay(OverlayId id, const Overlay& overlay) override;
    // On an image, a hit's outline is painted once for each place inside a pixel and then copied.
    bool BeginHit(const HitShape& shape, PlotPoint position, std::int32_t colour) override;
    void EndHit() override;
    const Overlay& OverlayOf(OverlayId id) const { return overlays_[static_cast<std::size_t>(id)]; }

private:
    // The painter of the device, or of the stamp while one is being painted.
    QPainter* Painter();
    QPainter& Active() { return making_ ? stampPainter_ : painter_; }
    // A stamp is painted in white: its alpha is the coverage the hit's colour is blended by.
    std::int32_t Ink(std::int32_t colour) const { return making_ ? 0xFFFFFF : colour; }
    // The device as an image of 32-bit pixels that stamps can be blended into; null otherwise.
    QImage* StampTarget() const;
    // Ends the painting of a stamp, keeping it when `keep`, and goes back to the device.
    void EndStamp(bool keep);
    void Pen(std::int32_t colour, LineStyle style, int width);
    // Lines and arcs wait in one batch of segments while the pen stays; any other drawing, a
    // change of pen and Finish paint the batch with one call.
    void Queue(std::int32_t colour, LineStyle style, int width);
    void Flush();
    // The arc's box in pixels and its start and span in Qt's 16ths of a degree.
    bool ArcGeometry(PlotPoint centre, double radius, double start, double end, QRectF& box, int& qtStart,
                     int& qtSpan) const;

    QPaintDevice* device_ = nullptr;
    QSize size_;
    QPainter painter_;
    PixelMapping map_;
    QRect clip_;
    std::int64_t drawCalls_ = 0;
    std::int64_t stampsPlaced_ = 0;
    std::int64_t stampsMade_ = 0;
    std::int32_t penColour_ = -1;
    LineStyle penStyle_ = LineStyle::Solid;
    int penWidth_ = -1;
    bool smooth_ = true;
    std::vector<QLineF> batch_;
    std::array<Overlay, OverlayCount> overlays_{};
    HitStamps stamps_;
    HitStamp* making_ = nullptr;  // the stamp being painted
    QImage stampImage_;
    QPainter stampPainter_;
    PixelMapping deviceMap_;  // the device's mapping while a stamp is painted
    int stampAnchor_ = 0;     // the stamp picture's pixel the hit stands in, on both axes
    QPoint hitPixel_;
    std::int32_t hitColour_ = 0;
};

// The 24-bit colour, blue in the high byte, as Qt's colour.
QColor PlotColour(std::int32_t colour);

}  // namespace kirvana

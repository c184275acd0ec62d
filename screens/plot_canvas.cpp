#include "screens/plot_canvas.h"

#include <QPainterPath>
#include <cmath>

namespace kirvana {

namespace {

// Pixels beyond this are nonsense from a damaged record, not something to paint.
constexpr double FarPixel = 1e6;

// Outlines reaching farther than this many pixels from their hit are painted each time: few hits
// of that size fit in a picture, and their stamps would be large.
constexpr double MaxStampReach = 60;

bool Reasonable(QPointF p) {
    return std::isfinite(p.x()) && std::isfinite(p.y()) && std::abs(p.x()) < FarPixel && std::abs(p.y()) < FarPixel;
}

}  // namespace

PixelMapping MappingOf(PlotPoint topLeft, PlotPoint bottomRight, QSize size) {
    PixelMapping map;
    const double width = bottomRight.X - topLeft.X, height = bottomRight.Y - topLeft.Y;
    map.ScaleX = width != 0 && std::isfinite(width) ? size.width() / width : 1;
    map.ScaleY = height != 0 && std::isfinite(height) ? size.height() / height : 1;
    // The corner on whole pixels where it can be; a corner beyond any pixel is left as it is.
    auto origin = [](double corner) {
        return std::isfinite(corner) && std::abs(corner) < 1e15 ? std::floor(corner) : corner;
    };
    map.OriginX = origin(topLeft.X * map.ScaleX);
    map.OriginY = origin(topLeft.Y * map.ScaleY);
    return map;
}

QColor PlotColour(std::int32_t colour) { return QColor(colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF); }

PlotCanvas::~PlotCanvas() { Finish(); }

void PlotCanvas::SetDevice(QPaintDevice* device, QSize size) {
    Finish();
    device_ = device;
    size_ = size;
    clip_ = QRect();
}

void PlotCanvas::SetClip(QRect pixels) {
    Flush();
    clip_ = pixels;
    if (!painter_.isActive()) return;
    if (clip_.isEmpty())
        painter_.setClipping(false);
    else
        painter_.setClipRect(clip_);
}

void PlotCanvas::Finish() {
    if (making_) EndStamp(false);
    Flush();
    if (painter_.isActive()) painter_.end();
    penColour_ = -1;
}

QPainter* PlotCanvas::Painter() {
    if (making_) {
        if (!stampPainter_.isActive()) {
            if (!stampPainter_.begin(&stampImage_)) return nullptr;
            stampPainter_.setRenderHint(QPainter::Antialiasing, smooth_);
            penColour_ = -1;
        }
        return &stampPainter_;
    }
    if (!device_) return nullptr;
    if (!painter_.isActive()) {
        if (!painter_.begin(device_)) return nullptr;
        painter_.setRenderHint(QPainter::Antialiasing, smooth_);
        if (!clip_.isEmpty()) painter_.setClipRect(clip_);
        penColour_ = -1;
    }
    return &painter_;
}

void PlotCanvas::Queue(std::int32_t colour, LineStyle style, int width) {
    if (colour == penColour_ && style == penStyle_ && width == penWidth_) return;
    Flush();
    Pen(colour, style, width);
}

void PlotCanvas::Flush() {
    if (batch_.empty()) return;
    if (Active().isActive()) Active().drawLines(batch_.data(), static_cast<int>(batch_.size()));
    batch_.clear();
}

void PlotCanvas::Pen(std::int32_t colour, LineStyle style, int width) {
    if (colour == penColour_ && style == penStyle_ && width == penWidth_) return;
    QPen pen(PlotColour(colour));
    pen.setWidth(std::max(width, 1) == 1 ? 0 : width);  // 0: a cosmetic line of one pixel
    pen.setStyle(style == LineStyle::Dotted ? Qt::DotLine : Qt::SolidLine);
    Active().setPen(pen);
    penColour_ = colour;
    penStyle_ = style;
    penWidth_ = width;
}

QPointF PlotCanvas::ToPixel(PlotPoint p) const {
    return {p.X * map_.ScaleX - map_.OriginX, p.Y * map_.ScaleY - map_.OriginY};
}

PlotPoint PlotCanvas::ToTable(QPointF pixel) const {
    return {(pixel.x() + map_.OriginX) / map_.ScaleX, (pixel.y() + map_.OriginY) / map_.ScaleY};
}

void PlotCanvas::SetView(PlotPoint topLeft, PlotPoint bottomRight) { map_ = MappingOf(topLeft, bottomRight, size_); }

void PlotCanvas::Line(PlotPoint from, PlotPoint to, std::int32_t colour, LineStyle style, int width) {
    ++drawCalls_;
    QPointF a = ToPixel(from), b = ToPixel(to);
    if (!Reasonable(a) || !Reasonable(b)) return;
    if (!Painter()) return;
    Queue(Ink(colour), style, width);
    batch_.emplace_back(a, b);
}

bool PlotCanvas::ArcGeometry(PlotPoint centre, double radius, double start, double end, QRectF& box, int& qtStart,
                             int& qtSpan) const {
    QPointF c = ToPixel(centre);
    const double rx = std::abs(radius * map_.ScaleX), ry = std::abs(radius * map_.ScaleY);
    if (!Reasonable(c) || !std::isfinite(rx) || !std::isfinite(ry) || rx > FarPixel || ry > FarPixel) return false;
    if (!std::isfinite(start) || !std::isfinite(end) || std::abs(start) > 1e6 || std::abs(end) > 1e6) return false;
    box = QRectF(c.x() - rx, c.y() - ry, 2 * rx, 2 * ry);
    const double span = std::min(end - start, 360.0);
    // Qt turns counter-clockwise as seen; with Y growing down the screen a table angle is seen
    // mirrored.
    const bool yUp = map_.ScaleY < 0;
    const double from = yUp ? start : -(start + span);
    qtStart = static_cast<int>(std::lround(from * 16));
    qtSpan = static_cast<int>(std::lround(span * 16));
    return true;
}

void PlotCanvas::Arc(PlotPoint centre, double radius, double startAngle, double endAngle, std::int32_t colour) {
    ++drawCalls_;
    QRectF box;
    int qtStart = 0, qtSpan = 0;
    if (!ArcGeometry(centre, radius, startAngle, endAngle, box, qtStart, qtSpan)) return;
    if (!Painter()) return;
    Queue(Ink(colour), LineStyle::Solid, 1);
    // The arc as a polyline whose chords stray from it by under a quarter pixel.
    const double rx = box.width() / 2, ry = box.height() / 2;
    const QPointF c = box.center();
    const double r = std::max(rx, ry);
    const double span = qtSpan / 16.0 * M_PI / 180, from = qtStart / 16.0 * M_PI / 180;
    const double step = r > 0.25 ? 2 * std::acos(1 - 0.25 / r) : M_PI / 2;
    const int pieces = std::clamp(static_cast<int>(std::ceil(std::abs(span) / step)), 1, 720);
    // Qt's angles turn counter-clockwise on the screen, whose Y grows downwards.
    auto at = [&](int k) {
        const double a = from + span * k / pieces;
        return QPointF(c.x() + rx * std::cos(a), c.y() - ry * std::sin(a));
    };
    QPointF last = at(0);
    for (int k = 1; k <= pieces; ++k) {
        QPointF next = at(k);
        batch_.emplace_back(last, next);
        last = next;
    }
}

void PlotCanvas::FillRect(PlotPoint corner1, PlotPoint corner2, std::int32_t colour) {
    ++drawCalls_;
    QPointF a = ToPixel(corner1), b = ToPixel(corner2);
    auto clamp = [](QPointF q) {
        return QPointF(std::clamp(q.x(), -FarPixel, FarPixel), std::clamp(q.y(), -FarPixel, FarPixel));
    };
    if (!std::isfinite(a.x() + a.y() + b.x() + b.y())) return;
    QPainter* p = Painter();
    if (!p) return;
    Flush();
    p->fillRect(QRectF(clamp(a), clamp(b)).normalized(), PlotColour(Ink(colour)));
}

void PlotCanvas::Polygon(const std::vector<PlotPoint>& points, std::int32_t colour, bool filled) {
    ++drawCalls_;
    QPolygonF polygon;
    for (const PlotPoint& point : points) {
        QPointF q = ToPixel(point);
        if (!Reasonable(q)) return;
        polygon << q;
    }
    QPainter* p = Painter();
    if (!p) return;
    Flush();
    Pen(Ink(colour), LineStyle::Solid, 1);
    p->setBrush(filled ? QBrush(PlotColour(Ink(colour))) : Qt::NoBrush);
    p->drawPolygon(polygon);
    p->setBrush(Qt::NoBrush);
}

void PlotCanvas::FillOutline(const std::vector<OutlinePiece>& pieces, std::int32_t colour) {
    ++drawCalls_;
    QPainterPath path;
    bool started = false;
    for (const OutlinePiece& piece : pieces) {
        if (!piece.IsArc) {
            QPointF a = ToPixel({piece.X1, piece.Y1}), b = ToPixel({piece.X2, piece.Y2});
            if (!Reasonable(a) || !Reasonable(b)) return;
            if (!started) path.moveTo(a);
            started = true;
            path.lineTo(b);
            continue;
        }
        QRectF box;
        int qtStart = 0, qtSpan = 0;
        if (!ArcGeometry({piece.X1, piece.Y1}, piece.Radius, piece.StartAngle, piece.EndAngle, box, qtStart, qtSpan))
            return;
        // An arc is stored counter-clockwise; the outline may pass it from its far end.
        auto at = [&](double degrees) {
            const double r = degrees * M_PI / 180;
            return ToPixel({piece.X1 + piece.Radius * std::cos(r), piece.Y1 + piece.Radius * std::sin(r)});
        };
        QPointF first = at(piece.StartAngle), last = at(piece.EndAngle);
        const double start = qtStart / 16.0, span = qtSpan / 16.0;
        QPointF qtFirst = map_.ScaleY < 0 ? first : last;  // where Qt's sweep begins
        QPointF qtLast = map_.ScaleY < 0 ? last : first;
        if (!started) path.moveTo(qtFirst);
        started = true;
        QPointF now = path.currentPosition();
        const double toFirst = QLineF(now, qtFirst).length(), toLast = QLineF(now, qtLast).length();
        if (toLast < toFirst)
            path.arcTo(box, start + span, -span);
        else
            path.arcTo(box, start, span);
    }
    if (!started) return;
    path.closeSubpath();
    QPainter* p = Painter();
    if (!p) return;
    Flush();
    p->fillPath(path, PlotColour(Ink(colour)));
}

void PlotCanvas::SetOverlay(OverlayId id, const Overlay& overlay) { overlays_[static_cast<std::size_t>(id)] = overlay; }

QImage* PlotCanvas::StampTarget() const {
    if (!device_ || device_->devType() != QInternal::Image) return nullptr;
    auto* image = static_cast<QImage*>(device_);
    const QImage::Format format = image->format();
    return format == QImage::Format_RGB32 || format == QImage::Format_ARGB32_Premultiplied ? image : nullptr;
}

bool PlotCanvas::BeginHit(const HitShape& shape, PlotPoint position, std::int32_t colour) {
    QImage* image = StampTarget();
    if (!image || making_) return false;
    const double reach = shape.Reach * std::max(std::abs(map_.ScaleX), std::abs(map_.ScaleY));
    if (!(shape.Reach > 0) || !(reach <= MaxStampReach)) return false;
    const QPointF at = ToPixel(position);
    if (!Reasonable(at)) return false;
    const double left = std::floor(at.x()), top = std::floor(at.y());
    auto place = [](double fraction) {
        return std::clamp(static_cast<int>(fraction * StampPhases), 0, StampPhases - 1);
    };
    const int placeX = place(at.x() - left), placeY = place(at.y() - top);
    stamps_.Use(map_.ScaleX, map_.ScaleY, smooth_);
    HitStamp& stamp = stamps_.Of(shape, placeX, placeY);
    hitPixel_ = QPoint(static_cast<int>(left), static_cast<int>(top));
    hitColour_ = colour;
    ++drawCalls_;
    Flush();
    if (stamp.Made) {
        ++stampsPlaced_;
        PlaceStamp(stamp, *image, clip_.isEmpty() ? image->rect() : clip_, hitPixel_.x(), hitPixel_.y(),
                   PlotColour(colour).rgb());
        return true;
    }
    // The calls that follow paint the stamp, on a picture large enough for the outline and its
    // smoothing, with the hit at the middle of its place inside the pixel (anchor, anchor).
    stampAnchor_ = static_cast<int>(std::ceil(reach)) + 3;
    const int side = 2 * stampAnchor_ + 1;
    if (stampImage_.size() != QSize(side, side)) stampImage_ = QImage(side, side, QImage::Format_ARGB32_Premultiplied);
    stampImage_.fill(Qt::transparent);
    deviceMap_ = map_;
    map_.OriginX += at.x() - (stampAnchor_ + (placeX + 0.5) / StampPhases);
    map_.OriginY += at.y() - (stampAnchor_ + (placeY + 0.5) / StampPhases);
    making_ = &stamp;
    penColour_ = -1;
    return false;
}

void PlotCanvas::EndHit() {
    if (!making_) return;
    HitStamp& stamp = *making_;
    EndStamp(true);
    if (QImage* image = StampTarget())
        PlaceStamp(stamp, *image, clip_.isEmpty() ? image->rect() : clip_, hitPixel_.x(), hitPixel_.y(),
                   PlotColour(hitColour_).rgb());
}

void PlotCanvas::EndStamp(bool keep) {
    Flush();
    if (stampPainter_.isActive()) stampPainter_.end();
    if (keep) {
        stamps_.Keep(*making_, StampOf(stampImage_, stampAnchor_, stampAnchor_));
        ++stampsMade_;
    }
    making_ = nullptr;
    map_ = deviceMap_;
    penColour_ = -1;
}

void PlotCanvas::PaintOverlays(QPainter& painter) const {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, true);
    for (const Overlay& o : overlays_) {
        if (!o.Visible) continue;
        QColor colour = PlotColour(o.Colour);
        QPen pen(colour);
        pen.setWidth(2);
        painter.setPen(pen);
        painter.setBrush(o.Filled ? QBrush(colour) : Qt::NoBrush);
        QPointF a = ToPixel({o.X1, o.Y1});
        switch (o.Form) {
            case OverlayForm::Rectangle: {
                QPointF b = ToPixel({o.X2, o.Y2});
                if (Reasonable(a) && Reasonable(b)) painter.drawRect(QRectF(a, b).normalized());
                break;
            }
            case OverlayForm::Circle: {
                const double rx = std::abs(o.X2 * map_.ScaleX), ry = std::abs(o.X2 * map_.ScaleY);
                if (Reasonable(a) && rx < FarPixel && ry < FarPixel) painter.drawEllipse(a, rx, ry);
                break;
            }
            case OverlayForm::Line: {
                QPointF b = ToPixel({o.X2, o.Y2});
                if (Reasonable(a) && Reasonable(b)) painter.drawLine(a, b);
                break;
            }
        }
    }
    painter.restore();
}

}  // namespace kirvana

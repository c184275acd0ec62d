#include "screens/plot_picture.h"

#include <QPainter>
#include <cmath>
#include <system_error>

namespace kirvana {

namespace {

// How far from a picture's edge the clipping of a line can change its pixels.
constexpr int EdgeBand = 32;

bool SameScale(double a, double b) { return std::abs(a - b) <= 1e-12 * std::abs(a); }

// An origin that stands on a whole pixel: a picture at it can be moved pixel for pixel.
bool Whole(double origin) { return std::isfinite(origin) && std::abs(origin) < 1e15 && std::floor(origin) == origin; }

}  // namespace

bool PlotPicture::Source::operator==(const Source& other) const {
    return Plot == other.Plot && DrawingPath == other.DrawingPath && Written == other.Written && Bytes == other.Bytes &&
           SheetX == other.SheetX && SheetY == other.SheetY && Clamps == other.Clamps && Datum == other.Datum &&
           Colours.Values == other.Colours.Values;
}

PlotPicture::PlotPicture(const ColourTable& colours, const std::string& toolsDir)
    : colours_(colours), plotter_(canvas_, colours, toolsDir) {}

PlotPicture::Source PlotPicture::SourceOf(const MachineData& machine, const PlotBoxInput& input) const {
    Source source{input.Plot,   input.DrawingPath,       {},      0, input.SheetX, input.SheetY,
                  input.Clamps, machine.ClampCount == 0, colours_};
    std::error_code error;
    if (!input.DrawingPath.empty()) {
        source.Written = std::filesystem::last_write_time(input.DrawingPath, error);
        source.Bytes = std::filesystem::file_size(input.DrawingPath, error);
        if (error) source.Bytes = 0;
    }
    return source;
}

PlotResult PlotPicture::Draw(const MachineData& machine, PlotBoxInput input, QSize size) {
    size = size.expandedTo(QSize(1, 1));
    input.BoxWidth = size.width();
    input.BoxHeight = size.height();
    lastMoved_ = false;
    PlotView next = view_;
    PlaceView(next, machine, input);
    const PixelMapping map = MappingOf(next.ViewTopLeft, next.ViewBottomRight, size);
    const Source source = SourceOf(machine, input);
    const bool movable = kept_ && canvas_.DrawCalls() == drawCallsAfter_ && image_.size() == size &&
                         source == source_ && SameScale(map.ScaleX, mapping_.ScaleX) &&
                         SameScale(map.ScaleY, mapping_.ScaleY) && Whole(map.OriginX) && Whole(map.OriginY) &&
                         Whole(mapping_.OriginX) && Whole(mapping_.OriginY);
    const double dx = map.OriginX - mapping_.OriginX, dy = map.OriginY - mapping_.OriginY;
    PlotResult result;
    if (movable && std::abs(dx) < size.width() && std::abs(dy) < size.height()) {
        result = Move(machine, input, static_cast<int>(dx), static_cast<int>(dy));
        lastMoved_ = true;
    } else {
        result = result_ = DrawWhole(machine, input, size);
    }
    source_ = source;
    mapping_ = canvas_.Mapping();
    drawCallsAfter_ = canvas_.DrawCalls();
    kept_ = true;
    return result;
}

PlotResult PlotPicture::DrawWhole(const MachineData& machine, const PlotBoxInput& input, QSize size) {
    if (image_.size() != size) image_ = QImage(size, QImage::Format_RGB32);
    image_.fill(PlotColour(colours_[ColourItem::PlotBackground]));
    canvas_.SetDevice(&image_, size);
    PlotResult result = PlotProgram(plotter_, view_, machine, input);
    canvas_.Finish();
    return result;
}

PlotResult PlotPicture::Move(const MachineData& machine, const PlotBoxInput& input, int dx, int dy) {
    const int width = image_.width(), height = image_.height();
    if (dx == 0 && dy == 0) {
        // Nothing uncovered: the run data, the marker step and the shapes over the box as a redraw
        // leaves them, with no pixel painted.
        canvas_.SetDevice(nullptr, image_.size());
        PlotBoxInput none = input;
        none.PartOnly = true;
        none.Part = {};
        PlotProgram(plotter_, view_, machine, none);
    } else {
        // A point's new pixel is its old one less the move.
        if (spare_.size() != image_.size()) spare_ = QImage(image_.size(), QImage::Format_RGB32);
        {
            QPainter painter(&spare_);
            painter.setCompositionMode(QPainter::CompositionMode_Source);
            painter.drawImage(QPoint(-dx, -dy), image_);
        }
        std::swap(image_, spare_);
        // Drawn anew: the strip uncovered, and along the axis of the move a band at either end
        // where the picture's edge clipped lines.
        auto bands = [&](int move, int length, auto rect) {
            if (move == 0) return;
            const int uncovered = std::abs(move) + EdgeBand;
            if (move > 0) {
                DrawPart(machine, input, rect(length - uncovered, uncovered));
                DrawPart(machine, input, rect(0, EdgeBand));
            } else {
                DrawPart(machine, input, rect(0, uncovered));
                DrawPart(machine, input, rect(length - EdgeBand, EdgeBand));
            }
        };
        bands(dx, width, [&](int from, int size) { return QRect(from, 0, size, height); });
        bands(dy, height, [&](int from, int size) { return QRect(0, from, width, size); });
    }
    // The hits of a run and the path keys draw on the whole picture again.
    canvas_.SetDevice(&image_, image_.size());
    canvas_.SetView(view_.ViewTopLeft, view_.ViewBottomRight);
    return result_;
}

void PlotPicture::DrawPart(const MachineData& machine, PlotBoxInput input, QRect pixels) {
    pixels &= image_.rect();
    if (pixels.isEmpty()) return;
    // Drawn on a whole picture of the box, so that lines meet the same edges as in a redraw, with
    // only what reaches into the part; then the part is copied.
    if (scratch_.size() != image_.size()) scratch_ = QImage(image_.size(), QImage::Format_RGB32);
    scratch_.fill(PlotColour(colours_[ColourItem::PlotBackground]));
    canvas_.SetDevice(&scratch_, scratch_.size());
    PlotView next = view_;
    PlaceView(next, machine, input);
    canvas_.SetView(next.ViewTopLeft, next.ViewBottomRight);
    // The table under the part, widened by what smoothing spreads.
    const QRectF wide = QRectF(pixels).adjusted(-SmoothingSpread, -SmoothingSpread, SmoothingSpread, SmoothingSpread);
    input.PartOnly = true;
    input.Part = RectBetween(canvas_.ToTable(wide.topLeft()), canvas_.ToTable(wide.bottomRight()));
    PlotProgram(plotter_, view_, machine, input);
    canvas_.Finish();
    QPainter painter(&image_);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(pixels.topLeft(), scratch_, pixels);
}

}  // namespace kirvana

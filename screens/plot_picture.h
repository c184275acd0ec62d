// The picture of one plot box: the drawing at the box's view, kept in an image. A pan at the
// same scale moves the picture by whole pixels and draws only the strips it uncovers; anything
// else (a zoom, a new drawing, a picture drawn over by a run or the path keys) draws it anew,
// leaving out what lies outside the view. Either way the picture is the one a whole redraw gives.
#pragma once

#include <QImage>
#include <filesystem>
#include <string>

#include "plot/plot_program.h"
#include "plot/plotter.h"
#include "plot/view.h"
#include "screens/plot_canvas.h"

namespace kirvana {

class PlotPicture {
public:
    PlotPicture(const ColourTable& colours, const std::string& toolsDir);

    PlotView& View() { return view_; }
    PlotCanvas& Canvas() { return canvas_; }
    Plotter& Drawing() { return plotter_; }
    const QImage& Image() const { return image_; }

    // The plot at the view (fitted unless the operator changed it), `size` pixels large.
    PlotResult Draw(const MachineData& machine, PlotBoxInput input, QSize size);
    // The last Draw moved the picture instead of drawing all of it.
    bool LastMoved() const { return lastMoved_; }
    // What the picture shows: its drawing found, the records drawn.
    const PlotResult& Shown() const { return result_; }

private:
    // What a picture was drawn from, besides the view: when any of it differs, the picture can't
    // be moved.
    struct Source {
        int Plot = 0;
        std::string DrawingPath;
        std::filesystem::file_time_type Written{};
        std::uintmax_t Bytes = 0;
        double SheetX = 0, SheetY = 0;
        std::array<float, 4> Clamps{};
        bool Datum = false;
        ColourTable Colours;
        bool operator==(const Source& other) const;
    };
    Source SourceOf(const MachineData& machine, const PlotBoxInput& input) const;
    PlotResult DrawWhole(const MachineData& machine, const PlotBoxInput& input, QSize size);
    // The picture moved by (dx, dy) pixels, and the strips it uncovers drawn.
    PlotResult Move(const MachineData& machine, const PlotBoxInput& input, int dx, int dy);
    // The part of the picture inside the pixels drawn anew, as a whole redraw draws it.
    void DrawPart(const MachineData& machine, PlotBoxInput input, QRect pixels);

    const ColourTable& colours_;
    PlotView view_;
    PlotCanvas canvas_;
    Plotter plotter_;
    QImage image_;
    QImage spare_;
    QImage scratch_;
    // The picture as the last Draw left it: nothing has been drawn over it since.
    bool kept_ = false;
    Source source_;
    PixelMapping mapping_;
    std::int64_t drawCallsAfter_ = 0;
    PlotResult result_;
    bool lastMoved_ = false;
};

}  // namespace kirvana

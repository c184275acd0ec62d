// Any bytes as drawing records, plotted in every colour mode on a counting canvas and through
// the whole plot of a box: nonsense kinds, tools and numbers (NaN, 1e30, zero sizes) draw what
// they can and end without a fault.
#include <cstddef>
#include <cstdint>
#include <string>

#include "analysis/drawing_file.h"
#include "plot/plotter.h"
#include "plot/recording_canvas.h"

using namespace kirvana;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    DrawingFile drawing = DrawingFile::InMemory(std::string(reinterpret_cast<const char*>(data), size));
    RecordingCanvas canvas;
    canvas.Keep = false;
    ColourTable colours = DefaultColours();
    Plotter plotter(canvas, colours, "");
    const std::int32_t records = drawing.RecordsInFile();
    EntityRec rec;
    for (std::int32_t n = 1; n <= records && n <= 64; ++n) {
        if (!drawing.Get(n, rec)) break;
        // A pattern of more hits than this is left out to keep each input quick; the walk's own
        // limit is tested in plot_tests.
        std::int64_t hits = static_cast<std::int64_t>(rec.Counts[1] > 0 ? rec.Counts[1] : 0) *
                            (rec.Kind == EntityKind::GridPattern && rec.Counts[2] > 0 ? rec.Counts[2] : 1);
        if (hits > 20000) continue;
        for (int mode = 0; mode <= 3; ++mode) plotter.PlotEntity(n % 3, rec, mode, n % 2 == 0);
    }
    plotter.PlotTrail({rec.Points.Position.X, rec.Points.Position.Y}, 1, LineStyle::Dotted, 3);
    return 0;
}

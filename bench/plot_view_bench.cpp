// Frames per second of the plot box's pan and zoom on a drawing of 100,000 hits (ten grids of
// 100 x 100 hits, each of another tool shape, on a sheet of 3000 x 1500) in the panel's picture
// of 1000 x 560, and one live hit drawn on it: each frame is what the panel does on a pan or a
// zoom, the picture ready to be shown.
#include <benchmark/benchmark.h>

#include <QImage>
#include <filesystem>
#include <string>

#include "analysis/tool_outline.h"
#include "screens/plot_picture.h"

using namespace kirvana;

namespace {

ToolRecord ToolOf(int k) {
    static const char* texts[] = {"DIAMETER 10",        "SQUARE 10 A15",   "RAD-SQUARE 12R2A0", "RECTANGLE 20X8A30",
                                  "RAD-RECT 20X8R2A45", "OBROUND 20X8A90", "SINGLE-D 12X10A0",  "DOUBLE-D 12X9A0",
                                  "CANNON-D 20X8A0",    "HEXAGON 12A0"};
    ToolRecord tool;
    ParseToolText(texts[k % 10], tool, false);
    tool.Station = 20;
    return tool;
}

std::string WriteDrawing() {
    std::string path = (std::filesystem::temp_directory_path() / "plot_view_bench.drw");
    DrawingFile file;
    if (!file.Create(path)) return {};
    std::int16_t counter = 0;
    EntityRec rec;
    rec.Kind = EntityKind::Sheet;
    AppendEntity(file, counter, rec);
    for (int g = 0; g < 10; ++g) {
        ClearEntity(rec);
        rec.Kind = EntityKind::GridPattern;
        rec.Tool = ToolOf(g);
        rec.Points.Start = rec.Points.Entry = {static_cast<float>(20 + g * 290), 20};
        rec.Values[1] = rec.Values[3] = 250;
        rec.Values[2] = 2.5f;
        rec.Values[4] = 1.3f;
        rec.Counts[1] = 100;
        rec.Counts[2] = 100;
        ToolOutline(rec);
        AppendEntity(file, counter, rec);
    }
    rec.Kind = EntityKind::Sheet;
    rec.RecordNo = counter;
    file.Put(1, rec);
    file.Close();
    return path;
}

struct Scene {
    std::string path = WriteDrawing();
    ColourTable colours = DefaultColours();
    MachineData machine;
    PlotBoxInput input;
    PlotPicture picture{colours, ""};
    const QSize size{1000, 560};
    PlotView fitted;

    Scene() {
        machine.MachineOrientation = 1;
        machine.ClampCount = 3;
        input.DrawingPath = path;
        input.SheetX = 3000;
        input.SheetY = 1500;
        picture.Draw(machine, input, size);
        fitted = picture.View();
    }
    ~Scene() { std::filesystem::remove(path); }

    // The view a `fraction` of the fitted width, centred on the middle of the hits.
    void ZoomTo(double fraction) {
        PlotView& view = picture.View();
        const double halfWidth = (fitted.ViewBottomRight.X - fitted.ViewTopLeft.X) / fraction / 2;
        const double halfHeight = (fitted.ViewBottomRight.Y - fitted.ViewTopLeft.Y) / fraction / 2;
        view.ViewTopLeft = {1500 - halfWidth, 145 - halfHeight};
        view.ViewBottomRight = {1500 + halfWidth, 145 + halfHeight};
        view.ViewChanged = true;
        picture.Draw(machine, input, size);
    }
};

// One cursor step (a 64th of the view's width) to the right, then back, as "&PAN" and "&SELECT".
void BM_PanStep(benchmark::State& state) {
    Scene scene;
    scene.ZoomTo(static_cast<double>(state.range(0)));
    PlotView& view = scene.picture.View();
    int direction = 1;
    for (auto _ : state) {
        const double step = ViewWidthStep(view) * direction;
        PanTo(view, {(view.ViewTopLeft.X + view.ViewBottomRight.X) / 2 + step,
                     (view.ViewTopLeft.Y + view.ViewBottomRight.Y) / 2});
        scene.picture.Draw(scene.machine, scene.input, scene.size);
        if (!scene.picture.LastMoved()) state.SkipWithError("the pan drew the whole picture");
        direction = -direction;
    }
    state.counters["frames/s"] =
        benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

// A zoom in by 1.5 round the centre, then the zoom out back ("ZOOM &OUT"), from a view a
// `range(0)`th of the fitted width.
void BM_ZoomStep(benchmark::State& state) {
    Scene scene;
    const double fraction = static_cast<double>(state.range(0));
    bool in = true;
    for (auto _ : state) {
        scene.ZoomTo(in ? fraction * 1.5 : fraction);
        in = !in;
    }
    state.counters["frames/s"] =
        benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

// One hit of the running machine drawn solid on the kept picture.
void BM_LiveHitOnThePicture(benchmark::State& state) {
    Scene scene;
    EntityRec rec;
    rec.Kind = EntityKind::Punch;
    rec.Tool = ToolOf(4);
    double x = 0;
    for (auto _ : state) {
        rec.Points.Position = {static_cast<float>(x), 145};
        x = x > 3000 ? 0 : x + 3;
        scene.picture.Drawing().PlotEntity(1, rec, ColourMode::RealTime, true);
        scene.picture.Canvas().Finish();
    }
}

}  // namespace

BENCHMARK(BM_PanStep)->Arg(1)->Arg(4)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ZoomStep)->Arg(1)->Arg(2)->Arg(4)->Arg(8)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_LiveHitOnThePicture)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();

// Hits per second of the plot: a drawing of 100,000 and of 1,000,000 hits (grids and arcs of
// every tool shape, each hit its real outline) drawn whole, as a redraw does, into the panel's
// picture (a QImage through the Qt canvas) and into a canvas that only counts; and one live hit.
#include <benchmark/benchmark.h>

#include <QImage>
#include <filesystem>
#include <string>

#include "bench/grid_drawing.h"
#include "plot/plot_program.h"
#include "plot/recording_canvas.h"
#include "screens/plot_canvas.h"

using namespace kirvana;

namespace {

MachineData Machine() {
    MachineData machine;
    machine.MachineOrientation = 1;
    machine.ClampCount = 3;
    machine.ClampWidth = 80;
    machine.ClampDepth = 60;
    return machine;
}

void Redraw(benchmark::State& state, bool toImage, bool smooth = true) {
    const int grids = static_cast<int>(state.range(0));
    const std::string path = WriteGridDrawing("plot_bench_" + std::to_string(grids) + ".drw", grids);
    ColourTable colours = DefaultColours();
    PlotBoxInput input;
    input.DrawingPath = path;
    input.SheetX = 3000;
    input.SheetY = 1500;
    input.BoxWidth = 1000;
    input.BoxHeight = 560;
    QImage image(1000, 560, QImage::Format_RGB32);
    PlotCanvas picture;
    picture.SetSmooth(smooth);
    RecordingCanvas counter;
    counter.Keep = false;
    Canvas& canvas = toImage ? static_cast<Canvas&>(picture) : static_cast<Canvas&>(counter);
    Plotter plotter(canvas, colours, "");
    std::int64_t hits = 0;
    for (auto _ : state) {
        picture.SetDevice(&image, image.size());
        PlotView view;
        PlotProgram(plotter, view, Machine(), input);
        picture.Finish();
        hits += 100 * 100 * grids;
    }
    state.counters["hits/s"] = benchmark::Counter(static_cast<double>(hits), benchmark::Counter::kIsRate);
    std::filesystem::remove(path);
}

void BM_RedrawIntoPicture(benchmark::State& state) { Redraw(state, true); }
void BM_RedrawIntoPictureSharp(benchmark::State& state) { Redraw(state, true, false); }
void BM_RedrawCountingOnly(benchmark::State& state) { Redraw(state, false); }

// One hit of the running machine, drawn solid into the picture.
void BM_LiveHit(benchmark::State& state) {
    ColourTable colours = DefaultColours();
    QImage image(1000, 560, QImage::Format_RGB32);
    PlotCanvas picture;
    picture.SetDevice(&image, image.size());
    picture.SetView({-10, 1510}, {3010, -10});
    Plotter plotter(picture, colours, "");
    EntityRec rec;
    rec.Kind = EntityKind::Punch;
    rec.Tool = BenchTool(4);
    double x = 0;
    for (auto _ : state) {
        rec.Points.Position = {static_cast<float>(x), 700};
        x = x > 3000 ? 0 : x + 3;
        plotter.PlotEntity(1, rec, ColourMode::RealTime, true);
    }
    picture.Finish();
}

}  // namespace

BENCHMARK(BM_RedrawIntoPicture)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_RedrawIntoPictureSharp)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_RedrawCountingOnly)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_LiveHit)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();

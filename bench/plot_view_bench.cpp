// Frames per second of the plot box's pan and zoom on a drawing of 100,000 hits (ten grids of
// 100 x 100 hits, each of another tool shape, on a sheet of 3000 x 1500) in the panel's picture
// of 1000 x 560, and one live hit drawn on it: each frame is what the panel does on a pan or a
// zoom, the picture ready to be shown.
#include <benchmark/benchmark.h>

#include <QImage>
#include <filesystem>
#include <string>

#include "bench/grid_drawing.h"
#include "screens/plot_picture.h"

using namespace kirvana;

namespace {

struct Scene {
    std::string path = WriteGridDrawing("plot_view_bench.drw", 10);
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
    const std::int64_t madeBefore = scene.picture.Canvas().StampsMade();
    for (auto _ : state) {
        scene.ZoomTo(in ? fraction * 1.5 : fraction);
        in = !in;
    }
    state.counters["frames/s"] =
        benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
    // Every zoom changes the scale: the outlines are painted anew as stamps each time.
    state.counters["stamps/frame"] =
        static_cast<double>(scene.picture.Canvas().StampsMade() - madeBefore) / static_cast<double>(state.iterations());
}

// A pan by one cursor step right after a live hit was drawn on the picture: the picture is drawn
// whole, at the scale whose stamps are kept.
void BM_PanAfterALiveHit(benchmark::State& state) {
    Scene scene;
    PlotView& view = scene.picture.View();
    EntityRec rec;
    rec.Kind = EntityKind::Punch;
    rec.Tool = BenchTool(4);
    rec.Points.Position = {1500, 145};
    int direction = 1;
    for (auto _ : state) {
        scene.picture.Drawing().PlotEntity(1, rec, ColourMode::RealTime, true);
        const double step = ViewWidthStep(view) * direction;
        PanTo(view, {(view.ViewTopLeft.X + view.ViewBottomRight.X) / 2 + step,
                     (view.ViewTopLeft.Y + view.ViewBottomRight.Y) / 2});
        scene.picture.Draw(scene.machine, scene.input, scene.size);
        if (scene.picture.LastMoved()) state.SkipWithError("the pan moved a picture drawn on");
        direction = -direction;
    }
    state.counters["frames/s"] =
        benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

// One hit of the running machine drawn solid on the kept picture.
void BM_LiveHitOnThePicture(benchmark::State& state) {
    Scene scene;
    EntityRec rec;
    rec.Kind = EntityKind::Punch;
    rec.Tool = BenchTool(4);
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
BENCHMARK(BM_PanAfterALiveHit)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_LiveHitOnThePicture)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();

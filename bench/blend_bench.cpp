// Blocks per second of the Blend pass over generated motion texts of 1,000, 10,000 and
// 100,000 blocks: punching, patterns, nibbling and profiling with arcs.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "translate/blend.h"

using namespace kirvana;

namespace {

std::string Directory() {
    std::string dir = (std::filesystem::temp_directory_path() / "kirvana-blend-bench/").string();
    std::filesystem::create_directories(dir);
    return dir;
}

// A realistic mix in the canonical word order of the motion text.
void WriteMotion(const std::string& path, int blocks) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    const char* pattern[] = {
        "G90 X%d.5 Y%d T12 C90",
        "X%d Y%d.25",
        "P8=2.5 G01 X%d Y%d",
        "G26 X%d Y%d P1=4 P2=10 P3=2 P4=20 P5=0 P7=-999",
        "G28 X%d Y%d R25 P1=8 P3=0",
        "G36 X%d Y%d I40 J0 P8=2.5",
        "M100 X%d Y%d",
        "M03 G101 X%d Y%d",
        "G102 X%d Y%d I10 J0",
        "G101 X%d Y%d.5 ;edge",
        "M05 M101 X%d Y%d",
        "G66 X%d Y%d I10 J0 B4",
    };
    char line[160];
    for (int n = 1; n <= blocks; ++n) {
        int x = 100 + (n * 37) % 2000, y = 50 + (n * 53) % 1100;
        int length = std::snprintf(line, sizeof line, "N%04d ", n % 10000);
        std::snprintf(line + length, sizeof line - length, pattern[n % 12], x, y);
        out << line << '\n';
    }
}

void BM_BlendProgram(benchmark::State& state) {
    const std::string dir = Directory();
    BlendSettings settings;
    settings.Travel.LoadPositionY = 1250;
    settings.Travel.XLimitMin = -25;
    settings.Travel.XLimitMax = 2540;
    settings.Travel.YLimitMin = -10;
    settings.Travel.YLimitMax = 1270;
    settings.ProfilerValue = 2;
    settings.RootDir = dir;
    settings.ServiceDir = dir;
    const int blocks = static_cast<int>(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        WriteMotion(dir + "Bench.M1", blocks);
        state.ResumeTiming();
        benchmark::DoNotOptimize(BlendProgram("Bench", "BENCH", dir + "Bench.", settings).CriticalCount);
    }
    state.SetItemsProcessed(state.iterations() * blocks);
    state.SetLabel("blocks");
}
BENCHMARK(BM_BlendProgram)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();

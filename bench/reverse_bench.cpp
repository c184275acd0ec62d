// The Reverse pass over a generated motion text of 100,000 blocks read (main text and the
// repeats of its subroutine calls): punching, every pattern, nibbling, profiling with arcs, G68
// repeats and a G98 grid; the drawing and report written to disk. Then the expansion of that
// drawing into single hits.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "analysis/expand.h"
#include "analysis/reverse.h"

using namespace kirvana;

namespace {

std::string Directory() {
    std::string dir = (std::filesystem::temp_directory_path() / "kirvana-reverse-bench/").string();
    std::filesystem::create_directories(dir);
    return dir;
}

// 15,999 main blocks, 2,000 of them calls (1,000 G68 Q2 and 1,000 G98 grids of 2 x 1) of a
// subroutine read as 21 blocks (its label, 19 moves, RETURN): 15,999 + 2,000 x 2 x 21 = 99,999.
constexpr int MainBlocks = 16000;
constexpr int BodyMoves = 19;

void WriteMotion(const std::string& stem) {
    std::ofstream m1(stem + "M1", std::ios::binary | std::ios::trunc);
    m1 << "N0001 ;MATERIAL : MILD STEEL 2MM\nN0002 ;SHEET SIZE : 2500 x 1250\nN0003 ;CLAMPS : 1=300 2=900\n"
          "N0004 G71 G90 T1\n";
    const char* pattern[] = {
        "G81 X%d.5 Y%d",
        "G00 X%d Y%d.25",
        "P8=2.5 G01 X%d Y%d",
        "G26 X%d Y%d P1=4 P2=10 P3=2 P4=20 P5=0 P7=-999 P8=-999 P9=1",
        "G28 X%d Y%d I25 J0 P1=8 P2=-999 P3=-999 P4=-999 P5=0 P7=-999 P8=-999 P9=0 P10=-999",
        "G36 X%d Y%d I40 J0 P8=2.5",
        "M100 G80 X%d Y%d",
        "M03 G101 X%d Y%d",
        "G102 X%d Y%d I10 J0",
        "G101 X%d Y%d.5 ;edge",
        "M05 M101 G00 X%d Y%d",
        "G66 X%d Y%d I10 J0 B4",
        "G00 X%d Y%d",
        "G80 X%d Y%d",
        "G00 X%d Y%d",
        "G00 X%d Y%d",
    };
    char line[200];
    for (int n = 5; n < MainBlocks; ++n) {
        int x = 100 + (n * 37) % 2000, y = 50 + (n * 53) % 1100;
        int length = std::snprintf(line, sizeof line, "N%04d ", n % 10000);
        if (n % 16 == 0)
            std::snprintf(line + length, sizeof line - length, "P10=1 G68 X%d Y%d S1 Q2", x, y);
        else if (n % 16 == 8)
            std::snprintf(line + length, sizeof line - length, "P1=2 P2=100 P3=1 P4=0 P6=0 G98 X%d Y%d S1", x, y);
        else
            std::snprintf(line + length, sizeof line - length, pattern[n % 16], x, y);
        m1 << line << '\n';
    }
    std::ofstream m2(stem + "M2", std::ios::binary | std::ios::trunc);
    m2 << "N1000 G90\n";
    for (int k = 1; k <= BodyMoves; ++k) m2 << (k % 20 == 0 ? "G81 X" : "G00 X") << k << " Y" << k % 7 << '\n';
    m2 << "RETURN\n";
}

ReverseSettings Settings(const std::string& dir) {
    ReverseSettings s;
    s.LoadY = 1250;
    s.XLimitMin = -25;
    s.XLimitMax = 2540;
    s.YLimitMin = -10;
    s.YLimitMax = 1270;
    s.ClampCount = 2;
    s.Stations.resize(20);
    for (int n = 1; n <= 20; ++n) {
        s.Stations[n - 1].Valid = TrueWord;
        s.Stations[n - 1].TNumber = static_cast<std::int16_t>(n);
        s.Stations[n - 1].Tool.Valid = TrueWord;
        s.Stations[n - 1].Tool.Shape = 'B';
        s.Stations[n - 1].Tool.D1 = 10;
        s.Stations[n - 1].Tool.Station = 10;
    }
    s.ServiceDir = dir;
    s.Now = [] { return std::string("01/01/26 00:00"); };
    return s;
}

void BM_ReversePass(benchmark::State& state) {
    const std::string dir = Directory();
    WriteMotion(dir + "Bench.");
    const ReverseSettings settings = Settings(dir);
    ReverseResult result;
    for (auto _ : state) {
        std::int16_t toolChanges = 0;
        result = ReversePass(dir + "Bench.", "BENCH", "BENCH", toolChanges, settings);
        benchmark::DoNotOptimize(result.Records);
    }
    // Blocks read: the main text and every repetition of the subroutine, as the pass counts them.
    const std::int64_t blocks = result.Blocks;
    state.counters["blocks/s"] = benchmark::Counter(static_cast<double>(blocks) * static_cast<double>(state.iterations()),
                                                    benchmark::Counter::kIsRate);
    state.counters["blocks"] = static_cast<double>(blocks);
    state.counters["records"] = result.Records;
    state.counters["critical"] = result.CriticalCount;
    state.counters["hits"] = result.Stats.Hits;
}
BENCHMARK(BM_ReversePass)->Unit(benchmark::kMillisecond);

void BM_ExpandReverseDrawing(benchmark::State& state) {
    const std::string dir = Directory();
    WriteMotion(dir + "Bench.");
    std::int16_t toolChanges = 0;
    if (ReversePass(dir + "Bench.", "BENCH", "BENCH", toolChanges, Settings(dir)).FileFault) {
        state.SkipWithError("the drawing cannot be written");
        return;
    }
    ExpandResult result;
    for (auto _ : state) {
        result = ExpandDrawing(dir + "Bench.");
        benchmark::DoNotOptimize(result.Records);
    }
    state.counters["hits/s"] = benchmark::Counter(static_cast<double>(result.Records - 1) * static_cast<double>(state.iterations()),
                                                  benchmark::Counter::kIsRate);
}
BENCHMARK(BM_ExpandReverseDrawing)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();

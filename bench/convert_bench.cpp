// Blocks per second of the Convert pass on generated part programs of 1,000, 10,000 and
// 100,000 blocks: detection, splitting, both block passes and the call fix, files included.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "translate/convert.h"

using namespace kirvana;

namespace {

// A dialect 1 program: punching with tools and autoindex angles, nibbling, arcs, cycles,
// calls, conditions, comments and block-skip marks, then two subroutines.
std::string Program(int blocks) {
    static const char* const body[] = {
        "X%d.5 Y120 T12 C90 ! hole",
        "G01 X%d Y200",
        "X%d Y250",
        "G00 X%d Y10",
        "G02 X%d Y50 I25 J0",
        "G26 X%d Y300 I100 J0 P1=5 P3=2 P4=20",
        "G28 X%d Y400 R50 I50 J0 P1=8",
        "G65 X%d Y500 I50 J30 R3",
        "(PSUB,HOLES,P0=2)",
        "N%d T5",
        "/X%d Y30",
        "IF P12<>5 GOTO N100",
        "G77 X%d Y40",
        "M22 X%d Y20",
        "G90 X%d Y60 ; comment",
        "M100",
        "G101 X%d Y70",
        "G102 X%d Y80 I5 J0",
        "M101",
        "G04 F1.5",
    };
    constexpr int kinds = sizeof body / sizeof body[0];
    std::string text = "! PROGRAM NAME : BENCH\n! SHEET SIZE : 2500 x 1250\nG90 G71\n";
    char line[96];
    for (int i = 3; i < blocks - 8; ++i) {
        std::snprintf(line, sizeof line, body[i % kinds], i % 2000);
        text += line;
        text += '\n';
    }
    text += "M30\n(ID,PSUB,HOLES)\nX10 Y10 T3\nG01 X20 Y20\nX30\n(END,PSUB)\n(ID,PSUB,GRID)\nX1 Y1\n(END,PSUB)\n";
    return text;
}

void BM_Convert(benchmark::State& state) {
    const int blocks = static_cast<int>(state.range(0));
    std::string pattern = (std::filesystem::temp_directory_path() / "convert-bench-XXXXXX").string();
    if (!mkdtemp(pattern.data())) {
        state.SkipWithError("no temporary directory");
        return;
    }
    const std::string dir = pattern + "/";
    std::ofstream(dir + "prog.org", std::ios::binary) << Program(blocks);
    ConvertSettings settings;
    settings.ServiceDir = dir;
    settings.CurrentDir = dir;
    for (auto _ : state) {
        std::int16_t dialect = 0;
        ConvertResult result = ConvertProgram(dir + "prog.", dialect, settings);
        benchmark::DoNotOptimize(result);
        if (result.Status != ConvertStatus::Done) state.SkipWithError("conversion failed");
    }
    state.counters["blocks_per_second"] = benchmark::Counter(
        static_cast<double>(blocks) * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
    std::filesystem::remove_all(dir);
}

}  // namespace

BENCHMARK(BM_Convert)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();

// Blocks per second of the AMADA dialect pass on generated AMADA programs of 1,000, 10,000 and
// 100,000 blocks: splitting, both block passes and the call fix, files included.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "translate/amada.h"

using namespace kirvana;

namespace {

// An AMADA program: punching with tool comments, profile moves, the cycles, the grid and its
// repeats, macros, calls and torch codes, then two subroutines. As in real programs, most
// blocks are single hits.
std::string Program(int blocks) {
    static const char* const body[] = {
        "X%d Y12000T305(RO20.)",
        "X%d Y12500",
        "X%d Y13000",
        "X%d.5Y13500",
        "X%d Y14000",
        "X%d Y14500",
        "X%d Y15000T208;SQ10.A0",
        "X%d Y15500",
        "X%d Y16000",
        "X%d Y16500",
        "X%d Y17000",
        "G01X%d Y20000",
        "X%d Y25000",
        "G00X%d Y1000",
        "G02X%d Y5000I2500J0",
        "G26I5000J0K6",
        "G28I50.J45.K5",
        "G36I2000J2000P3K2",
        "G66I20000J0P1000Q0D0",
        "G67I10000J5000P1000",
        "G68I2000J0K18000P1000Q300",
        "G69I5000J9000P1000Q300",
        "G98X%d Y10000I5000J4000P3K2",
        "G75W1Q2",
        "W2",
        "X%d Y3000A1",
        "B1",
        "G04X150",
        "G31P1Q0",
        "G27X%d",
    };
    constexpr int kinds = sizeof body / sizeof body[0];
    std::string text = "(BENCH ; SHEET:2500X1250)\nG92X1830.Y1270.\nG90\n";
    char line[96];
    for (int i = 3; i < blocks - 6; ++i) {
        std::snprintf(line, sizeof line, body[i % kinds], (i % 2000) * 100);
        text += line;
        text += '\n';
    }
    text += "M30\nS1\nX1000Y1000T110(RO5.)\nX2000\nS2\nG69I10000J0P1000Q300\n";
    return text;
}

// Only punching blocks: hit positions with the odd tool change.
std::string Hits(int blocks) {
    std::string text = "(HITS ; SHEET:2500X1250)\nG92X1830.Y1270.\nG90\n";
    char line[64];
    for (int i = 3; i < blocks - 1; ++i) {
        std::snprintf(line, sizeof line, i % 50 == 0 ? "X%dY%dT305(RO20.)" : "X%dY%d", (i % 2000) * 100,
                      (i % 900) * 100);
        text += line;
        text += '\n';
    }
    return text + "M30\n";
}

void Run(benchmark::State& state, const std::string& program) {
    const int blocks = static_cast<int>(state.range(0));
    std::string pattern = (std::filesystem::temp_directory_path() / "amada-bench-XXXXXX").string();
    if (!mkdtemp(pattern.data())) {
        state.SkipWithError("no temporary directory");
        return;
    }
    const std::string dir = pattern + "/";
    std::ofstream(dir + "prog.org", std::ios::binary) << program;
    ConvertSettings settings;
    settings.AmadaMachine = true;
    settings.ServiceDir = dir;
    settings.CurrentDir = dir;
    for (auto _ : state) {
        std::int16_t dialect = 0;
        ConvertResult result = AmadaProgram(dir + "prog.", dialect, settings);
        benchmark::DoNotOptimize(result);
        if (result.Status != ConvertStatus::Done) state.SkipWithError("conversion failed");
    }
    state.counters["blocks_per_second"] = benchmark::Counter(
        static_cast<double>(blocks) * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
    std::filesystem::remove_all(dir);
}

void BM_Amada(benchmark::State& state) { Run(state, Program(static_cast<int>(state.range(0)))); }
void BM_AmadaHits(benchmark::State& state) { Run(state, Hits(static_cast<int>(state.range(0)))); }

}  // namespace

BENCHMARK(BM_Amada)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_AmadaHits)->Arg(100000)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();

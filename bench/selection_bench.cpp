// The whole selection of a program into a slot in office mode (every pass, the slot files and
// the maps), for programs of 1,000 to 100,000 blocks; and the poll cycle's lookup of
// the block that the card's program counter stands at. The block map numbers the card's words
// in 16 bits (a punching block is four words: N, G81, X, Y), so programs of 10,000 and 100,000
// such blocks are refused as too large: those runs measure how quickly the refusal comes.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "system/startup.h"
#include "tests/support/quiet_platform.h"

using namespace kirvana;

namespace {

// A demo installation in a temp folder, started in office mode, with a generated program.
struct Installation {
    QuietPlatform platform;
    Process process;
    explicit Installation(int blocks) {
        namespace fs = std::filesystem;
        const fs::path dir = fs::temp_directory_path() / ("kirvana-select-bench-" + std::to_string(blocks));
        fs::remove_all(dir);
        fs::copy(KIRVANA_SOURCE_DIR "/data/demo", dir, fs::copy_options::recursive);
        fs::current_path(dir);
        std::ofstream out("Programs/Dorvenis/BENCH.prg");
        out << "N0000 ! PROGRAM NAME : BENCH\n ! SHEET SIZE : X2500 x Y1250\nG90 G71\nT1 X100 Y100\n";
        for (int n = 0; n < blocks; ++n) {
            int x = 100 + (n * 37) % 2300, y = 100 + (n * 53) % 1100;
            if (n % 50 == 0) out << "G26 X" << x % 1500 << " Y" << y % 800 << " P1=4 P2=10 P3=2 P4=20 P5=0\n";
            else out << "X" << x << " Y" << y << "\n";
        }
        out << "M30\n";
        out.close();
        StartupSteps steps;
        Main(process, platform, nullptr, steps);
    }
};

void BM_SelectProgram(benchmark::State& state) {
    Installation installation(static_cast<int>(state.range(0)));
    bool selected = false;
    for (auto _ : state)
        selected = SelectProgram(installation.process, installation.platform, nullptr, "Dorvenis", "BENCH").Selected;
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetLabel(selected ? "blocks, selected" : "blocks, refused");
}
BENCHMARK(BM_SelectProgram)->Arg(1000)->Arg(5000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_SlotBlockAt(benchmark::State& state) {
    // 5,000 punching blocks: the largest of the generated programs that the block map takes.
    Installation installation(5000);
    if (!SelectProgram(installation.process, installation.platform, nullptr, "Dorvenis", "BENCH").Selected) {
        state.SkipWithError("the program was refused");
        return;
    }
    std::int32_t word = 0;
    const std::int32_t words = installation.process.Slots[0].Counts[0].MapWordCount;
    if (words <= 0) {
        state.SkipWithError("the block map is empty");
        return;
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(SlotBlockAt(installation.process, 1, word));
        word = (word + 7919) % words;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SlotBlockAt)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();

// The Gather pass walking to the last block of a generated motion text of 32,000 main blocks
// (punches, moves, grids, nibbling, G68 repeats), reported in blocks per second; and a restart
// point at the last hit of that program found and its restart program written, from the
// slot's files on disk; and the same at the first punch of the last G68 call's first repetition,
// where the restart also finds where the repetition still open starts.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "analysis/drawing_file.h"
#include "analysis/gather.h"
#include "analysis/restart.h"
#include "analysis/reverse.h"
#include "core/paths.h"

using namespace kirvana;

namespace {

constexpr int MainBlocks = 32000;

std::string Directory() {
    std::string dir = (std::filesystem::temp_directory_path() / "kirvana-gather-bench/").string();
    std::filesystem::create_directories(dir);
    return dir;
}

void WriteMotion(const std::string& stem) {
    std::ofstream m1(stem + "M1", std::ios::binary | std::ios::trunc);
    m1 << "N0001 G71 G90 T1\n";
    const char* pattern[] = {"G81 X%d Y%d",        "G00 X%d Y%d", "G26 X%d Y%d P1=4 P2=10 P3=2 P4=20 P5=0",
                             "P8=2.5 G01 X%d Y%d", "G80 X%d Y%d", "P10=1 G68 X%d Y%d S1 Q2",
                             "G81 X%d Y%d",        "G00 X%d Y%d"};
    char line[160];
    for (int n = 2; n <= MainBlocks; ++n) {
        const int x = 100 + (n * 37) % 2000, y = 50 + (n * 53) % 1100;
        const int length = std::snprintf(line, sizeof line, "N%04d ", n % 10000);
        std::snprintf(line + length, sizeof line - static_cast<std::size_t>(length), pattern[n % 8], x, y);
        m1 << line << '\n';
    }
    std::ofstream m2(stem + "M2", std::ios::binary | std::ios::trunc);
    m2 << "N1000 G91\nG81 X5 Y0\nG81 X5 Y0\nG90\nRETURN\n";
}

ReverseSettings Settings(const std::string& dir) {
    ReverseSettings s;
    s.Travel.LoadPositionY = 1250;
    s.Travel.XLimitMin = -25;
    s.Travel.XLimitMax = 2540;
    s.Travel.YLimitMin = -10;
    s.Travel.YLimitMax = 1270;
    s.Stations.resize(20);
    for (int n = 1; n <= 20; ++n) {
        s.Stations[static_cast<std::size_t>(n - 1)].Valid = TrueWord;
        s.Stations[static_cast<std::size_t>(n - 1)].TNumber = static_cast<std::int16_t>(n);
        s.Stations[static_cast<std::size_t>(n - 1)].Tool.Valid = TrueWord;
        s.Stations[static_cast<std::size_t>(n - 1)].Tool.Shape = 'B';
        s.Stations[static_cast<std::size_t>(n - 1)].Tool.D1 = 10;
    }
    s.ServiceDir = dir;
    s.MaxBlocks = 100'000'000;
    s.MaxJumps = 10'000'000;
    s.MaxCharacters = 1'000'000'000;
    return s;
}

void GatherToTheLastBlock(benchmark::State& state) {
    const std::string dir = Directory();
    WriteMotion(dir + "Slot.");
    const auto m1 = ReadLines(dir + "Slot.M1").value_or(std::vector<std::string>{});
    const auto m2 = ReadLines(dir + "Slot.M2").value_or(std::vector<std::string>{});
    const ReverseSettings settings = Settings(dir);
    GatherTarget target;
    target.TargetMain = static_cast<std::int16_t>(std::min<std::size_t>(m1.size(), 32767));
    std::int64_t blocks = 0;
    for (auto _ : state) {
        GatherResult result = GatherTexts(m1, m2, target, settings);
        benchmark::DoNotOptimize(result.State.Hits);
        if (result.State.Gathered == 0) state.SkipWithError("target not reached");
        blocks += target.TargetMain;
    }
    state.counters["blocks/s"] = benchmark::Counter(static_cast<double>(blocks), benchmark::Counter::kIsRate);
}
BENCHMARK(GatherToTheLastBlock)->Unit(benchmark::kMillisecond);

// The large program written and reversed, as a restart finds it in a slot.
struct ReversedProgram {
    std::string Dir = Directory();
    std::string Stem = Dir + "Slot.";
    ReverseSettings Config;
    ReverseResult Reversed;
    ReversedProgram() : Config(Settings(Dir)) {
        WriteMotion(Stem);
        std::int16_t toolChanges = 0;
        Reversed = ReversePass(Stem, "BENCH", "BENCH", toolChanges, Config);
    }
};

void RestartAtTheLastHit(benchmark::State& state) {
    const ReversedProgram program;
    const std::string& dir = program.Dir;
    const std::string& stem = program.Stem;
    const ReverseSettings& settings = program.Config;
    const ReverseResult& reversed = program.Reversed;
    for (auto _ : state) {
        RestartPoint point;
        std::string refusal = FindRestartPoint(stem, "BENCH", "BENCH", reversed.Records, 1, settings, dir, point);
        if (!refusal.empty()) state.SkipWithError(refusal.c_str());
        RestartProgramInput input;
        input.Point = &point;
        input.Repositions = ReadLines(dir + "Gather.rep").value_or(std::vector<std::string>{});
        benchmark::DoNotOptimize(RestartProgramLines(input).size());
    }
}
BENCHMARK(RestartAtTheLastHit)->Unit(benchmark::kMillisecond);

void RestartInsideTheLastRepeatCall(benchmark::State& state) {
    const ReversedProgram program;
    const std::string& dir = program.Dir;
    const std::string& stem = program.Stem;
    const ReverseSettings& settings = program.Config;
    const ReverseResult& reversed = program.Reversed;
    // The last record of a first repetition: the second punch of the last G68 call's first one.
    DrawingFile drawing;
    EntityRec rec;
    std::int32_t record = 0;
    if (drawing.Open(stem + "drw", true))
        for (std::int32_t n = reversed.Records; n >= 2 && record == 0; --n)
            if (drawing.Get(n, rec) && rec.SubBlock > 0 && rec.CallState.CountX == 1) record = n;
    drawing.Close();
    if (record == 0) state.SkipWithError("no repeat call");
    for (auto _ : state) {
        RestartPoint point;
        std::string refusal = FindRestartPoint(stem, "BENCH", "BENCH", record, 1, settings, dir, point);
        if (!refusal.empty()) state.SkipWithError(refusal.c_str());
        if (point.RepetitionStarts.size() != 1) state.SkipWithError("the open repetition's start not found");
        RestartProgramInput input;
        input.Point = &point;
        input.Repositions = ReadLines(dir + "Gather.rep").value_or(std::vector<std::string>{});
        input.M2 = ReadLines(stem + "M2").value_or(std::vector<std::string>{});
        benchmark::DoNotOptimize(RestartProgramLines(input).size());
    }
}
BENCHMARK(RestartInsideTheLastRepeatCall)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();

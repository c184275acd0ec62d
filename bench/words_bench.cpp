// Calls per second of the word readers and the expression evaluator.
#include <benchmark/benchmark.h>

#include "core/number.h"
#include "core/words.h"

using namespace kirvana;

static void BM_WordValuePlain(benchmark::State& state) {
    ValueReader reader;
    for (auto _ : state) benchmark::DoNotOptimize(reader.WordValue("N0120 G01 X1250.5 Y-340.25 T12 C90", 'Y'));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_WordValuePlain);

static void BM_WordValueExpression(benchmark::State& state) {
    ProgramParameters p;
    p.P[20] = 12.5;
    ValueReader reader(&p);
    for (auto _ : state) benchmark::DoNotOptimize(reader.WordValue("G01 X(P20*2+10)/3 YROUND(2.5)", 'X'));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_WordValueExpression);

static void BM_WordNumber(benchmark::State& state) {
    ValueReader reader;
    for (auto _ : state) benchmark::DoNotOptimize(reader.WordNumber("N0120 G01 X1250.5 Y-340.25", 'X'));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_WordNumber);

static void BM_WordInteger(benchmark::State& state) {
    ValueReader reader;
    for (auto _ : state) benchmark::DoNotOptimize(reader.WordInteger("N0120 G01 X1250.5 T12", 'T'));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_WordInteger);

static void BM_EvaluateExpression(benchmark::State& state) {
    ValueReader reader;
    for (auto _ : state) benchmark::DoNotOptimize(reader.EvaluateExpression("(1+2)*(3+4)/7-0.5"));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_EvaluateExpression);

static void BM_FormatNumber(benchmark::State& state) {
    double v = 1250.12345;
    for (auto _ : state) benchmark::DoNotOptimize(FormatNumber(v, 3));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_FormatNumber);

BENCHMARK_MAIN();

// ProgramForm's lists: the programs of a directory of 10,000 programs (the combo's fill), the
// directories of the store, and the search over every directory.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "navigation/program_store.h"

namespace {

// A program store of one directory with `count` programs beside their settings files.
class Store {
public:
    explicit Store(int count) {
        root_ = std::filesystem::temp_directory_path() / ("kirvana-list-bench-" + std::to_string(count));
        std::filesystem::remove_all(root_);
        std::filesystem::create_directories(root_ / "Big");
        for (int n = 0; n < count; ++n) {
            std::string name = "PART" + std::to_string(100000 + (n * 7919) % count);
            std::ofstream(root_ / "Big" / (name + ".prg")) << "G90\n";
            if (n % 4 == 0) std::ofstream(root_ / "Big" / (name + ".stg")) << "1\n";
        }
    }
    ~Store() {
        std::error_code error;
        std::filesystem::remove_all(root_, error);
    }
    std::string Root() const { return root_.string() + "/"; }

private:
    std::filesystem::path root_;
};

void BM_FillPrograms(benchmark::State& state) {
    Store store(static_cast<int>(state.range(0)));
    std::size_t listed = 0;
    for (auto _ : state) {
        auto names = kirvana::FillPrograms(store.Root() + "Big/");
        listed = names.size();
        benchmark::DoNotOptimize(names);
    }
    if (listed != static_cast<std::size_t>(state.range(0))) state.SkipWithError("not every program was listed");
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_FillPrograms)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

void BM_SearchPrograms(benchmark::State& state) {
    Store store(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(kirvana::SearchPrograms(store.Root(), "art1050"));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_SearchPrograms)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();

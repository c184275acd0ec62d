// The program screens' work: ProgramForm's list of a directory of 10,000 programs (the combo's
// fill), the search over every directory, and ViewProgForm's page around a new lit block in a
// program of the largest selectable size (32,767 records), which must come within one poll tick.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "navigation/program_store.h"
#include "navigation/program_view.h"
#include "system/startup.h"

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

// The page around record after record of a slot with 32,767 records, as the poll lights them.
void BM_ViewPageAround(benchmark::State& state) {
    constexpr std::int16_t records = 32767;
    std::filesystem::path root = std::filesystem::temp_directory_path() / "kirvana-view-bench";
    std::filesystem::create_directories(root);
    {
        std::ofstream ra(root / "Actvprg1.RA1", std::ios::binary), rm(root / "Actvprg1.RM1", std::ios::binary);
        for (int n = 1; n <= records; ++n) {
            std::string source = "N" + std::to_string(n) + " X" + std::to_string(n % 1000) + " Y100";
            source.resize(80, ' ');
            std::string motion = "N" + std::to_string(n) + " G81 X" + std::to_string(n % 1000) + " Y100";
            motion.resize(240, ' ');
            ra << source;
            rm << motion;
        }
    }
    kirvana::Process process;
    process.Config.Dirs.RootDir = root.string() + "/";
    process.Slots[0].Present = true;
    process.Slots[0].ProgramName = "LARGEST";
    process.Slots[0].Counts[0].SourceRecordCount = records;
    std::int32_t record = 1;
    std::size_t rows = 0;
    for (auto _ : state) {
        record = record * 7919 % records + 1;
        kirvana::ViewPage page = kirvana::ViewPageAround(process, 1, record, 14);
        rows = page.Rows.size();
        benchmark::DoNotOptimize(page);
    }
    if (rows != 14) state.SkipWithError("the page is not full");
    std::filesystem::remove_all(root);
}
BENCHMARK(BM_ViewPageAround)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();

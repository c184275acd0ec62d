// The program store and the receiver: listing a directory of 10,000 programs for the screens
// (target: under 100 ms), and the CPU a received megabyte costs in the line's small events (at
// 115200 baud a megabyte takes some 90 s; the receiver must use a small part of that).
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "files/program_store.h"
#include "files/receive.h"

namespace {

// A folder of its own for the run, removed at the end.
class BenchDir {
public:
    BenchDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "kirvana-bench-XXXXXX").string();
        path_ = mkdtemp(pattern.data()) ? pattern + "/" : std::string();
    }
    ~BenchDir() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }
    BenchDir(const BenchDir&) = delete;
    BenchDir& operator=(const BenchDir&) = delete;
    const std::string& Path() const { return path_; }

private:
    std::string path_;
};

void BM_FillPrograms(benchmark::State& state) {
    BenchDir dir;
    const auto count = state.range(0);
    for (std::int64_t n = 0; n < count; ++n) {
        std::string name = dir.Path() + "PART" + std::to_string(n);
        std::ofstream(name + ".prg") << "N10 G90\n";
        if (n % 4 == 0) std::ofstream(name + ".stg") << "s\n";
    }
    std::size_t listed = 0;
    for (auto _ : state) {
        std::vector<std::string> programs = kirvana::FillPrograms(dir.Path());
        listed = programs.size();
        benchmark::DoNotOptimize(programs.data());
    }
    if (static_cast<std::int64_t>(listed) != count) state.SkipWithError("not every program was listed");
    state.counters["programs"] = static_cast<double>(listed);
}
BENCHMARK(BM_FillPrograms)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

void BM_ReceiveMegabyte(benchmark::State& state) {
    BenchDir dir;
    std::filesystem::create_directories(dir.Path() + "Programs/Current");
    kirvana::CommSettings settings;
    settings.SendTrailer = "\x04";
    settings.ReceiveDrop = std::string(1, '\0');
    std::string line = "N1234 G01 X123.456 Y78.9 F2000\r\n";
    std::string program;
    while (program.size() < (1u << 20)) program += line;
    const auto eventSize = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        kirvana::ProgramReceiver receiver(settings, {dir.Path(), dir.Path(), dir.Path() + "Programs/", "Current"});
        receiver.Prepare();
        for (std::size_t at = 0; at < program.size(); at += eventSize)
            receiver.ReceiveChars(std::string_view(program).substr(at, eventSize));
        receiver.ReceiveChars("\x04");
        if (receiver.TakeResults().size() != 1) state.SkipWithError("the program was not filed");
        std::filesystem::remove(dir.Path() + "Programs/Current/New Program 1.prg");
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(program.size()));
}
// A 16550 UART's FIFO gives an event every 14 characters or so; a USB adapter larger ones.
BENCHMARK(BM_ReceiveMegabyte)->Arg(14)->Arg(256)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();

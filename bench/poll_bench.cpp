// One poll tick against the card simulator on loopback, with every form's display visible and a
// demo program running in real time (100 blocks a second): the round trips of a tick, the
// microseconds of CPU the tick costs the front end's own thread (the simulator serves on a thread
// of its own), and the wall time (the benchmark's time).
#include <benchmark/benchmark.h>

#include <time.h>

#include <filesystem>
#include <fstream>

#include "controller/cardsim/card_simulator.h"
#include "controller/pmac_ethernet_link.h"
#include "system/slot_run_plan.h"
#include "system/startup.h"
#include "tests/support/quiet_platform.h"

using namespace kirvana;

namespace {

// The card link, counting its round trips.
class CountingLink : public CardLink {
public:
    explicit CountingLink(CardLink& inner) : inner_(inner) {}
    void Prepare() override { inner_.Prepare(); }
    void Reset() override { inner_.Reset(); }
    void Select() override { inner_.Select(); }
    void SetEnabled(bool enabled) override { inner_.SetEnabled(enabled); }
    bool Enabled() const override { return inner_.Enabled(); }
    bool Exchange(std::string_view text, std::string& response) override {
        ++RoundTrips;
        return inner_.Exchange(text, response);
    }
    bool DownloadFile(const std::string& path) override { return inner_.DownloadFile(path); }
    long long RoundTrips = 0;

private:
    CardLink& inner_;
};

double ThreadCpuMicroseconds() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) * 1e6 + static_cast<double>(t.tv_nsec) / 1e3;
}

}  // namespace

static void BM_PollTickRunning(benchmark::State& s) {
    namespace fs = std::filesystem;
    const fs::path dir = fs::temp_directory_path() / "kirvana-poll-bench";
    fs::remove_all(dir);
    fs::copy(KIRVANA_SOURCE_DIR "/data/demo", dir, fs::copy_options::recursive);
    const fs::path old = fs::current_path();
    fs::current_path(dir);
    CardSimulator sim;
    sim.Start();
    Directories dirs;
    dirs.RootDir = dir.string() + "/";
    sim.SetRunPlanSource(SlotRunPlanSource(dirs));
    {
        std::ofstream("Control.cnc") << "Card in use: TRUE\nPoll log: FALSE\n******\n";
        std::ofstream("PMAC.cfg") << "Save: N\nWait: 0\nPoll: 20\nDelay: 20\nCard: 127.0.0.1:" << sim.Port() << "\n******\n";
    }
    PmacEthernetLink ethernet(CardAddress{"127.0.0.1", sim.Port()}, 1000);
    CountingLink link(ethernet);
    QuietPlatform platform;
    Process process;
    if (Main(process, platform, &link, StartupSteps{}).Result != StartOutcome::Kind::Started ||
        !SelectProgram(process, platform, &link, "Dorvenis", "GRID03").Selected) {
        s.SkipWithError("the demo installation did not start");
        return;
    }
    process.Display.Visible = {true, true, true, true, true, true, true, true, true, true};
    process.Display.XYMode = PositionMode::Target;
    process.Display.RotaryMode = PositionMode::Command;
    Conversation talk(&link, process.Card, process.Config.Dirs.ServiceDir, &platform);
    long long roundTrips = 0, ticks = 0;
    double cpu = 0;
    for (auto _ : s) {
        if (sim.RunState() == ProgramRun::State::Idle) {
            s.PauseTiming();
            talk.Download("B1R");
            s.ResumeTiming();
        }
        long long before = link.RoundTrips;
        double start = ThreadCpuMicroseconds();
        PollCycle(process, platform, &link);
        cpu += ThreadCpuMicroseconds() - start;
        roundTrips += link.RoundTrips - before;
        ++ticks;
    }
    s.counters["round_trips"] = static_cast<double>(roundTrips) / static_cast<double>(ticks);
    s.counters["cpu_us"] = cpu / static_cast<double>(ticks);
    s.counters["hits"] = process.Display.HitCount;
    fs::current_path(old);
}
BENCHMARK(BM_PollTickRunning)->UseRealTime()->Unit(benchmark::kMicrosecond);

// The simulator's own cost of walking a program: steps per second of its run.
static void BM_SimulatorWalk(benchmark::State& s) {
    RunPlan plan;
    for (int n = 0; n < 10000; ++n) plan.push_back(RunStep{1, n, n * 0.5, n * 0.25, 1, 0, RunStep::StopKind::None});
    ProgramRun run;
    run.SetSpeed(0);
    long long steps = 0;
    for (auto _ : s) {
        run.Begin(1, plan, 0, 0, ProgramRun::Clock::now());
        benchmark::DoNotOptimize(run.Walk(1e9));
        steps += static_cast<long long>(plan.size());
    }
    s.SetItemsProcessed(steps);
}
BENCHMARK(BM_SimulatorWalk);

BENCHMARK_MAIN();

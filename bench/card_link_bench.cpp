// Exchanges per second with the card simulator on loopback, and the cost of one poll-sized
// batch of queries in one round trip.
#include <benchmark/benchmark.h>

#include "controller/cardsim/card_simulator.h"
#include "controller/conversation.h"
#include "controller/pmac_ethernet_link.h"

using namespace kirvana;

namespace {

struct Bench {
    CardSimulator sim;
    PmacEthernetLink link{CardAddress{}, 1000};
    CardState state;
    Bench() {
        sim.Start();
        link.SetAddress(CardAddress{"127.0.0.1", sim.Port()}, 1000);
        link.SetEnabled(true);
        state.CardInUse = true;
    }
};

}  // namespace

static void BM_SingleQuery(benchmark::State& s) {
    Bench b;
    Conversation talk(&b.link, b.state, "/tmp/");
    for (auto _ : s) benchmark::DoNotOptimize(talk.GetRspnsInt("P1022"));
    s.SetItemsProcessed(s.iterations());
}
BENCHMARK(BM_SingleQuery)->UseRealTime();

static void BM_PollTickBatch(benchmark::State& s) {
    Bench b;
    Conversation talk(&b.link, b.state, "/tmp/");
    const std::vector<std::string> tick = {"P1022", "P1020", "M830", "#1P", "#2P", "#3P",
                                           "#4P",   "M869",  "PC",   "%",   "Q17", "M802"};
    for (auto _ : s) benchmark::DoNotOptimize(talk.GetRspnsBatch(tick));
    s.SetItemsProcessed(s.iterations());
}
BENCHMARK(BM_PollTickBatch)->UseRealTime();

BENCHMARK_MAIN();

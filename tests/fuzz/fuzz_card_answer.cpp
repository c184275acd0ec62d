// Any bytes as what the card sends back, and as a command line the simulator evaluates:
// parsing must end without a fault and never claim more than it received.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "controller/cardsim/card_simulator.h"
#include "controller/pmac_protocol.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string bytes(reinterpret_cast<const char*>(data), size);
    for (std::size_t cut = 0; cut <= bytes.size(); cut += 1 + bytes.size() / 8) {
        auto answer = kirvana::pmac::ParseAnswer(std::string_view(bytes).substr(0, cut));
        if (answer.Text.size() > cut) __builtin_trap();
    }
    if (size >= 8) {
        kirvana::pmac::DecodeHeader(data);
        kirvana::pmac::DecodeWriteStatus(data);
    }
    // A card that can run programs 1 and 2 (once downloaded), walked by hand.
    static kirvana::CardSimulator sim;
    static const bool ready = [] {
        sim.SetRunSpeed(0);
        sim.SetRunPlanSource([](int program) -> std::optional<kirvana::RunPlan> {
            if (program != 1 && program != 2) return std::nullopt;
            kirvana::RunPlan plan(3);
            plan[1].Stop = kirvana::RunStep::StopKind::Program;
            plan[2].Station = 99;
            return plan;
        });
        return true;
    }();
    (void)ready;
    sim.Execute(bytes);
    sim.WriteBuffer(bytes);
    sim.WalkRun(static_cast<double>(size % 7) / 2);
    sim.ClearReceived();
    return 0;
}

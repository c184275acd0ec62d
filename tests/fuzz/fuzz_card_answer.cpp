// Any bytes as what the card sends back, and as a command line the simulator evaluates:
// parsing must end without a fault and never claim more than it received.
#include <cstddef>
#include <cstdint>
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
    static kirvana::CardSimulator sim;
    sim.Execute(bytes);
    sim.WriteBuffer(bytes);
    sim.ClearReceived();
    return 0;
}

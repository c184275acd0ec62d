// Any bytes as a motion text: the Blend pass works every line to its end, whatever it holds.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string_view>

#include "translate/blend.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const kirvana::BlendSettings settings = [] {
        kirvana::BlendSettings s;
        s.Travel.LoadPositionY = 1250;
        s.Travel.XLimitMin = -25;
        s.Travel.XLimitMax = 2540;
        s.Travel.YLimitMin = -10;
        s.Travel.YLimitMax = 1270;
        s.ProfilerValue = 2;
        return s;
    }();
    kirvana::BlendPass pass(settings);
    std::ostringstream report;
    pass.OpenReport(&report);
    std::string_view text(reinterpret_cast<const char*>(data), size);
    while (!text.empty()) {
        std::size_t end = text.find('\n');
        pass.BlendBlock(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    }
    return 0;
}

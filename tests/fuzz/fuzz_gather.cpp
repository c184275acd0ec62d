// Any bytes as a restart: the first four bytes give the target (main block, sub block, the
// repetition and the call code), the rest are motion texts as for the Reverse pass ("%" parts
// M1 from M2). The Gather pass walks to the target or to its bound, and the restart's text is
// written for the entities the Reverse pass draws from the same texts.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/drawing_file.h"
#include "analysis/gather.h"
#include "analysis/restart.h"
#include "analysis/reverse.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const kirvana::ReverseSettings settings = [] {
        kirvana::ReverseSettings s;
        s.Travel.LoadPositionY = 1250;
        s.Travel.XLimitMin = -25;
        s.Travel.XLimitMax = 2540;
        s.Travel.YLimitMin = -10;
        s.Travel.YLimitMax = 1270;
        s.Stations.resize(20);
        for (int n = 1; n <= 20; ++n) {
            kirvana::Station& st = s.Stations[n - 1];
            st.Valid = kirvana::TrueWord;
            st.TNumber = static_cast<std::int16_t>(n);
            st.Tool.Valid = kirvana::TrueWord;
            st.Tool.Shape = 'B';
            st.Tool.D1 = static_cast<float>(n);
            st.Autoindex = n > 15 ? kirvana::TrueWord : kirvana::FalseWord;
        }
        s.MaxBlocks = 5'000;
        s.MaxJumps = 1'000;
        s.MaxCharacters = 1'000'000;
        s.MaxHitWork = 5'000'000;
        return s;
    }();
    if (size < 4) return 0;
    kirvana::GatherTarget target;
    target.TargetMain = data[0];
    target.TargetSub = data[1] % 16;
    target.CallState.CountX = data[2] % 8;
    target.CallState.CountY = data[2] / 32;
    target.CallState.CallCode = (data[3] & 1) != 0 ? 98 : 68;
    target.CallState.Label = static_cast<std::int16_t>(data[3] / 2 % 8);
    std::vector<std::string> m1, m2;
    std::vector<std::string>* into = &m1;
    std::string_view text(reinterpret_cast<const char*>(data + 4), size - 4);
    while (!text.empty()) {
        std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        if (line == "%" && into == &m1)
            into = &m2;
        else
            into->emplace_back(line);
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    }
    if (!m1.empty()) target.MainBlockText = m1.front();
    kirvana::GatherResult gathered = kirvana::GatherTexts(m1, m2, target, settings);
    // The restart of the first entities the Reverse pass draws.
    kirvana::DrawingFile drawing = kirvana::DrawingFile::InMemory();
    std::string report;
    std::int16_t toolChanges = 0;
    kirvana::ReverseTexts(m1, m2, drawing, report, toolChanges, settings);
    const std::int32_t last = std::min<std::int32_t>(drawing.LastReadable(), 20);
    for (std::int32_t n = 2; n <= last; ++n) {
        kirvana::RestartPoint point;
        if (!drawing.Get(n, point.RestartEntity)) break;
        point.Kind = kirvana::RestartKindOf(point.RestartEntity);
        point.Record.TargetState = gathered.State;
        point.Record.BlockState = gathered.State;
        const std::int32_t hits = std::min<std::int32_t>(kirvana::EntityHits(point.RestartEntity), 3000);
        point.RestartHit = static_cast<std::int16_t>(hits > 1 ? 1 + data[0] % hits : 1);
        kirvana::HitPosition(point.RestartEntity, point.RestartHit, point.Record.TargetState);
        kirvana::RestartProgramInput input;
        input.Point = &point;
        input.Repositions = gathered.Repositions;
        input.M2 = m2;
        kirvana::RestartProgramLines(input);
    }
    return 0;
}

// Any bytes as motion texts: the part before the first line "%" is M1, the rest M2. The Reverse
// pass reads them to their end, or to its block bound, whatever they hold.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/drawing_file.h"
#include "analysis/expand.h"
#include "analysis/reverse.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const kirvana::ReverseSettings settings = [] {
        kirvana::ReverseSettings s;
        s.LoadY = 1250;
        s.XLimitMin = -25;
        s.XLimitMax = 2540;
        s.YLimitMin = -10;
        s.YLimitMax = 1270;
        s.ClampCount = 4;
        s.Stations.resize(20);
        for (int n = 1; n <= 20; ++n) {
            kirvana::Station& st = s.Stations[n - 1];
            st.Valid = kirvana::TrueWord;
            st.TNumber = static_cast<std::int16_t>(n);
            st.Tool.Valid = kirvana::TrueWord;
            st.Tool.Shape = 'B';
            st.Tool.D1 = static_cast<float>(n);
            st.Tool.Station = 10;
            st.Autoindex = n > 15 ? kirvana::TrueWord : kirvana::FalseWord;
        }
        s.MaxBlocks = 5'000;
        s.MaxJumps = 1'000;
        s.MaxCharacters = 1'000'000;
        s.MaxHitWork = 5'000'000;
        return s;
    }();
    std::vector<std::string> m1, m2;
    std::vector<std::string>* into = &m1;
    std::string_view text(reinterpret_cast<const char*>(data), size);
    while (!text.empty()) {
        std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        if (line == "%" && into == &m1) into = &m2;
        else into->emplace_back(line);
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    }
    kirvana::DrawingFile drawing = kirvana::DrawingFile::InMemory();
    std::string report;
    std::int16_t toolChanges = 0;
    kirvana::ReverseTexts(m1, m2, drawing, report, toolChanges, settings);
    // The drawing it wrote expands, within a small bound.
    kirvana::DrawingFile expanded = kirvana::DrawingFile::InMemory();
    kirvana::ExpandRecords(drawing, expanded, 5'000);
    return 0;
}

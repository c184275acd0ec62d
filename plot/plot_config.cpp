#include "plot/plot_config.h"

#include <cmath>
#include <vector>

#include "core/number.h"
#include "core/paths.h"
#include "core/text.h"

namespace kirvana {

int TrailStyleOf(const std::string& line) {
    if (line.empty()) return NoTrail;
    if (line[0] == 'S') return 0;
    if (line[0] == 'D') return 2;
    return NoTrail;
}

PlotConfig ReadPlotConfig(const std::string& rootDir) {
    PlotConfig config;
    auto lines = ReadLines(rootDir + "Plot.cfg");
    if (!lines) return config;
    // Each line trimmed and upper-cased; a yes-or-no line is yes when it holds "Y" anywhere.
    std::vector<std::string> text;
    for (const std::string& line : *lines) text.push_back(UpperCase(Trim(line)));
    auto yes = [&](std::size_t i) { return text[i].find('Y') != std::string::npos; };
    const std::size_t n = text.size();
    if (n > 0) config.RealTimePunchFlag = yes(0);
    if (n > 1) config.PunchIconOn = yes(1);
    if (n > 2) config.PunchTrailStyle = TrailStyleOf(text[2]);
    if (n > 3) {
        double width = ToNumber(text[3]);
        if (!std::isfinite(width) || width < 1) width = 1;
        if (width > 100) width = 100;
        config.ProfileTrailWidth = width;
    }
    if (n > 4) config.ProfileIconOn = yes(4);
    if (n > 5) config.ProfileTrailStyle = TrailStyleOf(text[5]);
    return config;
}

}  // namespace kirvana

// Plot.cfg: how the hits, the trails and the movement icon are drawn while the machine runs.
#pragma once

#include <string>

namespace kirvana {

inline constexpr int NoTrail = -999;

struct PlotConfig {
    bool RealTimePunchFlag = false;  // hits drawn during a run are filled
    bool PunchIconOn = false;
    int PunchTrailStyle = NoTrail;  // 0 solid, 2 dotted, NoTrail none
    double ProfileTrailWidth = 1;   // pixels, 1 to 100
    bool ProfileIconOn = false;
    int ProfileTrailStyle = NoTrail;
};

// The six lines of `rootDir` + "Plot.cfg"; a missing file, or missing lines, keep the defaults.
PlotConfig ReadPlotConfig(const std::string& rootDir);

// The style of a trail line: first letter "S" solid (0), "D" dotted (2), else no trail.
int TrailStyleOf(const std::string& line);

}  // namespace kirvana

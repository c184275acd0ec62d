// The machine of the Reverse pass tests: 2500 x 1250 travel from (-25, -10) to (2540, 1270),
// loaded at (0, 1250), two clamps, 20 stations: station n is T n, a tool "ROUND" of D1 10 on a
// station of type 10 (a margin of 5); station 20 is an autoindex station.
#pragma once

#include "analysis/reverse.h"

namespace kirvana {

inline ReverseSettings ReverseTestSettings() {
    ReverseSettings s;
    s.Travel.LoadPositionX = 0;
    s.Travel.LoadPositionY = 1250;
    s.Travel.XLimitMin = -25;
    s.Travel.XLimitMax = 2540;
    s.Travel.YLimitMin = -10;
    s.Travel.YLimitMax = 1270;
    s.ClampCount = 2;
    s.MachineType = 3;
    s.Stations.resize(20);
    for (int n = 1; n <= 20; ++n) {
        Station& st = s.Stations[n - 1];
        st.Valid = TrueWord;
        st.TNumber = static_cast<std::int16_t>(n);
        st.Tool.Valid = TrueWord;
        st.Tool.Shape = 'B';
        st.Tool.Name = ToolName("ROUND");
        st.Tool.D1 = 10;
        st.Tool.Station = static_cast<std::int16_t>(n == 20 ? 20 : 10);
        st.Autoindex = n == 20 ? TrueWord : FalseWord;
    }
    s.PlasmaTool.Valid = TrueWord;
    s.PlasmaTool.Shape = 'P';
    s.PlasmaTool.Name = ToolName("PLASMA");
    s.Now = [] { return std::string("01/01/26 00:00"); };
    return s;
}

}  // namespace kirvana

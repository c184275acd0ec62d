// The visual restart on the plot: the checks before the pick (the hit file no older than the
// drawing, a hit on view), the split of a picked pattern into its hits ("SplitCyc.drw", walked
// by the path keys in its place), and the restart point of the hit selected.
#pragma once

#include <cstdint>
#include <string>

#include "navigation/restart_screens.h"
#include "plot/path_stepper.h"
#include "plot/view.h"

namespace kirvana {

struct Process;

inline constexpr const char* VisualRefusalFirst = "Can Not Visually Restart";

// What the pick has come to.
struct VisualRestart {
    bool Active = false;         // the path keys pick a restart position
    std::int32_t Record = 0;     // the entity of the slot's drawing that was split; 0: none
    std::int32_t SplitHits = 0;  // its hits, records 2 on of "SplitCyc.drw"
};

// "SplitCyc.drw" of the installation.
std::string SplitDrawingPath(const Process& process);

// The drawing the path keys walk: the slot's, or the split one while a pattern is split.
std::string PickDrawingPath(const Process& process, int slot, const VisualRestart& visual);

// The hits of the slot's drawing inside the view (corners in table coordinates).
std::int32_t HitsOnView(const std::string& drawingPath, const PlotView& view);

// The start: refused while the machine runs; with a hit file older than the drawing; when no hit
// is on view. Empty when the pick may begin (`visual` then active, nothing split).
std::string StartVisualRestart(const Process& process, int slot, const PlotView& view, VisualRestart& visual);

// "SPLI&T" on the entity `record`: a pattern is written into "SplitCyc.drw" hit by hit, so that
// the path keys walk its hits. Empty when split, else the reason (not a pattern, a file fault).
std::string SplitPickedEntity(const Process& process, int slot, std::int32_t record, VisualRestart& visual);

// "&SELECT" on the place `pick` of the walk: the hit's restart point into the session. A split
// pattern's record k is its hit k - 1; any other entity restarts at its first hit.
std::string SelectVisualRestart(const Process& process, int slot, const PickState& pick, const VisualRestart& visual,
                                RestartSession& session);

}  // namespace kirvana

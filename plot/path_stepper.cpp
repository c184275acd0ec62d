#include "plot/path_stepper.h"

#include <algorithm>

#include "core/text.h"

namespace kirvana {

void StartPath(PathStepper& stepper, DrawingFile& drawing) {
    stepper = PathStepper{};
    stepper.Last = std::max(PathBeginning, drawing.LastReadable());
}

std::string PathKey(PathStepper& stepper, int key, DrawingFile& drawing, Plotter& plotter, int plot) {
    std::int32_t next = stepper.Current;
    switch (key) {
        case 1:
            next = std::min(PathBeginning + 1, stepper.Last);
            break;
        case 2:
            next = std::max(PathBeginning, stepper.Current - 1);
            break;
        case 3:
            next = std::min(stepper.Last, stepper.Current + 1);
            break;
        case 4:
            next = stepper.Last;
            break;
        case 5:
            stepper.Pick = {stepper.Current, true, false};
            break;
        case 6:
            stepper.Pick.Record = stepper.Current;
            stepper.Pick.Selected = true;
            break;
        default:
            break;
    }
    EntityRec rec;
    if (next != stepper.Current) {
        if (stepper.Current > PathBeginning && drawing.Get(stepper.Current, rec))
            plotter.PlotEntity(plot, rec, ColourMode::Background, false);
        stepper.Current = next;
        if (stepper.Current > PathBeginning && drawing.Get(stepper.Current, rec))
            plotter.PlotEntity(plot, rec, ColourMode::Highlight, false);
    }
    if (stepper.Current <= PathBeginning || !drawing.Get(stepper.Current, rec)) return "Beginning";
    return std::string(Trim(rec.BlockText));
}

}  // namespace kirvana

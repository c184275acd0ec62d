// The path keys (view modes 5 to 8): a walk through the drawing, entity by entity and, inside a
// pattern, hit by hit, the current place highlighted, and the place the operator picks for a
// visual restart.
#pragma once

#include <cstdint>
#include <string>

#include "analysis/drawing_file.h"
#include "plot/plotter.h"

namespace kirvana {

// Record 1 is the Sheet: standing on it is "Beginning", the place before the first entity.
inline constexpr std::int32_t PathBeginning = 1;

// What the visual restart takes from the walk.
struct PickState {
    std::int32_t Record = PathBeginning;  // the entity picked
    std::int32_t Hit = 0;                 // the hit inside it, from 0; 0 for an entity of one step
    std::int32_t ExpandedHit = 0;         // the hit's record in the expanded file; 0 for no hit
    bool Split = false;                   // "SPLI&T" pressed on it
    bool Selected = false;                // "&SELECT" pressed
};

struct PathStepper {
    std::int32_t Current = PathBeginning;
    std::int32_t CurrentHit = 0;        // the hit of a pattern the walk stands on, from 0
    std::int32_t Last = PathBeginning;  // the drawing's last readable record
    PickState Pick;
};

// Starts the walk at the beginning of the drawing.
void StartPath(PathStepper& stepper, DrawingFile& drawing);

// The path button's index: 1 first, 2 previous, 3 next, 4 last, 5 split, 6 select. A pattern
// is walked hit by hit; any other entity is one step. The former place goes back to its
// background colour and the new one is highlighted: a hit of a pattern alone, any other entity
// whole. Returns what TextPanel shows of the current place: "Beginning" or the entity's block.
std::string PathKey(PathStepper& stepper, int key, DrawingFile& drawing, Plotter& plotter, int plot);

// The steps of a record on the walk: the hits of a pattern, 1 for anything else.
std::int32_t PathSteps(const EntityRec& rec);

}  // namespace kirvana

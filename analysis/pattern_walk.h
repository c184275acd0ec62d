// The hits of a Grid Pattern record, walked to and fro, as both the outline and the expansion of a
// grid walk them.
#pragma once

#include "analysis/entity.h"
#include "core/grid_walk.h"

namespace kirvana {

// A grid record's working values: the record keeps what was stored, a turned grid (`Counts[3]`)
// is read with rows and columns exchanged.
inline GridWalk GridParameters(const EntityRec& rec) {
    GridWalk grid;
    grid.RowPitch = rec.Values[2];
    grid.ColumnPitch = rec.Values[4];
    grid.PerRow = rec.Counts[1];
    grid.Rows = rec.Counts[2];
    grid.Angle = rec.Values[10];
    if (rec.Counts[3] != 0) {
        // Turned by 90 degrees: pitches and counts exchanged, the angle mirrored, the row
        // pitch negated.
        grid.RowPitch = -static_cast<double>(rec.Values[4]);
        grid.ColumnPitch = rec.Values[2];
        grid.PerRow = rec.Counts[2];
        grid.Rows = rec.Counts[1];
        grid.Angle = NormaliseAngle(90 - static_cast<double>(rec.Values[10]));
    }
    return grid;
}

}  // namespace kirvana

// The hits of a Grid Pattern, walked to and fro, as both the outline and the expansion of a
// grid walk them. Positions run in double precision.
#pragma once

#include "analysis/entity.h"
#include "core/geometry.h"

namespace kirvana {

// A grid's working values: the record keeps what was stored, a turned grid (`Counts[3]`) is
// read with rows and columns exchanged.
struct GridWalk {
    double RowPitch = 0;     // along a row
    double ColumnPitch = 0;  // between rows
    int PerRow = 0;          // hits per row
    int Rows = 0;
    double Angle = 0;  // direction of the first row
};

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

// Calls visit(row, hit, x, y) for every hit from the first at (x, y), rows and hits counted
// from 1; a visit returning false ends the walk, and the walk then returns false.
template <typename Visit>
bool WalkGrid(const GridWalk& grid, double x, double y, Visit&& visit) {
    // The step between rows keeps its direction: the angle plus 90.
    double rowStepX = 0, rowStepY = 0;
    PolarToXY(grid.ColumnPitch, NormaliseAngle(grid.Angle + 90), rowStepX, rowStepY);
    double direction = grid.Angle;
    for (int row = 1; row <= grid.Rows; ++row) {
        double stepX = 0, stepY = 0;
        PolarToXY(grid.RowPitch, direction, stepX, stepY);
        for (int hit = 1; hit <= grid.PerRow; ++hit) {
            if (!visit(row, hit, x, y)) return false;
            if (hit < grid.PerRow) {
                x += stepX;
                y += stepY;
            }
        }
        if (row < grid.Rows) {
            x += rowStepX;
            y += rowStepY;
        }
        // Every second row runs backwards.
        direction += 180;
    }
    return true;
}

}  // namespace kirvana

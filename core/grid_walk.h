// The hits of a grid of hits walked to and fro, row by row: the walk the drawing's expansion,
// the outline of a grid and the simulated card all make. Positions run in double precision.
#pragma once

#include "core/geometry.h"

namespace kirvana {

// A grid's working values.
struct GridWalk {
    double RowPitch = 0;     // along a row
    double ColumnPitch = 0;  // between rows
    int PerRow = 0;          // hits per row
    int Rows = 0;
    double Angle = 0;  // direction of the first row
};

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

// The hits of the patterns as every reader of a drawing works them out again: the grid walked
// to and fro (the outline and the expansion), and the hits of each pattern (the expansion and
// the plot). Positions run in double precision.
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

// Calls hit(x, y, cAngle) for every hit of a Linear (220), Grid (225) or Arc Pattern (230) as
// the expansion makes them; cAngle is null where the hit keeps the pattern's C angle. A hit
// returning false ends the walk. Other kinds have no hits here.
template <typename Hit>
void WalkPatternHits(const EntityRec& rec, Hit&& hit) {
    switch (rec.Kind) {
        case EntityKind::LinearPattern: {
            // From Entry, the polar step (pitch, angle) worked out once and added for each
            // further hit.
            double stepX = 0, stepY = 0;
            PolarToXY(rec.Values[2], rec.Values[10], stepX, stepY);
            double x = rec.Points.Entry.X;
            double y = rec.Points.Entry.Y;
            for (int k = 1; k <= rec.Counts[1]; ++k) {
                if (!hit(x, y, static_cast<const double*>(nullptr))) return;
                x += stepX;
                y += stepY;
            }
            return;
        }
        case EntityKind::GridPattern:
            // Rows walked to and fro from Entry.
            WalkGrid(GridParameters(rec), rec.Points.Entry.X, rec.Points.Entry.Y,
                     [&](int, int, double x, double y) { return hit(x, y, static_cast<const double*>(nullptr)); });
            return;
        case EntityKind::ArcPattern: {
            // Hit k at the radius copy and the first angle's copy plus k steps, from the centre
            // afresh; the C angle the base, turning with the pattern when Counts[2] says so.
            const double radius = rec.Values[5];
            const double first = rec.Values[13];
            const double step = rec.Values[12];
            const double base = rec.CycleRotate != 0 ? rec.Values[15] : rec.Tool.Extra1;
            const bool turns = rec.Counts[2] != 0;
            for (int k = 0; k < rec.Counts[1]; ++k) {
                double dx = 0, dy = 0;
                PolarToXY(radius, first + k * step, dx, dy);
                const double c = turns ? base + k * step : base;
                if (!hit(rec.Points.Position.X + dx, rec.Points.Position.Y + dy, &c)) return;
            }
            return;
        }
        default:
            return;
    }
}

}  // namespace kirvana

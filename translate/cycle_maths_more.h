// Arc geometry shared by the passes that read arcs from the motion text: the centre, radius,
// start angle and signed sweep of an arc from its start and end points, given either by the
// centre offset I, J or by the radius R (negative R: the longer arc).
#pragma once

#include <cmath>

#include "core/geometry.h"

namespace kirvana {

struct ArcGeometry {
    double CentreX = 0, CentreY = 0;
    double Radius = 0;
    double StartAngle = 0;  // seen from the centre, 0 <= angle < 360
    double Sweep = 0;       // signed included angle; 360 or -360 for a full circle
};

enum class ArcCheck { Ok, InvalidIJ, InvalidR };

// The sweep of an arc: `sense` +1 turns it positive (0 becomes 360), -1 negative (0 becomes -360).
// Both sweep rules of the Blend pass's arc handlers, the centre form's and the radius form's,
// come down to this with the sense they pick.
inline double SweepOfSense(double sweep, int sense) {
    if (sense > 0) {
        if (sweep == 0) sweep = 360;
        while (sweep < 0) sweep += 360;
        if (sweep == 0) sweep = 360;
    } else {
        if (sweep == 0) sweep = -360;
        while (sweep > 0) sweep -= 360;
        if (sweep == 0) sweep = -360;
    }
    return sweep;
}

// The arc from (startX, startY) to (endX, endY). With r 0 it is given by its centre, the start
// point plus (i, j), and the two radii may differ by 0.05 at most; `centreSense` signs its
// sweep. Otherwise by its radius: of the two centres on the chord's normal the one whose arc
// is at most 180 degrees, or for a negative r the other; `radiusSense` signs the sweeps.
// These are steps 2 and 3 of the Blend pass's G102 and G103 handlers, the sub-steps of step 3
// numbered 1 to 8 within it; the caller has read R, I and J (step 1).
inline ArcCheck ArcThrough(double startX, double startY, double endX, double endY, double r, double i, double j,
                           int centreSense, int radiusSense, ArcGeometry& arc) {
    // 2. By the centre: the two radii may differ by 0.05 at most.
    if (r == 0) {
        arc.Radius = std::sqrt(i * i + j * j);
        arc.CentreX = startX + i;
        arc.CentreY = startY + j;
        double startRadius, endRadius, endAngle;
        XYToPolar(startX - arc.CentreX, startY - arc.CentreY, startRadius, arc.StartAngle);
        XYToPolar(endX - arc.CentreX, endY - arc.CentreY, endRadius, endAngle);
        if (!(std::fabs(startRadius - endRadius) <= 0.05)) return ArcCheck::InvalidIJ;
        arc.Sweep = SweepOfSense(endAngle - arc.StartAngle, centreSense);
        return ArcCheck::Ok;
    }
    // 3. By the radius.
    // 1. A negative R asks for the longer arc.
    bool largeArc = r < 0;
    r = std::fabs(r);
    // 2. The chord, never quite upright.
    double dx = endX - startX, dy = endY - startY;
    if (dx == 0) dx = 1E-15;
    // 3. Its angle and half its length.
    double chordAngle = RadToDeg(std::atan(dy / dx));
    double halfChord = std::sqrt(dx * dx + dy * dy) / 2;
    // 4. A radius shorter than half the chord reaches no arc.
    if (!(r >= halfChord)) return ArcCheck::InvalidR;
    // 5. The chord's middle and the centre's height above it.
    double midX = startX + dx / 2, midY = startY + dy / 2;
    double height = std::sqrt(r * r - halfChord * halfChord);
    ArcGeometry candidates[2];
    for (int k = 0; k < 2; ++k) {
        // 6. The two candidate centres; 7. the angles and sweep of each.
        double ox, oy;
        PolarToXY(height, chordAngle + (k == 0 ? 90 : 270), ox, oy);
        ArcGeometry& c = candidates[k];
        c.Radius = r;
        c.CentreX = midX + ox;
        c.CentreY = midY + oy;
        double startRadius, endRadius, endAngle;
        XYToPolar(startX - c.CentreX, startY - c.CentreY, startRadius, c.StartAngle);
        XYToPolar(endX - c.CentreX, endY - c.CentreY, endRadius, endAngle);
        c.Sweep = SweepOfSense(endAngle - c.StartAngle, radiusSense);
    }
    // 8. The second candidate for an arc of at most 180 degrees, unless R asked for the longer.
    bool shortSecond = std::fabs(candidates[1].Sweep) <= 180;
    arc = candidates[(shortSecond != largeArc) ? 1 : 0];
    return ArcCheck::Ok;
}

}  // namespace kirvana

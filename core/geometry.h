// Angles in degrees, quadrants and points. All arithmetic is double.
#pragma once

#include <array>

namespace kirvana {

// Into 0 <= angle < 360.
double NormaliseAngle(double angle);
// NormaliseAngle(a + b) as a single.
float AddAngles(double a, double b);
double RadToDeg(double radians);
// The normalised angle in radians: 0 up to 2 Pi.
double DegToRad(double degrees);
void PolarToXY(double radius, double angle, double& x, double& y);
// Radius and angle (0 <= angle < 360) by the quadrant of the signs.
void XYToPolar(double x, double y, double& radius, double& angle);
// Turns the point about the centre by the angle.
void RotatePoint(double centreX, double centreY, double& x, double& y, double angle);
// True when the point lies in the box, edges included; corners in any order.
bool PointInBox(double x1, double y1, double x2, double y2, double x, double y);

// One side of a nibbled rectangle (G65): its length and its direction in degrees.
struct RectangleSide {
    double Length, Direction;
};
// The four sides of the rectangle with signed sides I and J, in the order they are nibbled: along
// I, along J, back along I, back along J. The signs give the directions.
std::array<RectangleSide, 4> RectangleSides(double i, double j);

}  // namespace kirvana

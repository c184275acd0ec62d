#include "core/geometry.h"

#include <cmath>
#include <utility>

#include "core/number.h"

namespace kirvana {

double NormaliseAngle(double angle) {
    // Far-off values are brought near first, so that the stepping below stays short.
    if (std::fabs(angle) > 360000.0) angle = std::fmod(angle, 360.0);
    while (angle < 0) angle += 360;
    while (angle >= 360) angle -= 360;
    return angle;
}

float AddAngles(double a, double b) { return static_cast<float>(NormaliseAngle(a + b)); }

double RadToDeg(double radians) { return radians * 180 / Pi; }

double DegToRad(double degrees) { return NormaliseAngle(degrees) / 180 * Pi; }

void PolarToXY(double radius, double angle, double& x, double& y) {
    double radians = DegToRad(angle);
    x = radius * std::cos(radians);
    y = radius * std::sin(radians);
}

void XYToPolar(double x, double y, double& radius, double& angle) {
    auto sign = [](double v) { return v < 0 ? '-' : (v > 0 ? '+' : '0'); };
    char sx = sign(x), sy = sign(y);
    x = std::fabs(x);
    y = std::fabs(y);
    auto a = [&] { return RadToDeg(std::atan(y / x)); };
    if (sx == '+')
        angle = sy == '+' ? a() : (sy == '0' ? 0 : 360 - a());
    else if (sx == '0')
        angle = sy == '+' ? 90 : (sy == '0' ? 0 : 270);
    else
        angle = sy == '+' ? 180 - a() : (sy == '0' ? 180 : 180 + a());
    radius = std::sqrt(x * x + y * y);
    angle = NormaliseAngle(angle);
}

void RotatePoint(double centreX, double centreY, double& x, double& y, double angle) {
    double radius, start;
    XYToPolar(x - centreX, y - centreY, radius, start);
    double dx, dy;
    PolarToXY(radius, start + angle, dx, dy);
    x = centreX + dx;
    y = centreY + dy;
}

bool PointInBox(double x1, double y1, double x2, double y2, double x, double y) {
    if (x1 > x2) std::swap(x1, x2);
    if (y1 > y2) std::swap(y1, y2);
    return x1 <= x && x <= x2 && y1 <= y && y <= y2;
}

std::array<RectangleSide, 4> RectangleSides(double i, double j) {
    return {{{std::fabs(i), i >= 0 ? 0.0 : 180.0},
             {std::fabs(j), j >= 0 ? 90.0 : 270.0},
             {std::fabs(i), i >= 0 ? 180.0 : 0.0},
             {std::fabs(j), j >= 0 ? 270.0 : 90.0}}};
}

}  // namespace kirvana

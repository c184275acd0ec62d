#include "core/geometry.h"

#include <cmath>

#include <gtest/gtest.h>

#include "core/number.h"
#include "core/station_kind.h"

using namespace kirvana;

TEST(Angles, Normalise) {
    EXPECT_DOUBLE_EQ(NormaliseAngle(-10), 350);
    EXPECT_DOUBLE_EQ(NormaliseAngle(720), 0);
    EXPECT_DOUBLE_EQ(NormaliseAngle(360), 0);
    EXPECT_DOUBLE_EQ(NormaliseAngle(359.5), 359.5);
    EXPECT_DOUBLE_EQ(NormaliseAngle(-720.5), 359.5);
    double far = NormaliseAngle(1e300);
    EXPECT_TRUE(far >= 0 && far < 360);
    EXPECT_TRUE(std::isnan(NormaliseAngle(NAN)));
}

TEST(Angles, AddAndConvert) {
    EXPECT_FLOAT_EQ(AddAngles(350, 20), 10.0f);
    EXPECT_DOUBLE_EQ(RadToDeg(Pi), 180);
    EXPECT_DOUBLE_EQ(RadToDeg(-Pi / 2), -90);
    EXPECT_DOUBLE_EQ(DegToRad(-90), 270.0 / 180 * Pi);
    EXPECT_DOUBLE_EQ(DegToRad(180), Pi);
}

TEST(Angles, XYToPolarQuadrants) {
    double r, a;
    XYToPolar(0, 0, r, a);
    EXPECT_DOUBLE_EQ(r, 0);
    EXPECT_DOUBLE_EQ(a, 0);
    XYToPolar(1, 1, r, a);
    EXPECT_NEAR(a, 45, 1e-6);
    EXPECT_DOUBLE_EQ(r, std::sqrt(2.0));
    XYToPolar(-1, 1, r, a);
    EXPECT_NEAR(a, 135, 1e-6);
    XYToPolar(-1, -1, r, a);
    EXPECT_NEAR(a, 225, 1e-6);
    XYToPolar(1, -1, r, a);
    EXPECT_NEAR(a, 315, 1e-6);
    XYToPolar(5, 0, r, a);
    EXPECT_DOUBLE_EQ(a, 0);
    XYToPolar(0, 5, r, a);
    EXPECT_DOUBLE_EQ(a, 90);
    XYToPolar(-5, 0, r, a);
    EXPECT_DOUBLE_EQ(a, 180);
    XYToPolar(0, -5, r, a);
    EXPECT_DOUBLE_EQ(a, 270);
    EXPECT_DOUBLE_EQ(r, 5);
}

TEST(Angles, PolarAndRotate) {
    double x, y;
    PolarToXY(10, 90, x, y);
    EXPECT_NEAR(x, 0, 1e-7);
    EXPECT_NEAR(y, 10, 1e-9);
    PolarToXY(10, -90, x, y);
    EXPECT_NEAR(y, -10, 1e-9);
    x = 20;
    y = 10;
    RotatePoint(10, 10, x, y, 90);
    EXPECT_NEAR(x, 10, 1e-6);
    EXPECT_NEAR(y, 20, 1e-6);
}

TEST(Box, EdgesIncludedCornersInAnyOrder) {
    EXPECT_TRUE(PointInBox(10, 10, 0, 0, 10, 0));
    EXPECT_TRUE(PointInBox(0, 0, 10, 10, 5, 5));
    EXPECT_FALSE(PointInBox(0, 0, 10, 10, 10.001, 5));
}

TEST(Stations, KindTestsAndWrap) {
    EXPECT_TRUE(IsFromTen(10));
    EXPECT_FALSE(IsFromTen(9));
    EXPECT_TRUE(IsOneToNine(1));
    EXPECT_TRUE(IsOneToNine(9));
    EXPECT_FALSE(IsOneToNine(0));
    EXPECT_TRUE(IsFromTwenty(20));
    EXPECT_FALSE(IsFromTwenty(19));
    EXPECT_EQ(WrapStation(105), 5);
    EXPECT_EQ(WrapStation(100), 100);
    EXPECT_EQ(WrapStation(200), 100);
    EXPECT_EQ(WrapStation(301), 1);
    EXPECT_EQ(WrapStation(7), 7);
}

TEST(Geometry, RectangleSidesGoRoundInTheDirectionsOfTheSigns) {
    auto sides = RectangleSides(30, -20);
    EXPECT_EQ(sides[0].Length, 30);
    EXPECT_EQ(sides[0].Direction, 0);
    EXPECT_EQ(sides[1].Length, 20);
    EXPECT_EQ(sides[1].Direction, 270);
    EXPECT_EQ(sides[2].Direction, 180);
    EXPECT_EQ(sides[3].Direction, 90);
    sides = RectangleSides(-5, 0);
    EXPECT_EQ(sides[0].Direction, 180);
    EXPECT_EQ(sides[1].Length, 0);
    EXPECT_EQ(sides[1].Direction, 90);
    EXPECT_EQ(sides[2].Direction, 0);
    EXPECT_EQ(sides[3].Direction, 270);
}

// The view arithmetic: the fit under each orientation, zoom out, the zoom to two corners, the
// pan, the cursor's steps and its clipping at the edge of the view.
#include <gtest/gtest.h>

#include "plot/view.h"

namespace kirvana {
namespace {

FitInput Sheet2500(int orientation, double boxWidth = 800, double boxHeight = 600) {
    return {boxWidth, boxHeight, 0, 0, 2500, 1250, orientation};
}

TEST(PlotView, FitOfA2500By1250SheetCoversTheSheetAndItsMargin) {
    PlotView view;
    FitView(view, Sheet2500(1));
    EXPECT_LE(view.ViewTopLeft.X, -10);
    EXPECT_GE(view.ViewBottomRight.X, 2510);
    EXPECT_LE(std::min(view.ViewTopLeft.Y, view.ViewBottomRight.Y), -10);
    EXPECT_GE(std::max(view.ViewTopLeft.Y, view.ViewBottomRight.Y), 1260);
}

TEST(PlotView, FitStretchesTheHeightInANarrowBoxFromTheLowEnd) {
    PlotView view;
    FitView(view, Sheet2500(1, 800, 600));  // box 4:3, sheet about 2:1: the width fits
    EXPECT_DOUBLE_EQ(view.ViewTopLeft.X, -10);
    EXPECT_DOUBLE_EQ(view.ViewBottomRight.X, 2510);
    EXPECT_DOUBLE_EQ(view.ViewBottomRight.Y, -10);  // orientation 1: low Y at the bottom
    EXPECT_DOUBLE_EQ(view.ViewTopLeft.Y, -10 + 2520 / (800.0 / 600));
}

TEST(PlotView, FitStretchesTheWidthInAWideBox) {
    PlotView view;
    FitView(view, Sheet2500(1, 1000, 200));  // box 5:1: the height fits
    EXPECT_DOUBLE_EQ(view.ViewBottomRight.Y, -10);
    EXPECT_DOUBLE_EQ(view.ViewTopLeft.Y, 1260);
    EXPECT_DOUBLE_EQ(view.ViewTopLeft.X, -10);
    EXPECT_DOUBLE_EQ(view.ViewBottomRight.X, -10 + 1270 * 5.0);
}

TEST(PlotView, OtherOrientationsPutTheLowYAtTheTop) {
    for (int orientation : {0, 2, 3, 4}) {
        PlotView view;
        FitView(view, Sheet2500(orientation, 1000, 200));
        EXPECT_DOUBLE_EQ(view.ViewTopLeft.Y, -10) << orientation;
        EXPECT_DOUBLE_EQ(view.ViewBottomRight.Y, 1260) << orientation;
    }
}

TEST(PlotView, FitUsesTheTravelLimitsAsWritten) {
    // The far side is abs(limit) + sheet + 10, so a negative limit widens both sides.
    PlotView view;
    FitView(view, {1000, 200, -25, -10, 2500, 1250, 1});
    EXPECT_DOUBLE_EQ(view.ViewTopLeft.X, -35);
    EXPECT_DOUBLE_EQ(view.ViewBottomRight.Y, -20);
    EXPECT_DOUBLE_EQ(view.ViewTopLeft.Y, 10 + 1250 + 10);
}

TEST(PlotView, ZoomOutKeepsTheCentreAndGrowsByOneAndAHalf) {
    PlotView view;
    FitView(view, Sheet2500(1));
    PlotView before = view;
    ZoomOut(view);
    auto centre = [](const PlotView& v, bool x) {
        return x ? (v.ViewTopLeft.X + v.ViewBottomRight.X) / 2 : (v.ViewTopLeft.Y + v.ViewBottomRight.Y) / 2;
    };
    EXPECT_DOUBLE_EQ(centre(view, true), centre(before, true));
    EXPECT_DOUBLE_EQ(centre(view, false), centre(before, false));
    EXPECT_DOUBLE_EQ(view.ViewBottomRight.X - view.ViewTopLeft.X,
                     1.5 * (before.ViewBottomRight.X - before.ViewTopLeft.X));
    EXPECT_DOUBLE_EQ(view.ViewBottomRight.Y - view.ViewTopLeft.Y,
                     1.5 * (before.ViewBottomRight.Y - before.ViewTopLeft.Y));
    EXPECT_TRUE(view.ViewChanged);
    ZoomOut(view);  // not limited
    EXPECT_DOUBLE_EQ(view.ViewBottomRight.X - view.ViewTopLeft.X,
                     2.25 * (before.ViewBottomRight.X - before.ViewTopLeft.X));
}

TEST(PlotView, ZoomWithTwoEqualCornersLeavesTheView) {
    PlotView view;
    FitView(view, Sheet2500(1));
    PlotView before = view;
    EXPECT_FALSE(ZoomToCorners(view, {100, 100}, {100, 100}, 4.0 / 3, 1));
    EXPECT_EQ(view.ViewTopLeft, before.ViewTopLeft);
    EXPECT_EQ(view.ViewBottomRight, before.ViewBottomRight);
    EXPECT_FALSE(view.ViewChanged);
}

TEST(PlotView, ZoomKeepsTheHeightWhenTheBoxIsWider) {
    PlotView view;
    ASSERT_TRUE(ZoomToCorners(view, {300, 200}, {100, 100}, 2.0, 1));  // 200 x 100 selected, box 2:1
    EXPECT_DOUBLE_EQ(view.ViewTopLeft.X, 100);
    EXPECT_DOUBLE_EQ(view.ViewBottomRight.X, 300);
    EXPECT_DOUBLE_EQ(view.ViewTopLeft.Y, 200);
    EXPECT_DOUBLE_EQ(view.ViewBottomRight.Y, 100);
    EXPECT_TRUE(view.ViewChanged);
    ASSERT_TRUE(ZoomToCorners(view, {100, 100}, {200, 300}, 2.0, 0));  // 100 x 200: width extended
    EXPECT_DOUBLE_EQ(view.ViewBottomRight.X, 100 + 200 * 2.0);
    EXPECT_DOUBLE_EQ(view.ViewTopLeft.Y, 100);
}

TEST(PlotView, ZoomWithAFlatSelectionTakesTheOtherSide) {
    PlotView view;
    ASSERT_TRUE(ZoomToCorners(view, {100, 50}, {300, 50}, 1.0, 0));  // height 0 takes the width, 200
    EXPECT_DOUBLE_EQ(view.ViewTopLeft.Y, 50);
    EXPECT_DOUBLE_EQ(view.ViewBottomRight.Y, 250);
}

TEST(PlotView, PanMakesTheCursorTheCentre) {
    PlotView view;
    SetViewCorners(view, 0, 0, 200, 100, 1);
    PanTo(view, {500, 400});
    EXPECT_DOUBLE_EQ((view.ViewTopLeft.X + view.ViewBottomRight.X) / 2, 500);
    EXPECT_DOUBLE_EQ((view.ViewTopLeft.Y + view.ViewBottomRight.Y) / 2, 400);
    EXPECT_DOUBLE_EQ(view.ViewBottomRight.X - view.ViewTopLeft.X, 200);
    EXPECT_DOUBLE_EQ(view.ViewTopLeft.Y - view.ViewBottomRight.Y, 100);
    EXPECT_TRUE(view.ViewChanged);
}

TEST(PlotCursor, StartsInTheMiddleWithAStepOfAWidthOver64) {
    PlotView view;
    SetViewCorners(view, 0, 0, 640, 480, 1);
    PlotCursor cursor;
    EnterCursorMode(cursor, view);
    EXPECT_EQ(cursor.Points[0], (PlotPoint{320, 240}));
    EXPECT_DOUBLE_EQ(cursor.CursorStep, 10);
    EXPECT_DOUBLE_EQ(cursor.CrossSize, 10);
}

TEST(PlotCursor, UpAddsWithOrientationOneAndTakesAwayOtherwise) {
    PlotView view;
    SetViewCorners(view, 0, 0, 640, 480, 1);
    PlotCursor cursor;
    EnterCursorMode(cursor, view);
    PlotCursorKey(cursor, view, 1, 3, 640, 480, 1);
    EXPECT_DOUBLE_EQ(cursor.Points[0].Y, 250);
    PlotCursorKey(cursor, view, 1, 4, 640, 480, 1);
    PlotCursorKey(cursor, view, 1, 4, 640, 480, 1);
    EXPECT_DOUBLE_EQ(cursor.Points[0].Y, 230);
    PlotCursorKey(cursor, view, 1, 3, 640, 480, 0);
    EXPECT_DOUBLE_EQ(cursor.Points[0].Y, 220);
    PlotCursorKey(cursor, view, 1, 1, 640, 480, 0);
    EXPECT_DOUBLE_EQ(cursor.Points[0].X, 310);
    PlotCursorKey(cursor, view, 1, 2, 640, 480, 0);
    PlotCursorKey(cursor, view, 1, 2, 640, 480, 0);
    EXPECT_DOUBLE_EQ(cursor.Points[0].X, 330);
}

TEST(PlotCursor, StandsStillAtTheEdgeOfTheView) {
    PlotView view;
    SetViewCorners(view, 0, 0, 640, 480, 1);
    PlotCursor cursor;
    EnterCursorMode(cursor, view);
    for (int i = 0; i < 40; ++i) PlotCursorKey(cursor, view, 4, 2, 640, 480, 1);
    EXPECT_DOUBLE_EQ(cursor.Points[0].X, 640);
    CursorKeyResult result = PlotCursorKey(cursor, view, 4, 2, 640, 480, 1);
    EXPECT_FALSE(result.CursorMoved);
    EXPECT_DOUBLE_EQ(cursor.Points[0].X, 640);
    for (int i = 0; i < 40; ++i) PlotCursorKey(cursor, view, 4, 3, 640, 480, 1);
    EXPECT_DOUBLE_EQ(cursor.Points[0].Y, 480);
}

TEST(PlotCursor, ZoomTakesTwoCornersThenSetsTheView) {
    PlotView view;
    SetViewCorners(view, 0, 0, 640, 480, 1);
    PlotCursor cursor;
    EnterCursorMode(cursor, view);
    CursorKeyResult first = PlotCursorKey(cursor, view, 1, 6, 640, 480, 1);
    EXPECT_TRUE(first.ShowZoomRect);
    EXPECT_FALSE(first.ViewSet);
    EXPECT_EQ(cursor.Active, 1);
    for (int i = 0; i < 8; ++i) PlotCursorKey(cursor, view, 2, 2, 640, 480, 1);
    for (int i = 0; i < 6; ++i) PlotCursorKey(cursor, view, 2, 3, 640, 480, 1);
    CursorKeyResult second = PlotCursorKey(cursor, view, 2, 6, 640, 480, 1);
    EXPECT_TRUE(second.ViewSet);
    EXPECT_TRUE(second.Finished);
    EXPECT_DOUBLE_EQ(view.ViewTopLeft.X, 320);
    EXPECT_DOUBLE_EQ(view.ViewBottomRight.Y, 240);
    EXPECT_DOUBLE_EQ(view.ViewTopLeft.Y, 300);  // 80 x 60 selected in a 4:3 box
    EXPECT_DOUBLE_EQ(view.ViewBottomRight.X, 400);
    EXPECT_TRUE(view.ViewChanged);
}

TEST(PlotCursor, SelectInPanMovesTheView) {
    PlotView view;
    SetViewCorners(view, 0, 0, 640, 480, 1);
    PlotCursor cursor;
    EnterCursorMode(cursor, view);
    PlotCursorKey(cursor, view, 4, 2, 640, 480, 1);
    CursorKeyResult result = PlotCursorKey(cursor, view, 4, 6, 640, 480, 1);
    EXPECT_TRUE(result.ViewSet);
    EXPECT_DOUBLE_EQ(view.ViewTopLeft.X, 10);
    EXPECT_DOUBLE_EQ(view.ViewBottomRight.X, 650);
}

TEST(PlotCursor, KeyFiveDoesNothing) {
    PlotView view;
    SetViewCorners(view, 0, 0, 640, 480, 1);
    PlotCursor cursor;
    EnterCursorMode(cursor, view);
    CursorKeyResult result = PlotCursorKey(cursor, view, 1, 5, 640, 480, 1);
    EXPECT_FALSE(result.CursorMoved || result.ViewSet || result.ShowZoomRect || result.Finished);
}

}  // namespace
}  // namespace kirvana

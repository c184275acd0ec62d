// A pan by the graphics keys on FrontEnd moves the box's kept picture; a zoom draws it whole.
#include "screens/plot_box.h"
#include "tests/screens/panel_fixture.h"

using namespace kirvana;

TEST_F(PanelTest, APanByTheKeysMovesTheKeptPictureAndAZoomDrawsItWhole) {
    ASSERT_EQ(Start(), 0);
    Select(1, "GRID03");
    PlotBox* box = F().Plot(1);
    const PlotView fitted = box->View();
    Key(key::F7);
    Key('P');
    Key(key::Right);
    Key(key::Right);
    Key(key::Up);
    Key('S');
    EXPECT_TRUE(box->View().ViewChanged);
    EXPECT_NE(box->View().ViewTopLeft.X, fitted.ViewTopLeft.X);
    EXPECT_TRUE(box->LastRedrawMoved());
    Key('O');
    EXPECT_FALSE(box->LastRedrawMoved());
    // Redraw goes back to the fit, a new scale: drawn whole.
    Key('R');
    EXPECT_FALSE(box->LastRedrawMoved());
    EXPECT_EQ(box->View().ViewTopLeft, fitted.ViewTopLeft);
}

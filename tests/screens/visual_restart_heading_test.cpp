// The heading over FrontEnd's path keys: "VISUAL RESTART" while the visual restart has the path
// keys on the plot, and gone with them after CANCEL or on the zoom and pan keys.
#include "navigation/navigation.h"
#include "screens/front_end.h"
#include "screens/restart_forms.h"
#include "tests/screens/simulated_card_fixture.h"

using namespace kirvana;

namespace {

class VisualRestartHeadingTest : public SimulatedCardFormsTest {
protected:
    void SetUp() override {
        SimulatedCardFormsTest::SetUp();
        StartWith("GRID03");
    }
};

TEST(PathHeading, VisualRestartOnThePathKeysOnly) {
    for (int mode : {5, 6, 7, 8}) EXPECT_EQ(PathHeading(static_cast<std::int16_t>(mode)), "VISUAL RESTART") << mode;
    for (int mode : {0, 1, 2, 4}) EXPECT_EQ(PathHeading(static_cast<std::int16_t>(mode)), "") << mode;
}

TEST_F(VisualRestartHeadingTest, HeadingStandsOverThePathKeysWhileARestartHitIsPicked) {
    EXPECT_FALSE(F().PathHeading()->isVisible());
    // VISUAL of the block list, as ProgramForm's RES&TART opens it.
    OnProgramForm([&](ProgramForm& form) {
        WhenModal([&](QWidget* modal) {
            if (auto* blocks = dynamic_cast<BlockStartForm*>(modal)) ButtonOf(blocks, "VisualButton")->click();
            if (modal->isVisible()) modal->close();
        });
        ButtonOf(&form, "RestartButton")->click();
    });
    Spin(50);
    ASSERT_EQ(P().Nav().ViewMode, 5);
    QLabel* heading = F().PathHeading();
    EXPECT_TRUE(heading->isVisible());
    EXPECT_EQ(S(heading->text()), "VISUAL RESTART");
    // Above the path keys, in the key column, and wide enough for its text.
    EXPECT_LT(heading->mapTo(&F(), QPoint(0, 0)).y(), F().PathButton(1)->mapTo(&F(), QPoint(0, 0)).y());
    EXPECT_GE(heading->height(), 48);
    EXPECT_GE(heading->width(), heading->fontMetrics().horizontalAdvance(heading->text()));
    EXPECT_EQ(S(F().PathButton(5)->text()), "SPLI&T");
    EXPECT_EQ(S(F().TextPanel()->text()), "SELECT RESTART POSITION");
    SavePanel("visual_restart_heading");
    // CANCEL ends the pick; the heading goes with the path keys.
    P().CursorCancel();
    Spin(20);
    EXPECT_EQ(P().Nav().ViewMode, 0);
    EXPECT_FALSE(heading->isVisible());
}

TEST_F(VisualRestartHeadingTest, ZoomKeysHaveNoHeading) {
    Key(key::F7);
    P().GraphicsButton(2);  // ZOOM IN: the cursor keys
    Spin(20);
    ASSERT_EQ(P().Nav().ViewMode, 1);
    EXPECT_EQ(S(F().PathButton(1)->text()), "&LEFT");
    EXPECT_FALSE(F().PathHeading()->isVisible());
}

}  // namespace

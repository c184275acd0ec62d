// The selection tells the setup screen that the program changed: the clamp panel's demand values
// are the new slot's clamps, as far as the machine's clamps go.
#include <gtest/gtest.h>

#include "core/paths.h"
#include "system/startup.h"
#include "tests/support/demo_installation.h"
#include "tests/support/quiet_platform.h"

using namespace kirvana;

TEST(SelectionTellsSetup, TheClampDemandsFollowTheSelectedProgram) {
    DemoInstallation dir;
    Process p;
    QuietPlatform platform;
    ASSERT_EQ(Main(p, platform, nullptr, StartupSteps{}).Result, StartOutcome::Kind::Started);
    ASSERT_TRUE(WriteLines(dir.Path() + "Programs/Dorvenis/CLAMPS05.prg",
                           {"N0000 ! PROGRAM NAME : CLAMPS05", " ! SHEET SIZE : X1500 x Y750",
                            " ! CLAMPS : 1=150 2=600.5 3=1050", "G90 G71", "T1 X100 Y100", "M30"}));
    ASSERT_TRUE(SelectProgram(p, platform, nullptr, "Dorvenis", "PLATE01").Selected);
    const ClampPanel& clamps = p.Display.Clamps;
    EXPECT_EQ(clamps.ClampCount, 3);
    EXPECT_EQ(clamps.DemandTexts, (std::array<std::string, 4>{"0.00", "0.00", "0.00", ""}));
    SelectOutcome outcome = SelectProgram(p, platform, nullptr, "Dorvenis", "CLAMPS05");
    ASSERT_TRUE(outcome.Selected) << outcome.Warning;
    EXPECT_EQ(clamps.DemandTexts, (std::array<std::string, 4>{"150.00", "600.50", "1050.00", ""}));
    // A refused selection tells nothing new: the panel keeps the slot's demands.
    p.Running = true;
    EXPECT_FALSE(SelectProgram(p, platform, nullptr, "Dorvenis", "PLATE01").Selected);
    EXPECT_EQ(clamps.DemandTexts[1], "600.50");
}

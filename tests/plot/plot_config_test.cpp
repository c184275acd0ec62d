// Plot.cfg and Colour.cfg as the plot reads them.
#include <gtest/gtest.h>

#include "plot/colour_config.h"
#include "plot/plot_config.h"
#include "tests/core/temp_dir.h"

namespace kirvana {
namespace {

TEST(PlotConfig, WithoutTheFileTheDefaultsStand) {
    TempDir dir;
    PlotConfig config = ReadPlotConfig(dir.Path());
    EXPECT_FALSE(config.RealTimePunchFlag);
    EXPECT_FALSE(config.PunchIconOn);
    EXPECT_EQ(config.PunchTrailStyle, NoTrail);
    EXPECT_EQ(config.ProfileTrailWidth, 1);
    EXPECT_FALSE(config.ProfileIconOn);
    EXPECT_EQ(config.ProfileTrailStyle, NoTrail);
}

TEST(PlotConfig, ReadsTheSixLines) {
    TempDir dir;
    dir.Write("Plot.cfg", "yes\n  n \nsolid\n 7 \nAnY\ndots\n");
    PlotConfig config = ReadPlotConfig(dir.Path());
    EXPECT_TRUE(config.RealTimePunchFlag);
    EXPECT_FALSE(config.PunchIconOn);
    EXPECT_EQ(config.PunchTrailStyle, 0);
    EXPECT_EQ(config.ProfileTrailWidth, 7);
    EXPECT_TRUE(config.ProfileIconOn);
    EXPECT_EQ(config.ProfileTrailStyle, 2);
}

TEST(PlotConfig, OnlyTheFirstLetterOfAStyleCounts) {
    TempDir dir;
    dir.Write("Plot.cfg", "N\nN\nDASH\n1\nN\nNONE\n");
    PlotConfig config = ReadPlotConfig(dir.Path());
    EXPECT_EQ(config.PunchTrailStyle, 2);
    EXPECT_EQ(config.ProfileTrailStyle, NoTrail);
}

TEST(PlotConfig, TrailWidthIsKeptBetweenOneAndAHundred) {
    TempDir dir;
    dir.Write("Plot.cfg", "N\nN\nS\n0\n");
    EXPECT_EQ(ReadPlotConfig(dir.Path()).ProfileTrailWidth, 1);
    dir.Write("Plot.cfg", "N\nN\nS\n250\n");
    EXPECT_EQ(ReadPlotConfig(dir.Path()).ProfileTrailWidth, 100);
    dir.Write("Plot.cfg", "N\nN\nS\nwide\n");
    EXPECT_EQ(ReadPlotConfig(dir.Path()).ProfileTrailWidth, 1);
}

TEST(PlotConfig, ADamagedFileReadsWhatItCanAndNeverFails) {
    TempDir dir;
    dir.Write("Plot.cfg", std::string("\x01\xff\0Y\n", 5));
    PlotConfig config = ReadPlotConfig(dir.Path());
    EXPECT_TRUE(config.RealTimePunchFlag);  // "Y" anywhere on the line
    EXPECT_EQ(config.PunchTrailStyle, NoTrail);
}

TEST(ColourConfig, TheFirstTwentyOneItemsAreThePlotsWithTheirDefaults) {
    ColourTable c = DefaultColours();
    EXPECT_EQ(c[ColourItem::PlotBackground], 4194304);
    EXPECT_EQ(c[ColourItem::SheetFill], 8421504);
    EXPECT_EQ(c[ColourItem::PunchModeRealTimePunching], 4194304);
    EXPECT_EQ(c[ColourItem::PlotCursor], 255);
    EXPECT_STREQ(ColourLabel(ColourItem::SheetBoundry), "Sheet Boundry");
}

TEST(ColourConfig, ADamagedFileReadsItsDefaults) {
    TempDir dir;
    dir.Write("Colour.cfg", "Plot Background, blue\nPunching Zones, 1e30\n");
    ColourConfig config = ReadColourConfig(dir.Path());
    EXPECT_EQ(config.Colours[ColourItem::PlotBackground], 4194304);
    EXPECT_EQ(config.Colours[ColourItem::PunchingZones], 49152);
    EXPECT_FALSE(config.Note.empty());
}

}  // namespace
}  // namespace kirvana

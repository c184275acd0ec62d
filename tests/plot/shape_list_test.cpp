// The display lists of every tool shape: closed outlines, built once per tool, their size
// against the box ToolOutline gives a hit, and the Special tools read from their files.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "analysis/tool_outline.h"
#include "core/geometry.h"
#include "plot/plotter.h"
#include "plot/recording_canvas.h"
#include "tests/core/temp_dir.h"

namespace kirvana {
namespace {

ToolRecord Tool(char shape, float d1, float d2, float d3 = 0, float d4 = 0, float angle = 0) {
    ToolRecord tool;
    tool.Valid = TrueWord;
    tool.Shape = shape;
    tool.Name = ToolName(ShapeOfLetter(shape) ? ShapeOfLetter(shape)->Name : "CUSTOM");
    tool.D1 = d1;
    tool.D2 = d2;
    tool.D3 = d3;
    tool.D4 = d4;
    tool.Station = 10;
    tool.Angle = angle;
    return tool;
}

// One of each shape, of sizes a tool table holds.
std::vector<ToolRecord> EveryShape() {
    return {Tool('A', 10, 10),       Tool('B', 12, 12),      Tool('C', 20, 20, 0, 3), Tool('D', 30, 10),
            Tool('E', 30, 12, 0, 2), Tool('F', 30, 10),      Tool('G', 20, 16),       Tool('H', 20, 14),
            Tool('I', 30, 12),       Tool('J', 20, 20),      Tool('K', 20, 24, 4),    Tool('K', 20, 24, -4),
            Tool('L', 30, 8),        Tool('M', 30, 30, 6, 2)};
}

// The ends of the list's elements, turned to points: each element starts where the former ended.
std::vector<std::pair<PlotPoint, PlotPoint>> Ends(const ShapeList& list) {
    std::vector<std::pair<PlotPoint, PlotPoint>> ends;
    for (const ShapeEntry& e : list.Entries) {
        if (e.Op == '*') break;
        if (e.Op == 'L') {
            ends.push_back({{e.X1, e.Y1}, {e.X2, e.Y2}});
        } else {
            auto at = [&](double degrees) {
                double r = DegToRad(degrees);
                return PlotPoint{e.X1 + e.Radius * std::cos(r), e.Y1 + e.Radius * std::sin(r)};
            };
            ends.push_back({at(e.StartAngle), at(e.EndAngle)});
        }
    }
    return ends;
}

TEST(ShapeList, EveryShapeIsAClosedOutline) {
    // Each element starts where the former ended; an arc, always stored counter-clockwise, is
    // passed from either end (an inside corner is passed clockwise).
    auto same = [](PlotPoint a, PlotPoint b) { return std::abs(a.X - b.X) < 1e-3 && std::abs(a.Y - b.Y) < 1e-3; };
    for (const ToolRecord& tool : EveryShape()) {
        ShapeList list;
        BuildShapeList(tool, "", list);
        auto ends = Ends(list);
        ASSERT_FALSE(ends.empty()) << tool.Shape;
        if (ends.size() == 1) {
            EXPECT_TRUE(same(ends[0].first, ends[0].second)) << tool.Shape;
            continue;
        }
        // Start from a line, whose direction is known.
        std::size_t first = 0;
        while (first < ends.size() && list.Entries[first].Op != 'L') ++first;
        ASSERT_LT(first, ends.size()) << tool.Shape;
        PlotPoint at = ends[first].second;
        for (std::size_t k = 1; k <= ends.size(); ++k) {
            const auto& next = ends[(first + k) % ends.size()];
            if (same(at, next.first))
                at = next.second;
            else if (list.Entries[(first + k) % ends.size()].Op == 'A' && same(at, next.second))
                at = next.first;
            else
                ADD_FAILURE() << tool.Shape << ": element " << (first + k) % ends.size() << " doesn't join";
        }
        EXPECT_TRUE(same(at, ends[first].second)) << tool.Shape;
        EXPECT_FALSE(list.FillSeeds.empty()) << tool.Shape;
    }
}

TEST(ShapeList, DiameterIsOneFullCircleWithEightSeeds) {
    ShapeList list;
    BuildShapeList(Tool('A', 20, 20), "", list);
    EXPECT_EQ(list.Entries[0].Op, 'A');
    EXPECT_EQ(list.Entries[0].Radius, 10);
    EXPECT_EQ(list.Entries[0].StartAngle, 0);
    EXPECT_EQ(list.Entries[0].EndAngle, 360);
    EXPECT_EQ(list.Entries[1].Op, '*');
    ASSERT_EQ(list.FillSeeds.size(), 8u);
    for (std::size_t k = 0; k < 8; ++k) EXPECT_NEAR(std::hypot(list.FillSeeds[k].X, list.FillSeeds[k].Y), 8, 1e-9);
    EXPECT_NEAR(list.FillSeeds[1].X, list.FillSeeds[1].Y, 1e-6);  // the second at 45 degrees
}

TEST(ShapeList, SquareIsFourLinesWithTheEndAtEntryFive) {
    ShapeList list;
    BuildShapeList(Tool('B', 10, 10), "", list);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(list.Entries[static_cast<std::size_t>(i)].Op, 'L');
    EXPECT_EQ(list.Entries[4].Op, '*');
    EXPECT_NEAR(list.Entries[0].X1, 5, 1e-5);
    EXPECT_NEAR(list.Entries[0].Y1, 5, 1e-5);
}

// A hit's outline at angle 0, against the ClearBox ToolOutline gives the same hit. Hexagon
// (its corners lie beyond half the width across the flats) and Keyway (its key reaches beyond
// the circle) stand out of the box, which takes half of D1 for every shape.
TEST(ShapeList, AHitLiesInTheBoxOfItsToolOutline) {
    for (const ToolRecord& tool : EveryShape()) {
        EntityRec rec;
        rec.Kind = EntityKind::Punch;
        rec.Tool = tool;
        rec.Points.Position = {100, 50};
        ToolOutline(rec);
        RecordingCanvas canvas;
        ColourTable colours = DefaultColours();
        Plotter plotter(canvas, colours, "");
        plotter.PlotEntity(1, rec, ColourMode::Background, false);
        auto drawn = canvas.DrawnBounds();
        const BoxF& box = rec.ClearBox;
        if (tool.Shape == 'J' || tool.Shape == 'K') {
            EXPECT_GT(drawn.X2, box.High.X + 0.1) << tool.Shape;
            continue;
        }
        EXPECT_GE(drawn.X1, box.Low.X - 1e-3) << tool.Shape;
        EXPECT_LE(drawn.X2, box.High.X + 1e-3) << tool.Shape;
        EXPECT_GE(drawn.Y1, box.Low.Y - 1e-3) << tool.Shape;
        EXPECT_LE(drawn.Y2, box.High.Y + 1e-3) << tool.Shape;
        // D1 spans the outline one way: it reaches both sides of the box in X or in Y.
        auto near = [](double a, double b) { return std::abs(a - b) < 1e-3; };
        EXPECT_TRUE((near(drawn.X1, box.Low.X) && near(drawn.X2, box.High.X)) ||
                    (near(drawn.Y1, box.Low.Y) && near(drawn.Y2, box.High.Y)))
            << tool.Shape;
    }
}

TEST(ShapeList, ShapesHaveTheirOwnDimensions) {
    auto bounds = [](const ToolRecord& tool) {
        EntityRec rec;
        rec.Kind = EntityKind::Punch;
        rec.Tool = tool;
        RecordingCanvas canvas;
        ColourTable colours = DefaultColours();
        Plotter plotter(canvas, colours, "");
        plotter.PlotEntity(1, rec, ColourMode::Background, false);
        return canvas.DrawnBounds();
    };
    auto rectangle = bounds(Tool('D', 30, 10));
    EXPECT_NEAR(rectangle.Y2 - rectangle.Y1, 10, 1e-4);
    auto hexagon = bounds(Tool('J', 20, 20));
    EXPECT_NEAR(hexagon.Y2 - hexagon.Y1, 20, 1e-4);                   // across the flats
    EXPECT_NEAR(hexagon.X2 - hexagon.X1, 40 / std::sqrt(3.0), 1e-4);  // across the corners
    auto singleD = bounds(Tool('G', 20, 16));
    EXPECT_NEAR(singleD.X2 - singleD.X1, 16, 1e-4);
    auto doubleD = bounds(Tool('H', 20, 14));
    EXPECT_NEAR(doubleD.X2 - doubleD.X1, 14, 1e-4);
    EXPECT_NEAR(doubleD.Y2 - doubleD.Y1, 20, 1e-4);
    auto keyway = bounds(Tool('K', 20, 24, 4));
    EXPECT_NEAR(keyway.X2 - keyway.X1, 24, 1e-4);  // far side of the circle to the key's end
    EXPECT_NEAR(keyway.Y2 - keyway.Y1, 20, 1e-4);
    auto noKey = bounds(Tool('K', 20, 14, 4));  // a key that ends inside the circle
    EXPECT_NEAR(noKey.X2 - noKey.X1, 20, 1e-4);
    auto cross = bounds(Tool('M', 30, 30, 6, 2));
    EXPECT_NEAR(cross.Y2 - cross.Y1, 30, 1e-4);
    auto turned = bounds(Tool('D', 30, 10, 0, 0, 90));
    EXPECT_NEAR(turned.Y2 - turned.Y1, 30, 1e-4);
    EXPECT_NEAR(turned.X2 - turned.X1, 10, 1e-4);
}

TEST(ShapeList, AHitWithoutAValidToolIsTheSquareOfItsBox) {
    ToolRecord none;
    ShapeList list;
    BuildShapeList(none, "", list);
    EXPECT_EQ(list.Entries[4].Op, '*');
    EXPECT_NEAR(list.Entries[0].X1, 5, 1e-5);  // side 10, as ToolOutline's ClearBox
    ToolRecord invalidCircle = Tool('A', 30, 30);
    invalidCircle.Valid = FalseWord;
    BuildShapeList(invalidCircle, "", list);
    EXPECT_EQ(list.Entries[0].Op, 'L');
}

TEST(ShapeList, AnImpossibleCornerRadiusStaysSharp) {
    ShapeList list;
    BuildShapeList(Tool('E', 20, 10, 0, 50), "", list);  // radius larger than the sides
    for (const ShapeEntry& e : list.Entries) {
        if (e.Op == '*') break;
        EXPECT_EQ(e.Op, 'L');
    }
}

TEST(ShapeList, SpecialToolWithoutAFileDrawsASquare) {
    TempDir tools;
    ToolRecord tool = Tool('S', 25, 25);
    tool.Name = ToolName("STAR");
    ShapeList list;
    BuildShapeList(tool, tools.Path(), list);
    EXPECT_TRUE(list.FromFallback);
    ShapeList square;
    BuildShapeList(Tool('B', 25, 25), "", square);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(list.Entries[static_cast<std::size_t>(i)].Op, square.Entries[static_cast<std::size_t>(i)].Op);
        EXPECT_FLOAT_EQ(list.Entries[static_cast<std::size_t>(i)].X1, square.Entries[static_cast<std::size_t>(i)].X1);
    }
}

TEST(ShapeList, SpecialToolIsReadFromItsFileIgnoringCase) {
    TempDir tools;
    std::vector<ShapeEntry> triangle{{'L', 0, 10, -8, -5, 0, 0, 0},
                                     {'L', -8, -5, 8, -5, 0, 0, 0},
                                     {'L', 8, -5, 0, 10, 0, 0, 0},
                                     {'A', 0, 0, 0, 0, 2, 0, 360}};
    ASSERT_TRUE(WriteSpecialTool(tools.Path() + "Star.spc", triangle));
    EXPECT_EQ(std::filesystem::file_size(tools.Path() + "Star.spc"), 5 * SpecialRecordLength);
    ToolRecord tool = Tool('S', 25, 25);
    tool.Name = ToolName("STAR");
    ShapeList list;
    BuildShapeList(tool, tools.Path(), list);
    EXPECT_FALSE(list.FromFallback);
    EXPECT_EQ(list.Entries[0].Op, 'L');
    EXPECT_FLOAT_EQ(list.Entries[1].X2, 8);
    EXPECT_EQ(list.Entries[3].Op, 'A');
    EXPECT_EQ(list.Entries[4].Op, '*');
}

TEST(ShapeList, SpecialToolFileOfTheWrongLengthDrawsTheFallback) {
    TempDir tools;
    ASSERT_TRUE(WriteSpecialTool(tools.Path() + "STAR.spc", {{'L', 0, 0, 5, 5, 0, 0, 0}}));
    std::filesystem::resize_file(tools.Path() + "STAR.spc", 2 * SpecialRecordLength - 3);
    ToolRecord tool = Tool('S', 25, 25);
    tool.Name = ToolName("STAR");
    ShapeList list;
    BuildShapeList(tool, tools.Path(), list);
    EXPECT_TRUE(list.FromFallback);
    tools.Write("STAR.spc", std::string(SpecialRecordLength, 'Q'));  // whole records of nonsense
    BuildShapeList(tool, tools.Path(), list);
    EXPECT_TRUE(list.FromFallback);
}

TEST(ShapeList, TheListIsBuiltOncePerTool) {
    RecordingCanvas canvas;
    canvas.Keep = false;
    ColourTable colours = DefaultColours();
    Plotter plotter(canvas, colours, "");
    EntityRec rec;
    rec.Kind = EntityKind::LinearPattern;
    rec.Tool = Tool('E', 30, 12, 0, 2);
    rec.Values[2] = 40;
    rec.Counts[1] = 500;
    plotter.PlotEntity(1, rec, ColourMode::Background, false);
    EXPECT_EQ(plotter.HitsDrawn(), 500);
    EXPECT_EQ(plotter.ListsBuilt(), 1);
    rec.Tool.D4 = 3;  // another tool: a new list
    plotter.PlotEntity(1, rec, ColourMode::Background, false);
    EXPECT_EQ(plotter.ListsBuilt(), 2);
}

}  // namespace
}  // namespace kirvana

#include "tooling/tool_definition.h"

#include <gtest/gtest.h>

#include "tests/core/temp_dir.h"

using namespace kirvana;

namespace {

ToolDefinitionResult Confirm(int shape, std::array<std::string, 4> boxes, bool inches = false, int keyway = 0,
                             const std::string& name = "") {
    ToolDefinitionBoxes input;
    input.ShapeIndex = shape;
    input.Boxes = boxes;
    input.KeywayState = keyway;
    input.SpecialName = name;
    ToolRecord current;
    current.Setting = 4;
    current.Station = 20;
    current.Extra1 = 15;
    current.Extra2 = 1;
    return ConfirmToolDefinition(input, current, inches);
}

void ExpectRefused(const ToolDefinitionResult& result, const char* message = InvalidToolDimensions) {
    EXPECT_FALSE(result.Accepted);
    EXPECT_EQ(result.Message, message);
}

}  // namespace

TEST(ToolDefinition, ASpecialNameOfNineteenCharactersIsRefusedEighteenKeptWhole) {
    ExpectRefused(Confirm(13, {"0"}, false, 0, "ABCDEFGHIJKLMNOPQRS"), InvalidToolName);
    auto result = Confirm(13, {"0"}, false, 0, "ABCDEFGHIJKLMNOPQR");
    ASSERT_TRUE(result.Accepted);
    EXPECT_EQ(result.Tool.Name, "ABCDEFGHIJKLMNOPQR");
    EXPECT_EQ(result.Tool.Shape, 'S');
    EXPECT_FLOAT_EQ(result.Tool.D1, 25);
    EXPECT_FLOAT_EQ(result.Tool.D2, 25);
    ExpectRefused(Confirm(13, {"0"}, false, 0, ""), InvalidToolName);
}

TEST(ToolDefinition, SpecialSkipsTheInchConversion) {
    auto result = Confirm(13, {"30"}, true, 0, "LOGO");
    ASSERT_TRUE(result.Accepted);
    EXPECT_FLOAT_EQ(result.Tool.D1, 25);
    EXPECT_FLOAT_EQ(result.Tool.Angle, 30);
}

TEST(ToolDefinition, HexagonStoresTheWidthAcrossCorners) {
    auto result = Confirm(9, {"17.32", "0"});
    ASSERT_TRUE(result.Accepted);
    EXPECT_FLOAT_EQ(result.Tool.D1, 17.32f);
    EXPECT_FLOAT_EQ(result.Tool.D2, 19.999f);
    EXPECT_EQ(result.Tool.Shape, 'J');
}

TEST(ToolDefinition, KeywayRoundedStoresANegativeKeyWidth) {
    auto rounded = Confirm(10, {"10", "12", "3", "0"}, false, 1);
    ASSERT_TRUE(rounded.Accepted);
    EXPECT_FLOAT_EQ(rounded.Tool.D3, -3);
    EXPECT_EQ(DescribeTool(rounded.Tool, false), "Keyway 10x12w3 idx0");  // the station is of type 20
    auto flat = Confirm(10, {"10", "12", "3", "0"}, false, 0);
    ASSERT_TRUE(flat.Accepted);
    EXPECT_FLOAT_EQ(flat.Tool.D3, 3);
    // Opened again, the box shows the absolute value and the button the key end.
    ToolDefinitionBoxes boxes = OpenToolDefinition(rounded.Tool, false);
    EXPECT_EQ(boxes.ShapeIndex, 10);
    EXPECT_EQ(boxes.Boxes[2], "3");
    EXPECT_EQ(boxes.KeywayState, 1);
    EXPECT_STREQ(KeywayCaptions[boxes.KeywayState], "ROUNDED");
    EXPECT_EQ(OpenToolDefinition(flat.Tool, false).KeywayState, 0);
}

TEST(ToolDefinition, AnglesAreNormalised) {
    auto result = Confirm(1, {"10", "370"});
    ASSERT_TRUE(result.Accepted);
    EXPECT_FLOAT_EQ(result.Tool.Angle, 10);
    result = Confirm(1, {"10", "-90"});
    ASSERT_TRUE(result.Accepted);
    EXPECT_FLOAT_EQ(result.Tool.Angle, 270);
}

TEST(ToolDefinition, ADefinitionClearsExtrasAndKeepsTheStation) {
    auto result = Confirm(3, {"20", "10", "90"});
    ASSERT_TRUE(result.Accepted);
    EXPECT_TRUE(result.Tool.IsValid());
    EXPECT_EQ(result.Tool.Shape, 'D');
    EXPECT_EQ(result.Tool.Name, "Rectangle         ");
    EXPECT_EQ(result.Tool.Extra1, 0);
    EXPECT_EQ(result.Tool.Extra2, 0);
    EXPECT_EQ(result.Tool.Setting, 4);
    EXPECT_EQ(result.Tool.Station, 20);
    EXPECT_EQ(result.Tool.D3, 0);
    EXPECT_EQ(result.Tool.D4, 0);
}

TEST(ToolDefinition, BoxesAreReadAsLeadingNumbers) {
    auto result = Confirm(0, {"12.5mm"});
    ASSERT_TRUE(result.Accepted);
    EXPECT_FLOAT_EQ(result.Tool.D1, 12.5f);
    EXPECT_FLOAT_EQ(result.Tool.D2, 12.5f);
    ExpectRefused(Confirm(0, {"abc"}));
}

TEST(ToolDefinition, InchesAreStoredAsMillimetres) {
    auto result = Confirm(3, {"1", "0.5", "0"}, true);
    ASSERT_TRUE(result.Accepted);
    EXPECT_FLOAT_EQ(result.Tool.D1, 25.4f);
    EXPECT_FLOAT_EQ(result.Tool.D2, 12.7f);
    // The floor of 0.1 is in the unit shown: 0.1 inch passes, 0.09 doesn't.
    EXPECT_TRUE(Confirm(0, {"0.1"}, true).Accepted);
    ExpectRefused(Confirm(0, {"0.09"}, true));
    // The hexagon's across-corners width is worked out in inches, then converted.
    result = Confirm(9, {"1", "0"}, true);
    ASSERT_TRUE(result.Accepted);
    EXPECT_FLOAT_EQ(result.Tool.D2, 29.337f);  // 1.155 inch
    // Opening shows inches again.
    EXPECT_EQ(OpenToolDefinition(Confirm(3, {"1", "0.5", "30"}, true).Tool, true).Boxes,
              (std::array<std::string, 4>{"1", "0.5", "30", ""}));
}

TEST(ToolDefinition, EachShapesChecks) {
    // Diameter, Square, Hexagon: the floor only.
    ExpectRefused(Confirm(0, {"0.09"}));
    EXPECT_TRUE(Confirm(0, {"0.1"}).Accepted);
    ExpectRefused(Confirm(1, {"0.05", "0"}));
    ExpectRefused(Confirm(9, {"0", "0"}));
    // Rad-Square: twice the radius must stay under the width.
    EXPECT_TRUE(Confirm(2, {"10", "4.9", "0"}).Accepted);
    ExpectRefused(Confirm(2, {"10", "5", "0"}));
    ExpectRefused(Confirm(2, {"10", "0.05", "0"}));
    // Rectangle, Obround, Single-D, Double-D: the width under the length.
    for (int shape : {3, 5, 6, 7}) {
        EXPECT_TRUE(Confirm(shape, {"20", "19.9", "0"}).Accepted) << shape;
        ExpectRefused(Confirm(shape, {"20", "20", "0"}));
        ExpectRefused(Confirm(shape, {"20", "0.05", "0"}));
    }
    // Rad-Rect: also the width above twice the radius.
    EXPECT_TRUE(Confirm(4, {"20", "10", "4.9", "0"}).Accepted);
    ExpectRefused(Confirm(4, {"20", "10", "5", "0"}));
    ExpectRefused(Confirm(4, {"20", "20", "2", "0"}));
    ExpectRefused(Confirm(4, {"20", "10", "0", "0"}));
    // Cannon-D: the length at least two thirds of the width.
    EXPECT_TRUE(Confirm(8, {"20", "15", "0"}).Accepted);
    ExpectRefused(Confirm(8, {"20", "20", "0"}));
    // Keyway: diameter under the height, key under the diameter.
    EXPECT_TRUE(Confirm(10, {"10", "12", "9.9", "0"}).Accepted);
    ExpectRefused(Confirm(10, {"12", "12", "3", "0"}));
    ExpectRefused(Confirm(10, {"10", "12", "10", "0"}));
    ExpectRefused(Confirm(10, {"10", "12", "0", "0"}));
    // Louvre: the width at most half the length.
    EXPECT_TRUE(Confirm(11, {"60", "30", "0"}).Accepted);
    ExpectRefused(Confirm(11, {"60", "30.1", "0"}));
    // Cruciform: 2 x radius within length - web, web within length - 2 x radius.
    EXPECT_TRUE(Confirm(12, {"20", "3", "4", "0"}).Accepted);
    EXPECT_TRUE(Confirm(12, {"20", "12", "4", "0"}).Accepted);
    ExpectRefused(Confirm(12, {"20", "12.1", "4", "0"}));
    ExpectRefused(Confirm(12, {"20", "3", "8.6", "0"}));
    ExpectRefused(Confirm(12, {"20", "0.05", "4", "0"}));
    ExpectRefused(Confirm(12, {"20", "3", "0.05", "0"}));
}

TEST(ToolDefinition, OpeningPicksTheRowByLetter) {
    ToolRecord tool;
    ParseToolText("CRUCIFORM 20W3R4A45", tool, false);
    ToolDefinitionBoxes boxes = OpenToolDefinition(tool, false);
    EXPECT_EQ(boxes.ShapeIndex, 12);
    EXPECT_EQ(boxes.Boxes, (std::array<std::string, 4>{"20", "3", "4", "45"}));
    ParseToolText("MYTOOL A45", tool, false);
    boxes = OpenToolDefinition(tool, false);
    EXPECT_EQ(boxes.ShapeIndex, 13);
    EXPECT_EQ(boxes.SpecialName, "MYTOOL");
    EXPECT_EQ(boxes.Boxes[0], "45");
}

TEST(ToolDefinition, SpecialNamesAreTheToolFilesWithoutExtension) {
    TempDir dir;
    dir.Write("Tools/logo.dxf", "x");
    dir.Write("Tools/Emboss.txt", "x");
    dir.Write("Tools/plain", "x");
    Directories dirs;
    dirs.ToolsDir = dir.Path() + "Tools/";
    EXPECT_EQ(SpecialToolNames(dirs), (std::vector<std::string>{"Emboss", "logo", "plain"}));
}

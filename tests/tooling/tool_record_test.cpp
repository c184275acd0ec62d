#include "tooling/tool_record.h"

#include <gtest/gtest.h>

#include "tooling/tool_definition.h"

using namespace kirvana;

namespace {

ToolRecord Parse(const std::string& text, bool inches = false) {
    ToolRecord tool;
    ParseToolText(text, tool, inches);
    return tool;
}

std::string Trimmed(const std::string& name) {
    std::size_t end = name.find_last_not_of(' ');
    return end == std::string::npos ? std::string() : name.substr(0, end + 1);
}

}  // namespace

TEST(ToolText, DiameterTenIsShapeAWithBothDimensionsAndNoAngle) {
    ToolRecord tool = Parse("DIAMETER 10");
    EXPECT_TRUE(tool.IsValid());
    EXPECT_EQ(tool.Valid, -1);
    EXPECT_EQ(tool.Shape, 'A');
    EXPECT_EQ(tool.Name, "Diameter          ");
    EXPECT_FLOAT_EQ(tool.D1, 10);
    EXPECT_FLOAT_EQ(tool.D2, 10);
    EXPECT_FLOAT_EQ(tool.Angle, 0);
}

TEST(ToolText, DiameterUnderHalfAMillimetreIsInvalid) {
    ToolRecord tool = Parse("diameter 0.4");
    EXPECT_FALSE(tool.IsValid());
    EXPECT_EQ(tool.Shape, ' ');
    EXPECT_EQ(tool.Name, std::string(18, ' '));
    EXPECT_EQ(tool.D1, 0);
    EXPECT_EQ(tool.D2, 0);
}

TEST(ToolText, ANumberBeyondTheSingleRangeMakesNoTool) {
    // Digits run on behind the shape word: the dimension would be infinite once stored.
    ToolRecord tool;
    EXPECT_FALSE(ParseToolText("Obround" + std::string(90, '2') + " 30x10 idx90", tool, false));
    EXPECT_FALSE(ParseToolText("Rectangle 20x" + std::string(60, '9') + " a0", tool, false));
    EXPECT_FALSE(ParseToolText("Square 10 a" + std::string(60, '9'), tool, false));
    EXPECT_TRUE(ParseToolText("Obround 30x10 idx90", tool, false));
}

TEST(ToolText, RectangleReadsLengthWidthAndAngle) {
    ToolRecord tool = Parse("RECTANGLE 20X10A90");
    EXPECT_TRUE(tool.IsValid());
    EXPECT_EQ(tool.Shape, 'D');
    EXPECT_FLOAT_EQ(tool.D1, 20);
    EXPECT_FLOAT_EQ(tool.D2, 10);
    EXPECT_FLOAT_EQ(tool.Angle, 90);
}

TEST(ToolText, RectangleWithoutWidthIsInvalid) {
    ToolRecord tool = Parse("RECTANGLE 20");
    EXPECT_FALSE(tool.IsValid());
    EXPECT_EQ(tool.D2, 0);
}

TEST(ToolText, RadRectFindsTheRadiusBehindTheName) {
    ToolRecord tool = Parse("RAD-RECT 20X10R2A0");
    EXPECT_TRUE(tool.IsValid());
    EXPECT_EQ(tool.Shape, 'E');
    EXPECT_FLOAT_EQ(tool.D1, 20);
    EXPECT_FLOAT_EQ(tool.D2, 10);
    EXPECT_FLOAT_EQ(tool.D4, 2);
    EXPECT_FLOAT_EQ(tool.Angle, 0);
}

TEST(ToolText, CruciformReadsWebAndRadius) {
    ToolRecord tool = Parse("CRUCIFORM 20W3R4A45");
    EXPECT_EQ(tool.Shape, 'M');
    EXPECT_FLOAT_EQ(tool.D1, 20);
    EXPECT_FLOAT_EQ(tool.D2, 20);
    EXPECT_FLOAT_EQ(tool.D3, 3);
    EXPECT_FLOAT_EQ(tool.D4, 4);
    EXPECT_FLOAT_EQ(tool.Angle, 45);
}

TEST(ToolText, SquareReadsTheAngleBehindIdx) {
    ToolRecord tool = Parse("SQUARE 10 IDX 30");
    EXPECT_EQ(tool.Shape, 'B');
    EXPECT_FLOAT_EQ(tool.D1, 10);
    EXPECT_FLOAT_EQ(tool.D2, 10);
    EXPECT_FLOAT_EQ(tool.Angle, 30);
}

TEST(ToolText, AnyOtherTextIsASpecialWithItsOwnName) {
    for (const char* text : {"MYTOOL A45", "SPECIAL MYTOOL A45"}) {
        ToolRecord tool = Parse(text);
        EXPECT_TRUE(tool.IsValid()) << text;
        EXPECT_EQ(tool.Shape, 'S') << text;
        EXPECT_EQ(tool.Name, "MYTOOL            ") << text;
        EXPECT_FLOAT_EQ(tool.D1, 25) << text;
        EXPECT_FLOAT_EQ(tool.D2, 25) << text;
        EXPECT_EQ(tool.D3, 0) << text;
        EXPECT_EQ(tool.D4, 0) << text;
        EXPECT_FLOAT_EQ(tool.Angle, 45) << text;
    }
}

TEST(ToolText, SpecialTailTakesDigitsPointDAndXUpToTheAOrI) {
    ToolRecord tool = Parse("Special LOGO idx12.5");
    EXPECT_EQ(Trimmed(tool.Name), "LOGO");
    EXPECT_FLOAT_EQ(tool.Angle, 12.5f);
    // A blank stops the tail: the angle words stay in the name and the angle is 0.
    tool = Parse("LOGO IDX 30");
    EXPECT_EQ(Trimmed(tool.Name), "LOGO IDX");
    EXPECT_EQ(tool.Angle, 0);
    // "D" belongs to the tail, so a name ending in D loses it only behind an A or I.
    tool = Parse("FORMD A90");
    EXPECT_EQ(Trimmed(tool.Name), "FORMD");
    tool = Parse("FORMD90");
    EXPECT_EQ(Trimmed(tool.Name), "FORM");
    EXPECT_EQ(tool.Angle, 0);
}

TEST(ToolText, SpecialNameIsCutToEighteenCharacters) {
    ToolRecord tool = Parse("ABCDEFGHIJKLMNOPQRSTUVWXYZ A10");
    EXPECT_EQ(tool.Name, "ABCDEFGHIJKLMNOPQR");
}

TEST(ToolText, HexagonFromTextCopiesTheWidthIntoD2) {
    ToolRecord tool = Parse("HEXAGON 17.32A0");
    EXPECT_EQ(tool.Shape, 'J');
    EXPECT_FLOAT_EQ(tool.D1, 17.32f);
    EXPECT_FLOAT_EQ(tool.D2, 17.32f);
}

TEST(ToolText, KeywayReadsTheSignedKeyWidth) {
    ToolRecord tool = Parse("KEYWAY 10X12W-3A0");
    EXPECT_EQ(tool.Shape, 'K');
    EXPECT_FLOAT_EQ(tool.D1, 10);
    EXPECT_FLOAT_EQ(tool.D2, 12);
    EXPECT_FLOAT_EQ(tool.D3, -3);
}

TEST(ToolText, InchesAreMultipliedAndRoundedToThreeDecimals) {
    ToolRecord tool = Parse("RECTANGLE 0.394X0.25A15", true);
    EXPECT_FLOAT_EQ(tool.D1, 10.008f);  // 10.0076
    EXPECT_FLOAT_EQ(tool.D2, 6.35f);
    EXPECT_FLOAT_EQ(tool.Angle, 15);
    // A Special keeps its 25.
    tool = Parse("MYTOOL A45", true);
    EXPECT_FLOAT_EQ(tool.D1, 25);
    // The floor of 0.5 holds after the conversion: 0.02 inch is 0.508 mm.
    EXPECT_TRUE(Parse("DIAMETER 0.02", true).IsValid());
    EXPECT_FALSE(Parse("DIAMETER 0.019", true).IsValid());
}

TEST(ToolText, AMissingAngleIsZeroAndTheDiameterIgnoresOne) {
    EXPECT_EQ(Parse("SQUARE 10").Angle, 0);
    EXPECT_EQ(Parse("DIAMETER 10 A45").Angle, 0);
}

TEST(ToolText, ParsingLeavesTheCallersOtherFieldsAlone) {
    ToolRecord tool;
    tool.Setting = 7;
    tool.Station = 21;
    tool.Extra1 = 33;
    tool.Extra2 = 1;
    ParseToolText("SQUARE 10 A5", tool, false);
    EXPECT_EQ(tool.Setting, 7);
    EXPECT_EQ(tool.Station, 21);
    EXPECT_EQ(tool.Extra1, 33);
    EXPECT_EQ(tool.Extra2, 1);
    ParseToolText("SQUARE 0.1", tool, false);
    EXPECT_FALSE(tool.IsValid());
    EXPECT_EQ(tool.Setting, 7);
    EXPECT_EQ(tool.Station, 21);
    EXPECT_EQ(tool.Extra1, 33);
}

TEST(ToolText, AShapeWordWithoutItsFullNameGivesNoDimension) {
    // "RECTAN" picks the Rectangle, but D1 is read behind the whole name.
    EXPECT_FALSE(Parse("RECTAN 20X10").IsValid());
}

TEST(ToolText, EmptyTextIsASpecialWithoutName) {
    ToolRecord tool = Parse("");
    EXPECT_TRUE(tool.IsValid());
    EXPECT_EQ(tool.Shape, 'S');
    EXPECT_EQ(tool.Name, std::string(18, ' '));
}

TEST(ValueAfterKey, ReadsTheLeadingNumberWithoutComputing) {
    bool error = true;
    EXPECT_EQ(ValueAfterKey("X10*2", "X", error), 10);
    EXPECT_FALSE(error);
    EXPECT_EQ(ValueAfterKey("X(10)", "X", error), 0);
    EXPECT_FALSE(error);
    EXPECT_EQ(ValueAfterKey("x 12.5 Y3", "X", error), 12.5);
    EXPECT_EQ(ValueAfterKey("X12 5", "X", error), 12);
    EXPECT_EQ(ValueAfterKey("X-4", "x", error), -4);
}

TEST(ValueAfterKey, MissingKeyOrNumberSetsTheError) {
    bool error = false;
    EXPECT_EQ(ValueAfterKey("A10", "X", error), 0);
    EXPECT_TRUE(error);
    EXPECT_EQ(ValueAfterKey("XA10", "X", error), 0);
    EXPECT_TRUE(error);
    EXPECT_EQ(ValueAfterKey("X", "X", error), 0);
    EXPECT_TRUE(error);
}

TEST(ValueAfterKey, TheKeyRSkipsRound) {
    bool error = false;
    EXPECT_EQ(ValueAfterKey("ROUND(2) R5", "R", error), 5);
    EXPECT_FALSE(error);
    EXPECT_EQ(ValueAfterKey("ROUND(2)", "R", error), 0);
    EXPECT_TRUE(error);
    EXPECT_EQ(ValueAfterKey("round r7", "R", error), 7);
}

TEST(IntegerAfterKey, KeepsTheFirstMinusAndTruncates) {
    bool error = true;
    EXPECT_EQ(IntegerAfterKey("T+12", "T", error), 12);
    EXPECT_FALSE(error);
    EXPECT_EQ(IntegerAfterKey("T--12", "T", error), -12);
    EXPECT_EQ(IntegerAfterKey("T 7.9", "T", error), 7);
    EXPECT_EQ(IntegerAfterKey("T-3-4", "T", error), -34);
    EXPECT_EQ(IntegerAfterKey("T40000", "T", error), 0);
    EXPECT_TRUE(error);
    EXPECT_EQ(IntegerAfterKey("TX", "T", error), 0);
    EXPECT_TRUE(error);
}

TEST(IndexStation, TwentyAndAboveAreAutoindex) {
    EXPECT_FALSE(IsIndexStation(19));
    EXPECT_TRUE(IsIndexStation(20));
    EXPECT_TRUE(IsIndexStation(25));
}

TEST(DescribeTool, AutoindexStationsShowIdxOthersA) {
    ToolRecord tool = Parse("SQUARE 10 A30");
    tool.Station = 20;
    EXPECT_EQ(DescribeTool(tool, false), "Square 10 idx30");
    tool.Station = 19;
    EXPECT_EQ(DescribeTool(tool, false), "Square 10 a30");
}

TEST(DescribeTool, EveryShapeInMillimetres) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"DIAMETER 10", "Diameter 10"},
        {"SQUARE 12.5 A45", "Square 12.5 a45"},
        {"RAD-SQUARE 20 R2 A0", "Rad-Square 20r2 a0"},
        {"RECTANGLE 30X5 A90", "Rectangle 30x5 a90"},
        {"RAD-RECT 40X10R2.5A0", "Rad-Rect 40x10r2.5 a0"},
        {"OBROUND 30X10A0", "Obround 30x10 a0"},
        {"SINGLE-D 20X18A0", "Single-D 20x18 a0"},
        {"DOUBLE-D 20X16A0", "Double-D 20x16 a0"},
        {"CANNON-D 20X15A0", "Cannon-D 20x15 a0"},
        {"HEXAGON 17.32A0", "Hexagon 17.32 a0"},
        {"KEYWAY 10X12W-3A0", "Keyway 10x12w3 a0"},
        {"LOUVRE 60X10A0", "Louvre 60x10 a0"},
        {"CRUCIFORM 20W3R4A45", "Cruciform 20w3r4 a45"},
        {"MYTOOL A45", "Special MYTOOL a45"},
        {"RECTANGLE 10.005X3.333A12.345", "Rectangle 10x3.33 a12.34"},
    };
    for (const auto& [text, description] : cases) EXPECT_EQ(DescribeTool(Parse(text), false), description) << text;
}

TEST(DescribeTool, InchesToThreeDecimals) {
    EXPECT_EQ(DescribeTool(Parse("RECTANGLE 25.4X12.7A0"), true), "Rectangle 1x0.5 a0");
    EXPECT_EQ(DescribeTool(Parse("DIAMETER 10"), true), "Diameter 0.394");
}

TEST(DescribeTool, PlasmaToolIsItsNameAlone) {
    ToolRecord tool = PlasmaTool("PLASMA TORCH", 12, 0);
    EXPECT_EQ(tool.Shape, 'P');
    EXPECT_TRUE(tool.IsValid());
    EXPECT_EQ(tool.Extra2, 1);
    EXPECT_EQ(tool.Setting, 12);
    EXPECT_EQ(tool.D1, 0);
    EXPECT_EQ(DescribeTool(tool, false), "PLASMA TORCH");
    EXPECT_EQ(DescribeTool(ToolRecord(), false), "");
}

namespace {

// One tool text of each shape, with dimensions the description can carry exactly.
const std::vector<std::string> MillimetreTools = {
    "DIAMETER 10.5",     "SQUARE 12 A45",    "RAD-SQUARE 20R2.5A30", "RECTANGLE 30.25X5A90",    "RAD-RECT 40X10R2A0",
    "OBROUND 30X10A120", "SINGLE-D 20X18A0", "DOUBLE-D 20X16.5A0",   "CANNON-D 20X15A270",      "HEXAGON 17.32A0",
    "KEYWAY 10X12W3A0",  "LOUVRE 60X10A90",  "CRUCIFORM 20W3R4A45",  "SPECIAL EMBOSS-12 A15.5",
};
const std::vector<std::string> InchTools = {
    "DIAMETER 0.5",
    "SQUARE 0.75 A45",
    "RAD-SQUARE 1R0.125A30",
    "RECTANGLE 1.25X0.394A90",
    "RAD-RECT 2X0.5R0.1A0",
    "OBROUND 1.5X0.5A120",
    "SINGLE-D 0.875X0.75A0",
    "DOUBLE-D 1X0.875A0",
    "CANNON-D 1X0.75A270",
    "HEXAGON 0.682A0",
    "KEYWAY 0.5X0.625W0.125A0",
    "LOUVRE 3X0.5A90",
    "CRUCIFORM 1W0.125R0.156A45",
    "LOGO A15.5",
};

}  // namespace

TEST(ToolRoundTrip, EveryShapeInMillimetres) {
    ASSERT_EQ(MillimetreTools.size(), 14u);
    for (const auto& text : MillimetreTools) {
        ToolRecord first = Parse(text);
        ASSERT_TRUE(first.IsValid()) << text;
        for (std::int16_t station : std::initializer_list<std::int16_t>{1, 20}) {
            first.Station = station;
            std::string description = DescribeTool(first, false);
            ToolRecord again = Parse(description);
            EXPECT_TRUE(SameTool(first, again)) << text << " -> " << description;
            again.Station = station;
            EXPECT_EQ(DescribeTool(again, false), description) << text;
        }
    }
}

TEST(ToolRoundTrip, EveryShapeInInches) {
    ASSERT_EQ(InchTools.size(), 14u);
    for (const auto& text : InchTools) {
        ToolRecord first = Parse(text, true);
        ASSERT_TRUE(first.IsValid()) << text;
        std::string description = DescribeTool(first, true);
        ToolRecord again = Parse(description, true);
        EXPECT_TRUE(SameTool(first, again)) << text << " -> " << description;
        EXPECT_EQ(DescribeTool(again, true), description) << text;
    }
}

TEST(ToolRoundTrip, EveryShapeFromTheDefinitionScreen) {
    // Each screen row, confirmed, described and read back gives the same tool (the Hexagon
    // aside: its across-corners D2 is not in the text).
    const std::vector<ToolDefinitionBoxes> screens = {
        {0, {"10", "", "", ""}, 0, ""},        {1, {"12", "45", "", ""}, 0, ""},    {2, {"20", "2.5", "30", ""}, 0, ""},
        {3, {"30", "5", "90", ""}, 0, ""},     {4, {"40", "10", "2", "0"}, 0, ""},  {5, {"30", "10", "120", ""}, 0, ""},
        {6, {"20", "18", "0", ""}, 0, ""},     {7, {"20", "16", "0", ""}, 0, ""},   {8, {"20", "15", "270", ""}, 0, ""},
        {10, {"10", "12", "3", "0"}, 0, ""},   {11, {"60", "10", "90", ""}, 0, ""}, {12, {"20", "3", "4", "45"}, 0, ""},
        {13, {"15.5", "", "", ""}, 0, "LOGO"},
    };
    for (const auto& boxes : screens) {
        ToolDefinitionResult result = ConfirmToolDefinition(boxes, ToolRecord(), false);
        ASSERT_TRUE(result.Accepted) << boxes.ShapeIndex;
        EXPECT_TRUE(SameTool(result.Tool, Parse(DescribeTool(result.Tool, false)))) << boxes.ShapeIndex;
    }
}

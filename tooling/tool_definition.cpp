#include "tooling/tool_definition.h"

#include <cmath>

#include "core/geometry.h"
#include "core/number.h"
#include "core/paths.h"
#include "core/text.h"
#include "tooling/single.h"

namespace kirvana {

namespace {

// The screen's floor for any dimension, in the unit shown.
constexpr double Floor = 0.1;

double Round3(double value) { return RoundHalfEven(Number(value), 3); }

ToolDefinitionResult Refused(const char* message) {
    ToolDefinitionResult result;
    result.Message = message;
    return result;
}

// The box text in the unit shown: inches to 3 decimals, millimetres as the float stands.
std::string BoxText(float value, bool inches) {
    if (inches) return FormatNumber(Number(Round3(static_cast<double>(value) / Inch)), -1);
    return FormatNumber(Number(value), -1);
}

}  // namespace

ToolDefinitionResult ConfirmToolDefinition(const ToolDefinitionBoxes& boxes, const ToolRecord& current, bool inches) {
    if (boxes.ShapeIndex < 0 || boxes.ShapeIndex >= ToolShapeCount) return Refused(InvalidToolDimensions);
    const ToolShape& shape = ShapeAt(boxes.ShapeIndex);
    // Every box is read as its leading number.
    auto box = [&](int n) { return ToNumber(boxes.Boxes[static_cast<std::size_t>(n - 1)]); };
    auto angleBox = [&](int n) { return NormaliseAngle(box(n)); };

    double d1 = 0, d2 = 0, d3 = 0, d4 = 0, angle = 0;
    bool refused = false;
    switch (shape.Letter) {
        case 'A':  // Diameter
            d1 = d2 = box(1);
            refused = d1 < Floor;
            break;
        case 'B':  // Square
            d1 = d2 = box(1);
            angle = angleBox(2);
            refused = d1 < Floor;
            break;
        case 'C':  // Rad-Square
            d1 = d2 = box(1);
            d4 = box(2);
            angle = angleBox(3);
            refused = d1 < Floor || d4 < Floor || 2 * d4 >= d1;
            break;
        case 'D':  // Rectangle
        case 'F':  // Obround
        case 'G':  // Single-D
        case 'H':  // Double-D
            d1 = box(1);
            d2 = box(2);
            angle = angleBox(3);
            refused = d1 < Floor || d2 < Floor || d2 >= d1;
            break;
        case 'E':  // Rad-Rect
            d1 = box(1);
            d2 = box(2);
            d4 = box(3);
            angle = angleBox(4);
            refused = d1 < Floor || d2 < Floor || d4 < Floor || d2 >= d1 || d2 <= 2 * d4;
            break;
        case 'I':  // Cannon-D
            d1 = box(1);
            d2 = box(2);
            angle = angleBox(3);
            refused = d1 < Floor || d2 < Floor || d2 >= d1 || d1 < d2 * 2 / 3;
            break;
        case 'J':  // Hexagon: D2 holds the width across corners
            d1 = box(1);
            d2 = Round3(4 * std::tan(DegToRad(30)) * (d1 / 2));
            angle = angleBox(2);
            refused = d1 < Floor;
            break;
        case 'K': {  // Keyway: the key end is the sign of D3
            d1 = box(1);
            d2 = box(2);
            double key = box(3);
            angle = angleBox(4);
            refused = d1 < Floor || d2 < Floor || key < Floor || d1 >= d2 || key >= d1;
            d3 = boxes.KeywayState == 1 ? -std::fabs(key) : std::fabs(key);
            break;
        }
        case 'L':  // Louvre
            d1 = box(1);
            d2 = box(2);
            angle = angleBox(3);
            refused = d1 < Floor || d2 < Floor || d2 > d1 / 2;
            break;
        case 'M':  // Cruciform
            d1 = d2 = box(1);
            d3 = box(2);
            d4 = box(3);
            angle = angleBox(4);
            refused = d1 < Floor || d3 < Floor || d4 < Floor || Round3(2 * d4) > Round3(d1 - d3) ||
                      d3 > Round3(d1 - 2 * d4);
            break;
        default: {  // Special: a name of 1 to 18 characters, always 25 by 25
            std::string name(Trim(boxes.SpecialName));
            if (name.empty() || name.size() > ToolNameWidth) return Refused(InvalidToolName);
            ToolDefinitionResult result;
            result.Accepted = true;
            result.Tool = current;
            result.Tool.Valid = TrueWord;
            result.Tool.Shape = 'S';
            result.Tool.Name = ToolName(name);
            result.Tool.D1 = result.Tool.D2 = 25;
            result.Tool.D3 = result.Tool.D4 = 0;
            result.Tool.Angle = ToSingle(angleBox(1));
            result.Tool.Extra1 = 0;
            result.Tool.Extra2 = 0;
            return result;
        }
    }
    if (refused) return Refused(InvalidToolDimensions);

    // Inches are stored as millimetres, 3 decimals half to even.
    if (inches) {
        d1 = Round3(d1 * Inch);
        d2 = Round3(d2 * Inch);
        d3 = Round3(d3 * Inch);
        d4 = Round3(d4 * Inch);
    }
    ToolDefinitionResult result;
    result.Accepted = true;
    result.Tool = current;
    result.Tool.Valid = TrueWord;
    result.Tool.Shape = shape.Letter;
    result.Tool.Name = ToolName(shape.Name);
    result.Tool.D1 = ToSingle(d1);
    result.Tool.D2 = ToSingle(d2);
    result.Tool.D3 = ToSingle(d3);
    result.Tool.D4 = ToSingle(d4);
    result.Tool.Angle = ToSingle(angle);
    result.Tool.Extra1 = 0;
    result.Tool.Extra2 = 0;
    return result;
}

ToolDefinitionBoxes OpenToolDefinition(const ToolRecord& tool, bool inches) {
    ToolDefinitionBoxes boxes;
    const ToolShape* shape = ShapeOfLetter(tool.Shape);
    boxes.ShapeIndex = shape ? shape->ScreenIndex : ToolShapeCount - 1;
    auto dim = [&](float value) { return BoxText(value, inches); };
    const std::string angle = FormatNumber(Number(tool.Angle), -1);
    switch (shape ? shape->Letter : 'S') {
        case 'A': boxes.Boxes = {dim(tool.D1), "", "", ""}; break;
        case 'B': boxes.Boxes = {dim(tool.D1), angle, "", ""}; break;
        case 'C': boxes.Boxes = {dim(tool.D1), dim(tool.D4), angle, ""}; break;
        case 'E': boxes.Boxes = {dim(tool.D1), dim(tool.D2), dim(tool.D4), angle}; break;
        case 'J': boxes.Boxes = {dim(tool.D1), angle, "", ""}; break;
        case 'K':
            boxes.Boxes = {dim(tool.D1), dim(tool.D2), dim(std::fabs(tool.D3)), angle};
            boxes.KeywayState = tool.D3 < 0 ? 1 : 0;
            break;
        case 'M': boxes.Boxes = {dim(tool.D1), dim(tool.D3), dim(tool.D4), angle}; break;
        case 'S':
            boxes.Boxes = {angle, "", "", ""};
            boxes.SpecialName = std::string(Trim(tool.Name));
            break;
        default: boxes.Boxes = {dim(tool.D1), dim(tool.D2), angle, ""}; break;  // D, F, G, H, I, L
    }
    return boxes;
}

std::vector<std::string> SpecialToolNames(const Directories& dirs) {
    std::vector<std::string> names;
    for (const auto& file : ListDirectory(dirs.ToolsDir, false)) names.push_back(StripExtension(file));
    return names;
}

}  // namespace kirvana

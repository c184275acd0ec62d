// `ShapeList`: the display list of a tool, its closed outline in lines and arcs with the hit at
// 0,0 and the tool at angle 0, built once per tool and turned and shifted for every hit.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "plot/canvas.h"
#include "tooling/tool_record.h"

namespace kirvana {

inline constexpr int MaxShapeEntries = 120;
// The length of one record of a Special tool's file.
inline constexpr std::size_t SpecialRecordLength = 426;

struct ShapeEntry {
    char Op = '*';         // 'L' a line, 'A' an arc, '*' the end of the list
    float X1 = 0, Y1 = 0;  // line: first end; arc: centre
    float X2 = 0, Y2 = 0;  // line: second end
    float Radius = 0;
    float StartAngle = 0, EndAngle = 0;  // arc: counter-clockwise, degrees; a full circle 0 to 360
};

struct ShapeList {
    std::array<ShapeEntry, MaxShapeEntries> Entries{};
    std::vector<PlotPoint> FillSeeds;  // where a solid hit is filled from
    ToolRecord Tool;                   // the tool the list was built from
    bool Built = false;
    bool FromFallback = false;  // a Special tool drawn as the square of its size
};

// Builds the list of the tool's shape. A Special tool reads its file from `toolsDir`; a
// missing or damaged file draws the square of D1. A hit without a valid tool, or with a shape
// of no outline, is the square of its ClearBox.
void BuildShapeList(const ToolRecord& tool, const std::string& toolsDir, ShapeList& list);
// The tool the list holds is this one: shape letter, name and dimensions.
bool SameShapeTool(const ToolRecord& a, const ToolRecord& b);

// A Special tool's file: records of 426 bytes, each one list entry; see special_tool.cpp.
// False when the file is missing, of a length that isn't whole records, or holds no outline.
bool ReadSpecialTool(const std::string& path, ShapeList& list);
// The file of a Special tool of this name in `toolsDir`, case ignored: "" when there is none.
std::string SpecialToolFile(const std::string& toolsDir, const std::string& name);
// Writes the entries (up to the end mark) as a Special tool's file.
bool WriteSpecialTool(const std::string& path, const std::vector<ShapeEntry>& entries);

}  // namespace kirvana

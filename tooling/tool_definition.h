// The logic of the tool definition screen (`ToolDefDialogue`): the values its boxes show when
// it opens, and the checks and storing of its confirmation (`OkButton`).
#pragma once

#include <array>
#include <string>
#include <vector>

#include "core/config.h"
#include "tooling/tool_record.h"

namespace kirvana {

inline constexpr const char* InvalidToolDimensions = "Invalid Tool Dimensions !";
inline constexpr const char* InvalidToolName = "Invalid Tool Name !";

// Captions of `KeywayButton` by its state: 0 flat key end, 1 rounded.
inline constexpr const char* KeywayCaptions[2] = {"FLAT", "ROUNDED"};

// What the screen holds when the operator confirms: the row of `ToolTypeList`, the texts of
// the shown frame's boxes in their order (box 1 first), the state of `KeywayButton` and, for a
// Special, the text of `SpecialCombo` (its angle is box 1, `SpecialBox`).
struct ToolDefinitionBoxes {
    int ShapeIndex = 0;
    std::array<std::string, 4> Boxes{};
    int KeywayState = 0;
    std::string SpecialName;
};

// The result of a confirmation: the tool for `ToolBuffer`, or the message that keeps the
// screen open.
struct ToolDefinitionResult {
    bool Accepted = false;
    ToolRecord Tool;
    std::string Message;
};

// Checks and stores a definition. `current` is the screen's own copy of `ToolBuffer`: its
// Setting and Station stay; `inches` is true when the machine shows inches.
ToolDefinitionResult ConfirmToolDefinition(const ToolDefinitionBoxes& boxes, const ToolRecord& current, bool inches);

// The boxes as the screen fills them on opening: the row by the tool's letter (Special for
// an unknown letter), each dimension in the unit shown (inches: D / 25.4 to 3 decimals;
// millimetres: the value as it stands), the angle as stored, the key end by the sign of D3.
ToolDefinitionBoxes OpenToolDefinition(const ToolRecord& tool, bool inches);

// The names of the files in ToolsDir without their extension, in listing order: the
// choices of `SpecialCombo`.
std::vector<std::string> SpecialToolNames(const Directories& dirs);

}  // namespace kirvana

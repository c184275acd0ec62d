// Any bytes as a tool text: the reader, the describer and the key readers must end without a
// fault, and what a valid tool describes must read back. The bytes behind the first 0x01
// fill the definition screen's boxes (cut at further 0x01 bytes).
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "tooling/tool_definition.h"
#include "tooling/tool_record.h"

using namespace kirvana;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view input(reinterpret_cast<const char*>(data), size);
    std::size_t cut = input.find('\x01');
    std::string_view text = input.substr(0, cut);
    std::string_view rest = cut == std::string_view::npos ? std::string_view() : input.substr(cut + 1);

    for (bool inches : {false, true}) {
        ToolRecord tool;
        ParseToolText(text, tool, inches);
        for (std::int16_t station : std::initializer_list<std::int16_t>{1, 20}) {
            tool.Station = station;
            std::string description = DescribeTool(tool, inches);
            ToolRecord again;
            ParseToolText(description, again, inches);
            // A valid tool of finite size reads back as a valid tool of the same shape.
            if (tool.IsValid() && tool.Shape != 'S' && std::isfinite(tool.D1) && std::isfinite(tool.D2) &&
                std::fabs(tool.D1) < 1e6f && std::fabs(tool.D2) < 1e6f && std::fabs(tool.D3) < 1e6f &&
                std::fabs(tool.D4) < 1e6f && std::fabs(tool.Angle) < 1e6f && tool.D1 >= 1 && tool.D2 >= 1 &&
                again.Shape != tool.Shape)
                std::abort();
        }
        OpenToolDefinition(tool, inches);
    }
    bool error = false;
    for (const char* key : {"X", "R", "A", "IDX", "W", "T", ""}) {
        ValueAfterKey(text, key, error);
        IntegerAfterKey(text, key, error);
    }

    ToolDefinitionBoxes boxes;
    boxes.ShapeIndex = static_cast<int>(size % 15);
    boxes.KeywayState = static_cast<int>(size % 2);
    boxes.SpecialName = std::string(text);
    for (auto& box : boxes.Boxes) {
        std::size_t next = rest.find('\x01');
        box = std::string(rest.substr(0, next));
        rest = next == std::string_view::npos ? std::string_view() : rest.substr(next + 1);
    }
    for (bool inches : {false, true}) ConfirmToolDefinition(boxes, ToolRecord(), inches);
    return 0;
}

// The tool command: reads a tool text as the tables do and prints the record and its
// description.
#include <cstdio>
#include <string>

#include "app/office.h"
#include "core/number.h"
#include "core/text.h"
#include "tooling/tool_record.h"

namespace kirvana::office {

int Tool(const Args& args) {
    const char* usage = "tool \"TEXT\" [--inches] [--station-type N]";
    std::string text;
    bool haveText = false;
    bool inches = false;
    bool haveType = false;
    std::int16_t stationType = 0;
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--inches") {
            inches = true;
        } else if (args[i] == "--station-type") {
            if (i + 1 >= args.size()) return Usage(usage);
            auto type = TruncateToInt16(ToNumber(args[++i]));
            if (!type) return Usage(usage);
            stationType = *type;
            haveType = true;
        } else if (!haveText) {
            text = args[i];
            haveText = true;
        } else {
            return Usage(usage);
        }
    }
    if (!haveText) return Usage(usage);

    ToolRecord tool;
    if (haveType) tool.Station = stationType;
    ParseToolText(text, tool, inches);
    auto single = [](float value) { return FormatNumber(Number(value), -1); };
    std::printf("valid: %s\n", tool.IsValid() ? "true" : "false");
    std::printf("shape: %c\n", tool.Shape);
    std::printf("name: %s\n", std::string(Trim(tool.Name)).c_str());
    std::printf("D1: %s\nD2: %s\nD3: %s\nD4: %s\n", single(tool.D1).c_str(), single(tool.D2).c_str(),
                single(tool.D3).c_str(), single(tool.D4).c_str());
    std::printf("angle: %s\n", single(tool.Angle).c_str());
    std::printf("description: %s\n", DescribeTool(tool, inches).c_str());
    if (inches) std::printf("tool text: %s\n", DescribeTool(tool, false).c_str());
    return 0;
}

}  // namespace kirvana::office

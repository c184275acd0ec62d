#include "analysis/reverse_report.h"

#include <algorithm>

#include "core/number.h"
#include "core/text.h"

namespace kirvana {

namespace {

std::string Single(float value) { return FormatNumber(Number(value), -1); }

}  // namespace

std::string ReportHead(std::string_view programName, std::string_view directory, std::string_view time) {
    return "PROGRAM   :  " + std::string(Trim(programName)) + "\n" + "DIRECTORY :  " + std::string(Trim(directory)) +
           "\n" + "TIME      :  " + std::string(time) + "\n";
}

std::string HeaderReportLines(const ProgramHeader& header, int clampCount) {
    std::string lines;
    if (header.HasMaterial) lines += "Material :  " + header.Material + "\n";
    lines += "Sheet Size :  " + Single(header.SheetX) + "x" + Single(header.SheetY) + "\n";
    int clamps = 0;
    while (clamps < std::min(clampCount, 4) && header.Clamps[static_cast<std::size_t>(clamps)] > 0) ++clamps;
    if (clamps == 3 || clamps == 4) {
        std::string text;
        for (std::size_t k = 0; k < static_cast<std::size_t>(clamps); ++k)
            text += (k ? ", " : "") + Single(header.Clamps[k]);
        lines += "Clamps :  " + text + "\n";
    } else {
        lines += "Clamps :  " + Single(header.Clamps[0]) + " & " + Single(header.Clamps[1]) + "\n";
    }
    return lines;
}

void ReportEntry(std::string& report, std::string_view block, std::string_view message, bool critical) {
    report += '\n';
    report += critical ? "****** CRITICAL ERROR ******" : "****** WARNING ERROR ******";
    report += '\n';
    report += Trim(message);
    report += '\n';
    report += Trim(block);
    report += '\n';
}

}  // namespace kirvana

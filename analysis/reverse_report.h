// The report files of the passes that walk the motion language ("Reverse.txt", "Gather.txt"):
// their head lines, the lines of the program's header, and the entry of an error.
#pragma once

#include <string>
#include <string_view>

#include "analysis/program_header.h"

namespace kirvana {

// "PROGRAM   :  ", "DIRECTORY :  " and "TIME      :  " lines, each ending in a line end.
std::string ReportHead(std::string_view programName, std::string_view directory, std::string_view time);

// The material, sheet size and clamp lines of the Reverse report, the clamps counted in order
// up to the machine's clamp count.
std::string HeaderReportLines(const ProgramHeader& header, int clampCount);

// A blank line, "****** CRITICAL ERROR ******" or "****** WARNING ERROR ******", the message and
// the block, both trimmed.
void ReportEntry(std::string& report, std::string_view block, std::string_view message, bool critical);

}  // namespace kirvana

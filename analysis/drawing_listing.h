// A drawing file as readable text: one block of lines per record, for the office seat and for
// comparing drawings in tests.
#pragma once

#include <string>
#include <vector>

#include "analysis/drawing_file.h"

namespace kirvana {

// The lines of one record, indented by two: kind, name and record number, texts, blocks, the subroutine call when there
// is one, points, the values and counts that are set, the boxes, the tool, the settings in force.
std::vector<std::string> DescribeEntity(const EntityRec& rec);

// The file as a reader walks it: record 1, then records 2 to the count, each behind a line
// "record n". A first line gives the count and the whole records the file holds.
std::vector<std::string> ListDrawing(DrawingFile& file);

}  // namespace kirvana

// `ExpandDrawing`: the expanded file (`.dr1`) of a drawing, the Sheet record and then one
// Punch record per hit of every Punch, Linear Pattern, Grid Pattern and Arc Pattern.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "analysis/drawing_file.h"

namespace kirvana {

// The most hits one expansion writes. A pattern's counts are 16-bit, but a grid of 32767 rows
// of 32767 hits would fill a disk: the expansion stops at this many hits and says so.
inline constexpr std::int32_t MaxExpandedHits = 4'000'000;

struct ExpandResult {
    bool Done = false;          // false: the drawing could not be opened, or the output not written
    std::int32_t Records = 0;   // records of the expanded file, the Sheet included
    bool LimitReached = false;  // the hits stopped at the limit
};

// Builds stem + "dr1" from stem + "drw" (a stem ends in "."). A missing drawing writes nothing.
[[nodiscard]] ExpandResult ExpandDrawing(const std::string& stem, std::int32_t maxHits = MaxExpandedHits);

// The hits of a Punch, Linear, Grid or Arc Pattern in the order the machine punches them, as
// the expansion makes them: visit(x, y, c) with the C angle of an Arc Pattern's hit, null for
// the others (their hits keep the tool's). A visit returning false ends the walk, which then
// returns false. Other kinds have no hits.
bool ForEachHit(const EntityRec& rec, const std::function<bool(double, double, const double*)>& visit);

// The hits of one record as the expansion writes them (0 for kinds without hits), at most the
// expansion's limit.
std::int32_t EntityHits(const EntityRec& rec);

// Where record `expandedRecord` of the expanded file (2 on: the hits) comes from: the drawing's
// record and the hit in it, counted from 1. False when the drawing has fewer hits.
bool FindExpandedHit(DrawingFile& drawing, std::int32_t expandedRecord, std::int32_t& record, std::int32_t& hit);

// The expansion between two open files; `expanded` is written from record 1 on.
ExpandResult ExpandRecords(DrawingFile& drawing, DrawingFile& expanded, std::int32_t maxHits = MaxExpandedHits);

}  // namespace kirvana

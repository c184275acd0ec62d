// Any bytes as a drawing file: the reader walk, the record codec, the listing, ToolOutline and
// ExpandDrawing must end without a fault, and every record must write back its own bytes.
#include <cstddef>
#include <cstdint>
#include <string>

#include "analysis/drawing_file.h"
#include "analysis/drawing_listing.h"
#include "analysis/expand.h"
#include "analysis/tool_outline.h"

using namespace kirvana;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    DrawingFile drawing = DrawingFile::InMemory(std::string(reinterpret_cast<const char*>(data), size));
    // Record 1 and the records up to the count, as every reader walks them.
    const std::int32_t last = drawing.LastReadable();
    RecordBytes raw;
    RecordBytes again;
    EntityRec rec;
    for (std::int32_t n = 1; n <= (last > 0 ? last : 1); ++n) {
        if (!drawing.GetBytes(n, raw)) break;
        DecodeEntity(raw, rec);
        EncodeEntity(rec, again);
        if (again != raw) __builtin_trap();
        DescribeEntity(rec);
        // A grid's outline walks all its hits (up to 32767 x 32767); big ones are left out to
        // keep each input quick.
        const bool bigGrid = rec.Kind == EntityKind::GridPattern && rec.Counts[1] > 0 && rec.Counts[2] > 0 &&
                             static_cast<std::int64_t>(rec.Counts[1]) * rec.Counts[2] > 100000;
        if (!bigGrid) ToolOutline(rec);
    }
    ListDrawing(drawing);
    // The expansion, held to a few hundred hits.
    DrawingFile expanded = DrawingFile::InMemory();
    const ExpandResult result = ExpandRecords(drawing, expanded, 300);
    if (!result.Done || result.Records < 1 || result.Records > 301) __builtin_trap();
    if (expanded.Count() != result.Records || expanded.RecordsInFile() != result.Records) __builtin_trap();
    return 0;
}

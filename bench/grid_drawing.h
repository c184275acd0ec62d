// The plot benchmarks' drawing: grids of 100 x 100 hits, each of another tool shape, on a sheet
// of 3000 x 1500.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "analysis/drawing_file.h"
#include "analysis/tool_outline.h"

namespace kirvana {

// The k-th of the fourteen tool shapes.
inline ToolRecord BenchTool(int k) {
    static const char* texts[] = {"DIAMETER 10",        "SQUARE 10 A15",   "RAD-SQUARE 12R2A0", "RECTANGLE 20X8A30",
                                  "RAD-RECT 20X8R2A45", "OBROUND 20X8A90", "SINGLE-D 12X10A0",  "DOUBLE-D 12X9A0",
                                  "CANNON-D 20X8A0",    "HEXAGON 12A0",    "KEYWAY 12X15W3A0",  "LOUVRE 30X6A0",
                                  "CRUCIFORM 16W4R1A0", "SQUARE 6 A45"};
    ToolRecord tool;
    ParseToolText(texts[k % 14], tool, false);
    tool.Station = 20;
    return tool;
}

// Writes `grids` grids, ten to a row, into the temporary folder as `name`; its path, or empty
// when it could not be written.
inline std::string WriteGridDrawing(const std::string& name, int grids) {
    std::string path = std::filesystem::temp_directory_path() / name;
    DrawingFile file;
    if (!file.Create(path)) return {};
    std::int16_t counter = 0;
    EntityRec rec;
    rec.Kind = EntityKind::Sheet;
    rec.Values[1] = 3000;
    rec.Values[2] = 1500;
    AppendEntity(file, counter, rec);
    for (int g = 0; g < grids; ++g) {
        ClearEntity(rec);
        rec.Kind = EntityKind::GridPattern;
        rec.Tool = BenchTool(g);
        rec.Points.Start =
            rec.Points.Entry = {static_cast<float>(20 + (g % 10) * 290), static_cast<float>(20 + (g / 10) * 148)};
        rec.Values[1] = rec.Values[3] = 250;
        rec.Values[2] = 2.5f;
        rec.Values[4] = 1.3f;
        rec.Counts[1] = 100;
        rec.Counts[2] = 100;
        ToolOutline(rec);
        AppendEntity(file, counter, rec);
    }
    rec.Kind = EntityKind::Sheet;
    rec.RecordNo = counter;
    file.Put(1, rec);
    file.Close();
    return path;
}

}  // namespace kirvana

#include "analysis/drawing_tools.h"

#include "analysis/drawing_file.h"
#include "analysis/tool_outline.h"
#include "core/file_writer.h"

namespace kirvana {

namespace {

// The change whose old tool the record uses in that station, or nullptr.
const ToolChange* ChangeOf(const EntityRec& rec, const std::vector<ToolChange>& changes) {
    for (const ToolChange& change : changes)
        if (rec.StationNo == change.Station && SameTool(rec.Tool, change.OldTool)) return &change;
    return nullptr;
}

}  // namespace

bool RewriteDrawingTools(const std::string& drawingFile, const std::vector<ToolChange>& changes) {
    if (changes.empty()) return false;
    DrawingFile old;
    if (!old.Open(drawingFile, true)) return false;
    // The new records are gathered first; only a whole new file takes the old one's place.
    DrawingFile rewritten = DrawingFile::InMemory();
    const std::int32_t last = old.RecordsInFile();
    bool changed = false;
    for (std::int32_t n = 1; n <= last; ++n) {
        RecordBytes bytes;
        if (!old.GetBytes(n, bytes)) return false;
        EntityRec rec;
        DecodeEntity(bytes, rec);
        if (n > 1) {
            if (const ToolChange* change = ChangeOf(rec, changes)) {
                CopyTool(change->NewTool, rec.Tool);
                ToolOutline(rec);
                EncodeEntity(rec, bytes);
                changed = true;
            }
        }
        if (!rewritten.PutBytes(n, bytes)) return false;
    }
    // Nothing to change: the old file stays as it is.
    if (!changed) return false;
    old.Close();
    return WriteFileText(drawingFile, rewritten.MemoryBytes());
}

}  // namespace kirvana

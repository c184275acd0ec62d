#include "navigation/program_view.h"

#include <algorithm>
#include <fstream>

#include "core/text.h"
#include "system/startup.h"

namespace kirvana {

namespace {

constexpr std::int32_t SourceWidth = 80, MotionWidth = 240;

// `count` records of `width` bytes from record `first`, in one read; what the file lacks is empty.
std::vector<std::string> ReadRecords(const std::string& path, std::int32_t first, int count, std::int32_t width) {
    std::vector<std::string> records(static_cast<std::size_t>(count));
    std::ifstream file(path, std::ios::binary);
    if (!file) return records;
    std::string bytes(static_cast<std::size_t>(count) * static_cast<std::size_t>(width), ' ');
    file.seekg(static_cast<std::streamoff>(first - 1) * width);
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    std::size_t got = file.gcount() > 0 ? static_cast<std::size_t>(file.gcount()) : 0;
    for (int n = 0; n < count; ++n) {
        std::size_t at = static_cast<std::size_t>(n) * static_cast<std::size_t>(width);
        if (at >= got) break;
        records[static_cast<std::size_t>(n)] =
            std::string(Trim(std::string_view(bytes).substr(at, std::min<std::size_t>(width, got - at))));
    }
    return records;
}

}  // namespace

std::vector<ViewRow> ReadViewRows(const std::string& raFile, const std::string& rmFile, std::int32_t first, int rows,
                                  std::int32_t recordCount) {
    std::vector<ViewRow> page;
    if (first < 1 || rows < 1 || first > recordCount) return page;
    int count = static_cast<int>(std::min<std::int32_t>(rows, recordCount - first + 1));
    std::vector<std::string> sources = ReadRecords(raFile, first, count, SourceWidth);
    std::vector<std::string> motions = ReadRecords(rmFile, first, count, MotionWidth);
    for (int n = 0; n < count; ++n)
        page.push_back({first + n, sources[static_cast<std::size_t>(n)], motions[static_cast<std::size_t>(n)], false});
    return page;
}

ViewPage ViewPageAround(const Process& process, std::int32_t program, std::int32_t record, int rows) {
    ViewPage page;
    if (program < 1 || program > 4) return page;
    int slot = program == 1 || program == 3 ? 1 : 2;
    bool second = program > 2;
    const SlotRecord& slotRecord = process.Slots[static_cast<std::size_t>(slot - 1)];
    page.Program = program;
    page.Slot = slot;
    if (!slotRecord.Present) return page;
    page.ProgramName = slotRecord.ProgramName;
    std::int32_t count = slotRecord.Counts[second ? 1 : 0].SourceRecordCount;
    std::int32_t first = 1;
    if (record >= 1)
        first = std::max<std::int32_t>(1, std::min<std::int32_t>(record - ViewRowsAbove, count - rows + 1));
    const Directories& dirs = process.Config.Dirs;
    page.Rows = ReadViewRows(SlotFile(dirs, slot, second ? "RA2" : "RA1"), SlotFile(dirs, slot, second ? "RM2" : "RM1"),
                             first, rows, count);
    for (ViewRow& row : page.Rows) row.Lit = row.Record == record;
    return page;
}

}  // namespace kirvana

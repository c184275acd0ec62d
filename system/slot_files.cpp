// The slot's own files: the block map of the card's program counter, the description, the
// statistics and the batch counters.
#include <cstdio>
#include <fstream>
#include <optional>
#include <vector>

#include "core/config.h"
#include "core/file_writer.h"
#include "core/little_endian.h"
#include "core/number.h"
#include "core/paths.h"
#include "core/text.h"
#include "system/slots.h"
#include "system/startup.h"

namespace kirvana {

namespace {

// A text padded with blanks or cut to a record's width.
std::string Padded(const std::string& text, std::size_t width) {
    std::string out = text.substr(0, width);
    out.resize(width, ' ');
    return out;
}

}  // namespace

std::string SlotFile(const Directories& dirs, int slot, const char* extension) {
    return SlotStem(dirs, slot) + extension;
}

namespace {

// The numbers of a comma list.
std::vector<double> Numbers(const std::string& line) {
    std::vector<double> values;
    std::size_t start = 0;
    while (start <= line.size()) {
        std::size_t comma = line.find(',', start);
        values.push_back(ToNumber(
            std::string_view(line).substr(start, comma == std::string::npos ? std::string::npos : comma - start)));
        if (comma == std::string::npos) break;
        start = comma + 1;
    }
    return values;
}

}  // namespace

std::string SlotStem(const Directories& dirs, int slot) {
    return dirs.RootDir + "Actvprg" + std::to_string(slot) + ".";
}

std::string ProgramButtonCaption(int slot, const SlotRecord& record) {
    std::string key = "   F1" + std::to_string(slot - 1);
    return record.Present ? record.ProgramName + key : "PROGRAM " + std::to_string(slot) + key;
}

void SetCommentMarks(SlotRecord& record, bool atStart) {
    bool brackets = record.SourceDialect == 2 || (record.SourceDialect == 5 && !atStart);
    record.CommentOpen = brackets ? "(" : "!";
    record.CommentClose = brackets ? ")" : "";
}

std::optional<SlotCounts> BuildBlockMap(const std::string& aFile, const std::string& mFile, const std::string& wFile,
                                        const std::string& raFile, const std::string& rmFile, std::string* fileFault) {
    auto fault = [&](const std::string& file) -> std::optional<SlotCounts> {
        if (fileFault) *fileFault = file;
        return std::nullopt;
    };
    std::ifstream a(aFile, std::ios::binary), m(mFile, std::ios::binary);
    if (!a) return fault(aFile);
    FileWriter w(wFile), ra(raFile), rm(rmFile);
    constexpr std::int32_t Most = 32767;  // records, blocks and words are numbered in 16 bits
    std::int32_t rec = 0, block = 0, word = 0;
    std::string aLine, mLine;
    // 3. The A file governs; a missing M line reads as empty.
    while (std::getline(a, aLine)) {
        // 1. One line of each.
        if (!std::getline(m, mLine)) mLine.clear();
        aLine = std::string(Trim(aLine.ends_with('\r') ? std::string_view(aLine).substr(0, aLine.size() - 1) : aLine));
        mLine = std::string(Trim(mLine.ends_with('\r') ? std::string_view(mLine).substr(0, mLine.size() - 1) : mLine));
        // 2. A non-empty A line is a record; the letters of its M block are the card's words.
        if (aLine.empty()) continue;
        int count = CountBlockWords(mLine);
        if (rec == Most || (count > 0 && (block == Most || word + count > Most))) return std::nullopt;
        ++rec;
        ra.WriteBytes(Padded(aLine, 80));
        rm.WriteBytes(Padded(mLine, 240));
        if (count == 0) continue;
        ++block;
        for (int k = 0; k < count; ++k) {
            ++word;
            std::uint8_t record[6];
            StoreInt16(record, static_cast<std::int16_t>(word - 1));
            StoreInt16(record + 2, static_cast<std::int16_t>(block - 1));
            StoreInt16(record + 4, static_cast<std::int16_t>(rec));
            w.WriteBytes(std::string_view(reinterpret_cast<const char*>(record), sizeof record));
        }
    }
    if (a.bad()) return fault(aFile);
    if (m.bad()) return fault(mFile);
    for (FileWriter* out : {&w, &ra, &rm})
        if (!out->Close()) return fault(out->Path());
    return SlotCounts{static_cast<std::int16_t>(word), static_cast<std::int16_t>(block),
                      static_cast<std::int16_t>(rec)};
}

SlotBlock SlotBlockAt(const Process& process, int program, std::int32_t word) {
    if (program < 1 || program > 4) return {};
    int slot = (program == 1 || program == 3) ? 1 : 2;
    int file = program <= 2 ? 0 : 1;
    const SlotCounts& counts = process.Slots[slot - 1].Counts[file];
    std::int64_t target = static_cast<std::int64_t>(word) + 1;
    if (target > counts.MapWordCount || target < 1) target = 1;
    std::ifstream w(SlotFile(process.Config.Dirs, slot, file == 0 ? "W1" : "W2"), std::ios::binary);
    if (!w) return {};
    std::uint8_t record[6];
    w.seekg((target - 1) * 6);
    if (!w.read(reinterpret_cast<char*>(record), sizeof record)) return {};
    return SlotBlock{LoadInt16(record + 2), LoadInt16(record + 4)};
}

SlotStats ReadSlotStats(const Directories& dirs, int slot) {
    SlotStats stats;
    auto lines = ReadLines(SlotFile(dirs, slot, "sts"));
    if (!lines) return stats;
    if (lines->size() > 0) stats.Hits = RoundToInt32(ToNumber((*lines)[0])).value_or(0);
    if (lines->size() > 1) stats.Travel = ToSingle(ToNumber((*lines)[1]));
    if (lines->size() > 2) stats.Cut = ToSingle(ToNumber((*lines)[2]));
    return stats;
}

bool WriteSlotStats(const Directories& dirs, int slot, const SlotStats& stats) {
    return WriteLines(SlotFile(dirs, slot, "sts"),
                      {LongText(stats.Hits), FormatNumber(stats.Travel, -1), FormatNumber(stats.Cut, -1), EndMarker});
}

SlotBatch ReadSlotBatch(const Directories& dirs, int slot) {
    SlotBatch batch{};
    auto lines = ReadLines(SlotFile(dirs, slot, "btc"));
    if (!lines) return batch;
    for (std::size_t i = 0; i < batch.size() && i < lines->size(); ++i)
        batch[i] = RoundToInt32(ToNumber((*lines)[i])).value_or(0);
    return batch;
}

SlotBatch BatchOfCounters(const std::array<std::int32_t, 4>& counters) {
    SlotBatch batch{counters[0], counters[1], counters[2], counters[3], 0};
    if (batch[1] != 0 && batch[2] != 0) batch[4] = batch[2] - batch[3];
    return batch;
}

bool WriteSlotBatch(const Directories& dirs, int slot, const SlotBatch& batch) {
    std::vector<std::string> lines;
    for (std::int32_t value : batch) lines.push_back(LongText(value));
    lines.push_back(EndMarker);
    return WriteLines(SlotFile(dirs, slot, "btc"), lines);
}

bool WriteSlotConfig(const Directories& dirs, int slot, const SlotRecord& r) {
    auto counts = [](const SlotCounts& c) {
        return IntegerText(c.MapWordCount) + "," + IntegerText(c.MotionBlockCount) + "," +
               IntegerText(c.SourceRecordCount);
    };
    return WriteLines(SlotFile(dirs, slot, "cfg"),
                      {r.ProgramName, r.ProgramDirName, r.ProgramDirPath, counts(r.Counts[0]), counts(r.Counts[1]),
                       IntegerText(r.SourceDialect), FormatNumber(r.SlotLoadY, -1), EndMarker});
}

bool ReadSlotConfig(const Directories& dirs, int slot, SlotRecord& r, bool* unreadable) {
    const std::string path = SlotFile(dirs, slot, "cfg");
    NoteFile(dirs.ServiceDir, path);
    auto lines = ReadLines(path);
    if (!lines && unreadable) *unreadable = FileExists(path);
    if (!lines || lines->size() < 7) return false;
    const auto& l = *lines;
    r.ProgramName = std::string(Trim(l[0]));
    r.ProgramDirName = std::string(Trim(l[1]));
    r.ProgramDirPath = std::string(Trim(l[2]));
    for (int k = 0; k < 2; ++k) {
        auto values = Numbers(l[3 + k]);
        values.resize(3, 0);
        r.Counts[k] = SlotCounts{TruncateToInt16(values[0]).value_or(0), TruncateToInt16(values[1]).value_or(0),
                                 TruncateToInt16(values[2]).value_or(0)};
    }
    r.SourceDialect = TruncateToInt16(ToNumber(l[5])).value_or(1);
    r.SlotLoadY = ToSingle(ToNumber(l[6]));
    return true;
}

}  // namespace kirvana

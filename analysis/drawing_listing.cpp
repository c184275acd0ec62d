#include "analysis/drawing_listing.h"

#include <algorithm>
#include <cstdio>

#include "core/number.h"
#include "core/text.h"

namespace kirvana {

namespace {

std::string Single(float value) { return FormatNumber(Number(value), -1); }

std::string Point(const PointF& p) { return "(" + Single(p.X) + ", " + Single(p.Y) + ")"; }

// A record text, trimmed, in quotes; bytes that don't print are shown as \xNN.
std::string Quoted(std::string_view text) {
    std::string shown = "\"";
    for (char c : Trim(text)) {
        auto byte = static_cast<unsigned char>(c);
        if (byte >= 32 && byte < 127 && c != '\\') {
            shown += c;
        } else {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\x%02X", byte);
            shown += escaped;
        }
    }
    return shown + "\"";
}

bool IsBlank(std::string_view text) { return Trim(text).empty(); }

bool IsCleared(const SubCall& c) {
    return IsBlank(c.Block) && c.CallCode == 0 && c.Label == 0 && c.X == 0 && c.Y == 0 && c.PitchX == 0 &&
           c.PitchY == 0 && c.CountX == 0 && c.CountY == 0 && c.Order == 0;
}

std::string CallText(const SubCall& c) {
    return "G" + std::to_string(c.CallCode) + " S" + std::to_string(c.Label) + " at (" + Single(c.X) + ", " +
           Single(c.Y) + ") pitch (" + Single(c.PitchX) + ", " + Single(c.PitchY) + ") counts (" +
           std::to_string(c.CountX) + ", " + std::to_string(c.CountY) + ") order " + std::to_string(c.Order) + " " +
           Quoted(c.Block);
}

// "n=value" for every slot that is not `unset`, or "none".
template <typename Slots, typename Unset, typename Text>
std::string SlotList(const Slots& slots, Unset unset, Text text) {
    std::string list;
    for (std::size_t i = 0; i < slots.size(); ++i) {
        if (slots[i] == unset) continue;
        if (!list.empty()) list += ' ';
        list += std::to_string(i + 1) + "=" + text(slots[i]);
    }
    return list.empty() ? "none" : list;
}

std::string ToolText(const ToolRecord& t) {
    if (!t.IsValid()) return "none";
    std::string shape = t.Shape >= 32 && t.Shape < 127 ? std::string(1, t.Shape) : "?";
    return Quoted(DescribeTool(t, false)) + ", shape " + shape + ", station type " + std::to_string(t.Station) +
           ", setting " + std::to_string(t.Setting) + ", c " + Single(t.Extra1);
}

}  // namespace

std::vector<std::string> DescribeEntity(const EntityRec& rec) {
    std::vector<std::string> lines;
    lines.push_back("  kind " + std::to_string(rec.Kind) + " " + Quoted(rec.KindName) + ", record no " +
                    std::to_string(rec.RecordNo));
    if (!IsBlank(rec.Remark)) lines.push_back("  remark: " + Quoted(rec.Remark));
    if (!IsBlank(rec.BlockText)) lines.push_back("  block: " + Quoted(rec.BlockText));
    lines.push_back("  main block " + std::to_string(rec.MainBlock) + ", sub block " + std::to_string(rec.SubBlock) +
                    ", station no " + std::to_string(rec.StationNo));
    if (!IsCleared(rec.CallSpec)) lines.push_back("  call asked: " + CallText(rec.CallSpec));
    if (!IsCleared(rec.CallState)) lines.push_back("  call state: " + CallText(rec.CallState));
    const EntityPoints& p = rec.Points;
    lines.push_back("  start " + Point(p.Start) + ", middle " + Point(p.Middle) + ", end " + Point(p.End));
    lines.push_back("  position " + Point(p.Position) + ", entry " + Point(p.Entry) + ", exit " + Point(p.Exit));
    lines.push_back("  values: " + SlotList(rec.Values.Items, 0.0f, Single));
    lines.push_back("  counts: " +
                    SlotList(rec.Counts.Items, std::int16_t{0}, [](std::int16_t v) { return std::to_string(v); }));
    lines.push_back("  compensation " + std::to_string(rec.Compensation) + ", cycle rotate " +
                    std::to_string(rec.CycleRotate) + ", path mode " + std::to_string(rec.PathMode) + ", feed " +
                    Single(rec.Feed));
    lines.push_back("  extent " + Point(rec.Extent.Low) + " to " + Point(rec.Extent.High) + ", clear box " +
                    Point(rec.ClearBox.Low) + " to " + Point(rec.ClearBox.High));
    lines.push_back("  tool: " + ToolText(rec.Tool));
    lines.push_back("  settings: " + SlotList(rec.Settings, NoValue, Single));
    return lines;
}

std::vector<std::string> ListDrawing(DrawingFile& file) {
    std::vector<std::string> lines;
    const std::int32_t count = file.Count();
    const std::int32_t whole = file.RecordsInFile();
    lines.push_back("count " + std::to_string(count) + ", " + std::to_string(whole) + " records in the file");
    const std::int32_t last = file.LastReadable();
    EntityRec rec;
    for (std::int32_t n = 1; n <= std::max<std::int32_t>(last, whole > 0 ? 1 : 0); ++n) {
        file.Get(n, rec);
        lines.push_back("record " + std::to_string(n));
        for (auto& line : DescribeEntity(rec)) lines.push_back(std::move(line));
    }
    return lines;
}

}  // namespace kirvana

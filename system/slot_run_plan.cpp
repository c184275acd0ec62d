#include "system/slot_run_plan.h"

#include <fstream>
#include <map>

#include "analysis/drawing_file.h"
#include "analysis/expand.h"
#include "core/paths.h"
#include "core/text.h"
#include "system/slots.h"

namespace kirvana {

namespace {

// The card's first word of each line of a motion file (numbered from 1 as the drawing's block
// counts are): the line's record in `.RA`k is its count of non-empty A lines, and the block map
// gives the first word of each record. A line without words shows the word before it.
std::vector<int> LineWords(const Directories& dirs, int slot, bool second) {
    std::map<int, int> firstWord;  // record -> word
    std::ifstream w(SlotFile(dirs, slot, second ? "W2" : "W1"), std::ios::binary);
    unsigned char record[6];
    while (w.read(reinterpret_cast<char*>(record), sizeof record)) {
        int word = static_cast<std::int16_t>(record[0] | (record[1] << 8));
        int rec = static_cast<std::int16_t>(record[4] | (record[5] << 8));
        firstWord.try_emplace(rec, word);
    }
    std::vector<int> words{0};  // line 0: before the first line
    int rec = 0;
    for (const std::string& line :
         ReadLines(SlotFile(dirs, slot, second ? "A2" : "A1")).value_or(std::vector<std::string>{})) {
        if (!Trim(line).empty()) ++rec;
        auto found = firstWord.find(rec);
        words.push_back(found != firstWord.end() && !Trim(line).empty() ? found->second : words.back());
    }
    return words;
}

int WordOf(const std::vector<int>& words, int line) {
    if (line < 0) return 0;
    return static_cast<std::size_t>(line) < words.size() ? words[line] : words.back();
}

// The hits of one punching entity, as the expansion makes them.
std::vector<PointF> HitsOf(const EntityRec& sheet, const EntityRec& entity) {
    DrawingFile drawing = DrawingFile::InMemory();
    EntityRec head = sheet;
    head.RecordNo = 2;
    drawing.Put(1, head);
    drawing.Put(2, entity);
    DrawingFile expanded = DrawingFile::InMemory();
    ExpandResult result = ExpandRecords(drawing, expanded);
    std::vector<PointF> hits;
    EntityRec hit;
    for (std::int32_t n = 2; n <= result.Records; ++n)
        if (expanded.Get(n, hit)) hits.push_back(hit.Points.Position);
    return hits;
}

// The N number of main program line `line` (from 1); 0 when it has none.
int LineLabel(const std::vector<std::string>& lines, int line) {
    if (line < 1 || static_cast<std::size_t>(line) > lines.size()) return 0;
    const std::string text = UpperCase(Trim(lines[static_cast<std::size_t>(line - 1)]));
    if (!text.starts_with("N")) return 0;
    return static_cast<int>(std::max(0.0, ToNumber(std::string_view(text).substr(1))));
}

}  // namespace

std::optional<RunPlan> BuildRunPlan(const Directories& dirs, int slot) {
    if (slot != 1 && slot != 2) return std::nullopt;
    DrawingFile drawing;
    EntityRec sheet;
    if (!drawing.Open(SlotFile(dirs, slot, "drw"), true) || !drawing.Get(1, sheet)) return std::nullopt;
    const std::vector<int> mainWords = LineWords(dirs, slot, false), subWords = LineWords(dirs, slot, true);
    const std::vector<std::string> mainLines =
        ReadLines(SlotFile(dirs, slot, "M1")).value_or(std::vector<std::string>{});
    RunPlan plan;
    int station = 0;
    EntityRec rec;
    const std::int32_t last = drawing.LastReadable();
    for (std::int32_t n = 2; n <= last; ++n) {
        if (!drawing.Get(n, rec)) break;
        RunStep step;
        bool inSub = rec.SubBlock > 0;
        step.Program = inSub ? slot + 2 : slot;
        step.Word = inSub ? WordOf(subWords, rec.SubBlock) : WordOf(mainWords, rec.MainBlock);
        step.Label = LineLabel(mainLines, rec.MainBlock);
        switch (rec.Kind) {
            case EntityKind::Punch:
            case EntityKind::LinearPattern:
            case EntityKind::GridPattern:
            case EntityKind::ArcPattern: {
                bool first = true;
                for (const PointF& hit : HitsOf(sheet, rec)) {
                    RunStep at = step;
                    at.X = hit.X;
                    at.Y = hit.Y;
                    at.Hits = 1;
                    if (first && rec.StationNo > 0 && rec.StationNo != station) at.Station = rec.StationNo;
                    first = false;
                    plan.push_back(at);
                }
                if (rec.StationNo > 0) station = rec.StationNo;
                continue;
            }
            case EntityKind::Move:
            case EntityKind::LineProfile:
            case EntityKind::ArcProfile:
                step.X = rec.Points.End.X;
                step.Y = rec.Points.End.Y;
                break;
            case EntityKind::Stop:
                step.X = rec.Points.Position.X;
                step.Y = rec.Points.Position.Y;
                step.Stop = rec.Counts[1] == 0 ? RunStep::StopKind::Program : RunStep::StopKind::Optional;
                break;
            default:
                step.X = rec.Points.Position.X;
                step.Y = rec.Points.Position.Y;
                break;
        }
        plan.push_back(step);
    }
    return plan;
}

RunPlanSource SlotRunPlanSource(Directories dirs) {
    return [dirs = std::move(dirs)](int program) -> std::optional<RunPlan> {
        if (program != 1 && program != 2) return std::nullopt;
        return BuildRunPlan(dirs, program);
    };
}

}  // namespace kirvana

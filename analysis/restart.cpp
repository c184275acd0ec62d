#include "analysis/restart.h"

#include <algorithm>
#include <cmath>

#include "analysis/drawing_file.h"
#include "analysis/expand.h"
#include "analysis/pattern_walk.h"
#include "analysis/reverse_report.h"
#include "core/geometry.h"
#include "core/number.h"
#include "core/paths.h"
#include "core/text.h"

namespace kirvana {

namespace {

std::string Num(double value) { return FormatNumber(Number(ToSingle(value)), -1); }

bool IsPattern(std::int16_t kind) {
    return kind == EntityKind::LinearPattern || kind == EntityKind::GridPattern || kind == EntityKind::ArcPattern;
}

// One line of a row of hits: the parameters first, the cycle word last.
std::string RowLine(std::int32_t hits, double angle, double pitch, double x, double y) {
    if (pitch < 0) {
        pitch = -pitch;
        angle += 180;
    }
    return "P1=" + std::to_string(hits) + " P5=" + Num(NormaliseAngle(angle)) + " P7=" + Num(pitch) +
           " P2=-999 P3=-999 P4=-999 P6=-999 P8=-999 P9=1 P10=0 P11=0 G26 X" + Num(x) + " Y" + Num(y);
}

// The line (from 0) of a subroutine's label, N label x 1000; the file's size when it has none.
std::size_t SubroutineStart(const std::vector<std::string>& m2, std::int16_t label) {
    ValueReader reader;
    for (std::size_t i = 0; i < m2.size(); ++i) {
        std::int16_t n = reader.WordInteger(BeforeComment(m2[i]), 'N');
        if (!reader.WordMissing && n == static_cast<int>(label) * 1000) return i;
    }
    return m2.size();
}

}  // namespace

RestartKind RestartKindOf(const EntityRec& entity) {
    RestartKind kind = RestartKind::Point;
    if (IsPattern(entity.Kind)) kind = RestartKind::Cycle;
    if (entity.Kind == EntityKind::LineProfile || entity.Kind == EntityKind::ArcProfile) kind = RestartKind::Profile;
    if (entity.SubBlock > 0) kind = static_cast<RestartKind>(static_cast<std::int16_t>(kind) + 10);
    return kind;
}

bool HitPosition(const EntityRec& entity, std::int32_t n, GatherState& state) {
    if (n < 1) return false;
    std::int32_t k = 0;
    bool found = false;
    ForEachHit(entity, [&](double x, double y, const double* c) {
        if (++k < n) return true;
        state.X = ToSingle(x);
        state.Y = ToSingle(y);
        state.C = ToSingle(c ? NormaliseAngle(*c) : entity.Tool.Extra1);
        found = true;
        return false;
    });
    return found;
}

std::optional<std::int32_t> SplitCycle(const std::string& drawingPath, const EntityRec& entity,
                                       const std::string& splitPath) {
    DrawingFile drawing;
    if (!drawing.Open(drawingPath, true)) return std::nullopt;
    EntityRec sheet;
    if (!drawing.Get(1, sheet)) return std::nullopt;
    drawing.Close();
    // The Sheet with a count of 1, then the one entity: expanded as a drawing of its own.
    DrawingFile one = DrawingFile::InMemory();
    EntityRec first = sheet;
    first.RecordNo = 2;
    EntityRec copy = entity;
    copy.RecordNo = 2;
    if (!one.Put(1, first) || !one.Put(2, copy)) return std::nullopt;
    DrawingFile split;
    if (!split.Create(splitPath)) return std::nullopt;
    ExpandResult result = ExpandRecords(one, split);
    // Record 1 is the Sheet of the slot's drawing with its own number, 1, and the count.
    EntityRec head = sheet;
    head.RecordNo = result.Records;
    if (!result.Done || !split.Put(1, head) || !split.Close()) return std::nullopt;
    return result.Records - 1;
}

std::vector<std::string> WriteCycleRest(const EntityRec& entity, std::int16_t hit) {
    std::vector<std::string> lines;
    GatherState at;
    if (!HitPosition(entity, hit, at)) return lines;
    const std::int32_t passed = hit - 1;
    switch (entity.Kind) {
        case EntityKind::LinearPattern:
            lines.push_back(RowLine(entity.Counts[1] - passed, entity.Values[10], entity.Values[2], at.X, at.Y));
            break;
        case EntityKind::GridPattern: {
            // Row by row: the rest of the row the hit falls in, then each further row whole.
            const GridWalk grid = GridParameters(entity);
            const std::int32_t startRow = passed / grid.PerRow + 1;
            const std::int32_t startHit = passed % grid.PerRow + 1;
            WalkGrid(grid, entity.Points.Entry.X, entity.Points.Entry.Y, [&](int row, int k, double x, double y) {
                const double angle = grid.Angle + 180.0 * (row - 1);
                if (row == startRow && k == startHit)
                    lines.push_back(RowLine(grid.PerRow - startHit + 1, angle, grid.RowPitch, x, y));
                else if (row > startRow && k == 1)
                    lines.push_back(RowLine(grid.PerRow, angle, grid.RowPitch, x, y));
                return true;
            });
            break;
        }
        case EntityKind::ArcPattern: {
            const double first = entity.Values[13] + passed * static_cast<double>(entity.Values[12]);
            lines.push_back("P7=" + Num(entity.Points.Position.X) + " P8=" + Num(entity.Points.Position.Y) +
                            " P3=" + Num(first) + " P2=" + Num(entity.Values[12]) +
                            " P1=" + std::to_string(entity.Counts[1] - passed) +
                            (entity.Counts[2] != 0 ? " P10=-999" : " P10=1") + " P4=-999 P5=-999 P6=-999 P9=1 G28 R" +
                            Num(entity.Values[5]));
            break;
        }
        default:
            break;
    }
    return lines;
}

std::vector<std::string> WriteProfileRest(const EntityRec& entity, float x, float y, std::int16_t orientation) {
    const PointF end = entity.Points.End;
    if (entity.Kind == EntityKind::LineProfile) return {"G101 X" + Num(end.X) + " Y" + Num(end.Y)};
    if (entity.Kind != EntityKind::ArcProfile) return {};
    // G102 turns clockwise on a machine of orientation 1, G103 on the others.
    const bool clockwise = entity.Values[11] < 0;
    const char* code = clockwise == (orientation == 1) ? "G102" : "G103";
    return {std::string(code) + " X" + Num(end.X) + " Y" + Num(end.Y) + " I" +
            Num(static_cast<double>(entity.Points.Position.X) - x) + " J" +
            Num(static_cast<double>(entity.Points.Position.Y) - y)};
}

std::vector<std::string> WriteSubroutineTail(const EntityRec& entity, const GatherState& blockState,
                                             const std::vector<std::string>& m2,
                                             const std::vector<PointF>& repetitionStarts) {
    std::vector<std::string> lines;
    const SubCall& asked = entity.CallSpec;
    SubCall state = entity.CallState;
    auto modes = [&](float x, float y) {
        lines.push_back("G93 X" + Num(x) + " Y" + Num(y));
        lines.push_back("M1" + std::to_string(blockState.MirrorCode));
        lines.push_back(std::string(blockState.Incremental ? "G91 " : "G90 ") + (blockState.Imperial ? "G70" : "G71"));
    };
    // The body of the subroutine from a line of M2 (0-based) to its RETURN.
    auto body = [&](std::size_t from) {
        for (std::size_t i = from; i < m2.size(); ++i) {
            std::string line(Trim(m2[i]));
            if (FindNoCase(BeforeComment(line), "RETURN") != std::string::npos) break;
            if (!line.empty()) lines.push_back(line);
        }
    };
    const std::size_t labelLine = SubroutineStart(m2, asked.Label);
    // 2, 3. The repetition under way, from the block after the entity's.
    modes(state.X, state.Y);
    body(static_cast<std::size_t>(std::max<int>(entity.SubBlock, 0)));
    // 4. The repetitions still open, as the end of each repetition steps them.
    for (int guard = 0; guard < 32767; ++guard) {
        if (asked.CallCode != 98) {
            // G68, G69: the next repetition from where the one before it ends.
            state.CountY = static_cast<std::int16_t>(state.CountY - 1);
            if (state.CountY <= 0) break;
            ++state.CountX;
            const auto open = static_cast<std::size_t>(state.CountX - entity.CallState.CountX - 1);
            if (open < repetitionStarts.size()) {
                modes(repetitionStarts[open].X, repetitionStarts[open].Y);
                lines.back() += " P10=" + std::to_string(state.CountX) + " P11=" + std::to_string(state.CountY);
            }
            body(labelLine);
            continue;
        }
        const bool columns = asked.Order == 1;
        std::int16_t& inner = columns ? state.CountY : state.CountX;
        std::int16_t& outer = columns ? state.CountX : state.CountY;
        const std::int16_t innerMax = columns ? asked.CountY : asked.CountX;
        const std::int16_t outerMax = columns ? asked.CountX : asked.CountY;
        float& innerPos = columns ? state.Y : state.X;
        float& outerPos = columns ? state.X : state.Y;
        float& innerPitch = columns ? state.PitchY : state.PitchX;
        const float outerPitch = columns ? state.PitchX : state.PitchY;
        if (inner >= innerMax) {
            if (outer >= outerMax) break;
            inner = 1;
            innerPitch = -innerPitch;
            ++outer;
            outerPos = ToSingle(outerPos + outerPitch);
        } else {
            ++inner;
            innerPos = ToSingle(innerPos + innerPitch);
        }
        modes(state.X, state.Y);
        lines.back() += columns ? " P11=" + std::to_string(state.CountY) + " P10=" + std::to_string(state.CountX)
                                : " P10=" + std::to_string(state.CountX) + " P11=" + std::to_string(state.CountY);
        body(labelLine);
    }
    return lines;
}

bool AsksReload(const GatherState& targetState) { return targetState.Reposition != 0; }

std::string ReloadWord(bool reloaded) { return reloaded ? "P6=-999 " : "P6=1 "; }

std::vector<std::string> RestartProgramLines(const RestartProgramInput& input) {
    const RestartPoint& point = *input.Point;
    const GatherState& target = point.Record.TargetState;
    const GatherState& block = point.Record.BlockState;
    std::vector<std::string> lines = {"CLOSE", "OPEN PROG 5", "CLEAR", "G00 G05 G90 G71", "G93 X0 Y0", "G53"};
    // 7. The repositions on the way.
    for (const std::string& rep : input.Repositions) {
        std::string line(Trim(rep));
        if (line.empty() || line == "******") continue;
        if (line.find("G95") != std::string::npos) line += input.Reload;
        lines.push_back(line);
    }
    // 8, 9. The torch or the punch at the restart position.
    if (target.Profiler) {
        lines.push_back("M100");
        std::string move = "G00 X" + Num(target.X) + " Y" + Num(target.Y) + " G4" + std::to_string(target.KerfSide);
        for (std::size_t i = 1; i <= 10; ++i)
            move += " P" + std::to_string(100 + i) + "=" + Num(target.ProfileSettings[i - 1]);
        lines.push_back(move);
        if (target.PlasmaOn) lines.push_back("M04");
    } else {
        if (input.HasProfiler) lines.push_back("M101");
        std::string move = "G80 X" + Num(target.X) + " Y" + Num(target.Y) + " C" + Num(target.C);
        if (!input.ToolWord.empty()) move += " " + input.ToolWord;
        lines.push_back(move);
    }
    // 10. The rest of the entity.
    std::vector<std::string> rest;
    if (point.Kind == RestartKind::Cycle || point.Kind == RestartKind::SubCycle)
        rest = WriteCycleRest(point.RestartEntity, point.RestartHit);
    if (point.Kind == RestartKind::Profile || point.Kind == RestartKind::SubProfile)
        rest = WriteProfileRest(point.RestartEntity, target.X, target.Y, input.Orientation);
    lines.insert(lines.end(), rest.begin(), rest.end());
    // 11. The rest of the subroutine call.
    if (static_cast<std::int16_t>(point.Kind) > 10) {
        std::vector<std::string> tail =
            WriteSubroutineTail(point.RestartEntity, block, input.M2, point.RepetitionStarts);
        lines.insert(lines.end(), tail.begin(), tail.end());
    }
    // 12-16. The offsets, mirror, coordinates and measurement of the block, the counters.
    lines.push_back("G93 X" + Num(block.G92X) + " Y" + Num(block.G92Y));
    lines.push_back("G56 X" + Num(block.G56X) + " Y" + Num(block.G56Y));
    lines.push_back("M1" + std::to_string(block.MirrorCode));
    lines.push_back(std::string(block.Incremental ? "G91 " : "G90 ") + (block.Imperial ? "G70" : "G71"));
    lines.push_back("Q190=Q190-" + Num(block.G56X));
    lines.push_back("Q191=Q191-" + Num(block.G56Y));
    lines.push_back("Q198=Q198-" + Num(block.G56X));
    lines.push_back("Q199=Q199-" + Num(block.G56Y));
    // 17, 18. Running, and the end of the restart step.
    lines.push_back("P1022=P1022|16384");
    lines.push_back("P1022=P1022-32768");
    lines.push_back("CLOSE");
    return lines;
}

std::string StationToolWord(const StationTable& stations, std::int16_t station) {
    if (station < 1) return {};
    if (station <= static_cast<int>(stations.size()))
        return "T" + std::to_string(stations[static_cast<std::size_t>(station - 1)].TNumber);
    return "T" + std::to_string(station);
}

std::string RestartRunCommand(int slot, const GatherState& targetState, const GatherState& blockState) {
    std::string command = "B" + std::to_string(slot);
    if (targetState.BlockNo != -999 && targetState.BlockNo != 0) {
        // The label as the fraction block / 100000 of the program number: the point and five
        // places, trailing zeros dropped as a number text drops them (block 120 gives ".0012").
        std::string text = ZeroPad(std::max<std::int32_t>(blockState.BlockNo, 0), 5);
        while (!text.empty() && text.back() == '0') text.pop_back();
        command += (text.empty() ? std::string() : "." + text) + "R";
    }
    return command;
}

RestartCommands GetGoingCommands(int slot, const RestartRecord& record) {
    RestartCommands c;
    const std::string active = "M811=" + std::to_string(slot);
    c.BeforeStart = {"M869=" + std::to_string(record.TargetState.Hits), "M811=5"};
    c.AfterStart = {active, RestartRunCommand(slot, record.TargetState, record.BlockState)};
    c.OnExit = {active};
    return c;
}

std::string RestartReport(const std::string& program, const std::string& directory, const std::string& time,
                          const GatherState& blockState) {
    return ReportHead(program, directory, time) + "BLOCK     :  " + std::to_string(blockState.BlockNo) + "\n";
}

}  // namespace kirvana

namespace kirvana {

namespace {

std::string UpperTrimmed(const std::vector<std::string>& lines, std::int32_t number) {
    if (number < 1 || number > static_cast<std::int32_t>(lines.size())) return {};
    return UpperCase(std::string(Trim(lines[static_cast<std::size_t>(number - 1)])));
}

struct SlotTexts {
    std::vector<std::string> M1, M2;
};

std::optional<SlotTexts> ReadSlotTexts(const std::string& stem) {
    auto m1 = ReadLines(stem + "M1");
    if (!m1) return std::nullopt;
    auto m2 = ReadLines(stem + "M2");
    return SlotTexts{std::move(*m1), m2 ? std::move(*m2) : std::vector<std::string>{}};
}

// The places the G68/G69 repetitions after the entity's start at: where each repetition from
// the entity's on reads its RETURN, in one Gather walk in memory.
std::vector<PointF> RepetitionStarts(const SlotTexts& texts, const EntityRec& entity, const ReverseSettings& settings) {
    const std::size_t label = SubroutineStart(texts.M2, entity.CallSpec.Label);
    std::size_t end = label;
    while (end < texts.M2.size() && FindNoCase(BeforeComment(texts.M2[end]), "RETURN") == std::string::npos) ++end;
    if (end >= texts.M2.size() || end >= static_cast<std::size_t>(INT16_MAX) || entity.CallState.CountY <= 1) return {};
    GatherTarget target;
    target.TargetMain = entity.MainBlock;
    target.TargetSub = static_cast<std::int16_t>(end + 1);
    target.CallState = entity.CallState;
    return GatherRepetitionEnds(texts.M1, texts.M2, target, static_cast<std::size_t>(entity.CallState.CountY - 1),
                                settings);
}

}  // namespace

std::string FindRestartPoint(const std::string& stem, const std::string& program, const std::string& directory,
                             std::int32_t record, std::int32_t hit, const ReverseSettings& settings,
                             const std::string& controllerDir, RestartPoint& point) {
    // 2. The entity from the slot's drawing; its kind.
    DrawingFile drawing;
    if (!drawing.Open(stem + "drw", true)) return "Can Not Read The Drawing " + stem + "drw";
    const std::int32_t last = drawing.LastReadable();
    if (record < 2 || record > last)
        return "Drawing Record " + std::to_string(record) + " Out Of Range (2 To " + std::to_string(last) + ")";
    RestartPoint found;
    if (!drawing.Get(record, found.RestartEntity)) return "Can Not Read Drawing Record " + std::to_string(record);
    drawing.Close();
    const EntityRec& entity = found.RestartEntity;
    found.Kind = RestartKindOf(entity);
    const bool cycle = found.Kind == RestartKind::Cycle || found.Kind == RestartKind::SubCycle;
    const std::int32_t hits = EntityHits(entity);
    if (cycle && (hit < 1 || hit > hits))
        return "Hit " + std::to_string(hit) + " Is Not In The Pattern (1 To " + std::to_string(hits) + ")";
    found.RestartHit = static_cast<std::int16_t>(cycle ? hit : 1);
    auto texts = ReadSlotTexts(stem);
    if (!texts) return "Can Not Read The Program " + stem + "M1";
    // Inside a G68/G69 call: where each repetition still open starts, the place where the one
    // before it reads its RETURN.
    if (entity.SubBlock > 0 && entity.CallSpec.CallCode != 98)
        found.RepetitionStarts = RepetitionStarts(*texts, entity, settings);
    // The block after the entity's, where the main program goes on after the restart; gathered
    // first, so that the reports left are those of the restart point.
    GatherState next;
    if (found.Kind != RestartKind::Point) {
        const std::int32_t following = entity.MainBlock + 1;
        GatherTarget after;
        after.TargetMain = static_cast<std::int16_t>(std::min<std::int32_t>(following, INT16_MAX));
        after.MainBlockText = UpperTrimmed(texts->M1, following);
        if (GatherPass(directory, program, stem, after, next, settings, controllerDir).FileFault)
            return "Can Not Write The Gather Reports";
    }
    // 3. The state at the entity's block.
    GatherTarget target;
    target.TargetMain = entity.MainBlock;
    target.TargetSub = entity.SubBlock;
    target.CallState = entity.CallState;
    target.MainBlockText = UpperTrimmed(texts->M1, entity.MainBlock);
    target.SubBlockText = entity.SubBlock > 0 ? UpperTrimmed(texts->M2, entity.SubBlock) : std::string();
    RestartRecord& r = found.Record;
    if (GatherPass(directory, program, stem, target, r.TargetState, settings, controllerDir).FileFault)
        return "Can Not Write The Gather Reports";
    if (!r.TargetState.Gathered) return "The Restart Block Was Not Reached";
    CopyGatherState(r.TargetState, r.EntryState);
    CopyGatherState(found.Kind == RestartKind::Point ? r.TargetState : next, r.BlockState);
    CopyGatherState(r.BlockState, r.ResumeState);
    found.HitsBefore = r.TargetState.Hits;
    // 4. Inside a pattern: the hit's place, and the hits of the pattern already done.
    if (cycle) {
        HitPosition(entity, hit, r.TargetState);
        r.TargetState.Hits = static_cast<std::int16_t>(std::min<std::int32_t>(r.TargetState.Hits + hit - 1, INT16_MAX));
    }
    point = found;
    return {};
}

std::string BlockRestartPoint(const std::string& stem, const std::string& program, const std::string& directory,
                              std::int32_t block, const ReverseSettings& settings, const std::string& controllerDir,
                              RestartPoint& point) {
    auto texts = ReadSlotTexts(stem);
    if (!texts) return "Can Not Read The Program " + stem + "M1";
    const auto count = static_cast<std::int32_t>(texts->M1.size());
    if (block < 1 || block > count)
        return "Block " + std::to_string(block) + " Out Of Range (1 To " + std::to_string(count) + ")";
    RestartPoint found;
    RestartRecord& r = found.Record;
    // 2. The selected block into TargetState, copied to EntryState.
    GatherTarget target;
    target.TargetMain = static_cast<std::int16_t>(std::min<std::int32_t>(block, INT16_MAX));
    target.MainBlockText = UpperTrimmed(texts->M1, block);
    if (GatherPass(directory, program, stem, target, r.TargetState, settings, controllerDir).FileFault)
        return "Can Not Write The Gather Reports";
    CopyGatherState(r.TargetState, r.EntryState);
    // 3. The following line too, when there is one.
    if (block < count) {
        target.TargetMain = static_cast<std::int16_t>(std::min<std::int32_t>(block + 1, INT16_MAX));
        target.MainBlockText = UpperTrimmed(texts->M1, block + 1);
        if (GatherPass(directory, program, stem, target, r.TargetState, settings, controllerDir).FileFault)
            return "Can Not Write The Gather Reports";
    }
    // 4, 5. Block and resume states; kind 1.
    CopyGatherState(r.TargetState, r.BlockState);
    CopyGatherState(r.TargetState, r.ResumeState);
    found.Kind = RestartKind::Block;
    found.HitsBefore = r.TargetState.Hits;
    point = found;
    return {};
}

}  // namespace kirvana

#include "analysis/expand.h"

#include <functional>

#include "analysis/pattern_walk.h"
#include "analysis/tool_outline.h"
#include "core/geometry.h"
#include "core/number.h"

namespace kirvana {

namespace {

// Writes the Punch records of one expansion at the next output numbers.
class HitWriter {
public:
    HitWriter(DrawingFile& out, std::int32_t maxHits) : out_(out), maxHits_(maxHits) {}

    std::int32_t Counter() const { return counter_; }
    bool Failed() const { return failed_; }
    bool LimitReached() const { return limitReached_; }
    bool Stopped() const { return failed_ || limitReached_; }

    bool WriteAt1(const EntityRec& rec) {
        failed_ = !out_.Put(1, rec);
        counter_ = 1;
        return !failed_;
    }

    // A record carried over as it stands.
    bool Copy(const EntityRec& rec) {
        if (!Room()) return false;
        return Write(rec);
    }

    // Each hit starts as a cleared Punch that takes the pattern's blocks, station, path mode,
    // feed, settings and tool.
    void BeginPattern(const EntityRec& pattern) {
        ClearEntity(blank_);
        blank_.Kind = EntityKind::Punch;
        blank_.KindName = FixedText("Punch", KindNameWidth);
        blank_.MainBlock = pattern.MainBlock;
        blank_.SubBlock = pattern.SubBlock;
        blank_.StationNo = pattern.StationNo;
        blank_.PathMode = pattern.PathMode;
        blank_.Feed = pattern.Feed;
        CopySettings(pattern.Settings, blank_.Settings);
        CopyTool(pattern.Tool, blank_.Tool);
    }

    // One hit at (x, y), with its C angle when the pattern gives one; completed and written.
    bool Hit(double x, double y, const double* cAngle = nullptr) {
        if (!Room()) return false;
        CopyEntity(blank_, hit_);
        hit_.Points.Position = {ToSingle(x), ToSingle(y)};
        if (cAngle) hit_.Tool.Extra1 = ToSingle(NormaliseAngle(*cAngle));
        ToolOutline(hit_);
        return Write(hit_);
    }

private:
    bool Room() {
        if (failed_ || limitReached_) return false;
        if (counter_ - 1 >= maxHits_) {
            limitReached_ = true;
            return false;
        }
        return true;
    }
    bool Write(const EntityRec& rec) {
        if (!out_.Put(counter_ + 1, rec)) {
            failed_ = true;
            return false;
        }
        ++counter_;
        return true;
    }

    DrawingFile& out_;
    std::int32_t maxHits_;
    std::int32_t counter_ = 0;
    bool failed_ = false;
    bool limitReached_ = false;
    EntityRec blank_;
    EntityRec hit_;
};

void ExpandPattern(const EntityRec& rec, HitWriter& out) {
    ForEachHit(rec, [&](double x, double y, const double* cAngle) { return out.Hit(x, y, cAngle); });
}

}  // namespace

bool ForEachHit(const EntityRec& rec, const std::function<bool(double, double, const double*)>& visit) {
    switch (rec.Kind) {
        case EntityKind::Punch:
            return visit(rec.Points.Position.X, rec.Points.Position.Y, nullptr);
        case EntityKind::LinearPattern: {
            // From Entry, the polar step (pitch, angle) worked out once and added for each
            // further hit.
            double stepX = 0, stepY = 0;
            PolarToXY(rec.Values[2], rec.Values[10], stepX, stepY);
            double x = rec.Points.Entry.X;
            double y = rec.Points.Entry.Y;
            for (int k = 1; k <= rec.Counts[1]; ++k) {
                if (!visit(x, y, nullptr)) return false;
                x += stepX;
                y += stepY;
            }
            return true;
        }
        case EntityKind::GridPattern:
            // Rows walked to and fro from Entry.
            return WalkGrid(GridParameters(rec), rec.Points.Entry.X, rec.Points.Entry.Y,
                            [&](int, int, double x, double y) { return visit(x, y, nullptr); });
        case EntityKind::ArcPattern: {
            // Hit k at the radius copy and the first angle's copy plus k steps, from the centre
            // afresh; the C angle the base, turning with the pattern when Counts[2] says so.
            const double radius = rec.Values[5];
            const double first = rec.Values[13];
            const double step = rec.Values[12];
            const double base = rec.CycleRotate != 0 ? rec.Values[15] : rec.Tool.Extra1;
            const bool turns = rec.Counts[2] != 0;
            for (int k = 0; k < rec.Counts[1]; ++k) {
                double dx = 0, dy = 0;
                PolarToXY(radius, first + k * step, dx, dy);
                const double c = turns ? base + k * step : base;
                if (!visit(rec.Points.Position.X + dx, rec.Points.Position.Y + dy, &c)) return false;
            }
            return true;
        }
        default:
            return true;
    }
}

ExpandResult ExpandRecords(DrawingFile& drawing, DrawingFile& expanded, std::int32_t maxHits) {
    ExpandResult result;
    HitWriter out(expanded, maxHits);
    // 2. Record 1 (the Sheet) as it stands; the output counter is 1.
    EntityRec rec;
    drawing.Get(1, rec);
    if (!out.WriteAt1(rec)) return result;
    // 3. Records 2 to the count: punches carried over, patterns expanded, the rest dropped.
    const std::int32_t last = drawing.LastReadable();
    for (std::int32_t n = 2; n <= last && !out.Stopped(); ++n) {
        if (!drawing.Get(n, rec)) break;
        switch (rec.Kind) {
            case EntityKind::Punch:
                out.Copy(rec);
                break;
            case EntityKind::LinearPattern:
                out.BeginPattern(rec);
                ExpandPattern(rec, out);
                break;
            case EntityKind::GridPattern:
                out.BeginPattern(rec);
                ExpandPattern(rec, out);
                break;
            case EntityKind::ArcPattern:
                out.BeginPattern(rec);
                ExpandPattern(rec, out);
                break;
            default:
                break;
        }
    }
    if (out.Failed()) return result;
    // 4. Record 1 again, with the output count in RecordNo.
    expanded.Get(1, rec);
    rec.RecordNo = out.Counter();
    if (!expanded.Put(1, rec)) return result;
    result.Done = true;
    result.Records = out.Counter();
    result.LimitReached = out.LimitReached();
    return result;
}

ExpandResult ExpandDrawing(const std::string& stem, std::int32_t maxHits) {
    DrawingFile drawing;
    if (!drawing.Open(stem + "drw", true)) return {};
    // 1. An empty expanded file, the old one deleted.
    DrawingFile expanded;
    if (!expanded.Create(stem + "dr1")) return {};
    ExpandResult result = ExpandRecords(drawing, expanded, maxHits);
    if (!expanded.Close()) result.Done = false;
    drawing.Close();
    return result;
}

std::int32_t EntityHits(const EntityRec& rec) {
    std::int32_t hits = 0;
    ForEachHit(rec, [&](double, double, const double*) { return ++hits < MaxExpandedHits; });
    return hits;
}

bool FindExpandedHit(DrawingFile& drawing, std::int32_t expandedRecord, std::int32_t& record, std::int32_t& hit) {
    // Record 1 of both files is the Sheet; the hits follow in the drawing's order.
    std::int64_t before = 1;
    EntityRec rec;
    for (std::int32_t n = 2; n <= drawing.Count(); ++n) {
        if (!drawing.Get(n, rec)) return false;
        const std::int32_t hits = EntityHits(rec);
        if (expandedRecord <= before + hits && expandedRecord > before) {
            record = n;
            hit = static_cast<std::int32_t>(expandedRecord - before);
            return true;
        }
        before += hits;
    }
    return false;
}

}  // namespace kirvana

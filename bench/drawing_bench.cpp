// Hits per second of ExpandDrawing: a drawing of a million hits (linear, grid and arc patterns
// and single punches) expanded into its .dr1 on disk (in TMPDIR) and between files held in
// memory, and the record codec and ToolOutline alone.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "analysis/drawing_file.h"
#include "analysis/expand.h"
#include "analysis/tool_outline.h"

using namespace kirvana;

namespace {

ToolRecord Square() {
    ToolRecord tool;
    tool.Valid = TrueWord;
    tool.Shape = 'B';
    tool.Name = ToolName("Square");
    tool.D1 = tool.D2 = 10;
    tool.Station = 20;
    tool.Extra2 = 1;
    return tool;
}

// 300 linear patterns of 1000 hits, 38 grids of 100 x 100, 300 arcs of 1000 and 20,000
// punches: 1,000,000 hits in 20,639 records, within the 16-bit record counter of a drawing.
constexpr std::int64_t MillionHits = 300 * 1000 + 38 * 100 * 100 + 300 * 1000 + 20000;
static_assert(MillionHits == 1000000);

bool WriteMillionHitDrawing(const std::string& path) {
    DrawingFile file;
    if (!file.Create(path)) return false;
    std::int16_t counter = 0;
    EntityRec rec;
    ClearEntity(rec);
    rec.Kind = EntityKind::Sheet;
    if (!AppendEntity(file, counter, rec)) return false;
    auto put = [&](EntityRec& r) {
        ToolOutline(r);
        return AppendEntity(file, counter, r);
    };
    for (int i = 0; i < 300; ++i) {
        ClearEntity(rec);
        rec.Kind = EntityKind::LinearPattern;
        rec.Tool = Square();
        rec.Points.Entry = {10, static_cast<float>(i)};
        rec.Points.Exit = {10 + 999 * 2.5f, static_cast<float>(i)};
        rec.Values[2] = 2.5f;
        rec.Counts[1] = 1000;
        if (!put(rec)) return false;
    }
    for (int i = 0; i < 38; ++i) {
        ClearEntity(rec);
        rec.Kind = EntityKind::GridPattern;
        rec.Tool = Square();
        rec.Points.Start = rec.Points.Entry = {100, static_cast<float>(10 * i)};
        rec.Values[1] = rec.Values[3] = 990;
        rec.Values[2] = rec.Values[4] = 10;
        rec.Values[10] = 15;
        rec.Counts[1] = rec.Counts[2] = 100;
        rec.Counts[3] = static_cast<std::int16_t>(i % 2 ? -1 : 0);
        if (!put(rec)) return false;
    }
    for (int i = 0; i < 300; ++i) {
        ClearEntity(rec);
        rec.Kind = EntityKind::ArcPattern;
        rec.Tool = Square();
        rec.Points.Position = {1000, 600};
        rec.Values[1] = 100 + static_cast<float>(i);
        rec.Values[10] = 0;
        rec.Values[11] = 359.64f;
        rec.Values[12] = 0.36f;
        rec.Counts[1] = 1000;
        rec.Counts[2] = -1;
        if (!put(rec)) return false;
    }
    for (int i = 0; i < 20000; ++i) {
        ClearEntity(rec);
        rec.Kind = EntityKind::Punch;
        rec.Tool = Square();
        rec.Points.Position = {static_cast<float>(i % 1000), static_cast<float>(i / 1000)};
        if (!put(rec)) return false;
    }
    ClearEntity(rec);
    rec.Kind = EntityKind::Sheet;
    rec.RecordNo = counter;
    rec.Counts[1] = counter;
    if (!file.Put(1, rec)) return false;
    return file.Close();
}

class TempStem {
public:
    TempStem() {
        std::string pattern = (std::filesystem::temp_directory_path() / "kirvana-bench-XXXXXX").string();
        dir_ = mkdtemp(pattern.data()) ? pattern : std::string();
    }
    ~TempStem() {
        std::error_code error;
        std::filesystem::remove_all(dir_, error);
    }
    std::string Stem() const { return dir_ + "/bench."; }

private:
    std::string dir_;
};

void BM_ExpandMillionHitsToDisk(benchmark::State& state) {
    TempStem temp;
    if (!WriteMillionHitDrawing(temp.Stem() + "drw")) {
        state.SkipWithError("cannot write the drawing");
        return;
    }
    for (auto _ : state) {
        ExpandResult result = ExpandDrawing(temp.Stem());
        if (!result.Done || result.Records != MillionHits + 1) {
            state.SkipWithError("expansion failed");
            return;
        }
    }
    state.SetItemsProcessed(state.iterations() * MillionHits);
    state.SetBytesProcessed(state.iterations() * (MillionHits + 1) * static_cast<std::int64_t>(RecordLength));
}
BENCHMARK(BM_ExpandMillionHitsToDisk)->Unit(benchmark::kMillisecond)->Iterations(3);

// The same expansion between files held in memory: the work of the expansion without the
// file system's.
void BM_ExpandMillionHitsInMemory(benchmark::State& state) {
    TempStem temp;
    if (!WriteMillionHitDrawing(temp.Stem() + "drw")) {
        state.SkipWithError("cannot write the drawing");
        return;
    }
    DrawingFile onDisk;
    onDisk.Open(temp.Stem() + "drw", true);
    std::string bytes;
    for (std::int32_t n = 1; n <= onDisk.RecordsInFile(); ++n) {
        RecordBytes record;
        onDisk.GetBytes(n, record);
        bytes.append(reinterpret_cast<const char*>(record.data()), record.size());
    }
    DrawingFile drawing = DrawingFile::InMemory(bytes);
    const auto outputSize = static_cast<std::size_t>((MillionHits + 1) * static_cast<std::int64_t>(RecordLength));
    for (auto _ : state) {
        state.PauseTiming();
        std::string space;
        space.reserve(outputSize);
        DrawingFile expanded = DrawingFile::InMemory(std::move(space));
        state.ResumeTiming();
        ExpandResult result = ExpandRecords(drawing, expanded);
        if (!result.Done || result.Records != MillionHits + 1) {
            state.SkipWithError("expansion failed");
            return;
        }
        state.PauseTiming();
        expanded.Close();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * MillionHits);
}
BENCHMARK(BM_ExpandMillionHitsInMemory)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_EncodeDecodeRecord(benchmark::State& state) {
    EntityRec rec;
    rec.Kind = EntityKind::Punch;
    rec.Tool = Square();
    RecordBytes bytes;
    for (auto _ : state) {
        EncodeEntity(rec, bytes);
        DecodeEntity(bytes, rec);
        benchmark::DoNotOptimize(rec.Kind);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_EncodeDecodeRecord);

void BM_OutlineArcPattern(benchmark::State& state) {
    EntityRec rec;
    rec.Kind = EntityKind::ArcPattern;
    rec.Tool = Square();
    rec.Points.Position = {1000, 600};
    rec.Values[1] = 100;
    rec.Values[11] = 270;
    rec.Values[12] = 10;
    for (auto _ : state) {
        ToolOutline(rec);
        benchmark::DoNotOptimize(rec.ClearBox);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_OutlineArcPattern);

}  // namespace

BENCHMARK_MAIN();

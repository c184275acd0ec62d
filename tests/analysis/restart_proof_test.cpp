// The proof of the restart state: over every program of the test corpus and the demo programs,
// at every entity the Reverse pass writes and every hit of every pattern, the state the Gather
// pass gives equals the Reverse pass's modal state at the start of the entity's block, the
// repositions it lists are the Reverse pass's, and the restart point's place and hits are those
// of the expanded drawing. The count of restart points checked is printed.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "analysis/drawing_file.h"
#include "analysis/expand.h"
#include "analysis/gather.h"
#include "analysis/restart.h"
#include "analysis/reverse.h"
#include "core/paths.h"
#include "core/text.h"
#include "tests/analysis/reverse_settings.h"
#include "tests/core/temp_dir.h"
#include "translate/blend.h"
#include "translate/convert.h"

namespace kirvana {
namespace {

namespace fs = std::filesystem;

// A program of the corpus: a part program to translate first, or motion texts as they stand.
struct CorpusProgram {
    std::string Name;
    std::string Source;  // a part program, or empty
    std::string M1, M2;  // motion texts, when no part program
};

std::vector<CorpusProgram> Corpus() {
    std::vector<CorpusProgram> corpus;
    const std::string source = KIRVANA_SOURCE_DIR;
    for (const std::string& root : {source + "/tests/data", source + "/data/demo/Programs"}) {
        for (const auto& entry : fs::recursive_directory_iterator(root)) {
            if (!entry.is_regular_file()) continue;
            const std::string path = entry.path().string();
            const std::string name = entry.path().filename().string();
            const std::string extension = UpperCase(entry.path().extension().string());
            if (name == "prog.org" || extension == ".PRG") {
                corpus.push_back({path, path, "", ""});
            } else if (name == "M1" && fs::exists(entry.path().parent_path() / "M2")) {
                corpus.push_back({path, "", path, (entry.path().parent_path() / "M2").string()});
            }
        }
    }
    std::sort(corpus.begin(), corpus.end(), [](const auto& a, const auto& b) { return a.Name < b.Name; });
    return corpus;
}

// Makes `stem` + "M1" and "M2" of the program; false when the translation refuses it.
bool MotionTexts(const CorpusProgram& program, const TempDir& dir, const std::string& stem,
                 const ReverseSettings& settings) {
    if (program.Source.empty()) {
        fs::copy_file(program.M1, stem + "M1", fs::copy_options::overwrite_existing);
        fs::copy_file(program.M2, stem + "M2", fs::copy_options::overwrite_existing);
        return true;
    }
    fs::copy_file(program.Source, stem + "org", fs::copy_options::overwrite_existing);
    ConvertSettings convert;
    convert.ServiceDir = dir.Path();
    convert.AmadaMachine = program.Source.find("/amada/") != std::string::npos;
    std::int16_t dialect = 0;
    if (ConvertProgram(stem, dialect, convert).Status != ConvertStatus::Done) return false;
    BlendSettings blend;
    blend.Travel = settings.Travel;
    blend.ProfilerValue = 2;
    blend.RootDir = dir.Path();
    blend.ServiceDir = dir.Path();
    return !BlendProgram("PROOF", "PROOF", stem, blend).FileFault && fs::exists(stem + "M1");
}

// What the Reverse pass knew of one entity it wrote.
struct Seen {
    EntityRec Entity;
    GatherState State;                  // its modal state at the start of the entity's block
    std::int32_t HitsAtBlock = 0;       // hits done before the block
    std::int32_t Repositions = 0;       // G95 entities written before the block
    std::int32_t HitsBeforeEntity = 0;  // hits of all entities written before this one
};

void ExpectSameState(const GatherState& gathered, const GatherState& reversed, const std::string& where) {
    EXPECT_EQ(gathered.Gathered, -1) << where;
    EXPECT_EQ(gathered.X, reversed.X) << where;
    EXPECT_EQ(gathered.Y, reversed.Y) << where;
    EXPECT_EQ(gathered.C, reversed.C) << where;
    EXPECT_EQ(gathered.Station, reversed.Station) << where;
    EXPECT_EQ(gathered.MirrorCode, reversed.MirrorCode) << where;
    EXPECT_EQ(gathered.Imperial, reversed.Imperial) << where;
    EXPECT_EQ(gathered.Incremental, reversed.Incremental) << where;
    EXPECT_EQ(gathered.G92X, reversed.G92X) << where;
    EXPECT_EQ(gathered.G92Y, reversed.G92Y) << where;
    EXPECT_EQ(gathered.G56X, reversed.G56X) << where;
    EXPECT_EQ(gathered.G56Y, reversed.G56Y) << where;
    EXPECT_EQ(gathered.Reposition, reversed.Reposition) << where;
    EXPECT_EQ(gathered.Profiler, reversed.Profiler) << where;
    EXPECT_EQ(gathered.PlasmaOn, reversed.PlasmaOn) << where;
    EXPECT_EQ(gathered.KerfSide, reversed.KerfSide) << where;
    EXPECT_EQ(gathered.ProfileSettings, reversed.ProfileSettings) << where;
}

TEST(RestartProof, GatherStateIsTheReverseStateAtEveryEntityAndHit) {
    const std::vector<CorpusProgram> corpus = Corpus();
    ASSERT_GE(corpus.size(), 17u);
    std::int64_t programs = 0, skipped = 0, sameRecordKey = 0, entities = 0, hits = 0, laterInBlock = 0;
    for (const CorpusProgram& program : corpus) {
        SCOPED_TRACE(program.Name);
        TempDir dir;
        const std::string stem = dir.Path() + "Slot.";
        ReverseSettings settings = ReverseTestSettings();
        settings.ServiceDir = dir.Path();
        // A turret of 400 stations, T n at station n, so that the T words of every program of
        // the corpus (T305 of the AMADA programs) stand in it.
        const Station round = settings.Stations[0];
        settings.Stations.resize(400, round);
        for (std::size_t n = 20; n < settings.Stations.size(); ++n)
            settings.Stations[n].TNumber = static_cast<std::int16_t>(n + 1);
        if (!MotionTexts(program, dir, stem, settings)) {
            ++skipped;
            continue;
        }
        // The Reverse pass, keeping what it knew at each entity.
        std::vector<Seen> seen;
        std::int32_t hitsWritten = 0, repositionsWritten = 0;
        settings.OnEntity = [&](const EntityRec& entity, const ReverseState& atBlockStart) {
            Seen s;
            s.Entity = entity;
            s.State = ModalGatherState(atBlockStart, settings.Travel.XLimitMin);
            s.HitsAtBlock = atBlockStart.Stats.Hits;
            s.HitsBeforeEntity = hitsWritten;
            s.Repositions = repositionsWritten;
            // The repositions of this very block come after the state at its start.
            if (!seen.empty() && seen.back().Entity.MainBlock == entity.MainBlock &&
                seen.back().Entity.SubBlock == entity.SubBlock)
                s.Repositions = seen.back().Repositions;
            hitsWritten += EntityHits(entity);
            if (entity.Kind == EntityKind::Reposition) ++repositionsWritten;
            seen.push_back(s);
        };
        std::int16_t toolChanges = 0;
        ReverseResult reversed = ReversePass(stem, "PROOF", "PROOF", toolChanges, settings);
        ASSERT_FALSE(reversed.FileFault);
        settings.OnEntity = nullptr;
        // A program with critical errors is refused at the selection: it has no restart.
        if (reversed.Result != 0) {
            ++skipped;
            continue;
        }
        ASSERT_TRUE(ExpandDrawing(stem).Done);
        DrawingFile dr1;
        ASSERT_TRUE(dr1.Open(stem + "dr1", true));
        const auto m1 = ReadLines(stem + "M1").value_or(std::vector<std::string>{});
        const auto m2 = ReadLines(stem + "M2").value_or(std::vector<std::string>{});
        ++programs;
        for (const Seen& found : seen) {
            const EntityRec& e = found.Entity;
            // An entity of a subroutine called again inside a repeated outer call has the same
            // blocks and repetition as its copy in the first outer repetition: the record can't
            // tell them apart, and the Gather pass stops at the first.
            const Seen& s = *std::find_if(seen.begin(), seen.end(), [&](const Seen& o) {
                const SubCall& a = o.Entity.CallState;
                const SubCall& b = e.CallState;
                return o.Entity.MainBlock == e.MainBlock && o.Entity.SubBlock == e.SubBlock &&
                       a.CallCode == b.CallCode && a.Label == b.Label && a.CountX == b.CountX &&
                       (a.CallCode != 98 || a.CountY == b.CountY);
            });
            if (&s != &found) {
                ++sameRecordKey;
                continue;
            }
            const std::string where = program.Name + " record " + std::to_string(e.RecordNo);
            // The Gather pass at the entity's block and repetition.
            GatherTarget target;
            target.TargetMain = e.MainBlock;
            target.TargetSub = e.SubBlock;
            target.CallState = e.CallState;
            GatherResult g = GatherTexts(m1, m2, target, settings);
            ExpectSameState(g.State, s.State, where);
            EXPECT_EQ(g.State.Hits, s.HitsAtBlock) << where;
            EXPECT_EQ(static_cast<std::int32_t>(g.Repositions.size()) - 1, s.Repositions) << where;
            ++entities;
            // Every hit: the place of the expanded hit, and the hits done before it.
            const std::int32_t count = EntityHits(e);
            // The hits the restart counts as done before hit n (the gathered hits and n - 1) are
            // the hits in front of it in the expanded drawing, unless an earlier entity of the
            // same block holds hits too (a G65 writes four rows in one block).
            const bool firstInBlock = s.HitsBeforeEntity == s.HitsAtBlock;
            if (count > 0 && !firstInBlock) ++laterInBlock;
            if (count > 0 && !firstInBlock) {
                EXPECT_TRUE(std::any_of(seen.begin(), seen.end(), [&](const Seen& o) {
                    return o.Entity.RecordNo < e.RecordNo && o.Entity.MainBlock == e.MainBlock &&
                           o.Entity.SubBlock == e.SubBlock && EntityHits(o.Entity) > 0;
                })) << where;
            }
            for (std::int32_t n = 1; n <= count; ++n) {
                EntityRec punch;
                ASSERT_TRUE(dr1.Get(1 + s.HitsBeforeEntity + n, punch)) << where;
                GatherState at = g.State;
                ASSERT_TRUE(HitPosition(e, n, at)) << where;
                EXPECT_EQ(at.X, punch.Points.Position.X) << where << " hit " << n;
                EXPECT_EQ(at.Y, punch.Points.Position.Y) << where << " hit " << n;
                ++hits;
            }
        }
    }
    std::printf(
        "restart points checked: %lld (%lld entities and %lld hits of %lld programs; %lld programs refused "
        "by the translation or the Reverse pass; %lld entities with hits follow another of their own block; %lld "
        "entities of nested repetitions share their blocks and repetition with an earlier one)\n",
        static_cast<long long>(entities + hits), static_cast<long long>(entities), static_cast<long long>(hits),
        static_cast<long long>(programs), static_cast<long long>(skipped), static_cast<long long>(laterInBlock),
        static_cast<long long>(sameRecordKey));
    EXPECT_GE(programs, 12);
    EXPECT_GT(hits, 250);
}

}  // namespace
}  // namespace kirvana

// The second half of the restart proof, on the simulated card's own run: every program of the
// test corpus and the demo is selected into slot 1; from every hit of every punching entity the
// restart program is written as the panel writes it, run as the simulated card runs program 5,
// and handed over to the slot's program at the run command's label. The hits made before the
// stop, by the restart program and by the program after the hand-over must be the program's
// hits, each once. A restart inside a subroutine runs the tail of the call as the restart
// writes it: the rest of the body from the block after the entity's, and each repetition still
// open from its own origin (a G98 copy from its step of the grid, a G68/G69 repetition from
// where the one before it ends). Where that tail can't give the program's hits, the restart is
// counted under its reason, and the reason is checked. The counts are printed.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <optional>

#include "analysis/drawing_file.h"
#include "controller/cardsim/restart_run.h"
#include "core/number.h"
#include "core/paths.h"
#include "core/text.h"
#include "system/restart_slot.h"
#include "system/slot_run_plan.h"
#include "system/slots.h"
#include "system/startup.h"
#include "tests/support/demo_installation.h"
#include "tests/support/quiet_platform.h"

using namespace kirvana;

namespace {

namespace fs = std::filesystem;

// A hit's place to the hundredth of a millimetre.
using Hit = std::pair<long long, long long>;

void AddHits(const RunPlan& plan, std::size_t count, std::vector<Hit>& hits) {
    for (const RunStep& step : plan) {
        if (count == 0) return;
        if (step.Hits <= 0) continue;
        hits.emplace_back(std::llround(step.X * 100), std::llround(step.Y * 100));
        --count;
    }
}

// The programs of the corpus copied into the installation's directory "Proof" as NAME.prg, with
// the sub-programs beside them; their names.
std::vector<std::string> CopyCorpus(const std::string& root) {
    const std::string source = KIRVANA_SOURCE_DIR;
    const fs::path proof = fs::path(root) / "Programs" / "Proof";
    fs::create_directories(proof);
    std::vector<std::string> names;
    for (const std::string& from : {source + "/tests/data", source + "/data/demo/Programs"}) {
        for (const auto& entry : fs::recursive_directory_iterator(from)) {
            if (!entry.is_regular_file()) continue;
            const fs::path path = entry.path();
            const std::string extension = UpperCase(path.extension().string());
            std::string name;
            if (path.filename() == "prog.org")
                name = UpperCase(path.parent_path().filename().string());
            else if (extension == ".PRG")
                name = UpperCase(path.stem().string());
            else if (extension == ".GSB")
                fs::copy_file(path, proof / path.filename(), fs::copy_options::overwrite_existing);
            if (name.empty() || std::find(names.begin(), names.end(), name) != names.end()) continue;
            fs::copy_file(path, proof / (name + ".prg"), fs::copy_options::overwrite_existing);
            names.push_back(name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

// The restarts inside subroutines, by what their run gave.
struct TailCounts {
    long long Proved = 0, OwnPunch = 0, Shifted = 0, CalledTwice = 0, OuterCallsLost = 0, Unrun = 0;
};

// A call in the copied body of a subroutine: its absolute words count from the tail's origin
// ("G93" at the call's place) and from the machine's place at the call as well, so its hits
// stand elsewhere. True when the restart program holds a call and the hits made are as many as
// the program's, every hit outside elsewhere-standing ones being the program's, and, for a punch
// the tail starts behind, that punch left out.
bool CalledBodyElsewhere(const std::vector<std::string>& lines, const std::vector<Hit>& made,
                         const std::vector<Hit>& all, const std::optional<Hit>& ownPunch) {
    const bool calls = std::any_of(lines.begin(), lines.end(), [](const std::string& line) {
        return line.find("G69") != std::string::npos || line.find("G68") != std::string::npos;
    });
    if (!calls) return false;
    // What was made that the program doesn't have, and what the program has that wasn't made.
    std::vector<Hit> extra, missing;
    std::set_difference(made.begin(), made.end(), all.begin(), all.end(), std::back_inserter(extra));
    std::set_difference(all.begin(), all.end(), made.begin(), made.end(), std::back_inserter(missing));
    if (ownPunch) {
        auto own = std::find(missing.begin(), missing.end(), *ownPunch);
        if (own == missing.end()) return false;
        missing.erase(own);
    }
    return !extra.empty() && extra.size() == missing.size();
}

}  // namespace

TEST(RestartRunProof, HitsBeforeAndAfterEveryRestartAreTheProgramsHitsOnce) {
    DemoInstallation dir;
    const std::vector<std::string> names = CopyCorpus(dir.Path());
    Process p;
    QuietPlatform platform;
    ASSERT_EQ(Main(p, platform, nullptr, StartupSteps{}).Result, StartOutcome::Kind::Started);
    long long restarts = 0, programs = 0, refused = 0, unlabelled = 0;
    TailCounts tail;
    for (const std::string& name : names) {
        p.Config.ActiveSlot = 1;
        if (!SelectProgram(p, platform, nullptr, "Proof", name).Selected) {
            ++refused;
            continue;
        }
        ++programs;
        const std::optional<RunPlan> plan = BuildRunPlan(p.Config.Dirs, 1);
        ASSERT_TRUE(plan.has_value()) << name;
        std::vector<Hit> all;
        AddHits(*plan, plan->size(), all);
        std::sort(all.begin(), all.end());
        DrawingFile drawing;
        ASSERT_TRUE(drawing.Open(SlotFile(p.Config.Dirs, 1, "drw"), true)) << name;
        // The card's subroutine program of the slot: the calls program 5 makes go there.
        const std::vector<std::string> subroutines =
            ReadLines(SlotFile(p.Config.Dirs, 1, "M2")).value_or(std::vector<std::string>{});
        const std::int32_t last = drawing.LastReadable();
        for (std::int32_t record = 2; record <= last; ++record) {
            EntityRec entity;
            ASSERT_TRUE(drawing.Get(record, entity)) << name << " record " << record;
            const std::int32_t hits = EntityHits(entity);
            if (hits == 0) continue;
            for (std::int32_t hit = 1; hit <= hits; ++hit) {
                RestartPoint point;
                ASSERT_EQ(FindSlotRestart(p, 1, record, hit, point), "") << name << " record " << record;
                const std::vector<std::string> lines = SlotRestartProgram(p, 1, point, true);
                const std::string run = RestartRunCommand(1, point.Record.TargetState, point.Record.BlockState);
                const int label = RunLabel(ToNumber(std::string_view(run).substr(1)));
                // A following line without an N number gives a run command without a label ("B1R"):
                // the card starts the program from its beginning, as the restart is defined.
                if (label == 0) {
                    EXPECT_EQ(run, "B1R");
                    ++unlabelled;
                    continue;
                }
                const std::string where = name + " record " + std::to_string(record) + " hit " + std::to_string(hit);
                const std::optional<RunPlan> restart = RestartProgramPlan(lines, subroutines);
                if (!restart) {
                    // Only a line of the copied body stops the simulated card: a call (it does not
                    // run the slot's subroutines from program 5) or a cycle as the program writes it.
                    ASSERT_GT(entity.SubBlock, 0) << where;
                    ++tail.Unrun;
                    continue;
                }
                std::vector<Hit> made;
                AddHits(*plan, static_cast<std::size_t>(point.Record.TargetState.Hits), made);
                AddHits(*restart, restart->size(), made);
                const RunPlan after = PlanFromLabel(*plan, label);
                AddHits(after, after.size(), made);
                std::sort(made.begin(), made.end());
                if (made == all) {
                    ++restarts;
                    if (entity.SubBlock > 0) ++tail.Proved;
                    continue;
                }
                ASSERT_GT(entity.SubBlock, 0) << where << " run " << run;
                // A punch inside a subroutine: the tail starts at the block after the punch, so
                // the restart program makes every hit but the punch itself.
                GatherState own;
                ASSERT_TRUE(HitPosition(entity, 1, own)) << where;
                std::vector<Hit> withOwn = made;
                withOwn.emplace_back(std::llround(own.X * 100), std::llround(own.Y * 100));
                std::sort(withOwn.begin(), withOwn.end());
                if (point.Kind == RestartKind::SubPoint && withOwn == all) {
                    ++tail.OwnPunch;
                    continue;
                }
                // The other reason the tail can't give the hits: under a mirror or an origin
                // other than 0 the tail's "G93" at the call's place is not the walk's offset of
                // the call.
                const GatherState& at = point.Record.EntryState;
                const bool shifted = at.MirrorCode != 0 || at.G92X != 0 || at.G92Y != 0 || at.G56X != 0 || at.G56Y != 0;
                if (shifted) {
                    ++tail.Shifted;
                    continue;
                }
                // And a call in the copied body, whose hits stand elsewhere.
                const std::optional<Hit> ownPunch =
                    point.Kind == RestartKind::SubPoint
                        ? std::optional<Hit>(Hit{std::llround(own.X * 100), std::llround(own.Y * 100)})
                        : std::nullopt;
                if (CalledBodyElsewhere(lines, made, all, ownPunch)) {
                    ++tail.CalledTwice;
                    continue;
                }
                // And a restart inside a call made from a subroutine (G69): the tail rebuilds only
                // that call, so what remained of the calls around it is not made; every hit made
                // is still the program's, once.
                ASSERT_EQ(entity.CallSpec.CallCode, 69) << where << " run " << run;
                ASSERT_TRUE(std::includes(all.begin(), all.end(), made.begin(), made.end())) << where << " run " << run;
                ASSERT_LT(made.size(), all.size()) << where;
                ++tail.OuterCallsLost;
            }
        }
    }
    std::printf(
        "restarts run on the simulated card: %lld (%lld programs; %lld refused by the selection; %lld before a "
        "line without a label not restarted); inside subroutines: %lld proved, %lld punches whose own hit the "
        "tail leaves out, %lld under a mirror or origin the tail's G93 does not carry, %lld with a call in the "
        "copied body whose hits the tail's G93 moves, %lld inside a call from a subroutine whose outer calls the "
        "tail does not rebuild, %lld the simulated card does not run\n",
        restarts, programs, refused, unlabelled, tail.Proved, tail.OwnPunch, tail.Shifted, tail.CalledTwice,
        tail.OuterCallsLost, tail.Unrun);
    EXPECT_GT(restarts, 100);
}

// The plan of the slot's program comes from the drawing, the restart program's from its text: at
// the first hit of a G98 grid of a subroutine, the tail's repetitions (each from its own "G93")
// must make the drawing's hits of the rest of the grid, in the drawing's order.
TEST(RestartRunProof, TailOfAG98GridMakesTheDrawingsHitsInOrder) {
    DemoInstallation dir;
    CopyCorpus(dir.Path());
    Process p;
    QuietPlatform platform;
    ASSERT_EQ(Main(p, platform, nullptr, StartupSteps{}).Result, StartOutcome::Kind::Started);
    p.Config.ActiveSlot = 1;
    ASSERT_TRUE(SelectProgram(p, platform, nullptr, "Proof", "D1_SUBROUTINES").Selected);
    const std::optional<RunPlan> plan = BuildRunPlan(p.Config.Dirs, 1);
    ASSERT_TRUE(plan.has_value());
    DrawingFile drawing;
    ASSERT_TRUE(drawing.Open(SlotFile(p.Config.Dirs, 1, "drw"), true));
    std::int32_t first = 0, grid = 0;
    EntityRec entity;
    for (std::int32_t record = 2; record <= drawing.LastReadable(); ++record) {
        ASSERT_TRUE(drawing.Get(record, entity));
        if (entity.CallSpec.CallCode != 98) continue;
        if (first == 0) first = record;
        ++grid;
    }
    ASSERT_GT(first, 0);
    ASSERT_EQ(grid, 12);  // 3 by 2 copies of two punches
    RestartPoint point;
    ASSERT_EQ(FindSlotRestart(p, 1, first, 1, point), "");
    ASSERT_EQ(point.Kind, RestartKind::SubPoint);
    const std::optional<RunPlan> restart = RestartProgramPlan(SlotRestartProgram(p, 1, point, false));
    ASSERT_TRUE(restart.has_value());
    std::vector<Hit> made, drawn;
    AddHits(*restart, restart->size(), made);
    // The slot's hits after the grid's first one (the punch the tail starts behind) to its end.
    std::vector<Hit> planned;
    AddHits(*plan, plan->size(), planned);
    const auto from = static_cast<std::size_t>(point.Record.TargetState.Hits) + 1;
    ASSERT_LE(from + 11, planned.size());
    drawn.assign(planned.begin() + static_cast<std::ptrdiff_t>(from),
                 planned.begin() + static_cast<std::ptrdiff_t>(from + 11));
    EXPECT_EQ(made, drawn);
}

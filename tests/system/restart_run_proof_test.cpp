// The second half of the restart proof, on the simulated card's own run: every program of the
// test corpus and the demo is selected into slot 1; from every hit of every punching entity of
// the main program the restart program is written as the panel writes it, run as the simulated
// card runs program 5, and handed over to the slot's program at the run command's label. The
// hits made before the stop, by the restart program and by the program after the hand-over must
// be the program's hits, each once. The count of restarts checked is printed.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>

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

}  // namespace

TEST(RestartRunProof, HitsBeforeAndAfterEveryRestartAreTheProgramsHitsOnce) {
    DemoInstallation dir;
    const std::vector<std::string> names = CopyCorpus(dir.Path());
    Process p;
    QuietPlatform platform;
    ASSERT_EQ(Main(p, platform, nullptr, StartupSteps{}).Result, StartOutcome::Kind::Started);
    long long restarts = 0, programs = 0, refused = 0, inSubroutines = 0, unlabelled = 0;
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
        const std::int32_t last = drawing.LastReadable();
        for (std::int32_t record = 2; record <= last; ++record) {
            EntityRec entity;
            ASSERT_TRUE(drawing.Get(record, entity)) << name << " record " << record;
            const std::int32_t hits = EntityHits(entity);
            if (hits == 0) continue;
            // The restart program runs the rest of a subroutine call as its text stands, which
            // the simulated card does not interpret.
            if (entity.SubBlock > 0) {
                inSubroutines += hits;
                continue;
            }
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
                std::vector<Hit> made;
                AddHits(*plan, static_cast<std::size_t>(point.Record.TargetState.Hits), made);
                const std::optional<RunPlan> restart = RestartProgramPlan(lines);
                ASSERT_TRUE(restart.has_value()) << name << " record " << record;
                AddHits(*restart, restart->size(), made);
                const RunPlan after = PlanFromLabel(*plan, label);
                AddHits(after, after.size(), made);
                std::sort(made.begin(), made.end());
                EXPECT_EQ(made, all) << name << " record " << record << " hit " << hit << " run " << run;
                ++restarts;
            }
        }
    }
    std::printf(
        "restarts run on the simulated card: %lld (%lld programs; %lld refused by the selection; %lld hits "
        "inside subroutines and %lld before a line without a label not restarted)\n",
        restarts, programs, refused, inSubroutines, unlabelled);
    EXPECT_GT(restarts, 100);
}

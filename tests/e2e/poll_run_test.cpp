// A demo program selected, downloaded to the simulated card over the Ethernet link, started and
// followed by the poll cycle to its end: the hits counted, the positions passed, the block lit
// at each hit and the hit records walked agree with the drawing the selection made.
#include <chrono>
#include <filesystem>

#include <gtest/gtest.h>

#include "analysis/drawing_file.h"
#include "controller/cardsim/card_simulator.h"
#include "controller/pmac_ethernet_link.h"
#include "core/paths.h"
#include "system/slot_run_plan.h"
#include "system/startup.h"
#include "core/text.h"
#include "tests/core/temp_dir.h"
#include "tests/support/quiet_platform.h"

using namespace kirvana;

namespace {

// The `.RA` record of line `line` of a converted file: its count of non-empty lines.
std::int32_t RecordOfLine(const std::string& file, int line) {
    auto lines = ReadLines(file).value_or(std::vector<std::string>{});
    std::int32_t record = 0;
    for (int n = 0; n < line && n < static_cast<int>(lines.size()); ++n) record += !Trim(lines[n]).empty();
    return record;
}

class PollRunTest : public ::testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        std::filesystem::copy(std::string(KIRVANA_SOURCE_DIR) + "/data/demo", dir_.Path(),
                              std::filesystem::copy_options::recursive);
        old_ = std::filesystem::current_path();
        std::filesystem::current_path(dir_.Path());
        ASSERT_TRUE(sim_.Start());
        Directories dirs;
        dirs.RootDir = dir_.Path();
        sim_.SetRunPlanSource(SlotRunPlanSource(dirs));
        sim_.SetRunSpeed(0);  // the test walks the card step by step
        dir_.Write("Control.cnc", "Card in use: TRUE\nPoll log: FALSE\n******\n");
        dir_.Write("PMAC.cfg", "Save: N\nWait: 0\nPoll: 50\nDelay: 50\nCard: 127.0.0.1:" + std::to_string(sim_.Port()) +
                                   "\n******\n");
        link_.SetAddress(CardAddress{"127.0.0.1", sim_.Port()}, 1000);
        link_.SetFaultHandler([this](std::int32_t n, const std::string&) { faults_.push_back(n); });
        ASSERT_EQ(Main(p_, platform_, &link_, StartupSteps{}).Result, StartOutcome::Kind::Started);
    }
    void TearDown() override { std::filesystem::current_path(old_); }
    void Tick() { PollCycle(p_, platform_, &link_); }
    Conversation Talk() { return Conversation(&link_, p_.Card, p_.Config.Dirs.ServiceDir, &platform_); }

    TempDir dir_;
    std::filesystem::path old_;
    CardSimulator sim_;
    PmacEthernetLink link_{CardAddress{"127.0.0.1", 0}, 1000};
    QuietPlatform platform_;
    Process p_;
    std::vector<std::int32_t> faults_;
};

}  // namespace

TEST_P(PollRunTest, FollowsADemoProgramToItsEnd) {
    SelectOutcome selected = SelectProgram(p_, platform_, &link_, "Dorvenis", GetParam());
    ASSERT_TRUE(selected.Selected) << selected.Warning;
    ASSERT_FALSE(sim_.Program(1).empty());
    p_.Display.Visible = {true, true, true, true, true, true, true, true, true, true};

    // The drawing's hits, as the selection expanded them.
    std::vector<EntityRec> hits;
    {
        DrawingFile dr1;
        ASSERT_TRUE(dr1.Open(p_.Slots[0].ExpandedFilePath, true));
        EntityRec rec;
        for (std::int32_t n = 2; n <= dr1.LastReadable(); ++n) {
            ASSERT_TRUE(dr1.Get(n, rec));
            hits.push_back(rec);
        }
    }
    ASSERT_GT(hits.size(), 2u);

    // Cycle start for slot 1.
    Talk().Download("B1R");
    Tick();
    ASSERT_TRUE(p_.Running);
    EXPECT_TRUE(p_.Display.Plot.RunDataReset);

    std::vector<std::int32_t> walked;
    std::size_t hitsChecked = 0;
    for (int step = 0; step < 10000 && p_.Running; ++step) {
        // Halfway through a step: the block under way is lit.
        sim_.WalkRun(0.5);
        Tick();
        walked.insert(walked.end(), p_.Display.Plot.DoneHits.begin(), p_.Display.Plot.DoneHits.end());
        const std::int32_t before = p_.Display.HitCount;
        const std::int32_t litProgram = p_.Display.Block.Program, litRecord = p_.Display.Block.Record;
        // The step's end: if it made a hit, the machine stands on it and the lit block made it.
        sim_.WalkRun(0.5);
        Tick();
        walked.insert(walked.end(), p_.Display.Plot.DoneHits.begin(), p_.Display.Plot.DoneHits.end());
        if (p_.Display.HitCount != before + 1) continue;
        const EntityRec& hit = hits[static_cast<std::size_t>(before)];
        EXPECT_NEAR(p_.Poll.Position[0], hit.Points.Position.X, 0.01) << "hit " << before + 1;
        EXPECT_NEAR(p_.Poll.Position[1], hit.Points.Position.Y, 0.01) << "hit " << before + 1;
        bool inSub = hit.SubBlock > 0;
        EXPECT_EQ(litProgram, inSub ? 3 : 1) << "hit " << before + 1;
        EXPECT_EQ(litRecord, RecordOfLine(inSub ? "Actvprg1.A2" : "Actvprg1.A1", inSub ? hit.SubBlock : hit.MainBlock))
            << "hit " << before + 1;
        ++hitsChecked;
    }
    EXPECT_FALSE(p_.Running);
    EXPECT_EQ(hitsChecked, hits.size());
    EXPECT_EQ(p_.Display.HitCount, static_cast<std::int32_t>(hits.size()));
    std::vector<std::int32_t> expected;
    for (std::size_t n = 0; n < hits.size(); ++n) expected.push_back(static_cast<std::int32_t>(n) + 2);
    EXPECT_EQ(walked, expected);
    // Every station change was taken and acknowledged; the batch came in at the end of the run.
    EXPECT_EQ(static_cast<std::int64_t>(sim_.Variable("P1022")) & 512, 0);
    EXPECT_EQ(p_.Poll.CurrentStation, hits.back().StationNo);
    EXPECT_EQ(p_.Display.Batch.Texts[0], "0");
    EXPECT_TRUE(faults_.empty());
}

TEST_P(PollRunTest, StationOutOfRangeStandsAndTwentyLogicBitsShowEighteen) {
    ASSERT_TRUE(SelectProgram(p_, platform_, &link_, "Dorvenis", GetParam()).Selected);
    p_.Display.Visible.MessageForm = true;
    Talk().Download("B1R");
    sim_.WalkRun(0.5);
    Tick();
    sim_.SetStation(99);
    Tick();
    Tick();
    EXPECT_TRUE(static_cast<std::int64_t>(sim_.Variable("P1022")) & 512);
    sim_.SetVariable("P1020", (1 << 20) - 1);
    Tick();
    EXPECT_EQ(p_.Display.Messages.LineCount, 18);
    EXPECT_TRUE(faults_.empty());
}

TEST_P(PollRunTest, ACardThatStopsAnsweringMidRunNeitherCrashesNorStalls) {
    ASSERT_TRUE(SelectProgram(p_, platform_, &link_, "Dorvenis", GetParam()).Selected);
    p_.Display.Visible = {true, true, true, true, true, true, true, true, true, true};
    Talk().Download("B1R");
    sim_.WalkRun(2.5);
    Tick();
    ASSERT_TRUE(p_.Running);
    const std::array<std::string, 6> shown = p_.Display.FrontEnd.PositionText;
    const std::int32_t hits = p_.Display.HitCount;
    sim_.Stop();
    auto start = std::chrono::steady_clock::now();
    Tick();
    Tick();
    // The link's fault path reported; every query read 0, so the machine reads as at rest.
    EXPECT_FALSE(faults_.empty());
    EXPECT_FALSE(p_.Running);
    EXPECT_EQ(p_.Display.FrontEnd.PositionText[0], "0.0");
    EXPECT_NE(shown[0], "");
    EXPECT_GE(hits, 1);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

INSTANTIATE_TEST_SUITE_P(DemoPrograms, PollRunTest, ::testing::Values("PLATE01", "GRID03", "COVER02"));

// End to end on the simulated card: a program selected through ProgramForm, started, and
// followed by ViewProgForm block by block until it ends.
#include <QComboBox>
#include <set>

#include "controller/cardsim/card_simulator.h"
#include "screens/view_prog_form.h"
#include "system/slot_run_plan.h"
#include "tests/screens/program_forms_fixture.h"

using namespace kirvana;

namespace {

struct RunCase {
    const char* Program;
    double Speed;     // the simulated press's steps a second
    std::size_t Lit;  // blocks the view must have lit at least
    const char* Picture;
};

}  // namespace

class ViewRunTest : public ProgramFormsTest, public ::testing::WithParamInterface<RunCase> {};

// PLATE01 of the demo at the demo's pace, and a program of 20 hits in a row at a quick one.
INSTANTIATE_TEST_SUITE_P(Programs, ViewRunTest,
                         ::testing::Values(RunCase{"PLATE01", 5, 3, "view_prog_form_plate01_end"},
                                           RunCase{"RUN20", 20, 10, "view_prog_form_run20_end"}));

TEST_P(ViewRunTest, ViewProgFormFollowsTheLitBlockOfARunToItsEnd) {
    std::string program = "G90 G71\nT1 X100 Y100\n";
    for (int n = 1; n <= 20; ++n) program += "X" + std::to_string(100 + n * 30) + " Y100\n";
    Write("Programs/Dorvenis/RUN20.prg", program + "M30\n");
    const RunCase run = GetParam();
    CardSimulator sim;
    Directories dirs;
    dirs.RootDir = dir_.Path();
    sim.SetRunPlanSource(SlotRunPlanSource(dirs));
    sim.SetRunSpeed(run.Speed);
    ASSERT_TRUE(sim.Start(0));
    CardAt(sim.Port());
    ASSERT_EQ(Start(), 0);
    // The selection through the form, downloaded to the card.
    OnProgramForm([&](ProgramForm& form) {
        form.ProgramCombo()->setCurrentText(run.Program);
        form.SelectButton()->click();
    });
    ASSERT_TRUE(P().State().Slots[0].Present);
    ASSERT_EQ(P().State().Slots[0].ProgramName, run.Program);
    ASSERT_FALSE(sim.Program(1).empty());
    const std::int32_t records = P().State().Slots[0].Counts[0].SourceRecordCount;

    std::vector<std::int32_t> lit;  // each new record the form lit, in order
    int behind = 0;                 // ticks after which the form did not show the poll's block
    bool sawRunning = false, ended = false;
    WhenModal([&](QWidget* modal) {
        auto* view = static_cast<ViewProgForm*>(modal);
        ASSERT_TRUE(sim.CycleStart());
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < 30000) {
            Spin(20);
            const LitBlock& block = P().State().Display.Block;
            if (P().State().Running) sawRunning = true;
            if (block.Program == 1 && block.Record >= 1 && view->LitRecord() != block.Record) ++behind;
            if (view->LitRecord() >= 1 && (lit.empty() || lit.back() != view->LitRecord()))
                lit.push_back(view->LitRecord());
            if (sawRunning && !P().State().Running) {
                ended = true;
                break;
            }
        }
        SavePanel(run.Picture);
        view->close();
    });
    P().OpenForm("ViewProgForm");
    EXPECT_TRUE(sawRunning);
    EXPECT_TRUE(ended);
    EXPECT_EQ(behind, 0);
    // The form went down the program block by block, never back, to its last blocks.
    ASSERT_GE(lit.size(), run.Lit);
    std::set<std::int32_t> distinct(lit.begin(), lit.end());
    EXPECT_EQ(distinct.size(), lit.size());
    for (std::size_t i = 1; i < lit.size(); ++i) EXPECT_GT(lit[i], lit[i - 1]);
    EXPECT_GE(lit.back(), records - 2);
    EXPECT_LE(lit.back(), records);
}

// End to end on the simulated card: a program selected through ProgramForm, started, and
// followed by ViewProgForm block by block until it ends.
#include <QComboBox>
#include <set>

#include "controller/cardsim/card_simulator.h"
#include "screens/view_prog_form.h"
#include "system/slot_run_plan.h"
#include "tests/screens/program_forms_fixture.h"

using namespace kirvana;

TEST_F(ProgramFormsTest, ViewProgFormFollowsTheLitBlockOfARunToItsEnd) {
    std::string program = "G90 G71\nT1 X100 Y100\n";
    for (int n = 1; n <= 20; ++n) program += "X" + std::to_string(100 + n * 30) + " Y100\n";
    Write("Programs/Dorvenis/RUN20.prg", program + "M30\n");
    CardSimulator sim;
    Directories dirs;
    dirs.RootDir = dir_.Path();
    sim.SetRunPlanSource(SlotRunPlanSource(dirs));
    sim.SetRunSpeed(20);
    ASSERT_TRUE(sim.Start(0));
    CardAt(sim.Port());
    ASSERT_EQ(Start(), 0);
    // The selection through the form, downloaded to the card.
    OnProgramForm([&](ProgramForm& form) {
        form.ProgramCombo()->setCurrentText("RUN20");
        form.SelectButton()->click();
    });
    ASSERT_TRUE(P().State().Slots[0].Present);
    ASSERT_EQ(P().State().Slots[0].ProgramName, "RUN20");
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
        SavePanel("view_prog_form_run_end");
        view->close();
    });
    P().OpenForm("ViewProgForm");
    EXPECT_TRUE(sawRunning);
    EXPECT_TRUE(ended);
    EXPECT_EQ(behind, 0);
    // The form went down the program block by block, never back, to its last blocks.
    ASSERT_GE(lit.size(), 5u);
    std::set<std::int32_t> distinct(lit.begin(), lit.end());
    EXPECT_EQ(distinct.size(), lit.size());
    for (std::size_t i = 1; i < lit.size(); ++i) EXPECT_GT(lit[i], lit[i - 1]);
    EXPECT_GE(lit.back(), records - 2);
    EXPECT_LE(lit.back(), records);
}

// The restart screens on the simulated card: RES&TART of ProgramForm opens the block list, its
// select shows the gathered state on RestartForm, program 5 goes to the card and the cycle start
// label blinks until the machine starts; then the slot and the run command. Refusals and faults
// show their message and send nothing.
#include <QListWidget>
#include <algorithm>
#include <cmath>
#include <filesystem>

#include "navigation/restart_screens.h"
#include "screens/plot_box.h"
#include "screens/restart_forms.h"
#include "tests/screens/simulated_card_fixture.h"

using namespace kirvana;

class RestartFormsTest : public SimulatedCardFormsTest {
protected:
    void SetUp() override {
        SimulatedCardFormsTest::SetUp();
        StartWith("PLATE01");
        sim_.ClearReceived();
    }
    // The block list as RES&TART of ProgramForm opens it; `act` runs on it.
    void OnBlockStartForm(const std::function<void(BlockStartForm&)>& act) {
        bool ran = false;
        OnProgramForm([&](ProgramForm& form) {
            WhenModal([&](QWidget* modal) {
                auto* blocks = dynamic_cast<BlockStartForm*>(modal);
                ran = blocks != nullptr;
                if (blocks) act(*blocks);
                if (modal->isVisible()) modal->close();
            });
            ButtonOf(&form, "RestartButton")->click();
        });
        EXPECT_TRUE(ran) << "BlockStartForm did not come up";
    }
    std::vector<std::string> Received() { return sim_.Received(); }

    using Hits = std::vector<std::pair<long long, long long>>;
    // The hits of slot 1's program, to the hundredth of a millimetre, in order.
    static Hits Sorted(Hits hits) {
        std::sort(hits.begin(), hits.end());
        return hits;
    }
    Hits PlannedHits() {
        const std::optional<RunPlan> plan = BuildRunPlan(P().State().Config.Dirs, 1);
        Hits all;
        if (plan)
            for (const RunStep& step : *plan)
                if (step.Hits > 0) all.emplace_back(std::llround(step.X * 100), std::llround(step.Y * 100));
        return Sorted(all);
    }
    // The hits the simulated card made, in order of place.
    Hits MadeHits() {
        Hits made;
        for (const auto& [x, y] : sim_.HitLog()) made.emplace_back(std::llround(x * 100), std::llround(y * 100));
        return Sorted(made);
    }
    // Runs slot 1's program on the card step by step and stops it after `hits` hits; the hits made,
    // or -1 when the card would not start.
    int RunAndStopAfter(int hits) {
        sim_.SetRunSpeed(0);
        if (!sim_.CycleStart()) return -1;
        while (sim_.Variable("M869") < hits) sim_.WalkRun(1);
        sim_.Abort();
        return static_cast<int>(sim_.Variable("M869"));
    }
    // The operator's cycle start once RestartForm lights its label: the card runs program 5.
    void PressCycleStartWhenLit(RestartForm* restart) {
        auto* watch = new QTimer(restart);
        QObject::connect(watch, &QTimer::timeout, restart, [this, restart, watch] {
            if (!restart->CycleStartLit()) return;
            watch->stop();
            EXPECT_TRUE(sim_.CycleStart());
        });
        watch->start(10);
        form_ = restart;
    }
    // Program 5, then the slot's program from its label, walked to the end.
    void WalkToTheEnd() {
        for (int i = 0; i < 400 && sim_.RunState() != ProgramRun::State::Idle; ++i) sim_.WalkRun(1);
        EXPECT_EQ(sim_.RunState(), ProgramRun::State::Idle);
    }

    RestartForm* form_ = nullptr;
};

TEST_F(RestartFormsTest, BlockListHoldsEveryRecordOfTheMainProgram) {
    const std::int32_t records = P().State().Slots[0].Counts[0].SourceRecordCount;
    ASSERT_GT(records, 5);
    OnBlockStartForm([&](BlockStartForm& form) {
        ASSERT_EQ(form.BlockList()->count(), records);
        EXPECT_EQ(S(form.BlockList()->item(0)->text()).substr(0, 7), "    1  ");
        // The rows are the records of .RA1, read by number.
        std::string fault;
        const std::vector<ViewRow> rows = BlockListRows(P().State(), 1, fault);
        EXPECT_EQ(fault, "");
        for (int i = 0; i < records; ++i)
            EXPECT_NE(S(form.BlockList()->item(i)->text()).find(rows[static_cast<std::size_t>(i)].Source),
                      std::string::npos);
        EXPECT_EQ(S(form.ProgramLabel()->text()), "PROGRAM 1 :  Dorvenis / PLATE01");
        form.BlockList()->setCurrentRow(7);
        SavePanel("block_start_form");
    });
}

TEST_F(RestartFormsTest, SelectedBlockShownThenProgramFiveSentAndTheMachineStarted) {
    // Record 10 of PLATE01 is "X300" (motion line N0009), the third hit of T1: the target is the
    // state at the line after it (N0010), with three hits done, and the card goes on from there.
    bool restartShown = false, litSeen = false;
    OnBlockStartForm([&](BlockStartForm& form) {
        ASSERT_GE(form.BlockList()->count(), 10);
        EXPECT_NE(S(form.BlockList()->item(9)->text()).find("X300"), std::string::npos);
        form.BlockList()->setCurrentRow(9);
        WhenModal([&](QWidget* modal) {
            auto* restart = dynamic_cast<RestartForm*>(modal);
            if (!restart) return;
            restartShown = true;
            // The state for confirmation.
            EXPECT_EQ(S(restart->Label("MeasurementLabel")->text()), "METRIC");
            EXPECT_EQ(S(restart->PositnLabel()->text()).substr(0, 9), "X  300.00");
            EXPECT_EQ(S(restart->Label("HitsLabel")->text()), "Completed Hits : 3");
            EXPECT_EQ(S(restart->Label("ToolLabel")->text()).substr(0, 2), "T1");
            // Program 5 goes down and the label blinks while the card waits for the cycle start:
            // watched from the wait's own turns of the event queue.
            auto* watch = new QTimer(restart);
            QObject::connect(watch, &QTimer::timeout, restart, [this, restart, watch, &litSeen] {
                auto sent = Received();
                if (std::find(sent.begin(), sent.end(), "M811=5") == sent.end() || !restart->CycleStartLit()) return;
                watch->stop();
                litSeen = true;
                SavePanel("restart_form_waiting");
                EXPECT_EQ(std::count_if(sent.begin(), sent.end(), [](const std::string& t) { return t[0] == 'B'; }), 0);
                // The operator's cycle start: the card shows the machine in cycle.
                sim_.RaiseStatusBits(8192);
            });
            watch->start(10);
            form_ = restart;
        });
        form.SelectButton()->click();
    });
    ASSERT_TRUE(restartShown);
    EXPECT_TRUE(litSeen);
    ASSERT_NE(form_, nullptr);
    EXPECT_FALSE(form_->isVisible());
    EXPECT_FALSE(form_->CycleStartLit());
    const std::vector<std::string> sent = Received();
    // The restart program as the slot's restart writes it, stored by the card as program 5.
    const std::vector<std::string> program = sim_.Program(5);
    ASSERT_GE(program.size(), 5u);
    EXPECT_EQ(program[0], "G00 G05 G90 G71");
    EXPECT_NE(std::find(program.begin(), program.end(), "G80 X300 Y100 C0 T1"), program.end());
    EXPECT_EQ(program.back(), "P1022=P1022-32768");
    EXPECT_NE(std::find(sent.begin(), sent.end(), "OPEN PROG 5"), sent.end());
    // The hits done, program 5 active, then after the start the slot and the run command.
    auto at = [&](const std::string& text) { return std::find(sent.begin(), sent.end(), text) - sent.begin(); };
    const auto hits = at("M869=3"), five = at("M811=5"), one = at("M811=1");
    ASSERT_LT(five, static_cast<long>(sent.size()));
    EXPECT_LT(hits, five);
    EXPECT_LT(five, one);
    ASSERT_LT(one + 1, static_cast<long>(sent.size()));
    EXPECT_EQ(sent[static_cast<std::size_t>(one + 1)], "B1.0001R");
    EXPECT_NE(ReadFileText(dir_.Path() + "Service/Restart.txt").find("PROGRAM   :  PLATE01"), std::string::npos);
}

TEST_F(RestartFormsTest, ExitDuringTheWaitGivesTheSlotBackAndSendsNoRunCommand) {
    OnBlockStartForm([&](BlockStartForm& form) {
        form.BlockList()->setCurrentRow(8);
        WhenModal([&](QWidget* modal) {
            auto* restart = dynamic_cast<RestartForm*>(modal);
            if (!restart) return;
            // The operator leaves by the exit key while the label blinks.
            auto* watch = new QTimer(restart);
            QObject::connect(watch, &QTimer::timeout, restart, [restart, watch] {
                if (!restart->CycleStartLit()) return;
                watch->stop();
                QTest::keyClick(restart, Qt::Key_X);
            });
            watch->start(10);
            form_ = restart;
        });
        form.SelectButton()->click();
    });
    ASSERT_NE(form_, nullptr);
    EXPECT_FALSE(form_->isVisible());
    EXPECT_FALSE(form_->CycleStartLit());
    std::vector<std::string> sent = Received();
    // The poll's reads go on; the last command is the slot given back.
    sent.erase(
        std::remove_if(sent.begin(), sent.end(), [](const std::string& s) { return s.find('=') == std::string::npos; }),
        sent.end());
    ASSERT_FALSE(sent.empty());
    EXPECT_EQ(sent.back(), "M811=1");
    EXPECT_EQ(std::count_if(sent.begin(), sent.end(), [](const std::string& s) { return s[0] == 'B'; }), 0);
}

TEST_F(RestartFormsTest, SelectRefusedWhileTheMachineRunsSendsNothing) {
    std::string warning;
    OnBlockStartForm([&](BlockStartForm& form) {
        P().State().Running = true;
        warning = WarningOf([&] { form.SelectButton()->click(); });
        P().State().Running = false;
        SavePanel("block_start_form_list");
    });
    EXPECT_EQ(warning, "Can Not Restart\n\nWhile Machine Is Running or In Error !");
    EXPECT_TRUE(sim_.Program(5).empty());
    const std::vector<std::string> sent = Received();
    EXPECT_EQ(std::count(sent.begin(), sent.end(), "M811=5"), 0);
}

TEST_F(RestartFormsTest, DamagedBlockFileNamedAndNothingListed) {
    const std::string ra1 = dir_.Path() + "Actvprg1.RA1";
    std::filesystem::resize_file(ra1, std::filesystem::file_size(ra1) - 40);
    std::string warning;
    OnBlockStartForm([&](BlockStartForm& form) {
        warning = WarningOf([] { Spin(200); });
        EXPECT_EQ(form.BlockList()->count(), 0);
        EXPECT_FALSE(form.SelectButton()->isEnabled());
    });
    EXPECT_EQ(warning, "Can Not Restart\n\nBlock File Damaged : " + SlotFile(P().State().Config.Dirs, 1, "RA1"));
    EXPECT_TRUE(sim_.Program(5).empty());
    // The slot keeps its program and its files.
    EXPECT_TRUE(P().State().Slots[0].Present);
    EXPECT_TRUE(std::filesystem::exists(ra1));
}

TEST_F(RestartFormsTest, BlockPadOutOfRangeIsRefused) {
    std::string warning;
    OnBlockStartForm([&](BlockStartForm& form) {
        AnswerPad("999");
        warning = WarningOf([&] { ButtonOf(&form, "BlockPadButton")->click(); });
        EXPECT_EQ(form.BlockList()->currentRow(), 0);
        AnswerPad("4");
        ButtonOf(&form, "BlockPadButton")->click();
        EXPECT_EQ(form.BlockList()->currentRow(), 3);
    });
    EXPECT_EQ(warning.substr(0, 35), "Can Not Restart\n\nBlock 999 Out Of R");
}

// The visual restart: VISUAL of the block list hands over to FrontEnd's path keys; a Grid
// Pattern is split into its hits with SPLI&T, a hit is picked with the path keys and &SELECT
// shows RestartForm for it.
TEST_F(RestartFormsTest, VisualRestartSplitsTheGridAndRestartsAtThePickedHit) {
    Select(1, "GRID03");  // record 2 a Punch, record 3 a Grid Pattern of 10 x 5 hits
    sim_.ClearReceived();
    OnBlockStartForm([&](BlockStartForm& form) { ButtonOf(&form, "VisualButton")->click(); });
    Spin(50);
    ASSERT_TRUE(P().Visual().Active);
    EXPECT_EQ(P().Nav().ViewMode, 5);
    EXPECT_EQ(S(F().TextPanel()->text()), "SELECT RESTART POSITION");
    const std::int32_t whole = F().Plot(1)->Shown().Entities;
    P().CursorButton(1);  // the first entity, the Punch
    P().CursorButton(3);  // the grid
    EXPECT_NE(S(F().TextPanel()->text()).find("G26"), std::string::npos);
    P().CursorButton(5);  // SPLI&T
    EXPECT_EQ(P().Visual().Record, 3);
    EXPECT_EQ(P().Visual().SplitHits, 50);
    EXPECT_EQ(S(F().TextPanel()->text()), "SPLIT : 50 HITS");
    // The plot shows only the split pattern's punches, so that one of them can be picked.
    EXPECT_EQ(F().Plot(1)->Shown().Entities, 50);
    EXPECT_TRUE(std::filesystem::exists(dir_.Path() + "SplitCyc.drw"));
    P().CursorButton(1);                              // hit 1 of the grid
    for (int i = 0; i < 6; ++i) P().CursorButton(3);  // hit 7
    EXPECT_EQ(S(F().TextPanel()->text()), "HIT 7 OF 50");
    SavePanel("visual_restart_pick");
    bool shown = false;
    WhenModal([&](QWidget* modal) {
        auto* restart = dynamic_cast<RestartForm*>(modal);
        if (!restart) return;
        shown = true;
        // One Punch and six hits of the grid done; hit 7 stands at X 200 + 6 x 20.
        EXPECT_EQ(S(restart->Label("HitsLabel")->text()), "Completed Hits : 7");
        EXPECT_EQ(S(restart->PositnLabel()->text()).substr(0, 21), "X  320.00     Y  200.");
        auto* watch = new QTimer(restart);
        QObject::connect(watch, &QTimer::timeout, restart, [this, restart, watch] {
            if (!restart->CycleStartLit()) return;
            watch->stop();
            SavePanel("visual_restart_form");
            sim_.RaiseStatusBits(8192);
        });
        watch->start(10);
        form_ = restart;
    });
    P().CursorButton(6);  // &SELECT
    ASSERT_TRUE(shown);
    EXPECT_FALSE(P().Visual().Active);
    EXPECT_EQ(P().Nav().ViewMode, 0);
    EXPECT_EQ(F().Plot(1)->Shown().Entities, whole);
    const std::vector<std::string> sent = Received();
    EXPECT_NE(std::find(sent.begin(), sent.end(), "M869=7"), sent.end());
    const std::vector<std::string> program = sim_.Program(5);
    // The rest of the first row, four hits, comes first.
    EXPECT_NE(std::find_if(program.begin(), program.end(), [](const std::string& l) { return l.starts_with("P1=4 "); }),
              program.end());
}

TEST_F(RestartFormsTest, VisualRestartRefusedWithNoHitOnViewOrAnOldHitFile) {
    // A view far off the sheet holds no hit.
    PlotView& view = P().PlotBoxAt(1)->View();
    const PlotView kept = view;
    view.ViewTopLeft = {5000, 5000};
    view.ViewBottomRight = {6000, 4000};
    std::string warning;
    OnBlockStartForm([&](BlockStartForm& form) { ButtonOf(&form, "VisualButton")->click(); });
    warning = WarningOf([] { Spin(200); });
    EXPECT_EQ(warning, "Can Not Visually Restart\n\nIf No Punches Are On View !");
    EXPECT_FALSE(P().Visual().Active);
    EXPECT_EQ(P().Nav().ViewMode, 0);
    // A hit file older than the drawing.
    view = kept;
    const std::string dr1 = dir_.Path() + "Actvprg1.dr1";
    ASSERT_TRUE(std::filesystem::exists(dr1));
    std::filesystem::last_write_time(
        dr1, std::filesystem::last_write_time(dir_.Path() + "Actvprg1.drw") - std::chrono::hours(1));
    OnBlockStartForm([&](BlockStartForm& form) { ButtonOf(&form, "VisualButton")->click(); });
    warning = WarningOf([] { Spin(200); });
    EXPECT_EQ(warning, "Can Not Visually Restart\n\nThe Hit File Is Older Than The Drawing !");
    EXPECT_FALSE(P().Visual().Active);
    EXPECT_TRUE(sim_.Program(5).empty());
}

// End to end: GRID03 runs on the simulated card and is stopped inside its grid; the operator
// restarts at the next hit through the plot and RestartForm, presses cycle start, and the card
// runs program 5 and then the slot's program from the run command's label to its end. The hits
// made before the stop and after the restart are the program's hits, each once.
TEST_F(RestartFormsTest, StoppedRunRestartedThroughTheScreensMakesEveryHitOnce) {
    Select(1, "GRID03");
    const Hits all = PlannedHits();
    ASSERT_EQ(all.size(), 63u);
    // The run, walked step by step, stopped after some twenty hits.
    const int done = RunAndStopAfter(20);
    ASSERT_GE(done, 20) << "the card did not start";
    ASSERT_EQ(sim_.HitLog().size(), static_cast<std::size_t>(done));
    Spin(300);
    ASSERT_FALSE(P().State().Running);
    // The next hit is hit `done` of the grid (the Punch came first): picked on the plot.
    OnBlockStartForm([&](BlockStartForm& form) { ButtonOf(&form, "VisualButton")->click(); });
    Spin(50);
    ASSERT_TRUE(P().Visual().Active);
    P().CursorButton(1);
    P().CursorButton(3);
    P().CursorButton(5);
    P().CursorButton(1);
    for (int i = 1; i < done; ++i) P().CursorButton(3);
    EXPECT_EQ(S(F().TextPanel()->text()), "HIT " + std::to_string(done) + " OF 50");
    WhenModal([&](QWidget* modal) {
        auto* restart = dynamic_cast<RestartForm*>(modal);
        if (!restart) return;
        EXPECT_EQ(S(restart->Label("HitsLabel")->text()), "Completed Hits : " + std::to_string(done));
        PressCycleStartWhenLit(restart);
    });
    P().CursorButton(6);
    ASSERT_NE(form_, nullptr);
    EXPECT_FALSE(form_->isVisible());
    WalkToTheEnd();
    const Hits made = MadeHits();
    EXPECT_EQ(made.size(), all.size());
    EXPECT_EQ(static_cast<std::size_t>(sim_.Variable("M869")), all.size());
    EXPECT_EQ(made, all);
    Spin(200);
    SavePanel("restart_run_end");
}

TEST_F(RestartFormsTest, StoppedRunRestartedAtTheStopMakesEveryHitOnce) {
    Select(1, "GRID03");
    const Hits all = PlannedHits();
    ASSERT_FALSE(all.empty());
    // The run stopped after some thirty hits; the poll follows the hits made.
    const int done = RunAndStopAfter(30);
    ASSERT_GE(done, 30) << "the card did not start";
    Spin(300);
    ASSERT_FALSE(P().State().Running);
    ASSERT_EQ(P().State().Slots[0].HitCount, done);
    // AT S&TOP: the first hit not made, shown for confirmation, then the cycle start.
    bool shown = false;
    OnBlockStartForm([&](BlockStartForm& form) {
        WhenModal([&](QWidget* modal) {
            auto* restart = dynamic_cast<RestartForm*>(modal);
            if (!restart) return;
            shown = true;
            EXPECT_EQ(S(restart->Label("HitsLabel")->text()), "Completed Hits : " + std::to_string(done));
            PressCycleStartWhenLit(restart);
        });
        QTest::keyClick(&form, Qt::Key_T);
    });
    ASSERT_TRUE(shown);
    WalkToTheEnd();
    const Hits made = MadeHits();
    EXPECT_EQ(made.size(), all.size());
    EXPECT_EQ(made, all);
}

TEST_F(RestartFormsTest, VisualRestartEndsWithCancelAndWithAProgramChange) {
    Select(1, "GRID03");
    OnBlockStartForm([&](BlockStartForm& form) { ButtonOf(&form, "VisualButton")->click(); });
    Spin(50);
    const std::int32_t whole = F().Plot(1)->Shown().Entities;
    P().CursorButton(1);
    P().CursorButton(3);
    P().CursorButton(5);
    ASSERT_EQ(P().Visual().Record, 3);
    EXPECT_EQ(F().Plot(1)->Shown().Entities, 50);
    P().CursorCancel();
    // The slot's drawing is shown whole again.
    EXPECT_EQ(F().Plot(1)->Shown().Entities, whole);
    EXPECT_FALSE(P().Visual().Active);
    EXPECT_EQ(P().Visual().Record, 0);
    EXPECT_EQ(P().Nav().ViewMode, 0);
    // Begun again (FrontEnd stands in its graphics panel now), the path walks the slot's drawing,
    // not the split pattern.
    WhenModal([](QWidget* modal) {
        if (auto* form = dynamic_cast<BlockStartForm*>(modal)) ButtonOf(form, "VisualButton")->click();
    });
    P().OpenForm("BlockStartForm");
    Spin(50);
    ASSERT_TRUE(P().Visual().Active);
    P().CursorButton(4);  // the last entity: the arc of hits
    EXPECT_NE(S(F().TextPanel()->text()).find("G28"), std::string::npos);
    // The other slot's program button: the pick ends.
    P().ChangeProgramTo(2);
    EXPECT_FALSE(P().Visual().Active);
    EXPECT_EQ(P().Nav().ViewMode, 0);
    EXPECT_TRUE(sim_.Program(5).empty());
}

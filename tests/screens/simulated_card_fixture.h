// The program screens on the simulated card: the panel started with its card at a simulator that
// runs the slots' programs from their drawings, and a program selected into slot 1.
#pragma once

#include "controller/cardsim/card_simulator.h"
#include "system/slot_run_plan.h"
#include "tests/screens/program_forms_fixture.h"

namespace kirvana {

class SimulatedCardFormsTest : public ProgramFormsTest {
protected:
    // Starts the simulator and the panel on it, and selects `program` of Dorvenis into slot 1.
    void StartWith(const char* program) {
        Directories dirs;
        dirs.RootDir = dir_.Path();
        sim_.SetRunPlanSource(SlotRunPlanSource(dirs));
        ASSERT_TRUE(sim_.Start(0));
        CardAt(sim_.Port());
        ASSERT_EQ(Start(), 0);
        Select(1, program);
    }

    CardSimulator sim_;
};

}  // namespace kirvana

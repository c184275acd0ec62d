// A slot for the restart's tests, built in a temporary folder: slot 1 active with the test
// machine's travel and turret, its program "PROG" of "DIR", and a fake card that records what it
// is sent.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "analysis/reverse.h"
#include "controller/conversation.h"
#include "core/paths.h"
#include "system/restart_slot.h"
#include "system/slots.h"
#include "tests/analysis/reverse_settings.h"
#include "tests/core/temp_dir.h"
#include "tests/support/fake_card.h"

namespace kirvana {

struct RestartSlotFixture : ::testing::Test {
    TempDir dir;
    Process p;
    FakeCardLink card;
    Conversation talk{&card, p.Card, dir.Path(), nullptr};

    RestartSlotFixture() {
        p.Card.CardInUse = true;
        p.Config.ActiveSlot = 1;
        p.Config.Dirs.RootDir = dir.Path();
        p.Config.Dirs.ServiceDir = dir.Path();
        p.Config.Dirs.PmacDir = dir.Path();
        const ReverseSettings test = ReverseTestSettings();
        p.Config.Machine.Travel = test.Travel;
        p.Config.Machine.MachineOrientation = 1;
        p.Tools.SlotTables[0] = test.Stations;
        p.Slots[0].ProgramName = "PROG";
        p.Slots[0].ProgramDirName = "DIR";
    }
    // The slot's motion text (no subroutines) reversed into its drawing.
    void Reverse(const std::string& m1) {
        const std::string stem = SlotStem(p.Config.Dirs, 1);
        dir.Write("Actvprg1.M1", m1);
        dir.Write("Actvprg1.M2", "");
        std::int16_t toolChanges = 0;
        ASSERT_EQ(ReversePass(stem, "PROG", "DIR", toolChanges, SlotReverseSettings(p, 1)).Result, 0);
    }
};

}  // namespace kirvana

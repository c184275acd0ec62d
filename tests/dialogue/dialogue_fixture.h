// A dialogue on a copy of the demo installation, with tools in some of its stations: a plain
// round punch in station 1, a square in station 2 and a rectangle in the autoindex station 5.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "core/config.h"
#include "dialogue/dialogue_session.h"
#include "tests/support/demo_installation.h"
#include "tooling/tooling.h"

namespace kirvana {

class DialogueFixture : public ::testing::Test {
protected:
    DialogueFixture() {
        dirs.RootDir = demo.Path();
        DeriveDirectories(dirs);
        dirs.ProgramRoot = demo.Path() + "Programs/";
        EXPECT_FALSE(CreateInstallationDirs(dirs).has_value());
        EXPECT_FALSE(ReadMachineFiles(dirs, machine).has_value());
        EXPECT_FALSE(ReadToolingData(dirs, machine, tooling).has_value());
        SetStationTool(tooling.MachineTable[0], "DIAMETER 10");
        SetStationTool(tooling.MachineTable[1], "SQUARE 20");
        SetStationTool(tooling.MachineTable[4], "RECTANGLE 30X5");
        CopyMachineTable(tooling, 0);
    }

    // The screen's tool of station n, or the plasma tool for n = -1.
    ScreenTool ToolOf(int n) const {
        if (n < 0) return ScreenTool{MachinePlasmaTool(tooling), "PLASMA", -1, false};
        const Station& station = tooling.DialogueTable[static_cast<std::size_t>(n - 1)];
        return ScreenTool{station.Tool, station.ToolText, static_cast<std::int16_t>(n), station.Autoindex != 0};
    }

    // A fresh dialogue with a sheet of 1000 x 500.
    void StartWithSheet(double x = 1000, double y = 500) {
        session.Start();
        SheetFields sheet;
        sheet.SizeX = x;
        sheet.SizeY = y;
        sheet.Material = "MILD STEEL 2MM";
        sheet.ClampCount = machine.ClampCount;
        sheet.Clamps = {200, 500, 800, 0};
        ASSERT_TRUE(session.ConfirmSheet(sheet));
    }

    void Add(const Composed& composed) {
        ASSERT_TRUE(composed.Ok) << composed.Message;
        ASSERT_TRUE(session.ConfirmEntity(composed.Record));
    }

    DemoInstallation demo;
    Directories dirs;
    MachineData machine;
    Tooling tooling;
    DialogueSession session{dirs, machine, tooling};
};

}  // namespace kirvana

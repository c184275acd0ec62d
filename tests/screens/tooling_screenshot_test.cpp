// Pictures of the tooling screens over FrontEnd, written to the build folder's screenshots/ for a
// person to look at: the turret with tools, the tool definition in several shapes, the settings.

#include "screens/settings_forms.h"
#include "screens/tool_def_dialogue.h"
#include "screens/turret_form.h"
#include "tests/screens/panel_fixture.h"

using namespace kirvana;

TEST_F(PanelTest, ScreenshotsOfTheToolingScreens) {
    Write("Tools/EMBOSS-LOGO.dxf", "x");
    ASSERT_EQ(Start(), 0);
    Select(1, "PLATE01");
    // The demo program's tools in the slot's turret, as the operator would define them.
    auto lines = ReadLines(dir_.Path() + "Programs/Dorvenis/PLATE01.trt");
    ASSERT_TRUE(lines);
    TurretEdits edits;
    for (std::size_t n = 1; n + 1 < lines->size() && n <= 20; ++n) {
        std::string text = (*lines)[n].substr(0, (*lines)[n].find(','));
        ToolRecord tool;
        if (!text.empty() && ParseToolText(text, tool, false))
            DefineTurretTool(P().State(), edits, static_cast<int>(n), tool);
    }
    ToolingTable(P().State())[0].Settings = PunchSetting{90, 80, 0.05F, 0.1F, 0.2F, 2};
    auto* dialogue = static_cast<ToolDefDialogue*>(P().Forms().Get("ToolDefDialogue"));
    // Each shape of the list, opened from the turret's tool button on its station.
    const std::vector<std::pair<int, std::string>> shots = {
        {4, "tool_def_rectangle"}, {13, "tool_def_keyway"}, {10, "tool_def_cruciform"}, {17, "tool_def_special"}};
    WhenModal([&](QWidget* modal) {
        auto* turret = static_cast<TurretForm*>(modal);
        SavePanelShot(P(), "turret_form");
        for (const auto& [station, name] : shots) {
            turret->StationList()->setCurrentRow(station - 1);
            WhenModal([&, shot = name](QWidget*) {
                SavePanelShot(P(), shot);
                dialogue->ExitButton()->click();
            });
            turret->ToolButton()->click();
        }
        WhenModal([&](QWidget* inner) {
            SavePanelShot(P(), "punch_settings_form");
            ButtonOf(inner, "ExitButton")->click();
        });
        turret->StationList()->setCurrentRow(0);
        turret->SettingsButton(1)->click();
        WhenModal([&](QWidget* inner) {
            SavePanelShot(P(), "plasma_settings_form");
            ButtonOf(inner, "ExitButton")->click();
        });
        turret->SettingsButton(2)->click();
        turret->ExitButton()->click();
    });
    Key(key::F2);
    // A tool in inches.
    ToolRecord hexagon;
    ASSERT_TRUE(ParseToolText("HEXAGON 12.7A30", hexagon, false));
    dialogue->Begin(hexagon, true);
    WhenModal([&](QWidget*) {
        SavePanelShot(P(), "tool_def_hexagon_inches");
        dialogue->ExitButton()->click();
    });
    P().OpenForm("ToolDefDialogue");
}

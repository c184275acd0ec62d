#include "screens/dialogue_settings_forms.h"

#include "dialogue/dialogue_session.h"
#include "screens/dialogue_front.h"
#include "screens/panel.h"
#include "system/tooling_commands.h"

namespace kirvana {

void PunchSettingsDialogue::Activate() {
    // The frame as the machine's screen fills it, then the dialogue station's values.
    PunchSettingsForm::Activate();
    const StationTable& table = panel_.Dialogue().Session().Table();
    PunchSetting setting;
    if (station_ >= 1 && station_ <= static_cast<int>(table.size()))
        setting = table[static_cast<std::size_t>(station_ - 1)].Settings;
    ShowTexts("", PunchSettingTexts(setting));
}

void PunchSettingsDialogue::Apply(bool all) {
    DialogueSession& session = panel_.Dialogue().Session();
    StationTable& table = session.Table();
    const PunchSetting setting = PunchSettingFromTexts(Texts());
    for (int n = 1; n <= static_cast<int>(table.size()); ++n)
        if (all || n == station_) table[static_cast<std::size_t>(n - 1)].Settings = setting;
    if (!WriteProgramTurret(session.WorkFile("trt"), table, ProgramTurret{}))
        Warn(FileFaultText(session.WorkFile("trt")));
}

void PlasmaSettingsDialogue::Activate() {
    PlasmaSettingsForm::Activate();
    DialogueSession& session = panel_.Dialogue().Session();
    // The dialogue's set when it has one; else the default set the frame shows.
    if (PlasmaSettingIsSet(session.Plasma())) ShowTexts(session.State.ProgText, PlasmaSettingTexts(session.Plasma()));
}

void PlasmaSettingsDialogue::Apply() { panel_.Dialogue().Session().Plasma() = PlasmaSettingFromTexts(Texts()); }

}  // namespace kirvana

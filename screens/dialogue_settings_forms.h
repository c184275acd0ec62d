// PunchSettingsDialogue and PlasmaSettingsDialogue: the settings screens on the dialogue's
// table and plasma set. Applying keeps them in the dialogue (the tool settings in
// `Dlgprg.trt` at once, the plasma set in `Dlgprg.pls` when the dialogue is left).
#pragma once

#include "screens/settings_forms.h"

namespace kirvana {

class PunchSettingsDialogue : public PunchSettingsForm {
public:
    explicit PunchSettingsDialogue(Panel& panel) : PunchSettingsForm(panel, "PunchSettingsDialogue") {}
    void Activate() override;

protected:
    void Apply(bool all) override;
};

class PlasmaSettingsDialogue : public PlasmaSettingsForm {
public:
    explicit PlasmaSettingsDialogue(Panel& panel) : PlasmaSettingsForm(panel, "PlasmaSettingsDialogue") {}
    void Activate() override;

protected:
    void Apply() override;
};

}  // namespace kirvana

#include "screens/tooling_forms.h"

#include <memory>

#include "screens/form_registry.h"
#include "screens/settings_forms.h"
#include "screens/tool_def_dialogue.h"
#include "screens/turret_form.h"

namespace kirvana {

void RegisterToolingForms(Panel& panel, FormRegistry& forms) {
    forms.Register("TurretForm", [&panel] { return std::make_unique<TurretForm>(panel); });
    forms.Register("ToolDefDialogue", [&panel] { return std::make_unique<ToolDefDialogue>(panel); });
    forms.Register("PunchSettingsForm", [&panel] { return std::make_unique<PunchSettingsForm>(panel); });
    forms.Register("PlasmaSettingsForm", [&panel] { return std::make_unique<PlasmaSettingsForm>(panel); });
}

}  // namespace kirvana

// The tooling screens by their system names: TurretForm (F2 with a turret), ToolDefDialogue,
// PunchSettingsForm and PlasmaSettingsForm (F2 on a plasma machine without turret).
#pragma once

namespace kirvana {

class Panel;
class FormRegistry;

void RegisterToolingForms(Panel& panel, FormRegistry& forms);

}  // namespace kirvana

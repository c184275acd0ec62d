// ChangeProgram, the switch of F10 and F11 and of FrontEnd's program buttons.
#pragma once

#include "system/machine_commands.h"

namespace kirvana {

// Refused with the machine in a cycle or in feedhold (nothing is sent, the slot stays; the
// refusal is shown through the warning screen and given back). Otherwise the poll pauses, the
// slot becomes the active one with its program directory, Control.cfg is rewritten, the card
// gets the slot's blocks, and the poll resumes if it was meant to run. The screens close the
// forms of FormsClosedByProgramChange before, and show the slot's plot after.
Refusal ChangeProgram(Process& process, StartupPlatform& platform, CardLink* link, int slot);

}  // namespace kirvana

// What the tooling screens do to the active slot: the turret screen's stations, its turret move
// and punch, a tool defined for a station, the punch settings applied to a station or to all,
// the plasma settings applied to the program, and the turret screen's unload. Each change is
// written to the slot's files and the program's own files at once; a file that cannot be
// written is named in the result and the old file stays whole.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "system/machine_commands.h"
#include "system/slots.h"
#include "tooling/turret_unload.h"

namespace kirvana {

// The slot the tooling screens work on: the active one.
int ToolingSlot(const Process& process);
StationTable& ToolingTable(Process& process);
// The program's stem in its directory (directory path + name), "" when the slot is empty.
std::string ToolingProgramStem(const Process& process);

// The rows of StationList: the station's number, two digits, and its tool description
// (empty for an empty station).
std::string StationRowText(const StationTable& table, int station);

// The outcome of a change that writes files: whether the table or set changed, and the
// warning to show when a file could not be written ("File Fault : " and the file).
struct ToolingChange {
    bool Changed = false;
    std::string FileFault;
};
std::string FileFaultText(const std::string& file);

// TurretForm.PositionButton 1 (load position) or 2 (ram position) and PunchButton, for a
// station from 1. A refusal sends nothing.
Refusal TurretPositionButton(Process& process, Conversation& talk, int station, int button);
Refusal TurretPunchButton(Process& process, Conversation& talk, int station);

// The tools changed while the turret screen is open, for its unload.
struct TurretEdits {
    std::vector<ToolChange> Changes;  // one per station: its first old tool and its last new one
};

// TurretForm.ToolButton back from ToolDefDialogue: when the tool differs from the station's,
// the station takes it and the slot's `.trt` (and the program's `.trt` and `.stg` when it has
// a `.prg`) are written.
ToolingChange DefineTurretTool(Process& process, TurretEdits& edits, int station, const ToolRecord& edited);

// PunchSettingsForm.ApplyButton 1 (`station` from 1) or 2 (`station` 0: all): the settings go
// to the rows and to the files, and, when the slot holds a program and its working station
// took the settings, the station block goes to the card.
ToolingChange ApplyTurretSettings(Process& process, Conversation& talk, int station, const PunchSetting& setting);

// PlasmaSettingsForm.ApplyButton: the set becomes the program's, is written to the slot's and
// the program's `.pls` (when the slot holds a program), and goes to the card as the plasma
// block on a plasma profiler.
ToolingChange ApplyProgramPlasma(Process& process, Conversation& talk, const std::string& description,
                                 const PlasmaSetting& setting);

// What leaving TurretForm did: the unload's steps, and the program's conversion with the
// slot's table when it ran (its refusal was shown through the platform's warning screen).
struct TurretLeave {
    TurretUnloadResult Unload;
    std::optional<SelectOutcome> Conversion;
};

// Leaving TurretForm: with changed tools and the slot's drawing, the drawing's records take
// the new tools, the numbered tool lines are rewritten, and the program goes through every
// pass again with the slot's table, so the drawing, the hits and the card's programs carry the
// tools just defined. The edits are spent.
TurretLeave LeaveTurret(Process& process, StartupPlatform& platform, CardLink* link, TurretEdits& edits);

}  // namespace kirvana

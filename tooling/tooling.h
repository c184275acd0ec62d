// The tooling state the process keeps, and its readers for the start-up: Punch.dat,
// Plasma.dat, Machine.stn and Machine.trt, in that order, after Machine.dat.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "core/config.h"
#include "tooling/settings.h"
#include "tooling/tool_record.h"
#include "tooling/turret.h"

namespace kirvana {

struct Tooling {
    StationTypes Types;                      // Machine.stn
    std::int16_t PlasmaTypeIndex = 0;        // the plasma station's type: the index Machine.dat's type names
    StationTable MachineTable;               // Machine.trt
    std::array<StationTable, 2> SlotTables;  // the active slots 1 and 2
    StationTable DialogueTable;              // the dialogue's table
    PunchData Punch;                         // Punch.dat
    PlasmaData Plasma;                       // Plasma.dat
    PlasmaSetting DialoguePlasma;            // the dialogue's plasma set
};

// Punch.dat (optional).
ConfigResult ReadPunchData(const Directories& dirs, const MachineData& machine, Tooling& tooling);
// Plasma.dat (optional).
ConfigResult ReadPlasmaData(const Directories& dirs, const MachineData& machine, Tooling& tooling);
// Machine.stn (required); settles the plasma station's type.
ConfigResult ReadStationTypeData(const Directories& dirs, const MachineData& machine, Tooling& tooling);
// Machine.trt, read only with a turret (StationCount rows; one empty row without a turret),
// then copied to both slots' tables and the dialogue's.
ConfigResult ReadTurretData(const Directories& dirs, const MachineData& machine, Tooling& tooling);
// Machine.stn, then Machine.trt.
ConfigResult ReadStationFiles(const Directories& dirs, const MachineData& machine, Tooling& tooling);
// All four in their order; the first fault ends the reading.
ConfigResult ReadToolingData(const Directories& dirs, const MachineData& machine, Tooling& tooling);

// The table of slot 1 or 2; any other number gives the dialogue's table.
StationTable& SlotTable(Tooling& tooling, int slot);
const StationTable& SlotTable(const Tooling& tooling, int slot);
// The machine's table into a slot's table (slot 1 or 2, any other number the dialogue's).
void CopyMachineTable(Tooling& tooling, int slot);

// The plasma station's type, the machine's plasma tool name (its type text) and the P tool.
const StationType& PlasmaStationType(const Tooling& tooling);
std::string PlasmaToolName(const Tooling& tooling);
ToolRecord MachinePlasmaTool(const Tooling& tooling);
// The torch type list of the plasma settings screens.
std::vector<std::string> TorchTypes(const Tooling& tooling);

}  // namespace kirvana

#include "tooling/tooling.h"

#include "core/text.h"

namespace kirvana {

ConfigResult ReadPunchData(const Directories& dirs, const MachineData&, Tooling& tooling) {
    return ReadPunchFile(dirs, tooling.Punch);
}

ConfigResult ReadPlasmaData(const Directories& dirs, const MachineData&, Tooling& tooling) {
    return ReadPlasmaFile(dirs, tooling.Plasma);
}

ConfigResult ReadStationTypeData(const Directories& dirs, const MachineData& machine, Tooling& tooling) {
    // The machine type names the index of the plasma station's type.
    tooling.PlasmaTypeIndex =
        machine.MachineType >= 0 && machine.MachineType < StationTypeCount ? machine.MachineType : std::int16_t{0};
    return ReadStationTypes(dirs, tooling.Types);
}

ConfigResult ReadTurretData(const Directories& dirs, const MachineData& machine, Tooling& tooling) {
    if (machine.HasTurret) {
        std::size_t rows = machine.StationCount > 0 ? static_cast<std::size_t>(machine.StationCount) : 0;
        if (auto fault = ReadTurretFile(dirs, tooling.Types, rows, tooling.MachineTable)) return fault;
    } else {
        tooling.MachineTable.assign(1, Station());
    }
    CopyMachineTable(tooling, 1);
    CopyMachineTable(tooling, 2);
    CopyMachineTable(tooling, 0);
    return std::nullopt;
}

ConfigResult ReadStationFiles(const Directories& dirs, const MachineData& machine, Tooling& tooling) {
    if (auto fault = ReadStationTypeData(dirs, machine, tooling)) return fault;
    return ReadTurretData(dirs, machine, tooling);
}

ConfigResult ReadToolingData(const Directories& dirs, const MachineData& machine, Tooling& tooling) {
    if (auto fault = ReadPunchData(dirs, machine, tooling)) return fault;
    if (auto fault = ReadPlasmaData(dirs, machine, tooling)) return fault;
    return ReadStationFiles(dirs, machine, tooling);
}

StationTable& SlotTable(Tooling& tooling, int slot) {
    if (slot == 1 || slot == 2) return tooling.SlotTables[static_cast<std::size_t>(slot - 1)];
    return tooling.DialogueTable;
}

const StationTable& SlotTable(const Tooling& tooling, int slot) {
    if (slot == 1 || slot == 2) return tooling.SlotTables[static_cast<std::size_t>(slot - 1)];
    return tooling.DialogueTable;
}

void CopyMachineTable(Tooling& tooling, int slot) { CopyStationTable(tooling.MachineTable, SlotTable(tooling, slot)); }

const StationType& PlasmaStationType(const Tooling& tooling) {
    int index =
        tooling.PlasmaTypeIndex >= 0 && tooling.PlasmaTypeIndex < StationTypeCount ? tooling.PlasmaTypeIndex : 0;
    return tooling.Types[static_cast<std::size_t>(index)];
}

std::string PlasmaToolName(const Tooling& tooling) { return std::string(Trim(PlasmaStationType(tooling).TypeText)); }

ToolRecord MachinePlasmaTool(const Tooling& tooling) {
    return PlasmaTool(PlasmaToolName(tooling), tooling.PlasmaTypeIndex, PlasmaStationType(tooling).TypeNumber);
}

std::vector<std::string> TorchTypes(const Tooling& tooling) {
    return TorchTypeList(tooling.Plasma, PlasmaToolName(tooling));
}

}  // namespace kirvana

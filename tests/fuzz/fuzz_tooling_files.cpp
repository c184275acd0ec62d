// Any bytes as the tooling files: Machine.stn, Machine.trt, Punch.dat, Plasma.dat, a
// program's .trt and .stg, a punch set and a plasma set, cut at 0x01 bytes. The first byte
// picks the machine type and the station count. Every reader must read by its rules or
// refuse with a fault, never crash; what is read must write out again.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "tooling/tooling.h"

using namespace kirvana;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string root = [] {
        std::string pattern = (std::filesystem::temp_directory_path() / "kirvana-fuzz-tooling-XXXXXX").string();
        std::string made = mkdtemp(pattern.data()) ? pattern + "/" : std::string("/tmp/");
        for (const char* dir : {"Data", "Settings", "Service", "Program"})
            std::filesystem::create_directories(made + dir);
        return made;
    }();
    if (size == 0) return 0;
    const std::uint8_t pick = data[0];
    std::string_view rest(reinterpret_cast<const char*>(data + 1), size - 1);
    const char* files[] = {"Data/Machine.stn", "Data/Machine.trt", "Data/Punch.dat", "Data/Plasma.dat",
                           "Program/P.trt",    "Program/P.stg",    "Settings/S.stg", "Settings/S.pls"};
    for (const char* name : files) {
        std::size_t cut = rest.find('\x01');
        std::string_view part = rest.substr(0, cut);
        rest = cut == std::string_view::npos ? std::string_view() : rest.substr(cut + 1);
        std::ofstream(root + name, std::ios::binary | std::ios::trunc)
            .write(part.data(), static_cast<std::streamsize>(part.size()));
    }
    Directories dirs;
    dirs.RootDir = root;
    dirs.DataDir = root + "Data/";
    dirs.SettingsDir = root + "Settings/";
    dirs.ServiceDir = root + "Service/";
    MachineData machine;
    machine.MachineType = static_cast<std::int16_t>((pick & 0x0F) + ((pick & 0x10) ? 10 : 0));
    machine.HasTurret = machine.MachineType >= 10;
    machine.ProfilerKind = static_cast<std::int16_t>(machine.MachineType % 10);
    machine.StationCount = static_cast<std::int16_t>((pick >> 5) * 5 - 2);  // -2 to 33

    Tooling tooling;
    ReadToolingData(dirs, machine, tooling);
    MachinePlasmaTool(tooling);
    TorchTypes(tooling);

    StationTable& table = SlotTable(tooling, 1);
    ProgramTurret header;
    ReadProgramTurret(root + "Program/P.trt", table, header, dirs.ServiceDir);
    ReadProgramSettings(root + "Program/P.stg", table, dirs.ServiceDir);
    if (!WriteProgramTurret(root + "Program/Out.trt", table, header)) return 0;
    if (!WriteProgramSettings(root + "Program/Out.stg", table)) return 0;
    // What was written reads back to the same tools.
    StationTable again = tooling.MachineTable;
    ProgramTurret againHeader;
    if (ReadProgramTurret(root + "Program/Out.trt", again, againHeader)) {
        for (std::size_t i = 0; i < table.size() && i < again.size(); ++i)
            if (table[i].Valid != again[i].Valid) std::abort();
    }
    for (int station = 0; station <= static_cast<int>(table.size()) + 1; ++station) {
        StationOfTNumber(table, station);
    }

    PunchSetting punch;
    PlasmaSetting plasma;
    std::string description;
    LoadPunchSetting(root + "Settings/S.stg", description, punch);
    LoadPlasmaSetting(root + "Settings/S.pls", description, plasma);
    DefaultPlasmaSetting(dirs);
    ProgramPlasmaSetting(dirs, root + "Settings/S.pls");
    SettingsArray settings;
    ClearSettings(settings);
    PlasmaToSettings(plasma, settings);
    return 0;
}

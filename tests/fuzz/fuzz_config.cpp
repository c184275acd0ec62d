// Any bytes as the installation's configuration files: the readers must read them by the
// rules or refuse them, never fault. The input is cut at 0x01 bytes into Machine.dat,
// Westinghouse.cfg, Profiler.cfg, IO.msg, Logic.msg, Control.cnc, PMAC.cfg and Service.cfg.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "core/config.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string root = [] {
        std::string pattern = (std::filesystem::temp_directory_path() / "kirvana-fuzz-XXXXXX").string();
        std::string made = mkdtemp(pattern.data()) ? pattern + "/" : std::string("/tmp/");
        for (const char* dir : {"Data", "Messages", "Service"}) std::filesystem::create_directories(made + dir);
        return made;
    }();
    const char* files[] = {"Data/Machine.dat",   "Data/Westinghouse.cfg", "Data/Profiler.cfg", "Messages/IO.msg",
                           "Messages/Logic.msg", "Control.cnc",           "PMAC.cfg",          "Service.cfg"};
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    for (const char* name : files) {
        std::size_t cut = rest.find('\x01');
        std::string_view part = rest.substr(0, cut);
        rest = cut == std::string_view::npos ? std::string_view() : rest.substr(cut + 1);
        std::ofstream(root + name, std::ios::binary | std::ios::trunc)
            .write(part.data(), static_cast<std::streamsize>(part.size()));
    }
    kirvana::Directories dirs;
    dirs.RootDir = root;
    dirs.DataDir = root + "Data/";
    dirs.MessagesDir = root + "Messages/";
    dirs.ServiceDir = root + "Service/";
    kirvana::Installation installation;
    kirvana::ReadMachineFiles(dirs, installation.Machine);
    kirvana::ReadMessageTables(dirs, installation.Messages);
    kirvana::ReadCardSetup(dirs, installation.Card);
    kirvana::ReadServiceProgram(dirs);
    return 0;
}

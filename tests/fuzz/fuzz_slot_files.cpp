// Any bytes as the files a start reads before it trusts a slot: Control.cfg, Actvprg1.cfg,
// .sts, .btc, the word map .W1, and the A1/M1 pair the block map is built from. The input is
// cut at 0x01 bytes into those files. The readers must take them by the rules or refuse them,
// never fault, and the block lookup must stay inside the map whatever the counts claim.
// Inputs with a "/" are skipped: Control.cfg may name absolute folders, which the start-up
// creates, and a fuzzer must not create folders outside its own.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <unistd.h>

#include "core/config.h"
#include "system/slots.h"
#include "system/startup.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    if (rest.find('/') != std::string_view::npos) return 0;
    static const std::string root = [] {
        std::string pattern = (std::filesystem::temp_directory_path() / "kirvana-fuzz-slots-XXXXXX").string();
        return mkdtemp(pattern.data()) ? pattern + "/" : std::string();
    }();
    if (root.empty()) return 0;
    // A fresh folder for each input, so that the folders one Control.cfg creates don't pile up.
    std::filesystem::remove_all(root + "run");
    std::filesystem::create_directories(root + "run/Service");
    const std::string run = root + "run/";
    const char* files[] = {"Control.cfg", "Actvprg1.cfg", "Actvprg1.sts", "Actvprg1.btc",
                           "Actvprg1.W1", "Actvprg1.A1", "Actvprg1.M1"};
    for (const char* name : files) {
        std::size_t cut = rest.find('\x01');
        std::string_view part = rest.substr(0, cut);
        rest = cut == std::string_view::npos ? std::string_view() : rest.substr(cut + 1);
        std::ofstream(run + name, std::ios::binary | std::ios::trunc).write(part.data(), static_cast<std::streamsize>(part.size()));
    }

    const std::filesystem::path before = std::filesystem::current_path();
    if (chdir(run.c_str()) != 0) return 0;
    kirvana::Installation installation;
    (void)kirvana::ReadControlConfig(installation);
    if (chdir(before.c_str()) != 0) std::abort();

    kirvana::Process process;
    process.Config.Dirs.RootDir = run;
    process.Config.Dirs.ServiceDir = run + "Service/";
    const kirvana::Directories& dirs = process.Config.Dirs;
    kirvana::SlotRecord& slot = process.Slots[0];
    if (kirvana::ReadSlotConfig(dirs, 1, slot)) {
        // Whatever the description claims, a lookup of any word stays inside the map.
        for (std::int32_t word : {-1, 0, 1, 7, 32766, 32767, 1 << 20})
            for (int program : {0, 1, 3, 5}) (void)kirvana::SlotBlockAt(process, program, word);
    }
    (void)kirvana::ReadSlotStats(dirs, 1);
    (void)kirvana::ReadSlotBatch(dirs, 1);
    (void)kirvana::BuildBlockMap(run + "Actvprg1.A1", run + "Actvprg1.M1", run + "Map.W1", run + "Map.RA1", run + "Map.RM1");
    return 0;
}

// Any bytes as an AMADA part program: the AMADA dialect pass must end without a fault or a
// hang. The first byte picks the profiler options; the rest is the program.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "translate/amada.h"

namespace {

const std::string& WorkDir() {
    static const std::string dir = [] {
        std::string pattern = (std::filesystem::temp_directory_path() / "fuzz-amada-XXXXXX").string();
        return mkdtemp(pattern.data()) ? pattern + "/" : std::string("./");
    }();
    return dir;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kirvana::ConvertSettings settings;
    std::uint8_t options = size > 0 ? data[0] : 0;
    settings.AmadaMachine = true;
    settings.ProfilerArcSwap = options & 1;
    settings.ProfilerArcCentre = options & 2;
    settings.ServiceDir = WorkDir();
    settings.CurrentDir = WorkDir();
    const std::uint8_t* program = size > 0 ? data + 1 : data;
    std::size_t length = size > 0 ? size - 1 : 0;
    std::ofstream(WorkDir() + "prog.org", std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(program), static_cast<std::streamsize>(length));
    std::int16_t dialect = 0;
    if (options & 4) (void)kirvana::ConvertProgram(WorkDir() + "prog.", dialect, settings);
    else (void)kirvana::AmadaProgram(WorkDir() + "prog.", dialect, settings);
    return 0;
}

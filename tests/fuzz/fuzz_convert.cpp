// Any bytes as a part program: the Convert pass must end without a fault or a hang. The first
// byte picks the machine options; the rest is the program, also given as "SUB.GSB" so that a
// "(GSUB,SUB)" call copies it.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "translate/convert.h"

namespace {

const std::string& WorkDir() {
    static const std::string dir = [] {
        std::string pattern = (std::filesystem::temp_directory_path() / "fuzz-convert-XXXXXX").string();
        return mkdtemp(pattern.data()) ? pattern + "/" : std::string("./");
    }();
    return dir;
}

void Write(const std::string& path, const std::uint8_t* data, std::size_t size) {
    std::ofstream(path, std::ios::binary | std::ios::trunc).write(reinterpret_cast<const char*>(data),
                                                                    static_cast<std::streamsize>(size));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kirvana::ConvertSettings settings;
    std::uint8_t options = size > 0 ? data[0] : 0;
    settings.SwapArcWords = options & 1;
    settings.ArcCentreIncremental = options & 2;
    settings.ProfilerArcSwap = options & 4;
    settings.ProfilerArcCentre = options & 8;
    settings.ServiceDir = WorkDir();
    settings.CurrentDir = WorkDir();
    const std::uint8_t* program = size > 0 ? data + 1 : data;
    std::size_t length = size > 0 ? size - 1 : 0;
    Write(WorkDir() + "prog.org", program, length);
    Write(WorkDir() + "SUB.GSB", program, length);
    std::int16_t dialect = 0;
    (void)kirvana::ConvertProgram(WorkDir() + "prog.", dialect, settings);
    return 0;
}

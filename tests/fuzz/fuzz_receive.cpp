// Any bytes as a stream on the serial line, cut into receive events at every 0xFF byte, with
// the end mark 4. Each stream must be filed under the program root or refused and kept beside
// Receive.tmp: never a fault, never a file outside the installation.
#include <unistd.h>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "files/receive.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string root = [] {
        std::string pattern = (std::filesystem::temp_directory_path() / "kirvana-fuzz-receive-XXXXXX").string();
        return mkdtemp(pattern.data()) ? pattern + "/" : std::string();
    }();
    if (root.empty()) return 0;
    std::filesystem::remove_all(root + "run");
    std::filesystem::create_directories(root + "run/Programs/Current");
    std::filesystem::create_directories(root + "run/Help");
    const std::string run = root + "run/";
    kirvana::CommSettings settings;
    settings.SendTrailer = "\x04";
    settings.ReceiveEnd2 = "\x03";
    settings.ReceiveDrop = std::string(1, '\0');
    kirvana::ProgramReceiver receiver(settings, {run, run + "Help/", run + "Programs/", "Current"});
    receiver.Prepare();
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    while (!rest.empty()) {
        std::size_t cut = rest.find('\xFF');
        receiver.ReceiveChars(rest.substr(0, cut));
        rest = cut == std::string_view::npos ? std::string_view() : rest.substr(cut + 1);
    }
    receiver.FinishReceivedProgram();
    for (const kirvana::ReceivedProgram& result : receiver.TakeResults()) {
        if (result.Filed && !result.Path.starts_with(run + "Programs/")) std::abort();
        if (!result.Filed && !result.KeptAs.starts_with(run)) std::abort();
    }
    // Only the program root, the help folder and the receive files lie in the run folder.
    for (const auto& entry : std::filesystem::directory_iterator(run)) {
        std::string name = entry.path().filename().string();
        if (name != "Programs" && name != "Help" && !name.starts_with("Receive")) std::abort();
    }
    return 0;
}

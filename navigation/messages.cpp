#include "navigation/messages.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include "core/text.h"
#include "system/startup.h"

namespace kirvana {

std::optional<std::string> ReadHelpFile(const std::string& path) {
    if (UpperCase(Trim(path)).empty()) return std::nullopt;
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::nullopt;
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad()) return std::nullopt;
    return text;
}

std::string ReceiveHelpPath(const Process& process) {
    if (!process.Display.ReceiveHelpFile.empty()) return process.Display.ReceiveHelpFile;
    return process.Config.Dirs.HelpDir + "Receive.hlp";
}

void AcknowledgeMessages(Process& process) {
    std::error_code error;
    std::string path = ReceiveHelpPath(process);
    if (std::filesystem::exists(path, error)) std::filesystem::remove(path, error);
    process.Display.NewProgramsReceived = false;
}

}  // namespace kirvana

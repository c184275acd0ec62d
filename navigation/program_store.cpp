#include "navigation/program_store.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "core/names.h"
#include "core/paths.h"
#include "core/text.h"

namespace kirvana {

std::vector<std::string> FillDirectories(const std::string& programRoot) {
    std::vector<std::string> names = ListDirectory(programRoot, true);
    std::erase_if(names, [](const std::string& name) { return UpperCase(name) == SubprogramDirectory; });
    return names;
}

std::vector<ProgramMatch> SearchPrograms(const std::string& programRoot, const std::string& text) {
    std::vector<ProgramMatch> found;
    for (const std::string& directory : FillDirectories(programRoot))
        for (const std::string& program : FillPrograms(programRoot + directory + "/"))
            if (FindNoCase(program, text) != std::string::npos) found.push_back({directory, program});
    return found;
}

std::string SearchLabel(const std::string& text) { return "\"" + text + "\""; }

std::optional<std::string> CheckChosenProgram(const std::string& programRoot, const std::string& directory,
                                              const std::string& program) {
    if (directory.empty()) return std::string("No Directory Selected !");
    if (program.empty()) return std::string("No Program Selected !");
    if (!AcceptableName(directory) || !IsDirectory(ResolveNoCase(programRoot + directory)))
        return std::string("Invalid Directory !");
    if (ProgramPath(programRoot, directory, program).empty() ||
        !FileExists(ProgramPath(programRoot, directory, program)))
        return std::string("Invalid Program !");
    return std::nullopt;
}

std::string ProgramPath(const std::string& programRoot, const std::string& directory, const std::string& program) {
    if (!AcceptableName(directory) || !AcceptableName(program)) return {};
    return ResolveNoCase(ResolveNoCase(programRoot + directory) + "/" + program + ".prg");
}

std::optional<std::string> ProgramText(const std::string& programRoot, const std::string& directory,
                                       const std::string& program) {
    std::string path = ProgramPath(programRoot, directory, program);
    if (path.empty() || !FileExists(path)) return std::nullopt;
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::nullopt;
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

}  // namespace kirvana

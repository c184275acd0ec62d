#include "tooling/turret_unload.h"

#include <filesystem>

#include "core/paths.h"
#include "core/text.h"

namespace kirvana {

std::string RewriteToolLine(const std::string& line, const std::vector<ToolChange>& changes) {
    // The header ends at the line's first ":"; a line without one has nothing to write behind.
    const std::size_t colon = line.find(':');
    if (colon == std::string::npos) return line;
    for (const auto& change : changes) {
        const std::string number = std::to_string(change.TNumber);
        for (const std::string& form : {"T" + number + "=", "T0" + number + "="}) {
            if (FindNoCase(line, form) == std::string::npos) continue;
            std::string text = change.NewTool.IsValid() ? DescribeTool(change.NewTool, false) : std::string();
            return line.substr(0, colon + 1) + text;
        }
    }
    return line;
}

bool RewriteToolNumbers(const std::string& numbersFile, const std::vector<ToolChange>& changes) {
    auto lines = ReadLines(numbersFile);
    if (!lines) return false;
    std::vector<std::string> updated;
    updated.reserve(lines->size());
    for (const auto& line : *lines) updated.push_back(RewriteToolLine(line, changes));
    const std::string updateFile = (std::filesystem::path(numbersFile).parent_path() / "Update.tmp").string();
    if (!WriteLines(updateFile, updated)) return false;
    // The updated text takes the place of the old one in one step; the old file is never removed first.
    if (MoveFileOver(updateFile, numbersFile)) return true;
    std::error_code error;
    std::filesystem::remove(updateFile, error);
    return false;
}

TurretUnloadResult UnloadTurret(const std::string& drawingFile, const std::string& numbersFile,
                                const std::vector<ToolChange>& changes, const DrawingToolRewrite& rewriteDrawing) {
    TurretUnloadResult result;
    if (changes.empty() || !FileExists(drawingFile)) return result;
    // 1. The drawing's records take the new tools.
    if (rewriteDrawing) result.DrawingRewritten = rewriteDrawing(drawingFile, changes);
    // 2. The numbered tool lines of the source, when a Numbers.tmp is there: no part of this
    // system writes one, so it is rewritten only as it was left by another writer or by hand.
    if (FileExists(numbersFile)) result.NumbersRewritten = RewriteToolNumbers(numbersFile, changes);
    // 3. The program is converted again by the caller.
    result.ConvertAgain = true;
    return result;
}

}  // namespace kirvana

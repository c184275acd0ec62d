// Files that must survive a cut of the power: written whole under a temporary name, flushed to
// the disk, and only then renamed into place (the directory flushed too).
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kirvana {

// The whole content of a file; nothing when it cannot be read.
std::optional<std::string> ReadWholeFile(const std::string& path);
// Writes the bytes to `path` (created or emptied) and syncs them; false on any failed write,
// sync or close, after which the file is removed.
bool WriteSynced(const std::string& path, std::string_view bytes);
// Renames `from` over `to` and syncs the directory of `to`.
bool RenameSynced(const std::string& from, const std::string& to);
// The bytes into `path` through the temporary `path` + ".part": the old file stays whole
// until the new one is complete.
bool ReplaceFileSynced(const std::string& path, std::string_view bytes);

}  // namespace kirvana

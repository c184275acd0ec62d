// Paths, directories and small file operations. A name "with a drive" is an absolute path
// (or one that still holds a drive letter and ":"); its drive is the mount it lies on.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/file_writer.h"

namespace kirvana {

bool HasDrive(std::string_view path);
// The root of the path's drive, ending in "/": the mount point the path lies on, or for a
// drive-letter name its first two characters and "/".
std::string DriveRoot(std::string_view path);
// True when the root of the path's drive can be listed.
bool DriveReady(std::string_view path);
// The directory as a whole path ending in "/": a name with a drive stands for the root of
// its drive; any other name lies under the program root.
std::string DirectoryPath(std::string_view name, std::string_view programRoot);
bool DirectoryExists(std::string_view name, std::string_view programRoot);
bool IsDirectory(const std::string& path);
bool FileExists(const std::string& path);

// Rewrites serviceDir + "LastFile.txt" with the file name as its only line.
void NoteFile(std::string_view serviceDir, std::string_view fileName);

// The lines of a text file, LF or CRLF; empty when it cannot be opened.
std::optional<std::vector<std::string>> ReadLines(const std::string& path);

// The file's path as it stands, or, when no file has that exact name, the one entry of its
// directory whose name matches ignoring case (the system came from a case-blind file system).
std::string ResolveNoCase(const std::string& path);
// Names of the directories (or the other entries) of a directory, sorted by name with case
// ignored, as the panel's original file system listed them.
std::vector<std::string> ListDirectory(const std::string& directory, bool directories);

}  // namespace kirvana

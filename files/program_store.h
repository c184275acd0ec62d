// The program store: the lists the file screens show, and the file operations on a program's
// set of files. A copy or a move never loses a program: the new files are written under a
// temporary name in the target directory and flushed to the disk before they take their names,
// and a source is deleted only after its copy is complete.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kirvana {

// The extensions of a program's set of files, deleted together.
inline constexpr const char* ProgramSetExtensions[] = {".prg", ".inf", ".rpt", ".stg"};

// A directory that the lists never show: it holds the system's sub-programs.
inline constexpr const char* HiddenDirectory = "EXSUBS";

// The subdirectories of `directory` (a whole path ending in "/"), sorted as the panel lists
// them, without "EXSUBS"; a ".." entry first when `directory` is not the program root.
std::vector<std::string> FillDirectories(const std::string& directory, const std::string& programRoot);
// The names of the `*.prg` files of a directory, without the extension, sorted.
std::vector<std::string> FillPrograms(const std::string& directory);
// The names of the files of a directory that end in `extension` (".stg", ".pls"; "" for the
// names without any extension), less the extension, sorted.
std::vector<std::string> FillFiles(const std::string& directory, std::string_view extension);

// One entry of the drive list: a mount of the machine that can hold programs.
struct DriveEntry {
    std::string MountPoint;  // ends in "/"
    std::string Caption;     // the mount point, with " [Removable Drive]" for removable media
    bool Removable = false;
};
// The drives: the root of the file system and the mounts of removable media (USB sticks,
// memory cards, floppies) under /media, /mnt and /run/media, in the order of `mountsText`
// (the text of /proc/self/mounts; by default read from there).
std::vector<DriveEntry> DriveList(const std::string& mountsText);
std::vector<DriveEntry> DriveList();

// The directories a list offers: those of the program root, then the removable drives by
// their captions, with the whole path of each (ending in "/").
struct DirectoryChoice {
    std::string Caption;
    std::string Path;
};
std::vector<DirectoryChoice> DirectoryChoices(const std::string& programRoot, const std::vector<DriveEntry>& drives);
// The choice of that caption, or nullptr.
const DirectoryChoice* FindChoice(const std::vector<DirectoryChoice>& choices, const std::string& caption);

// Deletes each of name.prg, name.inf, name.rpt, name.stg in the directory where it exists.
// False when one of them is still there afterwards.
bool DeleteProgramSet(const std::string& directory, const std::string& name);
// Deletes every file of the directory named name + "." + anything. False when one remains.
bool DeleteNameSet(const std::string& directory, const std::string& name);

// Copies the program `name` of `fromDir` as `toName` into `toDir`: its .prg and, when there is
// one, its .stg. Both are written under temporary names in `toDir` and synced; only when both
// are complete do they take their names. On false nothing in `toDir` has changed but for its
// temporaries, which are removed, and `fault` names the file that could not be read or written.
bool CopyProgram(const std::string& fromDir, const std::string& name, const std::string& toDir,
                 const std::string& toName, std::string& fault);

// Deletes the files of `directory` whose names begin with "Temp." (the work files of a job).
void DeleteTempFiles(const std::string& directory);

}  // namespace kirvana

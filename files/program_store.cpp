#include "files/program_store.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/paths.h"
#include "core/text.h"
#include "files/durable_file.h"

namespace kirvana {

namespace fs = std::filesystem;

namespace {

bool SameDirectory(const std::string& a, const std::string& b) {
    std::error_code error;
    return fs::equivalent(a, b, error);
}

// The regular files of a directory, by name.
std::vector<std::string> FileNames(const std::string& directory) { return ListDirectory(directory, false); }

bool RemoveIfThere(const std::string& path) {
    std::error_code error;
    fs::remove(path, error);
    return !fs::exists(fs::symlink_status(path, error));
}

// The disk of a device of /proc/self/mounts: "/dev/sdb1" gives "sdb", "/dev/mmcblk0p1" "mmcblk0".
std::string DiskOf(const std::string& device) {
    std::string name = FileNameOf(device);
    std::string::size_type end = name.size();
    while (end > 0 && name[end - 1] >= '0' && name[end - 1] <= '9') --end;
    if (end > 1 && name[end - 1] == 'p' && name[end - 2] >= '0' && name[end - 2] <= '9') --end;
    return name.substr(0, end);
}

bool RemovableDisk(const std::string& device) {
    std::ifstream flag("/sys/block/" + DiskOf(device) + "/removable");
    int removable = 0;
    return (flag >> removable) && removable == 1;
}

}  // namespace

std::vector<std::string> FillDirectories(const std::string& directory, const std::string& programRoot) {
    std::vector<std::string> list;
    if (!SameDirectory(directory, programRoot)) list.push_back("..");
    for (std::string& name : ListDirectory(directory, true))
        if (UpperCase(name) != HiddenDirectory) list.push_back(std::move(name));
    return list;
}

std::vector<std::string> FillPrograms(const std::string& directory) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator it(directory, error), end; !error && it != end; it.increment(error)) {
        std::string name = it->path().filename().string();
        std::error_code kindError;
        if (name.size() <= 4 || UpperCase(std::string_view(name).substr(name.size() - 4)) != ".PRG" ||
            it->is_directory(kindError))
            continue;
        names.push_back(name.substr(0, name.size() - 4));
    }
    // Upper-cased once, so the sort of a large directory compares without copying.
    std::vector<std::pair<std::string, std::string>> keyed;
    keyed.reserve(names.size());
    for (std::string& name : names) keyed.emplace_back(UpperCase(name), std::move(name));
    std::sort(keyed.begin(), keyed.end());
    names.clear();
    for (auto& [key, name] : keyed) names.push_back(std::move(name));
    return names;
}

std::vector<std::string> FillFiles(const std::string& directory, std::string_view extension) {
    std::vector<std::string> list;
    for (const std::string& name : FileNames(directory)) {
        if (extension.empty()) {
            if (name.find('.') == std::string::npos) list.push_back(name);
        } else if (name.size() > extension.size() && UpperCase(name).ends_with(UpperCase(extension))) {
            list.push_back(name.substr(0, name.size() - extension.size()));
        }
    }
    return list;
}

std::vector<DriveEntry> DriveList(const std::string& mountsText) {
    std::vector<DriveEntry> drives{{"/", "/", false}};
    std::istringstream mounts(mountsText);
    std::string line;
    while (std::getline(mounts, line)) {
        std::istringstream fields(line);
        std::string device, mountPoint;
        if (!(fields >> device >> mountPoint)) continue;
        bool mediaPlace = mountPoint.starts_with("/media/") || mountPoint.starts_with("/run/media/") ||
                          mountPoint.starts_with("/mnt/");
        bool floppy = FileNameOf(device).starts_with("fd");
        if (!mediaPlace && !floppy && !(device.starts_with("/dev/") && RemovableDisk(device))) continue;
        if (!mountPoint.ends_with('/')) mountPoint += '/';
        drives.push_back({mountPoint, mountPoint + (floppy ? " [Floppy Disk]" : " [Removable Drive]"), true});
    }
    return drives;
}

std::vector<DriveEntry> DriveList() {
    std::ifstream in("/proc/self/mounts");
    std::stringstream text;
    text << in.rdbuf();
    return DriveList(text.str());
}

std::vector<DirectoryChoice> DirectoryChoices(const std::string& programRoot, const std::vector<DriveEntry>& drives) {
    std::vector<DirectoryChoice> choices;
    for (const std::string& name : FillDirectories(programRoot, programRoot))
        if (name != "..") choices.push_back({name, programRoot + name + "/"});
    for (const DriveEntry& drive : drives)
        if (drive.Removable) choices.push_back({drive.Caption, drive.MountPoint});
    return choices;
}

const DirectoryChoice* FindChoice(const std::vector<DirectoryChoice>& choices, const std::string& caption) {
    for (const DirectoryChoice& choice : choices)
        if (choice.Caption == caption) return &choice;
    return nullptr;
}

bool DeleteProgramSet(const std::string& directory, const std::string& name) {
    bool all = true;
    for (const char* extension : ProgramSetExtensions)
        if (!RemoveIfThere(directory + name + extension)) all = false;
    return all;
}

bool DeleteNameSet(const std::string& directory, const std::string& name) {
    bool all = true;
    std::string stem = name + ".";
    for (const std::string& file : FileNames(directory))
        if (file.starts_with(stem) && !RemoveIfThere(directory + file)) all = false;
    return all;
}

bool CopyProgram(const std::string& fromDir, const std::string& name, const std::string& toDir,
                 const std::string& toName, std::string& fault) {
    struct Staged {
        std::string Temporary, Target;
    };
    std::vector<Staged> staged;
    auto discard = [&staged] {
        for (const Staged& s : staged) std::remove(s.Temporary.c_str());
    };
    for (const char* extension : {".prg", ".stg"}) {
        std::string source = fromDir + name + extension;
        bool program = std::string_view(extension) == ".prg";
        if (!program && !FileExists(source)) continue;
        auto bytes = ReadWholeFile(source);
        if (!bytes) {
            fault = source;
            discard();
            return false;
        }
        Staged s{toDir + toName + extension + ".part", toDir + toName + extension};
        staged.push_back(s);
        if (!WriteSynced(s.Temporary, *bytes)) {
            fault = s.Target;
            discard();
            return false;
        }
    }
    // Both copies are whole on the disk: they take their names.
    for (std::size_t i = 0; i < staged.size(); ++i) {
        if (!RenameSynced(staged[i].Temporary, staged[i].Target)) {
            fault = staged[i].Target;
            for (std::size_t j = i; j < staged.size(); ++j) std::remove(staged[j].Temporary.c_str());
            return false;
        }
    }
    return true;
}

void DeleteTempFiles(const std::string& directory) {
    for (const std::string& file : FileNames(directory))
        if (file.starts_with("Temp.")) RemoveIfThere(directory + file);
}

}  // namespace kirvana

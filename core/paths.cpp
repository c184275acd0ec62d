#include "core/paths.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include <fcntl.h>
#include <unistd.h>

#include "core/text.h"

namespace kirvana {

namespace fs = std::filesystem;

bool HasDrive(std::string_view path) {
    return (!path.empty() && path[0] == '/') || path.find(':') != std::string_view::npos;
}

std::string DriveRoot(std::string_view path) {
    if (path.empty() || path[0] != '/') return std::string(path.substr(0, 2)) + "/";
    // The longest mount point that the path lies under.
    std::string best = "/";
    std::ifstream mounts("/proc/self/mounts");
    std::string device, mountPoint, rest;
    while (mounts >> device >> mountPoint && std::getline(mounts, rest)) {
        std::string root = mountPoint.back() == '/' ? mountPoint : mountPoint + "/";
        std::string probe = std::string(path);
        if (probe.back() != '/') probe += '/';
        if (probe.starts_with(root) && root.size() > best.size()) best = root;
    }
    return best;
}

bool DriveReady(std::string_view path) {
    std::error_code error;
    fs::directory_iterator listing(DriveRoot(path), error);
    return !error;
}

std::string DirectoryPath(std::string_view name, std::string_view programRoot) {
    if (HasDrive(name)) return DriveRoot(name);
    std::string path(programRoot);
    path += Trim(name);
    path += '/';
    return path;
}

bool DirectoryExists(std::string_view name, std::string_view programRoot) {
    std::string path = DirectoryPath(name, programRoot);
    path.pop_back();
    return IsDirectory(path);
}

bool IsDirectory(const std::string& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

bool FileExists(const std::string& path) {
    std::error_code error;
    return fs::is_regular_file(path, error);
}

void NoteFile(std::string_view serviceDir, std::string_view fileName) {
    // The crash trace is rewritten before every file the system opens, so it is written in place
    // rather than through a temporary and a rename: on ext4 each rename over the old trace (and
    // each truncation to nothing) waits for its data to reach the disk, which made a selection
    // wait tens of milliseconds. The new line goes over the old one, then the file is cut to its
    // length; it is never empty in between. A trace only: a file that cannot be written doesn't
    // stop the reading it announces.
    const std::string path = std::string(serviceDir) + "LastFile.txt";
    const std::string line = std::string(fileName) + "\n";
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0) return;
    const bool written = ::pwrite(fd, line.data(), line.size(), 0) == static_cast<ssize_t>(line.size());
    if (written) (void)::ftruncate(fd, static_cast<off_t>(line.size()));
    ::close(fd);
}

std::optional<std::vector<std::string>> ReadLines(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::nullopt;
    std::vector<std::string> lines;
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(std::move(line));
    }
    if (in.bad()) return std::nullopt;
    return lines;
}

std::string ResolveNoCase(const std::string& path) {
    std::error_code error;
    if (fs::exists(path, error)) return path;
    fs::path wanted(path);
    fs::path parent = wanted.has_parent_path() ? wanted.parent_path() : fs::path(".");
    std::string name = UpperCase(wanted.filename().string());
    for (fs::directory_iterator it(parent, error), end; !error && it != end; it.increment(error)) {
        if (UpperCase(it->path().filename().string()) == name)
            return wanted.has_parent_path() ? (parent / it->path().filename()).string()
                                            : it->path().filename().string();
    }
    return path;
}

std::vector<std::string> ListDirectory(const std::string& directory, bool directories) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator it(directory, error), end; !error && it != end; it.increment(error)) {
        std::error_code kindError;
        if (it->is_directory(kindError) == directories) names.push_back(it->path().filename().string());
    }
    // Listed as the panel's original file system listed them: by name, case ignored.
    std::sort(names.begin(), names.end(),
              [](const std::string& a, const std::string& b) { return UpperCase(a) < UpperCase(b); });
    return names;
}

}  // namespace kirvana

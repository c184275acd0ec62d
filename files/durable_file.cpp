#include "files/durable_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <fstream>
#include <iterator>

namespace kirvana {

std::optional<std::string> ReadWholeFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::nullopt;
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad()) return std::nullopt;
    return text;
}

bool WriteSynced(const std::string& path, std::string_view bytes) {
    int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) return false;
    bool ok = true;
    std::size_t done = 0;
    while (ok && done < bytes.size()) {
        ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0)
            ok = false;
        else
            done += static_cast<std::size_t>(n);
    }
    if (ok && ::fsync(fd) != 0) ok = false;
    if (::close(fd) != 0) ok = false;
    if (!ok) std::remove(path.c_str());
    return ok;
}

bool RenameSynced(const std::string& from, const std::string& to) {
    if (std::rename(from.c_str(), to.c_str()) != 0) return false;
    std::string::size_type slash = to.rfind('/');
    std::string directory = slash == std::string::npos ? std::string(".") : to.substr(0, slash + 1);
    int fd = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        // The rename is made; a directory that cannot be synced is not a lost file.
        ::fsync(fd);
        ::close(fd);
    }
    return true;
}

bool ReplaceFileSynced(const std::string& path, std::string_view bytes) {
    std::string temporary = path + ".part";
    if (!WriteSynced(temporary, bytes)) return false;
    if (RenameSynced(temporary, path)) return true;
    std::remove(temporary.c_str());
    return false;
}

}  // namespace kirvana

// A fresh directory for one test, removed afterwards.
#pragma once

#include <csignal>
#include <cstdlib>
#include <sys/resource.h>
#include <filesystem>
#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace kirvana {

class TempDir {
public:
    TempDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "kirvana-XXXXXX").string();
        path_ = mkdtemp(pattern.data()) ? pattern + "/" : std::string();
    }
    ~TempDir() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::string& Path() const { return path_; }
    void Write(const std::string& name, const std::string& text) const {
        std::filesystem::create_directories(std::filesystem::path(path_ + name).parent_path());
        std::ofstream(path_ + name, std::ios::binary) << text;
    }

private:
    std::string path_;
};

// Files of this process may grow to `bytes` at most from now on: a longer write fails as on a
// full disk. For a child process of a death test.
inline void LimitFileSize(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{bytes, bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
}

// The whole text of a file, as bytes; "" when it can't be read.
inline std::string ReadFileText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// The folders of a golden corpus, one case each, in name order.
inline std::vector<std::filesystem::path> CaseFolders(const std::string& root) {
    std::vector<std::filesystem::path> cases;
    for (const auto& entry : std::filesystem::directory_iterator(root))
        if (entry.is_directory()) cases.push_back(entry.path());
    std::sort(cases.begin(), cases.end());
    return cases;
}

}  // namespace kirvana

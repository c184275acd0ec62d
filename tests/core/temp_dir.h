// A fresh directory for one test, removed afterwards.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

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

}  // namespace kirvana

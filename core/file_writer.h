// Writing a file that the system rewrites. The text goes to a temporary file beside the old one
// (its name and ".tmp"); every write and the close are checked, and only then is the temporary
// renamed over the old file. The old file is never removed first: a kill, a full disk or an I/O
// error at any moment leaves either the old file or the new one, whole.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace kirvana {

class FileWriter {
public:
    explicit FileWriter(std::string path);
    // A writer that was never closed throws its temporary away: the old file stays.
    ~FileWriter();
    FileWriter(const FileWriter&) = delete;
    FileWriter& operator=(const FileWriter&) = delete;
    FileWriter(FileWriter&& other) noexcept;
    FileWriter& operator=(FileWriter&&) = delete;

    bool IsOpen() const { return file_ != nullptr; }
    const std::string& Path() const { return path_; }
    // Writes the line and an LF.
    void Write(std::string_view line);
    // Writes the bytes as they stand.
    void WriteBytes(std::string_view bytes);
    // Closes the temporary and renames it over the file: true when the file now holds all
    // that was written. On false the temporary is gone and the old file is as it was.
    [[nodiscard]] bool Close();
    // Throws the temporary away; the old file stays.
    void Discard();

private:
    void Flush();

    std::string path_;
    std::string temporary_;
    std::FILE* file_ = nullptr;
    std::string pending_;  // text not yet handed to the file
    bool failed_ = false;
};

// The whole file through a FileWriter: the lines each ended by LF, or the bytes as they stand.
[[nodiscard]] bool WriteLines(const std::string& path, const std::vector<std::string>& lines);
[[nodiscard]] bool WriteFileText(const std::string& path, std::string_view text);

// Copies the file `from` to `to`, written as above.
[[nodiscard]] bool CopyFileOver(const std::string& from, const std::string& to);
// Puts the file `from` in the place of `to`: a rename, or where the two lie on different file
// systems a copy written as above, after which `from` is removed. `to` stays as it was on false.
[[nodiscard]] bool MoveFileOver(const std::string& from, const std::string& to);

}  // namespace kirvana

#include "core/file_writer.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

namespace kirvana {

namespace fs = std::filesystem;

FileWriter::FileWriter(std::string path) : path_(std::move(path)), temporary_(path_ + ".tmp") {
    // A temporary left by an earlier run that was cut short is taken over.
    file_ = std::fopen(temporary_.c_str(), "wb");
}

FileWriter::FileWriter(FileWriter&& other) noexcept
    : path_(std::move(other.path_)),
      temporary_(std::move(other.temporary_)),
      file_(std::exchange(other.file_, nullptr)),
      pending_(std::move(other.pending_)),
      failed_(other.failed_) {}

FileWriter::~FileWriter() { Discard(); }

void FileWriter::Write(std::string_view line) {
    if (!file_) return;
    // Lines gather in the writer's own buffer, which goes to the file in large blocks.
    pending_.append(line);
    pending_ += '\n';
    if (pending_.size() >= (1 << 16)) Flush();
}

void FileWriter::WriteBytes(std::string_view bytes) {
    if (!file_) return;
    pending_.append(bytes);
    if (pending_.size() >= (1 << 16)) Flush();
}

void FileWriter::Flush() {
    if (!pending_.empty() && std::fwrite(pending_.data(), 1, pending_.size(), file_) != pending_.size()) failed_ = true;
    pending_.clear();
}

bool FileWriter::Close() {
    if (!file_) return false;
    Flush();
    if (std::fflush(file_) != 0) failed_ = true;
    if (std::fclose(file_) != 0) failed_ = true;
    file_ = nullptr;
    if (!failed_ && std::rename(temporary_.c_str(), path_.c_str()) == 0) return true;
    // The result says the file failed; a temporary that cannot be removed is taken over by the
    // next writer of the path.
    (void)std::remove(temporary_.c_str());
    return false;
}

void FileWriter::Discard() {
    if (!file_) return;
    // What was written is thrown away: a failing close loses nothing, and a temporary that
    // cannot be removed is taken over by the next writer of the path.
    (void)std::fclose(file_);
    file_ = nullptr;
    pending_.clear();
    (void)std::remove(temporary_.c_str());
}

bool WriteLines(const std::string& path, const std::vector<std::string>& lines) {
    FileWriter out(path);
    for (const std::string& line : lines) out.Write(line);
    return out.Close();
}

bool WriteFileText(const std::string& path, std::string_view text) {
    FileWriter out(path);
    out.WriteBytes(text);
    return out.Close();
}

bool CopyFileOver(const std::string& from, const std::string& to) {
    std::error_code error;
    if (!fs::is_regular_file(from, error)) return false;
    std::ifstream in(from, std::ios::binary);
    if (!in) return false;
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    return !in.bad() && WriteFileText(to, text);
}

bool MoveFileOver(const std::string& from, const std::string& to) {
    if (std::rename(from.c_str(), to.c_str()) == 0) return true;
    if (errno != EXDEV || !CopyFileOver(from, to)) return false;
    std::error_code error;
    fs::remove(from, error);
    return true;
}

}  // namespace kirvana

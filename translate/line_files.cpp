#include "translate/line_files.h"

#include <cstdlib>
#include <sys/types.h>

namespace kirvana {

LineReader::LineReader(const std::string& path) : file_(std::fopen(path.c_str(), "rb")) {
    // Large reads: the passes read whole work files line by line.
    if (file_) std::setvbuf(file_, nullptr, _IOFBF, 1 << 16);
}

LineReader::~LineReader() {
    if (file_) std::fclose(file_);
    std::free(buffer_);
}

bool LineReader::Next(std::string_view& line) {
    if (!file_) return false;
    ssize_t read = ::getline(&buffer_, &capacity_, file_);
    if (read < 0) return false;
    std::size_t length = static_cast<std::size_t>(read);
    if (length > 0 && buffer_[length - 1] == '\n') --length;
    if (length > 0 && buffer_[length - 1] == '\r') --length;
    line = std::string_view(buffer_, length);
    return true;
}

LineWriter::LineWriter(const std::string& path) : file_(std::fopen(path.c_str(), "wb")) {
    if (file_) std::setvbuf(file_, nullptr, _IOFBF, 1 << 16);
}

LineWriter::~LineWriter() { Close(); }

void LineWriter::Write(std::string_view line) {
    if (!file_) return;
    // One thread owns the file: the unlocked calls skip the stream lock of each call.
    if (fwrite_unlocked(line.data(), 1, line.size(), file_) != line.size()) failed_ = true;
    if (fputc_unlocked('\n', file_) == EOF) failed_ = true;
}

bool LineWriter::Close() {
    if (!file_) return !failed_;
    if (std::fclose(file_) != 0) failed_ = true;
    file_ = nullptr;
    return !failed_;
}

}  // namespace kirvana

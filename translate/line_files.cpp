#include "translate/line_files.h"

#include <sys/types.h>
#include <cstdlib>
#include <cstring>

namespace kirvana {

LineReader::LineReader(const std::string& path) : file_(std::fopen(path.c_str(), "rb")) {}

LineReader::~LineReader() {
    // The file was only read: a failing close loses nothing.
    if (file_) (void)std::fclose(file_);
}

bool LineReader::Next(std::string_view& line) {
    if (!file_) return false;
    // The file is read in large blocks; a line is the text up to the next LF, and the last
    // line may end without one.
    constexpr std::size_t block = 1 << 16;
    for (;;) {
        const char* from = buffer_.data() + start_;
        const std::size_t left = buffer_.size() - start_;
        // A byte searched in a buffer, not a string: no terminator is involved.
        // NOLINTNEXTLINE(bugprone-not-null-terminated-result)
        const char* lf = static_cast<const char*>(std::memchr(from, '\n', left));
        std::size_t length;
        if (lf != nullptr) {
            length = static_cast<std::size_t>(lf - from);
            start_ += length + 1;
        } else if (end_) {
            if (left == 0) return false;
            length = left;
            start_ += length;
        } else {
            // Keep the start of a line cut by the block, and read the next block behind it.
            buffer_.erase(0, start_);
            start_ = 0;
            const std::size_t kept = buffer_.size();
            buffer_.resize(kept + block);
            const std::size_t read = std::fread(buffer_.data() + kept, 1, block, file_);
            buffer_.resize(kept + read);
            if (read == 0) end_ = true;
            continue;
        }
        if (length > 0 && from[length - 1] == '\r') --length;
        line = std::string_view(from, length);
        return true;
    }
}

}  // namespace kirvana

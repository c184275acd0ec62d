// Streaming text files for the passes: one line at a time, so that memory does not grow with
// the program. Reads LF or CRLF; the passes write through FileWriter (core/file_writer.h).
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace kirvana {

class LineReader {
public:
    explicit LineReader(const std::string& path);
    ~LineReader();
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    bool IsOpen() const { return file_ != nullptr; }
    // True when a read failed (an I/O error): the lines handed out stop short of the file's end.
    bool Failed() const { return file_ != nullptr && std::ferror(file_) != 0; }
    // The next line without its line end; false at the end of the file. The view is valid
    // until the next call.
    bool Next(std::string_view& line);

private:
    std::FILE* file_ = nullptr;
    std::string buffer_;     // text read from the file; what is not handed out yet starts at start_
    std::size_t start_ = 0;
    bool end_ = false;       // the file has nothing more to read
};

}  // namespace kirvana

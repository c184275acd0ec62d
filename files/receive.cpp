#include "files/receive.h"

#include <filesystem>
#include <utility>

#include "core/names.h"
#include "core/paths.h"
#include "core/text.h"
#include "files/durable_file.h"

namespace kirvana {

namespace fs = std::filesystem;

std::vector<std::string_view> SplitLines(std::string_view text) {
    std::vector<std::string_view> lines;
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r' && text[i] != '\n') continue;
        lines.push_back(text.substr(start, i - start));
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
        start = i + 1;
    }
    if (start < text.size()) lines.push_back(text.substr(start));
    return lines;
}

namespace {

// The trimmed text behind the mark in the line, or nothing when the line lacks the mark.
std::optional<std::string> BehindMark(std::string_view line, char mark) {
    std::string_view trimmed = Trim(line);
    std::size_t at = trimmed.find(mark);
    if (at == std::string_view::npos) return std::nullopt;
    return std::string(Trim(trimmed.substr(at + 1)));
}

std::uintmax_t FileSize(const std::string& path) {
    std::error_code error;
    std::uintmax_t size = fs::file_size(path, error);
    return error ? 0 : size;
}

// The number of new program names tried before the directory is taken as full.
constexpr int NewProgramNameLimit = 100000;
// The numbered names a refused stream may be kept under.
constexpr int KeptStreamLimit = 1000;

}  // namespace

std::string NewProgramName(const std::string& directory) {
    for (int n = 1; n <= NewProgramNameLimit; ++n) {
        std::string name = "New Program " + std::to_string(n);
        if (!FileExists(directory + name + ".prg")) return name;
    }
    return "";
}

ProgramReceiver::ProgramReceiver(const CommSettings& settings, ReceivePlaces places, std::size_t limit)
    : settings_(settings), places_(std::move(places)), limit_(limit) {}

ProgramReceiver::~ProgramReceiver() { CloseTmp(); }

void ProgramReceiver::Prepare() {
    tmpPath_ = places_.ControllerDir + "Receive.tmp";
    helpPath_ = places_.HelpDir + "Receive.hlp";
    CloseTmp();
    trailerMatch_.clear();
    end2Match_.clear();
    helpPresent_ = FileSize(helpPath_) >= 4;
}

void ProgramReceiver::OpenTmp() {
    tmp_ = std::fopen(tmpPath_.c_str(), "wb");
    tmpBytes_ = 0;
    tmpFailed_ = tmp_ == nullptr;
    tmpOverflow_ = false;
}

void ProgramReceiver::CloseTmp() {
    if (!tmp_) return;
    if (std::fclose(tmp_) != 0) tmpFailed_ = true;
    tmp_ = nullptr;
}

void ProgramReceiver::ReceiveChars(std::string_view text) {
    // 1. The work file opens for output when it is not open.
    if (!tmp_) OpenTmp();
    std::string kept;
    auto flush = [this, &kept] {
        if (tmp_ && !kept.empty() && std::fwrite(kept.data(), 1, kept.size(), tmp_) != kept.size()) tmpFailed_ = true;
        kept.clear();
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        // 1. The match buffer of SendTrailer: emptied when it is no longer the start of it.
        trailerMatch_ += c;
        if (!std::string_view(settings_.SendTrailer).starts_with(trailerMatch_)) trailerMatch_.clear();
        // 2. The buffer of ReceiveEnd2, against as many characters as the first buffer holds.
        end2Match_ += c;
        if (end2Match_ != std::string_view(settings_.ReceiveEnd2).substr(0, trailerMatch_.size())) end2Match_.clear();
        // 3. Characters of ReceiveDrop are not kept.
        bool keep = settings_.ReceiveDrop.find(c) == std::string::npos;
        // 4. The end mark: the program is filed, and the rest of the event starts a new one.
        if (!settings_.SendTrailer.empty() && trailerMatch_ == settings_.SendTrailer) {
            flush();
            CloseTmp();
            FinishReceivedProgram();
            trailerMatch_.clear();
            end2Match_.clear();
            if (i + 1 < text.size()) OpenTmp();
            continue;
        }
        // 5. Otherwise the character goes to the file as it came.
        if (!keep) continue;
        if (tmpBytes_ >= limit_) {
            tmpOverflow_ = true;
            continue;
        }
        kept += c;
        ++tmpBytes_;
    }
    flush();
    if (tmp_ && std::fflush(tmp_) != 0) tmpFailed_ = true;
}

void ProgramReceiver::FinishReceivedProgram() {
    CloseTmp();
    // 1. Nothing to file when the work file is missing or under 2 bytes.
    if (FileSize(tmpPath_) < 2) return;
    ReceivedProgram result = File();
    results_.push_back(result);
}

ReceivedProgram ProgramReceiver::File() {
    ReceivedProgram result;
    if (tmpFailed_) {
        Refuse(result, "File Fault : " + tmpPath_);
        return result;
    }
    if (tmpOverflow_) {
        Refuse(result, "Program Too Long !");
        return result;
    }
    auto stream = ReadWholeFile(tmpPath_);
    if (!stream) {
        Refuse(result, "File Fault : " + tmpPath_);
        return result;
    }
    // 2. The first line may name the directory behind character 24, the second the program
    // behind character 25.
    std::vector<std::string_view> lines = SplitLines(*stream);
    bool hasHeader = false;
    std::string directory, name;
    if (!lines.empty()) {
        if (auto behind = BehindMark(lines[0], DirectoryMark)) {
            directory = *behind;
            hasHeader = true;
        }
    }
    if (lines.size() > 1) {
        if (auto behind = BehindMark(lines[1], ProgramMark)) name = *behind;
    }
    // Names from the line must keep inside the root.
    if (!name.empty() && !AcceptableName(name)) {
        Refuse(result, InvalidProgramName);
        return result;
    }
    // 3. No directory: the current one.
    std::string directoryPath;
    if (directory.empty()) {
        directory = places_.CurrentDirectory;
        directoryPath = DirectoryPath(directory, places_.ProgramRoot);
    } else if (!AcceptableName(directory)) {
        Refuse(result, InvalidDirectoryName);
        return result;
    } else {
        directoryPath = ResolveNoCase(places_.ProgramRoot + directory) + "/";
    }
    std::error_code error;
    if (!IsDirectory(directoryPath)) fs::create_directories(directoryPath, error);
    if (!IsDirectory(directoryPath)) {
        Refuse(result, "File Fault : " + directoryPath);
        return result;
    }
    // 4. No name: a new one.
    if (name.empty()) name = NewProgramName(directoryPath);
    if (name.empty()) {
        Refuse(result, "No Free Program Name !");
        return result;
    }
    // 5, 6. The program takes the place of one of its name, whole or not at all.
    std::string target = ResolveNoCase(directoryPath + name + ".prg");
    std::string text;
    if (hasHeader) {
        for (std::string_view line : lines) {
            std::string_view trimmed = Trim(line);
            if (trimmed.empty() || trimmed.find(DirectoryMark) != std::string_view::npos ||
                trimmed.find(ProgramMark) != std::string_view::npos)
                continue;
            text.append(trimmed);
            text += '\n';
        }
    }
    if (!ReplaceFileSynced(target, hasHeader ? std::string_view(text) : std::string_view(*stream))) {
        Refuse(result, "File Fault : " + target);
        return result;
    }
    result.Filed = true;
    result.Directory = directory;
    result.Name = name;
    result.Path = target;
    // 7. Receive.hlp lists it.
    AddHelpLine(name + " : " + directory);
    return result;
}

void ProgramReceiver::Refuse(ReceivedProgram& result, std::string reason) {
    result.Refusal = std::move(reason);
    // The stream is kept under a numbered name beside Receive.tmp, for the operator to look at.
    for (int n = 1; n <= KeptStreamLimit; ++n) {
        std::string kept = places_.ControllerDir + "Receive" + std::to_string(n) + ".tmp";
        if (FileExists(kept)) continue;
        if (std::rename(tmpPath_.c_str(), kept.c_str()) == 0) result.KeptAs = kept;
        break;
    }
    if (result.KeptAs.empty()) result.KeptAs = tmpPath_;
    AddHelpLine("Refused : " + result.Refusal + " : Kept As " + FileNameOf(result.KeptAs));
}

void ProgramReceiver::AddHelpLine(const std::string& line) {
    // Opened for output when absent or under 4 bytes, for append otherwise.
    std::FILE* help = std::fopen(helpPath_.c_str(), FileSize(helpPath_) >= 4 ? "ab" : "wb");
    if (!help) return;
    std::string text = line + "\n";
    bool written = std::fwrite(text.data(), 1, text.size(), help) == text.size();
    if (std::fclose(help) == 0 && written) helpPresent_ = true;
}

std::vector<ReceivedProgram> ProgramReceiver::TakeResults() { return std::exchange(results_, {}); }

void ProgramReceiver::CloseReceiveFile() {
    CloseTmp();
    std::error_code error;
    fs::remove(tmpPath_, error);
}

}  // namespace kirvana

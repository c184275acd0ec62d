// Receiving programs: the stream of the serial line goes to Receive.tmp; each time the end mark
// has arrived the file is filed as a program, under the directory and name that the stream's
// own marks (characters 24 and 25) give, and Receive.hlp lists what arrived.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "files/comm_settings.h"

namespace kirvana {

inline constexpr char DirectoryMark = 24;  // CAN
inline constexpr char ProgramMark = 25;    // EM

// Where received programs go.
struct ReceivePlaces {
    std::string ControllerDir;     // Receive.tmp and the kept streams lie here
    std::string HelpDir;           // Receive.hlp
    std::string ProgramRoot;       // received directories lie under it
    std::string CurrentDirectory;  // the current program directory's name (or a whole path)
};

// What became of one stream.
struct ReceivedProgram {
    bool Filed = false;
    std::string Directory;  // as filed (the current directory's name when the stream named none)
    std::string Name;
    std::string Path;     // the .prg written
    std::string Refusal;  // why it was not filed
    std::string KeptAs;   // where a refused stream was kept
};

// The most a stream may hold: the rest of a longer one is not kept and it is refused.
inline constexpr std::size_t ReceiveLimit = 64u << 20;

class ProgramReceiver {
public:
    // `limit`: the most one stream may hold.
    ProgramReceiver(const CommSettings& settings, ReceivePlaces places, std::size_t limit = ReceiveLimit);
    ~ProgramReceiver();
    ProgramReceiver(const ProgramReceiver&) = delete;
    ProgramReceiver& operator=(const ProgramReceiver&) = delete;

    // OpenReceivePort step 1: names the files and clears the flags.
    void Prepare();
    // The receive event: the characters as they came.
    void ReceiveChars(std::string_view text);
    // Files Receive.tmp: nothing when it is missing or under 2 bytes.
    void FinishReceivedProgram();
    // At shutdown: the work file is closed and deleted.
    void CloseReceiveFile();

    // Receive.hlp is there with at least 4 bytes: new programs to tell of.
    bool HelpPresent() const { return helpPresent_; }
    const std::string& ReceiveTmpPath() const { return tmpPath_; }
    const std::string& ReceiveHelpPath() const { return helpPath_; }
    bool ReceiveFileOpen() const { return tmp_ != nullptr; }
    // The streams ended since the last call.
    std::vector<ReceivedProgram> TakeResults();
    void SetCurrentDirectory(std::string name) { places_.CurrentDirectory = std::move(name); }

private:
    void OpenTmp();
    void CloseTmp();
    ReceivedProgram File();
    void Refuse(ReceivedProgram& result, std::string reason);
    void AddHelpLine(const std::string& line);

    CommSettings settings_;
    ReceivePlaces places_;
    std::string tmpPath_;
    std::string helpPath_;
    std::FILE* tmp_ = nullptr;
    std::size_t limit_;
    std::size_t tmpBytes_ = 0;
    bool tmpFailed_ = false;
    bool tmpOverflow_ = false;
    bool helpPresent_ = false;
    std::string trailerMatch_;  // the match buffer for SendTrailer
    std::string end2Match_;     // the match buffer for ReceiveEnd2
    std::vector<ReceivedProgram> results_;
};

// The lines of a text whose lines end in CR, LF or CR LF (a sender's LineEnd may be any).
std::vector<std::string_view> SplitLines(std::string_view text);

// "New Program 1", "New Program 2", ...: the first name with no .prg in the directory.
std::string NewProgramName(const std::string& directory);

}  // namespace kirvana

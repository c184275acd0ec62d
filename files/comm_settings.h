// Control.cms: the serial line's settings and the framing of programs on the wire.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kirvana {

// When a send starts (StartTrigger): 0 only by the operator's FORCE.
enum StartTriggerCode : std::int16_t {
    TriggerNone = 0,
    TriggerStartChar = 1,  // "AUTO": the StartChar arrives
    TriggerAnyChar = 2,    // "ANY": any character arrives
    TriggerCts = 3,        // "CTS": CTS goes on
    TriggerDsr = 4,        // "DSR": DSR goes on
    TriggerLineEvent = 5,  // "EVENT": a line signal changes
    TriggerImmediate = 6,  // "FORCE" or "IMMEDIATE": at once
};

// Handshake bits.
inline constexpr std::int16_t HandshakeXonXoff = 1;
inline constexpr std::int16_t HandshakeRtsCts = 2;

struct CommSettings {
    std::string Line2;           // kept, not used
    std::int32_t CommPort = 0;   // 0: no transfer (unless a device path stands in line 3)
    std::string PortDevicePath;  // line 3 when it names a device ("/dev/ttyUSB0")
    std::string BaudRate, Parity, DataBits, StopBits;
    std::string Settings;  // lines 4 to 7 joined by ",": "9600,n,8,1"
    std::int16_t Handshake = 0;
    bool DtrFlag = false;
    std::int16_t StartTrigger = TriggerNone;
    char StartChar = '\0';
    std::string SendLeader;
    std::string LineEnd;
    std::string SendTrailer;
    std::string ReceiveEnd2;
    std::string SendDrop;
    std::string ReceiveDrop;
    std::int32_t Line17 = 0;  // held between 0 and 65535, kept
    std::int32_t Line18 = 0;  // kept
    // The lines that made no sense, each named with what was taken instead.
    std::vector<std::string> Problems;

    // The port's device: the path of line 3, or /dev/ttyS(n-1) for CommPort n; "" when off.
    std::string PortDevice() const;
    bool TransferOn() const { return !PortDevice().empty(); }
};

// The file's name in DataDir.
inline constexpr const char* CommSettingsFile = "Control.cms";

// Reads dataDir + "Control.cms". Nothing when the file is missing or cannot be read; missing
// or nonsense lines take their defaults and are named in Problems.
std::optional<CommSettings> ReadCommSettings(const std::string& dataDir);
// The settings from the lines of the file.
CommSettings CommSettingsFromLines(const std::vector<std::string>& lines);

// A code list: "count, code" pairs, each `count` repetitions of the character `code`; a trailing
// single number is one character. Nonsense items are left out and named in `problems`.
std::string ParseCodeList(std::string_view text, std::vector<std::string>* problems = nullptr);
// A character list: decimal codes separated by commas, each one character.
std::string ParseCharacterList(std::string_view text, std::vector<std::string>* problems = nullptr);
// The StartTrigger code of the line's words.
std::int16_t StartTriggerOf(std::string_view words);
// The numbers of the settings string as a port takes them.
struct LineSettings {
    std::int32_t BaudRate = 9600;
    char Parity = 'N';  // N, E, O, M, S
    std::int32_t DataBits = 8;
    std::int32_t StopBits = 1;  // 1 or 2 (1.5 is taken as 2)
};
LineSettings ParseLineSettings(const CommSettings& settings);

}  // namespace kirvana

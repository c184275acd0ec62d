#include "files/comm_settings.h"

#include <algorithm>
#include <cmath>

#include "core/number.h"
#include "core/paths.h"
#include "core/text.h"

namespace kirvana {

namespace {

// The longest run a code list may ask for: more is nonsense in a framing string.
constexpr double CodeCountLimit = 4096;

bool IsNumber(std::string_view item) {
    item = Trim(item);
    if (item.empty()) return false;
    for (char c : item)
        if (c < '0' || c > '9') return false;
    return true;
}

std::vector<std::string_view> CommaItems(std::string_view text) {
    std::vector<std::string_view> items;
    std::size_t start = 0;
    while (true) {
        std::size_t comma = text.find(',', start);
        items.push_back(Trim(text.substr(start, comma == std::string_view::npos ? comma : comma - start)));
        if (comma == std::string_view::npos) break;
        start = comma + 1;
    }
    return items;
}

void Note(std::vector<std::string>* problems, std::string text) {
    if (problems) problems->push_back(std::move(text));
}

// A character code 0 to 255, or nothing.
std::optional<char> CodeOf(std::string_view item) {
    if (!IsNumber(item)) return std::nullopt;
    double value = ToNumber(item);
    if (value > 255) return std::nullopt;
    return static_cast<char>(static_cast<unsigned char>(value));
}

}  // namespace

std::string CommSettings::PortDevice() const {
    if (!PortDevicePath.empty()) return PortDevicePath;
    if (CommPort <= 0) return "";
    return "/dev/ttyS" + std::to_string(CommPort - 1);
}

std::string ParseCodeList(std::string_view text, std::vector<std::string>* problems) {
    std::string result;
    if (Trim(text).empty()) return result;
    std::vector<std::string_view> items = CommaItems(text);
    for (std::size_t i = 0; i < items.size(); i += 2) {
        bool single = i + 1 == items.size();
        std::string_view countItem = single ? std::string_view("1") : items[i];
        std::string_view codeItem = single ? items[i] : items[i + 1];
        auto code = CodeOf(codeItem);
        if (!IsNumber(countItem) || !code || ToNumber(countItem) > CodeCountLimit) {
            Note(problems, "code list \"" + std::string(text) + "\": \"" + std::string(countItem) + "," +
                               std::string(codeItem) + "\" left out");
            continue;
        }
        result.append(static_cast<std::size_t>(ToNumber(countItem)), *code);
    }
    return result;
}

std::string ParseCharacterList(std::string_view text, std::vector<std::string>* problems) {
    std::string result;
    if (Trim(text).empty()) return result;
    for (std::string_view item : CommaItems(text)) {
        if (auto code = CodeOf(item))
            result += *code;
        else
            Note(problems, "character list \"" + std::string(text) + "\": \"" + std::string(item) + "\" left out");
    }
    return result;
}

std::int16_t StartTriggerOf(std::string_view words) {
    std::string upper = UpperCase(words);
    auto holds = [&upper](const char* word) { return upper.find(word) != std::string::npos; };
    if (holds("AUTO")) return TriggerStartChar;
    if (holds("FORCE") || holds("IMMEDIATE")) return TriggerImmediate;
    if (holds("EVENT")) return TriggerLineEvent;
    if (holds("DSR")) return TriggerDsr;
    if (holds("CTS")) return TriggerCts;
    if (holds("ANY")) return TriggerAnyChar;
    return TriggerNone;
}

CommSettings CommSettingsFromLines(const std::vector<std::string>& lines) {
    CommSettings s;
    auto value = [&lines](std::size_t line) {
        return line <= lines.size() ? AfterColon(lines[line - 1]) : std::string();
    };
    s.Line2 = value(2);
    std::string port = value(3);
    if (port.starts_with('/')) {
        s.PortDevicePath = port;
    } else if (!port.empty() && !IsNumber(port)) {
        s.Problems.push_back("line 3 \"" + port + "\": not a port number, the transfer is off");
    } else {
        double number = ToNumber(port);
        s.CommPort = number >= 1 && number <= 256 ? static_cast<std::int32_t>(number) : 0;
        if (number > 256) s.Problems.push_back("line 3 \"" + port + "\": no such port, the transfer is off");
    }
    s.BaudRate = value(4);
    s.Parity = value(5);
    s.DataBits = value(6);
    s.StopBits = value(7);
    s.Settings = s.BaudRate + "," + s.Parity + "," + s.DataBits + "," + s.StopBits;
    std::string handshake = UpperCase(value(8));
    if (handshake.find("XON") != std::string::npos || handshake.find("XOFF") != std::string::npos)
        s.Handshake = static_cast<std::int16_t>(s.Handshake + HandshakeXonXoff);
    if (handshake.find("RTS") != std::string::npos || handshake.find("CTS") != std::string::npos)
        s.Handshake = static_cast<std::int16_t>(s.Handshake + HandshakeRtsCts);
    s.DtrFlag = handshake.find("DTR") != std::string::npos;
    s.StartTrigger = StartTriggerOf(value(9));
    std::string start = value(10);
    if (!start.empty() && start[0] >= '0' && start[0] <= '9') {
        auto code = CodeOf(start);
        if (!code) s.Problems.push_back("line 10 \"" + start + "\": not a character code, NUL taken");
        s.StartChar = code.value_or('\0');
    } else if (!start.empty()) {
        s.StartChar = start[0];
    }
    s.SendLeader = ParseCodeList(value(11), &s.Problems);
    s.LineEnd = ParseCodeList(value(12), &s.Problems);
    s.SendTrailer = ParseCodeList(value(13), &s.Problems);
    s.ReceiveEnd2 = ParseCodeList(value(14), &s.Problems);
    s.SendDrop = ParseCharacterList(value(15), &s.Problems);
    s.ReceiveDrop = ParseCharacterList(value(16), &s.Problems);
    double line17 = ToNumber(value(17));
    s.Line17 = static_cast<std::int32_t>(std::clamp(std::trunc(line17), 0.0, 65535.0));
    double line18 = ToNumber(value(18));
    s.Line18 = std::isfinite(line18) && std::fabs(line18) < 2e9 ? static_cast<std::int32_t>(line18) : 0;
    return s;
}

std::optional<CommSettings> ReadCommSettings(const std::string& dataDir) {
    auto lines = ReadLines(ResolveNoCase(dataDir + CommSettingsFile));
    if (!lines) return std::nullopt;
    return CommSettingsFromLines(*lines);
}

LineSettings ParseLineSettings(const CommSettings& settings) {
    LineSettings line;
    double baud = ToNumber(settings.BaudRate);
    if (baud >= 50 && baud <= 4000000) line.BaudRate = static_cast<std::int32_t>(baud);
    char parity = settings.Parity.empty() ? 'N' : UpperChar(settings.Parity[0]);
    if (parity == 'N' || parity == 'E' || parity == 'O' || parity == 'M' || parity == 'S') line.Parity = parity;
    double bits = ToNumber(settings.DataBits);
    if (bits >= 5 && bits <= 8) line.DataBits = static_cast<std::int32_t>(bits);
    line.StopBits = ToNumber(settings.StopBits) > 1 ? 2 : 1;
    return line;
}

}  // namespace kirvana

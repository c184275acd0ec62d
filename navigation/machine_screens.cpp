#include "navigation/machine_screens.h"

#include <cctype>
#include <cmath>

#include "core/number.h"
#include "core/text.h"
#include "navigation/navigation.h"
#include "system/startup.h"
#include "tooling/tooling.h"

namespace kirvana {

int MnemonicOf(const std::string& caption) {
    std::size_t at = caption.find('&');
    if (at == std::string::npos || at + 1 >= caption.size()) return 0;
    return std::toupper(static_cast<unsigned char>(caption[at + 1]));
}

std::optional<JogDirection> JogDirectionOfKey(int code) {
    switch (code) {
        case key::Left:
            return JogDirection::XMinus;
        case key::Right:
            return JogDirection::XPlus;
        case key::Up:
            return JogDirection::YPlus;
        case key::Down:
            return JogDirection::YMinus;
        default:
            return std::nullopt;
    }
}

std::optional<JogOptionKey> JogOptionOfKey(int code) {
    for (int option = 0; option < JogSpeedOptions; ++option)
        if (MnemonicOf(JogSpeedCaption(option)) == code) return JogOptionKey{true, option};
    for (int option = 0; option < JogDistanceOptions; ++option)
        if (MnemonicOf(JogDistanceCaption(option)) == code) return JogOptionKey{false, option};
    return std::nullopt;
}

Refusal JogHold::Press(Process& process, Conversation& talk, JogDirection direction) {
    // A held key repeats its press: the card has its direction already.
    if (held_ && direction_ == direction) return std::nullopt;
    held_ = true;
    Refusal refusal = JogKeyDown(process, talk, direction);
    direction_ = refusal ? std::nullopt : std::optional<JogDirection>(direction);
    return refusal;
}

bool JogHold::End(Conversation& talk) {
    if (!held_) return false;
    held_ = false;
    direction_.reset();
    JogKeyUp(talk);
    return true;
}

std::array<std::string, 4> LoadBoxTexts(Conversation& talk) {
    std::array<float, 4> values = ReadLoadPositions(talk);
    return {BoxText(values[0]), BoxText(values[1]), BoxText(values[2]), BoxText(values[3])};
}

std::string BoxText(double value) { return FormatNumber(value, -1); }

std::vector<std::string> MoveStationEntries(const Process& process) {
    std::vector<std::string> entries;
    int count = std::max<int>(process.Config.Machine.StationCount, 1);
    const StationTable& table = SlotTable(process.Tools, process.Config.ActiveSlot);
    for (int n = 1; n <= count; ++n) {
        std::string entry = ZeroPad(n, 2);
        if (static_cast<std::size_t>(n) <= table.size()) {
            std::string tool(Trim(table[n - 1].ToolText));
            if (!tool.empty()) entry += "  " + tool;
        }
        entries.push_back(entry);
    }
    return entries;
}

void StepFeed(Process& process, Conversation& talk, int step) {
    auto feed = static_cast<std::int32_t>(std::lround(process.Poll.FeedOverride));
    process.Poll.FeedOverride = static_cast<float>(ChangeFeed(talk, feed, step));
}

}  // namespace kirvana

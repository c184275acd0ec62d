#include "navigation/keypad.h"

#include "core/config.h"
#include "core/paths.h"
#include "core/text.h"

namespace kirvana {

namespace {

// The fields of the file in order: separated by commas or line ends, quotes taken off.
std::vector<std::string> Fields(const std::vector<std::string>& lines) {
    std::vector<std::string> fields;
    for (const std::string& line : lines) {
        std::string field;
        bool quoted = false;
        bool any = false;
        for (char c : line) {
            if (c == '"') {
                quoted = !quoted;
                any = true;
            } else if (c == ',' && !quoted) {
                fields.emplace_back(Trim(field));
                field.clear();
                any = false;
            } else {
                field += c;
                any = true;
            }
        }
        if (any || !field.empty()) fields.emplace_back(Trim(field));
    }
    return fields;
}

bool FlagValue(const std::string& field) {
    std::string upper = UpperCase(field);
    return upper.find('Y') != std::string::npos || upper == "TRUE" || upper == "#TRUE#" || upper == "-1" ||
           upper == "1";
}

}  // namespace

KeypadConfig ReadKeypadConfig(const std::string& dataDir) {
    KeypadConfig config;
    std::string path = dataDir + "Keypad.cfg";
    auto lines = ReadLines(ResolveNoCase(path));
    if (!lines) {
        config.Note = "Keypad.cfg not found: no user keys";
        return config;
    }
    std::vector<std::string> fields = Fields(*lines);
    std::size_t at = 0;
    bool ended = false;
    while (config.Keys.size() < UserKeyCount) {
        if (at < fields.size() && fields[at] == EndMarker) {
            ended = true;
            break;
        }
        if (at + 5 > fields.size()) break;
        UserKey key;
        key.Valid = FlagValue(fields[at]);
        std::string kind = UpperCase(fields[at + 1]);
        key.Latching = !kind.empty() && (kind[0] == 'L' || kind == "1");
        key.Caption = fields[at + 2].substr(0, 12);
        key.OnText = fields[at + 3];
        key.OffText = fields[at + 4];
        config.Keys.push_back(key);
        at += 5;
    }
    if (!ended && config.Keys.size() < UserKeyCount && at < fields.size())
        config.Note = "Keypad.cfg: an entry after key " + std::to_string(config.Keys.size()) + " is incomplete";
    return config;
}

std::string UserKeyCaption(int index, const std::string& caption) {
    return std::string("(&") + static_cast<char>('A' + index - 1) + ") " + caption;
}

}  // namespace kirvana

#include "analysis/program_header.h"

#include "core/number.h"
#include "core/text.h"

namespace kirvana {

namespace {

// A word the language knows as a whole at the place, in either case.
bool KnownWordAt(std::string_view text, std::size_t at, std::size_t& length) {
    static const char* const words[] = {"RETURN", "ROUND", "TRUNC", "GOTO", "ENDIF", "ABORT", "IF"};
    // Most letters start no known word: only those that do are compared.
    switch (UpperChar(text[at])) {
        case 'R':
        case 'T':
        case 'G':
        case 'E':
        case 'A':
        case 'I':
            break;
        default:
            return false;
    }
    for (const char* word : words) {
        std::size_t n = std::char_traits<char>::length(word);
        if (at + n > text.size()) continue;
        std::size_t k = 0;
        while (k < n && UpperChar(text[at + k]) == word[k]) ++k;
        if (k == n) {
            length = n;
            return true;
        }
    }
    return false;
}

bool Digit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

bool CheckWords(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
        std::string_view text = std::string_view(line).substr(0, line.find(';'));
        for (std::size_t i = 0; i < text.size();) {
            char c = UpperChar(text[i]);
            if (IsLetter(c)) {
                // A word the language knows as a whole, or one letter followed by its value.
                std::size_t length = 0;
                if (KnownWordAt(text, i, length)) {
                    i += length;
                    continue;
                }
                std::size_t next = i + 1;
                while (next < text.size() && (text[next] == ' ' || text[next] == '\t')) ++next;
                if (next < text.size() && IsLetter(UpperChar(text[next]))) {
                    // Two letters in a row are no word of the language, except a known word.
                    std::size_t known = 0;
                    if (!KnownWordAt(text, next, known)) return false;
                }
                i = next;
                continue;
            }
            if (Digit(c) || c == ' ' || c == '\t' || c == '\r' || c == '+' || c == '-' || c == '*' || c == '/' ||
                c == '.' || c == '(' || c == ')' || c == '=' || c == '!' || c == '<' || c == '>' || c == ',' ||
                c == '\\') {
                ++i;
                continue;
            }
            return false;
        }
    }
    return true;
}

namespace {

bool NumberAt(std::string_view text, std::size_t at) {
    return at < text.size() && (Digit(text[at]) || text[at] == '.' || text[at] == '-' || text[at] == '+');
}

// The number behind the first of the keys in the text; false when none has one.
bool ValueBehind(std::string_view text, std::string_view key, float& value) {
    std::size_t at = text.find(key);
    if (at == std::string_view::npos) return false;
    at += key.size();
    while (at < text.size() && text[at] == ' ') ++at;
    if (!NumberAt(text, at)) return false;
    value = ToSingle(ToNumber(text.substr(at)));
    return true;
}

void ReadSheet(std::string_view rest, ProgramHeader& header) {
    float x = 0, y = 0;
    bool found = false;
    std::size_t px = rest.find("X=");
    std::size_t py = px == std::string_view::npos ? std::string_view::npos : rest.find("Y=", px + 2);
    if (px != std::string_view::npos && py != std::string_view::npos && NumberAt(rest, px + 2) &&
        NumberAt(rest, py + 2)) {
        x = ToSingle(ToNumber(rest.substr(px + 2)));
        y = ToSingle(ToNumber(rest.substr(py + 2)));
        found = true;
    }
    if (!found) {
        px = rest.find('X');
        py = px == std::string_view::npos ? std::string_view::npos : rest.find('Y', px + 1);
        if (px != std::string_view::npos && py != std::string_view::npos && NumberAt(rest, px + 1) &&
            NumberAt(rest, py + 1)) {
            x = ToSingle(ToNumber(rest.substr(px + 1)));
            y = ToSingle(ToNumber(rest.substr(py + 1)));
            found = true;
        }
    }
    if (!found && NumberAt(rest, 0) && rest.find('Y') == std::string_view::npos) {
        // "2500X1250": a number, "X", a number.
        std::size_t i = 0;
        if (rest[i] == '-' || rest[i] == '+') ++i;
        while (i < rest.size() && (Digit(rest[i]) || rest[i] == '.')) ++i;
        if (i < rest.size() && rest[i] == 'X' && NumberAt(rest, i + 1)) {
            x = ToSingle(ToNumber(rest));
            y = ToSingle(ToNumber(rest.substr(i + 1)));
            found = true;
        }
    }
    if (!found) return;
    if (!(x > 0) || !(y > 0)) x = y = 0;
    header.SheetX = x;
    header.SheetY = y;
}

void ReadClamps(std::string_view rest, ProgramHeader& header) {
    static const char* const forms[4][4] = {
        {"1=", "2=", "3=", "4="}, {"A=", "B=", "C=", "D="}, {"L=", "M=", "R=", nullptr}, {"L", "M", "R", nullptr}};
    for (const auto& form : forms) {
        bool any = false;
        for (int k = 0; k < 4; ++k) {
            if (form[k] && ValueBehind(rest, form[k], header.Clamps[k])) any = true;
        }
        if (any) return;
    }
}

}  // namespace

ProgramHeader ReadHeader(const std::vector<std::string>& lines) {
    ProgramHeader header;
    bool sheetFound = false;
    for (const std::string& line : lines) {
        std::string before = BeforeComment(line);
        if (before.empty()) continue;  // only lines with text in front of ";" are read
        // The header ends at the first block with a word beyond its sequence number.
        if (CountBlockWords(line) != 0) {
            header.InchHeader = FindNoCase(before, "G70") != std::string::npos;
            break;
        }
        std::string comment = AfterComment(line);
        std::string upper = UpperCase(comment);
        std::string stripped = StripBlanks(upper);
        std::size_t colon = stripped.find(':');
        std::string_view rest =
            colon == std::string::npos ? std::string_view() : std::string_view(stripped).substr(colon + 1);
        if (upper.find("MATERIAL") != std::string::npos && !header.HasMaterial) {
            std::size_t at = comment.find(':');
            if (at != std::string::npos) {
                header.Material = std::string(Trim(std::string_view(comment).substr(at + 1)));
                header.HasMaterial = true;
            }
        } else if (stripped.find("SHEET") != std::string::npos && colon != std::string::npos && !sheetFound) {
            ReadSheet(rest, header);
            sheetFound = header.SheetX > 0;
        } else if (stripped.find("CLAMP") != std::string::npos && colon != std::string::npos) {
            // The blanks part the values here: "1=300 2=900".
            ReadClamps(std::string_view(upper).substr(upper.find(':') + 1), header);
        } else if (stripped.size() > 2 && stripped[0] == 'T' && Digit(stripped[1])) {
            // "T" station "=" tool text.
            std::size_t equals = comment.find('=');
            if (equals != std::string::npos) {
                int station = static_cast<int>(ToNumber(stripped.substr(1)));
                header.Tools.emplace_back(station, std::string(Trim(std::string_view(comment).substr(equals + 1))));
            }
        }
    }
    return header;
}

}  // namespace kirvana

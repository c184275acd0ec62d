#include "core/text.h"

#include <ctime>

namespace kirvana {

namespace {
bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
}  // namespace

std::string UpperCase(std::string_view text) {
    std::string out(text);
    for (char& c : out) c = UpperChar(c);
    return out;
}

std::string_view Trim(std::string_view text) {
    std::size_t a = 0, b = text.size();
    while (a < b && IsBlank(text[a])) ++a;
    while (b > a && IsBlank(text[b - 1])) --b;
    return text.substr(a, b - a);
}

std::size_t FindNoCase(std::string_view text, std::string_view what, std::size_t from) {
    if (what.empty()) return from <= text.size() ? from : std::string_view::npos;
    // Candidates are found by their first character in either case, then compared.
    const char upper = UpperChar(what[0]);
    const char lower = (upper >= 'A' && upper <= 'Z') ? static_cast<char>(upper - 'A' + 'a') : upper;
    const std::size_t m = what.size();
    for (std::size_t i = from; i + m <= text.size(); ++i) {
        char c = text[i];
        if (c != upper && c != lower) continue;
        std::size_t k = 1;
        while (k < m && UpperChar(text[i + k]) == UpperChar(what[k])) ++k;
        if (k == m) return i;
    }
    return std::string_view::npos;
}

std::string StripBlanks(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (char c : text)
        if (c != ' ') out.push_back(c);
    return std::string(Trim(out));
}

std::string SpaceWords(std::string_view text) {
    std::string out;
    out.reserve(text.size() * 2);
    for (char c : text) {
        if (c == ' ') continue;
        if (IsLetter(c) && !out.empty()) out.push_back(' ');
        out.push_back(c);
    }
    return out;
}

std::string CollapseBlanks(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (char c : text)
        if (!(c == ' ' && !out.empty() && out.back() == ' ')) out.push_back(c);
    return out;
}

std::string RemoveWord(std::string_view block, char letter) {
    std::string out;
    out.reserve(block.size());
    char up = UpperChar(letter);
    bool skipping = false;
    for (char c : block) {
        if (UpperChar(c) == up) {
            skipping = true;
            continue;
        }
        if (skipping && (c == '-' || c == '.' || IsDigit(c))) continue;
        skipping = false;
        out.push_back(c);
    }
    return out;
}

std::string RemoveParameter(std::string_view block, int number) {
    std::string word = "P" + std::to_string(number);
    std::size_t at = FindNoCase(block, word);
    if (at == std::string_view::npos) return std::string(block);
    std::size_t i = at + word.size();
    while (i < block.size()) {
        char c = block[i];
        if (c == ' ' || c == '=' || c == '-' || c == '+' || c == '.' || IsDigit(c))
            ++i;
        else
            break;
    }
    std::string out(block.substr(0, at));
    out.append(block.substr(i));
    return out;
}

std::string StripBlockNumber(std::string_view block) {
    std::string_view text = Trim(block);
    std::string skip;
    if (!text.empty() && text[0] == '/') {
        skip = "/";
        text.remove_prefix(1);
    }
    if (text.empty() || UpperChar(text[0]) != 'N') return skip + std::string(text);
    std::size_t i = 0;
    while (i < text.size() && (UpperChar(text[i]) == 'N' || IsDigit(text[i]))) ++i;
    return skip + std::string(Trim(text.substr(i)));
}

std::string BeforeComment(std::string_view block) { return std::string(Trim(block.substr(0, block.find(';')))); }

std::string AfterComment(std::string_view block) {
    std::size_t at = block.find(';');
    return at == std::string_view::npos ? std::string() : std::string(Trim(block.substr(at + 1)));
}

std::string CutSection(std::string_view text, std::string_view startMark, std::string_view endMark) {
    std::size_t start = text.find(startMark);
    if (startMark.empty() || start == std::string_view::npos) return std::string(text);
    std::string out(Trim(text.substr(0, start)));
    if (!Trim(endMark).empty()) {
        std::size_t end = text.find(endMark, start + startMark.size());
        if (end != std::string_view::npos) {
            out += ' ';
            out += Trim(text.substr(end + endMark.size()));
        }
    }
    return out;
}

std::string TextBetween(std::string_view text, std::string_view startMark, std::string_view endMark) {
    std::size_t start = text.find(startMark);
    if (startMark.empty() || start == std::string_view::npos) return std::string();
    std::string_view behind = text.substr(start + 1);
    if (Trim(endMark).empty()) return std::string(Trim(behind));
    std::size_t end = behind.find(endMark);
    if (end == std::string_view::npos) return std::string();  // the end mark must be there
    return std::string(Trim(behind.substr(0, end)));
}

int CountBlockWords(std::string_view block) {
    std::string text = BeforeComment(block);
    int letters = 0;
    bool other = false;
    for (char c : text) {
        char up = UpperChar(c);
        if (up < 'A' || up > 'Z') continue;
        ++letters;
        if (up != 'N' && up != 'O') other = true;
    }
    return other ? letters : 0;
}

std::string AfterColon(std::string_view line) {
    std::size_t at = line.find(':');
    return std::string(Trim(at == std::string_view::npos ? line : line.substr(at + 1)));
}

std::string StripExtension(std::string_view fileName) {
    std::string_view name = Trim(fileName);
    std::size_t dot = name.rfind('.');
    return std::string(dot == std::string_view::npos ? name : name.substr(0, dot));
}

std::string FileNameOf(std::string_view path) {
    std::size_t at = path.find_last_of("/\\:");
    return std::string(at == std::string_view::npos ? path : path.substr(at + 1));
}

std::string ReportTime() {
    std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char text[32];
    std::strftime(text, sizeof text, "%d/%m/%y %H:%M", &local);
    return text;
}

}  // namespace kirvana

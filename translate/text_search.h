// The plain searches of the translation passes: blocks and codes are a few characters long,
// too short for the library's searches, and these are the passes' inner loops.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kirvana::convert {

inline constexpr auto npos = std::string::npos;

// Position of the first occurrence of a short word in a short block. A plain loop: blocks and
// codes are a few characters long, and this search is the pass's inner loop.
inline std::size_t Find(std::string_view text, std::string_view word) {
    const std::size_t n = text.size(), m = word.size();
    if (m == 0) return 0;
    if (m > n) return npos;
    const char first = word[0];
    for (std::size_t i = 0, last = n - m; i <= last; ++i) {
        if (text[i] != first) continue;
        std::size_t k = 1;
        while (k < m && text[i + k] == word[k]) ++k;
        if (k == m) return i;
    }
    return npos;
}

inline std::size_t Find(std::string_view text, char c) {
    for (std::size_t i = 0; i < text.size(); ++i)
        if (text[i] == c) return i;
    return npos;
}

inline bool Has(std::string_view text, std::string_view word) { return Find(text, word) != npos; }
inline bool Has(std::string_view text, char c) { return Find(text, c) != npos; }
inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Replaces the first occurrence; false when there is none.
inline bool ReplaceFirst(std::string& text, std::string_view from, std::string_view to) {
    std::size_t at = Find(text, from);
    if (at == npos) return false;
    text.replace(at, from.size(), to);
    return true;
}

// The digits standing directly behind position `at`.
inline std::string DigitsAfter(std::string_view text, std::size_t at) {
    std::size_t end = at + 1;
    while (end < text.size() && IsDigit(text[end])) ++end;
    return std::string(text.substr(at + 1, end - at - 1));
}

inline bool IsNumberChar(char c) { return IsDigit(c) || c == '.'; }

// The end of the number that stands behind position `letter`: signs, then digits and points.
inline std::size_t NumberEnd(std::string_view text, std::size_t letter) {
    std::size_t end = letter + 1;
    while (end < text.size() && (text[end] == '+' || text[end] == '-')) ++end;
    while (end < text.size() && IsNumberChar(text[end])) ++end;
    return end;
}

}  // namespace kirvana::convert

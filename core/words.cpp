#include "core/words.h"

#include <algorithm>
#include <cmath>

#include "core/text.h"

namespace kirvana {

namespace {

constexpr int MaxFunctionDepth = 32;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsExpressionChar(char c) {
    return IsDigit(c) || c == '.' || c == '*' || c == '/' || c == '+' || c == '-' || c == '(' || c == ')';
}

bool StartsWithWord(std::string_view text, std::size_t at, std::string_view word) {
    if (text.size() - at < word.size()) return false;
    for (std::size_t k = 0; k < word.size(); ++k)
        if (UpperChar(text[at + k]) != word[k]) return false;
    return true;
}

}  // namespace

std::size_t FindWordLetter(std::string_view block, char letter) {
    return FindWordKey(block, std::string_view(&letter, 1));
}

std::size_t FindWordKey(std::string_view block, std::string_view key) {
    if (key.empty()) return std::string_view::npos;
    bool round = key.size() == 1 && UpperChar(key[0]) == 'R';
    for (std::size_t at = FindNoCase(block, key); at != std::string_view::npos; at = FindNoCase(block, key, at + 1)) {
        if (round && StartsWithWord(block, at, "ROUND")) continue;
        return at;
    }
    return std::string_view::npos;
}

double ValueReader::ScanGroup(std::string_view group, bool& divisionByZero) {
    double accumulator = 0;
    bool haveAccumulator = false;
    char pending = 0;  // the operator waiting for the next number
    std::size_t numberStart = 0;
    bool inNumber = false;  // digits, "." or a sign are being collected
    char previous = 0;

    auto completeNumber = [&](std::size_t end) {
        if (!inNumber) return true;
        inNumber = false;
        double value = ToNumber(group.substr(numberStart, end - numberStart));
        if (!haveAccumulator) {
            accumulator = value;
            haveAccumulator = true;
            return true;
        }
        switch (pending) {
            case '+':
                accumulator += value;
                break;
            case '-':
                accumulator -= value;
                break;
            case '*':
                accumulator *= value;
                break;
            case '/':
                if (value == 0) return false;
                accumulator /= value;
                break;
            default:
                accumulator = value;
                break;  // two numbers with no operator: the later counts
        }
        return true;
    };

    std::size_t i = 0;
    for (; i < group.size(); ++i) {
        char c = group[i];
        if (c == ')') break;
        if (IsDigit(c) || c == '.') {
            if (!inNumber) {
                inNumber = true;
                numberStart = i;
            }
        } else if (c == '-' && !(IsDigit(previous) || previous == '.')) {
            // A sign of the number to come.
            if (!inNumber) {
                inNumber = true;
                numberStart = i;
            }
        } else if (c == '-' || c == '*' || c == '/' || (c == '+' && inNumber)) {
            if (!completeNumber(i)) {
                divisionByZero = true;
                return 0;
            }
            // An operator with no number in front is dropped at the start, and otherwise
            // replaces the operator waiting: "2*/3" is 2/3.
            if (haveAccumulator) pending = c;
        }
        // A "+" with no number in front is a sign with no effect; other characters are passed over.
        previous = c;
    }
    if (!completeNumber(i)) {
        divisionByZero = true;
        return 0;
    }
    return haveAccumulator ? accumulator : 0;
}

double ValueReader::EvaluateExpression(std::string_view text) {
    // A plain number (a sign, digits and points) is the number itself: the scan below gives
    // the same, so most words skip it.
    std::size_t first = !text.empty() && text[0] == '-' ? 1 : 0;
    if (first < text.size() && std::all_of(text.begin() + static_cast<std::ptrdiff_t>(first), text.end(),
                                           [](char c) { return IsDigit(c) || c == '.'; }))
        return ToNumber(text);
    // 1. Cleaning: only digits, ".", operators and parentheses stay.
    std::string s;
    s.reserve(text.size());
    long opens = 0, closes = 0;
    for (char c : text) {
        if (!IsExpressionChar(c)) continue;
        s.push_back(c);
        opens += c == '(';
        closes += c == ')';
    }
    // The search for the innermost group goes backwards; everything behind a group that
    // was just replaced holds no "(" any more, so the search resumes in front of it.
    std::size_t searchFrom = s.size();
    for (;;) {
        // 2. Unbalanced parentheses give 0.
        if (opens != closes) {
            ExpressionFault = true;
            return 0;
        }
        // 3. The innermost group: the last "(" and the first ")" behind it.
        std::size_t open = searchFrom == 0 ? std::string::npos : s.rfind('(', searchFrom - 1);
        bool grouped = open != std::string::npos;
        std::size_t groupStart = grouped ? open + 1 : 0;
        std::size_t close = grouped ? s.find(')', groupStart) : std::string::npos;
        // 4. Left-to-right scan of the group.
        bool divisionByZero = false;
        double result = ScanGroup(std::string_view(s).substr(groupStart), divisionByZero);
        if (divisionByZero) {
            ExpressionFault = true;
            return 0;
        }
        // 7. With no parenthesis left the value goes back unformatted.
        if (!grouped) return result;
        // 5. The group's result goes on as text.
        std::string formatted = FormatNumber(result, -1);
        if (formatted.find_first_of("DE") != std::string::npos) formatted = FormatNumber(RoundHalfEven(result, 5), -1);
        // 6. Put it in place of the group and start again.
        std::size_t groupEnd = close == std::string::npos ? s.size() : close + 1;
        s.replace(open, groupEnd - open, formatted);
        --opens;
        if (close != std::string::npos) --closes;
        searchFrom = open;
    }
}

bool ValueReader::AppendFunction(std::string_view block, std::size_t& i, bool round, std::string& expr) {
    // The argument runs from behind "ROUND(" / "TRUNC(" to the matching ")", which it keeps.
    std::size_t start = std::min(i + 6, block.size());
    std::size_t j = start;
    int level = 1;
    for (; j < block.size(); ++j) {
        if (block[j] == '(')
            ++level;
        else if (block[j] == ')' && --level == 0) {
            ++j;
            break;
        }
    }
    i = j;
    if (depth_ >= MaxFunctionDepth) {
        ExpressionFault = true;
        return false;
    }
    std::string argument = "D(";
    argument.append(block.substr(start, j - start));
    ++depth_;
    double value = WordValue(argument, 'D');
    --depth_;
    if (round) {
        auto whole = RoundToInt16(value);
        if (!whole) {
            IntegerOverflow = true;
            return false;
        }
        expr += IntegerText(*whole);
    } else {
        expr += FormatNumber(std::trunc(value), 3);
    }
    return true;
}

double ValueReader::WordValue(std::string_view block, std::string_view key) {
    // 1. Find the letter.
    WordMissing = false;
    std::size_t at = FindWordKey(block, key);
    if (at == std::string_view::npos) {
        WordMissing = true;
        return 0;
    }
    // 2. Collect the expression text behind it.
    std::string expr;
    std::size_t i = at + key.size();
    while (i < block.size()) {
        char c = block[i];
        char up = UpperChar(c);
        if (c == ' ') {
            ++i;
        } else if (IsExpressionChar(c)) {
            expr.push_back(c);
            ++i;
        } else if (up == 'P') {
            char two = i + 2 < block.size() ? block[i + 2] : 0;
            char three = i + 3 < block.size() ? block[i + 3] : 0;
            if (two == '=' || three == '=') break;  // an assignment, not a value
            std::int16_t number = WordInteger(block.substr(i, 3), 'P');
            if ((number >= 1 && number <= 11) || number > 99 || number < 0) break;
            expr += FormatNumber(parameters_ ? parameters_->P[number] : Number(0.0), 3);
            i += number == 0 ? 2 : 3;
        } else if (up == 'R' && StartsWithWord(block, i, "ROUND")) {
            if (!AppendFunction(block, i, true, expr)) return 0;
        } else if (up == 'T' && StartsWithWord(block, i, "TRUNC")) {
            if (!AppendFunction(block, i, false, expr)) return 0;
        } else {
            break;
        }
    }
    // 3. Evaluate what was collected.
    if (expr.empty()) {
        WordMissing = true;
        return 0;
    }
    return EvaluateExpression(expr);
}

double ValueReader::WordNumber(std::string_view block, std::string_view key) {
    WordMissing = false;
    std::size_t at = FindWordKey(block, key);
    std::size_t start = std::string_view::npos, end = 0;
    if (at != std::string_view::npos) {
        for (std::size_t i = at + key.size(); i < block.size(); ++i) {
            char c = block[i];
            if (c == ' ' && start == std::string_view::npos) continue;
            if (!IsExpressionChar(c)) break;
            if (start == std::string_view::npos) start = i;
            end = i + 1;
        }
    }
    if (start == std::string_view::npos) {
        WordMissing = true;
        return 0;
    }
    return ToNumber(block.substr(start, end - start));
}

std::int16_t ValueReader::WordInteger(std::string_view block, std::string_view key) {
    WordMissing = false;
    std::size_t at = FindWordKey(block, key);
    std::string digits;
    bool signTaken = false;
    if (at != std::string_view::npos) {
        for (std::size_t i = at + key.size(); i < block.size(); ++i) {
            char c = block[i];
            if (c == ' ') {
                if (digits.empty()) continue;
                break;
            }
            if (c == '+') continue;
            if (c == '-') {
                if (!signTaken) digits.push_back(c);
                signTaken = true;
                continue;
            }
            if (!IsDigit(c)) break;
            digits.push_back(c);
        }
    }
    if (digits.empty()) {
        WordMissing = true;
        return 0;
    }
    auto value = TruncateToInt16(ToNumber(digits));
    if (!value) {
        IntegerOverflow = true;
        return 0;
    }
    return *value;
}

void StoreAssignments(std::string_view block, ValueReader& reader, ProgramParameters& parameters) {
    constexpr int MostAssignments = 100;
    std::size_t marks[MostAssignments + 1];
    int count = 0;
    for (std::size_t i = 0; i + 3 < block.size() && count < MostAssignments; ++i)
        if (block[i] == 'P' && block[i + 3] == '=') marks[count++] = i;
    marks[count] = block.size();
    for (int k = 0; k < count; ++k) {
        std::string_view piece = block.substr(marks[k], marks[k + 1] - marks[k]);
        std::int16_t number = reader.WordInteger(piece.substr(0, 3), 'P');
        if (reader.WordMissing || number < 12 || number > 99) continue;
        double value = reader.WordValue(piece, "P" + std::to_string(number) + "=");
        parameters.P[static_cast<std::size_t>(number)] = reader.WordMissing ? -999.0 : value;
    }
}

}  // namespace kirvana

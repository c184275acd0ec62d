// Reading the value of a word out of a block, and the small ROUND/TRUNC expression evaluator.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/number.h"

namespace kirvana {

// Values P0 to P100 of the running translation pass.
struct ProgramParameters {
    std::array<Number, 101> P{};
};

// One reader per pass: it holds the flags the algorithms set, so that the caller reads
// them directly after a call, and the parameter table that P words read from.
class ValueReader {
public:
    explicit ValueReader(const ProgramParameters* parameters = nullptr) : parameters_(parameters) {}

    // True when the last requested word wasn't found or had no value.
    bool WordMissing = false;
    // Set on unbalanced parentheses, division by zero, or ROUND/TRUNC nested deeper than the
    // reader follows; never cleared by the reader. The visible result of a fault is 0.
    bool ExpressionFault = false;
    // Set when a ROUND or an integer word does not fit in 16 bits: a fault of the pass.
    bool IntegerOverflow = false;

    // Left-to-right arithmetic without precedence; parentheses are the only grouping.
    double EvaluateExpression(std::string_view text);
    // The full reader: numbers, expressions, P parameters, ROUND and TRUNC.
    double WordValue(std::string_view block, char letter) { return WordValue(block, std::string_view(&letter, 1)); }
    // The plain reader: the leading number of the collected text, no evaluation.
    double WordNumber(std::string_view block, char letter) { return WordNumber(block, std::string_view(&letter, 1)); }
    // The integer reader: sign and digits, truncated towards zero to 16 bits.
    std::int16_t WordInteger(std::string_view block, char letter) {
        return WordInteger(block, std::string_view(&letter, 1));
    }
    // The same readers for a key of several characters, such as "P8=": the value is read
    // behind the key's first occurrence.
    double WordValue(std::string_view block, std::string_view key);
    double WordNumber(std::string_view block, std::string_view key);
    std::int16_t WordInteger(std::string_view block, std::string_view key);

private:
    double ScanGroup(std::string_view group, bool& divisionByZero);
    bool AppendFunction(std::string_view block, std::size_t& i, bool round, std::string& expr);

    const ProgramParameters* parameters_;
    int depth_ = 0;
};

// The assignments "Pnn=" of the block to the program's variables P12 to P99: each runs from its
// "P" (one whose third following character is "=") to the next such word or the end of the
// block, up to 100 in a block. A value the reader can't read is stored as -999, "not given".
void StoreAssignments(std::string_view block, ValueReader& reader, ProgramParameters& parameters);

// Position of the word's letter in the block (case-insensitive); for "R" the first one that
// doesn't start "ROUND". npos when there is none.
std::size_t FindWordLetter(std::string_view block, char letter);
// The same for a key of one or more characters.
std::size_t FindWordKey(std::string_view block, std::string_view key);

}  // namespace kirvana

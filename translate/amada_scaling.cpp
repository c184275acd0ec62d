// Step 5 of the AMADA dialect pass's block walk, the number scaling: the scaling code of a
// block, and its numbers written anew by the number scaling table.
#include <charconv>
#include <cmath>
#include <cstdlib>

#include "core/number.h"
#include "core/text.h"
#include "translate/amada_steps.h"
#include "translate/text_search.h"

namespace kirvana::amada {

using namespace convert;

int ScalingCode(std::string_view block, ValueReader& reader) {
    // One walk over the "G"s finds every code the tests ask for: "G" and one digit d (the
    // forms "Gd" and "G0d"), and "G" and two digits.
    bool single[10] = {};
    bool pair[100] = {};
    bool anyG = false;
    for (std::size_t i = 0; i + 1 < block.size(); ++i) {
        if (block[i] != 'G') continue;
        anyG = true;
        const char first = block[i + 1];
        if (!IsDigit(first)) continue;
        single[first - '0'] = true;
        if (i + 2 < block.size() && IsDigit(block[i + 2])) {
            pair[(first - '0') * 10 + (block[i + 2] - '0')] = true;
            if (first == '0') single[block[i + 2] - '0'] = true;
        }
    }
    int code = anyG || Has(block, 'G') ? reader.WordInteger(block, 'G') : 0;
    // "G1" or "G01" to 1, "G2" or "G02" to 2, "G3" or "G03" to 3, "G4" or "G04" to 4.
    for (int digit = 1; digit <= 4; ++digit)
        if (single[digit]) code = digit;
    // Then the codes that keep their own number, in this order.
    for (int own : {25, 27, 26, 29, 36, 37, 66, 67, 68, 69, 78, 79, 75, 76, 98, 31})
        if (pair[own]) code = own;
    return code;
}

namespace {

bool In(int code, std::initializer_list<int> codes) {
    for (int c : codes)
        if (c == code) return true;
    return false;
}

// The number scaling table: the class of a word, 0 kept, 1 whole number, 2 length, 3
// hundredths, 4 dwell.
int WordClass(char letter, int code) {
    switch (letter) {
        case 'A':
        case 'B':
        case 'U':
        case 'V':
        case 'W':
            return 1;
        case 'K':
            if (In(code, {26, 29, 36, 98})) return 1;
            if (In(code, {68, 78})) return 3;
            return 2;
        case 'P':
            if (In(code, {31, 36, 98})) return 1;
            if (code == 29) return 3;
            return 2;
        case 'Q':
            return In(code, {31, 75, 76}) ? 1 : 2;
        case 'J':
            return In(code, {26, 29, 66, 68, 69, 78, 79}) ? 3 : 2;
        case 'X':
            return code == 4 ? 4 : 2;
        case 'D':
        case 'I':
        case 'Y':
            return 2;
        default:
            return 0;
    }
}

}  // namespace

bool ScaledInteger(std::string_view number, int decimals, std::string& out) {
    // Only a plain "-" or nothing, then up to 12 digits of which one is not 0: every other
    // form (other signs, a negative zero, long numbers) takes the general path.
    std::size_t at = 0;
    bool negative = false;
    if (at < number.size() && number[at] == '-') {
        negative = true;
        ++at;
    }
    std::string_view digits = number.substr(at);
    if (digits.empty() || digits.size() > 12) return false;
    for (char c : digits)
        if (!IsDigit(c)) return false;
    while (digits.size() > 1 && digits.front() == '0') digits.remove_prefix(1);
    if (digits == "0") {
        if (negative) return false;
    }
    if (negative) out += '-';
    const std::size_t places = static_cast<std::size_t>(decimals);
    if (places == 0) {
        out += digits;
        return true;
    }
    // The number is in units of 10^-places: the point goes `places` digits from the right.
    if (digits.size() <= places) {
        out += "0.";
        out.append(places - digits.size(), '0');
        out += digits;
    } else {
        out += digits.substr(0, digits.size() - places);
        out += '.';
        out += digits.substr(digits.size() - places);
    }
    return true;
}

std::string ScaleNumbers(std::string_view block, int code, bool inch) {
    std::string out;
    ScaleNumbers(block, code, inch, out);
    return out;
}

void ScaleNumbers(std::string_view block, int code, bool inch, std::string& out) {
    out.clear();
    out.reserve(block.size() + 16);
    std::size_t i = 0;
    while (i < block.size()) {
        char letter = block[i];
        int wordClass = letter >= 'A' && letter <= 'Z' ? WordClass(letter, code) : 0;
        if (wordClass == 0) {
            out += letter;
            ++i;
            continue;
        }
        std::size_t end = NumberEnd(block, i);
        std::string_view number = block.substr(i + 1, end - i - 1);
        bool digits = false, point = false;
        for (char c : number) {
            digits = digits || IsDigit(c);
            point = point || c == '.';
        }
        out += letter;
        if (!digits) {
            // No number: the word stays as it stands.
            out += number;
            i = end;
            continue;
        }
        if (!point && ScaledInteger(number, wordClass == 1 ? 0 : wordClass == 2 && inch ? 3 : 2, out)) {
            i = end;
            continue;
        }
        double value = ToNumber(number);
        switch (wordClass) {
            case 1:
                out += FormatNumber(value, 0);
                break;
            case 2:
                out += FormatNumber(point ? value : value / (inch ? 1000 : 100), inch ? 3 : 2);
                break;
            default:
                out += FormatNumber(point ? value : value / 100, 2);
                break;
        }
        i = end;
    }
}

}  // namespace kirvana::amada

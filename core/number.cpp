#include "core/number.h"

#include <cfloat>
#include <charconv>
#include <cmath>
#include <utility>

namespace kirvana {

int SignificantDigits(Number::Kind width) { return width == Number::Kind::Single ? 7 : 15; }

std::string ShortestText(Number value) {
    double v = value.Value;
    if (v == 0) v = 0;  // no "-0"
    if (value.Width == Number::Kind::Int16 || value.Width == Number::Kind::Int32)
        return std::to_string(static_cast<std::int64_t>(v));
    char buf[64];
    auto [end, ec] =
        std::to_chars(buf, buf + sizeof buf, v, std::chars_format::general, SignificantDigits(value.Width));
    if (ec != std::errc()) return "0";
    std::string text(buf, end);
    for (char& c : text) {
        if (c == 'e')
            c = 'E';
        else if (c == 'n' || c == 'i' || c == 'a' || c == 'f')
            c = static_cast<char>(c - 'a' + 'A');
    }
    return text;
}

std::string FormatNumber(Number value, int decimals) {
    std::string text;
    if (decimals < 0) {
        text = ShortestText(value);
        if (text.find("E-") != std::string::npos) text = "0";
    } else {
        if (decimals > 6) decimals = 6;
        Number rounded = value;
        rounded.Value = RoundHalfEven(value, decimals);
        text = ShortestText(rounded);
        if (text.find("E-") != std::string::npos) text = "0";
        // Pad to six decimals, then cut to exactly `decimals`.
        std::size_t point = text.find('.');
        if (point == std::string::npos) {
            point = text.size();
            text += ".000000";
        } else if (point == 0) {
            text = "0" + text + "000000";
            point = 1;
        } else {
            text += "000000";
        }
        text.resize(decimals == 0 ? point : point + 1 + decimals);
    }
    if (text.starts_with(".")) return "0" + text;
    if (text.starts_with("-.")) return "-0" + text.substr(1);
    return text;
}

std::string IntegerText(std::int16_t value) { return std::to_string(value); }

std::string LongText(std::int32_t value) { return std::to_string(value); }

std::string ZeroPad(std::int32_t value, int width) {
    std::string text = std::to_string(value);
    if (static_cast<int>(text.size()) >= width) return text;
    return std::string(width - text.size(), '0') + text;
}

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Parses [digits][.digits][(E|D)[sign]digits] at p; returns the end of the number or p.
const char* ScanUnsignedNumber(const char* p, const char* end, const char** exponentLetter) {
    const char* q = p;
    bool digits = false;
    while (q < end && IsDigit(*q)) {
        ++q;
        digits = true;
    }
    if (q < end && *q == '.') {
        ++q;
        while (q < end && IsDigit(*q)) {
            ++q;
            digits = true;
        }
    }
    if (!digits) return p;
    *exponentLetter = nullptr;
    if (q < end && (*q == 'E' || *q == 'e' || *q == 'D' || *q == 'd')) {
        const char* e = q + 1;
        if (e < end && (*e == '+' || *e == '-')) ++e;
        if (e < end && IsDigit(*e)) {
            *exponentLetter = q;
            while (e < end && IsDigit(*e)) ++e;
            q = e;
        }
    }
    return q;
}

}  // namespace

double ToNumber(std::string_view text) {
    const char* p = text.data();
    const char* end = p + text.size();
    while (p < end && (*p == ' ' || *p == '\t')) ++p;
    bool negative = false;
    if (p < end && (*p == '+' || *p == '-')) {
        negative = *p == '-';
        ++p;
    }
    const char* exponentLetter = nullptr;
    const char* q = ScanUnsignedNumber(p, end, &exponentLetter);
    if (q == p) return 0;
    double value = 0;
    std::from_chars_result result{};
    if (exponentLetter && (*exponentLetter == 'D' || *exponentLetter == 'd')) {
        std::string copy(p, q);
        copy[exponentLetter - p] = 'E';
        result = std::from_chars(copy.data(), copy.data() + copy.size(), value);
    } else {
        result = std::from_chars(p, q, value);
    }
    if (result.ec == std::errc::result_out_of_range) {
        // Too large reads as the largest double; too small as 0.
        const char* e = exponentLetter ? exponentLetter + 1 : q;
        value = (e < q && *e == '-') ? 0.0 : DBL_MAX;
    }
    return negative ? -value : value;
}

namespace {

// Exact decimal rounding of the number's shortest text: used only when the binary value
// lies so close to a half that the binary test could decide differently from the text.
double RoundDecimalText(double value, int places, int digits) {
    char buf[64];
    auto [end, ec] = std::to_chars(buf, buf + sizeof buf, std::fabs(value), std::chars_format::scientific, digits - 1);
    if (ec != std::errc()) return value;
    // buf is "d.ddddddE±xx": gather the mantissa digits and the exponent.
    char mantissa[32];
    int count = 0;
    const char* p = buf;
    for (; p < end && *p != 'e'; ++p)
        if (IsDigit(*p)) mantissa[count++] = *p;
    int exponent = 0;
    std::from_chars(*(p + 1) == '+' ? p + 2 : p + 1, end, exponent);
    // Digits kept: those in front of the point plus `places` behind it.
    int keep = exponent + 1 + places;
    if (keep >= count) return value;
    bool up = false;
    if (keep >= 0) {
        char next = mantissa[keep];
        bool restNonZero = false;
        for (int i = keep + 1; i < count; ++i) restNonZero |= mantissa[i] != '0';
        std::uint64_t lastKept = keep > 0 ? static_cast<std::uint64_t>(mantissa[keep - 1] - '0') : 0;
        up = next > '5' || (next == '5' && (restNonZero || (lastKept & 1)));
    }
    std::uint64_t kept = 0;
    for (int i = 0; i < keep; ++i) kept = kept * 10 + static_cast<std::uint64_t>(mantissa[i] - '0');
    if (up) ++kept;
    double result = static_cast<double>(kept) / std::pow(10.0, places);
    return value < 0 ? -result : result;
}

}  // namespace

double RoundHalfEven(Number value, int places) {
    static constexpr double Powers[16] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                          1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    if (value.Width == Number::Kind::Int16 || value.Width == Number::Kind::Int32) return value.Value;
    if (!std::isfinite(value.Value) || places > 15 || places < 0) return value.Value;
    double scale = Powers[places];
    double scaled = value.Value * scale;
    if (!(std::fabs(scaled) < 4503599627370496.0)) return value.Value;  // already whole at this scale
    double fraction = scaled - std::floor(scaled);
    double tolerance = (value.Width == Number::Kind::Single ? 1e-5 : 1e-12) * std::fmax(1.0, std::fabs(scaled));
    if (std::fabs(fraction - 0.5) <= tolerance)
        return RoundDecimalText(value.Value, places, SignificantDigits(value.Width));
    double result = std::nearbyint(scaled) / scale;
    return result == 0 ? 0.0 : result;
}

std::optional<std::int16_t> TruncateToInt16(double value) {
    double t = std::trunc(value);
    if (!(t >= -32768.0 && t <= 32767.0)) return std::nullopt;
    return static_cast<std::int16_t>(t);
}

std::optional<std::int16_t> RoundToInt16(double value) {
    double r = RoundHalfEven(value, 0);
    if (!(r >= -32768.0 && r <= 32767.0)) return std::nullopt;
    return static_cast<std::int16_t>(r);
}

std::optional<std::int32_t> RoundToInt32(double value) {
    double r = RoundHalfEven(value, 0);
    if (!(r >= -2147483648.0 && r <= 2147483647.0)) return std::nullopt;
    return static_cast<std::int32_t>(r);
}

void SwapValues(Number& a, Number& b) { std::swap(a, b); }

void SwapWords(std::int16_t& a, std::int16_t& b) { std::swap(a, b); }

}  // namespace kirvana

// Numbers as the system carries them: a variant of single, double and 16/32-bit integers,
// its text forms, reading a leading number, and half-to-even rounding.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kirvana {

// The constant of every angle conversion. The short value is deliberate: plots and arc
// geometry carry its small error throughout.
inline constexpr double Pi = 3.14159265;

// Millimetres in an inch: length words under G70, and tools and screens shown in inches.
inline constexpr double Inch = 25.4;

// "Not set" in any record field, P word or coordinate word.
inline constexpr float NoValue = -999.0f;

// A number with the width it travels in: a single gives its shortest text of up to
// 7 significant digits, a double up to 15.
struct Number {
    enum class Kind : std::uint8_t { Single, Double, Int16, Int32 };
    double Value = 0;
    Kind Width = Kind::Double;

    Number() = default;
    Number(float v) : Value(v), Width(Kind::Single) {}
    Number(double v) : Value(v), Width(Kind::Double) {}
    Number(std::int16_t v) : Value(v), Width(Kind::Int16) {}
    Number(std::int32_t v) : Value(v), Width(Kind::Int32) {}
};

// Significant digits of the shortest text of a number of this width.
int SignificantDigits(Number::Kind width);

// The shortest text of the number (up to 7 or 15 significant digits), exponent form as
// "1E+07" / "1E-05" where the platform's conversion turns to it.
std::string ShortestText(Number value);

// The text form: decimals < 0 gives the shortest text, otherwise the value rounded half to
// even to at most 6 decimals and padded or cut to exactly that many.
std::string FormatNumber(Number value, int decimals);

// Decimal text of integers; ZeroPad puts "0" in front up to width (a longer number stays whole).
std::string IntegerText(std::int16_t value);
std::string LongText(std::int32_t value);
std::string ZeroPad(std::int32_t value, int width);

// The longest leading number of the text (blanks in front skipped); 0 when there is none.
double ToNumber(std::string_view text);

// Rounds half to even to `places` decimals, deciding on the number's shortest decimal text,
// so that 1.225 rounds to 1.22 as its text says, whatever its binary value.
double RoundHalfEven(Number value, int places);

// Truncation towards zero and rounding to 16 or 32 bits; empty when the value does not fit
// (the caller reports the overflow instead of wrapping).
std::optional<std::int16_t> TruncateToInt16(double value);
std::optional<std::int16_t> RoundToInt16(double value);
std::optional<std::int32_t> RoundToInt32(double value);

// A double into a single field: values beyond the range of a single become an infinity of
// their sign, as the hardware conversion gives, instead of undefined behaviour.
float ToSingle(double value);

// Exchange two values or two 16-bit words.
void SwapValues(Number& a, Number& b);
void SwapWords(std::int16_t& a, std::int16_t& b);

}  // namespace kirvana

#include "core/number.h"

#include <gtest/gtest.h>

using namespace kirvana;

TEST(FormatNumber, ExamplesOfTheRules) {
    EXPECT_EQ(FormatNumber(2.5, 0), "2");
    EXPECT_EQ(FormatNumber(3.5, 0), "4");
    EXPECT_EQ(FormatNumber(1.2, 3), "1.200");
    EXPECT_EQ(FormatNumber(0.00000001, -1), "0");
    EXPECT_EQ(FormatNumber(-0.5, -1), "-0.5");
}

TEST(FormatNumber, SingleGivesSevenDigitsDoubleFifteen) {
    EXPECT_EQ(FormatNumber(0.1f, -1), "0.1");
    EXPECT_EQ(FormatNumber(1.0 / 3.0, -1), "0.333333333333333");
    EXPECT_EQ(FormatNumber(1.0f / 3.0f, -1), "0.3333333");
    EXPECT_EQ(FormatNumber(0.1 + 0.2, -1), "0.3");
    EXPECT_EQ(FormatNumber(static_cast<std::int16_t>(-12), -1), "-12");
    EXPECT_EQ(FormatNumber(static_cast<std::int32_t>(70000), 2), "70000.00");
}

TEST(FormatNumber, DecimalsAboveSixBecomeSix) { EXPECT_EQ(FormatNumber(1.23456789, 9), "1.234568"); }

TEST(FormatNumber, PaddingAndCutting) {
    EXPECT_EQ(FormatNumber(12.0, 2), "12.00");
    EXPECT_EQ(FormatNumber(0.5, 2), "0.50");
    EXPECT_EQ(FormatNumber(-0.25, 1), "-0.2");  // half to even
    EXPECT_EQ(FormatNumber(-0.75, 1), "-0.8");
    EXPECT_EQ(FormatNumber(123.456, 0), "123");
    EXPECT_EQ(FormatNumber(-0.4, 0), "0");
    EXPECT_EQ(FormatNumber(.125, -1), "0.125");
}

TEST(FormatNumber, SmallValuesThatWouldPrintWithNegativeExponentAreZero) {
    EXPECT_EQ(FormatNumber(0.00001, -1), "0");
    EXPECT_EQ(FormatNumber(-0.0000123, -1), "0");
    EXPECT_EQ(FormatNumber(0.0001, -1), "0.0001");
    EXPECT_EQ(FormatNumber(0.0000004, 6), "0.000000");
}

TEST(FormatNumber, PositiveExponentFallsThroughTheSameSteps) {
    EXPECT_EQ(FormatNumber(1e20, -1), "1E+20");
    EXPECT_EQ(FormatNumber(1e20, 2), "1E+20.00");
    EXPECT_EQ(FormatNumber(1e7f, -1), "1E+07");
}

TEST(RoundHalfEven, DecidesOnTheDecimalText) {
    EXPECT_DOUBLE_EQ(RoundHalfEven(1.235, 2), 1.24);
    EXPECT_DOUBLE_EQ(RoundHalfEven(1.225, 2), 1.22);
    EXPECT_DOUBLE_EQ(RoundHalfEven(1.225f, 2), 1.22);
    EXPECT_DOUBLE_EQ(RoundHalfEven(2.675, 2), 2.68);
    EXPECT_DOUBLE_EQ(RoundHalfEven(0.5, 0), 0);
    EXPECT_DOUBLE_EQ(RoundHalfEven(1.5, 0), 2);
    EXPECT_DOUBLE_EQ(RoundHalfEven(-2.5, 0), -2);
    EXPECT_DOUBLE_EQ(RoundHalfEven(-3.5, 0), -4);
    EXPECT_DOUBLE_EQ(RoundHalfEven(0.126, 2), 0.13);
    EXPECT_DOUBLE_EQ(RoundHalfEven(0.004, 2), 0);
    EXPECT_DOUBLE_EQ(RoundHalfEven(0.005, 2), 0);
    EXPECT_DOUBLE_EQ(RoundHalfEven(0.015, 2), 0.02);
    EXPECT_DOUBLE_EQ(RoundHalfEven(99.995, 2), 100);
    EXPECT_DOUBLE_EQ(RoundHalfEven(1e300, 2), 1e300);
}

TEST(ToNumber, LeadingNumber) {
    EXPECT_DOUBLE_EQ(ToNumber("  12.5mm"), 12.5);
    EXPECT_DOUBLE_EQ(ToNumber("-.5"), -0.5);
    EXPECT_DOUBLE_EQ(ToNumber("+7"), 7);
    EXPECT_DOUBLE_EQ(ToNumber("abc"), 0);
    EXPECT_DOUBLE_EQ(ToNumber(""), 0);
    EXPECT_DOUBLE_EQ(ToNumber("-"), 0);
    EXPECT_DOUBLE_EQ(ToNumber("."), 0);
    EXPECT_DOUBLE_EQ(ToNumber("1.2.3"), 1.2);
    EXPECT_DOUBLE_EQ(ToNumber("1E3"), 1000);
    EXPECT_DOUBLE_EQ(ToNumber("1D2"), 100);
    EXPECT_DOUBLE_EQ(ToNumber("2E"), 2);
    EXPECT_DOUBLE_EQ(ToNumber("12 34"), 12);
    EXPECT_DOUBLE_EQ(ToNumber("1e-999"), 0);
    EXPECT_GT(ToNumber("1e999"), 1e300);
}

TEST(IntegerTexts, NoBlankInFront) {
    EXPECT_EQ(IntegerText(5), "5");
    EXPECT_EQ(IntegerText(-32768), "-32768");
    EXPECT_EQ(LongText(2147483647), "2147483647");
    EXPECT_EQ(ZeroPad(5, 2), "05");
    EXPECT_EQ(ZeroPad(123, 2), "123");
    EXPECT_EQ(ZeroPad(7, 4), "0007");
}

TEST(IntegerConversions, ReportOverflowInsteadOfWrapping) {
    EXPECT_EQ(TruncateToInt16(-2.9), -2);
    EXPECT_EQ(TruncateToInt16(32767.9), 32767);
    EXPECT_FALSE(TruncateToInt16(32768.0));
    EXPECT_FALSE(TruncateToInt16(1e300));
    EXPECT_EQ(RoundToInt16(2.5), 2);
    EXPECT_FALSE(RoundToInt16(-32768.6));
    EXPECT_EQ(RoundToInt32(49.5), 50);
    EXPECT_FALSE(RoundToInt32(3e9));
}

TEST(Swaps, ExchangeValues) {
    Number a(1.5), b(2.5f);
    SwapValues(a, b);
    EXPECT_EQ(a.Width, Number::Kind::Single);
    EXPECT_DOUBLE_EQ(b.Value, 1.5);
    std::int16_t x = 1, y = 2;
    SwapWords(x, y);
    EXPECT_EQ(x, 2);
    EXPECT_EQ(y, 1);
}

#include "core/keys.h"

#include <gtest/gtest.h>

using namespace kirvana;

namespace {
struct CountingBeeper : Beeper {
    int beeps = 0;
    void Beep() override { ++beeps; }
};
}  // namespace

TEST(FilterKey, BackspaceAndEnterPassEverywhere) {
    CountingBeeper b;
    for (int kind : {-1, -2, -4, -5, -6, -8, -32, -321, -322, 1, 40, -99}) {
        EXPECT_EQ(FilterKey(8, kind, "", false, b), 8);
        EXPECT_EQ(FilterKey(13, kind, "12345678901234567890123456789012345678901", false, b), 13);
    }
    EXPECT_EQ(b.beeps, 0);
}

TEST(FilterKey, NumericKinds) {
    CountingBeeper b;
    EXPECT_EQ(FilterKey('5', -1, "", false, b), '5');
    EXPECT_EQ(FilterKey('-', -1, "", false, b), 0);
    EXPECT_EQ(FilterKey('-', -2, "", false, b), '-');
    EXPECT_EQ(FilterKey('.', -2, "", false, b), 0);
    EXPECT_EQ(FilterKey('.', -4, "", false, b), '.');
    EXPECT_EQ(FilterKey('-', -4, "", false, b), 0);
    EXPECT_EQ(FilterKey('-', -5, "", false, b), '-');
    EXPECT_EQ(FilterKey('*', -6, "", false, b), '*');
    EXPECT_EQ(FilterKey('(', -6, "", false, b), '(');
    EXPECT_EQ(FilterKey('A', -6, "", false, b), 0);
    EXPECT_EQ(FilterKey('.', -77, "", false, b), 0);
    EXPECT_EQ(FilterKey('7', -77, "", false, b), '7');
    EXPECT_EQ(b.beeps, 5);
}

TEST(FilterKey, NameKindsAndLengths) {
    CountingBeeper b;
    EXPECT_EQ(FilterKey('_', -8, "ABC", false, b), '_');
    EXPECT_EQ(FilterKey('A', -8, "12345678", false, b), 0);
    EXPECT_EQ(FilterKey('A', -8, "12345678", true, b), 'A');
    EXPECT_EQ(FilterKey(' ', -8, "AB", false, b), 0);
    EXPECT_EQ(FilterKey(' ', -32, "", false, b), 0);
    EXPECT_EQ(FilterKey(' ', -32, "A", false, b), ' ');
    EXPECT_EQ(FilterKey('#', -32, "A", false, b), '#');
    EXPECT_EQ(FilterKey('*', -32, "A", false, b), 0);
    EXPECT_EQ(FilterKey('_', -321, "A", false, b), 0);
    EXPECT_EQ(FilterKey('X', -321, std::string(35, 'A'), false, b), 'X');
    EXPECT_EQ(FilterKey('X', -321, std::string(36, 'A'), false, b), 0);
    EXPECT_EQ(FilterKey('*', -322, std::string(500, 'A'), false, b), '*');
    EXPECT_EQ(FilterKey('?', -322, "", false, b), '?');
}

TEST(FilterKey, LengthKinds) {
    CountingBeeper b;
    EXPECT_EQ(FilterKey(';', 10, "abc", false, b), ';');
    EXPECT_EQ(FilterKey('@', 10, "abc", false, b), '@');
    EXPECT_EQ(FilterKey('~', 10, "abc", false, b), 0);
    EXPECT_EQ(FilterKey('<', 10, "abc", false, b), 0);
    EXPECT_EQ(FilterKey('a', 3, "abc", false, b), 0);
    EXPECT_EQ(FilterKey('a', 3, "abc", true, b), 'a');
    EXPECT_EQ(FilterKey(' ', 3, "", false, b), 0);
}

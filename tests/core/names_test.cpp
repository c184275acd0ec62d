#include "core/names.h"

#include <string>

#include <gtest/gtest.h>

using namespace kirvana;

TEST(Names, PlainNamesOfOneToThirtyTwoBytes) {
    EXPECT_TRUE(AcceptableName("Dorvenis"));
    EXPECT_TRUE(AcceptableName("MY PART 2"));
    EXPECT_TRUE(AcceptableName("A.B-C_D"));
    EXPECT_TRUE(AcceptableName("\xC4\xD6 8-bit"));
    EXPECT_TRUE(AcceptableName(std::string(32, 'A')));
    EXPECT_FALSE(AcceptableName(std::string(33, 'A')));
    EXPECT_FALSE(AcceptableName(""));
}

TEST(Names, NothingThatLeadsOutOfItsFolder) {
    for (const char* name : {"../outside", "..", ".", "A..B", "a/b", "/etc", "/", "a\\b", "\\\\server",
                             "C:", "D:\\Jobs", "..\\up"})
        EXPECT_FALSE(AcceptableName(name)) << name;
}

TEST(Names, NoControlCharacters) {
    for (char c : {'\0', '\t', '\n', '\r', '\x18', '\x19', '\x1F', '\x7F'})
        EXPECT_FALSE(AcceptableName(std::string("AB") + c + "C")) << static_cast<int>(c);
    EXPECT_TRUE(AcceptableName("AB C"));
}

#include "core/text.h"

#include <gtest/gtest.h>

using namespace kirvana;

TEST(Text, StripBlanks) { EXPECT_EQ(StripBlanks(" X 10 Y 20 "), "X10Y20"); }

TEST(Text, SpaceWords) {
    EXPECT_EQ(SpaceWords("X10Y20"), "X10 Y20");
    EXPECT_EQ(SpaceWords(" G01 X1y2"), "G01 X1 y2");
    EXPECT_EQ(SpaceWords(""), "");
}

TEST(Text, CollapseBlanks) { EXPECT_EQ(CollapseBlanks("G01   X1  Y2 "), "G01 X1 Y2 "); }

TEST(Text, RemoveWord) {
    EXPECT_EQ(RemoveWord("G01 X-10.5 Y20", 'X'), "G01  Y20");
    EXPECT_EQ(RemoveWord("X1Y2X3", 'x'), "Y2");
    EXPECT_EQ(RemoveWord("N10 G01", 'Y'), "N10 G01");
}

TEST(Text, RemoveParameter) {
    EXPECT_EQ(RemoveParameter("G01 P12 = -3.5 X1", 12), "G01 X1");
    EXPECT_EQ(RemoveParameter("G01 X1", 12), "G01 X1");
    EXPECT_EQ(RemoveParameter("P20=5", 20), "");
}

TEST(Text, StripBlockNumber) {
    EXPECT_EQ(StripBlockNumber("/N120 G01"), "/G01");
    EXPECT_EQ(StripBlockNumber("  N5 X1 "), "X1");
    EXPECT_EQ(StripBlockNumber("G01 N5"), "G01 N5");
    EXPECT_EQ(StripBlockNumber("/ G01"), "/ G01");
    EXPECT_EQ(StripBlockNumber("n10N20 X1"), "X1");
}

TEST(Text, Comments) {
    EXPECT_EQ(BeforeComment(" G01 X1 ; cut "), "G01 X1");
    EXPECT_EQ(AfterComment(" G01 X1 ; cut here "), "cut here");
    EXPECT_EQ(BeforeComment(" G01 "), "G01");
    EXPECT_EQ(AfterComment("G01"), "");
}

TEST(Text, CutSection) {
    EXPECT_EQ(CutSection("abc", "(", ")"), "abc");
    EXPECT_EQ(CutSection("G01 (note) X1", "(", ")"), "G01 X1");
    EXPECT_EQ(CutSection("G01 (note) X1", "(", " "), "G01");  // a blank end mark counts as none
    EXPECT_EQ(CutSection("G01 (note) X1", "(", ""), "G01");
}

TEST(Text, TextBetween) {
    EXPECT_EQ(TextBetween("G01 (note) X1", "(", ")"), "note");
    EXPECT_EQ(TextBetween("G01 X1", "(", ")"), "");
    EXPECT_EQ(TextBetween("T1: SQ 10 ", ":", ""), "SQ 10");
    EXPECT_EQ(TextBetween("ab(cd", "(", ")"), "");
    // A longer start mark leaves its tail in the result.
    EXPECT_EQ(TextBetween("x<<y>", "<<", ">"), "<y");
}

TEST(Text, CountBlockWords) {
    EXPECT_EQ(CountBlockWords("N100"), 0);
    EXPECT_EQ(CountBlockWords("N100 X1"), 2);
    EXPECT_EQ(CountBlockWords("O12 N1"), 0);
    EXPECT_EQ(CountBlockWords("N10 ; comment G01"), 0);
    EXPECT_EQ(CountBlockWords("g01 x1 y2"), 3);
}

TEST(Text, AfterColon) {
    EXPECT_EQ(AfterColon("Card: FALSE "), "FALSE");
    EXPECT_EQ(AfterColon(" TRUE "), "TRUE");
    EXPECT_EQ(AfterColon("a: b: c"), "b: c");
}

TEST(Text, StripExtension) {
    EXPECT_EQ(StripExtension(" PLATE.PRG "), "PLATE");
    EXPECT_EQ(StripExtension("a.b.c"), "a.b");
    EXPECT_EQ(StripExtension("NONE"), "NONE");
}

TEST(Text, FileNameOf) {
    EXPECT_EQ(FileNameOf("/home/op/Jobs/A1.prg"), "A1.prg");
    EXPECT_EQ(FileNameOf("C:\\Jobs\\B.prg"), "B.prg");
    EXPECT_EQ(FileNameOf("D:X.prg"), "X.prg");
    EXPECT_EQ(FileNameOf("plain"), "plain");
}

TEST(Text, CaseHelpers) {
    EXPECT_EQ(UpperCase("abc\xe9Z"), "ABC\xe9Z");
    EXPECT_EQ(Trim("\t a b \t"), "a b");
    EXPECT_EQ(FindNoCase("G01 round(2)", "ROUND"), 4u);
}

#include "core/words.h"

#include <gtest/gtest.h>

using namespace kirvana;

TEST(EvaluateExpression, NoPrecedenceLeftToRight) {
    ValueReader r;
    EXPECT_DOUBLE_EQ(r.EvaluateExpression("2+3*4"), 20);
    EXPECT_DOUBLE_EQ(r.EvaluateExpression("2+(3*4)"), 14);
    EXPECT_DOUBLE_EQ(r.EvaluateExpression("(1+2)*(3+4)"), 21);
    EXPECT_DOUBLE_EQ(r.EvaluateExpression("-3+5"), 2);
    EXPECT_DOUBLE_EQ(r.EvaluateExpression("2*-3"), -6);
    EXPECT_FALSE(r.ExpressionFault);
}

TEST(EvaluateExpression, FaultsGiveZero) {
    ValueReader r;
    EXPECT_DOUBLE_EQ(r.EvaluateExpression("1/0"), 0);
    EXPECT_TRUE(r.ExpressionFault);
    ValueReader s;
    EXPECT_DOUBLE_EQ(s.EvaluateExpression("(1+2"), 0);
    EXPECT_TRUE(s.ExpressionFault);
    ValueReader t;
    EXPECT_DOUBLE_EQ(t.EvaluateExpression("(5-5)+3/(2-2)"), 0);
    EXPECT_TRUE(t.ExpressionFault);
}

TEST(EvaluateExpression, FaultFlagIsNeverCleared) {
    ValueReader r;
    r.EvaluateExpression("1/0");
    EXPECT_DOUBLE_EQ(r.EvaluateExpression("1+1"), 2);
    EXPECT_TRUE(r.ExpressionFault);
}

TEST(EvaluateExpression, CleaningDropsOtherCharacters) {
    ValueReader r;
    EXPECT_DOUBLE_EQ(r.EvaluateExpression(" 1 0 + a5"), 15);
    EXPECT_DOUBLE_EQ(r.EvaluateExpression(""), 0);
    EXPECT_DOUBLE_EQ(r.EvaluateExpression("+4"), 4);
    EXPECT_DOUBLE_EQ(r.EvaluateExpression("10/4"), 2.5);
    EXPECT_DOUBLE_EQ(r.EvaluateExpression("2-(-3)"), 5);
    EXPECT_DOUBLE_EQ(r.EvaluateExpression("((((7))))"), 7);
}

TEST(EvaluateExpression, InnerGroupsGoOnAsFifteenDigitText) {
    ValueReader r;
    // (1/3) becomes the text 0.333333333333333, so three of it are not quite 1.
    EXPECT_DOUBLE_EQ(r.EvaluateExpression("(1/3)*3"), 0.999999999999999);
    // The last group is not formatted.
    EXPECT_DOUBLE_EQ(r.EvaluateExpression("1/3*3"), 1.0 / 3.0 * 3.0);
}

TEST(EvaluateExpression, ParenthesesInTheWrongOrderAreUnbalanced) {
    ValueReader r;
    EXPECT_DOUBLE_EQ(r.EvaluateExpression("1)+(2"), 0);
    EXPECT_TRUE(r.ExpressionFault);
}

TEST(EvaluateExpression, DeepNestingEnds) {
    ValueReader r;
    std::string text(50000, '(');
    text += "1";
    text += std::string(50000, ')');
    EXPECT_DOUBLE_EQ(r.EvaluateExpression(text), 1);
}

TEST(WordValue, StopsAtTheNextWord) {
    ValueReader r;
    EXPECT_DOUBLE_EQ(r.WordValue("X(10+5)/3 Y2", 'X'), 5);
    EXPECT_FALSE(r.WordMissing);
    EXPECT_DOUBLE_EQ(r.WordValue("X(10+5)/3 Y2", 'y'), 2);
}

TEST(WordValue, RSkipsRound) {
    ValueReader r;
    // The plain R5 is found, not the R of ROUND; the scan behind it skips the blank and
    // takes the ROUND that follows as part of the value: "5" and "2" make 52.
    EXPECT_EQ(FindWordLetter("G01 X10 R5 ROUND(2.5)", 'R'), 8u);
    EXPECT_DOUBLE_EQ(r.WordValue("G01 X10 R5 ROUND(2.5)", 'R'), 52);
    EXPECT_DOUBLE_EQ(r.WordValue("G01 X10 R5 Y1 ROUND(2.5)", 'R'), 5);
    EXPECT_DOUBLE_EQ(r.WordValue("G01 ROUND(2.5) R7", 'R'), 7);
    r.WordValue("G01 ROUND(2.5)", 'R');
    EXPECT_TRUE(r.WordMissing);
}

TEST(WordValue, RoundIsHalfToEven) {
    ValueReader r;
    EXPECT_DOUBLE_EQ(r.WordValue("XROUND(2.5)", 'X'), 2);
    EXPECT_DOUBLE_EQ(r.WordValue("XROUND(3.5)", 'X'), 4);
    EXPECT_DOUBLE_EQ(r.WordValue("X10+ROUND((1+2)*1.5)", 'X'), 14);
}

TEST(WordValue, TruncTowardsZero) {
    ValueReader r;
    EXPECT_DOUBLE_EQ(r.WordValue("XTRUNC(-2.9)", 'X'), -2);
    EXPECT_DOUBLE_EQ(r.WordValue("XTRUNC(7.9)/2", 'X'), 3.5);
}

TEST(WordValue, RoundOutsideSixteenBitsIsAFault) {
    ValueReader r;
    EXPECT_DOUBLE_EQ(r.WordValue("XROUND(40000)", 'X'), 0);
    EXPECT_TRUE(r.IntegerOverflow);
}

TEST(WordValue, AssignmentIsNoValue) {
    ValueReader r;
    r.WordValue("X P12=5", 'X');
    EXPECT_TRUE(r.WordMissing);
    r.WordValue("XP1=5", 'X');
    EXPECT_TRUE(r.WordMissing);
}

TEST(WordValue, ParametersOneToElevenAreNotValues) {
    ProgramParameters p;
    p.P[5] = 3.0;
    ValueReader r(&p);
    r.WordValue("XP5", 'X');
    EXPECT_TRUE(r.WordMissing);
    EXPECT_DOUBLE_EQ(r.WordValue("X10P5", 'X'), 10);
}

TEST(WordValue, ParametersReadFormattedToThreeDecimals) {
    ProgramParameters p;
    p.P[12] = 2.5;
    p.P[0] = 1.23456;
    p.P[99] = -4.0f;
    ValueReader r(&p);
    EXPECT_DOUBLE_EQ(r.WordValue("XP12", 'X'), 2.5);
    EXPECT_DOUBLE_EQ(r.WordValue("X10+P12*2", 'X'), 25);
    EXPECT_DOUBLE_EQ(r.WordValue("XP0", 'X'), 1.235);
    EXPECT_DOUBLE_EQ(r.WordValue("X1-P99", 'X'), 5);
    r.WordValue("XP100", 'X');
    EXPECT_TRUE(r.WordMissing);
}

TEST(WordValue, MissingWord) {
    ValueReader r;
    EXPECT_DOUBLE_EQ(r.WordValue("G01 Y5", 'X'), 0);
    EXPECT_TRUE(r.WordMissing);
    r.WordValue("G01 X Y5", 'X');
    EXPECT_TRUE(r.WordMissing);
    EXPECT_DOUBLE_EQ(r.WordValue("G01 X0", 'X'), 0);
    EXPECT_FALSE(r.WordMissing);
}

TEST(WordValue, BlanksInsideAreSkipped) {
    ValueReader r;
    EXPECT_DOUBLE_EQ(r.WordValue("X 1 2 . 5 Y", 'X'), 12.5);
}

TEST(WordValue, DeepFunctionNestingIsAFaultNotACrash) {
    ValueReader r;
    std::string block = "X";
    for (int i = 0; i < 5000; ++i) block += "ROUND(";
    block += "1";
    block += std::string(5000, ')');
    EXPECT_DOUBLE_EQ(r.WordValue(block, 'X'), 0);
    EXPECT_TRUE(r.ExpressionFault);
}

TEST(WordNumber, NoEvaluation) {
    ValueReader r;
    EXPECT_DOUBLE_EQ(r.WordNumber("X 12.5 Y3", 'X'), 12.5);
    EXPECT_DOUBLE_EQ(r.WordNumber("X10+5", 'X'), 10);
    EXPECT_DOUBLE_EQ(r.WordNumber("X(10)", 'X'), 0);
    EXPECT_FALSE(r.WordMissing);
    EXPECT_DOUBLE_EQ(r.WordNumber("X10 5", 'X'), 10);
    r.WordNumber("XY", 'X');
    EXPECT_TRUE(r.WordMissing);
}

TEST(WordInteger, SignAndDigits) {
    ValueReader r;
    EXPECT_EQ(r.WordInteger("T12 C90", 'T'), 12);
    // The first "-" is taken where it stands, later ones are dropped: "1-23" reads as 1.
    EXPECT_EQ(r.WordInteger("T+1-2-3", 'T'), 1);
    EXPECT_EQ(r.WordInteger("T-1-2", 'T'), -12);
    EXPECT_EQ(r.WordInteger("T 7.9", 'T'), 7);
    EXPECT_EQ(r.WordInteger("T-7.9", 'T'), -7);
    r.WordInteger("TX", 'T');
    EXPECT_TRUE(r.WordMissing);
    EXPECT_EQ(r.WordInteger("T99999", 'T'), 0);
    EXPECT_TRUE(r.IntegerOverflow);
}

TEST(WordKeys, ValueBehindAKeyOfSeveralCharacters) {
    ValueReader r;
    EXPECT_DOUBLE_EQ(r.WordValue("G36 P1=25 P5=90 P8=2.5", "P8="), 2.5);
    EXPECT_DOUBLE_EQ(r.WordValue("G36 P1=25 P5=90", "P5="), 90);
    EXPECT_EQ(r.WordInteger("G26 P1=4 P3=2", "P3="), 2);
    EXPECT_DOUBLE_EQ(r.WordNumber("G26 p7=30.5", "P7="), 30.5);
    r.WordValue("G26 P1=4", "P10=");
    EXPECT_TRUE(r.WordMissing);
    EXPECT_EQ(FindWordKey("XROUND(1) R2", "R"), 10u);
    EXPECT_EQ(FindWordKey("G01", ""), std::string_view::npos);
}

TEST(WordAssignments, TheProgramsVariablesP12ToP99) {
    ProgramParameters p;
    ValueReader r(&p);
    StoreAssignments("G01P12=5X3P99=P12+2P11=4P05=6", r, p);
    EXPECT_DOUBLE_EQ(p.P[12].Value, 5);  // each piece runs to the next assignment
    EXPECT_DOUBLE_EQ(p.P[99].Value, 7);  // P12 is read as it was just assigned
    EXPECT_DOUBLE_EQ(p.P[11].Value, 0);  // the cycle parameters are not variables
    EXPECT_DOUBLE_EQ(p.P[5].Value, 0);
    p.P[20] = 1.5;
    StoreAssignments("P20=", r, p);
    EXPECT_DOUBLE_EQ(p.P[20].Value, -999);  // no value: "not given"
    StoreAssignments("P100=3", r, p);       // three digits: no "Pnn=" word
    EXPECT_DOUBLE_EQ(p.P[100].Value, 0);
}

// The rewrite rules of the Convert pass one by one, and the block pass on single blocks.
#include <gtest/gtest.h>

#include "core/text.h"
#include "translate/convert_steps.h"

namespace kirvana::convert {
namespace {

// Word ordering followed by the removal of double blanks, as the block pass runs them.
std::string Ordered(std::string_view block) {
    ValueReader reader;
    return CollapseBlanks(WordOrdering(block, reader));
}

SubroutineTable Table(std::string_view text) {
    SubroutineTable table;
    table.Read(text);
    return table;
}

// ---- Subroutine table --------------------------------------------------------------------

TEST(SubroutineTable, FindsTheFirstEntryOfAName) {
    SubroutineTable table = Table("ABC, 1\nDEF, 2\nABC, 3\n******\n");
    EXPECT_EQ(table.SubroutineNumber("abc "), 1);
    EXPECT_EQ(table.SubroutineNumber("DEF"), 2);
    EXPECT_EQ(table.SubroutineNumber("XYZ"), -1);
}

TEST(SubroutineTable, OnlyTheFirstNameIsUpperCased) {
    SubroutineTable table = Table("abc, 1\nDef, 2\n******\n");
    EXPECT_EQ(table.SubroutineNumber("abc"), 1);
    // "Def" was only trimmed: the upper-cased key "DEF" does not match it.
    EXPECT_EQ(table.SubroutineNumber("Def"), -1);
}

TEST(SubroutineTable, StopsAtAnEmptyNameAndTheEndMark) {
    EXPECT_EQ(Table(", 1\nABC, 2\n******\n").SubroutineNumber("ABC"), -1);
    EXPECT_EQ(Table("******\nABC, 2\n").SubroutineNumber("ABC"), -1);
    EXPECT_EQ(Table("").SubroutineNumber("ABC"), -1);
}

// ---- Dialect detection --------------------------------------------------------------------

std::int16_t Detect(std::initializer_list<const char*> lines) {
    DialectDetector detector;
    for (const char* line : lines) detector.Line(line);
    return detector.Dialect();
}

TEST(DialectDetection, BangInTheLastLineOnlyIsDialectZero) {
    EXPECT_EQ(Detect({"G90", "X10 Y10 T1", "M30 ! END"}), PlainDialect);
    EXPECT_EQ(Detect({"G90 ! START", "M30"}), BangDialect);
}

TEST(DialectDetection, ParenthesisWithoutProgramMarkIsDialectTwo) {
    EXPECT_EQ(Detect({"(ID,PROG,PART1)", "G90", "M30"}), PlainDialect);
    EXPECT_EQ(Detect({"(ID,PROG,PART1)", "X1 (HOLE)", "M30"}), BracketDialect);
    EXPECT_EQ(Detect({"G90", "(END,PROG)"}), PlainDialect);  // the last line never counts
}

TEST(DialectDetection, NibblingSourceCodesAreDialectTwo) {
    EXPECT_EQ(Detect({"G61 X10 R2", "M30"}), BracketDialect);
    EXPECT_EQ(Detect({"g64 X10", "M30"}), BracketDialect);
    EXPECT_EQ(Detect({"G67 X10", "M30"}), PlainDialect);
}

TEST(DialectDetection, TestOrderBangBeforeParenthesis) {
    EXPECT_EQ(Detect({"(HOLE) ! NOTE", "M30"}), BangDialect);
    EXPECT_EQ(Detect({"X1"}), PlainDialect);
    EXPECT_EQ(Detect({}), PlainDialect);
}

// ---- Dialect rewrite, dialects 0 and 1 ----------------------------------------------------

TEST(DialectRewritePlain, MessageAndProgramMarksBecomeComments) {
    SubroutineTable table;
    ValueReader reader;
    EXPECT_EQ(DialectRewritePlain("(MSG,TURN SHEET)", table, reader), "! (MSG,TURN SHEET)");
    EXPECT_EQ(DialectRewritePlain("M00 (MSG,TURN)", table, reader), "M00 ! (MSG,TURN)");
    EXPECT_EQ(DialectRewritePlain("(ID,PROG,PART1)", table, reader), "! (ID,PROG,PART1)");
    EXPECT_EQ(DialectRewritePlain("(END,PROG)", table, reader), "! (END,PROG)");
    EXPECT_EQ(DialectRewritePlain("G90 X10", table, reader), "G90 X10");
}

TEST(DialectRewritePlain, CallsGetNumberAndCount) {
    SubroutineTable table = Table("ABC, 1\nDEF, 2\n******\n");
    ValueReader reader;
    EXPECT_EQ(DialectRewritePlain("(PSUB,ABC,P0=3)", table, reader), " G68 S1 Q3 ! (PSUB,ABC,P0=3)");
    EXPECT_EQ(DialectRewritePlain("(psub,def)", table, reader), " G68 S2 Q1 ! (psub,def)");
    EXPECT_EQ(DialectRewritePlain("(PSUB,ABC,P0=0)", table, reader), " G68 S1 Q1 ! (PSUB,ABC,P0=0)");
    EXPECT_EQ(DialectRewritePlain("(PSUB,ABC,P0=-4)", table, reader), " G68 S1 Q1 ! (PSUB,ABC,P0=-4)");
    EXPECT_EQ(DialectRewritePlain("(GSUB,NONE)", table, reader), " G68 S-1 Q1 ! (GSUB,NONE)");
    EXPECT_EQ(DialectRewritePlain("G98 X10 Y10 (PSUB,DEF)", table, reader), "G98 X10 Y10  S2 ! (PSUB,DEF)");
    EXPECT_EQ(DialectRewritePlain("G68 (GSUB,ABC)", table, reader), "G68  S1 ! (GSUB,ABC)");
}

TEST(DialectRewritePlain, CountIsTheWholeNumberAfterPZero) {
    SubroutineTable table = Table("ABC, 1\n******\n");
    ValueReader reader;
    EXPECT_EQ(DialectRewritePlain("(PSUB,ABC,P0= 4.7)", table, reader), " G68 S1 Q4 ! (PSUB,ABC,P0= 4.7)");
    EXPECT_EQ(DialectRewritePlain("(PSUB,ABC,P10=4)", table, reader), " G68 S1 Q1 ! (PSUB,ABC,P10=4)");
}

TEST(DialectRewritePlain, RowsSeeTheBlockAsTheRowsBeforeLeftIt) {
    // With both G98 and G68 the two rows each insert the number.
    SubroutineTable table = Table("ABC, 1\n******\n");
    ValueReader reader;
    EXPECT_EQ(DialectRewritePlain("G98 G68 (PSUB,ABC)", table, reader), "G98 G68  S1 !  S1 ! (PSUB,ABC)");
}

TEST(DialectRewritePlain, SubroutineOpenAndClose) {
    SubroutineTable table = Table("ABC, 1\nDEF, 2\n******\n");
    ValueReader reader;
    EXPECT_EQ(DialectRewritePlain("(ID,PSUB,DEF)", table, reader), "N2000 ! (ID,PSUB,DEF)");
    EXPECT_EQ(DialectRewritePlain("(ID,GSUB,ABC)", table, reader), "N1000 ! (ID,GSUB,ABC)");
    EXPECT_EQ(DialectRewritePlain("(ID,PSUB,XYZ)", table, reader), "N-1000 ! (ID,PSUB,XYZ)");
    EXPECT_EQ(DialectRewritePlain("(END,PSUB)", table, reader), "RETURN ! (END,PSUB)");
    EXPECT_EQ(DialectRewritePlain("(END,GSUB)", table, reader), "RETURN ! (END,GSUB)");
}

TEST(SubroutineName, TextBehindSubUpToCommaOrParenthesis) {
    EXPECT_EQ(SubroutineName("(PSUB, ABC ,P0=3)"), "ABC");
    EXPECT_EQ(SubroutineName("(ID,GSUB,Holes)"), "Holes");
    EXPECT_EQ(SubroutineName("(GSUB,OPEN"), "OPEN");
    EXPECT_EQ(SubroutineName("X10"), "");
}

// ---- Dialect rewrite, dialect 2 -------------------------------------------------------------

TEST(DialectRewriteBracket, CallKeepsTheModalCodesItCutsOff) {
    SubroutineTable table = Table("5, 1\n7, 2\n******\n");
    ValueReader reader;
    EXPECT_EQ(DialectRewriteBracket("G00 X10 C5 B3", table, reader), "G00 X10  G68 S1 Q3 (5)");
    EXPECT_EQ(DialectRewriteBracket("C7 G90 M50", table, reader), " G90 M50 G68 S2 Q1 (7)");
    EXPECT_EQ(DialectRewriteBracket("X1 C9 B0 (CALL)", table, reader), "X1  G68 S-1 Q1 (9)(CALL)");
}

TEST(DialectRewriteBracket, SubroutineOpenAndEnd) {
    SubroutineTable table = Table("5, 1\n7, 2\n******\n");
    ValueReader reader;
    EXPECT_EQ(DialectRewriteBracket("S7", table, reader), "N2000  (7)");
    EXPECT_EQ(DialectRewriteBracket("N20 S5 (HOLES)", table, reader), "N1000 N20  (5)(HOLES)");
    EXPECT_EQ(DialectRewriteBracket("(ENDSUB)", table, reader), "RETURN(ENDSUB)");
    EXPECT_EQ(DialectRewriteBracket("X1 Y2 (HOLE)", table, reader), "X1 Y2(HOLE)");
}

// ---- Condition and jump -------------------------------------------------------------------

TEST(ConditionRewrite, FixedFormWithOperatorsRewritten) {
    EXPECT_EQ(ConditionRewrite("N0005 IF P12<>5 GOTO N100"), "N0005 IF (P12!=5) GOTO 100");
    EXPECT_EQ(ConditionRewrite("N0005 IF P12<=5 GOTO 7"), "N0005 IF (P12!>5) GOTO 7");
    EXPECT_EQ(ConditionRewrite("N0005 IF(P12>=5)GOTO N7"), "N0005 IF (P12!<5) GOTO 7");
    // ABORT has no target: the block ends in a blank.
    EXPECT_EQ(ConditionRewrite("N0006 IF (P12=3) ABORT"), "N0006 IF (P12=3) ABORT ");
}

TEST(ConditionRewrite, ParenthesesAroundTheWholeBlock) {
    EXPECT_EQ(ConditionRewrite("(IF P12=5 GOTO N100)"), " IF (P12=5) GOTO 100");
}

TEST(ConditionRewrite, WithoutKeywordTheLastCharacterFallsAway) {
    // The condition runs to the block's length less one: "N100" loses its last digit.
    EXPECT_EQ(ConditionRewrite("IF (P12=1) N100"), " IF (P12=1)  N10");
    EXPECT_EQ(ConditionRewrite("N1 IF P12=1"), "N1 IF (P12=)  ");
}

TEST(ConditionRewrite, EachWrappingTestOnItsOwn) {
    EXPECT_EQ(ConditionRewrite("IF (P12 GOTO 5"), " IF ((P12) GOTO 5");
    EXPECT_EQ(ConditionRewrite("IF P12>(5) GOTO 5"), " IF (P12>(5)) GOTO 5");
}

TEST(ConditionRewrite, NegativeLengthLeavesTheBlock) {
    EXPECT_EQ(ConditionRewrite("ENDIF"), "ENDIF");
    EXPECT_EQ(ConditionRewrite("N0003 ENDIF"), "N0003 ENDIF");
    EXPECT_EQ(ConditionRewrite("GOTO 5 IF"), "GOTO 5 IF");
}

TEST(JumpRewrite, AllSourceFormsReachGotoNumber) {
    EXPECT_EQ(JumpRewrite("N0010 GOTO N100"), "N0010 GOTO 100");
    EXPECT_EQ(JumpRewrite("N0010 (GOTO N100)"), "N0010 GOTO 100");
    EXPECT_EQ(JumpRewrite("N0010 ( GOTO 100 )"), "N0010 GOTO 100");
    EXPECT_EQ(JumpRewrite("N0010 (  GOTO N7)"), "N0010 GOTO 7");
    EXPECT_EQ(JumpRewrite("N0010 GOTO 100)"), "N0010 GOTO 100");
}

TEST(PositionTest, BitwiseAndOfPositions) {
    EXPECT_TRUE(PositionTest("N1 IF (P12=1) GOTO 5", "IF", "ENDIF"));
    EXPECT_FALSE(PositionTest("X10", "IF", "ENDIF"));
    EXPECT_TRUE(PositionTest("ENDIF", "IF", "ENDIF"));
    // "IF" at 1 and "ENDIF" at 5: 1 and not 5 is 0, so the test fails.
    EXPECT_FALSE(PositionTest("IF  ENDIF", "IF", "ENDIF"));
    EXPECT_TRUE(PositionTest("IF   ENDIF", "IF", "ENDIF"));
    // The rewritten conditional block also passes the jump test (18 and not 7 is 16).
    EXPECT_TRUE(PositionTest("N0005 IF (P12=5) GOTO 100", "GOTO", "IF"));
    EXPECT_FALSE(PositionTest("X GOTOIF", "GOTO", "IF"));
}

// ---- Fills ------------------------------------------------------------------------------------

TEST(ParameterFill, AddsMissingWordsInRisingOrder) {
    std::string block = "G26 X1 P3=5";
    ParameterFill(block, 1, 5, "-999");
    EXPECT_EQ(block, "G26 X1 P3=5 P1=-999 P2=-999 P4=-999 P5=-999");
    block = "P11=3";
    ParameterFill(block, 1, 1, "0");
    EXPECT_EQ(block, "P11=3 P1=0");
}

TEST(StepFill, AddsTheStepOrTakesIt) {
    ConvertState state;
    std::string block = "G01 X1";
    StepFill(block, state);
    EXPECT_EQ(block, "G01 X1 P8=2.5");
    block = "G01 X1 P8=3.2";
    StepFill(block, state);
    EXPECT_EQ(block, "G01 X1 P8=3.2");
    EXPECT_DOUBLE_EQ(state.NibbleStep, 3.2);
    block = "G01 X1 P7=4";
    StepFill(block, state);
    EXPECT_EQ(block, "G01 X1 P7=4");
    block = "G01 X1 P9=1";
    StepFill(block, state);
    EXPECT_EQ(block, "G01 X1 P9=1");
}

TEST(StepFill, StepIsRoundedHalfToEvenToTwoDecimals) {
    ConvertState state;
    state.NibbleStep = 2.125;
    std::string block = "X1";
    StepFill(block, state);
    EXPECT_EQ(block, "X1 P8=2.12");
    state.NibbleStep = 2.135;
    block = "X1";
    StepFill(block, state);
    EXPECT_EQ(block, "X1 P8=2.14");
    state.NibbleStep = 3;
    block = "X1";
    StepFill(block, state);
    EXPECT_EQ(block, "X1 P8=3");
}

TEST(G65StepRule, RadiusWordIsTheStep) {
    ConvertState state;
    std::string block = "G65 X1 Y1 I10 J5 R2";
    G65StepRule(block, state);
    EXPECT_EQ(block, "G65 X1 Y1 I10 J5 P8=2");
    EXPECT_DOUBLE_EQ(state.NibbleStep, 2);
    block = "G65 I10 J5";
    G65StepRule(block, state);
    EXPECT_EQ(block, "G65 I10 J5 P8=2");
}

// ---- Modal fills ------------------------------------------------------------------------------

TEST(ModalFillMotion, AddsTheCodeWithoutBlank) {
    ConvertState state;
    std::string block = "N0002 X10 Y5";
    ModalFillMotion(block, 1, state);
    EXPECT_EQ(block, "N0002 X10 Y5G01");
    EXPECT_EQ(state.MotionMode, 1);
    state.ArcMode = 2;
    block = "N0003 G02 X1 Y1 I1 J0";
    ModalFillMotion(block, 2, state);
    EXPECT_EQ(block, "N0003 G02 X1 Y1 I1 J0");
    EXPECT_EQ(state.MotionMode, 2);
    EXPECT_EQ(state.ArcMode, 0);
}

TEST(ModalFillMotion, Exclusions) {
    for (const char* block : {"G00 X1", "G02 X1", "G03 X1", "G101 X1", "G102 X1", "G103 X1", "G04 X1", "G92 X1",
                              "G56 X1", "G53 X1", "M60 Y1", "M50 X1", "M30", "P8=2"}) {
        ConvertState state;
        state.MotionMode = 3;
        std::string text = block;
        ModalFillMotion(text, 1, state);
        EXPECT_EQ(text, block);
        EXPECT_EQ(state.MotionMode, 3) << block;
    }
}

TEST(ModalFillArc, InsertsTheCodeAtTheFirstAxisWord) {
    ConvertState state;
    ConvertSettings settings;
    std::string block = "N0002 Y5 X3";
    ModalFillArc(block, 1, state, settings);
    EXPECT_EQ(block, "N0002  G101 Y5 X3");
    EXPECT_EQ(state.ArcMode, 1);
    block = "N0003 V5";
    ModalFillArc(block, 3, state, settings);
    EXPECT_EQ(block, "N0003  G103 V5");
    EXPECT_EQ(state.ArcMode, 2);  // G103 leaves the mode at 2
    block = "N0004 G01 X5";
    ModalFillArc(block, 2, state, settings);
    EXPECT_EQ(block, "N0004 G01 X5");
}

TEST(ModalFillArc, ProfilerSwapAndCentre) {
    ConvertState state;
    ConvertSettings settings;
    settings.ProfilerArcSwap = true;
    settings.ProfilerArcCentre = true;
    std::string block = "G102 X10 Y0 I5 J0";
    ModalFillArc(block, 2, state, settings);
    EXPECT_EQ(block, "G103 X10 Y0 I-5 J0 ");
    block = "G101 X10 I5";
    ModalFillArc(block, 1, state, settings);
    EXPECT_EQ(block, "G101 X10 I5");
}

TEST(RewriteCentre, NegatesIAndJ) {
    ValueReader reader;
    std::string block = "G02 X10 Y0 I5 J-2.5";
    RewriteCentre(block, reader);
    EXPECT_EQ(block, "G02 X10 Y0 I-5 J2.5 ");
    block = "G02 I5 P8=2";
    RewriteCentre(block, reader);
    EXPECT_EQ(block, "G02 I-5 P8=2");
    block = "G02 X1";
    RewriteCentre(block, reader);
    EXPECT_EQ(block, "G02 X1");
}

// ---- G77 and implicit hit -------------------------------------------------------------------

TEST(G77Rule, InsertsG80AndRemovesG77) {
    ConvertState state;
    std::string block = "N0003 G77 X10 Y5";
    G77Rule(block, state);
    EXPECT_EQ(block, "N0003   G80 X10 Y5");
    block = "G77 Y5 X10";
    G77Rule(block, state);
    EXPECT_EQ(block, "  G80 Y5 X10");
    block = "G77 C90";
    G77Rule(block, state);
    EXPECT_EQ(block, "  G80 C90");
    block = "G77 T5";
    G77Rule(block, state);
    EXPECT_EQ(block, "  G80 T5");
    block = "G77";
    G77Rule(block, state);
    EXPECT_EQ(block, "");
    state.ProfilerMode = true;
    block = "G77 X1";
    G77Rule(block, state);
    EXPECT_EQ(block, "G77 X1");
}

TEST(ImplicitHitRule, HitsAtTheFirstWordOrSelectsTheTool) {
    ConvertState state;
    std::string block = "N0001 X10 T12";
    ImplicitHitRule(block, state);
    EXPECT_EQ(block, "N0001  G81 X10 T12");
    block = "N0001 T12";
    ImplicitHitRule(block, state);
    EXPECT_EQ(block, "N0001  G80 T12");
    block = "N0001 C45";
    ImplicitHitRule(block, state);
    EXPECT_EQ(block, "N0001  G81 C45");
    block = "N0001 M08";
    ImplicitHitRule(block, state);
    EXPECT_EQ(block, "N0001 M08");
    state.ProfilerMode = true;
    block = "N0001 X10";
    ImplicitHitRule(block, state);
    EXPECT_EQ(block, "N0001 X10");
}

// ---- Word ordering ----------------------------------------------------------------------------

TEST(WordOrdering, CanonicalGroups) {
    EXPECT_EQ(Ordered("N0001 G01 G90 X10 P20=5 T5 M12 M00 P8=2"), "N0001 P8=2 G90 G01 X10 P20=5 T5 M12 M00");
    EXPECT_EQ(Ordered("N0002 X10 Y20G01 P8=2.5 P6=-999"), "N0002 P8=2.5 P6=-999 G01 X10 Y20");
    // The last code moved stands first.
    EXPECT_EQ(Ordered("N0003 G01 G70 G90"), "N0003 G70 G90 G01");
    EXPECT_EQ(Ordered("N0003 G71 G90 G53"), "N0003 G71 G90 G53");
}

TEST(WordOrdering, JumpsAndConditionsStay) {
    ValueReader reader;
    EXPECT_EQ(WordOrdering("N0005 IF (P12=5) GOTO 100", reader), "N0005 IF (P12=5) GOTO 100");
    EXPECT_EQ(WordOrdering("X1 GOTO 5", reader), "X1 GOTO 5");
    EXPECT_EQ(WordOrdering("ENDIF", reader), "ENDIF");
}

TEST(WordOrdering, MCodesAreCutAsSubstrings) {
    // "M87" stands inside "M875=1" and "M10" inside "M100": both are cut out of the longer word.
    EXPECT_EQ(Ordered("N10 G81 X1 M875=1"), "N10 G81 X1 M87 5=1");
    EXPECT_EQ(Ordered("N0001 M100"), "N0001 M10 0");
    EXPECT_EQ(Ordered("N0001 M101"), "N0001 M10 1");
}

TEST(WordOrdering, TextInFrontOfTheFirstLetterStaysInFront) {
    EXPECT_EQ(Ordered("/ G81 X1"), "/ G81 X1");
    EXPECT_EQ(Ordered("N0001 / G81 X1"), "N0001 / G81 X1");
    // A P word of 13 or more stays with the group in front of it.
    EXPECT_EQ(Ordered("N1 X5 P20=1 G01"), "N1 G01 X5 P20=1");
}

// ---- Sheet size -------------------------------------------------------------------------------

TEST(SheetSize, TheThreeForms) {
    auto size = SheetSize(" ;SHEET SIZE : 2500 x 1250");
    ASSERT_TRUE(size);
    EXPECT_EQ(size->first, 2500.0f);
    EXPECT_EQ(size->second, 1250.0f);
    size = SheetSize(" ;sheet: X1000 Y500.5");
    ASSERT_TRUE(size);
    EXPECT_EQ(size->first, 1000.0f);
    EXPECT_EQ(size->second, 500.5f);
    size = SheetSize(" ;SHEET : X=300 Y=200");
    ASSERT_TRUE(size);
    EXPECT_EQ(size->first, 300.0f);
    EXPECT_EQ(size->second, 200.0f);
}

TEST(SheetSize, InvalidSizesReadAsZero) {
    auto size = SheetSize(" ;SHEET:0X100");
    ASSERT_TRUE(size);
    EXPECT_EQ(size->first, 0.0f);
    EXPECT_EQ(size->second, 0.0f);
    EXPECT_FALSE(SheetSize(" ;SHEET SIZE 2500X1250"));
    EXPECT_FALSE(SheetSize(" ;MATERIAL : X"));
    EXPECT_FALSE(SheetSize(" ;SHEET:2500X1250Y"));
}

}  // namespace
}  // namespace kirvana::convert

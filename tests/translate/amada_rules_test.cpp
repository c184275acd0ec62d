// The rewrite rules of the AMADA dialect pass one by one, and its block pass on single blocks.
// Every expected text below was worked out by hand from the pass's rules.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "core/paths.h"
#include "tests/core/temp_dir.h"

#include "core/number.h"
#include "translate/amada.h"
#include "translate/amada_steps.h"

namespace kirvana::amada {
namespace {

using convert::BlockContext;
using convert::BlockPass;
using convert::ConvertState;
using convert::SubroutineTable;

// The block pass over single lines, with the state kept between them.
struct Pass {
    ConvertSettings Settings;
    ConvertState State;
    AmadaState Amada;
    SubroutineTable Table;
    BlockPass Which;

    explicit Pass(BlockPass which = BlockPass::Main, std::string_view table = "1, 1\n7, 2\n******\n") : Which(which) {
        Table.Read(table);
        convert::StartBlockPass(State, Which);
    }
    std::string Block(std::string_view line) {
        return AmadaBlock(State, Amada, BlockContext{Settings, convert::AmadaDialect, Which, Table}, line);
    }
};

// ---- Number scaling -------------------------------------------------------------------------

TEST(AmadaScaling, LengthsWithoutPointAreHundredthsInMetricAndThousandthsInInch) {
    EXPECT_EQ(ScaleNumbers("X1000Y2000", 0, false), "X10.00Y20.00");
    EXPECT_EQ(ScaleNumbers("X10.5", 0, false), "X10.50");
    EXPECT_EQ(ScaleNumbers("X1000", 0, true), "X1.000");
    EXPECT_EQ(ScaleNumbers("X10.5", 0, true), "X10.500");
    EXPECT_EQ(ScaleNumbers("Y-2500D5I12.3456", 0, false), "Y-25.00D0.05I12.35");
    EXPECT_EQ(ScaleNumbers("I12.3456", 0, true), "I12.346");
}

TEST(AmadaScaling, DwellIsHundredthsInBothUnitModes) {
    EXPECT_EQ(ScaleNumbers("G04X250", 4, false), "G04X2.50");
    EXPECT_EQ(ScaleNumbers("G04X250", 4, true), "G04X2.50");
    EXPECT_EQ(ScaleNumbers("G04X2.5", 4, true), "G04X2.50");
}

TEST(AmadaScaling, WholeNumberClass) {
    EXPECT_EQ(ScaleNumbers("A45B3U7.6W12V2.5", 0, false), "A45B3U8W12V2");
    EXPECT_EQ(ScaleNumbers("K5", 26, false), "K5");
    EXPECT_EQ(ScaleNumbers("K5", 29, true), "K5");
    EXPECT_EQ(ScaleNumbers("P3K2", 98, false), "P3K2");
    EXPECT_EQ(ScaleNumbers("P1Q0", 31, false), "P1Q0");
    EXPECT_EQ(ScaleNumbers("P4K3", 36, false), "P4K3");
    EXPECT_EQ(ScaleNumbers("Q2", 75, false), "Q2");
    EXPECT_EQ(ScaleNumbers("Q4", 76, false), "Q4");
}

TEST(AmadaScaling, HundredthsClassIgnoresTheUnitMode) {
    EXPECT_EQ(ScaleNumbers("J4500", 66, true), "J45.00");
    EXPECT_EQ(ScaleNumbers("J4500", 26, true), "J45.00");
    EXPECT_EQ(ScaleNumbers("J4500", 0, true), "J4.500");
    EXPECT_EQ(ScaleNumbers("K5", 68, true), "K0.05");
    EXPECT_EQ(ScaleNumbers("K5", 78, false), "K0.05");
    EXPECT_EQ(ScaleNumbers("K5", 0, true), "K0.005");
    EXPECT_EQ(ScaleNumbers("P250", 29, true), "P2.50");
    EXPECT_EQ(ScaleNumbers("P250", 0, true), "P0.250");
    EXPECT_EQ(ScaleNumbers("Q2", 0, false), "Q0.02");
}

TEST(AmadaScaling, OtherLettersAndWordsWithoutDigitsStayAsTheyStand) {
    EXPECT_EQ(ScaleNumbers("N12G01F1000M30O5T202H100R500C3", 0, false), "N12G01F1000M30O5T202H100R500C3");
    EXPECT_EQ(ScaleNumbers("X-W", 0, false), "X-W");
    EXPECT_EQ(ScaleNumbers("X.", 0, false), "X.");
}

TEST(AmadaScaling, TheIntegerShortcutWritesWhatFormatNumberWrites) {
    auto check = [](const std::string& number, int decimals) {
        std::string fast;
        if (!ScaledInteger(number, decimals, fast)) return;
        double value = ToNumber(number);
        for (int k = 0; k < decimals; ++k) value /= 10;
        double divisor = decimals == 0 ? 1 : decimals == 2 ? 100 : 1000;
        EXPECT_EQ(fast, FormatNumber(ToNumber(number) / divisor, decimals)) << number << " " << decimals;
    };
    for (int value = -30000; value <= 30000; ++value) {
        for (int decimals : {0, 2, 3}) check(std::to_string(value), decimals);
    }
    for (const char* number : {"007", "-007", "000", "999999999999", "-123456789012", "100000000000", "5", "-5"})
        for (int decimals : {0, 2, 3}) check(number, decimals);
    std::string out;
    EXPECT_FALSE(ScaledInteger("-0", 2, out));
    EXPECT_FALSE(ScaledInteger("+5", 2, out));
    EXPECT_FALSE(ScaledInteger("1234567890123", 2, out));
    EXPECT_TRUE(out.empty());
}

TEST(AmadaScaling, BlockCodeByTheOverrideOrder) {
    ValueReader reader;
    EXPECT_EQ(ScalingCode("X10", reader), 0);
    EXPECT_EQ(ScalingCode("G92X1", reader), 92);
    EXPECT_EQ(ScalingCode("G90G01X1", reader), 1);
    EXPECT_EQ(ScalingCode("G04X250", reader), 4);
    EXPECT_EQ(ScalingCode("G26I1", reader), 26);
    // "G10" holds "G1"; G28 is not in the list of own numbers and keeps the 2 of "G2".
    EXPECT_EQ(ScalingCode("G10", reader), 1);
    EXPECT_EQ(ScalingCode("G28I10", reader), 2);
    // The last listed code present wins.
    EXPECT_EQ(ScalingCode("G66G31", reader), 31);
    EXPECT_EQ(ScalingCode("G75G98", reader), 98);
}

// ---- Profile codes --------------------------------------------------------------------------

std::string Profile(std::string block) {
    ProfileCodes(block);
    return block;
}

TEST(AmadaProfileCodes, LinearAndArcCodesBecomeProfileCodes) {
    EXPECT_EQ(Profile("N1G01X10"), "N1G101X10");
    EXPECT_EQ(Profile("G1X10"), "G101X10");
    EXPECT_EQ(Profile("G02X10I5J0"), "G102X10I5J0");
    EXPECT_EQ(Profile("G2X10"), "G102X10");
    EXPECT_EQ(Profile("G03X1"), "G103X1");
    EXPECT_EQ(Profile("G3X1"), "G103X1");
}

TEST(AmadaProfileCodes, G1AsPartOfG101StaysG101) {
    EXPECT_EQ(Profile("G101X10"), "G101X10");
    EXPECT_EQ(Profile("G102X10"), "G102X10");
    EXPECT_EQ(Profile("G103X10"), "G103X10");
}

TEST(AmadaProfileCodes, Exclusions) {
    for (const char* block : {"G01G00X1", "G01G04X1", "G01G93X1", "G01G92X1", "G01G56X1", "G01G53X1", "G01M60",
                              "G01M50", "G01G02X1", "G1G3X1", "G12X1", "G02G28X1", "G3G36X1", "G2G1X1"})
        EXPECT_EQ(Profile(block), block) << block;
    // "G2" of G20 to G29 excludes G1 as well: a G01 in a G21 block stays.
    EXPECT_EQ(Profile("G21G01X1"), "G21G01X1");
}

TEST(AmadaMoveCodes, G70IsAMoveWithoutHitAndG25G27AreRepositions) {
    std::string block = "G70X100.Y50.";
    MoveCodes(block);
    EXPECT_EQ(block, "G77X100.Y50.");
    block = "G27X800.00";
    MoveCodes(block);
    EXPECT_EQ(block, "G95I800.00 J-999 K-999");
    // Only the first X is renamed; a Y stays a Y; a given J or K is kept.
    block = "G25X5.00Y2.00K1";
    MoveCodes(block);
    EXPECT_EQ(block, "G95I5.00Y2.00K1 J-999");
}

// ---- The block pass: edge cases ---------------------------------------------------------------

TEST(AmadaBlock, MetricAndInchCoordinates) {
    Pass pass;
    EXPECT_EQ(pass.Block("X1000 Y2000"), "N0001 G81 X10.00 Y20.00");
    EXPECT_EQ(pass.Block("X10.5 Y2000"), "N0002 G81 X10.50 Y20.00");
    // G20 sets inch for this block and the following ones and is written as G70.
    EXPECT_EQ(pass.Block("G20"), "N0003 G70");
    EXPECT_TRUE(pass.Amada.AmadaInch);
    EXPECT_EQ(pass.Block("X1000"), "N0004 G81 X1.000");
    EXPECT_EQ(pass.Block("G21 X1000"), "N0005 G71 G81 X10.00");
    EXPECT_FALSE(pass.Amada.AmadaInch);
}

TEST(AmadaBlock, DwellInBothUnitModes) {
    Pass pass;
    EXPECT_EQ(pass.Block("G04 X250"), "N0001 G04 X2.50");
    pass.Block("G20");
    EXPECT_EQ(pass.Block("G04 X250"), "N0003 G04 X2.50");
}

TEST(AmadaBlock, G28WithPointsIsARowOfPitch7071) {
    Pass pass;
    EXPECT_EQ(pass.Block("G28 I10. J45. K5."), "N0001 G66 I7.071 J7.071 B5.00");
}

TEST(AmadaBlock, G28WithoutPointsIsScaledFirst) {
    // The block code of G28 is 2 (from "G2"): I, J and K are lengths in hundredths, so the
    // polar values are 0.1 at 0.45 degrees, not 10 at 45.
    Pass pass;
    EXPECT_EQ(pass.Block("G28 I10 J45 K5"), "N0001 G66 I0.1 J0.001 B0.05");
}

TEST(AmadaBlock, G36IsAGridAndG69IsTheNibbleLine) {
    Pass pass;
    EXPECT_EQ(pass.Block("G36 I1000 J2000 P3 K2"),
              "N0001 P2=10.00 P4=20.00 P1=3 P3=2 P5=0 P9=1 P6=-999 P7=-999 P8=-999 P10=0 P11=0 G26");
    // From X100 Y50: shift PolarToXY(5, 0 + 90), (0, 5) but for the cosine of 90 degrees with
    // the system's Pi, 9E-9; P10, P11 the shift less 2. The computed lengths are written as
    // computed, not rounded.
    pass.Block("X10000 Y5000");
    EXPECT_EQ(pass.Block("G69 I5000 J0 P1000 Q300"),
              "N0003 P1=50.00 P5=0.00 P8=3 P10=-1.99999999102552 P11=3 P2=-999 P3=-999 P4=-999 P6=-999 P7=-999 "
              "P9=-999 G36 X100.000000008974 Y55");
}

TEST(AmadaBlock, G93StaysG93) {
    Pass pass;
    EXPECT_EQ(pass.Block("G90"), "N0001 G90");
    EXPECT_EQ(pass.Block("G93 X1000 Y1000"), "N0002 G93 X10.00 Y10.00");
    EXPECT_FALSE(pass.Amada.AmadaFlag);
}

TEST(AmadaBlock, G1InsideG101StaysG101) {
    Pass pass;
    EXPECT_EQ(pass.Block("G101 X1000"), "N0001 G101 X10.00");
}

TEST(AmadaBlock, BWithAnEmptyEntryGivesAnEmptyBlock) {
    Pass pass;
    EXPECT_EQ(pass.Block("B5"), "");
}

// ---- The block pass: one rule at a time -----------------------------------------------------------

TEST(AmadaBlock, SequenceWordAndPackedText) {
    Pass pass;
    // G90 marks no block as known: the implicit hit applies.
    EXPECT_EQ(pass.Block("n20 g90 x 10 00"), "N20 G90 G81 X10.00");
    EXPECT_EQ(pass.Block("X500"), "N0021 G81 X5.00");
}

TEST(AmadaBlock, CommentsInParenthesesOrAfterSemicolon) {
    Pass pass;
    EXPECT_EQ(pass.Block("X1000 (first hole) Y1"), "N0001 G81 X10.00 ;first hole");
    // "(" is the mark whatever the text holds: the ";" stays in the block, and the "N" of
    // "NOTE" is its sequence word (count 0), so no N word is put in front.
    EXPECT_EQ(pass.Block("X1000 ; note ( x )"), "N G81 X10.00; O E T ;x");
    EXPECT_EQ(pass.Block("X1000 ; note"), "N0001 G81 X10.00 ;note");
}

TEST(AmadaBlock, MacroStoreAndReplay) {
    Pass pass;
    // A1 stores the block without its A word, and the block goes on without it too.
    EXPECT_EQ(pass.Block("X1000 Y500 A1"), "N0001 G81 X10.00 Y5.00");
    EXPECT_EQ(pass.Amada.MacroTable[1], "N0001X1000Y500");
    // B1 replays the stored text, with its sequence word.
    EXPECT_EQ(pass.Block("B1"), "N0001 G81 X10.00 Y5.00");
    // A number outside 1 to 99 is no macro word.
    EXPECT_EQ(pass.Block("X100 A100"), "N0003 G81 X1.00 A100");
    EXPECT_EQ(pass.Amada.MacroTable[1], "N0001X1000Y500");
}

TEST(AmadaBlock, TheMacroWordIsNoAngleOfTheCycle) {
    Pass pass;
    // G26's A is its first angle: the macro word must not stand beside it.
    EXPECT_EQ(pass.Block("G26 I50. J0 K8 A2"), "N0001 G64 J50.00 A0.00 B8");
    EXPECT_EQ(pass.Amada.MacroTable[2], "N0001G26I50.J0K8");
    EXPECT_EQ(pass.Block("B2"), "N0001 G64 J50.00 A0.00 B8");
}

TEST(AmadaBlock, OptionalStopIsAStop) {
    Pass pass;
    EXPECT_EQ(pass.Block("M01"), "N0001 M00");
}

TEST(AmadaBlock, ProfileMovesAreModal) {
    Pass pass;
    EXPECT_EQ(pass.Block("G01 X1000 Y2000"), "N0001 G101 X10.00 Y20.00");
    EXPECT_EQ(pass.Block("X3000"), "N0002 G101 X30.00");
    EXPECT_EQ(pass.Block("G02 X4000 Y3000 I1000 J0"), "N0003 G102 X40.00 Y30.00 I10.00 J0.00");
    EXPECT_EQ(pass.Block("Y4000"), "N0004 G102 Y40.00");
    EXPECT_EQ(pass.Block("G00 X0 Y0"), "N0005 G00 X0.00 Y0.00");
    EXPECT_EQ(pass.Block("X100"), "N0006 G81 X1.00");
}

TEST(AmadaBlock, G70IsAMoveWithoutAHit) {
    Pass pass;
    EXPECT_EQ(pass.Block("G70 X1000 Y500"), "N0001 G80 X10.00 Y5.00");
}

TEST(AmadaBlock, G27IsAReposition) {
    Pass pass;
    EXPECT_EQ(pass.Block("G27 X50000"), "N0001 P6=-999 G95 I500.00 J-999 K-999");
}

TEST(AmadaBlock, G26IsACircle) {
    Pass pass;
    EXPECT_EQ(pass.Block("G26 I5000 J9000 K8"), "N0001 G64 J50.00 A90.00 B8");
}

TEST(AmadaBlock, G29IsAnArc) {
    Pass pass;
    EXPECT_EQ(pass.Block("G29 I5000 J4500 P1500 K6"),
              "N0001 P3=45.00 P2=15.00 P1=6 P9=1 P4=-999 P5=-999 P6=-999 P7=-999 P8=-999 P10=-999 G28 R50.00");
}

TEST(AmadaBlock, G37IsAGridAtDegrees270) {
    Pass pass;
    // Unlike G36, code 37 has no whole-number class for P and K: the counts are scaled too.
    EXPECT_EQ(pass.Block("G37 I1000 J2000 P3 K2"),
              "N0001 P2=10.00 P4=20.00 P1=0.03 P3=0.02 P5=270 P9=1 P6=-999 P7=-999 P8=-999 P10=0 P11=0 G26");
}

TEST(AmadaBlock, G68AndG78AreTheNibbledArc) {
    Pass pass;
    // R = I + P / 2 = 20 + 5; J and K are hundredths here.
    EXPECT_EQ(pass.Block("G68 I2000 J0 K18000 P1000 Q300"),
              "N0001 P5=0.00 P1=180.00 P8=3.00 P2=-999 P3=-999 P4=-999 P6=-999 P7=-999 P9=-999 P10=-999 G37 R25");
    EXPECT_TRUE(pass.Amada.ToolSide);
    EXPECT_EQ(pass.State.NibbleStep, 3.0);
    EXPECT_EQ(pass.Block("G78 I2000 J9000 K4500 P1000 Q200"),
              "N0002 P5=90.00 P1=45.00 P8=2.00 P2=-999 P3=-999 P4=-999 P6=-999 P7=-999 P9=-999 P10=-999 G37 R25");
    EXPECT_FALSE(pass.Amada.ToolSide);
}

TEST(AmadaBlock, G67IsTheNibbledRectangle) {
    Pass pass;
    pass.Block("X10000 Y5000");
    // Tool 10: corner moved by (5, 5), sides 190 and 90; q = 19 and 9, whole, so n = 20 and 10
    // and both pitches are 10.
    EXPECT_EQ(pass.Block("G67 I20000 J10000 P1000"), "N0002 P8=10 G65 X105 Y55 I190 J90");
    // Negative side: the reach is -10 in X, the corner moves by -5; q = 190 / 10 = 19 ->
    // pitch 10; Y: 47.5 / 10 = 4.75, not whole -> n = 6, pitch 9.5. The larger is 10.
    pass.Block("X10000 Y5000");
    EXPECT_EQ(pass.Block("G67 I-20000 J5750 P1000"), "N0004 P8=10 G65 X95 Y55 I-190 J47.5");
    // The corner and the sides as computed, not rounded: in inches a tool of 0.001 moves the
    // corner by 0.0005.
    pass.Block("G20");
    pass.Block("X10000 Y5000");
    EXPECT_EQ(pass.Block("G67 I20000 J10000 P1"), "N0007 P8=0 G65 X10.0005 Y5.0005 I19.999 J9.999");
}

TEST(AmadaBlock, G66IsTheShearProofRow) {
    Pass pass;
    pass.Block("X10000 Y5000");
    // Length 100 at 0 degrees, tool 30 along, Q 0 so 30 across, D 0: the row starts 15 in
    // (X 115), its length is 70; the offset is 15 at 90 degrees. q = 70 / 30 = 2.33 -> n = 4,
    // pitch 23.333 -> P2=23.
    EXPECT_EQ(pass.Block("G66 I10000 J0 P3000 Q0 D0"),
              "N0002 P7=70 P5=0 P2=23 P9=1 P10=0 P11=15 P1=-999 P3=-999 P4=-999 P6=-999 P8=-999 G26 X115 Y50");
    // D below 0: the row stands on the other side; tool 20 by 10, length 60 at 90 degrees:
    // start (100, 60), length 40, q = 2 -> n = 3, pitch 20; offset (5, 0).
    pass.Block("X10000 Y5000");
    EXPECT_EQ(pass.Block("G66 I6000 J9000 P2000 Q1000 D-100"),
              "N0004 P7=40 P5=90 P2=20 P9=1 P10=5 P11=0 P1=-999 P3=-999 P4=-999 P6=-999 P8=-999 G26 X100 Y60");
}

TEST(AmadaBlock, G98StoresTheGridAndG75G76RepeatFromEachCorner) {
    Pass pass;
    EXPECT_EQ(pass.Block("G98 X20000 Y10000 I5000 J4000 P3 K2 T202"), "N0001 G00 T202");
    EXPECT_TRUE(pass.Amada.GridSet);
    EXPECT_EQ(pass.Amada.GridColumns, 4);
    EXPECT_EQ(pass.Amada.GridRows, 3);
    const char* fill = " P5=-999 P7=-999 P8=-999 P9=-999 P10=1 P11=1 G98";
    EXPECT_EQ(pass.Block("G75 W1 Q1"), std::string("N0002 P2=50 P4=40 P1=4 P3=3 P6=0") + fill + " X200 Y100 S1");
    EXPECT_EQ(pass.Block("G75 W1 Q2"), std::string("N0003 P2=-50 P4=40 P1=4 P3=3 P6=0") + fill + " X350 Y100 S1");
    EXPECT_EQ(pass.Block("G76 W7 Q3"), std::string("N0004 P2=50 P4=-40 P1=4 P3=3 P6=1") + fill + " X200 Y180 S2");
    EXPECT_EQ(pass.Block("G76 W9 Q4 M50"),
              std::string("N0005 P2=-50 P4=-40 P1=4 P3=3 P6=1") + fill + " X350 Y180 S-1 M50");
    // A corner outside 1 to 4 starts at the reference point, as corner 1.
    EXPECT_EQ(pass.Block("G75 W1 Q0"), std::string("N0006 P2=50 P4=40 P1=4 P3=3 P6=0") + fill + " X200 Y100 S1");
}

TEST(AmadaBlock, WIsACallWithTheNameInTheComment) {
    Pass pass;
    EXPECT_EQ(pass.Block("W7"), "N0001 P10=1 G68 Q0 S2 ; 7");
    // Behind the last comment; the listed codes behind the W follow, others are lost.
    EXPECT_EQ(pass.Block("X100 (HOLES)"), "N0002 G81 X1.00 ;HOLES");
    EXPECT_EQ(pass.Block("G91 W1 G90 X5 M50"), "N0003 P10=1 G90 G91 G68 Q0 S1 M50 ;HOLES1");
    EXPECT_EQ(pass.Block("W3"), "N0004 P10=1 G68 Q0 S-1 ;HOLES13");
}

TEST(AmadaBlock, TheCallIsMadeWhateverStandsInFrontOfTheW) {
    Pass pass;
    EXPECT_EQ(pass.Block("M00 W1"), "N0001 P10=1 G68 Q0 S1 M00 ; 1");
    EXPECT_EQ(pass.Block("M50 W1"), "N0002 P10=1 G68 Q0 S1 M50 ; 11");
    // An "M" behind the W is the tail, kept behind the call.
    EXPECT_EQ(pass.Block("W7 M50"), "N0003 P10=1 G68 Q0 S2 M50 ; 117");
}

TEST(AmadaBlock, G31IsTheTorch) {
    Pass pass;
    EXPECT_EQ(pass.Block("G31 P0 Q0"), "N0001 M05");
    EXPECT_EQ(pass.Block("G31 P1 Q0"), "N0002 M03");
    EXPECT_EQ(pass.Block("G31 P0 Q5"), "N0003 M03");
}

TEST(AmadaBlock, OnlyTheFirstRowApplies) {
    Pass pass;
    // G28 before G26: the G26 stays in the text.
    // The block code is 26 (the last own number present): J is in hundredths, K whole.
    EXPECT_EQ(pass.Block("G28 G26 I10. J0 K3."), "N0001 P1=-999 P2=-999 P3=-999 P4=-999 P5=-999 P6=-999 P7=-999 "
                                                 "P8=-999 P9=-999 P10=0 P11=0 G26 G66 I10 J0 B3");
}

TEST(AmadaBlock, TailFromTheFirstTOrM) {
    Pass pass;
    EXPECT_EQ(pass.Block("G26 I5000 J0 K4 T301 M50"), "N0001 G64 J50.00 A0.00 B4 T301 M50");
}

TEST(AmadaBlock, BlockSkipMarks) {
    Pass pass(BlockPass::Subroutines);
    // The ordering moves "M87" of "M875=1" to the front of the M group ("M87 5=1"), so the
    // skip word never reaches its own group; the spacing joins it again at the end.
    EXPECT_EQ(pass.Block("/X1000"), "G81 X10.00 M875=1");
    // Only a single "/" is kept in front of a removed sequence word: "//N5" keeps its N5.
    EXPECT_EQ(pass.Block("//N5 X1000"), "N5 G81 X10.00 M875=2");
}

TEST(AmadaBlock, SubroutineTextStartAndEnd) {
    Pass pass(BlockPass::Subroutines);
    EXPECT_EQ(pass.Block("S7 (SLOTS)"), "N2000 ;7");
    EXPECT_EQ(pass.Block("N10 X1000 T202"), "G81 X10.00 T202");
    EXPECT_EQ(pass.Block("(ENDSUB)"), "RETURN ;ENDSUB");
}

TEST(AmadaBlock, LastBlockAndComment) {
    Pass pass;
    pass.Block("X1000 Y2000 T202 (RO10)");
    EXPECT_EQ(pass.Amada.LastBlock, "N0001 G81 X10.00 Y20.00 T202");
    EXPECT_EQ(pass.Amada.LastComment, " ;RO10");
}

TEST(AmadaBlock, GridCountsOverflowAreReported) {
    Pass pass;
    pass.Block("G98 X0 Y0 I100 J100 P32767 K1");
    EXPECT_TRUE(pass.State.Reader.IntegerOverflow);
}

// ---- Tool comments ------------------------------------------------------------------------------

TEST(AmadaToolComments, DescriptionTexts) {
    EXPECT_EQ(AmadaToolDescription("RO10"), "Diameter 10");
    EXPECT_EQ(AmadaToolDescription("sq 12.5 a45"), "Square 12.5 a45");
    EXPECT_EQ(AmadaToolDescription("RE20X5A90"), "Rectangle 20x5 a90");
    EXPECT_EQ(AmadaToolDescription("OB20X5A0"), "Obround 20x5 a0");
    EXPECT_EQ(AmadaToolDescription("SD20X5A0"), "Single-D 20x5 a0");
    EXPECT_EQ(AmadaToolDescription("DD20X5A0"), "Double-D 20x5 a0");
    EXPECT_EQ(AmadaToolDescription("RC20X5A0"), "Radius Corner 20x5 a0");
    EXPECT_EQ(AmadaToolDescription("CR20X5A0"), "Corner Radius 20x5 a0");
    EXPECT_EQ(AmadaToolDescription("TR20X5A0"), "Triangle 20x5 a0");
    EXPECT_EQ(AmadaToolDescription("CP3X3A0"), "Centre Punch 3x3 a0");
    EXPECT_EQ(AmadaToolDescription("CS10X10A0"), "Counter Sink 10x10 a0");
    EXPECT_EQ(AmadaToolDescription("SP50X20A30"), "Special 50x20 a30");
    EXPECT_EQ(AmadaToolDescription("XX10"), "");
    EXPECT_EQ(AmadaToolDescription("R"), "");
}

}  // namespace
}  // namespace kirvana::amada

// ---- The whole pass ---------------------------------------------------------------------------

namespace kirvana {
namespace {

TEST(AmadaProgram, SplitsAtSWordsAndRenamesCallsInsideSubroutines) {
    TempDir dir;
    dir.Write("prog.org", "X1000Y1000\nW1\nM30\nS1\nW2\nS2\nX500\n");
    ConvertSettings settings;
    settings.ServiceDir = dir.Path();
    std::int16_t dialect = 0;
    ConvertResult result = AmadaProgram(dir.Path() + "prog.", dialect, settings);
    EXPECT_EQ(result.Status, ConvertStatus::Done);
    EXPECT_EQ(dialect, 5);
    EXPECT_EQ(ReadFileText(dir.Path() + "prog.A1"), "X1000Y1000\nW1\nM30\n");
    EXPECT_EQ(ReadFileText(dir.Path() + "prog.A2"), "S1\nW2\n(ENDSUB)\nS2\nX500\n(ENDSUB)\n");
    EXPECT_EQ(ReadFileText(dir.Path() + "prog.sbs"), "1, 1\n2, 2\n******\n");
    EXPECT_EQ(ReadFileText(dir.Path() + "prog.M1"), "N0001 G81 X10.00 Y10.00\nN0002 P10=1 G68 Q0 S1 ; 1\nN0003 M30\n");
    // The call's name goes behind the comment of the block before it ("1" of "S1").
    EXPECT_EQ(ReadFileText(dir.Path() + "prog.M2"),
              "N1000 ;1\nP10=1 G69 Q0 S2 ;12\nRETURN ;ENDSUB\nN2000 ;2\nG81 X5.00\nRETURN ;ENDSUB\n");
    EXPECT_FALSE(FileExists(dir.Path() + "prog.tmp"));
}

TEST(AmadaProgram, ConvertProgramOnAnAmadaMachineRunsNoDetection) {
    TempDir dir;
    // "!" in a line would make dialect 1 for the Convert pass.
    dir.Write("prog.org", "X1000 ! note\nM30\n");
    ConvertSettings settings;
    settings.AmadaMachine = true;
    settings.ServiceDir = dir.Path();
    std::int16_t dialect = 0;
    EXPECT_EQ(ConvertProgram(dir.Path() + "prog.", dialect, settings).Status, ConvertStatus::Done);
    EXPECT_EQ(dialect, 5);
    // "!" is no comment mark here; the "N" of "NOTE" is the block's sequence word (count 0).
    EXPECT_EQ(ReadFileText(dir.Path() + "prog.M1"), "N G81 X10.00! O E T\nN0001 M30\n");
}

TEST(AmadaProgram, MissingProgramIsAFault) {
    TempDir dir;
    ConvertSettings settings;
    settings.ServiceDir = dir.Path();
    std::int16_t dialect = 0;
    EXPECT_EQ(AmadaProgram(dir.Path() + "none.", dialect, settings).Status, ConvertStatus::MissingProgram);
    EXPECT_EQ(dialect, 5);
}

}  // namespace
}  // namespace kirvana

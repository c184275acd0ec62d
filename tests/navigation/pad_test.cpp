#include "navigation/pad_entry.h"

#include <gtest/gtest.h>

#include "navigation/warning.h"

using namespace kirvana;

namespace {

struct CountingBeeper : Beeper {
    int Beeps = 0;
    void Beep() override { ++Beeps; }
};

void Type(PadEntry& pad, const std::string& keys, Beeper& beeper) {
    for (char c : keys) pad.Key(static_cast<unsigned char>(c), beeper);
}

}  // namespace

TEST(PadEntryTest, FirstKeyReplacesTheWholeText) {
    CountingBeeper beeper;
    PadEntry pad("123.5", -5, false);
    EXPECT_TRUE(pad.AllSelected());
    EXPECT_TRUE(pad.Key('7', beeper));
    EXPECT_EQ(pad.Text(), "7");
    Type(pad, "-.2", beeper);
    EXPECT_EQ(pad.Text(), "7-.2");
    EXPECT_EQ(beeper.Beeps, 0);
}

TEST(PadEntryTest, ModeMinusOneRefusesThePointWithABeep) {
    CountingBeeper beeper;
    PadEntry pad("", -1, false);
    EXPECT_FALSE(pad.Key('.', beeper));
    EXPECT_EQ(beeper.Beeps, 1);
    EXPECT_EQ(pad.Text(), "");
    EXPECT_FALSE(pad.Key('-', beeper));
    EXPECT_TRUE(pad.Key('4', beeper));
    EXPECT_EQ(pad.Text(), "4");
    EXPECT_EQ(beeper.Beeps, 2);
}

TEST(PadEntryTest, ModesOfTheFilter) {
    CountingBeeper beeper;
    PadEntry minus("", -2, false);
    Type(minus, "-1.5", beeper);
    EXPECT_EQ(minus.Text(), "-15");
    PadEntry point("", -4, false);
    Type(point, "-1.5", beeper);
    EXPECT_EQ(point.Text(), "1.5");
    PadEntry both("", -5, false);
    Type(both, "-1.5a", beeper);
    EXPECT_EQ(both.Text(), "-1.5");
    PadEntry lengths("", -6, false);
    Type(lengths, "(2+3)*4/2", beeper);
    EXPECT_EQ(lengths.Text(), "(2+3)*4/2");
}

TEST(PadEntryTest, KeyboardModeEighteenRefusesTheNineteenthLetter) {
    CountingBeeper beeper;
    PadEntry pad("", 18, true);
    Type(pad, "ABCDEFGHIJKLMNOPQR", beeper);
    EXPECT_EQ(pad.Text().size(), 18u);
    EXPECT_EQ(beeper.Beeps, 0);
    EXPECT_FALSE(pad.Key('S', beeper));
    EXPECT_EQ(pad.Text(), "ABCDEFGHIJKLMNOPQR");
    EXPECT_EQ(beeper.Beeps, 1);
}

TEST(PadEntryTest, KeyboardWithoutLengthTakesAnyText) {
    CountingBeeper beeper;
    PadEntry pad("old", 0, true);
    Type(pad, "A b-1 ", beeper);
    EXPECT_EQ(pad.Text(), "A b-1 ");
    EXPECT_EQ(PadText(pad.Text()), "A b-1");
}

TEST(PadEntryTest, FullLengthSelectionIsReplacedByTheFirstKey) {
    CountingBeeper beeper;
    PadEntry pad("ABCD", 4, true);
    EXPECT_TRUE(pad.Key('Z', beeper));
    EXPECT_EQ(pad.Text(), "Z");
}

TEST(PadEntryTest, CursorClearAndDelete) {
    CountingBeeper beeper;
    PadEntry pad("12", -1, false);
    pad.CursorLeft();
    EXPECT_FALSE(pad.AllSelected());
    EXPECT_EQ(pad.Caret(), 1);
    pad.Key('5', beeper);
    EXPECT_EQ(pad.Text(), "152");
    pad.CursorRight();
    pad.CursorRight();
    EXPECT_EQ(pad.Caret(), 3);
    pad.DeleteOne();
    EXPECT_EQ(pad.Text(), "15");
    pad.Key(8, beeper);
    EXPECT_EQ(pad.Text(), "1");
    pad.Clear();
    EXPECT_EQ(pad.Text(), "");
    pad.DeleteOne();
    pad.CursorLeft();
    EXPECT_EQ(pad.Caret(), 0);
}

TEST(PadEntryTest, BackspaceOnTheOpeningSelectionClearsIt) {
    CountingBeeper beeper;
    PadEntry pad("99", -1, false);
    pad.Key(8, beeper);
    EXPECT_EQ(pad.Text(), "");
}

TEST(PadEntryTest, ResultsAndShift) {
    EXPECT_DOUBLE_EQ(PadNumber("12.5abc"), 12.5);
    EXPECT_DOUBLE_EQ(PadNumber("-3"), -3);
    EXPECT_DOUBLE_EQ(PadNumber("x"), 0);
    EXPECT_EQ(PadText("  AB  "), "AB");
    EXPECT_EQ(ShiftedKey('a', true), 'A');
    EXPECT_EQ(ShiftedKey('Q', false), 'q');
    EXPECT_EQ(ShiftedKey('5', false), '5');
}

TEST(WarningGateTest, OneAtATime) {
    WarningGate gate;
    EXPECT_TRUE(gate.Open("First\n\n\n", WarningKind::Question, 2));
    EXPECT_TRUE(gate.Showing());
    EXPECT_FALSE(gate.Open("Second\n\n\n", WarningKind::Notice, 1));
    EXPECT_EQ(gate.Text(), "First\n\n\n");
    EXPECT_EQ(gate.Kind(), WarningKind::Question);
    EXPECT_EQ(gate.DefaultButton(), 2);
    gate.Close(1);
    EXPECT_FALSE(gate.Showing());
    EXPECT_TRUE(gate.WarningResult());
    EXPECT_TRUE(gate.Open("Third", WarningKind::QuestionWithCancel, 9));
    EXPECT_EQ(gate.DefaultButton(), 3);
    gate.Close(3);
    EXPECT_FALSE(gate.WarningResult());
}

TEST(WarningGateTest, CaptionsAndImagesByKind) {
    EXPECT_EQ(WarningCaptions(WarningKind::Notice), (std::vector<std::string>{"&OK"}));
    EXPECT_EQ(WarningCaptions(WarningKind::Question), (std::vector<std::string>{"&YES", "&NO"}));
    EXPECT_EQ(WarningCaptions(WarningKind::QuestionWithCancel), (std::vector<std::string>{"&YES", "&NO", "&CANCEL"}));
    EXPECT_EQ(ImageOfKind(WarningKind::Notice), WarningImage::Information);
    EXPECT_EQ(ImageOfKind(WarningKind::Question), WarningImage::Question);
    EXPECT_EQ(ImageOfKind(WarningKind::QuestionWithCancel), WarningImage::Warning);
}

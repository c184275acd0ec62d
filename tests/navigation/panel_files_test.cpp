#include <gtest/gtest.h>

#include <filesystem>

#include "core/paths.h"
#include "navigation/colours.h"
#include "navigation/keypad.h"
#include "navigation/messages.h"
#include "navigation/program_change.h"
#include "system/startup.h"
#include "tests/core/temp_dir.h"
#include "tests/support/demo_installation.h"
#include "tests/support/fake_card.h"

using namespace kirvana;

TEST(ColourConfigTest, MissingFileIsWrittenWithTheDefaults) {
    TempDir dir;
    ColourConfig config = ReadColourConfig(dir.Path());
    EXPECT_EQ(config.Note, "");
    EXPECT_EQ(config.Colours[ColourItem::PlotBackground], 4194304);
    EXPECT_EQ(config.Colours[ColourItem::StatusFeedText], 65535);
    auto lines = ReadLines(dir.Path() + "Colour.cfg");
    ASSERT_TRUE(lines);
    ASSERT_EQ(lines->size(), 49u);
    EXPECT_EQ((*lines)[0], "Plot Background, 4194304");
    EXPECT_EQ((*lines)[4], "Sheet Boundry, 4144959");
    EXPECT_EQ((*lines)[47], "Status Feed Text, 65535");
    EXPECT_EQ((*lines)[48], "******");
    EXPECT_FALSE(std::filesystem::exists(dir.Path() + "Colour.cfg.tmp"));
}

TEST(ColourConfigTest, TheOrderDecidesNotTheLabel) {
    TempDir dir;
    std::string text = "Anything, 255\n";
    for (int i = 1; i < ColourCount; ++i) text += "x," + std::to_string(i) + "\n";
    dir.Write("Colour.cfg", text + "******\n");
    ColourConfig config = ReadColourConfig(dir.Path());
    EXPECT_EQ(config.Note, "");
    EXPECT_EQ(config.Colours[ColourItem::PlotBackground], 255);
    EXPECT_EQ(config.Colours[ColourItem::StatusFeedText], 47);
}

TEST(ColourConfigTest, DamagedLinesKeepTheirDefaultsAndSaySo) {
    TempDir dir;
    dir.Write("Colour.cfg", "Plot Background, red\nPunching Zones, 7\n");
    ColourConfig config = ReadColourConfig(dir.Path());
    EXPECT_EQ(config.Colours[ColourItem::PlotBackground], 4194304);
    EXPECT_EQ(config.Colours[ColourItem::PunchingZones], 7);
    EXPECT_EQ(config.Colours[ColourItem::Clamps], 4144959);
    EXPECT_EQ(config.Note, "Colour.cfg: 47 of 48 colours unreadable, their defaults in use");
    // The damaged file stays as the installer left it.
    EXPECT_EQ(ReadFileText(dir.Path() + "Colour.cfg"), "Plot Background, red\nPunching Zones, 7\n");
}

TEST(ColourConfigTest, StatusBoxPairs) {
    ColourTable c = DefaultColours();
    EXPECT_EQ(StatusBoxColours(c, StatusColours::Normal).Background, 4194304);
    EXPECT_EQ(StatusBoxColours(c, StatusColours::MessagesWaiting).Background, 65535);
    EXPECT_EQ(StatusBoxColours(c, StatusColours::Hold).Background, 255);
    EXPECT_EQ(RedOf(255), 255);
    EXPECT_EQ(BlueOf(4194304), 64);
}

TEST(KeypadConfigTest, EntriesUpToTheEndMarker) {
    TempDir dir;
    dir.Write("Keypad.cfg",
              "Y, M, \"LIGHTS, ON\", M1=1, M1=0\n"
              "N, L, Very long caption text, M2=1, M2=0\n"
              "******\n"
              "Y, M, After, M3=1, M3=0\n");
    KeypadConfig config = ReadKeypadConfig(dir.Path());
    ASSERT_EQ(config.Keys.size(), 2u);
    EXPECT_TRUE(config.Keys[0].Valid);
    EXPECT_FALSE(config.Keys[0].Latching);
    EXPECT_EQ(config.Keys[0].Caption, "LIGHTS, ON");
    EXPECT_EQ(config.Keys[0].OnText, "M1=1");
    EXPECT_EQ(config.Keys[0].OffText, "M1=0");
    EXPECT_FALSE(config.Keys[1].Valid);
    EXPECT_TRUE(config.Keys[1].Latching);
    EXPECT_EQ(config.Keys[1].Caption, "Very long ca");
    EXPECT_EQ(config.Note, "");
    EXPECT_EQ(UserKeyCaption(1, "LIGHTS"), "(&A) LIGHTS");
    EXPECT_EQ(UserKeyCaption(16, "X"), "(&P) X");
}

TEST(KeypadConfigTest, MoreThanSixteenEntriesAreIgnored) {
    TempDir dir;
    std::string text;
    for (int i = 1; i <= 20; ++i) text += "Y,M,K" + std::to_string(i) + ",M" + std::to_string(i) + "=1,M0=0\n";
    dir.Write("Keypad.cfg", text);
    KeypadConfig config = ReadKeypadConfig(dir.Path());
    ASSERT_EQ(config.Keys.size(), 16u);
    EXPECT_EQ(config.Keys[15].Caption, "K16");
}

TEST(KeypadConfigTest, MissingAndDamagedFilesSaySo) {
    TempDir dir;
    EXPECT_EQ(ReadKeypadConfig(dir.Path()).Note, "Keypad.cfg not found: no user keys");
    dir.Write("Keypad.cfg", "Y, M, ONE, M1=1, M1=0\nY, M, TWO\n");
    KeypadConfig config = ReadKeypadConfig(dir.Path());
    EXPECT_EQ(config.Keys.size(), 1u);
    EXPECT_EQ(config.Note, "Keypad.cfg: an entry after key 1 is incomplete");
}

TEST(MessagesTest, HelpFilesAndAcknowledge) {
    TempDir dir;
    dir.Write("Messages/Help/IO/3.hlp", "Check the air.\n");
    EXPECT_EQ(ReadHelpFile(dir.Path() + "Messages/Help/IO/3.hlp"), "Check the air.\n");
    EXPECT_FALSE(ReadHelpFile(dir.Path() + "Messages/Help/IO/4.hlp"));
    EXPECT_FALSE(ReadHelpFile("   "));
    EXPECT_FALSE(ReadHelpFile(dir.Path()));

    Process process;
    process.Config.Dirs.HelpDir = dir.Path() + "Messages/Help/";
    dir.Write("Messages/Help/Receive.hlp", "PART1 : Dorvenis\n");
    process.Display.NewProgramsReceived = true;
    AcknowledgeMessages(process);
    EXPECT_FALSE(process.Display.NewProgramsReceived);
    EXPECT_FALSE(std::filesystem::exists(dir.Path() + "Messages/Help/Receive.hlp"));
    // Without a file the acknowledgement still clears the flag.
    process.Display.NewProgramsReceived = true;
    AcknowledgeMessages(process);
    EXPECT_FALSE(process.Display.NewProgramsReceived);
}

namespace {

struct RecordingPlatform : StartupPlatform {
    std::vector<std::string> Warnings;
    std::vector<std::string> Events;
    void ShowSplash(const std::string&, const std::string&) override {}
    bool SplashDone() override { return true; }
    void StopSplashTimer() override {}
    void ProcessEvents() override {}
    void ShowMessageBox(const std::string&, const std::string&) override {}
    bool AskOperator(const std::string&) override { return false; }
    void ShowWarning(const std::string& text) override { Warnings.push_back(text); }
    void ShowFrontEnd() override {}
    bool FrontEndVisible() override { return true; }
    void UnloadFrontEnd() override {}
    void SetFormsLocked(bool, const std::string&) override {}
    void SetPollTimer(bool enabled, int ms) override {
        Events.push_back(enabled ? "Poll " + std::to_string(ms) : "PollOff");
    }
    void WaitForTick(int) override {}
    void StartProgram(const std::string&) override {}
    void PowerOff() override {}
    void EndProcess() override {}
};

class ChangeProgramTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_FALSE(ReadControlConfig(process_.Config));
        process_.Card.CardInUse = true;
        process_.Card.PollRunning = true;
        process_.Card.PollIntervalMs = 50;
        process_.Card.PollRestartDelayMs = 200;
        link_.SetEnabled(true);
    }

    DemoInstallation dir_;
    Process process_;
    RecordingPlatform platform_;
    FakeCardLink link_;
};

}  // namespace

TEST_F(ChangeProgramTest, RefusedWhileRunningSendsNothing) {
    for (int state = 0; state < 2; ++state) {
        process_.InCycle = state == 0;
        process_.InFeedhold = state == 1;
        link_.Sent.clear();
        platform_.Warnings.clear();
        Refusal refusal = ChangeProgram(process_, platform_, &link_, 2);
        ASSERT_TRUE(refusal);
        EXPECT_EQ(*refusal, "Can Not Change Program\n\nWhile Machine Is Running !");
        ASSERT_EQ(platform_.Warnings.size(), 1u);
        EXPECT_EQ(platform_.Warnings[0], "Can Not Change Program\n\nWhile Machine Is Running !\n\n\n");
        EXPECT_TRUE(link_.Sent.empty());
        EXPECT_EQ(process_.Config.ActiveSlot, 1);
        EXPECT_TRUE(platform_.Events.empty());
    }
}

TEST_F(ChangeProgramTest, SwitchesTheSlotTellsTheCardAndResumesThePoll) {
    Refusal refusal = ChangeProgram(process_, platform_, &link_, 2);
    EXPECT_FALSE(refusal);
    EXPECT_EQ(process_.Config.ActiveSlot, 2);
    ASSERT_FALSE(link_.Sent.empty());
    EXPECT_EQ(link_.Sent.front(), "M811=2");
    auto lines = ReadLines("Control.cfg");
    ASSERT_TRUE(lines);
    ASSERT_GE(lines->size(), 5u);
    EXPECT_EQ((*lines)[3], "2");
    EXPECT_EQ((*lines)[4], "******");
    ASSERT_GE(platform_.Events.size(), 2u);
    EXPECT_EQ(platform_.Events.front(), "PollOff");
    EXPECT_EQ(platform_.Events.back(), "Poll 200");
}

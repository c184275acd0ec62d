#include "navigation/machine_screens.h"

#include <gtest/gtest.h>

#include "navigation/navigation.h"
#include "system/startup.h"
#include "tests/controller/poll_card.h"
#include "tests/core/temp_dir.h"
#include "tests/support/quiet_platform.h"

using namespace kirvana;

namespace {

struct MachineScreensTest : ::testing::Test {
    TempDir dir;
    Process p;
    PollCard card;
    QuietPlatform platform;
    Conversation talk{&card, p.Card, dir.Path(), &platform};

    MachineScreensTest() {
        p.Card.CardInUse = true;
        p.Config.ActiveSlot = 1;
        p.Config.Machine.MachineOrientation = 1;
    }
    std::vector<std::string> Sent() {
        std::vector<std::string> sent = card.Exchanges;
        card.Exchanges.clear();
        card.Commands.clear();
        return sent;
    }
};

using Texts = std::vector<std::string>;

}  // namespace

TEST(MachineMenus, EveryButtonHasAKeyOfItsOwnOnItsForm) {
    std::vector<int> machineKeys = {MnemonicOf(ExitCaption)};
    for (const char* c : ReferenceButtonCaptions) machineKeys.push_back(MnemonicOf(c));
    for (const FeedButton& f : FeedButtons) machineKeys.push_back(MnemonicOf(f.Caption));
    for (const MenuEntry& m : MachineMenu) machineKeys.push_back(MnemonicOf(m.Caption));
    std::vector<int> statusKeys = {MnemonicOf(ExitCaption), MnemonicOf(BlockSkipCaptions[0]),
                                   MnemonicOf(BlockSkipCaptions[1])};
    for (const MenuEntry& m : StatusMenu) statusKeys.push_back(MnemonicOf(m.Caption));
    for (const auto* keys : {&machineKeys, &statusKeys}) {
        std::vector<int> sorted = *keys;
        std::sort(sorted.begin(), sorted.end());
        EXPECT_EQ(std::adjacent_find(sorted.begin(), sorted.end()), sorted.end());
        EXPECT_EQ(std::count(sorted.begin(), sorted.end(), 0), 0);
    }
    // The keys F1 to F12 and K stay with MainKey: no menu takes K.
    EXPECT_EQ(std::count(machineKeys.begin(), machineKeys.end(), 'K'), 0);
    EXPECT_EQ(MnemonicOf("REFERENCE &AXIS"), 'A');
    EXPECT_EQ(MnemonicOf("- 20 (&1)"), '1');
    EXPECT_EQ(MnemonicOf("no key"), 0);
    EXPECT_EQ(MnemonicOf("ends in &"), 0);
}

TEST(MachineMenus, ArrowsJogAndLettersPickTheOptions) {
    EXPECT_EQ(JogDirectionOfKey(key::Left), JogDirection::XMinus);
    EXPECT_EQ(JogDirectionOfKey(key::Right), JogDirection::XPlus);
    EXPECT_EQ(JogDirectionOfKey(key::Up), JogDirection::YPlus);
    EXPECT_EQ(JogDirectionOfKey(key::Down), JogDirection::YMinus);
    EXPECT_FALSE(JogDirectionOfKey('X'));
    // "0.01 (&A)" is the last distance option, "CONT (&G)" the first; "1 (&H)" the first speed.
    ASSERT_TRUE(JogOptionOfKey('A'));
    EXPECT_FALSE(JogOptionOfKey('A')->Speed);
    EXPECT_EQ(JogOptionOfKey('A')->Option, 6);
    EXPECT_EQ(JogOptionOfKey('F')->Option, 1);
    EXPECT_EQ(JogOptionOfKey('G')->Option, 0);
    EXPECT_TRUE(JogOptionOfKey('H')->Speed);
    EXPECT_EQ(JogOptionOfKey('H')->Option, 0);
    EXPECT_EQ(JogOptionOfKey('N')->Option, 6);
    EXPECT_FALSE(JogOptionOfKey('O'));
    EXPECT_FALSE(JogOptionOfKey('X'));
}

TEST_F(MachineScreensTest, AJogPressSendsItsDirectionOnceAndItsEndOnce) {
    JogHold hold;
    EXPECT_FALSE(hold.Press(p, talk, JogDirection::XPlus));
    EXPECT_FALSE(hold.Press(p, talk, JogDirection::XPlus));  // a repeat of the held key
    EXPECT_TRUE(hold.Held());
    EXPECT_TRUE(hold.End(talk));
    EXPECT_FALSE(hold.End(talk));  // a second end of the same press sends nothing
    EXPECT_EQ(Sent(), (Texts{"M828=1", "M828=0", "M829=0"}));
}

TEST_F(MachineScreensTest, ARefusedJogPressStillEndsWithTheKeyUp) {
    p.InFeedhold = true;
    JogHold hold;
    Refusal refusal = hold.Press(p, talk, JogDirection::YMinus);
    ASSERT_TRUE(refusal);
    EXPECT_EQ(*refusal, "Can Not Jog\n\nWhile Machine Is Running Or In Feedhold !");
    EXPECT_TRUE(Sent().empty());
    EXPECT_TRUE(hold.End(talk));
    EXPECT_EQ(Sent(), (Texts{"M828=0", "M829=0"}));
}

TEST_F(MachineScreensTest, InCycleAloneDoesNotRefuseTheJog) {
    p.InCycle = true;
    JogHold hold;
    EXPECT_FALSE(hold.Press(p, talk, JogDirection::YPlus));
    EXPECT_EQ(Sent(), (Texts{"M829=1"}));
}

TEST_F(MachineScreensTest, OrientationTwoTurnsTheYKeys) {
    p.Config.Machine.MachineOrientation = 2;
    JogHold hold;
    EXPECT_FALSE(hold.Press(p, talk, *JogDirectionOfKey(key::Up)));
    hold.End(talk);
    EXPECT_FALSE(hold.Press(p, talk, *JogDirectionOfKey(key::Down)));
    EXPECT_EQ(Sent(), (Texts{"M829=-1", "M828=0", "M829=0", "M829=1"}));
}

TEST_F(MachineScreensTest, AnotherDirectionDuringAPressIsSentToo) {
    JogHold hold;
    EXPECT_FALSE(hold.Press(p, talk, JogDirection::XMinus));
    EXPECT_FALSE(hold.Press(p, talk, JogDirection::YPlus));
    hold.End(talk);
    EXPECT_EQ(Sent(), (Texts{"M828=-1", "M829=1", "M828=0", "M829=0"}));
}

TEST_F(MachineScreensTest, LoadBoxesAtFullPrecision) {
    card.Values = {{"Q10", "1250.125"}, {"Q11", "-20"}, {"Q12", "0.5"}, {"Q13", "3"}};
    EXPECT_EQ(LoadBoxTexts(talk), (std::array<std::string, 4>{"1250.125", "-20", "0.5", "3"}));
    EXPECT_EQ(BoxText(12.75), "12.75");
    EXPECT_EQ(BoxText(-0.001), "-0.001");
}

TEST_F(MachineScreensTest, MoveListNamesEveryStationWithItsTool) {
    p.Config.Machine.StationCount = 3;
    StationTable& table = SlotTable(p.Tools, 1);
    table.resize(3);
    table[0].ToolText = "RND 10.0   ";
    table[2].ToolText = "SQR 20.0";
    EXPECT_EQ(MoveStationEntries(p), (Texts{"01  RND 10.0", "02", "03  SQR 20.0"}));
    p.Config.Machine.StationCount = 0;
    EXPECT_EQ(MoveStationEntries(p), (Texts{"01  RND 10.0"}));
}

TEST_F(MachineScreensTest, FeedStepsAddUpBetweenTicks) {
    p.Poll.FeedOverride = 100;
    StepFeed(p, talk, -20);
    StepFeed(p, talk, 5);
    EXPECT_EQ(p.Poll.FeedOverride, 85);
    EXPECT_EQ(Sent(), (Texts{"%80", "%85"}));
}

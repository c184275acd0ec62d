#include "system/machine_commands.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "core/number.h"
#include "system/startup.h"
#include "tests/controller/poll_card.h"
#include "tests/core/temp_dir.h"
#include "tests/support/quiet_platform.h"

using namespace kirvana;

namespace {

const std::string RunningOrFeedhold = "\n\nWhile Machine Is Running Or In Feedhold !";

struct CommandTest : ::testing::Test {
    TempDir dir;
    Process p;
    PollCard card;
    QuietPlatform platform;
    Conversation talk{&card, p.Card, dir.Path(), &platform};

    CommandTest() {
        p.Card.CardInUse = true;
        p.Config.ActiveSlot = 1;
        p.Config.Machine.MachineOrientation = 1;
    }
    void SetState(bool running, bool feedhold, bool cycle, bool hold = false) {
        p.Running = running;
        p.InFeedhold = feedhold;
        p.InCycle = cycle;
        p.Poll.HoldBit = hold ? 4096 : 0;
    }
};

}  // namespace

TEST_F(CommandTest, InterlockTextsAreExact) {
    SetState(true, false, false);
    EXPECT_EQ(ReferenceInterlock(p), "Can Not Reference" + RunningOrFeedhold);
    EXPECT_EQ(LoadInterlock(p, 1), "Can Not Move" + RunningOrFeedhold);
    EXPECT_EQ(MoveInterlock(p), "Can Not Move" + RunningOrFeedhold);
    EXPECT_EQ(CarriageInterlock(p), "Can Not Move" + RunningOrFeedhold);
    EXPECT_EQ(JogInterlock(p), "Can Not Jog" + RunningOrFeedhold);
    EXPECT_EQ(TurretMoveInterlock(p), "Can Not Move Turret" + RunningOrFeedhold);
    EXPECT_EQ(TurretPunchInterlock(p), "Can Not Punch" + RunningOrFeedhold);
    EXPECT_EQ(SlotChangeInterlock(p), std::string("Can Not Change Program\n\nWhile Machine Is Running !"));
    SetState(false, false, false);
    EXPECT_FALSE(ReferenceInterlock(p));
    EXPECT_FALSE(LoadInterlock(p, 1));
    EXPECT_FALSE(MoveInterlock(p));
    EXPECT_FALSE(CarriageInterlock(p));
    EXPECT_FALSE(JogInterlock(p));
    EXPECT_FALSE(TurretMoveInterlock(p));
    EXPECT_FALSE(TurretPunchInterlock(p));
    EXPECT_FALSE(SlotChangeInterlock(p));
}

TEST_F(CommandTest, EachStateRefusesWhatItsRowSays) {
    // Feedhold and cycle refuse all but the slot change; cycle alone doesn't refuse the jog.
    SetState(false, true, false);
    EXPECT_TRUE(ReferenceInterlock(p) && MoveInterlock(p) && CarriageInterlock(p) && JogInterlock(p) &&
                TurretMoveInterlock(p) && TurretPunchInterlock(p));
    EXPECT_FALSE(SlotChangeInterlock(p));
    SetState(false, false, true);
    EXPECT_TRUE(ReferenceInterlock(p) && MoveInterlock(p) && CarriageInterlock(p) && TurretMoveInterlock(p) &&
                TurretPunchInterlock(p));
    EXPECT_FALSE(JogInterlock(p));
    // The hold bit refuses only the move and punch of MoveForm.
    SetState(false, false, false, true);
    EXPECT_TRUE(MoveInterlock(p));
    EXPECT_FALSE(ReferenceInterlock(p) || CarriageInterlock(p) || JogInterlock(p) || TurretMoveInterlock(p));
    // Load: only with a logic message standing that isn't 16.
    SetState(true, false, false);
    EXPECT_FALSE(LoadInterlock(p, 0));
    EXPECT_FALSE(LoadInterlock(p, 16));
    EXPECT_TRUE(LoadInterlock(p, 17));
    SetState(false, false, false);
    EXPECT_FALSE(LoadInterlock(p, 17));
}

TEST_F(CommandTest, RunningRefusesEveryCommandButLoadStillWritesItsPositions) {
    SetState(true, false, false);
    card.Values["P1020"] = "1";
    for (int index = 0; index < 5; ++index) EXPECT_TRUE(ReferenceMachine(p, talk, index));
    EXPECT_TRUE(ReferenceClamps(p, talk));
    EXPECT_TRUE(MoveCarriage(p, talk));
    EXPECT_TRUE(MoveToPosition(p, talk, false, 3, 1, 2, 0));
    EXPECT_TRUE(MoveToPosition(p, talk, true, 3, 1, 2, 0));
    EXPECT_TRUE(MoveTurret(p, talk, 4));
    EXPECT_TRUE(PunchTurret(p, talk, 4));
    EXPECT_TRUE(JogKeyDown(p, talk, JogDirection::XPlus));
    EXPECT_TRUE(ChangeActiveSlot(p, platform, &card, 2));
    EXPECT_EQ(p.Config.ActiveSlot, 1);
    EXPECT_TRUE(card.Commands.empty());
    EXPECT_EQ(LoadPosition(p, talk, 1, 1250.5, 40), "Can Not Move" + RunningOrFeedhold);
    EXPECT_EQ(card.Commands, (std::vector<std::string>{"Q10=1250.5", "Q11=40"}));
    EXPECT_EQ(card.Count("P1021=P1021|64"), 0);
}

TEST_F(CommandTest, CommandsSendTheirTexts) {
    SetState(false, false, false);
    const std::array<const char*, 5> bits = {"P1021=P1021|32", "P1021=P1021|2", "P1021=P1021|4", "P1021=P1021|8",
                                             "P1021=P1021|8"};
    for (int index = 0; index < 5; ++index) {
        card.Commands.clear();
        EXPECT_FALSE(ReferenceMachine(p, talk, index));
        EXPECT_EQ(card.Commands, std::vector<std::string>{bits[index]});
    }
    card.Commands.clear();
    ReferenceClamps(p, talk);
    MoveCarriage(p, talk);
    MoveToPosition(p, talk, false, 7, 100.25, 50, 90);
    MoveToPosition(p, talk, true, 8, 1, 2, 0);
    MoveTurret(p, talk, 12);
    PunchTurret(p, talk, 13);
    EXPECT_EQ(card.Commands,
              (std::vector<std::string>{"P1021=P1021|4", "P1021=P1021|4096", "M802=7", "Q14=100.25", "Q15=50", "Q16=90",
                                        "P1021=P1021|256", "M802=8", "Q14=1", "Q15=2", "Q16=0", "P1021=P1021|512",
                                        "M802=12", "M802=13", "P1021=P1021|1024"}));
}

TEST_F(CommandTest, LoadWritesThenReadsTheMessagesThenRequests) {
    SetState(false, false, false);
    EXPECT_FALSE(LoadPosition(p, talk, 2, 10, 20.5));
    EXPECT_EQ(card.Exchanges, (std::vector<std::string>{"Q12=10", "Q13=20.5", "M830", "P1020", "P1021=P1021|128"}));
    // While running, a logic message of 16 lets the load go.
    SetState(true, false, false);
    card.Values["P1020"] = "16";
    EXPECT_FALSE(LoadPosition(p, talk, 1, 1, 2));
    EXPECT_EQ(card.Commands.back(), "P1021=P1021|64");
    card.Values["Q10"] = "1";
    card.Values["Q13"] = "20.5";
    auto boxes = ReadLoadPositions(talk);
    EXPECT_FLOAT_EQ(boxes[0], 1);
    EXPECT_FLOAT_EQ(boxes[3], 20.5f);
}

TEST_F(CommandTest, FeedStepsSendTheWholeNumber) {
    EXPECT_EQ(ChangeFeed(talk, 100, -20), 80);
    EXPECT_EQ(ChangeFeed(talk, 80, 5), 85);
    EXPECT_EQ(card.Exchanges, (std::vector<std::string>{"%80", "%85"}));
}

TEST_F(CommandTest, JogIsRefusedInFeedholdButNotInCycle) {
    SetState(false, true, false);
    EXPECT_EQ(JogKeyDown(p, talk, JogDirection::XPlus), "Can Not Jog" + RunningOrFeedhold);
    EXPECT_TRUE(card.Commands.empty());
    SetState(false, false, true);
    EXPECT_FALSE(JogKeyDown(p, talk, JogDirection::XMinus));
    EXPECT_EQ(card.Commands, std::vector<std::string>{"M828=-1"});
}

TEST_F(CommandTest, KeyUpIsSentEvenAfterARefusedKeyDown) {
    SetState(true, false, false);
    EXPECT_TRUE(JogKeyDown(p, talk, JogDirection::YPlus));
    JogKeyUp(talk);
    EXPECT_EQ(card.Commands, (std::vector<std::string>{"M828=0", "M829=0"}));
}

TEST_F(CommandTest, OrientationTwoTurnsTheYKeys) {
    p.Config.Machine.MachineOrientation = 2;
    JogKeyDown(p, talk, JogDirection::YPlus);
    JogKeyDown(p, talk, JogDirection::YMinus);
    p.Config.Machine.MachineOrientation = 1;
    JogKeyDown(p, talk, JogDirection::YPlus);
    JogKeyDown(p, talk, JogDirection::XPlus);
    EXPECT_EQ(card.Commands, (std::vector<std::string>{"M829=-1", "M829=1", "M829=1", "M828=1"}));
}

TEST_F(CommandTest, JogActivationTakesTheOptionsFromTheCard) {
    card.Values["M876"] = "2.5";
    card.Values["M820"] = "1";
    card.Values["M822"] = "3";
    card.Values["M821"] = "25";
    JogSettings settings = ActivateJog(p, talk);
    EXPECT_EQ(settings.ButtonCaptions, (std::array<std::string, 4>{"X+", "X-", "Y+", "Y-"}));
    EXPECT_EQ(settings.SpeedOption, 3);
    EXPECT_EQ(settings.DistanceOption, 3);
    EXPECT_EQ(JogDistanceCaption(settings.DistanceOption), "10 (&D)");
    EXPECT_EQ(JogSpeedCaption(settings.SpeedOption), "25 (&K)");
    EXPECT_EQ(settings.FormValueText, "2.5");
    EXPECT_TRUE(card.Commands.empty());
    // Values that fit no option: continuous, and distance option 4.
    p.Config.Machine.MachineOrientation = 0;
    card.Values["M820"] = "7";
    settings = ActivateJog(p, talk);
    EXPECT_EQ(settings.ButtonCaptions, (std::array<std::string, 4>{"X+", "X-", "Y-", "Y+"}));
    EXPECT_EQ(card.Commands, (std::vector<std::string>{"M820=0", "M822=4"}));
    EXPECT_EQ(settings.DistanceOption, 0);
}

TEST_F(CommandTest, JogOptionsSendTheirValues) {
    SetJogSpeed(talk, 0);
    SetJogSpeed(talk, 6);
    SetJogDistance(talk, 0);
    SetJogDistance(talk, 5);
    SetJogSpeed(talk, 7);
    SetJogDistance(talk, -1);
    EXPECT_EQ(card.Commands, (std::vector<std::string>{"M821=1", "M821=100", "M820=0", "M820=1", "M822=5"}));
}

TEST_F(CommandTest, BlockSkipAndBatch) {
    SetBlockSkip(talk, 1, true);
    SetBlockSkip(talk, 2, false);
    card.Values["M874"] = "1";
    EXPECT_EQ(ReadBlockSkips(talk), (std::array<bool, 2>{true, true}));
    p.Config.Dirs.RootDir = dir.Path();
    p.Config.ActiveSlot = 2;
    EXPECT_TRUE(SetBatch(p, talk, {5, 10, 2, 1, 1}));
    EXPECT_EQ(p.Slots[1].Batch, (SlotBatch{5, 10, 2, 1, 1}));
    EXPECT_EQ(ReadSlotBatch(p.Config.Dirs, 2), (SlotBatch{5, 10, 2, 1, 1}));
    EXPECT_TRUE(ClearBatch(p, talk));
    EXPECT_EQ(ReadSlotBatch(p.Config.Dirs, 2), SlotBatch{});
    EXPECT_EQ(card.Commands, (std::vector<std::string>{"M873=1", "M874=0", "M863=5", "M864=10", "M865=2", "M866=1",
                                                       "M863=0", "M864=0", "M865=0", "M866=0"}));
}

TEST_F(CommandTest, SlotChangeSendsTheSlotsBlocksWithItsHitCounter) {
    p.Config.Dirs.RootDir = dir.Path();
    p.Slots[1].SlotLoadY = 512.5f;
    p.Slots[1].HitCount = 37;
    p.Slots[1].Batch = {1, 2, 3, 4, 0};
    SetState(false, false, true);
    EXPECT_FALSE(ChangeActiveSlot(p, platform, &card, 2));
    EXPECT_EQ(p.Config.ActiveSlot, 2);
    EXPECT_EQ(card.Commands, (std::vector<std::string>{"M811=2", "Q11=512.50", "M869=37", "M863=1", "M864=2", "M865=3",
                                                       "M866=4"}));
    EXPECT_TRUE(std::filesystem::exists(dir.Path() + "Control.cfg"));
}

TEST_F(CommandTest, LoadYIsOverwrittenAtTheNextSelectionByTheSlots) {
    std::filesystem::copy(std::string(KIRVANA_SOURCE_DIR) + "/data/demo", dir.Path(), std::filesystem::copy_options::recursive);
    auto old = std::filesystem::current_path();
    std::filesystem::current_path(dir.Path());
    Process demo;
    ASSERT_EQ(Main(demo, platform, nullptr, StartupSteps{}).Result, StartOutcome::Kind::Started);
    demo.Card.CardInUse = true;
    Conversation demoTalk(&card, demo.Card, demo.Config.Dirs.ServiceDir, &platform);
    EXPECT_FALSE(LoadPosition(demo, demoTalk, 1, 10, 999.25));
    EXPECT_EQ(card.Values["Q11"], "999.25");
    SelectOutcome selected = SelectProgram(demo, platform, &card, "Dorvenis", "PLATE01");
    std::filesystem::current_path(old);
    ASSERT_TRUE(selected.Selected) << selected.Warning;
    EXPECT_EQ(card.Values["Q11"], FormatNumber(demo.Slots[0].SlotLoadY, 2));
    EXPECT_NE(card.Values["Q11"], "999.25");
}

TEST_F(CommandTest, FilesThatCannotBeWrittenAreSaid) {
    p.Config.Dirs.RootDir = dir.Path() + "missing/";
    EXPECT_FALSE(SetBatch(p, talk, {1, 2, 3, 4, 0}));
    EXPECT_EQ(p.Slots[0].Batch, (SlotBatch{1, 2, 3, 4, 0}));
    EXPECT_FALSE(ChangeActiveSlot(p, platform, &card, 2));
    EXPECT_EQ(platform.Warnings, std::vector<std::string>{"File Fault : " + dir.Path() + "missing/Control.cfg"});
    EXPECT_EQ(p.Config.ActiveSlot, 2);
    EXPECT_EQ(card.Commands.front(), "M863=1");
    EXPECT_NE(std::find(card.Commands.begin(), card.Commands.end(), "M811=2"), card.Commands.end());
}

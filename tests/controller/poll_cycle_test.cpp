#include "system/poll_cycle.h"

#include <gtest/gtest.h>

#include "analysis/drawing_file.h"
#include "core/paths.h"
#include "system/startup.h"
#include "tests/controller/poll_card.h"
#include "tests/core/temp_dir.h"

using namespace kirvana;

namespace {

struct PollTest : ::testing::Test {
    TempDir dir;
    Process p;
    PollCard card;
    TimerPlatform platform;

    PollTest() {
        p.Card.CardInUse = true;
        p.Config.Dirs.RootDir = dir.Path();
        p.Config.Dirs.ServiceDir = dir.Path();
        p.Config.Dirs.HelpDir = dir.Path() + "Help/";
        MachineData& m = p.Config.Machine;
        m.HasTurret = true;
        m.StationCount = 20;
        m.ClampCount = 3;
        for (auto& table : p.Tools.SlotTables) {
            table.resize(20);
            for (int n = 0; n < 20; ++n) {
                table[n].TNumber = static_cast<std::int16_t>(n + 1);
                table[n].OffsetX = 10.0f * static_cast<float>(n);
                table[n].ToolText = "RND " + std::to_string(n + 1);
            }
        }
        for (int n = 1; n <= 64; ++n) p.Config.Messages.IOMessages[n] = " IO message " + std::to_string(n) + " ";
        for (int n = 0; n < 32; ++n) p.Config.Messages.LogicMessages[n] = "Logic " + std::to_string(n);
        p.Config.ActiveSlot = 1;
    }
    void Tick() { PollCycle(p, platform, &card); }
    // Exchanges of the last tick only.
    std::size_t Mark() const { return card.Exchanges.size(); }
    std::vector<std::string> Since(std::size_t mark) const {
        return std::vector<std::string>(card.Exchanges.begin() + static_cast<long>(mark), card.Exchanges.end());
    }
    // A slot with a hit file of `hits` Punch records (path modes as given) and a block map.
    void PresentSlot(const std::vector<std::int16_t>& pathModes) {
        SlotRecord& slot = p.Slots[0];
        slot.Present = true;
        slot.ExpandedFilePath = dir.Path() + "Actvprg1.dr1";
        DrawingFile file;
        ASSERT_TRUE(file.Create(slot.ExpandedFilePath));
        EntityRec sheet;
        sheet.Kind = EntityKind::Sheet;
        sheet.RecordNo = static_cast<std::int32_t>(pathModes.size()) + 1;
        ASSERT_TRUE(file.Put(1, sheet));
        for (std::size_t i = 0; i < pathModes.size(); ++i) {
            EntityRec hit;
            hit.Kind = EntityKind::Punch;
            hit.PathMode = pathModes[i];
            hit.RecordNo = static_cast<std::int32_t>(i) + 2;
            ASSERT_TRUE(file.Put(hit.RecordNo, hit));
        }
        ASSERT_TRUE(file.Close());
    }
};

}  // namespace

TEST_F(PollTest, StationOutOfRangeIsNotAcknowledgedAndSeenAgain) {
    card.Values["P1022"] = "16896";  // running, new station
    card.Values["M802"] = "99";
    Tick();
    EXPECT_EQ(card.Count("P1022=P1022-512"), 0);
    EXPECT_EQ(card.Values["P1022"], "16896");
    // The invalid station is read a second time, once.
    EXPECT_EQ(card.Exchanges.back(), "M802");
    std::size_t mark = Mark();
    Tick();
    auto again = Since(mark);
    ASSERT_GE(again.size(), 2u);
    EXPECT_NE(again[1].find("M802"), std::string::npos);
    EXPECT_EQ(card.Count("P1022=P1022-512"), 0);
    EXPECT_EQ(p.Poll.CurrentStation, 1);
}

TEST_F(PollTest, StationAndClampRequestsAreBothServedStationFirst) {
    card.Values["P1022"] = "17152";  // running, new station, new clamps
    card.Values["M802"] = "105";     // station 5 by its wrapped code
    card.Values["M835"] = "100.5";
    card.Values["M836"] = "400";
    card.Values["M837"] = "700.25";
    Tick();
    ASSERT_EQ(card.Count("P1022=P1022-512"), 1);
    ASSERT_EQ(card.Count("P1022=P1022-256"), 1);
    auto at = [&](const std::string& c) { return std::find(card.Commands.begin(), card.Commands.end(), c) - card.Commands.begin(); };
    EXPECT_LT(at("Q49=5"), at("P1022=P1022-512"));   // the station block goes before its acknowledge
    EXPECT_LT(at("P1022=P1022-512"), at("P1022=P1022-256"));
    EXPECT_EQ(card.Values["P1022"], "16384");
    EXPECT_EQ(p.Poll.CurrentStation, 5);
    EXPECT_FLOAT_EQ(p.Poll.ClampActual[0], 100.5f);
    EXPECT_FLOAT_EQ(p.Poll.ClampActual[2], 700.25f);
    EXPECT_EQ(p.Display.FrontEnd.PositionText[3], "05");
    EXPECT_EQ(p.Display.Clamps.ActualTexts[0], "100.50");
    EXPECT_EQ(p.Display.Clamps.ClampCount, 3);
    // Station 5 has the X offset 40: each clamp less it, at one decimal.
    EXPECT_EQ(p.Display.MachineStatus.ClampTexts[0], "60.5");
    EXPECT_EQ(p.Display.MachineStatus.StationText, "5");
    EXPECT_EQ(p.Display.MachineStatus.ToolText, "RND 5");
    EXPECT_TRUE(p.Display.Plot.ToolChanged);
}

TEST_F(PollTest, StationRequestAtRestTakesTheSlotsStation) {
    card.Values["P1022"] = "512";
    card.Values["M802"] = "99";
    p.Slots[0].ActiveStation = 7;
    Tick();
    EXPECT_EQ(card.Count("P1022=P1022-512"), 1);
    EXPECT_EQ(p.Poll.CurrentStation, 7);
    EXPECT_EQ(card.Count("Q49=7"), 1);
}

TEST_F(PollTest, StationRequestWithoutTurretIsOnlyAcknowledged) {
    p.Config.Machine.HasTurret = false;
    card.Values["P1022"] = "16896";
    Tick();
    EXPECT_EQ(card.Count("P1022=P1022-512"), 1);
    EXPECT_EQ(card.Commands.size(), 1u);
}

TEST_F(PollTest, OffsetRequestsAreReadAndAcknowledged) {
    card.Values["P1022"] = "327680";  // reference and work offsets
    card.Values["Q27"] = "1.5";
    card.Values["Q28"] = "2.5";
    card.Values["Q29"] = "90";
    card.Values["Q25"] = "10";
    card.Values["Q26"] = "20";
    card.Values["#1P"] = "100";
    card.Values["#2P"] = "200";
    card.Values["#4P"] = "5";
    Tick();
    EXPECT_EQ(card.Count("P1022=P1022-262144"), 1);
    EXPECT_EQ(card.Count("P1022=P1022-65536"), 1);
    EXPECT_FLOAT_EQ(p.Poll.ReferenceOffset[2], 0);
    EXPECT_FLOAT_EQ(p.Poll.TurretOffset, 90);
    EXPECT_FLOAT_EQ(p.Poll.Position[0], 111.5f);
    EXPECT_FLOAT_EQ(p.Poll.Position[1], 222.5f);
    EXPECT_FLOAT_EQ(p.Poll.Position[3], 95);
    EXPECT_EQ(p.Display.FrontEnd.PositionText[0], "111.5");
}

TEST_F(PollTest, AxisScaleDividesThePosition) {
    p.AxisScale[0] = 1000;
    card.Values["#1P"] = "12000";
    Tick();
    EXPECT_FLOAT_EQ(p.Poll.Position[0], 12.0f);
    EXPECT_EQ(p.Display.FrontEnd.PositionText[0], "12.0");
}

TEST_F(PollTest, TurretAngleOfMinusTenShowsAs350) {
    p.Display.Visible.TCPositionForm = true;
    card.Values["#4P"] = "-10";
    Tick();
    EXPECT_FLOAT_EQ(p.Poll.Position[3], 350);
    EXPECT_EQ(p.Display.TCPositionTexts[1], "350.00");
}

TEST_F(PollTest, PositionModesReadTheirVariablesOnlyWhileShown) {
    p.AxisScale = {2, 4, 1, 1};
    card.Values["M161"] = "61440";   // 2 * 3072 * 10
    card.Values["M261"] = "-12288";  // 4 * 3072 * -1
    card.Values["#3F"] = "0.5";
    Tick();
    for (const auto& e : card.Exchanges) EXPECT_EQ(e.find("M161"), std::string::npos);
    p.Display.Visible.XYPositionForm = true;
    p.Display.XYMode = PositionMode::Command;
    p.Display.Visible.TCPositionForm = true;
    p.Display.RotaryMode = PositionMode::Follow;
    Tick();
    EXPECT_EQ(p.Display.XYPositionTexts[0], "10.00");
    EXPECT_EQ(p.Display.XYPositionTexts[1], "-1.00");
    EXPECT_EQ(p.Display.TCPositionTexts[0], "0.50");
}

TEST_F(PollTest, TwentyLogicBitsFillEighteenLines) {
    p.Display.Visible.MessageForm = true;
    card.Values["P1020"] = std::to_string((1 << 20) - 1);
    card.Values["M830"] = "0";
    Tick();
    const MessageList& list = p.Display.Messages;
    EXPECT_EQ(list.LineCount, 18);
    EXPECT_EQ(list.Lines[0].Text, " Logic 0");
    EXPECT_EQ(list.Lines[17].Text, " Logic 17");
    EXPECT_EQ(list.Lines[17].HelpFile, dir.Path() + "Help/Logic/17.hlp");
    EXPECT_EQ(list.SelectedMessage, 1);
}

TEST_F(PollTest, IOMessageStandsFirstThenLogicThenReceivedPrograms) {
    p.Display.Visible.MessageForm = true;
    p.Display.NewProgramsReceived = true;
    p.Display.ReceiveHelpFile = "Help/Receive.hlp";
    card.Values["M830"] = "12";
    card.Values["P1020"] = "5";  // bits 0 and 2
    Tick();
    const MessageList& list = p.Display.Messages;
    ASSERT_EQ(list.LineCount, 4);
    EXPECT_EQ(list.Lines[0].Text, " IO message 12");
    EXPECT_EQ(list.Lines[0].HelpFile, dir.Path() + "Help/IO/12.hlp");
    EXPECT_EQ(list.Lines[1].Text, " Logic 0");
    EXPECT_EQ(list.Lines[2].Text, " Logic 2");
    EXPECT_EQ(list.Lines[3].Text, " New Program(s) Received");
    EXPECT_EQ(list.Lines[3].HelpFile, "Help/Receive.hlp");
    // The selection is kept within the lines.
    p.Display.Messages.SelectedMessage = 9;
    Tick();
    EXPECT_EQ(p.Display.Messages.SelectedMessage, 4);
    // Then the colours tell of waiting messages.
    EXPECT_EQ(p.Display.FrontEnd.Colours, StatusColours::MessagesWaiting);
}

TEST_F(PollTest, MessageNumberOf65OrMoreIsNotShown) {
    p.Display.Visible.MessageForm = true;
    for (const char* number : {"65", "99999", "-3", "garbage"}) {
        card.Values["M830"] = number;
        card.Values["P1020"] = "0";
        Tick();
        EXPECT_EQ(p.Display.Messages.LineCount, 0) << number;
    }
    card.Values["M830"] = "65";
    Tick();
    ASSERT_EQ(p.Display.Notices.size(), 1u);
    EXPECT_EQ(p.Display.Notices[0], "The card reports I/O message 65: IO.msg holds 1 to 64");
    Tick();
    EXPECT_TRUE(p.Display.Notices.empty());
}

TEST_F(PollTest, HoldBitGivesTheHoldColours) {
    card.Values["P1022"] = "4096";
    Tick();
    EXPECT_EQ(p.Poll.HoldBit, 4096);
    EXPECT_EQ(p.Display.FrontEnd.Colours, StatusColours::Hold);
}

TEST_F(PollTest, CardNotInUseLeavesEveryDisplayAtItsStart) {
    p.Card.CardInUse = false;
    p.Display.Visible.MessageForm = true;
    p.Display.Visible.XYPositionForm = true;
    DisplayModel start = p.Display;
    Tick();
    Tick();
    EXPECT_TRUE(card.Exchanges.empty());
    EXPECT_EQ(p.Display.FrontEnd.PositionText, start.FrontEnd.PositionText);
    EXPECT_EQ(p.Display.XYPositionTexts, start.XYPositionTexts);
    EXPECT_EQ(p.Display.Messages.LineCount, 0);
    EXPECT_EQ(p.Display.FrontEnd.Colours, StatusColours::Normal);
    EXPECT_FALSE(p.Running);
}

TEST_F(PollTest, RestartDelayAppliesToTheFirstWaitOnly) {
    p.Card.PollIntervalMs = 50;
    p.Card.PollRestartDelayMs = 500;
    Conversation talk(&card, p.Card, dir.Path(), &platform);
    talk.StartPollTimer(true);
    ASSERT_EQ(platform.TimerCalls.back(), std::make_pair(true, 500));
    PollTick(p, platform, &card);
    EXPECT_EQ(platform.TimerCalls.back(), std::make_pair(true, 50));
    std::size_t calls = platform.TimerCalls.size();
    PollTick(p, platform, &card);
    EXPECT_EQ(platform.TimerCalls.size(), calls);
    // A poll stopped for good is not started again by a late tick.
    talk.StopPollTimer(true);
    calls = platform.TimerCalls.size();
    PollTick(p, platform, &card);
    EXPECT_EQ(platform.TimerCalls.size(), calls);
}

TEST_F(PollTest, SteadyTickWithEveryPanelVisibleTakesAtMostTwoRoundTrips) {
    PresentSlot({0, 0});
    p.Display.Visible = {true, true, true, true, true, true, true, true, true, true};
    p.Display.XYMode = PositionMode::Target;
    p.Display.RotaryMode = PositionMode::Command;
    card.Values["P1022"] = "16384";
    Tick();
    std::size_t mark = Mark();
    Tick();
    EXPECT_LE(Since(mark).size(), 2u);
    EXPECT_EQ(Since(mark).back(), "PC");
}

TEST_F(PollTest, BatchedQueriesAreLoggedAndRememberedOneByOne) {
    p.Card.PollLogOn = true;
    card.Values["P1022"] = "0";
    Tick();
    auto log = ReadLines(dir.Path() + "Polling.txt").value_or(std::vector<std::string>{});
    ASSERT_GE(log.size(), 10u);
    EXPECT_EQ(log[0], "*** GetRspnsLng ***");
    EXPECT_EQ(log[1], "Query   :P1022");
    EXPECT_EQ(log[2], "Response:0");
    EXPECT_EQ(log[5], "*** GetRspnsSngl ***");
    EXPECT_EQ(log[6], "Query   :#1P");
    EXPECT_EQ(p.Card.LastCommand, "P111");
}

TEST_F(PollTest, AFailingCardReadsZeroAndTheCycleGoesOn) {
    card.Values["P1022"] = "16384";
    Tick();
    EXPECT_TRUE(p.Running);
    card.Succeeds = false;
    p.Display.Visible = {true, true, true, true, true, true, true, true, true, true};
    Tick();
    EXPECT_EQ(p.Poll.StatusWord, 0);
    EXPECT_FALSE(p.Running);
    EXPECT_EQ(p.Display.FrontEnd.PositionText[0], "0.0");
}

TEST_F(PollTest, GarbageAndHugeAnswersReadAsZero) {
    card.Values["P1022"] = "99999999999";
    card.Values["#1P"] = "x12";
    card.Values["M869"] = "99999999999";
    PresentSlot({0});
    Tick();
    EXPECT_EQ(p.Poll.StatusWord, 0);
    EXPECT_FLOAT_EQ(p.Poll.Position[0], 0);
    EXPECT_EQ(p.Slots[0].HitCount, 0);
}

TEST_F(PollTest, HitsAreWalkedUpToTheCounter) {
    PresentSlot({0, 0, 0, 0});
    card.Values["P1022"] = "16384";
    card.Values["M869"] = "2";
    Tick();
    EXPECT_TRUE(p.Display.Plot.RunDataReset);
    EXPECT_EQ(p.Display.Plot.DoneHits, (std::vector<std::int32_t>{2, 3}));
    EXPECT_EQ(p.Display.HitCount, 2);
    card.Values["M869"] = "4";
    Tick();
    EXPECT_FALSE(p.Display.Plot.RunDataReset);
    EXPECT_EQ(p.Display.Plot.DoneHits, (std::vector<std::int32_t>{4, 5}));
    EXPECT_EQ(p.Slots[0].LastHitCount, 4);
}

TEST_F(PollTest, SkippedHitsAreCountedNotDrawnAndMoveTheBaseUp) {
    // Hits 1 and 3 are in the group of block skip 1; the card punched hits 2 and 4.
    PresentSlot({1, 0, 1, 0});
    card.Values["P1022"] = "16384";
    card.Values["M873"] = "1";
    card.Values["M869"] = "2";
    Tick();
    EXPECT_EQ(p.Poll.SkipFlags, 1);
    // The walk stops while HitBase + RunCount is not below RunHitFile: the skipped record counts
    // against the limit twice (once walked, once in the base), so hit 2 waits for a higher counter.
    EXPECT_EQ(p.Slots[0].HitBase, 1);
    EXPECT_EQ(p.Slots[0].RunCount, 2);
    EXPECT_TRUE(p.Display.Plot.DoneHits.empty());
    card.Values["M869"] = "3";
    Tick();
    EXPECT_EQ(p.Display.Plot.DoneHits, (std::vector<std::int32_t>{3}));
}

TEST_F(PollTest, AHitFileShorterThanTheCounterSaysSoOnce) {
    PresentSlot({0, 0});
    card.Values["P1022"] = "16384";
    card.Values["M869"] = "5";
    Tick();
    EXPECT_EQ(p.Display.Plot.DoneHits, (std::vector<std::int32_t>{2, 3}));
    ASSERT_EQ(p.Display.Notices.size(), 1u);
    EXPECT_NE(p.Display.Notices[0].find("holds 3 records: the card counts 5 hits"), std::string::npos);
    EXPECT_EQ(p.Slots[0].RunCount, 3);
    Tick();
    EXPECT_TRUE(p.Display.Notices.empty());
    EXPECT_TRUE(p.Display.Plot.DoneHits.empty());
}

TEST_F(PollTest, CurrentBlockFromTheProgramCounter) {
    // The map of slot 1's M2: word 0 and 1 in block 0 (record 1), word 2 in block 1 (record 3).
    SlotRecord& slot = p.Slots[0];
    slot.Counts[1].MapWordCount = 3;
    std::string w;
    auto word = [&](int a, int b, int c) {
        for (int v : {a, b, c}) { w += static_cast<char>(v & 0xFF); w += static_cast<char>(v >> 8); }
    };
    word(0, 0, 1);
    word(1, 0, 1);
    word(2, 1, 3);
    dir.Write("Actvprg1.W2", w);
    std::string ra = std::string("N10 G00") + std::string(73, ' ') + std::string("N20") + std::string(77, ' ') +
                     std::string("N30 X5") + std::string(74, ' ');
    dir.Write("Actvprg1.RA2", ra);
    p.Display.Visible.ViewProgForm = true;
    card.Values["P1022"] = "16384";
    card.Values["PC"] = "P3:2";
    Tick();
    EXPECT_TRUE(p.Card.ReportCardErrors);
    EXPECT_TRUE(p.Display.Block.Changed);
    EXPECT_EQ(p.Display.Block.Program, 3);
    EXPECT_EQ(p.Display.Block.Record, 3);
    EXPECT_EQ(p.Display.Block.MotionBlockIndex, 1);
    EXPECT_EQ(p.Display.Block.SourceText, "N30 X5");
    Tick();
    EXPECT_FALSE(p.Display.Block.Changed);
    // At rest the block stays, in the active slot's program.
    card.Values["P1022"] = "0";
    Tick();
    EXPECT_EQ(p.Display.Block.Program, 1);
    EXPECT_EQ(p.Display.Block.Record, 3);
}

TEST_F(PollTest, CurrentBlockQueryRaisesNoAlarm) {
    std::vector<bool> reported;
    card.SetFaultHandler([&](std::int32_t, const std::string&) { reported.push_back(p.Card.ReportCardErrors); });
    card.Errors.insert("PC");
    card.Values["P1022"] = "16384";
    card.Values["#1P"] = "7";
    p.Display.Visible.ViewProgForm = true;
    Tick();
    // The fault came while errors were not reported, and the other reads of the tick stand.
    EXPECT_EQ(reported, std::vector<bool>{false});
    EXPECT_TRUE(p.Card.ReportCardErrors);
    EXPECT_TRUE(p.Running);
    EXPECT_EQ(p.Display.FrontEnd.PositionText[0], "7.0");
    // The PC query is an exchange of its own, never part of the batch.
    for (const auto& e : card.Exchanges) EXPECT_TRUE(e == "PC" || e.find("PC") == std::string::npos) << e;
}

TEST_F(PollTest, BatchPanelAtTheEndOfARun) {
    PresentSlot({0});
    card.Values["P1022"] = "16384";
    Tick();
    card.Values["P1022"] = "0";
    card.Values["M863"] = "2";
    card.Values["M864"] = "10";
    card.Values["M865"] = "5";
    card.Values["M866"] = "3";
    Tick();
    EXPECT_EQ(p.Slots[0].Batch, (SlotBatch{2, 10, 5, 3, 2}));
    EXPECT_EQ(p.Display.Batch.Texts[4], "2");
    // While an edit is open nothing changes.
    p.Display.Visible.BatchForm = true;
    p.Display.BatchEditing = true;
    card.Values["M866"] = "4";
    Tick();
    EXPECT_EQ(p.Slots[0].Batch[3], 3);
}

TEST_F(PollTest, RunTimeIsMinutesAndSeconds) {
    EXPECT_EQ(RunTimeText(9.4f), "0:09");
    EXPECT_EQ(RunTimeText(65), "1:05");
    EXPECT_EQ(RunTimeText(3600), "60:00");
    p.Display.Visible.MachineStatusForm = true;
    card.Values["Q17"] = "125.5";
    Tick();
    EXPECT_EQ(p.Display.MachineStatus.RunTimeText, "2:05");
}

TEST_F(PollTest, PlasmaPanelShowsTheCardsValuesBesideTheSettings) {
    p.Display.Visible.PlasmaStatusForm = true;
    card.Values["M885"] = "1";
    card.Values["M887"] = "1";
    card.Values["M872"] = "2";
    card.Values["P101"] = "1500";
    p.Slots[0].PlasmaSettings.RapidSpeed = 1400;
    Tick();
    EXPECT_EQ(p.Display.Plasma.TorchHeightText, " DOWN");
    EXPECT_EQ(p.Display.Plasma.InputTexts[0], " ON");
    EXPECT_EQ(p.Display.Plasma.InputTexts[1], " OFF");
    EXPECT_EQ(p.Display.Plasma.OffsetSideText, " RIGHT");
    EXPECT_EQ(p.Display.Plasma.CardTexts[0], "1500");
    EXPECT_EQ(p.Display.Plasma.SettingTexts[0], "1400");
}

TEST_F(PollTest, ProfilerHeadEdgesAskForARefresh) {
    p.Config.Machine.ProfilerKind = 2;
    card.Values["P1022"] = "1048576";
    Tick();
    EXPECT_TRUE(p.Poll.ProfilerHead);
    EXPECT_TRUE(p.Display.HeadCaptionsChanged);
    EXPECT_TRUE(p.Display.Plot.FullRefresh);
    Tick();
    EXPECT_FALSE(p.Display.HeadCaptionsChanged);
    card.Values["P1022"] = "0";
    Tick();
    EXPECT_TRUE(p.Display.HeadCaptionsChanged);
}

TEST_F(PollTest, TooMuchOrGarbageForTheCounterMessagesAndStatus) {
    p.Display.Visible.ViewProgForm = true;
    p.Display.Visible.MessageForm = true;
    card.Values["P1022"] = "16384";
    for (const std::string& counter : {std::string("P1:") + std::string(5000, '9'), std::string("P7:5"),
                                       std::string("P2:-3 P1:x"), std::string(3000, 'P'), std::string()}) {
        card.Values["PC"] = counter;
        card.Values["M830"] = std::string(2000, '7');
        card.Values["P1020"] = "1" + std::string(400, '0');
        Tick();
        EXPECT_TRUE(p.Running) << counter.substr(0, 20);
        EXPECT_EQ(p.Display.Messages.LineCount, 0);
        EXPECT_GE(p.Display.Block.Program, 1);
        EXPECT_LE(p.Display.Block.Program, 4);
    }
    card.Values["P1022"] = std::string(1000, '1');
    Tick();
    EXPECT_EQ(p.Poll.StatusWord, 0);
    EXPECT_FALSE(p.Running);
}

TEST_F(PollTest, ClampPanelShowsActualBesideDemandAsFarAsTheClampsGo) {
    p.Slots[0].Present = true;
    p.Slots[0].Clamps = {150, 600, 1050, 1500};
    p.Poll.ClampActual = {149.995f, 600.5f, 1050, 1700};
    UpdateClampPanel(p);
    EXPECT_EQ(p.Display.Clamps.ActualTexts, (std::array<std::string, 4>{"150.00", "600.50", "1050.00", ""}));
    EXPECT_EQ(p.Display.Clamps.DemandTexts, (std::array<std::string, 4>{"150.00", "600.00", "1050.00", ""}));
    // With no valid station the status rows show the clamps as they are.
    p.Poll.CurrentStation = 0;
    UpdateMachineStatus(p);
    EXPECT_EQ(p.Display.MachineStatus.StationText, "0");
    EXPECT_EQ(p.Display.MachineStatus.ClampTexts[1], "600.5");
    EXPECT_EQ(p.Display.MachineStatus.OffsetTexts[0], "0.0");
}

TEST_F(PollTest, AHugeCounterIsCaughtUpOverSeveralTicks) {
    PresentSlot(std::vector<std::int16_t>(12000, 0));
    card.Values["P1022"] = "16384";
    card.Values["M869"] = "2000000000";
    Tick();
    EXPECT_EQ(p.Display.Plot.DoneHits.size(), 9999u);  // the Sheet is the first record walked
    EXPECT_TRUE(p.Display.Notices.empty());
    Tick();
    EXPECT_EQ(p.Display.Plot.DoneHits.size(), 2001u);
    EXPECT_EQ(p.Display.Plot.DoneHits.back(), 12001);
    ASSERT_EQ(p.Display.Notices.size(), 1u);
}

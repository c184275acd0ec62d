#include "system/machine_commands.h"

#include "controller/card_variables.h"
#include "core/number.h"
#include "system/startup.h"

namespace kirvana {

namespace {

const char* const RunningOrFeedhold = "While Machine Is Running Or In Feedhold !";

Refusal Refuse(bool refused, const char* firstLine, const char* secondLine = RunningOrFeedhold) {
    if (!refused) return std::nullopt;
    return std::string(firstLine) + "\n\n" + secondLine;
}

bool RunningHoldOrCycle(const Process& process) { return process.Running || process.InFeedhold || process.InCycle; }

// "NAME=" and the value at full precision.
std::string Assign(const char* name, double value) { return card::Assignment(name, FormatNumber(value, -1)); }
std::string Assign(const char* name, std::int32_t value) { return card::Assignment(name, LongText(value)); }

// A command that is one request bit behind its interlock.
Refusal Request(Conversation& talk, Refusal refusal, std::int32_t bit) {
    if (!refusal) talk.Download(card::RequestText(bit));
    return refusal;
}

constexpr std::array<int, JogSpeedOptions> JogSpeeds = {1, 5, 10, 25, 50, 75, 100};
constexpr std::array<const char*, JogSpeedOptions> JogSpeedCaptions = {"1 (&H)",  "5 (&I)",  "10 (&J)", "25 (&K)",
                                                                       "50 (&L)", "75 (&M)", "100 (&N)"};
constexpr std::array<const char*, JogDistanceOptions> JogDistanceCaptions = {
    "CONT (&G)", "100 (&F)", "50 (&E)", "10 (&D)", "1 (&C)", "0.1 (&B)", "0.01 (&A)"};

}  // namespace

Refusal ReferenceInterlock(const Process& process) { return Refuse(RunningHoldOrCycle(process), "Can Not Reference"); }

Refusal LoadInterlock(const Process& process, std::int32_t logicBits) {
    return Refuse(RunningHoldOrCycle(process) && logicBits != 0 && logicBits != 16, "Can Not Move");
}

Refusal MoveInterlock(const Process& process) {
    return Refuse(RunningHoldOrCycle(process) || process.Poll.HoldBit != 0, "Can Not Move");
}

Refusal CarriageInterlock(const Process& process) { return Refuse(RunningHoldOrCycle(process), "Can Not Move"); }

Refusal JogInterlock(const Process& process) { return Refuse(process.Running || process.InFeedhold, "Can Not Jog"); }

Refusal TurretMoveInterlock(const Process& process) {
    return Refuse(RunningHoldOrCycle(process), "Can Not Move Turret");
}

Refusal TurretPunchInterlock(const Process& process) { return Refuse(RunningHoldOrCycle(process), "Can Not Punch"); }

Refusal SlotChangeInterlock(const Process& process) {
    return Refuse(process.Running, "Can Not Change Program", "While Machine Is Running !");
}

Refusal ReferenceMachine(Process& process, Conversation& talk, int index) {
    // All, axes, clamps, turret, index: the turret and the index axis share one bit.
    constexpr std::array<std::int32_t, 5> Bits = {card::RequestReferenceAll, card::RequestReferenceAxes,
                                                  card::RequestReferenceClamps, card::RequestReferenceTurret,
                                                  card::RequestReferenceTurret};
    if (index < 0 || index >= static_cast<int>(Bits.size())) return std::nullopt;
    return Request(talk, ReferenceInterlock(process), Bits[index]);
}

Refusal ReferenceClamps(Process& process, Conversation& talk) {
    return Request(talk, ReferenceInterlock(process), card::RequestReferenceClamps);
}

Refusal MoveCarriage(Process& process, Conversation& talk) {
    return Request(talk, CarriageInterlock(process), card::RequestMoveCarriage);
}

std::int32_t ChangeFeed(Conversation& talk, std::int32_t feedOverride, int step) {
    std::int32_t feed = feedOverride + step;
    talk.Download(std::string(card::FeedOverride) + LongText(feed));
    return feed;
}

std::array<float, 4> ReadLoadPositions(Conversation& talk) {
    return {talk.GetRspnsSngl(card::LoadPosition1[0], -1), talk.GetRspnsSngl(card::LoadPosition1[1], -1),
            talk.GetRspnsSngl(card::LoadPosition2[0], -1), talk.GetRspnsSngl(card::LoadPosition2[1], -1)};
}

Refusal LoadPosition(Process& process, Conversation& talk, int button, double x, double y) {
    if (button != 1 && button != 2) return std::nullopt;
    // The positions are written in every case; the move is what the interlock may refuse.
    const char* const* names = button == 1 ? card::LoadPosition1 : card::LoadPosition2;
    talk.Download(Assign(names[0], x));
    talk.Download(Assign(names[1], y));
    talk.GetRspnsLng(card::IOMessageNumber);
    std::int32_t logicBits = talk.GetRspnsLng(card::LogicMessageBits);
    return Request(talk, LoadInterlock(process, logicBits),
                   button == 1 ? card::RequestLoadPosition1 : card::RequestLoadPosition2);
}

Refusal MoveToPosition(Process& process, Conversation& talk, bool punch, std::int32_t station, double x, double y,
                       double index) {
    if (Refusal refusal = MoveInterlock(process)) return refusal;
    talk.Download(Assign(card::Station, station));
    talk.Download(Assign(card::MoveTarget[0], x));
    talk.Download(Assign(card::MoveTarget[1], y));
    talk.Download(Assign(card::MoveTarget[2], index));
    talk.Download(card::RequestText(punch ? card::RequestMoveAndPunch : card::RequestMove));
    return std::nullopt;
}

Refusal MoveTurret(Process& process, Conversation& talk, std::int32_t position) {
    if (Refusal refusal = TurretMoveInterlock(process)) return refusal;
    talk.Download(Assign(card::Station, position));
    return std::nullopt;
}

Refusal PunchTurret(Process& process, Conversation& talk, std::int32_t position) {
    if (Refusal refusal = TurretPunchInterlock(process)) return refusal;
    talk.Download(Assign(card::Station, position));
    talk.Download(card::RequestText(card::RequestPunch));
    return std::nullopt;
}

std::string JogSpeedCaption(int option) {
    return option >= 0 && option < JogSpeedOptions ? JogSpeedCaptions[option] : "";
}

std::string JogDistanceCaption(int option) {
    return option >= 0 && option < JogDistanceOptions ? JogDistanceCaptions[option] : "";
}

JogSettings ActivateJog(const Process& process, Conversation& talk) {
    JogSettings settings;
    // 1. The Y buttons by the machine's orientation.
    bool normal = process.Config.Machine.MachineOrientation == 1;
    settings.ButtonCaptions = {"X+", "X-", normal ? "Y+" : "Y-", normal ? "Y-" : "Y+"};
    // 2. The options from the card.
    settings.FormValueText = FormatNumber(talk.GetRspnsSngl(card::JogFormValue, -1), -1);
    std::int32_t byDistance = talk.GetRspnsLng(card::JogByDistance);
    std::int32_t distance = talk.GetRspnsLng(card::JogDistance);
    std::int32_t speed = talk.GetRspnsLng(card::JogSpeed);
    for (int n = 0; n < JogSpeedOptions; ++n)
        if (JogSpeeds[n] == speed) settings.SpeedOption = n;
    if (byDistance == 0)
        settings.DistanceOption = 0;
    else if (byDistance == 1 && distance >= 1 && distance < JogDistanceOptions)
        settings.DistanceOption = distance;
    if (settings.DistanceOption < 0) {
        talk.Download(Assign(card::JogByDistance, 0));
        talk.Download(Assign(card::JogDistance, 4));
        settings.DistanceOption = 0;
    }
    return settings;
}

void SetJogSpeed(Conversation& talk, int option) {
    if (option >= 0 && option < JogSpeedOptions) talk.Download(Assign(card::JogSpeed, JogSpeeds[option]));
}

void SetJogDistance(Conversation& talk, int option) {
    if (option < 0 || option >= JogDistanceOptions) return;
    if (option == 0) {
        talk.Download(Assign(card::JogByDistance, 0));
        return;
    }
    talk.Download(Assign(card::JogByDistance, 1));
    talk.Download(Assign(card::JogDistance, option));
}

Refusal JogKeyDown(Process& process, Conversation& talk, JogDirection direction) {
    if (Refusal refusal = JogInterlock(process)) return refusal;
    // Y follows the machine's orientation: only orientation 1 has Y plus as the card's plus.
    std::int32_t yPlus = process.Config.Machine.MachineOrientation == 1 ? 1 : -1;
    switch (direction) {
        case JogDirection::XPlus:
            talk.Download(Assign(card::JogX, 1));
            break;
        case JogDirection::XMinus:
            talk.Download(Assign(card::JogX, -1));
            break;
        case JogDirection::YPlus:
            talk.Download(Assign(card::JogY, yPlus));
            break;
        case JogDirection::YMinus:
            talk.Download(Assign(card::JogY, -yPlus));
            break;
    }
    return std::nullopt;
}

void JogKeyUp(Conversation& talk) {
    talk.Download(Assign(card::JogX, 0));
    talk.Download(Assign(card::JogY, 0));
}

void SetBlockSkip(Conversation& talk, int which, bool on) {
    if (which == 1 || which == 2) talk.Download(Assign(card::BlockSkip[which - 1], on ? 1 : 0));
}

std::array<bool, 2> ReadBlockSkips(Conversation& talk) {
    return {talk.GetRspnsBln(card::BlockSkip[0]), talk.GetRspnsBln(card::BlockSkip[1])};
}

bool SetBatch(Process& process, Conversation& talk, const SlotBatch& batch) {
    int slot = process.Config.ActiveSlot;
    if (slot < 1 || slot > 2) return true;
    process.Slots[slot - 1].Batch = batch;
    SendBatchBlock(talk, {batch[0], batch[1], batch[2], batch[3]});
    return WriteSlotBatch(process.Config.Dirs, slot, batch);
}

bool ClearBatch(Process& process, Conversation& talk) { return SetBatch(process, talk, SlotBatch{}); }

bool SaveBatchAtShutdown(Process& process, Conversation& talk) {
    const int slot = process.Config.ActiveSlot;
    if (slot < 1 || slot > 2 || !process.Slots[slot - 1].Present) return true;
    SlotBatch& batch = process.Slots[slot - 1].Batch;
    if (process.Card.CardInUse) {
        const std::vector<std::string> answers =
            talk.GetRspnsBatch({card::Batch[0], card::Batch[1], card::Batch[2], card::Batch[3]},
                               {"GetRspnsLng", "GetRspnsLng", "GetRspnsLng", "GetRspnsLng"});
        std::array<std::int32_t, 4> counters{};
        for (std::size_t n = 0; n < counters.size(); ++n) counters[n] = n < answers.size() ? AnswerLng(answers[n]) : 0;
        batch = BatchOfCounters(counters);
    }
    return WriteSlotBatch(process.Config.Dirs, slot, batch);
}

Refusal ChangeActiveSlot(Process& process, StartupPlatform& platform, CardLink* link, int slot) {
    if (Refusal refusal = SlotChangeInterlock(process)) return refusal;
    if (slot != 1 && slot != 2) return std::nullopt;
    process.Config.ActiveSlot = static_cast<std::int16_t>(slot);
    // The change stands on the card either way; a Control.cfg that can't be written is told.
    if (!WriteControlConfig(process.Config))
        platform.ShowWarning("File Fault : " + process.Config.Dirs.RootDir + "Control.cfg");
    SendSlotBlocks(process, platform, link, process.Slots[slot - 1].HitCount);
    return std::nullopt;
}

}  // namespace kirvana

// The poll cycle. The queries of a tick that don't depend on each other's answers go to the card
// together: the first round trip carries the status word and every read of the visible forms,
// a second one only the data of the requests the status word raised. Each query is still
// remembered and logged on its own, and a query that fails reads 0.
#include "system/poll_cycle.h"

#include <algorithm>
#include <cmath>
#include <fstream>

#include "analysis/drawing_file.h"
#include "controller/card_variables.h"
#include "controller/download.h"
#include "core/geometry.h"
#include "core/number.h"
#include "core/paths.h"
#include "core/station_kind.h"
#include "core/text.h"
#include "core/words.h"
#include "system/startup.h"

namespace kirvana {

namespace {

// The queries of one round trip: gathered by the steps, sent as one exchange, read by index.
class QueryBatch {
public:
    int Add(const char* name, std::string query) {
        names_.push_back(name);
        queries_.push_back(std::move(query));
        return static_cast<int>(queries_.size()) - 1;
    }
    int AddLng(std::string query) { return Add("GetRspnsLng", std::move(query)); }
    int AddSngl(std::string query) { return Add("GetRspnsSngl", std::move(query)); }
    int AddBln(std::string query) { return Add("GetRspnsBln", std::move(query)); }
    void Run(Conversation& talk) {
        if (!queries_.empty()) answers_ = talk.GetRspnsBatch(queries_, names_);
    }
    // A query that was not asked reads as a missing answer.
    std::string_view Text(int i) const {
        return i >= 0 && static_cast<std::size_t>(i) < answers_.size() ? std::string_view(answers_[i])
                                                                       : std::string_view();
    }
    std::int32_t Lng(int i) const { return AnswerLng(Text(i)); }
    float Sngl(int i, int places) const { return AnswerSngl(Text(i), places); }
    bool Bln(int i) const { return AnswerBln(Text(i)); }

private:
    std::vector<std::string> queries_;
    std::vector<const char*> names_;
    std::vector<std::string> answers_;
};

// Where the answers of the first round trip stand; -1: not asked this tick.
struct FirstRound {
    int Status = -1;
    int Skip[2] = {-1, -1};
    int RunTime = -1;
    int Hits = -1;
    int Position[4] = {-1, -1, -1, -1};
    int Feed = -1, P111 = -1;
    int XYMode[2] = {-1, -1}, TCMode[2] = {-1, -1};
    int MessageNo = -1, LogicBits = -1;
    int Batch[4] = {-1, -1, -1, -1};
    int TorchHeight = -1, Inputs[3] = {-1, -1, -1}, OffsetSide = -1;
    int Plasma[10] = {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1};
};

// The second round trip: the data of the card's requests.
struct RequestRound {
    int Station = -1;
    int Clamps[4] = {-1, -1, -1, -1};
    int Reference[3] = {-1, -1, -1};
    int Work[2] = {-1, -1};
    int Batch[4] = {-1, -1, -1, -1};
};

// The tick's working set: the records, the link and the answers.
struct Tick {
    Process& P;
    PollState& Poll;
    DisplayModel& Display;
    Conversation& Talk;
    QueryBatch First;
    FirstRound At;
    QueryBatch Second;
    RequestRound Req;
};

bool HasActiveSlot(const Process& process) {
    int slot = process.Config.ActiveSlot;
    return slot >= 1 && slot <= 2 && process.Slots[slot - 1].Present;
}

bool Bit(std::int32_t word, std::int32_t bit) { return (word & bit) != 0; }

// The mode table of XYPositionForm (axes 1 and 2) and TCPositionForm (axes 3 and 4).
std::string ModeQuery(PositionMode mode, int axis) {
    switch (mode) {
        case PositionMode::Command:
            return card::CommandedPosition[axis];
        case PositionMode::Target:
            return card::TargetPosition[axis];
        case PositionMode::Follow:
            return card::FollowingError[axis];
        default:
            return {};
    }
}

// A value of the mode table in the program's unit: M values are in 1/3072 of a count.
float ModeValue(PositionMode mode, float value, double scale) {
    if (mode == PositionMode::Follow) return scale != 0 ? ToSingle(value / scale) : value;
    return ToSingle(value / (scale != 0 ? scale * 3072 : 3072));
}

// Gathers the reads of the first round trip, in the order of the steps that use them.
void GatherFirstRound(Tick& t) {
    const FormVisibility& visible = t.Display.Visible;
    t.At.Status = t.First.AddLng(card::StatusWord);
    if (HasActiveSlot(t.P)) {
        t.At.Skip[0] = t.First.AddBln(card::BlockSkip[0]);
        t.At.Skip[1] = t.First.AddBln(card::BlockSkip[1]);
        t.At.RunTime = t.First.AddSngl(card::RunTime);
        t.At.Hits = t.First.AddLng(card::HitCounter);
    } else if (visible.MachineStatusForm) {
        t.At.RunTime = t.First.AddSngl(card::RunTime);
    }
    if (t.P.Card.CardInUse) {
        for (int n = 0; n < 4; ++n) t.At.Position[n] = t.First.AddSngl(card::ActualPosition[n]);
        t.At.Feed = t.First.AddSngl(card::FeedOverride);
        t.At.P111 = t.First.AddSngl(card::PositionBoxFigure);
        if (visible.XYPositionForm && t.Display.XYMode != PositionMode::Actual)
            for (int n = 0; n < 2; ++n) t.At.XYMode[n] = t.First.AddSngl(ModeQuery(t.Display.XYMode, n));
        if (visible.TCPositionForm && t.Display.RotaryMode != PositionMode::Actual)
            for (int n = 0; n < 2; ++n) t.At.TCMode[n] = t.First.AddSngl(ModeQuery(t.Display.RotaryMode, n + 2));
    }
    if (visible.MessageForm) {
        t.At.MessageNo = t.First.AddLng(card::IOMessageNumber);
        t.At.LogicBits = t.First.AddLng(card::LogicMessageBits);
    }
    if (visible.BatchForm)
        for (int n = 0; n < 4; ++n) t.At.Batch[n] = t.First.AddLng(card::Batch[n]);
    if (visible.PlasmaStatusForm) {
        t.At.TorchHeight = t.First.AddLng(card::TorchHeight);
        for (int n = 0; n < 3; ++n) t.At.Inputs[n] = t.First.AddLng(card::ProfilerInput[n]);
        t.At.OffsetSide = t.First.AddLng(card::ProfilerOffsetSide);
        for (int n = 0; n < 10; ++n) t.At.Plasma[n] = t.First.AddSngl(card::PlasmaSettings[n]);
    }
}

// The station of the active slot's table, or null when the number isn't a station of it.
const Station* SlotStation(const Process& process, int number) {
    const StationTable& table = SlotTable(process.Tools, process.Config.ActiveSlot);
    if (number < 1 || number > process.Config.Machine.StationCount || static_cast<std::size_t>(number) > table.size())
        return nullptr;
    return &table[number - 1];
}

// Station numbers valid on this machine.
bool ValidStation(const Process& process, int number) {
    return number >= 1 && number <= process.Config.Machine.StationCount;
}

// The tool number of the current station on the position display, two digits.
void ShowStation(Tick& t) {
    const Station* station = SlotStation(t.P, t.Poll.CurrentStation);
    t.Display.FrontEnd.PositionText[3] = ZeroPad(station ? station->TNumber : 0, 2);
}

// ReadCurrentStation: the station read while running (a second read after an invalid one), or
// the slot's active station at rest. Gives the station that was read, valid or not.
int ReadCurrentStation(Tick& t) {
    int station;
    if (t.P.Running) {
        station = WrapStation(t.Second.Lng(t.Req.Station));
        if (!ValidStation(t.P, station)) station = WrapStation(t.Talk.GetRspnsLng(card::Station));
        if (!ValidStation(t.P, station)) return station;
    } else {
        int slot = t.P.Config.ActiveSlot;
        station = WrapStation(slot >= 1 && slot <= 2 ? t.P.Slots[slot - 1].ActiveStation : 1);
        if (!ValidStation(t.P, station)) station = 1;
    }
    t.Poll.CurrentStation = static_cast<std::int16_t>(station);
    ShowStation(t);
    return station;
}

}  // namespace

void UpdateMachineStatus(Process& process) {
    MachineStatusDisplay& status = process.Display.MachineStatus;
    const PollState& poll = process.Poll;
    const Station* station = SlotStation(process, poll.CurrentStation);
    status.ClampCount = std::clamp<int>(process.Config.Machine.ClampCount, 0, 4);
    float offsetX = station ? station->OffsetX : 0;
    for (int n = 0; n < 4; ++n)
        status.ClampTexts[n] = n < status.ClampCount ? FormatNumber(ToSingle(poll.ClampActual[n] - offsetX), 1) : "";
    if (!station) {
        status.StationText = "0";
        status.ToolText.clear();
        status.OffsetTexts = {"0.0", "0.0", "0.0"};
        return;
    }
    status.StationText = IntegerText(poll.CurrentStation);
    status.ToolText = std::string(Trim(station->ToolText));
    status.OffsetTexts = {FormatNumber(station->OffsetX, 1), FormatNumber(station->OffsetY, 1),
                          FormatNumber(station->OffsetZ, 1)};
}

void UpdateClampPanel(Process& process) {
    ClampPanel& panel = process.Display.Clamps;
    panel.ClampCount = std::clamp<int>(process.Config.Machine.ClampCount, 0, 4);
    const SlotRecord* slot = HasActiveSlot(process) ? &process.Slots[process.Config.ActiveSlot - 1] : nullptr;
    for (int n = 0; n < 4; ++n) {
        bool shown = n < panel.ClampCount;
        panel.ActualTexts[n] = shown ? FormatNumber(process.Poll.ClampActual[n], 2) : "";
        panel.DemandTexts[n] = shown && slot ? FormatNumber(slot->Clamps[n], 2) : "";
    }
}

namespace {

// 1. The status word and the machine states.
void ReadStatus(Tick& t) {
    t.Poll.StatusWord = t.First.Lng(t.At.Status);
    t.Poll.WasRunning = t.P.Running;
    t.P.Running = Bit(t.Poll.StatusWord, card::StatusRunning);
    t.P.InFeedhold = Bit(t.Poll.StatusWord, card::StatusInFeedhold);
    t.P.InCycle = Bit(t.Poll.StatusWord, card::StatusInCycle);
}

// 2. The profiler's head and latch: an edge either way asks for new captions and a full refresh.
void ReadProfilerEdges(Tick& t) {
    if (t.P.Config.Machine.ProfilerKind <= 0) return;
    auto edge = [&](bool& now, bool& before, std::int32_t bit) {
        before = now;
        now = Bit(t.Poll.StatusWord, bit);
        if (now != before) {
            t.Display.HeadCaptionsChanged = true;
            t.Display.Plot.FullRefresh = true;
        }
    };
    edge(t.Poll.ProfilerHead, t.Poll.ProfilerHeadBefore, card::StatusProfilerHead);
    edge(t.Poll.ProfilerLatch, t.Poll.ProfilerLatchBefore, card::StatusProfilerLatch);
}

// 3. The card's requests, each read, acted on and acknowledged in its order.
void ServiceCardRequests(Tick& t) {
    if (!t.P.Card.CardInUse) return;
    const std::int32_t status = t.Poll.StatusWord;
    const bool turret = t.P.Config.Machine.HasTurret;
    const bool runFell = t.Poll.WasRunning && !t.P.Running;
    // The data of every raised request (and of the batch at the end of a run) in one round trip.
    if (Bit(status, card::StatusNewStation) && turret && t.P.Running) t.Req.Station = t.Second.AddLng(card::Station);
    if (Bit(status, card::StatusNewClamps))
        for (int n = 0; n < 4; ++n) t.Req.Clamps[n] = t.Second.AddSngl(card::ClampPosition[n]);
    if (Bit(status, card::StatusNewReferenceOffsets))
        for (int n = 0; n < 3; ++n) t.Req.Reference[n] = t.Second.AddSngl(card::ReferenceOffset[n]);
    if (Bit(status, card::StatusNewWorkOffsets))
        for (int n = 0; n < 2; ++n) t.Req.Work[n] = t.Second.AddSngl(card::WorkOffset[n]);
    if (runFell && !t.Display.Visible.BatchForm)
        for (int n = 0; n < 4; ++n) t.Req.Batch[n] = t.Second.AddLng(card::Batch[n]);
    t.Second.Run(t.Talk);

    // Bit 512: a new station; one out of range keeps the request standing.
    if (Bit(status, card::StatusNewStation)) {
        if (turret) {
            int station = ReadCurrentStation(t);
            if (ValidStation(t.P, station)) {
                if (const Station* s = SlotStation(t.P, station)) SendStationBlock(t.Talk, StationBlockOf(*s), false);
                t.Talk.Download(card::AcknowledgeText(card::StatusNewStation));
                t.Display.Plot.ToolChanged = true;
                UpdateMachineStatus(t.P);
            }
        } else {
            t.Talk.Download(card::AcknowledgeText(card::StatusNewStation));
        }
    }
    // Bit 256: the clamps.
    if (Bit(status, card::StatusNewClamps)) {
        for (int n = 0; n < 4; ++n) t.Poll.ClampActual[n] = t.Second.Sngl(t.Req.Clamps[n], -1);
        t.Talk.Download(card::AcknowledgeText(card::StatusNewClamps));
        t.Display.Plot.ToolChanged = true;
        UpdateClampPanel(t.P);
        UpdateMachineStatus(t.P);
    }
    // Bit 262144: the reference offsets and the turret's.
    if (Bit(status, card::StatusNewReferenceOffsets)) {
        t.Poll.ReferenceOffset[0] = t.Second.Sngl(t.Req.Reference[0], -1);
        t.Poll.ReferenceOffset[1] = t.Second.Sngl(t.Req.Reference[1], -1);
        t.Poll.TurretOffset = t.Second.Sngl(t.Req.Reference[2], -1);
        t.Poll.ReferenceOffset[2] = 0;
        t.Talk.Download(card::AcknowledgeText(card::StatusNewReferenceOffsets));
    }
    // Bit 65536: the work offsets.
    if (Bit(status, card::StatusNewWorkOffsets)) {
        for (int n = 0; n < 2; ++n) t.Poll.WorkOffset[n] = t.Second.Sngl(t.Req.Work[n], -1);
        t.Talk.Download(card::AcknowledgeText(card::StatusNewWorkOffsets));
        t.Display.Plot.ToolChanged = true;
        UpdateMachineStatus(t.P);
    }
}

inline constexpr int MaxHitsWalkedPerTick = 10000;

// Whether the skip rule leaves a hit out: path mode 1 under skip 1, path mode 2 under skip 2.
bool Skipped(std::int16_t pathMode, std::int16_t skipFlags) {
    return (pathMode == 1 && (skipFlags == 1 || skipFlags == 3)) ||
           (pathMode == 2 && (skipFlags == 2 || skipFlags == 3));
}

// 4. The hits: the card's counter, and the `.dr1` walked up to it.
void UpdateHitCounts(Tick& t) {
    if (!HasActiveSlot(t.P)) return;
    const int slotIndex = t.P.Config.ActiveSlot - 1;
    SlotRecord& slot = t.P.Slots[slotIndex];
    // 1. A run begins: the plot's run data start anew.
    if (t.P.Running && !t.Poll.WasRunning) {
        t.Display.Plot.RunDataReset = true;
        slot.LastHitCount = 0;
        slot.RunCount = 0;
        slot.HitBase = 0;
        t.Poll.RunMarked[slotIndex] = true;
    }
    // 2. Block skip; 3. the run time.
    t.Poll.SkipFlags =
        static_cast<std::int16_t>((t.First.Bln(t.At.Skip[0]) ? 1 : 0) + (t.First.Bln(t.At.Skip[1]) ? 2 : 0));
    t.Poll.RunTime = t.First.Sngl(t.At.RunTime, 2);
    // 4. The counter.
    slot.HitCount = t.First.Lng(t.At.Hits);
    slot.RunHitFile = slot.HitCount == INT32_MAX ? INT32_MAX : slot.HitCount + 1;
    t.Display.HitCount = slot.HitCount;
    // 5. The walk: skipped records are counted but not drawn, and move the base up.
    if (slot.HitBase + static_cast<std::int64_t>(slot.RunCount) < slot.RunHitFile) {
        DrawingFile hits;
        std::int32_t records = hits.Open(slot.ExpandedFilePath, true) ? hits.Count() : 0;
        EntityRec rec;
        // A counter far ahead (a card answering garbage) is caught up over several ticks, so that
        // no tick stalls; a machine punches far fewer hits between two ticks.
        int walked = 0;
        while (slot.HitBase + static_cast<std::int64_t>(slot.RunCount) < slot.RunHitFile &&
               walked++ < MaxHitsWalkedPerTick) {
            std::int32_t next = slot.RunCount + 1;
            if (next > records) {
                if (!t.Poll.HitFileShortReported[slotIndex])
                    t.Display.Notices.push_back("The hit file " + FileNameOf(slot.ExpandedFilePath) + " holds " +
                                                LongText(records) + " records: the card counts " +
                                                LongText(slot.HitCount) + " hits");
                t.Poll.HitFileShortReported[slotIndex] = true;
                break;
            }
            slot.RunCount = next;
            if (!hits.Get(next, rec) || rec.Kind != EntityKind::Punch) continue;
            if (Skipped(rec.PathMode, t.Poll.SkipFlags)) {
                ++slot.HitBase;
                continue;
            }
            t.Display.Plot.DoneHits.push_back(next);
        }
    }
    // 6. At rest with no run since the slot changed, nothing more.
    if (!t.P.Running && !t.Poll.RunMarked[slotIndex]) return;
    // 7. The tool, when it moved since the last tick.
    if (t.Poll.Position != t.Poll.PrevPosition) {
        t.Display.Plot.ToolMoved = true;
        t.Display.Plot.FromProfiler = t.Poll.ProfilerHead;
    }
    slot.LastHitCount = slot.HitCount;
}

// 5. The positions, in the program's unit, with the offsets; the feed override and P111.
void UpdatePositions(Tick& t) {
    if (!t.P.Card.CardInUse) return;
    PollState& poll = t.Poll;
    const FormVisibility& visible = t.Display.Visible;
    // 1, 2. The motors, scaled.
    poll.PrevPosition = poll.Position;
    for (int n = 0; n < 4; ++n) {
        poll.Position[n] = t.First.Sngl(t.At.Position[n], -1);
        if (t.P.AxisScale[n] != 0) poll.Position[n] = ToSingle(poll.Position[n] / t.P.AxisScale[n]);
    }
    // 3. The offsets; the turret angle within a turn.
    poll.Position[0] = ToSingle(static_cast<double>(poll.ReferenceOffset[0]) + poll.Position[0] + poll.WorkOffset[0]);
    poll.Position[1] = ToSingle(static_cast<double>(poll.ReferenceOffset[1]) + poll.Position[1] + poll.WorkOffset[1]);
    poll.Position[3] =
        ToSingle(NormaliseAngle(RoundHalfEven(ToSingle(static_cast<double>(poll.TurretOffset) + poll.Position[3]), 3)));
    // 4. Feed override and the position box's last figure.
    poll.FeedOverride = t.First.Sngl(t.At.Feed, 0);
    poll.P111Value = t.First.Sngl(t.At.P111, 0);
    // 5. FrontEnd's texts, and MachineForm's feed.
    auto& text = t.Display.FrontEnd.PositionText;
    text[0] = FormatNumber(poll.Position[0], 1);
    text[1] = FormatNumber(poll.Position[1], 1);
    if (t.P.Config.Machine.HasThirdAxis) text[2] = FormatNumber(poll.Position[2], 1);
    text[4] = FormatNumber(poll.FeedOverride, 0);
    text[5] = FormatNumber(poll.P111Value, 0);
    if (visible.MachineForm) t.Display.MachineFeedText = FormatNumber(poll.FeedOverride, 0);
    // 6. XYJogForm.
    if (visible.XYJogForm) t.Display.JogTexts = {FormatNumber(poll.Position[0], 2), FormatNumber(poll.Position[1], 2)};
    // 7. The position forms, by their modes.
    auto modeTexts = [&](PositionMode mode, const int* at, int firstAxis) {
        std::array<std::string, 2> texts;
        for (int n = 0; n < 2; ++n) {
            float value = mode == PositionMode::Actual
                              ? poll.Position[firstAxis + n]
                              : ModeValue(mode, t.First.Sngl(at[n], -1), t.P.AxisScale[firstAxis + n]);
            texts[n] = FormatNumber(value, 2);
        }
        return texts;
    };
    if (visible.XYPositionForm) t.Display.XYPositionTexts = modeTexts(t.Display.XYMode, t.At.XYMode, 0);
    if (visible.TCPositionForm) t.Display.TCPositionTexts = modeTexts(t.Display.RotaryMode, t.At.TCMode, 2);
}

// A fixed-width record of `.RA`k or `.RM`k, trimmed; "" when it can't be read.
std::string SourceRecordText(const std::string& path, std::int32_t record, std::size_t width) {
    if (record < 1) return {};
    std::ifstream file(path, std::ios::binary);
    std::string text(width, ' ');
    file.seekg(static_cast<std::streamoff>(record - 1) * static_cast<std::streamoff>(width));
    if (!file || !file.read(text.data(), static_cast<std::streamsize>(width))) return {};
    return std::string(Trim(text));
}

// 6. The block the viewing screen lights, from the card's program counter.
void UpdateCurrentBlock(Tick& t) {
    if (!t.Display.Visible.ViewProgForm) return;
    // 1. This query fails while no program is active: no alarm for it.
    t.P.Card.ReportCardErrors = false;
    std::string counter = t.Talk.GetRspnsTxt(card::ProgramCounter);
    t.P.Card.ReportCardErrors = true;
    // 2, 3. Running: program and word from the counter; else the block stays, in the active slot.
    std::int32_t program = t.P.Config.ActiveSlot;
    std::int32_t record = t.Poll.LastRecordShown;
    std::int16_t block = t.Display.Block.MotionBlockIndex;
    if (t.P.Running) {
        for (int p = 1; p <= 4; ++p) {
            std::string key = "P" + std::to_string(p) + ":";
            std::size_t at = counter.find(key);
            if (at == std::string::npos) continue;
            ValueReader reader;
            std::int16_t word = reader.WordInteger(counter, key);
            SlotBlock found = SlotBlockAt(t.P, p, word);
            program = p;
            record = found.SourceRecord;
            block = found.MotionBlockIndex;
            break;
        }
    }
    // 4. A new block: the screen is redrawn around it.
    if (program == t.Poll.LastSlotShown && record == t.Poll.LastRecordShown) return;
    LitBlock& lit = t.Display.Block;
    lit.Program = program;
    lit.Record = record;
    lit.MotionBlockIndex = block;
    lit.Changed = true;
    int slot = (program == 1 || program == 3) ? 1 : 2;
    bool second = program == 3 || program == 4;
    const Directories& dirs = t.P.Config.Dirs;
    lit.SourceText = SourceRecordText(SlotFile(dirs, slot, second ? "RA2" : "RA1"), record, 80);
    lit.MotionText = SourceRecordText(SlotFile(dirs, slot, second ? "RM2" : "RM1"), record, 240);
    t.Poll.LastSlotShown = program;
    t.Poll.LastRecordShown = record;
}

// 7. The status boxes' colours, and the message list while it is shown.
void UpdateStatusColours(Tick& t) {
    t.Poll.HoldBit = static_cast<std::int16_t>(t.Poll.StatusWord & card::StatusHoldBit);
    bool waiting = t.Poll.LastMessageNo > 0 || t.Poll.LastLogicBits > 0;
    t.Display.FrontEnd.Colours = t.Poll.HoldBit ? StatusColours::Hold
                                 : waiting      ? StatusColours::MessagesWaiting
                                                : StatusColours::Normal;
    if (t.Display.Visible.MessageForm) UpdateMessageList(t.P, t.First.Lng(t.At.MessageNo), t.First.Lng(t.At.LogicBits));
}

// 8. The batch counters into the active slot, unless an edit is open.
void UpdateBatchPanel(Tick& t, const QueryBatch& answers, const int* at) {
    if (t.Display.BatchEditing || !HasActiveSlot(t.P)) return;
    SlotBatch& batch = t.P.Slots[t.P.Config.ActiveSlot - 1].Batch;
    batch = BatchOfCounters({answers.Lng(at[0]), answers.Lng(at[1]), answers.Lng(at[2]), answers.Lng(at[3])});
    for (int n = 0; n < 5; ++n) t.Display.Batch.Texts[n] = LongText(batch[n]);
}

// 10. The plasma panel: the card's values beside the slot's settings.
void UpdatePlasmaPanel(Tick& t) {
    PlasmaPanel& panel = t.Display.Plasma;
    std::int32_t height = t.First.Lng(t.At.TorchHeight);
    panel.TorchHeightText = height == 0 ? " UP" : height == 1 ? " DOWN" : " CLEAR";
    for (int n = 0; n < 3; ++n) panel.InputTexts[n] = t.First.Lng(t.At.Inputs[n]) != 0 ? " ON" : " OFF";
    std::int32_t side = t.First.Lng(t.At.OffsetSide);
    panel.OffsetSideText = side == 1 ? " LEFT" : side == 2 ? " RIGHT" : " NONE";
    for (int n = 0; n < 10; ++n) panel.CardTexts[n] = FormatNumber(t.First.Sngl(t.At.Plasma[n], -1), -1);
    int slot = t.P.Config.ActiveSlot;
    if (slot < 1 || slot > 2) return;
    const PlasmaSetting& s = t.P.Slots[slot - 1].PlasmaSettings;
    panel.SettingTexts = {IntegerText(s.RapidSpeed),  IntegerText(s.CutSpeed),      IntegerText(s.MinCornerSpeed),
                          IntegerText(s.FreezeSpeed), FormatNumber(s.HeightOn, -1), FormatNumber(s.HeightOff, -1),
                          IntegerText(s.Slowdown),    FormatNumber(s.Kerf, 0),      FormatNumber(s.Pierce, 0),
                          IntegerText(s.TorchType)};
}

}  // namespace

std::string RunTimeText(float seconds) {
    double whole = std::trunc(std::fabs(static_cast<double>(seconds)));
    if (!(whole < 2147483647.0)) whole = 0;
    auto total = static_cast<std::int32_t>(whole);
    return LongText(total / 60) + ":" + ZeroPad(total % 60, 2);
}

void UpdateMessageList(Process& process, std::int32_t messageNo, std::int32_t logicBits) {
    PollState& poll = process.Poll;
    DisplayModel& display = process.Display;
    MessageList& list = display.Messages;
    const MessageTables& tables = process.Config.Messages;
    const std::string& helpDir = process.Config.Dirs.HelpDir;
    // 2. Nothing new: the list stands.
    if (messageNo == poll.LastMessageNo && logicBits == poll.LastLogicBits &&
        display.NewProgramsReceived == poll.LastNewProgramsReceived && list.SelectedMessage == poll.LastSelectedMessage)
        return;
    // 3. All lines blank.
    list.Lines = {};
    list.LineCount = 0;
    auto add = [&](const std::string& text, std::string help) {
        list.Lines[list.LineCount++] = {" " + text, std::move(help)};
    };
    // 4. The I/O message; a number beyond the table is not shown, and said once.
    if (messageNo > 0 && messageNo < static_cast<std::int32_t>(tables.IOMessages.size()))
        add(std::string(Trim(tables.IOMessages[messageNo])), helpDir + "IO/" + LongText(messageNo) + ".hlp");
    else if (messageNo >= static_cast<std::int32_t>(tables.IOMessages.size()) && messageNo != poll.LastMessageNo)
        display.Notices.push_back("The card reports I/O message " + LongText(messageNo) + ": IO.msg holds 1 to 64");
    // 5. The logic messages, bit by bit, while lines are left.
    if (logicBits > 0)
        for (int bit = 0; bit <= 30 && list.LineCount < MessageListLines; ++bit)
            if (logicBits & (std::int32_t{1} << bit))
                add(std::string(Trim(tables.LogicMessages[bit])), helpDir + "Logic/" + std::to_string(bit) + ".hlp");
    // 6. Programs received on the serial line.
    if (display.NewProgramsReceived && list.LineCount < MessageListLines)
        add("New Program(s) Received", display.ReceiveHelpFile);
    // 7, 8. The selected line within the list.
    int& selected = list.SelectedMessage;
    if (selected < 1 && list.LineCount > 0) selected = 1;
    selected = std::min({selected, MessageListLines, list.LineCount});
    poll.LastMessageNo = messageNo;
    poll.LastLogicBits = logicBits;
    poll.LastNewProgramsReceived = display.NewProgramsReceived;
    poll.LastSelectedMessage = selected;
}

void PollCycle(Process& process, ControllerPlatform& platform, CardLink* link) {
    Conversation talk(link, process.Card, process.Config.Dirs.ServiceDir, &platform);
    Tick t{process, process.Poll, process.Display, talk, {}, {}, {}, {}};
    t.Display.Plot = {};
    t.Display.Block.Changed = false;
    t.Display.HeadCaptionsChanged = false;
    t.Display.Notices.clear();
    GatherFirstRound(t);
    t.First.Run(talk);
    // 1. Status; 2. the profiler's edges; 3. the card's requests.
    ReadStatus(t);
    ReadProfilerEdges(t);
    ServiceCardRequests(t);
    // 4. Hits; 5. positions; 6. the current block; 7. colours and messages.
    UpdateHitCounts(t);
    UpdatePositions(t);
    UpdateCurrentBlock(t);
    UpdateStatusColours(t);
    // 8. The batch, also once at the end of a run.
    if (t.Display.Visible.BatchForm)
        UpdateBatchPanel(t, t.First, t.At.Batch);
    else if (t.Poll.WasRunning && !process.Running)
        UpdateBatchPanel(t, t.Second, t.Req.Batch);
    // 9. The run time; 10. the plasma panel.
    if (t.Display.Visible.MachineStatusForm)
        t.Display.MachineStatus.RunTimeText = RunTimeText(t.First.Sngl(t.At.RunTime, 2));
    if (t.Display.Visible.PlasmaStatusForm) UpdatePlasmaPanel(t);
    // 11. The log's size.
    talk.RollPollingLog();
}

void PollTick(Process& process, ControllerPlatform& platform, CardLink* link) {
    PollCycle(process, platform, link);
    CardState& card = process.Card;
    if (card.PollRunning && card.PollTimerIntervalMs != card.PollIntervalMs) {
        platform.SetPollTimer(false, 0);
        platform.SetPollTimer(true, card.PollIntervalMs);
        card.PollTimerIntervalMs = card.PollIntervalMs;
    }
}

}  // namespace kirvana

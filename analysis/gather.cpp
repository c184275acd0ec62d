#include "analysis/gather.h"

#include <cmath>

#include "analysis/language_walk.h"
#include "analysis/reverse_report.h"
#include "core/file_writer.h"
#include "core/number.h"
#include "core/paths.h"
#include "core/text.h"
#include "translate/pass_messages.h"

namespace kirvana {

void CopyGatherState(const GatherState& source, GatherState& target) { target = source; }

GatherState ModalGatherState(const ReverseState& state, float loadLimitX) {
    GatherState g;
    g.Imperial = state.Imperial ? -1 : 0;
    g.Incremental = state.Incremental ? -1 : 0;
    g.G92X = ToSingle(static_cast<double>(state.OriginX) - state.G56X);
    g.G92Y = ToSingle(static_cast<double>(state.OriginY) - state.G56Y);
    g.G56X = state.G56X;
    g.G56Y = state.G56Y;
    // Each G95 moves both X limits by its shift.
    g.Reposition = ToSingle(static_cast<double>(loadLimitX) - state.LimitXLow);
    g.MirrorCode = static_cast<std::int16_t>((state.MirrorX ? 1 : 0) + (state.MirrorY ? 2 : 0));
    g.Station = state.Station;
    g.Profiler = state.Profiling ? -1 : 0;
    g.PlasmaOn = state.PlasmaOn ? -1 : 0;
    g.KerfSide = state.CutterSide;
    for (std::size_t i = 0; i < g.ProfileSettings.size(); ++i) g.ProfileSettings[i] = state.ProcessSettings[i];
    g.X = state.PosX;
    g.Y = state.PosY;
    g.C = state.PosC;
    return g;
}

bool GatherReached(const GatherTarget& target, int depth, std::int16_t mainCount, std::int16_t depthCount,
                   const SubCall& depthCallState) {
    if (mainCount != target.TargetMain) return false;
    if (depth == 0) return target.TargetSub == 0;
    // The call of the target: the same code and label, so that a block count of a calling
    // subroutine is not taken for one of the subroutine it calls.
    if (depthCallState.CallCode != target.CallState.CallCode || depthCallState.Label != target.CallState.Label)
        return false;
    if (depthCallState.CountX != target.CallState.CountX) return false;
    if (target.CallState.CallCode == 98 && depthCallState.CountY != target.CallState.CountY) return false;
    return depthCount == target.TargetSub;
}

namespace {

std::string Single(float value) { return FormatNumber(Number(value), -1); }

}  // namespace

std::string GatherStateText(const GatherState& state) {
    std::string r;
    r += std::string("Gathered     : ") + (state.Gathered ? "True" : "False") + "\n";
    r += "Block No.    : " + std::to_string(state.BlockNo) + "\n";
    r += std::string("Measurement  : ") + (state.Imperial ? "Imperial" : "Metric") + "\n";
    r += std::string("Coordinates  : ") + (state.Incremental ? "Incremental" : "Absolute") + "\n";
    r += "G92 Offset X : " + Single(state.G92X) + "\n";
    r += "G92 Offset Y : " + Single(state.G92Y) + "\n";
    r += "G56 Offset X : " + Single(state.G56X) + "\n";
    r += "G56 Offset Y : " + Single(state.G56Y) + "\n";
    r += "Reposition   : " + Single(state.Reposition) + "\n";
    r += "Mirror Code  : " + std::to_string(state.MirrorCode) + "\n";
    r += "Station No.  : " + std::to_string(state.Station) + "\n";
    r += std::string("Profiler     : ") + (state.Profiler ? "On" : "Off") + "\n";
    r += "X Position   : " + Single(state.X) + "\n";
    r += "Y Position   : " + Single(state.Y) + "\n";
    r += "C Position   : " + Single(state.C) + "\n";
    r += "Hits So Far  : " + std::to_string(state.Hits) + "\n";
    return r;
}

namespace {

// The block number of a block text: its N word, 0 when none or negative.
bool BlockNumber(const std::string& text, std::int16_t& number) {
    ValueReader reader;
    std::int16_t n = reader.WordInteger(BeforeComment(text), 'N');
    if (reader.WordMissing) return false;
    number = n < 0 ? std::int16_t{0} : n;
    return true;
}

class GatherRun : public LanguageWalk {
public:
    GatherRun(const std::vector<std::string>& m1, const std::vector<std::string>& m2, const GatherTarget& target,
              std::string& report, std::int16_t& toolChanges, const ReverseSettings& settings)
        : LanguageWalk(m1, m2, report, toolChanges, settings), target_(target) {}

    GatherState Run(std::vector<std::string>& repositions);
    // Notes the place at the target line and at the same line of each following repetition of
    // the target's call, up to `wanted` places, walking on between them.
    void NoteEnds(std::vector<PointF>& ends, std::size_t wanted) {
        ends_ = &ends;
        wanted_ = wanted;
    }

private:
    void Reached() override {
        if (!ends_) return;
        ends_->push_back(PointF{S.PosX, S.PosY});
        ++target_.CallState.CountX;
    }
    bool GoesOn() override { return ends_ && ends_->size() < wanted_; }
    void Keep() override {}
    std::size_t StopWithin(std::size_t lines) override;
    bool TakeTool() override;
    void OriginGiven() override {}
    void FlipRotate() override {}
    void Reposition() override;
    void Error(std::string_view message, bool critical) override;
    void HitsPassed(std::int64_t hits) override;
    bool ChecksTools() const override { return false; }
    void GatherFinish(GatherState& state);

    GatherTarget target_;
    std::int16_t hits_ = 0;
    std::vector<PointF>* ends_ = nullptr;
    std::size_t wanted_ = 0;
    std::vector<std::string> repositions_;
};

GatherState GatherRun::Run(std::vector<std::string>& repositions) {
    // 4. The state cleared; 5. no header and no tool table: the walk from the load position.
    StartState();
    Walk();
    GatherState state;
    GatherFinish(state);
    repositions = std::move(repositions_);
    return state;
}

std::size_t GatherRun::StopWithin(std::size_t lines) {
    const std::int16_t count = S.BlockCount[S.Depth];
    const std::int16_t want = S.Depth == 0 ? target_.TargetMain : target_.TargetSub;
    const long ahead = static_cast<long>(want) - count;
    if (ahead < 1 || static_cast<std::size_t>(ahead) > lines) return 0;
    const std::int16_t mainCount = S.Depth == 0 ? want : S.BlockCount[0];
    return GatherReached(target_, S.Depth, mainCount, want, S.CallStates[S.Depth]) ? static_cast<std::size_t>(ahead)
                                                                                   : 0;
}

// No tool check: a wrong station does not stop a restart.
bool GatherRun::TakeTool() {
    if (S.Station >= 1 && S.Station <= static_cast<int>(stations_.size()))
        CopyTool(stations_[static_cast<std::size_t>(S.Station - 1)].Tool, rec_.Tool);
    return true;
}

// G95: checked, summed, and kept as a line for the restart to replay.
void GatherRun::Reposition() {
    auto read = [&](const char* key) {
        double v = Length(key);
        return v == Missing ? 0.0 : v;
    };
    const double x = Length("X"), y = Length("Y");
    double i = read("I"), j = read("J");
    double k = Length("K");
    const bool kGiven = k != Missing;
    if (std::fabs(j) > 5) Error(gather_message::ExcessiveBackoff, false);
    if (kGiven && std::fabs(k) > 5) Error(gather_message::ExcessiveReturn, false);
    repositions_.push_back("G95 X" + Single(ToSingle(x == Missing ? S.PosX : x)) + " Y" +
                           Single(ToSingle(y == Missing ? S.PosY : y)) + " I" + Single(ToSingle(i)) + " J" +
                           Single(ToSingle(j)) + " K" + Single(ToSingle(kGiven ? k : 0)));
    if (S.MirrorX) i = 0 - i;
    S.LimitXLow = ToSingle(S.LimitXLow - i);
    S.LimitXHigh = ToSingle(S.LimitXHigh - i);
    CheckLimit(S.PosX, S.PosY);
}

// The report keeps the limits, a bad grid, the repositions and the walk's own faults; the
// checks of tools and cycles are the Reverse pass's.
void GatherRun::Error(std::string_view message, bool critical) {
    static const std::string_view kept[] = {
        pass_message::OutOfLimitsX,       pass_message::OutOfLimitsY,      pass_message::InvalidHitsP1P3,
        gather_message::ExcessiveBackoff, gather_message::ExcessiveReturn, reverse_message::TooDeep,
        reverse_message::BlockLimit,      reverse_message::TooManyBlocks,  reverse_message::NumberOverflow};
    for (std::string_view k : kept)
        if (message == k) {
            LanguageWalk::Error(message, critical);
            return;
        }
}

void GatherRun::HitsPassed(std::int64_t hits) {
    hits_ = static_cast<std::int16_t>(std::min<std::int64_t>(hits_ + hits, INT16_MAX));
}

void GatherRun::GatherFinish(GatherState& state) {
    // 1-3. Reached or not, the block's number, the mirror code and the modal values.
    state = ModalGatherState(S, settings_.Travel.XLimitMin);
    state.Gathered = reached_ ? -1 : 0;
    state.Hits = hits_;
    state.BlockNo = 0;
    if (reached_ && !BlockNumber(target_.MainBlockText, state.BlockNo))
        BlockNumber(target_.SubBlockText, state.BlockNo);
    // 5. The end of the repositions.
    repositions_.push_back("******");
    // 6. The state in the report.
    std::string& r = report_;
    r += "******\n\n";
    r += GatherStateText(state);
    r += "\n******\n";
}

}  // namespace

GatherResult GatherTexts(const std::vector<std::string>& m1, const std::vector<std::string>& m2,
                         const GatherTarget& target, const ReverseSettings& settings) {
    GatherResult result;
    std::int16_t toolChanges = 0;
    GatherRun run(m1, m2, target, result.Report, toolChanges, settings);
    result.State = run.Run(result.Repositions);
    return result;
}

std::vector<PointF> GatherRepetitionEnds(const std::vector<std::string>& m1, const std::vector<std::string>& m2,
                                         const GatherTarget& target, std::size_t count,
                                         const ReverseSettings& settings) {
    std::vector<PointF> ends;
    if (count == 0) return ends;
    std::string report;
    std::vector<std::string> repositions;
    std::int16_t toolChanges = 0;
    GatherRun run(m1, m2, target, report, toolChanges, settings);
    run.NoteEnds(ends, count);
    run.Run(repositions);
    return ends;
}

GatherResult GatherPass(const std::string& directory, const std::string& program, const std::string& stem,
                        const GatherTarget& target, GatherState& state, const ReverseSettings& settings,
                        const std::string& controllerDir) {
    GatherResult result;
    NoteFile(settings.ServiceDir, stem + "M1");
    auto m1 = ReadLines(stem + "M1");
    if (!m1) {
        result.FileFault = true;
        result.FaultFile = stem + "M1";
        CopyGatherState(result.State, state);
        return result;
    }
    auto m2 = ReadLines(stem + "M2");
    result = GatherTexts(*m1, m2 ? *m2 : std::vector<std::string>{}, target, settings);
    CopyGatherState(result.State, state);
    // 1, 2. "Gather.txt" anew with the head lines of the Reverse report; 3. "Gather.rep".
    const std::string head = ReportHead(program, directory, settings.Now ? settings.Now() : ReportTime());
    std::string rep;
    for (const std::string& line : result.Repositions) rep += line + "\n";
    if (!WriteFileText(controllerDir + "Gather.rep", rep)) {
        result.FileFault = true;
        result.FaultFile = controllerDir + "Gather.rep";
    }
    if (!WriteFileText(settings.ServiceDir + "Gather.txt", head + result.Report)) {
        result.FileFault = true;
        result.FaultFile = settings.ServiceDir + "Gather.txt";
    }
    return result;
}

}  // namespace kirvana

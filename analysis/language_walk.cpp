#include "analysis/language_walk.h"

#include <algorithm>
#include <cmath>

#include "analysis/reverse_report.h"
#include "core/cycle_maths.h"
#include "core/geometry.h"
#include "core/number.h"
#include "core/text.h"

namespace kirvana {

namespace {

// The work of one block beside its characters, counted as characters scanned.
constexpr std::int64_t BlockWork = 32;

}  // namespace

std::size_t LabelIndex::Find(const std::vector<std::string>& file, std::size_t from, std::int16_t label) {
    if (!built_) Build(file);
    auto at = std::lower_bound(entries_.begin(), entries_.end(), std::make_pair(label, from));
    return at != entries_.end() && at->first == label ? at->second : file.size();
}

void LabelIndex::Build(const std::vector<std::string>& file) {
    // The block number as the skipping test reads it: the first N in front of the comment.
    ValueReader reader;
    for (std::size_t line = 0; line < file.size(); ++line) {
        std::string_view text = file[line];
        std::int16_t number = reader.WordInteger(text.substr(0, text.find(';')), 'N');
        if (!reader.WordMissing) entries_.emplace_back(number, line);
    }
    std::sort(entries_.begin(), entries_.end());
    built_ = true;
}

void LanguageWalk::StartState() {
    S = ReverseState{};
    S.PosX = S.PrevX = S.LastHitX = settings_.Travel.LoadPositionX;
    S.PosY = S.PrevY = S.LastHitY = settings_.Travel.LoadPositionY;
    S.LimitXLow = settings_.Travel.XLimitMin;
    S.LimitXHigh = settings_.Travel.XLimitMax;
    S.LimitYLow = settings_.Travel.YLimitMin;
    S.LimitYHigh = settings_.Travel.YLimitMax;
    S.ProcessSettings = settings_.ProgramSettings;
}

void LanguageWalk::Walk() {
    // The main loop, until the main text is at its end.
    while (WithinBounds()) {
        // 1. The next line of this depth's file; a subroutine's file at its end is a RETURN.
        const std::vector<std::string>& file = S.Depth == 0 ? m1_ : m2_;
        std::size_t& next = S.CallLine[S.Depth];
        if (S.Skipping && next < file.size()) {
            // 3. Skipping to a block number: the lines before it are read and dropped.
            std::size_t label = (S.Depth == 0 ? m1Labels_ : m2Labels_).Find(file, next, S.SkipTo);
            if (std::size_t stop = label > next ? StopWithin(label - next) : 0; stop != 0) {
                // A pass's target among the lines passed over.
                CountLines(file, next, stop);
                next += stop;
                TakeLine(file[next - 1]);
                reached_ = true;
                Reached();
                return;
            }
            CountLines(file, next, label - next);
            next = label;
        }
        if (next >= file.size()) {
            ++steps_;
            if (S.Depth == 0) break;
            EndOfCall();
            continue;
        }
        const bool stop = StopWithin(1) != 0;
        CountLines(file, next, 1);
        TakeLine(file[next++]);
        if (stop) {
            reached_ = true;
            Reached();
            if (!GoesOn()) return;
        }
        BlockStarts();
        HandleBlock();
    }
}

void LanguageWalk::TakeLine(std::string_view text) {
    line_ = std::string(Trim(text));
    characters_ += static_cast<std::int64_t>(line_.size()) + BlockWork;
    // The block as it stands, blanks kept: codes are found by plain search in it, so that
    // "M10 0" is no M100.
    block_ = BeforeComment(line_);
    for (char& c : block_) c = UpperChar(c);
    IndexBlock();
}

void LanguageWalk::IndexBlock() {
    codes_.Build(block_);
    letters_ = 0;
    for (char c : block_)
        if (c >= 'A' && c <= 'Z') letters_ |= std::uint32_t{1} << (c - 'A');
}

double LanguageWalk::Value(std::string_view key) {
    if (!MayHold(key)) {
        reader_.WordMissing = true;
        return Missing;
    }
    double value = reader_.WordValue(block_, key);
    if (reader_.WordMissing || value == Missing || !std::isfinite(value)) {
        reader_.WordMissing = true;
        return Missing;
    }
    return value;
}

CycleWordReader LanguageWalk::CycleWords() {
    return {[this](const char* key) { return Value(key); }, [this](const char* key) { return Length(key); },
            [this](const char* key) { return Integer(key); }};
}

double LanguageWalk::Length(std::string_view key) {
    double value = Value(key);
    if (value != Missing && S.Imperial) value *= Inch;
    return value;
}

std::int16_t LanguageWalk::Integer(std::string_view key) {
    reader_.IntegerOverflow = false;
    if (!MayHold(key)) {
        reader_.WordMissing = true;
        return static_cast<std::int16_t>(Missing);
    }
    std::int16_t value = reader_.WordInteger(block_, key);
    if (reader_.IntegerOverflow) {
        Overflow();
        reader_.WordMissing = true;
        return static_cast<std::int16_t>(Missing);
    }
    if (reader_.WordMissing || value == Missing) {
        reader_.WordMissing = true;
        return static_cast<std::int16_t>(Missing);
    }
    return value;
}

void LanguageWalk::Error(std::string_view message, bool critical) {
    ReportEntry(report_, line_, message, critical);
    if (critical && S.CriticalCount < INT16_MAX) ++S.CriticalCount;
}

bool LanguageWalk::ChargeHits(std::int64_t hits) {
    hitWork_ += hits;
    if (hitWork_ <= settings_.MaxHitWork) return true;
    if (!stopped_) Error(reverse_message::BlockLimit, true);
    stopped_ = true;
    return false;
}

void LanguageWalk::CheckLimit(double x, double y) {
    if ((x < S.LimitXLow || x > S.LimitXHigh) && !S.WarnedX) {
        Error(pass_message::OutOfLimitsX, false);
        S.WarnedX = true;
    }
    if ((y < S.LimitYLow || y > S.LimitYHigh) && !S.WarnedY) {
        Error(pass_message::OutOfLimitsY, false);
        S.WarnedY = true;
    }
}

// One block of the motion text, in the order of the language.
void LanguageWalk::HandleBlock() {
    // 2. RETURN in a subroutine ends a repetition step.
    if (S.Depth > 0 && !S.Skipping && block_.find("RETURN") != std::string::npos) {
        EndOfCall();
        return;
    }
    // 3. Skipping to a block number: only that block is handled.
    if (S.Skipping) {
        std::int16_t n = reader_.WordInteger(block_, 'N');
        if (reader_.WordMissing || n != S.SkipTo) return;
        S.Skipping = false;
    }
    // 3a. Variable assignments P12 to P99; a condition's "P12=1" is a comparison, not one.
    if (block_.find('P') != std::string::npos && !Has("IF")) StoreAssignments(block_, reader_, S.Parameters);
    // 4. Calls, conditions and jumps end the block.
    if (Has("G68") || Has("G69") || Has("G98")) {
        CallSubroutine();
        return;
    }
    if (Has("IF")) {
        Conditional();
        return;
    }
    if (std::size_t at = block_.find("GOTO"); at != std::string::npos) {
        Jump(std::string_view(block_).substr(at + 4));
        return;
    }
    // 5. Feed, and the block-skip mark.
    double feed = Value("F");
    if (!reader_.WordMissing && feed > 0) S.FeedValue = ToSingle(feed);
    S.PathFlag = 0;
    double path = Value("M875=");
    if (path == 1 || path == 2) S.PathFlag = static_cast<std::int16_t>(path);
    // 6. The tool, in punch mode.
    if (!S.Profiling && block_.find('T') != std::string::npos) ChangeTool();
    // 7. The codes in their fixed order.
    // 7.1, 7.2 Absolute or incremental.
    if (Has("G90")) S.Incremental = false;
    if (Has("G91")) S.Incremental = true;
    // 7.3 Inches: the first measurement code of the program scales the sheet and clamps once.
    if (Has("G70")) {
        S.Imperial = true;
        if (!S.MeasurementSeen) {
            S.MeasurementSeen = true;
            S.MeasurementMark = True16;
            FirstInchCode();
        }
    }
    // 7.4 Millimetres.
    if (Has("G71")) {
        S.Imperial = false;
        S.MeasurementSeen = true;
    }
    // 7.5 The position.
    ApplyPosition();
    // 7.6 Origin shifted.
    if (Has("G56")) {
        double x = Length("X"), y = Length("Y");
        if (x == Missing) x = 0;
        if (y == Missing) y = 0;
        S.OriginX = ToSingle(S.MirrorX ? S.OriginX - x : S.OriginX + x);
        S.OriginY = ToSingle(S.MirrorY ? S.OriginY - y : S.OriginY + y);
        S.G56X = ToSingle(S.MirrorX ? S.G56X - x : S.G56X + x);
        S.G56Y = ToSingle(S.MirrorY ? S.G56Y - y : S.G56Y + y);
    }
    // 7.7 Origin cleared.
    if (Has("G53")) S.OriginX = S.OriginY = S.G56X = S.G56Y = 0;
    // 7.8 Origin set so that the position reads X, Y.
    if (Has("G92")) {
        double x = Length("X");
        if (x != Missing) S.OriginX = ToSingle(S.MirrorX ? S.PosX + x : S.PosX - x);
        double y = Length("Y");
        if (y != Missing) S.OriginY = ToSingle(S.MirrorY ? S.PosY + y : S.PosY - y);
    }
    // 7.9 Origin given.
    if (Has("G93")) OriginGiven();
    // 7.10 Kerf side and process settings, in profiling.
    if (S.Profiling && (Has("G40") || Has("G41") || Has("G42"))) {
        if (Has("G40")) S.CutterSide = 0;
        if (Has("G41")) S.CutterSide = 1;
        if (Has("G42")) S.CutterSide = 2;
        ReadSettings();
    }
    // 7.11 Rapid move ends the profile chain.
    if (Has("G00")) S.ArcStarted = 0;
    // 7.12 Profiles.
    if (S.Profiling) {
        bool g101 = Has("G101"), g102 = Has("G102"), g103 = Has("G103");
        if (g101 && !g102 && !g103) ProfileLine();
        if (g102 && !g101 && !g103) ProfileArc(false);
        if (g103 && !g101 && !g102) ProfileArc(true);
    }
    // 7.13 Nibbling, in punch mode.
    if (!S.Profiling) {
        if (Has("G01"))
            NibbleLine();
        else if (Has("G02"))
            NibbleArc(true);
        else if (Has("G03"))
            NibbleArc(false);
    }
    // 7.14 Dwell.
    if (Has("G04")) Dwell();
    // 7.15 The canned cycles and the reposition, in punch mode.
    if (!S.Profiling) {
        if (Has("G26")) CycleG26();
        if (Has("G28")) CycleG28();
        if (Has("G36")) CycleG36();
        if (Has("G37")) CycleG37();
        if (Has("G64")) CycleG64();
        if (Has("G65")) CycleG65();
        if (Has("G66")) CycleG66();
        if (Has("G95")) Reposition();
    }
    // 7.16 Moves without a hit.
    if (Has("G77") || Has("G80")) Move();
    // 7.17 A hit here; under profiling G81 only moves.
    if (Has("G81") || Has("M75")) {
        if (!S.Profiling)
            Punch();
        else if (Has("G81"))
            Move();
    }
    // 7.18 Profiling on.
    bool m100 = Has("M100"), m101 = Has("M101");
    if (m100) {
        S.Profiling = true;
        S.ArcStarted = 0;
        S.CutterSide = 0;
        S.PlasmaOn = false;
    }
    // 7.19 The torch.
    if (Has("M03") || Has("M04")) S.PlasmaOn = true;
    if (Has("M05") || Has("M06")) S.PlasmaOn = false;
    // 7.20 Profiling off.
    if (m101) {
        S.Profiling = false;
        S.ArcStarted = 0;
        S.CutterSide = 0;
        S.PlasmaOn = false;
    }
    // 7.21 Mirrors, hidden by M100 and M101.
    if (!m100 && !m101) {
        if (Has("M10")) S.MirrorX = S.MirrorY = false;
        if (Has("M11")) S.MirrorX = true;
        if (Has("M12")) S.MirrorY = true;
        if (Has("M13")) S.MirrorX = S.MirrorY = true;
    }
    // 7.22 Load position.
    if (Has("M50") || Has("M60")) LoadPosition();
    // 7.23 Flip or rotate.
    if (Has("M55")) FlipRotate();
    // 7.24 Stops.
    if (Has("M00"))
        Stop(false);
    else if (Has("M01"))
        Stop(true);
}

bool LanguageWalk::ApplyPosition() {
    if (Has("G72") || Has("G52") || Has("G56") || Has("G92") || Has("G93") || Has("G04")) return false;
    // 1. The previous position.
    S.PrevX = S.PosX;
    S.PrevY = S.PosY;
    S.PrevC = S.PosC;
    // 2. The words; R and A belong to an arc in the arc and pattern codes.
    double x = Length("X"), y = Length("Y"), h = Length("H"), v = Length("V");
    double r = Missing, a = Missing;
    if (!Has("G102") && !Has("G103") && !Has("G02") && !Has("G03") && !Has("G28") && !Has("G37") && !Has("G64")) {
        r = Length("R");
        a = Value("A");
    }
    double c = Value("C");
    // 3. No coordinate word: no move.
    if (x == Missing && y == Missing && h == Missing && v == Missing && r == Missing && a == Missing && c == Missing)
        return false;
    const SubCall& call = S.CallStates[S.Depth];
    if (S.Incremental) {
        // 4. Incremental: each axis found adds (subtracts under its mirror).
        if (x != Missing) S.PosX = ToSingle(S.MirrorX ? S.PosX - x : S.PosX + x);
        if (y != Missing) S.PosY = ToSingle(S.MirrorY ? S.PosY - y : S.PosY + y);
    } else {
        // 5. Absolute: the call's running offset, then from the origin.
        if (x != Missing) {
            if (S.Depth > 0) x += call.X;
            S.PosX = ToSingle(S.MirrorX ? S.OriginX - x : S.OriginX + x);
        }
        if (y != Missing) {
            if (S.Depth > 0) y += call.Y;
            S.PosY = ToSingle(S.MirrorY ? S.OriginY - y : S.OriginY + y);
        }
    }
    // 6. C is added, turned by the mirrors.
    if (c != Missing) {
        double turn = (S.MirrorX || S.MirrorY) ? MirrorAngle(c, S.MirrorX, S.MirrorY) : c;
        S.PosC = ToSingle(NormaliseAngle(S.PosC + turn));
    }
    // 7. The polar move R, A and the shifts H, V, then the limits.
    double dx = 0, dy = 0;
    PolarToXY(r == Missing ? 0 : r, a == Missing ? 0 : a, dx, dy);
    dx += h == Missing ? 0 : h;
    dy += v == Missing ? 0 : v;
    S.PosX = ToSingle(S.MirrorX ? S.PosX - dx : S.PosX + dx);
    S.PosY = ToSingle(S.MirrorY ? S.PosY - dy : S.PosY + dy);
    CheckLimit(S.PosX, S.PosY);
    return true;
}

void LanguageWalk::ChangeTool() {
    // The first T that is part of neither "GOTO" nor "TRUNC".
    std::size_t at = std::string::npos;
    for (std::size_t i = block_.find('T'); i != std::string::npos; i = block_.find('T', i + 1)) {
        bool inGoto = i >= 2 && block_.compare(i - 2, 4, "GOTO") == 0;
        bool inTrunc = block_.compare(i, 5, "TRUNC") == 0;
        if (inGoto || inTrunc) continue;
        at = i;
        break;
    }
    if (at == std::string::npos) return;
    reader_.IntegerOverflow = false;
    std::int16_t number = reader_.WordInteger(std::string_view(block_).substr(at), 'T');
    if (reader_.IntegerOverflow) {
        Overflow();
        return;
    }
    if (reader_.WordMissing) return;
    int station = StationOfTNumber(stations_, number);
    const int count = static_cast<int>(stations_.size());
    if (!ChecksTools()) {
        // The station as the word gives it, neither checked nor counted.
    } else if (station < 1) {
        Error(" Station Number (" + std::to_string(station) + ") <= Zero ", false);
    } else if (station > count) {
        Error(" Station Number (" + std::to_string(station) + ") Exceeds Maximum (" + std::to_string(count) + ")",
              false);
    } else if (toolChanges_ < INT16_MAX) {
        ++toolChanges_;
    }
    S.Station = static_cast<std::int16_t>(std::clamp(station, -32768, 32767));
}

void LanguageWalk::ReadSettings() {
    for (int i = 1; i <= 24; ++i) {
        std::string key = "P" + std::to_string(100 + i) + "=";
        if (block_.find(key) == std::string::npos) continue;
        double value = Value(key);
        if (value != Missing) S.ProcessSettings[i - 1] = ToSingle(value);
    }
}

// ---------------------------------------------------------------------------------------
// Calls, conditions, jumps

void LanguageWalk::Restart(int depth) {
    S.CallLine[depth] = 0;
    S.BlockCount[depth] = 0;
    ++jumps_;
}

void LanguageWalk::CountLines(const std::vector<std::string>& file, std::size_t first, std::size_t lines) {
    steps_ += static_cast<std::int64_t>(lines);
    linesRead_ += static_cast<std::int64_t>(lines);
    std::int16_t& count = S.BlockCount[S.Depth];
    const std::size_t room = static_cast<std::size_t>(INT16_MAX - count);
    if (lines <= room) {
        count = static_cast<std::int16_t>(count + lines);
        return;
    }
    count = INT16_MAX;
    if (blocksFull_) return;
    // Reported at the line that found the count full.
    blocksFull_ = true;
    line_ = std::string(Trim(file[first + room]));
    Error(reverse_message::TooManyBlocks, true);
}

bool LanguageWalk::WithinBounds() {
    if (stopped_) return false;
    if (steps_ <= settings_.MaxBlocks && jumps_ <= settings_.MaxJumps && characters_ <= settings_.MaxCharacters)
        return true;
    line_.clear();
    Error(reverse_message::BlockLimit, true);
    stopped_ = true;
    return false;
}

void LanguageWalk::CallSubroutine() {
    // 1. The calling block's own move and tool; one depth further.
    ApplyPosition();
    ChangeTool();
    if (S.Depth >= MaxDepth) {
        Error(reverse_message::TooDeep, true);
        stopped_ = true;
        return;
    }
    const bool g98 = Has("G98");
    const std::int16_t code = g98 ? 98 : (Has("G69") ? 69 : 68);
    std::int16_t label = Integer("S");
    if (label == Missing) label = 0;
    const std::int16_t depth = static_cast<std::int16_t>(S.Depth + 1);
    // 2. The label; the file is M2.
    S.CallLabel[depth] = label;
    // 4. What the call asks for.
    SubCall& asked = S.CallSpecs[depth];
    ClearSubCall(asked);
    asked.Block = FixedText(line_, CallBlockWidth);
    asked.CallCode = code;
    asked.Label = label;
    asked.X = S.PosX;
    asked.Y = S.PosY;
    if (g98) {
        double pitchX = Length("P2="), pitchY = Length("P4=");
        asked.PitchX = pitchX == Missing || pitchX < 0 ? 0.0f : ToSingle(pitchX);
        asked.PitchY = pitchY == Missing || pitchY < 0 ? 0.0f : ToSingle(pitchY);
        std::int16_t countX = Integer("P1="), countY = Integer("P3="), order = Integer("P6=");
        asked.CountX = countX < 1 ? 1 : countX;
        asked.CountY = countY < 1 ? 1 : countY;
        asked.Order = order < 0 ? 0 : order;
    } else {
        // 3. The repeat count.
        std::int16_t repeats = Integer("Q");
        asked.CountX = 0;
        asked.CountY = repeats < 1 ? 1 : repeats;
    }
    // 5. The state: the first copy.
    SubCall& state = S.CallStates[depth];
    CopySubCall(asked, state);
    state.CountX = 1;
    if (g98) state.CountY = 1;
    // 6. The subroutine starts at the block numbered its label times 1000.
    auto skipTo = RoundToInt16(static_cast<double>(label) * 1000);
    S.Depth = depth;
    Restart(depth);
    S.Skipping = true;
    if (!skipTo) {
        Overflow();
        S.SkipTo = 0;
    } else {
        S.SkipTo = *skipTo;
    }
}

void LanguageWalk::LeaveCall() {
    ClearSubCall(S.CallSpecs[S.Depth]);
    ClearSubCall(S.CallStates[S.Depth]);
    S.CallLabel[S.Depth] = 0;
    S.BlockCount[S.Depth] = 0;
    S.CallLine[S.Depth] = 0;
    --S.Depth;
}

void LanguageWalk::EndOfCall() {
    Restart(S.Depth);
    const SubCall& a = S.CallSpecs[S.Depth];
    SubCall& b = S.CallStates[S.Depth];
    bool ends = false;
    if (a.CallCode != 98) {
        // G68, G69: one repetition fewer to go; the next starts where this one ended.
        b.CountY = static_cast<std::int16_t>(b.CountY - 1);
        if (b.CountX < INT16_MAX) b.CountX = static_cast<std::int16_t>(b.CountX + 1);
        if (b.CountY <= 0) {
            ends = true;
        } else {
            b.X = S.PosX;
            b.Y = S.PosY;
        }
    } else if (a.CountX <= 1 && a.CountY <= 1) {
        ends = true;
    } else if (a.Order == 1) {
        // Columns first.
        if (b.CountY >= a.CountY) {
            if (b.CountX >= a.CountX) {
                ends = true;
            } else {
                b.CountY = 1;
                b.PitchY = -b.PitchY;
                ++b.CountX;
                b.X = ToSingle(b.X + b.PitchX);
            }
        } else {
            ++b.CountY;
            b.Y = ToSingle(b.Y + b.PitchY);
        }
    } else {
        // Rows first.
        if (b.CountX >= a.CountX) {
            if (b.CountY >= a.CountY) {
                ends = true;
            } else {
                b.CountX = 1;
                b.PitchX = -b.PitchX;
                ++b.CountY;
                b.Y = ToSingle(b.Y + b.PitchY);
            }
        } else {
            ++b.CountX;
            b.X = ToSingle(b.X + b.PitchX);
        }
    }
    if (ends) {
        LeaveCall();
        return;
    }
    // The subroutine again from its label.
    S.Skipping = true;
    auto skipTo = RoundToInt16(static_cast<double>(S.CallLabel[S.Depth]) * 1000);
    S.SkipTo = skipTo ? *skipTo : 0;
}

void LanguageWalk::Conditional() {
    std::size_t ifAt = block_.find("IF");
    std::size_t tailAt = block_.find("GOTO", ifAt);
    bool abort = false;
    if (tailAt == std::string::npos) {
        tailAt = block_.find("ABORT", ifAt);
        abort = tailAt != std::string::npos;
    }
    if (tailAt == std::string::npos) return;
    std::string_view condition = Trim(std::string_view(block_).substr(ifAt + 2, tailAt - ifAt - 2));
    // Split at the first relation sign.
    std::size_t at = condition.find_first_of("=<>");
    if (at == std::string::npos) return;
    char relation = condition[at];
    bool negated = at > 0 && condition[at - 1] == '!';
    std::string left(Trim(condition.substr(0, negated ? at - 1 : at)));
    std::string right(Trim(condition.substr(at + 1)));
    // Brackets around the whole condition.
    if (!left.empty() && left.front() == '(' && !right.empty() && right.back() == ')') {
        left.erase(0, 1);
        right.pop_back();
    }
    double l = reader_.WordValue("CMP" + left, "CMP");
    double r = reader_.WordValue("CMP" + right, "CMP");
    bool holds = relation == '=' ? l == r : (relation == '<' ? l < r : l > r);
    if (negated) holds = !holds;
    if (!holds) return;
    if (!abort) {
        Jump(std::string_view(block_).substr(tailAt + 4));
    } else if (S.Depth > 0) {
        // The call is given up.
        LeaveCall();
    }
}

void LanguageWalk::Jump(std::string_view tail) {
    std::size_t start = 0;
    while (start < tail.size() && (tail[start] == '(' || tail[start] == 'N' || tail[start] == ' ')) ++start;
    auto target = TruncateToInt16(ToNumber(tail.substr(start)));
    Restart(S.Depth);
    if (!target) {
        Overflow();
        S.SkipTo = 0;
    } else {
        S.SkipTo = *target;
    }
    S.Skipping = true;
}

// G93: the origin given.
void LanguageWalk::OriginGiven() {
    double x = Length("X");
    if (x != Missing) S.OriginX = ToSingle(x);
    double y = Length("Y");
    if (y != Missing) S.OriginY = ToSingle(y);
}

}  // namespace kirvana

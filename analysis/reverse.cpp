#include "analysis/reverse.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <optional>

#include "analysis/expand.h"
#include "analysis/pattern_walk.h"
#include "analysis/tool_outline.h"
#include "core/geometry.h"
#include "core/number.h"
#include "core/paths.h"
#include "core/text.h"
#include "translate/cycle_maths.h"
#include "translate/cycle_maths_more.h"

namespace kirvana {

namespace {

constexpr double Missing = -999;
constexpr std::int16_t True16 = -1;
// Hits walked one by one for the limit check of one pattern; beyond it the corners stand for
// the rest (the hits of a row or a grid lie in the box of its corners).
constexpr long MaxCheckedHits = 1'000'000;

double Round(double value, int places) { return RoundHalfEven(Number(value), places); }

// The work of one block beside its characters, counted as characters scanned.
constexpr std::int64_t BlockWork = 32;

// The lines of a file by their block number, so that the search for a label passes over the
// lines in between without reading them again. Built at the first search in the file.
class LabelIndex {
public:
    // The first line at or after `from` whose block number is `label`; the end of the file
    // when none follows.
    std::size_t Find(const std::vector<std::string>& file, std::size_t from, std::int16_t label) {
        if (!built_) Build(file);
        auto at = std::lower_bound(entries_.begin(), entries_.end(), std::make_pair(label, from));
        return at != entries_.end() && at->first == label ? at->second : file.size();
    }

private:
    void Build(const std::vector<std::string>& file) {
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

    std::vector<std::pair<std::int16_t, std::size_t>> entries_;
    bool built_ = false;
};

std::string Single(float value) { return FormatNumber(Number(value), -1); }

bool Whole(double q) { return q == std::trunc(q); }

// Hits of a nibbled length: one more than the steps it holds, and one more again when the
// step doesn't divide it. Empty when the count doesn't fit 16 bits.
std::optional<std::int16_t> NibbleHits(double length, double step) {
    double q = length / step;
    if (!std::isfinite(q)) return std::nullopt;
    double hits = Whole(q) ? std::fabs(q) + 1 : std::fabs(std::trunc(q)) + 2;
    return RoundToInt16(hits);
}

}  // namespace

ReverseSettings ReverseSettingsFrom(const MachineData& machine, const Directories& dirs, const StationTable& stations,
                                    const ToolRecord& plasmaTool) {
    ReverseSettings s;
    s.LoadX = machine.LoadPositionX;
    s.LoadY = machine.LoadPositionY;
    s.XLimitMin = machine.XLimitMin;
    s.XLimitMax = machine.XLimitMax;
    s.YLimitMin = machine.YLimitMin;
    s.YLimitMax = machine.YLimitMax;
    s.ClampCount = machine.ClampCount;
    s.MachineType = machine.MachineType;
    s.MachineOrientation = machine.MachineOrientation;
    s.Stations = stations;
    s.PlasmaTool = plasmaTool;
    s.ServiceDir = dirs.ServiceDir;
    return s;
}

// ---------------------------------------------------------------------------------------
// CheckWords and ReadHeader

namespace {

bool KnownWordAt(std::string_view text, std::size_t at, std::size_t& length) {
    static const char* const words[] = {"RETURN", "ROUND", "TRUNC", "GOTO", "ENDIF", "ABORT", "IF"};
    for (const char* word : words) {
        std::size_t n = std::char_traits<char>::length(word);
        if (text.compare(at, n, word) == 0) {
            length = n;
            return true;
        }
    }
    return false;
}

bool Digit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

bool CheckWords(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
        std::string text = UpperCase(line.substr(0, line.find(';')));
        for (std::size_t i = 0; i < text.size();) {
            char c = text[i];
            if (IsLetter(c)) {
                // A word the language knows as a whole, or one letter followed by its value.
                std::size_t length = 0;
                if (KnownWordAt(text, i, length)) {
                    i += length;
                    continue;
                }
                std::size_t next = i + 1;
                while (next < text.size() && (text[next] == ' ' || text[next] == '\t')) ++next;
                if (next < text.size() && IsLetter(text[next])) {
                    // Two letters in a row are no word of the language, except a known word.
                    std::size_t known = 0;
                    if (!KnownWordAt(text, next, known)) return false;
                }
                i = next;
                continue;
            }
            if (Digit(c) || c == ' ' || c == '\t' || c == '\r' || c == '+' || c == '-' || c == '*' || c == '/' ||
                c == '.' || c == '(' || c == ')' || c == '=' || c == '!' || c == '<' || c == '>' || c == ',' ||
                c == '\\') {
                ++i;
                continue;
            }
            return false;
        }
    }
    return true;
}

namespace {

bool NumberAt(std::string_view text, std::size_t at) {
    return at < text.size() && (Digit(text[at]) || text[at] == '.' || text[at] == '-' || text[at] == '+');
}

// The number behind the first of the keys in the text; false when none has one.
bool ValueBehind(std::string_view text, std::string_view key, float& value) {
    std::size_t at = text.find(key);
    if (at == std::string_view::npos) return false;
    at += key.size();
    while (at < text.size() && text[at] == ' ') ++at;
    if (!NumberAt(text, at)) return false;
    value = ToSingle(ToNumber(text.substr(at)));
    return true;
}

void ReadSheet(std::string_view rest, ProgramHeader& header) {
    float x = 0, y = 0;
    bool found = false;
    std::size_t px = rest.find("X=");
    std::size_t py = px == std::string_view::npos ? std::string_view::npos : rest.find("Y=", px + 2);
    if (px != std::string_view::npos && py != std::string_view::npos && NumberAt(rest, px + 2) &&
        NumberAt(rest, py + 2)) {
        x = ToSingle(ToNumber(rest.substr(px + 2)));
        y = ToSingle(ToNumber(rest.substr(py + 2)));
        found = true;
    }
    if (!found) {
        px = rest.find('X');
        py = px == std::string_view::npos ? std::string_view::npos : rest.find('Y', px + 1);
        if (px != std::string_view::npos && py != std::string_view::npos && NumberAt(rest, px + 1) &&
            NumberAt(rest, py + 1)) {
            x = ToSingle(ToNumber(rest.substr(px + 1)));
            y = ToSingle(ToNumber(rest.substr(py + 1)));
            found = true;
        }
    }
    if (!found && NumberAt(rest, 0) && rest.find('Y') == std::string_view::npos) {
        // "2500X1250": a number, "X", a number.
        std::size_t i = 0;
        if (rest[i] == '-' || rest[i] == '+') ++i;
        while (i < rest.size() && (Digit(rest[i]) || rest[i] == '.')) ++i;
        if (i < rest.size() && rest[i] == 'X' && NumberAt(rest, i + 1)) {
            x = ToSingle(ToNumber(rest));
            y = ToSingle(ToNumber(rest.substr(i + 1)));
            found = true;
        }
    }
    if (!found) return;
    if (!(x > 0) || !(y > 0)) x = y = 0;
    header.SheetX = x;
    header.SheetY = y;
}

void ReadClamps(std::string_view rest, ProgramHeader& header) {
    static const char* const forms[4][4] = {
        {"1=", "2=", "3=", "4="}, {"A=", "B=", "C=", "D="}, {"L=", "M=", "R=", nullptr}, {"L", "M", "R", nullptr}};
    for (const auto& form : forms) {
        bool any = false;
        for (int k = 0; k < 4; ++k) {
            if (form[k] && ValueBehind(rest, form[k], header.Clamps[k])) any = true;
        }
        if (any) return;
    }
}

}  // namespace

ProgramHeader ReadHeader(const std::vector<std::string>& lines) {
    ProgramHeader header;
    bool sheetFound = false;
    for (const std::string& line : lines) {
        std::string before = BeforeComment(line);
        if (before.empty()) continue;  // only lines with text in front of ";" are read
        // The header ends at the first block with a word beyond its sequence number.
        if (CountBlockWords(line) != 0) {
            header.InchHeader = FindNoCase(before, "G70") != std::string::npos;
            break;
        }
        std::string comment = AfterComment(line);
        std::string upper = UpperCase(comment);
        std::string stripped = StripBlanks(upper);
        std::size_t colon = stripped.find(':');
        std::string_view rest = colon == std::string::npos ? std::string_view() : std::string_view(stripped).substr(colon + 1);
        if (upper.find("MATERIAL") != std::string::npos && !header.HasMaterial) {
            std::size_t at = comment.find(':');
            if (at != std::string::npos) {
                header.Material = std::string(Trim(std::string_view(comment).substr(at + 1)));
                header.HasMaterial = true;
            }
        } else if (stripped.find("SHEET") != std::string::npos && colon != std::string::npos && !sheetFound) {
            ReadSheet(rest, header);
            sheetFound = header.SheetX > 0;
        } else if (stripped.find("CLAMP") != std::string::npos && colon != std::string::npos) {
            // The blanks part the values here: "1=300 2=900".
            ReadClamps(std::string_view(upper).substr(upper.find(':') + 1), header);
        } else if (stripped.size() > 2 && stripped[0] == 'T' && Digit(stripped[1])) {
            // "T" station "=" tool text.
            std::size_t equals = comment.find('=');
            if (equals != std::string::npos) {
                int station = static_cast<int>(ToNumber(stripped.substr(1)));
                header.Tools.emplace_back(station, std::string(Trim(std::string_view(comment).substr(equals + 1))));
            }
        }
    }
    return header;
}

// ---------------------------------------------------------------------------------------
// The pass

namespace {

class ReverseRun {
public:
    ReverseRun(const std::vector<std::string>& m1, const std::vector<std::string>& m2, DrawingFile& drawing,
               std::string& report, std::int16_t& toolChanges, const ReverseSettings& settings)
        : m1_(m1), m2_(m2), drawing_(drawing), report_(report), toolChanges_(toolChanges), settings_(settings),
          stations_(settings.Stations) {}

    ReverseResult Run();

private:
    // Reading and reporting.
    double Value(std::string_view key);
    double Length(std::string_view key);
    std::int16_t Integer(std::string_view key);
    // Plain text search for a code; codes begin with "G", "M" or "I", so only the places of
    // those letters, indexed once per block, are looked at.
    bool Has(std::string_view code) const;
    void IndexCodes();
    void Error(std::string_view message, bool critical);
    void CheckLimit(double x, double y);

    // The block.
    void HandleBlock();
    void StoreAssignments();
    bool ApplyPosition();
    void ChangeTool();
    void CallSubroutine();
    void EndOfCall();
    void LeaveCall();
    void Conditional();
    void Jump(std::string_view tail);
    void Restart(int depth);
    // Counts `lines` lines of the file read at this depth from `first` on.
    void CountLines(const std::vector<std::string>& file, std::size_t first, std::size_t lines);
    // False, with the pass stopped and the critical error reported, beyond any work bound.
    bool WithinBounds();
    void ReadSettings();

    // Entities.
    void BeginEntity(std::int16_t kind, const char* name);
    bool TakeTool();
    void TakePlasmaTool();
    void Append();
    void FinishPattern();
    // An Arc Pattern entity begun with the tool, its centre, radius, first angle, sweep and step;
    // the tool turns with it when the block's P10 is absent or not positive.
    void BeginArcPattern(double centreX, double centreY, double radius, double first, double sweep, double step);
    // The previous position takes the position, which moves to the point of the circle at the
    // angle; the limits are checked there.
    void MoveOnCircle(double centreX, double centreY, double radius, double angle);
    void CheckHits();
    void NibbleLine();
    void NibbleArc(bool g02);
    void CycleG26();
    void CycleG28();
    void CycleG36();
    void CycleG37();
    void CycleG64();
    void CycleG65();
    void CycleG66();
    void Reposition();
    void Dwell();
    void Move();
    void Punch();
    void ProfileLine();
    void ProfileArc(bool g103);
    void LoadPosition();
    void FlipRotate();
    void Stop(bool optional);
    double NibbleIncrement();
    void Overflow() { Error(reverse_message::NumberOverflow, true); }
    // Charges hits walked to the work bound; false, with the pass stopped, beyond it.
    bool ChargeHits(std::int64_t hits);

    const std::vector<std::string>& m1_;
    const std::vector<std::string>& m2_;
    DrawingFile& drawing_;
    std::string& report_;
    std::int16_t& toolChanges_;
    const ReverseSettings& settings_;
    StationTable stations_;

    ReverseState S;
    ValueReader reader_{&S.Parameters};
    std::string line_;   // the block text: the line trimmed
    std::string block_;  // the working block: no comment, trimmed, upper case
    EntityRec rec_;      // the entity being built
    EntityRec sheet_;    // record 1
    bool stopped_ = false;
    bool writeFault_ = false;
    bool recordsFull_ = false;
    bool blocksFull_ = false;
    std::int64_t steps_ = 0;       // lines read, the ones passed over to a label included
    std::int64_t jumps_ = 0;       // jumps, calls and repetitions: files started again
    std::int64_t characters_ = 0;  // characters of the blocks worked on, BlockWork each beside
    std::int64_t linesRead_ = 0;
    LabelIndex m1Labels_, m2Labels_;
    std::int64_t hitWork_ = 0;
    std::array<std::uint16_t, 64> codeAt_{};
    int codes_ = 0;  // -1: too many letters to index, search the whole block
};

void ReverseRun::IndexCodes() {
    codes_ = 0;
    for (std::size_t i = 0; i < block_.size(); ++i) {
        char c = block_[i];
        if (c != 'G' && c != 'M' && c != 'I') continue;
        if (codes_ == static_cast<int>(codeAt_.size()) || i > UINT16_MAX) {
            codes_ = -1;
            return;
        }
        codeAt_[codes_++] = static_cast<std::uint16_t>(i);
    }
}

bool ReverseRun::Has(std::string_view code) const {
    if (codes_ < 0) return block_.find(code) != std::string::npos;
    const std::string_view block(block_);
    for (int k = 0; k < codes_; ++k) {
        std::size_t at = codeAt_[k];
        if (block[at] == code[0] && block.compare(at, code.size(), code) == 0) return true;
    }
    return false;
}

double ReverseRun::Value(std::string_view key) {
    double value = reader_.WordValue(block_, key);
    if (reader_.WordMissing || value == Missing || !std::isfinite(value)) {
        reader_.WordMissing = true;
        return Missing;
    }
    return value;
}

double ReverseRun::Length(std::string_view key) {
    double value = Value(key);
    if (value != Missing && S.Imperial) value *= Inch;
    return value;
}

std::int16_t ReverseRun::Integer(std::string_view key) {
    reader_.IntegerOverflow = false;
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

void ReverseRun::Error(std::string_view message, bool critical) {
    report_ += '\n';
    report_ += critical ? "****** CRITICAL ERROR ******" : "****** WARNING ERROR ******";
    report_ += '\n';
    report_ += Trim(message);
    report_ += '\n';
    report_ += Trim(line_);
    report_ += '\n';
    if (critical && S.CriticalCount < INT16_MAX) ++S.CriticalCount;
}

bool ReverseRun::ChargeHits(std::int64_t hits) {
    hitWork_ += hits;
    if (hitWork_ <= settings_.MaxHitWork) return true;
    if (!stopped_) Error(reverse_message::BlockLimit, true);
    stopped_ = true;
    return false;
}

void ReverseRun::CheckLimit(double x, double y) {
    if ((x < S.LimitXLow || x > S.LimitXHigh) && !S.WarnedX) {
        Error(pass_message::OutOfLimitsX, false);
        S.WarnedX = true;
    }
    if ((y < S.LimitYLow || y > S.LimitYHigh) && !S.WarnedY) {
        Error(pass_message::OutOfLimitsY, false);
        S.WarnedY = true;
    }
}

ReverseResult ReverseRun::Run() {
    ReverseResult result;
    // 4. The words of the main text.
    if (!CheckWords(m1_)) {
        result.Result = 1;
        result.WordsRejected = true;
        return result;
    }
    // 5. The header; 6. its lines in the report.
    ProgramHeader header = ReadHeader(m1_);
    for (const auto& [station, text] : header.Tools)
        if (station >= 1 && station <= static_cast<int>(stations_.size())) SetStationTool(stations_[station - 1], text);
    if (header.HasMaterial) report_ += "Material :  " + header.Material + "\n";
    report_ += "Sheet Size :  " + Single(header.SheetX) + "x" + Single(header.SheetY) + "\n";
    int clamps = 0;
    while (clamps < std::min<int>(settings_.ClampCount, 4) && header.Clamps[clamps] > 0) ++clamps;
    if (clamps == 3 || clamps == 4) {
        std::string text;
        for (int k = 0; k < clamps; ++k) text += (k ? ", " : "") + Single(header.Clamps[k]);
        report_ += "Clamps :  " + text + "\n";
    } else {
        report_ += "Clamps :  " + Single(header.Clamps[0]) + " & " + Single(header.Clamps[1]) + "\n";
    }
    // 7. Record 1, the Sheet.
    ClearEntity(sheet_);
    sheet_.Kind = EntityKind::Sheet;
    sheet_.KindName = FixedText("Sheet", KindNameWidth);
    sheet_.Remark = FixedText(header.Material, RemarkWidth);
    sheet_.Values[1] = header.SheetX;
    sheet_.Values[2] = header.SheetY;
    for (int k = 0; k < 4; ++k) sheet_.Values[7 + k] = header.Clamps[k];
    sheet_.RecordNo = 1;
    sheet_.Compensation = settings_.MachineType;
    if (!drawing_.Put(1, sheet_)) writeFault_ = true;
    // 8. The modal state.
    S = ReverseState{};
    S.PosX = S.PrevX = S.LastHitX = settings_.LoadX;
    S.PosY = S.PrevY = S.LastHitY = settings_.LoadY;
    S.LimitXLow = settings_.XLimitMin;
    S.LimitXHigh = settings_.XLimitMax;
    S.LimitYLow = settings_.YLimitMin;
    S.LimitYHigh = settings_.YLimitMax;
    S.ProcessSettings = settings_.ProgramSettings;

    // The main loop, until the main text is at its end.
    while (WithinBounds()) {
        // 1. The next line of this depth's file; a subroutine's file at its end is a RETURN.
        const std::vector<std::string>& file = S.Depth == 0 ? m1_ : m2_;
        std::size_t& next = S.CallLine[S.Depth];
        if (S.Skipping && next < file.size()) {
            // 3. Skipping to a block number: the lines before it are read and dropped.
            std::size_t label = (S.Depth == 0 ? m1Labels_ : m2Labels_).Find(file, next, S.SkipTo);
            CountLines(file, next, label - next);
            next = label;
        }
        if (next >= file.size()) {
            ++steps_;
            if (S.Depth == 0) break;
            EndOfCall();
            continue;
        }
        CountLines(file, next, 1);
        line_ = std::string(Trim(file[next++]));
        characters_ += static_cast<std::int64_t>(line_.size()) + BlockWork;
        // The block as it stands, blanks kept: codes are found by plain search in it, so that
        // "M10 0" is no M100.
        block_ = BeforeComment(line_);
        for (char& c : block_) c = UpperChar(c);
        IndexCodes();
        HandleBlock();
    }
    // A jump or a call whose block number never came.
    if (S.Skipping && !result.Stopped && !stopped_) {
        line_.clear();
        Error(std::string(reverse_message::LabelNotFound) + std::to_string(S.SkipTo) + ") ", true);
    }
    // End of the pass: record 1 with the count, the measurement mark and the tool changes.
    sheet_.Counts[1] = S.RecordCounter;
    sheet_.RecordNo = S.RecordCounter;
    sheet_.Counts[2] = S.MeasurementMark;
    sheet_.StationNo = toolChanges_;
    if (!drawing_.Put(1, sheet_)) writeFault_ = true;
    report_ += "******\n";
    if (stopped_) result.Stopped = true;
    result.CriticalCount = S.CriticalCount;
    result.Result = S.CriticalCount;
    result.Records = S.RecordCounter;
    result.Blocks = linesRead_;
    result.Stats = S.Stats;
    result.FileFault = writeFault_;
    return result;
}

// One block of the motion text, in the order of the language.
void ReverseRun::HandleBlock() {
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
    if (block_.find('P') != std::string::npos && !Has("IF")) StoreAssignments();
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
            sheet_.Values[1] = ToSingle(sheet_.Values[1] * Inch);
            sheet_.Values[2] = ToSingle(sheet_.Values[2] * Inch);
            for (int k = 7; k <= 10; ++k) sheet_.Values[k] = ToSingle(sheet_.Values[k] * Inch);
            sheet_.Counts[2] = True16;
            if (!drawing_.Put(1, sheet_)) writeFault_ = true;
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
    }
    // 7.7 Origin cleared.
    if (Has("G53")) S.OriginX = S.OriginY = 0;
    // 7.8 Origin set so that the position reads X, Y.
    if (Has("G92")) {
        double x = Length("X");
        if (x != Missing) S.OriginX = ToSingle(S.MirrorX ? S.PosX + x : S.PosX - x);
        double y = Length("Y");
        if (y != Missing) S.OriginY = ToSingle(S.MirrorY ? S.PosY + y : S.PosY - y);
    }
    // 7.9 Origin given.
    if (Has("G93")) {
        double x = Length("X");
        if (x != Missing) S.OriginX = ToSingle(x);
        double y = Length("Y");
        if (y != Missing) S.OriginY = ToSingle(y);
    }
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
        if (Has("G01")) NibbleLine();
        else if (Has("G02")) NibbleArc(true);
        else if (Has("G03")) NibbleArc(false);
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
        if (!S.Profiling) Punch();
        else if (Has("G81")) Move();
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
    if (Has("M00")) Stop(false);
    else if (Has("M01")) Stop(true);
}

void ReverseRun::StoreAssignments() {
    // "Pnn=" words: a "P" whose third following character is "="; each piece runs to the next.
    std::size_t marks[101];
    int count = 0;
    for (std::size_t i = 0; i + 3 < block_.size() && count < 100; ++i)
        if (block_[i] == 'P' && block_[i + 3] == '=') marks[count++] = i;
    marks[count] = block_.size();
    for (int k = 0; k < count; ++k) {
        std::string_view piece = std::string_view(block_).substr(marks[k], marks[k + 1] - marks[k]);
        std::int16_t number = reader_.WordInteger(piece.substr(0, 3), 'P');
        if (reader_.WordMissing || number < 12 || number > 99) continue;
        std::string key = "P" + std::to_string(number) + "=";
        double value = reader_.WordValue(piece, key);
        if (!reader_.WordMissing && std::isfinite(value)) S.Parameters.P[number] = value;
    }
}

bool ReverseRun::ApplyPosition() {
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

void ReverseRun::ChangeTool() {
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
    if (station < 1) {
        Error(" Station Number (" + std::to_string(station) + ") <= Zero ", false);
    } else if (station > count) {
        Error(" Station Number (" + std::to_string(station) + ") Exceeds Maximum (" + std::to_string(count) + ")",
              false);
    } else if (toolChanges_ < INT16_MAX) {
        ++toolChanges_;
    }
    S.Station = static_cast<std::int16_t>(std::clamp(station, -32768, 32767));
}

void ReverseRun::ReadSettings() {
    for (int i = 1; i <= 24; ++i) {
        std::string key = "P" + std::to_string(100 + i) + "=";
        if (block_.find(key) == std::string::npos) continue;
        double value = Value(key);
        if (value != Missing) S.ProcessSettings[i - 1] = ToSingle(value);
    }
}

// ---------------------------------------------------------------------------------------
// Calls, conditions, jumps

void ReverseRun::Restart(int depth) {
    S.CallLine[depth] = 0;
    S.BlockCount[depth] = 0;
    ++jumps_;
}

void ReverseRun::CountLines(const std::vector<std::string>& file, std::size_t first, std::size_t lines) {
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

bool ReverseRun::WithinBounds() {
    if (stopped_) return false;
    if (steps_ <= settings_.MaxBlocks && jumps_ <= settings_.MaxJumps && characters_ <= settings_.MaxCharacters)
        return true;
    line_.clear();
    Error(reverse_message::BlockLimit, true);
    stopped_ = true;
    return false;
}

void ReverseRun::CallSubroutine() {
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

void ReverseRun::LeaveCall() {
    ClearSubCall(S.CallSpecs[S.Depth]);
    ClearSubCall(S.CallStates[S.Depth]);
    S.CallLabel[S.Depth] = 0;
    S.BlockCount[S.Depth] = 0;
    S.CallLine[S.Depth] = 0;
    --S.Depth;
}

void ReverseRun::EndOfCall() {
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

void ReverseRun::Conditional() {
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

void ReverseRun::Jump(std::string_view tail) {
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

// ---------------------------------------------------------------------------------------
// Entities

void ReverseRun::BeginEntity(std::int16_t kind, const char* name) {
    ClearEntity(rec_);
    rec_.Kind = kind;
    rec_.KindName = FixedText(name, KindNameWidth);
    rec_.BlockText = FixedText(line_, BlockTextWidth);
    rec_.MainBlock = S.BlockCount[0];
    if (S.Depth > 0) {
        rec_.SubBlock = S.BlockCount[S.Depth];
        CopySubCall(S.CallSpecs[S.Depth], rec_.CallSpec);
        CopySubCall(S.CallStates[S.Depth], rec_.CallState);
    }
    CopySettings(S.ProcessSettings, rec_.Settings);
    rec_.Feed = S.FeedValue;
    rec_.PathMode = S.PathFlag;
}

bool ReverseRun::TakeTool() {
    if (S.Station < 1 || S.Station > static_cast<int>(stations_.size())) {
        Error(" Invalid Station Number (" + std::to_string(S.Station) + ")", true);
        return false;
    }
    const Station& station = stations_[S.Station - 1];
    CopyTool(station.Tool, rec_.Tool);
    rec_.StationNo = S.Station;
    rec_.Tool.Extra1 = station.Autoindex != FalseWord ? S.PosC : 0.0f;
    return true;
}

void ReverseRun::TakePlasmaTool() {
    if (!S.PlasmaOn) return;
    CopyTool(settings_.PlasmaTool, rec_.Tool);
    rec_.StationNo = -1;
}

void ReverseRun::Append() {
    ToolOutline(rec_);
    if (recordsFull_) return;
    if (S.RecordCounter == INT16_MAX) {
        recordsFull_ = true;
        Error(reverse_message::TooManyRecords, true);
        return;
    }
    if (!AppendEntity(drawing_, S.RecordCounter, rec_)) writeFault_ = true;
}

// The frame's ending for punches and patterns: written, counted, the hits checked.
void ReverseRun::BeginArcPattern(double centreX, double centreY, double radius, double first, double sweep,
                                 double step) {
    BeginEntity(EntityKind::ArcPattern, "Arc Pattern");
    TakeTool();
    rec_.Points.Position = {ToSingle(centreX), ToSingle(centreY)};
    rec_.Values[1] = ToSingle(radius);
    rec_.Values[10] = ToSingle(first);
    rec_.Values[11] = ToSingle(sweep);
    rec_.Values[12] = ToSingle(step);
    // The tool turns with the pattern unless P10 is above 0.
    double p10 = Value("P10=");
    rec_.Counts[2] = p10 == Missing || p10 <= 0 ? True16 : 0;
}

void ReverseRun::MoveOnCircle(double centreX, double centreY, double radius, double angle) {
    S.PrevX = S.PosX;
    S.PrevY = S.PosY;
    double dx, dy;
    PolarToXY(radius, angle, dx, dy);
    S.PosX = ToSingle(centreX + dx);
    S.PosY = ToSingle(centreY + dy);
    CheckLimit(S.PosX, S.PosY);
}

void ReverseRun::FinishPattern() {
    Append();
    ProgramStats& stats = S.Stats;
    std::int64_t hits = rec_.Kind == EntityKind::Punch ? 1
                        : rec_.Kind == EntityKind::GridPattern
                            ? static_cast<std::int64_t>(std::max<int>(rec_.Counts[1], 0)) * std::max<int>(rec_.Counts[2], 0)
                            : std::max<int>(rec_.Counts[1], 0);
    stats.Hits = static_cast<std::int32_t>(std::min<std::int64_t>(stats.Hits + hits, INT32_MAX));
    double dx = rec_.Points.Entry.X - static_cast<double>(S.LastHitX);
    double dy = rec_.Points.Entry.Y - static_cast<double>(S.LastHitY);
    stats.Travel = ToSingle(stats.Travel + std::sqrt(dx * dx + dy * dy) + rec_.Values[2]);
    S.LastHitX = rec_.Points.Exit.X;
    S.LastHitY = rec_.Points.Exit.Y;
    CheckHits();
}

// The limit check at each hit's place, in the order the machine punches them.
void ReverseRun::CheckHits() {
    long visited = 0;
    auto visit = [&](double x, double y) {
        CheckLimit(x, y);
        return !(S.WarnedX && S.WarnedY) && ++visited < MaxCheckedHits && !stopped_;
    };
    switch (rec_.Kind) {
    case EntityKind::Punch: visit(rec_.Points.Position.X, rec_.Points.Position.Y); break;
    case EntityKind::LinearPattern: {
        double stepX = 0, stepY = 0;
        PolarToXY(rec_.Values[2], rec_.Values[10], stepX, stepY);
        double x = rec_.Points.Entry.X, y = rec_.Points.Entry.Y;
        for (int k = 1; k <= rec_.Counts[1]; ++k, x += stepX, y += stepY)
            if (!visit(x, y)) break;
        if (visited >= MaxCheckedHits) visit(rec_.Points.Exit.X, rec_.Points.Exit.Y);
        break;
    }
    case EntityKind::GridPattern: {
        WalkGrid(GridParameters(rec_), rec_.Points.Start.X, rec_.Points.Start.Y,
                 [&](int, int, double x, double y) { return visit(x, y); });
        if (visited >= MaxCheckedHits)
            for (const PointF& p : {rec_.Points.Middle, rec_.Points.End, rec_.Points.Exit}) visit(p.X, p.Y);
        break;
    }
    case EntityKind::ArcPattern:
        for (int k = 0; k < rec_.Counts[1]; ++k) {
            double dx = 0, dy = 0;
            PolarToXY(rec_.Values[5], rec_.Values[13] + k * static_cast<double>(rec_.Values[12]), dx, dy);
            if (!visit(rec_.Points.Position.X + dx, rec_.Points.Position.Y + dy)) break;
        }
        break;
    default: break;
    }
    ChargeHits(visited);
}

double ReverseRun::NibbleIncrement() {
    double step = Length("P8=");
    if (step == Missing || step == 0) {
        Error(pass_message::NibbleNotSet, false);
        return S.NibbleStep;
    }
    if (step < 0) {
        Error(pass_message::NegativeNibble, false);
        step = std::fabs(step);
    }
    S.NibbleStep = step;
    return step;
}

// G01: a straight line nibbled from the previous position to this one.
void ReverseRun::NibbleLine() {
    double length, angle;
    XYToPolar(static_cast<double>(S.PosX) - S.PrevX, static_cast<double>(S.PosY) - S.PrevY, length, angle);
    length = Round(length, 4);
    angle = Round(angle, 3);
    double step = NibbleIncrement();
    auto hits = NibbleHits(length, step);
    if (!hits) {
        Overflow();
        return;
    }
    if (*hits == 1) {
        Error(pass_message::DivisionByZero, true);
        return;
    }
    if (!TakeTool()) return;
    BeginEntity(EntityKind::LinearPattern, "Linear Pattern");
    TakeTool();
    rec_.Points.Entry = {S.PrevX, S.PrevY};
    rec_.Points.Exit = {S.PosX, S.PosY};
    rec_.Values[1] = ToSingle(length);
    rec_.Values[2] = ToSingle(Round(std::fabs(length / (*hits - 1)), 4));
    rec_.Values[10] = ToSingle(angle);
    rec_.Counts[1] = *hits;
    FinishPattern();
    S.PrevX = S.PosX;
    S.PrevY = S.PosY;
    CheckLimit(S.PosX, S.PosY);
}

// G02, G03: an arc nibbled from the previous position to this one; G02 turns negative.
void ReverseRun::NibbleArc(bool g02) {
    auto read = [&](const char* key) {
        double v = Length(key);
        return v == Missing ? 0.0 : v;
    };
    double r = read("R"), i = read("I"), j = read("J");
    if (S.MirrorX) i = 0 - i;
    if (S.MirrorY) j = 0 - j;
    int sense = (g02 != (S.MirrorX != S.MirrorY)) ? -1 : 1;
    ArcGeometry arc;
    ArcCheck check = ArcThrough(S.PrevX, S.PrevY, S.PosX, S.PosY, r, i, j, sense, sense, arc);
    if (check == ArcCheck::InvalidIJ) {
        Error(pass_message::InvalidIJ, true);
        return;
    }
    if (check == ArcCheck::InvalidR) {
        Error(pass_message::InvalidR, true);
        return;
    }
    double step = NibbleIncrement();
    double arcLength = std::fabs(arc.Sweep) / 360 * (2 * arc.Radius * Pi);
    auto hits = NibbleHits(arcLength, step);
    if (!hits) {
        Overflow();
        return;
    }
    if (*hits == 1) {
        Error(pass_message::DivisionByZero, true);
        return;
    }
    if (!TakeTool()) return;
    BeginArcPattern(arc.CentreX, arc.CentreY, arc.Radius, arc.StartAngle, arc.Sweep, arc.Sweep / (*hits - 1));
    // Every hit, the last one too (only G37 leaves its last hit to P10).
    rec_.Counts[1] = *hits;
    rec_.Counts[6] = 2;
    FinishPattern();
    S.PrevX = S.PosX;
    S.PrevY = S.PosY;
    CheckLimit(S.PosX, S.PosY);
}

// G64: a full circle of hits around the position; the machine leaves it at the first hit.
void ReverseRun::CycleG64() {
    // 1. Centre and radius.
    const double centreX = S.PosX, centreY = S.PosY;
    double radius = Length("J");
    // 2. The hits: one is no circle.
    std::int16_t hits = Integer("B");
    bool hitsGiven = !reader_.WordMissing;
    if (hitsGiven && hits == 1) {
        Error(pass_message::InvalidHitsP1, true);
        return;
    }
    if (!hitsGiven) hits = 0;
    // 3. First angle, sweep and step.
    double first = Value("A");
    double sweep = 360;
    double step = hits == 0 ? 0 : (std::fabs(sweep) == 360 ? sweep / hits : sweep / (hits - 1));
    // 4. The mirrors.
    if (S.MirrorX || S.MirrorY) first = MirrorAngle(first, S.MirrorX, S.MirrorY);
    if (S.MirrorX) {
        step = -step;
        sweep = -sweep;
    }
    if (S.MirrorY) {
        step = -step;
        sweep = -sweep;
    }
    // 5, 6. The entity.
    if (!TakeTool()) return;
    BeginArcPattern(centreX, centreY, radius, first, sweep, step);
    rec_.Counts[1] = std::max<std::int16_t>(hits, 0);
    rec_.Counts[6] = 2;
    // 7-9. Written, counted, each hit checked.
    FinishPattern();
    // 10. To the first hit on the circle.
    MoveOnCircle(centreX, centreY, radius, first + sweep);
}

// G28: an arc of hits around a centre given from the position or from the origin.
void ReverseRun::CycleG28() {
    auto value = [&](const char* key, double missing, bool length) {
        double v = length ? Length(key) : Value(key);
        return v == Missing ? missing : v;
    };
    double r = value("R", Missing, true);
    ArcPattern arc;
    arc.I = value("I", 0, true);
    arc.J = value("J", 0, true);
    std::int16_t p1 = Integer("P1=");
    arc.P1 = p1 == Missing ? 0 : p1;
    arc.P2 = value("P2=", 0, false);
    arc.P3 = value("P3=", Missing, false);
    arc.P3Given = arc.P3 != Missing;
    arc.P4 = value("P4=", Missing, false);
    arc.P4Given = arc.P4 != Missing;
    arc.P5 = value("P5=", 0, false);
    double p7 = value("P7=", Missing, true);
    double p8 = value("P8=", Missing, true);
    std::int16_t p9 = Integer("P9=");
    bool stay = p9 != Missing && p9 != 0;
    arc.MirrorX = S.MirrorX;
    arc.MirrorY = S.MirrorY;
    if (arc.P1 == 1) {
        Error(pass_message::InvalidHitsP1, true);
        return;
    }
    // The centre, from the origin by P7, P8, or from the position by I, J.
    double centreX = p7 != Missing ? (arc.MirrorX ? S.OriginX - p7 : S.OriginX + p7)
                                   : (arc.MirrorX ? S.PosX - arc.I : S.PosX + arc.I);
    double centreY = p8 != Missing ? (arc.MirrorY ? S.OriginY - p8 : S.OriginY + p8)
                                   : (arc.MirrorY ? S.PosY - arc.J : S.PosY + arc.J);
    if (r == Missing || r == 0) r = std::sqrt(arc.I * arc.I + arc.J * arc.J);
    switch (CompleteArc(arc)) {
    case PatternCheck::InvalidHits: Error(pass_message::InvalidHitsP1, true); return;
    case PatternCheck::NoHitsOrPitch: Error(pass_message::NoHitsOrPitch, true); return;
    case PatternCheck::DivisionByZero: Error(pass_message::DivisionByZero, true); return;
    case PatternCheck::Ok: break;
    }
    if (!TakeTool()) return;
    BeginArcPattern(centreX, centreY, r, arc.P3, arc.Sweep, arc.P2);
    rec_.Counts[1] = arc.P1;
    rec_.Counts[6] = 2;
    FinishPattern();
    // To the end of the arc, or back to its start.
    S.PrevX = S.PosX;
    S.PrevY = S.PosY;
    if (stay) {
        double dx, dy;
        PolarToXY(r, arc.P3 + arc.Sweep, dx, dy);
        S.PosX = ToSingle(centreX + dx);
        S.PosY = ToSingle(centreY + dy);
    }
    CheckLimit(S.PosX, S.PosY);
}

// G26: a grid of hits walked to and fro, or with one row a row of hits.
void ReverseRun::CycleG26() {
    auto value = [&](const char* key, bool length) {
        double v = length ? Length(key) : Value(key);
        return v == Missing ? 0.0 : v;
    };
    auto integer = [&](const char* key) {
        std::int16_t v = Integer(key);
        return v == Missing ? std::int16_t{0} : v;
    };
    double i = Length("I");
    bool iGiven = i != Missing;
    double j = Length("J");
    bool jGiven = j != Missing;
    GridPattern grid;
    grid.P1 = integer("P1=");
    grid.P2 = value("P2=", true);
    grid.P3 = integer("P3=");
    grid.P4 = value("P4=", true);
    grid.P5 = value("P5=", false);
    grid.P7 = value("P7=", true);
    grid.P8 = value("P8=", true);
    grid.MirrorX = S.MirrorX;
    grid.MirrorY = S.MirrorY;
    bool stay = integer("P9=") != 0;
    double offsetX = value("P10=", true), offsetY = value("P11=", true);
    if (grid.P1 == 1 || grid.P3 == 1) {
        Error(pass_message::InvalidHitsP1P3, true);
        return;
    }
    // A vector gives the row's length and angle.
    if (iGiven || jGiven) XYToPolar(iGiven ? i : 0, jGiven ? j : 0, grid.P7, grid.P5);
    int rows = 1;
    if (CompleteGrid(grid, rows) != PatternCheck::Ok) {
        Error(pass_message::InvalidHitsP1P3, true);
        return;
    }
    // A grid's outline walks all its hits: one of more than an expansion takes is refused.
    const std::int64_t gridHits = static_cast<std::int64_t>(std::max<int>(grid.P1, 0)) * rows;
    if (rows > 1 && gridHits > MaxExpandedHits) {
        Error(reverse_message::TooManyHits, true);
        return;
    }
    if (rows > 1 && !ChargeHits(gridHits)) return;
    if (!TakeTool()) return;
    // The first hit: the position, moved by the offsets P10, P11 when given.
    double firstX = S.MirrorX ? S.PosX - offsetX : S.PosX + offsetX;
    double firstY = S.MirrorY ? S.PosY - offsetY : S.PosY + offsetY;
    double rowLength = (grid.P1 - 1) * grid.P2.Value;
    double endX = firstX, endY = firstY;
    if (rows > 1) {
        BeginEntity(EntityKind::GridPattern, "Grid Pattern");
        TakeTool();
        rec_.Points.Start = {ToSingle(firstX), ToSingle(firstY)};
        rec_.Values[1] = ToSingle(grid.P7);
        rec_.Values[2] = ToSingle(grid.P2.Value);
        rec_.Values[3] = ToSingle(grid.P8);
        rec_.Values[4] = ToSingle(grid.P4.Value);
        rec_.Values[10] = ToSingle(grid.P5);
        rec_.Counts[1] = grid.P1;
        rec_.Counts[2] = static_cast<std::int16_t>(rows);
        // The end of the walk, as the machine goes.
        double a = grid.P5, b = grid.P5 + 90;
        if (b > 360) b -= 360;
        for (int r = 1; r <= rows; ++r) {
            double dx, dy;
            PolarToXY(rowLength, a, dx, dy);
            endX += dx;
            endY += dy;
            if (r < rows) {
                PolarToXY(grid.P4.Value, b, dx, dy);
                endX += dx;
                endY += dy;
            }
            a += 180;
            if (a > 360) a -= 360;
        }
    } else {
        BeginEntity(EntityKind::LinearPattern, "Linear Pattern");
        TakeTool();
        double dx, dy;
        PolarToXY(rowLength, grid.P5, dx, dy);
        endX += dx;
        endY += dy;
        rec_.Points.Entry = {ToSingle(firstX), ToSingle(firstY)};
        rec_.Points.Exit = {ToSingle(endX), ToSingle(endY)};
        rec_.Values[2] = ToSingle(grid.P2.Value);
        rec_.Values[10] = ToSingle(grid.P5);
        rec_.Counts[1] = grid.P1;
    }
    FinishPattern();
    // At the end of the walk, or back at the start.
    S.PrevX = S.PosX;
    S.PrevY = S.PosY;
    if (stay) {
        S.PosX = ToSingle(endX);
        S.PosY = ToSingle(endY);
    }
    CheckLimit(S.PosX, S.PosY);
}

// G36: a straight line nibbled as a pattern from the position.
void ReverseRun::CycleG36() {
    double i = Length("I");
    bool iGiven = i != Missing;
    double j = Length("J");
    bool jGiven = j != Missing;
    double p1 = Length("P1=");
    if (p1 == Missing) p1 = 0;
    double p5 = Value("P5=");
    if (p5 == Missing) p5 = 0;
    if (p1 < 0) {
        p1 = std::fabs(p1);
        p5 = NormaliseAngle(p5 + 180);
    }
    double step = NibbleIncrement();
    if (iGiven || jGiven) XYToPolar(iGiven ? i : 0, jGiven ? j : 0, p1, p5);
    auto hits = RoundToInt16(std::fabs(std::trunc(p1 / step)) + 1);
    if (step == 0 || !std::isfinite(p1 / step)) hits = std::int16_t{1};
    if (!hits) {
        Overflow();
        return;
    }
    if (*hits == 1) {
        Error(pass_message::DivisionByZero, true);
        return;
    }
    if (S.MirrorX || S.MirrorY) p5 = MirrorAngle(p5, S.MirrorX, S.MirrorY);
    if (!TakeTool()) return;
    BeginEntity(EntityKind::LinearPattern, "Linear Pattern");
    TakeTool();
    double dx, dy;
    PolarToXY(p1, p5, dx, dy);
    rec_.Points.Entry = {S.PosX, S.PosY};
    rec_.Points.Exit = {ToSingle(S.PosX + dx), ToSingle(S.PosY + dy)};
    rec_.Values[2] = ToSingle(p1 / (*hits - 1));
    rec_.Values[10] = ToSingle(p5);
    rec_.Counts[1] = *hits;
    FinishPattern();
    S.PrevX = S.PosX;
    S.PrevY = S.PosY;
    S.PosX = ToSingle(S.PrevX + dx);
    S.PosY = ToSingle(S.PrevY + dy);
    CheckLimit(S.PosX, S.PosY);
}

// G37: an arc nibbled as a pattern around the centre the position plus I, J.
void ReverseRun::CycleG37() {
    auto length = [&](const char* key) {
        double v = Length(key);
        return v == Missing ? 0.0 : v;
    };
    double r = length("R"), i = length("I"), j = length("J");
    double p1 = Value("P1=");
    if (p1 == Missing) p1 = 0;
    double p5 = Value("P5=");
    double p10 = Value("P10=");
    double step = NibbleIncrement();
    if (p5 == Missing) {
        if (i == 0 && j == 0) {
            p5 = 0;
        } else {
            double radius;
            XYToPolar(0 - i, 0 - j, radius, p5);
            if (r == 0) r = radius;
        }
    }
    p5 = NormaliseAngle(p5);
    if (r == 0) {
        Error(pass_message::MissingRadius, true);
        return;
    }
    double arcLength = (p1 / 360) * (r * Pi * 2);
    auto hits = RoundToInt16(std::fabs(std::trunc(arcLength / step)) + 1);
    if (step == 0 || !std::isfinite(arcLength / step)) hits = std::int16_t{1};
    if (!hits) {
        Overflow();
        return;
    }
    if (*hits == 1) {
        Error(pass_message::DivisionByZero, true);
        return;
    }
    double stepAngle = p1 / (*hits - 1);
    if (S.MirrorX || S.MirrorY) p5 = MirrorAngle(p5, S.MirrorX, S.MirrorY);
    if (S.MirrorX) {
        p1 = -p1;
        stepAngle = -stepAngle;
    }
    if (S.MirrorY) {
        p1 = -p1;
        stepAngle = -stepAngle;
    }
    if (!TakeTool()) return;
    double centreX = S.MirrorX ? S.PosX - i : S.PosX + i;
    double centreY = S.MirrorY ? S.PosY - j : S.PosY + j;
    BeginArcPattern(centreX, centreY, r, p5, p1, stepAngle);
    // The last hit is drawn only when P10 is above 0.
    rec_.Counts[1] = p10 != Missing && p10 > 0 ? *hits : static_cast<std::int16_t>(*hits - 1);
    rec_.Counts[6] = 2;
    FinishPattern();
    MoveOnCircle(centreX, centreY, r, p5 + p1);
}

// G65: a nibbled rectangle, side by side from the position, one row of hits per side.
void ReverseRun::CycleG65() {
    double i = Value("I"), j = Value("J");
    if (S.Imperial) {
        i *= Inch;
        j *= Inch;
    }
    double step = Length("P8=");
    if (step == Missing) step = 0;
    const double lengths[4] = {std::fabs(i), std::fabs(j), std::fabs(i), std::fabs(j)};
    const double directions[4] = {i >= 0 ? 0.0 : 180.0, j >= 0 ? 90.0 : 270.0, i >= 0 ? 180.0 : 0.0,
                                  j >= 0 ? 270.0 : 90.0};
    // A side needs a length and a step to be nibbled with.
    for (double length : lengths) {
        if (std::min(step, length) <= 0) {
            Error(pass_message::DivisionByZero, true);
            return;
        }
    }
    struct Side {
        double Length, Direction, Pitch;
        std::int16_t Hits;
    } sides[4];
    for (int k = 0; k < 4; ++k) {
        Side& side = sides[k];
        side.Length = lengths[k];
        side.Direction = directions[k];
        if (S.MirrorX || S.MirrorY) side.Direction = MirrorAngle(side.Direction, S.MirrorX, S.MirrorY);
        double sideStep = std::min(step, side.Length);
        auto hits = RoundToInt16(std::floor(side.Length / sideStep) + 1);
        if (!hits) {
            Overflow();
            return;
        }
        side.Hits = *hits;
        side.Pitch = side.Length / side.Hits;
    }
    if (!TakeTool()) return;
    S.PrevX = S.PosX;
    S.PrevY = S.PosY;
    for (const Side& side : sides) {
        // From this corner up to one pitch before the next, which starts the next side.
        BeginEntity(EntityKind::LinearPattern, "Linear Pattern");
        TakeTool();
        double dx, dy;
        PolarToXY(side.Length - side.Pitch, side.Direction, dx, dy);
        rec_.Points.Entry = {S.PosX, S.PosY};
        rec_.Points.Exit = {ToSingle(S.PosX + dx), ToSingle(S.PosY + dy)};
        rec_.Values[2] = ToSingle(side.Pitch);
        rec_.Values[10] = ToSingle(side.Direction);
        rec_.Counts[1] = side.Hits;
        FinishPattern();
        PolarToXY(side.Length, side.Direction, dx, dy);
        S.PosX = ToSingle(S.PosX + dx);
        S.PosY = ToSingle(S.PosY + dy);
    }
    CheckLimit(S.PosX, S.PosY);
}

// G66: a straight row of hits at the pitch I, J; the machine is left at the point 0, 0.
void ReverseRun::CycleG66() {
    double i = Length("I"), j = Length("J");
    if (i == Missing) i = 0;
    if (j == Missing) j = 0;
    std::int16_t count = Integer("B");
    double firstX = S.PosX, firstY = S.PosY;
    bool atPosition = block_.find('X') != std::string::npos || block_.find('Y') != std::string::npos;
    if (!atPosition) {
        firstX = S.MirrorX ? S.PosX - i : S.PosX + i;
        firstY = S.MirrorY ? S.PosY - j : S.PosY + j;
    } else if (count < INT16_MAX) {
        ++count;
    }
    double pitch, direction;
    XYToPolar(i, j, pitch, direction);
    if (S.MirrorX || S.MirrorY) direction = MirrorAngle(direction, S.MirrorX, S.MirrorY);
    if (!TakeTool()) return;
    BeginEntity(EntityKind::LinearPattern, "Linear Pattern");
    TakeTool();
    double dx, dy;
    PolarToXY((count - 1) * pitch, direction, dx, dy);
    rec_.Points.Entry = {ToSingle(firstX), ToSingle(firstY)};
    rec_.Points.Exit = {ToSingle(firstX + dx), ToSingle(firstY + dy)};
    rec_.Values[2] = ToSingle(pitch);
    rec_.Values[10] = ToSingle(direction);
    rec_.Counts[1] = std::max<std::int16_t>(count, 0);
    FinishPattern();
    S.PrevX = S.PosX;
    S.PrevY = S.PosY;
    S.PosX = 0;
    S.PosY = 0;
    CheckLimit(S.PosX, S.PosY);
}

// G95: the sheet repositioned by I; the X limits move with it.
void ReverseRun::Reposition() {
    auto read = [&](const char* key) {
        double v = Length(key);
        return v == Missing ? 0.0 : v;
    };
    double i = read("I"), j = read("J");
    // K not set stays "not set" in the record.
    double k = Length("K");
    const bool kGiven = k != Missing;
    if (std::fabs(j) > 5) Error(reverse_message::ExcessiveBackoff, false);
    if (kGiven && std::fabs(k) > 5) Error(reverse_message::ExcessiveReturn, false);
    if (S.MirrorX) i = 0 - i;
    if (S.MirrorY) {
        j = 0 - j;
        if (kGiven) k = 0 - k;
    }
    S.LimitXLow = ToSingle(S.LimitXLow - i);
    S.LimitXHigh = ToSingle(S.LimitXHigh - i);
    BeginEntity(EntityKind::Reposition, "Reposition");
    rec_.Points.Position = {S.PosX, S.PosY};
    rec_.Values[1] = ToSingle(i);
    rec_.Values[2] = ToSingle(j);
    rec_.Values[3] = S.LimitXLow;
    rec_.Values[4] = S.LimitXHigh;
    rec_.Values[6] = ToSingle(k);
    Append();
    S.LastHitX = rec_.Points.Exit.X;
    S.LastHitY = rec_.Points.Exit.Y;
    // The position against the shifted limits, at this block.
    CheckLimit(S.PosX, S.PosY);
}

// G04: a dwell at the position, the time in X.
void ReverseRun::Dwell() {
    double time = Value("X");
    BeginEntity(EntityKind::Dwell, "Dwell");
    rec_.Points.Position = {S.PosX, S.PosY};
    rec_.Values[1] = time == Missing ? 0.0f : ToSingle(time);
    Append();
    S.LastHitX = rec_.Points.Exit.X;
    S.LastHitY = rec_.Points.Exit.Y;
}

// G77, G80 (and G81 under profiling): a move without a hit; none when the position stays.
void ReverseRun::Move() {
    if (S.PrevX == S.PosX && S.PrevY == S.PosY) return;
    double length, angle;
    XYToPolar(static_cast<double>(S.PosX) - S.PrevX, static_cast<double>(S.PosY) - S.PrevY, length, angle);
    BeginEntity(EntityKind::Move, "Move");
    rec_.Points.Start = {S.PrevX, S.PrevY};
    rec_.Points.End = {S.PosX, S.PosY};
    rec_.Points.Position = rec_.Points.End;
    rec_.Values[1] = ToSingle(Round(length, 4));
    rec_.Values[10] = ToSingle(Round(angle, 3));
    Append();
    S.Stats.Travel = ToSingle(S.Stats.Travel + rec_.Values[1]);
    S.LastHitX = rec_.Points.Exit.X;
    S.LastHitY = rec_.Points.Exit.Y;
}

// G81, M75: one hit at the position.
void ReverseRun::Punch() {
    if (!TakeTool()) return;
    BeginEntity(EntityKind::Punch, "Punch");
    TakeTool();
    rec_.Points.Position = {S.PosX, S.PosY};
    FinishPattern();
}

// G101: a straight cut from the previous position.
void ReverseRun::ProfileLine() {
    S.ArcStarted = 1;
    BeginEntity(EntityKind::LineProfile, "Line Profile");
    TakePlasmaTool();
    rec_.Points.Start = {S.PrevX, S.PrevY};
    rec_.Points.End = {S.PosX, S.PosY};
    rec_.Compensation = S.CutterSide;
    Append();
    S.Stats.CutLength = ToSingle(S.Stats.CutLength + rec_.Values[1]);
    S.LastHitX = rec_.Points.Exit.X;
    S.LastHitY = rec_.Points.Exit.Y;
}

// G102, G103: a cut arc; a full circle is written as two half arcs.
void ReverseRun::ProfileArc(bool g103) {
    auto read = [&](const char* key) {
        double v = Length(key);
        return v == Missing ? 0.0 : v;
    };
    double r = read("R"), i = read("I"), j = read("J");
    if (S.MirrorX) i = 0 - i;
    if (S.MirrorY) j = 0 - j;
    const bool mirrorsEqual = S.MirrorX == S.MirrorY;
    const bool clockwiseFirst = (settings_.MachineOrientation == 1) != g103;
    const int centreSense = (clockwiseFirst == mirrorsEqual) ? -1 : 1;
    const int radiusSense = (mirrorsEqual != g103) ? 1 : -1;
    ArcGeometry arc;
    ArcCheck check = ArcThrough(S.PrevX, S.PrevY, S.PosX, S.PosY, r, i, j, centreSense, radiusSense, arc);
    if (check == ArcCheck::InvalidIJ) {
        Error(pass_message::InvalidIJ, true);
        return;
    }
    if (check == ArcCheck::InvalidR) {
        Error(pass_message::InvalidR, true);
        return;
    }
    S.ArcStarted = 1;
    const bool full = std::fabs(arc.Sweep) == 360;
    const int parts = full ? 2 : 1;
    const double sweep = arc.Sweep / parts;
    for (int part = 0; part < parts; ++part) {
        const double start = arc.StartAngle + part * sweep;
        BeginEntity(EntityKind::ArcProfile, "Arc Profile");
        TakePlasmaTool();
        double sx, sy, ex, ey;
        PolarToXY(arc.Radius, start, sx, sy);
        PolarToXY(arc.Radius, start + sweep, ex, ey);
        rec_.Points.Start = part == 0 ? PointF{S.PrevX, S.PrevY} : PointF{ToSingle(arc.CentreX + sx), ToSingle(arc.CentreY + sy)};
        rec_.Points.End = part == parts - 1 ? PointF{S.PosX, S.PosY} : PointF{ToSingle(arc.CentreX + ex), ToSingle(arc.CentreY + ey)};
        rec_.Points.Position = {ToSingle(arc.CentreX), ToSingle(arc.CentreY)};
        rec_.Values[1] = ToSingle(arc.Radius);
        rec_.Values[10] = ToSingle(NormaliseAngle(start));
        rec_.Values[11] = ToSingle(sweep);
        rec_.Counts[6] = 2;
        rec_.Compensation = S.CutterSide;
        Append();
        S.Stats.CutLength = ToSingle(S.Stats.CutLength + rec_.Values[2]);
        S.LastHitX = rec_.Points.Exit.X;
        S.LastHitY = rec_.Points.Exit.Y;
    }
}

// M50, M60: to the load position, Y as the block says.
void ReverseRun::LoadPosition() {
    double y = Length("Y");
    const bool m60 = Has("M60");
    if (m60) {
        // A valid station in the block becomes the station.
        std::size_t at = block_.find('T');
        if (at != std::string::npos) {
            std::int16_t number = reader_.WordInteger(std::string_view(block_).substr(at), 'T');
            int station = StationOfTNumber(stations_, number);
            if (!reader_.WordMissing && station >= 1 && station <= static_cast<int>(stations_.size()))
                S.Station = static_cast<std::int16_t>(station);
        }
    }
    S.PrevX = S.PosX;
    S.PrevY = S.PosY;
    S.PosX = settings_.LoadX;
    S.PosY = y == Missing ? settings_.LoadY : ToSingle(y);
    BeginEntity(EntityKind::LoadPosition, "Load Position");
    rec_.Points.Position = {S.PosX, S.PosY};
    rec_.Values[1] = S.PosX;
    rec_.Values[2] = S.PosY;
    rec_.Counts[1] = m60 ? 1 : 0;
    Append();
    S.LastHitX = S.PosX;
    S.LastHitY = S.PosY;
    CheckLimit(S.PosX, S.PosY);
}

// M55: the sheet flipped in X or Y, or turned by A.
void ReverseRun::FlipRotate() {
    double i = Value("I"), j = Value("J"), a = Value("A");
    BeginEntity(EntityKind::FlipRotate, "Flip / Rotate");
    rec_.Points.Position = {S.PosX, S.PosY};
    rec_.Values[10] = a == Missing ? 0.0f : ToSingle(a);
    rec_.Counts[1] = i != 0 && i != Missing ? True16 : 0;
    rec_.Counts[2] = j != 0 && j != Missing ? True16 : 0;
    Append();
    S.LastHitX = S.PosX;
    S.LastHitY = S.PosY;
}

// M00, M01: a stop at the position.
void ReverseRun::Stop(bool optional) {
    if (!TakeTool()) return;
    BeginEntity(EntityKind::Stop, optional ? "Optional Stop" : "Program Stop");
    TakeTool();
    rec_.Points.Position = {S.PosX, S.PosY};
    rec_.Counts[1] = optional ? True16 : 0;
    Append();
    S.LastHitX = rec_.Points.Exit.X;
    S.LastHitY = rec_.Points.Exit.Y;
}

}  // namespace

ReverseResult ReverseTexts(const std::vector<std::string>& m1, const std::vector<std::string>& m2,
                           DrawingFile& drawing, std::string& report, std::int16_t& toolChanges,
                           const ReverseSettings& settings) {
    ReverseRun run(m1, m2, drawing, report, toolChanges, settings);
    return run.Run();
}

ReverseResult ReversePass(const std::string& stem, const std::string& programName, const std::string& directory,
                          std::int16_t& toolChanges, const ReverseSettings& settings) {
    // 1, 2. The report anew with its three head lines.
    const std::string reportPath = settings.ServiceDir + "Reverse.txt";
    std::string head = "PROGRAM   :  " + std::string(Trim(programName)) + "\n" + "DIRECTORY :  " +
                       std::string(Trim(directory)) + "\n" + "TIME      :  " +
                       (settings.Now ? settings.Now() : ReportTime()) + "\n";
    std::string body;
    ReverseResult result;
    auto fileFault = [&](const std::string& file) {
        result.Result = 1;
        result.FileFault = true;
        result.FaultFile = file;
    };
    NoteFile(settings.ServiceDir, stem + "M1");
    auto m1 = ReadLines(stem + "M1");
    if (!m1) {
        fileFault(stem + "M1");
    } else if (!CheckWords(*m1)) {
        // 4. Words the language doesn't know end the pass here, before the drawing exists.
        result.Result = 1;
        result.WordsRejected = true;
    } else {
        auto m2 = ReadLines(stem + "M2");
        DrawingFile drawing;
        if (!drawing.Create(stem + "drw")) {
            fileFault(stem + "drw");
        } else {
            result = ReverseTexts(*m1, m2 ? *m2 : std::vector<std::string>{}, drawing, body, toolChanges, settings);
            if (!drawing.Close()) result.FileFault = true;
            if (result.FileFault) result.FaultFile = stem + "drw";
        }
    }
    if (!WriteFileText(reportPath, head + body) && !result.FileFault) fileFault(reportPath);
    return result;
}

}  // namespace kirvana

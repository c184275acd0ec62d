// The Blend pass: the main loop, the position update, the profile handlers and the tangency
// test. The walk of one line is the main loop's step 3, its own steps numbered 1 to 23.
#include "translate/blend.h"

#include <cmath>
#include <filesystem>
#include <sstream>

#include "core/cycle_maths.h"
#include "core/file_writer.h"
#include "core/geometry.h"
#include "core/number.h"
#include "core/paths.h"
#include "core/text.h"
#include "translate/cycle_maths_more.h"

namespace kirvana {

namespace {

constexpr double Missing = -999;

double Round(float value, int places) { return RoundHalfEven(Number(value), places); }

}  // namespace

BlendSettings BlendSettingsFrom(const MachineData& machine, const Directories& dirs) {
    BlendSettings s;
    s.Travel = machine.Travel;
    s.ProfilerValue = machine.ProfilerValue;
    s.MachineOrientation = machine.MachineOrientation;
    s.RootDir = dirs.RootDir;
    s.ServiceDir = dirs.ServiceDir;
    return s;
}

BlendPass::BlendPass(const BlendSettings& settings) : settings_(settings) { Start(); }

// Step 2 of the main loop: the state to its start values (LastMove cleared with it).
void BlendPass::Start() {
    State = BlendState{};
    State.BlendX = State.BlendPrevX = settings_.Travel.LoadPositionX;
    State.BlendY = State.BlendPrevY = settings_.Travel.LoadPositionY;
    State.BlendXMin = settings_.Travel.XLimitMin;
    State.BlendXMax = settings_.Travel.XLimitMax;
    State.BlendYMin = settings_.Travel.YLimitMin;
    State.BlendYMax = settings_.Travel.YLimitMax;
    Reader = ValueReader(&State.BlendParameters);
}

double BlendPass::BlendValue(std::string_view block, std::string_view key) {
    double value = Reader.WordValue(block, key);
    if (Reader.WordMissing || value == Missing) {
        Reader.WordMissing = true;
        return Missing;
    }
    return value;
}

std::int16_t BlendPass::BlendInteger(std::string_view block, std::string_view key) {
    std::int16_t value = Reader.WordInteger(block, key);
    if (Reader.WordMissing || value == Missing) {
        Reader.WordMissing = true;
        return static_cast<std::int16_t>(Missing);
    }
    return value;
}

double BlendPass::MirrorAngle(double angle) const {
    return kirvana::MirrorAngle(angle, State.BlendMirrorX, State.BlendMirrorY);
}

void BlendPass::BlendError(std::string_view block, std::string_view message, bool critical) {
    if (report_) {
        *report_ << '\n'
                 << (critical ? "****** CRITICAL ERROR ******" : "****** WARNING ERROR ******") << '\n'
                 << Trim(message) << '\n'
                 << Trim(block) << '\n';
    }
    if (critical && State.BlendCritical < 32767) ++State.BlendCritical;
}

// Step 4 of a line: the tool word.
void BlendPass::ReadTool(const std::string& block) {
    // The first T that is part of neither "GOTO" nor "TRUNC".
    for (std::size_t i = block.find('T'); i != std::string::npos; i = block.find('T', i + 1)) {
        bool inGoto = i >= 2 && block.compare(i - 2, 4, "GOTO") == 0;
        bool inTrunc = block.compare(i, 5, "TRUNC") == 0;
        if (inGoto || inTrunc) continue;
        State.BlendTool = BlendInteger(std::string_view(block).substr(i), "T");
        return;
    }
}

void BlendPass::CheckLimits(double x, double y, const std::string& block) {
    if ((x < State.BlendXMin || x > State.BlendXMax) && !State.BlendWarnedX) {
        BlendError(block, pass_message::OutOfLimitsX, false);
        State.BlendWarnedX = true;
    }
    if ((y < State.BlendYMin || y > State.BlendYMax) && !State.BlendWarnedY) {
        BlendError(block, pass_message::OutOfLimitsY, false);
        State.BlendWarnedY = true;
    }
}

// The position update; the caller leaves it out for a block with G56, G92 or G04.
void BlendPass::PositionUpdate(const std::string& block) {
    BlendState& s = State;
    // 1. The previous position.
    s.BlendPrevX = s.BlendX;
    s.BlendPrevY = s.BlendY;
    s.BlendPrevC = s.BlendC;
    // 2. X and Y.
    double x = BlendValue(block, "X");
    double y = BlendValue(block, "Y");
    if (s.BlendInch) {
        if (x != Missing) x *= Inch;
        if (y != Missing) y *= Inch;
    }
    // 3. H and V, always incremental.
    double h = BlendValue(block, "H");
    if (h == Missing) h = 0;
    double v = BlendValue(block, "V");
    if (v == Missing) v = 0;
    if (s.BlendInch) {
        h *= Inch;
        v *= Inch;
    }
    // 4. R and A, a polar increment, unless the letters belong to an arc.
    double r = 0, a = 0;
    if (!Holds("G02") && !Holds("G03") && !Holds("G28") && !Holds("G37")) {
        r = BlendValue(block, "R");
        if (r == Missing) r = 0;
        if (s.BlendInch) r *= Inch;
        a = BlendValue(block, "A");
        if (a == Missing) a = 0;
    }
    // 5. C.
    double c = BlendValue(block, "C");
    // 6. No coordinate at all: no move.
    if (x == Missing && y == Missing && c == Missing && h == 0 && v == 0 && r == 0 && a == 0) {
        s.BlendHit = false;
        return;
    }
    bool mirrored = s.BlendMirrorX || s.BlendMirrorY;
    if (!s.BlendIncremental) {
        // 7. Absolute.
        if (x != Missing) s.BlendX = ToSingle(s.BlendMirrorX ? s.BlendOriginX - x : s.BlendOriginX + x);
        if (y != Missing) s.BlendY = ToSingle(s.BlendMirrorY ? s.BlendOriginY - y : s.BlendOriginY + y);
        if (c != Missing) s.BlendC = ToSingle(mirrored ? MirrorAngle(c) : c);
    } else {
        // 8. Incremental.
        if (x != Missing) s.BlendX = ToSingle(s.BlendMirrorX ? s.BlendX - x : s.BlendX + x);
        if (y != Missing) s.BlendY = ToSingle(s.BlendMirrorY ? s.BlendY - y : s.BlendY + y);
        if (c != Missing) s.BlendC = ToSingle(s.BlendC + (mirrored ? MirrorAngle(c) : c));
    }
    // 9. C within a turn.
    s.BlendC = ToSingle(NormaliseAngle(s.BlendC));
    // 10. The increments H, V and the polar R, A.
    double dx, dy;
    PolarToXY(r, a, dx, dy);
    h += dx;
    v += dy;
    s.BlendX = ToSingle(s.BlendMirrorX ? s.BlendX - h : s.BlendX + h);
    s.BlendY = ToSingle(s.BlendMirrorY ? s.BlendY - v : s.BlendY + v);
    // 11. Travel limits, except for the arc patterns.
    if (!Holds("G37") && !Holds("G28")) CheckLimits(s.BlendX, s.BlendY, block);
}

// The tangency test: the new move's start direction against the end direction of LastMove.
bool BlendPass::Tangent(double startDirection) const {
    const LastMoveRecord& last = State.LastMove;
    double a = NormaliseAngle(startDirection);
    double b;
    if (last.Kind == 1) {
        b = NormaliseAngle(last.Angle);
    } else if (last.Kind == 2 || last.Kind == 3) {
        b = NormaliseAngle(static_cast<double>(last.StartAngle) + last.Sweep);
        b = last.Sweep >= 0 ? NormaliseAngle(b + 90) : NormaliseAngle(b - 90);
    } else {
        return false;
    }
    double low = b - settings_.ProfilerValue, high = b + settings_.ProfilerValue;
    for (double candidate : {a, a - 360, a + 360})
        if (candidate >= low && candidate <= high) return true;
    return false;
}

void BlendPass::InsertMark(std::string_view code, const std::string& mark) {
    std::size_t at = FindNoCase(State.BlendOutLine, code);
    if (at != std::string::npos) State.BlendOutLine.insert(at + code.size(), mark);
}

// The G101 handler; the caller leaves it out for a block that also holds G102 or G103.
void BlendPass::ProfileLine() {
    BlendState& s = State;
    // 1. A straight cut.
    s.BlendArcCode = 1;
    // 2. Length and direction from the points rounded to 4 decimals.
    double length, angle;
    XYToPolar(Round(s.BlendX, 4) - Round(s.BlendPrevX, 4), Round(s.BlendY, 4) - Round(s.BlendPrevY, 4), length, angle);
    length = RoundHalfEven(length, 4);
    angle = RoundHalfEven(angle, 3);
    // 3. No cut with the torch off: no mark, and the chain ends.
    if (!s.BlendTorchOn) {
        ClearLastMove();
        return;
    }
    // 4, 5. Tangency mark.
    InsertMark("G101", Tangent(angle) ? " B1" : " B0");
    // 6. This move becomes the last.
    ClearLastMove();
    s.LastMove.Kind = 1;
    s.LastMove.Length = ToSingle(length);
    s.LastMove.Angle = ToSingle(angle);
    s.LastMove.StartX = s.BlendPrevX;
    s.LastMove.StartY = s.BlendPrevY;
    s.LastMove.EndX = s.BlendX;
    s.LastMove.EndY = s.BlendY;
}

// The G102 and G103 handlers; the caller leaves them out for a block that also holds G101 or
// the other arc code.
void BlendPass::ProfileArc(const std::string& block, bool g103) {
    BlendState& s = State;
    // 1. R, I, J; the mirrors turn the centre offset.
    auto read = [&](const char* key) {
        double value = BlendValue(block, key);
        if (value == Missing) value = 0;
        return s.BlendInch ? value * Inch : value;
    };
    double r = read("R"), i = read("I"), j = read("J");
    if (s.BlendMirrorX) i = 0 - i;
    if (s.BlendMirrorY) j = 0 - j;
    s.BlendArcCode = g103 ? 3 : 2;
    // 2, 3. Done by ArcThrough: given by its centre, or by its radius (negative R asks for the
    // longer arc). The senses are the sweep rules: by the centre (the sweep rule for G102,
    // centre form), G102 turns negative with equal mirrors on a machine of orientation 1; by
    // the radius, G102 turns positive with equal mirrors; G103 and unequal mirrors turn either
    // round. A critical error ends the handler with no mark.
    bool mirrorsEqual = s.BlendMirrorX == s.BlendMirrorY;
    bool clockwiseFirst = (settings_.MachineOrientation == 1) != g103;
    int centreSense = clockwiseFirst == mirrorsEqual ? -1 : 1;
    int radiusSense = mirrorsEqual != g103 ? 1 : -1;
    ArcGeometry arc;
    switch (ArcThrough(s.BlendPrevX, s.BlendPrevY, s.BlendX, s.BlendY, r, i, j, centreSense, radiusSense, arc)) {
        case ArcCheck::InvalidIJ:
            BlendError(block, pass_message::InvalidIJ, true);
            return;
        case ArcCheck::InvalidR:
            BlendError(block, pass_message::InvalidR, true);
            return;
        case ArcCheck::Ok:
            break;
    }
    const double radius = arc.Radius, centreX = arc.CentreX, centreY = arc.CentreY;
    const double startAngle = arc.StartAngle, sweep = arc.Sweep;
    if (!s.BlendTorchOn) {
        // 4. No cut: no mark, and the chain ends; on to the limit walk, step 8.
        ClearLastMove();
    } else {
        // 5, 6. Tangency with the arc's start direction, and the radius.
        double direction = sweep >= 0 ? NormaliseAngle(startAngle + 90) : NormaliseAngle(startAngle - 90);
        std::string mark = Tangent(direction) ? " B1 E" : " B0 E";
        // The radius as computed, rounded only as it is written.
        mark += FormatNumber(RoundHalfEven(Number(radius), 3), -1);
        InsertMark(g103 ? "G103" : "G102", mark);
        // 7. This arc becomes the last move.
        ClearLastMove();
        LastMoveRecord& m = s.LastMove;
        m.Kind = g103 ? 3 : 2;
        m.StartX = s.BlendPrevX;
        m.StartY = s.BlendPrevY;
        m.EndX = s.BlendX;
        m.EndY = s.BlendY;
        m.CentreX = ToSingle(centreX);
        m.CentreY = ToSingle(centreY);
        m.Radius = ToSingle(radius);
        m.StartAngle = ToSingle(startAngle);
        m.Sweep = ToSingle(sweep);
    }
    // 8. The arc's travel, checked at every whole degree.
    int step = sweep > 0 ? 1 : (sweep < 0 ? -1 : 0);
    if (step == 0) return;
    double whole = RoundHalfEven(sweep, 0);
    double a = startAngle;
    for (double k = step; step > 0 ? k <= whole : k >= whole; k += step) {
        double px, py;
        PolarToXY(radius, a, px, py);
        CheckLimits(px + centreX, py + centreY, block);
        a += step;
    }
}

// Step 21 of a line: M60 and M50 go to the load position, which is checked on its own.
void BlendPass::LoadPosition(const std::string& block) {
    BlendState& s = State;
    s.BlendX = settings_.Travel.LoadPositionX;
    s.BlendY = settings_.Travel.LoadPositionY;
    if (settings_.Travel.LoadPositionX < s.BlendXMin || settings_.Travel.LoadPositionX > s.BlendXMax)
        BlendError(block, pass_message::OutOfLimitsX, false);
    if (settings_.Travel.LoadPositionY < s.BlendYMin || settings_.Travel.LoadPositionY > s.BlendYMax)
        BlendError(block, pass_message::OutOfLimitsY, false);
}

// Step 3 of the main loop for one line, its steps 1 to 23.
const std::string& BlendPass::BlendBlock(std::string_view line) {
    BlendState& s = State;
    // 1. A new block: no limit warning yet; the line trimmed and counted.
    s.BlendWarnedX = s.BlendWarnedY = false;
    s.BlendLine = std::string(Trim(line));
    if (s.BlendBlockCount < 2147483647) ++s.BlendBlockCount;
    // 2. The line to write, and the working block.
    s.BlendOutLine = s.BlendLine;
    block_ = StripBlanks(BeforeComment(s.BlendLine));
    for (char& c : block_) c = UpperChar(c);
    const std::string& b = block_;
    codes_.Build(b);
    // 3. Variable assignments, by StoreAssignments.
    if (b.find('P') != std::string::npos) StoreAssignments(b, Reader, State.BlendParameters);
    // 4. The tool, in punch mode.
    if (!s.BlendProfiling && b.find('T') != std::string::npos) ReadTool(b);
    // 5. Absolute or incremental, metric or inch: the later code wins.
    if (Holds("G90")) s.BlendIncremental = false;
    if (Holds("G91")) s.BlendIncremental = true;
    if (Holds("G70")) s.BlendInch = true;
    if (Holds("G71")) s.BlendInch = false;
    // 6. Subroutine calls end the tangency chain.
    if (Holds("G98") || Holds("G69") || Holds("G68")) ClearLastMove();
    // 7. The move.
    s.BlendHit = true;
    if (!Holds("G56") && !Holds("G92") && !Holds("G04")) PositionUpdate(b);
    // 8. Pattern start: no hit.
    if (Holds("G72")) s.BlendHit = false;
    // 9. Origin shift.
    if (Holds("G56")) {
        double x = BlendValue(b, "X"), y = BlendValue(b, "Y");
        x = x == Missing ? 0 : (s.BlendInch ? x * Inch : x);
        y = y == Missing ? 0 : (s.BlendInch ? y * Inch : y);
        s.BlendOriginX = ToSingle(s.BlendMirrorX ? s.BlendOriginX - x : s.BlendOriginX + x);
        s.BlendOriginY = ToSingle(s.BlendMirrorY ? s.BlendOriginY - y : s.BlendOriginY + y);
        s.BlendHit = false;
    }
    // 10. Origin cleared.
    if (Holds("G53")) s.BlendOriginX = s.BlendOriginY = 0;
    // 11. Origin set so that the position reads X, Y (the words as written, not converted).
    if (Holds("G92")) {
        double x = BlendValue(b, "X");
        if (x != Missing) s.BlendOriginX = ToSingle(s.BlendMirrorX ? s.BlendX + x : s.BlendX - x);
        double y = BlendValue(b, "Y");
        if (y != Missing) s.BlendOriginY = ToSingle(s.BlendMirrorY ? s.BlendY + y : s.BlendY - y);
        s.BlendHit = false;
    }
    // 12. Kerf, in profiling only.
    if (s.BlendProfiling) {
        if (Holds("G40")) s.BlendKerf = 0;
        if (Holds("G41")) s.BlendKerf = 1;
        if (Holds("G42")) s.BlendKerf = 2;
    } else {
        s.BlendKerf = 0;
    }
    // 13. Rapid move.
    if (Holds("G00")) {
        s.BlendArcCode = 0;
        ClearLastMove();
    }
    // 14. Cutting moves in profiling; nibbling moves in punch mode.
    if (s.BlendProfiling) {
        bool g101 = Holds("G101"), g102 = Holds("G102"), g103 = Holds("G103");
        if (g101 && !g102 && !g103) ProfileLine();
        if (g102 && !g101 && !g103) ProfileArc(b, false);
        if (g103 && !g101 && !g102) ProfileArc(b, true);
        if (g101 || g102 || g103) s.BlendHit = false;
    } else if (Holds("G01") || Holds("G02") || Holds("G03")) {
        ClearLastMove();
        s.BlendHit = false;
    }
    // 15. Dwell.
    if (Holds("G04")) {
        ClearLastMove();
        s.BlendHit = false;
    }
    // 16. The canned cycles, in punch mode, each with its expansion handler.
    if (!s.BlendProfiling) {
        struct Cycle {
            const char* Code;
            void (BlendPass::*Run)(const std::string&);
        };
        static const Cycle cycles[] = {{"G26", &BlendPass::CycleG26}, {"G28", &BlendPass::CycleG28},
                                       {"G36", &BlendPass::CycleG36}, {"G37", &BlendPass::CycleG37},
                                       {"G64", &BlendPass::CycleG64}, {"G65", &BlendPass::CycleG65},
                                       {"G66", &BlendPass::CycleG66}};
        for (const Cycle& c : cycles) {
            if (!Holds(c.Code)) continue;
            (this->*c.Run)(b);
            s.BlendHit = false;
        }
    }
    // 17. Reposition, no-hit moves.
    if (Holds("G95") || Holds("G77") || Holds("G80")) {
        ClearLastMove();
        s.BlendHit = false;
    }
    // 18. A hit here.
    if (Holds("M75") || Holds("G81")) {
        s.BlendHit = true;
        ClearLastMove();
    }
    // 19. Profiling mode and the torch.
    if (Holds("M100")) {
        s.BlendProfiling = true;
        s.BlendArcCode = s.BlendKerf = 0;
    }
    if (Holds("M03") || Holds("M04")) s.BlendTorchOn = true;
    if (Holds("M05") || Holds("M06")) s.BlendTorchOn = false;
    if (Holds("M101")) {
        s.BlendProfiling = false;
        s.BlendArcCode = s.BlendKerf = 0;
    }
    // 20. Mirrors.
    if (Holds("M10") && !Holds("M100") && !Holds("M101")) s.BlendMirrorX = s.BlendMirrorY = false;
    if (Holds("M11")) s.BlendMirrorX = true;
    if (Holds("M12")) s.BlendMirrorY = true;
    if (Holds("M13")) s.BlendMirrorX = s.BlendMirrorY = true;
    // 21. Load position.
    if (Holds("M60") || Holds("M50")) LoadPosition(b);
    // 22. Stops end the chain.
    if (Holds("M00") || Holds("M01")) ClearLastMove();
    // 23. The line to write.
    return s.BlendOutLine;
}

BlendResult BlendProgram(std::string_view directory, std::string_view name, std::string_view stem,
                         const BlendSettings& settings) {
    // 1. The report with its three header lines (kept here and written whole at step 4); the
    // motion text; the new text.
    std::ostringstream report;
    report << "PROGRAM   :  " << Trim(name) << '\n'
           << "DIRECTORY :  " << Trim(directory) << '\n'
           << "TIME      :  " << (settings.Now ? settings.Now() : ReportTime()) << '\n';
    const std::string motion = std::string(stem) + "M1";
    const std::string temporary = settings.RootDir + "Blend.tmp";
    const std::string reportPath = settings.ServiceDir + "Blend.txt";
    // A file that cannot be read or written ends the pass with M1 as it was and no new text left.
    auto fault = [&](const std::string& file) {
        std::error_code error;
        std::filesystem::remove(temporary, error);
        return BlendResult{0, true, file};
    };
    NoteFile(settings.ServiceDir, motion);
    std::ifstream in(motion, std::ios::binary);
    if (!in) {
        report << EndMarker << '\n';
        (void)WriteFileText(reportPath, report.str());
        return fault(motion);
    }
    FileWriter out(temporary);
    // 2. Start values. 3. Every line, until end of file.
    BlendPass pass(settings);
    pass.OpenReport(&report);
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        out.Write(pass.BlendBlock(line));
    }
    // 4. Close both files; the report's end.
    const bool readFault = in.bad();
    in.close();
    const bool written = out.Close();
    report << EndMarker << '\n';
    const bool reported = WriteFileText(reportPath, report.str());
    if (readFault) return fault(motion);
    if (!written) return fault(temporary);
    if (!reported) return fault(reportPath);
    // 5. Only a text without critical errors replaces M1, in one step (the new text is renamed
    // over it rather than M1 deleted and the text copied).
    BlendResult result;
    result.CriticalCount = pass.State.BlendCritical;
    if (result.CriticalCount == 0 && !MoveFileOver(temporary, motion)) return fault(motion);
    // 6. The count of critical errors.
    return result;
}

}  // namespace kirvana

#include "controller/cardsim/restart_run.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "core/cycle_maths.h"
#include "core/cycle_words.h"
#include "core/grid_walk.h"
#include "core/number.h"
#include "core/text.h"

namespace kirvana {

namespace {

constexpr double DegreesToRadians = 3.14159265 / 180.0;
constexpr double Inch = 25.4;
constexpr double Unset = -999;

// The number behind `word` ("P1=", "X", "R") at the start of a token of the line; nothing when
// no token starts with it.
std::optional<double> Word(const std::string& line, const std::string& word) {
    std::size_t at = 0;
    while (at < line.size()) {
        const std::size_t end = std::min(line.find(' ', at), line.size());
        const std::string_view token(line.data() + at, end - at);
        if (token.size() > word.size() && token.starts_with(word)) {
            const char next = token[word.size()];
            if ((next >= '0' && next <= '9') || next == '-' || next == '.') return ToNumber(token.substr(word.size()));
        }
        at = end + 1;
    }
    return std::nullopt;
}

bool Has(const std::string& line, const std::string& code) {
    return std::string(" " + line + " ").find(" " + code + " ") != std::string::npos;
}

bool IsSet(const std::optional<double>& value) { return value && *value != Unset; }

// The card's modal state that places a point.
struct Modal {
    double OriginX = 0, OriginY = 0;
    double X = 0, Y = 0;
    bool MirrorX = false, MirrorY = false;
    bool Incremental = false, Imperial = false, Profiling = false;
};

// Calls nest at most this deep, and a program runs at most this many lines of subroutines: a
// program that calls itself ends as one the simulated card does not run.
constexpr int MaxCallDepth = 8;
constexpr long MaxLinesRun = 1'000'000;

class RestartReader {
public:
    explicit RestartReader(const std::vector<std::string>& subroutines) : subroutines_(subroutines) {}
    // One line; false when it holds a code the simulator doesn't run.
    bool Line(const std::string& raw);
    RunPlan Plan;

private:
    std::optional<double> Length(const std::string& line, const std::string& word) const {
        auto value = Word(line, word);
        if (value && m_.Imperial) *value *= Inch;
        return value;
    }
    void Place(const std::string& line);
    void Origin(const std::string& line);
    void Step(double x, double y, int hits) {
        RunStep step;
        step.Program = 5;
        step.X = x;
        step.Y = y;
        step.Hits = hits;
        Plan.push_back(step);
    }
    void Row(const std::string& line);
    bool ProgramGrid(const std::string& line);
    bool Call(const std::string& line);
    void Arc(const std::string& line);
    Modal m_;
    const std::vector<std::string>& subroutines_;
    int depth_ = 0;
    double callX_ = 0, callY_ = 0;  // the place of the call under way, from which its X and Y count
    long linesRun_ = 0;
};

// A row as the restart writes it: its pitch in P7, no pitch in P2, no I or J.
bool RestartRow(const std::string& line) {
    return IsSet(Word(line, "P7=")) && !IsSet(Word(line, "P2=")) && !Word(line, "I") && !Word(line, "J");
}

// An arc as the restart writes it: its centre in P7 and P8, its radius in R.
bool RestartArc(const std::string& line) {
    return IsSet(Word(line, "P7=")) && IsSet(Word(line, "P8=")) && Word(line, "R") && !Word(line, "I") &&
           !Word(line, "J");
}

bool RestartReader::Line(const std::string& raw) {
    const std::string line = UpperCase(BeforeComment(raw));
    if (line.empty()) return true;
    if ((Has(line, "G68") || Has(line, "G69")) && !Has(line, "G98")) return Call(line);
    // Codes the card would run but the simulator can't follow.
    for (const char* code : {"G01", "G02", "G03", "G36", "G37", "G64", "G65", "G66", "G98"})
        if (Has(line, code)) return false;
    if (line.find("GOTO") != std::string::npos || line.find("IF") != std::string::npos) return false;
    const bool row = Has(line, "G26"), arc = Has(line, "G28");
    if (arc && !RestartArc(line)) return false;
    // The modes, in the order a block's codes act.
    if (Has(line, "G90")) m_.Incremental = false;
    if (Has(line, "G91")) m_.Incremental = true;
    if (Has(line, "G70")) m_.Imperial = true;
    if (Has(line, "G71")) m_.Imperial = false;
    if (row && RestartRow(line)) {
        Row(line);
    } else if (row) {
        if (!ProgramGrid(line)) return false;
    } else if (arc) {
        Arc(line);
    } else {
        const bool origin = Has(line, "G93") || Has(line, "G92") || Has(line, "G56") || Has(line, "G53");
        // A dwell's X is its time; G72 and G52 lines place nothing either.
        const bool still = Has(line, "G04") || Has(line, "G72") || Has(line, "G52");
        if (origin)
            Origin(line);
        else if (!still)
            Place(line);
        const bool moves = Has(line, "G80") || Has(line, "G77") || Has(line, "G101") || Has(line, "G102") ||
                           Has(line, "G103") || (m_.Profiling && Has(line, "G81"));
        const bool hits = !m_.Profiling && (Has(line, "G81") || Has(line, "M75"));
        if (!origin && hits)
            Step(m_.X, m_.Y, 1);
        else if (!origin && moves && (Word(line, "X") || Word(line, "Y")))
            Step(m_.X, m_.Y, 0);
    }
    const bool m100 = Has(line, "M100"), m101 = Has(line, "M101");
    if (m100) m_.Profiling = true;
    if (m101) m_.Profiling = false;
    if (m100 || m101) return true;  // a profiling code hides the mirrors of its line
    if (Has(line, "M10")) m_.MirrorX = m_.MirrorY = false;
    if (Has(line, "M11")) m_.MirrorX = true;
    if (Has(line, "M12")) m_.MirrorY = true;
    if (Has(line, "M13")) m_.MirrorX = m_.MirrorY = true;
    return true;
}

// X and Y from the origin (minus under the axis' mirror), or added under G91.
void RestartReader::Place(const std::string& line) {
    const auto x = Length(line, "X"), y = Length(line, "Y");
    if (m_.Incremental) {
        if (x) m_.X += m_.MirrorX ? -*x : *x;
        if (y) m_.Y += m_.MirrorY ? -*y : *y;
        return;
    }
    // Inside a call an absolute word counts from the call's place.
    const double fromX = depth_ > 0 ? callX_ : 0, fromY = depth_ > 0 ? callY_ : 0;
    if (x) m_.X = m_.MirrorX ? m_.OriginX - (*x + fromX) : m_.OriginX + *x + fromX;
    if (y) m_.Y = m_.MirrorY ? m_.OriginY - (*y + fromY) : m_.OriginY + *y + fromY;
}

// A call of the card's subroutine program, "G68" or "G69" with S the label and Q the repetitions:
// the call block's own move, then the body from the block numbered the label x 1000 to its
// RETURN, once for each repetition, the first from the call's place and each further one from
// where the one before it ended. False when the body isn't there or the calls go too deep.
bool RestartReader::Call(const std::string& line) {
    if (depth_ >= MaxCallDepth) return false;
    Place(line);
    const auto label = Word(line, "S");
    // A label's block number, label x 1000, is a 16-bit number.
    if (!label || *label < 0 || *label > 32) return false;
    const int repeats = static_cast<int>(std::clamp(Word(line, "Q").value_or(1), 1.0, 32767.0));
    const long number = std::lround(*label * 1000);
    std::size_t start = subroutines_.size();
    for (std::size_t i = 0; i < subroutines_.size() && start == subroutines_.size(); ++i) {
        const auto n = Word(UpperCase(BeforeComment(subroutines_[i])), "N");
        if (n && std::lround(*n) == number) start = i;
    }
    if (start == subroutines_.size()) return false;
    const double outerX = callX_, outerY = callY_;
    ++depth_;
    callX_ = m_.X;
    callY_ = m_.Y;
    for (int repetition = 0; repetition < repeats; ++repetition) {
        for (std::size_t i = start;; ++i) {
            if (i >= subroutines_.size() || ++linesRun_ > MaxLinesRun) return false;
            if (FindNoCase(BeforeComment(subroutines_[i]), "RETURN") != std::string::npos) break;
            if (!Line(subroutines_[i])) return false;
        }
        callX_ = m_.X;
        callY_ = m_.Y;
    }
    --depth_;
    callX_ = outerX;
    callY_ = outerY;
    return true;
}

void RestartReader::Origin(const std::string& line) {
    const auto x = Length(line, "X"), y = Length(line, "Y");
    if (Has(line, "G56")) {
        m_.OriginX += (m_.MirrorX ? -1 : 1) * x.value_or(0);
        m_.OriginY += (m_.MirrorY ? -1 : 1) * y.value_or(0);
    }
    if (Has(line, "G53")) m_.OriginX = m_.OriginY = 0;
    if (Has(line, "G92")) {
        if (x) m_.OriginX = m_.MirrorX ? m_.X + *x : m_.X - *x;
        if (y) m_.OriginY = m_.MirrorY ? m_.Y + *y : m_.Y - *y;
    }
    if (Has(line, "G93")) {
        if (x) m_.OriginX = *x;
        if (y) m_.OriginY = *y;
    }
}

void RestartReader::Row(const std::string& line) {
    const auto x = Word(line, "X"), y = Word(line, "Y");
    if (!x || !y) return;
    const int count = static_cast<int>(Word(line, "P1=").value_or(0));
    const double angle = Word(line, "P5=").value_or(0) * DegreesToRadians;
    const double pitch = Word(line, "P7=").value_or(0);
    for (int k = 0; k < count; ++k) Step(*x + k * pitch * std::cos(angle), *y + k * pitch * std::sin(angle), 1);
    m_.X = *x;
    m_.Y = *y;
}

// A row or grid of hits as the program writes it (the language's G26 words, read and completed as
// the passes read them): the block's X, Y place the machine, the first hit stands there moved by
// P10, P11, the hits are walked to and fro as the drawing's expansion walks them, and the machine
// stays at the last hit when P9 says so. False for a grid the language refuses or one too large.
bool RestartReader::ProgramGrid(const std::string& line) {
    auto value = [&line](const char* key) { return Word(line, key).value_or(MissingWord); };
    auto length = [&](const char* key) {
        const double v = value(key);
        return v != MissingWord && m_.Imperial ? v * Inch : v;
    };
    auto integer = [&](const char* key) {
        const double v = value(key);
        return std::abs(v) < 32767 ? static_cast<std::int16_t>(std::lround(v)) : std::int16_t{0};
    };
    GridWords read = ReadGridWords({value, length, integer});
    GridPattern& grid = read.Grid;
    grid.MirrorX = m_.MirrorX;
    grid.MirrorY = m_.MirrorY;
    if (read.I != MissingWord || read.J != MissingWord)
        XYToPolar(read.I != MissingWord ? read.I : 0, read.J != MissingWord ? read.J : 0, grid.P7, grid.P5);
    int rows = 1;
    if (grid.P1 == 1 || grid.P3 == 1 || CompleteGrid(grid, rows) != PatternCheck::Ok) return false;
    if (grid.P1 < 0 || rows < 1 || static_cast<long long>(grid.P1) * rows > 1'000'000) return false;
    Place(line);
    auto offset = [&](const char* key) {
        const double v = length(key);
        return v == MissingWord ? 0.0 : v;
    };
    const double firstX = m_.MirrorX ? m_.X - offset("P10=") : m_.X + offset("P10=");
    const double firstY = m_.MirrorY ? m_.Y - offset("P11=") : m_.Y + offset("P11=");
    double lastX = firstX, lastY = firstY;
    WalkGrid(GridWalk{grid.P2.Value, grid.P4.Value, grid.P1, rows, grid.P5}, firstX, firstY,
             [&](int, int, double x, double y) {
                 Step(x, y, 1);
                 lastX = x;
                 lastY = y;
                 return true;
             });
    if (read.Stay) {
        m_.X = lastX;
        m_.Y = lastY;
    }
    return true;
}

void RestartReader::Arc(const std::string& line) {
    const double cx = Word(line, "P7=").value_or(0), cy = Word(line, "P8=").value_or(0);
    const double first = Word(line, "P3=").value_or(0), step = Word(line, "P2=").value_or(0);
    const double radius = Word(line, "R").value_or(0);
    const int count = static_cast<int>(Word(line, "P1=").value_or(0));
    for (int k = 0; k < count; ++k) {
        const double a = (first + k * step) * DegreesToRadians;
        Step(cx + radius * std::cos(a), cy + radius * std::sin(a), 1);
    }
}

}  // namespace

std::optional<RunPlan> RestartProgramPlan(const std::vector<std::string>& lines,
                                          const std::vector<std::string>& subroutines) {
    RestartReader reader(subroutines);
    for (const std::string& line : lines)
        if (!reader.Line(line)) return std::nullopt;
    return std::move(reader.Plan);
}

RunPlan PlanFromLabel(const RunPlan& plan, int label) {
    if (label <= 0) return plan;
    auto first = std::find_if(plan.begin(), plan.end(), [label](const RunStep& s) { return s.Label >= label; });
    return RunPlan(first, plan.end());
}

int RunLabel(double programNumber) {
    const double fraction = programNumber - std::floor(programNumber);
    return static_cast<int>(std::lround(fraction * 100000.0));
}

}  // namespace kirvana

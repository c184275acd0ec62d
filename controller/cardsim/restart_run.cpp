#include "controller/cardsim/restart_run.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "core/number.h"
#include "core/text.h"

namespace kirvana {

namespace {

constexpr double DegreesToRadians = 3.14159265 / 180.0;

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

RunStep Place(double x, double y, int hits) {
    RunStep step;
    step.Program = 5;
    step.X = x;
    step.Y = y;
    step.Hits = hits;
    return step;
}

}  // namespace

RunPlan RestartProgramPlan(const std::vector<std::string>& lines) {
    RunPlan plan;
    for (const std::string& raw : lines) {
        const std::string line = UpperCase(Trim(raw));
        const auto x = Word(line, "X"), y = Word(line, "Y");
        if (Has(line, "G26") && x && y) {
            const int count = static_cast<int>(Word(line, "P1=").value_or(0));
            const double angle = Word(line, "P5=").value_or(0) * DegreesToRadians;
            const double pitch = Word(line, "P7=").value_or(0);
            for (int k = 0; k < count; ++k)
                plan.push_back(Place(*x + k * pitch * std::cos(angle), *y + k * pitch * std::sin(angle), 1));
        } else if (Has(line, "G28")) {
            const double cx = Word(line, "P7=").value_or(0), cy = Word(line, "P8=").value_or(0);
            const double first = Word(line, "P3=").value_or(0), step = Word(line, "P2=").value_or(0);
            const double radius = Word(line, "R").value_or(0);
            const int count = static_cast<int>(Word(line, "P1=").value_or(0));
            for (int k = 0; k < count; ++k) {
                const double a = (first + k * step) * DegreesToRadians;
                plan.push_back(Place(cx + radius * std::cos(a), cy + radius * std::sin(a), 1));
            }
        } else if ((Has(line, "G80") || Has(line, "G101") || Has(line, "G102") || Has(line, "G103")) && x && y) {
            plan.push_back(Place(*x, *y, 0));
        }
    }
    return plan;
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

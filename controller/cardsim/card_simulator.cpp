#include "controller/cardsim/card_simulator.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <sstream>
#include <utility>

#include "controller/cardsim/restart_run.h"
#include "core/number.h"
#include "core/text.h"

namespace kirvana {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// I, P, Q or M followed by digits.
bool IsVariableName(const std::string& t) {
    if (t.size() < 2 || (t[0] != 'I' && t[0] != 'P' && t[0] != 'Q' && t[0] != 'M')) return false;
    for (std::size_t i = 1; i < t.size(); ++i)
        if (!IsDigit(t[i])) return false;
    return true;
}

// "#n" + suffix with n from 1 to 4; the motor index or -1.
int MotorQuery(const std::string& t, const char* suffix) {
    if (t.size() < 3 || t[0] != '#' || t[1] < '1' || t[1] > '4' || t.substr(2) != suffix) return -1;
    return t[1] - '1';
}

std::string ValueText(double v) { return FormatNumber(v, -1); }

const std::string Error003 = std::string(1, pmac::Bell) + "ERR003" + pmac::Cr;

// The whole part of a value as the card's 48-bit integers hold it; out of range is clamped.
std::int64_t Whole(double v) {
    constexpr double Limit = 140737488355327.0;  // 2^47 - 1
    if (!(v == v)) return 0;
    return static_cast<std::int64_t>(std::trunc(std::clamp(v, -Limit, Limit)));
}

}  // namespace

CardSimulator::CardSimulator() = default;

CardSimulator::~CardSimulator() { Stop(); }

double& CardSimulator::Slot(const std::string& name) { return variables_[name]; }

double CardSimulator::Evaluate(const std::string& expression, bool& ok) {
    // Left to right: operands are numbers or variables; operators + - * / | &.
    double result = 0;
    char op = '=';
    std::size_t i = 0;
    ok = !expression.empty();
    while (ok && i < expression.size()) {
        std::size_t start = i;
        if (expression[i] == '-' || expression[i] == '+') ++i;  // a sign
        while (i < expression.size() && std::string("|&+-*/").find(expression[i]) == std::string::npos) ++i;
        std::string operand = expression.substr(start, i - start);
        double value;
        if (IsVariableName(operand))
            value = Slot(operand);
        else if (!operand.empty() && (IsDigit(operand.back()) || operand.back() == '.') &&
                 operand.find_first_not_of("+-.0123456789") == std::string::npos)
            value = ToNumber(operand);
        else {
            ok = false;
            break;
        }
        switch (op) {
            case '=':
                result = value;
                break;
            case '+':
                result += value;
                break;
            case '-':
                result -= value;
                break;
            case '*':
                result *= value;
                break;
            case '/':
                result = value == 0 ? 0 : result / value;
                break;
            case '|':
                result = static_cast<double>(Whole(result) | Whole(value));
                break;
            case '&':
                result = static_cast<double>(Whole(result) & Whole(value));
                break;
        }
        if (i < expression.size()) op = expression[i++];
        if (i == expression.size() && op != '=' && expression.back() == op) ok = false;  // trailing operator
    }
    return result;
}

bool CardSimulator::RunToken(const std::string& token, std::string& answer) {
    received_.push_back(token);
    if (token == "SAVE" || token == "CLOSE") {
        openProgram_ = 0;
        return true;
    }
    if (token == "CLEAR") {
        if (openProgram_) programs_[openProgram_].clear();
        return true;
    }
    if (RunCommand(token)) return true;
    if (!token.empty() && (token[0] == 'B' || token[0] == '&' || token == "R")) return false;
    if (token == "PC") {
        answer += "P" + std::to_string(pcProgram_) + ":" + std::to_string(pcWord_) + pmac::Cr;
        return true;
    }
    if (token == "%") {
        answer += ValueText(feedOverride_) + pmac::Cr;
        return true;
    }
    if (token[0] == '%') {
        bool ok;
        double v = Evaluate(token.substr(1), ok);
        if (ok) feedOverride_ = v;
        return ok;
    }
    if (int m = MotorQuery(token, "P"); m >= 0) {
        answer += ValueText(position_[m]) + pmac::Cr;
        return true;
    }
    if (int m = MotorQuery(token, "F"); m >= 0) {
        answer += ValueText(followingError_[m]) + pmac::Cr;
        return true;
    }
    if (int m = MotorQuery(token, "->"); m >= 0) {
        answer += axisDefinition_[m] + pmac::Cr;
        return true;
    }
    if (IsVariableName(token)) {
        answer += ValueText(Slot(token)) + pmac::Cr;
        return true;
    }
    std::size_t equals = token.find('=');
    if (equals != std::string::npos && IsVariableName(token.substr(0, equals))) {
        bool ok;
        double v = Evaluate(token.substr(equals + 1), ok);
        if (!ok) return false;
        const std::string name = token.substr(0, equals);
        Slot(name) = v;
        // The slot last made active: program 5 calls that slot's subroutines.
        if (name == "M811" && (v == 1 || v == 2)) activeSlot_ = static_cast<int>(v);
        return true;
    }
    return false;
}

std::string CardSimulator::ExecuteLocked(const std::string& line) {
    AdvanceLocked();
    std::string text = UpperCase(Trim(line));
    std::string answer;
    if (!reject_.empty() && text.find(reject_) != std::string::npos) return Error003;
    if (text.starts_with("OPEN PROG")) {
        received_.push_back(text);
        double number = ToNumber(text.substr(9));
        if (!(number >= 1 && number <= 32767)) return answer + Error003;
        openProgram_ = static_cast<int>(number);
        return answer + pmac::Ack;
    }
    std::istringstream tokens(text);
    std::string token;
    while (tokens >> token) {
        if (!RunToken(token, answer)) return answer + Error003;
    }
    return answer + pmac::Ack;
}

std::string CardSimulator::Execute(const std::string& line) {
    int hold;
    std::string answer;
    {
        std::lock_guard lock(mutex_);
        answer = ExecuteLocked(line);
        hold = holdMs_;
        holdMs_ = 0;
    }
    if (hold > 0) std::this_thread::sleep_for(std::chrono::milliseconds(hold));
    return answer;
}

pmac::WriteStatus CardSimulator::WriteBuffer(const std::string& data) {
    std::lock_guard lock(mutex_);
    pmac::WriteStatus status;
    std::istringstream lines(data);
    std::string line;
    int number = 0;  // of the line in this buffer, from 1
    while (std::getline(lines, line)) {
        ++number;
        std::string text = UpperCase(Trim(line));
        if (text.empty()) continue;
        bool program = openProgram_ != 0 && text != "CLOSE" && text != "CLEAR" && !text.starts_with("OPEN PROG");
        if (program) {
            // A motion program line: letters, digits and the card's operators only.
            if (text.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789.+-=*/|&()#:% ") != std::string::npos ||
                (!reject_.empty() && text.find(reject_) != std::string::npos)) {
                status = {true, 3, number};
                return status;
            }
            programs_[openProgram_].push_back(text);
        } else if (ExecuteLocked(text).find(pmac::Bell) != std::string::npos) {
            status = {true, 3, number};
            return status;
        }
    }
    return status;
}

void CardSimulator::SetVariable(const std::string& name, double value) {
    std::lock_guard lock(mutex_);
    Slot(UpperCase(name)) = value;
}

double CardSimulator::Variable(const std::string& name) {
    std::lock_guard lock(mutex_);
    AdvanceLocked();
    return Slot(UpperCase(name));
}

void CardSimulator::RaiseStatusBits(std::int64_t bits) {
    std::lock_guard lock(mutex_);
    double& status = Slot("P1022");
    status = static_cast<double>(Whole(status) | bits);
}

void CardSimulator::SetStation(int station) {
    std::lock_guard lock(mutex_);
    Slot("M802") = station;
    double& status = Slot("P1022");
    status = static_cast<double>(Whole(status) | 512);
}

void CardSimulator::StepHits(int hits) {
    std::lock_guard lock(mutex_);
    Slot("M869") += hits;
}

void CardSimulator::HoldNextAnswer(int ms) {
    std::lock_guard lock(mutex_);
    holdMs_ = ms;
}

void CardSimulator::HoldEveryAnswer(int ms) {
    std::lock_guard lock(mutex_);
    slowMs_ = std::max(ms, 0);
}

void CardSimulator::DropNextDownload() {
    std::lock_guard lock(mutex_);
    dropNext_ = true;
}

void CardSimulator::Reject(const std::string& text) {
    std::lock_guard lock(mutex_);
    reject_ = UpperCase(Trim(text));
}

void CardSimulator::SetMotor(int motor, double position, double followingError) {
    std::lock_guard lock(mutex_);
    if (motor < 1 || motor > 4) return;
    position_[motor - 1] = position;
    followingError_[motor - 1] = followingError;
}

void CardSimulator::SetAxisDefinition(int motor, const std::string& definition) {
    std::lock_guard lock(mutex_);
    if (motor >= 1 && motor <= 4) axisDefinition_[motor - 1] = definition;
}

void CardSimulator::SetProgramCounter(int program, int word) {
    std::lock_guard lock(mutex_);
    pcProgram_ = program;
    pcWord_ = word;
}

std::vector<std::string> CardSimulator::Program(int number) {
    std::lock_guard lock(mutex_);
    auto it = programs_.find(number);
    return it == programs_.end() ? std::vector<std::string>{} : it->second;
}

std::vector<std::pair<double, double>> CardSimulator::HitLog() {
    std::lock_guard lock(mutex_);
    AdvanceLocked();
    return hitLog_;
}

std::vector<std::string> CardSimulator::Received() {
    std::lock_guard lock(mutex_);
    return received_;
}

void CardSimulator::ClearReceived() {
    std::lock_guard lock(mutex_);
    received_.clear();
}

std::string CardSimulator::Command(const std::string& line) {
    std::istringstream in(line);
    std::string verb, a, b, c;
    in >> verb >> a >> b >> c;
    verb = UpperCase(verb);
    auto number = [](const std::string& t) { return ToNumber(t); };
    auto whole = [](const std::string& t) { return static_cast<int>(std::clamp(ToNumber(t), -2e9, 2e9)); };
    if (verb == "SET" && !a.empty() && !b.empty()) {
        SetVariable(a, number(b));
        return UpperCase(a) + "=" + ValueText(number(b));
    }
    if (verb == "GET" && !a.empty()) return UpperCase(a) + "=" + ValueText(Variable(a));
    if (verb == "RAISE" && !a.empty()) {
        RaiseStatusBits(Whole(number(a)));
        return "P1022=" + ValueText(Variable("P1022"));
    }
    if (verb == "STATION" && !a.empty()) {
        SetStation(whole(a));
        return "M802=" + a;
    }
    if (verb == "HIT") {
        StepHits(a.empty() ? 1 : whole(a));
        return "M869=" + ValueText(Variable("M869"));
    }
    if (verb == "HOLD" && !a.empty()) {
        HoldNextAnswer(whole(a));
        return "next answer held " + a + " ms";
    }
    if (verb == "SLOW" && !a.empty()) {
        HoldEveryAnswer(whole(a));
        return "every answer held " + a + " ms";
    }
    if (verb == "DROP") {
        DropNextDownload();
        return "the next download buffer closes the connection";
    }
    if (verb == "REJECT") {
        Reject(a);
        return a.empty() ? "nothing rejected" : "ERR003 to every line holding " + UpperCase(a);
    }
    if (verb == "MOTOR" && !a.empty() && !b.empty()) {
        SetMotor(whole(a), number(b), number(c));
        return "motor " + a + " at " + b;
    }
    if (verb == "AXIS" && !a.empty() && !b.empty()) {
        SetAxisDefinition(whole(a), UpperCase(b));
        return "#" + a + "->" + UpperCase(b);
    }
    if (verb == "PC" && !a.empty() && !b.empty()) {
        SetProgramCounter(whole(a), whole(b));
        return "PC=P" + a + ":" + b;
    }
    if (verb == "PROGRAM" && !a.empty()) {
        std::string out;
        for (const auto& l : Program(whole(a))) out += l + "\n";
        return out + "(" + std::to_string(Program(whole(a)).size()) + " lines)";
    }
    if (verb == "START") return CycleStart() ? "cycle start" : "ERR003: no program to run";
    if (verb == "FEEDHOLD") {
        FeedHold();
        return "feed hold";
    }
    if (verb == "ABORT") {
        Abort();
        return "aborted";
    }
    if (verb == "SPEED" && !a.empty()) {
        SetRunSpeed(number(a));
        return "speed " + ValueText(run_.Speed()) + " blocks/s";
    }
    if (verb == "WALK" && !a.empty()) {
        WalkRun(std::clamp(number(a), 0.0, 1e9));
        return "walked " + a + " steps";
    }
    if (verb == "OPTIONAL" && !a.empty()) {
        SetOptionalStop(UpperCase(a) == "ON");
        return std::string("optional stop ") + (run_.OptionalStop() ? "on" : "off");
    }
    if (verb == "RUN") {
        std::lock_guard lock(mutex_);
        AdvanceLocked();
        const char* states[] = {"idle", "running", "feed hold", "stopped"};
        return std::string(states[static_cast<int>(run_.Now())]) + ", P" + std::to_string(pcProgram_) + ":" +
               std::to_string(pcWord_) + ", steps done " + std::to_string(run_.StepsDone()) + ", hits " +
               ValueText(Slot("M869"));
    }
    if (verb == "LOG") {
        std::string out;
        for (const auto& l : Received()) out += l + "\n";
        return out + "(" + std::to_string(Received().size()) + " commands)";
    }
    return "commands: set NAME VALUE | get NAME | raise BITS | station N | hit [N] | hold MS | slow MS | drop | "
           "reject [TEXT] | motor N POSITION [FOLLOWING] | axis N DEFINITION | pc PROGRAM WORD | program N | start | "
           "feedhold | "
           "abort | speed BLOCKS_PER_S | walk STEPS | optional on|off | run | log | quit";
}

// Program runs.

double CardSimulator::Scale(int motor) const {
    double scale = ToNumber(axisDefinition_[motor]);
    return scale == 0 ? 1 : scale;
}

// The run's state in the status word, when it changed; the axes and the program counter while
// a program runs; the hits and station changes of the last steps.
void CardSimulator::ShowRunLocked(const ProgramRun::Events& events) {
    Slot("M869") += events.Hits;
    hitLog_.insert(hitLog_.end(), events.HitPlaces.begin(), events.HitPlaces.end());
    for (int station : events.Stations) {
        Slot("M802") = station;
        Slot("P1022") = static_cast<double>(Whole(Slot("P1022")) | 512);
    }
    if (events.Ended && handOverProgram_ != 0) {
        const int program = handOverProgram_;
        handOverProgram_ = 0;
        if (BeginLocked(program, handOverLabel_, true)) return;
    }
    ProgramRun::State state = run_.Now();
    if (state != ProgramRun::State::Idle || events.Ended) {
        position_[0] = run_.X() * Scale(0);
        position_[1] = run_.Y() * Scale(1);
        pcProgram_ = run_.Program();
        pcWord_ = run_.Word();
    }
    if (state == shownState_) return;
    shownState_ = state;
    std::int64_t status = Whole(Slot("P1022")) & ~std::int64_t{16384 | 8192 | 4096 | 2048};
    switch (state) {
        case ProgramRun::State::Running:
            status |= 16384 | 8192;
            break;
        case ProgramRun::State::Feedhold:
            status |= 16384 | 8192 | 2048;
            break;
        case ProgramRun::State::Stopped:
            status |= 8192 | 4096;
            break;
        case ProgramRun::State::Idle:
            break;
    }
    Slot("P1022") = static_cast<double>(status);
}

void CardSimulator::AdvanceLocked() { ShowRunLocked(run_.Advance(ProgramRun::Clock::now(), feedOverride_)); }

bool CardSimulator::BeginLocked(int program, int label, bool countOn) {
    if (run_.Now() != ProgramRun::State::Idle) return false;
    auto stored = programs_.find(program);
    if (stored == programs_.end() || stored->second.empty()) return false;
    // The restart program is run from its own text; a slot's program from its plan, from the
    // line label the run command names.
    std::optional<RunPlan> plan;
    if (program == 5) {
        // Its calls go to the subroutine program (3 or 4) of the slot last made active.
        const auto subroutines = programs_.find(2 + activeSlot_);
        plan = RestartProgramPlan(stored->second,
                                  subroutines != programs_.end() ? subroutines->second : std::vector<std::string>{});
    } else if (planSource_)
        plan = planSource_(program);
    if (!plan) return false;
    // A slot's program starts its hit counter anew; the restart program, and the slot's program
    // it hands over to, count on.
    if (program >= 1 && program <= 4 && !countOn) Slot("M869") = 0;
    ShowRunLocked(run_.Begin(program, PlanFromLabel(*plan, label), position_[0] / Scale(0), position_[1] / Scale(1),
                             ProgramRun::Clock::now()));
    return true;
}

// The card's run commands: "B" and a program number (a label behind a point, five places, names
// the line the program starts at: B1.0001R is line N10 of program 1), "R" to run or resume, "H"
// feed hold, "A" abort, each optionally behind a coordinate system "&n". False for a token that
// is none of these.
bool CardSimulator::RunCommand(const std::string& token) {
    std::string t = token;
    if (t.size() >= 2 && t[0] == '&' && IsDigit(t[1])) {
        std::size_t i = 1;
        while (i < t.size() && IsDigit(t[i])) ++i;
        t = t.substr(i);
        if (t.empty()) return true;
    }
    if (t == "H") {
        run_.Hold();
        ShowRunLocked({});
        return true;
    }
    if (t == "A") {
        run_.Abort();
        ShowRunLocked({});
        return true;
    }
    bool run = !t.empty() && t.back() == 'R';
    if (run) t.pop_back();
    bool begin = !t.empty() && t[0] == 'B';
    if (begin) {
        std::string number = t.substr(1);
        if (number.empty() || number.find_first_not_of("0123456789.") != std::string::npos) return false;
        double value = ToNumber(number);
        if (!(value >= 1 && value <= 32767)) return false;
        pointedProgram_ = static_cast<int>(value);
        pointedLabel_ = RunLabel(value);
        t.clear();
    }
    if (!t.empty()) return false;
    if (!run) return true;
    // "R" alone resumes a held or stopped program; "B" and "R" begins one, never over another.
    if (!begin && (run_.Now() == ProgramRun::State::Feedhold || run_.Now() == ProgramRun::State::Stopped)) {
        run_.Resume(ProgramRun::Clock::now());
        ShowRunLocked({});
        return true;
    }
    // Under the restart program the command is the hand-over: the program goes on from its label
    // when the restart program has ended.
    if (begin && run_.Now() != ProgramRun::State::Idle && run_.Program() == 5) {
        handOverProgram_ = pointedProgram_;
        handOverLabel_ = pointedLabel_;
        return true;
    }
    return BeginLocked(pointedProgram_, pointedLabel_, false);
}

void CardSimulator::SetRunPlanSource(RunPlanSource source) {
    std::lock_guard lock(mutex_);
    planSource_ = std::move(source);
}

void CardSimulator::SetRunSpeed(double blocksPerSecond) {
    std::lock_guard lock(mutex_);
    AdvanceLocked();
    run_.SetSpeed(blocksPerSecond);
}

void CardSimulator::SetOptionalStop(bool on) {
    std::lock_guard lock(mutex_);
    run_.SetOptionalStop(on);
}

bool CardSimulator::CycleStart() {
    std::lock_guard lock(mutex_);
    AdvanceLocked();
    if (run_.Now() == ProgramRun::State::Feedhold || run_.Now() == ProgramRun::State::Stopped) {
        run_.Resume(ProgramRun::Clock::now());
        ShowRunLocked({});
        return true;
    }
    double slot = Slot("M811");
    return BeginLocked(slot == 2 ? 2 : slot == 5 ? 5 : 1);
}

void CardSimulator::FeedHold() {
    std::lock_guard lock(mutex_);
    AdvanceLocked();
    run_.Hold();
    ShowRunLocked({});
}

void CardSimulator::WalkRun(double steps) {
    std::lock_guard lock(mutex_);
    AdvanceLocked();
    ShowRunLocked(run_.Walk(steps));
}

void CardSimulator::Abort() {
    std::lock_guard lock(mutex_);
    run_.Abort();
    ShowRunLocked({});
}

ProgramRun::State CardSimulator::RunState() {
    std::lock_guard lock(mutex_);
    AdvanceLocked();
    return run_.Now();
}

bool CardSimulator::Start(int port) {
    Stop();
    listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listener_ < 0) return false;
    int one = 1;
    setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    if (bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 || listen(listener_, 4) != 0) {
        close(listener_);
        listener_ = -1;
        return false;
    }
    socklen_t length = sizeof address;
    getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length);
    port_ = ntohs(address.sin_port);
    stopping_ = false;
    server_ = std::thread([this] { Serve(); });
    return true;
}

void CardSimulator::Stop() {
    stopping_ = true;
    if (server_.joinable()) server_.join();
    if (listener_ >= 0) close(listener_);
    listener_ = -1;
}

void CardSimulator::Serve() {
    while (!stopping_) {
        pollfd p{listener_, POLLIN, 0};
        if (poll(&p, 1, 20) != 1) continue;
        int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (client < 0) continue;
        ServeClient(client);
        close(client);
    }
}

void CardSimulator::ServeClient(int client) {
    // Reads exactly n bytes, watching for the stop.
    auto readExactly = [&](std::string& out, std::size_t n) {
        out.clear();
        char buffer[2048];
        while (out.size() < n) {
            pollfd p{client, POLLIN, 0};
            if (stopping_) return false;
            if (poll(&p, 1, 20) != 1) continue;
            ssize_t got = recv(client, buffer, std::min(sizeof buffer, n - out.size()), 0);
            if (got <= 0) return false;
            out.append(buffer, static_cast<std::size_t>(got));
        }
        return true;
    };
    auto sendAll = [&](const std::string& bytes) {
        // Answers go in packets of at most one packet's data, as the card sends them.
        for (std::size_t sent = 0; sent < bytes.size();) {
            std::size_t chunk = std::min(pmac::MaxPacketData, bytes.size() - sent);
            ssize_t n = send(client, bytes.data() + sent, chunk, MSG_NOSIGNAL);
            if (n <= 0) return false;
            sent += static_cast<std::size_t>(n);
        }
        return true;
    };
    std::string header, data;
    while (!stopping_) {
        if (!readExactly(header, pmac::HeaderSize)) return;
        pmac::Header h = pmac::DecodeHeader(reinterpret_cast<const std::uint8_t*>(header.data()));
        if (!readExactly(data, h.Length)) return;
        int slow;
        {
            std::lock_guard lock(mutex_);
            if (h.Request == pmac::VrPmacWriteBuffer && std::exchange(dropNext_, false)) return;
            slow = slowMs_;
        }
        if (slow > 0) std::this_thread::sleep_for(std::chrono::milliseconds(slow));
        bool ok = true;
        switch (h.Request) {
            case pmac::VrPmacFlush:
                ok = sendAll(std::string(1, '@'));
                break;
            case pmac::VrPmacGetResponse:
                ok = sendAll(Execute(data));
                break;
            case pmac::VrPmacWriteBuffer:
                ok = sendAll(pmac::EncodeWriteStatus(WriteBuffer(data)));
                break;
            default:
                ok = sendAll(Error003);
                break;
        }
        if (!ok) return;
    }
}

}  // namespace kirvana

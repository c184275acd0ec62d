// The watch command: the installer's view of a running machine without screens. The start-up
// runs, then the poll cycle tick by tick with every form's display shown, and each tick prints
// what the screens would show: positions, machine state, the lit block, the hits, the messages.
#include <chrono>
#include <cstdio>
#include <thread>

#include "app/headless_platform.h"
#include "app/office.h"
#include "core/number.h"

namespace kirvana::office {

namespace {

// A whole number option of at least `least`; false when it is not one.
bool WholeOption(const Args& args, const char* name, long long least, long long& value) {
    bool found = false;
    std::string text = Option(args, name, &found);
    if (!found) return true;
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos || text.size() > 9) return false;
    value = std::stoll(text);
    return value >= least;
}

std::string MachineState(const Process& p) {
    std::string state = p.Running ? "running" : "at rest";
    if (p.InFeedhold) state += ", feed hold";
    if (p.InCycle) state += ", in cycle";
    if (p.Poll.HoldBit) state += ", hold";
    return state;
}

void PrintTick(long long tick, const Process& p, std::vector<std::string>& shownMessages) {
    const DisplayModel& d = p.Display;
    const auto& text = d.FrontEnd.PositionText;
    std::string line = "tick " + std::to_string(tick) + ": X " + text[0] + " Y " + text[1];
    if (p.Config.Machine.HasThirdAxis) line += " Z " + text[2];
    line += " C " + d.TCPositionTexts[1] + " | " + MachineState(p);
    if (d.Block.Record > 0)
        line += " | P" + std::to_string(d.Block.Program) + " record " + std::to_string(d.Block.Record) + ": " +
                d.Block.SourceText;
    line += " | hits: " + LongText(d.HitCount) + " | feed " + text[4];
    std::printf("%s\n", line.c_str());
    for (const std::string& notice : d.Notices) std::printf("  note: %s\n", notice.c_str());
    // The message list, when it changed.
    std::vector<std::string> messages;
    for (int n = 0; n < d.Messages.LineCount; ++n) messages.push_back(d.Messages.Lines[n].Text);
    if (messages != shownMessages) {
        if (messages.empty()) std::printf("  messages: none\n");
        for (const std::string& m : messages) std::printf("  message:%s\n", m.c_str());
        shownMessages = messages;
    }
}

}  // namespace

int Watch(const Args& args) {
    const char* usage = "watch --root ROOT [--ticks N] [--interval MS] [--start] [--until-idle]";
    bool haveRoot = false;
    std::string root = Option(args, "--root", &haveRoot);
    const bool start = Flag(args, "--start"), untilIdle = Flag(args, "--until-idle");
    long long ticks = untilIdle ? 1'000'000'000 : 10, interval = -1;
    if (!haveRoot || !WholeOption(args, "--ticks", 1, ticks) || !WholeOption(args, "--interval", 0, interval))
        return Usage(usage);
    // Every word of the arguments must be one of the options.
    std::size_t known = 2 + (Option(args, "--ticks").empty() ? 0 : 2) + (Option(args, "--interval").empty() ? 0 : 2) +
                        (start ? 1 : 0) + (untilIdle ? 1 : 0);
    if (args.size() != known) return Usage(usage);

    HeadlessSeat seat(0, false, false);
    if (int code = seat.Start(root)) return code;
    Process& process = seat.State;
    if (!process.Card.CardInUse) std::printf("(card not in use: office seat, the machine stands still)\n");
    process.Display.Visible = {true, true, true, true, true, true, true, true, true, true};
    if (interval < 0) interval = process.Card.PollIntervalMs;
    // The cycle start button of the active slot: the card's run command for its program.
    if (start) seat.Talk().Download("B" + std::to_string(process.Config.ActiveSlot) + "R");

    std::vector<std::string> shownMessages;
    bool runSeen = false, ended = false;
    for (long long tick = 1; tick <= ticks && !ended; ++tick) {
        if (tick > 1) std::this_thread::sleep_for(std::chrono::milliseconds(interval));
        seat.Tick();
        PrintTick(tick, process, shownMessages);
        // The ticks are a trace for whoever watches: with standard output gone there is no one
        // to tell, and the run goes on to its end.
        (void)std::fflush(stdout);
        // A short run may start and end between two ticks: after a cycle start, hits counted
        // by the card show that it ran.
        runSeen = runSeen || process.Running || (start && process.Display.HitCount > 0);
        ended = untilIdle && runSeen && !process.Running;
    }
    seat.End();
    if (untilIdle && !ended) {
        std::fprintf(stderr, "the run did not end within %lld ticks\n", ticks);
        return 1;
    }
    return 0;
}

}  // namespace kirvana::office

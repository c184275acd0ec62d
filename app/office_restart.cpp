// The restart command: the restart point of STEM at a block of its main text or at a hit of a
// drawing record, the state the Gather pass gives there, and the text of the restart program
// (PROG 5) that the panel would download. Nothing goes to the card: how an office seat checks a
// restart before an operator uses it.
#include <cstdio>
#include <string>

#include "analysis/restart.h"
#include "app/office.h"
#include "core/paths.h"
#include "core/text.h"

namespace kirvana::office {

namespace {

// A whole number of the arguments, from 1 up; false when it is not one.
bool Count(const std::string& text, std::int32_t& value) {
    if (text.empty() || text.size() > 9 || text.find_first_not_of("0123456789") != std::string::npos) return false;
    value = std::stoi(text);
    return value >= 1;
}

void PrintState(const char* title, const GatherState& state) {
    std::printf("%s\n%s", title, GatherStateText(state).c_str());
}

}  // namespace

int Restart(const Args& args) {
    const char* usage = "restart STEM --root ROOT (--block N | --record R --hit H) [--reloaded yes|no]";
    bool haveRoot = false, haveBlock = false, haveRecord = false, haveHit = false, haveReloaded = false;
    const std::string root = Option(args, "--root", &haveRoot);
    const std::string blockText = Option(args, "--block", &haveBlock);
    const std::string recordText = Option(args, "--record", &haveRecord);
    const std::string hitText = Option(args, "--hit", &haveHit);
    const std::string reloadedText = Option(args, "--reloaded", &haveReloaded);
    const std::size_t expected = 3 + (haveBlock ? 2 : 4) + (haveReloaded ? 2 : 0);
    if (args.empty() || args[0].starts_with("--") || !haveRoot || haveBlock == (haveRecord || haveHit) ||
        haveRecord != haveHit || args.size() != expected)
        return Usage(usage);
    if (haveReloaded && reloadedText != "yes" && reloadedText != "no") return Usage(usage);
    std::int32_t block = 0, record = 0, hit = 0;
    if (haveBlock ? !Count(blockText, block) : (!Count(recordText, record) || !Count(hitText, hit))) {
        std::fprintf(stderr, "a block, record or hit number is a whole number from 1\n");
        return 2;
    }
    const std::string& stem = args[0];
    Directories dirs;
    MachineData machine;
    ReverseSettings settings;
    if (!ReverseSettingsAt(root, stem, dirs, machine, settings)) return 1;
    const std::string program = FileNameOf(stem);
    // The restart point and its states, through the Gather pass.
    RestartPoint point;
    const std::string refusal =
        haveBlock ? BlockRestartPoint(stem, program, "OFFICE", block, settings, dirs.PmacDir, point)
                  : FindRestartPoint(stem, program, "OFFICE", record, hit, settings, dirs.PmacDir, point);
    if (!refusal.empty()) {
        std::fprintf(stderr, "%s\n", refusal.c_str());
        return 1;
    }
    // The sheet reload question, answered on the command line.
    const bool asks = AsksReload(point.Record.TargetState);
    if (asks && !haveReloaded) {
        std::fprintf(stderr, "Have You Reloaded The Sheet ? (answer with --reloaded yes|no)\n");
        return 2;
    }
    std::printf("Restart kind : %d\nRestart hit  : %d\nHits before  : %d\n", static_cast<int>(point.Kind),
                point.RestartHit, point.HitsBefore);
    PrintState("Target state:", point.Record.TargetState);
    PrintState("Entry state:", point.Record.EntryState);
    PrintState("Block state:", point.Record.BlockState);
    // The restart program as it would be downloaded.
    RestartProgramInput input;
    input.Point = &point;
    if (auto rep = ReadLines(dirs.PmacDir + "Gather.rep")) input.Repositions = *rep;
    input.Reload = ReloadWord(haveReloaded && reloadedText == "yes");
    input.HasProfiler = machine.ProfilerKind != 0;
    input.ToolWord = StationToolWord(settings.Stations, point.Record.TargetState.Station);
    input.Orientation = machine.MachineOrientation;
    if (auto m2 = ReadLines(stem + "M2")) input.M2 = *m2;
    std::printf("PROG 5:\n");
    for (const std::string& line : RestartProgramLines(input)) std::printf("%s\n", line.c_str());
    // The slot by the stem's name, Actvprg2 for slot 2.
    const int slot = program.starts_with("Actvprg2") ? 2 : 1;
    std::printf("Run command  : %s\n",
                RestartRunCommand(slot, point.Record.TargetState, point.Record.BlockState).c_str());
    return 0;
}

}  // namespace kirvana::office

// The select and slots commands: a program into an active slot as the Select button puts it,
// and both slots as the start-up finds them.
#include <cstdio>

#include "app/headless_platform.h"
#include "app/office.h"
#include "core/number.h"

namespace kirvana::office {

namespace {

void PrintSlot(int slot, const SlotRecord& r, bool active) {
    std::printf("Slot %d%s: ", slot, active ? " (active)" : "");
    if (!r.Present) {
        std::printf("empty\n");
        return;
    }
    std::printf("%s in %s, dialect %d, sheet %s x %s%s, records %d, words %d, hits %d\n", r.ProgramName.c_str(),
                r.ProgramDirName.c_str(), r.SourceDialect, FormatNumber(r.SheetX, -1).c_str(),
                FormatNumber(r.SheetY, -1).c_str(), r.Imperial ? " (inch)" : "", r.DrawingRecords,
                r.Counts[0].MapWordCount, r.Stats.Hits);
}

}  // namespace

int Select(const Args& args) {
    const char* usage = "select --root ROOT --dir DIR --program NAME [--slot 1|2]";
    bool haveRoot = false, haveDir = false, haveProgram = false, haveSlot = false;
    std::string root = Option(args, "--root", &haveRoot);
    std::string dir = Option(args, "--dir", &haveDir);
    std::string program = Option(args, "--program", &haveProgram);
    std::string slotText = Option(args, "--slot", &haveSlot);
    if (!haveRoot || !haveDir || !haveProgram || args.size() != (haveSlot ? 8u : 6u)) return Usage(usage);
    if (haveSlot && slotText != "1" && slotText != "2") return Usage(usage);
    HeadlessSeat seat(0, false, false);
    if (int code = seat.Start(root)) return code;
    Process& process = seat.State;
    if (haveSlot) process.Config.ActiveSlot = static_cast<std::int16_t>(slotText[0] - '0');
    SelectOutcome outcome = seat.Select(dir, program);
    if (outcome.Selected) {
        if (!WriteControlConfig(process.Config)) {
            std::fprintf(stderr, "file fault: %sControl.cfg\n", process.Config.Dirs.RootDir.c_str());
            seat.End();
            return 1;
        }
        // The slot holds the program, but the card may still hold the former one.
        if (outcome.Fault) PrintCardFault("Download failed:", *outcome.Fault);
        PrintSlot(process.Config.ActiveSlot, process.Slots[process.Config.ActiveSlot - 1], true);
    } else {
        std::printf("Refused: %s\n", outcome.Warning.c_str());
    }
    seat.End();
    return !outcome.Selected ? 1 : outcome.Fault ? CardFaultExit : 0;
}

int Slots(const Args& args) {
    bool haveRoot = false;
    std::string root = Option(args, "--root", &haveRoot);
    if (!haveRoot || args.size() != 2) return Usage("slots --root ROOT");
    HeadlessSeat seat(0, false, false);
    if (int code = seat.Start(root)) return code;
    for (int slot = 1; slot <= 2; ++slot)
        PrintSlot(slot, seat.State.Slots[slot - 1], seat.State.Config.ActiveSlot == slot);
    seat.End();
    return 0;
}

}  // namespace kirvana::office

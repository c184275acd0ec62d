// The Convert pass as a whole, its run order step by step: the dialect, the split into main
// text and subroutines, the block passes over both, and the call fix.
#include "translate/convert.h"

#include "core/text.h"
#include "translate/amada.h"
#include "translate/convert_steps.h"
#include "translate/translation_run.h"

namespace kirvana {

using namespace convert;

ConvertSettings ConvertSettingsFrom(const MachineData& machine, const Directories& dirs) {
    ConvertSettings settings;
    settings.AmadaMachine = machine.AmadaMachine;
    settings.SwapArcWords = machine.SwapArcWords;
    settings.ArcCentreIncremental = machine.ArcCentreIncremental;
    settings.ProfilerArcSwap = machine.ProfilerArcSwap;
    settings.ProfilerArcCentre = machine.ProfilerArcCentre;
    settings.ServiceDir = dirs.ServiceDir;
    return settings;
}

const char* ConvertStatusText(ConvertStatus status) {
    switch (status) {
        case ConvertStatus::Done:
            return "converted";
        case ConvertStatus::MissingProgram:
            return "the program file cannot be opened";
        case ConvertStatus::FileFault:
            return "a work file cannot be opened or written";
    }
    return "";
}

ConvertResult ConvertProgram(std::string_view stem, std::int16_t& dialect, const ConvertSettings& settings) {
    TranslationRun run(settings);
    // 1. The stem, trimmed.
    run.State.ConvertStem = std::string(Trim(stem));
    // 2. An AMADA machine has a pass of its own.
    if (settings.AmadaMachine) return AmadaProgram(run.State.ConvertStem, dialect, settings);
    // 3. The dialect.
    if (!run.Detect(dialect)) return run.Result;
    // 4. Main text, subroutine text and the subroutine table, by the dialect's splitter. The
    // table is read back once here for the name lookups of both block passes.
    if (!run.Split(dialect == BracketDialect)) return run.Result;
    SubroutineTable table;
    if (!run.ReadTable(table)) return run.Result;
    // 5. The values kept across both block passes.
    run.State.NibbleStep = 2.5;
    run.State.SheetX = 0;
    run.State.SheetY = 0;
    // 6. The block pass over the main text.
    if (!run.BlockPassFile("A1", "M1", BlockPass::Main, BlockContext{settings, dialect, BlockPass::Main, table},
                           ConvertBlock))
        return run.Result;
    // 7. The block pass over the subroutines.
    if (!run.BlockPassFile("A2", "M2", BlockPass::Subroutines,
                           BlockContext{settings, dialect, BlockPass::Subroutines, table}, ConvertBlock))
        return run.Result;
    // 8. Calls inside the subroutines are G69.
    if (!run.CallFix()) return run.Result;
    run.Result.SheetX = run.State.SheetX;
    run.Result.SheetY = run.State.SheetY;
    run.Result.NibbleStep = run.State.NibbleStep;
    return run.Result;
}

}  // namespace kirvana

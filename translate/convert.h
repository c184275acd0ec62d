// The Convert pass: turns a part program in dialect 0, 1 or 2 into the internal language.
// It splits STEM + "org" into "A1" (main text), "A2" (subroutine text) and "sbs" (the
// subroutine table), runs the block pass A1 -> "M1" and A2 -> "M2", and renames the calls
// of M2 to G69. It never fails on a bad program: wrong programs are judged by the Blend pass.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/config.h"

namespace kirvana {

// The machine values and places the pass needs, filled by the caller.
struct ConvertSettings {
    bool AmadaMachine = false;
    bool SwapArcWords = false;          // G62 gives G03, G63 gives G02
    bool ArcCentreIncremental = false;  // I and J change sign in G62 and G63 blocks
    bool ProfilerArcSwap = false;       // G102 and G103 trade places
    bool ProfilerArcCentre = false;     // I and J change sign in G102 and G103 blocks
    std::string ServiceDir;             // where LastFile.txt notes each file opened for reading
    // Stands for the process's current directory: a "(GSUB," name + ".GSB" is a relative path
    // looked up here ("" is the process's own current directory).
    std::string CurrentDir;
};

ConvertSettings ConvertSettingsFrom(const MachineData& machine, const Directories& dirs);

enum class ConvertStatus {
    Done,
    MissingProgram,  // the "org" file could not be opened
    FileFault,       // a work file could not be opened or written
};

struct ConvertResult {
    ConvertStatus Status = ConvertStatus::Done;
    std::string Fault;             // the file concerned, or where a 16-bit value overflowed
    bool IntegerOverflow = false;  // a whole number (ROUND, count, N word) did not fit 16 bits
    float SheetX = 0;              // sheet size found in the main text's comments
    float SheetY = 0;
    double NibbleStep = 2.5;       // the last P8 value at the end of the run
};

// The entry: `dialect` receives the detected dialect; an AMADA machine runs the AMADA
// dialect pass (translate/amada.h) and gets 5.
[[nodiscard]] ConvertResult ConvertProgram(std::string_view stem, std::int16_t& dialect, const ConvertSettings& settings);

// The text of a status for the operator.
const char* ConvertStatusText(ConvertStatus status);

}  // namespace kirvana

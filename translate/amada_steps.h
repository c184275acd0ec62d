// The pieces of the AMADA dialect pass: its extra state, the per-block function and the
// rewrites it applies. Internal to the pass; declared here so that each rule can be tested.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "translate/convert_steps.h"

namespace kirvana::amada {

// The pass's state beside the Convert pass's own copy (convert::ConvertState).
struct AmadaState {
    bool AmadaInch = false;                   // G20 true, G21 false: the scaling of numbers
    bool AmadaFlag = false;                   // cleared by G90 and G91, set by nothing: G93 is never rewritten
    std::string LastBlock;                    // the previous block as written
    std::string LastComment;                  // and its comment
    std::array<std::string, 100> MacroTable;  // blocks stored by "A" words, 1 to 99
    float GridX = 0;                          // G98 reference point
    float GridY = 0;
    float GridPitchX = 0;  // G98 I and J
    float GridPitchY = 0;
    std::int16_t GridColumns = 0;  // G98 P + 1
    std::int16_t GridRows = 0;     // G98 K + 1
    bool GridSet = false;          // a G98 has been read
    bool ToolSide = false;         // the nibbled arc: G68 true, G78 false
    std::string Scratch;           // work space of the block steps, no state of the pass
};

// The code that picks the class of each word: the G number, overridden by the codes present.
int ScalingCode(std::string_view block, ValueReader& reader);
// A whole number without a point, given in units of 10^-decimals, written with `decimals`
// decimals behind `out`, exactly as FormatNumber writes it; false, with nothing written, for a
// form it leaves to FormatNumber.
bool ScaledInteger(std::string_view number, int decimals, std::string& out);
// Every word written anew by its class (packed text, upper case).
std::string ScaleNumbers(std::string_view block, int code, bool inch);
// The same, written to `out` (which is cleared first).
void ScaleNumbers(std::string_view block, int code, bool inch, std::string& out);
// The AMADA linear and arc codes become the profile codes G101 to G103, with their exclusions.
void ProfileCodes(std::string& block);
void ProfileCodes(std::string& block, CodeIndex& codes);
// G70 -> G77, G25 and G27 -> G95 with I for the first X and J-999, K-999 where missing.
void MoveCodes(std::string& block);
void MoveCodes(std::string& block, CodeIndex& codes);
// The first row of the cycle mapping table whose source code stands in the block; false when
// none does.
bool CycleMapping(std::string& block, std::string& comment, AmadaState& amada, const convert::SubroutineTable& table,
                  ValueReader& reader);
// The same with the block's code index, which must describe the block and is kept up to date.
bool CycleMapping(std::string& block, std::string& comment, AmadaState& amada, const convert::SubroutineTable& table,
                  ValueReader& reader, CodeIndex& codes);

// One line of A1 or A2 to one line of M1 or M2.
std::string AmadaBlock(convert::ConvertState& state, AmadaState& amada, const convert::BlockContext& context,
                       std::string_view line);

}  // namespace kirvana::amada

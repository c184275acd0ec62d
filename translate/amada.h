// The AMADA dialect pass: on an AMADA machine it takes the place of the Convert pass. It splits
// STEM + "org" with the "S" word splitter into "A1", "A2" and "sbs", runs its own block pass
// A1 -> "M1" and A2 -> "M2" and renames the calls of M2 to G69, writing the same internal
// language as the Convert pass. Like that pass it never fails on a bad program.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "translate/convert.h"

namespace kirvana {

// The entry: `dialect` becomes 5. No dialect detection runs.
[[nodiscard]] ConvertResult AmadaProgram(std::string_view stem, std::int16_t& dialect, const ConvertSettings& settings);

// The tool description an AMADA tool comment gives, such as "RE20X5A90" -> "Rectangle 20x5 a90";
// "" when the comment does not start with a known two-letter code.
std::string AmadaToolDescription(std::string_view comment);

}  // namespace kirvana

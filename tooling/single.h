// Storing numbers read from the tooling files into their fields.
#pragma once

#include <cstdint>

#include "core/number.h"

namespace kirvana {

// A 16-bit field read from a number, truncated; a value that does not fit reads as 0.
inline std::int16_t ToWordOrZero(double value) { return TruncateToInt16(value).value_or(0); }

}  // namespace kirvana

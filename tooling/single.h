// Storing a double into a single field without undefined behaviour: values beyond the range
// of a single become an infinity of their sign, as the hardware conversion gives.
#pragma once

#include <cfloat>
#include <cmath>
#include <cstdint>

namespace kirvana {

inline float ToSingle(double value) {
    if (value > FLT_MAX) return HUGE_VALF;
    if (value < -FLT_MAX) return -HUGE_VALF;
    return static_cast<float>(value);
}

// A 16-bit field read from a number, truncated; a value that does not fit reads as 0.
inline std::int16_t ToWordOrZero(double value) {
    double t = std::trunc(value);
    if (!(t >= -32768.0 && t <= 32767.0)) return 0;
    return static_cast<std::int16_t>(t);
}

}  // namespace kirvana

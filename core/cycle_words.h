// The words of the canned cycles as the Blend and Reverse passes and the simulated card read
// them: the same words in the same order, each reading a word with its own rules (its
// variables, its inch mode).
#pragma once

#include <cstdint>
#include <functional>

#include "core/cycle_maths.h"

namespace kirvana {

// A word that is not in the block reads as this value.
inline constexpr double MissingWord = -999;

// How a pass reads one word of the block it works on: Value the number behind the key
// (MissingWord when not there), Length the same converted to mm under G70, Integer a count.
struct CycleWordReader {
    std::function<double(const char*)> Value;
    std::function<double(const char*)> Length;
    std::function<std::int16_t(const char*)> Integer;
};

// G26: the vector I, J (lengths, MissingWord when not given), the grid's P1-P5, P7, P8 (0 when
// not given) and P9, whether the machine stays at the end of the walk. The mirrors are the
// caller's.
struct GridWords {
    double I = MissingWord, J = MissingWord;
    GridPattern Grid;
    bool Stay = false;
};
GridWords ReadGridWords(const CycleWordReader& words);

// G28: the radius R and the centre P7, P8 from the origin (MissingWord when not given), the arc's
// I, J, P1-P5 and P9, whether the machine stays at the end of the arc.
struct ArcWords {
    double R = MissingWord;
    ArcPattern Arc;
    double P7 = MissingWord, P8 = MissingWord;
    bool Stay = false;
};
ArcWords ReadArcWords(const CycleWordReader& words);

// G36: the vector I, J (MissingWord when not given), the length P1 and the angle P5 (0 when not
// given).
struct NibbleLineWords {
    double I = MissingWord, J = MissingWord;
    double P1 = 0, P5 = 0;
};
NibbleLineWords ReadNibbleLineWords(const CycleWordReader& words);

// G37: the radius R and the centre offset I, J (0 when not given), the included angle P1 (0 when
// not given) and the first angle P5 (MissingWord when not given).
struct NibbleArcWords {
    double R = 0, I = 0, J = 0;
    double P1 = 0, P5 = MissingWord;
};
NibbleArcWords ReadNibbleArcWords(const CycleWordReader& words);

}  // namespace kirvana

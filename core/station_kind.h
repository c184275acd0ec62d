// Tests on the type number of a turret station, and station codes.
#pragma once

namespace kirvana {

inline bool IsFromTen(int value) { return value >= 10; }
inline bool IsOneToNine(int value) { return value >= 1 && value <= 9; }
inline bool IsFromTwenty(int value) { return value >= 20; }

// A station code above 100 names station code - 100: 105 gives 5, 100 stays 100.
inline int WrapStation(int value) { return value > 100 ? (value - 1) % 100 + 1 : value; }

}  // namespace kirvana

// The messages the passes report on a program, with their blanks: the Blend pass and the
// Reverse pass judge the same program with the same words.
#pragma once

namespace kirvana::pass_message {
inline constexpr const char* OutOfLimitsX = " Out of limits in X ";
inline constexpr const char* OutOfLimitsY = " Out of limits in Y ";
inline constexpr const char* InvalidIJ = " Non-Interpolated Arc (Invalid I,J) ";
inline constexpr const char* InvalidR = " Non-Interpolated Arc (Invalid R) ";
inline constexpr const char* InvalidHitsP1 = " Invalid number of Hits (P1) ";
inline constexpr const char* InvalidHitsP1P3 = " Invalid number of Hits (P1,P3) ";
inline constexpr const char* NoHitsOrPitch = " No Hits (P1) or Angular Pitch (P2) ";
inline constexpr const char* DivisionByZero = " Division by Zero ";
inline constexpr const char* MissingRadius = " Missing Radius or I/J ";
inline constexpr const char* NibbleNotSet = " Nibble Increment (P8) has not been set ";
inline constexpr const char* NegativeNibble = " Negative Nibble Increment (P8) ";
inline constexpr const char* ExcessiveNibble = " Excessive Nibble Increment (P8=6.25 maximum) ";
}  // namespace kirvana::pass_message

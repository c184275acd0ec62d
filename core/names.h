// The one rule for the name of a program directory or a program: typed by the operator, given
// by a script (the office commands), written in a program line (a sub-program's name) or sent
// over the serial line. A name that passes it stays inside the folder it is looked up in.
#pragma once

#include <cstddef>
#include <string_view>

namespace kirvana {

// The longest acceptable name, in bytes: the selection's limit of 32 characters.
inline constexpr std::size_t NameLengthLimit = 32;

// True for a name of 1 to NameLengthLimit bytes without "/", "\", "..", ":" (a drive), a
// control character (below 32, or 127), and other than "."; so it is never absolute and never
// leads out of its folder. Names are checked as they stand: callers trim where the system trims.
bool AcceptableName(std::string_view name);

// The system's refusals of a name.
inline constexpr const char* InvalidDirectoryName = "Invalid Directory Name !";
inline constexpr const char* InvalidProgramName = "Invalid Program Name !";

}  // namespace kirvana

// The choice of a program on the program screens: the search over every directory of the
// program store, and the checks of a program chosen in a list. The lists themselves are the
// program store's (files/program_store.h).
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "files/program_store.h"

namespace kirvana {

// A row of SearchForm's list.
struct ProgramMatch {
    std::string Directory;
    std::string Program;
    bool operator==(const ProgramMatch&) const = default;
};
// Every program of every directory of the root (as the lists show them: never "EXSUBS") whose
// name holds `text`, case ignored, by directory and then by name.
std::vector<ProgramMatch> SearchPrograms(const std::string& programRoot, const std::string& text);
// SearchForm's label: the text in quotation marks.
std::string SearchLabel(const std::string& text);
inline constexpr const char* NoMatchingPrograms = "No Matching Programs Found !";

// The OK of ProgListForm and SearchForm: the refusal of the chosen directory and program ("No
// Directory Selected !", "No Program Selected !", "Invalid Directory !", "Invalid Program !"),
// or nothing when the program may go back to ProgramForm.
std::optional<std::string> CheckChosenProgram(const std::string& programRoot, const std::string& directory,
                                              const std::string& program);

// The whole path of a program of the store (case ignored where the exact name is missing); empty
// for a name the name rule refuses.
std::string ProgramPath(const std::string& programRoot, const std::string& directory, const std::string& program);
// The text of a program for a read-only view; empty when it cannot be read.
std::optional<std::string> ProgramText(const std::string& programRoot, const std::string& directory,
                                       const std::string& program);

}  // namespace kirvana

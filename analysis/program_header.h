// The words of a motion text and its header comment lines: what the Reverse pass checks and
// reads before it walks the program.
#pragma once

#include <array>
#include <string>
#include <utility>
#include <vector>

namespace kirvana {

// What the header comment lines of M1 say.
struct ProgramHeader {
    std::string Material;
    bool HasMaterial = false;
    float SheetX = 0, SheetY = 0;
    std::array<float, 4> Clamps{};
    // Tool texts the header gives for stations: (station, text).
    std::vector<std::pair<int, std::string>> Tools;
    bool InchHeader = false;  // the block that ended the header holds G70
};

// True when every line uses only the words of the language (comments after ";" aside).
bool CheckWords(const std::vector<std::string>& lines);
// The header: the comment lines in front of the first block with a word other than N.
ProgramHeader ReadHeader(const std::vector<std::string>& lines);

}  // namespace kirvana

// A punch tool in memory (`ToolRecord`) and as its one-line text (`ToolText`): the reader
// `ParseToolText`, the describer `DescribeTool` and the key readers they share.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kirvana {

// Width of the blank-padded `Name` field.
inline constexpr std::size_t ToolNameWidth = 18;
// 16-bit booleans as they stand in records and files.
inline constexpr std::int16_t TrueWord = -1;
inline constexpr std::int16_t FalseWord = 0;

struct ToolRecord {
    std::int16_t Valid = FalseWord;            // false: empty station or a tool that failed to parse
    char Shape = ' ';                          // shape letter A to M, S, or P for the plasma tool
    std::string Name = std::string(ToolNameWidth, ' ');  // always 18 characters
    float D1 = 0;                              // millimetres
    float D2 = 0;
    float D3 = 0;                              // Keyway: the sign carries the key end
    float D4 = 0;
    std::int16_t Setting = 0;                  // index of the station's type
    std::int16_t Station = 0;                  // type number of the station (20 and above: autoindex)
    float Angle = 0;                           // degrees
    float Extra1 = 0;                          // index angle asked of an autoindex station
    float Extra2 = 0;                          // 1 on a table's tool and on the plasma tool

    bool IsValid() const { return Valid != FalseWord; }
};

// The fixed-width text of a `Name`: cut or blank-padded to 18 characters.
std::string ToolName(std::string_view text);

// The shape table: letter, the word of the tool text (its first 6 letters decide), the
// shape's name and the row of the shape in the definition screen's list.
struct ToolShape {
    char Letter;
    const char* Word;
    const char* Name;
    int ScreenIndex;
};
// The 14 shapes A to M and S, in the order of the definition screen's list.
inline constexpr int ToolShapeCount = 14;
const ToolShape& ShapeAt(int screenIndex);
// The row of the shape table for a letter; nullptr for P or an unknown letter.
const ToolShape* ShapeOfLetter(char letter);

// The decimal number that follows `key` (case ignored). `valueError` is cleared first and set
// when the key or its number is missing; the result is then 0. For the key "R" every R that
// starts "ROUND" is skipped. Arithmetic characters are collected but not computed.
double ValueAfterKey(std::string_view text, std::string_view key, bool& valueError);
double ValueAfterKey(std::string_view text, std::string_view key);
// The same for a whole number with a sign, truncated to 16 bits. A number that does not fit
// in 16 bits sets `valueError` and gives 0.
std::int16_t IntegerAfterKey(std::string_view text, std::string_view key, bool& valueError);
std::int16_t IntegerAfterKey(std::string_view text, std::string_view key);

// True when the station type number is an autoindex station (20 and above).
bool IsIndexStation(int typeNumber);

// Fills the record from a tool text; `fromInches` says the numbers are inches. Only Valid,
// Shape, Name, D1 to D4 and Angle are written; the other fields stay as they were.
// Returns the record's validity.
bool ParseToolText(std::string_view text, ToolRecord& record, bool fromInches);

// The tool's description; without inches this is the `ToolText` that tables store.
std::string DescribeTool(const ToolRecord& record, bool showInches);

// Empties a tool: invalid, blank shape and name, all values 0.
void ClearTool(ToolRecord& record);
// Copies every field.
void CopyTool(const ToolRecord& source, ToolRecord& target);
// The comparison the turret screens make: shape, name, D1 to D4 and angle.
bool SameTool(const ToolRecord& a, const ToolRecord& b);

// The plasma pseudo-tool: letter P, the machine's plasma tool name, no dimensions, and the
// plasma station's type index and type number.
ToolRecord PlasmaTool(std::string_view plasmaToolName, std::int16_t typeIndex, std::int16_t typeNumber);

}  // namespace kirvana

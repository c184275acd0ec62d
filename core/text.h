// Text operations shared by the passes and the configuration readers. Text is 8-bit;
// only the ASCII letters change case.
#pragma once

#include <string>
#include <string_view>

namespace kirvana {

inline char UpperChar(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }
inline bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

std::string UpperCase(std::string_view text);
// Blanks (and tabs) off both ends.
std::string_view Trim(std::string_view text);
// Position of `what` in `text` ignoring case, or npos.
std::size_t FindNoCase(std::string_view text, std::string_view what, std::size_t from = 0);

// All blanks taken out, then trimmed.
std::string StripBlanks(std::string_view text);
// Blanks taken out, then one blank in front of every letter but the first character.
std::string SpaceWords(std::string_view text);
// Every run of blanks becomes one blank.
std::string CollapseBlanks(std::string_view text);
// Removes every occurrence of the letter with the "-", digits and "." directly behind it.
std::string RemoveWord(std::string_view block, char letter);
// Removes "P" + number and its "= value" behind it; unchanged when the word isn't there.
std::string RemoveParameter(std::string_view block, int number);
// Drops a leading block number, keeping a leading "/" (block skip).
std::string StripBlockNumber(std::string_view block);
// The trimmed text in front of / behind the first ";".
std::string BeforeComment(std::string_view block);
std::string AfterComment(std::string_view block);
// The text without the section from the start mark to the end mark.
std::string CutSection(std::string_view text, std::string_view startMark, std::string_view endMark);
// The text behind the start mark's first character up to the end mark ("" when a mark is missing).
std::string TextBetween(std::string_view text, std::string_view startMark, std::string_view endMark);
// Letters of the block (comment cut); 0 when none but "N" and "O".
int CountBlockWords(std::string_view block);
// The value of a "label: value" line: the trimmed text behind the first ":", or the trimmed line.
std::string AfterColon(std::string_view line);
// The name without its last "." and what follows.
std::string StripExtension(std::string_view fileName);
// The characters behind the last "/", "\" or ":".
std::string FileNameOf(std::string_view path);
// The local date and time as "dd/mm/yy hh:mm": the time line of the passes' reports.
std::string ReportTime();

}  // namespace kirvana

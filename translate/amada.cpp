// The AMADA dialect pass: its block walk, the profile and move codes, the cycle mapping table
// and the tool comments. The run as a whole follows the Convert pass's run order.
#include "translate/amada.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "core/geometry.h"
#include "core/number.h"
#include "core/text.h"
#include "translate/amada_steps.h"
#include "translate/text_search.h"
#include "translate/translation_run.h"

namespace kirvana {

using namespace convert;

namespace {

// Removes the first word of the letter (the letter and its number) and gives its number text;
// false when the letter does not stand in the block.
bool TakeWord(std::string& block, char letter, std::string& number) {
    std::size_t at = block.find(letter);
    if (at == npos) return false;
    std::size_t end = NumberEnd(block, at);
    number.assign(block, at + 1, end - at - 1);
    block.erase(at, end - at);
    return true;
}

// Removes the first word of the letter from the block.
void DropWord(std::string& block, char letter) {
    std::size_t at = block.find(letter);
    if (at != npos) block.erase(at, NumberEnd(block, at) - at);
}

// The value of the first word of the letter, taken out of the block; 0 when it is missing.
double TakeValue(std::string& block, char letter) {
    std::size_t at = block.find(letter);
    if (at == npos) return 0.0;
    std::size_t end = NumberEnd(block, at);
    double value = ToNumber(std::string_view(block).substr(at + 1, end - at - 1));
    block.erase(at, end - at);
    return value;
}

// Moves the first word of `from` to the end of the block under the new name `to`.
void RenameWord(std::string& block, char from, std::string_view to, std::string& words) {
    std::size_t at = block.find(from);
    if (at == npos) return;
    std::size_t end = NumberEnd(block, at);
    words += to;
    words.append(block, at + 1, end - at - 1);
    block.erase(at, end - at);
}

// A computed length or angle: rounded half to even to 3 decimals, in free format. Below 1e9
// the rounded value is a whole number of thousandths, and its free format is that number with
// the point three digits from the right and the zeros behind the last digit dropped; larger
// values (and the non-finite ones) go to FormatNumber. Debug builds check the two agree.
std::string LengthText(double value) {
    const double rounded = RoundHalfEven(value, 3);
    if (!(std::fabs(rounded) < 1e9)) return FormatNumber(rounded, -1);
    long long thousandths = std::llround(rounded * 1000);
    char digits[24];
    char* end = std::to_chars(digits, digits + sizeof digits, thousandths < 0 ? -thousandths : thousandths).ptr;
    std::string_view number(digits, static_cast<std::size_t>(end - digits));
    std::string text;
    if (thousandths < 0) text += '-';
    if (number.size() <= 3) {
        text += '0';
    } else {
        text += number.substr(0, number.size() - 3);
        number.remove_prefix(number.size() - 3);
    }
    if (number.size() < 3 || number != "000") {
        std::string_view fraction = number;
        while (!fraction.empty() && fraction.back() == '0') fraction.remove_suffix(1);
        if (!fraction.empty()) {
            text += '.';
            text.append(3 - number.size(), '0');
            text += fraction;
        }
    }
#ifndef NDEBUG
    if (text != FormatNumber(rounded, -1)) std::abort();
#endif
    return text;
}

// A word of a computed length or angle behind the words: the name, then the length rounded
// to 3 decimals (G28's polar values and the shear proof row).
void AddLength(std::string& words, std::string_view name, double value) {
    words += name;
    words += LengthText(value);
}

// A word of a computed length as it was computed, in free format (G67, G68, G69).
void AddValue(std::string& words, std::string_view name, double value) {
    words += name;
    words += FormatNumber(value, -1);
}

double Sign(double value) { return value > 0 ? 1.0 : value < 0 ? -1.0 : 0.0; }

// The pitch of a side nibbled or punched with a tool of size `tool`: q := |side| / tool; n is
// Fix(q) + 1 when q is whole, else Fix(q) + 2; the pitch is side / (n - 1), rounded to 3
// decimals and taken absolute. With no tool, or a side too short for two hits, it is 0.
double SidePitch(double side, double tool) {
    if (tool == 0 || !std::isfinite(side) || !std::isfinite(tool)) return 0;
    double q = std::fabs(side) / tool;
    if (!std::isfinite(q) || q > 1e9 || q < 0) return 0;
    double whole = std::trunc(q);
    double n = whole == q ? whole + 1 : whole + 2;
    if (n - 1 <= 0) return 0;
    return std::fabs(RoundHalfEven(side / (n - 1), 3));
}

// The X and Y of the previous block as written; a missing word counts as 0.
void LastPosition(const amada::AmadaState& amada, ValueReader& reader, double& x, double& y) {
    x = reader.WordValue(amada.LastBlock, 'X');
    if (reader.WordMissing) x = 0;
    y = reader.WordValue(amada.LastBlock, 'Y');
    if (reader.WordMissing) y = 0;
}

// The length of the leading block-skip marks and sequence word of a block: what a block that
// is replaced as a whole keeps.
std::size_t BlockPrefix(std::string_view block) {
    std::size_t end = 0;
    while (end < block.size() && (block[end] == '/' || block[end] == '\\')) ++end;
    if (end < block.size() && block[end] == 'N') {
        ++end;
        while (end < block.size() && IsDigit(block[end])) ++end;
    }
    return end;
}

// A whole number for a 16-bit field, with the overflow reported to the reader's caller.
std::int16_t WholeNumber(double value, ValueReader& reader) {
    std::optional<std::int16_t> whole = TruncateToInt16(value);
    if (!whole) {
        reader.IntegerOverflow = true;
        return 0;
    }
    return *whole;
}

std::int16_t PlusOne(std::int16_t value, ValueReader& reader) {
    if (value == std::numeric_limits<std::int16_t>::max()) {
        reader.IntegerOverflow = true;
        return value;
    }
    return static_cast<std::int16_t>(value + 1);
}

// Splits the comment off a trimmed line: "(" to the first ")", else ";" to the end.
void SplitComment(std::string& block, std::string& comment) {
    std::size_t at = block.find('(');
    bool bracket = at != npos;
    if (!bracket) at = block.find(';');
    if (at == npos) {
        comment.clear();
    } else {
        std::string_view after = std::string_view(block).substr(at + 1);
        if (bracket) after = after.substr(0, after.find(')'));
        comment = " ;";
        comment += Trim(after);
        block.resize(at);
    }
    // The block trimmed in place.
    std::string_view trimmed = Trim(block);
    const std::size_t front = static_cast<std::size_t>(trimmed.data() - block.data());
    block.resize(front + trimmed.size());
    block.erase(0, front);
}

// Every blank out of the block, in place; then tabs off both ends, as StripBlanks does.
void StripBlanksInPlace(std::string& block) {
    std::size_t out = 0;
    for (char c : block)
        if (c != ' ') block[out++] = c;
    block.resize(out);
    std::string_view trimmed = Trim(block);
    if (trimmed.size() == block.size()) return;
    const std::size_t front = static_cast<std::size_t>(trimmed.data() - block.data());
    block.resize(front + trimmed.size());
    block.erase(0, front);
}

// SpaceWords then CollapseBlanks, written to `out`. SpaceWords drops every blank and puts one
// in front of each letter but the first character, so no two blanks ever meet and there is
// nothing left for CollapseBlanks to do.
void SpaceWordsCollapsed(std::string_view block, std::string& out) {
    out.resize(block.size() * 2);
    std::size_t n = 0;
    for (char c : block) {
        if (c == ' ') continue;
        if (IsLetter(c) && n > 0) out[n++] = ' ';
        out[n++] = c;
    }
    out.resize(n);
}

// The number of a one- or two-digit word 1 to 99 of the letter, or 0.
int MacroNumber(std::string_view block, char letter, ValueReader& reader) {
    if (!Has(block, letter)) return 0;
    std::int16_t number = reader.WordInteger(block, letter);
    return number >= 1 && number <= 99 ? number : 0;
}

}  // namespace

namespace amada {

// ---------------------------------------------------------------------------------------
// Profile codes and moves

namespace {

std::string_view ProfileCode(int code) { return code == 1 ? "G101" : code == 2 ? "G102" : "G103"; }

// Step 7 of the block walk for one AMADA code: "G1"/"G01", "G2"/"G02" or "G3"/"G03" becomes
// its profile code unless an exclusion stands in the block. The handler goes on only with its
// code in the block, so it never adds a profile code to a block without one: a bare axis block
// gets its profile code from the modal arc mode of the completion steps.
void ProfileHandler(std::string& block, int code, CodeIndex& codes) {
    const char digit = static_cast<char>('0' + code);
    const char longCodeText[] = {'G', '0', digit};
    const char shortCodeText[] = {'G', digit};
    const std::string_view shortForm(shortCodeText, 2), longForm(longCodeText, 3);
    if (!codes.Has(block, shortForm) && !codes.Has(block, longForm)) return;
    // The other two codes in both forms.
    for (int other = 1; other <= 3; ++other) {
        if (other == code) continue;
        const char o = static_cast<char>('0' + other);
        const char otherShort[] = {'G', o};
        const char otherLong[] = {'G', '0', o};
        if (codes.Has(block, std::string_view(otherShort, 2)) || codes.Has(block, std::string_view(otherLong, 3)))
            return;
    }
    // The codes of this decade: G10 to G19, G20 to G29, G30 to G39.
    for (char units = '0'; units <= '9'; ++units) {
        const char decade[] = {'G', digit, units};
        if (codes.Has(block, std::string_view(decade, 3))) return;
    }
    static constexpr std::string_view others[] = {"G00", "G101", "G102", "G103", "G04", "G93",
                                                  "G92", "G56",  "G53",  "M60",  "M50"};
    for (std::string_view word : others)
        if (codes.Has(block, word)) return;
    // The handler runs only with its code in the block, so one of the two forms is there.
    if (!ReplaceFirst(block, longForm, ProfileCode(code))) ReplaceFirst(block, shortForm, ProfileCode(code));
    codes.Build(block);
}

// The sheet reposition of G25 and G27: the first "X" is the distance "I".
void RepositionRule(std::string& block) {
    ReplaceFirst(block, "X", "I");
    if (!Has(block, 'J')) block += " J-999";
    if (!Has(block, 'K')) block += " K-999";
}

}  // namespace

void ProfileCodes(std::string& block) {
    CodeIndex codes;
    codes.Build(block);
    ProfileCodes(block, codes);
}

void ProfileCodes(std::string& block, CodeIndex& codes) {
    for (int code = 1; code <= 3; ++code) ProfileHandler(block, code, codes);
}

void MoveCodes(std::string& block) {
    CodeIndex codes;
    codes.Build(block);
    MoveCodes(block, codes);
}

// Step 8 of the block walk: G70 to G77, then G25 and G27 to G95 by the rule of M22.
void MoveCodes(std::string& block, CodeIndex& codes) {
    if (codes.Has(block, "G70")) {
        ReplaceFirst(block, "G70", "G77");
        codes.Build(block);
    }
    if (codes.Has(block, "G25")) {
        ReplaceFirst(block, "G25", "G95");
        RepositionRule(block);
        codes.Build(block);
    }
    if (codes.Has(block, "G27")) {
        ReplaceFirst(block, "G27", "G95");
        RepositionRule(block);
        codes.Build(block);
    }
}

// ---------------------------------------------------------------------------------------
// Cycle mapping

namespace {

// The rows of the cycle mapping table, in the order they are tested.
enum class Row { G28, G26, G29, G36, G37, G66, G67, G68, G69, G98, G75, G76, W, G31, None };

Row FindRow(std::string_view block, std::string_view& source, const CodeIndex& codes) {
    static constexpr struct {
        std::string_view Code;
        Row Which;
    } rows[] = {{"G28", Row::G28}, {"G26", Row::G26}, {"G29", Row::G29}, {"G36", Row::G36},
                {"G37", Row::G37}, {"G66", Row::G66}, {"G67", Row::G67}, {"G68", Row::G68},
                {"G78", Row::G68}, {"G69", Row::G69}, {"G79", Row::G69}, {"G98", Row::G98},
                {"G75", Row::G75}, {"G76", Row::G76}, {"W", Row::W},     {"G31", Row::G31}};
    // A block without any "G" or "M" can only be a call.
    if (codes.Empty()) {
        if (!Has(block, 'W')) return Row::None;
        source = "W";
        return Row::W;
    }
    for (const auto& row : rows) {
        if (codes.Has(block, row.Code)) {
            source = row.Code;
            return row.Which;
        }
    }
    return Row::None;
}

// G66 shear proof. The source gives I the length of the row, J its angle, P the tool's size
// along the row, Q its size across (0: as P) and D the side of the line the tool stands on.
// As for G67 the tool's reach along the row is the sign of I times P: the row starts half a
// reach in from the previous position (X, Y of the last block moved along the row) and ends
// half a reach short of the line's end, so its length P7 is I shortened by the reach. The row
// stands half the tool's width off the line, to the left of its direction (J + 90) for D at 0
// or more, to the right (J - 90) for D below 0, as G69 picks the side by its P; that offset
// is the pattern's first-hit offset P10, P11. The pitch count is that of G67 on the length
// P7, and P2 the pitch as a whole number. The row stays at its end (P9=1).
void ShearProof(std::string& block, const AmadaState& amada, ValueReader& reader, std::string& words) {
    double length = TakeValue(block, 'I');
    double angle = TakeValue(block, 'J');
    double tool = TakeValue(block, 'P');
    double width = TakeValue(block, 'Q');
    double side = TakeValue(block, 'D');
    if (width == 0) width = tool;
    double reach = Sign(length) * tool;
    double lastX, lastY;
    LastPosition(amada, reader, lastX, lastY);
    double alongX, alongY;
    PolarToXY(reach / 2, angle, alongX, alongY);
    double offsetX, offsetY;
    PolarToXY(std::fabs(width / 2), side >= 0 ? angle + 90 : angle - 90, offsetX, offsetY);
    double rowLength = length - reach;
    double pitch = SidePitch(rowLength, tool);
    AddLength(words, "X", lastX + alongX);
    AddLength(words, "Y", lastY + alongY);
    AddLength(words, "P7=", rowLength);
    AddLength(words, "P5=", angle);
    words += "P2=";
    words += FormatNumber(pitch, 0);
    words += "P9=1";
    AddLength(words, "P10=", offsetX);
    AddLength(words, "P11=", offsetY);
}

// G67 nibbled rectangle: with P the tool's size, the sign of I times P and the sign of J
// times P are the tool's reach in each axis. The corner moves by half the reach, the sides
// are shortened by it, and P8 is the larger side pitch as a whole number.
void Rectangle(std::string& block, const AmadaState& amada, ValueReader& reader, std::string& words) {
    double i = TakeValue(block, 'I');
    double j = TakeValue(block, 'J');
    double tool = TakeValue(block, 'P');
    double reachX = Sign(i) * tool;
    double reachY = Sign(j) * tool;
    double lastX, lastY;
    LastPosition(amada, reader, lastX, lastY);
    double sideX = i - reachX;
    double sideY = j - reachY;
    double pitch = std::max(SidePitch(sideX, tool), SidePitch(sideY, tool));
    AddValue(words, "X", lastX + reachX / 2);
    AddValue(words, "Y", lastY + reachY / 2);
    AddValue(words, "I", sideX);
    AddValue(words, "J", sideY);
    words += "P8=";
    words += FormatNumber(pitch, 0);
}

// G69 and G79 nibbled line: the start is the last position moved half the tool across the
// line, to the left for P at 0 or more and to the right below 0.
void NibbleLine(std::string& block, const AmadaState& amada, ValueReader& reader, std::string& words) {
    std::string length, angleText;
    bool hasLength = TakeWord(block, 'I', length);
    bool hasAngle = TakeWord(block, 'J', angleText);
    double angle = hasAngle ? ToNumber(angleText) : 0;
    double tool = TakeValue(block, 'P');
    double step = TakeValue(block, 'Q');
    double shiftX, shiftY;
    PolarToXY(std::fabs(tool / 2), tool >= 0 ? angle + 90 : angle - 90, shiftX, shiftY);
    double lastX, lastY;
    LastPosition(amada, reader, lastX, lastY);
    AddValue(words, "X", lastX + shiftX);
    AddValue(words, "Y", lastY + shiftY);
    if (hasLength) {
        words += "P1=";
        words += length;
    }
    if (hasAngle) {
        words += "P5=";
        words += angleText;
    }
    words += "P8=";
    words += FormatNumber(step, 0);
    AddValue(words, "P10=", shiftX - 2);
    AddValue(words, "P11=", shiftY - 2);
}

// G75 and G76: the subroutine over the stored grid, from the corner Q by the starting corner
// table. The table knows the corners 1 to 4; any other Q starts, as 1 does, at the reference
// point.
void GridCall(std::string& block, bool yFirst, const AmadaState& amada, const SubroutineTable& table,
              ValueReader& reader, std::string& words) {
    std::string name;
    TakeWord(block, 'W', name);
    std::int16_t corner = WholeNumber(TakeValue(block, 'Q'), reader);
    const float lastColumn = static_cast<float>(amada.GridColumns - 1);
    const float lastRow = static_cast<float>(amada.GridRows - 1);
    float startX = amada.GridX, startY = amada.GridY;
    float pitchX = amada.GridPitchX, pitchY = amada.GridPitchY;
    if (corner == 2 || corner == 4) {
        startX = amada.GridX + lastColumn * amada.GridPitchX;
        pitchX = -amada.GridPitchX;
    }
    if (corner == 3 || corner == 4) {
        startY = amada.GridY + lastRow * amada.GridPitchY;
        pitchY = -amada.GridPitchY;
    }
    words += "G98S";
    words += IntegerText(table.SubroutineNumber(name));
    words += "X";
    words += FormatNumber(startX, -1);
    words += "Y";
    words += FormatNumber(startY, -1);
    words += "P2=";
    words += FormatNumber(pitchX, -1);
    words += "P4=";
    words += FormatNumber(pitchY, -1);
    words += "P1=";
    words += IntegerText(amada.GridColumns);
    words += "P3=";
    words += IntegerText(amada.GridRows);
    words += yFirst ? "P6=1" : "P6=0";
}

}  // namespace

bool CycleMapping(std::string& block, std::string& comment, AmadaState& amada, const SubroutineTable& table,
                  ValueReader& reader) {
    CodeIndex codes;
    codes.Build(block);
    return CycleMapping(block, comment, amada, table, reader, codes);
}

// Step 11 of the block walk: the cycle mapping table, its first row whose source code stands
// in the block, the rows after it passed over.
bool CycleMapping(std::string& block, std::string& comment, AmadaState& amada, const SubroutineTable& table,
                  ValueReader& reader, CodeIndex& codes) {
    std::string_view source;
    const Row row = FindRow(block, source, codes);
    if (row == Row::None) return false;
    // The tail: from the first "T", else the first "M"; for a call from the first "M" behind
    // its "W", so that the call is made whatever stands in front of it. It is cut off, and the
    // rest of the block is worked on in place.
    std::size_t tailAt = npos;
    if (row == Row::W) {
        tailAt = block.find('M', block.find('W'));
    } else {
        tailAt = block.find('T');
        if (tailAt == npos) tailAt = block.find('M');
    }
    std::string tail;
    if (tailAt != npos) {
        tail.assign(block, tailAt);
        block.resize(tailAt);
    }
    std::string& rest = block;
    // The source code leaves the text; the row puts its target code and words behind the rest.
    if (row != Row::W) {
        std::size_t at = rest.find(source);
        if (at != npos) rest.erase(at, source.size());
    }
    std::string words;
    words.reserve(96);
    switch (row) {
        case Row::G28: {
            double radius = TakeValue(rest, 'I');
            double angle = TakeValue(rest, 'J');
            double x, y;
            PolarToXY(radius, angle, x, y);
            words = "G66";
            AddLength(words, "I", x);
            AddLength(words, "J", y);
            RenameWord(rest, 'K', "B", words);
            break;
        }
        case Row::G26:
            words = "G64";
            RenameWord(rest, 'I', "J", words);
            RenameWord(rest, 'J', "A", words);
            RenameWord(rest, 'K', "B", words);
            break;
        case Row::G29:
            words = "G28";
            RenameWord(rest, 'I', "R", words);
            RenameWord(rest, 'J', "P3=", words);
            RenameWord(rest, 'P', "P2=", words);
            RenameWord(rest, 'K', "P1=", words);
            words += "P9=1";
            break;
        case Row::G36:
        case Row::G37:
            words = "G26";
            RenameWord(rest, 'I', "P2=", words);
            RenameWord(rest, 'J', "P4=", words);
            RenameWord(rest, 'P', "P1=", words);
            RenameWord(rest, 'K', "P3=", words);
            words += row == Row::G36 ? "P5=0P9=1" : "P5=270P9=1";
            break;
        case Row::G66: {
            DropWord(rest, 'X');
            DropWord(rest, 'Y');
            words = "G26";
            ShearProof(rest, amada, reader, words);
            break;
        }
        case Row::G67: {
            DropWord(rest, 'X');
            DropWord(rest, 'Y');
            words = "G65";
            Rectangle(rest, amada, reader, words);
            break;
        }
        case Row::G68: {
            amada.ToolSide = source == "G68";
            std::string radius;
            bool hasRadius = TakeWord(rest, 'I', radius);
            std::string angle, hits, step;
            bool hasAngle = TakeWord(rest, 'J', angle);
            bool hasHits = TakeWord(rest, 'K', hits);
            double tool = TakeValue(rest, 'P');
            bool hasStep = TakeWord(rest, 'Q', step);
            words = "G37";
            if (hasRadius) AddValue(words, "R", ToNumber(radius) + tool / 2);
            if (hasAngle) {
                words += "P5=";
                words += angle;
            }
            if (hasHits) {
                words += "P1=";
                words += hits;
            }
            if (hasStep) {
                words += "P8=";
                words += step;
            }
            break;
        }
        case Row::G69: {
            DropWord(rest, 'X');
            DropWord(rest, 'Y');
            words = "G36";
            NibbleLine(rest, amada, reader, words);
            break;
        }
        case Row::G98: {
            amada.GridX = static_cast<float>(TakeValue(rest, 'X'));
            amada.GridY = static_cast<float>(TakeValue(rest, 'Y'));
            amada.GridPitchX = static_cast<float>(TakeValue(rest, 'I'));
            amada.GridPitchY = static_cast<float>(TakeValue(rest, 'J'));
            amada.GridColumns = PlusOne(WholeNumber(TakeValue(rest, 'P'), reader), reader);
            amada.GridRows = PlusOne(WholeNumber(TakeValue(rest, 'K'), reader), reader);
            amada.GridSet = true;
            rest.resize(BlockPrefix(rest));
            words = "G00";
            break;
        }
        case Row::G75:
        case Row::G76:
            GridCall(rest, row == Row::G76, amada, table, reader, words);
            rest.resize(BlockPrefix(rest));
            break;
        case Row::W: {
            // A call as in the bracket dialect: what stands before the "W", the modal codes
            // behind it, then the call; the name goes to the comment.
            std::size_t w = rest.find('W');
            std::string behind, name;
            if (w != npos) {
                behind = rest.substr(w);
                for (std::size_t k = w + 1; k < rest.size() && IsDigit(rest[k]); ++k) name += rest[k];
                rest.erase(w);
            }
            for (const char* code :
                 {"G75", "G76", "G00", "G20", "G21", "G90", "G91", "M00", "M01", "M50", "M60", "M75"})
                if (Has(behind, code) && !Has(rest, code)) rest += code;
            words = "G68S" + IntegerText(table.SubroutineNumber(name)) + "Q0";
            comment = (amada.LastComment.empty() ? std::string(" ; ") : amada.LastComment) + name;
            break;
        }
        case Row::G31: {
            double p = TakeValue(rest, 'P');
            double q = TakeValue(rest, 'Q');
            words = p == 0 && q == 0 ? "M05" : "M03";
            break;
        }
        case Row::None:
            break;
    }
    block += words;
    block += tail;
    codes.Build(block);
    return true;
}

// ---------------------------------------------------------------------------------------
// The block pass

// The block walk, steps 1 to 14, for one line of A1 or A2; the A2 pass has the Convert pass's
// differences: no sequence word, and "RETURN" skips the last steps.
std::string AmadaBlock(ConvertState& state, AmadaState& amada, const BlockContext& context, std::string_view line) {
    const bool mainText = context.Pass == BlockPass::Main;
    ValueReader& reader = state.Reader;
    // 1. The line, trimmed; a subroutine's start and end in their internal form (subroutine
    // text loses its leading sequence word first); the comment split off; upper case.
    state.SourceLine.assign(Trim(line));
    std::string block;
    block.reserve(state.SourceLine.size() + 64);
    // (A line that starts with neither "/" nor "N" has no sequence word to lose.)
    const char first = state.SourceLine.empty() ? ' ' : UpperChar(state.SourceLine[0]);
    if (mainText || (first != '/' && first != 'N'))
        block = state.SourceLine;
    else
        block = StripBlockNumber(state.SourceLine);
    // (Both forms hold an "S": "S" and digits, or "ENDSUB".)
    if (Has(block, 'S') || Has(block, 's')) block = SubroutineRewriteBracket(block, context.Table);
    SplitComment(block, state.BlockComment);
    for (char& c : block) c = UpperChar(c);
    // 2. Main text: the sequence word (subroutine text has none); then all blanks go, words
    // are found in packed text.
    if (mainText) SequenceStep(state, block);
    StripBlanksInPlace(block);
    // 3. "A" leaves the block and stores what remains as a macro; "B" replays one.
    if (int store = MacroNumber(block, 'A', reader)) {
        DropWord(block, 'A');
        amada.MacroTable[static_cast<std::size_t>(store)] = block;
    }
    if (int replay = MacroNumber(block, 'B', reader)) block = amada.MacroTable[static_cast<std::size_t>(replay)];
    // (The code index answers the searches for "G" and "M" codes; it is rebuilt after every
    // change of the block.)
    CodeIndex& codes = state.Codes;
    codes.Build(block);
    auto rewrite = [&](std::string_view from, std::string_view to) {
        if (!codes.Has(block, from)) return;
        ReplaceFirst(block, from, to);
        codes.Build(block);
    };
    // 4. Inch and metric; G90 and G91 clear AmadaFlag.
    if (codes.Has(block, "G20")) amada.AmadaInch = true;
    if (codes.Has(block, "G21")) amada.AmadaInch = false;
    if (codes.Has(block, "G90") || codes.Has(block, "G91")) amada.AmadaFlag = false;
    // 5. Every numbered word written anew by its class.
    ScaleNumbers(block, ScalingCode(block, reader), amada.AmadaInch, amada.Scratch);
    block.swap(amada.Scratch);
    codes.Build(block);
    // 6. The optional stop is a stop.
    rewrite("M01", "M00");
    // 7. The linear and arc codes are profile moves.
    ProfileCodes(block, codes);
    // 8. A move without a hit, and the sheet repositions.
    MoveCodes(block, codes);
    // 9. The unit codes of the internal language.
    rewrite("G20", "G70");
    rewrite("G21", "G71");
    // 10. The origin word, only with AmadaFlag, which nothing sets.
    if (amada.AmadaFlag) rewrite("G93", "G92");
    // 11. The first cycle row whose source code stands in the block.
    CycleMapping(block, state.BlockComment, amada, context.Table, reader, codes);
    // 12. The block is kept as the last block at step 14, as it is written. Then the Convert
    // block walk's steps 15, 17 and 19 to 34, without the completions of G01 to G03, G06 and
    // the step rule of G65; steps 16 and 18, conditions and jumps, this dialect doesn't have.
    state.UnknownBlock = true;
    if (Has(block, "ENDIF")) state.UnknownBlock = false;
    CompletionSteps(state, block, CompletionContext{context.Settings, mainText, false, true});
    // 13. Unless a subroutine ends here ("RETURN" in the A2 pass): the implicit hit, block
    // skip, word order, SpaceWords and CollapseBlanks.
    if (mainText || !Has(block, "RETURN")) {
        if (state.UnknownBlock) ImplicitHitRule(block, state);
        BlockSkipMarks(block);
        WordOrdering(block, reader, state.OrderingSlots, amada.Scratch);
        SpaceWordsCollapsed(amada.Scratch, block);
    }
    // 14. The block as written, and its comment, are the last block.
    amada.LastBlock = block;
    amada.LastComment = state.BlockComment;
    block += state.BlockComment;
    return block;
}

}  // namespace amada

// ---------------------------------------------------------------------------------------
// Tool comments

// The tool comment table: the description text of a two-letter code and its sizes.
std::string AmadaToolDescription(std::string_view comment) {
    static constexpr struct {
        const char* Code;
        const char* Text;
    } codes[] = {{"RO", "Diameter "}, {"SQ", "Square "},       {"RE", "Rectangle "},     {"OB", "Obround "},
                 {"SD", "Single-D "}, {"DD", "Double-D "},     {"RC", "Radius Corner "}, {"CR", "Corner Radius "},
                 {"TR", "Triangle "}, {"CP", "Centre Punch "}, {"CS", "Counter Sink "},  {"SP", "Special "}};
    std::string text = UpperCase(StripBlanks(comment));
    if (text.size() < 2) return {};
    std::string_view code = std::string_view(text).substr(0, 2);
    // The sizes behind the code, with "Z" put in front, are read behind "Z", "X" and "A".
    std::string sizes = "Z" + text.substr(2);
    ValueReader reader;
    auto size = [&](char letter) { return FormatNumber(reader.WordValue(sizes, letter), -1); };
    for (const auto& entry : codes) {
        if (code != entry.Code) continue;
        std::string out = entry.Text;
        if (code == "RO") return out + size('Z');
        if (code == "SQ") return out + size('Z') + " a" + size('A');
        return out + size('Z') + "x" + size('X') + " a" + size('A');
    }
    return {};
}

ConvertResult AmadaProgram(std::string_view stem, std::int16_t& dialect, const ConvertSettings& settings) {
    TranslationRun run(settings);
    amada::AmadaState amadaState;
    // Numbered as the Convert pass's run order, whose shape this follows.
    // 1. The stem, trimmed.
    run.State.ConvertStem = std::string(Trim(stem));
    // 2. The dialect is the AMADA one; the Convert pass has handed over to this pass.
    dialect = AmadaDialect;
    // 3. Nothing to do here: no dialect detection runs.
    // 4. Main text, subroutine text and the table, by the dialect 2 splitter ("S" words).
    if (!run.Split(true)) return run.Result;
    SubroutineTable table;
    if (!run.ReadTable(table)) return run.Result;
    // 5. Metric, and the default nibbling step (the sheet size stays 0: this dialect's block
    // walk doesn't read one).
    amadaState.AmadaInch = false;
    run.State.NibbleStep = 2.5;
    auto block = [&amadaState](ConvertState& state, const BlockContext& context, std::string_view line) {
        return amada::AmadaBlock(state, amadaState, context, line);
    };
    // 6. The block pass over the main text.
    if (!run.BlockPassFile("A1", "M1", BlockPass::Main, BlockContext{settings, dialect, BlockPass::Main, table}, block))
        return run.Result;
    // 7. The block pass over the subroutines.
    if (!run.BlockPassFile("A2", "M2", BlockPass::Subroutines,
                           BlockContext{settings, dialect, BlockPass::Subroutines, table}, block))
        return run.Result;
    // 8. Calls inside the subroutines are G69.
    if (!run.CallFix()) return run.Result;
    run.Result.NibbleStep = run.State.NibbleStep;
    return run.Result;
}

}  // namespace kirvana

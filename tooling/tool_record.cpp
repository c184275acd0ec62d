#include "tooling/tool_record.h"

#include <array>
#include <cmath>

#include "core/number.h"
#include "core/station_kind.h"
#include "core/text.h"
#include "core/words.h"
#include "tooling/single.h"

namespace kirvana {

namespace {

constexpr std::array<ToolShape, ToolShapeCount> Shapes = {{
    {'A', "DIAMET", "Diameter", 0},
    {'B', "SQUARE", "Square", 1},
    {'C', "RAD-SQ", "Rad-Square", 2},
    {'D', "RECTAN", "Rectangle", 3},
    {'E', "RAD-RE", "Rad-Rect", 4},
    {'F', "OBROUN", "Obround", 5},
    {'G', "SINGLE", "Single-D", 6},
    {'H', "DOUBLE", "Double-D", 7},
    {'I', "CANNON", "Cannon-D", 8},
    {'J', "HEXAGO", "Hexagon", 9},
    {'K', "KEYWAY", "Keyway", 10},
    {'L', "LOUVRE", "Louvre", 11},
    {'M', "CRUCIF", "Cruciform", 12},
    {'S', "SPECIA", "Special", 13},
}};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool HasLetter(std::string_view letters, char c) { return letters.find(c) != std::string_view::npos; }

// Position of the key; for "R" the first R that doesn't start "ROUND".
std::size_t FindKey(std::string_view text, std::string_view key) {
    if (key.empty()) return std::string_view::npos;
    std::size_t pos = FindNoCase(text, key);
    if (key.size() == 1 && UpperChar(key[0]) == 'R') {
        while (pos != std::string_view::npos && FindNoCase(text.substr(pos), "ROUND") == 0)
            pos = FindNoCase(text, key, pos + 1);
    }
    return pos;
}

// The word readers of the value helpers take a letter: the text behind a key is given to
// them behind a letter of their own.
constexpr char KeyMark = 'K';
std::string BehindKey(std::string_view text, std::size_t from) {
    std::string probe(1, KeyMark);
    probe += text.substr(std::min(from, text.size()));
    return probe;
}

// Dimension in the text's unit to millimetres, 3 decimals half to even.
float InchesToMm(float value) { return ToSingle(RoundHalfEven(Number(static_cast<double>(value) * Inch), 3)); }

// A dimension of a description: millimetres to 2 decimals, or inches to 3.
std::string DimensionText(float value, bool showInches) {
    double shown =
        showInches ? RoundHalfEven(Number(static_cast<double>(value) / Inch), 3) : RoundHalfEven(Number(value), 2);
    return FormatNumber(Number(shown), -1);
}

// The angle read from a tool text's rest: behind IDX when it holds one, else behind A.
float AngleOfRest(std::string_view rest) {
    if (FindNoCase(rest, "IDX") != std::string_view::npos) return ToSingle(ValueAfterKey(rest, "IDX"));
    return ToSingle(ValueAfterKey(rest, "A"));
}

}  // namespace

std::string ToolName(std::string_view text) {
    std::string name(text.substr(0, ToolNameWidth));
    name.resize(ToolNameWidth, ' ');
    return name;
}

const ToolShape& ShapeAt(int screenIndex) {
    if (screenIndex < 0 || screenIndex >= ToolShapeCount) return Shapes[ToolShapeCount - 1];
    return Shapes[static_cast<std::size_t>(screenIndex)];
}

const ToolShape* ShapeOfLetter(char letter) {
    for (const auto& shape : Shapes)
        if (shape.Letter == letter) return &shape;
    return nullptr;
}

double ValueAfterKey(std::string_view text, std::string_view key, bool& valueError) {
    // 1, 2. Find the key; the R of ROUND doesn't count.
    std::size_t pos = FindKey(text, key);
    if (pos == std::string_view::npos) {
        valueError = true;
        return 0;
    }
    // 3, 4. Behind the key the plain word reader collects and reads the leading number.
    ValueReader reader;
    double value = reader.WordNumber(BehindKey(text, pos + key.size()), KeyMark);
    valueError = reader.WordMissing;
    return value;
}

double ValueAfterKey(std::string_view text, std::string_view key) {
    bool valueError = false;
    return ValueAfterKey(text, key, valueError);
}

std::int16_t IntegerAfterKey(std::string_view text, std::string_view key, bool& valueError) {
    std::size_t pos = FindKey(text, key);
    if (pos == std::string_view::npos) {
        valueError = true;
        return 0;
    }
    // Behind the key the integer word reader: digits and the first "-", truncated to 16 bits.
    ValueReader reader;
    std::int16_t value = reader.WordInteger(BehindKey(text, pos + key.size()), KeyMark);
    valueError = reader.WordMissing || reader.IntegerOverflow;
    return value;
}

std::int16_t IntegerAfterKey(std::string_view text, std::string_view key) {
    bool valueError = false;
    return IntegerAfterKey(text, key, valueError);
}

bool IsIndexStation(int typeNumber) { return IsFromTwenty(typeNumber); }

bool ParseToolText(std::string_view text, ToolRecord& record, bool fromInches) {
    // 1. Trimmed text, its blank-free upper-case copy, and the shape word.
    const std::string trimmed(Trim(text));
    const std::string upper = UpperCase(StripBlanks(trimmed));
    const std::string word = upper.substr(0, 6);

    char shape = 'S';
    std::string name;
    float d1 = 0, d2 = 0, d3 = 0, d4 = 0, angle = 0;

    // 2. The shapes A to M in their order.
    const ToolShape* found = nullptr;
    for (int i = 0; i < ToolShapeCount - 1 && !found; ++i)
        if (word == Shapes[static_cast<std::size_t>(i)].Word) found = &Shapes[static_cast<std::size_t>(i)];

    if (found) {
        // 3. D1 behind the name, the other keys in the rest behind it.
        shape = found->Letter;
        name = found->Name;
        const std::string key = UpperCase(name);
        d1 = ToSingle(ValueAfterKey(upper, key));
        std::size_t at = upper.find(key);
        const std::string rest = at == std::string::npos ? std::string() : upper.substr(at + key.size());
        if (HasLetter("DEFGHIKL", shape)) d2 = ToSingle(ValueAfterKey(rest, "X"));
        if (HasLetter("KM", shape)) d3 = ToSingle(ValueAfterKey(rest, "W"));
        if (HasLetter("CEM", shape)) d4 = ToSingle(ValueAfterKey(rest, "R"));
        if (HasLetter("ABCJM", shape)) d2 = d1;
        // 4. The angle; a Diameter has none.
        if (shape != 'A') angle = AngleOfRest(rest);
    } else {
        // 5. Special: behind the word SPECIAL, or the whole text; the tail of angle
        // characters at its end is cut off and the rest is the name.
        std::string body =
            word == "SPECIA"
                ? std::string(Trim(std::string_view(trimmed).substr(std::min<std::size_t>(7, trimmed.size()))))
                : trimmed;
        std::size_t start = body.size();
        while (start > 0) {
            char c = UpperChar(body[start - 1]);
            if (IsDigit(c) || c == '.' || c == 'D' || c == 'X') {
                --start;
                continue;
            }
            if (c == 'A' || c == 'I') --start;
            break;
        }
        name = std::string(Trim(std::string_view(body).substr(0, start)));
        d1 = 25;
        d2 = 25;
        angle = AngleOfRest(UpperCase(std::string_view(body).substr(start)));
    }

    // 6. Inches to millimetres; a Special keeps its 25.
    if (fromInches && shape != 'S') {
        d1 = InchesToMm(d1);
        d2 = InchesToMm(d2);
        d3 = InchesToMm(d3);
        d4 = InchesToMm(d4);
    }

    // 7. Valid only with both main dimensions at least 0.5. A number beyond the single range
    // (infinite once stored) makes no tool either: its description could not be read back.
    const bool finite =
        std::isfinite(d1) && std::isfinite(d2) && std::isfinite(d3) && std::isfinite(d4) && std::isfinite(angle);
    if (finite && d1 >= 0.5f && d2 >= 0.5f) {
        record.Valid = TrueWord;
        record.Shape = shape;
        record.Name = ToolName(name);
        record.D1 = d1;
        record.D2 = d2;
        record.D3 = d3;
        record.D4 = d4;
        record.Angle = angle;
        return true;
    }
    record.Valid = FalseWord;
    record.Shape = ' ';
    record.Name = ToolName("");
    record.D1 = record.D2 = record.D3 = record.D4 = 0;
    record.Angle = 0;
    return false;
}

std::string DescribeTool(const ToolRecord& record, bool showInches) {
    // 1. The angle text: "a" or, on an autoindex station, "idx".
    const std::string angle = (IsIndexStation(record.Station) ? "idx" : "a") +
                              FormatNumber(Number(RoundHalfEven(Number(record.Angle), 2)), -1);
    // 2. The dimensions in the unit shown.
    auto d = [&](float value) { return DimensionText(value, showInches); };
    const std::string name(Trim(record.Name));
    // 3. Name, dimensions, angle.
    switch (record.Shape) {
        case 'A':
            return "Diameter " + d(record.D1);
        case 'B':
            return "Square " + d(record.D1) + " " + angle;
        case 'C':
            return "Rad-Square " + d(record.D1) + "r" + d(record.D4) + " " + angle;
        case 'D':
            return "Rectangle " + d(record.D1) + "x" + d(record.D2) + " " + angle;
        case 'E':
            return "Rad-Rect " + d(record.D1) + "x" + d(record.D2) + "r" + d(record.D4) + " " + angle;
        case 'F':
            return "Obround " + d(record.D1) + "x" + d(record.D2) + " " + angle;
        case 'G':
            return "Single-D " + d(record.D1) + "x" + d(record.D2) + " " + angle;
        case 'H':
            return "Double-D " + d(record.D1) + "x" + d(record.D2) + " " + angle;
        case 'I':
            return "Cannon-D " + d(record.D1) + "x" + d(record.D2) + " " + angle;
        case 'J':
            return "Hexagon " + d(record.D1) + " " + angle;
        case 'K':
            return "Keyway " + d(record.D1) + "x" + d(record.D2) + "w" + d(std::fabs(record.D3)) + " " + angle;
        case 'L':
            return "Louvre " + d(record.D1) + "x" + d(record.D2) + " " + angle;
        case 'M':
            return "Cruciform " + d(record.D1) + "w" + d(record.D3) + "r" + d(record.D4) + " " + angle;
        case 'S':
            return "Special " + name + " " + angle;
        case 'P':
            return name;
        default:
            return "";
    }
}

void ClearTool(ToolRecord& record) { record = ToolRecord(); }

void CopyTool(const ToolRecord& source, ToolRecord& target) {
    target.Valid = source.Valid;
    target.Shape = source.Shape;
    target.Name = source.Name;
    target.D1 = source.D1;
    target.D2 = source.D2;
    target.D3 = source.D3;
    target.D4 = source.D4;
    target.Setting = source.Setting;
    target.Station = source.Station;
    target.Angle = source.Angle;
    target.Extra1 = source.Extra1;
    target.Extra2 = source.Extra2;
}

bool SameTool(const ToolRecord& a, const ToolRecord& b) {
    return a.Shape == b.Shape && a.Name == b.Name && a.D1 == b.D1 && a.D2 == b.D2 && a.D3 == b.D3 && a.D4 == b.D4 &&
           a.Angle == b.Angle;
}

ToolRecord PlasmaTool(std::string_view plasmaToolName, std::int16_t typeIndex, std::int16_t typeNumber) {
    ToolRecord tool;
    tool.Valid = TrueWord;
    tool.Shape = 'P';
    tool.Name = ToolName(Trim(plasmaToolName));
    tool.Setting = typeIndex;
    tool.Station = typeNumber;
    tool.Extra2 = 1;
    return tool;
}

}  // namespace kirvana

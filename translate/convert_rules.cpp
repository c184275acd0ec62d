// The rewrite rules of the Convert pass, each a step of its per-block walk: dialect rewrites,
// conditions and jumps, modal fills, the word ordering, the sheet size, comments and skips.
#include "translate/convert_steps.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>

#include "core/names.h"
#include "core/number.h"
#include "core/paths.h"
#include "core/text.h"
#include "translate/amada.h"
#include "translate/amada_steps.h"
#include "translate/convert_steps.h"
#include "translate/line_files.h"
#include "translate/text_search.h"

namespace kirvana {

using namespace convert;

namespace {

// The smaller of two positions, npos counting as absent.
std::size_t Earlier(std::size_t a, std::size_t b) { return a < b ? a : b; }

std::string RightTrim(std::string_view text) {
    std::size_t end = text.size();
    while (end > 0 && (text[end - 1] == ' ' || text[end - 1] == '\t')) --end;
    return std::string(text.substr(0, end));
}

// The text of 1000 times a subroutine number: the label of its first block.
std::string SubroutineLabel(std::int16_t number) { return "N" + LongText(1000 * static_cast<std::int32_t>(number)); }

// A count read as a whole number; below 1 it is 1.
std::string CountText(std::int16_t count) { return IntegerText(count < 1 ? std::int16_t{1} : count); }

// Position of the earliest of two letters, npos when neither stands in the block.
std::size_t FirstOf(std::string_view block, char a, char b) { return Earlier(Find(block, a), Find(block, b)); }

// Where the G77 and the implicit hit rules insert their code, the first four places of their
// search: the first axis word, else the first "C", else the first "R". npos when none of
// these stands in the block; the callers do the fifth place, "T", each in its own way.
std::size_t HitPoint(std::string_view block) {
    std::size_t x = FirstOf(block, 'X', 'H');
    std::size_t y = FirstOf(block, 'Y', 'V');
    // 1. An X or H word: at the Y or V word if that stands first, else at it.
    if (x != npos) return (y != npos && y < x) ? y : x;
    // 2. No X or H: at the Y or V word.
    if (y != npos) return y;
    // 3. No axis word: at the first "C".
    std::size_t c = Find(block, 'C');
    if (c != npos) return c;
    // 4. Else at the first "R".
    return Find(block, 'R');
}

std::string FreeFormat(double value) { return FormatNumber(value, -1); }

// The step text: NibbleStep rounded half to even to two decimals, in free format.
std::string StepText(double nibbleStep) { return FreeFormat(RoundHalfEven(nibbleStep, 2)); }

// The value of the "P8=" word of the block (it must stand there).
double P8Value(std::string_view block, ValueReader& reader) {
    return reader.WordValue(block.substr(block.find("P8=") + 2), '=');
}

}  // namespace

namespace convert {

// ---------------------------------------------------------------------------------------
// Subroutine table

void SubroutineTable::Read(std::string_view fileText) {
    entries_.clear();
    // The fields of the file in order: separated by commas and by line ends, each trimmed.
    std::vector<std::string_view> fields;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= fileText.size(); ++i) {
        if (i == fileText.size() || fileText[i] == ',' || fileText[i] == '\n') {
            std::string_view field = fileText.substr(start, i - start);
            if (!field.empty() && field.back() == '\r') field.remove_suffix(1);
            if (!(i == fileText.size() && start == i && !fields.empty())) fields.push_back(Trim(field));
            start = i + 1;
        }
    }
    for (std::size_t k = 0; k + 1 < fields.size(); k += 2) {
        std::string name(fields[k]);
        if (k == 0) name = UpperCase(name);
        if (name.empty() || name == "******") break;
        std::int16_t number = TruncateToInt16(ToNumber(fields[k + 1])).value_or(0);
        entries_.emplace_back(std::move(name), number);
    }
}

std::int16_t SubroutineTable::SubroutineNumber(std::string_view name) const {
    std::string key = UpperCase(Trim(name));
    for (const auto& [entryName, number] : entries_)
        if (entryName == key) return number;
    return -1;
}

// ---------------------------------------------------------------------------------------
// Dialect detection

void DialectDetector::Line(std::string_view line) {
    // A line is tested only once the next one has been read: the last line never counts.
    if (havePending_ && !found_) {
        std::string up = UpperCase(Trim(pending_));
        if (Has(up, '!')) {
            // 1. A "!" comment.
            found_ = true;
            answer_ = BangDialect;
        } else if (Has(up, '(') && !Has(up, "ID,PROG")) {
            // 2. A bracket that doesn't open a program.
            found_ = true;
            answer_ = BracketDialect;
        } else {
            // 3. A code of the bracket dialect's own.
            for (const char* code : {"G66", "G65", "G64", "G63", "G62", "G61"}) {
                if (Has(up, code)) {
                    found_ = true;
                    answer_ = BracketDialect;
                    break;
                }
            }
        }
    }
    pending_.assign(line);
    havePending_ = true;
}

std::string SubroutineName(std::string_view line) {
    std::size_t at = FindNoCase(line, "SUB,");
    if (at == npos) return {};
    std::string_view rest = line.substr(at + 4);
    return std::string(Trim(rest.substr(0, rest.find_first_of(",)"))));
}

// ---------------------------------------------------------------------------------------
// Dialect rewrites

// The dialect rewrite table for dialects 0 and 1, row by row in its order, each row seeing the
// block as the rows before left it.
std::string DialectRewritePlain(std::string_view block, const SubroutineTable& table, ValueReader& reader) {
    // Every form starts with "(": a block without one stays as it is.
    if (!Has(block, '(')) return std::string(block);
    std::string text(block);
    std::string up = UpperCase(text);
    // Puts `front` before the block and `middle` in front of its first "(".
    auto rewrite = [&](const std::string& front, const std::string& middle) {
        std::size_t p = up.find('(');
        text = front + text.substr(0, p) + middle + text.substr(p);
        up = UpperCase(text);
    };
    auto number = [&]() { return IntegerText(table.SubroutineNumber(SubroutineName(text))); };

    if (Has(up, "(MSG,")) rewrite("", "! ");
    if (Has(up, "(END,PROG") || Has(up, "(ID,PROG,")) rewrite("", "! ");
    bool call = Has(up, "(PSUB,") || Has(up, "(GSUB,");
    if (call && Has(up, "G98")) rewrite("", " S" + number() + " ! ");
    call = Has(up, "(PSUB,") || Has(up, "(GSUB,");
    if (call && Has(up, "G68")) rewrite("", " S" + number() + " ! ");
    call = Has(up, "(PSUB,") || Has(up, "(GSUB,");
    if (call && !Has(up, "G98") && !Has(up, "G68")) {
        std::size_t p0 = up.find("P0=");
        std::int16_t count = p0 == npos ? 0 : reader.WordInteger(std::string_view(text).substr(p0 + 2), '=');
        rewrite("", " G68 S" + number() + " Q" + CountText(count) + " ! ");
    }
    if (Has(up, "(ID,PSUB,") || Has(up, "(ID,GSUB,"))
        rewrite(SubroutineLabel(table.SubroutineNumber(SubroutineName(text))) + " ", "! ");
    if (Has(up, "(END,GSUB") || Has(up, "(END,PSUB")) rewrite("", "RETURN ! ");
    return text;
}

namespace {

// The dialect 2 rewrite: a call ("C"), else a subroutine's first block ("S"); then the end of
// a subroutine ("ENDSUB"). `reader` is null when calls are left as they stand.
std::string RewriteBracket(std::string_view line, const SubroutineTable& table, ValueReader* reader) {
    std::size_t paren = line.find('(');
    std::string code = RightTrim(line.substr(0, paren));
    std::string comment = paren == npos ? std::string() : RightTrim(line.substr(paren));
    std::string upCode = UpperCase(code);
    std::size_t c = upCode.find('C');
    std::size_t s = upCode.find('S');
    if (reader != nullptr && c != npos) {
        // A call: the code in front of the "C", the modal codes it lost, then the call.
        std::string name = DigitsAfter(code, c);
        std::int16_t number = table.SubroutineNumber(name);
        std::int16_t count = reader->WordInteger(code, 'B');
        std::string newCode = code.substr(0, c);
        std::string upNew = UpperCase(newCode);
        for (const char* word :
             {"G00", "G10", "G11", "G12", "G13", "G70", "G71", "G90", "G91", "M00", "M20", "M50", "M60", "M75"}) {
            if (Has(upCode, word) && !Has(upNew, word)) {
                newCode += ' ';
                newCode += word;
            }
        }
        newCode += " G68 S" + IntegerText(number) + " Q" + CountText(count) + " (" + name + ")";
        code = std::move(newCode);
    } else if (s != npos) {
        // The first block of a subroutine: its label, and its name as a comment.
        std::string name = DigitsAfter(code, s);
        code = SubroutineLabel(table.SubroutineNumber(name)) + " " + code.substr(0, s) + " (" + name + ")";
    }
    if (FindNoCase(comment, "ENDSUB") != npos) code = "RETURN";
    return code + comment;
}

}  // namespace

std::string DialectRewriteBracket(std::string_view line, const SubroutineTable& table, ValueReader& reader) {
    return RewriteBracket(line, table, &reader);
}

std::string SubroutineRewriteBracket(std::string_view line, const SubroutineTable& table) {
    return RewriteBracket(line, table, nullptr);
}

// ---------------------------------------------------------------------------------------
// Conditions and jumps

bool PositionTest(std::string_view block, std::string_view word, std::string_view excluded) {
    std::size_t w = Find(block, word);
    std::size_t e = Find(block, excluded);
    long long wordAt = w == npos ? 0 : static_cast<long long>(w) + 1;
    long long excludedAt = e == npos ? 0 : static_cast<long long>(e) + 1;
    return (wordAt & ~excludedAt) != 0;
}

namespace {

// Takes out the first "N" behind the first "GOTO" and trims what follows it.
void DropJumpN(std::string& block) {
    std::size_t g = Find(block, "GOTO");
    if (g == npos) return;
    std::size_t n = block.find('N', g);
    if (n == npos) return;
    block = block.substr(0, n) + std::string(Trim(std::string_view(block).substr(n + 1)));
}

}  // namespace

std::string ConditionRewrite(std::string_view block) {
    std::size_t p = Find(block, "IF");
    if (p == npos) return std::string(block);
    // 1. The prefix in front of "IF".
    std::string prefix(Trim(block.substr(0, p)));
    // 2. The jump keyword and where the condition ends (1-based positions, as the lengths count).
    std::string keyword, target;
    long long end;
    std::size_t g = Find(block, "GOTO");
    std::size_t a = Find(block, "ABORT");
    if (g != npos) {
        keyword = "GOTO";
        target = Trim(block.substr(g + 4));
        end = static_cast<long long>(g) + 1;
    } else if (a != npos) {
        keyword = "ABORT";
        end = static_cast<long long>(a) + 1;
    } else {
        end = static_cast<long long>(block.size());
    }
    // 3. The condition: from behind "IF" for end - (p + 2) characters. A negative length has
    // no meaning (a block that ends in "ENDIF"): such a block stays as it is.
    long long start = static_cast<long long>(p) + 1 + 2;
    long long length = end - start;
    if (length < 0) return std::string(block);
    std::string condition;
    if (static_cast<std::size_t>(start - 1) < block.size())
        condition = Trim(block.substr(static_cast<std::size_t>(start - 1), static_cast<std::size_t>(length)));
    // 4. With no target, a target behind the condition's last ")".
    if (target.empty() && condition.starts_with('(') && !condition.ends_with(')')) {
        std::size_t close = condition.rfind(')');
        if (close != npos) {
            target = Trim(std::string_view(condition).substr(close + 1));
            condition = std::string(Trim(std::string_view(condition).substr(0, close + 1)));
        }
    }
    // 5. Parentheses around the whole block.
    if (prefix.ends_with('(')) prefix = Trim(std::string_view(prefix).substr(0, prefix.size() - 1));
    if (target.ends_with(')')) target = Trim(std::string_view(target).substr(0, target.size() - 1));
    // 6. The condition stands in parentheses; each test wraps on its own.
    if (!condition.starts_with('(')) condition = "(" + condition + ")";
    if (!condition.ends_with(')')) condition = "(" + condition + ")";
    // 7. The internal operators.
    ReplaceFirst(condition, "<>", "!=");
    ReplaceFirst(condition, "<=", "!>");
    ReplaceFirst(condition, ">=", "!<");
    // 8. The fixed form.
    std::string out = prefix + " IF " + condition + " " + keyword + " " + target;
    // 9. The jump has no "N".
    DropJumpN(out);
    return out;
}

// The jump rewrite: the first of the four forms of "GOTO", unbracketed, without its "N".
std::string JumpRewrite(std::string_view block) {
    std::size_t at = npos;
    for (const char* form : {"(  GOTO", "( GOTO", "(GOTO", "GOTO"}) {
        at = Find(block, form);
        if (at != npos) break;
    }
    if (at == npos) return std::string(block);
    std::string prefix(Trim(block.substr(0, at)));
    std::string rest(Trim(block.substr(at)));
    if (rest.starts_with('(')) rest = Trim(std::string_view(rest).substr(1));
    if (rest.ends_with(')')) rest = Trim(std::string_view(rest).substr(0, rest.size() - 1));
    std::string out = prefix + " " + rest;
    DropJumpN(out);
    return out;
}

// ---------------------------------------------------------------------------------------
// Fills and rules

// The P fill: each "P" number "=" of the range that the block lacks, in rising order.
void ParameterFill(std::string& block, int first, int last, std::string_view value) {
    // One walk finds the numbers 1 to 127 whose "P" number "=" stands in the block: a "P", its
    // digits (no leading zero) and "=". The words added below hold other numbers only.
    bool present[128] = {};
    for (std::size_t i = 0; i < block.size(); ++i) {
        if (block[i] != 'P') continue;
        std::size_t end = i + 1;
        int number = 0;
        while (end < block.size() && IsDigit(block[end]) && end - i <= 3) number = number * 10 + (block[end++] - '0');
        if (end > i + 1 && end - i <= 4 && block[i + 1] != '0' && end < block.size() && block[end] == '=' &&
            number < 128)
            present[number] = true;
    }
    block.reserve(block.size() + static_cast<std::size_t>(last - first + 1) * (6 + value.size()));
    char word[16] = {'P'};
    for (int number = first; number <= last; ++number) {
        char* end = std::to_chars(word + 1, word + sizeof word - 1, number).ptr;
        *end++ = '=';
        std::string_view text(word, static_cast<std::size_t>(end - word));
        if (number >= 1 && number < 128 ? present[number] : Has(block, text)) continue;
        block += ' ';
        block += text;
        block += value;
    }
}

// The step fill: a nibbling block without a step gets NibbleStep; one with a step sets it.
void StepFill(std::string& block, ConvertState& state) {
    if (Has(block, "P9=") || Has(block, "P7=")) return;
    if (!Has(block, "P8="))
        block += " P8=" + StepText(state.NibbleStep);
    else
        state.NibbleStep = P8Value(block, state.Reader);
}

// The G65 step rule: "R" is the step; a G65 block always leaves with a P8.
void G65StepRule(std::string& block, ConvertState& state) {
    ReplaceFirst(block, "R", "P8=");
    if (Has(block, "P8="))
        state.NibbleStep = P8Value(block, state.Reader);
    else
        block += " P8=" + StepText(state.NibbleStep);
}

namespace {

bool HasAxis(std::string_view block) {
    return Has(block, 'X') || Has(block, 'Y') || Has(block, 'H') || Has(block, 'V');
}

}  // namespace

// The modal fill for G01, G02, G03: the code behind a block of axis words that no other code
// claims, and the code becomes the modal move.
void ModalFillMotion(std::string& block, int code, ConvertState& state) {
    CodeIndex& codes = state.Codes;
    codes.Build(block);
    for (int other = 1; other <= 3; ++other)
        if (other != code && codes.Has(block, MotionCode(other))) return;
    for (std::string_view word : {"G00", "G103", "G102", "G101", "G04", "G92", "G56", "G53", "M60", "M50"})
        if (codes.Has(block, word)) return;
    if (!HasAxis(block)) return;
    if (!Has(block, MotionCode(code))) block += MotionCode(code);
    state.MotionMode = static_cast<std::int16_t>(code);
    state.ArcMode = 0;
}

// The modal fill for G101, G102, G103.
void ModalFillArc(std::string& block, int code, ConvertState& state, const ConvertSettings& settings) {
    CodeIndex& codes = state.Codes;
    codes.Build(block);
    for (std::string_view word : {"G00", "G01", "G02", "G03", "G04", "G92", "G56", "G53", "M60", "M50"})
        if (codes.Has(block, word)) return;
    for (int other = 1; other <= 3; ++other)
        if (other != code && codes.Has(block, ArcCode(other))) return;
    if (!HasAxis(block)) return;
    // 1. The code goes in front of the first axis word.
    if (!Has(block, ArcCode(code))) {
        std::size_t axis = Earlier(FirstOf(block, 'X', 'H'), FirstOf(block, 'Y', 'V'));
        block.insert(axis, std::string(" ") + ArcCode(code) + " ");
    }
    // 2. The arc sense and centre as the profiler takes them.
    if (code != 1) {
        if (settings.ProfilerArcSwap) ReplaceFirst(block, ArcCode(code), ArcCode(code == 2 ? 3 : 2));
        if (settings.ProfilerArcCentre) RewriteCentre(block, state.Reader);
    }
    // 3. G103 leaves the arc mode at 2 as G102 does.
    state.MotionMode = 0;
    state.ArcMode = code == 1 ? 1 : 2;
}

// The I and J rewrite: both change sign, copied character by character with the copy flag.
void RewriteCentre(std::string& block, ValueReader& reader) {
    std::string i = FreeFormat(0 - reader.WordValue(block, 'I'));
    std::string j = FreeFormat(0 - reader.WordValue(block, 'J'));
    std::string out;
    out.reserve(block.size() + 16);
    bool copy = true;
    for (char c : block) {
        if (c == 'I' || c == 'J') {
            out += c;
            out += c == 'I' ? i : j;
            out += ' ';
            copy = false;
            continue;
        }
        if (!(c == ' ' || c == '-' || c == '.' || IsDigit(c))) copy = true;
        if (copy) out += c;
    }
    block = std::move(out);
}

// The G77 rule, in punch mode only: " G80 " at the first place of the search, then the G77 out.
void G77Rule(std::string& block, const ConvertState& state) {
    if (state.ProfilerMode) return;
    // 1 to 4. An axis word, "C" or "R".
    std::size_t at = HitPoint(block);
    // 5. Else the first "T".
    if (at == npos) at = Find(block, 'T');
    if (at != npos) block.insert(at, " G80 ");
    ReplaceFirst(block, "G77", "");
}

// The implicit hit rule, in punch mode only: the G77 rule's search, inserting " G81 ".
void ImplicitHitRule(std::string& block, const ConvertState& state) {
    if (state.ProfilerMode) return;
    // 1 to 4. An axis word, "C" or "R".
    std::size_t at = HitPoint(block);
    if (at != npos) {
        block.insert(at, " G81 ");
        return;
    }
    // 5. Else the first "T" gets " G80 " instead: a tool selection alone never hits.
    at = Find(block, 'T');
    if (at != npos) block.insert(at, " G80 ");
}

namespace {

void TrimInPlace(std::string& text) {
    std::string_view trimmed = Trim(text);
    if (trimmed.size() == text.size()) return;
    std::size_t front = static_cast<std::size_t>(trimmed.data() - text.data());
    text.erase(front + trimmed.size());
    text.erase(0, front);
}

// The whole number read from the "P" at `at`. A plain run of up to four digits ended by
// anything but a sign is read here directly; every other form goes to the integer reader.
int ParameterNumber(std::string_view block, std::size_t at, ValueReader& reader) {
    std::size_t end = at + 1;
    while (end < block.size() && end - at <= 4 && IsDigit(block[end])) ++end;
    std::size_t digits = end - at - 1;
    bool plain = digits > 0 && digits <= 4 &&
                 (end == block.size() || (!IsDigit(block[end]) && block[end] != '+' && block[end] != '-'));
    if (!plain) return reader.WordInteger(block.substr(at), 'P');
    int number = 0;
    for (std::size_t i = at + 1; i < end; ++i) number = number * 10 + (block[i] - '0');
    return number;
}

// The word ordering table: the group a character goes to, and the group that is current
// behind it.
int OrderingSlot(std::string_view block, std::size_t i, int current, ValueReader& reader) {
    char c = block[i];
    switch (c) {
        case 'N':
            return 1;
        case 'G':
            return 2;
        case 'T':
        case 'S':
            return 4;
        case 'M':
            return 5;
        case 'P':
            return ParameterNumber(block, i, reader) < 13 ? 6 : current;
        default:
            return (c >= 'A' && c <= 'Z') ? 3 : current;
    }
}

// "GOTO", "ENDIF" or "IF" in the block, found in one walk ("ENDIF" holds "IF").
bool HasJumpWord(std::string_view block) {
    for (std::size_t i = 0; i + 1 < block.size(); ++i) {
        if (block[i] == 'I' && block[i + 1] == 'F') return true;
        if (block[i] == 'G' && block.substr(i, 4) == "GOTO") return true;
    }
    return false;
}

// Cuts each listed code out of the group and puts it in front, the last moved standing first.
void CodesToFront(std::string& slot, std::initializer_list<std::string_view> codes) {
    if (slot.empty()) return;
    for (std::string_view word : codes) {
        std::size_t at = Find(slot, word);
        if (at == npos) continue;
        slot.erase(at, word.size());
        slot.insert(0, 1, ' ');
        slot.insert(0, word);
        TrimInPlace(slot);
    }
}

}  // namespace

std::string WordOrdering(std::string_view block, ValueReader& reader) {
    std::string slots[8];
    return WordOrdering(block, reader, slots);
}

std::string WordOrdering(std::string_view block, ValueReader& reader, std::string (&slots)[8]) {
    std::string out;
    WordOrdering(block, reader, slots, out);
    return out;
}

// The word ordering: each character to its slot by the table, then steps 1 to 4.
void WordOrdering(std::string_view block, ValueReader& reader, std::string (&slots)[8], std::string& out) {
    // A block of a condition or a jump stays as it is.
    if (HasJumpWord(block)) {
        out.assign(block);
        return;
    }
    for (std::string& slot : slots) slot.clear();
    // Each character to its group; runs of characters of one group are copied at once.
    int current = 0;
    std::size_t runStart = 0;
    for (std::size_t i = 0; i < block.size(); ++i) {
        if (block[i] < 'A' || block[i] > 'Z') continue;  // only a letter can start a group
        int next = OrderingSlot(block, i, current, reader);
        if (next != current) {
            slots[current].append(block.substr(runStart, i - runStart));
            runStart = i;
            current = next;
        }
    }
    slots[current].append(block.substr(runStart));
    // 1, 2. The listed G and M codes to the front of their groups.
    CodesToFront(slots[2], {"G53", "G91", "G90", "G71", "G70"});
    CodesToFront(slots[5], {"M30", "M99", "M01", "M00", "M87", "M50", "M60", "M13", "M12", "M11", "M10"});
    // 3. The block-skip word to a group of its own.
    for (std::string_view skip : {std::string_view("M875=1"), std::string_view("M875=2")}) {
        std::size_t at = Find(slots[5], skip);
        if (at == npos) continue;
        slots[5].erase(at, skip.size());
        slots[7] = skip;
    }
    // 4. N, skip, P words below 13, G, axis and other words, T and S, M.
    out.clear();
    out.reserve(block.size() + 16);
    out += slots[0];
    out += slots[1];
    for (int slot : {7, 6, 2, 3, 4, 5}) {
        out += ' ';
        out += slots[slot];
    }
    TrimInPlace(out);
}

std::optional<std::pair<float, float>> SheetSize(std::string_view comment) {
    std::string text = UpperCase(StripBlanks(comment));
    std::size_t sheet = text.find("SHEET");
    if (sheet == npos) return std::nullopt;
    std::size_t colon = text.find(':', sheet + 5);
    if (colon == npos) return std::nullopt;
    std::string_view rest = std::string_view(text).substr(colon + 1);
    auto numberAt = [&](std::size_t at) {
        return at < rest.size() && (IsDigit(rest[at]) || rest[at] == '.' || rest[at] == '-' || rest[at] == '+');
    };
    double x = 0, y = 0;
    bool found = false;
    std::size_t px = rest.find('X');
    std::size_t py = px == npos ? npos : rest.find('Y', px + 1);
    if (px != npos && py != npos && numberAt(px + 1) && numberAt(py + 1)) {
        // "X" and "Y", each followed by a number.
        x = ToNumber(rest.substr(px + 1));
        y = ToNumber(rest.substr(py + 1));
        found = true;
    }
    if (!found) {
        px = rest.find("X=");
        py = px == npos ? npos : rest.find("Y=", px + 2);
        if (px != npos && py != npos) {
            x = ToNumber(rest.substr(px + 2));
            y = ToNumber(rest.substr(py + 2));
            found = true;
        }
    }
    if (!found && numberAt(0) && !Has(rest, 'Y')) {
        // "2500X1250": a number, "X", a number.
        std::size_t i = 0;
        if (rest[i] == '-' || rest[i] == '+') ++i;
        while (i < rest.size() && (IsDigit(rest[i]) || rest[i] == '.')) ++i;
        if (i < rest.size() && rest[i] == 'X' && numberAt(i + 1)) {
            x = ToNumber(rest);
            y = ToNumber(rest.substr(i + 1));
            found = true;
        }
    }
    if (!found) return std::nullopt;
    float sheetX = static_cast<float>(x);
    float sheetY = static_cast<float>(y);
    if (!(sheetX > 0) || !(sheetY > 0)) return std::make_pair(0.0f, 0.0f);
    return std::make_pair(sheetX, sheetY);
}

// ---------------------------------------------------------------------------------------
// The block pass

// Ahead of each block pass: the three modal values cleared; the main text's pass clears its
// running sequence count.
void StartBlockPass(ConvertState& state, BlockPass pass) {
    state.MotionMode = 0;
    state.ArcMode = 0;
    state.ProfilerMode = false;
    if (pass == BlockPass::Main) state.SequenceCount = 0;
}

// Every run of blanks becomes one blank, in place.
void CollapseBlanksInPlace(std::string& text) {
    std::size_t out = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == ' ' && out > 0 && text[out - 1] == ' ') continue;
        text[out++] = text[i];
    }
    text.resize(out);
}

// Step 4 of the block walk: splits the comment off the block (the dialect's mark, else ";")
// and trims the block.
void SplitComment(std::string& block, std::string& comment, std::int16_t dialect) {
    char mark = dialect == BangDialect ? '!' : dialect == BracketDialect ? '(' : ';';
    std::size_t at = block.find(mark);
    bool bracket = dialect == BracketDialect;
    if (at == npos && mark != ';') {
        at = block.find(';');
        bracket = false;
    }
    if (at == npos) {
        comment.clear();
        TrimInPlace(block);
        return;
    }
    std::string_view after = std::string_view(block).substr(at + 1);
    if (bracket) after = after.substr(0, after.find(')'));
    comment = " ;";
    comment += Trim(after);
    block.resize(at);
    TrimInPlace(block);
}

// Step 37 of the block walk: a doubled skip mark (slash or backslash) is M875=2, a single
// one M875=1.
void BlockSkipMarks(std::string& block) {
    if (block.starts_with("//") || block.starts_with("\\\\")) {
        block = std::string(Trim(std::string_view(block).substr(2))) + " M875=2";
    } else if (block.starts_with('/') || block.starts_with('\\')) {
        block = std::string(Trim(std::string_view(block).substr(1))) + " M875=1";
    }
}

}  // namespace convert

}  // namespace kirvana

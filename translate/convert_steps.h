// The pieces of the Convert pass: its modal state, the per-block function and the rewrite
// rules it applies. Internal to the pass; declared here so that each rule can be tested alone.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/words.h"
#include "translate/code_index.h"
#include "translate/convert.h"

namespace kirvana::convert {

// Dialect codes of a part program.
inline constexpr std::int16_t PlainDialect = 0;
inline constexpr std::int16_t BangDialect = 1;
inline constexpr std::int16_t BracketDialect = 2;
inline constexpr std::int16_t AmadaDialect = 5;

// The subroutine table as read back from the "sbs" file.
class SubroutineTable {
public:
    // Reads "name, number" fields up to an empty name, "******" or the end of the text.
    // The first name read is upper-cased and trimmed, later names only trimmed.
    void Read(std::string_view fileText);
    // The number of the first entry equal to the upper-cased, trimmed key, or -1.
    std::int16_t SubroutineNumber(std::string_view name) const;

private:
    std::vector<std::pair<std::string, std::int16_t>> entries_;
};

// Which text the block pass works on.
enum class BlockPass { Main, Subroutines };  // A1 -> M1, A2 -> M2

// The pass's state for one run, with the names the system gives it.
struct ConvertState {
    ConvertState() = default;
    ConvertState(const ConvertState&) = delete;
    ConvertState& operator=(const ConvertState&) = delete;

    std::string ConvertStem;
    std::string SourceLine;
    std::string BlockComment;
    std::string BlockBeforeMotion;
    bool UnknownBlock = false;
    double NibbleStep = 2.5;  // kept across both block passes
    float SheetX = 0;
    float SheetY = 0;
    std::int16_t MotionMode = 0;     // 0 none, 1 G01, 2 G02, 3 G03
    std::int16_t ArcMode = 0;        // 0 none, 1 G101, 2 G102 (G103 leaves 2 as well)
    bool ProfilerMode = false;       // between M100 and M101
    std::int16_t SequenceCount = 0;  // running block count of the A1 pass
    ProgramParameters Parameters;    // P values the readers see (never assigned by this pass)
    ValueReader Reader{&Parameters};
    CodeIndex Codes;               // search aid, no state of the pass
    std::string OrderingSlots[8];  // work space of the word ordering
};

// What the per-block function needs besides the state.
struct BlockContext {
    const ConvertSettings& Settings;
    std::int16_t Dialect;
    BlockPass Pass;
    const SubroutineTable& Table;
};

// What the completion steps need to know about the block's pass.
struct CompletionContext {
    const ConvertSettings& Settings;
    bool MainText;  // the A1 pass
    bool Bracket;   // dialect 2: G01 to G03 are not modal
    bool Amada;     // the AMADA dialect: no G01 to G03, no G06, no step rule on G65
};

// The steps from the copy taken before the motion steps to the G77 rule (19 to 34): modal
// moves, the fills of every code and the flag UnknownBlock. The code index of the state must
// describe the block on entry.
void CompletionSteps(ConvertState& state, std::string& block, const CompletionContext& context);
// The codes of the modal motion and arc modes 1 to 3.
inline const char* MotionCode(int code) { return code == 1 ? "G01" : code == 2 ? "G02" : "G03"; }
inline const char* ArcCode(int code) { return code == 1 ? "G101" : code == 2 ? "G102" : "G103"; }
// Every run of blanks becomes one blank, in place.
void CollapseBlanksInPlace(std::string& text);
// Splits the comment off the block: the dialect's mark, else ";".
void SplitComment(std::string& block, std::string& comment, std::int16_t dialect);
// A leading "//" or "\\" becomes " M875=2" at the end, a leading "/" or "\" " M875=1".
void BlockSkipMarks(std::string& block);

// The sequence word of a main-text block (the Convert pass and the AMADA pass alike): an N word
// sets the running count; a block without one gets the next count written in front as "N" and
// four digits. A count beyond 16 bits sets the reader's overflow.
void SequenceStep(ConvertState& state, std::string& block);

// Clears the modal values at the start of a block pass (and the running count for A1).
void StartBlockPass(ConvertState& state, BlockPass pass);
// One line of A1 or A2 to one line of M1 or M2: the forty steps.
std::string ConvertBlock(ConvertState& state, const BlockContext& context, std::string_view line);

// Dialect detection over the lines of a program; the last line is never tested.
class DialectDetector {
public:
    void Line(std::string_view line);  // call for every line in order
    bool Found() const { return found_; }
    std::int16_t Dialect() const { return found_ ? answer_ : PlainDialect; }

private:
    std::string pending_;
    bool havePending_ = false;
    bool found_ = false;
    std::int16_t answer_ = PlainDialect;
};

// The name of a subroutine in dialects 0 and 1: behind "SUB,", trimmed, up to "," or ")".
std::string SubroutineName(std::string_view line);

// Rewrites before the comment is split off.
std::string DialectRewritePlain(std::string_view block, const SubroutineTable& table, ValueReader& reader);
std::string DialectRewriteBracket(std::string_view line, const SubroutineTable& table, ValueReader& reader);
// The same without the "C" call form: the start and the end of a subroutine only.
std::string SubroutineRewriteBracket(std::string_view line, const SubroutineTable& table);
// The fixed forms "IF (...) GOTO n" and "GOTO n". A condition whose length comes out negative
// (a block ending in "ENDIF") leaves the block unchanged.
std::string ConditionRewrite(std::string_view block);
std::string JumpRewrite(std::string_view block);
// The bitwise position test of "IF"/"GOTO" against an excluding word (1-based positions).
bool PositionTest(std::string_view block, std::string_view word, std::string_view excluded);

// The fills and rules of the motion steps.
void ParameterFill(std::string& block, int first, int last, std::string_view value);
void StepFill(std::string& block, ConvertState& state);
void G65StepRule(std::string& block, ConvertState& state);
void ModalFillMotion(std::string& block, int code, ConvertState& state);
void ModalFillArc(std::string& block, int code, ConvertState& state, const ConvertSettings& settings);
void RewriteCentre(std::string& block, ValueReader& reader);
void G77Rule(std::string& block, const ConvertState& state);
void ImplicitHitRule(std::string& block, const ConvertState& state);
std::string WordOrdering(std::string_view block, ValueReader& reader);
std::string WordOrdering(std::string_view block, ValueReader& reader, std::string (&slots)[8]);
// The same, written to `out` (which must not be the block).
void WordOrdering(std::string_view block, ValueReader& reader, std::string (&slots)[8], std::string& out);

// A sheet size given in a comment, or nothing.
std::optional<std::pair<float, float>> SheetSize(std::string_view comment);

}  // namespace kirvana::convert

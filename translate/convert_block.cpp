// The per-block walk of the Convert pass: one line of A1 or A2 to one line of M1 or M2, and the
// completion steps it shares with the AMADA dialect pass.
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

namespace kirvana::convert {

// Step 7 of the block walk, main text only: the sequence word (the AMADA dialect's step 2 too).
void SequenceStep(ConvertState& state, std::string& block) {
    if (Has(block, 'N')) {
        state.SequenceCount = state.Reader.WordInteger(StripBlanks(block), 'N');
        return;
    }
    if (state.SequenceCount == std::numeric_limits<std::int16_t>::max())
        state.Reader.IntegerOverflow = true;
    else
        ++state.SequenceCount;
    block.insert(0, "N" + ZeroPad(state.SequenceCount, 4) + " ");
}

// Steps 19 to 34 of the block walk: the motion steps and the completion of each code. Every
// test runs, in this order, on the block as the steps before left it.
void CompletionSteps(ConvertState& state, std::string& block, const CompletionContext& context) {
    CodeIndex& codes = state.Codes;
    // (Each search of a constant code is inlined as the test of one bit.)
    auto hasAny = [&](auto... words) { return (codes.Has(block, words) || ...); };
    auto changed = [&]() { codes.Build(block); };
    // 19. The block as it stands before the motion steps.
    state.BlockBeforeMotion = block;
    const std::string& before = state.BlockBeforeMotion;
    // (Without "G10" it holds neither "G102" nor "G103": the index answers that for it now.)
    const bool beforeHasG10 = codes.Has(block, "G10");
    const bool amada = context.Amada;
    const bool mainText = context.MainText;
    const bool bracket = context.Bracket;
    // 20. Cycles and repositioning end the modal moves.
    if (hasAny("G95", "G66", "G65", "G64", "G37", "G36", "G28", "G26")) {
        state.MotionMode = 0;
        state.ArcMode = 0;
    }
    // 21. Positioning at speed ends them too.
    if (codes.Has(block, "G00")) {
        state.MotionMode = 0;
        state.ArcMode = 0;
        state.UnknownBlock = false;
    }
    // 22 to 24. Nibbling lines and arcs, given or modal: code, step and P6, P8. The AMADA
    // dialect has no nibbling codes G01 to G03: its linear and arc codes are profile moves.
    for (int code = 1; code <= 3 && !amada; ++code) {
        bool given = code == 1 ? codes.Has(block, "G01") : Has(before, MotionCode(code));
        if (!(given || (state.MotionMode == code && !bracket))) continue;
        ModalFillMotion(block, code, state);
        StepFill(block, state);
        ParameterFill(block, 6, 6, "-999");
        ParameterFill(block, 8, 8, "-999");
        changed();
        state.UnknownBlock = false;
    }
    // 25. Profile lines and arcs, given or modal.
    for (int code = 1; code <= 3; ++code) {
        bool given = code == 1 ? codes.Has(block, "G101") : beforeHasG10 && Has(before, ArcCode(code));
        if (!(given || state.ArcMode == code)) continue;
        ModalFillArc(block, code, state, context.Settings);
        changed();
        state.UnknownBlock = false;
    }
    // 26. Dwell.
    if (codes.Has(block, "G04")) state.UnknownBlock = false;
    // 27. The card's macro block gets its parameters (not in the AMADA dialect).
    if (!amada && codes.Has(block, "G06")) {
        if (mainText) {
            ParameterFill(block, 11, 19, "-999");
            ParameterFill(block, 101, 110, "-999");
        } else {
            ParameterFill(block, 1, 9, "-999");
        }
        changed();
        state.UnknownBlock = false;
    }
    // 28. Grid, arc and nibbling patterns get their cycle parameters.
    if (codes.Has(block, "G26")) {
        ParameterFill(block, 1, 9, "-999");
        ParameterFill(block, 10, 11, "0");
        changed();
        state.UnknownBlock = false;
    }
    if (codes.Has(block, "G28")) {
        ParameterFill(block, 1, 10, "-999");
        changed();
        state.UnknownBlock = false;
    }
    if (codes.Has(block, "G36")) {
        StepFill(block, state);
        ParameterFill(block, 1, 9, "-999");
        ParameterFill(block, 10, 11, "0");
        changed();
        state.UnknownBlock = false;
    }
    if (codes.Has(block, "G37")) {
        StepFill(block, state);
        ParameterFill(block, 1, 10, "-999");
        changed();
        state.UnknownBlock = false;
    }
    // 29. Circle and row of hits; the nibbled rectangle gets its step.
    if (codes.Has(block, "G64") || codes.Has(block, "G66")) state.UnknownBlock = false;
    if (codes.Has(block, "G65")) {
        // The AMADA rectangle has its P8 from the G67 rewrite.
        if (!amada) {
            G65StepRule(block, state);
            changed();
        }
        state.UnknownBlock = false;
    }
    // 30. Calls get their P10, the grid call its parameters.
    if (codes.Has(block, "G68") || codes.Has(block, "G69")) {
        ParameterFill(block, 10, 10, "1");
        changed();
        state.UnknownBlock = false;
    }
    if (codes.Has(block, "G98")) {
        ParameterFill(block, 1, 9, "-999");
        ParameterFill(block, 10, 11, "1");
        changed();
        state.UnknownBlock = false;
    }
    // 31. Codes that are known and need nothing more.
    if (hasAny("G53", "G56", "G92", "G93", "G72", "G80", "G81", "M60", "M50", "M03", "M04", "M05", "M06"))
        state.UnknownBlock = false;
    // 32. Sheet reposition.
    if (codes.Has(block, "G95")) {
        ParameterFill(block, 6, 6, "-999");
        changed();
        state.UnknownBlock = false;
    }
    // 33. Profiling mode on and off.
    if (codes.Has(block, "M100")) {
        state.ProfilerMode = true;
        state.ArcMode = 0;
        state.MotionMode = 0;
        state.UnknownBlock = false;
    }
    if (codes.Has(block, "M101")) {
        state.ProfilerMode = false;
        state.ArcMode = 0;
        state.MotionMode = 0;
        state.UnknownBlock = false;
    }
    // 34. A move without a hit.
    if (codes.Has(block, "G77")) {
        G77Rule(block, state);
        changed();
        state.UnknownBlock = false;
    }
}

// The block walk, steps 1 to 40, for one line of A1 (main text) or A2 (subroutine text).
std::string ConvertBlock(ConvertState& state, const BlockContext& context, std::string_view line) {
    const bool mainText = context.Pass == BlockPass::Main;
    const bool bracket = context.Dialect == BracketDialect;
    ValueReader& reader = state.Reader;
    std::string block;
    CodeIndex& codes = state.Codes;
    auto has = [&](std::string_view word) { return codes.Has(block, word); };
    // Rewrites the first occurrence of a code.
    auto changed = [&]() { codes.Build(block); };
    auto rewrite = [&](std::string_view from, std::string_view to) {
        if (!has(from) || !ReplaceFirst(block, from, to)) return false;
        changed();
        return true;
    };

    // 1. The line, trimmed, is the source line.
    state.SourceLine.assign(Trim(line));
    block = state.SourceLine;
    // 2. Subroutine text: the sequence word at the start goes, a leading "/" stays.
    if (!mainText) block = StripBlockNumber(block);
    // 3. The dialect's own forms: messages, program marks, subroutines and calls. Every row
    // of the table for dialects 0 and 1 needs a "(": a block without one is passed over.
    if (bracket)
        block = DialectRewriteBracket(block, context.Table, reader);
    else if (Has(block, '('))
        block = DialectRewritePlain(block, context.Table, reader);
    // 4. The comment goes to BlockComment.
    SplitComment(block, state.BlockComment, context.Dialect);
    // 5. Main text: the sheet size from the comment, until one has been found.
    if (mainText && !(state.SheetX > 0 && state.SheetY > 0) && !state.BlockComment.empty()) {
        if (auto size = SheetSize(state.BlockComment)) {
            state.SheetX = size->first;
            state.SheetY = size->second;
        }
    }
    // 6. Upper case.
    for (char& c : block) c = UpperChar(c);
    // 7. Main text: an N word sets the running count, a block without one gets the next.
    if (mainText) SequenceStep(state, block);
    changed();
    // 8. The optional stop is a stop.
    rewrite("M01", "M00");
    // 9. A dwell's time in F goes to X.
    if (has("G04") && Has(block, 'F') && !Has(block, 'X')) {
        ReplaceFirst(block, "F", "X");
        changed();
    }
    // 10. The mirror codes G10 to G13 become M10 to M13.
    if (!has("G101") && !has("G102") && !has("G103")) rewrite("G10", "M10");
    rewrite("G11", "M11");
    rewrite("G12", "M12");
    rewrite("G13", "M13");
    // 11. G61 to G63 are nibbling moves with "R" as the step.
    if (rewrite("G61", "G01")) {
        ReplaceFirst(block, "R", "P8=");
        changed();
    }
    if (rewrite("G62", context.Settings.SwapArcWords ? "G03" : "G02")) {
        ReplaceFirst(block, "R", "P8=");
        if (context.Settings.ArcCentreIncremental) RewriteCentre(block, reader);
        changed();
    }
    if (rewrite("G63", context.Settings.SwapArcWords ? "G02" : "G03")) {
        ReplaceFirst(block, "R", "P8=");
        if (context.Settings.ArcCentreIncremental) RewriteCentre(block, reader);
        changed();
    }
    // 12. M20 is a move without a hit.
    rewrite("M20", "G77");
    // 13. M22 is a sheet reposition with X as I and Y as J.
    if (rewrite("M22", "G95")) {
        ReplaceFirst(block, "X", "I");
        ReplaceFirst(block, "Y", "J");
        if (!Has(block, 'J')) block += " J-999";
        if (!Has(block, 'K')) block += " K-999";
        changed();
    }
    // 14. M91 is a sheet reposition with P10 as I and P11 as J.
    if (rewrite("M91", "G95")) {
        ReplaceFirst(block, "P10=", "I");
        ReplaceFirst(block, "P11=", "J");
        if (!Has(block, 'J')) block += " J-999";
        if (!Has(block, 'K')) block += " K-999";
        changed();
    }
    // 15. No code recognised yet.
    state.UnknownBlock = true;
    // 16. A condition to its fixed form.
    if (PositionTest(block, "IF", "ENDIF")) {
        block = ConditionRewrite(block);
        changed();
        state.UnknownBlock = false;
    }
    // 17. The end of a conditional section.
    if (Has(block, "ENDIF")) state.UnknownBlock = false;
    // 18. A jump to its fixed form.
    if (has("GOTO") && PositionTest(block, "GOTO", "IF")) {
        block = JumpRewrite(block);
        changed();
        state.UnknownBlock = false;
    }
    // 19 to 34. The motion steps and the completion of every code.
    CompletionSteps(state, block, CompletionContext{context.Settings, mainText, bracket, false});
    // 35. Subroutine text: a block that holds "RETURN" skips steps 36 to 39.
    if (!(!mainText && Has(block, "RETURN"))) {
        // 36. A block with no code hits, or with a tool alone only selects it.
        if (state.UnknownBlock) ImplicitHitRule(block, state);
        // 37. Block-skip marks become M875 words.
        BlockSkipMarks(block);
        // 38. Canonical word order.
        block = WordOrdering(block, reader, state.OrderingSlots);
        // 39. No double blanks.
        CollapseBlanksInPlace(block);
    }
    // 40. The block and its comment.
    block += state.BlockComment;
    return block;
}

}  // namespace kirvana::convert

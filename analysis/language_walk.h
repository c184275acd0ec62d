// The walk of the motion language that the Reverse pass and the Gather pass share: the modal
// machine model, the reading of M1 and M2 line by line with subroutine calls, repetitions,
// conditions and jumps, the words of each block in the language's fixed order, and the
// handlers that work out each entity of a block. The passes differ only in what they do with
// an entity and in a few words; those are the virtual steps below.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "analysis/entity.h"
#include "analysis/reverse.h"
#include "core/cycle_words.h"
#include "core/words.h"
#include "translate/code_index.h"

namespace kirvana {

// The lines of a file by their block number, so that the search for a label passes over the
// lines in between without reading them again. Built at the first search in the file.
class LabelIndex {
public:
    // The first line at or after `from` whose block number is `label`; the end of the file
    // when none follows.
    std::size_t Find(const std::vector<std::string>& file, std::size_t from, std::int16_t label);

private:
    void Build(const std::vector<std::string>& file);

    std::vector<std::pair<std::int16_t, std::size_t>> entries_;
    bool built_ = false;
};

class LanguageWalk {
public:
    virtual ~LanguageWalk() = default;
    LanguageWalk(const LanguageWalk&) = delete;
    LanguageWalk& operator=(const LanguageWalk&) = delete;

protected:
    static constexpr double Missing = -999;
    static constexpr std::int16_t True16 = -1;

    LanguageWalk(const std::vector<std::string>& m1, const std::vector<std::string>& m2, std::string& report,
                 std::int16_t& toolChanges, const ReverseSettings& settings)
        : m1_(m1),
          m2_(m2),
          report_(report),
          toolChanges_(toolChanges),
          settings_(settings),
          stations_(settings.Stations) {}

    // The modal state at its start values: the load position, the travel limits, the
    // program's settings.
    void StartState();
    // The main loop, until the main text is at its end, the walk is stopped, or a pass's
    // target is reached (`Reached`).
    void Walk();

    // The steps in which the passes differ.
    // The first G70 of the program.
    virtual void FirstInchCode() {}
    // The entity `rec_`, completed by its outline, is kept: the Reverse pass writes it out.
    virtual void Keep() = 0;
    // The lines of the file about to be read at this depth; a pass that stops at a line
    // answers how many of them to read before it stops (1 to lines), or 0 to read on.
    virtual std::size_t StopWithin(std::size_t /*lines*/) { return 0; }
    // The walk reached the line `StopWithin` asked for; the line is in `line_` and `block_`.
    virtual void Reached() {}
    // After `Reached`: whether the walk goes on, handling that line, rather than stopping there.
    virtual bool GoesOn() { return false; }
    // A block is about to be handled, the modal state as the block before left it.
    virtual void BlockStarts() {}
    // The tool of the station in force on the entity; false, with a critical error, when the
    // station is out of the turret.
    virtual bool TakeTool();
    // The words G93, M55 and G95.
    virtual void OriginGiven();
    virtual void FlipRotate();
    virtual void Reposition();
    // A report entry; the Reverse pass reports each.
    virtual void Error(std::string_view message, bool critical);
    // Hits passed by a punch or a pattern.
    virtual void HitsPassed(std::int64_t /*hits*/) {}
    // Whether a T word is checked against the turret and counted as a tool change.
    virtual bool ChecksTools() const { return true; }

    // Reading.
    double Value(std::string_view key);
    double Length(std::string_view key);
    std::int16_t Integer(std::string_view key);
    // The words of the block as the cycles read them.
    CycleWordReader CycleWords();
    // Plain text search for a code in the working block; inlined, so that a constant code is
    // one bit of the index.
    [[gnu::always_inline]] bool Has(std::string_view code) const { return codes_.Has(block_, code); }
    // The index of the working block, and which letters it holds: a word whose letter is not
    // there is missing without a search.
    void IndexBlock();
    bool MayHold(std::string_view key) const {
        char c = key.empty() ? '\0' : key[0];
        return c < 'A' || c > 'Z' || (letters_ >> (c - 'A') & 1) != 0;
    }
    void CheckLimit(double x, double y);

    // The block.
    void HandleBlock();
    bool ApplyPosition();
    void ChangeTool();
    void CallSubroutine();
    void EndOfCall();
    void LeaveCall();
    void Conditional();
    void Jump(std::string_view tail);
    void Restart(int depth);
    // The line read: the block text and the working block.
    void TakeLine(std::string_view text);
    // Counts `lines` lines of the file read at this depth from `first` on.
    void CountLines(const std::vector<std::string>& file, std::size_t first, std::size_t lines);
    // False, with the pass stopped and the critical error reported, beyond any work bound.
    bool WithinBounds();
    void ReadSettings();

    // Entities.
    void BeginEntity(std::int16_t kind, const char* name);
    void TakePlasmaTool();
    // The entity completed by its tool outline and handed to `Keep`.
    void Append();
    void FinishPattern();
    // An Arc Pattern entity begun with the tool, its centre, radius, first angle, sweep and step;
    // the tool turns with it when the block's P10 is absent or not positive.
    void BeginArcPattern(double centreX, double centreY, double radius, double first, double sweep, double step);
    // A Linear Pattern entity begun with the tool, from the entry to the exit point, with its
    // pitch, direction and hits.
    void BeginLinearPattern(double entryX, double entryY, double exitX, double exitY, double pitch, double direction,
                            std::int16_t hits);
    // The mirrors in force turn an arc pattern: the first angle mirrored, and the sweep and the
    // step turned round once for each mirror.
    void MirrorArcPattern(double& first, double& sweep, double& step) const;
    // A nibbled cycle's hit count: beyond 16 bits is an overflow and a single hit would divide
    // its length by zero; either is reported and gives false.
    bool NibbleHitsUsable(std::optional<std::int16_t> hits);
    // The previous position takes the position, which moves to the point of the circle at the
    // angle; the limits are checked there.
    void MoveOnCircle(double centreX, double centreY, double radius, double angle);
    void CheckHits();
    void NibbleLine();
    void NibbleArc(bool g02);
    void CycleG26();
    void CycleG28();
    void CycleG36();
    void CycleG37();
    void CycleG64();
    void CycleG65();
    void CycleG66();
    void Dwell();
    void Move();
    void Punch();
    void ProfileLine();
    void ProfileArc(bool g103);
    void LoadPosition();
    void Stop(bool optional);
    double NibbleIncrement();
    void Overflow() { Error(reverse_message::NumberOverflow, true); }
    // Charges hits walked to the work bound; false, with the pass stopped, beyond it.
    bool ChargeHits(std::int64_t hits);

    const std::vector<std::string>& m1_;
    const std::vector<std::string>& m2_;
    std::string& report_;
    std::int16_t& toolChanges_;
    const ReverseSettings& settings_;
    StationTable stations_;

    ReverseState S;
    ValueReader reader_{&S.Parameters};
    std::string line_;   // the block text: the line trimmed
    std::string block_;  // the working block: no comment, trimmed, upper case
    EntityRec rec_;      // the entity being built
    bool stopped_ = false;
    bool reached_ = false;  // the walk stopped at a pass's target line
    bool blocksFull_ = false;
    std::int64_t steps_ = 0;       // lines read, the ones passed over to a label included
    std::int64_t jumps_ = 0;       // jumps, calls and repetitions: files started again
    std::int64_t characters_ = 0;  // characters of the blocks worked on, BlockWork each beside
    std::int64_t linesRead_ = 0;
    LabelIndex m1Labels_, m2Labels_;
    std::int64_t hitWork_ = 0;
    CodeIndex codes_;            // where the codes stand in the working block
    std::uint32_t letters_ = 0;  // bit k: the working block holds the letter 'A' + k
};

}  // namespace kirvana

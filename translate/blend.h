// The Blend pass: walks the main motion text M1 block by block with a model of where the
// machine will be, reports what is wrong to "Blend.txt" (critical errors bar the program), marks
// each cutting move " B1" or " B0" for the card's blending and gives each cut arc its radius
// " E". Canned cycles in punch mode are worked through for their checks and end position.
#pragma once

#include <cstdint>
#include <fstream>
#include <functional>
#include <string>
#include <string_view>

#include "core/config.h"
#include "core/cycle_words.h"
#include "core/words.h"
#include "translate/code_index.h"
#include "translate/pass_messages.h"

namespace kirvana {

// The machine values and places the pass needs.
struct BlendSettings {
    MachineTravel Travel;     // the load position (the card's Q10, Q11), the limits
    float ProfilerValue = 0;  // degrees within which moves run on tangentially
    std::int16_t MachineOrientation = 1;
    std::string RootDir;     // for "Blend.tmp"
    std::string ServiceDir;  // for "Blend.txt" and LastFile.txt
    // The report's time line, "dd/mm/yy hh:mm"; the local time when not set.
    std::function<std::string()> Now;
};

BlendSettings BlendSettingsFrom(const MachineData& machine, const Directories& dirs);

// The previous cutting move, for the tangency test.
struct LastMoveRecord {
    std::int16_t Kind = 0;  // 0 none, 1 line, 2 G102 arc, 3 G103 arc
    float Length = 0, Angle = 0;
    float StartX = 0, StartY = 0, EndX = 0, EndY = 0;
    float CentreX = 0, CentreY = 0, Radius = 0;
    float StartAngle = 0, Sweep = 0;
};

// The pass's modal state, set to its start values at each run.
struct BlendState {
    std::string BlendLine;     // the line as read, trimmed
    std::string BlendOutLine;  // the line to be written
    float BlendX = 0, BlendY = 0, BlendC = 0;
    float BlendPrevX = 0, BlendPrevY = 0, BlendPrevC = 0;
    float BlendOriginX = 0, BlendOriginY = 0;
    float BlendXMin = 0, BlendXMax = 0, BlendYMin = 0, BlendYMax = 0;
    bool BlendInch = false;
    bool BlendIncremental = false;
    bool BlendMirrorX = false, BlendMirrorY = false;
    bool BlendProfiling = false;
    bool BlendTorchOn = false;
    std::int16_t BlendKerf = 0;
    std::int16_t BlendArcCode = 0;
    std::int16_t BlendTool = 0;
    bool BlendHit = false;
    double BlendNibbleStep = 2;
    double BlendNibbleDefault = 2;
    std::int16_t BlendCritical = 0;
    bool BlendWarnedX = false, BlendWarnedY = false;
    ProgramParameters BlendParameters;
    std::int32_t BlendBlockCount = 0;
    LastMoveRecord LastMove;
};

// One run of the pass over a motion text; the cycles live in blend_cycles.cpp.
class BlendPass {
public:
    explicit BlendPass(const BlendSettings& settings);

    // Sets the state to its start values.
    void Start();
    // Works one line of M1 and gives the line to write.
    const std::string& BlendBlock(std::string_view line);
    // The report: errors go here, one entry each.
    void OpenReport(std::ostream* report) { report_ = report; }

    BlendState State;

    // WordValue and WordInteger with this pass's variables; "not found" and exactly -999
    // set WordMissing and give -999.
    double BlendValue(std::string_view block, std::string_view key);
    std::int16_t BlendInteger(std::string_view block, std::string_view key);
    // The angle as the mirrors turn it.
    double MirrorAngle(double angle) const;
    void BlendError(std::string_view block, std::string_view message, bool critical);
    void ClearLastMove() { State.LastMove = LastMoveRecord{}; }
    ValueReader Reader{&State.BlendParameters};

private:
    void ReadTool(const std::string& block);
    void PositionUpdate(const std::string& block);
    void CheckLimits(double x, double y, const std::string& block);
    void ProfileLine();
    void ProfileArc(const std::string& block, bool g103);
    bool Tangent(double startDirection) const;
    void InsertMark(std::string_view code, const std::string& mark);
    void LoadPosition(const std::string& block);

    // The canned cycles in punch mode.
    void CycleG64(const std::string& block);
    void CycleG65(const std::string& block);
    void CycleG66(const std::string& block);
    void CycleG26(const std::string& block);
    void CycleG28(const std::string& block);
    void CycleG36(const std::string& block);
    void CycleG37(const std::string& block);
    double NibbleIncrement(const std::string& block);
    // False, with the critical error reported, when a nibbled length gives fewer than two hits.
    bool NibbleHits(const std::string& block, double length, double step);
    // A length word: converted under G70, the missing value taken first when `always`.
    double Length(double value, bool given, bool always) const;
    // The words of the block as the cycles read them.
    CycleWordReader CycleWords(const std::string& block);
    void ClearAndStep();
    void MoveBy(double dx, double dy);

    // Whether the working block holds the code (a plain substring test).
    bool Holds(std::string_view code) const { return codes_.Has(block_, code); }

    const BlendSettings& settings_;
    std::ostream* report_ = nullptr;
    std::string block_;  // the working block: no comment, no blanks, upper case
    CodeIndex codes_;    // where the codes stand in the working block
};

// What the pass gives, in the fields every pass reports with.
struct BlendResult {
    // The critical errors: 0 replaced M1 by the blended text; otherwise M1 stays and
    // "Blend.tmp" is left in RootDir.
    std::int16_t CriticalCount = 0;
    // The motion file could not be read or "Blend.tmp", the report or the new M1 could not be
    // written: M1 stays as it was and no "Blend.tmp" is left.
    bool FileFault = false;
    std::string FaultFile;  // with FileFault: the file
};

// The entry: blends stem + "M1", reporting to ServiceDir + "Blend.txt".
[[nodiscard]] BlendResult BlendProgram(std::string_view directory, std::string_view name, std::string_view stem,
                                       const BlendSettings& settings);

}  // namespace kirvana

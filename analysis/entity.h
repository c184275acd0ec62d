// The drawing record `EntityRec`: one thing the machine does on the sheet (a hit, a pattern,
// a profile, a move, a stop, a reposition), as held in memory. Its file form is the fixed
// 1268-byte record of drawing_file.h.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "tooling/settings.h"
#include "tooling/tool_record.h"

namespace kirvana {

// Widths of the fixed texts of a record.
inline constexpr std::size_t KindNameWidth = 18;
inline constexpr std::size_t RemarkWidth = 72;
inline constexpr std::size_t BlockTextWidth = 255;
inline constexpr std::size_t CallBlockWidth = 250;

// Entity kinds: 1xx moves and profiles, 2xx punching, 3xx machine actions.
namespace EntityKind {
inline constexpr std::int16_t Sheet = 100;
inline constexpr std::int16_t Move = 110;
inline constexpr std::int16_t LineProfile = 120;
inline constexpr std::int16_t ArcProfile = 130;
inline constexpr std::int16_t ReservedArc = 151;  // treated as an Arc Pattern by ToolOutline
inline constexpr std::int16_t Punch = 210;
inline constexpr std::int16_t LinearPattern = 220;
inline constexpr std::int16_t GridPattern = 225;
inline constexpr std::int16_t ArcPattern = 230;
inline constexpr std::int16_t Dwell = 311;
inline constexpr std::int16_t Stop = 321;  // "Program Stop" and "Optional Stop"
inline constexpr std::int16_t Reposition = 350;
inline constexpr std::int16_t FlipRotate = 355;
inline constexpr std::int16_t LoadPosition = 360;
inline constexpr std::int16_t MultiPart = 500;
}  // namespace EntityKind

// The text cut or blank-padded to the width of its field.
std::string FixedText(std::string_view text, std::size_t width);

struct PointF {
    float X = 0;
    float Y = 0;
};

// Lowest X,Y then highest X,Y.
struct BoxF {
    PointF Low;
    PointF High;
};

// An array numbered from 1, as the record's `Values` and `Counts` are numbered.
template <typename T, std::size_t N>
struct OneBased {
    std::array<T, N> Items{};
    T& operator[](std::size_t number) { return Items[number - 1]; }
    const T& operator[](std::size_t number) const { return Items[number - 1]; }
    static constexpr std::size_t Size() { return N; }
};

// What a running subroutine call asked for (`CallSpec`), or where its repetition stands
// (`CallState`).
struct SubCall {
    std::string Block = std::string(CallBlockWidth, ' ');  // calling block, cut to 250
    std::int16_t CallCode = 0;                             // 68, 69 or 98
    std::int16_t Label = 0;                                // subroutine number (S)
    float X = 0;                                           // position when the call was read
    float Y = 0;
    float PitchX = 0;
    float PitchY = 0;
    std::int16_t CountX = 0;
    std::int16_t CountY = 0;
    std::int16_t Order = 0;
};

// The six named points, in their order in the record.
struct EntityPoints {
    PointF Start;     // first end of the entity
    PointF Middle;    // middle of the entity
    PointF End;       // second end of the entity
    PointF Position;  // the one point of a point entity; centre of an arc
    PointF Entry;     // where the machine is when the entity begins
    PointF Exit;      // where the machine is when the entity has ended
};

inline constexpr std::size_t ValueSlots = 24;
inline constexpr std::size_t CountSlots = 12;

// A default-constructed record is a cleared one (see ClearEntity).
struct EntityRec {
    std::int16_t Kind = 0;
    std::string KindName = std::string(KindNameWidth, ' ');
    std::string Remark = std::string(RemarkWidth, ' ');
    std::string BlockText = std::string(BlockTextWidth, ' ');
    std::int16_t MainBlock = 0;
    std::int16_t SubBlock = 0;
    SubCall CallSpec;
    SubCall CallState;
    EntityPoints Points;
    OneBased<float, ValueSlots> Values;
    OneBased<std::int16_t, CountSlots> Counts;
    std::int16_t Compensation = 0;
    std::int16_t CycleRotate = 0;
    BoxF Extent;    // box of the entity's centres
    BoxF ClearBox;  // box of all the tool can touch
    ToolRecord Tool;
    std::int32_t RecordNo = 0;  // own number; in record 1 the number of records
    std::int16_t StationNo = 0;
    SettingsArray Settings = [] {
        SettingsArray unset;
        unset.fill(NoValue);
        return unset;
    }();
    float Feed = 0;
    std::int16_t PathMode = 0;
};

// Every number 0, every text blank, the empty tool, the 24 settings NoValue.
void ClearEntity(EntityRec& rec);
// Copies every field; nothing is shared.
void CopyEntity(const EntityRec& source, EntityRec& target);
// Blank block, all numbers 0.
void ClearSubCall(SubCall& call);
void CopySubCall(const SubCall& source, SubCall& target);

}  // namespace kirvana

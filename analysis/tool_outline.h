// `ToolOutline` completes a drawing record: from what its writer set (a position, or a
// pattern's parameters) it works out the six points, the redundant values, the box `Extent` of
// the entity's centres and the box `ClearBox` of all the tool can touch.
#pragma once

#include "analysis/entity.h"

namespace kirvana {

// Every writer calls this just before it stores a record. Changes the record in place.
void ToolOutline(EntityRec& rec);

// The common margin: 5 mm, or half of D1 for a valid tool of a real punch station (type 10
// and up) whose D1 is greater than 5.
double HalfWidth(const ToolRecord& tool);
// The minimum box: no thinner than a fifth of the length, then no thinner than 5.
void MinimumBox(BoxF& box, double length);
// Its second step alone: no thinner than 5.
void MinimumSide(BoxF& box);

// The routines ToolOutline dispatches to by `Kind`.
void OutlineAtPoint(EntityRec& rec);     // 311, 321, 350
void OutlinePunch(EntityRec& rec);       // 210, 225
void OutlineStraight(EntityRec& rec);    // 110, 220
void OutlineArcPattern(EntityRec& rec);  // 230, 151
void OutlineProfile(EntityRec& rec);     // 120, 130
void OutlineMultiPart(EntityRec& rec);   // 500

// The most angles an arc pattern's step walk visits, so that no step angle (0, tiny, or on a
// huge first angle) makes it endless. A real pattern of up to 32767 hits stays far below.
inline constexpr long MaxArcSteps = 100'000;

}  // namespace kirvana

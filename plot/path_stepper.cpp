#include "plot/path_stepper.h"

#include <algorithm>

#include "analysis/expand.h"
#include "core/text.h"

namespace kirvana {

namespace {

bool IsPattern(std::int16_t kind) {
    return kind == EntityKind::LinearPattern || kind == EntityKind::GridPattern || kind == EntityKind::ArcPattern;
}

struct Place {
    std::int32_t Record = PathBeginning;
    std::int32_t Hit = 0;
    bool operator==(const Place&) const = default;
};

// The place drawn in a colour mode: one hit of a pattern, or the whole entity.
void DrawPlace(Place place, int colourMode, DrawingFile& drawing, Plotter& plotter, int plot) {
    EntityRec rec;
    if (place.Record <= PathBeginning || !drawing.Get(place.Record, rec)) return;
    if (!IsPattern(rec.Kind)) {
        plotter.PlotEntity(plot, rec, colourMode, false);
        return;
    }
    const std::int32_t colour = plotter.EntityColour(rec, colourMode);
    std::int32_t index = 0;
    ForEachHit(rec, [&](double x, double y, const double* cAngle) {
        if (index++ < place.Hit) return true;
        plotter.PlotHit(plot, rec.Tool, {x, y}, cAngle ? *cAngle : static_cast<double>(rec.Tool.Extra1), colour, false);
        return false;
    });
}

std::int32_t StepsAt(std::int32_t record, DrawingFile& drawing) {
    EntityRec rec;
    if (record <= PathBeginning || !drawing.Get(record, rec)) return 1;
    return PathSteps(rec);
}

// The hit's record in the expanded file: the Sheet, the hits of every entity before it, and its
// own number; 0 when the place is no hit.
std::int32_t ExpandedHitOf(Place place, DrawingFile& drawing) {
    EntityRec rec;
    if (place.Record <= PathBeginning || !drawing.Get(place.Record, rec)) return 0;
    if (rec.Kind != EntityKind::Punch && !IsPattern(rec.Kind)) return 0;
    std::int64_t before = 1;
    for (std::int32_t n = PathBeginning + 1; n < place.Record; ++n)
        if (drawing.Get(n, rec)) before += EntityHits(rec);
    const std::int64_t number = before + place.Hit + 1;
    return number < MaxExpandedHits ? static_cast<std::int32_t>(number) : 0;
}

}  // namespace

std::int32_t PathSteps(const EntityRec& rec) { return IsPattern(rec.Kind) ? std::max(1, EntityHits(rec)) : 1; }

void StartPath(PathStepper& stepper, DrawingFile& drawing) {
    stepper = PathStepper{};
    stepper.Last = std::max(PathBeginning, drawing.LastReadable());
}

std::string PathKey(PathStepper& stepper, int key, DrawingFile& drawing, Plotter& plotter, int plot) {
    const Place now{stepper.Current, stepper.CurrentHit};
    Place next = now;
    switch (key) {
        case 1:
            next = {std::min(PathBeginning + 1, stepper.Last), 0};
            break;
        case 2:
            // Back a hit inside a pattern; else to the last hit of the entity before.
            if (now.Hit > 0)
                next = {now.Record, now.Hit - 1};
            else if (now.Record - 1 > PathBeginning)
                next = {now.Record - 1, StepsAt(now.Record - 1, drawing) - 1};
            else
                next = {PathBeginning, 0};
            break;
        case 3:
            // On a hit inside a pattern; else to the first hit of the next entity.
            if (now.Record > PathBeginning && now.Hit + 1 < StepsAt(now.Record, drawing))
                next = {now.Record, now.Hit + 1};
            else if (now.Record < stepper.Last)
                next = {now.Record + 1, 0};
            break;
        case 4:
            next = {stepper.Last, StepsAt(stepper.Last, drawing) - 1};
            break;
        case 5:
        case 6: {
            PickState& pick = stepper.Pick;
            if (key == 5) pick = PickState{};
            pick.Record = now.Record;
            pick.Hit = now.Hit;
            pick.ExpandedHit = ExpandedHitOf(now, drawing);
            (key == 5 ? pick.Split : pick.Selected) = true;
            break;
        }
        default:
            break;
    }
    if (!(next == now)) {
        DrawPlace(now, ColourMode::Background, drawing, plotter, plot);
        stepper.Current = next.Record;
        stepper.CurrentHit = next.Hit;
        DrawPlace(next, ColourMode::Highlight, drawing, plotter, plot);
    }
    EntityRec rec;
    if (stepper.Current <= PathBeginning || !drawing.Get(stepper.Current, rec)) return "Beginning";
    return std::string(Trim(rec.BlockText));
}

}  // namespace kirvana

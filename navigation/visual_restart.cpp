#include "navigation/visual_restart.h"

#include <algorithm>
#include <filesystem>

#include "analysis/drawing_file.h"
#include "analysis/restart.h"
#include "system/slots.h"
#include "system/startup.h"

namespace kirvana {

namespace {

std::string Refused(const std::string& reason) { return std::string(VisualRefusalFirst) + "\n\n" + reason; }

bool IsPattern(const EntityRec& entity) {
    const RestartKind kind = RestartKindOf(entity);
    return kind == RestartKind::Cycle || kind == RestartKind::SubCycle;
}

}  // namespace

std::string SplitDrawingPath(const Process& process) { return process.Config.Dirs.RootDir + "SplitCyc.drw"; }

std::string PickDrawingPath(const Process& process, int slot, const VisualRestart& visual) {
    return visual.Record > 0 ? SplitDrawingPath(process) : SlotFile(process.Config.Dirs, slot, "drw");
}

std::int32_t HitsOnView(const std::string& drawingPath, const PlotView& view) {
    DrawingFile drawing;
    if (!drawing.Open(drawingPath, true)) return 0;
    const double left = std::min(view.ViewTopLeft.X, view.ViewBottomRight.X);
    const double right = std::max(view.ViewTopLeft.X, view.ViewBottomRight.X);
    const double low = std::min(view.ViewTopLeft.Y, view.ViewBottomRight.Y);
    const double high = std::max(view.ViewTopLeft.Y, view.ViewBottomRight.Y);
    std::int32_t onView = 0;
    EntityRec entity;
    for (std::int32_t record = 2; record <= drawing.LastReadable(); ++record) {
        if (!drawing.Get(record, entity)) continue;
        const std::int32_t hits = EntityHits(entity);
        for (std::int32_t n = 1; n <= hits; ++n) {
            GatherState at;
            if (!HitPosition(entity, n, at)) break;
            if (at.X >= left && at.X <= right && at.Y >= low && at.Y <= high) ++onView;
        }
    }
    return onView;
}

std::string StartVisualRestart(const Process& process, int slot, const PlotView& view, VisualRestart& visual) {
    if (Refusal refused = RestartInterlock(process)) return *refused;
    const std::string drw = SlotFile(process.Config.Dirs, slot, "drw");
    const std::string dr1 = SlotFile(process.Config.Dirs, slot, "dr1");
    std::error_code drwError, dr1Error;
    const auto drwTime = std::filesystem::last_write_time(drw, drwError);
    const auto dr1Time = std::filesystem::last_write_time(dr1, dr1Error);
    if (drwError) return Refused("Can Not Read The Drawing " + drw);
    if (!dr1Error && dr1Time < drwTime) return Refused("The Hit File Is Older Than The Drawing !");
    if (HitsOnView(drw, view) == 0) return Refused("If No Punches Are On View !");
    visual = VisualRestart{};
    visual.Active = true;
    return {};
}

std::string SplitPickedEntity(const Process& process, int slot, std::int32_t record, VisualRestart& visual) {
    if (visual.Record > 0) return {};  // the walk is on the hits already
    const std::string drw = SlotFile(process.Config.Dirs, slot, "drw");
    DrawingFile drawing;
    EntityRec entity;
    if (!drawing.Open(drw, true) || !drawing.Get(record, entity)) return Refused("Pick A Pattern To Split !");
    drawing.Close();
    if (!IsPattern(entity)) return Refused("Pick A Pattern To Split !");
    const std::optional<std::int32_t> hits = SplitCycle(drw, entity, SplitDrawingPath(process));
    if (!hits) return Refused("File Fault : " + SplitDrawingPath(process));
    visual.Record = record;
    visual.SplitHits = *hits;
    return {};
}

std::string SelectVisualRestart(const Process& process, int slot, const PickState& pick, const VisualRestart& visual,
                                RestartSession& session) {
    if (pick.Record <= PathBeginning) return Refused("Pick A Hit With The Path Keys !");
    if (visual.Record > 0) return SelectRestartHit(process, slot, visual.Record, pick.Record - 1, session);
    return SelectRestartHit(process, slot, pick.Record, 1, session);
}

}  // namespace kirvana

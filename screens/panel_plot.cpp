// The panel's plot: the boxes of FrontEnd drawn from the slots, the graphics buttons and the
// cursor carried out on the view, and what each poll tick adds while the machine runs.
#include <QApplication>

#include "analysis/drawing_file.h"
#include "screens/dialogue_front.h"
#include "screens/front_end.h"
#include "screens/panel.h"
#include "screens/plot_box.h"
#include "screens/restart_forms.h"
#include "system/slots.h"

namespace kirvana {

int Panel::ActivePlot() const { return nav_.DialogueOn ? DialoguePlot : process_.Config.ActiveSlot; }

PlotBox* Panel::PlotBoxAt(int plot) { return frontEnd_ ? frontEnd_->Plot(plot) : nullptr; }

// The counters of the run starting anew make the next tick draw the hits done so far again, so
// that a redraw in the middle of a run keeps them.
void Panel::RedrawPlot(int plot, bool resetRunData) {
    PlotBox* box = PlotBoxAt(plot);
    if (!box) return;
    // The path keys start again on the drawing as it now is.
    if (plot == ActivePlot()) path_ = PathStepper{};
    PlotBoxInput input;
    input.LimitsOn = nav_.LimitsOn;
    if (plot >= 1 && plot <= 2) {
        SlotRecord& slot = process_.Slots[static_cast<std::size_t>(plot - 1)];
        // While a pattern is split for the visual restart, only its hits are shown.
        if (slot.Present) input.DrawingPath = PickDrawingPath(process_, plot, visual_);
        input.SheetX = slot.SheetX;
        input.SheetY = slot.SheetY;
        input.Clamps = slot.Clamps;
        // The run data of the slot start anew.
        if (resetRunData) {
            slot.LastHitCount = slot.HitCount = slot.HitBase = slot.RunCount = 0;
            slot.RunHitFile = 1;
        }
    }
    if (plot == DialoguePlot) Dialogue().PlotInput(input);
    box->Redraw(process_.Config.Machine, input);
    if (plot == DialoguePlot) Dialogue().Highlight();
}

void Panel::PlotGraphicsButton(int index) {
    PlotBox* box = PlotBoxAt(ActivePlot());
    if (!box) return;
    switch (index) {
        case 1:
            box->View().ViewChanged = false;
            RedrawPlot(ActivePlot());
            break;
        case 2:
        case 4:
            EnterCursorMode(cursor_, box->View());
            ShowCross(box->Canvas(), colours_, cursor_.Points[0], cursor_.CrossSize, true);
            box->Show();
            break;
        case 3:
            ZoomOut(box->View());
            RedrawPlot(ActivePlot());
            break;
        default:
            break;
    }
}

void Panel::PlotCursorKey(int index, std::int16_t modeBefore) {
    PlotBox* box = PlotBoxAt(ActivePlot());
    if (!box) return;
    const QSize size = box->contentsRect().size();
    CursorKeyResult result = kirvana::PlotCursorKey(cursor_, box->View(), modeBefore, index, size.width(),
                                                    size.height(), process_.Config.Machine.MachineOrientation);
    if (result.Finished) {
        HidePlotCursor();
        if (result.ViewSet) RedrawPlot(ActivePlot());
        return;
    }
    ShowCross(box->Canvas(), colours_, cursor_.Points[cursor_.Active], cursor_.CrossSize, true);
    ShowZoomRect(box->Canvas(), colours_, cursor_.Points[0], cursor_.Points[1], result.ShowZoomRect);
    box->Show();
}

void Panel::HidePlotCursor() {
    PlotBox* box = PlotBoxAt(ActivePlot());
    if (!box) return;
    ShowCross(box->Canvas(), colours_, cursor_.Points[0], cursor_.CrossSize, false);
    ShowZoomRect(box->Canvas(), colours_, cursor_.Points[0], cursor_.Points[1], false);
    box->Show();
}

void Panel::PlotPathKey(int index) {
    PlotBox* box = PlotBoxAt(ActivePlot());
    const int plot = ActivePlot();
    if (!box || plot < 1) return;
    DrawingFile drawing;
    if (!drawing.Open(PickDrawingPath(process_, plot, visual_), true)) return;
    if (path_.Last <= PathBeginning) StartPath(path_, drawing);
    std::string place = kirvana::PathKey(path_, index, drawing, box->Drawing(), plot);
    box->Show();
    // On a split pattern the place is the hit's number.
    if (visual_.Record > 0 && path_.Current > PathBeginning)
        place = "HIT " + std::to_string(path_.Current - 1) + " OF " + std::to_string(visual_.SplitHits);
    if (frontEnd_) frontEnd_->SetText(place);
    if (visual_.Active && (index == 5 || index == 6)) VisualRestartKey(index);
}

void Panel::BeginVisualRestart() {
    const int plot = ActivePlot();
    PlotBox* box = PlotBoxAt(plot);
    if (!box || plot < 1) return;
    if (std::string fault = StartVisualRestart(process_, plot, box->View(), visual_); !fault.empty()) {
        ShowWarning(fault + "\n\n\n", WarningKind::Notice, 1);
        return;
    }
    nav_.GraphicsOn = true;
    nav_.ViewMode = 5;
    path_ = PathStepper{};
    if (frontEnd_) frontEnd_->ShowNavigation();
}

void Panel::VisualRestartKey(int index) {
    const int plot = ActivePlot();
    std::string fault;
    if (index == 5) {
        // The pattern picked: its hits, walked by the path keys from its first.
        fault = SplitPickedEntity(process_, plot, path_.Pick.Record, visual_);
        if (fault.empty()) {
            RedrawPlot(plot, false);
            if (frontEnd_) frontEnd_->SetText("SPLIT : " + std::to_string(visual_.SplitHits) + " HITS");
        }
    } else {
        auto* form = static_cast<RestartForm*>(forms_.Get("RestartForm"));
        fault = SelectVisualRestart(process_, plot, path_.Pick, visual_, form->Session());
        if (fault.empty()) {
            visual_ = VisualRestart{};
            nav_.ViewMode = 0;
            RedrawPlot(plot, false);
            if (frontEnd_) {
                frontEnd_->ShowNavigation();
                frontEnd_->SetText("");
            }
            OpenForm("RestartForm");
            return;
        }
    }
    if (!fault.empty()) ShowWarning(fault + "\n\n\n", WarningKind::Notice, 1);
}

void Panel::ShowPlotUpdate() {
    const PlotUpdate& update = process_.Display.Plot;
    const int plot = process_.Config.ActiveSlot;
    PlotBox* box = PlotBoxAt(plot);
    if (!box || plot < 1 || plot > 2) return;
    const SlotRecord& slot = process_.Slots[static_cast<std::size_t>(plot - 1)];
    // A run begins: the drawing anew, in its background colours; the poll has reset the counts.
    if (update.RunDataReset) RedrawPlot(plot, false);
    bool drawn = update.RunDataReset;
    // The hits carried out since the last tick, in the "done" colour.
    if (!update.DoneHits.empty()) {
        DrawingFile hits;
        if (hits.Open(slot.ExpandedFilePath, true))
            PlotDoneHits(box->Drawing(), plot, hits, update.DoneHits, plotConfig_);
        drawn = true;
    }
    // The head where the machine is, in millimetres.
    if (update.ToolMoved) {
        const double unit = slot.Imperial ? 25.4 : 1;
        PlotPoint at{process_.Poll.Position[0] * unit, process_.Poll.Position[1] * unit};
        PlotHeadPosition(box->Drawing(), plotConfig_, at, update.FromProfiler,
                         update.FromProfiler && process_.Poll.ProfilerLatch, box->View().MarkerStep * 2);
        drawn = true;
    }
    if (drawn) box->Show();
}

}  // namespace kirvana

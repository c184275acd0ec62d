// PlotBox: one of FrontEnd's three plot boxes. It keeps the picture of the drawing in an image,
// so that a repaint costs a copy and a pan draws only what it uncovers, and paints the shapes
// laid over it (sheet, clamps, zones, pads, zoom rectangle, cursor cross, movement icon) on top.
#pragma once

#include <QFrame>
#include <QImage>
#include <functional>
#include <string>

#include "screens/plot_picture.h"

namespace kirvana {

class PlotBox : public QFrame {
public:
    PlotBox(int index, const ColourTable& colours, const std::string& toolsDir, QWidget* parent);

    int Index() const { return index_; }
    PlotView& View() { return picture_.View(); }
    PlotCanvas& Canvas() { return picture_.Canvas(); }
    Plotter& Drawing() { return picture_.Drawing(); }
    const QImage& Picture() const { return picture_.Image(); }
    // The last redraw moved the picture and drew only what it uncovered.
    bool LastRedrawMoved() const { return picture_.LastMoved(); }
    // What the picture shows: its drawing found, the records drawn.
    const PlotResult& Shown() const { return picture_.Shown(); }

    // The whole plot drawn anew at the box's present size.
    PlotResult Redraw(const MachineData& machine, PlotBoxInput input);
    // What was drawn into the picture since the last call is shown.
    void Show();
    // The box was resized since its last redraw: the picture needs one.
    bool NeedsRedraw() const { return Picture().size() != contentsRect().size(); }
    // Called with the box's index when its size changed after its first drawing.
    std::function<void(int)> Resized;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    int index_;
    PlotPicture picture_;
};

}  // namespace kirvana

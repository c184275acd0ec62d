// PlotBox: one of FrontEnd's three plot boxes. It keeps the picture of the drawing in an image,
// so that a repaint costs a copy, and paints the shapes laid over it (sheet, clamps, zones,
// pads, zoom rectangle, cursor cross, movement icon) on top.
#pragma once

#include <QFrame>
#include <QImage>
#include <functional>
#include <memory>
#include <string>

#include "plot/plot_program.h"
#include "plot/plotter.h"
#include "plot/view.h"
#include "screens/plot_canvas.h"

namespace kirvana {

class PlotBox : public QFrame {
public:
    PlotBox(int index, const ColourTable& colours, const std::string& toolsDir, QWidget* parent);

    int Index() const { return index_; }
    PlotView& View() { return view_; }
    PlotCanvas& Canvas() { return canvas_; }
    Plotter& Drawing() { return *plotter_; }
    const QImage& Picture() const { return image_; }

    // The whole plot drawn anew at the box's present size.
    PlotResult Redraw(const MachineData& machine, PlotBoxInput input);
    // What was drawn into the picture since the last call is shown.
    void Show();
    // The box was resized since its last redraw: the picture needs one.
    bool NeedsRedraw() const { return image_.size() != contentsRect().size(); }
    // Called with the box's index when its size changed after its first drawing.
    std::function<void(int)> Resized;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    int index_;
    PlotView view_;
    PlotCanvas canvas_;
    QImage image_;
    std::unique_ptr<Plotter> plotter_;
};

}  // namespace kirvana

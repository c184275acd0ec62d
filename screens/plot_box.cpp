#include "screens/plot_box.h"

#include <QPaintEvent>
#include <QPainter>

namespace kirvana {

PlotBox::PlotBox(int index, const ColourTable& colours, const std::string& toolsDir, QWidget* parent)
    : QFrame(parent), index_(index), picture_(colours, toolsDir) {
    setObjectName(QString("PlotBox%1").arg(index));
    setFrameShape(QFrame::Box);
    setLineWidth(2);
    setMinimumSize(200, 150);
}

PlotResult PlotBox::Redraw(const MachineData& machine, PlotBoxInput input) {
    // What is still to be drawn goes to the picture before the picture is moved or replaced.
    Canvas().Finish();
    input.Plot = index_;
    PlotResult result = picture_.Draw(machine, input, contentsRect().size());
    Show();
    return result;
}

void PlotBox::Show() {
    Canvas().Finish();
    update();
}

void PlotBox::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    if (Resized && !Picture().isNull() && NeedsRedraw()) Resized(index_);
}

void PlotBox::paintEvent(QPaintEvent* event) {
    QFrame::paintEvent(event);
    Canvas().Finish();
    QPainter painter(this);
    const QRect inner = contentsRect();
    painter.setClipRect(inner);
    if (!Picture().isNull()) painter.drawImage(inner.topLeft(), Picture());
    painter.translate(inner.topLeft());
    Canvas().PaintOverlays(painter);
}

}  // namespace kirvana

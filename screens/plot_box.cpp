#include "screens/plot_box.h"

#include <QPaintEvent>
#include <QPainter>

namespace kirvana {

PlotBox::PlotBox(int index, const ColourTable& colours, const std::string& toolsDir, QWidget* parent)
    : QFrame(parent), index_(index), plotter_(std::make_unique<Plotter>(canvas_, colours, toolsDir)) {
    setObjectName(QString("PlotBox%1").arg(index));
    setFrameShape(QFrame::Box);
    setLineWidth(2);
    setMinimumSize(200, 150);
}

PlotResult PlotBox::Redraw(const MachineData& machine, PlotBoxInput input) {
    const QSize size = contentsRect().size().expandedTo(QSize(1, 1));
    // What is still to be drawn goes to the picture before the picture is replaced.
    canvas_.Finish();
    if (image_.size() != size) image_ = QImage(size, QImage::Format_RGB32);
    image_.fill(PlotColour(plotter_->Colours()[ColourItem::PlotBackground]));
    canvas_.SetDevice(&image_, size);
    input.Plot = index_;
    input.BoxWidth = size.width();
    input.BoxHeight = size.height();
    PlotResult result = PlotProgram(*plotter_, view_, machine, input);
    Show();
    return result;
}

void PlotBox::Show() {
    canvas_.Finish();
    update();
}

void PlotBox::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    if (Resized && !image_.isNull() && NeedsRedraw()) Resized(index_);
}

void PlotBox::paintEvent(QPaintEvent* event) {
    QFrame::paintEvent(event);
    canvas_.Finish();
    QPainter painter(this);
    const QRect inner = contentsRect();
    painter.setClipRect(inner);
    if (!image_.isNull()) painter.drawImage(inner.topLeft(), image_);
    painter.translate(inner.topLeft());
    canvas_.PaintOverlays(painter);
}

}  // namespace kirvana

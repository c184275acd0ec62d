// A picture of the whole panel: FrontEnd with every form and box that stands over it.
#pragma once

#include <QImage>

namespace kirvana {

class Panel;

// FrontEnd's picture with each visible window drawn at its place, the active modal one last.
// An empty image when FrontEnd isn't showing.
QImage CapturePanel(Panel& panel);

}  // namespace kirvana

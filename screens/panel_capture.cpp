#include "screens/panel_capture.h"

#include <QApplication>
#include <QPainter>
#include <QPixmap>

#include "screens/front_end.h"
#include "screens/panel.h"

namespace kirvana {

QImage CapturePanel(Panel& panel) {
    FrontEnd* front = panel.Front();
    if (!front || !front->isVisible()) return {};
    QPixmap picture = front->grab();
    QPainter painter(&picture);
    QWidget* modal = QApplication::activeModalWidget();
    auto draw = [&](QWidget* window) {
        painter.drawPixmap(window->geometry().topLeft() - front->geometry().topLeft(), window->grab());
    };
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window != front && window != modal && window->isVisible() && window->objectName() != "SplashForm")
            draw(window);
    if (modal && modal != front && modal->isVisible()) draw(modal);
    painter.end();
    return picture.toImage();
}

}  // namespace kirvana

#include "screens/panel_form.h"

#include <QKeyEvent>

#include "screens/panel.h"
#include "screens/panel_style.h"

namespace kirvana {

PanelForm::PanelForm(Panel& panel, std::string name) : QDialog(nullptr), panel_(panel), name_(std::move(name)) {
    setObjectName(Q(name_));
    setModal(true);
    // Without a window frame on a kiosk the form needs an edge of its own.
    setAttribute(Qt::WA_StyledBackground, true);
}

void PanelForm::keyPressEvent(QKeyEvent* event) {
    int code = KeyCodeOf(*event);
    if (FormKey(code, *event)) return;
    if (event->key() == Qt::Key_Escape) {
        reject();
        return;
    }
    if (code != 0) panel_.MainKeyPressed(code);
}

void PanelForm::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    Activate();
    panel_.FormVisibilityChanged(name_, true);
}

void PanelForm::hideEvent(QHideEvent* event) {
    QDialog::hideEvent(event);
    panel_.FormVisibilityChanged(name_, false);
}

}  // namespace kirvana

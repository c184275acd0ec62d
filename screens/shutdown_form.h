// ShutdownForm: the operator's shutdown, the service exit, or back.
#pragma once

#include <QLabel>
#include <QPushButton>

#include "screens/panel_form.h"

namespace kirvana {

class ShutdownForm : public PanelForm {
public:
    explicit ShutdownForm(Panel& panel);
    void Activate() override;
    QLabel* ShutdownLabel() { return label_; }
    QPushButton* ShutdownButton() { return shutdown_; }
    QPushButton* ServiceButton() { return service_; }
    QPushButton* CancelButton() { return cancel_; }

private:
    void Leave(bool service);
    QLabel* label_;
    QPushButton* shutdown_;
    QPushButton* service_;
    QPushButton* cancel_;
};

}  // namespace kirvana

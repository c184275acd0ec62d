// SendForm: programs out over the RS232 port, with the start trigger, FORCE and ABORT.
#pragma once

#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <string>
#include <vector>

#include "screens/file_forms.h"
#include "screens/panel_form.h"

namespace kirvana {

class SendForm : public PanelForm {
public:
    explicit SendForm(Panel& panel);
    void Activate() override;

protected:
    bool FormKey(int code, QKeyEvent& event) override;

private:
    void FillPrograms();
    void Ok();
    void SetSending(bool sending);

    std::vector<DirectoryChoice> directories_;
    QListWidget* directoryList_;
    QListWidget* fileList_;
    QLabel* sendLabel_;
    QProgressBar* floodBar_;
    QPushButton* ok_;
    QPushButton* exit_;
    QPushButton* abort_;
    QPushButton* force_;
    bool sending_ = false;
};

}  // namespace kirvana

// The restart screens: BlockStartForm, the slot's main program by record with the block to
// restart from, and RestartForm, the gathered state shown for confirmation while program 5 goes
// to the card and the cycle start label blinks until the operator starts the machine.
#pragma once

#include <QLabel>
#include <QListWidget>
#include <memory>

#include "navigation/restart_screens.h"
#include "screens/program_form_frame.h"

namespace kirvana {

class Panel;
class FormRegistry;

class BlockStartForm : public PanelForm {
public:
    BlockStartForm(Panel& panel, std::shared_ptr<RestartSession> session);
    void Activate() override;

    QListWidget* BlockList() { return list_; }
    QPushButton* SelectButton() { return select_; }
    QLabel* ProgramLabel() { return program_; }

protected:
    bool FormKey(int code, QKeyEvent& event) override;

private:
    void Page(int direction);
    void GoToBlock();
    void Select();
    void Visual();
    // The restart at the first hit the machine has not made.
    void AtStop();

    std::shared_ptr<RestartSession> session_;
    QLabel* program_;
    QListWidget* list_;
    QPushButton* select_;
    ButtonKeys keys_;
};

class RestartForm : public PanelForm {
public:
    RestartForm(Panel& panel, std::shared_ptr<RestartSession> session);
    void Activate() override;

    QLabel* CycleStartLabel() { return cycleStart_; }
    QLabel* PositnLabel() { return position_; }
    QLabel* Label(const char* name) { return findChild<QLabel*>(name); }
    QPushButton* ExitButton() { return exit_; }
    // The restart under way, shared with BlockStartForm and the plot's visual restart.
    RestartSession& Session() { return *session_; }
    // Whether the label is lit green now.
    bool CycleStartLit() const { return lit_; }

protected:
    bool FormKey(int code, QKeyEvent& event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void ShowState();
    void Run();
    void Blink(bool lit);

    std::shared_ptr<RestartSession> session_;
    QLabel *tool_, *measurement_, *position_, *hits_, *kerf_, *note_, *cycleStart_;
    QPushButton* exit_;
    ButtonKeys keys_;
    bool exitRequested_ = false;
    bool running_ = false;
    bool lit_ = false;
};

// BlockStartForm and RestartForm, sharing the restart under way.
void RegisterRestartForms(Panel& panel, FormRegistry& forms);

}  // namespace kirvana

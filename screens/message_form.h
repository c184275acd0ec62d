// MessageForm: the standing machine messages from the poll's list, their help texts, and the
// acknowledgement of received programs.
#pragma once

#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <array>

#include "controller/display_model.h"
#include "screens/panel_form.h"

namespace kirvana {

class MessageForm : public PanelForm {
public:
    explicit MessageForm(Panel& panel);
    void Activate() override;
    void ShowModel() override;
    // A row pressed: it becomes the selected line.
    void SelectRow(int row);
    void HelpPressed();
    void ClearPressed();

    QPushButton* Message(int row) { return rows_[row - 1]; }
    QPlainTextEdit* HelpBox() { return help_; }
    QWidget* MessageBox() { return box_; }
    QPushButton* ExitButton() { return exit_; }
    QPushButton* HelpButton() { return helpButton_; }
    QPushButton* ClearButton() { return clear_; }

protected:
    bool FormKey(int code, QKeyEvent& event) override;

private:
    QWidget* box_;
    QScrollArea* scroll_;
    std::array<QPushButton*, MessageListLines> rows_{};
    QPlainTextEdit* help_;
    QPushButton* exit_;
    QPushButton* helpButton_;
    QPushButton* clear_;
};

}  // namespace kirvana

// The frame of the machine and status screens: a caption, value boxes that open the number pad,
// texts that show the poll's model, command buttons, an exit, the keys of the captions' "&"
// letters and the two-line warning of a refused command.
#pragma once

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <string>

#include "screens/panel_form.h"
#include "system/machine_commands.h"

namespace kirvana {

class CommandForm : public PanelForm {
public:
    CommandForm(Panel& panel, const std::string& name, const std::string& title, int width, int height);
    QPushButton* ExitButton() { return exit_; }

protected:
    // A command or menu button in the general button colours.
    QPushButton* AddButton(const std::string& caption, const QString& objectName, int minWidth = 180);
    // A box showing a number; a press opens the number pad with the box's text and `mode`, and
    // OK puts the entered number in it. The label's "&" key presses the box.
    QPushButton* AddValueBox(QGridLayout* grid, int row, const std::string& caption, const QString& objectName,
                             int mode);
    // A read-only text of the model, with its caption on the left.
    QLabel* AddValueText(QGridLayout* grid, int row, int column, const std::string& caption, const QString& objectName);
    // A heading over a group.
    QLabel* AddHeading(const std::string& text);
    // A heading over a column of a grid, in its row 0.
    void AddColumnHeading(QGridLayout* grid, int column, const std::string& text);
    // The exit button at the bottom right.
    void AddExit();
    // The number in a value box, as the pad left it.
    double BoxValue(const QPushButton* box) const;
    // A refused command: the warning screen with the refusal's two lines. True when refused.
    bool Refused(const Refusal& refusal);
    // Letters and digits press the button (or the box of the label) whose caption marks them.
    bool FormKey(int code, QKeyEvent& event) override;

    QVBoxLayout* layout_;
    QString buttonStyle_;

private:
    QPushButton* exit_ = nullptr;
};

}  // namespace kirvana

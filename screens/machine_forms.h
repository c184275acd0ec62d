// MachineForm and the screens it opens for the sheet: LoadForm, MoveForm and SetupForm. Each
// command goes through its interlock in the machine commands; a refusal is the two-line warning
// and sends nothing.
#pragma once

#include <QListWidget>
#include <array>

#include "screens/command_form.h"

namespace kirvana {

class FormRegistry;

// Registers the machine and status screens by their system names.
void RegisterMachineForms(FormRegistry& forms, Panel& panel);

class MachineForm : public CommandForm {
public:
    explicit MachineForm(Panel& panel);
    void Activate() override;
    void ShowModel() override;
    QPushButton* ReferenceButton(int index) { return reference_[index]; }
    QPushButton* FeedButton(int index) { return feed_[index]; }
    QPushButton* MenuButton(int index) { return menu_[index]; }
    QLabel* FeedText() { return feedText_; }

private:
    std::array<QPushButton*, 5> reference_{};
    std::array<QPushButton*, 4> feed_{};
    std::array<QPushButton*, 6> menu_{};
    QLabel* feedText_;
};

class LoadForm : public CommandForm {
public:
    explicit LoadForm(Panel& panel);
    // The boxes from Q10 to Q13.
    void Activate() override;
    QPushButton* LoadBox(int index) { return boxes_[index]; }
    QPushButton* LoadButton(int index) { return load_[index - 1]; }

private:
    std::array<QPushButton*, 4> boxes_{};
    std::array<QPushButton*, 2> load_{};
};

class MoveForm : public CommandForm {
public:
    explicit MoveForm(Panel& panel);
    // The stations of the active slot.
    void Activate() override;
    QListWidget* MoveList() { return list_; }
    QPushButton* MoveBox(int index) { return boxes_[index - 1]; }
    QPushButton* MoveButton(int index) { return move_[index - 1]; }

private:
    void Move(bool punch);
    QListWidget* list_;
    std::array<QPushButton*, 3> boxes_{};
    std::array<QPushButton*, 2> move_{};
};

class SetupForm : public CommandForm {
public:
    explicit SetupForm(Panel& panel);
    void Activate() override;
    void ShowModel() override;
    QPushButton* ReferenceButton() { return reference_; }
    QPushButton* CarriageButton() { return carriage_; }
    QLabel* ActualText(int clamp) { return actual_[clamp - 1]; }
    QLabel* DemandText(int clamp) { return demand_[clamp - 1]; }

private:
    QPushButton* reference_;
    QPushButton* carriage_;
    std::array<QLabel*, 4> actual_{};
    std::array<QLabel*, 4> demand_{};
    std::array<QLabel*, 4> rowLabels_{};
};

}  // namespace kirvana

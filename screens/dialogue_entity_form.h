// The dialogue's entity screens: one form built from a screen's description (SheetDialogue,
// PunchDialogue, LineDialogue, GridDialogue, ArcDialogue, StopDialogue, DwellDialogue,
// RepositionDialogue, NestDialogue). Each box opens the numeric pad (the material the
// keyboard), a digit key goes to the box its label marks, OK confirms through the dialogue and
// CANCEL leaves nothing changed.
#pragma once

#include <QLabel>
#include <QPushButton>
#include <memory>
#include <vector>

#include "dialogue/dialogue_screen.h"
#include "screens/panel_form.h"

namespace kirvana {

class DialogueEntityForm : public PanelForm {
public:
    DialogueEntityForm(Panel& panel, DialogueScreen screen);
    void Activate() override;

    DialogueScreenModel& Model() { return *model_; }
    // Box n of the description's order, and its label.
    QPushButton* Box(std::size_t n) { return boxes_[n]; }
    QLabel* BoxLabel(std::size_t n) { return labels_[n]; }
    // A box by its control name and index ("LineBox", 3).
    QPushButton* BoxNamed(const std::string& control, int index);
    QPushButton* Toggle(std::size_t n) { return toggles_[n]; }
    QLabel* ToolLabel() { return toolLabel_; }
    QPushButton* ToolButton() { return tool_; }
    QPushButton* OkButton() { return ok_; }
    QPushButton* ExitButton() { return exit_; }
    // A box's text as the pad would give it.
    void SetBox(std::size_t n, const std::string& text);

    // CANCEL and Escape: nothing changed, the edit ends.
    void reject() override;

protected:
    bool FormKey(int code, QKeyEvent& event) override;

private:
    void EnterBox(std::size_t n);
    void ChooseTool();
    void Confirm();
    void Cancel();
    void ShowModel();

    std::unique_ptr<DialogueScreenModel> model_;
    std::vector<QLabel*> labels_;
    std::vector<QPushButton*> boxes_;
    std::vector<QPushButton*> toggles_;
    QLabel* toolLabel_ = nullptr;
    QPushButton* tool_ = nullptr;
    QPushButton* ok_ = nullptr;
    QPushButton* exit_ = nullptr;
};

// Registers the entity screens by their system names.
class FormRegistry;
void RegisterDialogueForms(Panel& panel, FormRegistry& forms);

}  // namespace kirvana

// The dialogue on FrontEnd: F5 starts it on the work files, the dialogue's keys and buttons
// move the cursor, open the entity screens, delete, edit, clear, write and load, and its
// drawing stands on plot box 0 with the cursor's entity highlighted. Leaving writes the
// work files.
#pragma once

#include <memory>
#include <string>

#include "dialogue/dialogue_keys.h"
#include "dialogue/dialogue_session.h"
#include "plot/plot_program.h"

namespace kirvana {

class Panel;
class DialogueControls;
class PlotBox;

class DialogueFront : public DialoguePlotHook {
public:
    explicit DialogueFront(Panel& panel);

    DialogueSession& Session() { return *session_; }

    // F5: the state from the work files (a notice when they were damaged), the drawing on box 0.
    void Enter();
    // Leaving: the work files written.
    void Leave();
    // A key of the dialogue's table; false when it is not one (it goes on to MainKey).
    bool Key(int code);
    void Command(DialogueCommand command);
    // A screen button or digit key: nothing when the screen is not allowed now.
    void OpenScreen(DialogueScreen screen);
    // `DialogueButton` 0: the dialogue's turret, or its plasma settings without a turret.
    void OpenTooling();
    void Write();
    void Load();
    void ToggleImperial();
    // The count, the description and the captions from the state.
    void Show();
    // What plot box 0 draws, and the cursor's entity highlighted over it.
    void PlotInput(PlotBoxInput& input) const;
    void Highlight();

    // DialoguePlotHook.
    void EraseEntity(const EntityRec& rec) override;
    void DrawEntity(const EntityRec& rec) override;
    void RedrawDrawing() override;
    void MoveHighlight(std::int32_t from, std::int32_t to) override;

private:
    DialogueControls* Controls();
    PlotBox* Box();
    void DrawRecord(std::int32_t number, int colourMode);
    void Draw(const EntityRec& rec, int colourMode);
    void Warn(const std::vector<std::string>& lines);
    std::string ChosenDirectory();
    std::string ChosenProgram();

    Panel& panel_;
    std::unique_ptr<DialogueSession> session_;
};

}  // namespace kirvana

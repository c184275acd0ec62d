#include "screens/dialogue_front.h"

#include <QApplication>

#include "dialogue/dialogue_screen.h"
#include "dialogue/program_loader.h"
#include "dialogue/program_writer.h"
#include "screens/dialogue_entity_form.h"
#include "screens/dialogue_panel.h"
#include "screens/front_end.h"
#include "screens/panel.h"
#include "screens/panel_style.h"
#include "screens/plot_box.h"
#include "screens/turret_dialogue.h"

namespace kirvana {

namespace {

// The parts of a message, one to a line, and the three line ends of every warning.
std::string WarningText(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += (text.empty() ? "" : "\n") + line;
    return text + "\n\n\n";
}

}  // namespace

DialogueFront::DialogueFront(Panel& panel)
    : panel_(panel),
      session_(std::make_unique<DialogueSession>(panel.State().Config.Dirs, panel.State().Config.Machine,
                                                 panel.State().Tools)) {
    session_->SetPlot(this);
}

DialogueControls* DialogueFront::Controls() { return panel_.Front() ? &panel_.Front()->Dialogue() : nullptr; }

PlotBox* DialogueFront::Box() { return panel_.PlotBoxAt(DialoguePlot); }

void DialogueFront::Warn(const std::vector<std::string>& lines) {
    panel_.ShowWarning(WarningText(lines), WarningKind::Notice, 1);
}

void DialogueFront::Enter() {
    if (panel_.Front()) panel_.Front()->ShowNavigation();
    std::vector<std::string> notice = session_->Start();
    if (DialogueControls* controls = Controls()) {
        controls->FillDirectories();
        const int at = controls->DirectoryCombo()->findText(Q(session_->State.ProgDir), Qt::MatchFixedString);
        if (at >= 0) controls->DirectoryCombo()->setCurrentIndex(at);
        controls->FillPrograms();
        controls->ProgramCombo()->setEditText(Q(session_->State.ProgName));
    }
    RedrawDrawing();
    Show();
    if (!notice.empty()) Warn(notice);
}

void DialogueFront::Leave() {
    if (!session_->Leave()) Warn({DrawingNotWritten});
    panel_.RedrawPlot(panel_.ActivePlot());
}

bool DialogueFront::Key(int code) {
    const DialogueKeyResult result = DialogueKey(code);
    switch (result.Command) {
        case DialogueCommand::None:
        case DialogueCommand::Leave:  // MainKey leaves the dialogue
            return false;
        case DialogueCommand::OpenScreen:
            OpenScreen(result.Screen);
            return true;
        default:
            Command(result.Command);
            return true;
    }
}

void DialogueFront::Command(DialogueCommand command) {
    if (ApplyCursorCommand(*session_, command)) {
        Show();
        return;
    }
    DialogueControls* controls = Controls();
    switch (command) {
        case DialogueCommand::Delete:
            if (session_->DeleteAtCursor()) RedrawDrawing();
            break;
        case DialogueCommand::Edit: {
            const DialogueScreen screen = session_->Edit();
            if (screen == DialogueScreen::None) {
                QApplication::beep();
                break;
            }
            panel_.OpenForm(DescribeScreen(screen).FormName);
            RedrawDrawing();
            break;
        }
        case DialogueCommand::Clear:
            if (!session_->Clear()) Warn({DrawingNotWritten});
            break;
        case DialogueCommand::Write:
            Write();
            break;
        case DialogueCommand::Load:
            Load();
            break;
        case DialogueCommand::FocusProgram:
            if (controls) controls->ProgramCombo()->setFocus();
            break;
        case DialogueCommand::FocusDirectory:
            if (controls) controls->DirectoryCombo()->setFocus();
            break;
        case DialogueCommand::ToggleImperial:
            ToggleImperial();
            break;
        case DialogueCommand::Tooling:
            OpenTooling();
            break;
        default:
            break;
    }
    Show();
}

void DialogueFront::OpenScreen(DialogueScreen screen) {
    if (!session_->ScreenAllowed(screen)) return;
    session_->State.EditMode = false;
    panel_.OpenForm(DescribeScreen(screen).FormName);
    RedrawDrawing();
    Show();
}

void DialogueFront::OpenTooling() {
    if (!session_->Machine().HasTurret) {
        panel_.OpenForm("PlasmaSettingsDialogue");
        return;
    }
    // From FrontEnd the turret stands on its stations, for no screen's tool.
    static_cast<TurretDialogue*>(panel_.Forms().Get("TurretDialogue"))->Begin(ScreenTool{});
    panel_.OpenForm("TurretDialogue");
}

std::string DialogueFront::ChosenDirectory() {
    DialogueControls* controls = Controls();
    return controls ? std::string(S(controls->DirectoryCombo()->currentText().trimmed())) : std::string();
}

std::string DialogueFront::ChosenProgram() {
    DialogueControls* controls = Controls();
    return controls ? std::string(S(controls->ProgramCombo()->currentText().trimmed())) : std::string();
}

void DialogueFront::Write() {
    const AskOperator ask = [this](const std::vector<std::string>& lines) {
        return panel_.ShowWarning(WarningText(lines), WarningKind::Question, 1) == 1;
    };
    const std::string program = ChosenProgram();
    const WriteResult result = WriteProgram(*session_, ChosenDirectory(), program, ask);
    if (!result.Written) {
        if (!result.Message.empty()) Warn(result.Message);
        return;
    }
    if (DialogueControls* controls = Controls()) {
        controls->FillDirectories();
        controls->FillPrograms();
        controls->ProgramCombo()->setEditText(Q(program));
    }
    if (panel_.Front()) panel_.Front()->SetText("PROGRAM WRITTEN :  " + result.ProgramFile);
}

void DialogueFront::Load() {
    const LoadResult result = LoadProgram(*session_, ChosenDirectory(), ChosenProgram());
    if (!result.Loaded) {
        if (!result.Message.empty()) Warn(result.Message);
        return;
    }
    RedrawDrawing();
}

void DialogueFront::ToggleImperial() { session_->State.ImperialDialogue = !session_->State.ImperialDialogue; }

void DialogueFront::Show() {
    DialogueControls* controls = Controls();
    if (!controls) return;
    controls->EntityCount()->setText(Q(session_->CursorCountText()));
    controls->EntityDescription()->setText(Q(session_->CursorDescription()));
    controls->ImperialButton()->setText(ImperialButtonCaption(session_->State.ImperialDialogue));
}

void DialogueFront::PlotInput(PlotBoxInput& input) const {
    const DialogueState& s = session_->State;
    input.DrawingPath = session_->WorkFile("drw");
    input.SheetX = s.SheetX;
    input.SheetY = s.SheetY;
    input.Clamps = s.ClampPos;
}

void DialogueFront::DrawRecord(std::int32_t number, int colourMode) {
    if (number < 2) return;
    if (auto rec = session_->Entity(number)) Draw(*rec, colourMode);
}

void DialogueFront::Draw(const EntityRec& rec, int colourMode) {
    PlotBox* box = Box();
    if (!box) return;
    box->Drawing().PlotEntity(DialoguePlot, rec, colourMode, false);
    // Each drawing is finished at once: the box may be resized before the next.
    box->Show();
}

void DialogueFront::EraseEntity(const EntityRec& rec) { Draw(rec, ColourMode::Erase); }

void DialogueFront::DrawEntity(const EntityRec& rec) { Draw(rec, ColourMode::Background); }

void DialogueFront::RedrawDrawing() { panel_.RedrawPlot(DialoguePlot); }

void DialogueFront::Highlight() { DrawRecord(session_->State.EntityCursor, ColourMode::Highlight); }

void DialogueFront::MoveHighlight(std::int32_t from, std::int32_t to) {
    DrawRecord(from, ColourMode::Background);
    DrawRecord(to, ColourMode::Highlight);
}

}  // namespace kirvana

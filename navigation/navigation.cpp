#include "navigation/navigation.h"

#include <algorithm>

#include "core/config.h"

namespace kirvana {

namespace {

KeyResult Show(std::string form) { return {KeyAction::ShowForm, std::move(form), 0}; }
KeyResult Modal(std::string form) { return {KeyAction::ShowModal, std::move(form), 0}; }
KeyResult Act(KeyAction action, int index = 0) { return {action, {}, index}; }

// The normal mode: the main panel is shown.
KeyResult NormalKey(Navigation& nav, const MachineData& machine, bool locked, int key) {
    // F9 and F12 work while the forms are locked.
    if (key == key::F9) {
        nav.CurrentForm = "MessageForm";
        return Show("MessageForm");
    }
    if (key == key::F12) return Modal("ShutdownForm");
    if (locked) return {};
    switch (key) {
        case key::F1:
            nav.CurrentForm = "ProgramForm";
            return Show("ProgramForm");
        case key::F2:
            if (machine.HasTurret) {
                nav.CurrentForm = "TurretForm";
                return Show("TurretForm");
            }
            if (machine.ProfilerKind == 2) return Modal("PlasmaSettingsForm");
            if (machine.ProfilerKind == 1) return {};
            return Act(KeyAction::Beep);
        case key::F3:
            return Show("MachineForm");
        case key::F4:
            return Show("StatusMenuForm");
        case key::F5:
            nav.DialogueOn = true;
            return Act(KeyAction::EnterDialogue);
        case key::F6:
            return Show("FileHandleForm");
        case key::F7:
            nav.GraphicsOn = !nav.GraphicsOn;
            nav.ViewMode = 0;
            return Act(KeyAction::GraphicsChanged);
        case key::F10:
            return Act(KeyAction::ChangeProgram, 1);
        case key::F11:
            return Act(KeyAction::ChangeProgram, 2);
        case 'K':
            return Show("UserForm");
        default:
            return {};
    }
}

// Graphics mode, by view mode.
KeyResult GraphicsKey(Navigation& nav, bool locked, int key) {
    if (nav.ViewMode == 0) {
        switch (key) {
            case 'R':
                return Act(KeyAction::GraphicsButton, 1);
            case 'Z':
                return Act(KeyAction::GraphicsButton, 2);
            case 'O':
                return Act(KeyAction::GraphicsButton, 3);
            case 'P':
                return Act(KeyAction::GraphicsButton, 4);
            case 'L':
                nav.LimitsOn = !nav.LimitsOn;
                return Act(KeyAction::ToggleLimits);
            case 'X':
                nav.GraphicsOn = false;
                return Act(KeyAction::GraphicsChanged);
            case 'K':
                if (locked) return {};
                return Show("UserForm");
            case key::F9:
                nav.CurrentForm = "MessageForm";
                return Show("MessageForm");
            default:
                return {};
        }
    }
    if (nav.ViewMode == 1 || nav.ViewMode == 2 || nav.ViewMode == 4) {
        int index = 0;
        switch (key) {
            case 'L':
            case key::Left:
                index = 1;
                break;
            case 'R':
            case key::Right:
                index = 2;
                break;
            case 'U':
            case key::Up:
                index = 3;
                break;
            case 'D':
            case key::Down:
                index = 4;
                break;
            case 'S':
                index = 6;
                break;
            case 'C':
                CursorCancelled(nav);
                return Act(KeyAction::CursorCancel);
            default:
                return {};
        }
        CursorButtonPressed(nav, index);
        return Act(KeyAction::CursorKey, index);
    }
    if (nav.ViewMode >= 5 && nav.ViewMode <= 8) {
        switch (key) {
            case 'F':
            case key::Home:
                return Act(KeyAction::PathKey, 1);
            case 'P':
            case key::Left:
                return Act(KeyAction::PathKey, 2);
            case 'N':
            case key::Right:
                return Act(KeyAction::PathKey, 3);
            case 'L':
            case key::End:
                return Act(KeyAction::PathKey, 4);
            case 'T':
            case key::Minus:
            case key::Subtract:
                return Act(KeyAction::PathKey, 5);
            case 'S':
                return Act(KeyAction::PathKey, 6);
            case 'C':
                nav.ViewMode = 0;
                return Act(KeyAction::PathCancel);
            default:
                return {};
        }
    }
    return {};
}

// Dialogue mode: its own keys come with the dialogue; messages work, shutdown does not.
KeyResult DialogueKey(Navigation& nav, bool locked, int key) {
    if (key == key::F9) {
        nav.CurrentForm = "MessageForm";
        return Show("MessageForm");
    }
    if (key == 'X' && !locked) {
        nav.DialogueOn = false;
        return Act(KeyAction::LeaveDialogue);
    }
    return {};
}

}  // namespace

KeyResult MainKey(Navigation& nav, const MachineData& machine, bool formsLocked, int key) {
    if (nav.DialogueOn) return DialogueKey(nav, formsLocked, key);
    if (nav.GraphicsOn) return GraphicsKey(nav, formsLocked, key);
    return NormalKey(nav, machine, formsLocked, key);
}

std::string GraphicsButtonPressed(Navigation& nav, int index) {
    switch (index) {
        case 1:
            nav.ViewMode = 0;
            return "GRAPHICS - REDRAW";
        case 2:
            nav.ViewMode = 1;
            return {};
        case 3:
            nav.ViewMode = 0;
            return "GRAPHICS - ZOOM OUT";
        case 4:
            nav.ViewMode = 4;
            return {};
        default:
            return {};
    }
}

void CursorButtonPressed(Navigation& nav, int index) {
    if (index != 6) return;
    if (nav.ViewMode == 1)
        nav.ViewMode = 2;
    else if (nav.ViewMode == 2 || nav.ViewMode == 4)
        nav.ViewMode = 0;
}

void CursorCancelled(Navigation& nav) { nav.ViewMode = 0; }

std::vector<std::string> MainButtonCaptions(const MachineData& machine) {
    return {"PROGRAM F1",        machine.HasTurret ? "TOOLING F2" : "SETTINGS F2",
            "MACHINE F3",        "STATUS F4",
            "CREATE PROGRAM F5", "FILE F6",
            "GRAPHICS F7"};
}

std::vector<std::string> PathButtonCaptions(std::int16_t viewMode) {
    if (viewMode == 1 || viewMode == 2 || viewMode == 4) return {"&LEFT", "&RIGHT", "&UP", "&DOWN", "", "&SELECT"};
    if (viewMode >= 5 && viewMode <= 8) return {"&FIRST", "&PREVIOUS", "&NEXT", "&LAST", "SPLI&T", "&SELECT"};
    return {"", "", "", "", "", ""};
}

std::string PathExitCaption(std::int16_t viewMode) { return viewMode == 0 ? std::string() : "&CANCEL"; }

std::string PathHeading(std::int16_t viewMode) {
    return viewMode >= 5 && viewMode <= 8 ? "VISUAL RESTART" : std::string();
}

std::string CursorPrompt(std::int16_t viewMode) {
    switch (viewMode) {
        case 1:
            return "SELECT FIRST CORNER";
        case 2:
            return "SELECT OPPOSITE CORNER";
        case 4:
            return "SELECT NEW CENTRE POSITION";
        case 5:
        case 6:
        case 7:
        case 8:
            return "SELECT RESTART POSITION";
        default:
            return {};
    }
}

bool ExemptFromLock(const std::string& form) {
    return form == "ListForm" || form == "FrontEnd" || form == "MessageForm" || form == "WarningForm";
}

const std::vector<std::string>& FormsClosedByProgramChange() {
    static const std::vector<std::string> forms{
        "ProgramForm",  "EditProgForm", "BlockStartForm",    "RestartForm",        "ProgListForm",
        "SearchForm",   "TurretForm",   "PunchSettingsForm", "PlasmaSettingsForm", "MachineStatusForm",
        "ViewProgForm", "SetupForm",    "BatchForm"};
    return forms;
}

}  // namespace kirvana

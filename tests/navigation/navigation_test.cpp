#include "navigation/navigation.h"

#include <gtest/gtest.h>

#include "core/config.h"

using namespace kirvana;

namespace {

MachineData Turret() {
    MachineData m;
    m.HasTurret = true;
    m.ProfilerKind = 2;
    return m;
}

MachineData NoTurret(int profilerKind) {
    MachineData m;
    m.HasTurret = false;
    m.ProfilerKind = static_cast<std::int16_t>(profilerKind);
    return m;
}

}  // namespace

namespace kirvana {
inline void PrintTo(const KeyResult& r, std::ostream* os) {
    *os << "{action " << static_cast<int>(r.Action) << ", form \"" << r.Form << "\", index " << r.Index << "}";
}
}  // namespace kirvana

namespace {

KeyResult Press(Navigation& nav, int key, bool locked = false, const MachineData& m = Turret()) {
    return MainKey(nav, m, locked, key);
}

KeyResult Form(const char* name) { return {KeyAction::ShowForm, name, 0}; }
KeyResult Modal(const char* name) { return {KeyAction::ShowModal, name, 0}; }
KeyResult Act(KeyAction a, int index = 0) { return {a, {}, index}; }

}  // namespace

TEST(MainKeyTest, NormalModeUnlocked) {
    Navigation nav;
    EXPECT_EQ(Press(nav, key::F1), Form("ProgramForm"));
    EXPECT_EQ(nav.CurrentForm, "ProgramForm");
    EXPECT_EQ(Press(nav, key::F2), Form("TurretForm"));
    EXPECT_EQ(nav.CurrentForm, "TurretForm");
    EXPECT_EQ(Press(nav, key::F3), Form("MachineForm"));
    EXPECT_EQ(Press(nav, key::F4), Form("StatusMenuForm"));
    EXPECT_EQ(Press(nav, key::F6), Form("FileHandleForm"));
    EXPECT_EQ(nav.CurrentForm, "TurretForm");  // F3, F4, F6 leave CurrentForm
    EXPECT_EQ(Press(nav, key::F9), Form("MessageForm"));
    EXPECT_EQ(nav.CurrentForm, "MessageForm");
    EXPECT_EQ(Press(nav, key::F10), Act(KeyAction::ChangeProgram, 1));
    EXPECT_EQ(Press(nav, key::F11), Act(KeyAction::ChangeProgram, 2));
    EXPECT_EQ(Press(nav, key::F12), Modal("ShutdownForm"));
    EXPECT_EQ(Press(nav, 'K'), Form("UserForm"));
    EXPECT_EQ(Press(nav, key::F8), KeyResult{});
    EXPECT_EQ(Press(nav, 'Q'), KeyResult{});
    EXPECT_EQ(Press(nav, key::F5), Act(KeyAction::EnterDialogue));
    EXPECT_TRUE(nav.DialogueOn);
}

TEST(MainKeyTest, NormalModeLockedRefusesAllButMessagesAndShutdown) {
    for (int k : {key::F1, key::F2, key::F3, key::F4, key::F5, key::F6, key::F7, key::F10, key::F11, int('K')}) {
        Navigation nav;
        nav.CurrentForm = "Before";
        EXPECT_EQ(Press(nav, k, true), KeyResult{}) << k;
        EXPECT_EQ(nav.CurrentForm, "Before");
        EXPECT_FALSE(nav.GraphicsOn);
        EXPECT_FALSE(nav.DialogueOn);
    }
    Navigation nav;
    EXPECT_EQ(Press(nav, key::F9, true), Form("MessageForm"));
    EXPECT_EQ(Press(nav, key::F12, true), Modal("ShutdownForm"));
}

TEST(MainKeyTest, F2WithoutTurretByProfilerKind) {
    Navigation nav;
    EXPECT_EQ(Press(nav, key::F2, false, NoTurret(2)), Modal("PlasmaSettingsForm"));
    EXPECT_EQ(Press(nav, key::F2, false, NoTurret(1)), KeyResult{});
    EXPECT_EQ(Press(nav, key::F2, false, NoTurret(0)), Act(KeyAction::Beep));
    EXPECT_EQ(nav.CurrentForm, "");
}

TEST(MainKeyTest, F7TogglesGraphicsAndXLeaves) {
    Navigation nav;
    EXPECT_EQ(Press(nav, key::F7), Act(KeyAction::GraphicsChanged));
    EXPECT_TRUE(nav.GraphicsOn);
    // In graphics mode the F keys of the main panel are not in force.
    EXPECT_EQ(Press(nav, key::F1), KeyResult{});
    EXPECT_EQ(Press(nav, key::F12), KeyResult{});
    EXPECT_EQ(Press(nav, 'X'), Act(KeyAction::GraphicsChanged));
    EXPECT_FALSE(nav.GraphicsOn);
}

TEST(MainKeyTest, GraphicsModeZeroUnlockedAndLocked) {
    for (bool locked : {false, true}) {
        Navigation nav;
        nav.GraphicsOn = true;
        EXPECT_EQ(Press(nav, 'R', locked), Act(KeyAction::GraphicsButton, 1));
        EXPECT_EQ(Press(nav, 'O', locked), Act(KeyAction::GraphicsButton, 3));
        EXPECT_EQ(Press(nav, 'L', locked), Act(KeyAction::ToggleLimits));
        EXPECT_TRUE(nav.LimitsOn);
        EXPECT_EQ(Press(nav, 'K', locked), locked ? KeyResult{} : Form("UserForm"));
        EXPECT_EQ(Press(nav, key::F9, locked), Form("MessageForm"));
        EXPECT_EQ(Press(nav, 'Z', locked), Act(KeyAction::GraphicsButton, 2));
        EXPECT_EQ(Press(nav, 'P', locked), Act(KeyAction::GraphicsButton, 4));
    }
}

TEST(MainKeyTest, CursorModesMoveSelectAndCancel) {
    Navigation nav;
    nav.GraphicsOn = true;
    EXPECT_EQ(GraphicsButtonPressed(nav, 2), "");
    EXPECT_EQ(nav.ViewMode, 1);
    EXPECT_EQ(CursorPrompt(nav.ViewMode), "SELECT FIRST CORNER");
    EXPECT_EQ(Press(nav, 'L'), Act(KeyAction::CursorKey, 1));
    EXPECT_EQ(Press(nav, key::Left), Act(KeyAction::CursorKey, 1));
    EXPECT_EQ(Press(nav, 'R'), Act(KeyAction::CursorKey, 2));
    EXPECT_EQ(Press(nav, key::Right), Act(KeyAction::CursorKey, 2));
    EXPECT_EQ(Press(nav, 'U'), Act(KeyAction::CursorKey, 3));
    EXPECT_EQ(Press(nav, key::Up), Act(KeyAction::CursorKey, 3));
    EXPECT_EQ(Press(nav, 'D'), Act(KeyAction::CursorKey, 4));
    EXPECT_EQ(Press(nav, key::Down), Act(KeyAction::CursorKey, 4));
    EXPECT_EQ(nav.ViewMode, 1);
    EXPECT_EQ(Press(nav, 'S'), Act(KeyAction::CursorKey, 6));
    EXPECT_EQ(nav.ViewMode, 2);
    EXPECT_EQ(CursorPrompt(nav.ViewMode), "SELECT OPPOSITE CORNER");
    EXPECT_EQ(Press(nav, 'Z'), KeyResult{});
    EXPECT_EQ(Press(nav, 'S'), Act(KeyAction::CursorKey, 6));
    EXPECT_EQ(nav.ViewMode, 0);
    GraphicsButtonPressed(nav, 4);
    EXPECT_EQ(nav.ViewMode, 4);
    EXPECT_EQ(CursorPrompt(nav.ViewMode), "SELECT NEW CENTRE POSITION");
    EXPECT_EQ(Press(nav, 'C'), Act(KeyAction::CursorCancel));
    EXPECT_EQ(nav.ViewMode, 0);
    EXPECT_TRUE(nav.GraphicsOn);
    EXPECT_EQ(GraphicsButtonPressed(nav, 1), "GRAPHICS - REDRAW");
    EXPECT_EQ(GraphicsButtonPressed(nav, 3), "GRAPHICS - ZOOM OUT");
    EXPECT_EQ(nav.ViewMode, 0);
}

TEST(MainKeyTest, PathModeKeys) {
    for (std::int16_t mode = 5; mode <= 8; ++mode) {
        Navigation nav;
        nav.GraphicsOn = true;
        nav.ViewMode = mode;
        EXPECT_EQ(Press(nav, 'F'), Act(KeyAction::PathKey, 1));
        EXPECT_EQ(Press(nav, key::Home), Act(KeyAction::PathKey, 1));
        EXPECT_EQ(Press(nav, 'P'), Act(KeyAction::PathKey, 2));
        EXPECT_EQ(Press(nav, key::Left), Act(KeyAction::PathKey, 2));
        EXPECT_EQ(Press(nav, 'N'), Act(KeyAction::PathKey, 3));
        EXPECT_EQ(Press(nav, key::Right), Act(KeyAction::PathKey, 3));
        EXPECT_EQ(Press(nav, 'L'), Act(KeyAction::PathKey, 4));
        EXPECT_EQ(Press(nav, key::End), Act(KeyAction::PathKey, 4));
        EXPECT_EQ(Press(nav, 'T'), Act(KeyAction::PathKey, 5));
        EXPECT_EQ(Press(nav, key::Minus), Act(KeyAction::PathKey, 5));
        EXPECT_EQ(Press(nav, 'S'), Act(KeyAction::PathKey, 6));
        EXPECT_EQ(Press(nav, 'R'), KeyResult{});
        EXPECT_EQ(nav.ViewMode, mode);
        EXPECT_EQ(Press(nav, 'C'), Act(KeyAction::PathCancel));
        EXPECT_EQ(nav.ViewMode, 0);
    }
}

TEST(MainKeyTest, DialogueModeKeepsMessagesAndRefusesShutdown) {
    Navigation nav;
    nav.DialogueOn = true;
    EXPECT_EQ(Press(nav, key::F9), Form("MessageForm"));
    EXPECT_EQ(Press(nav, key::F12), KeyResult{});
    EXPECT_EQ(Press(nav, key::F1), KeyResult{});
    // The dialogue's own keys come with the dialogue: 2 before a sheet does nothing here.
    EXPECT_EQ(Press(nav, '2'), KeyResult{});
    EXPECT_EQ(Press(nav, 'X', true), KeyResult{});
    EXPECT_TRUE(nav.DialogueOn);
    EXPECT_EQ(Press(nav, 'X'), Act(KeyAction::LeaveDialogue));
    EXPECT_FALSE(nav.DialogueOn);
}

TEST(NavigationTest, CaptionsWithAndWithoutTurret) {
    std::vector<std::string> with = MainButtonCaptions(Turret());
    ASSERT_EQ(with.size(), 7u);
    EXPECT_EQ(with[0], "PROGRAM F1");
    EXPECT_EQ(with[1], "TOOLING F2");
    EXPECT_EQ(with[6], "GRAPHICS F7");
    EXPECT_EQ(MainButtonCaptions(NoTurret(2))[1], "SETTINGS F2");
    EXPECT_EQ(PathButtonCaptions(1)[0], "&LEFT");
    EXPECT_EQ(PathButtonCaptions(4)[4], "");
    EXPECT_EQ(PathButtonCaptions(6)[4], "SPLI&T");
    EXPECT_EQ(PathExitCaption(5), "&CANCEL");
}

TEST(NavigationTest, LockExemptionsAndFormsClosedByChange) {
    for (const char* f : {"ListForm", "FrontEnd", "MessageForm", "WarningForm"}) EXPECT_TRUE(ExemptFromLock(f));
    EXPECT_FALSE(ExemptFromLock("ProgramForm"));
    EXPECT_FALSE(ExemptFromLock("UserForm"));
    EXPECT_EQ(FormsClosedByProgramChange().size(), 13u);
    EXPECT_EQ(FormsClosedByProgramChange().front(), "ProgramForm");
    EXPECT_EQ(FormsClosedByProgramChange().back(), "BatchForm");
}

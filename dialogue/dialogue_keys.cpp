#include "dialogue/dialogue_keys.h"

#include <array>

namespace kirvana {

namespace {

namespace code {
inline constexpr int PageUp = 33, PageDown = 34, End = 35, Home = 36, Left = 37, Right = 39, Delete = 46;
}

}  // namespace

DialogueKeyResult DialogueKey(int keyCode) {
    if (keyCode >= '1' && keyCode <= '9') return {DialogueCommand::OpenScreen, ScreenOfButton(keyCode - '0')};
    switch (keyCode) {
        case code::Left:
            return {DialogueCommand::CursorBack};
        case code::Right:
            return {DialogueCommand::CursorForward};
        case code::PageDown:
            return {DialogueCommand::CursorBackTen};
        case code::PageUp:
            return {DialogueCommand::CursorForwardTen};
        case code::Home:
            return {DialogueCommand::CursorFirst};
        case code::End:
            return {DialogueCommand::CursorLast};
        case 'L':
        case code::Delete:
            return {DialogueCommand::Delete};
        case 'E':
            return {DialogueCommand::Edit};
        case 'C':
            return {DialogueCommand::Clear};
        case 'W':
            return {DialogueCommand::Write};
        case 'R':
            return {DialogueCommand::Load};
        case 'X':
            return {DialogueCommand::Leave};
        case 'P':
            return {DialogueCommand::FocusProgram};
        case 'D':
            return {DialogueCommand::FocusDirectory};
        case 'M':
            return {DialogueCommand::ToggleImperial};
        case 'T':
        case 'S':
            return {DialogueCommand::Tooling};
        default:
            return {};
    }
}

bool ApplyCursorCommand(DialogueSession& session, DialogueCommand command) {
    switch (command) {
        case DialogueCommand::CursorBack:
            session.MoveCursor(-1);
            return true;
        case DialogueCommand::CursorForward:
            session.MoveCursor(1);
            return true;
        case DialogueCommand::CursorBackTen:
            session.MoveCursor(-10);
            return true;
        case DialogueCommand::CursorForwardTen:
            session.MoveCursor(10);
            return true;
        case DialogueCommand::CursorFirst:
            session.CursorHome();
            return true;
        case DialogueCommand::CursorLast:
            session.CursorEnd();
            return true;
        default:
            return false;
    }
}

const char* ImperialButtonCaption(bool imperial) { return imperial ? "&METRIC" : "I&MPERIAL"; }

std::string DialogueButtonCaption(int n, bool hasTurret) {
    static constexpr std::array<const char*, 10> captions = {
        "&TOOLING", "SHEET (&1)", "PUNCH (&2)", "LINE (&3)",       "GRID (&4)",
        "ARC (&5)", "STOP (&6)",  "DWELL (&7)", "REPOSITION (&8)", "MULTI-PART (&9)"};
    if (n < 0 || n > 9) return {};
    if (!hasTurret && n == 0) return "&SETTINGS";
    if (!hasTurret && n == 2) return "MOVE (&2)";
    return captions[static_cast<std::size_t>(n)];
}

}  // namespace kirvana

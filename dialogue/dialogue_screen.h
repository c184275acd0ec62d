// The dialogue's entity screens as data: each screen's title, its boxes with their labels and
// pads, its option and toggle buttons; and the work of one open screen without its controls:
// the boxes filled on opening (from the last point, or from the record at the cursor under
// Edit), the linked boxes following a change, the screen's own tool, and the confirmation.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "dialogue/dialogue_session.h"
#include "tooling/turret.h"

namespace kirvana {

// What a box holds, which decides its pad and how its text is read and shown.
enum class BoxKind { Length, Angle, Count, Time, Text };

struct DialogueBox {
    std::string Control;  // the control's system name: "LineBox", "IndexBox"...
    int Index = 0;        // the control index; 0 for a box that stands alone
    std::string Label;    // the caption, the digit key marked ("&1")
    BoxKind Kind = BoxKind::Length;
};

struct DialogueToggle {
    std::string Control;                // "PunchOption", "CompButton"...
    std::vector<std::string> Captions;  // the caption of each state
};

struct DialogueScreenDescription {
    DialogueScreen Screen = DialogueScreen::None;
    std::string FormName;  // "LineDialogue"
    std::string Title;
    std::vector<DialogueBox> Boxes;
    std::vector<DialogueToggle> Toggles;
    bool HasTool = false;  // `ToolLabel` and `ToolButton` ("&TOOLING")
};

// The description of a screen; the Sheet's describes four clamp boxes, of which the machine's
// count are shown.
const DialogueScreenDescription& DescribeScreen(DialogueScreen screen);
// The screens in the order of the digit keys.
const std::vector<DialogueScreen>& DialogueScreens();

// The caption of `ToolButton`.
inline constexpr const char* ToolButtonCaption = "&TOOLING";
// The refusal of a screen whose drawing could not be written.
inline constexpr const char* DrawingNotWritten = "Dialogue File Not Written !";

class DialogueScreenModel {
public:
    DialogueScreenModel(DialogueSession& session, DialogueScreen screen);

    const DialogueScreenDescription& Description() const { return *description_; }

    // The boxes filled for an opening: from the record at the cursor when `EditMode` is set,
    // else the screen's defaults from the last point. The screen's tool stays.
    void Open();
    // Leaving without a change: `EditMode` falls.
    void Cancel();

    // The text each box shows, in the order of the description.
    const std::vector<std::string>& Texts() const { return texts_; }
    bool BoxShown(std::size_t box) const;
    // The box whose label carries the digit, or -1.
    int BoxOfDigit(int digit) const;
    // The pad's mode of a box: a length or angle takes a sign and a point, a count digits only;
    // a text box its largest length.
    int PadMode(std::size_t box) const;
    // A box's new text as the pad gave it; the linked boxes follow.
    void SetBox(std::size_t box, const std::string& text);

    int ToggleState(std::size_t toggle) const { return toggles_[toggle]; }
    bool ToggleShown(std::size_t toggle) const;
    std::string ToggleCaption(std::size_t toggle) const;
    void PressToggle(std::size_t toggle);

    // The screen's tool and the text of `ToolLabel`.
    const ScreenTool& Tool() const { return tool_; }
    std::string ToolLabelText() const;
    // The tool TurretDialogue gave.
    void SetTool(const TurretChoice& choice);

    // Validates, composes and hands the record to the dialogue. Empty when confirmed; else the
    // message, and nothing was written.
    std::string Confirm();

private:
    void Defaults();
    void FillFrom(const EntityRec& rec);
    void DefaultTool();
    void Show();
    void ShowLine();
    void ShowArc();
    std::string BoxText(std::size_t box) const;
    std::size_t ToggleOf(const char* control) const;
    std::size_t BoxOf(const char* control, int index) const;
    std::string ConfirmEntity(const Composed& composed);

    DialogueSession& session_;
    const DialogueScreenDescription* description_;
    std::vector<double> values_;  // lengths in mm, angles in degrees
    std::vector<std::string> texts_;
    std::vector<int> toggles_;
    ScreenTool tool_;
    bool toolChosen_ = false;
    LineFields line_;
    ArcFields arc_;
};

}  // namespace kirvana

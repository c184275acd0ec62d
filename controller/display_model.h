// What the poll cycle shows: every text a form shows, already formatted, the message list, the
// lit block, the status colours and what the plot must redraw. The screens set the inputs (which
// forms are visible, the position modes, the selected message line) and only show the rest.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace kirvana {

// The forms whose visibility the cycle reads: a read is made only while its form is shown.
struct FormVisibility {
    bool MachineForm = false;        // its feed text
    bool XYJogForm = false;          // X and Y at 2 decimals
    bool XYPositionForm = false;     // X and Y, or the values of PositionMode
    bool TCPositionForm = false;     // third axis and turret angle, or RotaryPositionMode
    bool ViewProgForm = false;       // the lit block
    bool MessageForm = false;        // the message list
    bool BatchForm = false;          // the batch counters
    bool MachineStatusForm = false;  // run time, clamps, station
    bool PlasmaStatusForm = false;   // torch, inputs, plasma values
    bool SetupForm = false;          // actual and demand clamp positions
};

// What XYPositionForm and TCPositionForm show, chosen with their PositionButtons.
enum class PositionMode : std::int16_t { Actual = 0, Command = 1, Target = 2, Follow = 3 };
inline constexpr std::array<const char*, 4> PositionButtonCaptions = {"&ACTUAL", "&COMMAND", "&TARGET", "&FOLLOW"};

// The three colour pairs of FrontEnd's two status boxes.
enum class StatusColours { Normal, MessagesWaiting, Hold };

// One line of MessageForm's list: a blank and the message, and the help file behind it.
struct MessageLine {
    std::string Text;
    std::string HelpFile;
};

inline constexpr int MessageListLines = 18;

struct MessageList {
    std::array<MessageLine, MessageListLines> Lines;
    int LineCount = 0;          // lines in use, from the top
    int SelectedMessage = 0;    // from 1, the line shown in the inverted colours; 0: none
};

// FrontEnd's status strip: PositionText 1 to 6 as elements 0 to 5. 1 and 2: X and Y at one
// decimal; 3: the third axis (only with a third axis); 4: the station line (the tool number of
// the current station, two digits); 5: the feed override; 6: the last figure of the position box.
struct FrontEndDisplay {
    std::array<std::string, 6> PositionText;
    StatusColours Colours = StatusColours::Normal;
};

// MachineStatusForm: the run time, one row per clamp, the current station with its tool and values.
struct MachineStatusDisplay {
    std::string RunTimeText;                  // "m:ss", below a minute "0:ss"
    std::array<std::string, 4> ClampTexts;    // ClampActual less the station's X offset, one decimal
    int ClampCount = 0;                       // rows in use
    std::string StationText;                  // the current station; "0" with no valid station
    std::string ToolText;                     // its tool
    std::array<std::string, 3> OffsetTexts;   // its X, Y and third offset, one decimal
};

// SetupForm's clamp panel: the actual positions beside the slot's demand values, 2 decimals.
struct ClampPanel {
    std::array<std::string, 4> ActualTexts;
    std::array<std::string, 4> DemandTexts;
    int ClampCount = 0;
};

// BatchForm: parts per sheet, parts required, sheets required, completed sheets, sheets to go.
struct BatchPanel {
    std::array<std::string, 5> Texts;
};

// PlasmaStatusForm: torch height, the three profiler inputs, the tool offset side, and P101 to
// P110 as the card has them beside the slot's plasma settings.
struct PlasmaPanel {
    std::string TorchHeightText;              // " UP", " DOWN" or " CLEAR"
    std::array<std::string, 3> InputTexts;    // " ON" or " OFF": M887, M888, M148
    std::string OffsetSideText;               // " RIGHT", " LEFT" or " NONE"
    std::array<std::string, 10> CardTexts;    // P101 to P110
    std::array<std::string, 10> SettingTexts; // the slot's plasma settings
};

// The block the viewing screen lights: the card program (1 to 4; 0 none), the motion block and
// the source record of its `.RA`/`.RM` files (from 1; 0 none).
struct LitBlock {
    std::int32_t Program = -1;       // LastSlotShown
    std::int32_t Record = -1;        // LastRecordShown
    std::int16_t MotionBlockIndex = 0;
    std::string SourceText;          // the record of `.RA`k, trimmed
    std::string MotionText;          // the record of `.RM`k, trimmed
    bool Changed = false;            // the screen must be redrawn around the record
};

// What the plot must do after a tick.
struct PlotUpdate {
    bool RunDataReset = false;                 // a run began: the real-time data start anew
    std::vector<std::int32_t> DoneHits;        // `.dr1` records to draw in the "done" colour
    bool ToolMoved = false;                    // the tool's position is to be redrawn
    bool FromProfiler = false;                 // the tool is the plasma head
    bool FullRefresh = false;                  // a head changed: the screens need a full refresh
    bool ToolChanged = false;                  // a new station or clamps: the tool is redrawn
};

// The whole model: inputs from the screens first, then what the cycle wrote.
struct DisplayModel {
    // Inputs, set by the screens.
    FormVisibility Visible;
    PositionMode XYMode = PositionMode::Actual;       // PositionMode
    PositionMode RotaryMode = PositionMode::Actual;   // RotaryPositionMode
    bool BatchEditing = false;            // BatchForm's button reads other than "&SET"
    bool NewProgramsReceived = false;     // programs came in on the serial line
    std::string ReceiveHelpFile;          // the help of the received-programs line

    // Written by the cycle.
    FrontEndDisplay FrontEnd;
    std::string MachineFeedText;                     // MachineForm
    std::array<std::string, 2> JogTexts;             // XYJogForm
    std::array<std::string, 2> XYPositionTexts;      // XYPositionForm
    std::array<std::string, 2> TCPositionTexts;      // TCPositionForm
    MessageList Messages;                            // MessageForm
    LitBlock Block;                                  // ViewProgForm
    BatchPanel Batch;                                // BatchForm
    MachineStatusDisplay MachineStatus;              // MachineStatusForm
    ClampPanel Clamps;                               // SetupForm
    PlasmaPanel Plasma;                              // PlasmaStatusForm
    PlotUpdate Plot;                                 // the plot, cleared at each tick
    std::int32_t HitCount = 0;                       // the active slot's hit counter
    bool HeadCaptionsChanged = false;                // the buttons of a head need new captions
    std::vector<std::string> Notices;                // what the tick has to say once, cleared each tick
};

}  // namespace kirvana

// The dialogue's entity screens without their controls: how the values of the boxes are read,
// how the linked fields of the line and arc screens follow each other, the grid's scoring and
// completion, the validation of each screen and the record each one composes.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "analysis/entity.h"
#include "core/config.h"
#include "tooling/settings.h"
#include "tooling/tool_record.h"

namespace kirvana {

// The validation texts of the screens.
namespace dialogue_message {
inline constexpr const char* InvalidLine = "Invalid Line !";
inline constexpr const char* InvalidGrid = "Invalid Grid Pattern !";
inline constexpr const char* InvalidArc = "Invalid Arc !";
inline constexpr const char* InvalidDwell = "Invalid Dwell Time !";
inline constexpr const char* OutOfLimits = "Out Of Limits !";
inline constexpr const char* InvalidReposition = "Invalid Reposition !";
inline constexpr const char* InvalidMultiPart = "Invalid Multi-Part !";
}  // namespace dialogue_message

// A box's text as a length in mm: its leading number, times 25.4 in inches, rounded half to
// even to 4 decimals.
double BoxLength(std::string_view text, bool imperial);
// A box's text as a plain number (a count, a time), rounded to 4 decimals.
double BoxValue(std::string_view text);
// A box's text as an angle: normalised, rounded to 3 decimals.
double BoxAngle(std::string_view text);
// A length for a box: inches to 3 decimals, millimetres to 2.
std::string LengthText(double millimetres, bool imperial);

// The tool a punching screen keeps: the station's tool, its description and the station, -1
// (any negative) for the plasma tool.
struct ScreenTool {
    ToolRecord Tool;
    std::string Description;
    std::int16_t StationNo = 0;
    bool Autoindex = false;  // the station turns the tool
    bool IsPlasma() const { return StationNo < 0; }
};

// What a confirmation gives: the composed record, or the screen's message.
struct Composed {
    bool Ok = false;
    std::string Message;
    EntityRec Record;
};

// Where the last entity ended, the start of the next screen.
struct LastPoint {
    double X = 0;
    double Y = 0;
};

// The machine's limits as the dialogue sees them: the travel box, X shifted by `OffsetX`.
struct DialogueLimits {
    double XMin = 0, XMax = 0, YMin = 0, YMax = 0;
    double OffsetX = 0;
};
DialogueLimits LimitsOf(const MachineTravel& travel, double offsetX);
// The comparison the punch and stop screens make (its result changes nothing).
bool WithinLimits(const DialogueLimits& limits, double x, double y);

// PunchDialogue: option 0 a Punch at the point, option 1 a Move from the last point to it.
Composed ComposePunch(double x, double y, double indexAngle, int punchOption, const ScreenTool& tool,
                      const LastPoint& last, const DialogueLimits& limits);

// LineDialogue's eight boxes and the linking between them.
struct LineFields {
    enum Field { StartX = 1, StartY, FinishX, FinishY, Length, Angle, Pitch, Hits };
    double X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;
    double LengthValue = 0, AngleValue = 0, PitchValue = 0;
    std::int32_t HitsValue = 0;
    bool FinishByHand = false;  // the finish was typed, not worked out
    // Sets a box (mm and degrees, as read) and lets the others follow.
    void Change(Field field, double value);
};
// Hits of a length at a pitch: the truncated |length / pitch| + 1, one more for a remainder
// above the tolerance. 0 for a zero pitch.
std::int32_t HitsForPitch(double length, double pitch);
// The tolerance on a remainder of length over pitch, mm.
inline constexpr double HitTolerance = 0.0001;

// A line of hits (punch tool, Kind 220) or a line profile (plasma tool, Kind 120).
Composed ComposeLine(const LineFields& fields, double indexAngle, std::int16_t compensation, const ScreenTool& tool,
                     const SettingsArray& plasmaSettings);

// One direction of a grid: extent (length or height), pitch and hits.
struct GridDirection {
    double Extent = 0;
    double Pitch = 0;
    std::int32_t Hits = 0;
};
// The score of a direction: 2 for an extent, 3 for a pitch, 4 for hits above 1.
int GridScore(const GridDirection& direction);
// Completes a direction from its score; false when the score is below 5.
bool CompleteGridDirection(GridDirection& direction);
struct GridFields {
    double X = 0, Y = 0;
    GridDirection Row;     // length, X pitch, X hits
    GridDirection Column;  // height, Y pitch, Y hits
    double Angle = 0;
};
Composed ComposeGrid(GridFields fields, double indexAngle, const ScreenTool& tool);

// ArcDialogue: the arc by three points (option 0) or by centre and angles (option 1), and
// the pattern's pitch and hits.
struct ArcFields {
    int Option = 1;
    // Option 0.
    double X1 = 0, Y1 = 0, XM = 0, YM = 0, X2 = 0, Y2 = 0;
    // Option 1 (and the result of option 0).
    double CentreX = 0, CentreY = 0, Radius = 0, StartAngle = 0, FinishAngle = 0;
    double Sweep = 0;  // signed, worked out from the others
    double AngularPitch = 0, NibblePitch = 0;
    std::int32_t HitsValue = 0;
    enum Field { AngularPitchField, NibblePitchField, HitsField };
    // The geometry from the boxes of the option: centre, radius, angles and sweep, and the
    // boxes of the other option follow. A polar arc runs from start to finish, the way of
    // finish - start (a sweep of 360 when they meet); a three point arc passes through its
    // middle point. False when the points are on one line.
    bool Settle();
    // The pitch fields and the hits follow each other: an angular pitch gives the hits and the
    // nibble pitch; a nibble pitch the angular pitch and hits; hits the angular pitch.
    void Change(Field field, double value);
};
// A punched arc whose nibble pitch is below this is nibbled (G37), otherwise hit (G28).
inline constexpr double NibbleFormPitch = 10;
Composed ComposeArc(const ArcFields& fields, double indexAngle, bool indexWithArc, std::int16_t compensation,
                    const ScreenTool& tool, const SettingsArray& plasmaSettings);

Composed ComposeDwell(double time, const LastPoint& last);
Composed ComposeStop(double x, double y, bool optional, const LastPoint& last, const DialogueLimits& limits);
// On success `newOffsetX` is the shift the dialogue keeps.
Composed ComposeReposition(double x, double y, double xReposition, double yBackoff, const DialogueLimits& limits,
                           double& newOffsetX);

struct NestFields {
    double SheetX = 0, SheetY = 0;
    std::int32_t PartsX = 0, PartsY = 0;
    double GapX = 0, GapY = 0, BorderX = 0, BorderY = 0, ClampStrip = 0;
};
// The Multi-Part entity of a part of `partX` by `partY`.
Composed ComposeNest(const NestFields& fields, double partX, double partY);

// The Sheet: `SheetDefined` follows the sizes; clamps only when all the shown ones are set.
struct SheetFields {
    double SizeX = 0, SizeY = 0;
    std::string Material;
    std::array<double, 4> Clamps{};
    int ClampCount = 0;  // the machine's clamps: how many boxes are shown
};
EntityRec ComposeSheet(const SheetFields& fields, std::int32_t entityCount, bool& sheetDefined);

// The boxes of a screen opened by Edit, from the record at the cursor.
LineFields LineFieldsOf(const EntityRec& rec);
GridFields GridFieldsOf(const EntityRec& rec);
ArcFields ArcFieldsOf(const EntityRec& rec);

// The end point of an entity: where the next screen starts.
LastPoint EndOf(const EntityRec& rec);

}  // namespace kirvana

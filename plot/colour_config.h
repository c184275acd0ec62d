// Colour.cfg: the 48 colours of the plot and the screens, 24-bit with blue in the high byte.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace kirvana {

inline constexpr int ColourCount = 48;

// The items in the file's order; the label of each is its name with a comma.
enum class ColourItem {
    PlotBackground,
    PunchingZones,
    Clamps,
    RepositionPads,
    SheetBoundry,
    SheetFill,
    DatumMarker,
    BlockSkip1,
    BlockSkip2,
    BackgroundPunching,
    BackgroundProfilingG40,
    BackgroundProfilingG41,
    BackgroundProfilingG42,
    PunchModeMovementIcon,
    PunchModeRealTimePunching,
    PunchModeRealTimeMovement,
    ProfileModeMovementIcon,
    ProfileModeRealTimeProfiling,
    ProfileModeRealTimeMovement,
    HighlightedDrawing,
    PlotCursor,
    HeaderBackground,
    HeaderText,
    PanelBackground,
    PanelText,
    BoldPanelText,
    GeneralButtons,
    GeneralButtonText,
    ReferenceButtons,
    ReferenceButtonText,
    OkMessageButton,
    OkMessageButtonText,
    WarningMessageButton,
    WarningMessageButtonText,
    CriticalMessageButton,
    CriticalMessageButtonText,
    MainKeys,
    MainKeyText,
    SubKeys,
    SubKeyText,
    TextBackground,
    Text,
    XYBackground,
    XYHeaders,
    XYPosition,
    StatusBackground,
    StatusPositionText,
    StatusFeedText
};

struct ColourTable {
    std::array<std::int32_t, ColourCount> Values{};
    std::int32_t operator[](ColourItem item) const { return Values[static_cast<int>(item)]; }
};

// The label of an item as the file writes it, without its comma.
const char* ColourLabel(ColourItem item);
ColourTable DefaultColours();

// ReadColourConfig: the defaults; then the file `dir` + "Colour.cfg" if it exists, or the file
// written with the defaults if it doesn't. A line that doesn't read as a colour keeps its
// default; `Note` then says which, for the operator. The file's own order decides, not its labels.
struct ColourConfig {
    ColourTable Colours;
    std::string Note;
};
ColourConfig ReadColourConfig(const std::string& dir);

// The 24-bit value as red, green and blue.
inline int RedOf(std::int32_t c) { return c & 0xFF; }
inline int GreenOf(std::int32_t c) { return (c >> 8) & 0xFF; }
inline int BlueOf(std::int32_t c) { return (c >> 16) & 0xFF; }

}  // namespace kirvana

// The dialogue's state and its work files: `Dlgprg.drw` (the entities, Sheet first),
// `Dlgprg.cfg` (name, directory, description), `Dlgprg.trt` and `Dlgprg.pls` (the tools and
// the plasma set), `Dlgprg.prw` (the part a Multi-Part repeats) and `Dlgprg.tmp` (the copy an
// insert or a delete reads back). Starting, leaving and clearing the dialogue, the cursor,
// confirming an entity, editing and deleting.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "analysis/entity.h"
#include "core/config.h"
#include "dialogue/dialogue_entities.h"
#include "tooling/settings.h"
#include "tooling/tooling.h"

namespace kirvana {

struct DialogueState {
    std::int32_t EntityCount = 1;   // records of the file, the Sheet included
    std::int32_t EntityCursor = 1;  // 1 is "Beginning"
    bool SheetDefined = false;
    bool MultiPartMode = false;
    bool EditMode = false;
    float LastX = 0, LastY = 0;  // end of the entity last confirmed, mm
    bool ImperialDialogue = false;
    std::string ProgName, ProgDir, ProgText;
    std::string MaterialText;
    float SheetX = 0, SheetY = 0;
    std::array<float, 4> ClampPos{};
    float OffsetX = 0;
};

// The dialogue's screens by the digit keys 1 to 9 and the entity kinds Edit opens.
enum class DialogueScreen {
    None,
    Sheet,
    Punch,
    Line,
    Grid,
    Arc,
    Stop,
    Dwell,
    Reposition,
    MultiPart,
};
// The screen of `DialogueButton` n (1 to 9), or None.
DialogueScreen ScreenOfButton(int button);
// The screen Edit opens for a kind, or None.
DialogueScreen ScreenOfKind(std::int16_t kind);

// The notice of a start on damaged work files.
inline constexpr const char* DamagedDialogueNotice = "Dialogue Files Damaged !";
inline constexpr const char* EmptyDialogueNotice = "An Empty Dialogue Is Started !";
// The refusal of a screen that needs a sheet, or no Multi-Part.
inline constexpr const char* NeedsSheetNotice = "Define The Sheet First !";

// What the dialogue asks of the plot on box 0, which the plot module answers; without one the
// dialogue draws nothing.
class DialoguePlotHook {
public:
    virtual ~DialoguePlotHook() = default;
    virtual void EraseEntity(const EntityRec& rec) = 0;
    virtual void DrawEntity(const EntityRec& rec) = 0;
    // The whole drawing again (after an edit, a delete of the Multi-Part, a clear or a load).
    virtual void RedrawDrawing() = 0;
    // The cursor moved from record `from` to record `to` (1 is "Beginning").
    virtual void MoveHighlight(std::int32_t from, std::int32_t to) = 0;
};

class DialogueSession {
public:
    DialogueSession(const Directories& dirs, const MachineData& machine, Tooling& tooling);

    DialogueState State;

    // "Dialogue/Dlgprg." and the work files.
    std::string Stem() const { return dirs_.DialogueFileStem; }
    std::string WorkFile(const char* extension) const { return Stem() + extension; }

    // F5: restores the state from `Dlgprg.cfg` and `Dlgprg.drw` (with `.trt` and `.pls`) when
    // both exist, else clears. Damaged files clear too: the notice lines are returned.
    std::vector<std::string> Start();
    // Writes `.cfg` and `.trt` (and `.pls` with a plasma profiler and a set) when the sheet is
    // defined. False when a file could not be written.
    [[nodiscard]] bool Leave();
    // An empty drawing: a new Sheet record, no sheet, empty names. False when the drawing
    // could not be written.
    [[nodiscard]] bool Clear();

    // Whether a screen may open now: the Sheet always; the others need a sheet and no
    // Multi-Part; the grid needs the turret too. The Multi-Part needs a sheet.
    bool ScreenAllowed(DialogueScreen screen) const;

    // The cursor: clamped to 1 through the count.
    void MoveCursor(std::int32_t delta);
    void CursorHome();
    void CursorEnd();
    // "n / m" and the kind's name or "Beginning".
    std::string CursorCountText() const;
    std::string CursorDescription();

    // Record n of the drawing (2 to the count); nullopt when it can't be read.
    std::optional<EntityRec> Entity(std::int32_t number);

    // The common tail of every entity screen: with `EditMode` the record replaces the one at
    // the cursor, otherwise it is inserted after it (through `Dlgprg.tmp`) and the cursor moves
    // onto it. `LastX`, `LastY` take its end. False when the drawing could not be written.
    [[nodiscard]] bool ConfirmEntity(const EntityRec& rec);
    // The Sheet: record 1 rewritten, keeping the count.
    [[nodiscard]] bool ConfirmSheet(const SheetFields& fields);
    // The Multi-Part: the sheet takes the screen's size, the drawing becomes `Dlgprg.prw`, a
    // new drawing holds the Sheet and the Multi-Part. False with the message when refused.
    Composed ConfirmMultiPart(const NestFields& fields);
    // Edit: the screen of the cursor's entity (EditMode set), or None (a beep).
    DialogueScreen Edit();
    // Delete at the cursor: the Multi-Part gives the part's drawing back; another entity is
    // left out of a copy. False when nothing was deleted.
    bool DeleteAtCursor();

    void SetPlot(DialoguePlotHook* plot) { plot_ = plot; }
    DialoguePlotHook* Plot() const { return plot_; }

    // What the screens start from.
    LastPoint Last() const { return LastPoint{State.LastX, State.LastY}; }
    DialogueLimits Limits() const { return LimitsOf(machine_.Travel, State.OffsetX); }
    StationTable& Table() { return tooling_.DialogueTable; }
    PlasmaSetting& Plasma() { return tooling_.DialoguePlasma; }
    const Directories& Dirs() const { return dirs_; }
    const MachineData& Machine() const { return machine_; }
    const Tooling& Tools() const { return tooling_; }
    // The dialogue's plasma set as a record's 24 settings.
    SettingsArray PlasmaSettingsArray() const;

    // Reads the sheet values and the count from record 1 of the drawing (the unit too: the
    // Sheet's `Counts[2]` is -1 for inches); false when the file is missing or damaged.
    bool ReadSheet();
    // Restores the state from the work files (`.cfg`, `.drw`, `.trt`, `.pls`) without writing
    // any; false when `.cfg` or `.drw` is missing or damaged.
    bool ReadWorkFiles();

private:
    bool WriteCfg() const;
    bool ReadCfg();
    bool InsertAtCursor(const EntityRec& rec);
    bool ReplaceAtCursor(const EntityRec& rec);

    const Directories& dirs_;
    const MachineData& machine_;
    Tooling& tooling_;
    DialoguePlotHook* plot_ = nullptr;
};

}  // namespace kirvana

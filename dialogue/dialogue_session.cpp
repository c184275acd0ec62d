#include "dialogue/dialogue_session.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "analysis/drawing_file.h"
#include "core/file_writer.h"
#include "core/paths.h"
#include "core/text.h"

namespace fs = std::filesystem;

namespace kirvana {

namespace {

void RemoveFile(const std::string& path) {
    std::error_code error;
    fs::remove(path, error);
}

EntityRec EmptySheet(std::int16_t machineType) {
    EntityRec sheet;
    ClearEntity(sheet);
    sheet.Kind = EntityKind::Sheet;
    sheet.KindName = FixedText("Sheet", KindNameWidth);
    sheet.RecordNo = 1;
    sheet.Counts[1] = 1;
    sheet.Compensation = machineType;
    return sheet;
}

// Writes the records as a new drawing (through the drawing's own temporary name).
bool WriteDrawing(const std::string& path, std::vector<EntityRec>& records) {
    DrawingFile file;
    if (!file.Create(path)) return false;
    const auto count = static_cast<std::int32_t>(records.size());
    for (std::int32_t n = 1; n <= count; ++n) {
        EntityRec& rec = records[static_cast<std::size_t>(n - 1)];
        if (n == 1) {
            rec.RecordNo = count;
            rec.Counts[1] = static_cast<std::int16_t>(std::min<std::int32_t>(count, 32767));
        } else {
            rec.RecordNo = n;
        }
        if (!file.Put(n, rec)) return false;
    }
    return file.Close();
}

}  // namespace

DialogueScreen ScreenOfButton(int button) {
    static constexpr std::array<DialogueScreen, 9> screens = {
        DialogueScreen::Sheet, DialogueScreen::Punch,      DialogueScreen::Line,
        DialogueScreen::Grid,  DialogueScreen::Arc,        DialogueScreen::Stop,
        DialogueScreen::Dwell, DialogueScreen::Reposition, DialogueScreen::MultiPart};
    if (button < 1 || button > 9) return DialogueScreen::None;
    return screens[static_cast<std::size_t>(button - 1)];
}

DialogueScreen ScreenOfKind(std::int16_t kind) {
    switch (kind) {
        case EntityKind::Move:
        case EntityKind::Punch:
            return DialogueScreen::Punch;
        case EntityKind::LineProfile:
        case EntityKind::LinearPattern:
            return DialogueScreen::Line;
        case EntityKind::GridPattern:
            return DialogueScreen::Grid;
        case EntityKind::ArcProfile:
        case EntityKind::ArcPattern:
            return DialogueScreen::Arc;
        case EntityKind::Dwell:
            return DialogueScreen::Dwell;
        case EntityKind::Stop:
            return DialogueScreen::Stop;
        case EntityKind::Reposition:
            return DialogueScreen::Reposition;
        case EntityKind::MultiPart:
            return DialogueScreen::MultiPart;
        default:
            return DialogueScreen::None;
    }
}

DialogueSession::DialogueSession(const Directories& dirs, const MachineData& machine, Tooling& tooling)
    : dirs_(dirs), machine_(machine), tooling_(tooling) {}

SettingsArray DialogueSession::PlasmaSettingsArray() const {
    SettingsArray settings;
    ClearSettings(settings);
    PlasmaToSettings(tooling_.DialoguePlasma, settings);
    return settings;
}

bool DialogueSession::WriteCfg() const {
    return WriteLines(WorkFile("cfg"), {State.ProgName, State.ProgDir, State.ProgText, EndMarker});
}

bool DialogueSession::ReadCfg() {
    auto lines = ReadLines(WorkFile("cfg"));
    if (!lines || lines->size() < 4 || std::string(Trim((*lines)[3])) != EndMarker) return false;
    State.ProgName = std::string(Trim((*lines)[0]));
    State.ProgDir = std::string(Trim((*lines)[1]));
    State.ProgText = (*lines)[2];
    return true;
}

bool DialogueSession::ReadSheet() {
    DrawingFile file;
    if (!file.Open(WorkFile("drw"), true)) return false;
    EntityRec sheet;
    const std::int32_t count = file.Count();
    if (count < 1 || count > file.RecordsInFile() || count > 32767 || !file.Get(1, sheet) ||
        sheet.Kind != EntityKind::Sheet)
        return false;
    State.EntityCount = count;
    State.MaterialText = std::string(Trim(sheet.Remark));
    State.SheetX = sheet.Values[1];
    State.SheetY = sheet.Values[2];
    for (std::size_t i = 0; i < 4; ++i) State.ClampPos[i] = sheet.Values[7 + i];
    State.SheetDefined = State.SheetX > 0 && State.SheetY > 0;
    State.ImperialDialogue = sheet.Counts[2] != 0;
    // The last point: the end of the last entity.
    State.LastX = State.LastY = 0;
    EntityRec last;
    if (count > 1 && file.Get(count, last)) {
        State.LastX = last.Points.Exit.X;
        State.LastY = last.Points.Exit.Y;
    }
    return true;
}

bool DialogueSession::ReadWorkFiles() {
    State.EditMode = false;
    State.OffsetX = 0;
    CopyMachineTable(tooling_, 0);
    tooling_.DialoguePlasma = ProgramPlasmaSetting(dirs_, WorkFile("pls"));
    if (!FileExists(WorkFile("cfg")) || !FileExists(WorkFile("drw")) || !ReadCfg() || !ReadSheet()) return false;
    ProgramTurret header;
    if (FileExists(WorkFile("trt"))) ReadProgramTurret(WorkFile("trt"), Table(), header, dirs_.ServiceDir);
    State.MultiPartMode = FileExists(WorkFile("prw"));
    State.EntityCursor = State.EntityCount;
    if (plot_ != nullptr) plot_->RedrawDrawing();
    return true;
}

std::vector<std::string> DialogueSession::Start() {
    const bool present = FileExists(WorkFile("cfg")) && FileExists(WorkFile("drw"));
    if (ReadWorkFiles()) return {};
    // Missing work files start an empty dialogue; damaged ones say so.
    std::vector<std::string> notice;
    if (present) notice = {DamagedDialogueNotice, EmptyDialogueNotice};
    if (!Clear()) notice.push_back("File Fault : " + WorkFile("drw"));
    return notice;
}

bool DialogueSession::Leave() {
    State.EditMode = false;
    if (!State.SheetDefined) return true;
    bool ok = WriteCfg();
    ok = WriteProgramTurret(WorkFile("trt"), tooling_.DialogueTable, ProgramTurret{}) && ok;
    if (machine_.ProfilerKind > 0 && PlasmaSettingIsSet(tooling_.DialoguePlasma))
        ok = SavePlasmaSetting(WorkFile("pls"), State.ProgText, tooling_.DialoguePlasma) && ok;
    return ok;
}

bool DialogueSession::Clear() {
    // Everything but the unit the screens show goes back to its start.
    const bool imperial = State.ImperialDialogue;
    State = DialogueState{};
    State.ImperialDialogue = imperial;
    RemoveFile(WorkFile("prw"));
    RemoveFile(WorkFile("tmp"));
    std::vector<EntityRec> records = {EmptySheet(machine_.MachineType)};
    const bool written = WriteDrawing(WorkFile("drw"), records);
    if (plot_ != nullptr) plot_->RedrawDrawing();
    return written;
}

bool DialogueSession::ScreenAllowed(DialogueScreen screen) const {
    switch (screen) {
        case DialogueScreen::None:
            return false;
        case DialogueScreen::Sheet:
            return true;
        case DialogueScreen::MultiPart:
            return State.SheetDefined && !State.MultiPartMode;
        case DialogueScreen::Grid:
            return State.SheetDefined && !State.MultiPartMode && machine_.HasTurret;
        default:
            return State.SheetDefined && !State.MultiPartMode;
    }
}

void DialogueSession::MoveCursor(std::int32_t delta) {
    const std::int32_t from = State.EntityCursor;
    State.EntityCursor = std::clamp(State.EntityCursor + delta, std::int32_t{1}, std::max(State.EntityCount, 1));
    if (plot_ != nullptr && from != State.EntityCursor) plot_->MoveHighlight(from, State.EntityCursor);
}

void DialogueSession::CursorHome() { MoveCursor(1 - State.EntityCursor); }

void DialogueSession::CursorEnd() { MoveCursor(State.EntityCount - State.EntityCursor); }

std::string DialogueSession::CursorCountText() const {
    return std::to_string(State.EntityCursor) + " / " + std::to_string(State.EntityCount);
}

std::string DialogueSession::CursorDescription() {
    if (State.EntityCursor <= 1) return "Beginning";
    auto rec = Entity(State.EntityCursor);
    return rec ? std::string(Trim(rec->KindName)) : std::string();
}

std::optional<EntityRec> DialogueSession::Entity(std::int32_t number) {
    if (number < 1 || number > State.EntityCount) return std::nullopt;
    DrawingFile file;
    if (!file.Open(WorkFile("drw"), true)) return std::nullopt;
    EntityRec rec;
    if (!file.Get(number, rec)) return std::nullopt;
    return rec;
}

bool DialogueSession::ReplaceAtCursor(const EntityRec& rec) {
    DrawingFile file;
    if (!file.Open(WorkFile("drw"))) return false;
    EntityRec stored = rec;
    stored.RecordNo = State.EntityCursor;
    if (!file.Put(State.EntityCursor, stored)) return false;
    return file.Close();
}

bool DialogueSession::InsertAtCursor(const EntityRec& rec) {
    if (State.EntityCount >= 32767) return false;
    // The drawing is copied to `Dlgprg.tmp` and rewritten from it with the new record in place.
    const std::string drawing = WorkFile("drw"), copy = WorkFile("tmp");
    if (!CopyFileOver(drawing, copy)) return false;
    std::vector<EntityRec> records;
    {
        DrawingFile from;
        if (!from.Open(copy, true)) return false;
        const std::int32_t count = from.LastReadable();
        const std::int32_t at = std::clamp(State.EntityCursor + 1, std::int32_t{2}, count + 1);
        for (std::int32_t n = 1; n <= count; ++n) {
            if (n == at) records.push_back(rec);
            EntityRec kept;
            from.Get(n, kept);
            records.push_back(std::move(kept));
        }
        if (at == count + 1) records.push_back(rec);
        State.EntityCursor = at;
    }
    const bool written = WriteDrawing(drawing, records);
    RemoveFile(copy);
    if (written) State.EntityCount = static_cast<std::int32_t>(records.size());
    return written;
}

bool DialogueSession::ConfirmEntity(const EntityRec& rec) {
    // 2. The entity at the cursor off the plot.
    const bool onEntity = State.EntityCursor > 1 && State.EntityCursor <= State.EntityCount;
    if (plot_ != nullptr && onEntity)
        if (auto old = Entity(State.EntityCursor)) plot_->EraseEntity(*old);
    // 6. In place of it when editing, otherwise after it.
    bool written = false;
    const bool editing = State.EditMode && onEntity;
    if (editing)
        written = ReplaceAtCursor(rec);
    else
        written = InsertAtCursor(rec);
    State.EditMode = false;
    if (!written) return false;
    // 7. Drawn, and its end is where the next screen starts.
    if (plot_ != nullptr) {
        if (editing) plot_->RedrawDrawing();
        plot_->DrawEntity(rec);
    }
    const LastPoint end = EndOf(rec);
    State.LastX = ToSingle(end.X);
    State.LastY = ToSingle(end.Y);
    return true;
}

bool DialogueSession::ConfirmSheet(const SheetFields& fields) {
    bool defined = false;
    EntityRec sheet = ComposeSheet(fields, State.EntityCount, defined);
    sheet.Compensation = machine_.MachineType;
    sheet.Counts[2] = State.ImperialDialogue ? TrueWord : FalseWord;
    DrawingFile file;
    if (!file.Open(WorkFile("drw"))) return false;
    if (!file.Put(1, sheet) || !file.Close()) return false;
    State.SheetDefined = defined;
    State.MaterialText = std::string(Trim(sheet.Remark));
    State.SheetX = sheet.Values[1];
    State.SheetY = sheet.Values[2];
    for (std::size_t i = 0; i < 4; ++i) State.ClampPos[i] = sheet.Values[7 + i];
    State.EditMode = false;
    return true;
}

Composed DialogueSession::ConfirmMultiPart(const NestFields& fields) {
    Composed result = ComposeNest(fields, State.SheetX, State.SheetY);
    if (!result.Ok) return result;
    // The sheet of the new drawing: the screen's size, the clamps and material kept.
    auto partSheet = Entity(1);
    if (!partSheet) {
        result.Ok = false;
        result.Message = "File Fault : " + WorkFile("drw");
        return result;
    }
    EntityRec sheet = *partSheet;
    sheet.Values[1] = ToSingle(fields.SheetX);
    sheet.Values[2] = ToSingle(fields.SheetY);
    if (!MoveFileOver(WorkFile("drw"), WorkFile("prw"))) {
        result.Ok = false;
        result.Message = "File Fault : " + WorkFile("prw");
        return result;
    }
    std::vector<EntityRec> records = {sheet, result.Record};
    if (!WriteDrawing(WorkFile("drw"), records)) {
        // The part's drawing goes back where it was.
        static_cast<void>(MoveFileOver(WorkFile("prw"), WorkFile("drw")));
        result.Ok = false;
        result.Message = "File Fault : " + WorkFile("drw");
        return result;
    }
    State.SheetX = sheet.Values[1];
    State.SheetY = sheet.Values[2];
    State.SheetDefined = State.SheetX > 0 && State.SheetY > 0;
    State.EntityCount = 2;
    State.EntityCursor = 2;
    State.MultiPartMode = true;
    State.EditMode = false;
    if (plot_ != nullptr) plot_->RedrawDrawing();
    return result;
}

DialogueScreen DialogueSession::Edit() {
    if (State.EntityCursor < 2 || State.EntityCursor > State.EntityCount || !State.SheetDefined)
        return DialogueScreen::None;
    auto rec = Entity(State.EntityCursor);
    if (!rec) return DialogueScreen::None;
    const DialogueScreen screen = ScreenOfKind(rec->Kind);
    State.EditMode = screen != DialogueScreen::None;
    return screen;
}

bool DialogueSession::DeleteAtCursor() {
    if (State.EntityCursor < 2 || State.EntityCursor > State.EntityCount) return false;
    auto rec = Entity(State.EntityCursor);
    if (!rec) return false;
    if (FileExists(WorkFile("prw")) && rec->Kind == EntityKind::MultiPart) {
        // The part's drawing comes back with its own sheet.
        if (!MoveFileOver(WorkFile("prw"), WorkFile("drw"))) return false;
        State.MultiPartMode = false;
        if (!ReadSheet()) return false;
        State.EntityCursor = State.EntityCount;
        if (plot_ != nullptr) plot_->RedrawDrawing();
        return true;
    }
    const std::string drawing = WorkFile("drw"), copy = WorkFile("tmp");
    if (!MoveFileOver(drawing, copy)) return false;
    std::vector<EntityRec> records;
    {
        DrawingFile from;
        if (!from.Open(copy, true)) return false;
        const std::int32_t count = from.LastReadable();
        for (std::int32_t n = 1; n <= count; ++n) {
            if (n == State.EntityCursor) continue;
            EntityRec kept;
            from.Get(n, kept);
            records.push_back(std::move(kept));
        }
    }
    if (!WriteDrawing(drawing, records)) {
        static_cast<void>(MoveFileOver(copy, drawing));
        return false;
    }
    RemoveFile(copy);
    if (plot_ != nullptr) plot_->EraseEntity(*rec);
    State.EntityCount = static_cast<std::int32_t>(records.size());
    State.EntityCursor = std::min(State.EntityCursor - 1, State.EntityCount);
    return true;
}

}  // namespace kirvana

#include "dialogue/dialogue_screen.h"

#include <cmath>
#include <map>

#include "core/number.h"
#include "core/text.h"
#include "tooling/tool_record.h"

namespace kirvana {

namespace {

DialogueBox Box(const char* control, int index, const char* label, BoxKind kind = BoxKind::Length) {
    return DialogueBox{control, index, label, kind};
}

DialogueBox IndexBox() { return Box("IndexBox", 0, "INDEX ANGLE :  &I", BoxKind::Angle); }

const DialogueToggle CompToggle{"CompButton", {"COMP &NONE", "COMP &LEFT", "COMP &RIGHT"}};

std::map<DialogueScreen, DialogueScreenDescription> BuildDescriptions() {
    std::map<DialogueScreen, DialogueScreenDescription> all;
    all[DialogueScreen::Sheet] = {DialogueScreen::Sheet,
                                  "SheetDialogue",
                                  "SHEET",
                                  {Box("SheetSize", 1, "SHEET SIZE X :  &1"), Box("SheetSize", 2, "SHEET SIZE Y :  &2"),
                                   Box("MaterialDescription", 0, "MATERIAL :  &M", BoxKind::Text),
                                   Box("ClampDemand", 1, "CLAMP 1 :  &3"), Box("ClampDemand", 2, "CLAMP 2 :  &4"),
                                   Box("ClampDemand", 3, "CLAMP 3 :  &5"), Box("ClampDemand", 4, "CLAMP 4 :  &6")},
                                  {},
                                  false};
    all[DialogueScreen::Punch] = {
        DialogueScreen::Punch,
        "PunchDialogue",
        "PUNCH",
        {Box("PunchBox", 1, "X POSITION :  &1"), Box("PunchBox", 2, "Y POSITION :  &2"), IndexBox()},
        {{"PunchOption", {"&PUNCH", "M&OVE"}}},
        true};
    all[DialogueScreen::Line] = {
        DialogueScreen::Line,
        "LineDialogue",
        "LINE",
        {Box("LineBox", 1, "X START :  &1"), Box("LineBox", 2, "Y START :  &2"), Box("LineBox", 3, "X FINISH :  &3"),
         Box("LineBox", 4, "Y FINISH :  &4"), Box("LineBox", 5, "LENGTH :  &5"),
         Box("LineBox", 6, "ANGLE :  &6", BoxKind::Angle), Box("LineBox", 7, "PITCH :  &7"),
         Box("LineBox", 8, "HITS :  &8", BoxKind::Count), IndexBox()},
        {CompToggle},
        true};
    all[DialogueScreen::Grid] = {
        DialogueScreen::Grid,
        "GridDialogue",
        "GRID PATTERN",
        {Box("GridBox", 1, "X START :  &1"), Box("GridBox", 2, "Y START :  &2"), Box("GridBox", 3, "LENGTH :  &3"),
         Box("GridBox", 4, "HEIGHT :  &4"), Box("GridBox", 5, "X PITCH :  &5"), Box("GridBox", 6, "Y PITCH :  &6"),
         Box("GridBox", 7, "X HITS :  &7", BoxKind::Count), Box("GridBox", 8, "Y HITS :  &8", BoxKind::Count),
         Box("GridBox", 9, "ANGLE :  &9", BoxKind::Angle), IndexBox()},
        {},
        true};
    all[DialogueScreen::Arc] = {
        DialogueScreen::Arc,
        "ArcDialogue",
        "ARC",
        {Box("XYArcBox", 1, "X START :  &1"), Box("XYArcBox", 2, "Y START :  &2"), Box("XYArcBox", 3, "X MIDDLE :  &3"),
         Box("XYArcBox", 4, "Y MIDDLE :  &4"), Box("XYArcBox", 5, "X FINISH :  &5"),
         Box("XYArcBox", 6, "Y FINISH :  &6"), Box("XYArcBox", 7, "ANGULAR PITCH :  &7", BoxKind::Angle),
         Box("XYArcBox", 8, "NIBBLE PITCH :  &8"), Box("XYArcBox", 9, "HITS :  &9", BoxKind::Count),
         Box("PArcBox", 1, "X CENTRE :  &1"), Box("PArcBox", 2, "Y CENTRE :  &2"), Box("PArcBox", 3, "RADIUS :  &3"),
         Box("PArcBox", 4, "START ANGLE :  &4", BoxKind::Angle),
         Box("PArcBox", 5, "FINISH ANGLE :  &5", BoxKind::Angle),
         Box("PArcBox", 6, "ANGULAR PITCH :  &6", BoxKind::Angle), Box("PArcBox", 7, "NIBBLE PITCH :  &7"),
         Box("PArcBox", 8, "HITS :  &8", BoxKind::Count), IndexBox()},
        {{"ArcOption", {"&X Y ARC", "&POLAR ARC"}},
         CompToggle,
         {"IdxWarcButton", {"INDEX &WITH ARC : NO", "INDEX &WITH ARC : YES"}}},
        true};
    all[DialogueScreen::Stop] = {DialogueScreen::Stop,
                                 "StopDialogue",
                                 "PROGRAM STOP",
                                 {Box("StopBox", 1, "X POSITION :  &1"), Box("StopBox", 2, "Y POSITION :  &2")},
                                 {{"StopButton", {"&M00", "&M01"}}},
                                 false};
    all[DialogueScreen::Dwell] = {DialogueScreen::Dwell,
                                  "DwellDialogue",
                                  "PROGRAM DWELL",
                                  {Box("DwellBox", 0, "DWELL TIME (SECONDS) :  &1", BoxKind::Time)},
                                  {},
                                  false};
    all[DialogueScreen::Reposition] = {
        DialogueScreen::Reposition,
        "RepositionDialogue",
        "REPOSITION",
        {Box("RepositionBox", 1, "X POSITION :  &1"), Box("RepositionBox", 2, "Y POSITION :  &2"),
         Box("RepositionBox", 3, "X REPOSITION :  &3"), Box("RepositionBox", 4, "Y BACKOFF :  &4")},
        {},
        false};
    all[DialogueScreen::MultiPart] = {
        DialogueScreen::MultiPart,
        "NestDialogue",
        "MULTI-PART",
        {Box("NestBox", 1, "X SHEET :  &1"), Box("NestBox", 2, "Y SHEET :  &2"),
         Box("NestBox", 3, "X PARTS :  &3", BoxKind::Count), Box("NestBox", 4, "Y PARTS :  &4", BoxKind::Count),
         Box("NestBox", 5, "X GAP :  &5"), Box("NestBox", 6, "Y GAP :  &6"), Box("NestBox", 7, "X BORDER :  &7"),
         Box("NestBox", 8, "Y BORDER :  &8"), Box("NestBox", 9, "CLAMP STRIP :  &9")},
        {},
        false};
    return all;
}

// The digit a label marks, or 0.
int DigitOf(const std::string& label) {
    const std::size_t at = label.find('&');
    if (at == std::string::npos || at + 1 >= label.size()) return 0;
    const char c = label[at + 1];
    return c >= '1' && c <= '9' ? c - '0' : 0;
}

std::int32_t CountOf(double value) {
    const double whole = std::trunc(std::fabs(value));
    return whole > 32767 ? 32767 : static_cast<std::int32_t>(whole);
}

}  // namespace

const DialogueScreenDescription& DescribeScreen(DialogueScreen screen) {
    static const std::map<DialogueScreen, DialogueScreenDescription> all = BuildDescriptions();
    static const DialogueScreenDescription none{};
    auto found = all.find(screen);
    return found == all.end() ? none : found->second;
}

const std::vector<DialogueScreen>& DialogueScreens() {
    static const std::vector<DialogueScreen> screens = [] {
        std::vector<DialogueScreen> list;
        for (int button = 1; button <= 9; ++button) list.push_back(ScreenOfButton(button));
        return list;
    }();
    return screens;
}

DialogueScreenModel::DialogueScreenModel(DialogueSession& session, DialogueScreen screen)
    : session_(session), description_(&DescribeScreen(screen)) {
    values_.assign(description_->Boxes.size(), 0.0);
    texts_.assign(description_->Boxes.size(), std::string());
    toggles_.assign(description_->Toggles.size(), 0);
}

std::size_t DialogueScreenModel::BoxOf(const char* control, int index) const {
    for (std::size_t i = 0; i < description_->Boxes.size(); ++i)
        if (description_->Boxes[i].Control == control && description_->Boxes[i].Index == index) return i;
    return description_->Boxes.size();
}

std::size_t DialogueScreenModel::ToggleOf(const char* control) const {
    for (std::size_t i = 0; i < description_->Toggles.size(); ++i)
        if (description_->Toggles[i].Control == control) return i;
    return description_->Toggles.size();
}

void DialogueScreenModel::Open() {
    if (description_->HasTool && !toolChosen_) DefaultTool();
    std::optional<EntityRec> rec;
    if (session_.State.EditMode) rec = session_.Entity(session_.State.EntityCursor);
    if (rec)
        FillFrom(*rec);
    else
        Defaults();
    Show();
}

void DialogueScreenModel::Cancel() { session_.State.EditMode = false; }

void DialogueScreenModel::DefaultTool() {
    // The first station that holds a tool; on a profiler without a turret the plasma tool.
    const StationTable& table = session_.Table();
    for (std::size_t n = 0; n < table.size(); ++n) {
        if (table[n].Valid == FalseWord || !table[n].Tool.IsValid()) continue;
        SetTool(ChooseStation(table, static_cast<int>(n) + 1));
        return;
    }
    if (session_.Machine().ProfilerKind > 0) SetTool(ChoosePlasma(MachinePlasmaTool(session_.Tools())));
    toolChosen_ = false;
}

void DialogueScreenModel::SetTool(const TurretChoice& choice) {
    tool_.Tool = choice.Tool;
    tool_.Description = choice.Description;
    tool_.StationNo = choice.StationNo;
    const StationTable& table = session_.Table();
    tool_.Autoindex = choice.StationNo >= 1 && static_cast<std::size_t>(choice.StationNo) <= table.size() &&
                      table[static_cast<std::size_t>(choice.StationNo - 1)].Autoindex != FalseWord;
    toolChosen_ = true;
}

std::string DialogueScreenModel::ToolLabelText() const {
    if (tool_.StationNo == 0) return "NO TOOL";
    if (tool_.IsPlasma()) return "PLASMA :  " + tool_.Description;
    return "STATION " + std::to_string(tool_.StationNo) + " :  " + tool_.Description;
}

void DialogueScreenModel::Defaults() {
    std::fill(values_.begin(), values_.end(), 0.0);
    std::fill(toggles_.begin(), toggles_.end(), 0);
    const DialogueState& s = session_.State;
    const LastPoint last = session_.Last();
    switch (description_->Screen) {
        case DialogueScreen::Sheet:
            values_[0] = s.SheetX;
            values_[1] = s.SheetY;
            texts_[2] = s.MaterialText;
            for (std::size_t i = 0; i < 4; ++i) values_[3 + i] = s.ClampPos[i];
            break;
        case DialogueScreen::Line:
            line_ = LineFields{};
            line_.X1 = line_.X2 = last.X;
            line_.Y1 = line_.Y2 = last.Y;
            break;
        case DialogueScreen::Arc:
            arc_ = ArcFields{};
            arc_.CentreX = last.X;
            arc_.CentreY = last.Y;
            arc_.Settle();
            toggles_[0] = 1;
            break;
        case DialogueScreen::MultiPart:
            values_[0] = s.SheetX;
            values_[1] = s.SheetY;
            values_[2] = values_[3] = 1;
            break;
        case DialogueScreen::Dwell:
            break;
        default:
            // The point of Punch, Grid, Stop and Reposition starts where the last entity ended.
            if (values_.size() >= 2) {
                values_[0] = last.X;
                values_[1] = last.Y;
            }
            break;
    }
}

void DialogueScreenModel::FillFrom(const EntityRec& rec) {
    std::fill(values_.begin(), values_.end(), 0.0);
    std::fill(toggles_.begin(), toggles_.end(), 0);
    if (description_->HasTool && rec.StationNo != 0) {
        TurretChoice choice;
        CopyTool(rec.Tool, choice.Tool);
        choice.Description = DescribeTool(rec.Tool, false);
        choice.StationNo = rec.StationNo < 0 ? std::int16_t{-1} : rec.StationNo;
        SetTool(choice);
    }
    const std::size_t index = BoxOf("IndexBox", 0);
    if (index < values_.size()) values_[index] = rec.Tool.Extra1;
    const EntityPoints& p = rec.Points;
    switch (description_->Screen) {
        case DialogueScreen::Punch:
            values_[0] = p.Position.X;
            values_[1] = p.Position.Y;
            toggles_[0] = rec.Kind == EntityKind::Move ? 1 : 0;
            break;
        case DialogueScreen::Line:
            line_ = LineFieldsOf(rec);
            toggles_[0] = rec.Compensation;
            break;
        case DialogueScreen::Grid: {
            const GridFields g = GridFieldsOf(rec);
            values_[0] = g.X;
            values_[1] = g.Y;
            values_[2] = g.Row.Extent;
            values_[3] = g.Column.Extent;
            values_[4] = g.Row.Pitch;
            values_[5] = g.Column.Pitch;
            values_[6] = g.Row.Hits;
            values_[7] = g.Column.Hits;
            values_[8] = g.Angle;
            break;
        }
        case DialogueScreen::Arc:
            arc_ = ArcFieldsOf(rec);
            toggles_[0] = 1;
            toggles_[1] = rec.Compensation;
            toggles_[2] = rec.Counts[2] != 0 ? 1 : 0;
            break;
        case DialogueScreen::Dwell:
            values_[0] = rec.Values[1];
            break;
        case DialogueScreen::Stop:
            values_[0] = p.Position.X;
            values_[1] = p.Position.Y;
            toggles_[0] = rec.Counts[1] != 0 ? 1 : 0;
            break;
        case DialogueScreen::Reposition:
            values_[0] = p.Position.X;
            values_[1] = p.Position.Y;
            values_[2] = rec.Values[1];
            values_[3] = rec.Values[2];
            break;
        case DialogueScreen::MultiPart:
            values_[0] = rec.Values[1];
            values_[1] = rec.Values[2];
            values_[2] = rec.Counts[1];
            values_[3] = rec.Counts[2];
            values_[4] = rec.Values[5];
            values_[5] = rec.Values[6];
            values_[6] = rec.Values[3];
            values_[7] = rec.Values[4];
            values_[8] = rec.Values[8];
            break;
        default:
            break;
    }
}

bool DialogueScreenModel::BoxShown(std::size_t box) const {
    const DialogueBox& b = description_->Boxes[box];
    if (b.Control == "ClampDemand") return b.Index <= session_.Machine().ClampCount;
    if (b.Control == "XYArcBox") return toggles_[0] == 0;
    if (b.Control == "PArcBox") return toggles_[0] == 1;
    return true;
}

bool DialogueScreenModel::ToggleShown(std::size_t toggle) const {
    const std::string& control = description_->Toggles[toggle].Control;
    if (control == "CompButton") return tool_.IsPlasma();
    if (control == "IdxWarcButton") return !tool_.IsPlasma();
    return true;
}

std::string DialogueScreenModel::ToggleCaption(std::size_t toggle) const {
    return description_->Toggles[toggle].Captions[static_cast<std::size_t>(toggles_[toggle])];
}

void DialogueScreenModel::PressToggle(std::size_t toggle) {
    const auto states = static_cast<int>(description_->Toggles[toggle].Captions.size());
    toggles_[toggle] = (toggles_[toggle] + 1) % states;
    if (description_->Toggles[toggle].Control == "ArcOption") {
        // The other form shows the same arc.
        arc_.Option = toggles_[toggle];
        ShowArc();
    }
}

int DialogueScreenModel::BoxOfDigit(int digit) const {
    for (std::size_t i = 0; i < description_->Boxes.size(); ++i)
        if (BoxShown(i) && DigitOf(description_->Boxes[i].Label) == digit) return static_cast<int>(i);
    return -1;
}

int DialogueScreenModel::PadMode(std::size_t box) const {
    switch (description_->Boxes[box].Kind) {
        case BoxKind::Count:
            return -1;
        case BoxKind::Time:
            return -4;
        case BoxKind::Text:
            return static_cast<int>(RemarkWidth);
        default:
            return -6;
    }
}

std::string DialogueScreenModel::BoxText(std::size_t box) const {
    const double v = values_[box];
    switch (description_->Boxes[box].Kind) {
        case BoxKind::Length:
            return LengthText(v, session_.State.ImperialDialogue);
        case BoxKind::Angle:
            return FormatNumber(Number(v), 3);
        case BoxKind::Count:
            return std::to_string(CountOf(v));
        case BoxKind::Time:
            return FormatNumber(Number(v), 2);
        case BoxKind::Text:
            return texts_[box];
    }
    return {};
}

void DialogueScreenModel::Show() {
    if (description_->Screen == DialogueScreen::Line) ShowLine();
    if (description_->Screen == DialogueScreen::Arc) ShowArc();
    for (std::size_t i = 0; i < values_.size(); ++i) texts_[i] = BoxText(i);
}

void DialogueScreenModel::ShowLine() {
    const double v[8] = {line_.X1,          line_.Y1,         line_.X2,         line_.Y2,
                         line_.LengthValue, line_.AngleValue, line_.PitchValue, static_cast<double>(line_.HitsValue)};
    for (std::size_t i = 0; i < 8; ++i) values_[i] = v[i];
}

void DialogueScreenModel::ShowArc() {
    arc_.Settle();
    const double xy[9] = {arc_.X1,           arc_.Y1,          arc_.XM,
                          arc_.YM,           arc_.X2,          arc_.Y2,
                          arc_.AngularPitch, arc_.NibblePitch, static_cast<double>(arc_.HitsValue)};
    const double polar[8] = {
        arc_.CentreX,     arc_.CentreY,      arc_.Radius,      arc_.StartAngle,
        arc_.FinishAngle, arc_.AngularPitch, arc_.NibblePitch, static_cast<double>(arc_.HitsValue)};
    for (std::size_t i = 0; i < 9; ++i) values_[i] = xy[i];
    for (std::size_t i = 0; i < 8; ++i) values_[9 + i] = polar[i];
    for (std::size_t i = 0; i < 17; ++i) texts_[i] = BoxText(i);
}

void DialogueScreenModel::SetBox(std::size_t box, const std::string& text) {
    const DialogueBox& b = description_->Boxes[box];
    double value = 0;
    switch (b.Kind) {
        case BoxKind::Length:
            value = BoxLength(text, session_.State.ImperialDialogue);
            break;
        case BoxKind::Angle:
            value = BoxAngle(text);
            break;
        case BoxKind::Count:
            value = CountOf(BoxValue(text));
            break;
        case BoxKind::Time:
            value = BoxValue(text);
            break;
        case BoxKind::Text:
            texts_[box] = std::string(Trim(text));
            return;
    }
    values_[box] = value;
    if (b.Control == "LineBox") line_.Change(static_cast<LineFields::Field>(b.Index), value);
    if (b.Control == "XYArcBox" || b.Control == "PArcBox") {
        const bool xy = b.Control == "XYArcBox";
        // The pattern's boxes follow each other; a change of the arc keeps the pitch.
        const int patternFrom = xy ? 7 : 6;
        if (b.Index >= patternFrom) {
            arc_.Change(static_cast<ArcFields::Field>(b.Index - patternFrom), value);
        } else {
            double* fields[6] = {&arc_.X1, &arc_.Y1, &arc_.XM, &arc_.YM, &arc_.X2, &arc_.Y2};
            double* polarFields[5] = {&arc_.CentreX, &arc_.CentreY, &arc_.Radius, &arc_.StartAngle, &arc_.FinishAngle};
            *(xy ? fields : polarFields)[b.Index - 1] = value;
            arc_.Option = xy ? 0 : 1;
            arc_.Change(ArcFields::AngularPitchField, arc_.AngularPitch);
        }
    }
    Show();
}

std::string DialogueScreenModel::ConfirmEntity(const Composed& composed) {
    if (!composed.Ok) return composed.Message;
    if (!session_.ConfirmEntity(composed.Record)) return DrawingNotWritten;
    return {};
}

std::string DialogueScreenModel::Confirm() {
    const LastPoint last = session_.Last();
    const DialogueLimits limits = session_.Limits();
    const std::size_t indexBox = BoxOf("IndexBox", 0);
    const double index = indexBox < values_.size() ? values_[indexBox] : 0.0;
    const auto v = [this](std::size_t i) { return values_[i]; };
    switch (description_->Screen) {
        case DialogueScreen::Sheet: {
            SheetFields sheet;
            sheet.SizeX = v(0);
            sheet.SizeY = v(1);
            sheet.Material = texts_[2];
            for (std::size_t i = 0; i < 4; ++i) sheet.Clamps[i] = v(3 + i);
            sheet.ClampCount = session_.Machine().ClampCount;
            return session_.ConfirmSheet(sheet) ? std::string() : std::string(DrawingNotWritten);
        }
        case DialogueScreen::Punch:
            return ConfirmEntity(ComposePunch(v(0), v(1), index, toggles_[0], tool_, last, limits));
        case DialogueScreen::Line:
            return ConfirmEntity(ComposeLine(line_, index, static_cast<std::int16_t>(toggles_[0]), tool_,
                                             session_.PlasmaSettingsArray()));
        case DialogueScreen::Grid: {
            GridFields grid;
            grid.X = v(0);
            grid.Y = v(1);
            grid.Row = {v(2), v(4), CountOf(v(6))};
            grid.Column = {v(3), v(5), CountOf(v(7))};
            grid.Angle = v(8);
            return ConfirmEntity(ComposeGrid(grid, index, tool_));
        }
        case DialogueScreen::Arc:
            return ConfirmEntity(ComposeArc(arc_, index, toggles_[2] != 0, static_cast<std::int16_t>(toggles_[1]),
                                            tool_, session_.PlasmaSettingsArray()));
        case DialogueScreen::Dwell:
            return ConfirmEntity(ComposeDwell(v(0), last));
        case DialogueScreen::Stop:
            return ConfirmEntity(ComposeStop(v(0), v(1), toggles_[0] != 0, last, limits));
        case DialogueScreen::Reposition: {
            double offset = 0;
            std::string message = ConfirmEntity(ComposeReposition(v(0), v(1), v(2), v(3), limits, offset));
            if (message.empty()) session_.State.OffsetX = ToSingle(offset);
            return message;
        }
        case DialogueScreen::MultiPart: {
            NestFields nest;
            nest.SheetX = v(0);
            nest.SheetY = v(1);
            nest.PartsX = CountOf(v(2));
            nest.PartsY = CountOf(v(3));
            nest.GapX = v(4);
            nest.GapY = v(5);
            nest.BorderX = v(6);
            nest.BorderY = v(7);
            nest.ClampStrip = v(8);
            Composed composed = session_.ConfirmMultiPart(nest);
            return composed.Ok ? std::string() : composed.Message;
        }
        default:
            return {};
    }
}

}  // namespace kirvana

#include "dialogue/dialogue_entities.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "analysis/tool_outline.h"
#include "core/geometry.h"
#include "core/number.h"

namespace kirvana {

namespace {

double Round4(double value) { return RoundHalfEven(Number(value), 4); }
double Round3(double value) { return RoundHalfEven(Number(value), 3); }

PointF Stored(double x, double y) { return PointF{ToSingle(x), ToSingle(y)}; }

EntityRec Started(std::int16_t kind, const char* kindName) {
    EntityRec rec;
    ClearEntity(rec);
    rec.Kind = kind;
    rec.KindName = FixedText(kindName, KindNameWidth);
    return rec;
}

Composed Refused(const char* message) {
    Composed result;
    result.Message = message;
    return result;
}

Composed Done(EntityRec rec) {
    ToolOutline(rec);
    Composed result;
    result.Ok = true;
    result.Record = std::move(rec);
    return result;
}

// The common tail's tool step: the screen's tool into the record, the index angle in `Extra1`
// of an autoindex station (0 otherwise); the plasma tool with station -1.
void TakeTool(EntityRec& rec, const ScreenTool& tool, double indexAngle) {
    if (tool.StationNo == 0) return;
    CopyTool(tool.Tool, rec.Tool);
    rec.Tool.Extra1 = tool.IsPlasma() || !tool.Autoindex ? 0.0f : ToSingle(indexAngle);
    rec.StationNo = tool.IsPlasma() ? std::int16_t{-1} : tool.StationNo;
}

bool SamePoint(double x1, double y1, double x2, double y2) { return x1 == x2 && y1 == y2; }

}  // namespace

double BoxLength(std::string_view text, bool imperial) {
    double value = ToNumber(text);
    if (imperial) value *= Inch;
    return Round4(value);
}

double BoxValue(std::string_view text) { return Round4(ToNumber(text)); }

double BoxAngle(std::string_view text) { return Round3(NormaliseAngle(ToNumber(text))); }

std::string LengthText(double millimetres, bool imperial) {
    if (imperial) return FormatNumber(Number(millimetres / Inch), 3);
    return FormatNumber(Number(millimetres), 2);
}

DialogueLimits LimitsOf(const MachineTravel& travel, double offsetX) {
    return DialogueLimits{travel.XLimitMin, travel.XLimitMax, travel.YLimitMin, travel.YLimitMax, offsetX};
}

bool WithinLimits(const DialogueLimits& limits, double x, double y) {
    return x >= limits.XMin + limits.OffsetX && x <= limits.XMax + limits.OffsetX && y >= limits.YMin &&
           y <= limits.YMax;
}

Composed ComposePunch(double x, double y, double indexAngle, int punchOption, const ScreenTool& tool,
                      const LastPoint& last, const DialogueLimits& limits) {
    // The limits are compared, and the result is left aside: a point outside is accepted.
    static_cast<void>(WithinLimits(limits, x, y));
    EntityRec rec = punchOption == 1 ? Started(EntityKind::Move, "Move") : Started(EntityKind::Punch, "Punch");
    EntityPoints& p = rec.Points;
    p.Position = Stored(x, y);
    if (punchOption == 1) {
        p.Start = Stored(last.X, last.Y);
        p.Middle = Stored(Round4((last.X + x) / 2), Round4((last.Y + y) / 2));
        p.End = p.Position;
        p.Exit = p.Position;
    } else {
        p.Start = p.Middle = p.End = p.Entry = p.Exit = p.Position;
    }
    // A Move is not a punching entity: it carries no tool.
    if (punchOption != 1) TakeTool(rec, tool, indexAngle);
    return Done(std::move(rec));
}

std::int32_t HitsForPitch(double length, double pitch) {
    if (pitch == 0) return 0;
    const double q = std::fabs(length / pitch);
    const double whole = std::trunc(q);
    if (whole >= 32766) return 32767;
    std::int32_t hits = static_cast<std::int32_t>(whole) + 1;
    if ((q - whole) * std::fabs(pitch) > HitTolerance) ++hits;
    return hits;
}

void LineFields::Change(Field field, double value) {
    auto lengthAndAngle = [this] {
        double length = 0, angle = 0;
        XYToPolar(X2 - X1, Y2 - Y1, length, angle);
        LengthValue = Round4(length);
        AngleValue = Round3(angle);
    };
    auto finishFromPolar = [this] {
        double dx = 0, dy = 0;
        PolarToXY(LengthValue, AngleValue, dx, dy);
        X2 = Round4(X1 + dx);
        Y2 = Round4(Y1 + dy);
    };
    auto hitsFromPitch = [this] { HitsValue = HitsForPitch(LengthValue, PitchValue); };
    switch (field) {
        case StartX:
        case StartY:
            (field == StartX ? X1 : Y1) = value;
            if (!FinishByHand)
                finishFromPolar();
            else
                lengthAndAngle();
            hitsFromPitch();
            break;
        case FinishX:
        case FinishY:
            (field == FinishX ? X2 : Y2) = value;
            FinishByHand = true;
            lengthAndAngle();
            hitsFromPitch();
            break;
        case Length:
        case Angle:
            (field == Length ? LengthValue : AngleValue) = value;
            FinishByHand = false;
            finishFromPolar();
            hitsFromPitch();
            break;
        case Pitch:
            PitchValue = value;
            hitsFromPitch();
            break;
        case Hits: {
            const double hits = std::trunc(std::fabs(value));
            HitsValue = hits > 32767 ? 32767 : static_cast<std::int32_t>(hits);
            if (HitsValue > 1) PitchValue = Round4(LengthValue / (HitsValue - 1));
            break;
        }
    }
}

Composed ComposeLine(const LineFields& f, double indexAngle, std::int16_t compensation, const ScreenTool& tool,
                     const SettingsArray& plasmaSettings) {
    const bool plasma = tool.IsPlasma();
    const bool samePoint = SamePoint(f.X1, f.Y1, f.X2, f.Y2);
    if (plasma && (samePoint || f.LengthValue == 0)) return Refused(dialogue_message::InvalidLine);
    if (!plasma && (f.HitsValue < 2 || samePoint || f.LengthValue == 0 || f.PitchValue == 0))
        return Refused(dialogue_message::InvalidLine);
    EntityRec rec =
        plasma ? Started(EntityKind::LineProfile, "Line Profile") : Started(EntityKind::LinearPattern, "Line");
    EntityPoints& p = rec.Points;
    p.Start = p.Entry = Stored(f.X1, f.Y1);
    p.End = p.Exit = Stored(f.X2, f.Y2);
    rec.Values[1] = ToSingle(f.LengthValue);
    rec.Values[2] = ToSingle(f.PitchValue);
    rec.Values[10] = ToSingle(f.AngleValue);
    rec.Counts[1] = static_cast<std::int16_t>(f.HitsValue);
    rec.Compensation = plasma ? compensation : std::int16_t{0};
    if (plasma) CopySettings(plasmaSettings, rec.Settings);
    TakeTool(rec, tool, indexAngle);
    return Done(std::move(rec));
}

int GridScore(const GridDirection& d) {
    return (d.Extent != 0 ? 2 : 0) + (d.Pitch != 0 ? 3 : 0) + (d.Hits > 1 ? 4 : 0);
}

bool CompleteGridDirection(GridDirection& d) {
    switch (GridScore(d)) {
        case 5:
            d.Extent = d.Pitch < 0 ? -std::fabs(d.Extent) : std::fabs(d.Extent);
            d.Hits = static_cast<std::int32_t>(std::min(32767.0, std::trunc(std::fabs(d.Extent / d.Pitch)) + 1));
            return true;
        case 6:
            d.Pitch = Round4(d.Extent / (d.Hits - 1));
            return true;
        case 7:
        case 9:
            d.Extent = Round4(d.Pitch * (d.Hits - 1));
            return true;
        default:
            return false;
    }
}

Composed ComposeGrid(GridFields f, double indexAngle, const ScreenTool& tool) {
    if (!CompleteGridDirection(f.Row) || !CompleteGridDirection(f.Column))
        return Refused(dialogue_message::InvalidGrid);
    EntityRec rec = Started(EntityKind::GridPattern, "Grid Pattern");
    rec.Points.Start = rec.Points.Entry = Stored(f.X, f.Y);
    rec.Values[1] = ToSingle(f.Row.Extent);
    rec.Values[2] = ToSingle(f.Row.Pitch);
    rec.Values[3] = ToSingle(f.Column.Extent);
    rec.Values[4] = ToSingle(f.Column.Pitch);
    rec.Values[10] = ToSingle(f.Angle);
    rec.Counts[1] = static_cast<std::int16_t>(f.Row.Hits);
    rec.Counts[2] = static_cast<std::int16_t>(f.Column.Hits);
    rec.Counts[3] = 0;
    TakeTool(rec, tool, indexAngle);
    return Done(std::move(rec));
}

bool ArcFields::Settle() {
    if (Option == 0) {
        // The circle through the three points: the crossing of two chords' perpendiculars.
        const double ax = X1, ay = Y1, bx = XM, by = YM, cx = X2, cy = Y2;
        const double d = 2 * (ax * (by - cy) + bx * (cy - ay) + cx * (ay - by));
        if (std::fabs(d) < 1e-9) return false;
        const double a2 = ax * ax + ay * ay, b2 = bx * bx + by * by, c2 = cx * cx + cy * cy;
        const double ux = (a2 * (by - cy) + b2 * (cy - ay) + c2 * (ay - by)) / d;
        const double uy = (a2 * (cx - bx) + b2 * (ax - cx) + c2 * (bx - ax)) / d;
        double r = 0, start = 0, middle = 0, finish = 0;
        XYToPolar(ax - ux, ay - uy, r, start);
        XYToPolar(bx - ux, by - uy, r, middle);
        XYToPolar(cx - ux, cy - uy, r, finish);
        CentreX = Round4(ux);
        CentreY = Round4(uy);
        Radius = Round4(r);
        StartAngle = Round3(start);
        FinishAngle = Round3(finish);
        // Counter-clockwise when the middle lies on the way round from start to finish.
        double ccw = NormaliseAngle(finish - start);
        if (ccw == 0) ccw = 360;
        const double toMiddle = NormaliseAngle(middle - start);
        Sweep = Round3(toMiddle < ccw ? ccw : ccw - 360);
    } else {
        Sweep = Round3(FinishAngle - StartAngle);
        if (Sweep == 0) Sweep = 360;
        // The three points of the same arc.
        auto at = [this](double angle, double& x, double& y) {
            double dx = 0, dy = 0;
            PolarToXY(Radius, angle, dx, dy);
            x = Round4(CentreX + dx);
            y = Round4(CentreY + dy);
        };
        at(StartAngle, X1, Y1);
        at(StartAngle + Sweep / 2, XM, YM);
        at(StartAngle + Sweep, X2, Y2);
    }
    return Radius != 0;
}

void ArcFields::Change(Field field, double value) {
    Settle();
    const bool full = std::fabs(Sweep) == 360;
    switch (field) {
        case AngularPitchField:
            AngularPitch = value;
            break;
        case NibblePitchField:
            NibblePitch = value;
            AngularPitch = Radius != 0 ? Round3(RadToDeg(value / Radius)) : 0;
            break;
        case HitsField: {
            const double hits = std::trunc(std::fabs(value));
            HitsValue = hits > 32767 ? 32767 : static_cast<std::int32_t>(hits);
            const std::int32_t spaces = full ? HitsValue : HitsValue - 1;
            if (spaces > 0) AngularPitch = Round3(std::fabs(Sweep) / spaces);
            if (Radius != 0) NibblePitch = Round4(Radius * DegToRad(AngularPitch));
            return;
        }
    }
    HitsValue = HitsForPitch(Sweep, AngularPitch);
    if (field == AngularPitchField && Radius != 0) NibblePitch = Round4(Radius * DegToRad(AngularPitch));
}

Composed ComposeArc(const ArcFields& fields, double indexAngle, bool indexWithArc, std::int16_t compensation,
                    const ScreenTool& tool, const SettingsArray& plasmaSettings) {
    ArcFields f = fields;
    f.Settle();
    const bool plasma = tool.IsPlasma();
    if (f.Radius == 0 || f.Sweep == 0) return Refused(dialogue_message::InvalidArc);
    if (!plasma && f.HitsValue < 1 && f.AngularPitch == 0) return Refused(dialogue_message::InvalidArc);
    EntityRec rec = plasma ? Started(EntityKind::ArcProfile, "Arc Profile") : Started(EntityKind::ArcPattern, "Arc");
    rec.Points.Position = Stored(f.CentreX, f.CentreY);
    rec.Values[1] = ToSingle(f.Radius);
    rec.Values[10] = ToSingle(f.StartAngle);
    rec.Values[11] = ToSingle(f.Sweep);
    rec.Counts[6] = 2;
    rec.Compensation = plasma ? compensation : std::int16_t{0};
    if (plasma) {
        double dx = 0, dy = 0;
        PolarToXY(f.Radius, f.StartAngle, dx, dy);
        rec.Points.Start = Stored(Round4(f.CentreX + dx), Round4(f.CentreY + dy));
        PolarToXY(f.Radius, f.StartAngle + f.Sweep, dx, dy);
        rec.Points.End = Stored(Round4(f.CentreX + dx), Round4(f.CentreY + dy));
        rec.Values[2] = ToSingle(2 * Pi * f.Radius * std::fabs(f.Sweep) / 360);
        CopySettings(plasmaSettings, rec.Settings);
    } else {
        // The step goes the way of the sweep.
        double step = f.Sweep < 0 ? -std::fabs(f.AngularPitch) : std::fabs(f.AngularPitch);
        std::int32_t hits = f.HitsValue;
        if (f.NibblePitch > 0 && f.NibblePitch < NibbleFormPitch) {
            // Nibbled: the hits the machine makes of the arc at this pitch, one more than the
            // whole pitches along it; a full circle has no hit at its end.
            const double length = std::fabs(f.Sweep) / 360 * (f.Radius * Pi * 2);
            const double whole = std::trunc(length / f.NibblePitch);
            const std::int32_t n = whole >= 32766 ? 32767 : static_cast<std::int32_t>(whole) + 1;
            if (n > 1) {
                step = f.Sweep / (n - 1);
                hits = std::fabs(f.Sweep) == 360 ? n - 1 : n;
            }
        }
        rec.Values[3] = ToSingle(f.NibblePitch);
        rec.Values[12] = ToSingle(step);
        rec.Counts[1] = static_cast<std::int16_t>(hits);
        rec.Counts[2] = indexWithArc ? TrueWord : FalseWord;
    }
    TakeTool(rec, tool, indexAngle);
    return Done(std::move(rec));
}

Composed ComposeDwell(double time, const LastPoint& last) {
    const double absolute = std::fabs(time);
    if (absolute == 0) return Refused(dialogue_message::InvalidDwell);
    EntityRec rec = Started(EntityKind::Dwell, "Program Dwell");
    rec.Points.Position = Stored(last.X, last.Y);
    rec.Values[1] = ToSingle(absolute);
    return Done(std::move(rec));
}

Composed ComposeStop(double x, double y, bool optional, const LastPoint& last, const DialogueLimits& limits) {
    // Compared as for a punch; the result changes nothing.
    static_cast<void>(WithinLimits(limits, x, y));
    EntityRec rec = Started(EntityKind::Stop, optional ? "Optional Stop" : "Program Stop");
    rec.Points.Position = Stored(x, y);
    rec.Counts[1] = optional ? TrueWord : FalseWord;
    rec.Counts[2] = SamePoint(x, y, last.X, last.Y) ? FalseWord : TrueWord;
    return Done(std::move(rec));
}

Composed ComposeReposition(double x, double y, double xReposition, double yBackoff, const DialogueLimits& limits,
                           double& newOffsetX) {
    if (x < limits.XMin || x > limits.XMax || y < limits.YMin || y > limits.YMax)
        return Refused(dialogue_message::OutOfLimits);
    // The sheet moves by the reposition: the limits in the sheet's terms lose it.
    const double shift = Round4(limits.OffsetX - xReposition);
    if (xReposition == 0 || x < limits.XMin + shift || x > limits.XMax + shift)
        return Refused(dialogue_message::InvalidReposition);
    EntityRec rec = Started(EntityKind::Reposition, "Reposition");
    rec.Points.Position = Stored(x, y);
    rec.Values[1] = ToSingle(xReposition);
    rec.Values[2] = ToSingle(yBackoff);
    rec.Values[3] = ToSingle(limits.XMin + shift);
    rec.Values[4] = ToSingle(limits.XMax + shift);
    rec.Values[6] = ToSingle(yBackoff);
    newOffsetX = shift;
    return Done(std::move(rec));
}

Composed ComposeNest(const NestFields& f, double partX, double partY) {
    if (f.PartsX < 1 || f.PartsY < 1 || f.SheetY > 1000 || f.PartsX > 32767 || f.PartsY > 32767)
        return Refused(dialogue_message::InvalidMultiPart);
    EntityRec rec = Started(EntityKind::MultiPart, "Multi-Part");
    rec.Remark = FixedText("Dlgprg.prw", RemarkWidth);
    rec.Counts[1] = static_cast<std::int16_t>(f.PartsX);
    rec.Counts[2] = static_cast<std::int16_t>(f.PartsY);
    rec.Values[1] = ToSingle(f.SheetX);
    rec.Values[2] = ToSingle(f.SheetY);
    rec.Values[3] = ToSingle(f.BorderX);
    rec.Values[4] = ToSingle(f.BorderY);
    rec.Values[5] = ToSingle(f.GapX);
    rec.Values[6] = ToSingle(f.GapY);
    rec.Values[7] = ToSingle(partX);
    rec.Values[8] = ToSingle(f.ClampStrip);
    rec.Values[9] = ToSingle(partY);
    rec.Values[11] = ToSingle(Round4(partX + f.GapX));
    rec.Values[12] = ToSingle(Round4(partY + f.GapY));
    return Done(std::move(rec));
}

EntityRec ComposeSheet(const SheetFields& f, std::int32_t entityCount, bool& sheetDefined) {
    EntityRec rec = Started(EntityKind::Sheet, "Sheet");
    sheetDefined = f.SizeX > 0 && f.SizeY > 0;
    rec.Remark = FixedText(f.Material, RemarkWidth);
    rec.Values[1] = sheetDefined ? ToSingle(f.SizeX) : 0.0f;
    rec.Values[2] = sheetDefined ? ToSingle(f.SizeY) : 0.0f;
    const int shown = std::clamp(f.ClampCount, 0, 4);
    bool allSet = shown > 0;
    for (int i = 0; i < shown; ++i) allSet = allSet && f.Clamps[static_cast<std::size_t>(i)] > 0;
    for (int i = 0; i < 4; ++i)
        rec.Values[static_cast<std::size_t>(7 + i)] =
            allSet && i < shown ? ToSingle(f.Clamps[static_cast<std::size_t>(i)]) : 0.0f;
    rec.RecordNo = entityCount;
    rec.Counts[1] = static_cast<std::int16_t>(std::min<std::int32_t>(entityCount, 32767));
    return rec;
}

LineFields LineFieldsOf(const EntityRec& rec) {
    LineFields f;
    f.X1 = rec.Points.Start.X;
    f.Y1 = rec.Points.Start.Y;
    f.X2 = rec.Points.End.X;
    f.Y2 = rec.Points.End.Y;
    f.LengthValue = rec.Values[1];
    f.AngleValue = rec.Values[10];
    f.PitchValue = std::fabs(rec.Values[2]);
    f.HitsValue = rec.Counts[1];
    f.FinishByHand = true;
    return f;
}

GridFields GridFieldsOf(const EntityRec& rec) {
    GridFields f;
    f.X = rec.Points.Start.X;
    f.Y = rec.Points.Start.Y;
    f.Row = {rec.Values[1], rec.Values[2], rec.Counts[1]};
    f.Column = {rec.Values[3], rec.Values[4], rec.Counts[2]};
    f.Angle = rec.Values[10];
    return f;
}

ArcFields ArcFieldsOf(const EntityRec& rec) {
    ArcFields f;
    f.Option = 1;
    f.CentreX = rec.Points.Position.X;
    f.CentreY = rec.Points.Position.Y;
    f.Radius = rec.Values[1];
    f.StartAngle = rec.Values[10];
    f.FinishAngle = Round3(NormaliseAngle(static_cast<double>(rec.Values[10]) + rec.Values[11]));
    f.Settle();
    // The sweep stands as recorded (a finish equal to the start is a full circle either way).
    f.Sweep = rec.Values[11];
    f.AngularPitch = std::fabs(rec.Values[12]);
    f.NibblePitch = rec.Values[3];
    f.HitsValue = rec.Counts[1];
    return f;
}

LastPoint EndOf(const EntityRec& rec) { return LastPoint{rec.Points.Exit.X, rec.Points.Exit.Y}; }

}  // namespace kirvana

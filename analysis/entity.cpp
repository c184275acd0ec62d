#include "analysis/entity.h"

namespace kirvana {

std::string FixedText(std::string_view text, std::size_t width) {
    std::string fixed(text.substr(0, width));
    fixed.resize(width, ' ');
    return fixed;
}

void ClearSubCall(SubCall& call) {
    call.Block.assign(CallBlockWidth, ' ');
    call.CallCode = 0;
    call.Label = 0;
    call.X = 0;
    call.Y = 0;
    call.PitchX = 0;
    call.PitchY = 0;
    call.CountX = 0;
    call.CountY = 0;
    call.Order = 0;
}

// Value members only: the assignment copies field by field and shares nothing.
void CopySubCall(const SubCall& source, SubCall& target) { target = source; }

void ClearEntity(EntityRec& rec) {
    rec.Kind = 0;
    rec.KindName.assign(KindNameWidth, ' ');
    rec.Remark.assign(RemarkWidth, ' ');
    rec.BlockText.assign(BlockTextWidth, ' ');
    rec.MainBlock = 0;
    rec.SubBlock = 0;
    ClearSubCall(rec.CallSpec);
    ClearSubCall(rec.CallState);
    rec.Points = EntityPoints();
    rec.Values.Items.fill(0);
    rec.Counts.Items.fill(0);
    rec.Compensation = 0;
    rec.CycleRotate = 0;
    rec.Extent = BoxF();
    rec.ClearBox = BoxF();
    ClearTool(rec.Tool);
    rec.RecordNo = 0;
    rec.StationNo = 0;
    ClearSettings(rec.Settings);
    rec.Feed = 0;
    rec.PathMode = 0;
}

void CopyEntity(const EntityRec& source, EntityRec& target) {
    if (&source == &target) return;
    target.Kind = source.Kind;
    target.KindName = source.KindName;
    target.Remark = source.Remark;
    target.BlockText = source.BlockText;
    target.MainBlock = source.MainBlock;
    target.SubBlock = source.SubBlock;
    CopySubCall(source.CallSpec, target.CallSpec);
    CopySubCall(source.CallState, target.CallState);
    target.Points = source.Points;
    target.Values = source.Values;
    target.Counts = source.Counts;
    target.Compensation = source.Compensation;
    target.CycleRotate = source.CycleRotate;
    target.Extent = source.Extent;
    target.ClearBox = source.ClearBox;
    CopyTool(source.Tool, target.Tool);
    target.RecordNo = source.RecordNo;
    target.StationNo = source.StationNo;
    CopySettings(source.Settings, target.Settings);
    target.Feed = source.Feed;
    target.PathMode = source.PathMode;
}

}  // namespace kirvana

// The drawing record's bytes: every field at its offset with its width, little-endian,
// texts blank-padded, nothing else touched when a field changes.
#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "analysis/drawing_file.h"
#include "analysis/entity.h"

namespace kirvana {
namespace {

enum class Type { I16, I32, F32, Text, Char };

struct Field {
    std::string Name;
    std::size_t Offset;
    std::size_t Width;
    Type Kind;
    std::function<void(EntityRec&)> Set;
};

// Markers whose bytes are all non-zero and differ from blanks and from -999 as a single.
constexpr std::int16_t MarkI16 = 0x1234;
constexpr std::int32_t MarkI32 = 0x12345678;
constexpr float MarkF32 = 1.2345678f;

std::uint32_t LittleEndian(const RecordBytes& b, std::size_t at, std::size_t width) {
    std::uint32_t v = 0;
    for (std::size_t i = 0; i < width; ++i) v |= static_cast<std::uint32_t>(b[at + i]) << (8 * i);
    return v;
}

void AddI16(std::vector<Field>& f, std::string name, std::size_t at, std::function<std::int16_t&(EntityRec&)> get) {
    f.push_back({std::move(name), at, 2, Type::I16, [get](EntityRec& r) { get(r) = MarkI16; }});
}
void AddF32(std::vector<Field>& f, std::string name, std::size_t at, std::function<float&(EntityRec&)> get) {
    f.push_back({std::move(name), at, 4, Type::F32, [get](EntityRec& r) { get(r) = MarkF32; }});
}
void AddText(std::vector<Field>& f, std::string name, std::size_t at, std::size_t width,
             std::function<std::string&(EntityRec&)> get) {
    f.push_back({std::move(name), at, width, Type::Text, [get, width](EntityRec& r) { get(r) = std::string(width, 'x'); }});
}
void AddPoint(std::vector<Field>& f, const std::string& name, std::size_t at, std::function<PointF&(EntityRec&)> get) {
    AddF32(f, name + ".X", at, [get](EntityRec& r) -> float& { return get(r).X; });
    AddF32(f, name + ".Y", at + 4, [get](EntityRec& r) -> float& { return get(r).Y; });
}
void AddSubCall(std::vector<Field>& f, const std::string& name, std::size_t at, std::function<SubCall&(EntityRec&)> get) {
    AddText(f, name + ".Block", at + 0, 250, [get](EntityRec& r) -> std::string& { return get(r).Block; });
    AddI16(f, name + ".CallCode", at + 250, [get](EntityRec& r) -> std::int16_t& { return get(r).CallCode; });
    AddI16(f, name + ".Label", at + 252, [get](EntityRec& r) -> std::int16_t& { return get(r).Label; });
    AddF32(f, name + ".X", at + 254, [get](EntityRec& r) -> float& { return get(r).X; });
    AddF32(f, name + ".Y", at + 258, [get](EntityRec& r) -> float& { return get(r).Y; });
    AddF32(f, name + ".PitchX", at + 262, [get](EntityRec& r) -> float& { return get(r).PitchX; });
    AddF32(f, name + ".PitchY", at + 266, [get](EntityRec& r) -> float& { return get(r).PitchY; });
    AddI16(f, name + ".CountX", at + 270, [get](EntityRec& r) -> std::int16_t& { return get(r).CountX; });
    AddI16(f, name + ".CountY", at + 272, [get](EntityRec& r) -> std::int16_t& { return get(r).CountY; });
    AddI16(f, name + ".Order", at + 274, [get](EntityRec& r) -> std::int16_t& { return get(r).Order; });
}

// The layout table, typed out field by field.
std::vector<Field> LayoutTable() {
    std::vector<Field> f;
    AddI16(f, "Kind", 0, [](EntityRec& r) -> std::int16_t& { return r.Kind; });
    AddText(f, "KindName", 2, 18, [](EntityRec& r) -> std::string& { return r.KindName; });
    AddText(f, "Remark", 20, 72, [](EntityRec& r) -> std::string& { return r.Remark; });
    AddText(f, "BlockText", 92, 255, [](EntityRec& r) -> std::string& { return r.BlockText; });
    AddI16(f, "MainBlock", 347, [](EntityRec& r) -> std::int16_t& { return r.MainBlock; });
    AddI16(f, "SubBlock", 349, [](EntityRec& r) -> std::int16_t& { return r.SubBlock; });
    AddSubCall(f, "CallSpec", 351, [](EntityRec& r) -> SubCall& { return r.CallSpec; });
    AddSubCall(f, "CallState", 627, [](EntityRec& r) -> SubCall& { return r.CallState; });
    AddPoint(f, "Start", 903, [](EntityRec& r) -> PointF& { return r.Points.Start; });
    AddPoint(f, "Middle", 911, [](EntityRec& r) -> PointF& { return r.Points.Middle; });
    AddPoint(f, "End", 919, [](EntityRec& r) -> PointF& { return r.Points.End; });
    AddPoint(f, "Position", 927, [](EntityRec& r) -> PointF& { return r.Points.Position; });
    AddPoint(f, "Entry", 935, [](EntityRec& r) -> PointF& { return r.Points.Entry; });
    AddPoint(f, "Exit", 943, [](EntityRec& r) -> PointF& { return r.Points.Exit; });
    for (std::size_t i = 1; i <= 24; ++i)
        AddF32(f, "Values[" + std::to_string(i) + "]", 951 + 4 * (i - 1),
               [i](EntityRec& r) -> float& { return r.Values[i]; });
    for (std::size_t i = 1; i <= 12; ++i)
        AddI16(f, "Counts[" + std::to_string(i) + "]", 1047 + 2 * (i - 1),
               [i](EntityRec& r) -> std::int16_t& { return r.Counts[i]; });
    AddI16(f, "Compensation", 1071, [](EntityRec& r) -> std::int16_t& { return r.Compensation; });
    AddI16(f, "CycleRotate", 1073, [](EntityRec& r) -> std::int16_t& { return r.CycleRotate; });
    AddPoint(f, "Extent.Low", 1075, [](EntityRec& r) -> PointF& { return r.Extent.Low; });
    AddPoint(f, "Extent.High", 1083, [](EntityRec& r) -> PointF& { return r.Extent.High; });
    AddPoint(f, "ClearBox.Low", 1091, [](EntityRec& r) -> PointF& { return r.ClearBox.Low; });
    AddPoint(f, "ClearBox.High", 1099, [](EntityRec& r) -> PointF& { return r.ClearBox.High; });
    AddI16(f, "Tool.Valid", 1107, [](EntityRec& r) -> std::int16_t& { return r.Tool.Valid; });
    f.push_back({"Tool.Shape", 1109, 1, Type::Char, [](EntityRec& r) { r.Tool.Shape = 'Q'; }});
    AddText(f, "Tool.Name", 1110, 18, [](EntityRec& r) -> std::string& { return r.Tool.Name; });
    AddF32(f, "Tool.D1", 1128, [](EntityRec& r) -> float& { return r.Tool.D1; });
    AddF32(f, "Tool.D2", 1132, [](EntityRec& r) -> float& { return r.Tool.D2; });
    AddF32(f, "Tool.D3", 1136, [](EntityRec& r) -> float& { return r.Tool.D3; });
    AddF32(f, "Tool.D4", 1140, [](EntityRec& r) -> float& { return r.Tool.D4; });
    AddI16(f, "Tool.Setting", 1144, [](EntityRec& r) -> std::int16_t& { return r.Tool.Setting; });
    AddI16(f, "Tool.Station", 1146, [](EntityRec& r) -> std::int16_t& { return r.Tool.Station; });
    AddF32(f, "Tool.Angle", 1148, [](EntityRec& r) -> float& { return r.Tool.Angle; });
    AddF32(f, "Tool.Extra1", 1152, [](EntityRec& r) -> float& { return r.Tool.Extra1; });
    AddF32(f, "Tool.Extra2", 1156, [](EntityRec& r) -> float& { return r.Tool.Extra2; });
    f.push_back({"RecordNo", 1160, 4, Type::I32, [](EntityRec& r) { r.RecordNo = MarkI32; }});
    AddI16(f, "StationNo", 1164, [](EntityRec& r) -> std::int16_t& { return r.StationNo; });
    for (std::size_t i = 1; i <= 24; ++i)
        AddF32(f, "Settings[" + std::to_string(i) + "]", 1166 + 4 * (i - 1),
               [i](EntityRec& r) -> float& { return r.Settings[i - 1]; });
    AddF32(f, "Feed", 1262, [](EntityRec& r) -> float& { return r.Feed; });
    AddI16(f, "PathMode", 1266, [](EntityRec& r) -> std::int16_t& { return r.PathMode; });
    return f;
}

TEST(EntityLayout, RecordLengthIs1268) { EXPECT_EQ(RecordLength, 1268u); }

TEST(EntityLayout, TheTableCoversEveryByteOnce) {
    std::vector<int> covered(RecordLength, 0);
    for (const auto& field : LayoutTable())
        for (std::size_t i = 0; i < field.Width; ++i) ++covered.at(field.Offset + i);
    for (std::size_t i = 0; i < RecordLength; ++i) EXPECT_EQ(covered[i], 1) << "byte " << i;
}

TEST(EntityLayout, EveryFieldAtItsOffsetWithItsWidth) {
    EntityRec cleared;
    ClearEntity(cleared);
    RecordBytes baseline;
    EncodeEntity(cleared, baseline);
    for (const auto& field : LayoutTable()) {
        SCOPED_TRACE(field.Name);
        EntityRec rec;
        ClearEntity(rec);
        field.Set(rec);
        RecordBytes bytes;
        EncodeEntity(rec, bytes);
        // Exactly the field's bytes change.
        for (std::size_t i = 0; i < RecordLength; ++i) {
            bool inField = i >= field.Offset && i < field.Offset + field.Width;
            EXPECT_EQ(bytes[i] != baseline[i], inField) << "byte " << i;
        }
        // And they hold the value, little-endian.
        switch (field.Kind) {
        case Type::I16: EXPECT_EQ(LittleEndian(bytes, field.Offset, 2), 0x1234u); break;
        case Type::I32: EXPECT_EQ(LittleEndian(bytes, field.Offset, 4), 0x12345678u); break;
        case Type::F32: EXPECT_EQ(LittleEndian(bytes, field.Offset, 4), std::bit_cast<std::uint32_t>(MarkF32)); break;
        case Type::Text:
            EXPECT_EQ(std::string(bytes.begin() + field.Offset, bytes.begin() + field.Offset + field.Width),
                      std::string(field.Width, 'x'));
            break;
        case Type::Char: EXPECT_EQ(bytes[field.Offset], 'Q'); break;
        }
        // Read back, the record writes the same bytes again.
        EntityRec back;
        DecodeEntity(bytes, back);
        RecordBytes again;
        EncodeEntity(back, again);
        EXPECT_EQ(again, bytes);
    }
}

TEST(EntityLayout, ToolExtra2IsASingle) {
    // A table's tool carries Extra2 1: in the record the 32-bit float 1.0, not the integer 1.
    EntityRec rec;
    ClearEntity(rec);
    rec.Tool.Extra2 = 1;
    RecordBytes bytes;
    EncodeEntity(rec, bytes);
    EXPECT_EQ(LittleEndian(bytes, 1156, 4), 0x3F800000u);
    EntityRec back;
    DecodeEntity(bytes, back);
    EXPECT_EQ(back.Tool.Extra2, 1);
}

TEST(EntityLayout, ClearedRecordBytes) {
    EntityRec rec;
    rec.Kind = 5;
    rec.Values[3] = 7;
    ClearEntity(rec);
    RecordBytes bytes;
    EncodeEntity(rec, bytes);
    // Numbers 0, texts blank, settings -999 as singles (0xC479C000).
    EXPECT_EQ(LittleEndian(bytes, 0, 2), 0u);
    EXPECT_EQ(bytes[2], ' ');
    EXPECT_EQ(bytes[91], ' ');
    EXPECT_EQ(bytes[351], ' ');
    EXPECT_EQ(LittleEndian(bytes, 351 + 250, 2), 0u);
    EXPECT_EQ(LittleEndian(bytes, 951 + 8, 4), 0u);
    EXPECT_EQ(bytes[1109], ' ');  // the empty tool's shape
    EXPECT_EQ(bytes[1110], ' ');
    for (std::size_t i = 0; i < 24; ++i) EXPECT_EQ(LittleEndian(bytes, 1166 + 4 * i, 4), 0xC479C000u);
}

TEST(EntityLayout, NegativeNumbersAreTwosComplementLittleEndian) {
    EntityRec rec;
    rec.Kind = -2;
    rec.RecordNo = -3;
    rec.Feed = -999;
    RecordBytes bytes;
    EncodeEntity(rec, bytes);
    EXPECT_EQ(bytes[0], 0xFE);
    EXPECT_EQ(bytes[1], 0xFF);
    EXPECT_EQ(LittleEndian(bytes, 1160, 4), 0xFFFFFFFDu);
    EXPECT_EQ(LittleEndian(bytes, 1262, 4), 0xC479C000u);
}

TEST(EntityLayout, TextsArePaddedWithBlanksAndCutToTheirWidth) {
    EntityRec rec;
    rec.KindName = "Punch";
    rec.Remark = std::string(80, 'r');
    rec.Tool.Name = "Diameter";
    RecordBytes bytes;
    EncodeEntity(rec, bytes);
    EXPECT_EQ(std::string(bytes.begin() + 2, bytes.begin() + 20), "Punch             ");
    EXPECT_EQ(std::string(bytes.begin() + 20, bytes.begin() + 92), std::string(72, 'r'));
    EXPECT_EQ(bytes[92], ' ');  // the cut remark doesn't run into the block text
    EXPECT_EQ(std::string(bytes.begin() + 1110, bytes.begin() + 1128), "Diameter          ");
    EntityRec back;
    DecodeEntity(bytes, back);
    EXPECT_EQ(back.KindName, FixedText("Punch", 18));
    EXPECT_EQ(back.Remark.size(), 72u);
}

TEST(EntityLayout, AnyBytesReadAndWriteBackUnchanged) {
    RecordBytes bytes;
    for (std::size_t i = 0; i < RecordLength; ++i) bytes[i] = static_cast<std::uint8_t>((i * 131 + 7) & 0xFF);
    // A quiet NaN and an infinity among the singles travel untouched.
    const std::uint32_t nan = 0x7FC01234u, inf = 0x7F800000u;
    std::memcpy(bytes.data() + 951, &nan, 4);
    std::memcpy(bytes.data() + 955, &inf, 4);
    EntityRec rec;
    DecodeEntity(bytes, rec);
    RecordBytes again;
    EncodeEntity(rec, again);
    EXPECT_EQ(again, bytes);
}

}  // namespace
}  // namespace kirvana

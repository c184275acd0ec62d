// A Special tool's file in ToolsDir: records of 426 bytes, one list entry each, read up to the
// end mark or the end of the file:
//   offset 0, 1 byte: the entry's Op, "L", "A" or "*"
//   offset 1, 7 x 32-bit float, little-endian: X1, Y1, X2, Y2, Radius, StartAngle, EndAngle
//   offset 29 to 425: a blank-padded note, not read.
// The tool's name is the file's name without its extension.
#include <bit>
#include <cmath>
#include <fstream>
#include <iterator>

#include "core/file_writer.h"
#include "core/little_endian.h"
#include "core/names.h"
#include "core/paths.h"
#include "core/text.h"
#include "plot/shape_list.h"

namespace kirvana {

namespace {

float LoadFloat(const std::uint8_t* at) { return std::bit_cast<float>(LoadUint32(at)); }

}  // namespace

std::string SpecialToolFile(const std::string& toolsDir, const std::string& name) {
    std::string wanted = UpperCase(Trim(name));
    if (wanted.empty() || !AcceptableName(wanted)) return {};
    for (const std::string& file : ListDirectory(toolsDir, false))
        if (UpperCase(StripExtension(file)) == wanted) return toolsDir + file;
    return {};
}

bool ReadSpecialTool(const std::string& path, ShapeList& list) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (bytes.empty() || bytes.size() % SpecialRecordLength != 0) return false;
    const std::size_t records = bytes.size() / SpecialRecordLength;
    int count = 0;
    for (std::size_t r = 0; r < records && count < MaxShapeEntries - 1; ++r) {
        const auto* at = reinterpret_cast<const std::uint8_t*>(bytes.data() + r * SpecialRecordLength);
        char op = static_cast<char>(at[0]);
        if (op == '*') break;
        if (op != 'L' && op != 'A') return false;
        ShapeEntry e;
        e.Op = op;
        float* fields[7] = {&e.X1, &e.Y1, &e.X2, &e.Y2, &e.Radius, &e.StartAngle, &e.EndAngle};
        for (int f = 0; f < 7; ++f) {
            *fields[f] = LoadFloat(at + 1 + 4 * f);
            // Sizes beyond a sheet are damage, not a tool.
            if (!std::isfinite(*fields[f]) || std::abs(*fields[f]) > 1e5f) return false;
        }
        if (op == 'A' && (e.Radius <= 0 || e.EndAngle <= e.StartAngle)) return false;
        list.Entries[static_cast<std::size_t>(count++)] = e;
    }
    if (count == 0) return false;
    list.Entries[static_cast<std::size_t>(count)] = ShapeEntry{};
    list.FillSeeds.assign(1, PlotPoint{0, 0});
    return true;
}

bool WriteSpecialTool(const std::string& path, const std::vector<ShapeEntry>& entries) {
    std::string bytes;
    auto record = [&](const ShapeEntry& e) {
        std::string rec(SpecialRecordLength, ' ');
        auto* at = reinterpret_cast<std::uint8_t*>(rec.data());
        at[0] = static_cast<std::uint8_t>(e.Op);
        const float fields[7] = {e.X1, e.Y1, e.X2, e.Y2, e.Radius, e.StartAngle, e.EndAngle};
        for (int f = 0; f < 7; ++f) StoreUint32(at + 1 + 4 * f, std::bit_cast<std::uint32_t>(fields[f]));
        bytes += rec;
    };
    for (const ShapeEntry& e : entries) {
        if (e.Op == '*') break;
        record(e);
    }
    record(ShapeEntry{});
    return WriteFileText(path, bytes);
}

}  // namespace kirvana

#include "analysis/drawing_file.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

#include <sys/types.h>

#include "core/little_endian.h"
#include "core/paths.h"

namespace kirvana {

namespace {

// Offsets in the record. Texts are 8-bit, left-justified, blank-padded, not terminated.
constexpr std::size_t KindAt = 0;
constexpr std::size_t KindNameAt = 2;
constexpr std::size_t RemarkAt = 20;
constexpr std::size_t BlockTextAt = 92;
constexpr std::size_t MainBlockAt = 347;
constexpr std::size_t SubBlockAt = 349;
constexpr std::size_t CallSpecAt = 351;
constexpr std::size_t CallStateAt = 627;
constexpr std::size_t PointsAt = 903;
constexpr std::size_t ValuesAt = 951;
constexpr std::size_t CountsAt = 1047;
constexpr std::size_t CompensationAt = 1071;
constexpr std::size_t CycleRotateAt = 1073;
constexpr std::size_t ExtentAt = 1075;
constexpr std::size_t ClearBoxAt = 1091;
constexpr std::size_t ToolAt = 1107;
constexpr std::size_t RecordNoAt = 1160;
constexpr std::size_t StationNoAt = 1164;
constexpr std::size_t SettingsAt = 1166;
constexpr std::size_t FeedAt = 1262;
constexpr std::size_t PathModeAt = 1266;
static_assert(PathModeAt + 2 == RecordLength);

// Offsets inside a `SubCall` (276 bytes).
constexpr std::size_t CallBlockAt = 0;
constexpr std::size_t CallCodeAt = 250;
constexpr std::size_t LabelAt = 252;
constexpr std::size_t CallXAt = 254;
constexpr std::size_t CallYAt = 258;
constexpr std::size_t PitchXAt = 262;
constexpr std::size_t PitchYAt = 266;
constexpr std::size_t CountXAt = 270;
constexpr std::size_t CountYAt = 272;
constexpr std::size_t OrderAt = 274;
constexpr std::size_t SubCallLength = 276;
static_assert(CallSpecAt + SubCallLength == CallStateAt && CallStateAt + SubCallLength == PointsAt);

// Offsets inside `Tool` (53 bytes).
constexpr std::size_t ToolValidAt = 0;
constexpr std::size_t ToolShapeAt = 2;
constexpr std::size_t ToolNameAt = 3;
constexpr std::size_t ToolDimensionsAt = 21;
constexpr std::size_t ToolSettingAt = 37;
constexpr std::size_t ToolStationAt = 39;
constexpr std::size_t ToolAngleAt = 41;
constexpr std::size_t ToolExtra1At = 45;
constexpr std::size_t ToolExtra2At = 49;
static_assert(ToolAt + ToolExtra2At + 4 == RecordNoAt);

class Writer {
public:
    explicit Writer(RecordBytes& bytes) : bytes_(bytes) {}
    void U32(std::size_t at, std::uint32_t v) { StoreUint32(bytes_.data() + at, v); }
    void I16(std::size_t at, std::int16_t v) { StoreInt16(bytes_.data() + at, v); }
    void I32(std::size_t at, std::int32_t v) { U32(at, static_cast<std::uint32_t>(v)); }
    void F32(std::size_t at, float v) { U32(at, std::bit_cast<std::uint32_t>(v)); }
    void Point(std::size_t at, const PointF& p) {
        F32(at, p.X);
        F32(at + 4, p.Y);
    }
    void Box(std::size_t at, const BoxF& b) {
        Point(at, b.Low);
        Point(at + 8, b.High);
    }
    void Text(std::size_t at, std::size_t width, const std::string& text) {
        std::size_t n = std::min(width, text.size());
        std::memcpy(bytes_.data() + at, text.data(), n);
        std::memset(bytes_.data() + at + n, ' ', width - n);
    }
    void Call(std::size_t at, const SubCall& c) {
        Text(at + CallBlockAt, CallBlockWidth, c.Block);
        I16(at + CallCodeAt, c.CallCode);
        I16(at + LabelAt, c.Label);
        F32(at + CallXAt, c.X);
        F32(at + CallYAt, c.Y);
        F32(at + PitchXAt, c.PitchX);
        F32(at + PitchYAt, c.PitchY);
        I16(at + CountXAt, c.CountX);
        I16(at + CountYAt, c.CountY);
        I16(at + OrderAt, c.Order);
    }

private:
    RecordBytes& bytes_;
};

class Reader {
public:
    explicit Reader(const RecordBytes& bytes) : bytes_(bytes) {}
    std::uint32_t U32(std::size_t at) const { return LoadUint32(bytes_.data() + at); }
    std::int16_t I16(std::size_t at) const { return LoadInt16(bytes_.data() + at); }
    std::int32_t I32(std::size_t at) const { return static_cast<std::int32_t>(U32(at)); }
    float F32(std::size_t at) const { return std::bit_cast<float>(U32(at)); }
    PointF Point(std::size_t at) const { return {F32(at), F32(at + 4)}; }
    BoxF Box(std::size_t at) const { return {Point(at), Point(at + 8)}; }
    void Text(std::size_t at, std::size_t width, std::string& text) const {
        text.assign(reinterpret_cast<const char*>(bytes_.data() + at), width);
    }
    void Call(std::size_t at, SubCall& c) const {
        Text(at + CallBlockAt, CallBlockWidth, c.Block);
        c.CallCode = I16(at + CallCodeAt);
        c.Label = I16(at + LabelAt);
        c.X = F32(at + CallXAt);
        c.Y = F32(at + CallYAt);
        c.PitchX = F32(at + PitchXAt);
        c.PitchY = F32(at + PitchYAt);
        c.CountX = I16(at + CountXAt);
        c.CountY = I16(at + CountYAt);
        c.Order = I16(at + OrderAt);
    }

private:
    const RecordBytes& bytes_;
};

constexpr std::int64_t Offset(std::int32_t number) {
    return static_cast<std::int64_t>(number - 1) * static_cast<std::int64_t>(RecordLength);
}

}  // namespace

void EncodeEntity(const EntityRec& rec, RecordBytes& bytes) {
    Writer w(bytes);
    w.I16(KindAt, rec.Kind);
    w.Text(KindNameAt, KindNameWidth, rec.KindName);
    w.Text(RemarkAt, RemarkWidth, rec.Remark);
    w.Text(BlockTextAt, BlockTextWidth, rec.BlockText);
    w.I16(MainBlockAt, rec.MainBlock);
    w.I16(SubBlockAt, rec.SubBlock);
    w.Call(CallSpecAt, rec.CallSpec);
    w.Call(CallStateAt, rec.CallState);
    const PointF* points[] = {&rec.Points.Start,    &rec.Points.Middle, &rec.Points.End,
                              &rec.Points.Position, &rec.Points.Entry,  &rec.Points.Exit};
    for (std::size_t i = 0; i < 6; ++i) w.Point(PointsAt + 8 * i, *points[i]);
    for (std::size_t i = 0; i < ValueSlots; ++i) w.F32(ValuesAt + 4 * i, rec.Values.Items[i]);
    for (std::size_t i = 0; i < CountSlots; ++i) w.I16(CountsAt + 2 * i, rec.Counts.Items[i]);
    w.I16(CompensationAt, rec.Compensation);
    w.I16(CycleRotateAt, rec.CycleRotate);
    w.Box(ExtentAt, rec.Extent);
    w.Box(ClearBoxAt, rec.ClearBox);
    const ToolRecord& t = rec.Tool;
    w.I16(ToolAt + ToolValidAt, t.Valid);
    bytes[ToolAt + ToolShapeAt] = static_cast<std::uint8_t>(t.Shape);
    w.Text(ToolAt + ToolNameAt, ToolNameWidth, t.Name);
    w.F32(ToolAt + ToolDimensionsAt, t.D1);
    w.F32(ToolAt + ToolDimensionsAt + 4, t.D2);
    w.F32(ToolAt + ToolDimensionsAt + 8, t.D3);
    w.F32(ToolAt + ToolDimensionsAt + 12, t.D4);
    w.I16(ToolAt + ToolSettingAt, t.Setting);
    w.I16(ToolAt + ToolStationAt, t.Station);
    w.F32(ToolAt + ToolAngleAt, t.Angle);
    w.F32(ToolAt + ToolExtra1At, t.Extra1);
    w.F32(ToolAt + ToolExtra2At, t.Extra2);
    w.I32(RecordNoAt, rec.RecordNo);
    w.I16(StationNoAt, rec.StationNo);
    for (std::size_t i = 0; i < SettingsSlots; ++i) w.F32(SettingsAt + 4 * i, rec.Settings[i]);
    w.F32(FeedAt, rec.Feed);
    w.I16(PathModeAt, rec.PathMode);
}

void DecodeEntity(const RecordBytes& bytes, EntityRec& rec) {
    Reader r(bytes);
    rec.Kind = r.I16(KindAt);
    r.Text(KindNameAt, KindNameWidth, rec.KindName);
    r.Text(RemarkAt, RemarkWidth, rec.Remark);
    r.Text(BlockTextAt, BlockTextWidth, rec.BlockText);
    rec.MainBlock = r.I16(MainBlockAt);
    rec.SubBlock = r.I16(SubBlockAt);
    r.Call(CallSpecAt, rec.CallSpec);
    r.Call(CallStateAt, rec.CallState);
    PointF* points[] = {&rec.Points.Start,    &rec.Points.Middle, &rec.Points.End,
                        &rec.Points.Position, &rec.Points.Entry,  &rec.Points.Exit};
    for (std::size_t i = 0; i < 6; ++i) *points[i] = r.Point(PointsAt + 8 * i);
    for (std::size_t i = 0; i < ValueSlots; ++i) rec.Values.Items[i] = r.F32(ValuesAt + 4 * i);
    for (std::size_t i = 0; i < CountSlots; ++i) rec.Counts.Items[i] = r.I16(CountsAt + 2 * i);
    rec.Compensation = r.I16(CompensationAt);
    rec.CycleRotate = r.I16(CycleRotateAt);
    rec.Extent = r.Box(ExtentAt);
    rec.ClearBox = r.Box(ClearBoxAt);
    ToolRecord& t = rec.Tool;
    t.Valid = r.I16(ToolAt + ToolValidAt);
    t.Shape = static_cast<char>(bytes[ToolAt + ToolShapeAt]);
    r.Text(ToolAt + ToolNameAt, ToolNameWidth, t.Name);
    t.D1 = r.F32(ToolAt + ToolDimensionsAt);
    t.D2 = r.F32(ToolAt + ToolDimensionsAt + 4);
    t.D3 = r.F32(ToolAt + ToolDimensionsAt + 8);
    t.D4 = r.F32(ToolAt + ToolDimensionsAt + 12);
    t.Setting = r.I16(ToolAt + ToolSettingAt);
    t.Station = r.I16(ToolAt + ToolStationAt);
    t.Angle = r.F32(ToolAt + ToolAngleAt);
    t.Extra1 = r.F32(ToolAt + ToolExtra1At);
    t.Extra2 = r.F32(ToolAt + ToolExtra2At);
    rec.RecordNo = r.I32(RecordNoAt);
    rec.StationNo = r.I16(StationNoAt);
    for (std::size_t i = 0; i < SettingsSlots; ++i) rec.Settings[i] = r.F32(SettingsAt + 4 * i);
    rec.Feed = r.F32(FeedAt);
    rec.PathMode = r.I16(PathModeAt);
}

DrawingFile::~DrawingFile() { Close(); }

DrawingFile::DrawingFile(DrawingFile&& other) noexcept { *this = std::move(other); }

DrawingFile& DrawingFile::operator=(DrawingFile&& other) noexcept {
    if (this != &other) {
        Close();
        file_ = std::exchange(other.file_, nullptr);
        buffer_ = std::move(other.buffer_);
        inMemory_ = std::exchange(other.inMemory_, false);
        memory_ = std::move(other.memory_);
        size_ = std::exchange(other.size_, 0);
        position_ = std::exchange(other.position_, 0);
        seekNeeded_ = std::exchange(other.seekNeeded_, true);
        lastWasWrite_ = std::exchange(other.lastWasWrite_, false);
        createdPath_ = std::exchange(other.createdPath_, std::string());
    }
    return *this;
}

namespace {

// Large sequential writes (an expansion) go out in big pieces.
constexpr std::size_t StreamBuffer = 1 << 20;

std::int64_t FileSize(std::FILE* file) {
    if (fseeko(file, 0, SEEK_END) != 0) return 0;
    off_t end = ftello(file);
    return end < 0 ? 0 : static_cast<std::int64_t>(end);
}

}  // namespace

void DrawingFile::UseLargeBuffer() {
    // The buffer must be given: without one the library picks the block size.
    if (!buffer_) buffer_ = std::make_unique<char[]>(StreamBuffer);
    std::setvbuf(file_, buffer_.get(), _IOFBF, StreamBuffer);
}

bool DrawingFile::Open(const std::string& path, bool readOnly) {
    Close();
    if (IsDirectory(path)) return false;
    file_ = std::fopen(path.c_str(), readOnly ? "rb" : "r+b");
    if (!file_) return false;
    UseLargeBuffer();
    size_ = FileSize(file_);
    seekNeeded_ = true;
    return true;
}

bool DrawingFile::Create(const std::string& path) {
    Close();
    // Written beside the file and renamed over it at the close: an old file stays whole until
    // the new one is.
    file_ = std::fopen((path + ".tmp").c_str(), "w+b");
    if (!file_) return false;
    createdPath_ = path;
    UseLargeBuffer();
    size_ = 0;
    seekNeeded_ = true;
    return true;
}

DrawingFile DrawingFile::InMemory(std::string bytes) {
    DrawingFile file;
    file.inMemory_ = true;
    file.memory_ = std::move(bytes);
    file.size_ = static_cast<std::int64_t>(file.memory_.size());
    return file;
}

bool DrawingFile::Close() {
    bool flushed = !file_ || std::fclose(file_) == 0;
    file_ = nullptr;
    if (!createdPath_.empty()) {
        const std::string temporary = createdPath_ + ".tmp";
        if (!flushed || std::rename(temporary.c_str(), createdPath_.c_str()) != 0) {
            flushed = false;
            // The result already says the file failed; a temporary that cannot be removed is
            // written anew by the next creation of this file.
            (void)std::remove(temporary.c_str());
        }
        createdPath_.clear();
    }
    inMemory_ = false;
    memory_.clear();
    size_ = 0;
    position_ = 0;
    seekNeeded_ = true;
    return flushed;
}

std::int32_t DrawingFile::RecordsInFile() const {
    std::int64_t whole = size_ / static_cast<std::int64_t>(RecordLength);
    return static_cast<std::int32_t>(std::min<std::int64_t>(whole, INT32_MAX));
}

bool DrawingFile::GetBytes(std::int32_t number, RecordBytes& bytes) {
    bytes.fill(0);
    if (!IsOpen() || number < 1 || number > RecordsInFile()) return false;
    const std::int64_t at = Offset(number);
    if (inMemory_) {
        std::memcpy(bytes.data(), memory_.data() + at, RecordLength);
        return true;
    }
    // The stream is moved only where it isn't already, and always between a write and a read.
    if (seekNeeded_ || lastWasWrite_ || position_ != at) {
        if (fseeko(file_, static_cast<off_t>(at), SEEK_SET) != 0) {
            seekNeeded_ = true;
            return false;
        }
    }
    seekNeeded_ = false;
    lastWasWrite_ = false;
    if (std::fread(bytes.data(), 1, RecordLength, file_) != RecordLength) {
        bytes.fill(0);
        seekNeeded_ = true;
        return false;
    }
    position_ = at + static_cast<std::int64_t>(RecordLength);
    return true;
}

bool DrawingFile::Get(std::int32_t number, EntityRec& rec) {
    RecordBytes bytes;
    bool whole = GetBytes(number, bytes);
    DecodeEntity(bytes, rec);
    return whole;
}

bool DrawingFile::PutBytes(std::int32_t number, const RecordBytes& bytes) {
    if (!IsOpen() || number < 1) return false;
    const std::int64_t at = Offset(number);
    const std::int64_t end = at + static_cast<std::int64_t>(RecordLength);
    if (inMemory_) {
        const auto held = static_cast<std::int64_t>(memory_.size());
        if (held == at) {
            memory_.append(reinterpret_cast<const char*>(bytes.data()), RecordLength);
        } else {
            if (held < end) memory_.resize(static_cast<std::size_t>(end), '\0');
            std::memcpy(memory_.data() + at, bytes.data(), RecordLength);
        }
        size_ = static_cast<std::int64_t>(memory_.size());
        return true;
    }
    if (seekNeeded_ || !lastWasWrite_ || position_ != at) {
        if (fseeko(file_, static_cast<off_t>(at), SEEK_SET) != 0) {
            seekNeeded_ = true;
            return false;
        }
    }
    seekNeeded_ = false;
    lastWasWrite_ = true;
    if (std::fwrite(bytes.data(), 1, RecordLength, file_) != RecordLength) {
        seekNeeded_ = true;
        return false;
    }
    position_ = end;
    size_ = std::max(size_, end);
    return true;
}

bool DrawingFile::Put(std::int32_t number, const EntityRec& rec) {
    RecordBytes bytes;
    EncodeEntity(rec, bytes);
    return PutBytes(number, bytes);
}

std::int32_t DrawingFile::Count() {
    RecordBytes bytes;
    if (!GetBytes(1, bytes)) return 0;
    return Reader(bytes).I32(RecordNoAt);
}

std::int32_t DrawingFile::LastReadable() {
    std::int32_t count = Count();
    if (count < 1) return 0;
    return std::min(count, RecordsInFile());
}

bool AppendEntity(DrawingFile& file, std::int16_t& recordCounter, EntityRec& rec) {
    if (recordCounter == INT16_MAX) return false;
    const auto next = static_cast<std::int16_t>(recordCounter + 1);
    rec.RecordNo = next;
    if (!file.Put(next, rec)) return false;
    recordCounter = next;
    return true;
}

}  // namespace kirvana

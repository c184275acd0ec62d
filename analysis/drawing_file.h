// Drawing files (`.drw`, `.prw`, `.dr1`, "SplitCyc.drw"): random-access files of fixed
// 1268-byte records, numbered from 1, little-endian, packed without padding. Record 1 holds
// in `RecordNo` the number of records; nothing else marks the end of the file.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "analysis/entity.h"

namespace kirvana {

inline constexpr std::size_t RecordLength = 1268;
using RecordBytes = std::array<std::uint8_t, RecordLength>;

// The record's bytes at their fixed offsets, and back. Every byte is carried: a record read
// from any bytes writes back the same bytes.
void EncodeEntity(const EntityRec& rec, RecordBytes& bytes);
void DecodeEntity(const RecordBytes& bytes, EntityRec& rec);

// One drawing file opened for random access, on disk or held in memory.
class DrawingFile {
public:
    DrawingFile() = default;
    ~DrawingFile();
    DrawingFile(DrawingFile&& other) noexcept;
    DrawingFile& operator=(DrawingFile&& other) noexcept;
    DrawingFile(const DrawingFile&) = delete;
    DrawingFile& operator=(const DrawingFile&) = delete;

    // Opens an existing file for reading and writing, or only for reading; false when it
    // can't be opened.
    bool Open(const std::string& path, bool readOnly = false);
    // Creates the file empty and opens it. It is written under the name and ".tmp" and
    // renamed over an old file at the close: until then an old file stays as it was.
    bool Create(const std::string& path);
    // A file held in memory, starting with the given bytes.
    static DrawingFile InMemory(std::string bytes = {});

    bool IsOpen() const { return file_ != nullptr || inMemory_; }
    // Closes the file; false when what was written could not be flushed or, for a created
    // file, could not take the place of the old one.
    bool Close();
    // The bytes of a file held in memory.
    const std::string& MemoryBytes() const { return memory_; }

    // Whole records in the file; a trailing part of a record doesn't count.
    std::int32_t RecordsInFile() const;
    // Record n (from 1). A record that doesn't lie whole in the file reads as all zero bytes
    // and gives false.
    bool Get(std::int32_t number, EntityRec& rec);
    bool GetBytes(std::int32_t number, RecordBytes& bytes);
    // Writes record n (from 1); a gap before it is filled with zero bytes.
    bool Put(std::int32_t number, const EntityRec& rec);
    bool PutBytes(std::int32_t number, const RecordBytes& bytes);
    // The count in record 1; 0 when the file has no record 1.
    std::int32_t Count();
    // The last record a reader walks to: the count, but no further than the whole records of
    // the file, and 0 for a count below 1.
    std::int32_t LastReadable();

private:
    void UseLargeBuffer();

    std::FILE* file_ = nullptr;
    std::unique_ptr<char[]> buffer_;  // the stream's buffer, large for long sequential writes
    bool inMemory_ = false;
    std::string memory_;
    std::int64_t size_ = 0;      // bytes in the file
    std::int64_t position_ = 0;  // where the next read or write of the stream happens
    bool seekNeeded_ = true;     // the stream's position is unknown, or a read follows a write
    bool lastWasWrite_ = false;
    std::string createdPath_;    // a created file's own name, taken at the close
};

// Adds 1 to the writer's record counter, stores it in `RecordNo` and writes the record at that
// number. False, with the counter unchanged, when the counter would pass 32767 (nothing is
// written; the writer reports the overflow) or the write fails.
bool AppendEntity(DrawingFile& file, std::int16_t& recordCounter, EntityRec& rec);

}  // namespace kirvana

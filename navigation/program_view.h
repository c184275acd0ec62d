// ViewProgForm's page: the source records around the block the poll lights, read by record
// number from the slot's fixed-record files `.RA`k and `.RM`k (one seek, no text search).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kirvana {

struct Process;

// One row of the page: the record number (from 1), the source line and its motion block.
struct ViewRow {
    std::int32_t Record = 0;
    std::string Source;
    std::string Motion;
    bool Lit = false;
    bool operator==(const ViewRow&) const = default;
};

// The page: its rows, and the program (1 to 4) and slot they come from.
struct ViewPage {
    std::int32_t Program = 0;
    int Slot = 0;
    std::string ProgramName;
    std::vector<ViewRow> Rows;
};

// Rows the page holds above the lit record, when there are records enough.
inline constexpr int ViewRowsAbove = 4;

// Up to `rows` records of the two files from `first` on (records from 1), read in one piece.
std::vector<ViewRow> ReadViewRows(const std::string& raFile, const std::string& rmFile, std::int32_t first, int rows,
                                  std::int32_t recordCount);

// The page of the card's program `program` (1 and 3 slot 1, 2 and 4 slot 2; 3 and 4 the
// sub-programs) around `record`: the lit record stands ViewRowsAbove rows from the top where
// the program allows. A record below 1 lights nothing and shows the page from the first record.
// An empty page for a program out of range or a slot that holds none.
ViewPage ViewPageAround(const Process& process, std::int32_t program, std::int32_t record, int rows);

}  // namespace kirvana

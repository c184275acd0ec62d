// Motion programs and variable blocks to the card.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "controller/conversation.h"

namespace kirvana {

// The values of a station block: the tool's number, the station's offsets and its settings.
struct StationBlock {
    std::int16_t ToolNumber = 0;
    std::array<float, 3> Offsets{};       // M844 to M846
    std::array<std::int16_t, 2> Words{};  // Q19, Q18; the first is also the feed override
    std::array<float, 4> Singles{};       // Q20 to Q23
};

// The plasma settings block P101 to P110.
struct PlasmaBlock {
    std::array<std::int16_t, 4> P101To104{};
    float P105 = 0, P106 = 0;
    std::int16_t P107 = 0;
    float P108 = 0, P109 = 0;
    std::int16_t P110 = 0;
};

// Downloads both motion programs of the slot that card program n belongs to (1 or 3: slot 1,
// 2 or 4: slot 2), filtered through RootDir + "DownPrg.tmp".
void DownProgram(Conversation& talk, const std::string& rootDir, const std::string& serviceDir, int n);
// Writes the filtered card text of one motion file; false when the motion file can't be read.
bool WriteDownloadFile(const std::string& motionFile, int cardProgram, bool isM1, const std::string& workFile);
// The part in front of "G92", "G53", and the rest without the X and Y words behind "G92".
std::string RewriteG92(std::string_view line);

void SendStationBlock(Conversation& talk, const StationBlock& block, bool withSpeed);
void SendBatchBlock(Conversation& talk, const std::array<std::int32_t, 4>& batch);
// M848 to M850, and for profiler kind 2 the plasma block.
void SendProfilerBlock(Conversation& talk, const std::array<float, 3>& offsets, int profilerKind,
                       const PlasmaBlock& plasma);
void SendPlasmaBlock(Conversation& talk, const PlasmaBlock& plasma);

}  // namespace kirvana

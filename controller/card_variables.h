// The card's variables: the one list of every variable and bit that the front end reads or
// writes, by the name the card knows it under.
#pragma once

#include <cstdint>
#include <string>

namespace kirvana::card {

// The request word: bits set only by "P1021=P1021|n".
inline constexpr const char* RequestWord = "P1021";
inline constexpr std::int32_t RequestFrontEndUp = 1;
inline constexpr std::int32_t RequestReferenceAxes = 2;
inline constexpr std::int32_t RequestReferenceClamps = 4;
inline constexpr std::int32_t RequestReferenceTurret = 8;
inline constexpr std::int32_t RequestReferenceAll = 32;
inline constexpr std::int32_t RequestLoadPosition1 = 64;
inline constexpr std::int32_t RequestLoadPosition2 = 128;
inline constexpr std::int32_t RequestMove = 256;
inline constexpr std::int32_t RequestMoveAndPunch = 512;
inline constexpr std::int32_t RequestPunch = 1024;
inline constexpr std::int32_t RequestMoveCarriage = 4096;
// "NAME=value": a variable written.
inline std::string Assignment(const char* name, const std::string& value) { return std::string(name) + "=" + value; }

// "P1021=P1021|n": a request bit set, the only form in which the front end writes P1021.
inline std::string RequestText(std::int32_t bit) {
    return std::string(RequestWord) + "=" + RequestWord + "|" + std::to_string(bit);
}
// "P1021=P1021-1": the front end going down at shutdown.
inline std::string RequestClearText(std::int32_t bit) {
    return std::string(RequestWord) + "=" + RequestWord + "-" + std::to_string(bit);
}

// The status word, read on each poll tick.
inline constexpr const char* StatusWord = "P1022";
inline constexpr std::int32_t StatusNewClamps = 256;
inline constexpr std::int32_t StatusNewStation = 512;
inline constexpr std::int32_t StatusInFeedhold = 2048;
inline constexpr std::int32_t StatusHoldBit = 4096;
inline constexpr std::int32_t StatusInCycle = 8192;
inline constexpr std::int32_t StatusRunning = 16384;
inline constexpr std::int32_t StatusRestartStepEnd = 32768;
inline constexpr std::int32_t StatusNewWorkOffsets = 65536;
inline constexpr std::int32_t StatusNewReferenceOffsets = 262144;
inline constexpr std::int32_t StatusProfilerHead = 1048576;
inline constexpr std::int32_t StatusProfilerLatch = 2097152;
// "P1022=P1022-n": the front end has taken the data of a status request.
inline std::string AcknowledgeText(std::int32_t bit) {
    return std::string(StatusWord) + "=" + StatusWord + "-" + std::to_string(bit);
}

inline constexpr const char* LogicMessageBits = "P1020";
inline constexpr const char* IOMessageNumber = "M830";
inline constexpr const char* Station = "M802";
inline constexpr const char* ActiveSlot = "M811";
inline constexpr const char* JogByDistance = "M820";
inline constexpr const char* JogSpeed = "M821";
inline constexpr const char* JogDistance = "M822";
inline constexpr const char* JogX = "M828";
inline constexpr const char* JogY = "M829";
inline constexpr const char* ClampPosition[4] = {"M835", "M836", "M837", "M838"};
inline constexpr const char* StationOffset[3] = {"M844", "M845", "M846"};
inline constexpr const char* ProfilerOffset[3] = {"M848", "M849", "M850"};
// Parts per sheet, parts required, sheets required, completed sheets.
inline constexpr const char* Batch[4] = {"M863", "M864", "M865", "M866"};
inline constexpr const char* WorkStation = "M867";
inline constexpr const char* HitCounter = "M869";
inline constexpr const char* ProfilerOffsetSide = "M872";
inline constexpr const char* BlockSkip[2] = {"M873", "M874"};
inline constexpr const char* JogFormValue = "M876";
inline constexpr const char* TorchHeight = "M885";
inline constexpr const char* ProfilerInput[3] = {"M887", "M888", "M148"};
inline constexpr const char* CommandedPosition[4] = {"M161", "M261", "M361", "M461"};
inline constexpr const char* TargetPosition[4] = {"M163", "M263", "M363", "M463"};
inline constexpr const char* ActualPosition[4] = {"#1P", "#2P", "#3P", "#4P"};
inline constexpr const char* FollowingError[4] = {"#1F", "#2F", "#3F", "#4F"};
inline constexpr const char* AxisDefinition[4] = {"#1->", "#2->", "#3->", "#4->"};
inline constexpr const char* FeedOverride = "%";
inline constexpr const char* ProgramCounter = "PC";
inline constexpr const char* PlasmaSettings[10] = {"P101", "P102", "P103", "P104", "P105",
                                                   "P106", "P107", "P108", "P109", "P110"};
inline constexpr const char* PositionBoxFigure = "P111";
inline constexpr const char* LoadPosition1[2] = {"Q10", "Q11"};
inline constexpr const char* LoadPosition2[2] = {"Q12", "Q13"};
inline constexpr const char* MoveTarget[3] = {"Q14", "Q15", "Q16"};
inline constexpr const char* RunTime = "Q17";
// Station settings Q18 to Q23, in the order the station block sends them.
inline constexpr const char* StationSettings[6] = {"Q19", "Q18", "Q20", "Q21", "Q22", "Q23"};
inline constexpr const char* WorkOffset[2] = {"Q25", "Q26"};
inline constexpr const char* ReferenceOffset[3] = {"Q27", "Q28", "Q29"};
inline constexpr const char* ToolNumber = "Q49";
inline constexpr const char* RestartCounters[4] = {"Q190", "Q191", "Q198", "Q199"};

// Motion programs: slot 1 in PROG 1 and 3, slot 2 in PROG 2 and 4, the restart in PROG 5.
inline constexpr int RestartProgram = 5;

}  // namespace kirvana::card

#include "analysis/reverse.h"

#include "analysis/language_walk.h"
#include "analysis/reverse_report.h"
#include "core/number.h"
#include "core/paths.h"
#include "core/text.h"

namespace kirvana {

ReverseSettings ReverseSettingsFrom(const MachineData& machine, const Directories& dirs, const StationTable& stations,
                                    const ToolRecord& plasmaTool) {
    ReverseSettings s;
    s.Travel = machine.Travel;
    s.ClampCount = machine.ClampCount;
    s.MachineType = machine.MachineType;
    s.MachineOrientation = machine.MachineOrientation;
    s.Stations = stations;
    s.PlasmaTool = plasmaTool;
    s.ServiceDir = dirs.ServiceDir;
    return s;
}

namespace {

// The Reverse pass: the walk of the language writing each entity to the drawing.
class ReverseRun : public LanguageWalk {
public:
    ReverseRun(const std::vector<std::string>& m1, const std::vector<std::string>& m2, DrawingFile& drawing,
               std::string& report, std::int16_t& toolChanges, const ReverseSettings& settings)
        : LanguageWalk(m1, m2, report, toolChanges, settings), drawing_(drawing) {}

    ReverseResult Run();

private:
    void FirstInchCode() override;
    void Keep() override;

    DrawingFile& drawing_;
    EntityRec sheet_;  // record 1
    bool writeFault_ = false;
    bool recordsFull_ = false;
};

ReverseResult ReverseRun::Run() {
    ReverseResult result;
    // 4. The words of the main text.
    if (!CheckWords(m1_)) {
        result.Result = 1;
        result.WordsRejected = true;
        return result;
    }
    // 5. The header; 6. its lines in the report.
    ProgramHeader header = ReadHeader(m1_);
    for (const auto& [station, text] : header.Tools)
        if (station >= 1 && station <= static_cast<int>(stations_.size())) SetStationTool(stations_[station - 1], text);
    report_ += HeaderReportLines(header, settings_.ClampCount);
    // 7. Record 1, the Sheet.
    ClearEntity(sheet_);
    sheet_.Kind = EntityKind::Sheet;
    sheet_.KindName = FixedText("Sheet", KindNameWidth);
    sheet_.Remark = FixedText(header.Material, RemarkWidth);
    sheet_.Values[1] = header.SheetX;
    sheet_.Values[2] = header.SheetY;
    for (int k = 0; k < 4; ++k) sheet_.Values[7 + k] = header.Clamps[k];
    sheet_.RecordNo = 1;
    sheet_.Compensation = settings_.MachineType;
    if (!drawing_.Put(1, sheet_)) writeFault_ = true;
    // 8. The modal state; the main loop.
    StartState();
    Walk();
    // A jump or a call whose block number never came.
    if (S.Skipping && !stopped_) {
        line_.clear();
        Error(std::string(reverse_message::LabelNotFound) + std::to_string(S.SkipTo) + ") ", true);
    }
    // End of the pass: record 1 with the count, the measurement mark and the tool changes.
    sheet_.Counts[1] = S.RecordCounter;
    sheet_.RecordNo = S.RecordCounter;
    sheet_.Counts[2] = S.MeasurementMark;
    sheet_.StationNo = toolChanges_;
    if (!drawing_.Put(1, sheet_)) writeFault_ = true;
    report_ += "******\n";
    if (stopped_) result.Stopped = true;
    result.CriticalCount = S.CriticalCount;
    result.Result = S.CriticalCount;
    result.Records = S.RecordCounter;
    result.Blocks = linesRead_;
    result.Stats = S.Stats;
    result.FileFault = writeFault_;
    return result;
}

// The first G70 scales the sheet and the clamps of record 1 once, and marks it as inches.
void ReverseRun::FirstInchCode() {
    sheet_.Values[1] = ToSingle(sheet_.Values[1] * Inch);
    sheet_.Values[2] = ToSingle(sheet_.Values[2] * Inch);
    for (int k = 7; k <= 10; ++k) sheet_.Values[k] = ToSingle(sheet_.Values[k] * Inch);
    sheet_.Counts[2] = True16;
    if (!drawing_.Put(1, sheet_)) writeFault_ = true;
}

void ReverseRun::Keep() {
    if (recordsFull_) return;
    if (S.RecordCounter == INT16_MAX) {
        recordsFull_ = true;
        Error(reverse_message::TooManyRecords, true);
        return;
    }
    if (!AppendEntity(drawing_, S.RecordCounter, rec_)) writeFault_ = true;
}

}  // namespace

ReverseResult ReverseTexts(const std::vector<std::string>& m1, const std::vector<std::string>& m2, DrawingFile& drawing,
                           std::string& report, std::int16_t& toolChanges, const ReverseSettings& settings) {
    ReverseRun run(m1, m2, drawing, report, toolChanges, settings);
    return run.Run();
}

ReverseResult ReversePass(const std::string& stem, const std::string& programName, const std::string& directory,
                          std::int16_t& toolChanges, const ReverseSettings& settings) {
    // 1, 2. The report anew with its three head lines.
    const std::string reportPath = settings.ServiceDir + "Reverse.txt";
    std::string head = ReportHead(programName, directory, settings.Now ? settings.Now() : ReportTime());
    std::string body;
    ReverseResult result;
    auto fileFault = [&](const std::string& file) {
        result.Result = 1;
        result.FileFault = true;
        result.FaultFile = file;
    };
    NoteFile(settings.ServiceDir, stem + "M1");
    auto m1 = ReadLines(stem + "M1");
    if (!m1) {
        fileFault(stem + "M1");
    } else if (!CheckWords(*m1)) {
        // 4. Words the language doesn't know end the pass here, before the drawing exists.
        result.Result = 1;
        result.WordsRejected = true;
    } else {
        auto m2 = ReadLines(stem + "M2");
        DrawingFile drawing;
        if (!drawing.Create(stem + "drw")) {
            fileFault(stem + "drw");
        } else {
            result = ReverseTexts(*m1, m2 ? *m2 : std::vector<std::string>{}, drawing, body, toolChanges, settings);
            if (!drawing.Close()) result.FileFault = true;
            if (result.FileFault) result.FaultFile = stem + "drw";
        }
    }
    if (!WriteFileText(reportPath, head + body) && !result.FileFault) fileFault(reportPath);
    return result;
}

}  // namespace kirvana
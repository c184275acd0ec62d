// The file work of a translation run: the dialect detection, the two splitters, the reading
// of the subroutine table, and the call fix.
#include "translate/translation_run.h"

#include <cstdio>
#include <limits>

#include "core/names.h"
#include "core/number.h"
#include "core/text.h"
#include "translate/text_search.h"

namespace kirvana::convert {

bool TranslationRun::Fail(ConvertStatus status, const std::string& file) {
    Result.Status = status;
    Result.Fault = file;
    return false;
}

void TranslationRun::NoteOverflow(const char* extension, long lineNumber) {
    if (!State.Reader.IntegerOverflow) return;
    State.Reader.IntegerOverflow = false;
    if (!Result.IntegerOverflow)
        Result.Fault = "16-bit overflow in " + File(extension) + " line " + std::to_string(lineNumber);
    Result.IntegerOverflow = true;
}

void TranslationRun::NoteCount(std::int16_t& count) {
    if (count == std::numeric_limits<std::int16_t>::max())
        State.Reader.IntegerOverflow = true;
    else
        ++count;
}

// The dialect detection over the org file; DialectDetector tests each line.
bool TranslationRun::Detect(std::int16_t& dialect) {
    const std::string org = File("org");
    NoteFile(Settings.ServiceDir, org);
    LineReader in(org);
    if (!in.IsOpen()) return Fail(ConvertStatus::MissingProgram, org);
    DialectDetector detector;
    std::string_view line;
    while (!detector.Found() && in.Next(line)) detector.Line(line);
    if (in.Failed()) return Fail(ConvertStatus::FileFault, org);
    dialect = detector.Dialect();
    return true;
}

void TranslationRun::SplitPlainLine(SplitFiles& files, std::string_view line) {
    // Every mark looked for starts with "(".
    if (!Has(line, '(')) {
        files.Current().Write(line);
        return;
    }
    std::string up = UpperCase(line);
    // 1. A subroutine opens: its lines go to A2, its name to the table.
    if (Has(up, "(ID,GSUB") || Has(up, "(ID,PSUB")) {
        files.ToA2 = true;
        NoteCount(files.Count);
        files.Sbs.Write(SubroutineName(line) + ", " + IntegerText(files.Count));
    }
    // 2. The line to the current text.
    files.Current().Write(line);
    // 3. A subroutine closes.
    if (Has(up, "(END,GSUB") || Has(up, "(END,PSUB")) files.ToA2 = false;
    // 4. A ".GSB" file, named as a relative path; only a name that stays in the current
    // directory is looked up there.
    if (Has(up, "(GSUB,")) {
        std::string name = SubroutineName(line);
        if (!AcceptableName(name)) return;
        std::string path = ResolveNoCase(Settings.CurrentDir + name + ".GSB");
        if (!FileExists(path)) return;
        NoteCount(files.Count);
        files.Sbs.Write(name + ", " + IntegerText(files.Count));
        NoteFile(Settings.ServiceDir, path);
        LineReader gsb(path);
        std::string_view gsbLine;
        while (gsb.Next(gsbLine)) {
            std::string_view trimmed = Trim(gsbLine);
            if (!trimmed.empty()) files.A2.Write(trimmed);
        }
        if (gsb.Failed()) ReadFault = path;
    }
}

void TranslationRun::SplitBracketLine(SplitFiles& files, std::string_view line) {
    std::string_view code = line.substr(0, line.find('('));
    std::size_t s = FindNoCase(code, "S");
    if (s != npos) {
        // 1. From here on all goes to A2.
        files.ToA2 = true;
        // 2. The subroutine before this one ends.
        if (files.Count > 0) files.A2.Write("(ENDSUB)");
        // 3, 4. The name (the digits behind the "S") and the count to the table.
        NoteCount(files.Count);
        files.Sbs.Write(DigitsAfter(code, s) + ", " + IntegerText(files.Count));
    }
    // Then the line to the current text.
    files.Current().Write(line);
}

bool TranslationRun::Split(bool bracket) {
    const std::string org = File("org");
    NoteFile(Settings.ServiceDir, org);
    LineReader in(org);
    if (!in.IsOpen()) return Fail(ConvertStatus::MissingProgram, org);
    SplitFiles files{FileWriter(File("A1")), FileWriter(File("A2")), FileWriter(File("sbs"))};
    for (const FileWriter* out : {&files.A1, &files.A2, &files.Sbs})
        if (!out->IsOpen()) return Fail(ConvertStatus::FileFault, out->Path());
    long lineNumber = 0;
    std::string_view raw;
    while (in.Next(raw)) {
        ++lineNumber;
        if (bracket)
            SplitBracketLine(files, Trim(raw));
        else
            SplitPlainLine(files, Trim(raw));
        NoteOverflow("org", lineNumber);
    }
    if (in.Failed()) return Fail(ConvertStatus::FileFault, org);
    if (!ReadFault.empty()) return Fail(ConvertStatus::FileFault, ReadFault);
    // At the end: dialect 2 closes its last subroutine; both splitters end the table.
    if (bracket && files.Count >= 1 && files.ToA2) files.A2.Write("(ENDSUB)");
    files.Sbs.Write(EndMarker);
    for (FileWriter* out : {&files.A1, &files.A2, &files.Sbs})
        if (!out->Close()) return Fail(ConvertStatus::FileFault, out->Path());
    return true;
}

bool TranslationRun::ReadTable(SubroutineTable& table) {
    const std::string sbs = File("sbs");
    NoteFile(Settings.ServiceDir, sbs);
    LineReader in(sbs);
    if (!in.IsOpen()) return Fail(ConvertStatus::FileFault, sbs);
    std::string text;
    std::string_view line;
    while (in.Next(line)) {
        text.append(line);
        text += '\n';
    }
    if (in.Failed()) return Fail(ConvertStatus::FileFault, sbs);
    table.Read(text);
    return true;
}

bool TranslationRun::CopyLines(const std::string& from, const std::string& to, bool callFix) {
    NoteFile(Settings.ServiceDir, from);
    LineReader in(from);
    if (!in.IsOpen()) return Fail(ConvertStatus::FileFault, from);
    FileWriter out(to);
    if (!out.IsOpen()) return Fail(ConvertStatus::FileFault, to);
    std::string text;
    std::string_view line;
    while (in.Next(line)) {
        text.assign(Trim(line));
        if (callFix) ReplaceFirst(text, "G68", "G69");
        out.Write(text);
    }
    if (in.Failed()) return Fail(ConvertStatus::FileFault, from);
    if (!out.Close()) return Fail(ConvertStatus::FileFault, to);
    return true;
}

// The call fix: M2 to "tmp", each line trimmed and its first "G68" a "G69"; then back to M2.
bool TranslationRun::CallFix() {
    const std::string m2 = File("M2"), tmp = File("tmp");
    // The copy back is written beside M2 and renamed over it, in place of deleting M2 first:
    // M2 is never missing.
    if (!CopyLines(m2, tmp, true) || !CopyLines(tmp, m2, false)) return false;
    // M2 is complete: a work copy that cannot be deleted changes nothing, and the next call fix
    // writes it anew.
    (void)std::remove(tmp.c_str());
    return true;
}

}  // namespace kirvana::convert

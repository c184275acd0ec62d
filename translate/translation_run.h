// The files of one run of a translation pass, shared by the Convert pass and the AMADA dialect
// pass: the dialect detection, the split of the program into main text, subroutine text and
// subroutine table, the block passes from A1 and A2 to M1 and M2, and the call fix of M2.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/file_writer.h"
#include "core/paths.h"
#include "translate/convert.h"
#include "translate/convert_steps.h"
#include "translate/line_files.h"

namespace kirvana::convert {

struct TranslationRun {
    const ConvertSettings& Settings;
    ConvertState State;
    ConvertResult Result;
    std::string ReadFault;  // a ".GSB" file whose reading failed

    explicit TranslationRun(const ConvertSettings& settings) : Settings(settings) {}

    std::string File(const char* extension) const { return State.ConvertStem + extension; }

    bool Fail(ConvertStatus status, const std::string& file);

    // Notes a 16-bit overflow of the reader, with the first place it happened.
    void NoteOverflow(const char* extension, long lineNumber);

    void NoteCount(std::int16_t& count);

    bool Detect(std::int16_t& dialect);

    // The splitter's outputs: main text, subroutine text, subroutine table.
    struct SplitFiles {
        FileWriter A1, A2, Sbs;
        std::int16_t Count = 0;
        bool ToA2 = false;
        FileWriter& Current() { return ToA2 ? A2 : A1; }
    };

    // Dialects 0 and 1: "(ID,PSUB," to "(END,PSUB" (and GSUB) go to A2; a "(GSUB," call of a
    // ".GSB" file copies the file to A2 as a subroutine of its own.
    void SplitPlainLine(SplitFiles& files, std::string_view line);

    // Dialect 2: from the first code part with "S" on all goes to A2, each subroutine closed
    // by "(ENDSUB)" ahead of the next one.
    void SplitBracketLine(SplitFiles& files, std::string_view line);

    bool Split(bool bracket);

    bool ReadTable(SubroutineTable& table);

    // Runs `block` (state, context, line) -> text over every line of `from`, writing `to`.
    template <class PerBlock>
    bool BlockPassFile(const char* from, const char* to, BlockPass pass, const BlockContext& context,
                       PerBlock block) {
        const std::string source = File(from);
        NoteFile(Settings.ServiceDir, source);
        LineReader in(source);
        if (!in.IsOpen()) return Fail(ConvertStatus::FileFault, source);
        FileWriter out(File(to));
        if (!out.IsOpen()) return Fail(ConvertStatus::FileFault, File(to));
        StartBlockPass(State, pass);
        long lineNumber = 0;
        std::string_view line;
        while (in.Next(line)) {
            ++lineNumber;
            out.Write(block(State, context, line));
            NoteOverflow(from, lineNumber);
        }
        if (in.Failed()) return Fail(ConvertStatus::FileFault, source);
        if (!out.Close()) return Fail(ConvertStatus::FileFault, File(to));
        return true;
    }

    // Copies a text file line by line, each trimmed; in the call fix the first "G68" of a
    // line becomes "G69".
    bool CopyLines(const std::string& from, const std::string& to, bool callFix);

    bool CallFix();
};

}  // namespace kirvana::convert

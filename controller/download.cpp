#include "controller/download.h"

#include <cstdlib>
#include <fstream>

#include "controller/card_variables.h"
#include "core/number.h"
#include "core/paths.h"
#include "core/text.h"
#include "core/words.h"

namespace kirvana {

std::string RewriteG92(std::string_view line) {
    std::size_t at = FindNoCase(line, "G92");
    if (at == std::string_view::npos) return std::string(line);
    std::size_t i = at + 3;
    while (i < line.size()) {
        char c = UpperChar(line[i]);
        if (c == 'X' || c == 'Y' || c == '-' || c == '.' || (c >= '0' && c <= '9'))
            ++i;
        else
            break;
    }
    return std::string(line.substr(0, at)) + "G53" + std::string(line.substr(i));
}

bool WriteDownloadFile(const std::string& motionFile, int cardProgram, bool isM1, const std::string& workFile) {
    std::ifstream in(motionFile, std::ios::binary);
    if (!in) return false;
    std::ofstream out(workFile, std::ios::binary | std::ios::trunc);
    // 1. The head of the card program.
    out << "CLOSE\nOPEN PROG " << cardProgram << "\nCLEAR\n";
    ValueReader reader;
    bool xMissing = false, yMissing = false;
    std::string raw;
    while (std::getline(in, raw)) {
        // 2a. Trim and cut the comment.
        std::string line = BeforeComment(raw.ends_with('\r') ? std::string_view(raw).substr(0, raw.size() - 1) : raw);
        // 2b. In M1 a block of nothing but its number loses the number.
        if (isM1 && CountBlockWords(line) == 0) line = StripBlockNumber(line);
        // 2c. No blanks.
        line = StripBlanks(line);
        // 2d. Nothing left: next line.
        if (line.empty()) continue;
        // 2e. A G92 without values becomes G53; an unreadable X or Y does so for the rest of the file.
        if (FindNoCase(line, "G92") != std::string::npos) {
            bool hasX = FindWordLetter(line, 'X') != std::string::npos;
            bool hasY = FindWordLetter(line, 'Y') != std::string::npos;
            bool hasC = FindWordLetter(line, 'C') != std::string::npos;
            reader.WordNumber(line, 'X');
            if (hasX && reader.WordMissing) xMissing = true;
            reader.WordNumber(line, 'Y');
            if (hasY && reader.WordMissing) yMissing = true;
            if ((!hasX && !hasY && !hasC) || xMissing || yMissing) line = RewriteG92(line);
        }
        // 2f. No Y word with M50 or M60.
        if ((FindNoCase(line, "M60") != std::string::npos || FindNoCase(line, "M50") != std::string::npos) &&
            FindWordLetter(line, 'Y') != std::string::npos)
            line = RemoveWord(line, 'Y');
        // 2g. Write it.
        out << line << '\n';
    }
    // 3. The end of the card program.
    out << "CLOSE\n";
    out.close();
    return static_cast<bool>(out);
}

void DownProgram(Conversation& talk, const std::string& rootDir, const std::string& serviceDir, int n) {
    if (!talk.State().CardInUse || !talk.Link()) return;
    talk.BeginLongExchange();
    int slot = (n == 1 || n == 3) ? 1 : ((n == 2 || n == 4) ? 2 : 0);
    if (slot != 0) {
        const std::string work = rootDir + "DownPrg.tmp";
        for (int file = 0; file < 2; ++file) {
            const std::string motion = rootDir + "Actvprg" + std::to_string(slot) + (file == 0 ? ".M1" : ".M2");
            NoteFile(serviceDir, motion);
            // A missing motion file sends nothing: the selection has made sure it exists.
            if (!WriteDownloadFile(motion, slot + 2 * file, file == 0, work)) continue;
            bool result = talk.Link()->DownloadFile(work);
            talk.LogExchange("DownProgram", work, "", result);
        }
    }
    talk.EndLongExchange();
}

namespace {

std::string Full(float value) { return FormatNumber(value, -1); }

}  // namespace

void SendStationBlock(Conversation& talk, const StationBlock& block, bool withSpeed) {
    if (!talk.State().CardInUse) return;
    talk.BeginLongExchange();
    talk.Download(std::string(card::ToolNumber) + "=" + std::to_string(std::abs(static_cast<int>(block.ToolNumber))));
    for (int i = 0; i < 3; ++i) talk.Download(std::string(card::StationOffset[i]) + "=" + Full(block.Offsets[i]));
    talk.Download(std::string(card::StationSettings[0]) + "=" + IntegerText(block.Words[0]));
    talk.Download(std::string(card::StationSettings[1]) + "=" + IntegerText(block.Words[1]));
    for (int i = 0; i < 3; ++i) talk.Download(std::string(card::StationSettings[2 + i]) + "=" + Full(block.Singles[i]));
    talk.Download(std::string(card::StationSettings[5]) + "=" + FormatNumber(block.Singles[3], 0));
    if (withSpeed) talk.Download(std::string(card::FeedOverride) + IntegerText(block.Words[0]));
    talk.EndLongExchange();
}

void SendBatchBlock(Conversation& talk, const std::array<std::int32_t, 4>& batch) {
    if (!talk.State().CardInUse) return;
    talk.BeginLongExchange();
    for (int i = 0; i < 4; ++i) talk.Download(std::string(card::Batch[i]) + "=" + LongText(batch[i]));
    talk.EndLongExchange();
}

void SendProfilerBlock(Conversation& talk, const std::array<float, 3>& offsets, int profilerKind,
                       const PlasmaBlock& plasma) {
    if (!talk.State().CardInUse) return;
    talk.BeginLongExchange();
    for (int i = 0; i < 3; ++i) talk.Download(std::string(card::ProfilerOffset[i]) + "=" + Full(offsets[i]));
    talk.EndLongExchange();
    if (profilerKind == 2) SendPlasmaBlock(talk, plasma);
}

void SendPlasmaBlock(Conversation& talk, const PlasmaBlock& plasma) {
    if (!talk.State().CardInUse) return;
    talk.BeginLongExchange();
    auto send = [&](int index, const std::string& value) {
        talk.Download(std::string(card::PlasmaSettings[index]) + "=" + value);
    };
    for (int i = 0; i < 4; ++i) send(i, IntegerText(plasma.P101To104[i]));
    send(4, Full(plasma.P105));
    send(5, Full(plasma.P106));
    send(6, IntegerText(plasma.P107));
    send(7, FormatNumber(plasma.P108, 0));
    send(8, FormatNumber(plasma.P109, 0));
    send(9, IntegerText(plasma.P110));
    talk.EndLongExchange();
}

}  // namespace kirvana

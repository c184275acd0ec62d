#include "navigation/program_editor.h"

#include <cstdio>

#include "core/file_writer.h"
#include "core/paths.h"
#include "core/text.h"

namespace kirvana {

bool ProgramEditor::Load(const std::string& path) {
    path_ = path;
    lines_.clear();
    undo_.clear();
    modified_ = false;
    auto lines = ReadLines(path);
    if (!lines) return false;
    lines_ = std::move(*lines);
    return true;
}

void ProgramEditor::Remember() {
    if (undo_.size() == UndoDepth) undo_.erase(undo_.begin());
    undo_.push_back(lines_);
    modified_ = true;
}

bool ProgramEditor::ReplaceLine(std::size_t line, const std::string& text) {
    if (line >= lines_.size() || lines_[line] == text) return false;
    Remember();
    lines_[line] = text;
    return true;
}

bool ProgramEditor::InsertLine(std::size_t line, const std::string& text) {
    if (line > lines_.size()) return false;
    Remember();
    lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(line), text);
    return true;
}

bool ProgramEditor::DeleteLine(std::size_t line) {
    if (line >= lines_.size()) return false;
    Remember();
    lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(line));
    return true;
}

bool ProgramEditor::Undo() {
    if (undo_.empty()) return false;
    lines_ = std::move(undo_.back());
    undo_.pop_back();
    modified_ = true;
    return true;
}

std::optional<FindPosition> ProgramEditor::Find(const std::string& text, std::size_t from) const {
    if (text.empty() || lines_.empty()) return std::nullopt;
    std::size_t count = lines_.size();
    for (std::size_t step = 1; step <= count; ++step) {
        std::size_t line = (from + step) % count;
        std::size_t column = FindNoCase(lines_[line], text);
        if (column != std::string::npos) return FindPosition{line, column};
    }
    return std::nullopt;
}

bool ProgramEditor::Save() {
    if (path_.empty() || !WriteLines(path_, lines_)) return false;
    modified_ = false;
    return true;
}

std::string ProgramEditor::NumberedLine(std::size_t line, const std::string& text) {
    char number[16];
    std::snprintf(number, sizeof number, "%5zu  ", line + 1);
    return number + text;
}

std::string SaveQuestion(const std::string& program) { return "Save \"" + program + "\" ?"; }
std::string SaveChangesQuestion(const std::string& program) { return "Save Changes To \"" + program + "\" ?"; }
std::string SaveFaultText(const std::string& path) { return "File Fault : " + path; }

}  // namespace kirvana

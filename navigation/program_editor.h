// EditProgForm's model: a part program as lines, edited a line at a time (the touch panel's
// keyboard pad edits one line), with find, undo and a save that replaces the file whole.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace kirvana {

// The longest line the keyboard pad takes.
inline constexpr int EditLineLength = 240;
// Edits that undo can take back.
inline constexpr std::size_t UndoDepth = 100;

// Where a find stopped: the line (from 0) and the column of the match.
struct FindPosition {
    std::size_t Line = 0;
    std::size_t Column = 0;
    bool operator==(const FindPosition&) const = default;
};

class ProgramEditor {
public:
    // Reads the program; false when it cannot be read (the editor is then empty).
    bool Load(const std::string& path);
    const std::string& Path() const { return path_; }
    const std::vector<std::string>& Lines() const { return lines_; }
    bool Modified() const { return modified_; }

    // The edits, each one step of undo. A line index outside the program changes nothing.
    bool ReplaceLine(std::size_t line, const std::string& text);
    // A new line before `line` (at the end when `line` is the line count).
    bool InsertLine(std::size_t line, const std::string& text);
    bool DeleteLine(std::size_t line);
    // Takes the last edit back; false when there is none.
    bool Undo();
    bool CanUndo() const { return !undo_.empty(); }

    // The next line holding `text` (case ignored) after `from`, going round past the end; the
    // line `from` itself is found last.
    std::optional<FindPosition> Find(const std::string& text, std::size_t from) const;

    // Writes the lines to the file through a temporary file renamed over it; false (the file as
    // it was) when it cannot be written.
    [[nodiscard]] bool Save();

    // The line as the editor's list shows it: its number, from 1, and the text.
    static std::string NumberedLine(std::size_t line, const std::string& text);

private:
    void Remember();

    std::string path_;
    std::vector<std::string> lines_;
    std::vector<std::vector<std::string>> undo_;
    bool modified_ = false;
};

// The questions of the editor.
std::string SaveQuestion(const std::string& program);
std::string SaveChangesQuestion(const std::string& program);
std::string SaveFaultText(const std::string& path);

}  // namespace kirvana

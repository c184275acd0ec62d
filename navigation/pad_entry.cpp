#include "navigation/pad_entry.h"

#include "core/number.h"
#include "core/text.h"

namespace kirvana {

PadEntry::PadEntry(std::string text, int mode, bool keyboard)
    : text_(std::move(text)), mode_(mode), keyboard_(keyboard), caret_(static_cast<int>(text_.size())) {}

bool PadEntry::Key(int code, Beeper& beeper) {
    if (code == 8) {
        if (allSelected_)
            Clear();
        else
            DeleteOne();
        return true;
    }
    // The keyboard filters nothing but the length, and only with a positive mode.
    bool accepted = keyboard_ && mode_ <= 0
                        ? code > 0 && code < 256
                        : FilterKey(code, mode_, text_, allSelected_ && !text_.empty(), beeper) != 0;
    if (!accepted) return false;
    if (allSelected_) {
        text_.clear();
        caret_ = 0;
        allSelected_ = false;
    }
    text_.insert(text_.begin() + caret_, static_cast<char>(code));
    ++caret_;
    return true;
}

void PadEntry::CursorLeft() {
    allSelected_ = false;
    if (caret_ > 0) --caret_;
}

void PadEntry::CursorRight() {
    allSelected_ = false;
    if (caret_ < static_cast<int>(text_.size())) ++caret_;
}

void PadEntry::Clear() {
    text_.clear();
    caret_ = 0;
    allSelected_ = false;
}

void PadEntry::DeleteOne() {
    allSelected_ = false;
    if (caret_ == 0) return;
    text_.erase(static_cast<std::size_t>(caret_ - 1), 1);
    --caret_;
}

char ShiftedKey(char key, bool upper) {
    if (upper) return UpperChar(key);
    return (key >= 'A' && key <= 'Z') ? static_cast<char>(key - 'A' + 'a') : key;
}

double PadNumber(const std::string& text) { return ToNumber(text); }

std::string PadText(const std::string& text) { return std::string(Trim(text)); }

}  // namespace kirvana

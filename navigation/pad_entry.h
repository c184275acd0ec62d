// The entry of NumberForm and KeyboardForm: the box's text, its caret and selection, and the key
// filter of the pad's mode. A negative mode is a kind of the key filter; a positive mode is the
// largest length of text (on the keyboard it is the only limit).
#pragma once

#include <string>

#include "core/keys.h"

namespace kirvana {

class PadEntry {
public:
    // keyboard: KeyboardForm (text), else NumberForm (numbers).
    PadEntry(std::string text, int mode, bool keyboard);

    // A key or button: a character, or 8 (backspace). The filter decides; a refused key beeps.
    // On opening the whole text is selected, so the first key replaces it.
    bool Key(int code, Beeper& beeper);
    void CursorLeft();
    void CursorRight();
    // DeleteButton 1: the box empty; 2: one character before the caret.
    void Clear();
    void DeleteOne();

    const std::string& Text() const { return text_; }
    int Caret() const { return caret_; }
    bool AllSelected() const { return allSelected_; }
    int Mode() const { return mode_; }

private:
    std::string text_;
    int mode_;
    bool keyboard_;
    int caret_;
    bool allSelected_ = true;
};

// The keyboard's shift: the caption and the character of a key button in the present case.
char ShiftedKey(char key, bool upper);

// EnterNumber's result: the leading decimal number of the text the pad returned.
double PadNumber(const std::string& text);
// EnterText's result: the text, trimmed.
std::string PadText(const std::string& text);

}  // namespace kirvana

// The warning screen's logic: one warning at a time, its captions by kind, and its answer.
#pragma once

#include <string>
#include <vector>

namespace kirvana {

// 1 a notice with "&OK"; 2 a question with "&YES", "&NO"; 3 with "&YES", "&NO", "&CANCEL".
enum class WarningKind { Notice = 1, Question = 2, QuestionWithCancel = 3 };

// The captions of WarningButton 0, 1 and 2 for a kind; the buttons beyond are hidden.
std::vector<std::string> WarningCaptions(WarningKind kind);

// The images of the kinds.
enum class WarningImage { Information, Question, Warning };
WarningImage ImageOfKind(WarningKind kind);

// The one warning that may be up: a call made while one is showing is ignored.
class WarningGate {
public:
    // True when this warning may be shown; it then stands until Close.
    bool Open(const std::string& text, WarningKind kind, int defaultButton);
    // The button pressed (from 1); lowers the flag.
    void Close(int button);
    bool Showing() const { return showing_; }
    const std::string& Text() const { return text_; }
    WarningKind Kind() const { return kind_; }
    int DefaultButton() const { return defaultButton_; }
    int Result() const { return result_; }
    // The answer "yes": the first button of a question.
    bool WarningResult() const { return kind_ != WarningKind::Notice && result_ == 1; }

private:
    bool showing_ = false;
    std::string text_;
    WarningKind kind_ = WarningKind::Notice;
    int defaultButton_ = 1;
    int result_ = 0;
};

}  // namespace kirvana

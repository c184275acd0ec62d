#include "navigation/warning.h"

#include <algorithm>

namespace kirvana {

std::vector<std::string> WarningCaptions(WarningKind kind) {
    switch (kind) {
        case WarningKind::Question:
            return {"&YES", "&NO"};
        case WarningKind::QuestionWithCancel:
            return {"&YES", "&NO", "&CANCEL"};
        default:
            return {"&OK"};
    }
}

WarningImage ImageOfKind(WarningKind kind) {
    switch (kind) {
        case WarningKind::Question:
            return WarningImage::Question;
        case WarningKind::QuestionWithCancel:
            return WarningImage::Warning;
        default:
            return WarningImage::Information;
    }
}

bool WarningGate::Open(const std::string& text, WarningKind kind, int defaultButton) {
    if (showing_) return false;
    showing_ = true;
    text_ = text;
    kind_ = kind;
    int buttons = static_cast<int>(WarningCaptions(kind).size());
    defaultButton_ = std::clamp(defaultButton, 1, buttons);
    result_ = 0;
    return true;
}

void WarningGate::Close(int button) {
    result_ = button;
    showing_ = false;
}

}  // namespace kirvana

#include "navigation/batch_edit.h"

#include <cmath>

namespace kirvana {

void BatchEdit::Begin(const SlotBatch& present) {
    values_ = present;
    editing_ = true;
}

bool BatchEdit::SetValue(int index, double value) {
    if (!editing_ || index < 0 || index >= BatchEditableCount) return false;
    if (!(value >= 0 && value <= 2147483647.0) || value != std::floor(value)) return false;
    values_[static_cast<std::size_t>(index)] = static_cast<std::int32_t>(value);
    return true;
}

SlotBatch BatchEdit::Finish() {
    editing_ = false;
    // Sheets to go, as the poll works it out from the card's counters.
    values_[4] = values_[1] != 0 && values_[2] != 0 ? values_[2] - values_[3] : 0;
    return values_;
}

std::array<std::string, 5> BatchTexts(const SlotBatch& batch) {
    std::array<std::string, 5> texts;
    for (std::size_t n = 0; n < texts.size(); ++n) texts[n] = std::to_string(batch[n]);
    return texts;
}

}  // namespace kirvana

// BatchForm's two states: showing the counters the poll reads (its button "&SET"), and editing
// them (the boxes open, the button "&ENTER"); on enter the four counters go to the card and into
// the slot's `.btc`.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "system/slots.h"

namespace kirvana {

// The captions of the counters, in the order of the slot's batch record.
inline constexpr std::array<const char*, 5> BatchCaptions = {"PARTS PER SHEET", "PARTS REQUIRED", "SHEETS REQUIRED",
                                                             "COMPLETED SHEETS", "SHEETS TO GO"};
// The four counters the operator may set; the fifth is worked out by the poll.
inline constexpr int BatchEditableCount = 4;
inline constexpr const char* BatchSetCaption = "&SET";
inline constexpr const char* BatchEnterCaption = "&ENTER";
inline constexpr const char* InvalidBatchValue = "Invalid Value !";

class BatchEdit {
public:
    bool Editing() const { return editing_; }
    // The caption of the set button: "&SET", or "&ENTER" while an edit is open.
    const char* SetCaption() const { return editing_ ? BatchEnterCaption : BatchSetCaption; }
    // Opens the boxes with the slot's present counters.
    void Begin(const SlotBatch& present);
    // A box's new value from the pad: whole numbers of 0 to 2147483647; false leaves the box.
    bool SetValue(int index, double value);
    const SlotBatch& Values() const { return values_; }
    // Closes the edit: the counters to send, the fifth worked out as the poll does.
    SlotBatch Finish();
    // Leaves the edit without sending.
    void Cancel() { editing_ = false; }

private:
    bool editing_ = false;
    SlotBatch values_{};
};

// The counters as BatchForm shows them: whole numbers.
std::array<std::string, 5> BatchTexts(const SlotBatch& batch);

}  // namespace kirvana

#include "navigation/colours.h"

namespace kirvana {

ColourPair StatusBoxColours(const ColourTable& colours, StatusColours state) {
    switch (state) {
        case StatusColours::Hold:
            return {colours[ColourItem::CriticalMessageButton], colours[ColourItem::CriticalMessageButtonText]};
        case StatusColours::MessagesWaiting:
            return {colours[ColourItem::WarningMessageButton], colours[ColourItem::WarningMessageButtonText]};
        default:
            return {colours[ColourItem::StatusBackground], colours[ColourItem::StatusPositionText]};
    }
}

}  // namespace kirvana

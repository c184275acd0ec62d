// The colours of FrontEnd's status boxes, from the table of Colour.cfg.
#pragma once

#include "controller/display_model.h"
#include "plot/colour_config.h"

namespace kirvana {

// The colour pair (background, text) of FrontEnd's status boxes for the poll's state.
struct ColourPair {
    std::int32_t Background = 0;
    std::int32_t Text = 0;
};
ColourPair StatusBoxColours(const ColourTable& colours, StatusColours state);

}  // namespace kirvana

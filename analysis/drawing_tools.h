// The drawing's records after a tool of the turret was changed: each record that uses the old
// tool in its station takes the new one, with its outline worked out again.
#pragma once

#include <string>
#include <vector>

#include "tooling/turret.h"

namespace kirvana {

// The hook of the turret screen's unload (DrawingToolRewrite). The file is written anew beside
// the old one and renamed over it, so a fault leaves the old drawing whole. True when the
// drawing was rewritten; false when it could not be read or written, or no record changed.
bool RewriteDrawingTools(const std::string& drawingFile, const std::vector<ToolChange>& changes);

}  // namespace kirvana

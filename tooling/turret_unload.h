// Leaving the turret screen after tools of the active program were changed: the drawing's
// records take the new tools, the numbered tool lines of the source are rewritten, and the
// program is converted again.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tooling/turret.h"

namespace kirvana {

// Rewrites the drawing file's records that use an old tool in its station: each takes the
// new tool (CopyTool), its outline is worked out again, and it is written back. The drawing
// file and the tool outlines live in the analysis module, which supplies this; true when the
// file was rewritten.
using DrawingToolRewrite = std::function<bool(const std::string& drawingFile, const std::vector<ToolChange>& changes)>;

struct TurretUnloadResult {
    bool DrawingRewritten = false;  // step 1 ran through the hook
    bool NumbersRewritten = false;  // step 2 rewrote Numbers.tmp
    bool ConvertAgain = false;      // step 3: the caller converts the program again
};

// `drawingFile` is the slot's "Actvprg<n>.drw"; `numbersFile` the "Numbers.tmp" of the
// conversion. Nothing happens without changes or without the drawing file. Without a hook
// the drawing is left as it is and the other steps still run.
TurretUnloadResult UnloadTurret(const std::string& drawingFile, const std::string& numbersFile,
                                const std::vector<ToolChange>& changes, const DrawingToolRewrite& rewriteDrawing);

// Numbers.tmp holds numbered source lines that define tools: each line is a header (the line
// number in the source), ":", and the line's text. Nothing in this system writes the file; it
// is rewritten when it is there. Each line that holds "T" + n + "=" or "T0" + n + "=" for a
// changed station's T number takes the new tool description behind the ":" of its header, in
// place of what stood there; the other lines are copied. The result is written to "Update.tmp"
// beside it, which then takes the old file's place. False when Numbers.tmp is missing or
// cannot be rewritten; it then stays as it was.
bool RewriteToolNumbers(const std::string& numbersFile, const std::vector<ToolChange>& changes);

// One line of Numbers.tmp with the changes applied; a line without a ":" is copied.
std::string RewriteToolLine(const std::string& line, const std::vector<ToolChange>& changes);

}  // namespace kirvana

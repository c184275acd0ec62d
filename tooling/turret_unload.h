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

// Numbers.tmp holds the source lines that define tools. Each line holding "T" + n + "=" or
// "T0" + n + "=" for a changed station's T number gets the new tool text behind that "=" (a
// closing ")" of a comment stays); the others are copied. The result goes through
// "Update.tmp" beside it, which is deleted at the end. False when Numbers.tmp is missing.
bool RewriteToolNumbers(const std::string& numbersFile, const std::vector<ToolChange>& changes);

// One line of Numbers.tmp with the changes applied.
std::string RewriteToolLine(const std::string& line, const std::vector<ToolChange>& changes);

}  // namespace kirvana

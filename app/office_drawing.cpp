// The drawing commands: list a drawing file's records, expand a drawing into single hits.
#include <cstdio>
#include <string>

#include "analysis/drawing_listing.h"
#include "analysis/expand.h"
#include "app/office.h"

namespace kirvana::office {

int Drawing(const Args& args) {
    if (args.size() != 1) return Usage("drawing FILE");
    DrawingFile file;
    if (!file.Open(args[0], true)) {
        std::fprintf(stderr, "cannot open %s\n", args[0].c_str());
        return 1;
    }
    for (const auto& line : ListDrawing(file)) std::printf("%s\n", line.c_str());
    return 0;
}

int Expand(const Args& args) {
    if (args.size() != 1) return Usage("expand STEM");
    ExpandResult result = ExpandDrawing(args[0]);
    if (!result.Done) {
        std::fprintf(stderr, "cannot expand %sdrw into %sdr1\n", args[0].c_str(), args[0].c_str());
        return 1;
    }
    std::printf("%d\n", result.Records - 1);
    if (result.LimitReached) {
        std::fprintf(stderr, "stopped at %d hits\n", MaxExpandedHits);
        return 1;
    }
    return 0;
}

}  // namespace kirvana::office

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
    const char* usage = "expand STEM [--root ROOT]";
    bool haveRoot = false;
    std::string root = Option(args, "--root", &haveRoot);
    if (args.size() != (haveRoot ? 3u : 1u) || args[0].starts_with("--")) return Usage(usage);
    // A stem without a folder names files of the installation, such as a slot's "Actvprg1.".
    std::string stem = args[0];
    if (haveRoot && stem.find('/') == std::string::npos) stem = (root.ends_with('/') ? root : root + "/") + stem;
    ExpandResult result = ExpandDrawing(stem);
    if (!result.Done) {
        std::fprintf(stderr, "cannot expand %sdrw into %sdr1\n", stem.c_str(), stem.c_str());
        return 1;
    }
    std::printf("hits: %d\n", result.Records - 1);
    if (result.LimitReached) {
        std::fprintf(stderr, "stopped at %d hits\n", MaxExpandedHits);
        return 1;
    }
    return 0;
}

}  // namespace kirvana::office

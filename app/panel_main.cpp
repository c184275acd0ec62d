// The panel. Until its screens exist it runs the start-up on the installation in the current
// directory, shows the splash for its time, prints what it read, and ends through the
// operator's shutdown (without powering off).
#include <cstdio>

#include "app/headless_platform.h"

int main() {
    kirvana::HeadlessSeat seat(4000, true, true);
    int code = seat.Start(".");
    if (code == 0) {
        std::printf("Start-up complete; the screens come later. Shutting down.\n");
        seat.End();
    }
    return code;
}

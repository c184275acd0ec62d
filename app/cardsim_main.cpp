// kirvana-cardsim: the card simulator for people. It listens on loopback and takes text
// commands on standard input to set variables, raise status bits, set the station, step the
// hit counter, hold answers back, drop the connection or reject lines, and start, hold and
// abort programs. The programs it runs take their steps from the active slots of the
// installation in --root.
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>

#include "controller/cardsim/card_simulator.h"
#include "core/number.h"
#include "system/slot_run_plan.h"

int main(int argc, char** argv) {
    int port = 1025;
    double speed = 100;
    std::string root = "./";
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--port") == 0 && i + 1 < argc) {
            port = static_cast<int>(kirvana::ToNumber(argv[++i]));
        } else if (std::strcmp(argv[i], "--root") == 0 && i + 1 < argc) {
            root = argv[++i];
            if (!root.empty() && root.back() != '/') root += '/';
        } else if (std::strcmp(argv[i], "--speed") == 0 && i + 1 < argc) {
            speed = kirvana::ToNumber(argv[++i]);
        } else {
            std::fprintf(stderr,
                         "usage: kirvana-cardsim [--port N] [--root INSTALLATION] [--speed BLOCKS_PER_S]\n"
                         "  --port 0: any free port; --speed 100 (default) keeps real time\n");
            return 2;
        }
    }
    kirvana::CardSimulator sim;
    kirvana::Directories dirs;
    dirs.RootDir = root;
    sim.SetRunPlanSource(kirvana::SlotRunPlanSource(dirs));
    sim.SetRunSpeed(speed);
    if (!sim.Start(port)) {
        std::fprintf(stderr, "kirvana-cardsim: cannot listen on 127.0.0.1:%d\n", port);
        return 1;
    }
    std::printf("kirvana-cardsim listening on 127.0.0.1:%d; type help for the commands\n", sim.Port());
    // The replies are for whoever reads them: with standard output gone there is no one left to
    // tell, and the simulator goes on serving the card's port.
    (void)std::fflush(stdout);
    std::string line;
    while (std::getline(std::cin, line)) {
        if (line == "quit" || line == "exit") break;
        if (line.empty()) continue;
        std::printf("%s\n", sim.Command(line).c_str());
        (void)std::fflush(stdout);  // as above
    }
    return 0;
}

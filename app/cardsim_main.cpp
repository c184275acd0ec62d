// kirvana-cardsim: the card simulator for people. It listens on loopback and takes text
// commands on standard input to set variables, raise status bits, set the station, step the
// hit counter, hold answers back, drop the connection or reject lines.
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>

#include "controller/cardsim/card_simulator.h"
#include "core/number.h"

int main(int argc, char** argv) {
    int port = 1025;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--port") == 0 && i + 1 < argc) {
            port = static_cast<int>(kirvana::ToNumber(argv[++i]));
        } else {
            std::fprintf(stderr, "usage: kirvana-cardsim [--port N]   (0: any free port)\n");
            return 2;
        }
    }
    kirvana::CardSimulator sim;
    if (!sim.Start(port)) {
        std::fprintf(stderr, "kirvana-cardsim: cannot listen on 127.0.0.1:%d\n", port);
        return 1;
    }
    std::printf("kirvana-cardsim listening on 127.0.0.1:%d; type help for the commands\n", sim.Port());
    std::fflush(stdout);
    std::string line;
    while (std::getline(std::cin, line)) {
        if (line == "quit" || line == "exit") break;
        if (line.empty()) continue;
        std::printf("%s\n", sim.Command(line).c_str());
        std::fflush(stdout);
    }
    return 0;
}

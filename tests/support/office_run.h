// Runs the office seat (KIRVANA_OFFICE, set by the test's build) with arguments as a shell would,
// for the tests of its commands: the exit code and what it printed.
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <string>

namespace kirvana {

struct OfficeRun {
    int Code = -1;
    std::string Output;
};

// `redirect` decides what Output holds: stdout alone by default, " 2>&1" for both streams.
inline OfficeRun RunOffice(const std::string& arguments, const char* redirect = " 2>/dev/null") {
    OfficeRun run;
    const std::string command = std::string(KIRVANA_OFFICE) + " " + arguments + redirect;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return run;
    char buffer[4096];
    std::size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) run.Output.append(buffer, n);
    const int status = pclose(pipe);
    run.Code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

}  // namespace kirvana

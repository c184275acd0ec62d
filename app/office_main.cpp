#include <cstdio>
#include <cstring>

#include "app/office.h"
#include "core/names.h"

namespace kirvana::office {

int Usage(const char* line) {
    std::fprintf(stderr, "usage: kirvana-office %s\n", line);
    return 2;
}

std::string Option(const Args& args, const std::string& name, bool* found) {
    for (std::size_t i = 0; i + 1 < args.size(); ++i) {
        if (args[i] == name) {
            if (found) *found = true;
            return args[i + 1];
        }
    }
    if (found) *found = false;
    return {};
}

bool Flag(const Args& args, const std::string& name) {
    for (const auto& a : args)
        if (a == name) return true;
    return false;
}

void PrintCardFault(const std::string& lead, const CardFault& fault) {
    std::printf("%s card fault %d: %s\n", lead.c_str(), fault.Number, fault.Description.c_str());
}

bool NamesAcceptable(const std::string& directory, const std::string& program) {
    const char* refusal = !AcceptableName(directory) ? InvalidDirectoryName
                          : !AcceptableName(program) ? InvalidProgramName
                                                     : nullptr;
    if (refusal) std::fprintf(stderr, "%s\n", refusal);
    return refusal == nullptr;
}

bool MachineAt(std::string root, Directories& dirs, MachineData& machine) {
    if (!root.empty() && root.back() != '/') root += '/';
    dirs.RootDir = root;
    DeriveDirectories(dirs);
    // The directories the start-up creates, so that the reports have their place.
    if (auto fault = CreateInstallationDirs(dirs)) {
        std::fprintf(stderr, "%s\n", fault->Message().c_str());
        return false;
    }
    if (auto fault = ReadMachineFiles(dirs, machine)) {
        std::fprintf(stderr, "%s\n", fault->Message().c_str());
        return false;
    }
    return true;
}

namespace {

struct Command {
    const char* Name;
    int (*Run)(const Args&);
    const char* Help;
};

const Command Commands[] = {
    {"start", Start, "start --root DIR                 run the start-up headless, print the machine summary"},
    {"select", Select, "select --root ROOT --dir DIR --program NAME [--slot 1|2]   select a program into a slot"},
    {"slots", Slots, "slots --root ROOT                print both active slots as the start-up finds them"},
    {"card", Card,
     "card --root DIR [--timeout MS] \"TEXT\"...   send texts to the installation's card, print the answers"},
    {"eval", Eval, "eval \"EXPR\"                     evaluate an expression"},
    {"word", Word, "word \"BLOCK\" LETTER [--number|--integer]   read a word of a block"},
    {"format", Format, "format VALUE DECIMALS [--single]  format a number"},
    {"convert", Convert, "convert STEM --root ROOT         convert STEM + \"org\", print the dialect"},
    {"blend", Blend,
     "blend STEM --root ROOT --program NAME --dir DIR   blend STEM + \"M1\", print the critical errors"},
    {"tool", Tool,
     "tool \"TEXT\" [--inches] [--station-type N]   read a tool text, print the record and its description"},
    {"reverse", Reverse,
     "reverse STEM --root ROOT --program NAME --dir DIR   draw STEM + \"M1\", \"M2\" into STEM + \"drw\", print the "
     "critical errors and records"},
    {"drawing", Drawing, "drawing FILE                     list the records of a drawing file"},
    {"watch", Watch,
     "watch --root ROOT [--ticks N] [--interval MS] [--start] [--until-idle]   follow the machine tick by tick"},
    {"expand", Expand,
     "expand STEM [--root ROOT]        expand STEM + \"drw\" into single hits in STEM + \"dr1\", print the hits"},
    {"generate", Generate,
     "generate DRW --root ROOT --dir DIR --program NAME [--yes] [--date DD-MM-YYYY]   write a program from a "
     "dialogue drawing"},
    {"load-dialogue", LoadDialogue,
     "load-dialogue --root ROOT --dir DIR --program NAME   load a program into the dialogue's work files"},
    {"send", Send, "send --root ROOT --dir DIR --program NAME [--port DEV]   send a program over the RS232 port"},
    {"receive", Receive, "receive --root ROOT [--port DEV] [--once]   receive programs from the RS232 port"},
};

// The list of commands: on stdout with exit code 0 when asked for, on stderr with 2 after a
// wrong call.
int Help(bool asked) {
    FILE* out = asked ? stdout : stderr;
    std::fprintf(out,
                 "usage: kirvana-office COMMAND ...   (kirvana-office COMMAND --help for one command)\ncommands:\n");
    for (const auto& c : Commands) std::fprintf(out, "  %s\n", c.Help);
    return asked ? 0 : 2;
}

bool AsksForHelp(const char* arg) { return std::strcmp(arg, "--help") == 0 || std::strcmp(arg, "-h") == 0; }

}  // namespace
}  // namespace kirvana::office

int main(int argc, char** argv) {
    using namespace kirvana::office;
    if (argc < 2) return Help(false);
    if (AsksForHelp(argv[1])) return Help(true);
    for (const auto& c : Commands) {
        if (std::strcmp(argv[1], c.Name) != 0) continue;
        for (int i = 2; i < argc; ++i) {
            if (AsksForHelp(argv[i])) {
                std::printf("usage: kirvana-office %s\n", c.Help);
                return 0;
            }
        }
        return c.Run(Args(argv + 2, argv + argc));
    }
    return Help(false);
}

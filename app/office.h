// kirvana-office: the command-line office seat. Each command is a function taking its
// arguments (without the command name) and returning the exit code: 0 success, 2 bad usage,
// CardFaultExit when the card failed the command.
#pragma once

#include <string>
#include <vector>

#include "controller/card_link.h"
#include "core/config.h"

namespace kirvana::office {

using Args = std::vector<std::string>;

// Prints the command's usage line to stderr and returns 2.
int Usage(const char* line);
// The value behind "--name" in the arguments, or "" when absent; `found` tells which.
std::string Option(const Args& args, const std::string& name, bool* found = nullptr);
bool Flag(const Args& args, const std::string& name);
// The rule of every directory and program name: true when both are acceptable, otherwise
// the system's refusal ("Invalid Directory Name !" or "Invalid Program Name !") on stderr.
bool NamesAcceptable(const std::string& directory, const std::string& program);
// The exit code of a command that the card failed (a fault of the link or an error answer).
inline constexpr int CardFaultExit = 5;
// Prints `lead` and " card fault NUMBER: DESCRIPTION" on a line.
void PrintCardFault(const std::string& lead, const CardFault& fault);
// The directories and Machine.dat of the installation at `root`, as the passes need them; the
// directories missing there are created as the start-up does. False (with the reason on
// stderr) when a directory can't be created or Machine.dat can't be read.
bool MachineAt(std::string root, Directories& dirs, MachineData& machine);

int Start(const Args& args);
// A program into an active slot, as the Select button does; both slots as the start finds them.
int Select(const Args& args);
int Slots(const Args& args);
int Card(const Args& args);
int Eval(const Args& args);
int Word(const Args& args);
int Format(const Args& args);
// Converts STEM + "org" to A1, A2, sbs, M1 and M2 and prints the dialect.
int Convert(const Args& args);
int Tool(const Args& args);
// Blends STEM + "M1" and prints the number of critical errors.
int Blend(const Args& args);
// Reads STEM + "M1" and "M2" back into STEM + "drw" and "Reverse.txt"; prints the critical
// count and the number of records.
int Reverse(const Args& args);
// Lists the records of a drawing file.
int Drawing(const Args& args);
// Expands STEM + "drw" into STEM + "dr1" and prints the number of hits.
int Expand(const Args& args);
// Starts the installation and prints the display model at each poll tick.
int Watch(const Args& args);
// A program from a dialogue drawing, as the dialogue's Write button writes it.
int Generate(const Args& args);
// A program into the installation's dialogue work files, as the dialogue's Load button does.
int LoadDialogue(const Args& args);
// Sends a program over the serial port of Control.cms (or --port), as the send screen does.
int Send(const Args& args);
// Receives programs from the serial port into the program store until ended (or after one
// stream with --once).
int Receive(const Args& args);

}  // namespace kirvana::office

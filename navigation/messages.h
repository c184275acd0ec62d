// MessageForm's logic beside the poll's message list: the help file of a line and the
// acknowledgement of received programs.
#pragma once

#include <optional>
#include <string>

namespace kirvana {

struct Process;

// The text of a help file; empty when the name is blank or the file is missing or unreadable.
std::optional<std::string> ReadHelpFile(const std::string& path);

// The receive help file: the one the poll names, else HelpDir + "Receive.hlp".
std::string ReceiveHelpPath(const Process& process);

// ClearButton: the list of received programs goes: Receive.hlp is deleted and the flag cleared.
void AcknowledgeMessages(Process& process);

}  // namespace kirvana

// The Load button: a part program read back into the dialogue through the Convert and Reverse
// passes, under the stem "Dialogue/Reverse/Rvsprg.", with its tools, settings and names.
#pragma once

#include <string>
#include <vector>

#include "dialogue/dialogue_session.h"

namespace kirvana {

namespace load_message {
inline constexpr const char* DirectoryMissing = "Directory Does Not Exist !";
inline constexpr const char* ProgramMissing = "Program Does Not Exist !";
inline constexpr const char* ErrorsInCode = "Can Not Be Selected Due To Errors in Code !";
}  // namespace load_message

struct LoadResult {
    bool Loaded = false;
    std::vector<std::string> Message;  // the refusal, for the warning screen
    std::int32_t Records = 0;          // records of the loaded drawing, the Sheet included
};

// Loads `program` of `directory` into the dialogue's work files and state; the cursor ends on
// the last entity.
LoadResult LoadProgram(DialogueSession& session, const std::string& directory, const std::string& program);

// The names the header of a generated program gives: program, directory, description.
struct HeaderNames {
    std::string Program, Directory, Description;
};
HeaderNames ReadHeaderNames(const std::vector<std::string>& lines);

}  // namespace kirvana

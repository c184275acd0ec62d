// The jobs of FileForm (codes 1 to 5) and DirectoryForm (6 to 8): their questions, answers and
// refusals in the system's texts, and the work on the program store. The screens gather the
// operator's choice and call these; every question and notice goes through FileJobOperator.
#pragma once

#include <array>
#include <initializer_list>
#include <string>
#include <vector>

namespace kirvana {

enum class FileJob {
    DeletePrograms = 1,
    RenameProgram = 2,
    CopyProgramAs = 3,
    MovePrograms = 4,
    CopyPrograms = 5,
    CreateDirectory = 6,
    DeleteDirectory = 7,
    RenameDirectory = 8,
};

// The caption of the job's button on FileHandleForm, and the title lines of its form.
struct FileJobText {
    const char* Button;
    std::vector<const char*> Titles;
};
FileJobText FileJobCaptions(FileJob job);
// Jobs 1 to 5 belong to FileForm, 6 to 8 to DirectoryForm.
inline bool IsDirectoryJob(FileJob job) { return static_cast<int>(job) >= 6; }

// How a job speaks to the operator: the warning screen.
class FileJobOperator {
public:
    virtual ~FileJobOperator() = default;
    // A question; true for yes.
    virtual bool Ask(const std::string& text) = 0;
    // A notice with one OK button.
    virtual void Tell(const std::string& text) = 0;
};

// A warning's text: its parts joined by line feeds, three line ends behind.
std::string WarningText(std::initializer_list<std::string> parts);

// Where the jobs work.
struct StoreContext {
    std::string ControllerDir;  // the installation's root: the jobs' work files lie there
    // Whole paths (ending in "/") of the directories that hold a program of an active slot.
    std::vector<std::string> DirectoriesInUse;
};

// The operator's choice on FileForm.
struct FileJobRequest {
    FileJob Job = FileJob::DeletePrograms;
    std::string Directory;              // whole path of the programs' directory, ending in "/"
    std::vector<std::string> Programs;  // chosen program names
    std::string NewName;                // FileBox, for rename and copy as
    std::string Destination;            // whole path of the destination, "" when none chosen
    std::string DestinationName;        // the destination as the operator sees it
};

// OkButton of FileForm: runs the job; the number of programs it changed.
int RunFileJob(const FileJobRequest& request, const StoreContext& context, FileJobOperator& op);

// The operator's choice on DirectoryForm.
struct DirectoryJobRequest {
    FileJob Job = FileJob::CreateDirectory;
    std::string Parent;    // whole path of the directory listed, ending in "/"
    std::string Selected;  // the chosen subdirectory's name, "" when none
    std::string NewName;   // the name typed
};

// OkButton of DirectoryForm: true when the directory was created, deleted or renamed.
bool RunDirectoryJob(const DirectoryJobRequest& request, const StoreContext& context, FileJobOperator& op);

}  // namespace kirvana

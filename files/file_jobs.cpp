#include "files/file_jobs.h"

#include <filesystem>

#include "core/names.h"
#include "core/paths.h"
#include "core/text.h"
#include "files/program_store.h"

namespace kirvana {

namespace fs = std::filesystem;

namespace {

std::string Quoted(const std::string& name) { return "\"" + name + "\""; }

std::string Counted(std::size_t n, const char* one, const char* many) {
    return n == 1 ? std::string("1 ") + one : std::to_string(n) + " " + many;
}

bool SameDirectory(const std::string& a, const std::string& b) {
    std::error_code error;
    return fs::equivalent(a, b, error);
}

bool InUse(const std::string& directory, const StoreContext& context) {
    for (const std::string& used : context.DirectoriesInUse)
        if (SameDirectory(directory, used)) return true;
    return false;
}

void TellFault(FileJobOperator& op, const std::string& path) { op.Tell(WarningText({"File Fault : " + path})); }

// Deletes the files name.* of the directory but its .prg, and its .stg when `keepSettings`.
void DeleteAllBut(const std::string& directory, const std::string& name, bool keepSettings) {
    std::string stem = name + ".";
    for (const std::string& file : ListDirectory(directory, false)) {
        if (!file.starts_with(stem)) continue;
        std::string extension = file.substr(stem.size() - 1);
        if (extension == ".prg" || (keepSettings && extension == ".stg")) continue;
        std::error_code error;
        fs::remove(directory + file, error);
    }
}

int DeletePrograms(const FileJobRequest& r, FileJobOperator& op) {
    std::size_t n = r.Programs.size();
    if (n == 0) {
        op.Tell(WarningText({"No Programs Selected !"}));
        return 0;
    }
    std::string question =
        n == 1 ? "Delete " + Quoted(r.Programs[0]) + " !" : "Delete " + std::to_string(n) + " Programs !";
    if (!op.Ask(WarningText({question}))) return 0;
    int deleted = 0;
    for (const std::string& name : r.Programs) {
        if (!DeleteProgramSet(r.Directory, name)) {
            TellFault(op, r.Directory + name);
            return deleted;
        }
        ++deleted;
    }
    op.Tell(WarningText({Counted(n, "Program Deleted !", "Programs Deleted !")}));
    return deleted;
}

// Rename and copy as: the program of the directory under a new name in the same directory.
int RenameOrCopyAs(const FileJobRequest& r, FileJobOperator& op, bool rename) {
    if (r.Programs.empty()) {
        op.Tell(WarningText({"No Programs Selected !"}));
        return 0;
    }
    const std::string& old = r.Programs[0];
    std::string name(Trim(r.NewName));
    if (!AcceptableName(name)) {
        op.Tell(WarningText({InvalidProgramName}));
        return 0;
    }
    if (!op.Ask(WarningText({(rename ? "Rename " : "Copy ") + Quoted(old), "As " + Quoted(name) + " ?"}))) return 0;
    if (FileExists(r.Directory + name + ".prg") && !op.Ask(WarningText({name, "Already Exists !", "Overwrite It ?"})))
        return 0;
    // The program and its settings under the new name; then the rest of the new name's set and,
    // for a rename, the old set go.
    std::string fault;
    if (!CopyProgram(r.Directory, old, r.Directory, name, fault)) {
        TellFault(op, fault);
        return 0;
    }
    bool hasSettings = FileExists(r.Directory + name + ".stg") && FileExists(r.Directory + old + ".stg");
    DeleteAllBut(r.Directory, name, hasSettings);
    if (rename && old != name) DeleteNameSet(r.Directory, old);
    op.Tell(WarningText({rename ? "1 Program Renamed !" : "1 Program Copied !"}));
    return 1;
}

int MoveOrCopyTo(const FileJobRequest& r, FileJobOperator& op, bool move) {
    std::size_t n = r.Programs.size();
    if (n == 0) {
        op.Tell(WarningText({"No Programs Selected !"}));
        return 0;
    }
    if (r.Destination.empty()) {
        op.Tell(WarningText({"No Destination Selected !"}));
        return 0;
    }
    if (SameDirectory(r.Directory, r.Destination)) {
        op.Tell(WarningText({"Original & Destination Directories Are The Same !"}));
        return 0;
    }
    const char* verb = move ? "Move " : "Copy ";
    std::string what = n == 1 ? verb + Quoted(r.Programs[0]) : verb + std::to_string(n) + " Programs";
    if (!op.Ask(WarningText({what, "To " + Quoted(r.DestinationName) + " !"}))) return 0;
    if (!DriveReady(r.Destination) || !IsDirectory(r.Destination)) {
        op.Tell(WarningText({"Disc Not Ready !"}));
        return 0;
    }
    int done = 0;
    for (const std::string& name : r.Programs) {
        if (FileExists(r.Destination + name + ".prg") && !op.Ask(WarningText({"Already Exists !", "Overwrite It ?"})))
            continue;
        std::string fault;
        if (!CopyProgram(r.Directory, name, r.Destination, name, fault)) {
            TellFault(op, fault);
            return done;
        }
        // The copy is whole at the destination: only now does the source go.
        if (move && !DeleteProgramSet(r.Directory, name)) {
            TellFault(op, r.Directory + name);
            return done + 1;
        }
        ++done;
    }
    auto count = static_cast<std::size_t>(done);
    std::string said = done == 0 ? (move ? "No Programs Moved !" : "No Programs Copied !")
                                 : Counted(count, move ? "Program Moved !" : "Program Copied !",
                                           move ? "Programs Moved !" : "Programs Copied !");
    op.Tell(WarningText({said}));
    return done;
}

bool CreateDirectory(const DirectoryJobRequest& r, FileJobOperator& op) {
    std::string name(Trim(r.NewName));
    if (!AcceptableName(name)) {
        op.Tell(WarningText({InvalidDirectoryName}));
        return false;
    }
    std::error_code error;
    if (fs::exists(r.Parent + name, error)) {
        op.Tell(WarningText({"Directory " + Quoted(name) + " Already Exists !"}));
        return false;
    }
    if (!fs::create_directory(r.Parent + name, error)) {
        TellFault(op, r.Parent + name);
        return false;
    }
    return true;
}

bool NoneSelected(const DirectoryJobRequest& r, FileJobOperator& op) {
    if (!r.Selected.empty() && r.Selected != ".." && IsDirectory(r.Parent + r.Selected)) return false;
    op.Tell(WarningText({"No Directory Selected !"}));
    return true;
}

bool DeleteDirectory(const DirectoryJobRequest& r, const StoreContext& context, FileJobOperator& op) {
    if (NoneSelected(r, op)) return false;
    std::string path = r.Parent + r.Selected + "/";
    if (InUse(path, context)) {
        op.Tell(WarningText({"Can Not Delete Directory !", "It Contains Currently Selected Program."}));
        return false;
    }
    if (!op.Ask(WarningText({"Delete " + Quoted(r.Selected) + " !"}))) return false;
    std::vector<std::string> files = ListDirectory(path, false);
    if (!files.empty()) {
        if (!op.Ask(WarningText({Quoted(r.Selected) + " Is Not Empty !", "Delete it Anyway ?"}))) return false;
        for (const std::string& file : files) {
            std::error_code error;
            fs::remove(path + file, error);
        }
    }
    std::error_code error;
    if (!fs::remove(path, error)) {
        TellFault(op, path);
        return false;
    }
    return true;
}

bool RenameDirectory(const DirectoryJobRequest& r, const StoreContext& context, FileJobOperator& op) {
    if (NoneSelected(r, op)) return false;
    if (InUse(r.Parent + r.Selected + "/", context)) {
        op.Tell(WarningText({"Can Not Rename Directory !", "It Contains Currently Selected Program."}));
        return false;
    }
    std::string name(Trim(r.NewName));
    if (!AcceptableName(name)) {
        op.Tell(WarningText({InvalidDirectoryName}));
        return false;
    }
    std::error_code error;
    if (fs::exists(r.Parent + name, error)) {
        op.Tell(WarningText({"Directory " + Quoted(name) + " Already Exists !"}));
        return false;
    }
    if (!op.Ask(WarningText({"Rename", Quoted(r.Selected), "As", Quoted(name) + " ?"}))) return false;
    fs::rename(r.Parent + r.Selected, r.Parent + name, error);
    if (error) {
        TellFault(op, r.Parent + r.Selected);
        return false;
    }
    return true;
}

}  // namespace

FileJobText FileJobCaptions(FileJob job) {
    switch (job) {
        case FileJob::DeletePrograms:
            return {"DELETE  (&1)", {"DELETE PROGRAM(S)", "FROM DIRECTORY"}};
        case FileJob::RenameProgram:
            return {"RENAME (&2)", {"RENAME PROGRAM", "IN DIRECTORY", "AS"}};
        case FileJob::CopyProgramAs:
            return {"COPY AS (&3)", {"COPY PROGRAM", "AS"}};
        case FileJob::MovePrograms:
            return {"MOVE TO (&4)", {"MOVE PROGRAM(S)", "TO"}};
        case FileJob::CopyPrograms:
            return {"COPY TO (&5)", {"COPY PROGRAM(S)", "TO"}};
        case FileJob::CreateDirectory:
            return {"CREATE  (&6)", {"CREATE NEW DIRECTORY", "DIRECTORY &NAME"}};
        case FileJob::DeleteDirectory:
            return {"DELETE  (&7)", {"DELETE DIRECTORY"}};
        case FileJob::RenameDirectory:
            return {"RENAME (&8)", {"RENAME DIRECTORY", "&AS"}};
    }
    return {"", {}};
}

std::string WarningText(std::initializer_list<std::string> parts) {
    std::string text;
    for (const std::string& part : parts) {
        if (!text.empty()) text += '\n';
        text += part;
    }
    return text + "\n\n\n";
}

int RunFileJob(const FileJobRequest& request, const StoreContext& context, FileJobOperator& op) {
    // Work files a job cut short may have left.
    DeleteTempFiles(context.ControllerDir);
    switch (request.Job) {
        case FileJob::DeletePrograms:
            return DeletePrograms(request, op);
        case FileJob::RenameProgram:
            return RenameOrCopyAs(request, op, true);
        case FileJob::CopyProgramAs:
            return RenameOrCopyAs(request, op, false);
        case FileJob::MovePrograms:
            return MoveOrCopyTo(request, op, true);
        case FileJob::CopyPrograms:
            return MoveOrCopyTo(request, op, false);
        default:
            return 0;
    }
}

bool RunDirectoryJob(const DirectoryJobRequest& request, const StoreContext& context, FileJobOperator& op) {
    switch (request.Job) {
        case FileJob::CreateDirectory:
            return CreateDirectory(request, op);
        case FileJob::DeleteDirectory:
            return DeleteDirectory(request, context, op);
        case FileJob::RenameDirectory:
            return RenameDirectory(request, context, op);
        default:
            return false;
    }
}

}  // namespace kirvana

// The send and receive commands: the serial transfer of the panel without its screens, so that
// a DNC link can be run from a script on an office seat.
#include <QCoreApplication>
#include <cstdio>
#include <filesystem>

#include "app/office.h"
#include "core/names.h"
#include "core/paths.h"
#include "core/text.h"
#include "files/comms.h"
#include "serial/qt_serial_port.h"

namespace kirvana::office {

namespace {

// The installation's directories (Control.cfg read from `root`, as the start reads it) and its
// Control.cms, the port replaced by `port` when one is given. Exit code 0, or 3 when the
// installation can't be used.
int TransferSetup(const std::string& root, const std::string& port, Installation& installation,
                  CommSettings& settings) {
    std::error_code error;
    std::filesystem::current_path(root, error);
    if (error) {
        std::fprintf(stderr, "cannot use %s as the installation: %s\n", root.c_str(), error.message().c_str());
        return 3;
    }
    if (auto fault = ReadControlConfig(installation)) {
        std::fprintf(stderr, "Kirvana 32 cannot start: %s\n", fault->Message().c_str());
        return 3;
    }
    auto read = ReadCommSettings(installation.Dirs.DataDir);
    if (!read) {
        std::fprintf(stderr, "Kirvana 32 cannot start: %s%s: missing or unreadable\n",
                     installation.Dirs.DataDir.c_str(), CommSettingsFile);
        return 3;
    }
    settings = *read;
    for (const std::string& problem : settings.Problems)
        std::fprintf(stderr, "%s: %s\n", CommSettingsFile, problem.c_str());
    if (!port.empty()) settings.PortDevicePath = port;
    return 0;
}

ReceivePlaces PlacesOf(const Installation& installation) {
    const Directories& d = installation.Dirs;
    return {d.RootDir, d.HelpDir, d.ProgramRoot, d.ProgramDirName};
}

// The port's notifiers need the application object of Qt, without an event loop.
class PortApplication {
public:
    PortApplication() : app_(argc_, argv_) {}

private:
    int argc_ = 1;
    char name_[16] = "kirvana-office";
    char* argv_[2] = {name_, nullptr};
    QCoreApplication app_;
};

// A path as the user finds it from anywhere.
std::string Whole(const std::string& path) { return std::filesystem::absolute(path).lexically_normal().string(); }

const char* TransferOff = "the RS232 transfer is off: Control.cms line 3 is 0 (give --port DEVICE)";

}  // namespace

int Send(const Args& args) {
    const char* usage = "send --root ROOT --dir DIR --program NAME [--port DEV]";
    bool haveRoot = false, haveDir = false, haveProgram = false, havePort = false;
    std::string root = Option(args, "--root", &haveRoot);
    std::string dir = Option(args, "--dir", &haveDir);
    std::string program = Option(args, "--program", &haveProgram);
    std::string device = Option(args, "--port", &havePort);
    if (!haveRoot || !haveDir || !haveProgram || args.size() != (havePort ? 8u : 6u)) return Usage(usage);
    if (!NamesAcceptable(dir, program)) return 1;
    Installation installation;
    CommSettings settings;
    if (int code = TransferSetup(root, device, installation, settings)) return code;
    if (!settings.TransferOn()) {
        std::fprintf(stderr, "%s\n", TransferOff);
        return 1;
    }
    std::string directory = ResolveNoCase(installation.Dirs.ProgramRoot + dir) + "/";
    std::string file = ResolveNoCase(directory + program + ".prg");
    if (!FileExists(file)) {
        std::fprintf(stderr, "Program Does Not Exist !\n");
        return 1;
    }
    program = StripExtension(FileNameOf(file));
    PortApplication application;
    QtSerialPort port;
    CommsModule comms(settings, PlacesOf(installation), port, [&port] { port.Pump(10); });
    if (settings.StartTrigger != TriggerImmediate)
        std::fprintf(stderr, "waiting for the start (start trigger %d) on %s\n", settings.StartTrigger,
                     settings.PortDevice().c_str());
    SendResult result = comms.SendProgram(directory, program);
    comms.ClosePort();
    if (result == SendResult::Sent) {
        std::printf("sent: %s\n", SendProgressOf(program, 0, std::filesystem::file_size(file)).Label.c_str());
        return 0;
    }
    std::fprintf(stderr, "not sent: %s\n", comms.LastError().c_str());
    return 1;
}

int Receive(const Args& args) {
    const char* usage = "receive --root ROOT [--port DEV] [--once]";
    bool haveRoot = false, havePort = false;
    std::string root = Option(args, "--root", &haveRoot);
    std::string device = Option(args, "--port", &havePort);
    bool once = Flag(args, "--once");
    if (!haveRoot || args.size() != 2u + (havePort ? 2u : 0u) + (once ? 1u : 0u)) return Usage(usage);
    Installation installation;
    CommSettings settings;
    if (int code = TransferSetup(root, device, installation, settings)) return code;
    if (!settings.TransferOn()) {
        std::fprintf(stderr, "%s\n", TransferOff);
        return 1;
    }
    PortApplication application;
    QtSerialPort port;
    CommsModule comms(settings, PlacesOf(installation), port, [&port] { port.Pump(10); });
    if (!comms.OpenReceivePort()) {
        std::fprintf(stderr, "cannot open the port: %s\n", comms.LastError().c_str());
        return 1;
    }
    std::fprintf(stderr, "receiving on %s\n", settings.PortDevice().c_str());
    while (true) {
        port.Pump(100);
        comms.PortEvent();
        bool refused = false, ended = false;
        for (const ReceivedProgram& r : comms.Receiver().TakeResults()) {
            ended = true;
            if (r.Filed) {
                std::printf("received: %s : %s -> %s\n", r.Name.c_str(), r.Directory.c_str(), Whole(r.Path).c_str());
            } else {
                refused = true;
                std::printf("refused: %s (kept as %s)\n", r.Refusal.c_str(), Whole(r.KeptAs).c_str());
            }
            std::fflush(stdout);
        }
        if (port.Failed()) {
            std::fprintf(stderr, "the port failed: %s\n", port.ErrorText().c_str());
            comms.Receiver().CloseReceiveFile();
            return 1;
        }
        if (once && ended) {
            comms.ClosePort();
            return refused ? 1 : 0;
        }
    }
}

}  // namespace kirvana::office

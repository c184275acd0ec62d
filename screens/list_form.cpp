#include "screens/list_form.h"

#include <cstdio>

#include "screens/panel.h"

namespace kirvana {

ListForm::ListForm(Panel& panel) : PanelForm(panel, "ListForm") {
    port_.SetEventHandler([this] { PortEvent(); });
}

void ListForm::showEvent(QShowEvent* event) {
    PanelForm::showEvent(event);
    QMetaObject::invokeMethod(
        this, [this] { reject(); }, Qt::QueuedConnection);
}

void ListForm::ReadSettings() {
    const Directories& dirs = panel_.State().Config.Dirs;
    auto read = ReadCommSettings(dirs.DataDir);
    settings_ = read.value_or(CommSettings{});
    note_ = read ? "" : dirs.DataDir + CommSettingsFile + ": missing, RS232 transfer off";
    for (const std::string& problem : settings_.Problems) note_ += (note_.empty() ? "" : "; ") + problem;
}

void ListForm::OpenReceivePort() {
    const Directories& dirs = panel_.State().Config.Dirs;
    ReceivePlaces places{dirs.RootDir, dirs.HelpDir, dirs.ProgramRoot, dirs.ProgramDirName};
    comms_ = std::make_unique<CommsModule>(settings_, places, port_, [this] { panel_.ProcessEvents(); });
    if (!comms_->OpenReceivePort()) note_ += (note_.empty() ? "" : "; ") + comms_->LastError();
    if (!note_.empty()) std::fprintf(stderr, "kirvana: %s\n", note_.c_str());
    ShowReceived();
}

void ListForm::ClosePort() {
    if (comms_) comms_->ClosePort();
}

void ListForm::CloseReceiveFile() {
    if (comms_) comms_->Receiver().CloseReceiveFile();
}

void ListForm::PortEvent() {
    if (!comms_) return;
    // A program without a directory goes to the current one.
    comms_->Receiver().SetCurrentDirectory(panel_.State().Config.Dirs.ProgramDirName);
    comms_->PortEvent();
    comms_->Receiver().TakeResults();
    ShowReceived();
}

void ListForm::ShowReceived() {
    // The poll's message list names the received programs while Receive.hlp holds them.
    DisplayModel& display = panel_.State().Display;
    display.ReceiveHelpFile = comms_->Receiver().ReceiveHelpPath();
    if (comms_->Receiver().HelpPresent()) display.NewProgramsReceived = true;
}

}  // namespace kirvana

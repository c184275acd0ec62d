#include "files/comms.h"

#include <algorithm>

#include "core/text.h"
#include "files/durable_file.h"

namespace kirvana {

SendProgress SendProgressOf(const std::string& name, std::uintmax_t done, std::uintmax_t size) {
    SendProgress progress;
    progress.Label = name + "  " + std::to_string(size) + " Characters";
    std::uintmax_t scale = size > 30000 ? 1000 : 1;
    progress.Value = static_cast<std::int32_t>(std::min(done, size) / scale);
    progress.Maximum = static_cast<std::int32_t>(size / scale);
    return progress;
}

CommsModule::CommsModule(const CommSettings& settings, ReceivePlaces places, SerialPort& port,
                         std::function<void()> handleEvents)
    : settings_(settings),
      port_(port),
      handleEvents_(std::move(handleEvents)),
      receiver_(settings, std::move(places)) {}

bool CommsModule::OpenReceivePort() {
    // 1. The receive files are named, the flags cleared.
    receiver_.Prepare();
    lastError_.clear();
    // 2. The port opens when one is configured.
    if (!settings_.TransferOn()) return true;
    if (port_.IsOpen()) port_.Close();
    if (port_.Open(settings_.PortDevice(), settings_, lastError_)) return true;
    return false;
}

void CommsModule::PortEvent() {
    if (!port_.IsOpen()) return;
    std::string text = port_.Read();
    if (sendState_ == SendIdle) {
        if (!text.empty()) receiver_.ReceiveChars(text);
        return;
    }
    if (sendState_ != SendWaiting) return;
    // The start triggers of a waiting send.
    if (settings_.StartTrigger == TriggerStartChar && text.find(settings_.StartChar) != std::string::npos)
        forceStart_ = true;
    if (settings_.StartTrigger == TriggerAnyChar && !text.empty()) forceStart_ = true;
    LineSignals now = port_.Signals();
    if (settings_.StartTrigger == TriggerCts && now.Cts && !lastSignals_.Cts) forceStart_ = true;
    if (settings_.StartTrigger == TriggerDsr && now.Dsr && !lastSignals_.Dsr) forceStart_ = true;
    if (settings_.StartTrigger == TriggerLineEvent && !(now == lastSignals_)) forceStart_ = true;
    lastSignals_ = now;
}

void CommsModule::Wait() {
    if (handleEvents_) handleEvents_();
}

bool CommsModule::PortFailed() {
    if (!port_.Failed()) return false;
    lastError_ = port_.ErrorText();
    return true;
}

bool CommsModule::SendText(std::string_view text) {
    for (char c : text) {
        while (port_.OutBufferCount() >= OutBufferLimit && !abort_) {
            if (PortFailed()) return false;
            Wait();
        }
        if (abort_) return false;
        if (!port_.Write(std::string_view(&c, 1))) {
            lastError_ = port_.ErrorText();
            return false;
        }
    }
    return true;
}

SendResult CommsModule::SendProgram(const std::string& directory, const std::string& name,
                                    const std::function<void(const SendProgress&)>& progress) {
    forceStart_ = false;
    abort_ = false;
    lastError_.clear();
    auto file = ReadWholeFile(directory + name + ".prg");
    if (!file) {
        lastError_ = "File Fault : " + directory + name + ".prg";
        return SendResult::FileFault;
    }
    // The end of a send, however it ends: the port goes back to the receiver.
    auto finish = [this](SendResult result) {
        std::string error = lastError_;
        sendState_ = SendIdle;
        port_.Close();
        OpenReceivePort();
        if (!error.empty()) lastError_ = error;
        return result;
    };
    // 2. The receive port closes; the same port opens for the send.
    port_.Close();
    if (!port_.Open(settings_.PortDevice(), settings_, lastError_)) return finish(SendResult::PortFault);
    sendState_ = SendWaiting;
    lastSignals_ = port_.Signals();
    // 3. The start trigger, the operator's FORCE or ABORT.
    if (settings_.StartTrigger != TriggerImmediate) {
        while (!forceStart_ && !abort_) {
            Wait();
            PortEvent();
            if (PortFailed()) return finish(SendResult::PortFault);
        }
    }
    if (abort_) return finish(SendResult::Aborted);
    // 4. The leader, then each line less CR, LF and SendDrop, with LineEnd.
    sendState_ = SendSending;
    auto fail = [this, &finish] { return finish(abort_ ? SendResult::Aborted : SendResult::PortFault); };
    if (!SendText(settings_.SendLeader)) return fail();
    std::vector<std::string_view> lines = SplitLines(*file);
    for (std::size_t n = 0; n < lines.size(); ++n) {
        std::string_view line = lines[n];
        std::string out;
        for (char c : line)
            if (c != '\n' && c != '\r' && settings_.SendDrop.find(c) == std::string::npos) out += c;
        out += settings_.LineEnd;
        if (!SendText(out)) return fail();
        // The bytes done: up to the next line's start, all of them after the last line.
        std::uintmax_t done =
            n + 1 < lines.size() ? static_cast<std::uintmax_t>(lines[n + 1].data() - file->data()) : file->size();
        if (progress) progress(SendProgressOf(name, done, file->size()));
    }
    // 5. The trailer; the port drains and goes back to the receiver.
    sendState_ = SendFinishing;
    if (!SendText(settings_.SendTrailer)) return fail();
    while (port_.OutBufferCount() > 0 && !abort_) {
        if (PortFailed()) return finish(SendResult::PortFault);
        Wait();
    }
    return finish(abort_ ? SendResult::Aborted : SendResult::Sent);
}

void CommsModule::ClosePort() {
    if (port_.IsOpen()) port_.Close();
}

}  // namespace kirvana

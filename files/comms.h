// CommsModule: the serial link of the machine. The receive port listens all the time and files
// what arrives (ProgramReceiver); a send takes the same port over, waits for its start trigger,
// sends the program framed by the settings, and gives the port back to the receiver.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "files/comm_settings.h"
#include "files/receive.h"
#include "files/serial_port.h"

namespace kirvana {

// SendState: 0 idle, 1 waiting to start, 2 sending, 3 finishing.
enum SendStateCode : std::int16_t { SendIdle = 0, SendWaiting = 1, SendSending = 2, SendFinishing = 3 };

// What the send screen shows while a program goes: SendLabel and FloodBar.
struct SendProgress {
    std::string Label;
    std::int32_t Value = 0;
    std::int32_t Maximum = 0;
};
// The label: the name and the size with the word "Characters"; the bar counts bytes, or
// thousands of bytes for a program above 30000 bytes.
SendProgress SendProgressOf(const std::string& name, std::uintmax_t done, std::uintmax_t size);

enum class SendResult { Sent, Aborted, PortFault, FileFault };

// The output buffer is let fill up to this many bytes before a send waits.
inline constexpr std::size_t OutBufferLimit = 64;

class CommsModule {
public:
    // `handleEvents` runs the event queue once (the buttons, the poll, the port's own work).
    CommsModule(const CommSettings& settings, ReceivePlaces places, SerialPort& port,
                std::function<void()> handleEvents);

    // Names the receive files, clears the flags and, when a port is configured, opens it.
    // False when the port could not be opened (LastError says why).
    bool OpenReceivePort();
    // The port's event: characters have arrived, or a line signal changed. While a send waits
    // they may start it; otherwise they are received.
    void PortEvent();
    // Sends directory + name + ".prg" as the send screen does.
    SendResult SendProgram(const std::string& directory, const std::string& name,
                           const std::function<void(const SendProgress&)>& progress = {});
    // Sends character by character, waiting while the output buffer holds OutBufferLimit or
    // more; false at once on an abort or a failed port.
    bool SendText(std::string_view text);
    void Force() { forceStart_ = true; }
    void Abort() { abort_ = true; }
    std::int16_t SendState() const { return sendState_; }
    // At shutdown: the port is closed.
    void ClosePort();

    ProgramReceiver& Receiver() { return receiver_; }
    const CommSettings& Settings() const { return settings_; }
    const std::string& LastError() const { return lastError_; }

private:
    void Wait();
    bool PortFailed();

    CommSettings settings_;
    SerialPort& port_;
    std::function<void()> handleEvents_;
    ProgramReceiver receiver_;
    std::int16_t sendState_ = SendIdle;
    bool forceStart_ = false;
    bool abort_ = false;
    LineSignals lastSignals_;
    std::string lastError_;
};

}  // namespace kirvana

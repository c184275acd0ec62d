// The serial port as the transfer needs it. The panel and the office seat give one on a real
// port; tests give fakes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "files/comm_settings.h"

namespace kirvana {

// The modem lines the start triggers watch.
struct LineSignals {
    bool Cts = false;
    bool Dsr = false;
    bool Cd = false;
    bool Ri = false;
    bool operator==(const LineSignals&) const = default;
};

class SerialPort {
public:
    virtual ~SerialPort() = default;
    // Opens the device with the line settings, the handshake of the settings, DTR and RTS on.
    // On false `error` says why.
    virtual bool Open(const std::string& device, const CommSettings& settings, std::string& error) = 0;
    virtual void Close() = 0;
    virtual bool IsOpen() const = 0;
    // Queues bytes to go out; false when the port has failed.
    virtual bool Write(std::string_view bytes) = 0;
    // Bytes queued and not yet gone out.
    virtual std::size_t OutBufferCount() = 0;
    // The bytes that have arrived since the last call.
    virtual std::string Read() = 0;
    virtual LineSignals Signals() = 0;
    // True once the device has gone away or failed; ErrorText names the fault.
    virtual bool Failed() const = 0;
    virtual std::string ErrorText() const = 0;
};

}  // namespace kirvana

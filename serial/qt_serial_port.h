// The serial port on Qt SerialPort: a device such as /dev/ttyS0 or /dev/ttyUSB0 (or a
// pseudo-terminal), with the line settings and handshake of Control.cms.
#pragma once

#include <QSerialPort>
#include <functional>
#include <string>

#include "files/serial_port.h"

namespace kirvana {

class QtSerialPort : public SerialPort {
public:
    QtSerialPort();
    bool Open(const std::string& device, const CommSettings& settings, std::string& error) override;
    void Close() override;
    bool IsOpen() const override { return port_.isOpen(); }
    bool Write(std::string_view bytes) override;
    std::size_t OutBufferCount() override;
    std::string Read() override;
    LineSignals Signals() override;
    bool Failed() const override { return failed_; }
    std::string ErrorText() const override { return errorText_; }

    // Called when characters have arrived (with an event loop running).
    void SetEventHandler(std::function<void()> handler) { handler_ = std::move(handler); }
    // Without an event loop: lets the port move bytes for up to `ms` milliseconds, returning as
    // soon as something was written or has arrived.
    void Pump(int ms);

private:
    QSerialPort port_;
    std::function<void()> handler_;
    bool failed_ = false;
    std::string errorText_;
};

}  // namespace kirvana

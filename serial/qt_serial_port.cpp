#include "serial/qt_serial_port.h"

namespace kirvana {

namespace {

QSerialPort::Parity ParityOf(char letter) {
    switch (letter) {
        case 'E':
            return QSerialPort::EvenParity;
        case 'O':
            return QSerialPort::OddParity;
        case 'M':
            return QSerialPort::MarkParity;
        case 'S':
            return QSerialPort::SpaceParity;
        default:
            return QSerialPort::NoParity;
    }
}

}  // namespace

QtSerialPort::QtSerialPort() {
    QObject::connect(&port_, &QSerialPort::readyRead, [this] {
        if (handler_) handler_();
    });
    QObject::connect(&port_, &QSerialPort::errorOccurred, [this](QSerialPort::SerialPortError error) {
        // A device that is pulled out or fails; the other errors are those of a single setting.
        if (error == QSerialPort::ResourceError || error == QSerialPort::PermissionError ||
            error == QSerialPort::WriteError || error == QSerialPort::ReadError) {
            failed_ = true;
            errorText_ = port_.portName().toStdString() + ": " + port_.errorString().toStdString();
        }
    });
}

bool QtSerialPort::Open(const std::string& device, const CommSettings& settings, std::string& error) {
    if (port_.isOpen()) port_.close();
    failed_ = false;
    errorText_.clear();
    port_.setPortName(QString::fromStdString(device));
    if (!port_.open(QIODevice::ReadWrite)) {
        error = device + ": " + port_.errorString().toStdString();
        return false;
    }
    LineSettings line = ParseLineSettings(settings);
    bool set = port_.setBaudRate(line.BaudRate) && port_.setParity(ParityOf(line.Parity)) &&
               port_.setDataBits(static_cast<QSerialPort::DataBits>(line.DataBits)) &&
               port_.setStopBits(line.StopBits == 2 ? QSerialPort::TwoStop : QSerialPort::OneStop);
    // RTS/CTS wins when both handshakes are named: the port has one flow control at a time.
    QSerialPort::FlowControl flow = (settings.Handshake & HandshakeRtsCts)    ? QSerialPort::HardwareControl
                                    : (settings.Handshake & HandshakeXonXoff) ? QSerialPort::SoftwareControl
                                                                              : QSerialPort::NoFlowControl;
    set = set && port_.setFlowControl(flow);
    if (!set) {
        error = device + ": " + port_.errorString().toStdString();
        port_.close();
        return false;
    }
    // DTR and RTS on. A device without modem lines (a pseudo-terminal) refuses this, which
    // does not stop the transfer; under RTS/CTS the port drives RTS itself.
    port_.setDataTerminalReady(true);
    if (flow != QSerialPort::HardwareControl) port_.setRequestToSend(true);
    port_.clearError();
    return true;
}

void QtSerialPort::Close() {
    if (port_.isOpen()) port_.close();
}

bool QtSerialPort::Write(std::string_view bytes) {
    if (failed_ || !port_.isOpen()) return false;
    auto size = static_cast<qint64>(bytes.size());
    return port_.write(bytes.data(), size) == size;
}

std::size_t QtSerialPort::OutBufferCount() { return static_cast<std::size_t>(port_.bytesToWrite()); }

std::string QtSerialPort::Read() {
    QByteArray bytes = port_.readAll();
    return std::string(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

LineSignals QtSerialPort::Signals() {
    QSerialPort::PinoutSignals pins = port_.pinoutSignals();
    return {pins.testFlag(QSerialPort::ClearToSendSignal), pins.testFlag(QSerialPort::DataSetReadySignal),
            pins.testFlag(QSerialPort::DataCarrierDetectSignal), pins.testFlag(QSerialPort::RingIndicatorSignal)};
}

void QtSerialPort::Pump(int ms) {
    if (!port_.isOpen()) return;
    if (port_.bytesToWrite() > 0)
        port_.waitForBytesWritten(ms);
    else
        port_.waitForReadyRead(ms);
}

}  // namespace kirvana

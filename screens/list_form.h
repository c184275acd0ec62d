// ListForm: the hidden form that carries the receive port. It listens from the start to the
// end of the process and files what arrives; SendForm borrows its port for a send.
#pragma once

#include <memory>
#include <optional>

#include "files/comms.h"
#include "screens/panel_form.h"
#include "serial/qt_serial_port.h"

namespace kirvana {

class ListForm : public PanelForm {
public:
    explicit ListForm(Panel& panel);
    // Control.cms from DataDir; a missing or unreadable file leaves the transfer off.
    void ReadSettings();
    // The receive files named and the port opened (when one is configured).
    void OpenReceivePort();
    void ClosePort();
    void CloseReceiveFile();
    // The port's receive event.
    void PortEvent();
    CommsModule* Comms() { return comms_.get(); }
    // What the start found wrong with Control.cms or the port; "" when all is well.
    const std::string& Note() const { return note_; }

protected:
    // A carrier, never a screen: shown by mistake, it goes at once.
    void showEvent(QShowEvent* event) override;

private:
    void ShowReceived();

    CommSettings settings_;
    QtSerialPort port_;
    std::unique_ptr<CommsModule> comms_;
    std::string note_;
};

}  // namespace kirvana

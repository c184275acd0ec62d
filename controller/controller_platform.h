// What the card conversation needs of the screens: the form lock, the poll timer and a wait
// that keeps the event queue running.
#pragma once

#include <string>

namespace kirvana {

class ControllerPlatform {
public:
    virtual ~ControllerPlatform() = default;
    // lock: disables every visible form but ListForm, FrontEnd, MessageForm, WarningForm and
    // `exceptForm`; unlock: enables all loaded forms.
    virtual void SetFormsLocked(bool lock, const std::string& exceptForm) = 0;
    // PTalkForm.PollTimer: enabled with the interval, or disabled.
    virtual void SetPollTimer(bool enabled, int intervalMs) = 0;
    // Arms ListForm.Timer with the interval and spins the event queue until its tick.
    virtual void WaitForTick(int ms) = 0;
};

}  // namespace kirvana

#include "controller/card_link.h"

namespace kirvana {

void CardLink::BeginOperation(int deadlineMs) {
    if (operationDepth_++ > 0) return;
    deadlineMs_ = deadlineMs;
    deadline_ = Clock::now() + std::chrono::milliseconds(deadlineMs);
    expired_ = false;
}

void CardLink::EndOperation() {
    if (operationDepth_ == 0 || --operationDepth_ > 0) return;
    deadline_.reset();
    expired_ = false;
}

void CardLink::RaiseFault(std::int32_t number, const std::string& description) {
    ++faultCount_;
    lastFault_ = CardFault{number, description};
    if (fault_) fault_(number, description);
}

void CardLink::ExpireOperation() {
    if (expired_) return;
    expired_ = true;
    RaiseFault(LinkFaultDeadline,
               "The card did not finish the operation within " + std::to_string(deadlineMs_) + " ms");
}

}  // namespace kirvana

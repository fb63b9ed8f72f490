// Whom the parts of the radio report to: the port's listener, or nobody yet.
#pragma once

#include "coupling/coupling_radio.h"

namespace wegslot::coupling {

class Teller {
public:
    void setListener(CouplingListener* listener) { listener_ = listener; }

    /// `tell(&CouplingListener::visitorCame, visitor)`
    template <typename... Parameters, typename... Arguments>
    void operator()(void (CouplingListener::*told)(Parameters...), const Arguments&... what) const {
        if (listener_ != nullptr) (listener_->*told)(what...);
    }

private:
    CouplingListener* listener_ = nullptr;
};

} // namespace wegslot::coupling

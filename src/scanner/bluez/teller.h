// Whom the parts of the adapter report to: the port's delegate, or nobody yet.
#pragma once

#include "scanner/bluetooth_central.h"

namespace wegslot::bluez {

class Teller {
public:
    void setDelegate(CentralDelegate* delegate) { delegate_ = delegate; }

    /// `tell(&CentralDelegate::didConnect, id)`
    template <typename... Parameters, typename... Arguments>
    void operator()(void (CentralDelegate::*told)(Parameters...), const Arguments&... what) const {
        if (delegate_ != nullptr) (delegate_->*told)(what...);
    }

private:
    CentralDelegate* delegate_ = nullptr;
};

} // namespace wegslot::bluez

// The advertisement under which a phone's own list shows this computer.
#pragma once

#include "coupling/bluez/served.h"
#include "dbus/bus.h"

#include <chrono>
#include <functional>
#include <string>

namespace wegslot::coupling {

class PeripheralAdvertisement {
public:
    /// Somewhat more than anybody is given to find it. BlueZ ends it then, also where nobody is
    /// left to do so.
    static constexpr std::chrono::seconds longest{150};

    static constexpr auto path = "/nl/wegslot/coupling/advertisement";

    /// Shows it on `bus` until this ends; `released` is called when BlueZ has taken it off the air.
    PeripheralAdvertisement(dbus::Bus& bus, const IsDaemon& isDaemon, const std::string& name,
                            std::function<void()> released);

private:
    Subscription shown_;
};

} // namespace wegslot::coupling

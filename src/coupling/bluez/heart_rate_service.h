// What this computer seems to offer while a phone is to find it: a heart rate monitor, because the
// lists of phones and watches show little else. It measures nothing; one of its values can only be
// read over an encrypted link, so that who reads it bonds.
#pragma once

#include "coupling/bluez/served.h"
#include "dbus/bus.h"

#include <string>
#include <vector>

namespace wegslot::coupling {

class HeartRateService {
public:
    /// The assigned number of the service, as BlueZ writes it.
    static constexpr auto uuid = "0000180d-0000-1000-8000-00805f9b34fb";

    /// The root of the objects, for `RegisterApplication`.
    static constexpr auto path = "/nl/wegslot/coupling/application";

    /// Shows them on `bus`, until this ends.
    HeartRateService(dbus::Bus& bus, const IsDaemon& isDaemon);

private:
    std::vector<Subscription> shown_;
};

} // namespace wegslot::coupling

// An advertisement monitor registered with BlueZ, for its side effect: while there is one, the
// kernel has the controller report every advertisement instead of one for each device and scan.
// What it monitors matches nobody. BlueZ offers monitors only where experimental interfaces are on.
#pragma once

#include "dbus/bus.h"

#include <functional>
#include <string>

namespace wegslot::bluez {

class AdvertisementMonitor {
public:
    /// Registers it on `adapter`. `changed` is told when BlueZ makes it active or gives it up.
    AdvertisementMonitor(dbus::Bus& bus, std::string adapter, std::function<void(bool)> changed);
    ~AdvertisementMonitor();

    AdvertisementMonitor(const AdvertisementMonitor&) = delete;
    AdvertisementMonitor& operator=(const AdvertisementMonitor&) = delete;

private:
    [[nodiscard]] dbus::Call callOf(const std::string& member) const;

    dbus::Bus& bus_;
    std::string adapter_;
    Subscription manager_;
    Subscription monitor_;
    Subscription registration_;
};

} // namespace wegslot::bluez

// Everything that advertises near the controller: devices by name, and at most one flood.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "device.h"
#include "flood.h"

namespace controller {

class Air {
public:
    using Devices = std::map<std::string, std::unique_ptr<Device>>;

    /// Replaces a device of that name, which has no link.
    void put(const std::string& name, const DeviceDescription& description, TimePoint now);

    /// Null if there is none of that name.
    Device* find(const std::string& name);

    const Devices& devices() const { return devices_; }

    void start(Flood flood) { flood_ = std::move(flood); }

    /// Null before the first flood.
    const Flood* flood() const { return flood_ ? &*flood_ : nullptr; }

    /// Brings to the controller what has fallen due.
    void act(TimePoint now, Controller& controller);

    /// When `act` is to be called next. What named devices advertise counts only while somebody
    /// listens.
    std::optional<TimePoint> nextDue(bool isHeard) const;

private:
    Devices devices_;
    std::optional<Flood> flood_;
};

} // namespace controller

// Everything that advertises near the controller: devices by name, and at most one flood.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "advertiser.h"
#include "flood.h"

namespace controller {

class Air {
public:
    /// Replaces a device of that name.
    void put(const std::string& name, Advertiser device);

    /// Null if there is none of that name.
    Advertiser* find(const std::string& name);

    void start(Flood flood) { flood_ = std::move(flood); }

    /// Null before the first flood.
    const Flood* flood() const { return flood_ ? &*flood_ : nullptr; }

    /// Brings to the controller what has fallen due.
    void advertiseDue(TimePoint now, Controller& controller);

    /// When `advertiseDue` is to be called next. Named devices count only while somebody scans.
    std::optional<TimePoint> nextDue(bool isScanned) const;

private:
    std::map<std::string, Advertiser> devices_;
    std::optional<Flood> flood_;
};

} // namespace controller

#include "air.h"

#include <algorithm>

namespace controller {

void Air::put(const std::string& name, const DeviceDescription& description, TimePoint now) {
    devices_.insert_or_assign(name, std::make_unique<Device>(description, now));
}

Device* Air::find(const std::string& name) {
    const auto found = devices_.find(name);
    return found == devices_.end() ? nullptr : found->second.get();
}

void Air::act(TimePoint now, Controller& controller) {
    if (flood_) flood_->advertiseIfDue(now, controller);
    for (const auto& [name, device] : devices_)
        device->actIfDue(now, controller);
}

std::optional<TimePoint> Air::nextDue(bool isHeard) const {
    std::optional<TimePoint> earliest;
    const auto consider = [&](TimePoint due) {
        earliest = earliest ? std::min(*earliest, due) : due;
    };
    if (flood_ && !flood_->hasEnded()) consider(flood_->due());
    for (const auto& [name, device] : devices_) {
        if (const std::optional<TimePoint> due = device->due(isHeard)) consider(*due);
    }
    return earliest;
}

} // namespace controller

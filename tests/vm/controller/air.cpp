#include "air.h"

#include <algorithm>
#include <utility>

namespace controller {

void Air::put(const std::string& name, Advertiser device) {
    devices_.insert_or_assign(name, std::move(device));
}

Advertiser* Air::find(const std::string& name) {
    const auto found = devices_.find(name);
    return found == devices_.end() ? nullptr : &found->second;
}

void Air::advertiseDue(TimePoint now, Controller& controller) {
    if (flood_) flood_->advertiseIfDue(now, controller);
    for (auto& [name, device] : devices_)
        device.advertiseIfDue(now, controller);
}

std::optional<TimePoint> Air::nextDue(bool isScanned) const {
    std::optional<TimePoint> earliest;
    const auto consider = [&](TimePoint due) {
        earliest = earliest ? std::min(*earliest, due) : due;
    };
    if (flood_ && !flood_->hasEnded()) consider(flood_->due());
    if (!isScanned) return earliest;
    for (const auto& [name, device] : devices_) {
        if (device.isLoud()) consider(device.due());
    }
    return earliest;
}

} // namespace controller

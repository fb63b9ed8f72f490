#include "advertising.h"

#include <algorithm>

namespace controller {

AdvertisingSet* Advertising::find(SetHandle handle) {
    const auto found = sets_.find(handle);
    return found == sets_.end() ? nullptr : &found->second;
}

bool Advertising::isOn() const {
    return std::any_of(sets_.begin(), sets_.end(),
                       [](const auto& each) { return each.second.isOn; });
}

std::optional<SetHandle> Advertising::connectable() const {
    const auto found = std::find_if(sets_.begin(), sets_.end(), [](const auto& each) {
        return each.second.isOn && each.second.isConnectable;
    });
    return found == sets_.end() ? std::nullopt : std::optional(found->first);
}

std::optional<TimePoint> Advertising::due() const {
    std::optional<TimePoint> earliest;
    for (const auto& [handle, set] : sets_) {
        if (set.isOn) earliest = sooner(earliest, set.end);
    }
    return earliest;
}

std::vector<SetHandle> Advertising::passTime(TimePoint now) {
    std::vector<SetHandle> over;
    for (auto& [handle, set] : sets_) {
        if (!set.isOn || !set.duration) continue;
        if (!set.end) set.end = now + *set.duration;
        if (now < *set.end) continue;
        set.isOn = false;
        over.push_back(handle);
    }
    return over;
}

} // namespace controller

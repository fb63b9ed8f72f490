#include "scanner/device_table.h"

#include <algorithm>
#include <utility>

namespace wegslot {
namespace {

// Weaker than any radio hears, so that devices without a signal come last.
constexpr Dbm unheard{-200.0};

void fillFrom(DeviceTable::Record& device, const DeviceTable::Record& other) {
    if (!device.name) device.name = other.name;
    if (!device.model) device.model = other.model;
    if (!device.continuityType) device.continuityType = other.continuityType;
    if (device.lastSeen < other.lastSeen) device.lastRSSI = other.lastRSSI;
    device.lastSeen = std::max(device.lastSeen, other.lastSeen);
    device.isHeld = device.isHeld || other.isHeld;
    device.isLogged = device.isLogged || other.isLogged;
}

} // namespace

DeviceTable::Record& DeviceTable::addSample(const Uuid& id, int rssi, TimePoint now) {
    Entry& entry = entries_[id];
    entry.samples.add(now, rssi);
    entry.device.id = id;
    entry.device.lastSeen = now;
    entry.device.lastRSSI = rssi;
    return entry.device;
}

SeenDevice* DeviceTable::find(const Uuid& id) {
    const auto found = entries_.find(id);
    return found == entries_.end() ? nullptr : &found->second.device;
}

const SeenDevice* DeviceTable::find(const Uuid& id) const {
    const auto found = entries_.find(id);
    return found == entries_.end() ? nullptr : &found->second.device;
}

std::optional<Dbm> DeviceTable::smoothedRSSI(const Uuid& id, Nanoseconds window,
                                             TimePoint now) const {
    const auto found = entries_.find(id);
    if (found == entries_.end()) return std::nullopt;
    return found->second.samples.median(now, window);
}

std::vector<SignalHistory::Sample> DeviceTable::samplesSince(const Uuid& id,
                                                             TimePoint since) const {
    const auto found = entries_.find(id);
    if (found == entries_.end()) return {};
    return found->second.samples.since(since);
}

std::vector<Uuid> DeviceTable::forgetStale(const std::set<Uuid>& watched, TimePoint now) {
    limit_ = mostDevices;
    std::vector<Uuid> forgotten;
    std::erase_if(entries_, [&](const auto& entry) {
        const auto& [id, record] = entry;
        if (now - record.device.lastSeen <= staleAge || watched.contains(id)) return false;
        forgotten.push_back(id);
        return true;
    });
    return forgotten;
}

std::vector<Uuid> DeviceTable::makeRoom(const std::function<bool(const Uuid&)>& isKept) {
    if (!isTooLarge()) return {};
    // A good many at once, or a flood would have all of them sorted for each of its devices.
    constexpr std::size_t room = mostDevices / 20;
    std::vector<std::pair<TimePoint, Uuid>> candidates;
    for (const auto& [id, entry] : entries_)
        if (entry.device.lastRSSI < nearFrom && !isKept(id))
            candidates.emplace_back(entry.device.lastSeen, id);
    const std::size_t count = std::min(candidates.size(), entries_.size() - mostDevices + room);
    std::ranges::nth_element(candidates, candidates.begin() + static_cast<std::ptrdiff_t>(count));
    std::vector<Uuid> forgotten;
    for (std::size_t i = 0; i < count; ++i) {
        forgotten.push_back(candidates[i].second);
        entries_.erase(candidates[i].second);
    }
    // Where they all count, the next look is after as many more.
    limit_ = entries_.size() <= mostDevices ? mostDevices : entries_.size() + room;
    return forgotten;
}

std::vector<SeenDevice> DeviceTable::snapshot(TimePoint now) const {
    // Sorted before they are copied, for a device is large.
    struct Ranked {
        std::optional<Dbm> rssi;
        Uuid id;
        const SeenDevice* device;
    };
    std::vector<Ranked> ranks;
    ranks.reserve(entries_.size());
    for (const auto& [id, entry] : entries_)
        ranks.push_back({entry.samples.median(now, smoothingWindow), id, &entry.device});
    std::ranges::sort(ranks, [](const Ranked& a, const Ranked& b) {
        const Dbm signalA = a.rssi.value_or(unheard);
        const Dbm signalB = b.rssi.value_or(unheard);
        return signalA != signalB ? signalA > signalB : a.id < b.id;
    });
    std::vector<SeenDevice> list;
    list.reserve(ranks.size());
    for (const Ranked& ranked : ranks) {
        list.push_back(*ranked.device);
        list.back().rssi = ranked.rssi;
    }
    return list;
}

void DeviceTable::move(const Uuid& from, const Uuid& to) {
    if (from == to) return;
    auto node = entries_.extract(from);
    if (!node) return;
    const auto found = entries_.find(to);
    if (found == entries_.end()) {
        node.key() = to;
        node.mapped().device.id = to;
        entries_.insert(std::move(node));
        return;
    }
    fillFrom(found->second.device, node.mapped().device);
    found->second.samples.merge(node.mapped().samples);
}

} // namespace wegslot

#include "tests/properties/plain_radio.h"

#include <algorithm>

namespace wegslot::oracle {
namespace {

bool accepted(int rssi) { return rssi >= -126 && rssi <= -1; }

} // namespace

void PlainRadio::advertised(const Advertisement& advertisement, TimePoint now) {
    if (advertisement.peripheralName) stackNames_[advertisement.id] = *advertisement.peripheralName;
    if (!accepted(advertisement.rssi)) return;

    std::optional<int> type;
    const auto& data = advertisement.manufacturerData;
    if (data && data->size() >= 3 && (*data)[0] == 0x4C && (*data)[1] == 0x00) type = (*data)[2];

    bool named = advertisement.localName && !advertisement.localName->empty();
    if (const auto kept = stackNames_.find(advertisement.id); kept != stackNames_.end())
        named = !kept->second.empty();

    const bool isKey = watched.contains(advertisement.id);
    const bool foreign = !type || type == 0x02;
    if (foreign && !isKey && !(includesOthers && named)) return;
    if (!foreign && !isKey && (type == 0x07 || type == 0x12)) return;
    add(advertisement.id, advertisement.rssi, now);
}

void PlainRadio::signalRead(const Uuid& id, std::optional<int> rssi, TimePoint now) {
    if (rssi && accepted(*rssi)) add(id, *rssi, now);
}

void PlainRadio::identified(const Uuid& from, const Uuid& to) {
    if (from == to) return;
    if (const auto name = stackNames_.find(from); name != stackNames_.end()) {
        stackNames_.emplace(to, name->second); // the name it has stays
        stackNames_.erase(from);
    }
    const auto moved = devices_.find(from);
    if (moved == devices_.end()) return;
    const auto [kept, isNew] = devices_.emplace(to, moved->second);
    if (!isNew) {
        auto& samples = kept->second.samples;
        samples.insert(samples.end(), moved->second.samples.begin(), moved->second.samples.end());
        // Both were the one device all along: it was heard when either was.
        kept->second.lastSeen = std::max(kept->second.lastSeen, moved->second.lastSeen);
    }
    devices_.erase(from);
}

void PlainRadio::refresh(TimePoint now) {
    std::erase_if(devices_, [&](const auto& entry) {
        return now - entry.second.lastSeen > std::chrono::seconds{120} &&
               !watched.contains(entry.first);
    });
}

std::optional<TimePoint> PlainRadio::lastSeen(const Uuid& id) const {
    const auto found = devices_.find(id);
    if (found == devices_.end()) return std::nullopt;
    return found->second.lastSeen;
}

std::optional<Dbm> PlainRadio::strength(const Uuid& id, Nanoseconds window, TimePoint now) const {
    const auto found = devices_.find(id);
    if (found == devices_.end()) return std::nullopt;
    std::vector<int> recent;
    for (const Sample& sample : found->second.samples)
        if (now - sample.time <= window) recent.push_back(sample.rssi);
    if (recent.empty()) return std::nullopt;
    std::sort(recent.begin(), recent.end());
    return Dbm{static_cast<double>(recent[recent.size() / 2])};
}

std::vector<PlainRadio::Listed> PlainRadio::list(TimePoint now) const {
    std::vector<Listed> listed;
    for (const auto& [id, device] : devices_) {
        const auto median = strength(id, std::chrono::seconds{5}, now);
        Listed entry{id, std::nullopt, device.lastSeen};
        if (median) entry.strength = median->value;
        listed.push_back(entry);
    }
    std::stable_sort(listed.begin(), listed.end(), [](const Listed& a, const Listed& b) {
        return a.strength.value_or(-200.0) > b.strength.value_or(-200.0);
    });
    return listed;
}

void PlainRadio::add(const Uuid& id, int rssi, TimePoint now) {
    Device& device = devices_[id];
    device.samples.push_back({now, rssi});
    std::erase_if(device.samples, [now](const Sample& sample) {
        return now - sample.time > std::chrono::seconds{8};
    });
    device.lastSeen = now;
}

} // namespace wegslot::oracle

#include "model/settings.h"

#include "model/remembered.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace wegslot {
namespace {

// Halves go away from zero, as people round.
Dbm whole(Dbm value) { return Dbm{std::round(value.value)}; }

Dbm startingThreshold(const std::optional<Dbm>& rssi) {
    if (!rssi) return thresholdUnheard;
    // Held within the range first and rounded after.
    return whole(thresholdFromHere(*rssi));
}

} // namespace

Settings::Settings(PreferencesStore& store)
    : list_{store},
      changesByOthers_(store.onChangeByOthers([this] { reread(); })) {
    Preferences defaults;
    visit([&defaults](const auto& setting) {
        defaults.emplace(setting.name(), setting.byDefault());
    });
    Remembered::addDefaults(defaults); // a store has one layer of them
    store.registerDefaults(std::move(defaults));
    reread();
}

const Settings& Settings::specimen() {
    static MemoryStore store;
    static const Settings settings(store);
    return settings;
}

void Settings::reread() {
    visit([](auto& setting) { setting.reread(); });
}

void Settings::assign(const Preferences& values) {
    visit([&values](auto& setting) {
        const auto found = values.find(setting.name());
        if (found != values.end()) setting.assign(found->second);
    });
}

void Settings::addKey(const SeenDevice& device) {
    auto list = keys.get();
    if (std::ranges::any_of(list, [&](const KeyDevice& key) { return key.id == device.id; }))
        return;
    list.push_back({.id = device.id,
                    .name = device.displayName().translated(), // theirs from here on
                    .model = device.model,
                    .isApple = device.isApple(),
                    .threshold = startingThreshold(device.rssi)});
    keys.set(std::move(list));
}

void Settings::insertKey(const KeyDevice& key, std::size_t place) {
    auto list = keys.get();
    if (std::ranges::find(list, key.id, &KeyDevice::id) != list.end()) return;
    const auto behind = static_cast<std::ptrdiff_t>(std::min(place, list.size()));
    list.insert(std::next(list.begin(), behind), key);
    keys.set(std::move(list));
}

void Settings::moveKey(const Uuid& from, const Uuid& to) {
    auto list = keys.get();
    const auto key = std::ranges::find(list, from, &KeyDevice::id);
    if (key == list.end()) return;
    if (std::ranges::find(list, to, &KeyDevice::id) == list.end()) {
        key->id = to;
    } else {
        list.erase(key);
    }
    keys.set(std::move(list));
}

void Settings::setThreshold(Dbm value, const Uuid& id) {
    auto list = keys.get();
    const auto key =
        std::ranges::find_if(list, [&id](const KeyDevice& entry) { return entry.id == id; });
    if (key == list.end()) return;
    key->threshold = whole(value);
    keys.set(std::move(list));
}

void Settings::removeKey(const Uuid& id) {
    auto list = keys.get();
    std::erase_if(list, [&id](const KeyDevice& key) { return key.id == id; });
    keys.set(std::move(list));
}

} // namespace wegslot

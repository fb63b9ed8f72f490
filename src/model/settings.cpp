#include "model/settings.h"

#include "model/key_codec.h"

#include <algorithm>
#include <cmath>

namespace wegslot {
namespace {

// Halves go away from zero, as people round.
Dbm whole(Dbm value) { return Dbm{std::round(value.value)}; }

Dbm startingThreshold(const std::optional<Dbm>& rssi) {
    constexpr Dbm withoutSignal{-75.0};
    if (!rssi) return withoutSignal;
    // Held within the range first and rounded after.
    return whole(Dbm{std::clamp(rssi->value - 15.0, -90.0, -65.0)});
}

PreferencesStore& withDefaults(PreferencesStore& store) {
    store.registerDefaults({
        {"enabled", true},
        {"rule", std::string(storedText(LockRule::allAway))},
        {"awayDelay", 5.0},
        {"lostTimeout", 15.0},
        {"warningEnabled", true},
        {"warningSeconds", 5.0},
        {"pauseDuringMeetings", true},
        {"pauseWhileActive", true},
        {"showOtherDevices", false},
    });
    return store;
}

Setting<bool> switchSetting(PreferencesStore& store, const char* name) {
    return {[&store, name] { return store.boolean(name); },
            [&store, name](bool value) { store.write(name, value); }};
}

Setting<Seconds> durationSetting(PreferencesStore& store, const char* name) {
    return {[&store, name] { return Seconds{store.number(name)}; },
            [&store, name](Seconds value) { store.write(name, value.count()); }};
}

Setting<LockRule> ruleSetting(PreferencesStore& store, const char* name) {
    return {[&store, name] {
                return lockRule(store.text(name).value_or("")).value_or(LockRule::allAway);
            },
            [&store, name](LockRule rule) { store.write(name, std::string(storedText(rule))); }};
}

Setting<std::vector<KeyDevice>> keysSetting(PreferencesStore& store, const char* name) {
    return {[&store, name] {
                const auto stored = store.data(name);
                auto keys = stored ? decodeKeys(stored->bytes) : std::nullopt;
                return std::move(keys).value_or(std::vector<KeyDevice>{});
            },
            [&store, name](const std::vector<KeyDevice>& list) {
                if (auto bytes = encodeKeys(list)) store.write(name, Data{*std::move(bytes)});
            }};
}

} // namespace

Settings::Settings(PreferencesStore& store)
    : store_(withDefaults(store)),
      enabled(switchSetting(store_, "enabled")),
      keys(keysSetting(store_, "keys")),
      rule(ruleSetting(store_, "rule")),
      awayDelay(durationSetting(store_, "awayDelay")),
      lostTimeout(durationSetting(store_, "lostTimeout")),
      warningEnabled(switchSetting(store_, "warningEnabled")),
      warningSeconds(durationSetting(store_, "warningSeconds")),
      pauseDuringMeetings(switchSetting(store_, "pauseDuringMeetings")),
      pauseWhileActive(switchSetting(store_, "pauseWhileActive")),
      showOtherDevices(switchSetting(store_, "showOtherDevices")),
      changesByOthers_(store_.onChangeByOthers([this] { reread(); })) {}

void Settings::reread() {
    enabled.reread();
    keys.reread();
    rule.reread();
    awayDelay.reread();
    lostTimeout.reread();
    warningEnabled.reread();
    warningSeconds.reread();
    pauseDuringMeetings.reread();
    pauseWhileActive.reread();
    showOtherDevices.reread();
}

void Settings::addKey(const SeenDevice& device) {
    auto list = keys.get();
    if (std::ranges::any_of(list, [&](const KeyDevice& key) { return key.id == device.id; }))
        return;
    list.push_back({.id = device.id,
                    .name = device.displayName(),
                    .model = device.model,
                    .isApple = device.isApple(),
                    .threshold = startingThreshold(device.rssi)});
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

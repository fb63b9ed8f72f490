// What the user chooses in a life: keys, rule, durations and switches, all while it runs.
#include "tests/properties/life.h"

#include "tests/support/world.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <utility>

namespace wegslot {

std::vector<KeyDevice> Life::randomKeys() {
    constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
    std::vector<KeyDevice> keys;
    const int count = dice_.pick({1, 1, 1, 2, 2, 3, 4});
    for (int i = 0; i < count; ++i) {
        // Mostly of the first six, which are carried.
        const auto last = dice_.chance(95) ? 6U : devices_.size();
        const Device& device = devices_[dice_.below(last)];
        const bool listed =
            std::ranges::any_of(keys, [&](const KeyDevice& key) { return key.id == device.id; });
        if (listed) continue;
        const auto threshold = dice_.pick<double>({-75, -75, -70, -80, -65.5, -90});
        keys.push_back({.id = device.id,
                        .name = dice_.pick({"iPhone", "Horloge", "Sleutelbos", "Tag", ""}),
                        .model = std::nullopt,
                        .isApple = dice_.pick<std::optional<bool>>({true, false, std::nullopt}),
                        .threshold = Dbm{dice_.below(50) == 0 ? noNumber : threshold}});
    }
    return keys;
}

Seconds Life::randomDuration(double usual) {
    constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    if (dice_.chance(55)) return Seconds{usual};
    if (dice_.chance(70)) return Seconds{dice_.pick({0.0, 1.0, 2.0, 3.0, 7.5, 0.1 + 0.2, 12.0})};
    return Seconds{dice_.pick({-1.0, -0.3, 1e300, -1e300, noNumber, infinity, 1e-10, 0.5})};
}

void Life::enabledAssigned() {
    // Off for a short while only: nothing happens meanwhile.
    const bool enabled = !choices_.enabled || dice_.chance(30);
    compare(
        Invariants::Actor::other, [&] { stage_.settings().enabled.set(enabled); },
        [&](oracle::State state, const oracle::Inputs& now) {
            return oracle::enabledAssigned(std::move(state), now, enabled);
        });
    readChoices();
    if (!enabled)
        agenda_.emplace(stage_.elapsed() + dice_.between(100, 10000) * std::chrono::milliseconds{1},
                        Answer{"enabled", Uuid{}});
}

void Life::changeKeys(const std::function<void()>& change) {
    const auto toConnect = [this] {
        std::set<Uuid> ids;
        for (const KeyDevice& key : choices_.keys)
            if (key.isApple != false) ids.insert(key.id);
        return ids;
    };
    const auto before = toConnect();
    undisturbed(change);
    invariants_.keysChanged();
    readChoices();
    if (toConnect() != before) expectKeysConnected();
    for (const KeyDevice& key : choices_.keys)
        tell("  key " + std::to_string(key.id.bytes[15]) +
             (key.isApple == false ? " is only listened to" : ""));
}

void Life::keysReplaced() {
    auto keys = randomKeys();
    if (dice_.chance(10)) keys.clear();
    changeKeys([&] { stage_.settings().keys.set(std::move(keys)); });
}

void Life::keyAdded() {
    const auto& list = stage_.scanner().snapshot().get();
    if (list.empty() || choices_.keys.size() >= 4) return;
    const SeenDevice device = list[dice_.below(list.size())];
    changeKeys([&] { stage_.settings().addKey(device); });
}

void Life::keyRemoved() {
    const Uuid id = choices_.keys.empty() || dice_.chance(10)
                        ? someDevice().id
                        : choices_.keys[dice_.below(choices_.keys.size())].id;
    changeKeys([&] { stage_.settings().removeKey(id); });
}

void Life::thresholdAssigned() {
    const Uuid id = choices_.keys.empty() ? someDevice().id
                                          : choices_.keys[dice_.below(choices_.keys.size())].id;
    // Often the strength itself, so that the bound is met.
    double threshold = dice_.pick({-70.0, -75.0, -80.5, -60.0, -20.0, -100.0, -130.0});
    const auto strength =
        radio_.strength(id, std::chrono::seconds{5}, stage_.time.now()).value_or(Dbm{threshold});
    if (dice_.chance(50)) threshold = strength.value;
    changeKeys([&] { stage_.settings().setThreshold(Dbm{threshold}, id); });
}

void Life::ruleAssigned() {
    const auto rule = dice_.pick({LockRule::allAway, LockRule::anyAway});
    undisturbed([&] { stage_.settings().rule.set(rule); });
    readChoices();
}

void Life::delayAssigned() {
    const Seconds duration = randomDuration(5);
    undisturbed([&] { stage_.settings().awayDelay.set(duration); });
    readChoices();
}

void Life::timeoutAssigned() {
    const Seconds duration = randomDuration(15);
    undisturbed([&] { stage_.settings().lostTimeout.set(duration); });
    readChoices();
}

void Life::warningAssigned() {
    const bool on = dice_.chance(70);
    undisturbed([&] { stage_.settings().warningEnabled.set(on); });
    readChoices();
}

void Life::warningSecondsAssigned() {
    const Seconds duration = randomDuration(5);
    undisturbed([&] { stage_.settings().warningSeconds.set(duration); });
    readChoices();
}

void Life::meetingsAssigned() {
    const bool on = dice_.chance(70);
    undisturbed([&] { stage_.settings().pauseDuringMeetings.set(on); });
    readChoices();
}

void Life::activityAssigned() {
    const bool on = dice_.chance(70);
    undisturbed([&] { stage_.settings().pauseWhileActive.set(on); });
    readChoices();
}

void Life::othersAssigned() {
    const bool on = dice_.chance(50);
    undisturbed([&] { stage_.settings().showOtherDevices.set(on); });
    readChoices();
}

void Life::discoverySwitched() {
    const bool active = dice_.chance(65);
    invariants_.discovery(active, stage_.elapsed());
    undisturbed([&] { stage_.scanner().setDiscoveryActive(active); });
}

} // namespace wegslot

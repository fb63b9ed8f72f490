// Random lives in virtual time, and the history that is kept of them: keys that come, go, weaken
// and fall silent, hands, calls, locks that come or do not, pauses, settings that change.
#pragma once

#include "history/keeper.h"
#include "history/stretch.h"
#include "tests/support/dice.h"
#include "tests/support/world.h"

#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace wegslot {

/// The history as it would be read back.
class MemoryHistory final : public history::HistoryStore {
public:
    void keep(history::Minute minute) override {
        // In place of what there is of the same minute.
        if (!minutes.empty() && minutes.back().start == minute.start) minutes.pop_back();
        minutes.push_back(std::move(minute));
    }

    std::vector<history::Minute> minutes;
};

class LivedHistory {
public:
    static constexpr unsigned mostKeys = 3;

    explicit LivedHistory(std::uint64_t seed) : dice_(seed) {
        world.model.emplace(AppModel::Surroundings{
            .preferences = world.store,
            .central = world.central,
            .platform = {world.time, world.time, world.session, noted, world.platform.lock},
            .makeHud = world.surroundings().makeHud});
        world.onLock = [this] { locked(); };
    }

    ~LivedHistory() {
        keeper.reset();
        world.model.reset();
    }

    LivedHistory(const LivedHistory&) = delete;
    LivedHistory& operator=(const LivedHistory&) = delete;

    /// With the keys numbered 1 to `count`, from the next instant on.
    void begin(unsigned count) {
        std::vector<KeyDevice> keys;
        for (unsigned number = 1; number <= count; ++number)
            keys.push_back(keyNamed("Telefoon", number));
        world.settings().keys.set(keys);
        keeper.emplace(history::Keeper::Surroundings{
            .settings = world.settings(),
            .scanner = world.scanner(),
            .monitor = world.monitor(),
            .clock = world.time,
            .session = world.session,
            .activity = noted,
            .rowOf = [](const Uuid& id) { return 100 + id.bytes.back(); },
            .store = store});
        keeper->setKeeping(true);
        world.central.setState(CentralState::poweredOn);
        devices_.resize(count);
        world.time.advance(std::chrono::milliseconds{7});
    }

    /// A life of random length and content up to `duration` from now.
    void live(Nanoseconds duration) {
        const TimePoint end = world.time.now() + duration;
        while (world.time.now() < end) {
            for (unsigned number = 1; number <= devices_.size(); ++number)
                send(number);
            if (dice_.chance(1)) change();
            world.time.advance(std::chrono::milliseconds{dice_.between(20, 400)});
            // Nothing happens in the very millisecond of a judgement: what came first is not kept.
            if ((world.time.now() - World::start) % std::chrono::seconds{1} == Nanoseconds{0})
                world.time.advance(std::chrono::milliseconds{1});
            screen();
        }
    }

    /// What was kept until now.
    [[nodiscard]] std::vector<history::Minute> kept() {
        keeper->setKeeping(false);
        return store.minutes;
    }

    World world;
    history::NotedActivity noted{world.activity};
    MemoryHistory store;
    std::optional<history::Keeper> keeper;

private:
    struct Device {
        int level = -55; ///< dBm
        bool isSilent = false;
        TimePoint until;
        TimePoint next;
    };

    void send(unsigned number) {
        Device& device = devices_[number - 1];
        const TimePoint now = world.time.now();
        if (now >= device.until) {
            device.until = now + std::chrono::seconds{dice_.between(2, 60)};
            device.isSilent = dice_.chance(20);
            device.level = dice_.pick({-45, -55, -55, -65, -73, -75, -77, -88});
        }
        if (device.isSilent || now < device.next) return;
        device.next = now + std::chrono::milliseconds{dice_.pick({50, 300, 1000, 3000})};
        world.hear(number, device.level + dice_.between(-4, 4));
    }

    void locked() {
        if (dice_.chance(85))
            locksAt_ = world.time.now() + std::chrono::milliseconds{dice_.between(50, 3000)};
    }

    void screen() {
        const TimePoint now = world.time.now();
        if (locksAt_ && now >= *locksAt_) {
            locksAt_.reset();
            world.session.tell(SessionEvent::locked);
            unlocksAt_ = now + std::chrono::seconds{dice_.between(1, 90)};
        }
        if (unlocksAt_ && now >= *unlocksAt_) {
            unlocksAt_.reset();
            if (dice_.chance(90)) world.activity.touch();
            world.session.tell(SessionEvent::unlocked);
        }
    }

    void change() {
        Settings& settings = world.settings();
        Monitor& monitor = world.monitor();
        switch (dice_.between(0, 15)) {
        case 0:
            return settings.awayDelay.set(Seconds{dice_.pick({0.0, 2.0, 5.0, 11.0})});
        case 1:
            return settings.lostTimeout.set(Seconds{dice_.pick({5.0, 15.0, 30.0})});
        case 2:
            return settings.rule.set(dice_.pick({LockRule::allAway, LockRule::anyAway}));
        case 3:
            return settings.warningEnabled.set(dice_.chance(70));
        case 4:
            return settings.setThreshold(Dbm{static_cast<double>(dice_.between(-85, -60))},
                                         numbered(static_cast<unsigned>(dice_.between(1, 3))));
        case 5:
            return world.activity.setCamera(dice_.chance(50));
        case 6:
            return world.activity.setMicrophone(dice_.chance(50) ? std::optional("Bellen")
                                                                 : std::nullopt);
        case 7:
            if (dice_.chance(70)) return;
            return monitor.pause(Seconds{dice_.pick({3.0, 30.0, 200.0})});
        case 8:
            return monitor.resume();
        case 9:
            return monitor.cancelWarning();
        case 10:
            if (dice_.chance(80)) return;
            return monitor.lockNow();
        case 11:
            if (dice_.chance(80)) return;
            return settings.enabled.set(!settings.enabled.get());
        case 12:
            if (dice_.chance(80)) return;
            return world.central.setState(dice_.chance(70) ? CentralState::poweredOn
                                                           : CentralState::poweredOff);
        case 13:
            if (dice_.chance(90)) return;
            return world.time.sleep(std::chrono::seconds{dice_.between(2, 200)});
        default:
            return world.activity.touch();
        }
    }

    Dice dice_;
    std::vector<Device> devices_;
    std::optional<TimePoint> locksAt_;
    std::optional<TimePoint> unlocksAt_;
};

} // namespace wegslot

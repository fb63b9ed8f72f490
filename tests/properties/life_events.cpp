// What happens in a life by itself: devices that are heard, a user who walks and types, a screen
// that is locked, a clock that is set.
#include "tests/properties/life.h"

#include "tests/support/world.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace wegslot {
namespace {

using namespace std::chrono_literals;

// Weaker than a radio hears.
constexpr double outOfReach = -92;

Nanoseconds seconds(int count) { return std::chrono::seconds{count}; }

} // namespace

void Life::settleIn() {
    const auto type = [this]() -> std::optional<std::uint8_t> {
        return dice_.pick<std::optional<std::uint8_t>>(
            {0x10, 0x10, 0x0C, std::nullopt, std::nullopt, 0x02, 0x07, 0x12});
    };
    const auto name = [this](unsigned number) {
        return dice_.chance(60) ? "Apparaat " + std::to_string(number) : std::string();
    };
    for (unsigned number = 1; number <= 6; ++number)
        devices_.push_back({.id = numbered(number),
                            .name = name(number),
                            .type = type(),
                            .carried = dice_.chance(75),
                            .offset = dice_.between(0, 14)});
    for (unsigned number = 11; number <= 16; ++number)
        devices_.push_back({.id = numbered(number),
                            .name = name(number),
                            .type = type(),
                            .offset = dice_.between(-5, 40)});

    // Some lives are quiet but for the walking, so that long stories come to their end.
    const unsigned unrest = dice_.pick<unsigned>({1, 1, 4, 12});
    kinds_ = {{"key heard", 3200, &Life::hearKey},
              {"heard", 1200, &Life::hear},
              {"signal read", 200, &Life::signalRead},
              {"touch", 400, &Life::touch},
              {"ask", 500, &Life::ask},
              {"radio", 4 * unrest, &Life::radioChanges},
              {"screen locks", 3 * unrest, &Life::screenLocks},
              {"screen unlocks", 3 * unrest, &Life::screenUnlocks},
              {"camera", 8 * unrest, &Life::camera},
              {"microphone", 8 * unrest, &Life::microphone},
              {"pause", 4 * unrest, &Life::pause},
              {"resume", 5 * unrest, &Life::resume},
              {"panel cancelled", 5 * unrest, &Life::panelCancelled},
              {"cancel", 3 * unrest, &Life::cancelWarning},
              {"lock now", 3 * unrest, &Life::lockNow},
              {"wall clock", 4 * unrest, &Life::wallClockSteps},
              {"sleep", 2 * unrest, &Life::sleeps},
              {"enabled", 3 * unrest, &Life::enabledAssigned},
              {"keys replaced", 3 * unrest, &Life::keysReplaced},
              {"key added", 3 * unrest, &Life::keyAdded},
              {"key removed", 2 * unrest, &Life::keyRemoved},
              {"threshold", 5 * unrest, &Life::thresholdAssigned},
              {"rule", 5 * unrest, &Life::ruleAssigned},
              {"away delay", 4 * unrest, &Life::delayAssigned},
              {"lost timeout", 4 * unrest, &Life::timeoutAssigned},
              {"warning", 4 * unrest, &Life::warningAssigned},
              {"warning seconds", 4 * unrest, &Life::warningSecondsAssigned},
              {"meetings", 4 * unrest, &Life::meetingsAssigned},
              {"activity", 6 * unrest, &Life::activityAssigned},
              {"others", 4 * unrest, &Life::othersAssigned},
              {"discovery", 8 * unrest, &Life::discoverySwitched},
              {"unasked report", 12 * unrest, &Life::unaskedReport},
              {"identity", 3 * unrest, &Life::identityLearned}};

    if (scope_ == Scope::traceable)
        std::erase_if(kinds_, [](const Kind& kind) {
            return kind.happens == &Life::sleeps || kind.happens == &Life::wallClockSteps;
        });

    const int length = dice_.between(1, 10);
    end_ = seconds(120 + dice_.between(0, length == 10 ? 1080 : length > 6 ? 360 : 120));

    Settings& settings = stage_.makeModel().settings();
    settings.keys.set(randomKeys());
    settings.rule.set(dice_.pick({LockRule::allAway, LockRule::anyAway}));
    settings.awayDelay.set(randomDuration(5));
    settings.lostTimeout.set(randomDuration(15));
    settings.warningSeconds.set(randomDuration(5));
    settings.warningEnabled.set(dice_.chance(75));
    settings.pauseDuringMeetings.set(dice_.chance(75));
    settings.pauseWhileActive.set(dice_.chance(75));
    settings.showOtherDevices.set(dice_.chance(30));
    // A replay makes both at once.
    if (scope_ == Scope::anything) stage_.time.advance(Nanoseconds{dice_.below(3'000'000'000)});

    // Before the monitor, so that what changes is known when the monitor acts on it.
    keysSubscription_ =
        settings.keys.follow([this](const auto& keys) { invariants_.keysChange(keys); });
    readChoices();
    monitorMade_ = stage_.elapsed();
    stage_.makeMonitor();
    invariants_.keysChanged();
    state_ = {};
    undisturbed([this] {
        const oracle::Outcome started = oracle::start(inputs());
        if (stage_.effects != started.effects) fault("it starts in another way");
        stage_.effects.clear();
    });
    nextEvent_ = stage_.elapsed();
    agenda_.emplace(nextEvent_ + dice_.between(0, 2500) * 1ms, Answer{"radioOn", Uuid{}});
}

void Life::happen() {
    live();
    unsigned total = 0;
    for (const Kind& kind : kinds_)
        total += kind.weight;
    auto drawn = static_cast<unsigned>(dice_.below(total));
    for (const Kind& kind : kinds_) {
        if (drawn < kind.weight) {
            tell(std::string(kind.name));
            return (this->*kind.happens)();
        }
        drawn -= kind.weight;
    }
}

// The user sits, walks off, stays away and returns, a few decibels with every step.
void Life::live() {
    const Nanoseconds now = stage_.elapsed();
    if (now >= moodUntil_) {
        switch (mood_) {
        case Mood::atDesk:
            mood_ = Mood::leaving;
            break;
        case Mood::leaving:
            mood_ = Mood::away;
            break;
        case Mood::away:
            mood_ = Mood::returning;
            break;
        case Mood::returning:
            mood_ = Mood::atDesk;
            break;
        }
        moodUntil_ = now + dice_.between(2000, dice_.chance(20) ? 90000 : 30000) * 1ms;
    }
    switch (mood_) {
    case Mood::atDesk:
        place_ = -50;
        break;
    case Mood::leaving:
        place_ = std::max(place_ - dice_.between(0, 5), -88.0);
        break;
    case Mood::away:
        place_ = std::max(place_ - dice_.between(0, 5), -105.0);
        break;
    case Mood::returning:
        place_ = std::min(place_ + dice_.between(0, 6), -50.0);
        break;
    }
}

int Life::strengthOf(const Device& device) {
    const double place = device.carried ? place_ : -55;
    return static_cast<int>(std::lround(place)) - device.offset + dice_.between(-6, 6);
}

void Life::hearKey() {
    if (choices_.keys.empty()) return hear();
    const auto number = dice_.below(choices_.keys.size());
    hearDevice(deviceOf(choices_.keys[number].id));
}

void Life::hear() { hearDevice(someDevice()); }

void Life::hearDevice(Device& device) {
    if (stage_.elapsed() < device.silentUntil) return;
    if (dice_.below(400) == 0) {
        device.silentUntil = stage_.elapsed() + seconds(dice_.between(3, 150));
        return;
    }
    if (device.carried && place_ < outOfReach && !dice_.chance(5)) return;
    if (radioState_ != CentralState::poweredOn && !dice_.chance(10)) return;

    const int rssi =
        dice_.chance(1) ? dice_.pick({127, 0, -1, -126, -127, 20}) : strengthOf(device);
    std::optional<std::uint8_t> type = device.type;
    if (type && dice_.chance(2)) type = dice_.pick<std::uint8_t>({0x02, 0x07, 0x10});
    const auto data = appleData(type.value_or(0));
    Advertisement advertisement{.id = device.id, .rssi = rssi};
    if (type) advertisement.manufacturerData = data;
    if (dice_.chance(10)) advertisement.peripheralName = device.name;
    if (dice_.chance(30)) advertisement.localName = device.name;
    tell("  device " + std::to_string(device.id.bytes[15]) + " at " + std::to_string(rssi));

    if (type && type != 0x02) invariants_.heardOfMaker(device.id);
    radio_.advertised(advertisement, stage_.time.now());
    undisturbed([&] { stage_.central.advertise(advertisement); });
}

void Life::signalRead() {
    const Device& device = someDevice();
    if (device.carried && place_ < outOfReach) return;
    const int rssi = strengthOf(device);
    radio_.signalRead(device.id, rssi, stage_.time.now());
    undisturbed([&] { stage_.central.rssiRead(device.id, rssi); });
}

void Life::radioChanges() {
    const auto state =
        dice_.pick({CentralState::poweredOn, CentralState::poweredOff, CentralState::resetting,
                    CentralState::unauthorized, CentralState::unsupported, CentralState::unknown});
    const auto authorization =
        dice_.pick({CentralAuthorization::allowedAlways, CentralAuthorization::allowedAlways,
                    CentralAuthorization::notDetermined, CentralAuthorization::denied,
                    CentralAuthorization::restricted});
    setRadio(state, authorization);
    if (state != CentralState::poweredOn)
        agenda_.emplace(stage_.elapsed() + dice_.between(100, 20000) * 1ms,
                        Answer{"radioOn", Uuid{}});
}

void Life::setRadio(CentralState state, CentralAuthorization authorization) {
    tell("  radio state " + std::to_string(static_cast<int>(state)) + ", authorization " +
         std::to_string(static_cast<int>(authorization)));
    radioState_ = state;
    authorization_ = authorization;
    undisturbed([&] { stage_.central.setState(state, authorization); });
    expectKeysConnected();
}

void Life::screenLocks() {
    compare(
        Invariants::Actor::other, [this] { stage_.session.tell(SessionEvent::locked); },
        [](oracle::State state, const oracle::Inputs& now) {
            return oracle::screenLocked(std::move(state), now);
        });
    if (dice_.chance(90))
        agenda_.emplace(stage_.elapsed() + dice_.between(500, 30000) * 1ms,
                        Answer{"screenUnlocks", Uuid{}});
}

void Life::screenUnlocks() {
    compare(
        Invariants::Actor::other, [this] { stage_.session.tell(SessionEvent::unlocked); },
        [](oracle::State state, const oracle::Inputs& now) {
            return oracle::screenUnlocked(std::move(state), now);
        });
}

void Life::touch() {
    if (mood_ == Mood::away && !dice_.chance(6)) return;
    lastInput_ = stage_.time.now();
    stage_.activity.touch();
}

void Life::camera() {
    camera_ = !camera_ && dice_.chance(50);
    stage_.activity.setCamera(camera_);
}

void Life::microphone() {
    const bool used = !microphone_ && dice_.chance(50);
    microphone_ =
        used ? std::optional<std::string>(dice_.pick({"Vergaderen", "Opname", ""})) : std::nullopt;
    stage_.activity.setMicrophone(microphone_);
}

void Life::pause() {
    constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
    const Seconds duration{dice_.pick<double>(
        {3600, 900, 60, 60, 30, 20, 10, 10, 5, 2.5, 1, 0.4, 0, -5, noNumber, 1e300, -1e300})};
    tell("  of " + std::to_string(duration.count()) + " s");
    compare(
        Invariants::Actor::tick, [&] { stage_.monitor().pause(duration); },
        [&](oracle::State state, const oracle::Inputs& now) {
            return oracle::pause(std::move(state), now, duration);
        });
}

void Life::resume() {
    compare(
        Invariants::Actor::tick, [this] { stage_.monitor().resume(); },
        [](oracle::State state, const oracle::Inputs& now) {
            return oracle::resume(std::move(state), now);
        });
}

// Also a panel that has gone: its button may have been pressed just before.
void Life::panelCancelled() {
    if (!stage_.cancel) return;
    compare(
        Invariants::Actor::other, [this] { stage_.cancel(); },
        [](oracle::State state, const oracle::Inputs& now) {
            return oracle::cancelWarning(std::move(state), now);
        });
}

void Life::cancelWarning() {
    compare(
        Invariants::Actor::other, [this] { stage_.monitor().cancelWarning(); },
        [](oracle::State state, const oracle::Inputs& now) {
            return oracle::cancelWarning(std::move(state), now);
        });
}

void Life::lockNow() {
    compare(
        Invariants::Actor::person, [this] { stage_.monitor().lockNow(); },
        [](oracle::State state, const oracle::Inputs& now) {
            return oracle::lockNow(std::move(state), now);
        });
}

// Looks further back than the monitor ever does.
void Life::ask() {
    const Uuid id = someDevice().id;
    const Nanoseconds window =
        dice_.pick<Nanoseconds>({0s, 1s, 5s, 5s, 5010ms, 7999ms, 8s, 8500ms, 9s, 20s, 20s, -1s});
    const TimePoint now = stage_.time.now();
    if (stage_.scanner().lastSeen(id) != radio_.lastSeen(id))
        fault("device " + std::to_string(id.bytes[15]) + " was heard at another time");
    if (stage_.scanner().smoothedRSSI(id, window) != radio_.strength(id, window, now))
        fault("device " + std::to_string(id.bytes[15]) + " has another signal");
}

void Life::wallClockSteps() { stage_.stepWallClock(dice_.between(-5000, 5000) * 1000003us); }

void Life::sleeps() {
    const Nanoseconds duration =
        dice_.pick<Nanoseconds>({1s, 5s, 14s, 40s, 121s, 590s, 600s, 3600s, 12345678901ns});
    tell("  for " + std::to_string(duration / 1s) + " s");
    stage_.sleep(duration);
}

} // namespace wegslot

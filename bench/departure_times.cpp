// How long it takes to notice: from a key's last strong packet to `leaving`, to the warning and to
// the lock; from an unlock with the key on the desk until it guards again; from the return of a key
// that was away to `present`. In virtual time, with the default settings, a thousand departures for
// each way in which a key is followed. The key sends every 0.5 s and is gone at once, each time at
// another moment.
//
// Prints a line for each of the times: how the key is followed, which time, and in seconds the
// median, the 99th percentile, the longest, and the longest that the rules allow when reports are
// read late.
#include "core/app_model.h"
#include "stage/staged_platform.h"
#include "tests/support/captured_log.h"
#include "tests/support/fake_central.h"
#include "tests/support/world.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

constexpr int departures = 1000;
constexpr Nanoseconds interval = 500ms; ///< between two advertisements of the key
constexpr Nanoseconds startUp = 50ms;   ///< of a scan
constexpr Nanoseconds reading = 100ms;  ///< at most, while the bus is busy
constexpr Nanoseconds step = 10ms;      ///< between two looks at the phase

struct Case {
    const char* name;
    bool connected;
    bool listOpen;
    bool filtersDuplicates;
};

/// Seconds each.
struct Times {
    std::vector<double> toLeaving;
    std::vector<double> toWarning;
    std::vector<double> toLock;
    std::vector<double> toArmed;
    std::vector<double> toPresent;
};

class Home {
public:
    Home(const Case& what, std::uint64_t seed)
        : radio_(
              time_,
              {.filtersDuplicates = what.filtersDuplicates, .startUp = startUp, .reading = reading},
              seed),
          model_({store_, radio_, platform_.ports,
                  [] { return std::make_unique<StagedHud>([](const Warning*) {}); }}) {
        KeyDevice key = keyNamed("Telefoon", 1);
        key.isApple = what.connected; // those are the ones that are connected
        model_.settings().keys.set({key});
        static_cast<void>(model_.monitor());
        radio_.add(numbered(1),
                   {.identity = DeviceSpec::Identity::bonded, .rssi = -50, .interval = interval});
        radio_.setPowered(true);
        time_.advance(20s);
        if (what.listOpen) model_.scanner().setDiscoveryActive(true);
    }

    void depart(Nanoseconds phase, Times& times) {
        time_.advance(20s + phase);
        const TimePoint gone = time_.now();
        radio_.silence(numbered(1));
        times.toLeaving.push_back(until<phase::Leaving>(gone));
        times.toWarning.push_back(until<phase::Warning>(gone));
        times.toLock.push_back(until<phase::Locked>(gone));
        platform_.session.tell(SessionEvent::locked);

        // Its owner comes back, sits down for a while and unlocks.
        time_.advance(30s + 3 * phase);
        radio_.speak(numbered(1));
        time_.advance(10s + phase);
        const TimePoint unlocked = time_.now();
        platform_.session.tell(SessionEvent::unlocked);
        times.toArmed.push_back(until<phase::Present>(unlocked));

        // Away once more, and the warning is cancelled by one who stayed.
        radio_.silence(numbered(1));
        static_cast<void>(until<phase::Warning>(time_.now()));
        model_.monitor().cancelWarning();
        time_.advance(5s + phase);
        const TimePoint back = time_.now();
        radio_.speak(numbered(1));
        times.toPresent.push_back(until<phase::Present>(back));
    }

private:
    template <typename Phase>
    double until(TimePoint since) {
        while (!is<Phase>(model_.monitor().phase().get()) && time_.now() < since + 10min)
            time_.advance(step);
        return Seconds(time_.now() - since).count();
    }

    CapturedLog log_;
    VirtualTime time_{World::start};
    MemoryStore store_;
    StagedPlatform platform_{time_, time_};
    FakeCentral radio_;
    AppModel model_;
};

void print(const Case& followed, const char* what, std::vector<double> values,
           Nanoseconds allowed) {
    std::ranges::sort(values);
    const auto at = [&values](double part) {
        return values[static_cast<std::size_t>(part * static_cast<double>(values.size() - 1))];
    };
    std::printf("%s\t%s\t%.2f %.2f %.2f %.2f\n", followed.name, what, at(0.5), at(0.99), at(1),
                Seconds(allowed + step).count());
}

/// Beside what the rules allow and the reading adds: at least until the next tick, and as whole
/// ticks from there.
void print(const Case& followed, const Times& times) {
    MemoryStore store;
    const Settings defaults(store);
    constexpr Nanoseconds tick = Monitor::tickInterval;
    // For so long a key seems to be heard that is not.
    const Nanoseconds after = followed.connected ? FakeCentral::supervision : reading;
    const Nanoseconds leaving = after + DeviceTable::smoothingWindow + tick;
    const Nanoseconds warning = leaving + rounded(defaults.awayDelay.get());
    // A key whose link has to be made sends once more after it was heard.
    const Nanoseconds sends = interval + FakeCentral::longestDelay;
    const Nanoseconds heard = startUp + sends * (followed.connected ? 2 : 1);
    print(followed, "leaving", times.toLeaving, leaving);
    print(followed, "warning", times.toWarning, warning);
    print(followed, "lock", times.toLock, warning + rounded(defaults.warningSeconds.get()));
    print(followed, "armed", times.toArmed, tick);
    print(followed, "present", times.toPresent, heard + tick);
}

} // namespace

int main() {
    constexpr std::array cases{
        Case{"connected", true, false, true},
        Case{"bursts, the controller filters duplicates", false, false, true},
        Case{"bursts, it does not", false, false, false},
        Case{"list open, it filters", false, true, true},
        Case{"list open, it does not", false, true, false},
    };
    for (const Case& what : cases) {
        Times times;
        for (int departure = 0; departure < departures; ++departure) {
            Home home(what, static_cast<std::uint64_t>(departure) + 1);
            home.depart(std::chrono::milliseconds{departure * 7 % 5003}, times);
        }
        print(what, times);
    }
    return 0;
}

// Whether the core grows: its memory over hours of virtual time at 100 advertisements a second,
// with strangers that come and go and a key that leaves, is locked for, and returns every hour.
// `virtual_day [HOURS [NEWCOMERS]]`, the latter an hour, prints a line an hour: the hour, bytes in
// use, bytes resident, times locked so far.

#include "base/virtual_time.h"
#include "bench/passing_radio.h"
#include "bench/spread_id.h"
#include "core/app_model.h"
#include "hud/hidden_hud.h"
#include "log/log.h"
#include "stage/staged_platform.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <malloc.h>
#include <unistd.h>

namespace {

using namespace wegslot;
using bench::PassingRadio;
using bench::spreadId;
using namespace std::chrono_literals;

constexpr std::uint64_t keys = 3;
constexpr std::uint64_t present = 300;
constexpr auto interval = 10ms; // 100 a second
constexpr std::uint64_t reportsAnHour = 360000;
constexpr auto absence = 10min; ///< of a key, in every hour

class ForgettingLog final : public LogDestination {
public:
    ForgettingLog() : before_(Log::setDestination(this)) {}
    ~ForgettingLog() override { Log::setDestination(before_); }
    void write(std::string_view) override {}

private:
    LogDestination* before_;
};

class Day {
public:
    explicit Day(std::uint64_t newcomers) : newcomers_(newcomers) {
        Settings& settings = model_.settings();
        settings.pauseWhileActive.set(false);
        settings.rule.set(LockRule::anyAway);
        std::vector<KeyDevice> all;
        for (std::uint64_t key = 0; key < keys; ++key)
            all.push_back({.id = spreadId(key),
                           .name = "Sleutel",
                           .model = {},
                           .isApple = false,
                           .threshold = Dbm{-80}});
        settings.keys.set(std::move(all));
        static_cast<void>(model_.monitor());
        radio_.turnOn();
    }

    void passHour() {
        const TimePoint begin = time_.now();
        for (TimePoint now = begin; now < begin + 1h; now = time_.now()) {
            advertise(now - begin < absence);
            time_.advance(interval);
        }
    }
    [[nodiscard]] int locks() const { return locks_; }

private:
    void advertise(bool keyIsAway) {
        constexpr std::array<std::uint8_t, 4> makerData{0x4C, 0x00, 0x10, 0x05};
        const std::uint64_t turn = reports_++ % 100;
        const bool isKey = turn < keys;
        // The screen says so later than it is asked.
        if (lockAsked_) tellLocked();
        if (isKey && turn == 0 && keyIsAway) return;
        if (isKey && turn == 0 && locked_) tellUnlocked();
        const std::uint64_t stranger =
            keys + reports_ * newcomers_ / reportsAnHour + reports_ % present;
        radio_.hear({.id = spreadId(isKey ? turn : stranger),
                     .rssi = (isKey ? -50 : -60) - static_cast<int>(reports_ % 10),
                     .manufacturerData = makerData});
    }
    void tellLocked() {
        ++locks_;
        locked_ = true;
        lockAsked_ = false;
        platform_.session.tell(SessionEvent::locked);
    }
    void tellUnlocked() {
        locked_ = false;
        platform_.session.tell(SessionEvent::unlocked);
    }

    std::uint64_t newcomers_; ///< an hour
    ForgettingLog log_;
    VirtualTime time_{TimePoint{500000h}};
    MemoryStore store_;
    PassingRadio radio_;
    bool lockAsked_ = false;
    bool locked_ = false;
    int locks_ = 0;
    StagedPlatform platform_{time_, time_, [this] { lockAsked_ = true; }};
    AppModel model_{
        {store_, radio_, platform_.ports, [] { return std::make_unique<HiddenHud>(); }}};
    std::uint64_t reports_ = 0;
};

long residentBytes() {
    std::ifstream pages("/proc/self/statm");
    long total = 0;
    long resident = 0;
    pages >> total >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

} // namespace

int main(int argc, char** argv) {
    const long hours = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 24;
    Day day(argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 0);
    for (long hour = 1; hour <= hours; ++hour) {
        day.passHour();
        const auto inUse = mallinfo2();
        std::printf("%ld %zu %ld %d\n", hour, inUse.uordblks + inUse.hblkhd, residentBytes(),
                    day.locks());
        std::fflush(stdout);
    }
    return EXIT_SUCCESS;
}

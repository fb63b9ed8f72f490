#include "platform/linux/system_clock.h"

#include <ctime>

namespace wegslot {
namespace {

Nanoseconds read(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return std::chrono::seconds{time.tv_sec} + Nanoseconds{time.tv_nsec};
}

} // namespace

SystemClock::SystemClock() : bootedAt_(read(CLOCK_REALTIME) - read(CLOCK_BOOTTIME)) {}

TimePoint SystemClock::now() const { return bootedAt_ + read(CLOCK_BOOTTIME); }

TimePoint SystemClock::wallClock() const { return TimePoint{read(CLOCK_REALTIME)}; }

} // namespace wegslot

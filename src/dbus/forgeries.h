// Signals that were sent in somebody else's name: logs who sent them, often enough to be noticed
// and seldom enough that nobody fills a disk with it. One for all buses of a program.
#pragma once

#include "base/clock.h"
#include "base/handle.h"
#include "dbus/message.h"

#include <chrono>
#include <deque>
#include <string>

namespace wegslot::dbus {

class Bus;

class Forgeries {
public:
    static constexpr std::size_t mostInAnHour = 10;

    /// `clock` must outlive this, and this all buses that know it.
    explicit Forgeries(const Clock& clock) : clock_(clock) {}
    Forgeries(const Forgeries&) = delete;
    Forgeries& operator=(const Forgeries&) = delete;

    /// `signal` came on `bus` as if `source` had sent it, and was dropped. Its sender is asked
    /// about at the bus, and logged when that has answered.
    void refused(Bus& bus, const Message& signal, const std::string& source);

private:
    const Clock& clock_;
    std::deque<TimePoint> told_; ///< those of the last hour
    std::uint64_t untold_ = 0;
    std::deque<Subscription> questions_;
};

} // namespace wegslot::dbus

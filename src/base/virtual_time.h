// Time that passes only when told to: clock and scheduler in one, for replays, tests and
// benchmarks. Calls due at the same instant run in the order in which they were armed.
#pragma once

#include "base/clock.h"
#include "base/scheduler.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>

namespace wegslot {

class VirtualTime final : public Clock, public Scheduler {
public:
    explicit VirtualTime(TimePoint start) : start_(start) {}

    [[nodiscard]] TimePoint now() const override;
    [[nodiscard]] TimePoint wallClock() const override;
    [[nodiscard]] Timer after(Nanoseconds delay, std::function<void()> action) override;
    [[nodiscard]] Timer every(Nanoseconds interval, std::function<void()> action) override;

    /// Runs every call due at or before `instant` at its own time, then stands at `instant`.
    /// An instant in the past only runs what is due now.
    void advanceTo(TimePoint instant);

    void advance(Nanoseconds duration) { advanceTo(later(now(), duration)); }

    /// Turns the clock on the wall; nothing else notices.
    void stepWallClock(Nanoseconds difference) { wallOffset_ += difference; }

    /// The machine sleeps: both readings of the clock move on, the scheduler does not.
    void sleep(Nanoseconds duration) { slept_ += duration; }

    /// How many calls are armed.
    [[nodiscard]] std::size_t pending() const { return calls_->size(); }

private:
    struct Call {
        std::function<void()> action;
        std::optional<Nanoseconds> interval;
    };

    struct Due {
        Nanoseconds elapsed;
        std::uint64_t number;
        friend auto operator<=>(const Due&, const Due&) = default;
    };

    using Calls = std::map<Due, std::shared_ptr<Call>>;

    Timer arm(Nanoseconds delay, std::shared_ptr<Call> call);
    void put(Nanoseconds delay, std::shared_ptr<Call> call);

    TimePoint start_;
    Nanoseconds elapsed_{0};
    Nanoseconds slept_{0};
    Nanoseconds wallOffset_{0};
    std::uint64_t next_ = 0;
    std::shared_ptr<Calls> calls_ = std::make_shared<Calls>();
};

} // namespace wegslot

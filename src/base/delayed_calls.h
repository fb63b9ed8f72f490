// One-shot calls that nobody keeps a handle of: each runs after its delay unless this object is
// gone by then. For a single timer that may be replaced or cancelled, keep a `Timer` instead.
#pragma once

#include "base/scheduler.h"

#include <cstdint>
#include <map>

namespace wegslot {

class DelayedCalls {
public:
    explicit DelayedCalls(Scheduler& scheduler) : scheduler_(scheduler) {}

    void after(Nanoseconds delay, std::function<void()> action) {
        const auto number = next_++;
        pending_[number] = scheduler_.after(delay, [this, number, action = std::move(action)] {
            const auto own = pending_.extract(number);
            action();
        });
    }

private:
    Scheduler& scheduler_;
    std::uint64_t next_ = 0;
    std::map<std::uint64_t, Timer> pending_;
};

} // namespace wegslot

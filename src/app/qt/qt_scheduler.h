// The scheduler on Qt's event loop. Runs on the monotonic clock, which stands still while the
// machine sleeps.
#pragma once

#include "base/scheduler.h"

namespace wegslot {

class QtScheduler final : public Scheduler {
public:
    [[nodiscard]] Timer after(Nanoseconds delay, std::function<void()> action) override;
    [[nodiscard]] Timer every(Nanoseconds interval, std::function<void()> action) override;
};

} // namespace wegslot

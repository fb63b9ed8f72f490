// The port through which the core asks to be called later, on the one thread it runs on.
// Calls never happen from within `after` or `every` themselves.
#pragma once

#include "base/handle.h"
#include "base/time.h"

#include <functional>

namespace wegslot {

class Scheduler {
public:
    Scheduler() = default;
    Scheduler(const Scheduler&) = delete;
    Scheduler& operator=(const Scheduler&) = delete;
    virtual ~Scheduler() = default;

    /// Calls `action` once, `delay` from now (at the next turn for 0 or less), unless the
    /// returned handle has ended before. `action` may end its own handle.
    [[nodiscard]] virtual Timer after(Nanoseconds delay, std::function<void()> action) = 0;

    /// Calls `action` each `interval` (above 0) until the returned handle ends. The next call is
    /// due before `action` runs; calls missed during sleep are not made up for.
    [[nodiscard]] virtual Timer every(Nanoseconds interval, std::function<void()> action) = 0;
};

} // namespace wegslot

// Sees by its process that a locker has locked the screen, whoever started it. Looks through the
// processes only while a lock is expected; a locker it has found is followed to its end, which is
// the unlock.
#pragma once

#include "base/observable.h"
#include "base/scheduler.h"
#include "platform/processes.h"

#include <map>
#include <utility>
#include <vector>

namespace wegslot {

class LockerWatch {
public:
    /// Often enough to confirm a lock while it is waited for, at a few milliseconds a look.
    static constexpr Nanoseconds lookInterval = std::chrono::milliseconds{200};
    /// A locker that cannot lock (no display, another one has the screen) ends sooner than this.
    static constexpr Nanoseconds settling = std::chrono::milliseconds{500};
    /// As long as a lock that was asked for is waited for.
    static constexpr Nanoseconds attention = std::chrono::seconds{5};

    LockerWatch(Processes& processes, Scheduler& scheduler, std::vector<ProcessPattern> patterns);

    /// Whether a locker has been running long enough to have locked the screen.
    [[nodiscard]] const Observable<bool>& locked() const { return locked_; }

    /// What counts as a locker from now on; those that were found stay.
    void setPatterns(std::vector<ProcessPattern> patterns) { patterns_ = std::move(patterns); }

    /// A lock has been asked for, by whomever: looks for a locker now and then.
    void expect();

    /// The screen is locked, or nobody waits any more: looks no further.
    void relax();

    /// Looks now. Answers whether a locker runs, settled or not.
    bool look();

    /// Follows a process as a locker.
    void follow(ProcessId process);

private:
    void ended(ProcessId process);
    void settled();
    void set(bool locked);

    Processes& processes_;
    Scheduler& scheduler_;
    std::vector<ProcessPattern> patterns_;
    Observable<bool> locked_{false};
    struct Locker {
        Subscription end;
        Timer settling;
    };
    std::map<ProcessId, Locker> lockers_;
    Timer looking_;
    Timer attention_;
};

} // namespace wegslot

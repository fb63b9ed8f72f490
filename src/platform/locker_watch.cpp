#include "platform/locker_watch.h"

#include <utility>

namespace wegslot {

LockerWatch::LockerWatch(Processes& processes, Scheduler& scheduler,
                         std::vector<ProcessPattern> patterns)
    : processes_(processes),
      scheduler_(scheduler),
      patterns_(std::move(patterns)) {
    // The screen may be locked already.
    looking_ = scheduler_.after(Nanoseconds{0}, [this] { look(); });
}

void LockerWatch::expect() {
    if (locked_.get()) return;
    looking_ = scheduler_.every(lookInterval, [this] { look(); });
    attention_ = scheduler_.after(attention, [this] { relax(); });
}

void LockerWatch::relax() {
    looking_.reset();
    attention_.reset();
}

bool LockerWatch::look() {
    for (const ProcessId process : processes_.running(patterns_))
        follow(process);
    return !lockers_.empty();
}

void LockerWatch::follow(ProcessId process) {
    if (lockers_.contains(process)) return;
    Subscription end = processes_.onEnd(process, [this, process] { ended(process); });
    if (!end) return;
    lockers_[process] = {.end = std::move(end),
                         .settling = scheduler_.after(settling, [this] { settled(); })};
}

void LockerWatch::settled() {
    relax();
    set(true);
}

void LockerWatch::ended(ProcessId process) {
    lockers_.erase(process);
    if (!lockers_.empty()) return;
    // One that goes to the background has left another in its place.
    if (!look()) set(false);
}

void LockerWatch::set(bool locked) {
    if (locked != locked_.get()) locked_.set(locked);
}

} // namespace wegslot

#include "base/virtual_time.h"

#include <algorithm>
#include <utility>

namespace wegslot {

TimePoint VirtualTime::now() const { return later(later(start_, elapsed_), slept_); }

TimePoint VirtualTime::wallClock() const { return later(now(), wallOffset_); }

Timer VirtualTime::after(Nanoseconds delay, std::function<void()> action) {
    return arm(delay, std::make_shared<Call>(Call{std::move(action), std::nullopt}));
}

Timer VirtualTime::every(Nanoseconds interval, std::function<void()> action) {
    return arm(interval, std::make_shared<Call>(Call{std::move(action), interval}));
}

void VirtualTime::advanceTo(TimePoint instant) {
    const Nanoseconds target = instant - later(start_, slept_);
    while (!calls_->empty() && calls_->begin()->first.elapsed <= std::max(target, elapsed_)) {
        const auto node = calls_->extract(calls_->begin());
        // Held here while it runs: the action may end its own handle.
        const std::shared_ptr<Call> call = node.mapped();
        elapsed_ = std::max(elapsed_, node.key().elapsed);
        if (call->interval) put(*call->interval, call);
        call->action();
    }
    elapsed_ = std::max(elapsed_, target);
}

Timer VirtualTime::arm(Nanoseconds delay, std::shared_ptr<Call> call) {
    put(delay, call);
    return Timer{[calls = std::weak_ptr(calls_), call] {
        if (const auto alive = calls.lock())
            std::erase_if(*alive, [&call](const auto& entry) { return entry.second == call; });
    }};
}

void VirtualTime::put(Nanoseconds delay, std::shared_ptr<Call> call) {
    const Nanoseconds due = elapsed_ + std::clamp(delay, Nanoseconds{0}, longestDuration);
    calls_->emplace(Due{due, next_++}, std::move(call));
}

} // namespace wegslot

// An owned obligation to end something: a timer, a subscription, a bus slot. Ending happens
// once, when the handle is reset, replaced or destroyed. Handles are declared last in the
// object that their closures touch, so that they die first.
#pragma once

#include <functional>
#include <utility>

namespace wegslot {

class Handle {
public:
    Handle() = default;

    explicit Handle(std::function<void()> end) : end_(std::move(end)) {}

    Handle(Handle&& other) noexcept : end_(std::exchange(other.end_, nullptr)) {}

    Handle& operator=(Handle&& other) noexcept {
        if (this == &other) return *this;
        reset();
        end_ = std::exchange(other.end_, nullptr);
        return *this;
    }

    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    ~Handle() { reset(); }

    /// Ends it now; harmless when it has ended or never began.
    void reset() {
        if (auto end = std::exchange(end_, nullptr)) end();
    }

    /// True from creation until `reset`. A one-shot timer that fired still counts as held.
    [[nodiscard]] explicit operator bool() const { return static_cast<bool>(end_); }

private:
    std::function<void()> end_;
};

/// Keeps a timer of a `Scheduler` alive.
using Timer = Handle;

/// Keeps a listener registered.
using Subscription = Handle;

} // namespace wegslot

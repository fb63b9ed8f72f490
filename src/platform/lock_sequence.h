// Has the session locked by trying one way after the other: when one is refused, or nothing comes
// of it, the next is asked, each once.
#pragma once

#include "base/scheduler.h"
#include "platform/lock_controller.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace wegslot {

/// One way of asking for the lock.
class ScreenLock {
public:
    ScreenLock() = default;
    ScreenLock(const ScreenLock&) = delete;
    ScreenLock& operator=(const ScreenLock&) = delete;
    virtual ~ScreenLock() = default;

    /// Asks. Calls `refused` at most once, now or later, when it is certain that this way asked
    /// nobody; an answer that does not come is no refusal.
    virtual void request(std::function<void()> refused) = 0;
};

/// Who learns whether a lock that was asked for has come.
class LockConfirmation {
public:
    LockConfirmation() = default;
    LockConfirmation(const LockConfirmation&) = delete;
    LockConfirmation& operator=(const LockConfirmation&) = delete;
    virtual ~LockConfirmation() = default;

    /// A lock is being asked for: worth looking closer for a while. Calls `confirmed` each time
    /// that the screen gets locked, until the handle ends.
    [[nodiscard]] virtual Subscription expect(std::function<void()> confirmed) = 0;

    [[nodiscard]] virtual bool isLocked() const = 0;
};

class LockSequence final : public LockController {
public:
    /// A desktop that locks says so within half a second; the next ways still have time then
    /// before the lock counts as failed.
    static constexpr Nanoseconds patience = std::chrono::milliseconds{1500};

    /// `ways` in order of preference. All that is handed over must outlive
    /// this.
    LockSequence(std::vector<ScreenLock*> ways, Scheduler& scheduler,
                 LockConfirmation& confirmation)
        : ways_(std::move(ways)),
          scheduler_(scheduler),
          confirmation_(confirmation) {}

    /// Asks the first way now; the next when one refuses, or when `patience` after it was asked
    /// the screen is not locked. Once it has been locked no other is asked: whoever unlocks it
    /// soon is not to be locked out again. Begins anew if it was still at it.
    void lock() override {
        seen_ = confirmation_.expect([this] { end(); });
        ask(0);
    }

private:
    void end() {
        waiting_.reset();
        attempt_.reset();
    }

    void ask(std::size_t index) {
        waiting_.reset();
        attempt_ = std::make_shared<std::size_t>(index);
        if (index >= ways_.size()) return;
        waiting_ = scheduler_.after(patience, [this, index] {
            if (!confirmation_.isLocked()) ask(index + 1);
        });
        // Held weakly: a refusal that comes too late, or after this has gone, is void.
        ways_[index]->request([this, attempt = std::weak_ptr(attempt_)] {
            if (const auto current = attempt.lock()) ask(*current + 1);
        });
    }

    std::vector<ScreenLock*> ways_;
    Scheduler& scheduler_;
    LockConfirmation& confirmation_;
    std::shared_ptr<std::size_t> attempt_;
    Timer waiting_;
    Subscription seen_;
};

} // namespace wegslot

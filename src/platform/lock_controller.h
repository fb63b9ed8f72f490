// Asks for the session to be locked, now, without waiting and without an answer: whether it
// happened is told by SessionEvents. Where the first way of asking is refused, the next is
// tried, each once.
#pragma once

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

class LockController {
public:
    /// `ways` in order of preference; they must outlive the controller.
    explicit LockController(std::vector<ScreenLock*> ways)
        : ways_(std::make_shared<const std::vector<ScreenLock*>>(std::move(ways))) {}

    void lock() { ask(ways_, 0); }

private:
    using Ways = std::shared_ptr<const std::vector<ScreenLock*>>;

    static void ask(const Ways& ways, std::size_t index) {
        if (index >= ways->size()) return;
        // Held weakly: a refusal that comes after the controller has gone asks nobody.
        (*ways)[index]->request([held = std::weak_ptr(ways), index] {
            if (const auto alive = held.lock()) ask(alive, index + 1);
        });
    }

    Ways ways_;
};

} // namespace wegslot

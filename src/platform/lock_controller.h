// The port through which the core has the session locked, now, without waiting and without an
// answer: whether it happened is told by SessionEvents.
#pragma once

namespace wegslot {

class LockController {
public:
    LockController() = default;
    LockController(const LockController&) = delete;
    LockController& operator=(const LockController&) = delete;
    virtual ~LockController() = default;

    /// Returns at once. Fails silently.
    virtual void lock() = 0;
};

} // namespace wegslot

// The port through which the core has the session locked at once, without waiting for an answer:
// `SessionEvents` tells whether it happened.
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

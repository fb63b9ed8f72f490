// Asks logind to lock our own session; the desktop, or whatever else listens there, does the
// locking.
#pragma once

#include "platform/linux/login_session.h"
#include "platform/lock_sequence.h"

namespace wegslot {

class LogindLock final : public ScreenLock {
public:
    explicit LogindLock(LoginSession& session) : session_(session) {}
    void request(std::function<void()> refused) override;

private:
    LoginSession& session_;
    Subscription answer_;
};

} // namespace wegslot

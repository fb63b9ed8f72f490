// Reports when the screen is locked and unlocked, from logind's hint about our own session, the
// desktop's screen saver and the processes of lockers.
#pragma once

#include "base/observable.h"
#include "platform/linux/login_session.h"
#include "platform/linux/screen_savers.h"
#include "platform/lock_facts.h"
#include "platform/lock_sequence.h"
#include "platform/locker_watch.h"
#include "platform/session_events.h"

namespace wegslot {

class ScreenLockWatcher final : public SessionEvents, public LockConfirmation {
public:
    ScreenLockWatcher(LoginSession& session, ScreenSavers& savers, LockerWatch& lockers);

    [[nodiscard]] Subscription observe(std::function<void(SessionEvent)> listener) override {
        return events_.onChange(std::move(listener));
    }

    [[nodiscard]] Subscription expect(std::function<void()> confirmed) override;
    [[nodiscard]] bool isLocked() const override { return witness().has_value(); }

    /// What says that the screen is locked; nothing while it is not.
    [[nodiscard]] std::optional<LockWitness> witness() const { return facts_.witness(); }

private:
    void changed(bool locked);
    void lookCloser();
    void follow(const std::optional<std::string>& path);
    void readHint(const std::string& path);

    LoginSession& session_;
    LockerWatch& lockers_;
    Observable<SessionEvent> events_;
    LockFacts facts_;
    Subscription changes_;
    Subscription requests_;
    Subscription reading_;
    Subscription path_;
    Subscription active_;
    Subscription desktop_;
    Subscription locker_;
};

} // namespace wegslot

// Says when the screen is locked and unlocked, from logind's hint about the own session and from
// the desktop's screen saver.
#pragma once

#include "base/observable.h"
#include "monitor/session_events.h"
#include "platform/linux/login_session.h"
#include "platform/linux/screen_savers.h"
#include "platform/lock_facts.h"

namespace wegslot {

class ScreenLockWatcher final : public SessionEvents {
public:
    ScreenLockWatcher(LoginSession& session, ScreenSavers& savers);

    [[nodiscard]] Subscription observe(std::function<void(SessionEvent)> listener) override {
        return events_.onChange(std::move(listener));
    }

private:
    void follow(const std::optional<std::string>& path);
    void readHint(const std::string& path);

    LoginSession& session_;
    Observable<SessionEvent> events_;
    LockFacts facts_;
    Subscription changes_;
    Subscription reading_;
    Subscription path_;
    Subscription active_;
    Subscription desktop_;
};

} // namespace wegslot

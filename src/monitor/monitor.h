// The heart of the application. Once a second it looks at the keys, the radio, the screen, the
// pauses and the settings, and decides which phase the system is in; entering the away
// condition warns and then locks. After a lock it waits until the keys have been near again.
#pragma once

#include "base/clock.h"
#include "base/observable.h"
#include "base/scheduler.h"
#include "model/settings.h"
#include "monitor/beat.h"
#include "monitor/key_state.h"
#include "monitor/pause.h"
#include "monitor/phase.h"
#include "monitor/presence.h"
#include "monitor/rule_fold.h"
#include "monitor/user_action.h"
#include "monitor/warning_hud.h"
#include "platform/activity_detector.h"
#include "platform/lock_controller.h"
#include "platform/session_events.h"
#include "scanner/key_signals.h"

#include <memory>
#include <optional>
#include <vector>

namespace wegslot {

class Monitor {
public:
    static constexpr Nanoseconds tickInterval = std::chrono::seconds{1};

    /// How long the platform may take to confirm a lock. A locker shows within half a second;
    /// the rest is for a machine under load.
    static constexpr Nanoseconds confirmationTimeout = std::chrono::seconds{5};

    /// What the monitor needs of the world around the core.
    struct Platform {
        const Clock& clock;
        Scheduler& scheduler;
        SessionEvents& session;
        ActivityDetector& activity;
        LockController& lock;
    };

    /// `hud` is the monitor's from here on; everything else must outlive it.
    Monitor(Settings& settings, KeySignals& signals, Platform platform,
            std::unique_ptr<WarningHUD> hud);

    Monitor(const Monitor&) = delete;
    Monitor& operator=(const Monitor&) = delete;

    [[nodiscard]] const Observable<Phase>& phase() const { return phase_; }

    /// Of the phase that is assigned last; while listeners of `phase` run, of the new one.
    [[nodiscard]] PhaseCause cause() const { return cause_; }

    /// The instant that is judged, or was last.
    [[nodiscard]] TimePoint judgedAt() const { return judgedAt_; }

    /// When what comes in now has come as the next tick sees it: before that, however late it is.
    [[nodiscard]] TimePoint heardAt() const { return beat_.heard(platform_.clock.now()); }

    [[nodiscard]] const Observable<KeyStates>& keyStates() const { return keyStates_; }

    /// True while the present snooze was asked for by the user.
    [[nodiscard]] const Observable<bool>& snoozeIsManual() const { return snooze_.isManual(); }

    /// Each of the following four is told here before it is done.
    [[nodiscard]] const Observable<UserAction>& asked() const { return asked_; }

    /// Does that one of them which is asked.
    void ask(const UserAction& action);

    /// Locks at once, whatever the phase.
    void lockNow();

    /// Pauses for `duration` (any double; a past end is no pause) and judges at once.
    void pause(Seconds duration);

    /// Ends any pause and judges at once.
    void resume();

    /// The user dismissed the countdown: pauses for ten minutes. Nothing outside a countdown.
    void cancelWarning();

private:
    void tick(TimePoint now);
    void watch(const std::vector<KeyDevice>& keys);
    void lock(TimePoint now);
    void cancel(TimePoint now);
    void take(const UserAction& action);
    void set(Phase next);
    /// Hides the panel and sets the phase: every phase but a warning shows none.
    void rest(Phase next);
    /// Starts over: nothing is locked until the keys have been near.
    void rearm();
    void awaitConfirmation(TimePoint now);
    void pauseFor(const PauseReason& reason, TimePoint now);
    void warn(TimePoint now);
    void enabledChanged(bool enabled);
    void screenChanged(SessionEvent event);
    [[nodiscard]] bool isOutOfService() const;
    [[nodiscard]] Nanoseconds wallOffset() const;

    Settings& settings_;
    KeySignals& signals_;
    Platform platform_;
    std::unique_ptr<WarningHUD> hud_;
    Observable<Phase> phase_{wegslot::phase::WaitingForReturn{}};
    Observable<KeyStates> keyStates_;
    Observable<UserAction> asked_;
    Presence presence_;
    Snooze snooze_;
    PhaseCause cause_ = PhaseCause::judgement;
    bool screenLocked_ = false;
    std::optional<TimePoint> lockRequestedAt_;
    Beat beat_;
    TimePoint judgedAt_;
    /// Gone with the monitor: a panel that outlives it has nobody to report to.
    std::shared_ptr<Monitor*> self_ = std::make_shared<Monitor*>(this);
    std::vector<Subscription> subscriptions_;
    Timer timer_;
};

} // namespace wegslot

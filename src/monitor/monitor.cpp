#include "monitor/monitor.h"

#include "base/text.h"
#include "log/log.h"
#include "monitor/away_message.h"

#include <algorithm>
#include <set>
#include <string>
#include <utility>

namespace wegslot {
namespace {

struct Do {
    Monitor& monitor;

    void operator()(const action::LockNow&) const { monitor.lockNow(); }
    void operator()(const action::Resume&) const { monitor.resume(); }
    void operator()(const action::CancelWarning&) const { monitor.cancelWarning(); }
    void operator()(const action::Pause& pause) const { monitor.pause(pause.duration); }
};

} // namespace

Monitor::Monitor(Settings& settings, KeySignals& signals, Platform platform,
                 std::unique_ptr<WarningHUD> hud)
    : settings_(settings),
      signals_(signals),
      platform_(platform),
      hud_(std::move(hud)),
      presence_(settings, signals),
      beat_(tickInterval, platform.clock.now()) {
    subscriptions_.push_back(settings_.keys.follow([this](const auto& keys) { watch(keys); }));
    subscriptions_.push_back(settings_.showOtherDevices.follow(
        [this](bool show) { signals_.setIncludeOtherDevices(show); }));
    subscriptions_.push_back(
        settings_.enabled.onChange([this](bool enabled) { enabledChanged(enabled); }));
    subscriptions_.push_back(
        platform_.session.observe([this](SessionEvent event) { screenChanged(event); }));
    timer_ = platform_.scheduler.every(tickInterval, [this] {
        cause_ = PhaseCause::judgement;
        tick(beat_.of(platform_.clock.now()));
    });
    Log::write("Wegslot gestart met " + std::to_string(settings_.keys.get().size()) +
               " sleutel(s)");
}

void Monitor::tick(TimePoint now) {
    judgedAt_ = now;
    signals_.refreshSnapshot();
    keyStates_.set(presence_.evaluateAll(now));

    if (!settings_.enabled.get()) return rest(phase::Disabled{});
    if (!signals_.isPoweredOn())
        return rest(phase::BluetoothUnavailable{signals_.stateDescription()});
    if (settings_.keys.get().empty()) return rest(phase::NoKeys{});
    if (screenLocked_) return set(phase::Locked{});
    if (lockRequestedAt_) return awaitConfirmation(now);
    if (isOutOfService()) return rearm();

    const Verdict verdict = fold(settings_.rule.get(), settings_.keys.get(), keyStates_.get());
    if (is<phase::WaitingForReturn>(phase_.get())) {
        if (verdict.keysNotNear) return;
        Log::write("Sleutel in de buurt, bewaking actief");
    }
    if (snooze_.holds(now, verdict.keysNotNear)) return rest(phase::Snoozed{*snooze_.until()});
    if (!verdict.keysGone) {
        if (verdict.keysNotNear) return rest(phase::Leaving{});
        return rest(phase::Present{});
    }
    if (const auto reason = pauseReason(settings_, platform_.activity))
        return pauseFor(*reason, now);
    if (!settings_.warningEnabled.get()) return lock(now);
    warn(now);
}

void Monitor::watch(const std::vector<KeyDevice>& keys) {
    std::set<Uuid> passive;
    std::set<Uuid> all;
    for (const KeyDevice& key : keys) {
        all.insert(key.id);
        if (key.isApple == false) passive.insert(key.id);
    }
    // In this order: a new listen-only key must not be taken for one to connect.
    signals_.setPassiveIDs(std::move(passive));
    signals_.setWatchedIDs(std::move(all));
}

void Monitor::set(Phase next) {
    if (next == phase_.get()) return;
    // These come and go with every walk to the coffee machine; a warning logs its own line.
    const bool quiet =
        is<phase::Present>(next) || is<phase::Leaving>(next) || is<phase::Warning>(next);
    if (!quiet) Log::write("Status: " + description(next, wallOffset()));
    phase_.set(std::move(next));
}

void Monitor::rest(Phase next) {
    hud_->hide();
    set(std::move(next));
}

void Monitor::rearm() {
    presence_.restart();
    rest(phase::WaitingForReturn{});
}

void Monitor::awaitConfirmation(TimePoint now) {
    if (now - *lockRequestedAt_ < confirmationTimeout) return;
    Log::write("Geen bevestiging van lock ontvangen");
    lockRequestedAt_.reset();
    rearm();
}

void Monitor::pauseFor(const PauseReason& reason, TimePoint now) {
    const bool touched = std::holds_alternative<pause::Active>(reason);
    if (touched && is<phase::Warning>(phase_.get())) return cancel(now);
    rest(phase::Paused{text(reason)});
}

void Monitor::warn(TimePoint now) {
    if (const auto* const warning = std::get_if<phase::Warning>(&phase_.get())) {
        if (now >= warning->deadline) lock(now);
        return;
    }
    const Seconds total = settings_.warningSeconds.get();
    const TimePoint deadline = later(now, rounded(total));
    set(phase::Warning{deadline});
    const Message message = awayMessage(settings_.keys.get(), keyStates_.get());
    Log::write("Waarschuwing: " + printable(message.builtIn()));
    hud_->show(deadline, total, message, [held = std::weak_ptr(self_)] {
        if (const auto monitor = held.lock()) (*monitor)->cancelWarning();
    });
}

void Monitor::take(const UserAction& action) {
    cause_ = PhaseCause::request;
    asked_.set(action);
}

void Monitor::ask(const UserAction& action) { std::visit(Do{*this}, action); }

void Monitor::lockNow() {
    take(action::LockNow{});
    lock(platform_.clock.now());
}

void Monitor::lock(TimePoint now) {
    hud_->hide();
    Log::write("Mac wordt gelockt");
    lockRequestedAt_ = now;
    set(phase::Locked{});
    platform_.lock.lock();
}

void Monitor::pause(Seconds duration) {
    take(action::Pause{duration});
    const TimePoint now = platform_.clock.now();
    const TimePoint until = later(now, rounded(duration));
    snooze_.startManual(until);
    hud_->hide();
    Log::write("Handmatig gepauzeerd tot " + utcText(later(until, wallOffset())));
    tick(now);
}

void Monitor::resume() {
    take(action::Resume{});
    snooze_.end();
    Log::write("Hervat");
    tick(platform_.clock.now());
}

void Monitor::cancelWarning() {
    take(action::CancelWarning{});
    cancel(platform_.clock.now());
}

void Monitor::cancel(TimePoint now) {
    if (!is<phase::Warning>(phase_.get())) return;
    cause_ = PhaseCause::request;
    hud_->hide();
    const TimePoint until = later(now, Snooze::automatic);
    snooze_.startAutomatic(until);
    Log::write("Waarschuwing geannuleerd, 10 minuten pauze");
    set(phase::Snoozed{until});
}

void Monitor::enabledChanged(bool enabled) {
    cause_ = PhaseCause::request;
    if (enabled) rearm(); // switching off waits for the next tick
}

void Monitor::screenChanged(SessionEvent event) {
    cause_ = PhaseCause::screen;
    switch (event) {
    case SessionEvent::locked:
        screenLocked_ = true;
        rest(phase::Locked{});
        return;
    case SessionEvent::unlocked:
        screenLocked_ = false;
        lockRequestedAt_.reset();
        snooze_.endAutomatic();
        rearm();
        return;
    }
}

bool Monitor::isOutOfService() const {
    const Phase& current = phase_.get();
    return is<phase::Disabled>(current) || is<phase::NoKeys>(current) ||
           is<phase::BluetoothUnavailable>(current);
}

Nanoseconds Monitor::wallOffset() const {
    return platform_.clock.wallClock() - platform_.clock.now();
}

} // namespace wegslot

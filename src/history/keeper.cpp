#include "history/keeper.h"

#include "control/phase_reason.h"
#include "control/reason.h"
#include "trace/settings_values.h"

#include <algorithm>
#include <utility>

namespace wegslot::history {
namespace {

/// As finely as is kept.
TimePoint kept(TimePoint instant) { return std::chrono::floor<std::chrono::milliseconds>(instant); }

std::optional<TimePoint> end(const Phase& phase) {
    if (const auto* const snoozed = std::get_if<phase::Snoozed>(&phase))
        return kept(snoozed->until);
    if (const auto* const warning = std::get_if<phase::Warning>(&phase))
        return kept(warning->deadline);
    return std::nullopt;
}

trace::Microphone microphone(bool inUse) {
    if (!inUse) return {};
    return {trace::ApplicationName{ActivityDetector::unnamedApplication}};
}

} // namespace

Keeper::Keeper(Surroundings surroundings)
    : around_(std::move(surroundings)),
      inputs_(around_.activity, around_.clock) {
    followSettings();
    subscriptions_.push_back(around_.session.observe([this](SessionEvent event) {
        screenLocked_ = event == SessionEvent::locked;
        happened(trace::Session{event});
    }));
    subscriptions_.push_back(around_.scanner.state().onChange([this](CentralState state) {
        happened(trace::RadioState{state, {}});
    }));
    subscriptions_.push_back(
        around_.activity.camera().onChange([this](bool inUse) { answered(trace::Camera{inUse}); }));
    subscriptions_.push_back(around_.activity.microphone().onChange(
        [this](bool inUse) { answered(microphone(inUse)); }));
    subscriptions_.push_back(around_.monitor.asked().onChange([this](const UserAction& asked) {
        // Done at this very instant, also when a judgement of before is still to come.
        happenedAt(around_.clock.now(), trace::Action{asked});
    }));
    subscriptions_.push_back(
        around_.monitor.keyStates().onChange([this](const KeyStates& states) { judged(states); }));
    subscriptions_.push_back(
        around_.monitor.phase().onChange([this](const Phase& next) { phaseEntered(next); }));
}

Keeper::~Keeper() { setKeeping(false); } // NOLINT(bugprone-exception-escape)

void Keeper::setKeeping(bool keeps) {
    if (std::exchange(keeps_, keeps) == keeps) return;
    if (keeps) {
        standingAt_ = {};
        judgedAt_ = kept(around_.clock.now()); // what stands now is known
        return beginMinute(judgedAt_);
    }
    if (minute_) around_.store.keep(*std::exchange(minute_, {}));
}

PreferenceValue Keeper::value(const auto& setting) const { return trace::valueOf(setting); }

PreferenceValue Keeper::value(const std::vector<KeyDevice>& keys) const {
    std::vector<KeyDevice> nameless;
    nameless.reserve(keys.size());
    for (const KeyDevice& key : keys)
        nameless.push_back({.id = idOf(around_.rowOf(key.id)),
                            .name = {},
                            .model = {},
                            .isApple = {},
                            .threshold = key.threshold});
    return trace::valueOf(nameless);
}

void Keeper::followSettings() {
    around_.settings.visit([this](const auto& setting) {
        subscriptions_.push_back(setting.onChange([this, &setting](const auto& chosen) {
            if (keeps_)
                happened(trace::SettingsChange{{{std::string(setting.name()), value(chosen)}}});
        }));
    });
}

void Keeper::tellStanding(TimePoint now) {
    standingAt_ = now;
    if (coreIsFresh_) note(now, trace::Start{kept(around_.clock.wallClock())});
    Preferences values;
    around_.settings.visit([this, &values](const auto& setting) {
        values.emplace(setting.name(), value(setting.get()));
    });
    note(now, trace::SettingsChange{std::move(values)});
    note(now, trace::RadioState{around_.scanner.state().get(), {}});
    if (screenLocked_) note(now, trace::Session{SessionEvent::locked});
    note(now, trace::Camera{around_.activity.camera().get()});
    note(now, microphone(around_.activity.microphone().get()));
}

void Keeper::beginMinute(TimePoint now) {
    const TimePoint start = std::chrono::floor<std::chrono::minutes>(now);
    if (minute_ && start <= minute_->start) return;
    const bool hasRested = minute_ && start > minute_->start + Minute::length;
    if (minute_) around_.store.keep(*std::move(minute_));
    minute_.emplace();
    minute_->start = start;
    minute_->wallOffset = kept(around_.clock.wallClock()) - kept(around_.clock.now());
    if (hasRested) note(now, Rested{});
    if (now - standingAt_ >= standingInterval) tellStanding(now);
}

void Keeper::judged(const KeyStates& states) {
    if (keeps_) {
        const TimePoint since = afterJudgement();
        const TimePoint at = std::max(kept(around_.monitor.judgedAt()), since);
        beginMinute(at);
        judgedAt_ = at;
        askForInput(since);
        for (const auto& [id, state] : states) {
            const Row row = around_.rowOf(id);
            KeyMinute& key = minute_->keys[row];
            const auto [heard, isNew] = heardUntil_.try_emplace(row, TimePoint::min());
            for (const auto& sample : around_.scanner.samplesSince(id, heard->second)) {
                // What the judgement before did not know came after it.
                const TimePoint first = isNew ? TimePoint::min() : since;
                key.samples.push_back({std::clamp(kept(sample.date), first, at), sample.rssi});
                heard->second = sample.date;
            }
            key.states.resize(minute_->judged.size());
            key.states.emplace_back(state);
        }
        minute_->judged.push_back(at);
    }
    coreIsFresh_ = false;
}

void Keeper::askForInput(TimePoint since) {
    const TimePoint asked = around_.clock.now();
    if (asked < asksAgainAt_) return;
    const auto touch = inputs_.newTouch();
    if (around_.clock.now() - asked >= slowAnswer) asksAgainAt_ = later(asked, restraint);
    if (!touch) return;
    note(std::clamp(kept(*touch), since, std::max(since, beforeJudgement())), trace::Input{});
}

void Keeper::phaseEntered(const Phase& next) {
    if (!keeps_) return;
    const Monitor& monitor = around_.monitor;
    const Message reason = phaseReason({.before = monitor.phase().get(),
                                        .after = next,
                                        .cause = monitor.cause(),
                                        .snoozeIsManual = monitor.snoozeIsManual().get(),
                                        .keys = around_.settings.keys.get(),
                                        .states = monitor.keyStates().get()});
    const TimePoint at = phaseInstant();
    beginMinute(at);
    note(at, PhaseEntered{.name = std::string(name(next)),
                          .reason = control::reasonOf(reason).code,
                          .cause = monitor.cause(),
                          .until = end(next)});
    // Somebody may ask why at once, and switch the computer off.
    if (is<phase::Locked>(next)) around_.store.keep(*minute_);
}

/// What comes of a judgement has its instant, however late that was; what comes of something else
/// that of the other.
TimePoint Keeper::phaseInstant() const {
    switch (around_.monitor.cause()) {
    case PhaseCause::judgement:
        return judgedAt_;
    case PhaseCause::screen: // which is told to the monitor first
        return std::max(kept(around_.monitor.heardAt()), afterJudgement());
    case PhaseCause::request:
        break;
    }
    return std::max({kept(around_.clock.now()), judgedAt_, toldAt_});
}

/// As the next judgement sees it.
void Keeper::happened(Happening what) { happenedAt(around_.monitor.heardAt(), std::move(what)); }

void Keeper::happenedAt(TimePoint instant, Happening what) {
    if (!keeps_) return;
    const TimePoint at = std::max(kept(instant), afterJudgement());
    beginMinute(at);
    note(at, std::move(what));
}

/// What the judgement that is under way learns, it has to know when it is judged anew.
void Keeper::answered(Happening what) {
    if (keeps_) note(beforeJudgement(), std::move(what));
}

TimePoint Keeper::beforeJudgement() const { return judgedAt_ - std::chrono::milliseconds{1}; }

/// The first instant that the last judgement did not know of.
TimePoint Keeper::afterJudgement() const { return judgedAt_ + std::chrono::milliseconds{1}; }

void Keeper::note(TimePoint at, Happening what) {
    toldAt_ = std::max(toldAt_, at);
    minute_->events.push_back({at, std::move(what)});
}

} // namespace wegslot::history

#include "tests/properties/oracle.h"

#include <cmath>
#include <cstdio>
#include <utility>

namespace wegslot::oracle {
namespace {

// To the nearest nanosecond, a hundred years at most either way; what is no number is nothing.
Nanoseconds nanoseconds(Seconds duration) {
    const double hundredYears = 36525.0 * 86400.0;
    double seconds = duration.count();
    if (std::isnan(seconds)) seconds = 0;
    if (seconds > hundredYears) seconds = hundredYears;
    if (seconds < -hundredYears) seconds = -hundredYears;
    return Nanoseconds{static_cast<std::int64_t>(std::round(seconds * 1e9))};
}

// An instant of the judging clock as a person's clock shows it, in UTC.
std::string utc(TimePoint instant, Nanoseconds wallAhead) {
    const auto shown = std::chrono::floor<std::chrono::seconds>(instant + wallAhead);
    const auto day = std::chrono::floor<std::chrono::days>(shown);
    const std::chrono::year_month_day date{day};
    const auto second = (shown - day).count();
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%04d-%02u-%02u %02d:%02d:%02d +0000",
                  static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                  static_cast<unsigned>(date.day()), static_cast<int>(second / 3600),
                  static_cast<int>(second / 60 % 60), static_cast<int>(second % 60));
    return buffer;
}

// The line that tells of a phase; nothing for the three that are entered in silence.
std::optional<std::string> statusLine(const Phase& phase, Nanoseconds wallAhead) {
    if (is<phase::Present>(phase) || is<phase::Leaving>(phase) || is<phase::Warning>(phase))
        return std::nullopt;
    if (const auto* off = std::get_if<phase::BluetoothUnavailable>(&phase))
        return "Status: bluetoothUnavailable(\"" + off->text.builtIn() + "\")";
    if (const auto* paused = std::get_if<phase::Paused>(&phase))
        return "Status: paused(\"" + paused->text.builtIn() + "\")";
    if (const auto* snoozed = std::get_if<phase::Snoozed>(&phase))
        return "Status: snoozed(" + utc(snoozed->until, wallAhead) + ")";
    if (is<phase::Disabled>(phase)) return "Status: disabled";
    if (is<phase::NoKeys>(phase)) return "Status: noKeys";
    if (is<phase::WaitingForReturn>(phase)) return "Status: waitingForReturn";
    return "Status: locked";
}

void enter(Outcome& outcome, const Inputs& inputs, const Phase& next) {
    if (next == outcome.state.phase) return;
    if (const auto line = statusLine(next, inputs.wallAhead))
        outcome.effects.push_back(effect::Logged{*line});
    outcome.effects.push_back(effect::PhaseSet{next});
    outcome.state.phase = next;
}

void log(Outcome& outcome, const std::string& message) {
    outcome.effects.push_back(effect::Logged{message});
}

void hidePanel(Outcome& outcome) { outcome.effects.push_back(effect::PanelHidden{}); }

// Ticks after what `outcome` holds already.
Outcome andTick(Outcome outcome, const Inputs& inputs) {
    Outcome ticked = tick(std::move(outcome.state), inputs);
    outcome.effects.insert(outcome.effects.end(), ticked.effects.begin(), ticked.effects.end());
    return {std::move(ticked.state), std::move(outcome.effects)};
}

} // namespace

Outcome start(const Inputs& inputs) {
    Outcome outcome;
    log(outcome,
        "Wegslot gestart met " + std::to_string(inputs.choices.keys.size()) + " sleutel(s)");
    return outcome;
}

// Long on purpose: the fifteen steps stand in their order, to be read beside the rules.
Outcome tick(State before, const Inputs& inputs) {
    Outcome outcome{std::move(before), {}};
    State& state = outcome.state;
    const Choices& choices = inputs.choices;
    const TimePoint now = inputs.now;

    // 1. The radio refreshes its list: done by whoever made `inputs`.

    // 2. Judge every key.
    state.keyStates.clear();
    for (std::size_t i = 0; i < choices.keys.size(); ++i) {
        const KeyDevice& key = choices.keys[i];
        const Heard& heard = inputs.heard[i];
        // One branch a rule, though two give the same: NOLINTNEXTLINE(bugprone-branch-clone)
        if (!heard.last) {
            state.keyStates[key.id] = KeyState::away;
        } else if (now - *heard.last > nanoseconds(choices.lostTimeout)) {
            state.keyStates[key.id] = KeyState::away;
        } else if (heard.strength && heard.strength->value >= key.threshold.value) {
            state.belowSince.erase(key.id);
            state.keyStates[key.id] = KeyState::near;
        } else {
            if (!state.belowSince.contains(key.id)) state.belowSince[key.id] = now;
            const Nanoseconds weakFor = now - state.belowSince[key.id];
            state.keyStates[key.id] =
                weakFor >= nanoseconds(choices.awayDelay) ? KeyState::away : KeyState::leaving;
        }
    }
    outcome.effects.push_back(effect::StatesSet{state.keyStates});

    // 3. Switched off.
    if (!choices.enabled) {
        hidePanel(outcome);
        enter(outcome, inputs, phase::Disabled{});
        return outcome;
    }

    // 4. No radio.
    if (!inputs.radioOn) {
        hidePanel(outcome);
        enter(outcome, inputs, phase::BluetoothUnavailable{inputs.radioText});
        return outcome;
    }

    // 5. No keys.
    if (choices.keys.empty()) {
        hidePanel(outcome);
        enter(outcome, inputs, phase::NoKeys{});
        return outcome;
    }

    // 6. The screen is locked.
    if (state.screenLocked) {
        enter(outcome, inputs, phase::Locked{});
        return outcome;
    }

    // 7. A lock was asked for and is not confirmed.
    if (state.lockRequestedAt) {
        if (now - *state.lockRequestedAt >= std::chrono::seconds{5}) {
            log(outcome, "Geen bevestiging van lock ontvangen");
            state.lockRequestedAt.reset();
            state.belowSince.clear();
            hidePanel(outcome);
            enter(outcome, inputs, phase::WaitingForReturn{});
        }
        return outcome;
    }

    // 8. Back from a phase in which nothing was judged.
    if (is<phase::Disabled>(state.phase) || is<phase::NoKeys>(state.phase) ||
        is<phase::BluetoothUnavailable>(state.phase)) {
        state.belowSince.clear();
        hidePanel(outcome);
        enter(outcome, inputs, phase::WaitingForReturn{});
        return outcome;
    }

    // 9. Fold the keys into the two verdicts.
    std::size_t near = 0;
    std::size_t away = 0;
    for (const KeyDevice& key : choices.keys) {
        if (state.keyStates[key.id] == KeyState::near) ++near;
        if (state.keyStates[key.id] == KeyState::away) ++away;
    }
    const std::size_t all = choices.keys.size();
    bool keysGone = false;
    bool keysNotNear = false;
    if (choices.rule == LockRule::allAway) {
        keysGone = away == all;
        keysNotNear = near == 0;
    } else {
        keysGone = away > 0;
        keysNotNear = near < all;
    }

    // 10. Armed only once the keys have been near.
    if (is<phase::WaitingForReturn>(state.phase)) {
        if (keysNotNear) return outcome;
        log(outcome, "Sleutel in de buurt, bewaking actief");
    }

    // 11. Snoozed.
    if (state.snoozeUntil) {
        if (now < *state.snoozeUntil && (keysNotNear || state.snoozeIsManual)) {
            hidePanel(outcome);
            enter(outcome, inputs, phase::Snoozed{*state.snoozeUntil});
            return outcome;
        }
        state.snoozeUntil.reset();
        state.snoozeIsManual = false;
    }

    // 12. Not gone.
    if (!keysGone) {
        hidePanel(outcome);
        if (keysNotNear) enter(outcome, inputs, phase::Leaving{});
        if (!keysNotNear) enter(outcome, inputs, phase::Present{});
        return outcome;
    }

    // 13. Something keeps the screen open.
    const bool active = choices.pauseWhileActive && inputs.idle.count() < 10.0;
    std::optional<std::string> pausedText;
    if (active) {
        pausedText = "Je gebruikt je Mac";
    } else if (choices.pauseDuringMeetings && inputs.camera) {
        pausedText = "Camera is in gebruik";
    } else if (choices.pauseDuringMeetings && inputs.microphone) {
        pausedText = "Microfoon in gebruik door " + *inputs.microphone;
    }
    if (active && is<phase::Warning>(state.phase)) {
        hidePanel(outcome);
        state.snoozeUntil = now + std::chrono::seconds{600};
        state.snoozeIsManual = false;
        log(outcome, "Waarschuwing geannuleerd, 10 minuten pauze");
        enter(outcome, inputs, phase::Snoozed{*state.snoozeUntil});
        return outcome;
    }
    if (pausedText) {
        hidePanel(outcome);
        enter(outcome, inputs, phase::Paused{*pausedText});
        return outcome;
    }

    // 14. Warn first.
    if (choices.warningEnabled) {
        if (!is<phase::Warning>(state.phase)) {
            std::vector<std::string> names;
            for (const KeyDevice& key : choices.keys)
                if (state.keyStates[key.id] == KeyState::away) names.push_back(key.name);
            std::string message;
            for (std::size_t i = 0; i < names.size(); ++i) {
                if (i > 0) message += i + 1 == names.size() ? " en " : ", ";
                message += names[i];
            }
            if (names.empty()) message = "Je bent buiten bereik";
            if (names.size() == 1) message += " is buiten bereik";
            if (names.size() > 1) message += " zijn buiten bereik";

            const TimePoint deadline = now + nanoseconds(choices.warningSeconds);
            enter(outcome, inputs, phase::Warning{deadline});
            log(outcome, "Waarschuwing: " + message);
            outcome.effects.push_back(
                effect::PanelShown{deadline, choices.warningSeconds, message});
            return outcome;
        }
        if (now < std::get<phase::Warning>(state.phase).deadline) return outcome;
    }

    // 15. Lock: warnings are off, or the countdown has ended.
    hidePanel(outcome);
    log(outcome, "Mac wordt gelockt");
    state.lockRequestedAt = now;
    enter(outcome, inputs, phase::Locked{});
    outcome.effects.push_back(effect::LockRequested{});
    return outcome;
}

Outcome lockNow(State before, const Inputs& inputs) {
    Outcome outcome{std::move(before), {}};
    hidePanel(outcome);
    log(outcome, "Mac wordt gelockt");
    outcome.state.lockRequestedAt = inputs.now;
    enter(outcome, inputs, phase::Locked{});
    outcome.effects.push_back(effect::LockRequested{});
    return outcome;
}

Outcome pause(State before, const Inputs& inputs, Seconds duration) {
    Outcome outcome{std::move(before), {}};
    outcome.state.snoozeUntil = inputs.now + nanoseconds(duration);
    outcome.state.snoozeIsManual = true;
    hidePanel(outcome);
    log(outcome, "Handmatig gepauzeerd tot " + utc(*outcome.state.snoozeUntil, inputs.wallAhead));
    return andTick(std::move(outcome), inputs);
}

Outcome resume(State before, const Inputs& inputs) {
    Outcome outcome{std::move(before), {}};
    outcome.state.snoozeUntil.reset();
    outcome.state.snoozeIsManual = false;
    log(outcome, "Hervat");
    return andTick(std::move(outcome), inputs);
}

Outcome cancelWarning(State before, const Inputs& inputs) {
    Outcome outcome{std::move(before), {}};
    if (!is<phase::Warning>(outcome.state.phase)) return outcome;
    hidePanel(outcome);
    outcome.state.snoozeUntil = inputs.now + std::chrono::seconds{600};
    outcome.state.snoozeIsManual = false;
    log(outcome, "Waarschuwing geannuleerd, 10 minuten pauze");
    enter(outcome, inputs, phase::Snoozed{*outcome.state.snoozeUntil});
    return outcome;
}

Outcome screenLocked(State before, const Inputs& inputs) {
    Outcome outcome{std::move(before), {}};
    outcome.state.screenLocked = true;
    hidePanel(outcome);
    enter(outcome, inputs, phase::Locked{});
    return outcome;
}

Outcome screenUnlocked(State before, const Inputs& inputs) {
    Outcome outcome{std::move(before), {}};
    outcome.state.screenLocked = false;
    outcome.state.lockRequestedAt.reset();
    if (!outcome.state.snoozeIsManual) outcome.state.snoozeUntil.reset();
    outcome.state.belowSince.clear();
    hidePanel(outcome);
    enter(outcome, inputs, phase::WaitingForReturn{});
    return outcome;
}

Outcome enabledAssigned(State before, const Inputs& inputs, bool enabled) {
    Outcome outcome{std::move(before), {}};
    if (!enabled) return outcome;
    outcome.state.belowSince.clear();
    hidePanel(outcome);
    enter(outcome, inputs, phase::WaitingForReturn{});
    return outcome;
}

} // namespace wegslot::oracle

#include "history/decisions.h"

#include "model/settings.h"
#include "monitor/rule_fold.h"

#include <algorithm>
#include <optional>
#include <tuple>

namespace wegslot::history {
namespace {

using Kind = Decision::Kind;

std::optional<Kind> kindOf(const PhaseEntered& entered) {
    if (entered.name == "warning") return Kind::warned;
    if (entered.isJudgedLock()) return Kind::locked;
    if (entered.name == "paused") return Kind::heldOpen;
    if (entered.name == "waitingForReturn" && entered.reason == "lockNotConfirmed")
        return Kind::lockFailed;
    return std::nullopt;
}

bool areKeysGone(const Stretch& stretch, std::size_t instant) {
    KeyStates states;
    for (const auto& [row, key] : stretch.keys)
        if (key.states[instant]) states.emplace(idOf(row), *key.states[instant]);
    const auto isAway = [](const auto& key) { return key.second == KeyState::away; };
    if (std::ranges::none_of(states, isAway)) return false;
    MemoryStore store(stretch.settingsAt(stretch.instants[instant].at));
    const Settings settings(store);
    return fold(settings.rule.get(), settings.keys.get(), states).keysGone;
}

/// A pause that holds while the keys are away: there is no phase that tells of it.
void addHeldSnoozes(std::vector<Decision>& found, const Stretch& stretch, std::size_t number) {
    std::optional<std::string> snoozed; // why
    bool isTold = false;
    std::size_t next = 0;
    for (std::size_t i = 0; i < stretch.instants.size(); ++i) {
        for (; next < stretch.events.size() && stretch.events[next].at <= stretch.instants[i].at;
             ++next)
            if (const auto* const entered = stretch.events[next].phase()) {
                snoozed.reset();
                isTold = false;
                if (entered->name == "snoozed") snoozed = entered->reason;
            }
        if (!snoozed || isTold || !areKeysGone(stretch, i)) continue;
        isTold = true;
        found.push_back({.kind = Kind::heldOpen,
                         .stretch = number,
                         .at = stretch.instants[i].at,
                         .reason = *snoozed});
    }
}

/// The program starts with waiting.
void addNotArmed(std::vector<Decision>& found, const Stretch& stretch, std::size_t number) {
    static const PhaseEntered begun{.name = "waitingForReturn",
                                    .reason = "guardBegins",
                                    .cause = PhaseCause::judgement,
                                    .until = {}};
    const PhaseEntered* waiting = nullptr;
    TimePoint since;
    const auto tell = [&](TimePoint until) {
        if (waiting != nullptr && until - since > notArmedAfter)
            found.push_back({.kind = Kind::notArmed,
                             .stretch = number,
                             .at = later(since, notArmedAfter),
                             .reason = waiting->reason});
        waiting = nullptr;
    };
    for (const Event& event : stretch.events) {
        const auto* const entered = event.as<trace::Start>() != nullptr ? &begun : event.phase();
        if (entered == nullptr) continue;
        tell(event.at);
        if (entered->name != "waitingForReturn") continue;
        waiting = entered;
        since = event.at;
    }
    if (!stretch.instants.empty()) tell(stretch.instants.back().at);
}

} // namespace

std::vector<Decision> decisions(const std::vector<Stretch>& past) {
    std::vector<Decision> found;
    for (std::size_t i = 0; i < past.size(); ++i) {
        for (const Event& event : past[i].events)
            if (const auto* const entered = event.phase())
                if (const auto kind = kindOf(*entered))
                    found.push_back(
                        {.kind = *kind, .stretch = i, .at = event.at, .reason = entered->reason});
        addHeldSnoozes(found, past[i], i);
        addNotArmed(found, past[i], i);
    }
    std::ranges::stable_sort(found, {}, [](const Decision& decision) {
        return std::tuple(decision.stretch, decision.at);
    });
    return found;
}

} // namespace wegslot::history

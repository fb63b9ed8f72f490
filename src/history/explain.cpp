#include "history/explain.h"

#include "model/choice_range.h"
#include "model/settings.h"
#include "monitor/monitor.h"
#include "trace/settings_values.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <tuple>
#include <utility>

namespace wegslot::history {
namespace {

using Kind = Decision::Kind;

std::vector<KeyDevice> keysOf(const Preferences& settings) {
    const auto found = settings.find("keys");
    if (found == settings.end()) return {};
    return meaning<std::vector<KeyDevice>>(found->second).value_or(std::vector<KeyDevice>{});
}

/// The instant of the decision, or the last before it.
std::size_t instantOf(const Stretch& stretch, TimePoint at) {
    const std::size_t next = stretch.from(later(at, std::chrono::milliseconds{1}));
    return next == 0 ? 0 : next - 1;
}

Nanoseconds notNearFor(const Stretch& stretch, const Stretch::Key& key, std::size_t instant) {
    std::size_t first = instant;
    while (first > 0 && key.states[first - 1] && *key.states[first - 1] != KeyState::near)
        --first;
    return stretch.instants[instant].at - stretch.instants[first].at;
}

KeyFact factOf(const Stretch& stretch, const KeyDevice& device, std::size_t instant) {
    KeyFact fact;
    fact.key = rowOf(device.id).value_or(0);
    fact.threshold = device.threshold;
    const auto found = stretch.keys.find(fact.key);
    if (found == stretch.keys.end()) return fact;
    const Stretch::Key& key = found->second;
    fact.state = key.states[instant].value_or(KeyState::away);
    if (const auto& heard = key.heard[instant]) {
        fact.silentFor = stretch.instants[instant].at - heard->last;
        fact.median = heard->median;
    }
    if (fact.state != KeyState::near) fact.notNearFor = notNearFor(stretch, key, instant);
    return fact;
}

/// From when the keys were last as they should be until they are again: in between it is the same
/// decision, sooner or later.
struct Episode {
    TimePoint begin;
    TimePoint end;
};

Episode episodeOf(const Stretch& stretch, const Decision& decision) {
    Episode episode{later(stretch.instants.front().at, -Monitor::tickInterval),
                    stretch.instants.back().at};
    for (const Event& event : stretch.events) {
        const auto* const entered = event.phase();
        if (entered == nullptr) continue;
        const bool isArmed = entered->name == "present";
        const bool begins =
            decision.kind == Kind::notArmed ? entered->name == "waitingForReturn" : isArmed;
        if (begins && event.at < decision.at) episode.begin = event.at;
        if (isArmed && event.at > decision.at) {
            episode.end = event.at;
            break;
        }
    }
    return episode;
}

/// Where judging anew begins.
std::size_t beginning(const Stretch& stretch, TimePoint of) {
    for (std::size_t i = instantOf(stretch, later(of, -lookBack)); i > 0; --i)
        if (stretch.instants[i].isSettled && stretch.instants[i].at <= later(of, -lookBack))
            return i;
    return 0;
}

bool isArmed(const Phase& phase) {
    return !is<phase::WaitingForReturn>(phase) && !is<phase::Locked>(phase) &&
           !is<phase::Disabled>(phase) && !is<phase::NoKeys>(phase) &&
           !is<phase::BluetoothUnavailable>(phase);
}

/// Judges one decision anew as often as somebody wants.
class Court {
public:
    Court(const Stretch& stretch, const Decision& decision)
        : stretch_(stretch),
          decision_(decision),
          episode_(episodeOf(stretch, decision)),
          from_(beginning(stretch, episode_.begin)),
          until_(instantOf(stretch, episode_.end) + 1) {}

    [[nodiscard]] bool isOtherwise(const Change& change) const {
        const auto outcomes = judgedAnew(stretch_, from_, until_, &change);
        bool wasArmed = false; // when the keys were as they should be
        bool warns = false;
        bool locks = false;
        bool arms = false;
        for (const Outcome& outcome : outcomes) {
            if (outcome.at <= episode_.begin) {
                wasArmed = isArmed(outcome.phase);
                continue;
            }
            warns |= is<phase::Warning>(outcome.phase);
            locks |= is<phase::Locked>(outcome.phase) && outcome.cause == PhaseCause::judgement;
            arms |= is<phase::Present>(outcome.phase) && outcome.at < episode_.end;
        }
        switch (decision_.kind) {
        case Kind::warned: // a guard that is not there is no help
            return wasArmed && !warns && !locks;
        case Kind::locked:
            return wasArmed && !locks;
        case Kind::heldOpen:
            return warns || locks;
        case Kind::notArmed:
            return arms;
        case Kind::lockFailed:
            break;
        }
        return false;
    }

private:
    const Stretch& stretch_;
    const Decision& decision_;
    Episode episode_;
    std::size_t from_;
    std::size_t until_;
};

/// The first change, by steps of the panel's control, that makes it otherwise.
class Search {
public:
    Search(const Court& court, const Preferences& settings) : court_(court), settings_(settings) {}

    [[nodiscard]] std::vector<Remedy> all() {
        for (const KeyDevice& key : keysOf(settings_))
            number({.setting = "keys", .value = {}, .key = rowOf(key.id).value_or(0)},
                   key.threshold.value, thresholdChoice.lowest.value, thresholdChoice.highest.value,
                   thresholdChoice.step.value);
        rule();
        delay("awayDelay", awayDelayChoice);
        delay("lostTimeout", lostTimeoutChoice);
        toggle("warningEnabled");
        delay("warningSeconds", warningSecondsChoice);
        toggle("pauseDuringMeetings");
        toggle("pauseWhileActive");
        return std::move(found_);
    }

private:
    bool helps(const Change& change, PreferenceValue before, int steps) {
        if (!court_.isOtherwise(change)) return false;
        found_.push_back(
            {.change = change, .before = std::move(before), .steps = steps, .price = {}});
        return true;
    }

    void number(Change change, double before, double lowest, double highest, double step) {
        for (int steps = 1; steps <= static_cast<int>((highest - lowest) / step); ++steps)
            for (const double value : stepsAway(before, steps, lowest, highest, step)) {
                change.value = value;
                if (helps(change, before, steps)) return;
            }
    }

    void delay(const char* name, const ChoiceRange<Seconds>& range) {
        const auto before = settings_.find(name);
        if (before == settings_.end()) return;
        number({.setting = name, .value = {}}, std::get<double>(before->second),
               range.lowest.count(), range.highest.count(), range.step.count());
    }

    void toggle(const char* name) {
        const auto before = settings_.find(name);
        if (before == settings_.end()) return;
        helps({.setting = name, .value = !std::get<bool>(before->second)}, before->second, 1);
    }

    void rule() {
        const auto before = settings_.find("rule");
        if (before == settings_.end() || keysOf(settings_).size() < 2) return;
        const auto rule = meaning<LockRule>(before->second).value_or(LockRule::allAway);
        const LockRule other = rule == LockRule::allAway ? LockRule::anyAway : LockRule::allAway;
        helps({.setting = "rule", .value = trace::valueOf(other)}, before->second, 1);
    }

    const Court& court_;
    const Preferences& settings_;
    std::vector<Remedy> found_;
};

/// A lock that was lived, and what it belongs to.
struct LivedLock {
    TimePoint at;
    Episode episode;
};

std::vector<LivedLock> livedLocks(const Stretch& stretch) {
    std::vector<LivedLock> locks;
    TimePoint present = TimePoint::min();
    for (const Event& event : stretch.events) {
        const auto* const entered = event.phase();
        if (entered == nullptr) continue;
        if (entered->isJudgedLock()) locks.push_back({event.at, {present, TimePoint::max()}});
        if (entered->name != "present") continue;
        present = event.at;
        for (auto lock = locks.rbegin();
             lock != locks.rend() && lock->episode.end == TimePoint::max(); ++lock)
            lock->episode.end = present;
    }
    return locks;
}

std::vector<TimePoint> imaginedLocks(const Stretch& stretch, const Change& change) {
    std::vector<TimePoint> locks;
    for (const Outcome& outcome : judgedAnew(stretch, 0, stretch.instants.size(), &change))
        if (is<phase::Locked>(outcome.phase) && outcome.cause == PhaseCause::judgement)
            locks.push_back(outcome.at);
    return locks;
}

void addTo(Price& price, const Stretch& stretch, const Decision* decision, const Change& change) {
    const auto imagined = imaginedLocks(stretch, change);
    auto next = imagined.begin();
    for (const auto& [lived, episode] : livedLocks(stretch)) {
        for (; next != imagined.end() && *next <= episode.begin; ++next)
            ++price.locksMore;
        if (next == imagined.end() || *next > episode.end) {
            const bool isMeant =
                decision != nullptr && episode.begin < decision->at && decision->at <= episode.end;
            price.locksLess += isMeant ? 0 : 1;
            continue;
        }
        if (*next - lived > price.latest) {
            price.latest = *next - lived;
            price.latestAt = lived;
        }
        // Who was locked out, came back and was locked out again lost the same work once more.
        for (++next; next != imagined.end() && *next <= episode.end; ++next)
            ++price.locksMore;
    }
    price.locksMore += static_cast<std::size_t>(imagined.end() - next);
}

Price priceOf(const std::vector<Stretch>& past, const Decision& decision, const Change& change) {
    Price price;
    for (std::size_t i = 0; i < past.size(); ++i)
        addTo(price, past[i], i == decision.stretch ? &decision : nullptr, change);
    return price;
}

bool isCheaper(const Remedy& one, const Remedy& other) {
    const auto cost = [](const Price& price) {
        return std::tuple(price.locksLess + price.locksMore, price.latest);
    };
    return cost(one.price) < cost(other.price);
}

} // namespace

std::vector<double> stepsAway(double value, int steps, double lowest, double highest, double step) {
    std::vector<double> values;
    for (const int direction : {1, -1}) {
        const double before = std::clamp(value + direction * (steps - 1) * step, lowest, highest);
        const double moved = std::clamp(value + direction * steps * step, lowest, highest);
        if (steps == 1 ? moved != value : moved != before) values.push_back(moved);
    }
    return values;
}

Explanation facts(const std::vector<Stretch>& past, const Decision& decision) {
    const Stretch& stretch = past.at(decision.stretch);
    Explanation explanation{.decision = decision,
                            .settings = stretch.settingsAt(decision.at),
                            .keys = {},
                            .remedy = {}};
    if (stretch.instants.empty()) return explanation;
    const std::size_t instant = instantOf(stretch, decision.at);
    for (const KeyDevice& key : keysOf(explanation.settings))
        explanation.keys.push_back(factOf(stretch, key, instant));
    return explanation;
}

Explanation explain(const std::vector<Stretch>& past, const Decision& decision) {
    Explanation explanation = facts(past, decision);
    const Stretch& stretch = past.at(decision.stretch);
    if (stretch.instants.empty() || decision.kind == Kind::lockFailed) return explanation;
    const Court court(stretch, decision);
    auto remedies = Search(court, explanation.settings).all();
    for (Remedy& remedy : remedies)
        remedy.price = priceOf(past, decision, remedy.change);
    const auto cheapest = std::ranges::min_element(remedies, isCheaper);
    if (cheapest != remedies.end()) explanation.remedy = *cheapest;
    return explanation;
}

bool makesOtherwise(const std::vector<Stretch>& past, const Decision& decision,
                    const Change& change) {
    return Court(past.at(decision.stretch), decision).isOtherwise(change);
}

} // namespace wegslot::history

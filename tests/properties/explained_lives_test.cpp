// Random lives whose locks and warnings are explained: the change that is named makes it otherwise
// when the whole life is judged anew, and one step less of the panel's control does not. Another
// number of lives: WEGSLOT_LIVES.
#include "history/explain.h"
#include "model/choice_range.h"
#include "tests/properties/how_many.h"
#include "tests/support/lived_history.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

using namespace wegslot;
using namespace wegslot::history;
using namespace std::chrono_literals;

namespace {

/// Whether a judged lock, or a warning unless the decision is about a lock, comes between the keys'
/// being as they should be and their return, as both were lived.
bool acts(const Stretch& stretch, const Decision& decision, const Change& change) {
    TimePoint from = stretch.instants.front().at;
    TimePoint until = stretch.instants.back().at;
    for (const Event& event : stretch.events)
        if (const auto* const entered = event.phase())
            if (entered->name == "present") {
                if (event.at < decision.at) from = event.at;
                if (event.at > decision.at) {
                    until = event.at;
                    break;
                }
            }
    bool found = false;
    for (const Outcome& outcome : judgedAnew(stretch, 0, stretch.instants.size(), &change))
        if (outcome.at > from && outcome.at <= until)
            found |=
                (is<phase::Warning>(outcome.phase) && decision.kind != Decision::Kind::locked) ||
                (is<phase::Locked>(outcome.phase) && outcome.cause == PhaseCause::judgement);
    return found;
}

std::pair<double, double> limits(const std::string& setting) {
    if (setting == "keys") return {thresholdChoice.lowest.value, thresholdChoice.highest.value};
    const auto of = [](const ChoiceRange<Seconds>& range) {
        return std::pair(range.lowest.count(), range.highest.count());
    };
    if (setting == "awayDelay") return of(awayDelayChoice);
    if (setting == "lostTimeout") return of(lostTimeoutChoice);
    return of(warningSecondsChoice);
}

} // namespace

TEST(ExplainedLives, TheChangeThatIsNamedHelpsAndOneStepLessDoesNot) {
    std::map<std::string, int> named;
    int without = 0;
    for (std::uint64_t seed = 1; seed <= howManyLives(60) / 3; ++seed) {
        LivedHistory life(seed);
        life.begin(static_cast<unsigned>(seed % LivedHistory::mostKeys) + 1);
        life.live(12min);
        const auto past = stretches(life.kept());
        for (const Decision& decision : decisions(past)) {
            const bool wasActing =
                decision.kind == Decision::Kind::warned || decision.kind == Decision::Kind::locked;
            if (!wasActing && decision.kind != Decision::Kind::heldOpen) continue;
            const auto remedy = explain(past, decision).remedy;
            if (!remedy) {
                ++without;
                continue;
            }
            ++named[remedy->change.setting];
            const Stretch& stretch = past[decision.stretch];
            EXPECT_EQ(acts(stretch, decision, remedy->change), !wasActing)
                << "seed " << seed << " " << remedy->change.setting;
            const double* const value = std::get_if<double>(&remedy->change.value);
            if (value == nullptr || remedy->steps == 1) continue;
            const auto [lowest, highest] = limits(remedy->change.setting);
            const double step = remedy->change.setting == "lostTimeout" ? 5 : 1;
            Change less = remedy->change;
            for (const double other : stepsAway(std::get<double>(remedy->before), remedy->steps - 1,
                                                lowest, highest, step)) {
                less.value = other;
                EXPECT_FALSE(makesOtherwise(past, decision, less))
                    << "seed " << seed << " " << less.setting << " at " << other;
            }
        }
    }
    EXPECT_GE(named.size(), 3U) << "too dull to prove anything";
    EXPECT_GT(without, 0);
}

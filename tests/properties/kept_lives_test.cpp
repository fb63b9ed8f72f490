// Random lives whose history is kept and judged anew: what is kept is all that judging rests on.
// Another number of lives: WEGSLOT_LIVES.
#include "history/hindsight.h"
#include "tests/properties/how_many.h"
#include "tests/support/lived_history.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

using namespace wegslot;
using namespace wegslot::history;
using namespace std::chrono_literals;

namespace {

/// A phase that was entered, as far as it is kept.
struct Entered {
    TimePoint at;
    std::string name;
    PhaseCause cause;

    friend bool operator==(const Entered&, const Entered&) = default;

    friend std::ostream& operator<<(std::ostream& out, const Entered& entered) {
        return out << Seconds{entered.at - World::start}.count() << " " << entered.name << " "
                   << static_cast<int>(entered.cause);
    }
};

std::vector<Entered> lived(const Stretch& stretch, std::size_t from) {
    std::vector<Entered> phases;
    for (const Event& event : stretch.events)
        if (const auto* const entered = event.phase())
            if (from == 0 || event.at > stretch.instants[from].at)
                phases.push_back({event.at, entered->name, entered->cause});
    return phases;
}

std::vector<Entered> judged(const Stretch& stretch, std::size_t from) {
    std::vector<Entered> phases;
    for (const Outcome& outcome : judgedAnew(stretch, from, stretch.instants.size()))
        if (from == 0 || outcome.at > stretch.instants[from].at)
            phases.push_back({outcome.at, std::string(name(outcome.phase)), outcome.cause});
    return phases;
}

} // namespace

TEST(KeptLives, IsJudgedAsItWasLived) {
    std::size_t phases = 0;
    for (std::uint64_t seed = 1; seed <= howManyLives(60); ++seed) {
        LivedHistory life(seed);
        life.begin(static_cast<unsigned>(seed % LivedHistory::mostKeys) + 1);
        life.live(20min);
        const auto stretches = history::stretches(life.kept());
        ASSERT_EQ(stretches.size(), 1U);
        const auto expected = lived(stretches[0], 0);
        ASSERT_EQ(judged(stretches[0], 0), expected) << "seed " << seed;
        phases += expected.size();
    }
    EXPECT_GT(phases, 10 * howManyLives(60));
}

TEST(KeptLives, JudgingMayBeginWhereverNobodyWaitsForAnything) {
    std::size_t begun = 0;
    for (std::uint64_t seed = 1; seed <= howManyLives(60); seed += 3) {
        LivedHistory life(seed);
        life.begin(2);
        life.live(15min);
        const auto stretches = history::stretches(life.kept());
        ASSERT_EQ(stretches.size(), 1U);
        const Stretch& stretch = stretches[0];
        for (std::size_t from = 1; from < stretch.instants.size(); from += 37) {
            if (!stretch.instants[from].isSettled) continue;
            ASSERT_EQ(judged(stretch, from), lived(stretch, from))
                << "seed " << seed << " from " << from;
            ++begun;
        }
    }
    EXPECT_GT(begun, howManyLives(60) / 3);
}

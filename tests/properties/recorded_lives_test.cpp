// Random lives of the core that are recorded and replayed: a replay does what the core did, line
// for line, calls of the radio included. Another number of lives: WEGSLOT_LIVES.
#include "recording/recorder.h"
#include "replay/replay.h"
#include "replay/replay_output.h"
#include "tests/properties/how_many.h"
#include "tests/properties/life.h"
#include "tests/support/world.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

using namespace wegslot;

namespace {

using Lines = std::vector<std::string>;

/// A duration as a trace has it.
Seconds told(Seconds duration) {
    constexpr double largest = std::numeric_limits<double>::max();
    if (std::isnan(duration.count())) return Seconds{0};
    return toMilliseconds(Seconds{std::clamp(duration.count(), -largest, largest)});
}

/// Prints what a life's core does in the words of a replay, beside the life's own bookkeeping.
class Witness final : public LogDestination {
public:
    Witness(Stage& stage, Lines& lines)
        : stage_(stage),
          output_([&lines](std::string_view line) { lines.emplace_back(line); }, stage.time),
          logBefore_(Log::setDestination(this)) {
        stage.onEffect = [this, before = stage.onEffect](const Effect& effect) {
            std::visit([this](const auto& happened) { print(happened); }, effect);
            before(effect);
        };
        stage.central.onCall([this](std::string_view operation, const Uuid* id) {
            output_.central(operation, id);
            if (id != nullptr) stage_.onCall(operation, *id);
        });
    }

    ~Witness() override { Log::setDestination(logBefore_); }

    void write(std::string_view message) override {
        output_.write(message);
        logBefore_->write(message);
    }

private:
    void print(const effect::Logged&) {}

    void print(const effect::PhaseSet& set) { output_.phase(set.phase); }

    void print(const effect::StatesSet& set) { output_.keyStates(set.states); }

    void print(const effect::PanelShown& panel) {
        const Warning warning{panel.deadline, told(panel.total), panel.message, {}};
        output_.warning(&warning);
        showing_ = true;
    }

    void print(const effect::PanelHidden&) {
        if (std::exchange(showing_, false)) output_.warning(nullptr);
    }

    void print(const effect::LockRequested&) { output_.lock(); }

    Stage& stage_;
    ReplayOutput output_;
    LogDestination* logBefore_;
    bool showing_ = false;
};

struct Recorded {
    std::string trace;
    Lines live;
    std::vector<std::string> faults;
};

/// Lives a life, recorded from its `from`-th event on. The recorder asks for the activity after
/// each event, so that a touch is not told late.
Recorded recorded(std::uint64_t seed, bool anonymous, int from = 0) {
    Recorded result;
    Life life(seed, Life::Telling::no, Life::Scope::traceable);
    Stage& stage = life.stage();
    VirtualTime questions(stage.time.now());
    unsigned given = 1000;
    const auto request = [&] {
        return Recorder::Request{.sink =
                                     [&result](std::string_view line) {
                                         result.trace += line;
                                         return std::optional<Failure>();
                                     },
                                 .anonymous = anonymous};
    };
    const Witness witness(stage, result.live);
    Recorder recorder(
        *stage.model, {stage.time, questions, stage.session, stage.activity, stage.platform.lock},
        [&given] { return numbered(++given); },
        from == 0 ? std::optional(request()) : std::nullopt);
    for (int event = 1; life.step(); ++event) {
        questions.advance(ActivityWatch::interval);
        if (event != from) continue;
        EXPECT_EQ(recorder.record(request()), std::nullopt);
    }
    recorder.stop();
    result.faults = life.faults();
    return result;
}

struct Replayed {
    Lines lines;
    std::string fault;
};

Replayed replayed(const std::string& trace) {
    Replayed result;
    std::istringstream input(trace);
    Replay replay([&result](std::string_view line) { result.lines.emplace_back(line); }, {});
    const auto outcome = replay.run(input);
    if (!outcome) result.fault = outcome.failure().message.builtIn();
    return result;
}

/// The phases and locks with their times, without the texts that may hold a name.
Lines judgements(const Lines& lines) {
    Lines chosen;
    for (const std::string& line : lines)
        if (line.find(",\"phase\":") != std::string::npos ||
            line.find(",\"lock\":") != std::string::npos)
            chosen.push_back(line.substr(0, line.find(",\"text\":")));
    return chosen;
}

} // namespace

TEST(RecordedLives, AReplayDoesWhatTheCoreDid) {
    for (std::uint64_t seed = 1; seed <= howManyLives(60); ++seed) {
        const Recorded life = recorded(seed, false);
        ASSERT_TRUE(life.faults.empty()) << "seed " << seed << ": " << life.faults.front();
        Replayed again = replayed(life.trace);
        ASSERT_EQ(again.fault, "") << "seed " << seed;
        // Written before anybody could see it.
        ASSERT_FALSE(again.lines.empty());
        EXPECT_NE(again.lines.front().find("Wegslot gestart"), std::string::npos);
        again.lines.erase(again.lines.begin());
        for (std::size_t i = 0; i < std::min(again.lines.size(), life.live.size()); ++i)
            ASSERT_EQ(again.lines[i], life.live[i]) << "seed " << seed << ", line " << i;
        ASSERT_EQ(again.lines.size(), life.live.size()) << "seed " << seed;
    }
}

TEST(RecordedLives, AnAnonymousOneIsJudgedTheSame) {
    for (std::uint64_t seed = 1; seed <= howManyLives(60); ++seed) {
        const Recorded life = recorded(seed, true);
        const Replayed again = replayed(life.trace);
        ASSERT_EQ(again.fault, "") << "seed " << seed;
        ASSERT_EQ(judgements(again.lines), judgements(life.live)) << "seed " << seed;
        for (const char* const name : {"Horloge", "Sleutelbos", "Vergaderen", "Opname"})
            EXPECT_EQ(life.trace.find(name), std::string::npos) << name << ", seed " << seed;
    }
}

TEST(RecordedLives, OneThatBeginsInTheMiddleIsAValidTrace) {
    for (std::uint64_t seed = 1; seed <= howManyLives(60); ++seed) {
        const Recorded life = recorded(seed, seed % 2 == 0, static_cast<int>(20 + 7 * seed % 200));
        ASSERT_EQ(replayed(life.trace).fault, "") << "seed " << seed;
        std::istringstream lines(life.trace);
        std::string line;
        for (const char* const first :
             {"{\"t\":0,\"start\":", "{\"t\":0,\"settings\":", "{\"t\":0,\"bluetooth\":"}) {
            ASSERT_TRUE(std::getline(lines, line));
            EXPECT_TRUE(line.starts_with(first)) << line;
        }
    }
}

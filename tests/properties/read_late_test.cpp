// Reports that wait a little until they are read together, and are all read before each judgement:
// a recording of that is judged by a replay, which reads each at once, as it was judged live.
#include "core/app_model.h"
#include "recording/recorder.h"
#include "replay/replay.h"
#include "stage/staged_platform.h"
#include "tests/support/captured_log.h"
#include "tests/support/dice.h"
#include "tests/support/fake_central.h"
#include "tests/support/world.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

/// The states of the keys, each with its time in milliseconds.
using Judgements = std::vector<std::string>;

/// A key that comes and goes, heard by a radio that is always read late.
class LateHome {
public:
    explicit LateHome(std::uint64_t seed)
        : dice_(seed),
          radio_(time_, {.filtersDuplicates = false, .reading = 100ms}, seed) {
        model_.settings().keys.set({keyNamed("Telefoon", 1)});
        recorder_.emplace(
            model_, platform_.ports, [] { return Uuid{}; },
            Recorder::Request{.sink = [this](std::string_view line) {
                trace_ += line;
                return std::optional<Failure>();
            }});
        judging_ = model_.monitor().keyStates().onChange([this](const KeyStates& states) {
            if (states.empty() || states == before_) return;
            before_ = states;
            judgements.push_back(std::to_string((time_.now() - World::start) / 1ms) + " " +
                                 std::string(name(states.begin()->second)));
        });
        radio_.add(numbered(1), {.interval = 170ms}, 30ms);
        radio_.setPowered(true);
    }

    std::string live() {
        for (int times = 0; times < 20; ++times) {
            time_.advance(std::chrono::milliseconds{dice_.between(2'000, 20'000)});
            radio_.silence(numbered(1));
            time_.advance(std::chrono::milliseconds{dice_.between(2'000, 20'000)});
            radio_.speak(numbered(1));
        }
        recorder_->stop();
        return trace_;
    }

    Judgements judgements;

private:
    Dice dice_;
    CapturedLog log_;
    VirtualTime time_{World::start};
    MemoryStore store_;
    FakeCentral radio_;
    StagedPlatform platform_{time_, time_};
    AppModel model_{{store_, radio_, platform_.ports,
                     [] { return std::make_unique<StagedHud>([](const Warning*) {}); }}};
    std::optional<Recorder> recorder_;
    std::string trace_;
    KeyStates before_;
    Subscription judging_;
};

Judgements judgedAgain(const std::string& trace) {
    constexpr std::string_view mark = ",\"keyStates\":{\"";
    Judgements judgements;
    std::istringstream input(trace);
    Replay replay(
        [&](std::string_view line) {
            const auto at = line.find(mark);
            if (at == std::string_view::npos) return;
            const double seconds = std::stod(std::string(line.substr(5)));
            const auto state = line.substr(line.find("\":\"", at + mark.size()) + 3);
            judgements.push_back(std::to_string(std::llround(seconds * 1000)) + " " +
                                 std::string(state.substr(0, state.find('"'))));
        },
        {});
    EXPECT_TRUE(replay.run(input));
    return judgements;
}

} // namespace

TEST(ReadLate, WhatHasComeInIsHeardBeforeAJudgement) {
    const CapturedLog log;
    VirtualTime time(World::start);
    FakeCentral radio(time, {.reading = 100ms}, 1);
    Scanner scanner(radio, time, time);
    bool came = false;
    radio.onReport = [&](const Uuid&) { came = true; };
    radio.add(numbered(1), {.interval = 1s});
    radio.setPowered(true);
    scanner.setPassiveIDs({numbered(1)});
    scanner.setWatchedIDs({numbered(1)});
    for (int steps = 0; steps < 3000 && !came; ++steps)
        time.advance(1ms);
    ASSERT_TRUE(came);
    ASSERT_EQ(scanner.lastSeen(numbered(1)), std::nullopt); // it waits
    scanner.refreshSnapshot();
    EXPECT_EQ(scanner.lastSeen(numbered(1)), time.now());
}

TEST(ReadLate, AReplayJudgesAtTheSameTicks) {
    int changes = 0;
    for (std::uint64_t seed = 1; seed <= 40; ++seed) {
        LateHome home(seed);
        EXPECT_EQ(judgedAgain(home.live()), home.judgements) << "seed " << seed;
        changes += static_cast<int>(home.judgements.size());
    }
    EXPECT_GT(changes, 1000); // or nothing was compared
}

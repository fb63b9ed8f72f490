#include "history/explain.h"

#include "base/text.h"
#include "history/explanation_text.h"
#include "tests/support/lived_history.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace wegslot;
using namespace wegslot::history;
using namespace std::chrono_literals;

namespace {

using Lines = std::vector<std::string>;

/// A life by hand, with the keys "Telefoon" (1) and "Horloge" (2), each at -75 dBm. Devices are
/// heard 7 ms after a judgement.
struct ExplainTest : testing::Test {
    LivedHistory life{1};
    World& world = life.world;

    /// Both heard as given, for so many seconds; nothing: silent.
    void hear(int seconds, std::optional<int> phone, std::optional<int> watch = {}) {
        for (int second = 0; second < seconds; ++second) {
            if (phone) world.hear(1, *phone);
            if (watch) world.hear(2, *watch);
            world.pass(1s);
        }
    }

    /// Every decision of that kind, as it is explained.
    [[nodiscard]] Lines explained(Decision::Kind kind) {
        const auto past = stretches(life.kept());
        const Reader reader{
            .nameOf = [](Row key) { return Message(key == 101 ? "Telefoon" : "Horloge"); },
            .when = [](TimePoint at) { return utcText(at).substr(14, 5); }};
        Lines lines;
        for (const Decision& decision : decisions(past)) {
            if (decision.kind != kind) continue;
            lines.push_back(title(decision, past[decision.stretch], reader).builtIn());
            for (const Message& said : sentences(explain(past, decision), past, reader))
                lines.push_back(said.builtIn());
        }
        return lines;
    }
};

} // namespace

TEST_F(ExplainTest, AWeakSignalNamesTheStrengthTheThresholdAndTheSmallestStep) {
    life.begin(1);
    hear(10, -55);
    hear(20, -90);
    hear(10, -55);
    EXPECT_EQ(explained(Decision::Kind::locked),
              (Lines{"00:23 Gelockt",
                     "Telefoon was zwak: -90 dBm, 10 s onder de drempel van -75 dBm; weg na 5 s",
                     "Anders met: de drempel van Telefoon op -90 dBm in plaats van -75",
                     "Aan wat verder bewaard is verandert dan niets"}));
}

TEST_F(ExplainTest, AFailedLockSaysWhereToLook) {
    life.begin(1);
    hear(10, -55);
    hear(20, -90);
    EXPECT_EQ(explained(Decision::Kind::lockFailed),
              (Lines{"00:28 De lock kwam niet: niets bevestigde hem",
                     "Telefoon was zwak: -90 dBm, 15 s onder de drempel van -75 dBm; weg na 5 s",
                     "Wat er mis is, zegt: wegslot --check --lock"}));
}

TEST_F(ExplainTest, ASilentKeyIsSaidToBeSilent) {
    life.begin(1);
    hear(10, -55);
    hear(30, {});
    EXPECT_EQ(explained(Decision::Kind::warned),
              (Lines{"00:20 Gewaarschuwd",
                     "Telefoon was 10 s niet gehoord, en 5 s niet dichtbij; weg na 5 s",
                     "Geen enkele instelling had dit alleen anders gemaakt"}));
}

TEST_F(ExplainTest, OfTwoKeysOneIsWeakAndOneSilent) {
    life.begin(2);
    hear(10, -55, -55);
    hear(25, -80, {});
    hear(10, -55, -55);
    const Lines lines = explained(Decision::Kind::locked);
    ASSERT_GE(lines.size(), 4U);
    EXPECT_EQ(lines[0], "00:25 Gelockt");
    EXPECT_EQ(lines[1],
              "Telefoon was zwak: -80 dBm, 12 s onder de drempel van -75 dBm; weg na 5 s");
    EXPECT_EQ(lines[2], "Horloge was 15 s niet gehoord; weg na 15 s geen signaal");
    EXPECT_EQ(lines[3], "Anders met: de drempel van Telefoon op -80 dBm in plaats van -75");
}

TEST_F(ExplainTest, HandsThatHeldTheScreenOpenAreNamed) {
    life.begin(1);
    hear(10, -55);
    for (int i = 0; i < 3; ++i) {
        world.activity.touch();
        hear(5, -90);
    }
    hear(5, -55);
    EXPECT_EQ(
        explained(Decision::Kind::heldOpen),
        (Lines{"00:18 Niet gelockt: Je gebruikt je Mac",
               "Telefoon was zwak: -90 dBm, 5 s onder de drempel van -75 dBm; weg na 5 s",
               "Anders zonder: niet locken als je je Mac gebruikt", "1 lock komt er dan bij"}));
}

TEST_F(ExplainTest, APauseThatSomebodyAskedForIsNamed) {
    life.begin(1);
    hear(10, -55);
    world.monitor().pause(60s);
    hear(20, -90);
    EXPECT_EQ(explained(Decision::Kind::heldOpen),
              (Lines{"00:18 Niet gelockt: Pauze gevraagd",
                     "Telefoon was zwak: -90 dBm, 5 s onder de drempel van -75 dBm; weg na 5 s",
                     "Geen enkele instelling had dit alleen anders gemaakt"}));
}

TEST_F(ExplainTest, AGuardThatWaitsInVainSaysForWhat) {
    life.begin(1);
    hear(90, -80);
    hear(10, -55);
    hear(20, -90);
    EXPECT_EQ(explained(Decision::Kind::notArmed),
              (Lines{"01:00 Wacht nog op een sleutel: Bewaking begint",
                     "Telefoon was zwak: -80 dBm, 59 s onder de drempel van -75 dBm; weg na 5 s",
                     "Anders met: de drempel van Telefoon op -80 dBm in plaats van -75",
                     "Aan wat verder bewaard is verandert dan niets"}));
}

TEST_F(ExplainTest, ThePriceCountsWhatElseChanges) {
    life.begin(1);
    hear(10, -55);
    hear(20, -80); // one lock
    hear(10, -55);
    hear(20, -80); // and another
    hear(10, -55);
    const Lines lines = explained(Decision::Kind::locked);
    ASSERT_EQ(lines.size(), 8U);
    EXPECT_EQ(lines[2], "Anders met: de drempel van Telefoon op -80 dBm in plaats van -75");
    EXPECT_EQ(lines[3], "1 andere lock valt dan weg");
    EXPECT_EQ(lines[7], "1 andere lock valt dan weg");
}

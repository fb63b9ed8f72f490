#include "model/switched_off.h"

#include "base/virtual_time.h"

#include <gtest/gtest.h>

#include <optional>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct SwitchedOffTest : testing::Test {
    VirtualTime time{TimePoint{std::chrono::sys_days{std::chrono::year{2026} / 11 / 15}}};
    MemoryStore store;
    std::optional<Settings> settings;
    std::optional<Remembered> remembered;
    std::optional<SwitchedOff> off;

    SwitchedOffTest() { start(); }

    /// Wegslot, or the whole computer, starts anew.
    void start() {
        off.reset();
        settings.emplace(store);
        remembered.emplace(store);
        off.emplace(*settings, *remembered, time);
    }
};

} // namespace

TEST_F(SwitchedOffTest, ADayIsLongAndIsCountedAcrossStarts) {
    EXPECT_FALSE(off->isLong());
    settings->enabled.set(false);
    time.advance(23h);
    start();
    time.advance(1h);
    EXPECT_FALSE(off->isLong());
    time.advance(1ms);
    EXPECT_TRUE(off->isLong());
    start();
    EXPECT_TRUE(off->isLong());
}

TEST_F(SwitchedOffTest, WhoSwitchesItOnBeginsAnew) {
    settings->enabled.set(false);
    time.advance(20h);
    settings->enabled.set(false); // it is
    settings->enabled.set(true);
    time.advance(48h);
    EXPECT_FALSE(off->isLong());
    settings->enabled.set(false);
    time.advance(20h);
    EXPECT_FALSE(off->isLong());
    time.advance(5h);
    EXPECT_TRUE(off->isLong());
    settings->enabled.set(true);
    EXPECT_FALSE(off->isLong());
}

TEST_F(SwitchedOffTest, SwitchingItOffAgainDoesNotBeginAnew) {
    settings->enabled.set(false);
    time.advance(20h);
    settings->enabled.set(false);
    time.advance(5h);
    EXPECT_TRUE(off->isLong());
}

TEST_F(SwitchedOffTest, WhoFindsItOffBeginsToCountThen) {
    store.write("enabled", false); // by hand, while it did not run
    start();
    time.advance(24h);
    EXPECT_FALSE(off->isLong());
    time.advance(1s);
    EXPECT_TRUE(off->isLong());
    store.write("enabled", true);
    start();
    EXPECT_FALSE(off->isLong());
    EXPECT_EQ(remembered->offSince.get(), Seconds{0});
}

TEST_F(SwitchedOffTest, NothingIsNotedOfWhoNeverSwitchesIt) {
    settings->enabled.set(true);
    EXPECT_EQ(store.values().count("offSince"), 0U);
}

TEST_F(SwitchedOffTest, ATimeThatIsNoneIsNotLong) {
    settings->enabled.set(false);
    for (const double since :
         {4e9, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
        remembered->offSince.set(Seconds{since});
        EXPECT_FALSE(off->isLong()) << since;
    }
}

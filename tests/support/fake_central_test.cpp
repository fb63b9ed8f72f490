// What only the fake central has: a controller's habits. What every central does is in
// tests/contract.
#include "tests/support/fake_central.h"

#include "tests/contract/told.h"
#include "tests/support/world.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

using Events = std::vector<std::string>;
using Identity = DeviceSpec::Identity;

const Uuid id = numbered(1);
const Uuid other = numbered(2);

/// A world with one kind of controller, switched on.
struct Hardware {
    explicit Hardware(FakeCentral::Controller controller, const Wanted& wanted = {.list = true})
        : central(time, controller, 1) {
        told.follow(&central);
        central.onReport = [this](const Uuid& heard) {
            if (heard == id) reports.push_back(time.now() - World::start);
        };
        central.want(wanted);
        central.setPowered(true);
    }
    ~Hardware() { told.follow(nullptr); }

    VirtualTime time{World::start};
    FakeCentral central;
    Told told;
    std::vector<Nanoseconds> reports; ///< of `id`, since the start
};

} // namespace

TEST(FakeCentral, AControllerThatFiltersReportsADeviceOnceAScan) {
    Hardware filtering({.filtersDuplicates = true, .startUp = 0ms});
    filtering.central.add(id, {.interval = 100ms});
    filtering.time.advance(ScanPolicy::longestBurst - 1ns);
    EXPECT_EQ(filtering.reports.size(), 1U);
    filtering.time.advance(200ms); // started anew
    EXPECT_EQ(filtering.reports.size(), 2U);

    Hardware plain({.filtersDuplicates = false, .startUp = 0ms});
    plain.central.add(id, {.interval = 100ms});
    plain.time.advance(ScanPolicy::longestBurst - 1ns);
    EXPECT_GT(plain.reports.size(), 20U);
}

TEST(FakeCentral, AScanTakesItsTimeToBegin) {
    Hardware slow({.filtersDuplicates = false, .startUp = 310ms}, {.hear = {id}});
    slow.central.add(id, {.interval = 1ms});
    Nanoseconds longest{0};
    slow.time.advance(60s);
    for (std::size_t report = 1; report < slow.reports.size(); ++report)
        longest = std::max(longest, slow.reports[report] - slow.reports[report - 1]);
    // A burst of one second, from its first report to the next burst's.
    EXPECT_GT(longest, ScanPolicy::nextScan + 310ms - 30ms);
    EXPECT_LT(longest, ScanPolicy::nextScan + 310ms + 30ms);
}

TEST(FakeCentral, WithNothingWantedItDoesNotListen) {
    Hardware idle({}, {});
    idle.central.add(id, {});
    idle.time.advance(10s);
    EXPECT_FALSE(idle.central.isScanning());
    EXPECT_TRUE(idle.reports.empty());
    idle.central.want({.hear = {id}});
    EXPECT_TRUE(idle.central.isScanning());
}

TEST(FakeCentral, IntervalsHaveTheirRandomDelayAndUnevenOnesAreOftenShorter) {
    for (const auto rhythm : {DeviceSpec::Rhythm::steady, DeviceSpec::Rhythm::uneven}) {
        Hardware open({.filtersDuplicates = false, .startUp = 0ms});
        open.central.add(id, {.interval = 500ms, .rhythm = rhythm});
        open.time.advance(100s);
        int shorter = 0;
        for (std::size_t report = 1; report < open.reports.size(); ++report) {
            const Nanoseconds interval = open.reports[report] - open.reports[report - 1];
            EXPECT_LE(interval, 510ms);
            shorter += interval < 500ms ? 1 : 0;
        }
        EXPECT_EQ(shorter > 0, rhythm == DeviceSpec::Rhythm::uneven);
        EXPECT_GT(open.reports.size(), 195U);
    }
}

TEST(FakeCentral, WhileAConnectionIsMadeNobodyIsHeardAndAConnectedDeviceIsSilent) {
    Hardware open({.filtersDuplicates = false, .startUp = 0ms, .attempt = 700ms});
    open.central.add(id, {.interval = 10ms});
    open.central.add(other, {.identity = Identity::bonded, .interval = 100ms});
    open.central.connect(other);
    open.time.advance(1ms);
    EXPECT_EQ(open.central.attempts(), 1);
    const std::size_t before = open.reports.size();
    open.time.advance(690ms);
    EXPECT_EQ(open.reports.size(), before);
    open.time.advance(100ms);
    EXPECT_GT(open.reports.size(), before);
    EXPECT_EQ(open.told.of(other), Events{"connected"});
    const int heard = open.told.heard(other).times;
    open.time.advance(10s);
    EXPECT_EQ(open.told.heard(other).times, heard);
}

TEST(FakeCentral, AnAttemptWaitsUntilTheKeysWereHeard) {
    Hardware keys({.startUp = 0ms}, {.connect = {other}, .hear = {id}});
    keys.central.add(other, {.interval = 100ms});
    keys.central.add(id, {.interval = 2s}, 1500ms);
    keys.central.connect(other);
    keys.time.advance(1499ms);
    EXPECT_EQ(keys.central.attempts(), 0);
    keys.time.advance(1ms);
    EXPECT_EQ(keys.central.attempts(), 1);
}

TEST(FakeCentral, ADeviceThatRefusesFailsEachAttempt) {
    Hardware open({});
    open.central.add(id,
                     {.identity = Identity::bonded, .connecting = DeviceSpec::Connecting::refuses});
    for (int attempt = 1; attempt <= 3; ++attempt) {
        open.central.connect(id);
        open.time.advance(3s);
        EXPECT_EQ(open.central.attempts(), attempt);
        EXPECT_EQ(open.told.of(id), Events(static_cast<std::size_t>(attempt), "failed"));
    }
}

TEST(FakeCentral, ADeviceThatLeavesLosesItsLinkAndIsConnectedWhenItReturns) {
    Hardware open({});
    open.central.add(id, {.identity = Identity::bonded});
    open.central.connect(id);
    open.time.advance(3s);
    open.central.silence(id);
    open.time.advance(FakeCentral::supervision - 1ns);
    EXPECT_EQ(open.told.of(id), Events{"connected"});
    open.time.advance(1ns);
    EXPECT_EQ(open.told.of(id), (Events{"connected", "lost"}));
    open.central.connect(id);
    open.time.advance(1min);
    EXPECT_EQ(open.central.peripheralState(id), PeripheralState::connecting);
    open.central.speak(id);
    open.time.advance(3s);
    EXPECT_EQ(open.told.of(id), (Events{"connected", "lost", "connected"}));
}

TEST(FakeCentral, AKeyIsListenedForUnlessItsConnectionTellsItsStrength) {
    for (const auto& strength : {std::optional(-50), std::optional<int>()}) {
        Hardware keys({}, {.connect = {id}});
        keys.central.add(id, {.identity = Identity::bonded, .linkRssi = strength});
        keys.central.connect(id);
        keys.time.advance(5s);
        EXPECT_EQ(keys.told.of(id), Events{"connected"});
        bool listened = false;
        for (int step = 0; step < 100; ++step) {
            keys.time.advance(100ms);
            listened = listened || keys.central.isScanning();
        }
        EXPECT_EQ(listened, !strength);
    }
}

TEST(FakeCentral, AConnectionAskedForWhileOneEndsIsMadeAfterwards) {
    Hardware open({});
    open.central.add(id, {.identity = Identity::bonded});
    open.central.connect(id);
    open.time.advance(3s);
    open.central.cancelConnection(id);
    open.central.connect(id);
    open.time.advance(3s);
    EXPECT_EQ(open.told.of(id), (Events{"connected", "lost", "connected"}));
}

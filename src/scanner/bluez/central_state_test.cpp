#include "scanner/bluez/central_state.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace wegslot::bluez;

namespace {

CentralState ready(Adapter adapter) {
    return stateIn({.daemon = Daemon::ready, .adapter = std::move(adapter)});
}

} // namespace

TEST(BluezState, FollowsTheAdapter) {
    EXPECT_EQ(ready({.powered = true}), CentralState::poweredOn);
    EXPECT_EQ(ready({.powered = false}), CentralState::poweredOff);
    EXPECT_EQ(ready({.powered = false, .powerState = "off"}), CentralState::poweredOff);
    EXPECT_EQ(ready({.powered = false, .powerState = "off-blocked"}), CentralState::poweredOff);
    EXPECT_EQ(ready({.powered = false, .powerState = "on-disabling"}), CentralState::poweredOff);
    EXPECT_EQ(ready({.powered = false, .powerState = "off-enabling"}), CentralState::resetting);
    EXPECT_EQ(ready({.powered = true, .isCentral = false}), CentralState::unsupported);
}

TEST(BluezState, FollowsTheDaemon) {
    EXPECT_EQ(stateIn({.daemon = Daemon::unknown}), CentralState::unknown);
    EXPECT_EQ(stateIn({.daemon = Daemon::loading}), CentralState::resetting);
    EXPECT_EQ(stateIn({.daemon = Daemon::denied, .adapter = Adapter{.powered = true}}),
              CentralState::unauthorized);
}

TEST(BluezState, WhatIsMissingCountsAsNoneOnlyAfterAWhile) {
    EXPECT_EQ(stateIn({.daemon = Daemon::absent}), CentralState::resetting);
    EXPECT_EQ(stateIn({.daemon = Daemon::absent, .graceIsOver = true}), CentralState::unsupported);
    EXPECT_EQ(stateIn({.daemon = Daemon::ready}), CentralState::resetting);
    EXPECT_EQ(stateIn({.daemon = Daemon::ready, .graceIsOver = true}), CentralState::unsupported);
    EXPECT_EQ(stateIn({.daemon = Daemon::ready, .hadAdapter = true}), CentralState::poweredOff);
    EXPECT_EQ(stateIn({.daemon = Daemon::ready, .hadAdapter = true, .graceIsOver = true}),
              CentralState::unsupported);
}

TEST(BluezState, OnlyADaemonThatStaysAwayHasWordsOfItsOwn) {
    EXPECT_EQ(wordsIn({.daemon = Daemon::absent, .graceIsOver = true}),
              "Bluetooth draait niet op deze computer");
    EXPECT_EQ(wordsIn({.daemon = Daemon::absent}), std::nullopt);
    EXPECT_EQ(wordsIn({.daemon = Daemon::ready, .graceIsOver = true}), std::nullopt);
    EXPECT_EQ(wordsIn({.daemon = Daemon::loading, .graceIsOver = true}), std::nullopt);
}

TEST(BluezState, ARadioThatIsLentIsAwayAndSaysSoWhereItWouldBeOn) {
    const Surroundings lent{
        .daemon = Daemon::ready, .adapter = Adapter{.powered = true}, .isLent = true};
    EXPECT_EQ(stateIn(lent), CentralState::resetting);
    EXPECT_EQ(wordsIn(lent), "Bluetooth koppelt een toestel");
    Surroundings off = lent;
    off.adapter->powered = false;
    EXPECT_EQ(stateIn(off), CentralState::poweredOff);
    EXPECT_EQ(wordsIn(off), std::nullopt);
    Surroundings gone = lent;
    gone.daemon = Daemon::absent;
    gone.graceIsOver = true;
    EXPECT_EQ(stateIn(gone), CentralState::unsupported);
    EXPECT_EQ(wordsIn(gone), "Bluetooth draait niet op deze computer");
}

TEST(BluezState, OnlyWhatIsMissingHasAGrace) {
    EXPECT_EQ(graceFor({.daemon = Daemon::absent}), daemonGrace);
    EXPECT_EQ(graceFor({.daemon = Daemon::ready}), adapterGrace);
    EXPECT_EQ(graceFor({.daemon = Daemon::ready, .adapter = Adapter{}}), std::nullopt);
    EXPECT_EQ(graceFor({.daemon = Daemon::unknown}), std::nullopt);
}

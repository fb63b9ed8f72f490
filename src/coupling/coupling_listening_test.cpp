// How a device is listened to before it becomes a key, and what it becomes.

#include "tests/support/coupling_stage.h"

using namespace wegslot;
using namespace wegslot::coupling;
using namespace std::chrono_literals;

struct CouplingListeningTest : CouplingStage {};

TEST_F(CouplingListeningTest, AllIsPutBackBeforeItIsListenedTo) {
    bond();
    radio.calls.clear();
    coupling->act(Action::yes);
    EXPECT_TRUE(now<step::PuttingBack>());
    EXPECT_EQ(radio.takeCalls(), Calls{"disappear"});
    tell().isGone();
    EXPECT_TRUE(now<step::ListeningLit>());
}

TEST_F(CouplingListeningTest, ARadioThatWasLentIsWaitedFor) {
    bond();
    world.central.setState(CentralState::resetting);
    coupling->act(Action::yes);
    tell().isGone();
    EXPECT_TRUE(now<step::PuttingBack>());
    world.pass(2s);
    world.central.setState(CentralState::poweredOn);
    world.pass(1ms);
    EXPECT_TRUE(now<step::ListeningLit>());
}

TEST_F(CouplingListeningTest, ARadioThatDoesNotComeBackIsSaid) {
    bond();
    world.central.setState(CentralState::resetting);
    coupling->act(Action::yes);
    tell().isGone();
    world.pass(15s);
    EXPECT_TRUE(now<step::Hindered>());
}

TEST_F(CouplingListeningTest, ARadioThatGoesOffWhileItListensIsNoSilenceOfThePhone) {
    pocket();
    world.central.setState(CentralState::poweredOff);
    EXPECT_TRUE(now<step::Hindered>());
    world.pass(5min);
    EXPECT_TRUE(now<step::Hindered>());
    EXPECT_TRUE(keys().empty());
}

TEST_F(CouplingListeningTest, WhatIsHeardWellBecomesAKeyWithAThresholdFromWhereItIsCarried) {
    pocket();
    EXPECT_TRUE(keys().empty());
    finishListening(2);
    ASSERT_TRUE(now<step::Judged>());
    EXPECT_EQ(now<step::Judged>()->audibility, Audibility{audibility::Good{}});
    ASSERT_EQ(keys().size(), 1U);
    EXPECT_EQ(keys()[0].id, numbered(7));
    EXPECT_EQ(keys()[0].name, "Telefoon");
    EXPECT_EQ(keys()[0].threshold, Dbm{-85}); // -70 in the pocket; -50 on the table gave -65
    EXPECT_EQ(now<step::Judged>()->threshold, Dbm{-85});
    EXPECT_EQ(radio.takeCalls(), Calls{});
}

TEST_F(CouplingListeningTest, ItsThresholdCanBeSetFromHere) {
    pocket();
    finishListening(2);
    world.keepHearing(7, -60, 6);
    coupling->act(Action::setFromHere);
    EXPECT_EQ(keys()[0].threshold, Dbm{-75});
    EXPECT_EQ(now<step::Judged>()->threshold, Dbm{-75});
    EXPECT_FALSE(now<step::Judged>()->unheard);
    world.pass(1min);
    coupling->act(Action::setFromHere); // it is not heard
    EXPECT_EQ(keys()[0].threshold, Dbm{-75});
    EXPECT_TRUE(now<step::Judged>()->unheard);
}

TEST_F(CouplingListeningTest, WhatHasGapsBecomesAKeyAndItsGapsCanBeAllowed) {
    pocket();
    finishListening(20);
    ASSERT_TRUE(now<step::Judged>());
    EXPECT_EQ(now<step::Judged>()->audibility, Audibility{audibility::Moderate{20s}});
    EXPECT_EQ(keys().size(), 1U);
    EXPECT_EQ(world.settings().lostTimeout.get(), Seconds{15});
    coupling->act(Action::takeLostTimeout);
    EXPECT_EQ(world.settings().lostTimeout.get(), Seconds{30});
}

TEST_F(CouplingListeningTest, ALongerTimeOfTheUsersIsNotShortened) {
    world.settings().lostTimeout.set(Seconds{60});
    pocket();
    finishListening(20);
    coupling->act(Action::takeLostTimeout);
    EXPECT_EQ(world.settings().lostTimeout.get(), Seconds{60});
}

TEST_F(CouplingListeningTest, WhatIsSilentWhereItIsCarriedIsNoKeyAndItsBondGoes) {
    pocket();
    world.pass(2min);
    ASSERT_TRUE(now<step::Judged>());
    EXPECT_EQ(now<step::Judged>()->audibility, Audibility{audibility::Silent{}});
    EXPECT_TRUE(keys().empty());
    coupling->act(Action::close);
    EXPECT_EQ(radio.takeCalls(), (Calls{"forget", "disappear"}));
    EXPECT_TRUE(now<step::PuttingBack>());
    tell().isGone();
    EXPECT_TRUE(now<step::Closed>());
}

TEST_F(CouplingListeningTest, WhatIsSilentWithItsScreenLitIsNotListenedToAnyLonger) {
    own();
    world.pass(20s);
    ASSERT_TRUE(now<step::Judged>());
    coupling->act(Action::proceed); // it was not lit
    EXPECT_TRUE(now<step::ListeningLit>());
    EXPECT_EQ(radio.takeCalls(), Calls{});
}

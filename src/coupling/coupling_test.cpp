#include "coupling/coupling.h"

#include "tests/support/coupling_stage.h"

using namespace wegslot;
using namespace wegslot::coupling;
using namespace std::chrono_literals;

struct CouplingTest : CouplingStage {};

// --- Appearing -----------------------------------------------------------------------------------

TEST_F(CouplingTest, BeginsWithTheKindAndAppearsUnderANameOfItsOwn) {
    EXPECT_TRUE(now<step::Choosing>());
    coupling->act(Action::android);
    EXPECT_TRUE(now<step::Preparing>());
    EXPECT_EQ(coupling->kind(), Kind::android);
    EXPECT_EQ(radio.takeCalls(), Calls{"appear"});
    tell().appears();
    ASSERT_TRUE(now<step::Visible>());
    EXPECT_EQ(now<step::Visible>()->name, "Wegslot 4F2A");
    EXPECT_EQ(now<step::Visible>()->until, world.time.now() + 2min);
}

TEST_F(CouplingTest, AWatchIsNotAskedForACode) {
    coupling->act(Action::watch);
    EXPECT_EQ(radio.takeCalls(), Calls{"appear without code"});
}

TEST_F(CouplingTest, WhatTheRadioCannotIsSaidAndTriedAgainWhenAsked) {
    coupling->act(Action::iphone);
    tell().cannotAppear({.obstacle = Obstacle::noRoom});
    EXPECT_TRUE(now<step::PuttingBack>());
    tell().isGone();
    ASSERT_TRUE(now<step::Hindered>());
    EXPECT_EQ(now<step::Hindered>()->trouble, (Trouble{.obstacle = Obstacle::noRoom}));
    coupling->act(Action::proceed);
    EXPECT_TRUE(now<step::Preparing>());
    EXPECT_EQ(radio.takeCalls(), (Calls{"appear", "appear"}));
}

TEST_F(CouplingTest, ADaemonThatGoesInTheMiddleEndsItWithNothingLeft) {
    meet();
    tell().cannotAppear({.obstacle = Obstacle::noRadio});
    tell().isGone();
    EXPECT_TRUE(now<step::Hindered>());
    world.pass(10min);
    EXPECT_TRUE(now<step::Hindered>()); // no limit of before
}

TEST_F(CouplingTest, NobodyCameAfterTwoMinutes) {
    appear();
    world.pass(2min - 1s);
    EXPECT_TRUE(now<step::Visible>());
    world.pass(1s);
    EXPECT_EQ(radio.takeCalls(), (Calls{"appear", "disappear"}));
    EXPECT_EQ(ending(), Ending::nobodyCame);
}

TEST_F(CouplingTest, WhoComesAndGoesTakesNoTimeFromTheTwoMinutes) {
    appear();
    world.pass(100s);
    tell().visitorCame(stranger);
    world.pass(10s);
    tell().visitorLeft();
    ASSERT_TRUE(now<step::Visible>());
    EXPECT_TRUE(now<step::Visible>()->again);
    world.pass(10s);
    EXPECT_EQ(ending(), Ending::nobodyCame);
}

// --- Bonding -------------------------------------------------------------------------------------

TEST_F(CouplingTest, AVisitorThatDoesNotBeginIsAskedAfterThreeSeconds) {
    meet();
    ASSERT_TRUE(now<step::Bonding>());
    radio.calls.clear();
    world.pass(3s - 1ms);
    EXPECT_EQ(radio.takeCalls(), Calls{});
    world.pass(1ms);
    EXPECT_EQ(radio.takeCalls(), Calls{"ask"});
}

TEST_F(CouplingTest, AVisitorThatBeginsByItselfIsNotAsked) {
    meet();
    radio.calls.clear();
    tell().codeCame(123456);
    coupling->act(Action::yes);
    world.pass(30s);
    EXPECT_EQ(radio.takeCalls(), Calls{"same"});
    EXPECT_TRUE(now<step::Bonding>());
}

TEST_F(CouplingTest, AnotherCodeEndsItAndIsNeverTriedWithoutOne) {
    meet();
    tell().codeCame(42);
    ASSERT_TRUE(now<step::Comparing>());
    EXPECT_EQ(now<step::Comparing>()->code, 42U);
    radio.calls.clear();
    coupling->act(Action::no);
    EXPECT_EQ(radio.takeCalls(), (Calls{"not the same", "forget", "disappear"}));
    EXPECT_EQ(ending(), Ending::otherCode);
    coupling->act(Action::proceed);
    EXPECT_EQ(radio.takeCalls(), Calls{"appear"});
}

TEST_F(CouplingTest, ACodeThatNobodyAskedForIsRefused) {
    appear();
    radio.calls.clear();
    tell().codeCame(42);
    EXPECT_EQ(radio.takeCalls(), Calls{"not the same"});
    EXPECT_TRUE(now<step::Visible>());
}

TEST_F(CouplingTest, ACodeThatNobodyAnswersIsRefusedAfterHalfAMinute) {
    meet();
    tell().codeCame(42);
    radio.calls.clear();
    world.pass(30s);
    EXPECT_EQ(radio.takeCalls(), (Calls{"not the same", "forget", "disappear"}));
    EXPECT_EQ(ending(), Ending::tookTooLong);
}

TEST_F(CouplingTest, ACodeThatIsWithdrawnIsNotAskedForAnyMore) {
    meet();
    tell().codeCame(42);
    tell().codeWithdrawn();
    EXPECT_TRUE(now<step::Bonding>());
    tell().refused(Refusal::cancelled, "");
    EXPECT_EQ(ending(), Ending::cancelledThere);
}

TEST_F(CouplingTest, EachRefusalEndsItAndLeavesNoHalfBond) {
    const std::vector<std::pair<Refusal, Ending>> all{{Refusal::cancelled, Ending::cancelledThere},
                                                      {Refusal::noAnswer, Ending::noAnswer},
                                                      {Refusal::otherBond, Ending::bondFromBefore},
                                                      {Refusal::failed, Ending::bondFailed}};
    for (const auto& [refusal, expected] : all) {
        meet();
        radio.calls.clear();
        tell().refused(refusal, "Name");
        EXPECT_EQ(radio.takeCalls(), (Calls{"forget", "disappear"}));
        EXPECT_EQ(ending(), expected);
        coupling->act(Action::back);
        EXPECT_TRUE(now<step::Choosing>());
    }
}

TEST_F(CouplingTest, WhatFailedWithACodeIsTriedWithoutOne) {
    meet();
    tell().refused(Refusal::failed, "AuthenticationFailed");
    EXPECT_EQ(ending(), Ending::bondFailed);
    EXPECT_EQ(now<step::Failed>()->why, "AuthenticationFailed");
    radio.calls.clear();
    coupling->act(Action::proceed);
    EXPECT_EQ(radio.takeCalls(), Calls{"appear without code"});
}

TEST_F(CouplingTest, APhoneThatNobodyAnswersIsGivenUpAfterAMinute) {
    meet();
    world.pass(60s);
    EXPECT_EQ(ending(), Ending::noAnswer);
}

TEST_F(CouplingTest, ABondFromBeforeGoesOnlyWhenTheOwnerSaysSo) {
    appear();
    radio.calls.clear();
    tell().acquaintanceCame(phone);
    ASSERT_TRUE(now<step::Acquainted>());
    coupling->act(Action::no);
    EXPECT_EQ(radio.takeCalls(), Calls{});
    EXPECT_TRUE(now<step::Visible>());
    tell().acquaintanceCame(phone);
    coupling->act(Action::yes);
    EXPECT_EQ(radio.takeCalls(), Calls{"forget"});
    EXPECT_TRUE(now<step::Visible>());
}

TEST_F(CouplingTest, ABondFromBeforeThatNobodyAnswersForStays) {
    appear();
    radio.calls.clear();
    tell().acquaintanceCame(phone);
    world.pass(60s);
    EXPECT_TRUE(now<step::Visible>());
    EXPECT_EQ(radio.takeCalls(), Calls{});
}

// --- The proof -----------------------------------------------------------------------------------

TEST_F(CouplingTest, ABondWithoutAnIdentityIsNoneAndIsForgotten) {
    meet();
    tell().bonded(stranger);
    ASSERT_TRUE(now<step::Identifying>());
    radio.calls.clear();
    world.pass(10s);
    EXPECT_EQ(radio.takeCalls(), (Calls{"forget", "disappear"}));
    EXPECT_EQ(ending(), Ending::noIdentity);
    EXPECT_TRUE(keys().empty());
}

TEST_F(CouplingTest, AnIdentityMayComeAfterTheBondAndANameAfterThat) {
    meet();
    tell().bonded(stranger);
    tell().visitorChanged({.name = std::nullopt, .identity = numbered(7)});
    ASSERT_TRUE(now<step::Owning>());
    tell().visitorChanged(phone);
    EXPECT_EQ(now<step::Owning>()->visitor, phone);
}

TEST_F(CouplingTest, SomebodyElsesIsForgotten) {
    bond();
    ASSERT_TRUE(now<step::Owning>());
    radio.calls.clear();
    coupling->act(Action::no);
    EXPECT_EQ(radio.takeCalls(), (Calls{"forget", "disappear"}));
    EXPECT_EQ(ending(), Ending::notTheOwners);
    EXPECT_TRUE(keys().empty());
}

TEST_F(CouplingTest, AllOfItTakesLessThanSixMinutes) {
    appear();
    world.pass(119s);
    tell().acquaintanceCame(phone);
    world.pass(59s);
    coupling->act(Action::yes);
    // The two minutes are over: it does not begin anew each time.
    world.pass(1s);
    EXPECT_EQ(ending(), Ending::nobodyCame);

    coupling->act(Action::back);
    meet();
    const TimePoint begin = world.time.now();
    while (!now<step::PuttingBack>() && world.time.now() - begin < 10min) {
        tell().codeCame(1); // over and over
        world.pass(25s);
        tell().codeWithdrawn();
        world.pass(25s);
    }
    EXPECT_EQ(world.time.now() - begin, Coupling::longestAppearance);
    EXPECT_EQ(ending(), Ending::tookTooLong);
}

// --- An identity that is known already -----------------------------------------------------------

TEST_F(CouplingTest, APastedIdentityIsHandedOnUntilItIsOne) {
    std::vector<std::string> pasted;
    coupling.reset();
    make([&pasted](const std::string& name, std::string_view text) -> std::optional<Failure> {
        pasted.push_back(name + ": " + std::string(text));
        if (text == "x") return Failure{"dit is geen identiteit"};
        return std::nullopt;
    });
    coupling->paste("Te vroeg", "x");
    coupling->act(Action::paste);
    EXPECT_EQ(coupling->step().get(), Step{step::Pasting{}});
    coupling->paste("Horloge", "x");
    EXPECT_EQ(coupling->step().get(), Step{step::Pasting{Failure{"dit is geen identiteit"}}});
    coupling->paste("Horloge", "ok");
    EXPECT_EQ(coupling->step().get(), Step{step::Pasted{"Horloge"}});
    EXPECT_EQ(pasted, (Calls{"Horloge: x", "Horloge: ok"}));
    coupling->act(Action::close);
    EXPECT_TRUE(now<step::Closed>());
    EXPECT_EQ(radio.takeCalls(), Calls{});
}

TEST_F(CouplingTest, WhereNobodyTakesAnIdentityNoneIsAskedFor) {
    coupling->act(Action::paste);
    EXPECT_TRUE(now<step::Choosing>());
}

// --- The ends ------------------------------------------------------------------------------------

TEST_F(CouplingTest, EveryStepHasAWayBackAndAWayOut) {
    using Walk = void (CouplingTest::*)();
    const std::vector<Walk> walks{&CouplingTest::bond, &CouplingTest::own, &CouplingTest::pocket,
                                  &CouplingTest::compare};
    for (const Walk walk : walks)
        for (const Action way : {Action::back, Action::close}) {
            (this->*walk)();
            coupling->act(way);
            if (now<step::PuttingBack>()) tell().isGone();
            EXPECT_EQ(way == Action::back, now<step::Choosing>() != nullptr);
            EXPECT_EQ(way == Action::close, now<step::Closed>() != nullptr);
            const Calls calls = radio.takeCalls();
            EXPECT_TRUE(std::ranges::find(calls, "forget") != calls.end());
            coupling.reset();
            make();
            EXPECT_TRUE(keys().empty());
        }
}

TEST_F(CouplingTest, ClosedWhileItIsPutBackIsClosedOnce) {
    meet();
    coupling->act(Action::back);
    coupling->act(Action::close);
    EXPECT_EQ(radio.takeCalls(), (Calls{"appear", "forget", "disappear"}));
    tell().isGone();
    EXPECT_TRUE(now<step::Closed>());
}

TEST_F(CouplingTest, ItsEndPutsBackWhatItDid) {
    meet();
    radio.calls.clear();
    coupling.reset();
    EXPECT_EQ(radio.takeCalls(), (Calls{"forget", "disappear"}));
    EXPECT_EQ(radio.listener, nullptr);
}

TEST_F(CouplingTest, TheBondOfAKeyStaysWhateverHappens) {
    world.settings().keys.set({keyNamed("Telefoon", 7)});
    own();
    coupling->act(Action::back);
    EXPECT_EQ(radio.takeCalls(), Calls{});
    EXPECT_EQ(keys().size(), 1U);
}

TEST_F(CouplingTest, AKeyThatIsCoupledAgainKeepsItsPlaceAndGetsItsThreshold) {
    world.settings().keys.set({keyNamed("Telefoon", 7), keyNamed("Horloge", 8)});
    pocket();
    finishListening(2);
    ASSERT_EQ(keys().size(), 2U);
    EXPECT_EQ(keys()[0].threshold, Dbm{-85});
    EXPECT_EQ(now<step::Judged>()->name, "Telefoon");
}

TEST_F(CouplingTest, WhatIsNotAskedForDoesNothing) {
    for (const Action action :
         {Action::yes, Action::no, Action::proceed, Action::takeLostTimeout, Action::setFromHere})
        coupling->act(action);
    EXPECT_TRUE(now<step::Choosing>());
    EXPECT_EQ(radio.takeCalls(), Calls{});
    tell().appears(); // late
    tell().visitorCame(stranger);
    tell().bonded(phone);
    tell().refused(Refusal::failed, "");
    EXPECT_TRUE(now<step::Choosing>());
}

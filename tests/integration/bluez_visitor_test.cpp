// Who comes to this computer while it appears: who may bond, who may not, and what is told of them.

#include "tests/integration/coupling_world.h"

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct CouplingVisitorTest : CouplingWorld {
    void SetUp() override { bluez.addAdapter(); }

    [[nodiscard]] bool areRemoved(std::size_t count) {
        loop.pass(2s);
        return loop.runUntil([&] { return bluez.removed.size() == count; }) &&
               (loop.settle(), true);
    }
    /// A visitor that was asked to bond, and what came of it.
    Events afterPair(const std::string& error) {
        radio->askForBond();
        loop.settle();
        bluez.answerPair(error);
        return take();
    }
};

} // namespace

// --- Who is a visitor ----------------------------------------------------------------------------

TEST_F(CouplingVisitorTest, TheFirstThatConnectsIsTheVisitor) {
    appearing();
    comes(phone, {{"Name", std::string("Telefoon")}});
    EXPECT_EQ(take(), Events{"came Telefoon -"});
    bluez.bluez.changeDevice(phone, {{"Name", std::string("Mijn telefoon")}});
    bluez.bluez.changeDevice(phone, {{"ServicesResolved", true}}); // says nothing of who it is
    EXPECT_EQ(take(), Events{"changed Mijn telefoon -"});
    comes(other);
    EXPECT_EQ(take(), Events{});
}

TEST_F(CouplingVisitorTest, WhoHasAFixedAddressIsKnownAtOnce) {
    appearing();
    comes(identity, {{"AddressType", std::string("public")}});
    EXPECT_EQ(take(), Events{"came ? " + identityText()});
}

TEST_F(CouplingVisitorTest, WhoWasConnectedBeforeIsNoVisitorUntilItComesAnew) {
    comes();
    appearing();
    bluez.bluez.changeDevice(phone, {{"Name", std::string("Telefoon")}});
    EXPECT_EQ(take(), Events{});
    EXPECT_EQ(*ask("RequestAuthorization", phone), turnedDown);
    goes();
    links.strengths[phone] = -50;
    bluez.bluez.changeDevice(phone, {{"Connected", true}});
    EXPECT_EQ(take(), Events{"came Telefoon -"});
}

TEST_F(CouplingVisitorTest, WhatThisComputerCalledOrConnectsTheOtherWayIsNoVisitor) {
    appearing();
    links.strengths[phone] = -50; // a link that was opened here
    bluez.comes(phone);
    links.classic.insert(other);
    bluez.comes(other);
    EXPECT_EQ(take(), Events{});
    EXPECT_EQ(*ask("RequestAuthorization", phone), turnedDown);
    EXPECT_EQ(*ask("RequestAuthorization", other), turnedDown);
}

TEST_F(CouplingVisitorTest, WhereTheKernelDoesNotSayWhoeverConnectsIsOne) {
    links.permitted = false;
    appearing();
    bluez.comes(phone);
    EXPECT_EQ(take(), Events{"came ? -"});
}

TEST_F(CouplingVisitorTest, WhoIsBondedFromBeforeIsAnAcquaintanceAndMayNotBond) {
    appearing();
    comes(identity, {{"AddressType", std::string("public")}, {"Paired", true}});
    EXPECT_EQ(take(), Events{"known ? " + identityText()});
    EXPECT_EQ(*ask("RequestAuthorization", identity), turnedDown);
    EXPECT_EQ(*confirm(1, identity), turnedDown);
    radio->askForBond();
    comes(); // somebody else may
    EXPECT_EQ(take(), Events{"came ? -"});
    EXPECT_EQ(bluez.calls("Pair"), 0);
}

TEST_F(CouplingVisitorTest, WhoGoesWithoutABondLeavesTheDoorToTheNext) {
    appearing();
    visited();
    comes(other);
    goes();
    EXPECT_EQ(take(), (Events{"left", "came ? -"})); // who waits, is here already
    goes(other);
    EXPECT_EQ(take(), Events{"left"});
    bluez.bluez.removeDevice(other);
    visited();
    bluez.bluez.removeDevice(phone); // without a word
    EXPECT_EQ(take(), Events{"left"});
}

TEST_F(CouplingVisitorTest, NobodyIsOneBeforeItAppearsOrAfterwards) {
    const auto prepared = [this] { return bluez.calls("RegisterAdvertisement") == 1; };
    radio->appear("Wegslot 4F2A", Confirmation::code);
    ASSERT_TRUE(loop.runUntil(prepared));
    links.strengths[phone] = -50;
    links.callers.insert(phone);
    bluez.comes(phone); // while bluetoothd still answers: told after it
    ASSERT_TRUE(isTold("came ? -"));
    EXPECT_EQ(take(), (Events{"appears", "came ? -"}));
    radio->disappear();
    bluez.goes(phone);
    ASSERT_TRUE(isTold("gone"));
    EXPECT_EQ(take(), Events{"gone"});
}

// --- The bond ------------------------------------------------------------------------------------

TEST_F(CouplingVisitorTest, ABondIsToldOnceWithTheIdentityThatCameWithIt) {
    appearing();
    bonded();
    bonds();
    EXPECT_EQ(take(), Events{});
}

TEST_F(CouplingVisitorTest, AnIdentityMayComeBeforeTheBondOrAfterItOrNever) {
    appearing();
    visited();
    bluez.bluez.changeDevice(phone, itsIdentity());
    bluez.bluez.changeDevice(phone, {{"Paired", true}});
    EXPECT_EQ(take(), (Events{"changed ? " + identityText(), "bonded ? " + identityText()}));
    gone();
    bluez.bluez.removeDevice(phone);
    static_cast<void>(take());
    appearing();
    visited();
    bluez.bluez.changeDevice(phone, {{"Paired", true}});
    EXPECT_EQ(take(), Events{"bonded ? -"});
    bluez.bluez.changeDevice(phone, itsIdentity());
    EXPECT_EQ(take(), Events{"changed ? " + identityText()});
}

TEST_F(CouplingVisitorTest, WhoIsPairedAndHandsOverNoIdentityIsToldOf) {
    appearing();
    visited();
    // BlueZ calls nobody bonded of whom the kernel keeps nothing.
    bluez.bluez.changeDevice(phone, {{"Paired", true}, {"Bonded", false}});
    EXPECT_EQ(take(), Events{"bonded ? -"});
}

TEST_F(CouplingVisitorTest, WhoBondedIsForgottenAlsoWhenAllElseIsPutBack) {
    appearing();
    bonded();
    gone();
    static_cast<void>(take());
    EXPECT_TRUE(bluez.removed.empty());
    radio->forget();
    radio->forget(); // it is under way
    radio->disappear();
    ASSERT_TRUE(isTold("gone"));
    EXPECT_EQ(take(), Events{"gone"});
    EXPECT_EQ(bluez.removed, std::vector<std::string>{pathOf(phone)});
    radio->forget(); // there is nobody any more
    gone();
    EXPECT_EQ(bluez.removed.size(), 1U);
}

TEST_F(CouplingVisitorTest, WhoIsToBeForgottenIsEvenIfNobodyWaits) {
    appearing();
    bonded();
    gone();
    radio->forget();
    radio.reset();
    EXPECT_TRUE(loop.runUntil([this] { return bluez.removed.size() == 1; }));
}

TEST_F(CouplingVisitorTest, ABondThatComesAsTheVisitorGoesCountsAndItIsStillTheVisitor) {
    appearing();
    visited();
    bluez.bluez.changeDevice(phone, {{"Paired", true}, {"Connected", false}});
    EXPECT_EQ(take(), Events{"bonded ? -"});
    radio->forget();
    loop.pass(2s - 1ns); // BlueZ has much to do with who has just bonded
    EXPECT_EQ(bluez.calls("RemoveDevice"), 0);
    loop.pass(1ns);
    EXPECT_EQ(bluez.removed, std::vector{pathOf(phone)});
    EXPECT_EQ(bluez.calls("Disconnect"), 0);
}

TEST_F(CouplingVisitorTest, OnlyAVisitorWithoutABondIsAskedForOne) {
    appearing();
    radio->askForBond();
    visited();
    radio->askForBond();
    loop.settle();
    EXPECT_EQ(bluez.calls("Pair"), 1);
    bonds();
    bluez.answerPair();
    EXPECT_EQ(take(), Events{"bonded Telefoon " + identityText()});
    radio->askForBond();
    loop.settle();
    EXPECT_EQ(bluez.calls("Pair"), 1);
}

TEST_F(CouplingVisitorTest, WhyThereIsNoBondIsTold) {
    appearing();
    visited();
    EXPECT_EQ(afterPair("org.bluez.Error.AuthenticationRejected"),
              Events{"refused 0 org.bluez.Error.AuthenticationRejected"});
    EXPECT_EQ(afterPair("org.bluez.Error.AlreadyExists"),
              Events{"refused 2 org.bluez.Error.AlreadyExists"});
    EXPECT_EQ(afterPair("org.bluez.Error.AuthenticationFailed"),
              Events{"refused 3 org.bluez.Error.AuthenticationFailed"});
    EXPECT_EQ(afterPair("org.bluez.Error.InProgress"), Events{});
    EXPECT_EQ(bluez.calls("CancelPairing"), 0);
    EXPECT_EQ(afterPair("org.freedesktop.DBus.Error.NoReply"),
              Events{"refused 1 org.freedesktop.DBus.Error.NoReply"});
    EXPECT_EQ(bluez.calls("CancelPairing"), 1); // BlueZ would go on
}

TEST_F(CouplingVisitorTest, WhoseOwnerCancelsLeaves) {
    appearing();
    visited();
    const auto code = confirm(123456);
    static_cast<void>(bluez.ask("Cancel", {}));
    goes();
    EXPECT_EQ(take(), (Events{"code 123456", "withdrawn", "left"}));
}

// --- Its end -------------------------------------------------------------------------------------

TEST_F(CouplingVisitorTest, ForgottenItIsAStrangerAndNobodyElseIsTouched) {
    appearing();
    comes(identity, {{"AddressType", std::string("public")}, {"Paired", true}});
    radio->forget();
    ASSERT_TRUE(areRemoved(1));
    radio->forget(); // there is nobody
    loop.settle();
    static_cast<void>(take());
    bonded();
    radio->forget();
    bluez.bluez.changeDevice(phone, {{"Name", std::string("x")}}); // until BlueZ has done it
    EXPECT_EQ(take(), Events{});
    ASSERT_TRUE(areRemoved(2));
    EXPECT_EQ(bluez.removed, (std::vector{pathOf(identity), pathOf(phone)}));
    visited(); // and may come again
    EXPECT_TRUE(bluez.isPairable());
}

TEST_F(CouplingVisitorTest, WhoGoesAtOnceIsForgottenAfterTwoSecondsLikeEverybody) {
    appearing();
    bonded();
    radio->forget();
    goes();
    loop.pass(2s - 1ns);
    EXPECT_EQ(bluez.calls("RemoveDevice"), 0);
    loop.pass(1ns);
    EXPECT_EQ(bluez.removed, std::vector{pathOf(phone)});
}

TEST_F(CouplingVisitorTest, ItsConnectionIsEndedBeforeItIsForgotten) {
    appearing();
    bonded();
    bluez.bluez.service.on("org.bluez.Device1.Disconnect", [](LookAlike&, sd_bus_message*) {});
    radio->forget();
    radio->disappear(); // which waits for it
    loop.pass(2s);
    EXPECT_EQ(bluez.calls("Disconnect"), 1);
    EXPECT_EQ(bluez.calls("RemoveDevice"), 0);
    EXPECT_EQ(take(), Events{});
    goes();
    ASSERT_TRUE(isTold("gone"));
    EXPECT_EQ(bluez.removed, std::vector{pathOf(phone)});
    expectNothingLeft();
}

TEST_F(CouplingVisitorTest, AConnectionThatDoesNotEndIsNotWaitedForLongerThanFiveSeconds) {
    appearing();
    bonded();
    bluez.errors = {{"Disconnect", "org.bluez.Error.Failed"}};
    radio->forget();
    loop.pass(5s - 1ns);
    EXPECT_EQ(bluez.calls("RemoveDevice"), 0);
    loop.pass(1ns);
    EXPECT_EQ(bluez.removed, std::vector{pathOf(phone)});
}

TEST_F(CouplingVisitorTest, ForgottenInTheMiddleItsQuestionsAreAnswered) {
    appearing();
    visited();
    radio->askForBond();
    const auto code = confirm(123456);
    radio->forget();
    loop.settle();
    bluez.answerPair("org.bluez.Error.AuthenticationCanceled");
    EXPECT_EQ(*code, turnedDown);
    EXPECT_EQ(take(), Events{"code 123456"});
}

TEST_F(CouplingVisitorTest, ItsLinkIsEndedOnlyIfItIsOursAlone) {
    const auto disconnects = [this] {
        appearing();
        bonded();
        gone();
        static_cast<void>(take());
        const auto calls = bluez.calls("Disconnect");
        bluez.bluez.removeDevice(phone);
        return calls;
    };
    EXPECT_EQ(disconnects(), 1);
    EXPECT_TRUE(bluez.removed.empty()); // its bond stays
    links.classic.insert(identity);     // music
    EXPECT_EQ(disconnects(), 1);
    links.classic.clear();
    links.permitted = false; // nobody knows
    EXPECT_EQ(disconnects(), 1);
}

TEST_F(CouplingVisitorTest, ABondUnderWayIsCancelledWhenItGoes) {
    appearing();
    visited();
    radio->askForBond();
    loop.settle();
    gone();
    EXPECT_EQ(bluez.calls("CancelPairing"), 1);
    EXPECT_EQ(bluez.calls("Disconnect"), 1);
    EXPECT_EQ(take(), Events{"gone"});
}

TEST_F(CouplingVisitorTest, WhateverIsToldMayBeAnsweredByGoing) {
    const std::vector<std::pair<std::string, std::function<void()>>> stories{
        {"appears", [] {}},
        {"came ? -", [this] { comes(); }},
        {"code 5", [this] { static_cast<void>(confirm(5)); }},
        {"bonded ? -",
         [this] {
             bluez.bluez.changeDevice(phone, {{"Paired", true}});
         }},
        {"left", [this] { goes(); }}};
    for (const auto& [event, story] : stories) {
        diary.then = [this, &event = event](const std::string& told) {
            if (told == event) radio->disappear();
        };
        radio->appear("Wegslot 4F2A", Confirmation::code);
        ASSERT_TRUE(isTold("appears")) << event;
        if (event != "came ? -" && event != "appears") comes();
        story();
        ASSERT_TRUE(isTold("gone")) << event;
        EXPECT_EQ(diary.events.back(), "gone") << event;
        bluez.bluez.removeDevice(phone);
        diary.then = {};
        static_cast<void>(take());
    }
    expectNothingLeft();
}

// Shows each invariant a small history that breaks it, and one beside it that does not: a check
// that cannot fail proves nothing.
#include "tests/properties/invariants.h"

#include "tests/support/world.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

using Actor = Invariants::Actor;

KeyDevice keyOf(unsigned number, std::optional<bool> isApple) {
    KeyDevice key = keyNamed("sleutel", number);
    key.isApple = isApple;
    return key;
}

class InvariantsOfALife : public testing::Test {
protected:
    void phase(const Phase& next, const std::string& line = {}) {
        if (!line.empty()) invariants.happened(effect::Logged{line});
        invariants.happened(effect::PhaseSet{next});
    }

    /// A tick that finds the one key in `state` and goes over to `next`.
    void tick(KeyState state, const std::optional<Phase>& next, bool panelShows = false) {
        invariants.begins(Actor::tick, circumstances);
        const KeyStates states{{numbered(1), state}};
        invariants.happened(effect::StatesSet{states});
        if (next) invariants.happened(effect::PhaseSet{*next});
        invariants.ends(states, panelShows);
    }

    void tickLocks(KeyState state) {
        invariants.begins(Actor::tick, circumstances);
        invariants.happened(effect::StatesSet{{{numbered(1), state}}});
        phase(phase::Locked{}, "Status: locked");
        invariants.happened(effect::LockRequested{});
        invariants.ends({{numbered(1), state}}, false);
    }

    void listChanges(const std::vector<KeyDevice>& keys) {
        invariants.keysChange(keys);
        invariants.keysChanged();
    }

    void expectBroken(std::string_view name) {
        ASSERT_FALSE(invariants.broken().empty()) << "nothing is broken instead of: " << name;
        for (const std::string& broken : invariants.broken())
            EXPECT_TRUE(broken.starts_with(name)) << broken;
    }

    void expectWhole() {
        for (const std::string& broken : invariants.broken())
            ADD_FAILURE() << broken;
    }

    InvariantsOfALife() { listChanges({keyOf(1, true)}); }

    Invariants invariants;
    Invariants::Circumstances circumstances{.now = TimePoint{100s}, .warningEnabled = false};
};

} // namespace

TEST_F(InvariantsOfALife, ALockAfterTheKeyWasNearIsRight) {
    tick(KeyState::near, phase::Present{});
    tickLocks(KeyState::away);
    expectWhole();
}

TEST_F(InvariantsOfALife, ALockBeforeTheKeyWasNearIsAFault) {
    tick(KeyState::away, std::nullopt);
    tickLocks(KeyState::away);
    expectBroken(Invariants::lockOnlyAfterNear);
}

TEST_F(InvariantsOfALife, ALockAfterArmingAnewIsAFault) {
    tick(KeyState::near, phase::Present{});
    phase(phase::WaitingForReturn{}, "Status: waitingForReturn");
    tickLocks(KeyState::away);
    expectBroken(Invariants::lockOnlyAfterNear);
}

TEST_F(InvariantsOfALife, ALockWhileTheKeyIsStillLeavingIsAFault) {
    tick(KeyState::near, phase::Present{});
    tickLocks(KeyState::leaving);
    expectBroken(Invariants::lockOnlyWhenGone);
}

TEST_F(InvariantsOfALife, ALockInACallIsAFault) {
    tick(KeyState::near, phase::Present{});
    circumstances.keepsOpen = true;
    tickLocks(KeyState::away);
    expectBroken(Invariants::noLockWhilePaused);
}

TEST_F(InvariantsOfALife, ALockAtTheDeadlineIsRight) {
    circumstances.warningEnabled = true;
    tick(KeyState::near, phase::Present{});
    tick(KeyState::away, phase::Warning{TimePoint{100s}});
    tickLocks(KeyState::away);
    expectWhole();
}

TEST_F(InvariantsOfALife, ALockBeforeTheDeadlineIsAFault) {
    circumstances.warningEnabled = true;
    tick(KeyState::near, phase::Present{});
    tick(KeyState::away, phase::Warning{TimePoint{100s + 1ns}});
    tickLocks(KeyState::away);
    expectBroken(Invariants::lockOnlyAfterCountdown);
}

TEST_F(InvariantsOfALife, ALockWithoutTheCountdownThatIsWantedIsAFault) {
    tick(KeyState::near, phase::Present{});
    circumstances.warningEnabled = true;
    tickLocks(KeyState::away);
    expectBroken(Invariants::lockOnlyAfterCountdown);
}

TEST_F(InvariantsOfALife, ALockThatAPersonAskedForIsRight) {
    invariants.begins(Actor::person, circumstances);
    phase(phase::Locked{}, "Status: locked");
    invariants.happened(effect::LockRequested{});
    expectWhole();
}

TEST_F(InvariantsOfALife, ALockThatNobodyAskedForIsAFault) {
    invariants.begins(Actor::other, circumstances);
    invariants.happened(effect::LockRequested{});
    expectBroken(Invariants::lockOnlyAsked);
}

TEST_F(InvariantsOfALife, APanelOutsideAWarningIsAFault) {
    tick(KeyState::away, phase::Warning{TimePoint{100s}}, true);
    expectWhole();
    tick(KeyState::near, phase::Present{}, true);
    expectBroken(Invariants::panelOnlyInWarning);
}

TEST_F(InvariantsOfALife, APanelWithoutAMonitorIsAFault) {
    invariants.monitorGone(0);
    expectWhole();
    invariants.monitorGone(1);
    expectBroken(Invariants::panelGoesWithMonitor);
}

TEST_F(InvariantsOfALife, APhaseThatIsAssignedTwiceIsAFault) {
    phase(phase::Locked{}, "Status: locked");
    expectWhole();
    phase(phase::Locked{}, "Status: locked");
    expectBroken(Invariants::onePhaseOneLine);
}

TEST_F(InvariantsOfALife, TheSameLineAgainWithASilentPhaseBetweenIsRight) {
    phase(phase::Paused{"x"}, "Status: paused(\"x\")");
    phase(phase::Present{});
    phase(phase::Paused{"x"}, "Status: paused(\"x\")");
    expectWhole();
}

TEST_F(InvariantsOfALife, APhaseThatIsNotToldIsAFault) {
    phase(phase::Locked{});
    expectBroken(Invariants::onePhaseOneLine);
}

TEST_F(InvariantsOfALife, ASilentPhaseThatIsToldIsAFault) {
    phase(phase::Present{}, "Status: present");
    expectBroken(Invariants::onePhaseOneLine);
}

TEST_F(InvariantsOfALife, ALineWithoutItsPhaseIsAFault) {
    invariants.happened(effect::Logged{"Status: locked"});
    invariants.ends({}, false);
    expectBroken(Invariants::onePhaseOneLine);
}

TEST_F(InvariantsOfALife, AStateOfWhatIsNoKeyIsAFault) {
    invariants.begins(Actor::tick, circumstances);
    invariants.ends({{numbered(1), KeyState::near}, {numbered(2), KeyState::near}}, false);
    expectBroken(Invariants::statesOfTheKeys);
}

TEST_F(InvariantsOfALife, AKeyWithoutAStateIsAFault) {
    invariants.begins(Actor::tick, circumstances);
    invariants.ends({{numbered(2), KeyState::near}}, false);
    expectBroken(Invariants::statesOfTheKeys);
}

TEST_F(InvariantsOfALife, AnIdentificationAfterAnotherIsRight) {
    invariants.heardOfMaker(numbered(11));
    invariants.heardOfMaker(numbered(12));
    invariants.discovery(true, 0s);
    invariants.called("connect", numbered(11), 1s);
    invariants.timePasses(9s);
    invariants.called("cancel", numbered(11), 9s);
    invariants.called("connect", numbered(12), 9300ms);
    invariants.timePasses(10s);
    expectWhole();
}

TEST_F(InvariantsOfALife, AnIdentificationThatNobodyWantsIsAFault) {
    invariants.heardOfMaker(numbered(11));
    invariants.called("connect", numbered(11), 1s);
    expectBroken(Invariants::identifiesWhenAsked);
}

TEST_F(InvariantsOfALife, AnIdentificationOfAForeignDeviceIsAFault) {
    invariants.discovery(true, 0s);
    invariants.called("connect", numbered(11), 1s);
    expectBroken(Invariants::identifiesWhenAsked);
}

TEST_F(InvariantsOfALife, TwoIdentificationsAtOnceAreAFault) {
    invariants.heardOfMaker(numbered(11));
    invariants.heardOfMaker(numbered(12));
    invariants.discovery(true, 0s);
    invariants.called("connect", numbered(11), 1s);
    invariants.called("discoverServices", numbered(12), 2s);
    expectBroken(Invariants::oneIdentification);
}

TEST_F(InvariantsOfALife, AnIdentificationOfMoreThanEightSecondsIsAFault) {
    invariants.heardOfMaker(numbered(11));
    invariants.discovery(true, 0s);
    invariants.called("connect", numbered(11), 1s);
    invariants.timePasses(9s + 1ns);
    expectBroken(Invariants::shortIdentification);
}

TEST_F(InvariantsOfALife, AnIdentificationGivenUpEarlyIsAFault) {
    invariants.heardOfMaker(numbered(11));
    invariants.discovery(true, 0s);
    invariants.called("connect", numbered(11), 1s);
    invariants.called("cancel", numbered(11), 9s - 1ns);
    expectBroken(Invariants::shortIdentification);
}

TEST_F(InvariantsOfALife, ASecondTryAfterAFailureIsAFault) {
    invariants.heardOfMaker(numbered(11));
    invariants.discovery(true, 0s);
    invariants.called("connect", numbered(11), 1s);
    invariants.identificationEnds(numbered(11), false);
    expectWhole();
    invariants.called("connect", numbered(11), 5s);
    expectBroken(Invariants::failedOnlyOnce);
}

TEST_F(InvariantsOfALife, ASecondTryUnderTheIdentityOfWhatFailedIsAFault) {
    invariants.heardOfMaker(numbered(11));
    invariants.discovery(true, 0s);
    invariants.called("connect", numbered(11), 1s);
    invariants.identificationEnds(numbered(11), false);
    invariants.identityMoves(numbered(11), numbered(12));
    invariants.called("connect", numbered(12), 5s);
    expectBroken(Invariants::failedOnlyOnce);
}

TEST_F(InvariantsOfALife, AConnectionToAListenOnlyKeyIsAFault) {
    listChanges({keyOf(1, true), keyOf(2, false)});
    invariants.discovery(true, 0s);
    invariants.called("connect", numbered(1), 1s);
    expectWhole();
    invariants.called("connect", numbered(2), 1s);
    ASSERT_FALSE(invariants.broken().empty());
    EXPECT_TRUE(invariants.broken().front().starts_with(Invariants::listenOnly));
}

TEST_F(InvariantsOfALife, AConnectionToAKeyThatBecomesListenOnlyIsAFault) {
    invariants.keysChange({keyOf(1, false)});
    invariants.called("connect", numbered(1), 1s);
    invariants.called("cancel", numbered(1), 1s);
    invariants.keysChanged();
    expectBroken(Invariants::listenOnly);
}

TEST_F(InvariantsOfALife, ARemovedListenOnlyKeyMayBeConnectedAndLetGoWithinTheChange) {
    listChanges({keyOf(1, false)});
    invariants.keysChange({});
    invariants.called("connect", numbered(1), 1s);
    invariants.called("cancel", numbered(1), 1s);
    invariants.keysChanged();
    expectWhole();
}

TEST_F(InvariantsOfALife, ARemovedListenOnlyKeyThatStaysConnectedIsAFault) {
    listChanges({keyOf(1, false)});
    invariants.keysChange({});
    invariants.called("connect", numbered(1), 1s);
    invariants.keysChanged();
    expectBroken(Invariants::nobodyStaysConnected);
}

TEST_F(InvariantsOfALife, AStrangerThatIsConnectedWithinAChangeIsAFault) {
    invariants.keysChange({keyOf(1, true), keyOf(2, true)});
    invariants.called("connect", numbered(2), 1s);
    invariants.keysChanged();
    expectWhole();
    invariants.keysChange({keyOf(1, true)});
    invariants.called("connect", numbered(11), 1s);
    invariants.called("cancel", numbered(11), 1s);
    invariants.keysChanged();
    expectBroken(Invariants::nobodyStaysConnected);
}

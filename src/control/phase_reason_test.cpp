#include "control/phase_reason.h"

#include <gtest/gtest.h>

using namespace wegslot;

namespace {

const KeyDevice phone{.id = *Uuid::parse("0F2C41A7-0B3D-4C5E-8F60-718293A4B5C6"),
                      .name = "Telefoon",
                      .threshold = Dbm{-75}};
const Phase inReach = phase::Present{};

Message reason(const Phase& after, PhaseCause cause = PhaseCause::judgement,
               const Phase& before = inReach, bool manual = false) {
    return phaseReason({.before = before,
                        .after = after,
                        .cause = cause,
                        .snoozeIsManual = manual,
                        .keys = {phone},
                        .states = {{phone.id, KeyState::away}}});
}

} // namespace

TEST(PhaseReason, WhatAPhaseSaysOfItselfIsItsReason) {
    EXPECT_EQ(reason(phase::BluetoothUnavailable{"Bluetooth staat uit"}), "Bluetooth staat uit");
    EXPECT_EQ(reason(phase::Paused{"camera in gebruik"}), "camera in gebruik");
}

TEST(PhaseReason, AWarningNamesTheKeysThatAreAway) {
    EXPECT_EQ(reason(phase::Warning{TimePoint{}}), "Telefoon is buiten bereik");
}

TEST(PhaseReason, ALockIsJudgedAskedForOrSeen) {
    EXPECT_EQ(reason(phase::Locked{}), "Telefoon is buiten bereik");
    EXPECT_EQ(reason(phase::Locked{}, PhaseCause::request), "Lock gevraagd");
    EXPECT_EQ(reason(phase::Locked{}, PhaseCause::screen), "Scherm gelockt");
}

TEST(PhaseReason, APauseIsAskedForOrTaken) {
    const phase::Snoozed snoozed{TimePoint{}};
    EXPECT_EQ(reason(snoozed, PhaseCause::request, inReach, true), "Pauze gevraagd");
    EXPECT_EQ(reason(snoozed, PhaseCause::request), "Waarschuwing geannuleerd");
}

TEST(PhaseReason, WaitingStartsWithAnUnlockALockThatFailedOrAnew) {
    const phase::WaitingForReturn waiting;
    EXPECT_EQ(reason(waiting, PhaseCause::screen, phase::Locked{}), "Scherm ontgrendeld");
    EXPECT_EQ(reason(waiting, PhaseCause::judgement, phase::Locked{}),
              "Geen bevestiging van lock ontvangen");
    EXPECT_EQ(reason(waiting, PhaseCause::judgement, phase::NoKeys{}), "Bewaking begint");
}

TEST(PhaseReason, TheRestSpeaksForItself) {
    EXPECT_EQ(reason(phase::Disabled{}), "Bewaking uitgezet");
    EXPECT_EQ(reason(phase::NoKeys{}), "Geen sleutels");
    EXPECT_EQ(reason(phase::Present{}, PhaseCause::judgement, phase::Leaving{}),
              "Sleutel in de buurt");
    EXPECT_EQ(reason(phase::Leaving{}), "Sleutel niet meer dichtbij");
}

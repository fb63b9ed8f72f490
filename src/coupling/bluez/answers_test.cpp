#include "coupling/bluez/answers.h"

#include <gtest/gtest.h>

using namespace wegslot::coupling;

TEST(CouplingAnswers, WhatBlueZRefusesToShowIsAnObstacle) {
    EXPECT_EQ(troubleOf("org.freedesktop.DBus.Error.AccessDenied", "no"),
              Trouble{Obstacle::denied});
    EXPECT_EQ(troubleOf("org.bluez.Error.NotReady", "Resource Not Ready"), Trouble{Obstacle::off});
    EXPECT_EQ(troubleOf("org.bluez.Error.NotPermitted", "Maximum advertisements reached"),
              Trouble{Obstacle::noRoom});
    EXPECT_EQ(
        troubleOf("org.bluez.Error.Failed", "Failed to register advertisement"),
        (Trouble{Obstacle::failed, "org.bluez.Error.Failed: Failed to register advertisement"}));
    EXPECT_EQ(troubleOf("org.bluez.Error.Failed", ""),
              (Trouble{Obstacle::failed, "org.bluez.Error.Failed"}));
}

TEST(CouplingAnswers, WhyThereIsNoBondIsOneOfFour) {
    EXPECT_EQ(refusalOf("org.bluez.Error.AuthenticationCanceled"), Refusal::cancelled);
    EXPECT_EQ(refusalOf("org.bluez.Error.AuthenticationRejected"), Refusal::cancelled);
    EXPECT_EQ(refusalOf("org.bluez.Error.AuthenticationTimeout"), Refusal::noAnswer);
    EXPECT_EQ(refusalOf("org.freedesktop.DBus.Error.NoReply"), Refusal::noAnswer);
    EXPECT_EQ(refusalOf("org.bluez.Error.AlreadyExists"), Refusal::otherBond);
    EXPECT_EQ(refusalOf("org.bluez.Error.AuthenticationFailed"), Refusal::failed);
    EXPECT_EQ(refusalOf("org.example.Unheard"), Refusal::failed);
}

TEST(CouplingAnswers, ABondThatIsThereOrUnderWayIsNotRefused) {
    EXPECT_EQ(refusalOf(std::nullopt), std::nullopt);
    EXPECT_EQ(refusalOf("org.bluez.Error.InProgress"), std::nullopt);
}

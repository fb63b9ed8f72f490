#include "scanner/bluez/loss_text.h"

#include <gtest/gtest.h>

using wegslot::bluez::lossText;

TEST(LossText, OfBluezAndOfTheControllerAgree) {
    EXPECT_EQ(lossText("org.bluez.Reason.Timeout"), "geen antwoord meer");
    EXPECT_EQ(lossText(std::uint8_t{0x08}), "geen antwoord meer");
    EXPECT_EQ(lossText("org.bluez.Reason.Remote"), "door het apparaat beëindigd");
    EXPECT_EQ(lossText(std::uint8_t{0x13}), "door het apparaat beëindigd");
    EXPECT_EQ(lossText("org.bluez.Reason.Local"), "door deze computer beëindigd");
    EXPECT_EQ(lossText(std::uint8_t{0x16}), "door deze computer beëindigd");
    EXPECT_EQ(lossText("org.bluez.Reason.Authentication"), "beveiliging mislukt");
    EXPECT_EQ(lossText(std::uint8_t{0x3D}), "beveiliging mislukt");
    EXPECT_EQ(lossText("org.bluez.Reason.Suspend"), "computer ging slapen");
}

TEST(LossText, AnUnknownReasonIsSaidToBeSo) {
    EXPECT_EQ(lossText("org.bluez.Reason.Unknown"), "onbekende reden");
    EXPECT_EQ(lossText("org.example\nvals"), "onbekende reden"); // never a text from outside
    EXPECT_EQ(lossText(""), "onbekende reden");
    EXPECT_EQ(lossText(std::uint8_t{0x1F}), "reden 0x1F");
}

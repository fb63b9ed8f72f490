#include "scanner/advertisement.h"

#include "scanner/seen_device.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

using namespace wegslot;

namespace {

std::optional<std::uint8_t> typeOf(std::vector<std::uint8_t> bytes) {
    return Advertisement{.manufacturerData = bytes}.continuityType();
}

} // namespace

TEST(Advertisement, TwoBytesOfTheMakerHaveNoContinuityType) {
    EXPECT_EQ(typeOf({0x4C, 0x00}), std::nullopt);
}

TEST(Advertisement, TheThirdByteOfTheMakersDataIsTheContinuityType) {
    EXPECT_EQ(typeOf({0x4C, 0x00, 0x10}), 0x10);
    EXPECT_EQ(typeOf({0x4C, 0x00, 0x10, 0x05}), 0x10);
    EXPECT_EQ(typeOf({0x4C, 0x00, 0x02, 0x15, 0x10, 0x01}), 0x02); // later messages are ignored
}

TEST(Advertisement, DataOfAnotherCompanyHasNoContinuityType) {
    EXPECT_EQ(typeOf({0x06, 0x00, 0x01}), std::nullopt);
    EXPECT_EQ(typeOf({0x00, 0x4C, 0x10}), std::nullopt); // the wrong way round
    EXPECT_EQ(typeOf({0x4C, 0x01, 0x10}), std::nullopt);
    EXPECT_EQ(typeOf({}), std::nullopt);
    EXPECT_EQ(Advertisement{}.continuityType(), std::nullopt);
}

TEST(Advertisement, OnlyStrengthsFromMinus126ToMinus1AreMeasured) {
    EXPECT_FALSE(isMeasured(-127));
    EXPECT_TRUE(isMeasured(-126));
    EXPECT_TRUE(isMeasured(-125));
    EXPECT_TRUE(isMeasured(-1));
    EXPECT_FALSE(isMeasured(0));
    EXPECT_FALSE(isMeasured(1));
    EXPECT_FALSE(isMeasured(127));
}

TEST(Advertisement, TheStacksNameWinsOverTheAdvertisedOne) {
    EXPECT_EQ((Advertisement{.peripheralName = "Telefoon", .localName = "Tag"}).name(), "Telefoon");
    EXPECT_EQ((Advertisement{.localName = "Tag"}).name(), "Tag");
    EXPECT_EQ(Advertisement{}.name(), "");
}

TEST(Advertisement, AnEmptyNameOfTheStackCountsAsNoName) {
    EXPECT_EQ((Advertisement{.peripheralName = "", .localName = "Tag"}).name(), "");
}

TEST(SeenDevice, TypeTwoIsNotTheMakers) {
    SeenDevice device{.continuityType = 0x02};
    EXPECT_FALSE(device.isApple());
    EXPECT_EQ(device.displayName(), "Bluetooth-apparaat");
}

TEST(SeenDevice, AnyOtherTypeIsTheMakers) {
    SeenDevice device{.continuityType = 0x10};
    EXPECT_TRUE(device.isApple());
    EXPECT_EQ(device.displayName(), "Apple-apparaat");
    EXPECT_FALSE(SeenDevice{}.isApple());
    EXPECT_EQ(SeenDevice{}.displayName(), "Bluetooth-apparaat");
}

TEST(SeenDevice, IsCalledByItsNameThenByItsModel) {
    SeenDevice device{.continuityType = 0x10, .name = "Telefoon", .model = "iPhone14,2"};
    EXPECT_EQ(device.displayName(), "Telefoon");
    device.name = "";
    EXPECT_EQ(device.displayName(), "iPhone");
    device.model = "Foo1,1";
    EXPECT_EQ(device.displayName(), "Foo1,1");
}

TEST(SeenDevice, IsComparedFieldByField) {
    const SeenDevice device{.continuityType = 3, .rssi = Dbm{-50}, .name = "a", .model = "b"};
    SeenDevice other = device;
    EXPECT_EQ(device, other);
    other.lastSeen += std::chrono::nanoseconds{1};
    EXPECT_NE(device, other);
    other = device;
    other.rssi.reset();
    EXPECT_NE(device, other);
}

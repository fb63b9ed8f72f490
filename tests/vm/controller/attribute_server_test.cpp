#include "attribute_server.h"

#include <gtest/gtest.h>

#include "gatt_profile.h"

namespace controller {
namespace {

constexpr std::uint8_t modelValue = 0x22;
constexpr std::uint8_t batteryValue = 0x32;

GattProfile profile(std::size_t modelLength) {
    return {.name = "Thing",
            .model = std::string(modelLength, 'x'),
            .battery = Battery::Protected,
            .isMouse = false};
}

struct AttributeServerTest : testing::Test {
    Bytes ask(const Bytes& request, LinkSecurity security = LinkSecurity::Plain) {
        return server.answer(request, security).value();
    }

    AttributeServer server{tableOf(profile(30)), 100};
};

TEST_F(AttributeServerTest, ServicesAreListedWithTheirLastHandles) {
    EXPECT_EQ(ask({0x10, 0x01, 0x00, 0x1F, 0x00, 0x00, 0x28}),
              (Bytes{0x11, 6, 0x01, 0, 0x05, 0, 0x00, 0x18, 0x10, 0, 0x13, 0, 0x01, 0x18}));
}

TEST_F(AttributeServerTest, ValueIsCutAtThePacketAndGoesOnFromAnyOffset) {
    EXPECT_EQ(ask({0x0A, modelValue, 0}).size(), 23U);
    EXPECT_EQ(ask({0x0C, modelValue, 0, 22, 0}).size(), 1U + 8U);
    EXPECT_EQ(ask({0x0C, modelValue, 0, 29, 0}).size(), 1U + 1U);
    EXPECT_EQ(ask({0x0C, modelValue, 0, 30, 0}).size(), 1U);
    EXPECT_EQ(ask({0x0C, modelValue, 0, 31, 0}), (Bytes{0x01, 0x0C, modelValue, 0, 0x07}));
}

TEST_F(AttributeServerTest, LongerPacketsHoldUntilTheLinkEnds) {
    EXPECT_EQ(ask({0x02, 0xFF, 0x01}), (Bytes{0x03, 100, 0}));
    EXPECT_EQ(ask({0x0A, modelValue, 0}).size(), 31U);
    server.linked();
    EXPECT_EQ(ask({0x0A, modelValue, 0}).size(), 23U);
}

TEST_F(AttributeServerTest, ProtectedValueIsReadOnlyOverAnEncryptedLink) {
    EXPECT_EQ(ask({0x0A, batteryValue, 0}), (Bytes{0x01, 0x0A, batteryValue, 0, 0x05}));
    EXPECT_EQ(ask({0x0A, batteryValue, 0}, LinkSecurity::Encrypted), (Bytes{0x0B, 80}));
}

TEST_F(AttributeServerTest, WhatIsWrittenIsRead) {
    EXPECT_EQ(ask({0x12, 0x33, 0, 1, 0}), (Bytes{0x13}));
    EXPECT_EQ(ask({0x0A, 0x33, 0}), (Bytes{0x0B, 1, 0}));
    EXPECT_EQ(ask({0x12, modelValue, 0, 1}), (Bytes{0x01, 0x12, modelValue, 0, 0x03}));
}

TEST_F(AttributeServerTest, NonsenseIsAnsweredWithAnErrorOrNotAtAll) {
    EXPECT_EQ(ask({0x0A}), (Bytes{0x01, 0x0A, 0, 0, 0x04}));
    EXPECT_EQ(ask({0x20, 1, 2}), (Bytes{0x01, 0x20, 0, 0, 0x06}));
    EXPECT_EQ(ask({0x08, 0, 0, 0xFF, 0xFF, 0, 0x28}), (Bytes{0x01, 0x08, 0, 0, 0x01}));
    EXPECT_EQ(server.answer(Bytes{}, LinkSecurity::Plain), std::nullopt);
    EXPECT_EQ(server.answer(Bytes{0x1E}, LinkSecurity::Plain), std::nullopt);
    EXPECT_EQ(server.answer(Bytes{0x52}, LinkSecurity::Plain), std::nullopt);
}

} // namespace
} // namespace controller

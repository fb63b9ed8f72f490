// The controller as the kernel and a phone have it: the one sends commands, the other connects.
#include <gtest/gtest.h>

#include "controller.h"

namespace controller {
namespace {

using namespace std::chrono_literals;

const Address advertisingComputer = parseAddress("00:00:5E:00:53:01", AddressType::Public).value();
const Address connectingPhone = parseAddress("40:00:5E:00:53:40", AddressType::Random).value();
constexpr Key bondedKey{1, 2, 3, 4};
constexpr EncryptionKey phonesBond{
    .key = bondedKey, .random = {8, 7, 6, 5, 4, 3, 2, 1}, .diversifier = 0x1234};

/// A phone that does nothing but remember what happened to its link.
struct Bystander final : Peer {
    int linkRssi() const override { return -50; }

    void linked(Link& made) override { link = &made; }

    void unlinked() override { link = nullptr; }

    void receive(const Frame&) override {}

    bool agreesOn(const EncryptionKey&) override { return false; }

    void encrypted() override { isEncrypted = true; }

    void encryptionRefused() override { isRefused = true; }

    Link* link = nullptr;
    bool isEncrypted = false;
    bool isRefused = false;
};

struct AdvertisingTest : testing::Test {
    /// The status of the answer.
    std::uint8_t tell(std::uint16_t opcode, const Bytes& parameters) {
        Bytes packet{0x01};
        append16(packet, opcode);
        append8(packet, static_cast<unsigned>(parameters.size()));
        append(packet, parameters);
        sent.clear();
        controller.receive(packet);
        return sent.front().at(6);
    }

    /// Connectable, with data and an answer for who asks.
    void advertiseInTheOlderWay() {
        Bytes parameters(15, 0);
        EXPECT_EQ(tell(0x2006, parameters), 0);
        Bytes data(32, 0);
        data[0] = 3;
        data[1] = 2;
        EXPECT_EQ(tell(0x2008, data), 0);
        EXPECT_EQ(tell(0x200A, {1}), 0);
    }

    Bytes extendedParameters(std::uint8_t handle) {
        Bytes parameters(25, 0);
        parameters[0] = handle;
        parameters[1] = 0x13; // connectable and scannable, in the older form on the air
        return parameters;
    }

    void advertiseInTheExtendedWay(std::uint8_t handle, std::uint8_t centiseconds = 0) {
        EXPECT_EQ(tell(0x2036, extendedParameters(handle)), 0);
        EXPECT_EQ(tell(0x2037, {handle, 3, 1, 2, 0xAA, 0xBB}), 0);
        EXPECT_EQ(tell(0x2039, {1, 1, handle, centiseconds, 0, 0}), 0);
    }

    void connect(SetHandle set) {
        sent.clear();
        controller.connectFrom(connectingPhone, bystander, set);
    }

    std::vector<Bytes> sent;
    Controller controller{advertisingComputer, [this](ByteView packet) {
                              sent.emplace_back(packet.begin(), packet.end());
                          }};
    Bystander bystander;
};

struct ExtendedAdvertisingTest : AdvertisingTest {
    ExtendedAdvertisingTest() {
        controller.setAdvertisingAbility(
            {.commands = AdvertisingAbility::Commands::Extended, .sets = 2});
    }
};

// --- The older way --------------------------------------------------------------------------

TEST_F(AdvertisingTest, WhatTheKernelSendsIsOnTheAirWhileItIsOn) {
    EXPECT_FALSE(controller.advertising().isOn());
    advertiseInTheOlderWay();
    const AdvertisingSet& set = controller.advertising().sets().at(olderSet);
    EXPECT_TRUE(set.isOn && set.isConnectable && set.isScannable);
    EXPECT_EQ(set.data, (Bytes{2, 0, 0}));
    EXPECT_EQ(controller.addressOf(set, olderSet), advertisingComputer);
    EXPECT_EQ(tell(0x200A, {0}), 0);
    EXPECT_FALSE(controller.advertising().isOn());
}

TEST_F(AdvertisingTest, WhatCannotBeConnectedIsNot) {
    Bytes parameters(15, 0);
    parameters[4] = 3;
    tell(0x2006, parameters);
    tell(0x200A, {1});
    EXPECT_TRUE(controller.advertising().isOn());
    EXPECT_EQ(controller.advertising().connectable(), std::nullopt);
}

TEST_F(AdvertisingTest, AConnectionEndsItAndIsToldWithUsAsThePeripheral) {
    advertiseInTheOlderWay();
    connect(olderSet);
    EXPECT_FALSE(controller.advertising().isOn());
    ASSERT_EQ(sent.size(), 1U);
    const Bytes& told = sent.front();
    EXPECT_EQ(told[3], 0x01); // Connection Complete
    EXPECT_EQ(told[4], 0);
    EXPECT_EQ(told[7], 1); // the peripheral
    EXPECT_EQ(told[8], 1); // of a random address
    ASSERT_NE(bystander.link, nullptr);
    EXPECT_EQ(bystander.link->ends().own, advertisingComputer);
}

TEST_F(AdvertisingTest, AControllerThatRefusesKeepsSilent) {
    controller.setAdvertisingAbility({.refuses = true});
    EXPECT_EQ(tell(0x200A, {1}), static_cast<std::uint8_t>(Status::CommandDisallowed));
    EXPECT_FALSE(controller.advertising().isOn());
}

TEST_F(AdvertisingTest, ExtendedCommandsAreUnknown) {
    EXPECT_EQ(tell(0x203B, {}), static_cast<std::uint8_t>(Status::UnknownCommand));
}

// --- The extended way -----------------------------------------------------------------------

TEST_F(ExtendedAdvertisingTest, SetsAreOnAndOffByThemselves) {
    advertiseInTheExtendedWay(0);
    advertiseInTheExtendedWay(1);
    tell(0x2039, {0, 1, 0, 0, 0, 0});
    EXPECT_FALSE(controller.advertising().sets().at(0).isOn);
    EXPECT_EQ(controller.advertising().connectable(), SetHandle{1});
    tell(0x2039, {0, 0});
    EXPECT_FALSE(controller.advertising().isOn());
}

TEST_F(ExtendedAdvertisingTest, ThereAreAsManySetsAsItSaysAndNoMore) {
    EXPECT_EQ(tell(0x2036, extendedParameters(0)), 0);
    EXPECT_EQ(tell(0x2036, extendedParameters(1)), 0);
    EXPECT_EQ(tell(0x2036, extendedParameters(2)),
              static_cast<std::uint8_t>(Status::MemoryExceeded));
    tell(0x203B, {});
    EXPECT_EQ(sent.front().at(7), 2);
}

TEST_F(ExtendedAdvertisingTest, DataMayComeInParts) {
    tell(0x2036, extendedParameters(0));
    tell(0x2037, {0, 1, 1, 2, 1, 2});
    tell(0x2037, {0, 2, 1, 1, 3});
    EXPECT_EQ(controller.advertising().sets().at(0).data, (Bytes{1, 2, 3}));
    EXPECT_EQ(tell(0x2037, {0, 3, 1, 5, 1}), static_cast<std::uint8_t>(Status::InvalidParameters));
    EXPECT_EQ(tell(0x2037, {1, 3, 1, 0}), static_cast<std::uint8_t>(Status::UnknownAdvertisingSet));
}

TEST_F(ExtendedAdvertisingTest, AConnectionIsToldInTheEnhancedFormAndThenWhichSetItEnded) {
    advertiseInTheExtendedWay(1);
    connect(1);
    ASSERT_EQ(sent.size(), 2U);
    EXPECT_EQ(sent[0][3], 0x0A);
    EXPECT_EQ(sent[0].size(), 34U);
    EXPECT_EQ(sent[0][7], 1);
    const LinkHandle handle = bystander.link->handle();
    EXPECT_EQ(sent[1], (Bytes{0x04, 0x3E, 6, 0x12, 0, 1, static_cast<std::uint8_t>(handle & 0xFF),
                              static_cast<std::uint8_t>(handle >> 8U), 0}));
}

TEST_F(ExtendedAdvertisingTest, ASetEndsWhenItsTimeIsOver) {
    const TimePoint start{1h};
    advertiseInTheExtendedWay(0, 100);
    controller.passTime(start);
    EXPECT_EQ(controller.due(), start + 1s);
    sent.clear();
    controller.passTime(start + 1s - 1ns);
    EXPECT_TRUE(sent.empty());
    controller.passTime(start + 1s);
    EXPECT_EQ(sent, (std::vector<Bytes>{{0x04, 0x3E, 6, 0x12, 0x3C, 0, 0, 0, 0}}));
    EXPECT_FALSE(controller.advertising().isOn());
    EXPECT_EQ(controller.due(), std::nullopt);
}

TEST_F(ExtendedAdvertisingTest, ASetSwitchedOnAnewBeginsItsTimeAnew) {
    const TimePoint start{1h};
    advertiseInTheExtendedWay(0, 100);
    controller.passTime(start);
    tell(0x2039, {1, 1, 0, 100, 0, 0});
    controller.passTime(start + 900ms);
    EXPECT_EQ(controller.due(), start + 1900ms);
}

// --- A key for the link ---------------------------------------------------------------------

struct KeyForALink : AdvertisingTest {
    KeyForALink() {
        advertiseInTheOlderWay();
        connect(olderSet);
        sent.clear();
        bystander.link->askForKey(phonesBond);
    }

    Bytes withHandle(const Key& given) const {
        Bytes parameters;
        append16(parameters, bystander.link->handle());
        append(parameters, given);
        return parameters;
    }
};

TEST_F(KeyForALink, IsAskedForByItsNumbers) {
    ASSERT_EQ(sent.size(), 1U);
    EXPECT_EQ(Bytes(sent[0].begin() + 6, sent[0].end()),
              (Bytes{8, 7, 6, 5, 4, 3, 2, 1, 0x34, 0x12}));
}

TEST_F(KeyForALink, TheRightOneEncryptsIt) {
    EXPECT_EQ(tell(0x201A, withHandle(bondedKey)), 0);
    EXPECT_TRUE(bystander.isEncrypted && bystander.link->isEncrypted());
    ASSERT_EQ(sent.size(), 2U);
    EXPECT_EQ(sent[1][1], 0x08); // Encryption Change
}

TEST_F(KeyForALink, AWrongOneEndsIt) {
    EXPECT_EQ(tell(0x201A, withHandle(Key{9})), 0);
    EXPECT_EQ(bystander.link, nullptr);
    EXPECT_FALSE(bystander.isEncrypted);
    ASSERT_EQ(sent.size(), 2U);
    EXPECT_EQ(sent[1].back(), static_cast<std::uint8_t>(Status::IntegrityFailure));
}

TEST_F(KeyForALink, WithoutOneItStaysAsItIs) {
    const Bytes handle = withHandle({});
    EXPECT_EQ(tell(0x201B, {handle[0], handle[1]}), 0);
    EXPECT_TRUE(bystander.isRefused);
    EXPECT_FALSE(bystander.link->isEncrypted());
    EXPECT_EQ(sent.size(), 1U);
}

TEST_F(KeyForALink, IsTakenOnceOnly) {
    tell(0x201A, withHandle(bondedKey));
    EXPECT_EQ(tell(0x201A, withHandle(bondedKey)),
              static_cast<std::uint8_t>(Status::CommandDisallowed));
}

} // namespace
} // namespace controller

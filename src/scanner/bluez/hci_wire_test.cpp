#include "scanner/bluez/hci_wire.h"

#include <gtest/gtest.h>

#include <vector>

using namespace wegslot::bluez::hci;
using wegslot::bluez::StandingLinks;

using Bytes = std::vector<std::uint8_t>;

TEST(HciWire, AddressesAreReadBackwards) {
    EXPECT_EQ(addressOf("AA:BB:CC:DD:EE:0f"), (Address{0x0F, 0xEE, 0xDD, 0xCC, 0xBB, 0xAA}));
    for (const auto* const wrong : {"", "AA:BB:CC:DD:EE", "AA-BB-CC-DD-EE-FF", "AA:BB:CC:DD:EE:FG",
                                    "AA:BB:CC:DD:EE:FF:", "AA:BB:CC:DD:EE:+F"})
        EXPECT_EQ(addressOf(wrong), std::nullopt) << wrong;
}

TEST(HciWire, AdaptersAreNumberedByTheirPath) {
    EXPECT_EQ(adapterNumber("/org/bluez/hci0"), 0);
    EXPECT_EQ(adapterNumber("/org/bluez/hci12"), 12);
    for (const auto* const wrong : {"", "/org/bluez", "/org/bluez/hci", "/org/bluez/hci0/dev_AA",
                                    "/org/bluez/hci99999", "/org/bluez/hci-1"})
        EXPECT_EQ(adapterNumber(wrong), std::nullopt) << wrong;
}

TEST(HciWire, OfAnAddressItsStandingLinksAreKnownByTheirKind) {
    const Address phone{1, 2, 3, 4, 5, 6};
    const Address other{9, 9, 9, 9, 9, 9};
    const auto listed = [](const Address& address, std::uint8_t type, std::uint8_t outgoing,
                           std::uint16_t state = connectedState) {
        return ListedConnection{1, address, type, outgoing, state, 0};
    };
    constexpr std::uint8_t classic = 0x01;
    using All = std::vector<ListedConnection>;
    EXPECT_EQ(standingWith(phone, All{}), StandingLinks{});
    EXPECT_EQ(standingWith(phone, All{listed(other, lowEnergyLink, 0), listed(other, classic, 0)}),
              StandingLinks{});
    EXPECT_EQ(standingWith(phone, All{listed(phone, lowEnergyLink, 0)}),
              (StandingLinks{.lowEnergy = true, .calledUs = true}));
    EXPECT_EQ(standingWith(phone, All{listed(phone, lowEnergyLink, 1)}),
              StandingLinks{.lowEnergy = true});
    EXPECT_EQ(
        standingWith(phone, All{listed(phone, lowEnergyLink, 0, 7)}),
        (StandingLinks{.lowEnergy = true, .calledUs = true})); // announced, and pairing perhaps
    EXPECT_EQ(standingWith(phone, All{listed(phone, classic, 0)}), StandingLinks{.classic = true});
    EXPECT_EQ(standingWith(phone, All{listed(phone, classic, 1), listed(phone, lowEnergyLink, 0)}),
              (StandingLinks{.lowEnergy = true, .calledUs = true, .classic = true}));
    EXPECT_EQ(
        standingWith(phone, All{listed(phone, lowEnergyLink, 0, 5), listed(phone, classic, 0, 5)}),
        StandingLinks{}); // still being made
}

TEST(HciWire, TheCommandCarriesItsHandle) {
    EXPECT_EQ(readRssiCommand(0x0E40),
              (std::array<std::uint8_t, 6>{0x01, 0x05, 0x14, 0x02, 0x40, 0x0E}));
}

TEST(HciWire, AnAnswerGivesAStrengthUnlessItFailedOrHasNone) {
    const Bytes good{0x04, 0x0E, 0x07, 0x01, 0x05, 0x14, 0x00, 0x40, 0x00, 0xC4};
    EXPECT_EQ(rssiRead(good), (RssiRead{0x40, -60}));
    Bytes failed = good;
    failed[6] = 0x02;
    EXPECT_EQ(rssiRead(failed), (RssiRead{0x40, std::nullopt}));
    Bytes unavailable = good;
    unavailable[9] = 127;
    EXPECT_EQ(rssiRead(unavailable), (RssiRead{0x40, std::nullopt}));
}

TEST(HciWire, OtherAndShortPacketsAreNoAnswer) {
    const Bytes good{0x04, 0x0E, 0x07, 0x01, 0x05, 0x14, 0x00, 0x40, 0x00, 0xC4};
    for (std::size_t size = 0; size < good.size(); ++size)
        EXPECT_EQ(rssiRead(std::span(good).first(size)), std::nullopt) << size;
    for (const std::size_t position : {0U, 1U, 4U, 5U}) {
        Bytes other = good;
        other[position] ^= 0xFFU;
        EXPECT_EQ(rssiRead(other), std::nullopt) << position;
    }
}

TEST(HciWire, TheEndOfAConnectionHasAReason) {
    const Bytes good{0x04, 0x05, 0x04, 0x00, 0x40, 0x00, 0x08};
    EXPECT_EQ(disconnection(good), (Disconnection{0x40, 0x08}));
    for (std::size_t size = 0; size < good.size(); ++size)
        EXPECT_EQ(disconnection(std::span(good).first(size)), std::nullopt) << size;
    for (const std::size_t position : {0U, 1U, 3U}) {
        Bytes other = good;
        other[position] ^= 0xFFU;
        EXPECT_EQ(disconnection(other), std::nullopt) << position;
    }
}

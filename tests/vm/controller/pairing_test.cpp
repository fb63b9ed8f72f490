// The other side of a pairing is played here, with the functions whose sample data stand beside
// them.
#include "pairing.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace controller {
namespace {

const Address initiator = parseAddress("00:00:5E:00:53:01", AddressType::Public).value();
const Address responder = parseAddress("40:00:5E:00:53:40", AddressType::Random).value();
const Address identity = parseAddress("00:00:5E:00:53:40", AddressType::Public).value();
constexpr Key resolvingKey{9, 8, 7};
/// Bonding, all keys both ways.
constexpr PairingMessage request{0x01, 0x03, 0x00, 0x01, 0x10, 0x07, 0x07};
constexpr Key ownRandom{5, 4, 3, 2, 1};

template <typename Array>
Array cut(const Bytes& from, std::size_t start) {
    Array array{};
    EXPECT_GE(from.size(), start + array.size());
    std::copy_n(from.begin() + static_cast<std::ptrdiff_t>(start), array.size(), array.begin());
    return array;
}

Bytes message(std::uint8_t code, const Key& key) {
    Bytes bytes{code};
    append(bytes, key);
    return bytes;
}

struct PairingTest : testing::Test {
    PairingTest() { pairing.linked(initiator, responder); }

    Bytes exchange(ByteView sent) { return pairing.receive(sent).value(); }

    /// Up to the key for the link.
    EncryptionKey agree() {
        const Bytes response = exchange(request);
        const PairingContext context{.request = request,
                                     .response = cut<PairingMessage>(response, 0),
                                     .initiator = initiator,
                                     .responder = responder};
        const Bytes confirmed = exchange(message(0x03, confirmValue({}, ownRandom, context)));
        const Bytes revealed = exchange(message(0x04, ownRandom));
        EXPECT_EQ(revealed[0], 0x04);
        const Key random = cut<Key>(revealed, 1);
        EXPECT_EQ(confirmValue({}, random, context), cut<Key>(confirmed, 1));
        return {.key = shortTermKey({}, random, ownRandom)};
    }

    Bond bond;
    Pairing pairing{{.address = identity, .resolvingKey = resolvingKey}, Pairability::Pairs, bond};
};

TEST_F(PairingTest, KeysAreHandedOutOnceTheLinkIsEncrypted) {
    const EncryptionKey shortTerm = agree();
    ASSERT_TRUE(pairing.agreesOn(shortTerm));
    EXPECT_FALSE(bond.isKept());
    const std::vector<Bytes> keys = pairing.encrypted();
    ASSERT_EQ(keys.size(), 5U);
    EXPECT_EQ(keys[2], message(0x08, resolvingKey));
    EXPECT_EQ(keys[3], (Bytes{0x09, 0x00, 0x40, 0x53, 0x00, 0x5E, 0x00, 0x00}));
    EXPECT_TRUE(bond.isKept());
    EXPECT_TRUE(pairing.encrypted().empty());
}

TEST_F(PairingTest, BondIsKnownOnTheNextLinkUntilForgotten) {
    agree();
    const std::vector<Bytes> keys = pairing.encrypted();
    EncryptionKey kept{.key = cut<Key>(keys[0], 1)};
    kept.diversifier = read16(keys[1], 1);
    kept.random = cut<std::array<std::uint8_t, 8>>(keys[1], 3);
    pairing.unlinked();
    pairing.linked(initiator, responder);
    EXPECT_TRUE(pairing.agreesOn(kept));
    EXPECT_FALSE(pairing.agreesOn({.key = kept.key}));
    bond.forget();
    EXPECT_FALSE(pairing.agreesOn(kept));
}

TEST_F(PairingTest, WrongRandomNumberEndsThePairing) {
    exchange(request);
    exchange(message(0x03, Key{1}));
    EXPECT_EQ(exchange(message(0x04, Key{2})), (Bytes{0x05, 0x04}));
    EXPECT_EQ(exchange(message(0x04, Key{2})), (Bytes{0x05, 0x08}));
}

TEST_F(PairingTest, UnwillingDeviceCountsAndRefuses) {
    Pairing unwilling({.address = identity, .resolvingKey = {}}, Pairability::Refuses, bond);
    EXPECT_EQ(unwilling.receive(request), (Bytes{0x05, 0x05}));
    EXPECT_EQ(unwilling.timesAsked(), 1U);
}

} // namespace
} // namespace controller

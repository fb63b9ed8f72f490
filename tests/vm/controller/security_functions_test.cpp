// The sample data of the Bluetooth Core Specification (Security Manager), written most significant
// byte first as they are printed there.
#include "security_functions.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "text.h"

namespace controller {
namespace {

template <typename Array>
Array number(std::string_view printed) {
    const Bytes bytes = parseHex(printed).value();
    Array array{};
    EXPECT_EQ(bytes.size(), array.size()) << printed;
    std::reverse_copy(bytes.begin(), bytes.end(), array.begin());
    return array;
}

Key key(std::string_view printed) { return number<Key>(printed); }

TEST(SecurityFunctions, ConfirmValueIsThatOfTheSample) {
    const PairingContext context{
        .request = number<PairingMessage>("07071000000101"),
        .response = number<PairingMessage>("05000800000302"),
        .initiator = parseAddress("A1:A2:A3:A4:A5:A6", AddressType::Random).value(),
        .responder = parseAddress("B1:B2:B3:B4:B5:B6", AddressType::Public).value()};
    EXPECT_EQ(confirmValue(Key{}, key("5783D52156AD6F0E6388274EC6702EE0"), context),
              key("1E1E3FEF878988EAD2A74DC5BEF13B86"));
}

TEST(SecurityFunctions, ShortTermKeyIsThatOfTheSample) {
    EXPECT_EQ(shortTermKey(Key{}, key("000F0E0D0C0B0A091122334455667788"),
                           key("010203040506070899AABBCCDDEEFF00")),
              key("9A1FE1F0E8B0F49B5B4216AE796DA062"));
}

TEST(SecurityFunctions, AddressHashIsThatOfTheSample) {
    EXPECT_EQ(addressHash(key("EC0234A357C8AD05341010A60A397D9B"), number<AddressPart>("708194")),
              number<AddressPart>("0DFBAA"));
}

struct SecureSample : testing::Test {
    static CurveNumber curve(std::string_view printed) { return number<CurveNumber>(printed); }

    const CurveNumber oneX =
        curve("20B003D2F297BE2C5E2C83A7E9F9A5B9EFF49111ACF4FDDBCC0301480E359DE6");
    const CurveNumber otherX =
        curve("55188B3D32F6BB9A900AFCFBEED4E72A59CB9AC2F19D7CFB6B4FDD49F47FC5FD");
    const Key oneRandom = key("D5CB8454D177733EFFFFB2EC712BAEAB");
    const Key otherRandom = key("A6E8E7CC25A75F6E216583F7FF3DC4CF");
    const Key check = key("2965F176A1084A02FD3F6A20CE636E20");
    const Address one = parseAddress("56:12:37:37:BF:CE", AddressType::Public).value();
    const Address other = parseAddress("A7:13:70:2D:CF:C1", AddressType::Public).value();
};

TEST_F(SecureSample, CommitmentIsThatOfTheSample) {
    EXPECT_EQ(commitment(oneX, otherX, oneRandom), key("F2C916F107A9BD1CF1EDA1BEA974872D"));
}

TEST_F(SecureSample, KeysAreThoseOfTheSample) {
    const CurveNumber shared =
        curve("EC0234A357C8AD05341010A60A397D9B99796B13B4F866F1868D34F373BFA698");
    const PairingKeys keys = pairingKeys(shared, {.initiatorRandom = oneRandom,
                                                  .responderRandom = otherRandom,
                                                  .initiator = one,
                                                  .responder = other});
    EXPECT_EQ(keys.check, check);
    EXPECT_EQ(keys.longTerm, key("6986791169D7CD23980522B594750A38"));
}

TEST_F(SecureSample, ProofIsThatOfTheSample) {
    EXPECT_EQ(proofValue(check, {.ownRandom = oneRandom,
                                 .othersRandom = otherRandom,
                                 .passkey = key("12A3343BB453BB5408DA42D20C2D0FC8"),
                                 .capabilities = number<Capabilities>("010102"),
                                 .own = one,
                                 .others = other}),
              key("E3C473989CD0E8C5D26C0B09DA958F61"));
}

TEST_F(SecureSample, ComparedNumberEndsAsThatOfTheSample) {
    EXPECT_EQ(comparedNumber(oneX, otherX, oneRandom, otherRandom), 0x2F9ED5BAU % 1000000U);
}

/// The samples of RFC 4493.
TEST(AuthenticationCode, IsThatOfTheSamples) {
    const Key cipherKey = key("2B7E151628AED2A6ABF7158809CF4F3C");
    EXPECT_EQ(authenticationCode(cipherKey, {}), key("BB1D6929E95937287FA37D129B756746"));
    const Bytes message = parseHex("6BC1BEE22E409F96E93D7E117393172A").value();
    EXPECT_EQ(authenticationCode(cipherKey, message), key("070A16B46B4D4144F79BDD9DD04A287C"));
}

} // namespace
} // namespace controller

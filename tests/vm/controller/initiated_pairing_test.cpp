// The other side is the pairing of a device that is asked, where that knows the way; the newer way
// is played here, with the functions whose sample data stand beside them.
#include "initiated_pairing.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "pairing.h"

namespace controller {
namespace {

const Address phoneShown = parseAddress("40:00:5E:00:53:40", AddressType::Random).value();
const Address phoneIdentity = parseAddress("00:00:5E:00:53:40", AddressType::Public).value();
const Address computerShown = parseAddress("00:00:5E:00:53:01", AddressType::Public).value();
constexpr Key phonesKey{1, 2, 3};
constexpr Key computersKey{4, 5, 6};

const PairingIdentity phonesName{.address = phoneIdentity, .resolvingKey = phonesKey};

std::uint8_t codeOf(const PairingMove& move) {
    return move.messages.empty() ? std::uint8_t{0} : move.messages.front().front();
}

// --- The older way --------------------------------------------------------------------------

struct OlderPairing : testing::Test {
    OlderPairing() { other.linked(phoneShown, computerShown); }

    /// Hands everything to the other side and its answers back, until one has nothing to say.
    void talk(PairingMove move) {
        while (!move.messages.empty()) {
            const std::vector<Bytes> said = move.messages;
            move = {};
            for (const Bytes& message : said) {
                const std::optional<Bytes> reply = other.receive(message);
                if (reply) move = pairing.receive(*reply);
            }
            if (move.encryptWith) wanted = move.encryptWith;
        }
    }

    /// What both do once the link is encrypted.
    void encrypt() {
        EXPECT_TRUE(pairing.encrypted().messages.empty());
        for (const Bytes& message : other.encrypted())
            last = pairing.receive(message);
    }

    Bond bond;
    Bond othersBond;
    InitiatedPairing pairing{phonesName, {.owner = OwnerAbility::Nothing, .isOlder = true}, bond};
    Pairing other{
        {.address = computerShown, .resolvingKey = computersKey}, Pairability::Pairs, othersBond};
    std::optional<EncryptionKey> wanted;
    PairingMove last;
};

TEST_F(OlderPairing, BothSidesAgreeOnTheKeyOfTheLink) {
    talk(pairing.start(phoneShown, computerShown));
    ASSERT_TRUE(wanted);
    EXPECT_TRUE(other.agreesOn(*wanted));
    EXPECT_TRUE(pairing.isUnderWay());
}

TEST_F(OlderPairing, ItsOwnKeysFollowTheOthers) {
    talk(pairing.start(phoneShown, computerShown));
    encrypt();
    ASSERT_EQ(last.messages.size(), 5U);
    EXPECT_TRUE(last.isEnd);
    EXPECT_EQ(last.messages[2], securityMessage(SecurityCode::IdentityInformation, phonesKey));
    EXPECT_EQ(last.messages[3], (Bytes{0x09, 0x00, 0x40, 0x53, 0x00, 0x5E, 0x00, 0x00}));
    EXPECT_EQ(pairing.timesDone(), 1U);
    EXPECT_FALSE(pairing.isUnderWay());
}

TEST_F(OlderPairing, TheBondHasTheOthersKeyForLinksThatItMakes) {
    talk(pairing.start(phoneShown, computerShown));
    encrypt();
    ASSERT_TRUE(othersBond.asPeripheral);
    EXPECT_EQ(bond.asCentral, othersBond.asPeripheral);
    ASSERT_TRUE(bond.asPeripheral);
    EXPECT_EQ(last.messages[0],
              securityMessage(SecurityCode::EncryptionInformation, bond.asPeripheral->key));
}

TEST_F(OlderPairing, AnUnwillingSideEndsItWithItsReason) {
    Pairing unwilling({.address = computerShown, .resolvingKey = {}}, Pairability::Refuses,
                      othersBond);
    const PairingMove asked = pairing.start(phoneShown, computerShown);
    pairing.receive(unwilling.receive(asked.messages.front()).value());
    EXPECT_EQ(pairing.failure(), static_cast<std::uint8_t>(PairingFailure::NotSupported));
    EXPECT_FALSE(pairing.isUnderWay());
    EXPECT_FALSE(bond.isKept());
}

TEST_F(OlderPairing, ARandomNumberThatTheOtherWasNotBoundToEndsIt) {
    const Bytes response =
        other.receive(pairing.start(phoneShown, computerShown).messages[0]).value();
    const Bytes confirmed = other.receive(pairing.receive(response).messages[0]).value();
    pairing.receive(confirmed);
    const PairingMove end = pairing.receive(securityMessage(SecurityCode::PairingRandom, Key{1}));
    EXPECT_EQ(end.messages, (std::vector<Bytes>{{0x05, 0x04}}));
    EXPECT_EQ(end.encryptWith, std::nullopt);
}

TEST_F(OlderPairing, WithoutAResolvingKeyItOffersNoIdentity) {
    InitiatedPairing nameless({.address = phoneIdentity, .resolvingKey = {}}, {}, bond);
    EXPECT_EQ(nameless.start(phoneShown, computerShown).messages.front()[initiatorKeysAt] &
                  identityKey,
              0);
    EXPECT_NE(pairing.start(phoneShown, computerShown).messages.front()[initiatorKeysAt] &
                  identityKey,
              0);
}

TEST_F(OlderPairing, AnOwnerWhoIsAskedAndSaysNoEndsIt) {
    InitiatedPairing asking(
        phonesName, {.owner = OwnerAbility::Nothing, .isOlder = true, .asksAlways = true}, bond);
    const PairingMove asked = asking.start(phoneShown, computerShown);
    EXPECT_TRUE(asking.receive(other.receive(asked.messages.front()).value()).messages.empty());
    EXPECT_EQ(asking.question(), OwnersQuestion{});
    EXPECT_EQ(asking.answer({.consents = false}).messages, (std::vector<Bytes>{{0x05, 0x08}}));
    EXPECT_EQ(asking.question(), std::nullopt);
    EXPECT_FALSE(asking.isUnderWay());
}

/// With a side that shows digits.
struct TypedPairing : OlderPairing {
    TypedPairing() {
        const Bytes asked = typing.start(phoneShown, computerShown).messages.front();
        std::copy(asked.begin(), asked.end(), context.request.begin());
        context.response = {0x02, 0x01, 0, 0x05, 16, 0, 0};
        typing.receive(context.response);
    }

    InitiatedPairing typing{phonesName, {.owner = OwnerAbility::Types, .isOlder = true}, bond};
    PairingContext context{.initiator = phoneShown, .responder = computerShown};
};

TEST_F(TypedPairing, DigitsThatItsOwnerTypesMakeTheKey) {
    ASSERT_TRUE(typing.question());
    EXPECT_EQ(typing.question()->kind, OwnersQuestion::Kind::Type);
    const Bytes confirmed = typing.answer({.digits = 654321}).messages.front();
    const Key temporary{0xF1, 0xFB, 0x09}; // the same digits
    const PairingMove revealed = typing.receive(
        securityMessage(SecurityCode::PairingConfirm, confirmValue(temporary, {}, context)));
    EXPECT_EQ(keyIn(confirmed), confirmValue(temporary, keyIn(revealed.messages.front()), context));
}

TEST_F(TypedPairing, AnOwnerWhoTypesNothingEndsIt) {
    EXPECT_EQ(typing.answer({.consents = false}).messages, (std::vector<Bytes>{{0x05, 0x01}}));
}

// --- Secure connections ---------------------------------------------------------------------

struct SecurePairing : testing::Test {
    /// The other side, up to its random number: its public key, and what binds it.
    void exchangeKeys(InitiatedPairing& pairing, PairingMessage others) {
        const Bytes first = pairing.start(phoneShown, computerShown).messages.front();
        std::copy(first.begin(), first.end(), asked.begin());
        answered = others;
        const Bytes key = pairing.receive(answered).messages.front();
        ASSERT_EQ(key.size(), publicKeyMessageLength);
        std::copy_n(key.begin() + 1, phonePublic.x.size(), phonePublic.x.begin());
        std::copy_n(key.begin() + 33, phonePublic.y.size(), phonePublic.y.begin());
        Bytes ours;
        append(ours, publicKeyOf(secret).x);
        append(ours, publicKeyOf(secret).y);
        EXPECT_EQ(codeOf(pairing.receive(securityMessage(SecurityCode::PublicKey, ours))), 0);
        const Bytes random = pairing
                                 .receive(securityMessage(
                                     SecurityCode::PairingConfirm,
                                     commitment(publicKeyOf(secret).x, phonePublic.x, ourRandom)))
                                 .messages.front();
        phoneRandom = keyIn(random);
    }

    PairingKeys keys() const {
        return pairingKeys(sharedSecret(secret, phonePublic).value(),
                           {.initiatorRandom = phoneRandom,
                            .responderRandom = ourRandom,
                            .initiator = phoneShown,
                            .responder = computerShown});
    }

    Key ourProof() const {
        return proofValue(keys().check, {.ownRandom = ourRandom,
                                         .othersRandom = phoneRandom,
                                         .capabilities = {answered[1], answered[2], answered[3]},
                                         .own = computerShown,
                                         .others = phoneShown});
    }

    PairingMove reveal(InitiatedPairing& pairing) const {
        return pairing.receive(securityMessage(SecurityCode::PairingRandom, ourRandom));
    }

    /// Nothing to be asked; bonding and secure connections; every key of the phone, and of its own
    /// one for links, which nobody sends, and for signing.
    static constexpr PairingMessage silent{0x02, 0x03, 0, 0x09, 16, 0x07, 0x05};
    /// As a screen with two buttons.
    static constexpr PairingMessage comparing{0x02, 0x01, 0, 0x0D, 16, 0x06, 0x00};

    CurveNumber secret{7, 7, 7};
    Key ourRandom{9, 9};
    PairingMessage asked{};
    PairingMessage answered{};
    PublicKey phonePublic;
    Key phoneRandom{};
    Bond bond;
};

TEST_F(SecurePairing, BothSidesProveThatTheyHaveTheKey) {
    InitiatedPairing pairing(phonesName, {.owner = OwnerAbility::Nothing}, bond);
    exchangeKeys(pairing, silent);
    const PairingMove proof = reveal(pairing);
    const Key right = proofValue(keys().check, {.ownRandom = phoneRandom,
                                                .othersRandom = ourRandom,
                                                .capabilities = {asked[1], asked[2], asked[3]},
                                                .own = phoneShown,
                                                .others = computerShown});
    ASSERT_EQ(proof.messages, std::vector<Bytes>{securityMessage(SecurityCode::Proof, right)});
    const PairingMove agreed = pairing.receive(securityMessage(SecurityCode::Proof, ourProof()));
    EXPECT_EQ(agreed.encryptWith, EncryptionKey{.key = keys().longTerm});
}

TEST_F(SecurePairing, TheOneKeyServesLinksOfEitherSide) {
    InitiatedPairing pairing(phonesName, {.owner = OwnerAbility::Nothing}, bond);
    exchangeKeys(pairing, silent);
    reveal(pairing);
    pairing.receive(securityMessage(SecurityCode::Proof, ourProof()));
    EXPECT_FALSE(pairing.encrypted().isEnd);
    EXPECT_FALSE(bond.isKept());
    const PairingMove end =
        pairing.receive(securityMessage(SecurityCode::SigningInformation, Key{}));
    EXPECT_TRUE(end.isEnd);
    EXPECT_EQ(codeOf(end), 0x08); // who it is, and no key for the link
    EXPECT_EQ(bond.asCentral, EncryptionKey{.key = keys().longTerm});
    EXPECT_EQ(bond.asPeripheral, bond.asCentral);
}

TEST_F(SecurePairing, AWrongProofEndsIt) {
    InitiatedPairing pairing(phonesName, {.owner = OwnerAbility::Nothing}, bond);
    exchangeKeys(pairing, silent);
    reveal(pairing);
    EXPECT_EQ(pairing.receive(securityMessage(SecurityCode::Proof, Key{1})).messages,
              (std::vector<Bytes>{{0x05, 0x0B}}));
}

TEST_F(SecurePairing, ARandomNumberThatTheOtherWasNotBoundToEndsIt) {
    InitiatedPairing pairing(phonesName, {.owner = OwnerAbility::Nothing}, bond);
    exchangeKeys(pairing, silent);
    EXPECT_EQ(pairing.receive(securityMessage(SecurityCode::PairingRandom, Key{1})).messages,
              (std::vector<Bytes>{{0x05, 0x04}}));
}

TEST_F(SecurePairing, SixDigitsAreComparedBeforeAnythingIsProved) {
    InitiatedPairing pairing(phonesName, {}, bond);
    exchangeKeys(pairing, comparing);
    EXPECT_TRUE(reveal(pairing).messages.empty());
    const unsigned digits =
        comparedNumber(phonePublic.x, publicKeyOf(secret).x, phoneRandom, ourRandom);
    EXPECT_EQ(pairing.question(),
              (OwnersQuestion{.kind = OwnersQuestion::Kind::Compare, .digits = digits}));
    EXPECT_EQ(codeOf(pairing.answer({})), 0x0D);
}

TEST_F(SecurePairing, DigitsThatDifferEndIt) {
    InitiatedPairing pairing(phonesName, {}, bond);
    exchangeKeys(pairing, comparing);
    reveal(pairing);
    EXPECT_EQ(pairing.answer({.consents = false}).messages, (std::vector<Bytes>{{0x05, 0x0C}}));
    EXPECT_EQ(pairing.failure(), 0x0C);
}

TEST_F(SecurePairing, OnASideThatKnowsTheOlderWayOnlyThatIsGone) {
    InitiatedPairing pairing(phonesName, {.owner = OwnerAbility::Nothing}, bond);
    pairing.start(phoneShown, computerShown);
    constexpr PairingMessage older{0x02, 0x03, 0, 0x01, 16, 0x07, 0x07};
    EXPECT_EQ(codeOf(pairing.receive(older)), 0x03);
}

} // namespace
} // namespace controller

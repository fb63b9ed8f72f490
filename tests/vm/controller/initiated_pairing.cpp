#include "initiated_pairing.h"

#include <algorithm>
#include <utility>

#include "random_bytes.h"

namespace controller {

namespace {

/// What the other side can do, in the numbers of the air.
constexpr unsigned displays = 0;
constexpr unsigned answersToo = 1;
constexpr unsigned typesToo = 4;

Capabilities capabilitiesIn(const PairingMessage& message) {
    Capabilities capabilities{};
    std::copy_n(message.begin() + capabilitiesAt, capabilities.size(), capabilities.begin());
    return capabilities;
}

PairingMove say(Bytes message) { return {.messages = {std::move(message)}, .encryptWith = {}}; }

bool canCompare(unsigned ability) { return ability == answersToo || ability == typesToo; }

} // namespace

InitiatedPairing::InitiatedPairing(const PairingIdentity& identity, const PairingHabits& habits,
                                   Bond& bond)
    : identity_(identity),
      habits_(habits),
      bond_(bond),
      generator_(generatorFor(identity.address)) {}

PairingMove InitiatedPairing::start(const Address& own, const Address& others) {
    const unsigned keys = encryptionKey | signingKey | (identity_.resolvingKey ? identityKey : 0U);
    const unsigned protected_ = habits_.owner == OwnerAbility::Nothing ? 0 : protection;
    const unsigned secure = habits_.isOlder ? 0 : secureConnections;
    failure_.reset();
    context_ = {.request = {static_cast<std::uint8_t>(SecurityCode::PairingRequest),
                            static_cast<std::uint8_t>(habits_.owner),
                            0, // nothing was exchanged by other means
                            static_cast<std::uint8_t>(bonding | protected_ | secure), longestKey,
                            static_cast<std::uint8_t>(keys),
                            encryptionKey | identityKey | signingKey},
                .response = {},
                .initiator = own,
                .responder = others};
    exchange_ = {.initiatorRandom = randomKey(generator_),
                 .responderRandom = {},
                 .initiator = own,
                 .responder = others};
    temporary_ = {};
    stage_ = Stage::AwaitsResponse;
    return say({context_.request.begin(), context_.request.end()});
}

PairingMove InitiatedPairing::receive(ByteView message) {
    if (message.empty() || !isUnderWay()) return {};
    switch (SecurityCode{message[0]}) {
    case SecurityCode::PairingResponse:
        return takeResponse(message);
    case SecurityCode::PublicKey:
        return takePublicKey(message);
    case SecurityCode::PairingConfirm:
        return takeCommitment(message);
    case SecurityCode::PairingRandom:
        return takeRandom(message);
    case SecurityCode::Proof:
        return takeProof(message);
    case SecurityCode::PairingFailed:
        abandon();
        failure_ = message.size() > 1 ? message[1] : static_cast<std::uint8_t>(0);
        return {};
    case SecurityCode::EncryptionInformation:
    case SecurityCode::CentralIdentification:
    case SecurityCode::IdentityInformation:
    case SecurityCode::IdentityAddress:
    case SecurityCode::SigningInformation:
        return takeKey(message);
    case SecurityCode::SecurityRequest:
        // It has what it wants.
        return {};
    case SecurityCode::PairingRequest:
        break;
    }
    return fail(PairingFailure::CommandNotSupported);
}

bool InitiatedPairing::isSecure() const {
    return (context_.request[requirementsAt] & context_.response[requirementsAt] &
            secureConnections) != 0;
}

std::optional<OwnersQuestion::Kind> InitiatedPairing::whatToAsk() const {
    using Kind = OwnersQuestion::Kind;
    const unsigned others = context_.response[capabilitiesAt];
    const bool isProtected =
        ((context_.request[requirementsAt] | context_.response[requirementsAt]) & protection) != 0;
    if (isProtected && isSecure() && canCompare(static_cast<unsigned>(habits_.owner)) &&
        canCompare(others))
        return Kind::Compare;
    if (isProtected && !isSecure() && habits_.owner == OwnerAbility::Types &&
        (others == displays || canCompare(others)))
        return Kind::Type;
    return habits_.asksAlways ? std::optional(Kind::Consent) : std::nullopt;
}

PairingMove InitiatedPairing::takeResponse(ByteView message) {
    if (stage_ != Stage::AwaitsResponse || message.size() != context_.response.size())
        return fail(PairingFailure::InvalidParameters);
    std::copy(message.begin(), message.end(), context_.response.begin());
    if (!isSecure()) return ask();
    secret_ = randomBytes<CurveNumber>(generator_);
    ownPublic_ = publicKeyOf(secret_);
    Bytes key;
    append(key, ownPublic_.x);
    append(key, ownPublic_.y);
    stage_ = Stage::AwaitsPublicKey;
    return say(securityMessage(SecurityCode::PublicKey, key));
}

PairingMove InitiatedPairing::takePublicKey(ByteView message) {
    if (stage_ != Stage::AwaitsPublicKey || message.size() != publicKeyMessageLength)
        return fail(PairingFailure::InvalidParameters);
    const ByteView x = message.subspan(1);
    const ByteView y = x.subspan(othersPublic_.x.size());
    std::copy_n(x.begin(), othersPublic_.x.size(), othersPublic_.x.begin());
    std::copy_n(y.begin(), othersPublic_.y.size(), othersPublic_.y.begin());
    stage_ = Stage::AwaitsCommitment;
    return {};
}

PairingMove InitiatedPairing::takeCommitment(ByteView message) {
    const bool isAwaited = stage_ == Stage::AwaitsCommitment || stage_ == Stage::AwaitsConfirm;
    if (!isAwaited || message.size() != keyMessageLength) return fail(PairingFailure::Unspecified);
    commitment_ = keyIn(message);
    stage_ = Stage::AwaitsRandom;
    return say(securityMessage(SecurityCode::PairingRandom, exchange_.initiatorRandom));
}

PairingMove InitiatedPairing::takeRandom(ByteView message) {
    if (stage_ != Stage::AwaitsRandom || message.size() != keyMessageLength)
        return fail(PairingFailure::Unspecified);
    const Key random = keyIn(message);
    if (isSecure()) return takeRandomSecurely(random);
    if (confirmValue(temporary_, random, context_) != commitment_)
        return fail(PairingFailure::ConfirmValue);
    stage_ = Stage::AwaitsEncryption;
    return {.messages = {},
            .encryptWith =
                EncryptionKey{.key = shortTermKey(temporary_, random, exchange_.initiatorRandom)}};
}

PairingMove InitiatedPairing::takeRandomSecurely(const Key& random) {
    if (commitment(othersPublic_.x, ownPublic_.x, random) != commitment_)
        return fail(PairingFailure::ConfirmValue);
    const std::optional<CurveNumber> shared = sharedSecret(secret_, othersPublic_);
    if (!shared) return fail(PairingFailure::InvalidParameters);
    exchange_.responderRandom = random;
    keys_ = pairingKeys(*shared, exchange_);
    return ask();
}

PairingMove InitiatedPairing::ask() {
    const std::optional<OwnersQuestion::Kind> kind = whatToAsk();
    stage_ = Stage::AwaitsOwner;
    if (!kind) return answer({});
    question_ = OwnersQuestion{.kind = *kind};
    if (*kind == OwnersQuestion::Kind::Compare)
        question_->digits = comparedNumber(ownPublic_.x, othersPublic_.x, exchange_.initiatorRandom,
                                           exchange_.responderRandom);
    return {};
}

PairingMove InitiatedPairing::answer(const OwnersAnswer& answer) {
    using Kind = OwnersQuestion::Kind;
    const std::optional<OwnersQuestion> asked = std::exchange(question_, std::nullopt);
    if (!answer.consents) {
        const Kind kind = asked ? asked->kind : Kind::Consent;
        return fail(kind == Kind::Compare ? PairingFailure::NumericComparison
                    : kind == Kind::Type  ? PairingFailure::PasskeyEntry
                                          : PairingFailure::Unspecified);
    }
    for (std::size_t at = 0; at < sizeof answer.digits; ++at)
        temporary_[at] = static_cast<std::uint8_t>(answer.digits >> (8U * at) & 0xFFU);
    return isSecure() ? prove() : confirm();
}

PairingMove InitiatedPairing::confirm() {
    stage_ = Stage::AwaitsConfirm;
    return say(securityMessage(SecurityCode::PairingConfirm,
                               confirmValue(temporary_, exchange_.initiatorRandom, context_)));
}

PairingMove InitiatedPairing::prove() {
    stage_ = Stage::AwaitsProof;
    return say(
        securityMessage(SecurityCode::Proof,
                        proofValue(keys_.check, {.ownRandom = exchange_.initiatorRandom,
                                                 .othersRandom = exchange_.responderRandom,
                                                 .capabilities = capabilitiesIn(context_.request),
                                                 .own = context_.initiator,
                                                 .others = context_.responder})));
}

PairingMove InitiatedPairing::takeProof(ByteView message) {
    if (stage_ != Stage::AwaitsProof || message.size() != keyMessageLength)
        return fail(PairingFailure::Unspecified);
    const Key right = proofValue(keys_.check, {.ownRandom = exchange_.responderRandom,
                                               .othersRandom = exchange_.initiatorRandom,
                                               .capabilities = capabilitiesIn(context_.response),
                                               .own = context_.responder,
                                               .others = context_.initiator});
    if (keyIn(message) != right) return fail(PairingFailure::Proof);
    stage_ = Stage::AwaitsEncryption;
    return {.messages = {}, .encryptWith = EncryptionKey{.key = keys_.longTerm}};
}

PairingMove InitiatedPairing::encrypted() {
    if (stage_ != Stage::AwaitsEncryption) return {};
    keysToCome_ = context_.response[responderKeysAt];
    // With secure connections both have the key already.
    if (isSecure()) keysToCome_ &= ~encryptionKey;
    stage_ = Stage::AwaitsKeys;
    return keysToCome_ == 0 ? end() : PairingMove{};
}

PairingMove InitiatedPairing::takeKey(ByteView message) {
    if (stage_ != Stage::AwaitsKeys) return fail(PairingFailure::Unspecified);
    constexpr std::size_t identificationLength = 11;
    const SecurityCode code{message[0]};
    if (code == SecurityCode::EncryptionInformation && message.size() == keyMessageLength)
        othersKey_.key = keyIn(message);
    if (code == SecurityCode::CentralIdentification && message.size() == identificationLength) {
        othersKey_.diversifier = read16(message, 1);
        std::copy_n(message.begin() + 3, othersKey_.random.size(), othersKey_.random.begin());
        keysToCome_ &= ~encryptionKey;
    }
    if (code == SecurityCode::IdentityAddress) keysToCome_ &= ~identityKey;
    if (code == SecurityCode::SigningInformation) keysToCome_ &= ~signingKey;
    return keysToCome_ == 0 ? end() : PairingMove{};
}

PairingMove InitiatedPairing::end() {
    const unsigned keys = context_.response[initiatorKeysAt];
    const bool bonds = (context_.request[requirementsAt] & context_.response[requirementsAt] &
                        bondingMask) == bonding;
    PairingMove move;
    Bond made;
    if (isSecure()) {
        made.asPeripheral = made.asCentral = EncryptionKey{.key = keys_.longTerm};
    } else if ((keys & encryptionKey) != 0) {
        made.asPeripheral = randomEncryptionKey(generator_);
        move.messages = encryptionKeyMessages(*made.asPeripheral);
    }
    if (!isSecure() && (context_.response[responderKeysAt] & encryptionKey) != 0)
        made.asCentral = othersKey_;
    if ((keys & identityKey) != 0) {
        for (Bytes& each : identityMessages(identity_))
            move.messages.push_back(std::move(each));
    }
    if ((keys & signingKey) != 0)
        move.messages.push_back(
            securityMessage(SecurityCode::SigningInformation, randomKey(generator_)));
    if (bonds) bond_ = made;
    stage_ = Stage::Idle;
    ++timesDone_;
    move.isEnd = true;
    return move;
}

void InitiatedPairing::abandon() {
    stage_ = Stage::Idle;
    question_.reset();
}

PairingMove InitiatedPairing::fail(PairingFailure why) {
    abandon();
    failure_ = static_cast<std::uint8_t>(why);
    return say(failureMessage(why));
}

} // namespace controller

#include "pairing.h"

#include <algorithm>

#include "random_bytes.h"

namespace controller {

namespace {

constexpr std::uint8_t noInputNoOutput = 3;
/// Without a question to the user there is nothing to start from.
constexpr Key temporaryKey{};

} // namespace

Pairing::Pairing(const PairingIdentity& identity, Pairability pairability, Bond& bond)
    : identity_(identity),
      pairability_(pairability),
      bond_(bond),
      generator_(generatorFor(identity.address)) {}

void Pairing::linked(const Address& initiator, const Address& responder) {
    stage_ = Stage::Idle;
    context_.initiator = initiator;
    context_.responder = responder;
}

std::optional<Bytes> Pairing::receive(ByteView received) {
    if (received.empty()) return std::nullopt;
    switch (SecurityCode{received[0]}) {
    case SecurityCode::PairingRequest:
        return respond(received);
    case SecurityCode::PairingConfirm:
        return confirm(received);
    case SecurityCode::PairingRandom:
        return reveal(received);
    case SecurityCode::PairingFailed:
        stage_ = Stage::Idle;
        return std::nullopt;
    case SecurityCode::EncryptionInformation:
    case SecurityCode::CentralIdentification:
    case SecurityCode::IdentityInformation:
    case SecurityCode::IdentityAddress:
    case SecurityCode::SigningInformation:
        // The other side's own keys; this device never has to find it again.
        return std::nullopt;
    case SecurityCode::PairingResponse:
    case SecurityCode::SecurityRequest:
    case SecurityCode::PublicKey:
    case SecurityCode::Proof:
        break;
    }
    return fail(PairingFailure::CommandNotSupported);
}

Bytes Pairing::respond(ByteView request) {
    ++timesAsked_;
    if (pairability_ == Pairability::Refuses) return fail(PairingFailure::NotSupported);
    if (request.size() != context_.request.size()) return fail(PairingFailure::InvalidParameters);
    std::copy(request.begin(), request.end(), context_.request.begin());
    const unsigned identityOffer = identity_.resolvingKey ? identityKey : 0;
    const unsigned offer = encryptionKey | identityOffer | signingKey;
    const unsigned accepted = encryptionKey | identityKey | signingKey;
    const bool bonds = (request[requirementsAt] & bondingMask) == bonding;
    context_.response = {static_cast<std::uint8_t>(SecurityCode::PairingResponse),
                         noInputNoOutput,
                         0, // nothing was exchanged by other means
                         static_cast<std::uint8_t>(bonds ? bonding : 0),
                         longestKey,
                         static_cast<std::uint8_t>(request[initiatorKeysAt] & accepted),
                         static_cast<std::uint8_t>(request[responderKeysAt] & offer)};
    stage_ = Stage::AwaitsConfirm;
    return {context_.response.begin(), context_.response.end()};
}

Bytes Pairing::confirm(ByteView received) {
    if (stage_ != Stage::AwaitsConfirm || received.size() != keyMessageLength)
        return fail(PairingFailure::Unspecified);
    othersConfirm_ = keyIn(received);
    ownRandom_ = randomKey(generator_);
    stage_ = Stage::AwaitsRandom;
    return securityMessage(SecurityCode::PairingConfirm,
                           confirmValue(temporaryKey, ownRandom_, context_));
}

Bytes Pairing::reveal(ByteView received) {
    if (stage_ != Stage::AwaitsRandom || received.size() != keyMessageLength)
        return fail(PairingFailure::Unspecified);
    const Key othersRandom = keyIn(received);
    if (confirmValue(temporaryKey, othersRandom, context_) != othersConfirm_)
        return fail(PairingFailure::ConfirmValue);
    shortTerm_ = {.key = shortTermKey(temporaryKey, ownRandom_, othersRandom)};
    stage_ = Stage::AwaitsEncryption;
    return securityMessage(SecurityCode::PairingRandom, ownRandom_);
}

Bytes Pairing::fail(PairingFailure why) {
    stage_ = Stage::Idle;
    return failureMessage(why);
}

bool Pairing::agreesOn(const EncryptionKey& key) const {
    if (stage_ == Stage::AwaitsEncryption) return key == shortTerm_;
    return key == bond_.asPeripheral;
}

std::vector<Bytes> Pairing::encrypted() {
    if (stage_ != Stage::AwaitsEncryption) return {};
    stage_ = Stage::Idle;
    const unsigned keys = context_.response[responderKeysAt];
    std::vector<Bytes> messages;
    if ((keys & encryptionKey) != 0) {
        bond_.asPeripheral = randomEncryptionKey(generator_);
        messages = encryptionKeyMessages(*bond_.asPeripheral);
    }
    if ((keys & identityKey) != 0) {
        for (Bytes& each : identityMessages(identity_))
            messages.push_back(std::move(each));
    }
    if ((keys & signingKey) != 0)
        messages.push_back(
            securityMessage(SecurityCode::SigningInformation, randomKey(generator_)));
    return messages;
}

} // namespace controller

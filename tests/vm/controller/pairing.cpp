#include "pairing.h"

#include <algorithm>

#include "random_bytes.h"

namespace controller {

namespace {

/// The messages of the security channel.
enum class Code : std::uint8_t {
    PairingRequest = 0x01,
    PairingResponse = 0x02,
    PairingConfirm = 0x03,
    PairingRandom = 0x04,
    PairingFailed = 0x05,
    EncryptionInformation = 0x06,
    CentralIdentification = 0x07,
    IdentityInformation = 0x08,
    IdentityAddress = 0x09,
    SigningInformation = 0x0A
};

constexpr std::uint8_t noInputNoOutput = 3;
constexpr unsigned bonding = 0x01;
constexpr unsigned bondingMask = 0x03;
constexpr std::uint8_t longestKey = 16;

/// Keys, as both sides offer and ask for them.
constexpr unsigned encryptionKey = 0x01;
constexpr unsigned identityKey = 0x02;
constexpr unsigned signingKey = 0x04;

/// Where a request and a response have what.
constexpr std::size_t requirementsAt = 3;
constexpr std::size_t initiatorKeysAt = 5;
constexpr std::size_t responderKeysAt = 6;

constexpr std::size_t keyMessageLength = 17;

/// Without a question to the user there is nothing to start from.
constexpr Key temporaryKey{};

Bytes message(Code code, ByteView content) {
    Bytes bytes{static_cast<std::uint8_t>(code)};
    append(bytes, content);
    return bytes;
}

/// The caller has checked the length.
Key keyIn(ByteView received) {
    Key key{};
    std::copy_n(received.begin() + 1, key.size(), key.begin());
    return key;
}

} // namespace

enum class Pairing::Failure : std::uint8_t {
    ConfirmValue = 0x04,
    NotSupported = 0x05,
    CommandNotSupported = 0x07,
    Unspecified = 0x08,
    InvalidParameters = 0x0A
};

Pairing::Pairing(const Identity& identity, Pairability pairability)
    : identity_(identity),
      pairability_(pairability),
      generator_(generatorFor(identity.address)) {}

void Pairing::linked(const Address& initiator, const Address& responder) {
    stage_ = Stage::Idle;
    context_.initiator = initiator;
    context_.responder = responder;
}

std::optional<Bytes> Pairing::receive(ByteView received) {
    if (received.empty()) return std::nullopt;
    switch (Code{received[0]}) {
    case Code::PairingRequest:
        return respond(received);
    case Code::PairingConfirm:
        return confirm(received);
    case Code::PairingRandom:
        return reveal(received);
    case Code::PairingFailed:
        stage_ = Stage::Idle;
        return std::nullopt;
    case Code::EncryptionInformation:
    case Code::CentralIdentification:
    case Code::IdentityInformation:
    case Code::IdentityAddress:
    case Code::SigningInformation:
        // The other side's own keys; this device never has to find it again.
        return std::nullopt;
    case Code::PairingResponse:
        break;
    }
    return fail(Failure::CommandNotSupported);
}

Bytes Pairing::respond(ByteView request) {
    ++timesAsked_;
    if (pairability_ == Pairability::Refuses) return fail(Failure::NotSupported);
    if (request.size() != context_.request.size()) return fail(Failure::InvalidParameters);
    std::copy(request.begin(), request.end(), context_.request.begin());
    const unsigned identityOffer = identity_.resolvingKey ? identityKey : 0;
    const unsigned offer = encryptionKey | identityOffer | signingKey;
    const unsigned accepted = encryptionKey | identityKey | signingKey;
    const bool bonds = (request[requirementsAt] & bondingMask) == bonding;
    context_.response = {static_cast<std::uint8_t>(Code::PairingResponse),
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
        return fail(Failure::Unspecified);
    othersConfirm_ = keyIn(received);
    ownRandom_ = randomKey(generator_);
    stage_ = Stage::AwaitsRandom;
    return message(Code::PairingConfirm, confirmValue(temporaryKey, ownRandom_, context_));
}

Bytes Pairing::reveal(ByteView received) {
    if (stage_ != Stage::AwaitsRandom || received.size() != keyMessageLength)
        return fail(Failure::Unspecified);
    const Key othersRandom = keyIn(received);
    if (confirmValue(temporaryKey, othersRandom, context_) != othersConfirm_)
        return fail(Failure::ConfirmValue);
    shortTerm_ = {.key = shortTermKey(temporaryKey, ownRandom_, othersRandom)};
    stage_ = Stage::AwaitsEncryption;
    return message(Code::PairingRandom, ownRandom_);
}

Bytes Pairing::fail(Failure why) {
    stage_ = Stage::Idle;
    return message(Code::PairingFailed, Bytes{static_cast<std::uint8_t>(why)});
}

bool Pairing::agreesOn(const EncryptionKey& key) const {
    if (stage_ == Stage::AwaitsEncryption) return key == shortTerm_;
    return bond_ && key == *bond_;
}

std::vector<Bytes> Pairing::encrypted() {
    if (stage_ != Stage::AwaitsEncryption) return {};
    stage_ = Stage::Idle;
    const unsigned keys = context_.response[responderKeysAt];
    std::vector<Bytes> messages;
    if ((keys & encryptionKey) != 0) {
        const Key numbers = randomKey(generator_);
        bond_ = EncryptionKey{.key = randomKey(generator_), .diversifier = read16(numbers, 0)};
        std::copy_n(numbers.rbegin(), bond_->random.size(), bond_->random.begin());
        Bytes identification;
        append16(identification, bond_->diversifier);
        append(identification, bond_->random);
        messages.push_back(message(Code::EncryptionInformation, bond_->key));
        messages.push_back(message(Code::CentralIdentification, identification));
    }
    if ((keys & identityKey) != 0) {
        Bytes address{static_cast<std::uint8_t>(identity_.address.type)};
        append(address, identity_.address.bytes);
        messages.push_back(message(Code::IdentityInformation, *identity_.resolvingKey));
        messages.push_back(message(Code::IdentityAddress, address));
    }
    if ((keys & signingKey) != 0)
        messages.push_back(message(Code::SigningInformation, randomKey(generator_)));
    return messages;
}

} // namespace controller

#include "security_functions.h"

#include <algorithm>

namespace controller {

namespace {

Key exclusiveOr(Key left, const Key& right) {
    std::transform(left.begin(), left.end(), right.begin(), left.begin(),
                   [](unsigned a, unsigned b) { return static_cast<std::uint8_t>(a ^ b); });
    return left;
}

/// Messages that are authenticated go most significant byte first.
void appendTurned(Bytes& to, ByteView number) {
    to.insert(to.end(), number.rbegin(), number.rend());
}

void appendTurned(Bytes& to, const Address& address) {
    append8(to, static_cast<unsigned>(address.type));
    appendTurned(to, address.bytes);
}

} // namespace

Key confirmValue(const Key& temporaryKey, const Key& random, const PairingContext& context) {
    Key first{};
    first[0] = static_cast<std::uint8_t>(context.initiator.type);
    first[1] = static_cast<std::uint8_t>(context.responder.type);
    auto* end = std::copy(context.request.begin(), context.request.end(), first.begin() + 2);
    std::copy(context.response.begin(), context.response.end(), end);

    Key second{};
    const auto& initiator = context.initiator.bytes;
    end = std::copy(context.responder.bytes.begin(), context.responder.bytes.end(), second.begin());
    std::copy(initiator.begin(), initiator.end(), end);

    const Key inner = encrypt(temporaryKey, exclusiveOr(random, first));
    return encrypt(temporaryKey, exclusiveOr(inner, second));
}

Key shortTermKey(const Key& temporaryKey, const Key& responderRandom, const Key& initiatorRandom) {
    constexpr std::size_t half = 8;
    Key joined{};
    auto* end = std::copy_n(initiatorRandom.begin(), half, joined.begin());
    std::copy_n(responderRandom.begin(), half, end);
    return encrypt(temporaryKey, joined);
}

Key commitment(const CurveNumber& ownX, const CurveNumber& othersX, const Key& random) {
    Bytes message;
    appendTurned(message, ownX);
    appendTurned(message, othersX);
    append8(message, 0);
    return authenticationCode(random, message);
}

PairingKeys pairingKeys(const CurveNumber& shared, const Exchange& exchange) {
    constexpr Key salt{0xBE, 0x83, 0x60, 0x5A, 0xDB, 0x0B, 0x37, 0x60,
                       0x38, 0xA5, 0xF5, 0xAA, 0x91, 0x83, 0x88, 0x6C};
    constexpr std::uint8_t name[] = {0x62, 0x74, 0x6C, 0x65}; // "btle"
    constexpr std::uint8_t bits[] = {0x01, 0x00};
    Bytes secret;
    appendTurned(secret, shared);
    const Key between = authenticationCode(salt, secret);
    const auto numbered = [&](unsigned number) {
        Bytes message;
        append8(message, number);
        append(message, name);
        appendTurned(message, exchange.initiatorRandom);
        appendTurned(message, exchange.responderRandom);
        appendTurned(message, exchange.initiator);
        appendTurned(message, exchange.responder);
        append(message, bits);
        return authenticationCode(between, message);
    };
    return {.check = numbered(0), .longTerm = numbered(1)};
}

Key proofValue(const Key& check, const Proof& proof) {
    Bytes message;
    appendTurned(message, proof.ownRandom);
    appendTurned(message, proof.othersRandom);
    appendTurned(message, proof.passkey);
    appendTurned(message, proof.capabilities);
    appendTurned(message, proof.own);
    appendTurned(message, proof.others);
    return authenticationCode(check, message);
}

unsigned comparedNumber(const CurveNumber& initiatorX, const CurveNumber& responderX,
                        const Key& initiatorRandom, const Key& responderRandom) {
    constexpr unsigned numbers = 1000000;
    Bytes message;
    appendTurned(message, initiatorX);
    appendTurned(message, responderX);
    appendTurned(message, responderRandom);
    const Key code = authenticationCode(initiatorRandom, message);
    unsigned number = 0;
    for (std::size_t at = sizeof number; at-- > 0;)
        number = number << 8U | code[at];
    return number % numbers;
}

AddressPart addressHash(const Key& identityResolvingKey, const AddressPart& random) {
    Key padded{};
    std::copy(random.begin(), random.end(), padded.begin());
    const Key encrypted = encrypt(identityResolvingKey, padded);
    return {encrypted[0], encrypted[1], encrypted[2]};
}

} // namespace controller

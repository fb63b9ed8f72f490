#include "security_functions.h"

#include <algorithm>

namespace controller {

namespace {

Key exclusiveOr(Key left, const Key& right) {
    std::transform(left.begin(), left.end(), right.begin(), left.begin(),
                   [](unsigned a, unsigned b) { return static_cast<std::uint8_t>(a ^ b); });
    return left;
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

AddressPart addressHash(const Key& identityResolvingKey, const AddressPart& random) {
    Key padded{};
    std::copy(random.begin(), random.end(), padded.begin());
    const Key encrypted = encrypt(identityResolvingKey, padded);
    return {encrypted[0], encrypted[1], encrypted[2]};
}

} // namespace controller

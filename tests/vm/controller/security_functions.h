// The functions of the Bluetooth Core Specification by which two devices prove to each other that
// they mean the same pairing, and by which a private address is made and recognised. All numbers
// go least significant byte first.
#pragma once

#include <array>

#include "address.h"
#include "aes.h"

namespace controller {

/// A pairing request or response as it was sent, code included.
using PairingMessage = std::array<std::uint8_t, 7>;

/// What both sides know of a pairing before it is confirmed.
struct PairingContext {
    PairingMessage request{};
    PairingMessage response{};
    Address initiator;
    Address responder;
};

/// c1: the confirm value for a random number.
Key confirmValue(const Key& temporaryKey, const Key& random, const PairingContext& context);

/// s1: the key for the link during pairing.
Key shortTermKey(const Key& temporaryKey, const Key& responderRandom, const Key& initiatorRandom);

using AddressPart = std::array<std::uint8_t, 3>;

/// ah: the half of a private address that follows from the other half.
AddressPart addressHash(const Key& identityResolvingKey, const AddressPart& random);

} // namespace controller

// The functions of the Bluetooth Core Specification by which two devices prove to each other that
// they mean the same pairing, and by which a private address is made and recognised. All numbers
// go least significant byte first.
#pragma once

#include <array>

#include "address.h"
#include "aes.h"
#include "elliptic_curve.h"

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

/// f4: by which a side is bound to a random number before it knows the other's. The last byte is
/// part of a passkey, and 0 without one.
Key commitment(const CurveNumber& ownX, const CurveNumber& othersX, const Key& random);

/// Random numbers and addresses of both sides, the initiator's first.
struct Exchange {
    Key initiatorRandom{};
    Key responderRandom{};
    Address initiator;
    Address responder;
};

struct PairingKeys {
    /// Proves to each that the other has it.
    Key check{};
    Key longTerm{};
};

/// f5: the keys from the secret that both share.
PairingKeys pairingKeys(const CurveNumber& shared, const Exchange& exchange);

/// The three bytes of a request or response that say what a side can do and wants.
using Capabilities = std::array<std::uint8_t, 3>;

/// What a side says of itself in the last check, and of the other's.
struct Proof {
    Key ownRandom{};
    Key othersRandom{};
    /// Of a side that has typed one, or got something by other means; otherwise nothing.
    Key passkey{};
    Capabilities capabilities{};
    Address own;
    Address others;
};

/// f6: shows that a side has the key, and means this very exchange.
Key proofValue(const Key& check, const Proof& proof);

/// g2: the six digits that are to be the same on both screens.
unsigned comparedNumber(const CurveNumber& initiatorX, const CurveNumber& responderX,
                        const Key& initiatorRandom, const Key& responderRandom);

using AddressPart = std::array<std::uint8_t, 3>;

/// ah: the half of a private address that follows from the other half.
AddressPart addressHash(const Key& identityResolvingKey, const AddressPart& random);

} // namespace controller

// The curve on which two devices that pair agree on a secret: P-256. Numbers go least significant
// byte first, as on the air.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace controller {

using CurveNumber = std::array<std::uint8_t, 32>;

struct PublicKey {
    CurveNumber x{};
    CurveNumber y{};

    bool operator==(const PublicKey&) const = default;
};

PublicKey publicKeyOf(const CurveNumber& secret);

/// What both sides get from their own secret and the other's public key. Nothing if that is no
/// point of the curve.
std::optional<CurveNumber> sharedSecret(const CurveNumber& own, const PublicKey& others);

} // namespace controller

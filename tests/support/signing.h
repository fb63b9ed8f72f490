// An owner of a signing key, for tests: makes a key of its own and signs with it.
#pragma once

#include "update/bundle_info.h"

#include <nettle/base64.h>
#include <nettle/eddsa.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <span>
#include <string>
#include <vector>

namespace wegslot {

/// Base64 with padding, without line breaks (RFC 4648, section 4).
inline std::string toBase64(std::span<const std::uint8_t> bytes) {
    std::string text(BASE64_ENCODE_RAW_LENGTH(bytes.size()), '\0');
    base64_encode_raw(text.data(), bytes.size(), bytes.data());
    return text;
}

class Signer {
public:
    Signer() {
        std::random_device random;
        std::ranges::generate(key_, [&] { return static_cast<std::uint8_t>(random()); });
        ed25519_sha512_public_key(publicKey.data(), key_.data());
    }

    /// Of all of `bytes`, as a feed has it.
    [[nodiscard]] std::string sign(std::span<const std::uint8_t> bytes) const {
        std::array<std::uint8_t, ED25519_SIGNATURE_SIZE> signature{};
        ed25519_sha512_sign(publicKey.data(), key_.data(), bytes.size(), bytes.data(),
                            signature.data());
        return toBase64(signature);
    }

    PublicKey publicKey{};

private:
    std::array<std::uint8_t, ED25519_KEY_SIZE> key_{};
};

} // namespace wegslot

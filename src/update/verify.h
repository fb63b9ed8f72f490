// The two proofs that an image is the released one: its hash is the feed's, and the owner of the
// public key has signed it.
#pragma once

#include "update/bundle_info.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace wegslot {

/// The SHA-256 (FIPS 180-4) as 64 lower-case hexadecimal digits.
[[nodiscard]] std::string sha256(std::span<const std::uint8_t> bytes);

/// Whether `signature`, strict base64, is an Ed25519 signature (RFC 8032) of all of `bytes` by the
/// owner of `key`. False for anything else.
[[nodiscard]] bool isSigned(std::span<const std::uint8_t> bytes, std::string_view signature,
                            const PublicKey& key);

} // namespace wegslot

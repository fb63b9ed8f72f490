#include "update/verify.h"

#include "update/base64.h"

#include <nettle/eddsa.h>
#include <nettle/sha2.h>

#include <array>

namespace wegslot {

std::string sha256(std::span<const std::uint8_t> bytes) {
    sha256_ctx context{};
    std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest{};
    sha256_init(&context);
    sha256_update(&context, bytes.size(), bytes.data());
    sha256_digest(&context, digest.size(), digest.data());
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : digest) {
        text += digits[byte >> 4U];
        text += digits[byte & 0xFU];
    }
    return text;
}

bool isSigned(std::span<const std::uint8_t> bytes, std::string_view signature,
              const PublicKey& key) {
    const auto decoded = decodeBase64(signature);
    if (!decoded || decoded->size() != ED25519_SIGNATURE_SIZE) return false;
    return ed25519_sha512_verify(key.data(), bytes.size(), bytes.data(), decoded->data()) == 1;
}

} // namespace wegslot

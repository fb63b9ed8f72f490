#include "update/verify.h"

#include "update/base64.h"

#include <openssl/evp.h>

#include <array>
#include <memory>

namespace wegslot {
namespace {

using Key = std::unique_ptr<EVP_PKEY, void (*)(EVP_PKEY*)>;
using Context = std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)>;

} // namespace

std::string sha256(std::span<const std::uint8_t> bytes) {
    std::array<std::uint8_t, 32> digest{};
    unsigned size = 0;
    if (EVP_Digest(bytes.data(), bytes.size(), digest.data(), &size, EVP_sha256(), nullptr) != 1)
        return {};
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
    if (!decoded) return false;
    const Key owner(EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, key.data(), key.size()),
                    EVP_PKEY_free);
    const Context context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    if (!owner || !context) return false;
    // Ed25519 brings its own hash; a signature of another size fails to verify.
    if (EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, owner.get()) != 1)
        return false;
    return EVP_DigestVerify(context.get(), decoded->data(), decoded->size(), bytes.data(),
                            bytes.size()) == 1;
}

} // namespace wegslot

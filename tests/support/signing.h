// An owner of a signing key, for tests: makes a key of its own and signs with it.
#pragma once

#include "update/bundle_info.h"

#include <gtest/gtest.h>

#include <openssl/evp.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace wegslot {

/// Base64 with padding, without line breaks (RFC 4648, section 4).
inline std::string toBase64(std::span<const std::uint8_t> bytes) {
    std::vector<unsigned char> text(4 * ((bytes.size() + 2) / 3) + 1);
    const int size = EVP_EncodeBlock(text.data(), bytes.data(), static_cast<int>(bytes.size()));
    return {text.begin(), text.begin() + size};
}

class Signer {
public:
    Signer() : key_(EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519"), EVP_PKEY_free) {
        std::size_t size = publicKey.size();
        EXPECT_EQ(EVP_PKEY_get_raw_public_key(key_.get(), publicKey.data(), &size), 1);
    }

    /// Of all of `bytes`, as a feed has it.
    [[nodiscard]] std::string sign(std::span<const std::uint8_t> bytes) const {
        const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(),
                                                                              EVP_MD_CTX_free);
        std::vector<std::uint8_t> signature(64);
        std::size_t size = signature.size();
        EXPECT_EQ(EVP_DigestSignInit(context.get(), nullptr, nullptr, nullptr, key_.get()), 1);
        EXPECT_EQ(
            EVP_DigestSign(context.get(), signature.data(), &size, bytes.data(), bytes.size()), 1);
        return toBase64(signature);
    }

    PublicKey publicKey{};

private:
    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key_;
};

} // namespace wegslot

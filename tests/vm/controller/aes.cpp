#include "aes.h"

#include <openssl/core_names.h>
#include <openssl/evp.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>

namespace controller {

namespace {

/// The cipher counts from the other end.
Key reversed(Key bytes) {
    std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

} // namespace

Key encrypt(const Key& key, const Key& block) {
    const Key cipherKey = reversed(key);
    const Key plain = reversed(block);
    Key result{};
    int length = 0;
    const std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(
        EVP_CIPHER_CTX_new(), &EVP_CIPHER_CTX_free);
    const bool isDone = context != nullptr &&
                        EVP_EncryptInit_ex(context.get(), EVP_aes_128_ecb(), nullptr,
                                           cipherKey.data(), nullptr) == 1 &&
                        EVP_CIPHER_CTX_set_padding(context.get(), 0) == 1 &&
                        EVP_EncryptUpdate(context.get(), result.data(), &length, plain.data(),
                                          static_cast<int>(plain.size())) == 1;
    // A library without AES leaves nothing to test with.
    if (!isDone) std::abort();
    return reversed(result);
}

Key authenticationCode(const Key& key, ByteView message) {
    const Key cipherKey = reversed(key);
    Key result{};
    std::size_t length = 0;
    std::string cipher = "AES-128-CBC";
    const OSSL_PARAM parameters[] = {
        OSSL_PARAM_construct_utf8_string(OSSL_MAC_PARAM_CIPHER, cipher.data(), cipher.size()),
        OSSL_PARAM_construct_end()};
    const std::unique_ptr<EVP_MAC, decltype(&EVP_MAC_free)> algorithm(
        EVP_MAC_fetch(nullptr, "CMAC", nullptr), &EVP_MAC_free);
    const std::unique_ptr<EVP_MAC_CTX, decltype(&EVP_MAC_CTX_free)> context(
        EVP_MAC_CTX_new(algorithm.get()), &EVP_MAC_CTX_free);
    const bool isDone =
        context != nullptr &&
        EVP_MAC_init(context.get(), cipherKey.data(), cipherKey.size(), parameters) == 1 &&
        EVP_MAC_update(context.get(), message.data(), message.size()) == 1 &&
        EVP_MAC_final(context.get(), result.data(), &length, result.size()) == 1;
    if (!isDone) std::abort();
    return reversed(result);
}

} // namespace controller

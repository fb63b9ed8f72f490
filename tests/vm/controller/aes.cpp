#include "aes.h"

#include <openssl/evp.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

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

} // namespace controller

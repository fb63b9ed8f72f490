// Random numbers that are the same in every run: nothing secret hangs on them.
#pragma once

#include <algorithm>
#include <random>

#include "address.h"
#include "aes.h"
#include "peer.h"

namespace controller {

template <typename Array>
Array randomBytes(std::mt19937& generator) {
    Array bytes{};
    std::generate(bytes.begin(), bytes.end(),
                  [&] { return static_cast<std::uint8_t>(generator() & 0xFFU); });
    return bytes;
}

inline Key randomKey(std::mt19937& generator) { return randomBytes<Key>(generator); }

/// With the numbers by which it will be asked for.
inline EncryptionKey randomEncryptionKey(std::mt19937& generator) {
    const Key numbers = randomKey(generator);
    EncryptionKey key{.key = randomKey(generator), .diversifier = read16(numbers, 0)};
    std::copy_n(numbers.rbegin(), key.random.size(), key.random.begin());
    return key;
}

/// Different numbers for different devices.
inline std::mt19937 generatorFor(const Address& address) {
    std::seed_seq seed(address.bytes.begin(), address.bytes.end());
    return std::mt19937(seed);
}

} // namespace controller

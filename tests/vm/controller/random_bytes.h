// Random numbers that are the same in every run: nothing secret hangs on them.
#pragma once

#include <algorithm>
#include <random>

#include "address.h"
#include "aes.h"

namespace controller {

inline Key randomKey(std::mt19937& generator) {
    Key key{};
    std::generate(key.begin(), key.end(),
                  [&] { return static_cast<std::uint8_t>(generator() & 0xFFU); });
    return key;
}

/// Different numbers for different devices.
inline std::mt19937 generatorFor(const Address& address) {
    std::seed_seq seed(address.bytes.begin(), address.bytes.end());
    return std::mt19937(seed);
}

} // namespace controller

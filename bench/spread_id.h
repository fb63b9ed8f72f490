// Identifiers for a crowd.
#pragma once

#include "base/uuid.h"

#include <cstdint>

namespace wegslot::bench {

/// Spread like the hashes that real identifiers are, or tables of them would look better or worse.
inline Uuid spreadId(std::uint64_t number) {
    Uuid id;
    std::uint64_t mixed = (number + 1) * 0x9E3779B97F4A7C15U;
    for (std::size_t i = 0; i < 16; ++i) {
        id.bytes[i] = static_cast<std::uint8_t>(mixed >> (8 * (i % 8)));
        if (i == 7) mixed *= 0xD1342543DE82EF95U;
    }
    return id;
}

} // namespace wegslot::bench

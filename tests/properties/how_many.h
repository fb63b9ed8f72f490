// How many lives a proof lives: as many as usual, or as many as somebody wants.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <optional>

namespace wegslot {

/// Nothing when it is not set, or empty.
inline std::optional<std::uint64_t> environmentNumber(const char* name) {
    const char* const text = std::getenv(name);
    if (text == nullptr || *text == '\0') return std::nullopt;
    return std::strtoull(text, nullptr, 10);
}

/// `usual`, or WEGSLOT_LIVES.
inline std::uint64_t howManyLives(std::uint64_t usual) {
    return environmentNumber("WEGSLOT_LIVES").value_or(usual);
}

} // namespace wegslot

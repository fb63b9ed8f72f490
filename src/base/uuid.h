// A 128-bit identifier: of a Bluetooth device, everywhere in the core.
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace wegslot {

struct Uuid {
    std::array<std::uint8_t, 16> bytes{};

    /// The 36-character form with hyphens, in any case; nothing for any other text.
    [[nodiscard]] static std::optional<Uuid> parse(std::string_view text);

    /// The canonical 36-character form in upper case.
    [[nodiscard]] std::string text() const;

    friend auto operator<=>(const Uuid&, const Uuid&) = default;
};

} // namespace wegslot

template <>
struct std::hash<wegslot::Uuid> {
    /// Identifiers are hashes or random numbers already, but a trace may number them by hand:
    /// both halves are mixed.
    std::size_t operator()(const wegslot::Uuid& uuid) const noexcept;
};

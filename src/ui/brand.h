// Wegslot's colours and fonts as plain values. Every view takes them from here; each toolkit turns
// them into its own.
#pragma once

#include <cstdint>
#include <string>

namespace wegslot {

struct Color {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    double opacity = 1; ///< 0 to 1

    /// From 0xRRGGBB, opaque; the top byte is ignored.
    [[nodiscard]] static constexpr Color hex(std::uint32_t value) {
        return {.red = static_cast<std::uint8_t>(value >> 16U & 0xFFU),
                .green = static_cast<std::uint8_t>(value >> 8U & 0xFFU),
                .blue = static_cast<std::uint8_t>(value & 0xFFU)};
    }

    [[nodiscard]] constexpr Color withOpacity(double value) const {
        return {red, green, blue, value};
    }

    friend bool operator==(const Color&, const Color&) = default;
};

/// As CSS counts: 400 regular, 600 semibold, 700 bold, 800 heavy.
enum class FontWeight { regular = 400, medium = 500, semibold = 600, bold = 700, heavy = 800 };

struct Font {
    std::string family; ///< empty for the platform's interface font
    double size = 0;    ///< device-independent pixels
    FontWeight weight = FontWeight::regular;

    friend bool operator==(const Font&, const Font&) = default;
};

namespace brand {

inline constexpr Color navy = Color::hex(0x1F2043);     ///< the dark ground
inline constexpr Color orange = Color::hex(0xF59D24);   ///< accent and warning
inline constexpr Color lila = Color::hex(0x8F96CB);     ///< what is quiet
inline constexpr Color cream = Color::hex(0xFAF1DE);    ///< the light ground, text on navy
inline constexpr Color offWhite = Color::hex(0xF7F8FB); ///< part of the palette, not used yet
inline constexpr Color success = Color::hex(0x2BB673);
inline constexpr Color danger = Color::hex(0xE5484D);
inline constexpr Color white = Color::hex(0xFFFFFF);

/// The platform's interface font: a rounded design of it has no counterpart on Linux.
[[nodiscard]] inline Font heading(double size, FontWeight weight = FontWeight::bold) {
    return {.family = {}, .size = size, .weight = weight};
}

/// Mona Sans; where it is not installed, what the platform puts in its place.
[[nodiscard]] inline Font body(double size, FontWeight weight = FontWeight::regular) {
    return {.family = "Mona Sans", .size = size, .weight = weight};
}

} // namespace brand

} // namespace wegslot

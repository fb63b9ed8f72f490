#include "update/base64.h"

namespace wegslot {
namespace {

constexpr std::string_view alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

} // namespace

std::optional<std::vector<std::uint8_t>> decodeBase64(std::string_view text) {
    constexpr std::size_t group = 4;
    if (text.size() % group != 0) return std::nullopt;
    std::size_t padding = 0;
    while (padding < 2 && text.ends_with('=')) {
        text.remove_suffix(1);
        ++padding;
    }
    std::vector<std::uint8_t> bytes;
    bytes.reserve(text.size() / group * 3 + 2);
    std::uint32_t bits = 0;
    unsigned count = 0; // of bits that no byte has taken yet
    for (const char character : text) {
        const auto value = alphabet.find(character);
        if (value == std::string_view::npos) return std::nullopt;
        bits = (bits << 6U | static_cast<std::uint32_t>(value)) & 0xFFFFU;
        count += 6;
        if (count < 8) continue;
        count -= 8;
        bytes.push_back(static_cast<std::uint8_t>(bits >> count & 0xFFU));
    }
    const std::uint32_t left = bits & ((1U << count) - 1U);
    if (left != 0) return std::nullopt;
    return bytes;
}

} // namespace wegslot

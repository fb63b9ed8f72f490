#include "base/uuid.h"

#include "base/text.h"

#include <cstring>

namespace wegslot {
namespace {

constexpr std::string_view shape = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";

std::optional<unsigned> hexDigit(char character) {
    if (character >= '0' && character <= '9') return static_cast<unsigned>(character - '0');
    if (character >= 'a' && character <= 'f') return static_cast<unsigned>(character - 'a' + 10);
    if (character >= 'A' && character <= 'F') return static_cast<unsigned>(character - 'A' + 10);
    return std::nullopt;
}

} // namespace

std::optional<Uuid> Uuid::parse(std::string_view text) {
    if (text.size() != shape.size()) return std::nullopt;
    Uuid uuid;
    std::size_t digits = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (shape[i] == '-') {
            if (text[i] != '-') return std::nullopt;
            continue;
        }
        const auto digit = hexDigit(text[i]);
        if (!digit) return std::nullopt;
        auto& byte = uuid.bytes[digits / 2];
        byte = static_cast<std::uint8_t>(unsigned{byte} << 4U | *digit);
        ++digits;
    }
    return uuid;
}

std::string Uuid::text() const {
    std::string text(shape);
    std::size_t digit = 0;
    for (char& character : text) {
        if (character == '-') continue;
        const unsigned byte = bytes[digit / 2];
        character = hexadecimalDigits[digit % 2 == 0 ? byte >> 4U : byte & 0xFU];
        ++digit;
    }
    return text;
}

} // namespace wegslot

std::size_t std::hash<wegslot::Uuid>::operator()(const wegslot::Uuid& uuid) const noexcept {
    std::uint64_t high = 0;
    std::uint64_t low = 0;
    std::memcpy(&high, uuid.bytes.data(), sizeof high);
    std::memcpy(&low, uuid.bytes.data() + sizeof high, sizeof low);
    // The multiplier is 2^64 divided by the golden ratio, which spreads consecutive numbers.
    std::uint64_t mixed = (high ^ (low * 0x9E3779B97F4A7C15U)) * 0x9E3779B97F4A7C15U;
    return static_cast<std::size_t>(mixed ^ mixed >> 32U);
}

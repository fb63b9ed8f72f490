#include "base/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <span>

namespace wegslot {
namespace {

struct Range {
    char32_t first;
    char32_t last;
};

// Separators (Z*), controls (Cc) and format characters (Cf), from the Unicode Character
// Database 15.0, adjacent ranges joined.
constexpr std::array<Range, 25> trimmable{{
    {0x0000, 0x0020},   {0x007F, 0x00A0},   {0x00AD, 0x00AD},   {0x0600, 0x0605},
    {0x061C, 0x061C},   {0x06DD, 0x06DD},   {0x070F, 0x070F},   {0x0890, 0x0891},
    {0x08E2, 0x08E2},   {0x1680, 0x1680},   {0x180E, 0x180E},   {0x2000, 0x200F},
    {0x2028, 0x202F},   {0x205F, 0x2064},   {0x2066, 0x206F},   {0x3000, 0x3000},
    {0xFEFF, 0xFEFF},   {0xFFF9, 0xFFFB},   {0x110BD, 0x110BD}, {0x110CD, 0x110CD},
    {0x13430, 0x1343F}, {0x1BCA0, 0x1BCA3}, {0x1D173, 0x1D17A}, {0xE0001, 0xE0001},
    {0xE0020, 0xE007F},
}};

// Of these the controls and the format characters alone: nobody sees them, and some turn the order
// of what is seen. Line and paragraph separators are with them.
constexpr std::array<Range, 23> unseen{{
    {0x0000, 0x001F},   {0x007F, 0x009F},   {0x00AD, 0x00AD},   {0x0600, 0x0605},
    {0x061C, 0x061C},   {0x06DD, 0x06DD},   {0x070F, 0x070F},   {0x0890, 0x0891},
    {0x08E2, 0x08E2},   {0x180E, 0x180E},   {0x200B, 0x200F},   {0x2028, 0x202E},
    {0x2060, 0x2064},   {0x2066, 0x206F},   {0xFEFF, 0xFEFF},   {0xFFF9, 0xFFFB},
    {0x110BD, 0x110BD}, {0x110CD, 0x110CD}, {0x13430, 0x1343F}, {0x1BCA0, 0x1BCA3},
    {0x1D173, 0x1D17A}, {0xE0001, 0xE0001}, {0xE0020, 0xE007F},
}};

bool isIn(std::span<const Range> ranges, char32_t character) {
    return std::ranges::any_of(ranges, [character](const Range& range) {
        return range.first <= character && character <= range.last;
    });
}

bool isTrimmable(char32_t character) { return isIn(trimmable, character); }

struct Decoded {
    char32_t character = 0;
    std::size_t length = 0; // 0: not UTF-8
};

std::uint8_t byteAt(std::string_view bytes, std::size_t index) {
    return static_cast<std::uint8_t>(bytes[index]);
}

// The first character of `bytes`, which is not empty; overlong forms and surrogates are refused.
Decoded firstCharacter(std::string_view bytes) {
    const std::uint8_t lead = byteAt(bytes, 0);
    if (lead < 0x80) return {lead, 1};

    std::size_t length = 0;
    char32_t character = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        character = lead & 0x1FU;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        character = lead & 0x0FU;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        character = lead & 0x07U;
    }
    if (length == 0 || bytes.size() < length) return {};

    for (std::size_t i = 1; i < length; ++i) {
        const std::uint8_t next = byteAt(bytes, i);
        if ((next & 0xC0U) != 0x80U) return {};
        character = character << 6U | (next & 0x3FU);
    }
    const bool overlong =
        (length == 3 && character < 0x800) || (length == 4 && character < 0x10000);
    const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
    if (overlong || surrogate || character > 0x10FFFF) return {};
    return {character, length};
}

std::string dateText(const std::tm& fields, const char* pattern) {
    std::array<char, 64> buffer{};
    const auto length = std::strftime(buffer.data(), buffer.size(), pattern, &fields);
    return {buffer.data(), length};
}

std::time_t wholeSeconds(TimePoint instant) {
    return std::chrono::floor<std::chrono::seconds>(instant).time_since_epoch().count();
}

} // namespace

std::string decimal(double number) {
    std::array<char, 400> buffer{};
    const auto format =
        std::abs(number) < 1e15 ? std::chars_format::fixed : std::chars_format::general;
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, format).ptr;
    std::string text(buffer.data(), end);
    return text == "-0" ? "0" : text;
}

std::string hexadecimal(std::uint64_t number, std::size_t digits) {
    std::string text(digits, '0');
    for (auto place = text.rbegin(); place != text.rend(); ++place, number >>= 4U)
        *place = hexadecimalDigits[number & 0xFU];
    return text;
}

std::string utcText(TimePoint instant) {
    const std::time_t seconds = wholeSeconds(instant);
    std::tm fields{};
    gmtime_r(&seconds, &fields);
    return dateText(fields, "%Y-%m-%d %H:%M:%S +0000");
}

std::string localText(TimePoint instant) {
    const std::time_t seconds = wholeSeconds(instant);
    std::tm fields{};
    localtime_r(&seconds, &fields);
    return dateText(fields, "%Y-%m-%d %H:%M:%S");
}

bool isUtf8(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto decoded = firstCharacter(bytes);
        if (decoded.length == 0) return false;
        bytes.remove_prefix(decoded.length);
    }
    return true;
}

std::string printable(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const auto decoded = firstCharacter(text);
        const bool bad = decoded.length == 0 || isIn(unseen, decoded.character);
        const std::size_t length = decoded.length == 0 ? 1 : decoded.length;
        shown += bad ? std::string_view("\uFFFD") : text.substr(0, length);
        text.remove_prefix(length);
    }
    return shown;
}

std::size_t characterCount(std::string_view text) {
    // Continuation bytes are none of their own.
    return static_cast<std::size_t>(std::ranges::count_if(
        text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }));
}

std::string padded(std::string text, std::size_t width) {
    const std::size_t characters = characterCount(text);
    if (characters < width) text.append(width - characters, ' ');
    return text;
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty()) {
        const auto decoded = firstCharacter(text);
        if (decoded.length == 0 || !isTrimmable(decoded.character)) break;
        text.remove_prefix(decoded.length);
    }
    while (!text.empty()) {
        std::size_t start = text.size() - 1;
        while (start > 0 && (byteAt(text, start) & 0xC0U) == 0x80U)
            --start;
        const auto decoded = firstCharacter(text.substr(start));
        if (decoded.length != text.size() - start || !isTrimmable(decoded.character)) break;
        text.remove_suffix(decoded.length);
    }
    return text;
}

} // namespace wegslot

#include "text.h"

#include <charconv>

namespace controller {

namespace {

template <typename Number>
std::optional<Number> parseWhole(std::string_view text, auto... form) {
    Number number{};
    const char* end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number, form...);
    if (error != std::errc{} || stopped != end) return std::nullopt;
    return number;
}

std::optional<std::uint8_t> parseHexByte(std::string_view two) {
    return two.size() == 2 ? parseWhole<std::uint8_t>(two, 16) : std::nullopt;
}

} // namespace

std::vector<std::string_view> splitWords(std::string_view line) {
    std::vector<std::string_view> words;
    std::size_t start = line.find_first_not_of(" \t\r");
    while (start != std::string_view::npos) {
        const std::size_t end = line.find_first_of(" \t\r", start);
        words.push_back(line.substr(start, end - start));
        start = line.find_first_not_of(" \t\r", end);
    }
    return words;
}

std::string toHex(ByteView bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += digits[byte >> 4U];
        text += digits[byte & 0xFU];
    }
    return text;
}

std::optional<Bytes> parseHex(std::string_view text) {
    Bytes bytes;
    for (std::size_t at = 0; at < text.size(); at += 2) {
        const std::optional<std::uint8_t> byte = parseHexByte(text.substr(at, 2));
        if (!byte) return std::nullopt;
        bytes.push_back(*byte);
    }
    return bytes;
}

std::optional<int> parseInteger(std::string_view text) { return parseWhole<int>(text, 10); }

std::optional<double> parseDecimal(std::string_view text) {
    return parseWhole<double>(text, std::chars_format::fixed);
}

std::optional<std::string> parseEscaped(std::string_view text) {
    std::string plain;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '%') {
            plain += text[at];
            continue;
        }
        const std::optional<std::uint8_t> byte = parseHexByte(text.substr(at + 1, 2));
        if (!byte) return std::nullopt;
        plain += static_cast<char>(*byte);
        at += 2;
    }
    return plain;
}

} // namespace controller

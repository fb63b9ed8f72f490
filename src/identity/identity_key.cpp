#include "identity/identity_key.h"

#include "base/text.h"
#include "scanner/bluez/device_id.h"

#include <nettle/base64.h>
#include <nettle/sha2.h>

#include <algorithm>
#include <cctype>

namespace wegslot {
namespace {

std::optional<std::uint8_t> digitOf(char sign) {
    const std::size_t value =
        hexadecimalDigits.find(static_cast<char>(std::toupper(static_cast<unsigned char>(sign))));
    if (value == std::string_view::npos) return std::nullopt;
    return static_cast<std::uint8_t>(value);
}

bool isOneOf(std::string_view signs, char sign) {
    return signs.find(sign) != std::string_view::npos;
}

bool isBlank(char sign) { return std::isspace(static_cast<unsigned char>(sign)) != 0; }

/// What separates bytes, and how the registry goes on in the next line.
bool isSeparator(char sign) { return isBlank(sign) || isOneOf(":-,\\", sign); }

std::string_view withoutBlanks(std::string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

void skip(std::string_view& text, std::string_view word) {
    const auto isSame = [](char lower, char typed) {
        return lower == std::tolower(static_cast<unsigned char>(typed));
    };
    if (text.size() >= word.size() && std::ranges::equal(word, text.substr(0, word.size()), isSame))
        text = withoutBlanks(text.substr(word.size()));
}

/// Without what stands before the digits, in the order in which it does.
std::string_view withoutLabels(std::string_view text) {
    for (const std::string_view label :
         {"[identityresolvingkey]", "\"irk\"", "irk", "key", "=", ":", "hex:", "0x"})
        skip(text, label);
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
        text = withoutBlanks(text.substr(1, text.size() - 2));
    return text;
}

/// How many bytes `text` stands for, the first of them in `decoded`; nothing when it is no base64.
std::optional<std::size_t> fromBase64(std::string_view text, std::span<std::uint8_t> decoded) {
    base64_decode_ctx context{};
    base64_decode_init(&context);
    std::size_t count = 0;
    bool isWhole = true;
    for (const char sign : text) {
        std::uint8_t byte = 0;
        const int outcome = base64_decode_single(&context, &byte, sign);
        isWhole = isWhole && outcome >= 0;
        if (outcome == 1 && count < decoded.size()) decoded[count] = byte;
        if (outcome == 1) ++count;
    }
    isWhole = isWhole && base64_decode_final(&context) == 1;
    return isWhole ? std::optional(count) : std::nullopt;
}

/// Whether it can only be meant as base64: its own signs, and the length of 16 bytes.
bool looksLikeBase64(std::string_view text) {
    constexpr std::size_t encoded = 24;
    const auto isSign = [](char sign) {
        return std::isalnum(static_cast<unsigned char>(sign)) != 0 || isOneOf("+/=", sign) ||
               isBlank(sign);
    };
    const auto count = std::ranges::count_if(text, [](char sign) { return !isBlank(sign); });
    return static_cast<std::size_t>(count) == encoded && std::ranges::all_of(text, isSign) &&
           text.ends_with("==");
}

Result<IdentityKey> keyInDigits(std::string_view text) {
    IdentityKey key;
    std::size_t count = 0;
    std::size_t place = 0;
    for (const char sign : text) {
        ++place;
        if (isSeparator(sign)) continue;
        const auto digit = digitOf(sign);
        if (!digit)
            return Failure{message("dit is geen identiteit: teken %1 is geen hexadecimaal cijfer",
                                   {std::to_string(place)})};
        if (count < IdentityKey::digits) {
            std::uint8_t& byte = key.bytes[count / 2];
            byte = static_cast<std::uint8_t>(byte << 4U | *digit);
        }
        ++count;
    }
    if (count != IdentityKey::digits)
        return Failure{message("een identiteit heeft 32 hexadecimale cijfers; dit heeft er %1",
                               {std::to_string(count)})};
    return key;
}

Result<IdentityKey> keyIn(std::string_view text) {
    const std::string_view whole = withoutBlanks(text);
    const std::string_view bare = looksLikeBase64(whole) ? whole : withoutLabels(whole);
    if (bare.empty()) return Failure{message("er is geen identiteit gegeven")};
    if (!looksLikeBase64(bare)) return keyInDigits(bare);
    IdentityKey key;
    if (fromBase64(bare, key.bytes) != IdentityKey::size)
        return Failure{message("dit is geen identiteit: geen base64 van 16 bytes")};
    return key;
}

/// What stands in the element behind `<key>name</key>`, without blanks; nothing when there is none.
std::optional<std::string_view> elementBehind(std::string_view list, std::string_view name) {
    const std::string before = "<key>" + std::string(name) + "</key>";
    const std::size_t found = list.find(before);
    if (found == std::string_view::npos) return std::nullopt;
    std::string_view rest = withoutBlanks(list.substr(found + before.size()));
    if (!rest.starts_with("<data>") && !rest.starts_with("<string>")) return std::nullopt;
    rest.remove_prefix(rest.find('>') + 1);
    const std::size_t end = rest.find("</");
    if (end == std::string_view::npos) return std::nullopt;
    return withoutBlanks(rest.substr(0, end));
}

/// "AA:BB:CC:DD:EE:FF" of a text with any separators, or of six bytes in base64.
std::optional<std::string> addressIn(std::string_view text) {
    constexpr std::size_t octets = 6;
    std::array<std::uint8_t, octets> bytes{};
    std::size_t count = 0;
    bool isWhole = true;
    for (const char sign : text) {
        const auto digit = digitOf(sign);
        isWhole = isWhole && (digit || isSeparator(sign));
        if (digit && count < 2 * octets) {
            std::uint8_t& byte = bytes[count / 2];
            byte = static_cast<std::uint8_t>(byte << 4U | *digit);
        }
        if (digit) ++count;
    }
    if ((!isWhole || count != 2 * octets) && fromBase64(text, bytes) != octets) return std::nullopt;
    std::string address;
    for (const std::uint8_t byte : bytes)
        address += (address.empty() ? "" : ":") + hexadecimal(byte, 2);
    return address;
}

Result<PastedIdentity> inPropertyList(std::string_view list) {
    const auto encoded = elementBehind(list, "Remote IRK");
    if (!encoded) return Failure{message("in dit stuk plist staat geen \"Remote IRK\"")};
    const auto key = keyIn(*encoded);
    if (!key) return key.failure();
    PastedIdentity pasted{.key = *key, .id = std::nullopt};
    const auto fixed = elementBehind(list, "Public");
    if (!fixed) return pasted;
    const auto address = addressIn(*fixed);
    if (!address)
        return Failure{message("in dit stuk plist staat bij \"Public\" geen Bluetooth-adres")};
    pasted.id = deviceId(*address, "public");
    return pasted;
}

Result<PastedIdentity> alone(std::string_view text) {
    const auto key = keyIn(text);
    if (!key) return key.failure();
    return PastedIdentity{.key = *key, .id = std::nullopt};
}

} // namespace

void wipe(std::span<std::uint8_t> bytes) {
    volatile std::uint8_t* const first = bytes.data();
    for (std::size_t i = 0; i < bytes.size(); ++i)
        first[i] = 0;
}

IdentityKey IdentityKey::reversed() const {
    IdentityKey other;
    std::ranges::reverse_copy(bytes, other.bytes.begin());
    return other;
}

Uuid IdentityKey::deviceId() const {
    const IdentityKey other = reversed();
    const auto& first = std::min(bytes, other.bytes);
    sha256_ctx context{};
    std::array<std::uint8_t, SHA256_DIGEST_SIZE> hash{};
    sha256_init(&context);
    sha256_update(&context, first.size(), first.data());
    sha256_digest(&context, hash.size(), hash.data());
    wipe(context); // it still has what it was given
    return identityId(hash);
}

std::optional<IdentityKey> IdentityKey::fromHexadecimal(std::string_view text) {
    if (text.size() != IdentityKey::digits) return std::nullopt;
    const auto key = keyInDigits(text);
    return key ? std::optional(*key) : std::nullopt;
}

void IdentityKey::appendHexadecimal(std::pmr::string& text) const {
    constexpr std::string_view lower = "0123456789abcdef";
    for (const std::uint8_t byte : bytes) {
        text += lower[byte >> 4U];
        text += lower[byte & 0xFU];
    }
}

Result<PastedIdentity> readIdentity(std::string_view text) {
    if (text.size() > longestPasted)
        return Failure{message("dit is geen identiteit: langer dan 16 kB")};
    const bool isList = text.find('<') != std::string_view::npos;
    auto pasted = isList ? inPropertyList(text) : alone(text);
    if (pasted && pasted->key == IdentityKey())
        return Failure{message("dit is de lege identiteit: dit apparaat heeft er geen")};
    return pasted;
}

} // namespace wegslot

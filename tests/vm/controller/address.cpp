#include "address.h"

#include <algorithm>

#include "text.h"

namespace controller {

namespace {

constexpr std::size_t shownLength = 17;
constexpr std::size_t charactersPerByte = 3;

} // namespace

std::optional<Address> parseAddress(std::string_view text, AddressType type) {
    if (text.size() != shownLength) return std::nullopt;
    Address address;
    address.type = type;
    for (std::size_t shown = 0; shown < address.bytes.size(); ++shown) {
        const std::size_t at = shown * charactersPerByte;
        if (shown > 0 && text[at - 1] != ':') return std::nullopt;
        const std::optional<Bytes> byte = parseHex(text.substr(at, 2));
        if (!byte) return std::nullopt;
        address.bytes[address.bytes.size() - 1 - shown] = byte->front();
    }
    return address;
}

Address readAddress(ByteView typeAndAddress) {
    Address address;
    address.type = typeAndAddress[0] == 0 ? AddressType::Public : AddressType::Random;
    std::copy_n(typeAndAddress.begin() + 1, address.bytes.size(), address.bytes.begin());
    return address;
}

std::string toText(const Address& address) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    text.reserve(shownLength);
    for (auto byte = address.bytes.rbegin(); byte != address.bytes.rend(); ++byte) {
        if (!text.empty()) text += ':';
        text += digits[*byte >> 4U];
        text += digits[*byte & 0xFU];
    }
    return text;
}

} // namespace controller

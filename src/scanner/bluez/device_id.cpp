#include "scanner/bluez/device_id.h"

#include "base/text.h"

#include <nettle/sha1.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace wegslot {
namespace {

// Drawn at random once. Another value would make every stored key a stranger.
constexpr Uuid wegslotNamespace{{0x5E, 0x8F, 0x1B, 0x63, 0x2A, 0xD4, 0x4C, 0x0E, 0x9B, 0x27, 0x71,
                                 0xC5, 0xE0, 0x3D, 0x96, 0xFA}};

} // namespace

Uuid deviceId(std::string_view address, std::string_view type) {
    std::string name = "bdaddr/" + std::string(type) + "/";
    for (const char character : address)
        name +=
            character >= 'a' && character <= 'f' ? static_cast<char>(character - 32) : character;
    return nameBased(wegslotNamespace, name);
}

Uuid identityId(std::span<const std::uint8_t> hash) {
    std::string name = "irk/";
    for (const std::uint8_t byte : hash)
        name += hexadecimal(byte, 2);
    return nameBased(wegslotNamespace, name);
}

bool isChangingAddress(std::string_view address, std::string_view type) {
    if (type == "public") return false;
    return address.empty() ||
           std::string_view("CDEFcdef").find(address.front()) == std::string_view::npos;
}

Uuid nameBased(const Uuid& space, std::string_view name) {
    sha1_ctx context{};
    std::array<std::uint8_t, SHA1_DIGEST_SIZE> hash{};
    sha1_init(&context);
    sha1_update(&context, space.bytes.size(), space.bytes.data());
    const std::vector<std::uint8_t> text(name.begin(), name.end());
    sha1_update(&context, text.size(), text.data());
    sha1_digest(&context, hash.size(), hash.data());
    Uuid id;
    std::copy_n(hash.begin(), id.bytes.size(), id.bytes.begin());
    id.bytes[6] = static_cast<std::uint8_t>((id.bytes[6] & 0x0FU) | 0x50U); // version 5
    id.bytes[8] = static_cast<std::uint8_t>((id.bytes[8] & 0x3FU) | 0x80U); // the RFC's variant
    return id;
}

} // namespace wegslot

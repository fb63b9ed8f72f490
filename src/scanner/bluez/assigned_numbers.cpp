#include "scanner/bluez/assigned_numbers.h"

#include "base/uuid.h"

#include <algorithm>
#include <array>

namespace wegslot::bluez {
namespace {

// The last twelve bytes of the Bluetooth base UUID (Core Specification 5.4, volume 3, part
// B, 2.5.1).
constexpr std::array<std::uint8_t, 12> base{0x00, 0x00, 0x10, 0x00, 0x80, 0x00,
                                            0x00, 0x80, 0x5F, 0x9B, 0x34, 0xFB};

} // namespace

std::optional<GattUuid> assignedNumber(std::string_view uuid) {
    const auto parsed = Uuid::parse(uuid);
    if (!parsed || !std::equal(base.begin(), base.end(), parsed->bytes.begin() + 4))
        return std::nullopt;
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i)
        number = number << 8U | parsed->bytes[i];
    return GattUuid{number};
}

bool isClassic(GattUuid number) { return number >= GattUuid{0x1000} && number < GattUuid{0x1800}; }

} // namespace wegslot::bluez

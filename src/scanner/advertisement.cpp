#include "scanner/advertisement.h"

namespace wegslot {

std::optional<std::uint8_t> Advertisement::continuityType() const {
    if (!manufacturerData || manufacturerData->size() < 3) return std::nullopt;
    const auto& bytes = *manufacturerData;
    if (bytes[0] != 0x4C || bytes[1] != 0x00) return std::nullopt;
    return bytes[2];
}

std::string_view Advertisement::name() const {
    if (peripheralName) return *peripheralName;
    return localName.value_or(std::string_view{});
}

bool isMeasured(int rssi) { return rssi >= -126 && rssi <= -1; }

bool isAppleType(std::optional<std::uint8_t> continuityType) {
    return continuityType && *continuityType != 0x02;
}

} // namespace wegslot

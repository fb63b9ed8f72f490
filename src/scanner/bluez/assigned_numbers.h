// The Bluetooth SIG's assigned numbers, as BlueZ writes them: UUIDs in text over one base.
#pragma once

#include "scanner/bluetooth_central.h"

#include <optional>
#include <string_view>

namespace wegslot::bluez {

/// The assigned number in "0000180a-0000-1000-8000-00805f9b34fb" (any case); nothing for a UUID
/// that is not over the Bluetooth base UUID.
[[nodiscard]] std::optional<GattUuid> assignedNumber(std::string_view uuid);

/// Whether the number is that of a profile or service class of classic Bluetooth (BR/EDR), such
/// as headset or audio source (Assigned Numbers, section 3.3): 0x1000 to 0x17FF, GATT services
/// begin at 0x1800.
[[nodiscard]] bool isClassic(GattUuid number);

} // namespace wegslot::bluez

// Why a connection was lost, in a person's words, from what BlueZ or the controller calls it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace wegslot::bluez {

/// `name`: of BlueZ's `Disconnected` signal, such as "org.bluez.Reason.Timeout".
[[nodiscard]] std::string lossText(std::string_view name);

/// `code`: of the Bluetooth Core Specification (5.4, volume 1, part F).
[[nodiscard]] std::string lossText(std::uint8_t code);

} // namespace wegslot::bluez

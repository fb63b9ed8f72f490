// Where a desktop has its users couple a Bluetooth device.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace wegslot {

/// Programs that open such a window, each with its words, the best first. `desktop` is
/// XDG_CURRENT_DESKTOP.
[[nodiscard]] std::vector<std::vector<std::string>> bluetoothSettings(std::string_view desktop);

} // namespace wegslot
